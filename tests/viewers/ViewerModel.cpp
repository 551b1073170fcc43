// SPDX-License-Identifier: MIT
#include "viewers/ViewerModel.h"

#include "host/Settings.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

QSize SlotOf(ViewerLayout layout, const QSize& size)
{
    switch (layout)
    {
    case Horizontal:
        return QSize(size.width() / 2, size.height());
    case Vertical:
        return QSize(size.width(), size.height() / 2);
    default:
        return size;
    }
}

/// The largest size of the picture's shape within the box, by whole-number arithmetic.
QSize Fit(const QSize& picture, const QSize& box)
{
    const qint64 widthAtFullHeight = qint64(box.height()) * picture.width() / picture.height();
    if (widthAtFullHeight <= box.width())
        return QSize(int(widthAtFullHeight), box.height());
    return QSize(box.width(), int(qint64(box.width()) * picture.height() / picture.width()));
}

QSize ShownSize(const QSize& picture, ViewerLayout layout, const QSize& size)
{
    // A picture that is too narrow for one pixel of its slot vanishes. Any other is fitted into the fitted
    // size once more, which may take a pixel.
    const QSize fitted = Fit(picture, SlotOf(layout, size));
    return fitted.isEmpty() ? QSize(0, 0) : Fit(picture, fitted).expandedTo(QSize(1, 1));
}

int HalfTruncated(int room)
{
    return int(std::trunc(room * 0.5));
}

void CopyPixels(QImage& canvas, const QImage& picture, const QPoint& at)
{
    for (int y = 0; y < picture.height(); ++y)
    {
        for (int x = 0; x < picture.width(); ++x)
        {
            if (canvas.rect().contains(at + QPoint(x, y)))
                canvas.setPixelColor(at + QPoint(x, y), QColor(picture.pixel(x, y)));
        }
    }
}

QImage Blank(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(QColor(0, 0, 0, 0));
    return image;
}

bool IsFreehandType(DrawType type)
{
    return type == DrawPencil || type == DrawEraser;
}

void SetOverlayHints(QPainter& painter)
{
    for (const int hint : {0x01, 0x02, 0x08})
        painter.setRenderHint(static_cast<QPainter::RenderHint>(hint));
}

float ThirtySixDegrees()
{
    const quint32 bits = 0x3F20D97C;
    float radians;
    std::memcpy(&radians, &bits, sizeof(radians));
    return radians;
}

/// One barb's end: the unit vector from tip to tail turned by @p radians, 0.022 long.
QPointF Barb(const QPointF& tail, const QPointF& tip, float radians)
{
    const double c = double(cosf(radians));
    const double s = double(sinf(radians));
    const QPointF shaft = tail - tip;
    const float x = float(c * shaft.x() - s * shaft.y());
    const float y = float(c * shaft.y() + s * shaft.x());
    const double squared = double(x) * double(x) + double(y) * double(y);
    double length = std::sqrt(squared);
    if (std::abs(squared) <= 1e-12)
        return tip;
    if (std::abs(squared - 1.0) <= 1e-12)
        length = 1.0;
    return tip + QPointF(double(float(x / length) * 0.022f), double(float(y / length) * 0.022f));
}

} // namespace

QRect ViewerModel::PictureRect(const QSize& picture, ViewerLayout layout, int viewer, const QSize& size)
{
    const QSize slotSize = SlotOf(layout, size);
    const QSize shownSize = ShownSize(picture, layout, size);
    QPoint corner(HalfTruncated(slotSize.width() - shownSize.width()),
                  HalfTruncated(slotSize.height() - shownSize.height()));
    if (layout == Horizontal)
        corner += viewer == 0 ? QPoint(1, 0) : QPoint(slotSize.width() - 1, 0);
    if (layout == Vertical)
        corner += viewer == 0 ? QPoint(0, -1) : QPoint(0, slotSize.height() - 1);
    return QRect(corner, shownSize);
}

QPointF ViewerModel::SlotCentre(ViewerLayout layout, int viewer, const QSize& size)
{
    const double quarter = viewer == 0 ? 0.25 : 0.75;
    return QPointF(size.width() * (layout == Horizontal ? quarter : 0.5),
                   size.height() * (layout == Vertical ? quarter : 0.5));
}

QPointF ViewerModel::ToPixel(int viewer, const QPointF& point) const
{
    return SlotCentre(layout, viewer, size) + double(shown[viewer].width()) * point;
}

QPointF ViewerModel::ToDrawSpace(int viewer, const QPoint& pixel) const
{
    const QPointF centre = SlotCentre(layout, viewer, size);
    const float scale = float(shown[viewer].width());
    return QPointF(double((float(pixel.x()) - float(centre.x())) / scale),
                   double((float(pixel.y()) - float(centre.y())) / scale));
}

bool ViewerModel::Shows(int viewer) const
{
    return layout != Single || viewer == single;
}

bool ViewerModel::Empty(int viewer) const
{
    return (!current[viewer] || current[viewer]->lastIndex < 0) && previous[viewer].empty() &&
           next[viewer].empty();
}

