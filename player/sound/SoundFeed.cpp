// SPDX-License-Identifier: MIT
#include "sound/SoundFeed.h"

#include <algorithm>
#include <cmath>

namespace
{

/// How much the level changes from one frame to the next, so that volume moves without steps.
constexpr float LevelStep = 1.0f / 480.0f;

static_assert(std::atomic<int64_t>::is_always_lock_free, "the device's thread must not wait");
static_assert(std::atomic<float>::is_always_lock_free, "the device's thread must not wait");

} // namespace

SoundFeed::SoundFeed() : mFrames(2 * size_t(Capacity)) {}

int SoundFeed::Room() const
{
    return Capacity - static_cast<int>(mWritten.load(std::memory_order_relaxed) -
                                       mPulled.load(std::memory_order_acquire));
}

int SoundFeed::Lead() const
{
    const int64_t begin =
        std::max(mPulled.load(std::memory_order_acquire), mDiscarded.load(std::memory_order_relaxed));
    return static_cast<int>(mWritten.load(std::memory_order_relaxed) - begin);
}

void SoundFeed::Write(const float* stereo, int frames)
{
    const int64_t position = mWritten.load(std::memory_order_relaxed);
    const int begin = static_cast<int>(position % Capacity);
    const int first = std::min(frames, Capacity - begin);
    std::copy(stereo, stereo + 2 * first, mFrames.data() + 2 * begin);
    std::copy(stereo + 2 * first, stereo + 2 * frames, mFrames.data());
    mWritten.store(position + frames, std::memory_order_release);
}

int64_t SoundFeed::WritePosition() const
{
    return mWritten.load(std::memory_order_relaxed);
}

void SoundFeed::Discard()
{
    mDiscarded.store(mWritten.load(std::memory_order_relaxed), std::memory_order_release);
}

void SoundFeed::SetRunning(bool running)
{
    mRunning.store(running, std::memory_order_release);
}

void SoundFeed::SetGain(float gain)
{
    // A gain that is no number is silence.
    mGain.store(gain >= 0.0f ? std::min(gain, MaximumGain) : 0.0f, std::memory_order_relaxed);
}

void SoundFeed::CopyOut(int64_t position, float* stereo, int frames) const
{
    const int begin = static_cast<int>(position % Capacity);
    const int first = std::min(frames, Capacity - begin);
    std::copy(mFrames.data() + 2 * begin, mFrames.data() + 2 * (begin + first), stereo);
    std::copy(mFrames.data(), mFrames.data() + 2 * (frames - first), stereo + 2 * first);
}

void SoundFeed::BeginRamp(const Frame& next)
{
    for (size_t side = 0; side < 2; ++side)
    {
        const float to = std::isnan(next[side]) ? 0.0f : std::clamp(next[side], -1.0f, 1.0f);
        mRampStep[side] = (mLast[side] - to) / static_cast<float>(RampFrames);
    }
    mRampLeft = RampFrames;
}

void SoundFeed::FinishFrames(float* stereo, int begin, int end)
{
    const float wanted = mGain.load(std::memory_order_relaxed);
    for (int i = begin; i < end; ++i)
    {
        mLevel += std::clamp(wanted - mLevel, -LevelStep, LevelStep);
        for (size_t side = 0; side < 2; ++side)
        {
            float& sample = stereo[2 * size_t(i) + side];
            sample = sample * mLevel;
            if (mRampLeft > 0)
                sample += mRampStep[side] * static_cast<float>(mRampLeft);
            // A sample that is no number, as a damaged file may have it, is silence.
            sample = std::isnan(sample) ? 0.0f : std::clamp(sample, -1.0f, 1.0f);
            mLast[side] = sample;
        }
        mRampLeft -= mRampLeft > 0 ? 1 : 0;
    }
}

SoundFeed::Pulled SoundFeed::Pull(float* stereo, int frames)
{
    Pulled pulled;
    const int64_t before = mPulled.load(std::memory_order_relaxed);
    if (mRunning.load(std::memory_order_acquire))
    {
        pulled.position = std::max(before, mDiscarded.load(std::memory_order_acquire));
        const int64_t available = mWritten.load(std::memory_order_acquire) - pulled.position;
        pulled.frames = static_cast<int>(std::min<int64_t>(available, frames));
        CopyOut(pulled.position, stereo, pulled.frames);
        mPulled.store(pulled.position + pulled.frames, std::memory_order_release);
    }
    else
    {
        // What is given up makes room also while nothing is heard.
        pulled.position = std::max(before, mDiscarded.load(std::memory_order_acquire));
        mPulled.store(pulled.position, std::memory_order_release);
    }
    std::fill(stereo + 2 * pulled.frames, stereo + 2 * frames, 0.0f);
    if (pulled.frames > 0 && pulled.position != mContinuesAt)
        BeginRamp({stereo[0] * mLevel, stereo[1] * mLevel});
    FinishFrames(stereo, 0, pulled.frames);
    if (pulled.frames < frames)
    {
        if (pulled.frames > 0 || mContinuesAt >= 0)
            BeginRamp({0.0f, 0.0f});
        FinishFrames(stereo, pulled.frames, frames);
    }
    mContinuesAt = pulled.frames == frames ? pulled.position + frames : -1;
    return pulled;
}
