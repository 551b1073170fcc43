// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameRate.h"

#include <QUuid>

#include <memory>
#include <vector>

class MediaSource;

/// A stretch of a timeline that shows consecutive frames of one source.
struct TimelineSegment
{
    /// First frame of the timeline (1-based), and how many there are (1 or more).
    int first = 1;
    int count = 0;
    /// What is shown; never null.
    std::shared_ptr<const MediaSource> source;
    /// First and last frame of the source that are shown (1-based).
    int mediaFirst = 1;
    int mediaLast = 1;
    /// The element that it belongs to.
    QUuid element;
    /// Frames per second of the timeline.
    FrameRate rate;

    int Last() const { return first + count - 1; }
    /// The frame of the source that timeline frame @p frame shows: the one that the source shows at the same
    /// time from the segment's start. A frame outside of the segment belongs to its first or last one.
    int MediaFrameOf(int frame) const;
    /// The first frame of the timeline that shows frame @p mediaFrame of the source; where the timeline's
    /// rate leaves it out, the frame after it. Within the segment.
    int FrameOf(int mediaFrame) const;
};

/// How many frames of a timeline at @p rate show @p mediaFrames (1 or more) frames of a medium at
/// @p mediaRate: their duration, rounded to the nearest frame; at least 1.
int FramesForMedia(int mediaFrames, const FrameRate& mediaRate, const FrameRate& rate);

/// Index of the segment that holds @p frame; -1 if there is none. The segments stand in order, without gaps.
int SegmentIndex(const std::vector<TimelineSegment>& segments, int frame);
