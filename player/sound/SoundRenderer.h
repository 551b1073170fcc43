// SPDX-License-Identifier: MIT
#pragma once

#include "playback/PlaybackClock.h"
#include "sound/AudioSink.h"
#include "sound/SoundFeed.h"
#include "sound/SoundGrains.h"
#include "sound/SoundPath.h"
#include "sound/StereoResampler.h"
#include "sound/TimelineSound.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Makes the sound of playback on a thread of its own and keeps the device fed.
///
/// The device is opened when there is something to play and closed after a while without. Where none can be
/// opened the log says so once. Calls return at once; what is asked last counts.
class SoundRenderer
{
public:
    enum class Threading
    {
        /// A thread of the renderer's own does the work.
        Own,
        /// The caller does it, by Pump().
        ByPump
    };
    enum class State
    {
        /// The sound is being made ready.
        Pending,
        Sounding,
        /// There is no device.
        Failed
    };
    struct Progress
    {
        State state = State::Pending;
        /// Microseconds of the timeline that have been heard.
        int64_t played = 0;
    };

    SoundRenderer(std::unique_ptr<AudioSink> sink, AudioOpener opener, Threading threading);
    ~SoundRenderer();

    /// Plays the sound of @p segments as @p start says. Returns the number of the run, for ProgressOf().
    int Play(std::vector<AudioSegment> segments, const PlaybackStart& start);
    /// Falls silent at once.
    void Stop();
    /// Plays a short piece of @p segments from @p time (microseconds) on.
    void PlayGrain(std::vector<AudioSegment> segments, int64_t time);
    /// Opens the device and the media of @p segments, so that playing can begin at once.
    void Prepare(std::vector<AudioSegment> segments);
    /// Closes a device that has stopped; it is tried again some time later.
    void GiveUpDevice();
    /// How far the run of number @p run has come; Pending for one that another has followed.
    Progress ProgressOf(int run) const;
    /// Sets the level of what is heard: 0 for silence, 1 as recorded, SoundFeed::MaximumGain at most.
    void SetGain(float gain) { mFeed.SetGain(gain); }

    /// Does all the work that there is now; for Threading::ByPump.
    void Pump();

private:
    using Clock = std::chrono::steady_clock;

    enum class Kind
    {
        Nothing,
        Playback,
        Grains
    };
    struct Order
    {
        Kind kind = Kind::Nothing;
        int serial = 0;
        std::vector<AudioSegment> segments;
        PlaybackStart start;
        int64_t time = 0;
    };

    void Give(Order order);
    void Work();
    bool HasNews() const { return mSerial.load() != mCurrent.serial; }
    void TakeOrder();
    bool OpenSink();
    void CloseSink();
    void BeginPlayback();
    void BeginGrain();
    void DoPreparation();
    /// Writes what the device will need next. Returns whether there is more to come.
    bool Feed();
    /// Adds the next sound to mMade; false if there is none.
    bool Make();
    void MakePlayback();
    bool MakeGrains();
    /// Lets the device have what is written, unless something else has been asked for.
    void LetSound();
    void Run();

    std::unique_ptr<AudioSink> mSink;
    SoundFeed mFeed;

    mutable std::mutex mMutex;
    std::condition_variable mNews;
    std::optional<Order> mOrder;
    /// The media that are to be made ready once there is nothing else to do.
    std::optional<std::vector<AudioSegment>> mToPrepare;
    bool mQuits = false;
    bool mGivesUp = false;
    int mLastSerial = 0;
    // How the last order stands.
    State mState = State::Pending;
    int64_t mBase = 0;
    int64_t mPlayedNumerator = 1;
    int64_t mPlayedDenominator = 1;
    /// mLastSerial, readable without the lock.
    std::atomic<int> mSerial{0};

    // Of the working thread alone:
    Order mCurrent;
    TimelineSound mSound;
    bool mIsOpen = false;
    bool mHasToldOfDevice = false;
    std::optional<Clock::time_point> mRetryAt;
    Clock::time_point mLastUse;
    SoundPath mPath;
    StereoResampler mSpeedChanger;
    int mSpeedRate = 0;
    SoundGrains mGrains;
    bool mIsLive = false;
    std::vector<float> mPiece;
    std::vector<float> mMade;
    size_t mMadeOffset = 0;

    std::thread mThread;
};
