// SPDX-License-Identifier: MIT
#pragma once

#include "annotation/ColorPicker.h"
#include "annotation/StrokeController.h"
#include "annotation/TextController.h"

#include <QObject>

/// All annotation tools behind one mouse: hands each press to the tool of the settings, and undoes and redoes
/// what they made.
class AnnotationController : public QObject
{
    Q_OBJECT

public:
    AnnotationController(ViewerWidget* viewer, QUndoStack* undoStack,
                         const StrokeController::TargetOf& targetOf,
                         const ColorPicker::PictureSizeOf& pictureSizeOf, QObject* parent);

    StrokeController* Strokes() const;
    TextController* Text() const;
    ColorPicker* Picker() const;

    /// Each returns whether a tool took it.
    bool Press(const QPoint& globalPos);
    bool Move(const QPoint& globalPos);
    bool Release(const QPoint& globalPos);
    /// Whether a stroke is being drawn or a text being typed.
    bool IsBusy() const;

public Q_SLOTS:
    /// Takes a stroke in progress back and ends a text in progress.
    void EndEdits();
    void Undo();
    void Redo();

private:
    QUndoStack* mUndoStack;
    StrokeController* mStrokes;
    TextController* mText;
    ColorPicker* mPicker;
};
