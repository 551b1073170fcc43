// SPDX-License-Identifier: MIT
#pragma once

#include "playback/PlaybackClock.h"

#include <cstdint>

/// The way that the sound takes through a timeline while playback runs from its start on, loop after loop.
///
/// Places in the timeline are sample frames from its start on. The sound is at each moment within the
/// picture's frame of that moment; where a lap ends and another begins does not drift against the picture.
/// Backwards each frame sounds from its end to its start. Where ping-pong turns round, the frame at the end
/// sounds the way that follows. After the end, and round one single frame, there is silence.
class SoundPath
{
public:
    /// A piece of the way.
    struct Piece
    {
        /// The lowest place of the piece, also where it runs backwards.
        int64_t first = 0;
        int count = 0;
        bool isBackwards = false;
        bool isSilent = false;
    };

    SoundPath() = default;
    /// @p rate: sample frames a second.
    SoundPath(const PlaybackStart& start, int rate);

    /// The next piece, of @p count frames (1 or more) at most.
    Piece Next(int count);

private:
    /// Place of the start of the timeline's frame that comes after @p frames others.
    int64_t PlaceOf(int64_t frames) const;
    /// Makes a run of @p frames frames from @p frame (1-based) on in @p direction the next one.
    void BeginRun(int frame, int64_t frames, int direction);
    void BeginNextRun();

    PlaybackStart mStart;
    int mRate = 1;
    bool mIsOver = true;
    int mDirection = 1;
    /// Frames of the picture before the run and in it.
    int64_t mRunStart = 0;
    int64_t mRunFrames = 0;
    /// Sample frames played since the start, and when the run ends.
    int64_t mPlayed = 0;
    int64_t mRunEnd = 0;
    /// Where the run goes on.
    int64_t mPlace = 0;
};
