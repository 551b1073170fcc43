// SPDX-License-Identifier: MIT
#include "media/FrameLoader.h"

#include "host/Settings.h"
#include "media/LoaderLane.h"

#include <QThread>
#include <QTimer>

#include <algorithm>

namespace
{

constexpr int64_t Megabyte = 1024 * 1024;
// How often the timeline hears of new frames, in milliseconds.
constexpr int CacheChangeInterval = 100;

} // namespace

FrameLoader::FrameLoader(QObject* parent, int workers)
    : QObject(parent)
    , mCache(Settings::cacheSize * Megabyte)
    , mWorkers(workers > 0 ? workers : std::clamp(QThread::idealThreadCount(), 1, 8))
{
    qRegisterMetaType<MediaInfo>("MediaInfo");
    qRegisterMetaType<ReadResult>("ReadResult");
}

FrameLoader::~FrameLoader()
{
    for (const auto& [id, medium] : mMedia)
        medium.lane->Stop();
    // Each lane waits for its threads as it goes.
    mMedia.clear();
    mRetired.clear();
}

void FrameLoader::SetCacheSize(int megabytes)
{
    mCache.SetLimit(megabytes * Megabyte);
    for (const auto& [id, medium] : mMedia)
        medium.lane->Reconsider();
}

void FrameLoader::Open(int mediaID, const QString& path, const MediaOptions& options)
{
    Close(mediaID);
    MediaOptions own = options;
    if (own.sequenceRate == FrameRate())
        own.sequenceRate = FrameRate::FromPerSecond(Settings::globalImageSequenceFrameRate);
    Medium& medium = mMedia[mediaID];
    medium.lane = std::make_shared<LoaderLane>(this, &mCache, mediaID, path, own, mWorkers);
    ShareCache();
    medium.lane->Start();
}

void FrameLoader::Close(int mediaID)
{
    const auto found = mMedia.find(mediaID);
    if (found == mMedia.end())
        return;
    found->second.lane->Stop();
    mRetired.push_back(found->second.lane);
    mMedia.erase(found);
    mCache.Remove(mediaID);
    ShareCache();
}

const MediaInfo* FrameLoader::Info(int mediaID) const
{
    const auto found = mMedia.find(mediaID);
    return found != mMedia.end() && found->second.info ? &*found->second.info : nullptr;
}

void FrameLoader::RequestFrame(int mediaID, const FrameRequest& request)
{
    const auto found = mMedia.find(mediaID);
    if (found == mMedia.end())
        return;
    int frame = request.frame;
    const std::optional<ReadResult> kept = found->second.lane->Request(request, &frame);
    if (!kept)
        return;
    found->second.answered = found->second.lane->Serial();
    Announce(mediaID, frame, *kept);
}

std::optional<ReadResult> FrameLoader::CachedFrame(int mediaID, int frame) const
{
    return mMedia.count(mediaID) != 0 ? mCache.Find(mediaID, frame) : std::nullopt;
}

std::map<int, int> FrameLoader::CachedRanges(int mediaID) const
{
    return mMedia.count(mediaID) != 0 ? mCache.Ranges(mediaID) : std::map<int, int>();
}

FrameLoader::Medium* FrameLoader::MediumOf(const LoaderLane* lane)
{
    const auto found = std::find_if(mMedia.begin(), mMedia.end(),
                                    [&](const auto& entry) { return entry.second.lane.get() == lane; });
    return found != mMedia.end() ? &found->second : nullptr;
}

void FrameLoader::Announce(int mediaID, int frame, const ReadResult& result)
{
    const auto found = mMedia.find(mediaID);
    if (result.status != ReadStatus::Ok && found->second.failed.insert(frame).second)
        Q_EMIT FrameFailed(mediaID, frame, result.text);
    Q_EMIT FrameReady(mediaID, frame, result);
}

void FrameLoader::ShareCache()
{
    const int active = ActiveMedia();
    for (const auto& [id, medium] : mMedia)
        medium.lane->SetShare(active);
}

int FrameLoader::ActiveMedia() const
{
    return int(std::count_if(mMedia.begin(), mMedia.end(),
                             [](const auto& entry) { return !entry.second.isResting; }));
}

void FrameLoader::ShareCacheAmong(const std::set<int>& media)
{
    for (auto& [id, medium] : mMedia)
    {
        const bool rests = media.count(id) == 0;
        if (rests && !medium.isResting)
            medium.lane->Rest();
        medium.isResting = rests;
    }
    ShareCache();
}

void FrameLoader::OnOpened(const LoaderLane* lane, const MediaInfo& info)
{
    Medium* const medium = MediumOf(lane);
    if (medium == nullptr)
        return;
    medium->info = info;
    Q_EMIT MediaOpened(lane->ID(), info);
}

void FrameLoader::OnOpenFailed(const LoaderLane* lane, const QString& text)
{
    if (MediumOf(lane) == nullptr)
        return;
    const int id = lane->ID();
    Close(id);
    Q_EMIT OpenFailed(id, text);
}

void FrameLoader::OnFrame(const LoaderLane* lane, int frame, const ReadResult& result, int serial,
                          bool isLate)
{
    Medium* const medium = MediumOf(lane);
    // A request that came while this was on its way, and was answered from the cache, has the last word.
    if (medium == nullptr || medium->answered > serial || !(isLate || lane->IsWanted(frame)))
        return;
    medium->answered = serial;
    Announce(lane->ID(), frame, result);
}

void FrameLoader::OnCacheChanged(const LoaderLane* lane)
{
    Medium* const medium = MediumOf(lane);
    if (medium == nullptr || medium->cacheChangePending)
        return;
    medium->cacheChangePending = true;
    QTimer::singleShot(CacheChangeInterval, this,
                       [this, lane]
                       {
                           Medium* const changed = MediumOf(lane);
                           if (changed == nullptr)
                               return;
                           changed->cacheChangePending = false;
                           lane->CacheChangeTold();
                           Q_EMIT CacheChanged(lane->ID());
                       });
}

void FrameLoader::OnLaneEnded(const LoaderLane* lane)
{
    mRetired.erase(std::remove_if(mRetired.begin(), mRetired.end(),
                                  [&](const auto& retired) { return retired.get() == lane; }),
                   mRetired.end());
}
