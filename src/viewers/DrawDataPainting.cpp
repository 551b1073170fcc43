// SPDX-License-Identifier: MIT
#include "viewers/DrawDataPainting.h"

#include "host/FrameData.h"
#include "host/Settings.h"
#include "viewers/AnnotationOverlay.h"
#include "viewers/DrawSpace.h"

#include <QFont>
#include <QPainter>
#include <QVector2D>

#include <algorithm>
#include <cmath>

namespace
{

/// 36 degrees in radians.
constexpr float ArrowHeadAngle = 0.62831855f;
/// Length of a barb in draw space.
constexpr float ArrowHeadLength = 0.022f;
/// Point size of a text for one pixel of pen width.
constexpr float TextPointsPerPixel = 4.0f;
constexpr qreal TextRectangleSize = 4096.0;
constexpr int TextBoxPenWidth = 2;

void PaintText(QPainter* painter, const DrawData& drawing, const QPointF& position, float scale, bool boxed)
{
    QFont font;
    // A size of 0, before the first paint, would only raise a warning.
    if (const float points = drawing.width * scale * TextPointsPerPixel; points > 0.0f)
        font.setPointSizeF(static_cast<qreal>(points));
    font.setStyleHint(QFont::Helvetica, QFont::PreferDefault);
    painter->setFont(font);

    // A blank gives a new text a box to show.
    const QString text = drawing.text.isEmpty() ? QStringLiteral(" ") : drawing.text;
    QRectF bounds;
    painter->drawText(QRectF(position, QSizeF(TextRectangleSize, TextRectangleSize)), Qt::AlignLeft, text,
                      &bounds);
    if (!boxed)
        return;

    QPen pen = painter->pen();
    pen.setWidth(TextBoxPenWidth);
    painter->setPen(pen);
    const qreal b = TextBoxPenWidth;
    painter->drawRect(
        QRectF(bounds.x() - 2 * b, bounds.y() - b, bounds.width() + 4 * b, bounds.height() + 3 * b));
}

} // namespace

QPointF DrawDataPainting::ArrowHeadPoint(const QPointF& tail, const QPointF& tip, float angle)
{
    const double c = static_cast<double>(std::cos(angle));
    const double s = static_cast<double>(std::sin(angle));
    const double dx = tail.x() - tip.x();
    const double dy = tail.y() - tip.y();
    const QVector2D barb =
        QVector2D(static_cast<float>(c * dx - s * dy), static_cast<float>(c * dy + s * dx)).normalized();
    return QPointF(tip.x() + static_cast<double>(barb.x() * ArrowHeadLength),
                   tip.y() + static_cast<double>(barb.y() * ArrowHeadLength));
}

void DrawDataPainting::Paint(QPainter* painter, const DrawData& drawing, int startPoint,
                             const DrawSpace& space, int alpha, bool boxed)
{
    if (drawing.type == DrawNone)
        return;

    QColor color = drawing.color;
    if (static_cast<unsigned int>(alpha) <= 255u)
        color.setAlpha(alpha);
    painter->setPen(QPen(QBrush(color, Qt::SolidPattern), static_cast<qreal>(drawing.width * space.scale),
                         Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    // True of a text as well: it shows only once it has two points.
    if (drawing.points.size() < 2)
        return;

    // Drawings replace what lies under them, alpha included, instead of blending. The mode stays set on the
    // painter, and callers rely on it.
    painter->setCompositionMode(drawing.type == DrawEraser ? QPainter::CompositionMode_Clear
                                                           : QPainter::CompositionMode_Source);
    const QPointF first = space.ToPixel(drawing.points[0]);
    const QPointF second = space.ToPixel(drawing.points[1]);
    switch (drawing.type)
    {
    case DrawPencil:
    case DrawEraser:
        // Line by line: in one path the joints would be covered once instead of twice.
        for (int point = std::max(startPoint, 1); point < drawing.points.size(); ++point)
            painter->drawLine(space.ToPixel(drawing.points[point - 1]), space.ToPixel(drawing.points[point]));
        break;
    case DrawText:
        PaintText(painter, drawing, first, space.scale, boxed);
        break;
    case DrawLine:
        painter->drawLine(first, second);
        break;
    case DrawOval:
        painter->drawEllipse(QRectF(first, second));
        break;
    case DrawArrow:
    {
        painter->drawLine(first, second);
        for (const float angle : {ArrowHeadAngle, -ArrowHeadAngle})
        {
            const QPointF head = ArrowHeadPoint(drawing.points[0], drawing.points[1], angle);
            painter->drawLine(second, space.ToPixel(head));
        }
        break;
    }
    case DrawRectangle:
    {
        const QRectF rectangle(first, second);
        painter->drawRects(&rectangle, 1);
        break;
    }
    case DrawNone:
        break;
    }
}

QPointF AnnotationOverlay::GetArrowHeadPoint(const QPointF& tail, const QPointF& tip, float angle)
{
    return DrawDataPainting::ArrowHeadPoint(tail, tip, angle);
}

void AnnotationOverlay::PaintDrawData(QPainter* painter, const FrameData* frame, int entry, int startPoint,
                                      int viewerIndex, int alpha)
{
    if (entry < 0 || entry >= frame->drawData.size())
        return;
    const DrawData drawing = frame->drawData[entry];
    const bool boxed = Settings::textToolActive && entry == frame->lastIndex;
    DrawDataPainting::Paint(painter, drawing, startPoint, SpaceOf(viewerIndex), alpha, boxed);
}
