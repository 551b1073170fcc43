// SPDX-License-Identifier: MIT
#include "project/MediaTimeline.h"

#include "project/MediaSource.h"

#include <QFileInfo>

#include <algorithm>

MediaTimeline::MediaTimeline(std::shared_ptr<const MediaSource> source, const QUuid& id,
                             const QUuid& parentID)
    : ProjectTimeline(QFileInfo(source->GetPath()).fileName(), id, parentID)
{
    SetMediaSource(std::move(source));
}

const std::shared_ptr<const MediaSource>& MediaTimeline::GetMediaSource() const
{
    return mSource;
}

void MediaTimeline::SetMediaSource(std::shared_ptr<const MediaSource> source)
{
    mSource = std::move(source);
    const int count = std::max(Info().frameCount, 1);
    mSegments = {TimelineSegment{1, count, mSource, 1, count, mElementID, Info().frameRate}};
    // Bookmarks stand at times, which another rate moves.
    RebuildFrameBookmarks();
}

const MediaInfo& MediaTimeline::Info() const
{
    return mSource->Info();
}

FrameRate MediaTimeline::Rate() const
{
    return Info().frameRate;
}

const std::vector<TimelineSegment>& MediaTimeline::Segments() const
{
    return mSegments;
}

bool MediaTimeline::IsMissing()
{
    return mSource->IsMissing();
}

bool MediaTimeline::IsSourceTimeline()
{
    return true;
}

std::weak_ptr<Source> MediaTimeline::GetSource()
{
    // The widgets take sources that may change; they only read them.
    return std::const_pointer_cast<MediaSource>(mSource);
}
