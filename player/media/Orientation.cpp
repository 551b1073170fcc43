// SPDX-License-Identifier: MIT
#include "media/Orientation.h"

#include "media/PicturePool.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace
{

/// -1, 0 or 1 for a number of 16.16 that is near enough to one of them, otherwise 2.
int UnitOf(double number)
{
    const double rounded = std::round(number);
    return std::abs(rounded) <= 1.0 && std::abs(number - rounded) < 0.02 ? int(rounded) : 2;
}

template<int PixelBytes>
void Move(const QImage& from, QImage& to, const Orientation& orientation)
{
    // Where the stored picture's corner goes, so that every shown position is 0 or more.
    const int x0 = (orientation.a < 0 ? from.width() - 1 : 0) + (orientation.c < 0 ? from.height() - 1 : 0);
    const int y0 = (orientation.b < 0 ? from.width() - 1 : 0) + (orientation.d < 0 ? from.height() - 1 : 0);
    uchar* const target = to.bits();
    const qsizetype rowBytes = to.bytesPerLine();
    const qsizetype step = qsizetype(orientation.a) * PixelBytes + orientation.b * rowBytes;
    for (int y = 0; y < from.height(); ++y)
    {
        const uchar* source = from.constScanLine(y);
        uchar* pixel = target + (y0 + qsizetype(orientation.d) * y) * rowBytes +
                       (x0 + qsizetype(orientation.c) * y) * PixelBytes;
        for (int x = 0; x < from.width(); ++x)
        {
            std::memcpy(pixel, source, PixelBytes);
            source += PixelBytes;
            pixel += step;
        }
    }
}

} // namespace

Orientation Orientation::FromExif(int value)
{
    static const Orientation table[] = {{1, 0, 0, 1}, {-1, 0, 0, 1}, {-1, 0, 0, -1}, {1, 0, 0, -1},
                                        {0, 1, 1, 0}, {0, 1, -1, 0}, {0, -1, -1, 0}, {0, -1, 1, 0}};
    return value >= 1 && value <= 8 ? table[value - 1] : Orientation();
}

Orientation Orientation::FromDisplayMatrix(const int32_t* matrix)
{
    const double across = std::hypot(double(matrix[0]), double(matrix[1]));
    const double down = std::hypot(double(matrix[3]), double(matrix[4]));
    if (across <= 0.0 || down <= 0.0)
        return {};
    const Orientation orientation{UnitOf(matrix[0] / across), UnitOf(matrix[1] / across),
                                  UnitOf(matrix[3] / down), UnitOf(matrix[4] / down)};
    const bool isQuarterTurn = orientation.a * orientation.c + orientation.b * orientation.d == 0 &&
                               std::abs(orientation.a) + std::abs(orientation.b) == 1 &&
                               std::abs(orientation.c) + std::abs(orientation.d) == 1;
    return isQuarterTurn ? orientation : Orientation();
}

QImage Oriented(const QImage& image, const Orientation& orientation)
{
    if (image.isNull() || orientation.IsUpright())
        return image;
    QImage shown =
        PicturePool::Take(orientation.IsTurned() ? image.size().transposed() : image.size(), image.format());
    if (shown.isNull())
        return image;
    if (image.format() == QImage::Format_RGB888)
        Move<3>(image, shown, orientation);
    else
        Move<4>(image, shown, orientation);
    return shown;
}
