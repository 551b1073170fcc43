// SPDX-License-Identifier: MIT
#pragma once

#include "host/FrameData.h"
#include "host/ViewerLayout.h"
#include "media/MediaInfo.h"

#include <QString>

#include <array>
#include <map>
#include <vector>

class ProjectTimeline;

/// Where the picture of a frame comes from.
struct OutputPlace
{
    /// Index into OutputPlan::media; -1 for none, which shows black.
    int media = -1;
    /// 1-based.
    int frame = 0;
};

/// What one viewer shows, by index of the plan's frames.
struct OutputTrack
{
    std::vector<OutputPlace> places;
    /// Empty where annotations were not asked for.
    std::map<int, FrameData> drawings;

    /// The drawings of the frame at @p index; null if there are none.
    const FrameData* DrawingsAt(int index) const;
};

/// A stretch of sound; times are microseconds.
struct OutputSound
{
    /// Index into OutputPlan::media.
    int media = 0;
    /// Where it begins, from the start of the medium's first frame.
    int64_t mediaTime = 0;
    /// Where it begins and ends in the output.
    int64_t start = 0;
    int64_t end = 0;
};

/// What a job of output works on: a copy of what a timeline shows, taken on the GUI thread, so that other
/// threads touch no object of the project.
struct OutputPlan
{
    /// Name of the timeline.
    QString name;
    FrameRate rate;
    /// The timeline's frames (1-based) in the order in which they go out.
    std::vector<int> frames;
    std::vector<MediaInfo> media;
    ViewerLayout layout = Single;
    /// In the single layout the viewer, and the track, that shows.
    int singleViewer = 0;
    /// One a viewer. Places of a track without a timeline are missing.
    std::array<OutputTrack, 2> tracks;
    /// The sound of the timeline that leads, in order; empty if it has none.
    std::vector<OutputSound> sound;

    int FrameCount() const { return static_cast<int>(frames.size()); }
    /// Length of the output in microseconds.
    int64_t Duration() const;
};

/// Which viewers a plan is to show.
struct OutputViewers
{
    /// The timelines of the viewers A and B; null for none.
    std::array<ProjectTimeline*, 2> timelines = {nullptr, nullptr};
    /// The one whose frames count and whose sound is heard.
    int leading = 0;
    /// Layout to compose by; single shows the leading viewer alone.
    ViewerLayout layout = Single;
};

/// Plans the frames @p frames of the leading timeline, which must be there, with its sound if @p withSound:
/// that needs consecutive frames. The other viewer shows the same time of its own timeline.
OutputPlan MakeOutputPlan(const OutputViewers& viewers, const std::vector<int>& frames, bool withAnnotations,
                          bool withSound);

/// The frames @p first to @p last.
std::vector<int> FramesBetween(int first, int last);
