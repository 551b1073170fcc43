// SPDX-License-Identifier: MIT
#include "dialogs/settings/KeySequenceLineEdit.h"

#include <QKeyEvent>
#include <QKeySequence>

KeySequenceLineEdit::KeySequenceLineEdit(QWidget* parent) : QLineEdit(parent) {}

void KeySequenceLineEdit::keyPressEvent(QKeyEvent* event)
{
    int key = event->key();
    switch (key)
    {
    case Qt::Key_unknown:
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
        return;
    default:
        break;
    }
    const struct
    {
        Qt::KeyboardModifier modifier;
        int code;
    } rows[] = {{Qt::ShiftModifier, Qt::SHIFT},
                {Qt::ControlModifier, Qt::CTRL},
                {Qt::AltModifier, Qt::ALT},
                {Qt::MetaModifier, Qt::META}};
    for (const auto& row : rows)
    {
        if (event->modifiers().testFlag(row.modifier))
            key += row.code;
    }
    setText(QKeySequence(key).toString(QKeySequence::PortableText));
    Q_EMIT textEdited(text());
}
