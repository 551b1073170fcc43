// SPDX-License-Identifier: MIT
#include "annotation/StrokeController.h"

#include "annotation/AnnotationStore.h"
#include "annotation/FullPaint.h"
#include "annotation/SetDrawingsCommand.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

#include <QUndoStack>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace
{

/// How far a click without a move is drawn, in draw space: a drawing of one point paints nothing.
constexpr qreal DotLength = 1e-4;

/// A tool that draws by pressing and dragging, and what it draws.
struct StrokeTool
{
    AnnotationToolType tool;
    DrawType type;
    const char* undoText;
};

constexpr StrokeTool StrokeTools[] = {
    {Pencil, DrawPencil, QT_TRANSLATE_NOOP("StrokeController", "Draw")},
    {Eraser, DrawEraser, QT_TRANSLATE_NOOP("StrokeController", "Erase")},
    {Arrow, DrawArrow, QT_TRANSLATE_NOOP("StrokeController", "Draw Arrow")},
    {Oval, DrawOval, QT_TRANSLATE_NOOP("StrokeController", "Draw Oval")},
    {Rectangle, DrawRectangle, QT_TRANSLATE_NOOP("StrokeController", "Draw Rectangle")},
};

bool IsShape(const DrawData& drawing)
{
    return drawing.type != DrawPencil && drawing.type != DrawEraser;
}

bool IsFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

uint64_t NextDrawingID()
{
    static uint64_t last = 0;
    return ++last;
}

StrokeController::StrokeController(ViewerWidget* viewer, QUndoStack* undoStack, TargetOf targetOf,
                                   QObject* parent)
    : QObject(parent), mViewer(viewer), mUndoStack(undoStack), mTargetOf(std::move(targetOf))
{
}

bool StrokeController::IsDrawing() const
{
    return mTarget.store != nullptr;
}

int StrokeController::DrawingViewer() const
{
    return IsDrawing() ? mViewerIndex : -1;
}

int StrokeController::ViewerAt(const QPoint& globalPos) const
{
    // Zoomed, the viewer's own answer takes the far part of the picture for outside; strokes must go where
    // they are drawn.
    const QWidget* const backEnd = BackEndOf(mViewer);
    const QPoint local = backEnd->mapFromGlobal(globalPos);
    switch (mViewer->GetViewerLayout())
    {
    case Horizontal:
        return local.x() * 2 > backEnd->width() ? 1 : 0;
    case Vertical:
        return local.y() * 2 > backEnd->height() ? 1 : 0;
    case Single:
        break;
    }
    return mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(0, 0)));
}

bool StrokeController::Press(const QPoint& globalPos)
{
    const auto* const tool =
        std::find_if(std::begin(StrokeTools), std::end(StrokeTools),
                     [](const StrokeTool& each) { return each.tool == Settings::annotationTool; });
    if (IsDrawing() || tool == std::end(StrokeTools))
        return false;
    const int viewerIndex = ViewerAt(globalPos);
    const StrokeTarget target = mTargetOf(viewerIndex);
    if (!target.store || !IsFinite(mViewer->ToDrawSpace(viewerIndex, globalPos)))
        return false;

    mViewer->SetActiveAnnotationViewerIndex(viewerIndex);
    DrawData drawing;
    drawing.id = NextDrawingID();
    drawing.type = tool->type;
    drawing.color = Settings::drawColor;
    drawing.width = Settings::drawWidth;
    // The overlay that a shape is dragged over must not hold the shape itself: it would leave a trail.
    if (IsShape(drawing))
        PaintFullyNow(mViewer);
    mTarget = target;
    mViewerIndex = viewerIndex;
    FrameData& data = mTarget.store->At(mTarget.frame);
    data.drawData.append(drawing);
    data.lastIndex = data.drawData.size() - 1;
    Q_EMIT OverlayChanged();
    TakePoint(globalPos);
    if (IsShape(drawing))
        RefreshStroke();
    else
        // In full, so that the ghosts and the drawings behind the stroke are in the overlay that it grows on.
        RequestFullPaint(mViewer, true);
    return true;
}

void StrokeController::TakePoint(const QPoint& globalPos)
{
    DrawData& drawing = mTarget.store->At(mTarget.frame).drawData.last();
    QList<QPointF>& points = drawing.points;
    const QPointF point = mViewer->ToDrawSpace(mViewerIndex, globalPos);
    if (!IsFinite(point))
        return;
    if (IsShape(drawing))
        points = {points.isEmpty() ? point : points.first(), point};
    else if (points.isEmpty() || points.last() != point)
        points.append(point);
}

void StrokeController::RefreshStroke()
{
    const DrawData& drawing = mTarget.store->At(mTarget.frame).drawData.last();
    // A repaint of annotations alone lays a dragged shape on the widget in a mode that replaces what lies
    // there. What is seen through it would be lost, and of two viewers what the second one's pass covers.
    const bool replaces = drawing.color.alpha() < 255 || mViewer->GetViewerLayout() != Single;
    if (IsShape(drawing) && replaces)
        RequestFullPaint(mViewer, true);
    else
        mViewer->RefreshAnnotations();
}

bool StrokeController::Move(const QPoint& globalPos)
{
    if (!IsDrawing())
        return false;
    TakePoint(globalPos);
    RefreshStroke();
    return true;
}

bool StrokeController::Release(const QPoint& globalPos)
{
    if (!IsDrawing())
        return false;
    TakePoint(globalPos);
    const StrokeTarget target = mTarget;
    QList<DrawData> after = target.store->Drawings(target.frame);
    DrawData& drawing = after.last();
    if (IsShape(drawing) && drawing.points.first() == drawing.points.last())
    {
        Cancel();
        return true;
    }
    mTarget = StrokeTarget();
    if (drawing.points.size() == 1)
        drawing.points.append(drawing.points.first() + QPointF(DotLength, 0));
    QList<DrawData> before = after;
    before.removeLast();
    const auto* const tool = std::find_if(std::begin(StrokeTools), std::end(StrokeTools),
                                          [&](const StrokeTool& each) { return each.type == drawing.type; });
    PushChange(tr(tool->undoText), target, before, after);
    return true;
}

void StrokeController::Cancel()
{
    if (!IsDrawing())
        return;
    QList<DrawData> drawings = mTarget.store->Drawings(mTarget.frame);
    drawings.removeLast();
    mTarget.store->SetDrawings(mTarget.frame, drawings);
    mTarget = StrokeTarget();
    Q_EMIT OverlayChanged();
    RequestFullPaint(mViewer, true);
}

void StrokeController::PushChange(const QString& text, const StrokeTarget& target,
                                  const QList<DrawData>& before, const QList<DrawData>& after)
{
    mUndoStack->push(new SetDrawingsCommand(text, target.store, target.frame, before, after,
                                            [this](AnnotationStore* store, int frame, bool replayed)
                                            { Q_EMIT DrawingsChanged(store, frame, replayed); }));
}
