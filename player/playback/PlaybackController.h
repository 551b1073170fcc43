// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaReader.h"
#include "playback/PlaybackClock.h"
#include "playback/PlaybackRange.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <array>
#include <memory>

class FrameLoader;
class MediaTimeline;

/// Follows the clock and says which frame each viewer shows.
///
/// The timeline of the active viewer leads; the other viewer shows the same time of its own timeline. In real
/// time a frame that is not there when it is due is passed over and counted; when decoding can't keep up, the
/// clock waits for it. Stepped playback shows each frame.
class PlaybackController : public QObject
{
    Q_OBJECT

public:
    static constexpr int ViewerCount = 2;

    PlaybackController(FrameLoader* loader, QObject* parent);

    /// Shows @p timeline, whose medium the loader knows as @p media, in viewer @p viewer from its first frame
    /// on; a null one empties the viewer.
    void SetTimeline(int viewer, std::shared_ptr<MediaTimeline> timeline, int media);
    const std::shared_ptr<MediaTimeline>& TimelineOf(int viewer) const;
    /// The timeline that leads; null if no viewer has one.
    const std::shared_ptr<MediaTimeline>& LeadingTimeline() const;
    /// The loader's number for the medium of the timeline that leads; -1 for none.
    int LeadingMedia() const;
    /// Makes @p viewer the active one; its timeline leads.
    void SetActiveViewer(int viewer);
    int ActiveViewer() const;

    /// Counts time by @p clock from the next start of the clock on, or steadily if it is null. The clock
    /// stays the caller's and must live until another is set.
    void SetClock(PlaybackClock* clock);

    bool IsPlaying() const;
    /// Frame of the leading timeline under the playhead.
    int CurrentFrame() const;
    /// Time (microseconds) of the leading timeline under the playhead: the start of its frame.
    int64_t CurrentTime() const;
    /// Frame that viewer @p viewer is to show; 0 if it has no timeline.
    int WantedFrame(int viewer) const;
    /// Frame whose picture viewer @p viewer shows; 0 if it shows none.
    int ShownFrame(int viewer) const;
    const PlaybackRange& Range() const;
    /// Frames passed over since playback began.
    int DroppedFrames() const;
    float Speed() const;
    bool IsStepped() const;

public Q_SLOTS:
    /// Plays forwards (1) or backwards (-1).
    void Play(int direction);
    void Pause();
    /// Pauses on the frame that is on screen, whatever the clock says, so that it can be drawn on.
    void HoldShownFrame();
    /// Pauses, or plays forwards.
    void TogglePlayback();
    /// Pauses if playback runs that way, otherwise plays it.
    void ToggleForwards();
    void ToggleBackwards();
    void StepForwards();
    void StepBackwards();
    /// Pauses and moves the playhead by @p frames, within the range.
    void Step(int frames);
    void GoToFirst();
    void GoToLast();
    /// Moves the playhead to the frame at @p time (microseconds); playback goes on if
    /// Settings::continuePlayingAfterSeek is on. @p audioScrub asks for a grain of sound there.
    void SeekTime(int64_t time, bool audioScrub = false);
    void SeekFrame(int frame);
    /// Holds playback while the user scrubs (@p scrubbing) and lets it go on after.
    void SetScrubbing(bool scrubbing);
    /// Limits playback to the frames from @p startTime to @p endTime (microseconds), both included. The
    /// leading timeline keeps the range while another leads.
    void SetRange(int64_t startTime, int64_t endTime);
    /// Plays @p speed times as fast (0.05 to 16).
    void SetSpeed(float speed);
    void SetStepped(bool stepped);

Q_SIGNALS:
    /// Viewer @p viewer is to show @p result, its frame @p frame.
    void PictureReady(int viewer, int frame, const ReadResult& result);
    /// The playhead stands at @p time (microseconds).
    void PlayheadMoved(int64_t time);
    void PlayingChanged(bool playing);
    /// Playback started, stopped or turned round; @p forwards is its way.
    void StateChanged(bool playing, bool forwards);
    void RangeChanged(int64_t startTime, int64_t endTime);
    /// Another timeline leads, or none; its range and playhead are reported next.
    void LeadingTimelineChanged();
    /// The user sought @p time (microseconds); @p audioScrub says whether a grain of sound is wanted.
    void Sought(int64_t time, bool audioScrub);
    void SpeedChanged(float speed);
    void SteppedChanged(bool stepped);
    /// Frames a second shown of late; 0 while not playing.
    void ActualFrameRateChanged(float rate);

private Q_SLOTS:
    void OnTick();
    void OnFrameReady(int media, int frame, const ReadResult& result);

private:
    struct Viewer
    {
        std::shared_ptr<MediaTimeline> timeline;
        int media = -1;
        int wanted = 0;
        int shown = 0;
    };

    int LeadingViewer() const;
    void FollowLeader();
    void MovePlayhead(int frame, int direction);
    void RequestFrames(int direction);
    void Show(int viewer, int frame, const ReadResult& result);
    void StartClock();
    void ScheduleTick();
    int64_t StepsSinceStart() const;
    void TickInRealTime(int64_t steps);
    void TickStepped(int64_t steps);
    void FinishTick(const PlaybackPosition& position);
    void MeasureRate();
    void SetPlaying(bool playing);
    void ToggleDirection(int direction);
    void ReportState();

    FrameLoader* mLoader;
    std::array<Viewer, ViewerCount> mViewers;
    int mActiveViewer = 0;
    int mCurrentFrame = 1;
    PlaybackRange mRange;
    bool mPlaying = false;
    bool mReportedPlaying = false;
    bool mReportedForwards = true;
    bool mResumeAfterScrub = false;
    float mSpeed = 1.0f;
    bool mStepped = false;
    PlaybackPosition mStart;
    PlaybackPosition mPosition;
    int64_t mLastStep = 0;
    int mDroppedFrames = 0;
    LoopType mStartLoopType = NoLoop;
    SteadyClock mSteadyClock;
    PlaybackClock* mClock = &mSteadyClock;
    QTimer mTimer;
    QElapsedTimer mRateClock;
    int mRateFrames = 0;
};
