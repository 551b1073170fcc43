// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaReader.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

/// Where a medium is being played, for the cache to know what will be wanted next.
struct Playhead
{
    /// 1-based.
    int frame = 1;
    /// 1 forwards, -1 backwards.
    int direction = 1;
    /// The range that is played; play goes round in it if @c loops.
    int first = 1;
    int last = 1;
    bool loops = false;
};

/// Frames of all media, as many as fit a number of bytes.
///
/// When it is full the frame that will be wanted last goes first: those of a medium without a playhead, then
/// by the distance ahead of the playhead; a frame behind counts as four times as far. Any thread may call.
class FrameCache
{
public:
    /// @p limit is in bytes.
    explicit FrameCache(int64_t limit);

    /// Changes the bound to @p bytes and drops what goes beyond it.
    void SetLimit(int64_t bytes);
    int64_t Limit() const;
    /// Sum of the kept pictures' bytes.
    int64_t Bytes() const;

    /// Keeps @p result as @p frame of @p media unless it would have to go at once. Returns whether it was
    /// kept.
    bool Insert(int media, int frame, const ReadResult& result);
    /// The kept frame, or nothing.
    std::optional<ReadResult> Find(int media, int frame) const;
    bool Contains(int media, int frame) const;
    /// First and last of the kept frames that adjoin @p frame without a gap; (0, -1) if @p frame is not kept.
    std::pair<int, int> Range(int media, int frame) const;
    /// All such ranges of @p media, in order.
    std::map<int, int> Ranges(int media) const;

    void SetPlayhead(int media, const Playhead& playhead);
    /// Tells that @p media is played no more; its frames go first.
    void ClearPlayhead(int media);
    /// Drops the frames and the playhead of @p media.
    void Remove(int media);

private:
    struct Medium
    {
        std::map<int, ReadResult> frames;
        /// First and last frame of each run without a gap.
        std::map<int, int> runs;
        std::optional<Playhead> playhead;
    };

    static int64_t BytesOf(const ReadResult& result);
    static int64_t Cost(const Playhead& playhead, int frame);
    /// The frame of @p medium that will be wanted last, with its cost.
    static std::pair<int64_t, int> Worst(const Medium& medium);
    void AddToRuns(Medium& medium, int frame);
    void RemoveFromRuns(Medium& medium, int frame);
    void Drop(Medium& medium, int frame);
    /// Drops frames until the bound is kept. Returns whether @p frame of @p media survived.
    bool Trim(int media, int frame);

    mutable std::mutex mMutex;
    std::map<int, Medium> mMedia;
    int64_t mLimit;
    int64_t mBytes = 0;
};
