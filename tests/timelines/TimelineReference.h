// SPDX-License-Identifier: MIT
#pragma once

#include "host/TimelineDisplayType.h"
#include "timelines/FakeTimeline.h"

#include <QFont>
#include <QImage>
#include <QRandomGenerator>

#include <memory>
#include <optional>

class TimelineWidget;

/// Everything that a timeline's picture depends on, apart from the settings' flags.
struct TimelineState
{
    int width = 800;
    /// Device pixels for one pixel.
    double pixelRatio = 1.0;
    /// Empty for a widget without a timeline.
    std::shared_ptr<FakeTimeline> timeline;
    int64_t rangeStart = 0;
    int64_t rangeEnd = 0;
    int64_t playback = 0;
    int64_t cacheStart = 0;
    int64_t cacheEnd = 0;
    float desiredRate = 24.0f;
    float actualRate = 0.0f;
    float multiplier = 1.0f;
    bool stepped = false;
    TimelineDisplayType displayType = FrameNumbersGlobal;
    bool hoverRange = false;
    bool hoverStart = false;
    bool hoverEnd = false;
    /// Where the mouse stands over the widget, if it does.
    std::optional<QPoint> cursor;
};

/// A random state; the settings' flags are drawn with it.
TimelineState RandomTimelineState(QRandomGenerator& random);

/// Drives @p widget into @p state through its slots.
void ApplyTimelineState(TimelineWidget* widget, const TimelineState& state);

/// The picture of the global timeline and of the range timeline, drawn a second way.
QImage GlobalTimelinePicture(const TimelineState& state, const QFont& font, QImage::Format format);
QImage RangeTimelinePicture(const TimelineState& state, const QFont& font, QImage::Format format);
