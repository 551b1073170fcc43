// SPDX-License-Identifier: MIT
#include "timelines/GlobalTimelineWidget.h"

#include "host/Settings.h"
#include "timelines/TimelineMapping.h"

#include <QAction>
#include <QMenu>
#include <QMouseEvent>

#include <algorithm>

using TimelineMapping::SeekTime;
using TimelineMapping::WrappingDifference;
using TimelineMapping::WrappingSum;

namespace
{

/// How near the playhead a click counts as on it, in pixels.
constexpr int PlayheadReach = 6;

/// @p frame held within the timeline; without frames this is 0.
int WithinTimeline(int frame, int frameCount)
{
    return std::min(std::max(frame, 1), frameCount);
}

} // namespace

QAction* GlobalTimelineWidget::CreateAction(const QString& name, const QString& text, bool checkable,
                                            const char* signal, const char* slot)
{
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setCheckable(checkable);
    connect(action, signal, this, slot);
    return action;
}

void GlobalTimelineWidget::CreateActions()
{
    const char* const triggered = SIGNAL(triggered());
    const char* const switched = SIGNAL(triggered(bool));
    const char* const takeType = SLOT(SetDisplayType());
    mRangeStartAction = CreateAction(QStringLiteral("rangeStartAction"), tr("Range Start to Current"), false,
                                     triggered, SLOT(SetRangeStartToPosition()));
    mRangeEndAction = CreateAction(QStringLiteral("rangeEndAction"), tr("Range End to Current"), false,
                                   triggered, SLOT(SetRangeEndToPosition()));
    mResetRangeAction = CreateAction(QStringLiteral("resetRangeAction"), tr("Reset Playback Range"), false,
                                     triggered, SLOT(ResetRange()));
    mFrameNumbersGlobalAction = CreateAction(QStringLiteral("frameNumbersGlobalAction"),
                                             tr("Frame Numbers (Global)"), true, triggered, takeType);
    mFrameNumbersRangeAction = CreateAction(QStringLiteral("frameNumbersRangeAction"),
                                            tr("Frame Numbers (Range)"), true, triggered, takeType);
    mTimeCodeAction =
        CreateAction(QStringLiteral("timeCodeAction"), tr("Time Code"), true, triggered, takeType);
    mSecondsAction = CreateAction(QStringLiteral("secondsAction"), tr("Seconds"), true, triggered, takeType);
    mPositionAction = CreateAction(QStringLiteral("positionAction"), tr("Position Timeline at Top"), true,
                                   switched, SLOT(SetPositionAtTop(bool)));
    mTimeBookmarksAction = CreateAction(QStringLiteral("timeBookmarksAction"), tr("Frame Bookmarks"), true,
                                        switched, SLOT(ShowTimeBookmarks(bool)));
    mRangeBookmarksAction = CreateAction(QStringLiteral("rangeBookmarksAction"), tr("Range Bookmarks"), true,
                                         switched, SLOT(ShowRangeBookmarks(bool)));
    mCacheAction =
        CreateAction(QStringLiteral("cacheAction"), tr("Cache"), true, switched, SLOT(ShowCache(bool)));
}

bool GlobalTimelineWidget::HitsRange(QPoint pos)
{
    return !RangeIsWhole() && mRangeRect.contains(pos);
}

bool GlobalTimelineWidget::HitsRangeStart(QPoint pos)
{
    return mRangeStartRect.contains(pos);
}

bool GlobalTimelineWidget::HitsRangeEnd(QPoint pos)
{
    return mRangeEndRect.contains(pos);
}

void GlobalTimelineWidget::RequestTimeAtPosition(QPoint pos, bool audioScrub)
{
    const int frame = PixelToFrame(pos.x());
    if (frame != mPlaybackFrame)
        Q_EMIT TimeChangeRequested(SeekTime(FrameToTime(frame)), audioScrub);
}

void GlobalTimelineWidget::FocusParent()
{
    if (parentWidget() != nullptr)
        parentWidget()->setFocus(Qt::OtherFocusReason);
}

