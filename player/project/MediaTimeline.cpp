// SPDX-License-Identifier: MIT
#include "project/MediaTimeline.h"

#include <QFileInfo>

#include <algorithm>

MediaTimeline::MediaTimeline(const MediaInfo& info)
    : mInfo(info)
    , mName(QFileInfo(info.path).fileName())
    , mSource(std::make_shared<Source>(QUuid::createUuid(), info.path))
{
    mElement.id = QUuid::createUuid();
    mElement.frameCount = info.frameCount;
    mRange.last = info.frameCount;
}

const MediaInfo& MediaTimeline::Info() const
{
    return mInfo;
}

const std::shared_ptr<AnnotationStore>& MediaTimeline::Annotations() const
{
    return mAnnotations;
}

const PlaybackRange& MediaTimeline::Range() const
{
    return mRange;
}

void MediaTimeline::SetRange(const PlaybackRange& range)
{
    mRange = range;
}

const QString& MediaTimeline::GetName()
{
    return mName;
}

bool MediaTimeline::IsSourceTimeline()
{
    return true;
}

int MediaTimeline::GetViewerIndex()
{
    return mViewerIndex;
}

void MediaTimeline::ToggleBookmark(int frame)
{
    if (!mMarkedFrames.remove(frame))
        mMarkedFrames.insert(frame);
    UpdateAnnotationBookmark(frame);
}

void MediaTimeline::UpdateAnnotationBookmark(int frame)
{
    TimeBookmark bookmark(FrameToTime(frame));
    bookmark.drawings = mAnnotations->Drawings(frame);
    GetBookmarks()->RemoveTimeBookmark(bookmark.time);
    if (mMarkedFrames.contains(frame) || !bookmark.drawings.isEmpty())
        GetBookmarks()->AddTimeBookmark(bookmark);
}

int MediaTimeline::NextBookmarkedFrame(int frame, int direction)
{
    int nearest = 0;
    const auto consider = [&](int64_t time)
    {
        const int candidate = TimeToFrame(time);
        const int distance = (candidate - frame) * direction;
        if (distance > 0 && (nearest == 0 || distance < (nearest - frame) * direction))
            nearest = candidate;
    };
    for (const TimeBookmark& bookmark : GetBookmarks()->GetTimeBookmarks())
        consider(bookmark.time);
    for (const RangeBookmark& bookmark : GetBookmarks()->GetRangeBookmarks())
    {
        consider(bookmark.startTime);
        consider(bookmark.endTime);
    }
    return nearest;
}

void MediaTimeline::SetViewerIndex(int viewer)
{
    mViewerIndex = viewer;
}

std::weak_ptr<Source> MediaTimeline::GetSource()
{
    return mSource;
}

QList<ElementInfo> MediaTimeline::GetElementInfos()
{
    return {mElement};
}

int64_t MediaTimeline::GetStartTime()
{
    return 0;
}

int64_t MediaTimeline::GetEndTime()
{
    return FrameToTime(mInfo.frameCount);
}

int MediaTimeline::TimeToFrame(int64_t time)
{
    const int64_t frame = mInfo.frameRate.TimeToFrame(time);
    return static_cast<int>(std::min<int64_t>(std::max<int64_t>(frame, 1), mInfo.frameCount));
}

int64_t MediaTimeline::FrameToTime(int frame)
{
    return mInfo.frameRate.FrameToTime(frame);
}
