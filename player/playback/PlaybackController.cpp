// SPDX-License-Identifier: MIT
#include "playback/PlaybackController.h"

#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "project/ProjectTimeline.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr float MinimumSpeed = 0.05f;
constexpr float MaximumSpeed = 16.0f;
constexpr double MicrosecondsPerMillisecond = 1000.0;
/// How far decoding may lag before the clock waits for it, in microseconds.
constexpr int64_t ToleratedLag = 250000;
/// Over how long the rate of shown frames is measured, in milliseconds.
constexpr int RateInterval = 500;

} // namespace

PlaybackController::PlaybackController(FrameLoader* loader, QObject* parent)
    : QObject(parent), mLoader(loader), mLanes(loader)
{
    mTimer.setTimerType(Qt::PreciseTimer);
    mTimer.setSingleShot(true);
    connect(&mTimer, SIGNAL(timeout()), this, SLOT(OnTick()));
    connect(loader, SIGNAL(FrameReady(int, int, const ReadResult&)), this,
            SLOT(OnFrameReady(int, int, const ReadResult&)));
    connect(loader, SIGNAL(OpenFailed(int, const QString&)), this, SLOT(OnOpenFailed(int, const QString&)));
}

MediaLanes& PlaybackController::Lanes()
{
    return mLanes;
}

void PlaybackController::SetTimeline(int viewer, std::shared_ptr<ProjectTimeline> timeline)
{
    Pause();
    const std::shared_ptr<ProjectTimeline> leader = LeadingTimeline();
    mViewers[viewer] = Viewer{std::move(timeline), {}, 0, 0};
    AssignCopies();
    if (leader != LeadingTimeline())
    {
        mCurrentFrame = 1;
        FollowLeader();
    }
    MovePlayhead(mCurrentFrame, 1);
}

void PlaybackController::RefreshTimeline(const ProjectTimeline* timeline)
{
    const auto isShown = [&](const Viewer& viewer) { return viewer.timeline.get() == timeline; };
    if (timeline == nullptr || std::none_of(mViewers.begin(), mViewers.end(), isShown))
        return;
    AssignCopies();
    for (Viewer& viewer : mViewers)
    {
        // The same frame may show another picture now.
        if (isShown(viewer))
            viewer.shown = 0;
    }
    const bool wasPlaying = mPlaying;
    if (isShown(mViewers[LeadingViewer()]))
        FollowLeader();
    const int last = std::max(LeadingTimeline()->FrameCount(), 1);
    MovePlayhead(std::min(mCurrentFrame, last), mPosition.direction);
    if (wasPlaying)
        StartClock();
}

void PlaybackController::FollowLeader()
{
    const auto& lead = LeadingTimeline();
    mRange = lead ? lead->Range() : PlaybackRange();
    Q_EMIT LeadingTimelineChanged();
    Q_EMIT RangeChanged(lead ? lead->FrameToTime(mRange.first) : 0,
                        lead ? lead->FrameToTime(mRange.last) : 0);
}

const std::shared_ptr<ProjectTimeline>& PlaybackController::TimelineOf(int viewer) const
{
    return mViewers[viewer].timeline;
}

int PlaybackController::LeadingViewer() const
{
    return mViewers[mActiveViewer].timeline ? mActiveViewer : 1 - mActiveViewer;
}

const std::shared_ptr<ProjectTimeline>& PlaybackController::LeadingTimeline() const
{
    return mViewers[LeadingViewer()].timeline;
}

void PlaybackController::SetActiveViewer(int viewer)
{
    if (viewer == mActiveViewer)
        return;
    const int64_t time = CurrentTime() + Settings::ROUNDING_ERROR_EXTRA_TIME;
    const std::shared_ptr<ProjectTimeline> leader = LeadingTimeline();
    mActiveViewer = viewer;
    if (leader == LeadingTimeline())
        return;
    mCurrentFrame = LeadingTimeline() ? LeadingTimeline()->TimeToFrame(time) : 1;
    FollowLeader();
    if (mPlaying)
        StartClock();
    Q_EMIT PlayheadMoved(CurrentTime());
}

int PlaybackController::ActiveViewer() const
{
    return mActiveViewer;
}

void PlaybackController::SetClock(PlaybackClock* clock)
{
    Pause();
    mClock = clock ? clock : &mSteadyClock;
}

bool PlaybackController::IsPlaying() const
{
    return mPlaying;
}

int PlaybackController::CurrentFrame() const
{
    return mCurrentFrame;
}

int64_t PlaybackController::CurrentTime() const
{
    const auto& lead = LeadingTimeline();
    return lead ? lead->FrameToTime(mCurrentFrame) : 0;
}

int PlaybackController::WantedFrame(int viewer) const
{
    return mViewers[viewer].wanted;
}

int PlaybackController::ShownFrame(int viewer) const
{
    return mViewers[viewer].shown;
}

const PlaybackRange& PlaybackController::Range() const
{
    return mRange;
}

int PlaybackController::DroppedFrames() const
{
    return mDroppedFrames;
}

