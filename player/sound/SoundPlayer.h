// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"
#include "playback/PlaybackClock.h"
#include "sound/AudioSegment.h"
#include "sound/SoundRenderer.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

class PlaybackController;

/// Plays the sound of the timeline that leads, and is the clock that the picture follows meanwhile.
///
/// Sound goes with the speed, higher or lower, and backwards where playback does. Stepped playback is silent.
/// Without a device, and where the timeline has no sound, time goes by steadily instead. A device that stops
/// while it plays is left alone after a moment, and the picture goes on without it.
class SoundPlayer : public QObject, public PlaybackClock
{
    Q_OBJECT

public:
    /// Gives the sound of the timeline that leads; empty if it has none.
    using Segments = std::function<std::vector<AudioSegment>()>;

    /// Plays through the system's default device.
    SoundPlayer(Segments segments, QObject* parent);
    /// Plays through @p sink what @p opener opens; a null @p opener opens movies.
    SoundPlayer(Segments segments, std::unique_ptr<AudioSink> sink, AudioOpener opener,
                SoundRenderer::Threading threading, QObject* parent);
    ~SoundPlayer() override;

    /// Becomes the clock of @p playback and plays grains where the user scrubs.
    void Lead(PlaybackController* playback);
    /// After how many milliseconds a device that stands still is left alone.
    void SetPatience(int milliseconds);
    /// Whether the sound is what leads now, or is about to.
    bool IsLeading() const { return mIsLeading; }
    SoundRenderer* Renderer() const { return mRenderer.get(); }

    void Start(const PlaybackStart& start) override;
    void Stop() override;
    int64_t Played() override;

public Q_SLOTS:
    /// Sets the level, 0 (silence) to 1 (as recorded); up to 1.5 is louder than that, and what goes beyond
    /// full scale is cut off. Other values are clamped.
    void SetVolume(float volume);
    /// Keeps silent, at whatever level; the clock goes on.
    void SetMuted(bool muted);
    /// Makes the device and the leading timeline's media ready, so that playing can begin at once.
    void Prepare();
    /// Plays a short piece from @p time (microseconds) on if @p audioScrub asks for it, the user wants it and
    /// playback is not running.
    void OnSought(int64_t time, bool audioScrub);

private:
    void LeadSteadily(int64_t played);
    void ApplyGain();

    CancelToken mCancel;
    Segments mSegments;
    std::unique_ptr<SoundRenderer> mRenderer;
    QPointer<PlaybackController> mPlayback;
    SteadyClock mSteadyClock;
    PlaybackStart mStart;
    bool mIsRunning = false;
    bool mIsLeading = false;
    int mRun = 0;
    int64_t mPlayed = 0;
    int mPatience;
    QElapsedTimer mStandstill;
    float mVolume = 1.0f;
    bool mIsMuted = false;
};
