// SPDX-License-Identifier: MIT
#include "annotation/StrokeController.h"

#include "annotation/AnnotationStore.h"
#include "annotation/FullPaint.h"
#include "annotation/SetDrawingsCommand.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

#include <QUndoStack>

#include <cmath>

namespace
{

/// How far a click without a move is drawn, in draw space: a drawing of one point paints nothing.
constexpr qreal DotLength = 1e-4;

bool ToolDraws(AnnotationToolType tool, DrawType* type)
{
    if (tool == Pencil)
        *type = DrawPencil;
    else if (tool == Eraser)
        *type = DrawEraser;
    else
        return false;
    return true;
}

bool IsFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

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
    const auto* const backEnd = mViewer->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
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
    DrawType type = DrawNone;
    if (IsDrawing() || !ToolDraws(Settings::annotationTool, &type))
        return false;
    const int viewerIndex = ViewerAt(globalPos);
    const StrokeTarget target = mTargetOf(viewerIndex);
    if (!target.store || !IsFinite(mViewer->ToDrawSpace(viewerIndex, globalPos)))
        return false;

    mTarget = target;
    mViewerIndex = viewerIndex;
    DrawData drawing;
    drawing.id = mNextDrawingID++;
    drawing.type = type;
    drawing.color = Settings::drawColor;
    drawing.width = Settings::drawWidth;
    FrameData& data = mTarget.store->At(mTarget.frame);
    data.drawData.append(drawing);
    data.lastIndex = data.drawData.size() - 1;
    mViewer->SetActiveAnnotationViewerIndex(viewerIndex);
    Q_EMIT OverlayChanged();
    AppendPoint(globalPos);
    // In full, so that the ghosts and the drawings behind the stroke are in the overlay that it grows on.
    RequestFullPaint(mViewer, true);
    return true;
}

void StrokeController::AppendPoint(const QPoint& globalPos)
{
    QList<QPointF>& points = mTarget.store->At(mTarget.frame).drawData.last().points;
    const QPointF point = mViewer->ToDrawSpace(mViewerIndex, globalPos);
    if (IsFinite(point) && (points.isEmpty() || points.last() != point))
        points.append(point);
}

bool StrokeController::Move(const QPoint& globalPos)
{
    if (!IsDrawing())
        return false;
    AppendPoint(globalPos);
    mViewer->RefreshAnnotations();
    return true;
}

bool StrokeController::Release(const QPoint& globalPos)
{
    if (!IsDrawing())
        return false;
    AppendPoint(globalPos);
    const StrokeTarget target = mTarget;
    mTarget = StrokeTarget();
    QList<DrawData> after = target.store->Drawings(target.frame);
    QList<QPointF>& points = after.last().points;
    if (points.size() == 1)
        points.append(points.first() + QPointF(DotLength, 0));
    QList<DrawData> before = after;
    before.removeLast();
    PushChange(after.last().type == DrawEraser ? tr("Erase") : tr("Draw"), target, before, after);
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
    RequestFullPaint(mViewer, true);
}

void StrokeController::ClearFrame(int viewer)
{
    Cancel();
    const StrokeTarget target = mTargetOf(viewer);
    if (!target.store)
        return;
    const QList<DrawData> drawings = target.store->Drawings(target.frame);
    if (!drawings.isEmpty())
        PushChange(tr("Clear Frame"), target, drawings, {});
}

void StrokeController::PushChange(const QString& text, const StrokeTarget& target,
                                  const QList<DrawData>& before, const QList<DrawData>& after)
{
    mUndoStack->push(new SetDrawingsCommand(text, target.store, target.frame, before, after,
                                            [this](AnnotationStore* store, int frame)
                                            { Q_EMIT DrawingsChanged(store, frame); }));
}
