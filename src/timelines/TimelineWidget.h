// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/MetaTypes.h"
#include "host/ProjectObject.h"

#include <QWidget>

#include <cstdint>
#include <memory>

/// A strip that shows where playback stands on a Timeline object, and through which the user asks for another
/// frame or another playback range.
///
/// It owns no playback and moves nothing by itself: the user's wish leaves through a signal, and the picture
/// follows when the host calls the matching slot. Times are microseconds on the timeline's clock, frames
/// count from 1. Instances come from UiHelpers. After SetTimeline() the host calls SetPlaybackRange(),
/// SetPlaybackTime() and SetDesiredFrameRate().
class TORVALENUI_EXPORT TimelineWidget : public QWidget
{
    Q_OBJECT

public:
    explicit TimelineWidget(QWidget* parent = nullptr);
    ~TimelineWidget() override;

    /// The current frame; 0 before the first SetPlaybackTime().
    virtual int GetPlaybackFrame() = 0;
    /// First and last frame of the playback range.
    virtual int GetRangeStartFrame() = 0;
    virtual int GetRangeEndFrame() = 0;
    /// Start time of the frame that lies @p frameOffset frames behind the current one (before it, if
    /// negative), as the timeline object converts it; 0 without a timeline.
    virtual int64_t GetPlaybackTimeAtOffset(int frameOffset) = 0;
    /// Start times of the first and of the last frame of the playback range; 0 without a timeline.
    virtual int64_t GetRangeStartTime() = 0;
    virtual int64_t GetRangeEndTime() = 0;
    /// The measured rate, in frames per second, as SetActualFrameRate() was told.
    virtual double GetActualFrameRate() = 0;

public Q_SLOTS:
    // The parameter's name belongs to the interface.
    /// Shows another timeline. The widget keeps it weakly: one that is empty or has gone away shows as an
    /// empty bar.
    virtual void SetTimeline(std::weak_ptr<ProjectObject> mTimelineObject) = 0;
    /// Moves the playhead to the frame that holds @p playbackTime and repaints; a time within the current
    /// frame changes nothing.
    virtual void SetPlaybackTime(int64_t playbackTime) = 0;
    /// Takes the playback range, cut to the timeline; the repaint comes with the next timer tick.
    virtual void SetPlaybackRange(int64_t rangeStartTime, int64_t rangeEndTime) = 0;
    /// Takes the nominal rate in frames per second. Time codes count a rate that is not above 0 as 1.
    virtual void SetDesiredFrameRate(float desiredFrameRate) = 0;
    /// Takes the measured rate in frames per second; a negative one counts as 0.
    virtual void SetActualFrameRate(float actualFrameRate) = 0;
    /// Takes the range of frames that are ready to be shown; an end that is not after the start hides its
    /// line.
    virtual void SetCachedRange(int64_t cacheStartTime, int64_t cacheEndTime) = 0;
    /// Takes how many times faster than nominal playback runs; 1 shows the measured rate instead.
    virtual void SetPlaybackSpeedMultiplier(float multiplier) = 0;
    /// Says whether each frame is shown, however long it takes. It causes no repaint by itself.
    virtual void SetSteppedPlaybackEnabled(bool enabled) = 0;

Q_SIGNALS:
    /// A left press begins (true) or ends (false).
    void ScrubStateChanged(bool enabled);
    /// The user asks for another frame: @p time is its start time plus Settings::ROUNDING_ERROR_EXTRA_TIME,
    /// and
    /// @p audioScrub whether a grain of sound is wanted. The host answers with SetPlaybackTime().
    void TimeChangeRequested(int64_t time, bool audioScrub);
    /// The user asks for another playback range, by the start times of its first and last frame. The host
    /// answers with SetPlaybackRange().
    void RangeChangeRequested(int64_t rangeStartTime, int64_t rangeEndTime);
    /// The user wants the timeline above the viewers (true) or below. The host moves it and writes the
    /// setting.
    void PositionChangeRequested(bool top);
};
