// SPDX-License-Identifier: MIT
#include "sound/AudioSegment.h"

#include "media/MediaInfo.h"

std::vector<AudioSegment> AudioSegmentsOf(const MediaInfo& info)
{
    if (!info.hasAudio)
        return {};
    return {AudioSegment{info.path, 0, 0, info.duration, info.startTime}};
}
