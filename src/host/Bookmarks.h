// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCommonExport.h"
#include "host/DrawData.h"
#include "host/MetaTypes.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <cstdint>

/// A bookmark of one frame, which may carry drawings.
struct TORVALENCOMMON_EXPORT TimeBookmark
{
    TimeBookmark();
    explicit TimeBookmark(int64_t bookmarkTime);
    TimeBookmark(const TimeBookmark& other);
    TimeBookmark& operator=(const TimeBookmark& other);
    ~TimeBookmark();

    /// Start of the frame, in microseconds on the timeline's clock.
    int64_t time = 0;
    /// Identity across edits; the library does not touch it.
    QUuid id;
    /// The frame's drawings; a bookmark that has any counts as annotated.
    QList<DrawData> drawings;
    /// The reviewer's words; the library does not touch them.
    QString note;
};

/// A bookmark of a stretch of frames.
struct TORVALENCOMMON_EXPORT RangeBookmark
{
    RangeBookmark();
    RangeBookmark(int64_t rangeStartTime, int64_t rangeEndTime);
    RangeBookmark(const RangeBookmark& other);
    RangeBookmark& operator=(const RangeBookmark& other);
    ~RangeBookmark();

    /// Start of the first frame, in microseconds on the timeline's clock.
    int64_t startTime = 0;
    /// Start of the last frame, in microseconds on the timeline's clock.
    int64_t endTime = 0;
    /// The reviewer's words; the library does not touch them.
    QString note;
};

/// The bookmarks of one timeline, in the order in which the host added them. The container neither sorts nor
/// merges: two bookmarks may share a time.
class TORVALENCOMMON_EXPORT Bookmarks
{
public:
    const QList<TimeBookmark>& GetTimeBookmarks() const;
    const QList<RangeBookmark>& GetRangeBookmarks() const;

    /// Appends @p bookmark.
    void AddTimeBookmark(const TimeBookmark& bookmark);
    /// Removes every frame bookmark at exactly @p time (microseconds). Returns whether there was one.
    bool RemoveTimeBookmark(int64_t time);

    /// Appends @p bookmark. Ranges may overlap.
    void AddRangeBookmark(const RangeBookmark& bookmark);
    /// Removes every range bookmark from exactly @p startTime to @p endTime (microseconds). Returns whether
    /// there was one.
    bool RemoveRangeBookmark(int64_t startTime, int64_t endTime);

    /// Removes every bookmark of both kinds.
    void Clear();

private:
    QList<TimeBookmark> mTimeBookmarks;
    QList<RangeBookmark> mRangeBookmarks;
};
