// SPDX-License-Identifier: MIT
#pragma once

#include "host/DrawData.h"

#include <QList>
#include <QObject>
#include <QPoint>

#include <functional>
#include <memory>

class AnnotationStore;
class QUndoStack;
class ViewerWidget;

/// Where a stroke goes: the annotations of the frame that a viewer shows.
struct StrokeTarget
{
    std::shared_ptr<AnnotationStore> store;
    int frame = 0;
};

/// A number for a new drawing that no other drawing of this run has.
uint64_t NextDrawingID();

/// Turns the mouse into strokes and shapes on a viewer: the tool, colour and width of the settings, in draw
/// space. Pencil and eraser hold every position of the mouse; arrow, oval and rectangle the first and the
/// last.
///
/// A stroke in progress stands in the frame's annotations, so that the viewer shows it; when it ends it
/// becomes a step of the undo stack.
class StrokeController : public QObject
{
    Q_OBJECT

public:
    /// Tells where a stroke in a viewer (0 or 1) goes; a target without a store takes none.
    using TargetOf = std::function<StrokeTarget(int viewer)>;

    StrokeController(ViewerWidget* viewer, QUndoStack* undoStack, TargetOf targetOf, QObject* parent);

    /// Begins a stroke at @p globalPos if the tool is one that draws strokes or shapes. Returns whether it
    /// did.
    bool Press(const QPoint& globalPos);
    /// Extends the stroke to @p globalPos. Returns whether there is one.
    bool Move(const QPoint& globalPos);
    /// Ends the stroke at @p globalPos. Returns whether there was one. A shape without extent is dropped.
    bool Release(const QPoint& globalPos);
    /// Takes the stroke in progress back.
    void Cancel();
    bool IsDrawing() const;
    /// The viewer (0 or 1) that is being drawn in; -1 for none.
    int DrawingViewer() const;

    /// Makes the change of @p target's drawings from @p before to @p after a step of the undo stack.
    void PushChange(const QString& text, const StrokeTarget& target, const QList<DrawData>& before,
                    const QList<DrawData>& after);

    /// The viewer (0 or 1) whose slot lies under @p globalPos, zoomed and panned or not.
    int ViewerAt(const QPoint& globalPos) const;

Q_SIGNALS:
    /// A frame got its first record: the viewers must be given their annotations anew.
    void OverlayChanged();
    /// The drawings of @p frame in @p store changed by a finished stroke, or by undo or redo (@p replayed);
    /// the host shows them with a full paint.
    void DrawingsChanged(AnnotationStore* store, int frame, bool replayed);

private:
    void TakePoint(const QPoint& globalPos);
    void RefreshStroke();

    ViewerWidget* mViewer;
    QUndoStack* mUndoStack;
    TargetOf mTargetOf;
    StrokeTarget mTarget;
    int mViewerIndex = 0;
};
