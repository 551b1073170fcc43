// SPDX-License-Identifier: MIT
#pragma once

#include "host/LoopType.h"

#include <cstdint>

/// The frames that playback stays within, both ends included; last is not below first.
struct PlaybackRange
{
    int first = 1;
    int last = 1;

    /// @p frame, or the end of the range that it lies beyond.
    int Clamp(int64_t frame) const;
    bool Contains(int frame) const { return frame >= first && frame <= last; }
};

inline bool operator==(const PlaybackRange& a, const PlaybackRange& b)
{
    return a.first == b.first && a.last == b.last;
}
inline bool operator!=(const PlaybackRange& a, const PlaybackRange& b)
{
    return !(a == b);
}

/// A place in playback: the frame and the way that it is going.
struct PlaybackPosition
{
    int frame = 1;
    /// 1 forwards, -1 backwards.
    int direction = 1;
    /// Playback has run into the end of its range and does not loop.
    bool ended = false;
};

/// Where playback is after @p steps frames (0 or more) from @p start, within @p range.
///
/// Without a loop it stays on the frame at the end; a loop goes on at the other end; ping-pong turns round
/// there and shows the frame at the end once. A start outside of the range counts as its nearest frame.
PlaybackPosition AdvancePlayback(const PlaybackPosition& start, int64_t steps, const PlaybackRange& range,
                                 LoopType loopType);
