// SPDX-License-Identifier: MIT
#include "timelines/RangeTimelineWidget.h"

#include "host/Settings.h"
#include "timelines/TimelineFills.h"
#include "timelines/TimelineMapping.h"

#include <QAction>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

using TimelineFills::FillSpan;
using TimelineMapping::SeekTime;
using TimelineMapping::WrappingDifference;
using TimelineMapping::WrappingSum;

namespace
{

constexpr int RangeTimelineHeight = 46;
/// Mouse travel for one frame, in pixels.
constexpr float JogStep = 20.0f;

const QColor RangeCacheColor(0, 54, 143, 127);
const QColor RangeBookmarkMarkerColor(200, 200, 200, 255);
const QColor RangeAnnotatedColor(30, 200, 30, 200);

} // namespace

RangeTimelineWidget::RangeTimelineWidget(QWidget* parent) : GlobalTimelineWidget(parent)
{
    setFixedHeight(RangeTimelineHeight);
    TakeDisplayType(Settings::rangeTimelineDisplayType);
}

void RangeTimelineWidget::SetDisplayType(TimelineDisplayType displayType)
{
    TakeDisplayType(displayType);
    Settings::rangeTimelineDisplayType = displayType;
}

void RangeTimelineWidget::ShowTimeBookmarks(bool show)
{
    Settings::rangeTimelineShowTimeBookmarks = show;
    update();
}

void RangeTimelineWidget::ShowRangeBookmarks(bool) {}

void RangeTimelineWidget::ShowCache(bool show)
{
    Settings::rangeTimelineShowCache = show;
    update();
}

bool RangeTimelineWidget::ShowRangeBookmarksInMenu()
{
    return false;
}

void RangeTimelineWidget::UpdateMenuActions(int x)
{
    GlobalTimelineWidget::UpdateMenuActions(x);
    mPositionAction->setChecked(Settings::rangeTimelineAtTop);
    mTimeBookmarksAction->setChecked(Settings::rangeTimelineShowTimeBookmarks);
    mRangeBookmarksAction->setChecked(false);
    mCacheAction->setChecked(Settings::rangeTimelineShowCache);
}

void RangeTimelineWidget::UpdateFrameWidth()
{
    const int frames =
        WrappingSum(WrappingDifference(TimeToFrame(mRangeEndTime), TimeToFrame(mRangeStartTime)), 1);
    mFrameWidth = TimelineMapping::RangeFrameWidth(mBarWidth, frames, PlayheadWidth());
}

int RangeTimelineWidget::FrameToPixel(int frame)
{
    return TimelineMapping::RangeFrameToPixel(frame, mRangeStartFrame, mRangeEndFrame, mBarX, mBarWidth);
}

int RangeTimelineWidget::PixelToFrame(int x)
{
    // The scale is the width of this moment, which may be ahead of the layout.
    return TimelineMapping::RangePixelToFrame(x, mRangeStartFrame, mRangeEndFrame, mBarX, mBarAreaWidth,
                                              width() - 2 * SidePanelWidth());
}

bool RangeTimelineWidget::HitsRange(QPoint)
{
    return false;
}

bool RangeTimelineWidget::HitsRangeStart(QPoint pos)
{
    return QRect(mLeftPanelX, mBodyY, mLeftPanelWidth, mBodyHeight).contains(pos);
}

bool RangeTimelineWidget::HitsRangeEnd(QPoint pos)
{
    return QRect(mRightPanelX, mBodyY, mRightPanelWidth, mBodyHeight).contains(pos);
}

void RangeTimelineWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    DrawElements(&painter);
    DrawTimeBookmarks(&painter);
    DrawHoverMarker(&painter);
    DrawPlayhead(&painter);
    DrawRangeLimits(&painter);
}

void RangeTimelineWidget::DrawElements(QPainter* painter)
{
    const int end = WrappingSum(mBarX, mBarWidth);
    FillSpan(painter, mBarX, mElementStripY, end, ElementStripHeight(), ElementStripColor());
    if (Settings::rangeTimelineShowCache && mCacheEndFrame >= mCacheStartFrame)
    {
        const int left = FrameToPixel(mCacheStartFrame);
        const int right =
            std::min(TimelineMapping::FrameRightEdge(FrameToPixel(mCacheEndFrame), mFrameWidth), end);
        if (right > left)
            FillSpan(painter, left, mElementStripY, right, 1, RangeCacheColor);
    }
    for (const int x : {mBarStartX, mBarEndX})
        FillSpan(painter, x, mHandleY, x + PlayheadWidth(), PlayheadHeight(), ElementStripColor());
}

