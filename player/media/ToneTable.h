// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Tables of 65,536 entries that take 16 bits of a picture to the 8 that are shown.
namespace ToneTable
{

/// Indexed by the bits of a half float, which is linear light: the sRGB transfer curve, rounded to the
/// nearest of 0 to 255. Negative values and NaN are 0, values above 1 and infinity are 255.
const quint8* HalfToSrgb();

/// Indexed by an integer of 0 to 65535: scaled to 0 to 255 and rounded to the nearest.
const quint8* IntegerToByte();

} // namespace ToneTable
