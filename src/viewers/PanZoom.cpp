// SPDX-License-Identifier: MIT
#include "viewers/PanZoom.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

constexpr double SamePanLimit = 1e-12;

double ClampPanAxis(double value)
{
    return std::isnan(value) ? 0.0 : std::min(std::max(value, -1.0), 1.0);
}

/// The drag's way on one axis in units of pan; @p half is how far the picture can move each way.
float PanDeltaAxis(float half, int dragOffset)
{
    // A zoom so small that the picture is not a pixel larger leaves nothing to pan.
    if (half == 0.0f)
        return 0.0f;
    const float delta = 1.0f - (half - static_cast<float>(std::abs(dragOffset))) / half;
    return dragOffset < 0 ? -delta : delta;
}

} // namespace

bool SamePan(const QPointF& a, const QPointF& b)
{
    return std::abs(a.x() - b.x()) <= SamePanLimit && std::abs(a.y() - b.y()) <= SamePanLimit;
}

QPointF ClampPan(const QPointF& pan)
{
    return QPointF(ClampPanAxis(pan.x()), ClampPanAxis(pan.y()));
}

PanZoomPlacement PlacePanZoom(const QSize& size, float zoom, const QPointF& pan, const QPoint& dragOffset)
{
    const int scaledWidth = qRound(size.width() * static_cast<double>(zoom));
    const int scaledHeight = qRound(size.height() * static_cast<double>(zoom));
    int x = size.width() / 2 - scaledWidth / 2;
    int y = size.height() / 2 - scaledHeight / 2;

    PanZoomPlacement placement;
    if (zoom != 1.0f)
    {
        const float halfWidth = static_cast<float>(scaledWidth - size.width()) * 0.5f;
        const float halfHeight = static_cast<float>(scaledHeight - size.height()) * 0.5f;
        placement.delta = QPointF(static_cast<double>(PanDeltaAxis(halfWidth, dragOffset.x())),
                                  static_cast<double>(PanDeltaAxis(halfHeight, dragOffset.y())));
        placement.current = ClampPan(pan + placement.delta);
        x += static_cast<int>(static_cast<double>(halfWidth) * placement.current.x());
        y += static_cast<int>(static_cast<double>(halfHeight) * placement.current.y());
    }
    placement.geometry = QRect(x, y, scaledWidth, scaledHeight);
    return placement;
}
