// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCommonExport.h"

#include <QColor>
#include <QList>
#include <QPointF>
#include <QString>

#include <cstdint>

/// The kind of a drawing.
enum DrawType : uint32_t
{
    DrawPencil = 0,   ///< polyline of all points
    DrawEraser = 1,   ///< polyline of all points that clears what lies under it
    DrawText = 2,     ///< text at the first point; needs two points to show
    DrawLine = 3,     ///< line from the first to the second point
    DrawOval = 4,     ///< ellipse in the rectangle of the first two points
    DrawArrow = 5,    ///< line from the first to the second point with a head at the second
    DrawNone = 6,     ///< nothing
    DrawRectangle = 7 ///< rectangle of the first two points
};

/// One drawing on one frame.
struct TORVALENCOMMON_EXPORT DrawData
{
    DrawData();
    DrawData(const DrawData& other);
    DrawData& operator=(const DrawData& other);
    ~DrawData();

    /// Points in draw space: the origin is the centre of the viewer's slot and one unit, on both axes, is the
    /// width of the displayed picture.
    QList<QPointF> points;
    /// Tells drawings apart across edits; the library does not read it.
    uint64_t id = 0;
    /// Pen width as a fraction of the displayed picture's width; for a text a quarter of its point size.
    float width = 0.0f;
    /// Colour, alpha included.
    QColor color;
    DrawType type = DrawNone;
    /// What a DrawText says.
    QString text;
};
