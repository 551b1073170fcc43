// SPDX-License-Identifier: MIT
#include "window/TimelineBinding.h"

#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "timelines/TimelineWidget.h"
#include "timelines/UiHelpers.h"

#include <array>

TimelineBinding::TimelineBinding(PlaybackController* playback, FrameLoader* loader, QWidget* timelineParent,
                                 QObject* parent)
    : QObject(parent)
    , mPlayback(playback)
    , mLoader(loader)
    , mGlobalTimeline(UiHelpers::CreateGlobalTimeline(timelineParent))
    , mRangeTimeline(UiHelpers::CreateRangeTimeline(timelineParent))
{
    mGlobalTimeline->setObjectName(QStringLiteral("globalTimeline"));
    mRangeTimeline->setObjectName(QStringLiteral("rangeTimeline"));
    ConnectTimeline(mGlobalTimeline);
    ConnectTimeline(mRangeTimeline);
    connect(mGlobalTimeline, SIGNAL(PositionChangeRequested(bool)), this,
            SIGNAL(GlobalPositionChangeRequested(bool)));
    connect(mRangeTimeline, SIGNAL(PositionChangeRequested(bool)), this,
            SIGNAL(RangePositionChangeRequested(bool)));
    connect(playback, SIGNAL(LeadingTimelineChanged()), this, SLOT(OnLeadingTimelineChanged()));
    connect(playback, SIGNAL(SteppedChanged(bool)), this, SLOT(OnSteppedChanged(bool)));
    connect(loader, SIGNAL(CacheChanged(int)), this, SLOT(UpdateCachedRange()));
    // The playhead may move from one run of cached frames to another.
    connect(playback, SIGNAL(PlayheadMoved(int64_t)), this, SLOT(UpdateCachedRange()));
}

void TimelineBinding::ConnectTimeline(TimelineWidget* timeline)
{
    connect(timeline, SIGNAL(TimeChangeRequested(int64_t, bool)), mPlayback, SLOT(SeekTime(int64_t, bool)));
    connect(timeline, SIGNAL(RangeChangeRequested(int64_t, int64_t)), mPlayback,
            SLOT(SetRange(int64_t, int64_t)));
    connect(timeline, SIGNAL(ScrubStateChanged(bool)), mPlayback, SLOT(SetScrubbing(bool)));
    connect(mPlayback, SIGNAL(RangeChanged(int64_t, int64_t)), timeline,
            SLOT(SetPlaybackRange(int64_t, int64_t)));
    connect(mPlayback, SIGNAL(PlayheadMoved(int64_t)), timeline, SLOT(SetPlaybackTime(int64_t)));
    connect(mPlayback, SIGNAL(PlayingChanged(bool)), timeline, SLOT(OnPlaybackStateChanaged(bool)));
    connect(mPlayback, SIGNAL(ActualFrameRateChanged(float)), timeline, SLOT(SetActualFrameRate(float)));
    connect(mPlayback, SIGNAL(SpeedChanged(float)), timeline, SLOT(SetPlaybackSpeedMultiplier(float)));
}

TimelineWidget* TimelineBinding::GlobalTimeline() const
{
    return mGlobalTimeline;
}

TimelineWidget* TimelineBinding::RangeTimeline() const
{
    return mRangeTimeline;
}

void TimelineBinding::UpdateBookmarks()
{
    mGlobalTimeline->update();
    mRangeTimeline->update();
}

void TimelineBinding::OnLeadingTimelineChanged()
{
    const std::shared_ptr<ProjectTimeline>& lead = mPlayback->LeadingTimeline();
    for (TimelineWidget* const timeline : {mGlobalTimeline, mRangeTimeline})
    {
        // A frame or a cached range that has the same numbers as before would pass as no change, and keep the
        // times and frames of the timeline before.
        timeline->SetTimeline({});
        timeline->SetCachedRange(0, 0);
        timeline->SetTimeline(lead);
        timeline->SetDesiredFrameRate(lead ? static_cast<float>(lead->Rate().PerSecond()) : 0.0f);
    }
    UpdateCachedRange();
}

void TimelineBinding::OnSteppedChanged(bool stepped)
{
    for (TimelineWidget* const timeline : {mGlobalTimeline, mRangeTimeline})
    {
        timeline->SetSteppedPlaybackEnabled(stepped);
        timeline->update();
    }
}

void TimelineBinding::UpdateCachedRange()
{
    const std::shared_ptr<ProjectTimeline>& lead = mPlayback->LeadingTimeline();
    if (!lead)
        return;
    const int frame = mPlayback->CurrentFrame();
    const std::map<int, int> ranges = mPlayback->CachedRanges();
    // The run of cached frames that the playhead stands in; where it stands in none, the nearest one after
    // it.
    auto run = ranges.upper_bound(frame);
    if (run != ranges.begin() && std::prev(run)->second >= frame)
        --run;
    // An end before the start hides the line on both timelines.
    const bool any = run != ranges.end();
    const int64_t startTime = lead->FrameToTime(any ? run->first : 2);
    // Behind the start of the last frame, so that the line of a single frame shows.
    const int64_t endTime = any ? lead->FrameToTime(run->second) + Settings::ROUNDING_ERROR_EXTRA_TIME : 0;
    for (TimelineWidget* const timeline : {mGlobalTimeline, mRangeTimeline})
        timeline->SetCachedRange(startTime, endTime);
}
