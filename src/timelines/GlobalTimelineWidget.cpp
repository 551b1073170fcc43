// SPDX-License-Identifier: MIT
#include "timelines/GlobalTimelineWidget.h"

#include "host/Settings.h"
#include "timelines/TimelineMapping.h"

#include <algorithm>
#include <utility>

using TimelineMapping::Truncated;
using TimelineMapping::WrappingDifference;
using TimelineMapping::WrappingSum;

namespace
{

constexpr int GlobalTimelineHeight = 40;
constexpr int ScrubBarHeight = 8;

/// Top of a row of @p height that stands in the middle of the body.
int CentredRow(int bodyY, int bodyHeight, int height)
{
    const float y =
        static_cast<float>(WrappingDifference(bodyHeight, height)) * 0.5f + static_cast<float>(bodyY);
    return Truncated(static_cast<double>(y));
}

} // namespace

GlobalTimelineWidget::GlobalTimelineWidget(QWidget* parent) : TimelineWidget(parent)
{
    setFixedHeight(GlobalTimelineHeight);
    setMouseTracking(true);
    CreateActions();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
    TakeDisplayType(Settings::globalTimelineDisplayType);
    connect(&mUpdateTimer, SIGNAL(timeout()), this, SLOT(OnUpdateTimerFired()));
    mUpdateTimer.setInterval(Settings::timelineUpdateInterval);
    mUpdateTimer.start();
}

int GlobalTimelineWidget::GetPlaybackFrame()
{
    return mPlaybackFrame;
}

int GlobalTimelineWidget::GetRangeStartFrame()
{
    return mRangeStartFrame;
}

int GlobalTimelineWidget::GetRangeEndFrame()
{
    return mRangeEndFrame;
}

int64_t GlobalTimelineWidget::GetPlaybackTimeAtOffset(int frameOffset)
{
    return FrameToTime(WrappingSum(mPlaybackFrame, frameOffset));
}

int64_t GlobalTimelineWidget::GetRangeStartTime()
{
    return FrameToTime(mRangeStartFrame);
}

int64_t GlobalTimelineWidget::GetRangeEndTime()
{
    return FrameToTime(mRangeEndFrame);
}

double GlobalTimelineWidget::GetActualFrameRate()
{
    return static_cast<double>(mActualFrameRate);
}

void GlobalTimelineWidget::SetTimeline(std::weak_ptr<ProjectObject> timelineObject)
{
    mTimelineObject = std::move(timelineObject);
    UpdateElementInfos();
}

void GlobalTimelineWidget::SetPlaybackTime(int64_t playbackTime)
{
    const int frame = TimeToFrame(playbackTime);
    if (frame == mPlaybackFrame)
        return;
    mPlaybackTime = FrameToTime(frame);
    mPlaybackFrame = frame;
    update();
}

void GlobalTimelineWidget::SetPlaybackRange(int64_t rangeStartTime, int64_t rangeEndTime)
{
    mRangeStartTime = std::max(rangeStartTime, mStartTime);
    mRangeStartFrame = TimeToFrame(mRangeStartTime);
    mRangeEndTime = std::min(rangeEndTime, mRangeLimitTime);
    mRangeEndFrame = TimeToFrame(mRangeEndTime);
    UpdateFrameWidth();
    UpdateHandleRects();
    mUpdatePending = true;
}

void GlobalTimelineWidget::SetDesiredFrameRate(float desiredFrameRate)
{
    if (desiredFrameRate == mDesiredFrameRate)
        return;
    mDesiredFrameRate = desiredFrameRate;
    mUpdatePending = true;
}

void GlobalTimelineWidget::SetActualFrameRate(float actualFrameRate)
{
    const float rate = actualFrameRate > 0.0f ? actualFrameRate : 0.0f;
    if (rate == mActualFrameRate)
        return;
    mActualFrameRate = rate;
    mUpdatePending = true;
}

