// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

/// Two pans are the same place if neither axis differs by more than 1e-12.
bool SamePan(const QPointF& a, const QPointF& b);

/// @p pan with each axis within -1 and 1; an axis that is not a number becomes 0.
QPointF ClampPan(const QPointF& pan);

/// Where an enlarged back end stands in its viewer.
struct PanZoomPlacement
{
    /// Size and position of the back end in its parent, in pixels.
    QRect geometry;
    /// Offset of the running drag, in units of pan. Meaningful if the zoom is not 1.
    QPointF delta;
    /// The pan on screen: committed pan and drag together, clamped. Meaningful if the zoom is not 1.
    QPointF current;
};

/// Places a back end enlarged @p zoom times in a viewer of @p size. @p pan is the committed pan, where 0 is
/// centred and ±1 puts that edge of the picture at the viewer's edge; @p dragOffset is the cursor's way in
/// the running drag, in pixels.
PanZoomPlacement PlacePanZoom(const QSize& size, float zoom, const QPointF& pan, const QPoint& dragOffset);
