// SPDX-License-Identifier: MIT
#include "support/PictureCompare.h"

#include <QDir>

#include <algorithm>
#include <cstdlib>

namespace
{

int LargestDifference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

} // namespace

QByteArray PictureDifference(const QImage& actual, const QImage& expected, int tolerance)
{
    if (actual.size() != expected.size())
        return QStringLiteral("the size is %1 x %2, expected %3 x %4")
            .arg(actual.width())
            .arg(actual.height())
            .arg(expected.width())
            .arg(expected.height())
            .toUtf8();
    const QImage a = actual.convertToFormat(QImage::Format_ARGB32);
    const QImage b = expected.convertToFormat(QImage::Format_ARGB32);
    int count = 0;
    QPoint first;
    for (int y = 0; y < a.height(); ++y)
    {
        const auto* rowA = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* rowB = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x)
        {
            if (LargestDifference(rowA[x], rowB[x]) <= tolerance)
                continue;
            if (count++ == 0)
                first = QPoint(x, y);
        }
    }
    if (count == 0)
        return {};
    const QString actualPath = QDir::temp().filePath(QStringLiteral("picture-actual.png"));
    const QString expectedPath = QDir::temp().filePath(QStringLiteral("picture-expected.png"));
    a.save(actualPath);
    b.save(expectedPath);
    return QStringLiteral("%1 pixels differ, the first at (%2, %3): #%4, expected #%5; see %6 and %7")
        .arg(count)
        .arg(first.x())
        .arg(first.y())
        .arg(a.pixel(first), 8, 16, QLatin1Char('0'))
        .arg(b.pixel(first), 8, 16, QLatin1Char('0'))
        .arg(actualPath, expectedPath)
        .toUtf8();
}
