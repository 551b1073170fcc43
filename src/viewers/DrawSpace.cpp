// SPDX-License-Identifier: MIT
#include "viewers/DrawSpace.h"

DrawSpace DrawSpace::Of(ViewerLayout layout, int index, const QSize& size, qreal displayWidth)
{
    const float quarter = index == 0 ? 0.25f : 0.75f;
    const float partX = layout == Horizontal ? quarter : 0.5f;
    const float partY = layout == Vertical ? quarter : 0.5f;
    DrawSpace space;
    space.centerX = static_cast<float>(size.width()) * partX;
    space.centerY = static_cast<float>(size.height()) * partY;
    space.scale = static_cast<float>(displayWidth);
    return space;
}

QPointF DrawSpace::FromPixel(const QPoint& pixel) const
{
    return QPointF(static_cast<double>((static_cast<float>(pixel.x()) - centerX) / scale),
                   static_cast<double>((static_cast<float>(pixel.y()) - centerY) / scale));
}

QPointF DrawSpace::ToPixel(const QPointF& point) const
{
    const double factor = static_cast<double>(scale);
    return QPointF(factor * point.x() + static_cast<double>(centerX),
                   factor * point.y() + static_cast<double>(centerY));
}

QRect ViewerHalf(ViewerLayout layout, int index, const QSize& size)
{
    const int halfWidth = static_cast<int>(static_cast<float>(size.width()) * 0.5f);
    const int halfHeight = static_cast<int>(static_cast<float>(size.height()) * 0.5f);
    if (layout == Horizontal)
        return index == 0 ? QRect(0, 0, halfWidth, size.height())
                          : QRect(halfWidth, 0, size.width(), size.height());
    return index == 0 ? QRect(0, 0, size.width(), halfHeight)
                      : QRect(0, halfHeight, size.width(), size.height());
}