float PlaybackController::Speed() const
{
    return mSpeed;
}

bool PlaybackController::IsStepped() const
{
    return mStepped;
}

void PlaybackController::Play(int direction)
{
    if (!LeadingTimeline())
        return;
    mPosition = PlaybackPosition{mCurrentFrame, direction < 0 ? -1 : 1, false};
    // From the end, or from outside of the range, playing begins anew.
    const int last = mPosition.direction > 0 ? mRange.last : mRange.first;
    if (!mRange.Contains(mCurrentFrame) || (mCurrentFrame == last && Settings::loopType != PingPong))
        mPosition.frame = mPosition.direction > 0 ? mRange.first : mRange.last;
    mDroppedFrames = 0;
    MovePlayhead(mPosition.frame, mPosition.direction);
    SetPlaying(true);
    StartClock();
}

void PlaybackController::Pause()
{
    mResumeAfterScrub = false;
    SetPlaying(false);
}

void PlaybackController::HoldShownFrame()
{
    Pause();
    const Viewer& lead = mViewers[LeadingViewer()];
    if (lead.timeline && lead.shown > 0 && lead.shown != lead.wanted)
        MovePlayhead(lead.shown, mPosition.direction);
}

void PlaybackController::TogglePlayback()
{
    if (mPlaying)
        Pause();
    else
        Play(1);
}

void PlaybackController::ToggleDirection(int direction)
{
    if (mPlaying && mPosition.direction == direction)
        Pause();
    else
        Play(direction);
}

void PlaybackController::ToggleForwards()
{
    ToggleDirection(1);
}

void PlaybackController::ToggleBackwards()
{
    ToggleDirection(-1);
}

void PlaybackController::StepForwards()
{
    Step(1);
}

void PlaybackController::StepBackwards()
{
    Step(-1);
}

void PlaybackController::ReportState()
{
    const bool forwards = mPosition.direction > 0;
    if (mPlaying == mReportedPlaying && (!mPlaying || forwards == mReportedForwards))
        return;
    mReportedPlaying = mPlaying;
    mReportedForwards = forwards;
    Q_EMIT StateChanged(mPlaying, forwards);
}

void PlaybackController::SetPlaying(bool playing)
{
    if (!playing)
        mTimer.stop();
    if (playing == mPlaying)
        return;
    mPlaying = playing;
    if (!playing)
        mClock->Stop();
    mRateFrames = 0;
    mRateClock.start();
    if (!playing)
    {
        Q_EMIT ActualFrameRateChanged(0.0f);
        // What was passed over late is shown exactly now.
        RequestFrames(mPosition.direction);
    }
    Q_EMIT PlayingChanged(playing);
    ReportState();
}

void PlaybackController::Step(int frames)
{
    Pause();
    if (const auto& lead = LeadingTimeline())
    {
        const int64_t last = std::max(lead->FrameCount(), 1);
        const int64_t target = std::min(std::max<int64_t>(int64_t(mCurrentFrame) + frames, 1), last);
        MovePlayhead(static_cast<int>(target), frames < 0 ? -1 : 1);
    }
}

void PlaybackController::GoToFirst()
{
    SeekFrame(mRange.first);
}

void PlaybackController::GoToLast()
{
    SeekFrame(mRange.last);
}

void PlaybackController::SeekTime(int64_t time, bool audioScrub)
{
    const auto& lead = LeadingTimeline();
    if (!lead)
        return;
    SeekFrame(lead->TimeToFrame(time));
    Q_EMIT Sought(CurrentTime(), audioScrub);
}

void PlaybackController::SeekFrame(int frame)
{
    const auto& lead = LeadingTimeline();
    if (!lead)
        return;
    if (mPlaying && !Settings::continuePlayingAfterSeek)
        Pause();
    const int target = std::min(std::max(frame, 1), std::max(lead->FrameCount(), 1));
    const int direction = mPlaying ? mPosition.direction : target < mCurrentFrame ? -1 : 1;
    MovePlayhead(target, direction);
    if (mPlaying)
        StartClock();
}

void PlaybackController::SetScrubbing(bool scrubbing)
{
    if (scrubbing)
    {
        if (!mPlaying)
            return;
        SetPlaying(false);
        mResumeAfterScrub = true;
    }
    else if (mResumeAfterScrub)
    {
        mResumeAfterScrub = false;
        // Scrubbed to the end, there is nothing left to go on with.
        const int end = mPosition.direction > 0 ? mRange.last : mRange.first;
        if (Settings::continuePlayingAfterSeek && mCurrentFrame != end)
            Play(mPosition.direction);
    }
}

void PlaybackController::SetRangeKeeper(RangeKeeper keeper)
{
    mRangeKeeper = std::move(keeper);
}

void PlaybackController::SetRange(int64_t startTime, int64_t endTime)
{
    const auto& lead = LeadingTimeline();
    if (!lead)
        return;
    const int first = lead->TimeToFrame(startTime);
    mRange = PlaybackRange{first, std::max(first, lead->TimeToFrame(endTime))};
    if (mRangeKeeper)
        mRangeKeeper(*lead, mRange);
    else
        lead->SetRange(mRange);
    if (mPlaying)
        StartClock();
    Q_EMIT RangeChanged(lead->FrameToTime(mRange.first), lead->FrameToTime(mRange.last));
}

