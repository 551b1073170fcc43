// SPDX-License-Identifier: MIT
#include "sound/SoundPath.h"

extern "C"
{
#include <libavutil/mathematics.h>
}

#include <algorithm>

SoundPath::SoundPath(const PlaybackStart& start, int rate) : mStart(start), mRate(rate)
{
    if (!mStart.rate.IsValid())
        mStart.rate = FrameRate();
    const PlaybackRange& range = mStart.range;
    const int direction = mStart.position.direction < 0 ? -1 : 1;
    const int frame = range.Clamp(mStart.position.frame);
    const bool isSingle = range.first == range.last;
    if (isSingle && mStart.loopType != NoLoop)
        return;
    const int64_t left = direction > 0 ? int64_t(range.last) - frame : int64_t(frame) - range.first;
    mIsOver = false;
    mDirection = direction;
    // A lap of ping-pong ends before the frame at which it turns round.
    if (mStart.loopType == PingPong && left == 0)
        BeginNextRun();
    else
        BeginRun(frame, mStart.loopType == PingPong ? left : left + 1, direction);
}

int64_t SoundPath::PlaceOf(int64_t frames) const
{
    return av_rescale(frames, int64_t(mStart.rate.denominator) * mRate, mStart.rate.numerator);
}

void SoundPath::BeginRun(int frame, int64_t frames, int direction)
{
    mRunStart += mRunFrames;
    mRunFrames = frames;
    mDirection = direction;
    mRunEnd = PlaceOf(mRunStart + mRunFrames);
    mPlace = PlaceOf(direction > 0 ? int64_t(frame) - 1 : frame);
}

void SoundPath::BeginNextRun()
{
    const PlaybackRange& range = mStart.range;
    const int64_t length = int64_t(range.last) - range.first + 1;
    if (mStart.loopType == NoLoop)
        mIsOver = true;
    else if (mStart.loopType == Loop)
        BeginRun(mDirection > 0 ? range.first : range.last, length, mDirection);
    else
        BeginRun(mDirection > 0 ? range.last : range.first, length - 1, -mDirection);
}

SoundPath::Piece SoundPath::Next(int count)
{
    // A run can be shorter than a sample frame where the picture's rate is beyond the sound's.
    for (int run = 0; !mIsOver && mPlayed >= mRunEnd && run < mRate; ++run)
        BeginNextRun();
    if (mIsOver)
        return Piece{0, count, false, true};
    Piece piece;
    piece.count = static_cast<int>(std::clamp<int64_t>(mRunEnd - mPlayed, 1, count));
    piece.isBackwards = mDirection < 0;
    piece.first = piece.isBackwards ? mPlace - piece.count : mPlace;
    mPlace += mDirection * piece.count;
    mPlayed += piece.count;
    return piece;
}
