// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

/// The timelines' arithmetic written a second time: what the product is compared with.
namespace Formula
{

/// The lower 32 bits of @p value.
int32_t Low32(int64_t value);
/// @p value without its fraction, held within 32 bits.
int32_t Cut(double value);

int GlobalPixel(int64_t frame, int count, int barX, int barWidth);
int GlobalFrame(int64_t x, int count, int barX, int areaWidth);
int RangePixel(int64_t frame, int64_t first, int64_t last, int barX, int barWidth);
int RangeFrame(int64_t x, int64_t first, int64_t last, int barX, int areaWidth, int scale);
float GlobalFrameWidth(int barWidth, int count);
float RangeFrameWidth(int barWidth, int64_t frames);
/// @p rate is taken as given, so it must be a whole number above 0.
QString TimeCodeByCounting(int frame, int rate);
QString TimeCode(int frame, float rate);

} // namespace Formula
