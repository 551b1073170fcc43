// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/MetaTypes.h"

#include <QWidget>

#include <cstdint>

class QLabel;
class SmoothSlider;

/// A plain slider timeline: a position between 0 and a duration, without a project object.
///
/// The host feeds SetDuration() and SetPlaybackTime(); the widget reports what the user picks and never
/// echoes what the host set.
class TORVALENUI_EXPORT BasicTimelineWidget : public QWidget
{
    Q_OBJECT

public:
    explicit BasicTimelineWidget(QWidget* parent = nullptr);

Q_SIGNALS:
    /// The user picked @p playbackTime (microseconds, a whole per cent of the duration). The host answers
    /// with SetPlaybackTime().
    void PlaybackTimeChanged(int64_t playbackTime);

public Q_SLOTS:
    /// Moves the handle to @p playbackTime (microseconds, held between 0 and the duration) and shows it in
    /// seconds; while the user holds the handle, only the text follows.
    void SetPlaybackTime(int64_t playbackTime);
    /// Shows @p duration (microseconds) in seconds. A duration that is not above 0 keeps the handle at 0. The
    /// handle moves with the next SetPlaybackTime().
    void SetDuration(int64_t duration);
    /// Reports the slider's value, unless the widget itself has just set it.
    void OnTimelineValueChanged();

private:
    void CreateWidgets();
    void CreateLayout();

    SmoothSlider* mSlider = nullptr;
    QLabel* mTimeLabel = nullptr;
    QLabel* mDurationLabel = nullptr;
    QLabel* mFrameRateLabel = nullptr;
    int64_t mDuration = 0;
    bool mEmitChanges = true;
};
