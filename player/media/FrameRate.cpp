// SPDX-License-Identifier: MIT
#include "media/FrameRate.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{

constexpr int64_t Second = 1000000;
// 68 years; a time beyond it would leave 64 bits below.
constexpr int64_t LastSecond = int64_t(1) << 31;
constexpr FrameRate DefaultRate{24, 1};

} // namespace

double FrameRate::PerSecond() const
{
    return IsValid() ? double(numerator) / denominator : DefaultRate.PerSecond();
}

int64_t FrameRate::FrameToTime(int64_t frame) const
{
    if (!IsValid())
        return DefaultRate.FrameToTime(frame);
    // Whole seconds and the rest apart, so that no product leaves 64 bits.
    const int64_t units = std::max<int64_t>(frame - 1, 0) * denominator;
    const int64_t rest = (units % numerator) * Second;
    return units / numerator * Second + (rest + numerator - 1) / numerator;
}

int64_t FrameRate::TimeToFrame(int64_t time) const
{
    if (!IsValid())
        return DefaultRate.TimeToFrame(time);
    if (time <= 0)
        return 1;
    time = std::min(time, LastSecond * Second);
    const int64_t units = time / Second * numerator;
    const int64_t rest = units % denominator * Second + time % Second * numerator;
    return units / denominator + rest / (denominator * Second) + 1;
}

FrameRate FrameRate::FromPerSecond(double perSecond)
{
    if (!std::isfinite(perSecond) || perSecond < 0.001 || perSecond > 100000.0)
        return DefaultRate;
    const double whole = std::round(perSecond);
    if (std::abs(perSecond - whole) < 0.0005)
        return {int(whole), 1};
    const double times1001 = std::round(perSecond * 1.001);
    if (std::abs(perSecond - times1001 / 1.001) < 0.0051 && times1001 >= 1.0)
        return {int(times1001) * 1000, 1001};
    const int thousandths = int(std::round(perSecond * 1000.0));
    const int divisor = std::gcd(thousandths, 1000);
    return {thousandths / divisor, 1000 / divisor};
}
