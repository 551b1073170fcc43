// SPDX-License-Identifier: MIT
// Which media the viewers' frames are read from, and what is asked of the loader.
#include "playback/PlaybackController.h"

#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "project/MediaSource.h"
#include "project/ProjectTimeline.h"

#include <algorithm>

namespace
{

/// How long before its end the next segment's first frames are asked for, and how much of it, in seconds.
constexpr double PreparedSeconds = 1.5;
/// Copies of a source that one viewer uses.
constexpr int CopiesOfViewer = 2;

} // namespace

void PlaybackController::AssignCopies()
{
    const bool isCompared =
        mViewers[0].timeline && mViewers[1].timeline && mViewers[0].timeline != mViewers[1].timeline;
    std::set<const MediaSource*> ofFirst;
    for (int index = 0; index < ViewerCount; ++index)
    {
        Viewer& viewer = mViewers[index];
        viewer.copies.clear();
        if (!viewer.timeline)
            continue;
        const MediaSource* before = nullptr;
        int copy = 0;
        for (const TimelineSegment& segment : viewer.timeline->Segments())
        {
            const MediaSource* const source = segment.source.get();
            copy = source == before ? 1 - copy : 0;
            before = source;
            const bool isShared = isCompared && index == 1 && ofFirst.count(source) > 0;
            viewer.copies.push_back(isShared ? copy + CopiesOfViewer : copy);
            if (index == 0)
                ofFirst.insert(source);
        }
    }
}

std::map<int, int> PlaybackController::CachedRanges() const
{
    std::map<int, int> ranges;
    const Viewer& lead = mViewers[LeadingViewer()];
    if (!lead.timeline)
        return ranges;
    const std::vector<TimelineSegment>& segments = lead.timeline->Segments();
    const auto open = mLanes.Open();
    for (size_t index = 0; index < segments.size(); ++index)
    {
        const TimelineSegment& segment = segments[index];
        const auto media = open.find({segment.source.get(), lead.copies[index]});
        if (media == open.end())
            continue;
        for (const auto& [first, last] : mLoader->CachedRanges(media->second))
        {
            if (last < segment.mediaFirst || first > segment.mediaLast)
                continue;
            const int start = first <= segment.mediaFirst ? segment.first : segment.FrameOf(first);
            const int end = last >= segment.mediaLast ? segment.Last() : segment.FrameOf(last + 1) - 1;
            if (end < start)
                continue;
            const bool goesOn = !ranges.empty() && ranges.rbegin()->second == start - 1;
            if (goesOn)
                ranges.rbegin()->second = end;
            else
                ranges[start] = end;
        }
    }
    return ranges;
}

PlaybackRange PlaybackController::RangeOf(const Viewer& viewer) const
{
    const auto& lead = LeadingTimeline();
    const auto ownFrame = [&](int leadingFrame)
    {
        return viewer.timeline->TimeToFrame(lead->FrameToTime(leadingFrame) +
                                            Settings::ROUNDING_ERROR_EXTRA_TIME);
    };
    return PlaybackRange{ownFrame(mRange.first), ownFrame(mRange.last)};
}

void PlaybackController::RequestFrames(int direction)
{
    std::set<int> inUse;
    for (const Viewer& viewer : mViewers)
    {
        if (viewer.timeline)
            AddMediaInUse(viewer, direction, &inUse);
    }
    if (inUse != mMediaInUse)
    {
        mMediaInUse = inUse;
        mLanes.KeepInUse(inUse);
    }
    for (int index = 0; index < ViewerCount; ++index)
    {
        if (mViewers[index].timeline)
            RequestFrame(index, direction);
    }
}

int PlaybackController::NeighbourToPrepare(const Viewer& viewer, int index, int direction) const
{
    const std::vector<TimelineSegment>& segments = viewer.timeline->Segments();
    const TimelineSegment& segment = segments[static_cast<size_t>(index)];
    const int left = direction > 0 ? segment.Last() - viewer.wanted : viewer.wanted - segment.first;
    if (left > PreparedSeconds * segment.rate.PerSecond())
        return -1;
    const PlaybackRange range = RangeOf(viewer);
    const int next = direction > 0 ? segment.Last() + 1 : segment.first - 1;
    if (range.Contains(next))
        return SegmentIndex(segments, next);
    if (Settings::loopType != Loop)
        return -1;
    const int round = SegmentIndex(segments, direction > 0 ? range.first : range.last);
    return round == index ? -1 : round;
}

