// SPDX-License-Identifier: MIT
#include "timelines/TimelineMapping.h"

#include "host/Settings.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace TimelineMapping
{

int WrappingSum(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

int WrappingDifference(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

int WrappingProduct(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}

int Truncated(double value)
{
    if (std::isnan(value))
        return 0;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, lowest, highest));
}

int FrameToPixel(int frame, int frameCount, int barX, int barWidth)
{
    if (frame < 2 || frameCount == 0)
        return barX;
    const auto product = static_cast<float>(WrappingProduct(barWidth, frame - 1));
    const float pixel = product / static_cast<float>(frameCount) + static_cast<float>(barX);
    return Truncated(static_cast<double>(pixel));
}

int PixelToFrame(int x, int frameCount, int barX, int barAreaWidth)
{
    const int64_t dx = static_cast<int64_t>(x) - barX;
    if (dx < 1)
        return 1;
    if (dx >= barAreaWidth)
        return frameCount;
    const int product = WrappingProduct(WrappingDifference(frameCount, 1), static_cast<int>(dx));
    return Truncated(std::round(static_cast<double>(product) / barAreaWidth)) + 1;
}

float FrameWidth(int barWidth, int frameCount)
{
    if (frameCount < 1)
        return 0.0f;
    return static_cast<float>(barWidth) / static_cast<float>(frameCount);
}

int RangeFrameToPixel(int frame, int rangeStart, int rangeEnd, int barX, int barWidth)
{
    if (frame <= rangeStart || rangeStart >= rangeEnd)
        return barX;
    if (frame > rangeEnd)
        return WrappingSum(barWidth, barX);
    const auto product = static_cast<float>(WrappingProduct(WrappingDifference(frame, rangeStart), barWidth));
    const auto frames = static_cast<float>(WrappingSum(WrappingDifference(rangeEnd, rangeStart), 1));
    return Truncated(static_cast<double>(product / frames + static_cast<float>(barX)));
}

int RangePixelToFrame(int x, int rangeStart, int rangeEnd, int barX, int barAreaWidth, int scaleWidth)
{
    const int64_t dx = static_cast<int64_t>(x) - barX;
    if (dx <= 0)
        return rangeStart;
    if (dx >= barAreaWidth)
        return rangeEnd;
    const int length = WrappingDifference(rangeEnd, rangeStart);
    const auto product = static_cast<float>(WrappingProduct(length, static_cast<int>(dx)));
    const float frames = std::round(product / static_cast<float>(scaleWidth));
    return WrappingSum(rangeStart, Truncated(static_cast<double>(frames)));
}

float RangeFrameWidth(int barWidth, int frameCount, int narrowest)
{
    const int whole = frameCount > 0 ? barWidth / frameCount : narrowest;
    return static_cast<float>(std::max(whole, narrowest));
}

int FrameRightEdge(int pixel, float frameWidth)
{
    return Truncated(static_cast<double>(static_cast<float>(pixel) + frameWidth));
}

int64_t SeekTime(int64_t time)
{
    return static_cast<int64_t>(static_cast<uint64_t>(time) +
                                static_cast<uint64_t>(Settings::ROUNDING_ERROR_EXTRA_TIME));
}

QString SecondsText(int64_t time)
{
    return QString::number(static_cast<double>(time) / 1000000.0, 'f', 2);
}

QString TimeCodeText(int frame, float frameRate)
{
    const double rate = frameRate > 0.0f ? static_cast<double>(frameRate) : 1.0;
    const int64_t fps = std::max(Truncated(std::round(rate)), 1);
    const int64_t f = static_cast<int64_t>(frame) - 1;
    const auto field = [](int64_t value)
    { return value < 1 ? QStringLiteral("00") : QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0')); };
    QStringList fields{field(f / (fps * 60) % 60), field(f / fps % 60), field(f % fps)};
    const int64_t hours = f / (fps * 3600);
    if (hours >= 1)
        fields.prepend(field(hours));
    return fields.join(QLatin1Char(':'));
}

} // namespace TimelineMapping