void GlobalTimelineWidget::SetCachedRange(int64_t cacheStartTime, int64_t cacheEndTime)
{
    if (cacheStartTime == mCacheStartTime && cacheEndTime == mCacheEndTime)
        return;
    mCacheStartTime = cacheStartTime;
    mCacheEndTime = cacheEndTime;
    mCacheStartFrame = TimeToFrame(cacheStartTime);
    mCacheEndFrame = TimeToFrame(cacheEndTime);
    mUpdatePending = true;
}

void GlobalTimelineWidget::SetPlaybackSpeedMultiplier(float multiplier)
{
    if (multiplier == mSpeedMultiplier)
        return;
    mSpeedMultiplier = multiplier;
    mUpdatePending = true;
}

void GlobalTimelineWidget::SetSteppedPlaybackEnabled(bool enabled)
{
    // Meant so: the change shows with the next repaint from another cause.
    mSteppedPlayback = enabled;
}

void GlobalTimelineWidget::SetDisplayType(TimelineDisplayType displayType)
{
    TakeDisplayType(displayType);
    Settings::globalTimelineDisplayType = displayType;
}

void GlobalTimelineWidget::ShowTimeBookmarks(bool show)
{
    Settings::globalTimelineShowTimeBookmarks = show;
    update();
}

void GlobalTimelineWidget::ShowRangeBookmarks(bool show)
{
    Settings::globalTimelineShowRangeBookmarks = show;
    update();
}

void GlobalTimelineWidget::ShowCache(bool show)
{
    Settings::globalTimelineShowCache = show;
    update();
}

bool GlobalTimelineWidget::ShowRangeBookmarksInMenu()
{
    return true;
}

void GlobalTimelineWidget::DeferredUpdate()
{
    mUpdatePending = true;
}

void GlobalTimelineWidget::OnUpdateTimerFired()
{
    if (!mUpdatePending)
        return;
    // Meant so: during fast playback what is pending is dropped, since SetPlaybackTime() repaints often
    // enough.
    if (!mPlaying || mDesiredFrameRate * mSpeedMultiplier < 24.0f)
        update();
    mUpdatePending = false;
}

void GlobalTimelineWidget::OnPlaybackStateChanaged(bool playing)
{
    mPlaying = playing;
}

void GlobalTimelineWidget::UpdateElementInfos()
{
    const std::shared_ptr<ProjectObject> timeline = mTimelineObject.lock();
    mElementInfos = timeline ? timeline->GetElementInfos() : QList<ElementInfo>();
    mEndTime = 0;
    mStartTime = 0;
    mRangeLimitTime = 0;
    mFrameCount = 0;
    if (mElementInfos.isEmpty())
    {
        mPlaybackTime = 0;
        mPlaybackFrame = 0;
        mRangeStartTime = 0;
        mRangeEndTime = 0;
        mDesiredFrameRate = 0.0f;
        mActualFrameRate = 0.0f;
    }
    else
    {
        for (const ElementInfo& element : qAsConst(mElementInfos))
            mFrameCount = WrappingSum(mFrameCount, element.frameCount);
        mStartTime = timeline->GetStartTime();
        mEndTime = timeline->GetEndTime();
        mRangeLimitTime = mEndTime;
        mRangeEndTime = mEndTime;
    }
    UpdateBarLayout();
    update();
}

void GlobalTimelineWidget::UpdateBarLayout()
{
    mBarX = mBarAreaX;
    mBarWidth = mBarAreaWidth;
    mElementStripY = CentredRow(mBodyY, mBodyHeight, ElementStripHeight());
    mScrubBarY = CentredRow(mBodyY, mBodyHeight, ScrubBarHeight);
    mCacheBarY = mElementStripY + 3;
    mBarStartX = mBarAreaX;
    mBarEndX = mBarAreaX + mBarAreaWidth;
    mHandleY = CentredRow(mBodyY, mBodyHeight, PlayheadHeight());
    mPlayheadY = mHandleY;
    mLabelOffsetX = Truncated(static_cast<double>(static_cast<float>(LabelBoxWidth()) * -0.5f));
    UpdateFrameWidth();
}

