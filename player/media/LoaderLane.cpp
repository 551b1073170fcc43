// SPDX-License-Identifier: MIT
#include "media/LoaderLane.h"

#include "kit/VectorState.h"

#include <QMetaObject>

#include <algorithm>
#include <utility>

namespace
{

// Decoded frames that may wait for conversion.
constexpr size_t MaximumDecoded = 2;
// Part of the cache that is read ahead; the rest holds what was just played.
constexpr double AheadPart = 0.75;
// A request this many frames on does not cancel work: decoding gets there sooner by going on.
constexpr int NearFrames = 8;
constexpr int NearPlayingFrames = 48;
// While seeks come faster than pictures, one picture is let through this often.
constexpr std::chrono::milliseconds LongestSilence(100);

} // namespace

LoaderLane::LoaderLane(FrameLoader* loader, FrameCache* cache, int mediaID, QString path,
                       const MediaOptions& options, int workers)
    : mLoader(loader)
    , mCache(cache)
    , mID(mediaID)
    , mPath(std::move(path))
    , mOptions(options)
    , mWorkers(workers)
{
    mOptions.cancel = CancelToken();
}

LoaderLane::~LoaderLane()
{
    Stop();
    if (mThread.joinable())
        mThread.join();
}

void LoaderLane::Start()
{
    mThread = std::thread([this] { Run(); });
}

void LoaderLane::Stop()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsStopping = true;
    mToken.Cancel();
    mOptions.cancel.Cancel();
    mWork.notify_all();
    mConversion.notify_all();
}

template<typename Call>
void LoaderLane::Post(Call call) const
{
    // The loader waits for this thread before it goes, and events to it die with it.
    QMetaObject::invokeMethod(mLoader, std::move(call), Qt::QueuedConnection);
}

void LoaderLane::Run()
{
    // Before the decoding library starts threads of its own, which inherit the state.
    VectorState::ClearUpperHalves();
    if (OpenReader())
    {
        std::vector<std::thread> helpers;
        if (mIsParallel)
            for (int i = 1; i < mWorkers; ++i)
                helpers.emplace_back([this] { Decode(false); });
        else
            helpers.emplace_back([this] { Convert(); });
        Decode(!mIsParallel);
        for (std::thread& helper : helpers)
            helper.join();
    }
    Post([loader = mLoader, this] { loader->OnLaneEnded(this); });
}

bool LoaderLane::OpenReader()
{
    QString error;
    std::unique_ptr<MediaReader> reader = OpenMedia(mPath, &error, mOptions);
    if (!reader)
    {
        Post([loader = mLoader, this, error] { loader->OnOpenFailed(this, error); });
        return false;
    }
    const MediaInfo info = reader->Info();
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mReader = std::move(reader);
        mInfo = info;
        mIsParallel = mReader->CanReadInParallel();
        mIsOpen = true;
        ClampRequest();
    }
    Post([loader = mLoader, this, info] { loader->OnOpened(this, info); });
    return true;
}

void LoaderLane::Decode(bool hasConverter)
{
    VectorState::ClearUpperHalves();
    while (true)
    {
        Job job{0, {}, {}};
        {
            std::unique_lock<std::mutex> lock(mMutex);
            mWork.wait(lock, [&] { return mIsStopping || (job.frame = PickFrame()) != 0; });
            if (mIsStopping)
                return;
            mComing.insert(job.frame);
            job.token = mToken;
        }
        job.decoded = mReader->DecodeFrame(job.frame, job.token);
        if (!hasConverter)
        {
            Complete(job.frame, job.decoded.Finish());
            continue;
        }
        std::unique_lock<std::mutex> lock(mMutex);
        mConversion.wait(lock, [&] { return mIsStopping || mDecoded.size() < MaximumDecoded; });
        mDecoded.push_back(std::move(job));
        mConversion.notify_all();
    }
}

