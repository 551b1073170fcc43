// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaReader.h"
#include "playback/MediaLanes.h"
#include "playback/PlaybackClock.h"
#include "playback/PlaybackRange.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

class FrameLoader;
class ProjectTimeline;

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

    /// The media that the timelines' sources are read from.
    MediaLanes& Lanes();

    /// Shows @p timeline in viewer @p viewer from its first frame on; a null one empties the viewer.
    void SetTimeline(int viewer, std::shared_ptr<ProjectTimeline> timeline);
    const std::shared_ptr<ProjectTimeline>& TimelineOf(int viewer) const;
    /// The timeline that leads; null if no viewer has one.
    const std::shared_ptr<ProjectTimeline>& LeadingTimeline() const;
    /// Keeps the range of a timeline for others than playback.
    using RangeKeeper = std::function<void(ProjectTimeline& timeline, const PlaybackRange& range)>;
    /// Has @p keeper set the ranges of timelines that SetRange() changes; without one it sets them itself.
    void SetRangeKeeper(RangeKeeper keeper);
    /// Goes on with what @p timeline shows now, after its elements, a source or its range have changed. A
    /// timeline in no viewer is ignored.
    void RefreshTimeline(const ProjectTimeline* timeline);
    /// Ranges of the leading timeline's frames that are kept: first frame to last, in order.
    std::map<int, int> CachedRanges() const;
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
    /// Frame that viewer @p viewer is to show; 0 if it has no timeline or an empty one.
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
    /// The medium of a source that a viewer wants can't be opened; @p text says which and why.
    void SourceFailed(const QString& text);
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
    void OnOpenFailed(int media, const QString& text);
    void OnTick();
    void OnFrameReady(int media, int frame, const ReadResult& result);

private:
    struct Viewer
    {
        std::shared_ptr<ProjectTimeline> timeline;
        /// Copy of its source that each segment is read from.
        std::vector<int> copies;
        int wanted = 0;
        int shown = 0;
    };

    int LeadingViewer() const;
    void FollowLeader();
    void MovePlayhead(int frame, int direction);
    void RequestFrames(int direction);
    /// Which copies of their sources the segments of both viewers are read from.
    void AssignCopies();
    /// Adds the media that @p viewer needs now, and soon, to @p inUse; they are open then.
    void AddMediaInUse(const Viewer& viewer, int direction, std::set<int>* inUse);
    /// Asks for the frame that the viewer wants, and for the first frames of the segment that follows soon.
    void RequestFrame(int viewerIndex, int direction);
    void PrepareSegment(const Viewer& viewer, int index, int direction);
    /// Index of the segment that follows within a moment where play goes @p direction; -1 if none does.
    int NeighbourToPrepare(const Viewer& viewer, int index, int direction) const;
    /// The loader's number for the segment at @p index.
    int MediaOf(const Viewer& viewer, int index);
    /// Shows that there is no picture on the frame that the viewer wants.
    void ShowNothing(int viewerIndex);
    /// The viewer's own frames of the leading timeline's range.
    PlaybackRange RangeOf(const Viewer& viewer) const;
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
    RangeKeeper mRangeKeeper;
    MediaLanes mLanes;
    std::set<int> mMediaInUse;
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
