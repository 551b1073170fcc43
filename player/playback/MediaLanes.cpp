// SPDX-License-Identifier: MIT
#include "playback/MediaLanes.h"

#include "media/FrameLoader.h"
#include "project/MediaSource.h"

#include <algorithm>

namespace
{

/// Above the numbers under which media are opened to be looked at first.
constexpr int FirstOwnMedia = 1 << 24;

} // namespace

MediaLanes::MediaLanes(FrameLoader* loader) : mLoader(loader), mNextMedia(FirstOwnMedia) {}

void MediaLanes::SetPictureFormat(QImage::Format format)
{
    mPictureFormat = format;
}

void MediaLanes::Adopt(const std::shared_ptr<const MediaSource>& source, int media)
{
    if (Find(source, 0) < 0 && mLoader->Info(media) != nullptr)
        mLanes.push_back(Lane{source, 0, media, false});
}

void MediaLanes::TakeOver(const std::shared_ptr<const MediaSource>& source, int media)
{
    if (source)
        Adopt(source, media);
    if (!source || Find(source, 0) != media)
        mLoader->Close(media);
}

int MediaLanes::Use(const std::shared_ptr<const MediaSource>& source, int copy)
{
    const auto found =
        std::find_if(mLanes.begin(), mLanes.end(),
                     [&](const Lane& lane) { return lane.copy == copy && lane.source.lock() == source; });
    if (found != mLanes.end())
    {
        std::rotate(found, found + 1, mLanes.end());
        return mLanes.back().media;
    }
    MediaOptions options;
    options.pictureFormat = mPictureFormat;
    options.sequenceRate = source->Info().frameRate;
    const int media = mNextMedia++;
    mLanes.push_back(Lane{source, copy, media, false});
    mLoader->Open(media, source->GetPath(), options);
    return media;
}

int MediaLanes::Find(const std::shared_ptr<const MediaSource>& source, int copy) const
{
    const auto found =
        std::find_if(mLanes.begin(), mLanes.end(),
                     [&](const Lane& lane) { return lane.copy == copy && lane.source.lock() == source; });
    return found == mLanes.end() ? -1 : found->media;
}

std::map<std::pair<const MediaSource*, int>, int> MediaLanes::Open() const
{
    std::map<std::pair<const MediaSource*, int>, int> open;
    for (const Lane& lane : mLanes)
    {
        if (const std::shared_ptr<const MediaSource> source = lane.source.lock())
            open[{source.get(), lane.copy}] = lane.media;
    }
    return open;
}

bool MediaLanes::SetFailed(int media)
{
    for (Lane& lane : mLanes)
    {
        if (lane.media == media)
        {
            lane.hasFailed = true;
            return true;
        }
    }
    return false;
}

bool MediaLanes::HasFailed(const MediaSource& source) const
{
    return std::any_of(mLanes.begin(), mLanes.end(),
                       [&](const Lane& lane)
                       { return lane.hasFailed && lane.source.lock().get() == &source; });
}

bool MediaLanes::HasFailed(int media) const
{
    return std::any_of(mLanes.begin(), mLanes.end(),
                       [&](const Lane& lane) { return lane.media == media && lane.hasFailed; });
}

void MediaLanes::Close(const Lane& lane)
{
    mLoader->Close(lane.media);
}

void MediaLanes::Forget(const MediaSource& source)
{
    const auto isSame = [&](const Lane& lane)
    {
        const std::shared_ptr<const MediaSource> own = lane.source.lock();
        return own && own->GetID() == source.GetID();
    };
    for (const Lane& lane : mLanes)
    {
        if (isSame(lane))
            Close(lane);
    }
    mLanes.erase(std::remove_if(mLanes.begin(), mLanes.end(), isSame), mLanes.end());
}

void MediaLanes::KeepInUse(const std::set<int>& media)
{
    mLoader->ShareCacheAmong(media);
    size_t idle = 0;
    for (auto lane = mLanes.rbegin(); lane != mLanes.rend(); ++lane)
    {
        const bool isInUse = media.count(lane->media) > 0;
        if (!isInUse && (lane->source.expired() || ++idle > IdleLimit))
        {
            Close(*lane);
            lane->media = -1;
        }
    }
    mLanes.erase(
        std::remove_if(mLanes.begin(), mLanes.end(), [](const Lane& lane) { return lane.media < 0; }),
        mLanes.end());
}
