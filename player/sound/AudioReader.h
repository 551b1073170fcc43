// SPDX-License-Identifier: MIT
#pragma once

#include "sound/AudioDecoder.h"
#include "sound/AudioSource.h"
#include "sound/StereoResampler.h"

#include <memory>
#include <vector>

/// Reads the sound of a movie at the rate of the device, to the sample.
///
/// Places are found by the file's own times, so that a sound that starts before or after the picture, or has
/// gaps, stands where the file says; what an encoder put before and behind is left out. After a seek decoding
/// and the change of the rate begin before the place and on the same grid, so that the same frames come out
/// as from reading through.
class AudioReader : public AudioSource
{
public:
    /// Opens the medium of @p segment at @p rate frames a second. Returns null on failure, with the reason in
    /// @p error. @p cancel ends any reading early, for good; what comes then is silence.
    static std::unique_ptr<AudioReader> Open(const AudioSegment& segment, int rate, const CancelToken& cancel,
                                             QString* error);

    void Read(int64_t first, int count, float* stereo) override;
    QString Problem() const override { return mDecoder->Problem(); }

private:
    AudioReader(std::unique_ptr<AudioDecoder> decoder, int64_t pictureStart, int rate);

    /// Makes @p first the frame at which mReady begins, or one before it.
    void Restart(int64_t first);
    /// Adds frames to mReady.
    void Produce();
    /// Forgets the frames of mReady before @p first.
    void DropBefore(int64_t first);
    int ReadyFrames() const { return static_cast<int>(mReady.size() / 2 - mReadyOffset); }

    std::unique_ptr<AudioDecoder> mDecoder;
    StereoResampler mResampler;
    int mRate;
    /// Position, for the decoder, of the frame 0 that goes out.
    int64_t mOrigin;
    /// Every mInStep frames in, a frame out falls on one in: the mOutStep-th.
    int64_t mInStep;
    int64_t mOutStep;
    /// Position of the next frame that the resampler gets.
    int64_t mNextIn = 0;
    bool mHasBlock = false;
    bool mIsAtEnd = false;
    /// What is decoded and not read yet; its first frame, after mReadyOffset others, is number mReadyFirst.
    std::vector<float> mReady;
    size_t mReadyOffset = 0;
    int64_t mReadyFirst = 0;
    bool mIsRunning = false;
};
