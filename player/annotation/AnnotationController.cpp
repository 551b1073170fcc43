// SPDX-License-Identifier: MIT
#include "annotation/AnnotationController.h"

#include <QUndoStack>

AnnotationController::AnnotationController(ViewerWidget* viewer, QUndoStack* undoStack,
                                           const StrokeController::TargetOf& targetOf,
                                           const ColorPicker::PictureSizeOf& pictureSizeOf, QObject* parent)
    : QObject(parent)
    , mUndoStack(undoStack)
    , mStrokes(new StrokeController(viewer, undoStack, targetOf, this))
    , mText(new TextController(viewer, mStrokes, targetOf, this))
    , mPicker(new ColorPicker(viewer, mStrokes, pictureSizeOf, this))
{
}

StrokeController* AnnotationController::Strokes() const
{
    return mStrokes;
}

TextController* AnnotationController::Text() const
{
    return mText;
}

ColorPicker* AnnotationController::Picker() const
{
    return mPicker;
}

bool AnnotationController::Press(const QPoint& globalPos)
{
    return mText->Press(globalPos) || mPicker->Press(globalPos) || mStrokes->Press(globalPos);
}

bool AnnotationController::Move(const QPoint& globalPos)
{
    return mPicker->Move(globalPos) || mStrokes->Move(globalPos);
}

bool AnnotationController::Release(const QPoint& globalPos)
{
    return mPicker->Release() || mStrokes->Release(globalPos);
}

bool AnnotationController::IsBusy() const
{
    return mStrokes->IsDrawing() || mText->IsTyping();
}

void AnnotationController::EndEdits()
{
    mPicker->Release();
    mStrokes->Cancel();
    mText->Finish();
}

void AnnotationController::Undo()
{
    EndEdits();
    mUndoStack->undo();
}

void AnnotationController::Redo()
{
    EndEdits();
    mUndoStack->redo();
}
