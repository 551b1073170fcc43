// SPDX-License-Identifier: MIT
#pragma once

#include "sound/AudioSink.h"

#include <deque>
#include <mutex>
#include <vector>

/// A device without a sound, whose time goes on when it is told to: for tests, and for measuring.
class NullSink : public AudioSink
{
public:
    /// Pulls @p rate frames a second in blocks of @p block frames, which are audible @p latency frames later.
    explicit NullSink(int rate, int latency = 0, int block = 512);

    bool Open(SoundFeed* feed, QString* error) override;
    void Close() override;
    int Rate() const override { return mRate; }
    int64_t HeardPosition() const override;

    /// Lets opening fail, with @p reason; an empty one lets it succeed again.
    void SetObstacle(const QString& reason);
    /// How often opening was tried.
    int OpenCount() const;
    bool IsOpen() const;
    /// Lets @p frames frames of the device's time go by. Returns what was audible in that time, left before
    /// right.
    std::vector<float> Advance(int frames);

private:
    struct Stretch
    {
        /// Device time at which the stretch is audible, in frames.
        int64_t time = 0;
        int64_t position = 0;
        int frames = 0;
    };

    mutable std::mutex mMutex;
    SoundFeed* mFeed = nullptr;
    QString mObstacle;
    int mOpenCount = 0;
    int mRate;
    int mBlock;
    int mLatency;
    int64_t mTime = 0;
    int64_t mPulledTime = 0;
    std::deque<Stretch> mStretches;
    /// What is pulled and not audible yet, behind mComingOffset values that were.
    std::vector<float> mComing;
    size_t mComingOffset = 0;
};