void PlaybackController::SetSpeed(float speed)
{
    if (std::isnan(speed))
        return;
    mSpeed = std::min(std::max(speed, MinimumSpeed), MaximumSpeed);
    if (mPlaying)
        StartClock();
    Q_EMIT SpeedChanged(mSpeed);
}

void PlaybackController::SetStepped(bool stepped)
{
    mStepped = stepped;
    if (mPlaying)
        StartClock();
    Q_EMIT SteppedChanged(stepped);
}

void PlaybackController::MovePlayhead(int frame, int direction)
{
    mCurrentFrame = frame;
    mPosition.frame = frame;
    mPosition.direction = direction;
    const int64_t time = CurrentTime() + Settings::ROUNDING_ERROR_EXTRA_TIME;
    for (Viewer& viewer : mViewers)
    {
        if (viewer.timeline)
            viewer.wanted = viewer.timeline->FrameCount() > 0 ? viewer.timeline->TimeToFrame(time) : 0;
    }
    RequestFrames(direction);
    Q_EMIT PlayheadMoved(CurrentTime());
    ReportState();
}

void PlaybackController::StartClock()
{
    mStart = PlaybackPosition{mCurrentFrame, mPosition.direction, false};
    mStartLoopType = Settings::loopType;
    mLastStep = 0;
    mClock->Start(PlaybackStart{LeadingTimeline()->Rate(), mStart, mRange, mStartLoopType, mSpeed, mStepped});
    ScheduleTick();
}

int64_t PlaybackController::StepsSinceStart() const
{
    return LeadingTimeline()->Rate().TimeToFrame(mClock->Played()) - 1;
}

void PlaybackController::ScheduleTick()
{
    const FrameRate rate = LeadingTimeline()->Rate();
    const int64_t left = rate.FrameToTime(mLastStep + 2) - mClock->Played();
    // Rounded up, so that the frame is due when the timer fires.
    const double milliseconds =
        std::ceil(static_cast<double>(left) / MicrosecondsPerMillisecond / static_cast<double>(mSpeed));
    mTimer.start(static_cast<int>(std::min(std::max(milliseconds, 0.0), 1000.0)));
}

void PlaybackController::OnTick()
{
    if (!mPlaying || !LeadingTimeline())
        return;
    if (mStartLoopType != Settings::loopType)
        // What was played so far was played by the loop before; only what comes goes by the new one.
        StartClock();
    const int64_t steps = StepsSinceStart();
    if (steps > mLastStep)
    {
        if (mStepped)
            TickStepped(steps);
        else
            TickInRealTime(steps);
    }
    if (mPlaying)
    {
        MeasureRate();
        ScheduleTick();
    }
}

void PlaybackController::TickInRealTime(int64_t steps)
{
    mDroppedFrames += static_cast<int>(std::min<int64_t>(steps - mLastStep - 1, mRange.last));
    mLastStep = steps;
    FinishTick(AdvancePlayback(mStart, steps, mRange, Settings::loopType));
    const Viewer& lead = mViewers[LeadingViewer()];
    if (!mPlaying || lead.shown == lead.wanted || lead.shown == 0)
        return;
    // Decoding lags. Rather than run ever further ahead of it, the clock goes on from what is on screen.
    const int64_t lag =
        std::abs(lead.timeline->FrameToTime(lead.wanted) - lead.timeline->FrameToTime(lead.shown));
    if (lag <= ToleratedLag || !mRange.Contains(lead.shown) ||
        (lead.wanted - lead.shown) * mPosition.direction < 0)
        return;
    mCurrentFrame = std::min(std::max(lead.shown + mPosition.direction, mRange.first), mRange.last);
    MovePlayhead(mCurrentFrame, mPosition.direction);
    StartClock();
}

void PlaybackController::TickStepped(int64_t steps)
{
    for (const Viewer& viewer : mViewers)
    {
        if (viewer.timeline && viewer.shown != viewer.wanted)
            return;
    }
    // One step, however much time has gone by, and the time of the next one counts from here.
    Q_UNUSED(steps)
    FinishTick(AdvancePlayback(PlaybackPosition{mCurrentFrame, mPosition.direction, false}, 1, mRange,
                               Settings::loopType));
    if (mPlaying)
        StartClock();
}

void PlaybackController::FinishTick(const PlaybackPosition& position)
{
    MovePlayhead(position.frame, position.direction);
    if (position.ended)
        Pause();
}

void PlaybackController::MeasureRate()
{
    const qint64 elapsed = mRateClock.elapsed();
    if (elapsed < RateInterval)
        return;
    Q_EMIT ActualFrameRateChanged(static_cast<float>(mRateFrames) * 1000.0f / static_cast<float>(elapsed));
    mRateFrames = 0;
    mRateClock.start();
}
