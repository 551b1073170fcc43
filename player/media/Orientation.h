// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <cstdint>

/// One of the eight ways in which a stored picture can lie: turned by quarters and mirrored.
///
/// The shown pixel of the stored one at (x, y), measured from the centre, is (a x + c y, b x + d y).
struct Orientation
{
    int a = 1;
    int b = 0;
    int c = 0;
    int d = 1;

    bool IsUpright() const { return a == 1 && d == 1; }
    /// Whether width and height change places.
    bool IsTurned() const { return a == 0; }

    /// Of the Exif tag's value (1 to 8); others are upright.
    static Orientation FromExif(int value);
    /// Of a movie's display matrix (9 numbers, 16.16); one that is no quarter turn is upright.
    static Orientation FromDisplayMatrix(const int32_t* matrix);
};

/// @p image shown in @p orientation; the same image if that is upright. RGB32 and RGB888 alone.
QImage Oriented(const QImage& image, const Orientation& orientation);
