// SPDX-License-Identifier: MIT
#pragma once

#include "host/LoopType.h"
#include "media/FrameRate.h"
#include "playback/PlaybackRange.h"

#include <QElapsedTimer>

#include <cstdint>

/// What playback begins with each time that its clock starts.
struct PlaybackStart
{
    FrameRate rate;
    /// The frame that is under the playhead and the way that it is going.
    PlaybackPosition position;
    PlaybackRange range;
    LoopType loopType = NoLoop;
    /// How many times as fast as normal (0.05 to 16).
    float speed = 1.0f;
    /// Each frame is shown, however long that takes.
    bool isStepped = false;
};

/// What playback counts its time by. Used on the GUI thread.
class PlaybackClock
{
public:
    virtual ~PlaybackClock() = default;

    /// Counts anew, from 0 on, for playback that goes as @p start says; also while it is running.
    virtual void Start(const PlaybackStart& start) = 0;
    virtual void Stop() = 0;
    /// How much of the timeline has been played since Start(), in microseconds: real time times the speed,
    /// and on through loops. Never falls; may stand still while what leads is being made ready.
    virtual int64_t Played() = 0;
};

/// The clock of playback without sound: the time that goes by.
class SteadyClock : public PlaybackClock
{
public:
    void Start(const PlaybackStart& start) override { StartAt(start, 0); }
    /// Starts as if @p played microseconds of the timeline had been played already.
    void StartAt(const PlaybackStart& start, int64_t played);
    void Stop() override {}
    int64_t Played() override;

private:
    QElapsedTimer mTimer;
    int64_t mPlayedBefore = 0;
    double mSpeed = 1.0;
};
