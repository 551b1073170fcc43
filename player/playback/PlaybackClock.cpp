// SPDX-License-Identifier: MIT
#include "playback/PlaybackClock.h"

namespace
{

constexpr double MicrosecondsPerNanosecond = 1e-3;

} // namespace

void SteadyClock::StartAt(const PlaybackStart& start, int64_t played)
{
    mSpeed = static_cast<double>(start.speed);
    mPlayedBefore = played;
    mTimer.start();
}

int64_t SteadyClock::Played()
{
    if (!mTimer.isValid())
        return mPlayedBefore;
    const double elapsed = static_cast<double>(mTimer.nsecsElapsed()) * MicrosecondsPerNanosecond;
    return mPlayedBefore + static_cast<int64_t>(elapsed * mSpeed);
}
