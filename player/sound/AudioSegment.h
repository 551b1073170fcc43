// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

class ProjectTimeline;
struct MediaInfo;

/// A stretch of a timeline's sound: part of one medium's sound, played without a change of its speed.
///
/// All times are microseconds. Where segments overlap they sound together; where there is none, it is silent.
struct AudioSegment
{
    /// The medium.
    QString path;
    /// Where the stretch begins in the medium, counted from the start of its first frame.
    int64_t mediaStart = 0;
    /// Where it begins in the timeline.
    int64_t timelineStart = 0;
    int64_t duration = 0;
    /// Presentation time of the medium's first frame in its file: MediaInfo::startTime.
    int64_t pictureStart = 0;
};

inline bool operator==(const AudioSegment& a, const AudioSegment& b)
{
    return a.path == b.path && a.mediaStart == b.mediaStart && a.timelineStart == b.timelineStart &&
           a.duration == b.duration && a.pictureStart == b.pictureStart;
}

/// The sound of the timeline of one source, which shows the whole medium of @p info: one segment, or none if
/// it has no sound.
std::vector<AudioSegment> AudioSegmentsOf(const MediaInfo& info);
/// The sound of @p timeline: one segment for each of its stretches whose source has sound and is not missing,
/// as long as the stretch shows pictures.
std::vector<AudioSegment> AudioSegmentsOf(ProjectTimeline& timeline);
