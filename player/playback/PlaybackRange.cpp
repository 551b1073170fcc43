// SPDX-License-Identifier: MIT
#include "playback/PlaybackRange.h"

#include <algorithm>

int PlaybackRange::Clamp(int64_t frame) const
{
    return static_cast<int>(std::min<int64_t>(std::max<int64_t>(frame, first), last));
}

PlaybackPosition AdvancePlayback(const PlaybackPosition& start, int64_t steps, const PlaybackRange& range,
                                 LoopType loopType)
{
    const int64_t length = int64_t(range.last) - range.first + 1;
    const int64_t offset = range.Clamp(start.frame) - range.first;
    // As seen in the direction of play, so that both directions are one case.
    const int64_t ahead = (start.direction > 0 ? offset : length - 1 - offset) + steps;
    const auto at = [&](int64_t seenOffset, int direction)
    {
        const int64_t forward = direction > 0 ? seenOffset : length - 1 - seenOffset;
        return PlaybackPosition{static_cast<int>(range.first + forward), direction, false};
    };

    if (ahead < length)
        return at(ahead, start.direction);
    if (loopType == NoLoop || length == 1)
    {
        PlaybackPosition position = at(length - 1, start.direction);
        position.ended = loopType == NoLoop;
        return position;
    }
    if (loopType == Loop)
        return at(ahead % length, start.direction);
    const int64_t lap = length - 1;
    const bool turned = (ahead / lap) % 2 == 1;
    return at(ahead % lap, turned ? -start.direction : start.direction);
}
