// SPDX-License-Identifier: MIT
#include "media/ToneTable.h"

#include <array>
#include <cmath>

namespace
{

using Table = std::array<quint8, 65536>;

/// Value of the half float with the bits @p bits; negative ones and NaN are 0.
double HalfValue(unsigned bits)
{
    const unsigned exponent = bits >> 10 & 31U;
    const unsigned fraction = bits & 1023U;
    if ((bits & 0x8000U) != 0 || (exponent == 31 && fraction != 0))
        return 0.0;
    if (exponent == 31)
        return HUGE_VAL;
    if (exponent == 0)
        return std::ldexp(double(fraction), -24);
    return std::ldexp(double(fraction + 1024), int(exponent) - 25);
}

double SrgbCurve(double linear)
{
    return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
}

} // namespace

const quint8* ToneTable::HalfToSrgb()
{
    static const Table table = []
    {
        Table made{};
        for (unsigned bits = 0; bits < made.size(); ++bits)
        {
            const double linear = HalfValue(bits);
            made[bits] = linear >= 1.0 ? quint8(255) : quint8(std::lround(SrgbCurve(linear) * 255.0));
        }
        return made;
    }();
    return table.data();
}

const quint8* ToneTable::IntegerToByte()
{
    static const Table table = []
    {
        Table made{};
        for (unsigned value = 0; value < made.size(); ++value)
            made[value] = quint8((value * 255U + 32767U) / 65535U);
        return made;
    }();
    return table.data();
}