QRect ViewerModel::Half(int viewer) const
{
    QRect half;
    const int hw = HalfTruncated(size.width());
    const int hh = HalfTruncated(size.height());
    if (layout == Horizontal && viewer == 0)
        half.setCoords(0, 0, hw - 1, size.height() - 1);
    else if (layout == Horizontal)
        half.setCoords(hw, 0, hw + size.width() - 1, size.height() - 1);
    else if (viewer == 0)
        half.setCoords(0, 0, size.width() - 1, hh - 1);
    else
        half.setCoords(0, hh, size.width() - 1, hh + size.height() - 1);
    return half;
}

QImage ViewerModel::Paint()
{
    return Paint(QImage(size, QImage::Format_RGB32));
}

QImage ViewerModel::Paint(QImage canvas)
{
    const bool reuse = painted && annotationsOnly && !stored.isNull() && visible;
    painted = true;
    if (!reuse)
        annotationsOnly = false;
    canvas.fill(QColor(0, 0, 0));
    if (reuse)
        CopyPixels(canvas, stored, QPoint(0, 0));
    else
        PaintPictures(canvas);
    if (!visible || (Empty(0) && Empty(1)))
        return canvas;
    PaintOverlay(canvas);
    if (reuse)
    {
        overlay = scratch;
        annotationsOnly = false;
    }
    return canvas;
}

void ViewerModel::PaintPictures(QImage& canvas)
{
    for (int viewer = 0; viewer < 2; ++viewer)
    {
        if (!Shows(viewer) || pictures[viewer].isNull())
            continue;
        const QRect place = PictureRect(pictures[viewer].size(), layout, viewer, size);
        if (!Settings::onlyDisplayAnnotations && !place.isEmpty())
        {
            const QImage scaled = pictures[viewer]
                                      .convertToFormat(QImage::Format_RGB32)
                                      .scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            CopyPixels(canvas, scaled, place.topLeft());
        }
        shown[viewer] = place.size();
        if (layout == Single || viewer == 0)
            imageDisplay = place.size();
    }
    if (store)
        stored = canvas.convertToFormat(QImage::Format_ARGB32);
    for (int viewer = 0; viewer < 2; ++viewer)
        lastDraw[viewer] = lastPoint[viewer] = -1;
    overlay = scratch = QImage();
}

void ViewerModel::PaintOverlay(QImage& canvas)
{
    QPainter canvasPainter(&canvas);
    if (!annotationsOnly || overlay.isNull())
        overlay = Blank(size);
    {
        QPainter overlayPainter(&overlay);
        SetOverlayHints(overlayPainter);
        for (int viewer = 0; viewer < 2; ++viewer)
        {
            if (!Shows(viewer))
                continue;
            if (layout != Single)
                overlayPainter.setClipRect(Half(viewer));
            const FrameData* const frame = current[viewer];
            if (annotationsOnly && viewer == active && frame && frame->lastIndex >= 0 &&
                lastDraw[viewer] >= 0)
                PaintStroke(canvasPainter, viewer);
            else
                PaintEverything(canvasPainter, overlayPainter, viewer);
        }
    }
    if (annotationsOnly && !(control && !Settings::drawEnabled))
        PaintPreview(canvasPainter);
}

void ViewerModel::PaintStroke(QPainter& canvasPainter, int viewer)
{
    const FrameData& frame = *current[viewer];
    const int last = frame.lastIndex;
    const bool freehand = IsFreehandType(frame.drawData.at(last).type);
    scratch = overlay.copy();
    {
        QPainter painter(&scratch);
        painter.setRenderHint(QPainter::Antialiasing);
        if (layout != Single)
            painter.setClipRect(Half(viewer));
        const int done = lastDraw[viewer];
        if (freehand || done < last - 1)
            PaintDrawing(painter, frame, done, lastPoint[viewer], viewer, -1);
        // As many passes as there are new entries, each with the newest one; a shape is not among them.
        const int passes = last - done - (freehand ? 0 : 1);
        for (int pass = 0; pass < passes; ++pass)
            PaintDrawing(painter, frame, last, -1, viewer, -1);
    }
    canvasPainter.drawImage(0, 0, scratch);
    lastDraw[viewer] = freehand ? last : last - 1;
    lastPoint[viewer] = freehand ? frame.drawData.at(last).points.size() - 1 : -1;
    if (!freehand)
        PaintDrawing(canvasPainter, frame, last, -1, viewer, -1);
}

void ViewerModel::PaintEverything(QPainter& canvasPainter, QPainter& overlayPainter, int viewer)
{
    PaintGhostList(overlayPainter, previous[viewer], Settings::annotationGhostPreviousNumFrames, viewer);
    PaintGhostList(overlayPainter, next[viewer], Settings::annotationGhostNextNumFrames, viewer);
    const FrameData* const frame = current[viewer];
    if (frame && frame->lastIndex >= 0)
    {
        PaintFrame(overlayPainter, *frame, viewer, -1);
        lastDraw[viewer] = frame->lastIndex;
        lastPoint[viewer] = frame->drawData.at(frame->lastIndex).points.size() - 1;
    }
    canvasPainter.drawImage(0, 0, overlay);
}

