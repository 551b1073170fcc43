// SPDX-License-Identifier: MIT
#pragma once

#include "media/ToneTable.h"

#include <QColor>
#include <QtEndian>

/// How rows of stored values become rows of a picture.
namespace PictureRows
{

/// Where the shown colours lie within a pixel's values.
struct Channels
{
    /// First of the file's channels that is read, and how many.
    int begin = 0;
    int count = 0;
    /// Within those.
    int red = 0;
    int green = 0;
    int blue = 0;
    /// -1 if colours are not to be multiplied by it.
    int alpha = -1;
};

/// Takes stored values to shown bytes.
struct ByteTone
{
    quint8 operator()(quint8 value) const { return value; }
    quint8 operator()(quint8 value, quint8 alpha) const { return quint8((value * alpha + 127) / 255); }
};

struct IntegerTone
{
    const quint8* table = ToneTable::IntegerToByte();

    quint8 operator()(quint16 value) const { return table[value]; }
    quint8 operator()(quint16 value, quint16 alpha) const
    {
        constexpr uint64_t scale = uint64_t(65535) * 65535;
        return quint8((uint64_t(value) * alpha * 255 + scale / 2) / scale);
    }
};

struct HalfTone
{
    const quint8* table = ToneTable::HalfToSrgb();

    quint8 operator()(quint16 bits) const { return table[bits]; }
    // Floating point formats hold colours that are multiplied by alpha already.
    quint8 operator()(quint16 bits, quint16) const { return table[bits]; }
};

struct Rgb32Pixels
{
    static constexpr int Bytes = 4;
    static void Put(uchar* pixel, quint8 red, quint8 green, quint8 blue)
    {
        *reinterpret_cast<QRgb*>(pixel) = qRgb(red, green, blue);
    }
};

struct Rgb888Pixels
{
    static constexpr int Bytes = 3;
    static void Put(uchar* pixel, quint8 red, quint8 green, quint8 blue)
    {
        pixel[0] = red;
        pixel[1] = green;
        pixel[2] = blue;
    }
};

/// @p width pixels of @p channels.count values each.
template<typename Pixels, typename Value, typename Tone>
void PutPacked(const Value* source, uchar* target, int width, const Channels& channels, const Tone& tone)
{
    const int step = channels.count;
    if (channels.alpha >= 0)
    {
        for (int x = 0; x < width; ++x, source += step, target += Pixels::Bytes)
        {
            const Value alpha = source[channels.alpha];
            Pixels::Put(target, tone(source[channels.red], alpha), tone(source[channels.green], alpha),
                        tone(source[channels.blue], alpha));
        }
        return;
    }
    const Value* const red = source + channels.red;
    const Value* const green = source + channels.green;
    const Value* const blue = source + channels.blue;
    for (int x = 0, i = 0; x < width; ++x, i += step, target += Pixels::Bytes)
        Pixels::Put(target, tone(red[i]), tone(green[i]), tone(blue[i]));
}

/// @p width pixels whose values lie in three rows.
template<typename Pixels, typename Value, typename Tone>
void PutPlanes(const Value* red, const Value* green, const Value* blue, uchar* target, int width,
               const Tone& tone)
{
    for (int x = 0; x < width; ++x, target += Pixels::Bytes)
        Pixels::Put(target, tone(red[x]), tone(green[x]), tone(blue[x]));
}

} // namespace PictureRows
