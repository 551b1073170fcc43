// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

/// The arithmetic between time, frame and pixel. Integer and float widths are part of the result: pixels and
/// frames are 32 bits wide, and what overflows there wraps.
namespace TimelineMapping
{

/// Sum, difference and product that wrap in 32 bits.
int WrappingSum(int a, int b);
int WrappingDifference(int a, int b);
int WrappingProduct(int a, int b);

/// @p value cut towards zero, held within what an `int` can hold; 0 for no number.
int Truncated(double value);

/// Left edge of @p frame where @p frameCount frames share a bar of @p barWidth pixels at @p barX.
int FrameToPixel(int frame, int frameCount, int barX, int barWidth);
/// Frame under @p x. Not the inverse of FrameToPixel(): the first pixel gives frame 1 and the last one @p
/// frameCount.
int PixelToFrame(int x, int frameCount, int barX, int barAreaWidth);
/// Pixels for one frame, with a fraction; 0 without frames.
float FrameWidth(int barWidth, int frameCount);

/// Left edge of @p frame where the frames @p rangeStart to @p rangeEnd share the bar; frames outside stick to
/// the bar's ends.
int RangeFrameToPixel(int frame, int rangeStart, int rangeEnd, int barX, int barWidth);
/// Frame under @p x: within the bar area, in proportion to @p scaleWidth pixels.
int RangePixelToFrame(int x, int rangeStart, int rangeEnd, int barX, int barAreaWidth, int scaleWidth);
/// Whole pixels for one of @p frameCount frames, at least @p narrowest.
float RangeFrameWidth(int barWidth, int frameCount, int narrowest);

/// Right edge of the frame that begins at @p pixel: how the end of every span is placed.
int FrameRightEdge(int pixel, float frameWidth);

/// The time to ask for so that the frame that begins at @p time (microseconds) is found again.
int64_t SeekTime(int64_t time);

/// @p time (microseconds) in seconds with two decimals.
QString SecondsText(int64_t time);
/// Time code of @p frame (from 1) at @p frameRate frames per second, rounded and at least 1; hours only from
/// 1 up.
QString TimeCodeText(int frame, float frameRate);

} // namespace TimelineMapping