void LoaderLane::Convert()
{
    VectorState::ClearUpperHalves();
    while (true)
    {
        Job job{0, {}, {}};
        {
            std::unique_lock<std::mutex> lock(mMutex);
            mConversion.wait(lock, [&] { return mIsStopping || !mDecoded.empty(); });
            if (mIsStopping)
                return;
            job = std::move(mDecoded.front());
            mDecoded.pop_front();
            mConversion.notify_all();
        }
        ReadResult result = job.decoded.Finish();
        if (result.status == ReadStatus::Ok && result.image.isNull())
        {
            result.status = ReadStatus::Broken;
            result.text = QStringLiteral("%1: frame %2 can't be shown: its pixels can't be converted")
                              .arg(mPath)
                              .arg(job.frame);
        }
        Complete(job.frame, result);
    }
}

void LoaderLane::Complete(int frame, const ReadResult& result)
{
    const bool wasRead = result.status != ReadStatus::Cancelled;
    bool isStopping = false;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        isStopping = mIsStopping;
    }
    // A medium that is closed has no place in the cache any more.
    const bool isKept = wasRead && !isStopping && mCache->Insert(mID, frame, result);
    bool isDelivered = false;
    bool isLate = false;
    int serial = 0;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mIsStopping)
        {
            if (isKept)
                mCache->Remove(mID);
            return;
        }
        mComing.erase(frame);
        if (wasRead && mRequest)
        {
            const bool isWanted = frame == mRequest->frame;
            isLate = !isWanted && (frame == mGraceFrame || IsProgress(frame));
            isDelivered = isLate || (isWanted && !mIsAnswered);
            mIsAnswered = mIsAnswered || isWanted;
            mIsFull = mIsFull || (!isKept && !isWanted);
        }
        if (frame == mGraceFrame)
            mGraceFrame = 0;
        if (isDelivered)
        {
            mLastFrame = frame;
            mLastTime = std::chrono::steady_clock::now();
        }
        serial = mSerial;
        mWork.notify_all();
    }
    if (isDelivered)
        Post([loader = mLoader, this, frame, result, serial, isLate]
             { loader->OnFrame(this, frame, result, serial, isLate); });
    if (isKept && !mCacheChangePosted.exchange(true))
        Post([loader = mLoader, this] { loader->OnCacheChanged(this); });
}

bool LoaderLane::IsProgress(int frame) const
{
    if (!mRequest->isPlaying || mIsAnswered)
        return false;
    return mRequest->direction > 0 ? frame > mLastFrame && frame < mRequest->frame
                                   : frame < mLastFrame && frame > mRequest->frame;
}

void LoaderLane::ClampRequest()
{
    if (!mRequest || !mIsOpen)
        return;
    FrameRequest& request = *mRequest;
    request.frame = std::clamp(request.frame, 1, mInfo.frameCount);
    request.direction = request.direction < 0 ? -1 : 1;
    request.first = std::clamp(request.first, 1, mInfo.frameCount);
    if (request.last <= 0 || request.last > mInfo.frameCount)
        request.last = mInfo.frameCount;
    // A playhead outside the range reads on to the medium's ends.
    if (request.frame < request.first || request.frame > request.last || request.last < request.first)
    {
        request.first = 1;
        request.last = mInfo.frameCount;
        request.loops = false;
    }
    mCache->SetPlayhead(mID, {request.frame, request.direction, request.first, request.last, request.loops});
}

std::optional<ReadResult> LoaderLane::Request(const FrameRequest& request, int* frame)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mSerial;
    if (!mIsOpen)
    {
        mRequest = request;
        mIsAnswered = false;
        return std::nullopt;
    }
    const std::optional<FrameRequest> previous = std::exchange(mRequest, request);
    ClampRequest();
    *frame = mRequest->frame;
    const bool wasAnswered = std::exchange(mIsAnswered, false);
    mIsFull = false;
    const std::optional<ReadResult> kept = mCache->Find(mID, mRequest->frame);
    if (kept)
    {
        mIsAnswered = true;
        mLastFrame = mRequest->frame;
        mLastTime = std::chrono::steady_clock::now();
    }
    else if (mComing.count(mRequest->frame) == 0 && !LeadsTo(*mRequest))
    {
        mGroup.clear();
        const bool isUnderWay = previous && !wasAnswered && mComing.count(previous->frame) != 0;
        const bool wasLongSilent = std::chrono::steady_clock::now() - mLastTime > LongestSilence;
        if (isUnderWay && wasLongSilent)
        {
            mGraceFrame = previous->frame;
        }
        else if (mGraceFrame == 0)
        {
            mToken.Cancel();
            mToken = CancelToken();
        }
    }
    if (previous && previous->direction != mRequest->direction)
        mGroup.clear();
    mWork.notify_all();
    return kept;
}

