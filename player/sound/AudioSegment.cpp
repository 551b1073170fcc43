// SPDX-License-Identifier: MIT
#include "sound/AudioSegment.h"

#include "media/MediaInfo.h"
#include "project/MediaSource.h"
#include "project/ProjectTimeline.h"

std::vector<AudioSegment> AudioSegmentsOf(const MediaInfo& info)
{
    if (!info.hasAudio)
        return {};
    return {AudioSegment{info.path, 0, 0, info.duration, info.startTime}};
}

std::vector<AudioSegment> AudioSegmentsOf(ProjectTimeline& timeline)
{
    std::vector<AudioSegment> segments;
    for (const TimelineSegment& segment : timeline.Segments())
    {
        const MediaInfo& info = segment.source->Info();
        if (!info.hasAudio || segment.source->IsMissing())
            continue;
        const int64_t start = timeline.FrameToTime(segment.first);
        segments.push_back(AudioSegment{info.path, info.frameRate.FrameToTime(segment.mediaFirst), start,
                                        timeline.FrameToTime(segment.Last() + 1) - start, info.startTime});
    }
    return segments;
}