void GlobalTimelineWidget::mousePressEvent(QMouseEvent* event)
{
    FocusParent();
    if (event->button() != Qt::LeftButton)
    {
        QWidget::mousePressEvent(event);
        return;
    }
    // A press never asks for sound, whatever the setting: sound follows from the move.
    const QPoint pos = event->pos();
    if (HitsRange(pos))
    {
        mDraggingRange = true;
        mDragRangeLength = WrappingDifference(mRangeEndFrame, mRangeStartFrame);
        RequestTimeAtPosition(pos, false);
    }
    else if (HitsRangeStart(pos))
    {
        mDraggingRangeStart = true;
        Q_EMIT TimeChangeRequested(SeekTime(FrameToTime(mRangeStartFrame)), false);
    }
    else if (HitsRangeEnd(pos))
    {
        mDraggingRangeEnd = true;
        Q_EMIT TimeChangeRequested(SeekTime(FrameToTime(mRangeEndFrame)), false);
    }
    else
    {
        mScrubbing = true;
        RequestTimeAtPosition(pos, false);
    }
    Q_EMIT ScrubStateChanged(true);
    // The parent sees the press too.
    event->ignore();
}

void GlobalTimelineWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pos = event->pos();
    if (event->buttons() == Qt::NoButton)
    {
        mHoverRange = HitsRange(pos);
        mHoverRangeStart = HitsRangeStart(pos);
        mHoverRangeEnd = HitsRangeEnd(pos);
        mUpdatePending = true;
        return;
    }
    if (event->buttons() != Qt::LeftButton)
    {
        QWidget::mouseMoveEvent(event);
        return;
    }
    // The drag of the whole range always asks for sound and a handle's drag never does; both are meant so.
    if (mDraggingRangeStart)
        DragRange(pos, true, false, false);
    else if (mDraggingRangeEnd)
        DragRange(pos, false, true, false);
    else if (mDraggingRange)
        DragRange(pos, true, true, true);
    else if (mScrubbing)
        RequestTimeAtPosition(pos, Settings::audioScrub);
}

void GlobalTimelineWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
    {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    mScrubbing = false;
    mDraggingRange = false;
    mDraggingRangeStart = false;
    mDraggingRangeEnd = false;
    Q_EMIT ScrubStateChanged(false);
    event->ignore();
}

void GlobalTimelineWidget::leaveEvent(QEvent*)
{
    mHoverRange = false;
    mHoverRangeStart = false;
    mHoverRangeEnd = false;
    mUpdatePending = true;
}

void GlobalTimelineWidget::DragRange(QPoint pos, bool moveStart, bool moveEnd, bool audioScrub)
{
    int target = PixelToFrame(pos.x());
    const int delta = WrappingDifference(target, mPlaybackFrame);
    int newStart = moveStart ? WrappingSum(mRangeStartFrame, delta) : mRangeStartFrame;
    int newEnd = moveEnd ? WrappingSum(mRangeEndFrame, delta) : mRangeEndFrame;

    // A range that was squeezed against an end of the timeline grows back to its old length.
    if (mDraggingRange && WrappingDifference(newEnd, newStart) < mDragRangeLength)
    {
        if (newStart <= 1 || newEnd >= mFrameCount)
        {
            mPinnedAtStart = newStart == 1;
        }
        else if (mPinnedAtStart)
        {
            newStart = std::max(WrappingDifference(mRangeEndFrame, mDragRangeLength), 1);
            const int length = WrappingDifference(mRangeEndFrame, mRangeStartFrame);
            if (length > mDragRangeLength)
                newStart = WrappingSum(newStart, WrappingDifference(length, mDragRangeLength));
        }
        else
        {
            newEnd = std::min(WrappingSum(newStart, mDragRangeLength), mFrameCount);
        }
    }

    // An end cannot pass the other, and stops the playhead with it.
    if (moveStart && newStart >= newEnd)
    {
        newStart = WrappingDifference(newEnd, 1);
        target = newStart;
    }
    else if (moveEnd && newEnd <= newStart)
    {
        newEnd = WrappingSum(newStart, 1);
        target = newEnd;
    }

    newStart = WithinTimeline(newStart, mFrameCount);
    newEnd = WithinTimeline(newEnd, mFrameCount);
    if (newStart != mRangeStartFrame || newEnd != mRangeEndFrame)
        Q_EMIT RangeChangeRequested(FrameToTime(newStart), FrameToTime(newEnd));
    if (target != mPlaybackFrame)
        Q_EMIT TimeChangeRequested(SeekTime(FrameToTime(target)), audioScrub);
}

