// SPDX-License-Identifier: MIT
#include "sound/TimelineSound.h"

#include "host/Logger.h"
#include "sound/SampleTime.h"

#include <algorithm>

namespace
{

/// Media that are kept open, files and decoders.
constexpr size_t MaximumOpened = 8;

} // namespace

void TimelineSound::SetSegments(std::vector<AudioSegment> segments, int rate)
{
    if (rate != mRate)
        mOpened.clear();
    mRate = rate;
    mBlock.clear();
    mSegments.clear();
    for (AudioSegment& segment : segments)
    {
        Placed placed;
        placed.begin = SampleAt(segment.timelineStart, rate);
        placed.end = SampleAt(segment.timelineStart + segment.duration, rate);
        placed.shift = SampleAt(segment.mediaStart, rate) - placed.begin;
        placed.segment = std::move(segment);
        mSegments.push_back(std::move(placed));
    }
}

AudioSource* TimelineSound::SourceOf(const AudioSegment& segment)
{
    for (auto opened = mOpened.begin(); opened != mOpened.end(); ++opened)
    {
        if (opened->path != segment.path || opened->pictureStart != segment.pictureStart)
            continue;
        mOpened.splice(mOpened.begin(), mOpened, opened);
        return mOpened.front().source.get();
    }
    QString error;
    std::unique_ptr<AudioSource> source = mOpener(segment, mRate, &error);
    if (!source)
        Report(segment.path, error);
    mOpened.push_front(Opened{segment.path, segment.pictureStart, std::move(source)});
    if (mOpened.size() > MaximumOpened)
        mOpened.pop_back();
    return mOpened.front().source.get();
}

void TimelineSound::Report(const QString& path, const QString& problem)
{
    if (problem.isEmpty() || mReported.contains(path))
        return;
    mReported.insert(path);
    Logger::GetInstance()->Warning(problem);
}

void TimelineSound::OpenMedia()
{
    for (size_t index = 0; index < std::min(mSegments.size(), MaximumOpened / 2); ++index)
        SourceOf(mSegments[index].segment);
}

void TimelineSound::Read(int64_t first, int count, float* stereo)
{
    std::fill(stereo, stereo + 2 * count, 0.0f);
    for (const Placed& placed : mSegments)
    {
        const int64_t begin = std::max(first, placed.begin);
        const int64_t end = std::min(first + count, placed.end);
        AudioSource* const source = begin < end ? SourceOf(placed.segment) : nullptr;
        if (source == nullptr)
            continue;
        mMixed.resize(2 * static_cast<size_t>(end - begin));
        source->Read(begin + placed.shift, static_cast<int>(end - begin), mMixed.data());
        float* const to = stereo + 2 * (begin - first);
        for (size_t index = 0; index < mMixed.size(); ++index)
            to[index] += mMixed[index];
        Report(placed.segment.path, source->Problem());
    }
}

void TimelineSound::ReadBackwards(int64_t first, int count, float* stereo)
{
    int64_t end = first + count;
    while (end > first)
    {
        const int64_t blockFrames = static_cast<int64_t>(mBlock.size() / 2);
        if (end <= mBlockFirst || end > mBlockFirst + blockFrames)
        {
            // A second at a time, since each read backwards costs a seek.
            mBlock.resize(2 * static_cast<size_t>(mRate));
            mBlockFirst = end - mRate;
            Read(mBlockFirst, mRate, mBlock.data());
            continue;
        }
        const float* const frame = mBlock.data() + 2 * (end - 1 - mBlockFirst);
        *stereo++ = frame[0];
        *stereo++ = frame[1];
        --end;
    }
}
