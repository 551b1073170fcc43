// SPDX-License-Identifier: MIT
#pragma once

#include "host/ViewerLayout.h"

#include <QPointF>
#include <QRect>
#include <QSize>

/// The normalised space in which drawings are stored, for one viewer's slot of a back end.
///
/// Its origin is the centre of the slot; one unit, on both axes, is the displayed width of the viewer's
/// picture. A drawing therefore keeps its place and size on the picture through resizes, layout changes and
/// zoom.
struct DrawSpace
{
    /// Centre of the slot, in pixels of the back end.
    float centerX = 0.0f;
    float centerY = 0.0f;
    /// Displayed width of the picture, in pixels; 0 before the first paint.
    float scale = 0.0f;

    /// The space of viewer @p index (0 or 1) in a back end of @p size, showing a picture @p displayWidth
    /// wide.
    static DrawSpace Of(ViewerLayout layout, int index, const QSize& size, qreal displayWidth);

    /// @p pixel of the back end in draw space; not finite while the scale is 0.
    QPointF FromPixel(const QPoint& pixel) const;
    /// @p point of draw space in pixels of the back end.
    QPointF ToPixel(const QPointF& point) const;
};

/// The half of a back end of @p size that viewer @p index has in a two-viewer layout. The second half runs
/// past the edge by as much as the first half takes.
QRect ViewerHalf(ViewerLayout layout, int index, const QSize& size);
