// SPDX-License-Identifier: MIT
#pragma once

#include "annotation/AnnotationStore.h"
#include "host/Source.h"
#include "host/Timeline.h"
#include "media/MediaInfo.h"
#include "playback/PlaybackRange.h"

#include <QSet>

#include <memory>

/// The timeline of one source: a single element as long as the medium, with the medium's clock and
/// annotations.
///
/// Its end time is the start of the last frame, so that a playback range from the first to the last frame is
/// the whole timeline.
class MediaTimeline : public Timeline
{
public:
    explicit MediaTimeline(const MediaInfo& info);

    const MediaInfo& Info() const;
    /// The annotations of the medium's frames; lives on while an undo step holds it.
    const std::shared_ptr<AnnotationStore>& Annotations() const;

    /// The frames that playback stays within; the whole timeline at first.
    const PlaybackRange& Range() const;
    void SetRange(const PlaybackRange& range);

    const QString& GetName() override;
    bool IsSourceTimeline() override;
    int GetViewerIndex() override;
    std::weak_ptr<Source> GetSource() override;
    QList<ElementInfo> GetElementInfos() override;
    int64_t GetStartTime() override;
    int64_t GetEndTime() override;
    /// Times outside the timeline belong to its first or last frame.
    int TimeToFrame(int64_t time) override;
    int64_t FrameToTime(int frame) override;

    /// Marks @p frame, or takes its mark away unless it carries drawings.
    void ToggleBookmark(int frame);
    /// Brings the bookmark of @p frame in line with its drawings: a frame with drawings has one that carries
    /// them; without any, the bookmark that they made goes with them.
    void UpdateAnnotationBookmark(int frame);
    /// The nearest bookmarked frame, or end of a bookmarked range, after @p frame (@p direction 1) or before
    /// it
    /// (-1); 0 if there is none.
    int NextBookmarkedFrame(int frame, int direction);

    /// Tells which viewer shows the timeline; -1 for none.
    void SetViewerIndex(int viewer);

private:
    MediaInfo mInfo;
    QString mName;
    std::shared_ptr<Source> mSource;
    std::shared_ptr<AnnotationStore> mAnnotations = std::make_shared<AnnotationStore>();
    ElementInfo mElement;
    PlaybackRange mRange;
    /// Frames that the user marked, apart from those that are marked for their drawings.
    QSet<int> mMarkedFrames;
    int mViewerIndex = -1;
};
