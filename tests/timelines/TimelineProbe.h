// SPDX-License-Identifier: MIT
#pragma once

#include "timelines/GlobalTimelineWidget.h"
#include "timelines/RangeTimelineWidget.h"

/// A timeline with its inner state open to tests.
template<typename Base>
class TimelineProbe : public Base
{
public:
    using Base::Base;

    using Base::DragRange;
    using Base::FormatFrame;
    using Base::FrameToPixel;
    using Base::HitsRange;
    using Base::HitsRangeEnd;
    using Base::HitsRangeStart;
    using Base::PixelToFrame;
    using Base::UpdateMenuActions;

    using Base::mBarAreaWidth;
    using Base::mBarAreaX;
    using Base::mBarEndX;
    using Base::mBarStartX;
    using Base::mBarWidth;
    using Base::mBarX;
    using Base::mBodyHeight;
    using Base::mBodyY;
    using Base::mCacheBarY;
    using Base::mElementStripY;
    using Base::mFrameWidth;
    using Base::mHandleY;
    using Base::mLabelOffsetX;
    using Base::mLabelRowY;
    using Base::mLeftPanelWidth;
    using Base::mLeftPanelX;
    using Base::mPlayheadX;
    using Base::mPlayheadY;
    using Base::mRightPanelWidth;
    using Base::mRightPanelX;
    using Base::mScrubBarY;

    using Base::mActualFrameRate;
    using Base::mCacheEndFrame;
    using Base::mCacheEndTime;
    using Base::mCacheStartFrame;
    using Base::mCacheStartTime;
    using Base::mDesiredFrameRate;
    using Base::mDisplayType;
    using Base::mElementInfos;
    using Base::mEndTime;
    using Base::mFrameCount;
    using Base::mPlaybackFrame;
    using Base::mPlaybackTime;
    using Base::mPlaying;
    using Base::mRangeEndFrame;
    using Base::mRangeEndTime;
    using Base::mRangeLimitTime;
    using Base::mRangeStartFrame;
    using Base::mRangeStartTime;
    using Base::mSpeedMultiplier;
    using Base::mStartTime;
    using Base::mSteppedPlayback;
    using Base::mUpdatePending;
    using Base::mUpdateTimer;

    using Base::mDraggingRange;
    using Base::mDraggingRangeEnd;
    using Base::mDraggingRangeStart;
    using Base::mDragRangeLength;
    using Base::mHoverRange;
    using Base::mHoverRangeEnd;
    using Base::mHoverRangeStart;
    using Base::mPinnedAtStart;
    using Base::mRangeEndRect;
    using Base::mRangeRect;
    using Base::mRangeStartRect;
    using Base::mScrubbing;

    /// Paints since the last call.
    int TakePaints()
    {
        const int paints = mPaints;
        mPaints = 0;
        return paints;
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++mPaints;
        Base::paintEvent(event);
    }

private:
    int mPaints = 0;
};

using GlobalProbe = TimelineProbe<GlobalTimelineWidget>;
using RangeProbe = TimelineProbe<RangeTimelineWidget>;
