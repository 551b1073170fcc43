// SPDX-License-Identifier: MIT
#pragma once

#include "host/Bookmarks.h"
#include "host/Timeline.h"

#include <functional>
#include <memory>

/// A timeline of a host: elements, a start, and conversions that a test may replace.
class FakeTimeline : public Timeline
{
public:
    /// Elements of @p lengths frames, one behind the other, at @p framesPerSecond.
    explicit FakeTimeline(const QList<int>& lengths = {}, int framesPerSecond = 24, int64_t startTime = 0);

    QList<ElementInfo> GetElementInfos() override { return elements; }
    int64_t GetStartTime() override { return startTime; }
    int64_t GetEndTime() override { return endTime; }
    int TimeToFrame(int64_t time) override { return timeToFrame(time); }
    int64_t FrameToTime(int frame) override { return frameToTime(frame); }

    /// Adds a bookmark at @p time, with or without a drawing.
    void Mark(int64_t time, bool annotated);
    void MarkFrame(int frame, bool annotated) { Mark(frameToTime(frame), annotated); }

    QList<ElementInfo> elements;
    int64_t startTime = 0;
    /// Start of the last frame.
    int64_t endTime = 0;
    std::function<int(int64_t)> timeToFrame;
    std::function<int64_t(int)> frameToTime;
};
