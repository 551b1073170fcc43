// SPDX-License-Identifier: MIT
#include "output/OutputPlan.h"

#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "project/MediaSource.h"
#include "project/ProjectTimeline.h"

#include <QFileInfo>

#include <algorithm>
#include <numeric>

namespace
{

/// Where the sources stand in a plan's media.
using MediaIndexes = std::map<const MediaSource*, int>;

/// Index of the medium of @p source in @p plan, which takes it over where it is new.
int MediaIndex(OutputPlan& plan, MediaIndexes& indexes, const MediaSource& source)
{
    const auto [found, isNew] = indexes.try_emplace(&source, static_cast<int>(plan.media.size()));
    if (isNew)
        plan.media.push_back(source.Info());
    return found->second;
}

void AddFrame(OutputPlan& plan, MediaIndexes& indexes, OutputTrack& track, ProjectTimeline& timeline,
              int frame, bool withAnnotations)
{
    OutputPlace place;
    const std::vector<TimelineSegment>& segments = timeline.Segments();
    if (const int index = SegmentIndex(segments, frame); index >= 0)
    {
        const TimelineSegment& segment = segments[static_cast<size_t>(index)];
        place.media = MediaIndex(plan, indexes, *segment.source);
        place.frame = segment.MediaFrameOf(frame);
    }
    const FrameData* const drawings = withAnnotations ? timeline.Annotations()->Find(frame) : nullptr;
    if (drawings && drawings->lastIndex >= 0)
        track.drawings[static_cast<int>(track.places.size())] = *drawings;
    track.places.push_back(place);
}

void AddSound(OutputPlan& plan, MediaIndexes& indexes, ProjectTimeline& timeline)
{
    const int first = plan.frames.front();
    const int last = plan.frames.back();
    const FrameRate rate = plan.rate;
    for (const TimelineSegment& segment : timeline.Segments())
    {
        const int from = std::max(segment.first, first);
        const int to = std::min(segment.Last(), last);
        const MediaInfo& info = segment.source->Info();
        if (from > to || !info.hasAudio || !QFileInfo::exists(info.path))
            continue;
        OutputSound sound;
        sound.media = MediaIndex(plan, indexes, *segment.source);
        sound.mediaTime = info.frameRate.FrameToTime(segment.mediaFirst) +
                          rate.FrameToTime(int64_t(from) - segment.first + 1);
        sound.start = rate.FrameToTime(int64_t(from) - first + 1);
        sound.end = rate.FrameToTime(int64_t(to) - first + 2);
        plan.sound.push_back(sound);
    }
}

} // namespace

const FrameData* OutputTrack::DrawingsAt(int index) const
{
    const auto found = drawings.find(index);
    return found == drawings.end() ? nullptr : &found->second;
}

int64_t OutputPlan::Duration() const
{
    return rate.FrameToTime(int64_t(FrameCount()) + 1);
}

OutputPlan MakeOutputPlan(const OutputViewers& viewers, const std::vector<int>& frames, bool withAnnotations,
                          bool withSound)
{
    ProjectTimeline& lead = *viewers.timelines[static_cast<size_t>(viewers.leading)];
    OutputPlan plan;
    MediaIndexes indexes;
    plan.name = lead.GetName();
    plan.rate = lead.Rate();
    plan.frames = frames;
    plan.layout = viewers.layout;
    plan.singleViewer = viewers.leading;
    for (size_t viewer = 0; viewer < plan.tracks.size(); ++viewer)
    {
        ProjectTimeline* const timeline = viewers.timelines[viewer];
        const bool leads = timeline == &lead;
        if (!timeline || (plan.layout == Single && static_cast<int>(viewer) != viewers.leading))
            continue;
        plan.tracks[viewer].places.reserve(frames.size());
        for (const int frame : frames)
        {
            const int shown =
                leads ? frame
                      : timeline->TimeToFrame(lead.FrameToTime(frame) + Settings::ROUNDING_ERROR_EXTRA_TIME);
            AddFrame(plan, indexes, plan.tracks[viewer], *timeline, shown, withAnnotations);
        }
    }
    if (withSound && !frames.empty())
        AddSound(plan, indexes, lead);
    return plan;
}

std::vector<int> FramesBetween(int first, int last)
{
    std::vector<int> frames(static_cast<size_t>(std::max(last - first + 1, 0)));
    std::iota(frames.begin(), frames.end(), first);
    return frames;
}
