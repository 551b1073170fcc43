// SPDX-License-Identifier: MIT
#include "sound/NullSink.h"

#include "sound/SoundFeed.h"

#include <algorithm>

NullSink::NullSink(int rate, int latency, int block)
    : mRate(rate), mBlock(block), mLatency(latency), mComing(2 * static_cast<size_t>(latency), 0.0f)
{
}

bool NullSink::Open(SoundFeed* feed, QString* error)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mOpenCount;
    if (!mObstacle.isEmpty())
    {
        if (error != nullptr)
            *error = mObstacle;
        return false;
    }
    mFeed = feed;
    return true;
}

void NullSink::Close()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mFeed = nullptr;
}

int64_t NullSink::HeardPosition() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mStretches.empty())
        return 0;
    const Stretch& stretch = mStretches.front();
    return stretch.position + std::clamp<int64_t>(mTime - stretch.time, 0, stretch.frames);
}

void NullSink::SetObstacle(const QString& reason)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mObstacle = reason;
}

int NullSink::OpenCount() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mOpenCount;
}

bool NullSink::IsOpen() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mFeed != nullptr;
}

std::vector<float> NullSink::Advance(int frames)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mTime += frames;
    std::vector<float> block(2 * static_cast<size_t>(mBlock), 0.0f);
    // The device asks for the next block when it begins with the one before.
    while (mPulledTime < mTime)
    {
        SoundFeed::Pulled pulled;
        if (mFeed != nullptr)
            pulled = mFeed->Pull(block.data(), mBlock);
        else
            std::fill(block.begin(), block.end(), 0.0f);
        if (pulled.frames > 0)
            mStretches.push_back({mPulledTime + mLatency, pulled.position, pulled.frames});
        mComing.insert(mComing.end(), block.begin(), block.end());
        mPulledTime += mBlock;
    }
    while (mStretches.size() > 1 && mStretches[1].time <= mTime)
        mStretches.pop_front();
    const auto begin = mComing.begin() + static_cast<std::ptrdiff_t>(mComingOffset);
    std::vector<float> heard(begin, begin + 2 * static_cast<std::ptrdiff_t>(frames));
    mComingOffset += heard.size();
    if (mComingOffset > mComing.size() / 2)
    {
        mComing.erase(mComing.begin(), mComing.begin() + static_cast<std::ptrdiff_t>(mComingOffset));
        mComingOffset = 0;
    }
    return heard;
}
