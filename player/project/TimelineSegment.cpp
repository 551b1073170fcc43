// SPDX-License-Identifier: MIT
#include "project/TimelineSegment.h"

#include "project/MediaSource.h"

#include <algorithm>
#include <limits>

int TimelineSegment::MediaFrameOf(int frame) const
{
    const int64_t offset = std::clamp(frame, first, Last()) - first;
    const FrameRate& mediaRate = source->Info().frameRate;
    // Starts of frames are rounded up, so a start that both share belongs to the frame in either.
    const int64_t mediaOffset =
        mediaRate == rate ? offset : mediaRate.TimeToFrame(rate.FrameToTime(offset + 1)) - 1;
    return static_cast<int>(std::clamp<int64_t>(mediaFirst + mediaOffset, mediaFirst, mediaLast));
}

int TimelineSegment::FrameOf(int mediaFrame) const
{
    const int64_t mediaOffset = std::clamp(mediaFrame, mediaFirst, mediaLast) - mediaFirst;
    const FrameRate& mediaRate = source->Info().frameRate;
    int64_t frame = first + mediaOffset;
    if (mediaRate != rate)
    {
        frame = first - 1 + rate.TimeToFrame(mediaRate.FrameToTime(mediaOffset + 1));
        while (frame < Last() && MediaFrameOf(static_cast<int>(frame)) < mediaFrame)
            ++frame;
    }
    return static_cast<int>(std::clamp<int64_t>(frame, first, Last()));
}

int FramesForMedia(int mediaFrames, const FrameRate& mediaRate, const FrameRate& rate)
{
    if (mediaRate == rate)
        return mediaFrames;
    const int64_t units = int64_t(rate.numerator) * mediaRate.denominator;
    const int64_t perFrame = int64_t(rate.denominator) * mediaRate.numerator;
    // Rates of up to five digits, and 2^31 frames, stay within 64 bits.
    const int64_t frames = (mediaFrames * units * 2 + perFrame) / (perFrame * 2);
    return static_cast<int>(std::clamp<int64_t>(frames, 1, std::numeric_limits<int>::max()));
}

int SegmentIndex(const std::vector<TimelineSegment>& segments, int frame)
{
    const auto after =
        std::upper_bound(segments.begin(), segments.end(), frame,
                         [](int wanted, const TimelineSegment& segment) { return wanted < segment.first; });
    if (after == segments.begin() || frame > std::prev(after)->Last())
        return -1;
    return static_cast<int>(after - segments.begin()) - 1;
}
