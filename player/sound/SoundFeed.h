// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

/// Hands stereo sample frames from the thread that makes them to the one that the sound device calls.
///
/// Frames have positions, which count from 0 and go on for good. What was written can be given up: its
/// positions are passed over. Pulling neither allocates nor locks nor waits. Where the sound breaks off,
/// jumps or begins, a short ramp takes the click out of it.
class SoundFeed
{
public:
    /// Frames between what is made and what is pulled, at most.
    static constexpr int Capacity = 65536;
    /// Frames that the ramp over a break takes.
    static constexpr int RampFrames = 128;
    /// Loudest gain: one and a half times the recorded level.
    static constexpr float MaximumGain = 1.5f;

    /// What a call of Pull() gave.
    struct Pulled
    {
        /// Position of the first frame.
        int64_t position = 0;
        /// How many of the frames are sound; silence follows.
        int frames = 0;
    };

    SoundFeed();

    /// Frames that can be written now. For the writing thread.
    int Room() const;
    /// Frames that are written, not given up and not pulled yet. For the writing thread.
    int Lead() const;
    /// Adds @p frames frames, Room() at most. For the writing thread.
    void Write(const float* stereo, int frames);
    /// Position of the next frame to be written. For the writing thread.
    int64_t WritePosition() const;
    /// Gives up what has been written and not pulled. For the writing thread.
    void Discard();

    /// Lets frames be pulled or holds them back. For any thread.
    void SetRunning(bool running);
    /// Sets the level: 0 for silence, 1 as recorded, clamped to MaximumGain. For any thread.
    void SetGain(float gain);

    /// Fills @p frames frames of @p stereo. For the device's thread.
    Pulled Pull(float* stereo, int frames);

private:
    using Frame = std::array<float, 2>;

    void CopyOut(int64_t position, float* stereo, int frames) const;
    /// Begins a ramp from what was heard last to @p next.
    void BeginRamp(const Frame& next);
    void FinishFrames(float* stereo, int begin, int end);

    std::vector<float> mFrames;
    std::atomic<int64_t> mWritten{0};
    std::atomic<int64_t> mPulled{0};
    std::atomic<int64_t> mDiscarded{0};
    std::atomic<bool> mRunning{false};
    std::atomic<float> mGain{1.0f};
    // Of the pulling thread alone:
    /// Position that continues what was heard last; -1 after silence.
    int64_t mContinuesAt = -1;
    Frame mLast = {};
    Frame mRampStep = {};
    int mRampLeft = 0;
    float mLevel = 1.0f;
};
