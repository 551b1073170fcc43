// SPDX-License-Identifier: MIT
#include "project/ProjectTimeline.h"

#include "project/MediaSource.h"

#include <algorithm>

ProjectTimeline::ProjectTimeline(const QString& name, const QUuid& id, const QUuid& parentID)
    : Timeline(id, parentID), mName(name)
{
}

int ProjectTimeline::FrameCount() const
{
    return Segments().empty() ? 0 : Segments().back().Last();
}

std::shared_ptr<const MediaSource> ProjectTimeline::SourceAt(int frame) const
{
    const int index = SegmentIndex(Segments(), frame);
    return index < 0 ? nullptr : Segments()[static_cast<size_t>(index)].source;
}

void ProjectTimeline::SetName(const QString& name)
{
    mName = name;
}

void ProjectTimeline::SetDefault(bool isDefault)
{
    mDefault = isDefault;
}

void ProjectTimeline::SetViewerIndex(int viewer)
{
    mViewerIndex = viewer;
}

const PanZoom& ProjectTimeline::View() const
{
    return mView;
}

void ProjectTimeline::SetView(const PanZoom& view)
{
    mView = view;
}

const std::shared_ptr<AnnotationStore>& ProjectTimeline::Annotations() const
{
    return mAnnotations;
}

PlaybackRange ProjectTimeline::Range() const
{
    const int count = std::max(FrameCount(), 1);
    if (!HasRange())
        return PlaybackRange{1, count};
    return PlaybackRange{std::min(mRange.first, count), std::min(mRange.last, count)};
}

bool ProjectTimeline::HasRange() const
{
    return mRange.last > 0;
}

void ProjectTimeline::SetRange(const PlaybackRange& range)
{
    const bool isWhole = range.first <= 1 && range.last >= FrameCount();
    mRange = isWhole ? PlaybackRange{1, 0}
                     : PlaybackRange{std::max(range.first, 1), std::max({range.first, range.last, 1})};
}

std::optional<PlaybackRange> ProjectTimeline::RangeAsSet() const
{
    return HasRange() ? std::make_optional(mRange) : std::nullopt;
}

void ProjectTimeline::SetRangeAsSet(const std::optional<PlaybackRange>& range)
{
    mRange = range.value_or(PlaybackRange{1, 0});
}

const QSet<int>& ProjectTimeline::MarkedFrames() const
{
    return mMarkedFrames;
}

void ProjectTimeline::SetMarked(int frame, bool marked)
{
    if (marked)
        mMarkedFrames.insert(frame);
    else
        mMarkedFrames.remove(frame);
    UpdateAnnotationBookmark(frame);
}

void ProjectTimeline::SetMarkedFrames(const QSet<int>& frames)
{
    mMarkedFrames = frames;
    RebuildFrameBookmarks();
}

void ProjectTimeline::ToggleBookmark(int frame)
{
    SetMarked(frame, !mMarkedFrames.contains(frame));
}

void ProjectTimeline::UpdateAnnotationBookmark(int frame)
{
    TimeBookmark bookmark(FrameToTime(frame));
    bookmark.drawings = mAnnotations->Drawings(frame);
    GetBookmarks()->RemoveTimeBookmark(bookmark.time);
    if (mMarkedFrames.contains(frame) || !bookmark.drawings.isEmpty())
        GetBookmarks()->AddTimeBookmark(bookmark);
}

void ProjectTimeline::RebuildFrameBookmarks()
{
    const QList<RangeBookmark> ranges = GetBookmarks()->GetRangeBookmarks();
    GetBookmarks()->Clear();
    for (const RangeBookmark& range : ranges)
        GetBookmarks()->AddRangeBookmark(range);
    QSet<int> frames = mMarkedFrames;
    for (const int frame : mAnnotations->AnnotatedFrames())
        frames.insert(frame);
    QList<int> sorted = frames.values();
    std::sort(sorted.begin(), sorted.end());
    for (const int frame : sorted)
    {
        TimeBookmark bookmark(FrameToTime(frame));
        bookmark.drawings = mAnnotations->Drawings(frame);
        GetBookmarks()->AddTimeBookmark(bookmark);
    }
}

const QString& ProjectTimeline::GetName()
{
    return mName;
}

bool ProjectTimeline::IsDefault()
{
    return mDefault;
}

int ProjectTimeline::GetViewerIndex()
{
    return mViewerIndex;
}

QList<ElementInfo> ProjectTimeline::GetElementInfos()
{
    QList<ElementInfo> infos;
    infos.reserve(static_cast<int>(Segments().size()));
    for (const TimelineSegment& segment : Segments())
        infos.append(ElementInfo{segment.first, segment.count, segment.element});
    return infos;
}

int64_t ProjectTimeline::GetStartTime()
{
    return 0;
}

int64_t ProjectTimeline::GetEndTime()
{
    return FrameToTime(std::max(FrameCount(), 1));
}

int ProjectTimeline::TimeToFrame(int64_t time)
{
    return static_cast<int>(std::clamp<int64_t>(Rate().TimeToFrame(time), 1, std::max(FrameCount(), 1)));
}

int64_t ProjectTimeline::FrameToTime(int frame)
{
    return Rate().FrameToTime(frame);
}
