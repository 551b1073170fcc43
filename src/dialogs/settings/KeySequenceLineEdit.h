// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

/// A line edit that takes a chord of keys in place of text: each chord pressed replaces the one before. Any
/// key is captured, Backspace and Escape too, so that the keyboard can't clear it; a modifier alone changes
/// nothing.
class KeySequenceLineEdit : public QLineEdit
{
public:
    explicit KeySequenceLineEdit(QWidget* parent);

protected:
    /// Shows the chord in Qt's portable form and emits textEdited().
    void keyPressEvent(QKeyEvent* event) override;
};