void PlaybackController::AddMediaInUse(const Viewer& viewer, int direction, std::set<int>* inUse)
{
    const std::vector<TimelineSegment>& segments = viewer.timeline->Segments();
    const int index = SegmentIndex(segments, viewer.wanted);
    if (index < 0)
        return;
    for (const int used : {index, NeighbourToPrepare(viewer, index, direction)})
    {
        if (used >= 0 && !segments[static_cast<size_t>(used)].source->IsMissing())
            inUse->insert(MediaOf(viewer, used));
    }
}

int PlaybackController::MediaOf(const Viewer& viewer, int index)
{
    const auto place = static_cast<size_t>(index);
    return mLanes.Use(viewer.timeline->Segments()[place].source, viewer.copies[place]);
}

void PlaybackController::RequestFrame(int viewerIndex, int direction)
{
    const Viewer& viewer = mViewers[viewerIndex];
    const std::vector<TimelineSegment>& segments = viewer.timeline->Segments();
    const int index = SegmentIndex(segments, viewer.wanted);
    if (index < 0 || segments[static_cast<size_t>(index)].source->IsMissing())
    {
        ShowNothing(viewerIndex);
        return;
    }
    const int media = MediaOf(viewer, index);
    if (mLanes.HasFailed(media))
    {
        ShowNothing(viewerIndex);
        return;
    }
    const TimelineSegment& segment = segments[static_cast<size_t>(index)];
    const PlaybackRange range = RangeOf(viewer);
    const bool isWhole = segment.first <= range.first && segment.Last() >= range.last;
    // Ahead of the frame first, so that answers which come at once find everything asked for.
    const int neighbour = NeighbourToPrepare(viewer, index, direction);
    if (neighbour >= 0 && !segments[static_cast<size_t>(neighbour)].source->IsMissing())
        PrepareSegment(viewer, neighbour, direction);
    FrameRequest request;
    request.frame = segment.MediaFrameOf(viewer.wanted);
    request.direction = direction;
    request.isPlaying = mPlaying;
    request.first = segment.MediaFrameOf(std::max(range.first, segment.first));
    request.last = segment.MediaFrameOf(std::min(range.last, segment.Last()));
    request.loops = isWhole && Settings::loopType == Loop;
    mLoader->RequestFrame(media, request);
}

void PlaybackController::ShowNothing(int viewerIndex)
{
    const Viewer& viewer = mViewers[viewerIndex];
    // An empty timeline wants no frame, and takes away what was shown before it.
    if (viewer.shown != viewer.wanted || viewer.wanted == 0)
        Show(viewerIndex, viewer.wanted, ReadResult{ReadStatus::Missing, QImage(), QString()});
}

void PlaybackController::OnOpenFailed(int media, const QString& text)
{
    if (!mLanes.SetFailed(media))
        return;
    Q_EMIT SourceFailed(text);
    RequestFrames(mPosition.direction);
}

void PlaybackController::PrepareSegment(const Viewer& viewer, int index, int direction)
{
    const TimelineSegment& segment = viewer.timeline->Segments()[static_cast<size_t>(index)];
    const PlaybackRange range = RangeOf(viewer);
    FrameRequest request;
    request.first = segment.MediaFrameOf(std::max(range.first, segment.first));
    request.last = segment.MediaFrameOf(std::min(range.last, segment.Last()));
    request.frame = direction > 0 ? request.first : request.last;
    request.direction = direction;
    request.readAhead = static_cast<int>(PreparedSeconds * segment.source->Info().frameRate.PerSecond());
    mLoader->RequestFrame(MediaOf(viewer, index), request);
}

void PlaybackController::Show(int viewer, int frame, const ReadResult& result)
{
    mViewers[viewer].shown = frame;
    if (mPlaying && viewer == LeadingViewer())
        ++mRateFrames;
    Q_EMIT PictureReady(viewer, frame, result);
}

void PlaybackController::OnFrameReady(int media, int frame, const ReadResult& result)
{
    for (int viewerIndex = 0; viewerIndex < ViewerCount; ++viewerIndex)
    {
        const Viewer& viewer = mViewers[viewerIndex];
        const int index = viewer.timeline ? SegmentIndex(viewer.timeline->Segments(), viewer.wanted) : -1;
        if (index < 0)
            continue;
        const auto place = static_cast<size_t>(index);
        const TimelineSegment& segment = viewer.timeline->Segments()[place];
        if (mLanes.Find(segment.source, viewer.copies[place]) != media)
            continue;
        const bool isWanted = segment.MediaFrameOf(viewer.wanted) == frame;
        const int own = isWanted ? viewer.wanted : segment.FrameOf(frame);
        // A frame that was asked for before and comes late still beats none, but not the one that is wanted.
        if (viewer.shown != own && viewer.shown != viewer.wanted)
            Show(viewerIndex, own, result);
    }
}
