// SPDX-License-Identifier: MIT
#include "timelines/TimelineFormulas.h"

#include <cmath>

namespace Formula
{

int32_t Low32(int64_t value)
{
    int64_t low = value & 0xffffffffLL;
    if (low >= 0x80000000LL)
        low -= 0x100000000LL;
    return static_cast<int32_t>(low);
}

int32_t Cut(double value)
{
    if (!(value == value))
        return 0;
    if (value >= 2147483647.0)
        return 2147483647;
    if (value <= -2147483648.0)
        return INT32_MIN;
    return static_cast<int32_t>(value < 0 ? std::ceil(value) : std::floor(value));
}

int GlobalPixel(int64_t frame, int count, int barX, int barWidth)
{
    if (count == 0 || frame <= 1)
        return barX;
    float pixel = static_cast<float>(Low32(barWidth * (frame - 1)));
    pixel /= static_cast<float>(count);
    pixel += static_cast<float>(barX);
    return Cut(static_cast<double>(pixel));
}

int GlobalFrame(int64_t x, int count, int barX, int areaWidth)
{
    const int64_t dx = x - barX;
    if (dx <= 0)
        return 1;
    if (dx >= areaWidth)
        return count;
    const double exact = static_cast<double>(Low32((static_cast<int64_t>(count) - 1) * dx)) / areaWidth;
    const double nearest = exact < 0 ? std::ceil(exact - 0.5) : std::floor(exact + 0.5);
    return static_cast<int>(nearest) + 1;
}

int RangePixel(int64_t frame, int64_t first, int64_t last, int barX, int barWidth)
{
    if (frame <= first || first >= last)
        return barX;
    if (frame > last)
        return barX + barWidth;
    float pixel = static_cast<float>(Low32((frame - first) * barWidth));
    pixel /= static_cast<float>(last - first + 1);
    pixel += static_cast<float>(barX);
    return Cut(static_cast<double>(pixel));
}

int RangeFrame(int64_t x, int64_t first, int64_t last, int barX, int areaWidth, int scale)
{
    const int64_t dx = x - barX;
    if (dx <= 0)
        return static_cast<int>(first);
    if (dx >= areaWidth)
        return static_cast<int>(last);
    const float share = static_cast<float>(Low32((last - first) * dx)) / static_cast<float>(scale);
    return Low32(first + Cut(static_cast<double>(std::roundf(share))));
}

float GlobalFrameWidth(int barWidth, int count)
{
    return count >= 1 ? static_cast<float>(barWidth) / static_cast<float>(count) : 0.0f;
}

float RangeFrameWidth(int barWidth, int64_t frames)
{
    if (frames <= 0)
        return 2.0f;
    const int64_t quotient = barWidth / frames;
    return quotient < 2 ? 2.0f : static_cast<float>(quotient);
}

QString TimeCodeByCounting(int frame, int rate)
{
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    int frames = 0;
    for (int f = 1; f < frame; ++f)
    {
        if (++frames == rate)
        {
            frames = 0;
            ++seconds;
        }
        if (seconds == 60)
        {
            seconds = 0;
            ++minutes;
        }
        if (minutes == 60)
        {
            minutes = 0;
            ++hours;
        }
    }
    QString text;
    if (hours > 0)
        text = QString::asprintf("%02d:", hours);
    return text + QString::asprintf("%02d:%02d:%02d", minutes, seconds, frames);
}

QString TimeCode(int frame, float rate)
{
    int64_t fps = 1;
    if (rate > 0)
        fps = std::llround(static_cast<double>(rate));
    if (fps == 0)
        fps = 1;
    const int64_t f = static_cast<int64_t>(frame) - 1;
    const int64_t parts[4] = {f / (fps * 3600), f / (fps * 60) % 60, f / fps % 60, f % fps};
    QString text;
    for (int i = 0; i < 4; ++i)
    {
        if (i == 0 && parts[0] < 1)
            continue;
        if (!text.isEmpty())
            text += QLatin1Char(':');
        if (parts[i] < 1)
            text += QStringLiteral("00");
        else if (parts[i] < 10)
            text += QLatin1Char('0') + QString::number(parts[i]);
        else
            text += QString::number(parts[i]);
    }
    return text;
}

} // namespace Formula
