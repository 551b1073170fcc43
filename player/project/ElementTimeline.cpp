// SPDX-License-Identifier: MIT
#include "project/ElementTimeline.h"

#include "project/MediaSource.h"
#include "project/MediaTimeline.h"

#include <algorithm>

ElementObject::ElementObject(std::shared_ptr<MediaTimeline> sourceTimeline, const QUuid& id)
    : ProjectObject(id), mSourceTimeline(std::move(sourceTimeline))
{
}

const std::shared_ptr<MediaTimeline>& ElementObject::SourceTimeline() const
{
    return mSourceTimeline;
}

const QString& ElementObject::OwnName() const
{
    return mOwnName;
}

void ElementObject::SetOwnName(const QString& name)
{
    mOwnName = name;
}

void ElementObject::SetStartTime(int64_t time)
{
    mStartTime = time;
}

const QString& ElementObject::GetName()
{
    return mOwnName.isEmpty() ? mSourceTimeline->GetName() : mOwnName;
}

int ElementObject::GetType()
{
    return 2;
}

bool ElementObject::IsMissing()
{
    return mSourceTimeline->IsMissing();
}

std::weak_ptr<Source> ElementObject::GetSource()
{
    return mSourceTimeline->GetSource();
}

int64_t ElementObject::GetStartTime()
{
    return mStartTime;
}

const ElementTimeline::Elements& ElementTimeline::GetElements() const
{
    return mElements;
}

void ElementTimeline::SetElements(const Elements& elements)
{
    mElements = elements;
    if (!mRate.IsValid() && !mElements.empty())
        mRate = mElements.front()->SourceTimeline()->Rate();
    for (const std::shared_ptr<ElementObject>& element : mElements)
        element->SetParentID(GetID());
    Relayout();
}

void ElementTimeline::Relayout()
{
    const std::vector<TimelineSegment> before = std::move(mSegments);
    mSegments = LayOut();
    for (size_t index = 0; index < mElements.size(); ++index)
        mElements[index]->SetStartTime(FrameToTime(mSegments[index].first));
    FollowElements(before);
}

void ElementTimeline::SetRate(const FrameRate& rate)
{
    mRate = rate;
    mSegments = LayOut();
    for (size_t index = 0; index < mElements.size(); ++index)
        mElements[index]->SetStartTime(FrameToTime(mSegments[index].first));
    RebuildFrameBookmarks();
}

bool ElementTimeline::HasRate() const
{
    return mRate.IsValid();
}

bool ElementTimeline::UsesSourceRanges() const
{
    return mUsesSourceRanges;
}

void ElementTimeline::SetUsesSourceRanges(bool use)
{
    mUsesSourceRanges = use;
    Relayout();
}

const ElementTimeline::Offstage& ElementTimeline::OffstageDrawings() const
{
    return mOffstage;
}

void ElementTimeline::SetOffstageDrawings(const Offstage& drawings)
{
    mOffstage = drawings;
}

FrameRate ElementTimeline::Rate() const
{
    return mRate.IsValid() ? mRate : FrameRate();
}

const std::vector<TimelineSegment>& ElementTimeline::Segments() const
{
    return mSegments;
}

QList<std::shared_ptr<ProjectObject>> ElementTimeline::GetChildren()
{
    QList<std::shared_ptr<ProjectObject>> children;
    children.reserve(static_cast<int>(mElements.size()));
    for (const std::shared_ptr<ElementObject>& element : mElements)
        children.append(element);
    return children;
}

bool ElementTimeline::IsMissing()
{
    return std::any_of(mElements.begin(), mElements.end(),
                       [](const std::shared_ptr<ElementObject>& element) { return element->IsMissing(); });
}

std::vector<TimelineSegment> ElementTimeline::LayOut() const
{
    std::vector<TimelineSegment> segments;
    segments.reserve(mElements.size());
    int first = 1;
    for (const std::shared_ptr<ElementObject>& element : mElements)
    {
        const MediaTimeline& timeline = *element->SourceTimeline();
        const int frames = std::max(timeline.FrameCount(), 1);
        const PlaybackRange range = mUsesSourceRanges ? timeline.Range() : PlaybackRange{1, frames};
        const int count = FramesForMedia(range.last - range.first + 1, timeline.Rate(), Rate());
        segments.push_back(TimelineSegment{first, count, timeline.GetMediaSource(), range.first, range.last,
                                           element->GetID(), Rate()});
        first += count;
    }
    return segments;
}

void ElementTimeline::FollowElements(const std::vector<TimelineSegment>& before)
{
    std::map<QUuid, const TimelineSegment*> after;
    for (const TimelineSegment& segment : mSegments)
        after[segment.element] = &segment;

    const auto segmentBefore = [&](int frame)
    {
        const int index = SegmentIndex(before, frame);
        return index < 0 ? nullptr : &before[static_cast<size_t>(index)];
    };
    // 0 for a frame that is gone with its element or cut off.
    const auto target = [&](int frame)
    {
        const TimelineSegment* const old = segmentBefore(frame);
        const auto found = old ? after.find(old->element) : after.end();
        if (found == after.end())
            return 0;
        const TimelineSegment& segment = *found->second;
        if (old->mediaFirst == segment.mediaFirst && frame - old->first < segment.count)
            return segment.first + frame - old->first;
        const int mediaFrame = old->MediaFrameOf(frame);
        const bool isShown = mediaFrame >= segment.mediaFirst && mediaFrame <= segment.mediaLast;
        return isShown ? segment.FrameOf(mediaFrame) : 0;
    };

    QSet<int> marked;
    for (const int frame : MarkedFrames())
    {
        if (const int place = target(frame))
            marked.insert(place);
    }
    for (const auto& [frame, drawings] : Annotations()->MoveFrames(target))
    {
        const TimelineSegment* const old = segmentBefore(frame);
        if (old && after.count(old->element) > 0)
            mOffstage[{old->element, old->MediaFrameOf(frame)}] = drawings;
    }
    for (auto drawings = mOffstage.begin(); drawings != mOffstage.end();)
    {
        const auto& [element, mediaFrame] = drawings->first;
        const auto found = after.find(element);
        const bool isShown = found != after.end() && mediaFrame >= found->second->mediaFirst &&
                             mediaFrame <= found->second->mediaLast;
        if (isShown)
            Annotations()->SetDrawings(found->second->FrameOf(mediaFrame), drawings->second);
        drawings = isShown || found == after.end() ? mOffstage.erase(drawings) : std::next(drawings);
    }

    const QList<RangeBookmark> ranges = GetBookmarks()->GetRangeBookmarks();
    for (const RangeBookmark& range : ranges)
    {
        GetBookmarks()->RemoveRangeBookmark(range.startTime, range.endTime);
        RangeBookmark moved = range;
        const int first = target(TimelineFrame(range.startTime));
        const int last = target(TimelineFrame(range.endTime));
        if (first == 0 || last < first)
            continue;
        moved.startTime = FrameToTime(first);
        moved.endTime = FrameToTime(last);
        GetBookmarks()->AddRangeBookmark(moved);
    }
    SetMarkedFrames(marked);
}

int ElementTimeline::TimelineFrame(int64_t time) const
{
    return static_cast<int>(Rate().TimeToFrame(time));
}
