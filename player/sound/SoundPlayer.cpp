// SPDX-License-Identifier: MIT
#include "sound/SoundPlayer.h"

#include "host/Logger.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "sound/AudioReader.h"
#include "sound/PortAudioSink.h"

#include <utility>

namespace
{

/// In milliseconds: longer than a device or a sleeping disk takes to start.
constexpr int UsualPatience = 1500;

AudioOpener MovieOpener(const CancelToken& cancel)
{
    return [cancel](const AudioSegment& segment, int rate, QString* error)
    { return AudioReader::Open(segment, rate, cancel, error); };
}

} // namespace

SoundPlayer::SoundPlayer(Segments segments, QObject* parent)
    : SoundPlayer(std::move(segments), std::make_unique<PortAudioSink>(), {}, SoundRenderer::Threading::Own,
                  parent)
{
}

SoundPlayer::SoundPlayer(Segments segments, std::unique_ptr<AudioSink> sink, AudioOpener opener,
                         SoundRenderer::Threading threading, QObject* parent)
    : QObject(parent)
    , mSegments(std::move(segments))
    , mRenderer(std::make_unique<SoundRenderer>(std::move(sink),
                                                opener ? std::move(opener) : MovieOpener(mCancel), threading))
    , mPatience(UsualPatience)
{
}

SoundPlayer::~SoundPlayer()
{
    if (mPlayback)
        mPlayback->SetClock(nullptr);
    mCancel.Cancel();
}

void SoundPlayer::Lead(PlaybackController* playback)
{
    mPlayback = playback;
    playback->SetClock(this);
    connect(playback, SIGNAL(Sought(int64_t, bool)), this, SLOT(OnSought(int64_t, bool)));
    connect(playback, SIGNAL(LeadingTimelineChanged()), this, SLOT(Prepare()));
}

void SoundPlayer::SetPatience(int milliseconds)
{
    mPatience = milliseconds;
}

void SoundPlayer::Start(const PlaybackStart& start)
{
    mStart = start;
    mIsRunning = true;
    std::vector<AudioSegment> segments;
    if (!start.isStepped)
        segments = mSegments();
    if (segments.empty())
    {
        LeadSteadily(0);
        return;
    }
    mIsLeading = true;
    mPlayed = 0;
    mRun = mRenderer->Play(std::move(segments), start);
    mStandstill.start();
}

void SoundPlayer::Stop()
{
    mIsRunning = false;
    mRenderer->Stop();
}

void SoundPlayer::LeadSteadily(int64_t played)
{
    mRenderer->Stop();
    mIsLeading = false;
    mSteadyClock.StartAt(mStart, played);
}

int64_t SoundPlayer::Played()
{
    if (!mIsLeading)
        return mSteadyClock.Played();
    const SoundRenderer::Progress progress = mRenderer->ProgressOf(mRun);
    if (progress.state == SoundRenderer::State::Failed)
    {
        LeadSteadily(mPlayed);
    }
    else if (progress.played > mPlayed)
    {
        mPlayed = progress.played;
        mStandstill.start();
    }
    else if (mIsRunning && mStandstill.elapsed() > mPatience)
    {
        Logger::GetInstance()->Warning(
            tr("The sound stands still; playback goes on without it until it is started again"));
        mRenderer->GiveUpDevice();
        LeadSteadily(mPlayed);
    }
    return mPlayed;
}

void SoundPlayer::SetVolume(float volume)
{
    mVolume = volume;
    ApplyGain();
}

void SoundPlayer::SetMuted(bool muted)
{
    mIsMuted = muted;
    ApplyGain();
}

void SoundPlayer::ApplyGain()
{
    mRenderer->SetGain(mIsMuted ? 0.0f : mVolume);
}

void SoundPlayer::Prepare()
{
    std::vector<AudioSegment> segments = mSegments();
    if (!segments.empty())
        mRenderer->Prepare(std::move(segments));
}

void SoundPlayer::OnSought(int64_t time, bool audioScrub)
{
    if (!audioScrub || !Settings::audioScrub || mIsRunning)
        return;
    std::vector<AudioSegment> segments = mSegments();
    if (!segments.empty())
        mRenderer->PlayGrain(std::move(segments), time);
}
