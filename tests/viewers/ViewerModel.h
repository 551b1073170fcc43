// SPDX-License-Identifier: MIT
#pragma once

#include "host/FrameData.h"
#include "host/ViewerLayout.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

class QPainter;

/// A second statement of what the viewers show: the pictures, the annotations over them, and what one paint
/// leaves behind for the next. Tests drive it beside the viewer and compare the two pixel by pixel.
///
/// It shares no code with the viewers but QPainter itself, and reads the same Settings.
class ViewerModel
{
public:
    /// Where a picture stands: the rectangle it covers in the widget.
    static QRect PictureRect(const QSize& picture, ViewerLayout layout, int viewer, const QSize& size);
    /// Centre of a viewer's slot, in pixels.
    static QPointF SlotCentre(ViewerLayout layout, int viewer, const QSize& size);

    /// What a paint shows on a widget of the kind of @p canvas, whose old content must not matter.
    QImage Paint(QImage canvas);
    QImage Paint();

    QPointF ToPixel(int viewer, const QPointF& point) const;
    QPointF ToDrawSpace(int viewer, const QPoint& pixel) const;

    // What the host decides
    QSize size;
    ViewerLayout layout = Single;
    int single = 0;
    int active = 0;
    bool visible = true;
    bool store = false;
    bool annotationsOnly = false;
    QImage pictures[2];
    const FrameData* current[2] = {nullptr, nullptr};
    QList<const FrameData*> previous[2];
    QList<const FrameData*> next[2];
    /// The mouse cursor in the viewer's pixels, and whether Ctrl is held.
    QPoint cursor;
    bool control = false;

    // What a paint leaves
    bool painted = false;
    QSize shown[2] = {QSize(0, 0), QSize(0, 0)};
    QSize imageDisplay = QSize(0, 0);
    int lastDraw[2] = {-1, -1};
    int lastPoint[2] = {-1, -1};
    QImage stored;
    QImage overlay;
    QImage scratch;

private:
    bool Shows(int viewer) const;
    bool Empty(int viewer) const;
    QRect Half(int viewer) const;
    void PaintPictures(QImage& canvas);
    void PaintOverlay(QImage& canvas);
    void PaintStroke(QPainter& canvasPainter, int viewer);
    void PaintEverything(QPainter& canvasPainter, QPainter& overlayPainter, int viewer);
    void PaintGhostList(QPainter& overlayPainter, const QList<const FrameData*>& ghosts, int count,
                        int viewer);
    void PaintFrame(QPainter& overlayPainter, const FrameData& frame, int viewer, int alpha);
    void PaintPreview(QPainter& canvasPainter);
    void PaintDrawing(QPainter& painter, const FrameData& frame, int entry, int startPoint, int viewer,
                      int alpha);
    void PaintWords(QPainter& painter, const DrawData& drawing, int viewer, bool boxed);
};