void GlobalTimelineWidget::ShowContextMenu(QPoint pos)
{
    UpdateMenuActions(pos.x());
    QMenu menu;
    menu.addActions({mRangeStartAction, mRangeEndAction, mResetRangeAction});
    menu.addSeparator();
    menu.addActions({mFrameNumbersGlobalAction, mFrameNumbersRangeAction, mTimeCodeAction, mSecondsAction});
    menu.addSeparator();
    QMenu* const display = menu.addMenu(tr("Display"));
    display->addAction(mPositionAction);
    display->addSeparator();
    display->addAction(mTimeBookmarksAction);
    if (ShowRangeBookmarksInMenu())
        display->addAction(mRangeBookmarksAction);
    display->addAction(mCacheAction);
    menu.exec(mapToGlobal(pos));
}

void GlobalTimelineWidget::UpdateMenuActions(int x)
{
    mFrameNumbersGlobalAction->setChecked(mDisplayType == FrameNumbersGlobal);
    mFrameNumbersRangeAction->setChecked(mDisplayType == FrameNumbersRange);
    mTimeCodeAction->setChecked(mDisplayType == TimeCode);
    mSecondsAction->setChecked(mDisplayType == Seconds);

    int frame = PixelToFrame(x);
    const int64_t fromPlayhead = static_cast<int64_t>(x) - FrameToPixel(mPlaybackFrame);
    if (frame == mPlaybackFrame || (fromPlayhead >= -PlayheadReach && fromPlayhead <= PlayheadReach))
    {
        frame = mPlaybackFrame;
        mRangeStartAction->setText(tr("Range Start to Current"));
        mRangeEndAction->setText(tr("Range End to Current"));
    }
    else
    {
        mRangeStartAction->setText(tr("Range Start to ") + FormatFrame(frame));
        mRangeEndAction->setText(tr("Range End to ") + FormatFrame(frame));
    }
    mRangeStartAction->setData(frame);
    mRangeEndAction->setData(frame);

    mPositionAction->setChecked(Settings::globalTimelineAtTop);
    mTimeBookmarksAction->setChecked(Settings::globalTimelineShowTimeBookmarks);
    mRangeBookmarksAction->setChecked(Settings::globalTimelineShowRangeBookmarks);
    mCacheAction->setChecked(Settings::globalTimelineShowCache);
}

void GlobalTimelineWidget::SetRangeStartToPosition()
{
    const int frame = mRangeStartAction->data().toInt();
    int end = mRangeEndFrame;
    if (frame > end)
        end = std::min(WrappingSum(WrappingDifference(end, mRangeStartFrame), frame), mFrameCount);
    Q_EMIT RangeChangeRequested(FrameToTime(frame), FrameToTime(end));
}

void GlobalTimelineWidget::SetRangeEndToPosition()
{
    const int frame = mRangeEndAction->data().toInt();
    int start = mRangeStartFrame;
    if (frame < start)
        start = std::max(WrappingSum(WrappingDifference(start, mRangeEndFrame), frame), 1);
    Q_EMIT RangeChangeRequested(FrameToTime(start), FrameToTime(frame));
}

void GlobalTimelineWidget::ResetRange()
{
    Q_EMIT RangeChangeRequested(mStartTime, mEndTime);
}

void GlobalTimelineWidget::SetDisplayType()
{
    const QObject* const action = sender();
    if (action == mFrameNumbersGlobalAction)
        SetDisplayType(FrameNumbersGlobal);
    else if (action == mSecondsAction)
        SetDisplayType(Seconds);
    else if (action == mTimeCodeAction)
        SetDisplayType(TimeCode);
    else if (action == mFrameNumbersRangeAction)
        SetDisplayType(FrameNumbersRange);
}

void GlobalTimelineWidget::SetPositionAtTop(bool top)
{
    Q_EMIT PositionChangeRequested(top);
}
