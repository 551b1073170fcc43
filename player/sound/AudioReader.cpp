// SPDX-License-Identifier: MIT
#include "sound/AudioReader.h"

#include "sound/SampleTime.h"

#include <algorithm>
#include <numeric>

namespace
{

/// Frames of silence that go in at a time where there is no sound.
constexpr int SilentBlock = 4096;
/// Rather than seeking, this part of a second is read and left out.
constexpr int SkipsPerSecond = 4;

int64_t FloorDivide(int64_t value, int64_t divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

} // namespace

AudioReader::AudioReader(std::unique_ptr<AudioDecoder> decoder, int64_t pictureStart, int rate)
    : mDecoder(std::move(decoder))
    , mRate(rate)
    , mOrigin(SampleAt(pictureStart, mDecoder->Rate()))
    , mInStep(mDecoder->Rate() / std::gcd(mDecoder->Rate(), rate))
    , mOutStep(rate / std::gcd(mDecoder->Rate(), rate))
{
}

std::unique_ptr<AudioReader> AudioReader::Open(const AudioSegment& segment, int rate,
                                               const CancelToken& cancel, QString* error)
{
    std::unique_ptr<AudioDecoder> decoder = AudioDecoder::Open(segment.path, cancel, error);
    if (!decoder)
        return nullptr;
    std::unique_ptr<AudioReader> reader(new AudioReader(std::move(decoder), segment.pictureStart, rate));
    if (reader->mResampler.Start(reader->mDecoder->Rate(), rate))
        return reader;
    if (error != nullptr)
        *error = QStringLiteral("%1: its sound can't be brought from %2 to %3 Hz")
                     .arg(segment.path)
                     .arg(reader->mDecoder->Rate())
                     .arg(rate);
    return nullptr;
}

void AudioReader::Restart(int64_t first)
{
    const int inRate = mDecoder->Rate();
    const int64_t wanted = mOrigin + FloorDivide(first, mOutStep) * mInStep;
    const int64_t settled = wanted - StereoResampler::SettlingFrames(inRate, mRate);
    const int64_t steps = FloorDivide(settled - mOrigin, mInStep);
    mNextIn = mOrigin + steps * mInStep;
    mReady.clear();
    mReadyOffset = 0;
    mReadyFirst = steps * mOutStep;
    mResampler.Start(inRate, mRate);
    mDecoder->Seek(mNextIn);
    mHasBlock = false;
    mIsAtEnd = false;
    mIsRunning = true;
}

void AudioReader::Produce()
{
    static const std::vector<float> silence(2 * size_t(SilentBlock), 0.0f);
    if (!mHasBlock && !mIsAtEnd)
    {
        mHasBlock = mDecoder->Next();
        mIsAtEnd = !mHasBlock;
    }
    const int64_t gap = mIsAtEnd ? SilentBlock : mDecoder->Position() - mNextIn;
    if (gap > 0)
    {
        const int count = static_cast<int>(std::min<int64_t>(gap, SilentBlock));
        mResampler.Push(silence.data(), count, &mReady);
        mNextIn += count;
        return;
    }
    const int64_t left = mDecoder->BlockFrames() + gap;
    if (left > 0)
    {
        mResampler.Push(mDecoder->Block().data() - 2 * gap, static_cast<int>(left), &mReady);
        mNextIn += left;
    }
    mHasBlock = false;
}

void AudioReader::DropBefore(int64_t first)
{
    const int64_t count = std::min<int64_t>(first - mReadyFirst, ReadyFrames());
    if (count <= 0)
        return;
    mReadyFirst += count;
    mReadyOffset += static_cast<size_t>(count);
    if (ReadyFrames() > 0)
        return;
    mReady.clear();
    mReadyOffset = 0;
}

void AudioReader::Read(int64_t first, int count, float* stereo)
{
    const bool isAhead =
        first >= mReadyFirst && first - mReadyFirst <= ReadyFrames() + mRate / SkipsPerSecond;
    if (!mIsRunning || !isAhead)
        Restart(first);
    while (count > 0)
    {
        DropBefore(first);
        const int here = mReadyFirst == first ? std::min(ReadyFrames(), count) : 0;
        if (here == 0)
        {
            Produce();
            continue;
        }
        const float* const from = mReady.data() + 2 * mReadyOffset;
        std::copy(from, from + 2 * here, stereo);
        stereo += 2 * here;
        first += here;
        count -= here;
        DropBefore(first);
    }
}