void ViewerModel::PaintGhostList(QPainter& overlayPainter, const QList<const FrameData*>& ghosts, int count,
                                 int viewer)
{
    const int span = Settings::annotationGhostAlphaMax - Settings::annotationGhostAlphaMin;
    const int step = count < 1 ? 0 : span / count;
    for (int place = 0; place < ghosts.size(); ++place)
    {
        // Counted from the strong end, which a short list keeps.
        const int stepsFromFaint = count - ghosts.size() + place;
        PaintFrame(overlayPainter, *ghosts.at(place), viewer,
                   Settings::annotationGhostAlphaMin + stepsFromFaint * step);
    }
}

void ViewerModel::PaintFrame(QPainter& overlayPainter, const FrameData& frame, int viewer, int alpha)
{
    if (!Settings::annotationGhostAccurate)
    {
        for (int entry = frame.firstIndex; entry <= frame.lastIndex; ++entry)
            PaintDrawing(overlayPainter, frame, entry, -1, viewer, alpha);
        return;
    }
    QImage alone = Blank(size);
    {
        QPainter painter(&alone);
        SetOverlayHints(painter);
        for (int entry = frame.firstIndex; entry <= frame.lastIndex; ++entry)
            PaintDrawing(painter, frame, entry, -1, viewer, alpha);
    }
    overlayPainter.drawImage(0, 0, alone);
}

void ViewerModel::PaintDrawing(QPainter& painter, const FrameData& frame, int entry, int startPoint,
                               int viewer, int alpha)
{
    // A host may have taken away what a stroke was to be continued from.
    if (entry >= frame.drawData.size())
        return;
    const DrawData& drawing = frame.drawData.at(entry);
    if (drawing.type == DrawNone || drawing.points.size() < 2)
        return;
    QColor color = drawing.color;
    if (alpha >= 0 && alpha <= 255)
        color.setAlpha(alpha);
    QPen pen(color);
    pen.setWidthF(double(drawing.width * float(shown[viewer].width())));
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    painter.setCompositionMode(drawing.type == DrawEraser ? QPainter::CompositionMode_Clear
                                                          : QPainter::CompositionMode_Source);
    QVector<QPointF> pixels;
    for (const QPointF& point : drawing.points)
        pixels << ToPixel(viewer, point);
    const auto barbTo = [&](float radians)
    { return ToPixel(viewer, Barb(drawing.points.at(0), drawing.points.at(1), radians)); };
    switch (drawing.type)
    {
    case DrawPencil:
    case DrawEraser:
        for (int k = startPoint < 1 ? 1 : startPoint; k < pixels.size(); ++k)
            painter.drawLine(QLineF(pixels[k - 1], pixels[k]));
        break;
    case DrawLine:
        painter.drawLine(QLineF(pixels[0], pixels[1]));
        break;
    case DrawOval:
        painter.drawEllipse(QRectF(pixels[0], pixels[1]));
        break;
    case DrawRectangle:
        painter.drawRects(QVector<QRectF>{QRectF(pixels[0], pixels[1])});
        break;
    case DrawArrow:
        painter.drawLine(QLineF(pixels[0], pixels[1]));
        painter.drawLine(QLineF(pixels[1], barbTo(ThirtySixDegrees())));
        painter.drawLine(QLineF(pixels[1], barbTo(-ThirtySixDegrees())));
        break;
    case DrawText:
        PaintWords(painter, drawing, viewer, Settings::textToolActive && entry == frame.lastIndex);
        break;
    default:
        break;
    }
}

void ViewerModel::PaintWords(QPainter& painter, const DrawData& drawing, int viewer, bool boxed)
{
    QFont font;
    font.setStyleHint(QFont::Helvetica, QFont::PreferDefault);
    if (shown[viewer].width() > 0)
        font.setPointSizeF(double(drawing.width * float(shown[viewer].width()) * 4.0f));
    painter.setFont(font);
    QRectF bounds;
    painter.drawText(QRectF(ToPixel(viewer, drawing.points.at(0)), QSizeF(4096, 4096)), Qt::AlignLeft,
                     drawing.text.isEmpty() ? QString(QLatin1Char(' ')) : drawing.text, &bounds);
    if (!boxed)
        return;
    QPen pen = painter.pen();
    pen.setWidth(2);
    painter.setPen(pen);
    // Four pixels out left and right, two above, four below.
    painter.drawRect(bounds.adjusted(-4, -2, 4, 4));
}

void ViewerModel::PaintPreview(QPainter& canvasPainter)
{
    QPen pen(QColor(160, 160, 164));
    pen.setWidthF(1.0);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    canvasPainter.setPen(pen);
    if (Settings::annotationTool == Text && !Settings::textToolActive)
        canvasPainter.drawRect(QRectF(cursor.x(), cursor.y(), 5, 15));
    if (Settings::annotationTool == Pencil || Settings::annotationTool == Eraser)
    {
        const int r = int(std::trunc(double(Settings::drawWidth) * shown[0].width() * 0.5 + 1.0));
        canvasPainter.drawEllipse(cursor, r, r);
    }
}
