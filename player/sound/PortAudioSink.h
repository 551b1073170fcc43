// SPDX-License-Identifier: MIT
#pragma once

#include "sound/AudioSink.h"

#include <atomic>

struct PaStreamCallbackTimeInfo;

/// The system's default sound device, through PortAudio.
class PortAudioSink : public AudioSink
{
public:
    PortAudioSink() = default;
    ~PortAudioSink() override;
    PortAudioSink(const PortAudioSink&) = delete;
    PortAudioSink& operator=(const PortAudioSink&) = delete;

    bool Open(SoundFeed* feed, QString* error) override;
    void Close() override;
    int Rate() const override { return mRate; }
    int64_t HeardPosition() const override;

private:
    bool OpenStream(QString* error);
    void Fill(float* stereo, int frames, const PaStreamCallbackTimeInfo* times);

    static int OnCallback(const void* input, void* output, unsigned long frames,
                          const PaStreamCallbackTimeInfo* times, unsigned long flags, void* sink);

    SoundFeed* mFeed = nullptr;
    void* mStream = nullptr;
    bool mIsInitialized = false;
    int mRate = 0;
    /// What the device says of itself, in nanoseconds.
    int64_t mUsualLatency = 0;
    // The block that was pulled last, readable without a lock: mChanges is odd while it is being written.
    std::atomic<uint32_t> mChanges{0};
    std::atomic<int64_t> mBlockPosition{0};
    std::atomic<int64_t> mBlockFrames{0};
    /// When it is audible, on the steady clock in nanoseconds.
    std::atomic<int64_t> mBlockTime{0};
};