bool LoaderLane::LeadsTo(const FrameRequest& request) const
{
    if (std::find(mGroup.begin(), mGroup.end(), request.frame) != mGroup.end())
        return true;
    if (mIsParallel || request.direction < 0)
        return false;
    const int reach = request.isPlaying ? NearPlayingFrames : NearFrames;
    return std::any_of(mComing.begin(), mComing.end(),
                       [&](int frame) { return frame < request.frame && request.frame - frame <= reach; });
}

int LoaderLane::Serial() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mSerial;
}

bool LoaderLane::IsWanted(int frame) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mRequest && mRequest->frame == frame;
}

void LoaderLane::Reconsider()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsFull = false;
    mWork.notify_all();
}

void LoaderLane::Rest()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mRequest.reset();
    mGroup.clear();
    mGraceFrame = 0;
    mToken.Cancel();
    mToken = CancelToken();
    mCache->ClearPlayhead(mID);
}

void LoaderLane::SetShare(int media)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mShare = std::max(media, 1);
    mIsFull = false;
    mWork.notify_all();
}

int LoaderLane::Window() const
{
    const double frameBytes = std::max(double(mInfo.width) * mInfo.height * 4.0, 1024.0);
    const double frames = double(mCache->Limit()) * AheadPart / frameBytes / mShare;
    const int window = int(std::clamp(frames, 0.0, 1e6));
    return mRequest->readAhead >= 0 ? std::min(window, mRequest->readAhead) : window;
}

bool LoaderLane::IsKeptOrComing(int frame) const
{
    return mComing.count(frame) != 0 || mCache->Contains(mID, frame);
}

int LoaderLane::PickFrame()
{
    if (!mIsOpen || !mRequest)
        return 0;
    const bool isDue = !mIsAnswered && !IsKeptOrComing(mRequest->frame);
    if (mRequest->direction < 0 && !mIsParallel)
        return PickBackwards();
    if (isDue)
        return mRequest->frame;
    return mIsFull ? 0 : PickAhead();
}

int LoaderLane::PickAhead() const
{
    const FrameRequest& request = *mRequest;
    const int step = request.direction;
    const int window = std::min(Window(), request.last - request.first);
    int frame = request.frame;
    for (int count = 0; count < window;)
    {
        frame += step;
        if (frame < request.first || frame > request.last)
        {
            if (!request.loops)
                return 0;
            frame = step > 0 ? request.first : request.last;
        }
        if (mComing.count(frame) != 0)
        {
            ++count;
            continue;
        }
        const auto [first, last] = mCache->Range(mID, frame);
        if (last < first)
            return frame;
        const int end = step > 0 ? std::min(last, request.last) : std::max(first, request.first);
        count += std::abs(end - frame) + 1;
        frame = end;
    }
    return 0;
}

int LoaderLane::PickBackwards()
{
    while (!mGroup.empty())
    {
        const int frame = mGroup.front();
        mGroup.pop_front();
        if (!IsKeptOrComing(frame))
            return frame;
    }
    // Decoding runs forwards, so a whole group, or the end of one that the cache has no room for, is decoded
    // at once and shown in reverse.
    const bool isDue = !mIsAnswered && !IsKeptOrComing(mRequest->frame);
    const int last = isDue ? mRequest->frame : mIsFull ? 0 : PickAhead();
    if (last == 0)
        return 0;
    const int room = std::max(Window() / 2, 1);
    const int bottom = last <= mRequest->frame ? std::max(mRequest->first, last - room + 1) : last - room + 1;
    for (int frame = std::max({mReader->GroupStart(last), bottom, 1}); frame <= last; ++frame)
        mGroup.push_back(frame);
    return PickBackwards();
}
