// SPDX-License-Identifier: MIT
#pragma once

#include "annotation/StrokeController.h"

#include <QObject>
#include <QPoint>
#include <QString>

#include <memory>

class QInputMethodEvent;
class QKeyEvent;
class TextCaret;
class ViewerWidget;

/// Lets the user type a text in place on a viewer, with a caret.
///
/// A text in progress stands in the frame's annotations, and Settings::textToolActive says so to the viewer.
/// It ends when the viewer loses the focus, by Escape, or by Finish(); it is then a step of the undo stack,
/// unless it is blank.
class TextController : public QObject
{
    Q_OBJECT

public:
    /// Changes go through @p strokes, whose OverlayChanged() tells of a text that begins too.
    TextController(ViewerWidget* viewer, StrokeController* strokes, StrokeController::TargetOf targetOf,
                   QObject* parent);
    ~TextController() override;

    /// Begins a text at @p globalPos if the tool is the text tool; one in progress ends first. Returns
    /// whether it did.
    bool Press(const QPoint& globalPos);
    bool IsTyping() const;
    /// The viewer (0 or 1) that is being typed in; -1 for none.
    int TypingViewer() const;
    /// The frame that is being typed on.
    int TypingFrame() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

public Q_SLOTS:
    /// Ends the text in progress.
    void Finish();
    /// Brings the caret to where the text is now, after the viewer's zoom or size changed; paints the viewer.
    void FollowPicture();

private:
    bool TakesKey(const QKeyEvent& event) const;
    void PressKey(const QKeyEvent& event);
    void Insert(const QString& text);
    void Erase(int from, int to);
    void MoveCaret(int key);
    /// The boundary between letters after (@p direction 1) or before (-1) the caret.
    int Boundary(int direction) const;
    QRect CaretPlace() const;
    void PlaceCaret();
    void ShowText();

    ViewerWidget* mViewer;
    StrokeController* mStrokes;
    StrokeController::TargetOf mTargetOf;
    StrokeTarget mTarget;
    int mViewerIndex = 0;
    QString mText;
    int mCaret = 0;
    TextCaret* mCaretWidget = nullptr;
};