void GlobalTimelineWidget::UpdateFrameWidth()
{
    mFrameWidth = TimelineMapping::FrameWidth(mBarWidth, mFrameCount);
}

void GlobalTimelineWidget::UpdateHandleRects()
{
    if (mFrameCount <= 1)
        return;
    const int s = FrameToPixel(mRangeStartFrame);
    const int top = mHandleY - 1;
    const int bottom = top + 11;
    const int endLeft = WrappingDifference(RightEdge(mRangeEndFrame), 2);
    mRangeStartRect.setCoords(WrappingDifference(s, 4), top, WrappingSum(s, 1), bottom);
    mRangeEndRect.setCoords(endLeft, top, WrappingSum(endLeft, 5), bottom);
    // Crossed, and meant so: QRect::contains() puts the corners right, which gives the stretch between the
    // handles.
    mRangeRect.setCoords(mRangeEndRect.left(), top, mRangeStartRect.right(), bottom);
}

int GlobalTimelineWidget::FrameToPixel(int frame)
{
    return TimelineMapping::FrameToPixel(frame, mFrameCount, mBarX, mBarWidth);
}

int GlobalTimelineWidget::PixelToFrame(int x)
{
    return TimelineMapping::PixelToFrame(x, mFrameCount, mBarX, mBarAreaWidth);
}

int GlobalTimelineWidget::TimeToFrame(int64_t time)
{
    const std::shared_ptr<ProjectObject> timeline = mTimelineObject.lock();
    return timeline ? timeline->TimeToFrame(time) : 1;
}

int64_t GlobalTimelineWidget::FrameToTime(int frame)
{
    const std::shared_ptr<ProjectObject> timeline = mTimelineObject.lock();
    return timeline ? timeline->FrameToTime(frame) : 0;
}

void GlobalTimelineWidget::resizeEvent(QResizeEvent* event)
{
    mLeftPanelX = 0;
    mLeftPanelWidth = SidePanelWidth() - SidePanelInset();
    mBarAreaX = SidePanelWidth();
    mBarAreaWidth = width() - 2 * SidePanelWidth();
    mRightPanelX = width() - SidePanelWidth() + SidePanelInset();
    // Meant so: the panel runs past the widget's edge by the inset.
    mRightPanelWidth = SidePanelWidth();
    mLabelRowY = 0;
    mBodyY = LabelRowHeight();
    mBodyHeight = height() - LabelRowHeight();
    UpdateBarLayout();
    UpdateHandleRects();
    TimelineWidget::resizeEvent(event);
}

QString GlobalTimelineWidget::FormatFrame(int frame)
{
    switch (mDisplayType)
    {
    case FrameNumbersGlobal:
        return QString::number(frame);
    case FrameNumbersRange:
        return QString::number(WrappingSum(WrappingDifference(frame, mRangeStartFrame), 1));
    case Seconds:
        return TimelineMapping::SecondsText(std::min(FrameToTime(frame), mEndTime));
    case TimeCode:
        return TimelineMapping::TimeCodeText(frame, mDesiredFrameRate);
    }
    return {};
}

void GlobalTimelineWidget::TakeDisplayType(int setting)
{
    const auto displayType =
        static_cast<TimelineDisplayType>(std::clamp<int>(setting, FrameNumbersGlobal, FrameNumbersRange));
    if (displayType == mDisplayType)
        return;
    mDisplayType = displayType;
    update();
}

bool GlobalTimelineWidget::RangeIsWhole() const
{
    return mRangeStartTime == mStartTime && mRangeEndTime == mRangeLimitTime;
}

int GlobalTimelineWidget::RightEdge(int frame)
{
    return TimelineMapping::FrameRightEdge(FrameToPixel(frame), mFrameWidth);
}