void RangeTimelineWidget::DrawTimeBookmarks(QPainter* painter)
{
    if (!Settings::rangeTimelineShowTimeBookmarks)
        return;
    DrawBookmarkFlags(painter, mRangeStartTime, std::min(mRangeEndTime, mEndTime), RangeBookmarkMarkerColor,
                      RangeAnnotatedColor);
}

void RangeTimelineWidget::DrawHoverMarker(QPainter* painter)
{
    const QPoint pos = mapFromGlobal(QCursor::pos());
    if (!HitsRangeStart(pos) && !HitsRangeEnd(pos))
        GlobalTimelineWidget::DrawHoverMarker(painter);
}

void RangeTimelineWidget::DrawPlayhead(QPainter* painter)
{
    if (mPlaybackTime >= mRangeStartTime && mPlaybackTime <= mRangeEndTime)
        GlobalTimelineWidget::DrawPlayhead(painter);
}

void RangeTimelineWidget::DrawRangeLimits(QPainter* painter)
{
    SetFontSize(painter, 8);
    painter->setPen(InfoTextColor());
    DrawLabel(painter, mLeftPanelX, mBodyY, mLeftPanelWidth, mBodyHeight, Qt::AlignRight | Qt::AlignVCenter,
              FormatFrame(mRangeStartFrame));
    DrawLabel(painter, mRightPanelX, mBodyY, mRightPanelWidth, mBodyHeight, Qt::AlignLeft | Qt::AlignVCenter,
              FormatFrame(mRangeEndFrame));
}

void RangeTimelineWidget::mousePressEvent(QMouseEvent* event)
{
    FocusParent();
    if (event->button() != Qt::LeftButton)
    {
        QWidget::mousePressEvent(event);
        return;
    }
    mJogStartX = event->globalX();
    const QPoint pos = event->pos();
    if (HitsRangeStart(pos))
    {
        mDraggingRangeStart = true;
    }
    else if (HitsRangeEnd(pos))
    {
        mDraggingRangeEnd = true;
    }
    else
    {
        mScrubbing = true;
        RequestTimeAtPosition(pos, false);
    }
    Q_EMIT ScrubStateChanged(true);
    event->ignore();
}

void RangeTimelineWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton)
        DeferredUpdate();
    else if (mScrubbing)
        RequestTimeAtPosition(event->pos(), Settings::audioScrub);
    else if (mDraggingRangeStart || mDraggingRangeEnd)
        JogRangeEnd(event);
}

void RangeTimelineWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
    {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    mScrubbing = false;
    mDraggingRangeStart = false;
    mDraggingRangeEnd = false;
    Q_EMIT ScrubStateChanged(false);
    event->ignore();
}

void RangeTimelineWidget::JogRangeEnd(QMouseEvent* event)
{
    const auto dx = static_cast<float>(WrappingDifference(event->globalX(), mJogStartX));
    if (dx > -JogStep && dx < JogStep)
        return;
    const int steps = static_cast<int>(dx / JogStep);
    mJogStartX = event->globalX();

    const int frame = WrappingSum(mDraggingRangeStart ? mRangeStartFrame : mRangeEndFrame, steps);
    // The lower bound is 0 and not 1; meant so: a jog can ask for frame 0.
    if (frame < 0 || frame > mFrameCount)
        return;
    const int64_t time = FrameToTime(frame);
    if (mDraggingRangeStart)
    {
        Q_EMIT RangeChangeRequested(time, frame > mRangeEndFrame ? time : mRangeEndTime);
        if (time > mPlaybackTime)
            Q_EMIT TimeChangeRequested(SeekTime(time), false);
    }
    else
    {
        Q_EMIT RangeChangeRequested(frame < mRangeStartFrame ? time : mRangeStartTime, time);
        if (time < mPlaybackTime)
            Q_EMIT TimeChangeRequested(SeekTime(time), false);
    }
}
