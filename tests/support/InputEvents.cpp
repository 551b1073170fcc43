// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"

#include <QApplication>
#include <QCursor>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>
#include <QtTest>

namespace
{

void SendMouse(QWidget* widget, const QPoint& position, Qt::MouseButtons buttons, Qt::MouseButton button,
               QEvent::Type type, Qt::KeyboardModifiers modifiers)
{
    // Each event gets a time of its own, far enough from the last that no two presses make a double click.
    static int milliseconds = 1000;
    milliseconds += 1000;
    const QPoint global = widget->mapToGlobal(position);
    QWidget* const top = widget->window();
    QCursor::setPos(global);
    qt_handleMouseEvent(top->windowHandle(), top->mapFromGlobal(global), global, buttons, button, type,
                        modifiers, milliseconds);
    QApplication::processEvents();
}

} // namespace

namespace InputEvents
{

void Move(QWidget* widget, const QPoint& position, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    SendMouse(widget, position, buttons, Qt::NoButton, QEvent::MouseMove, modifiers);
}

void Press(QWidget* widget, const QPoint& position, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    Move(widget, position, Qt::NoButton, modifiers);
    SendMouse(widget, position, button, button, QEvent::MouseButtonPress, modifiers);
}

void Release(QWidget* widget, const QPoint& position, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    SendMouse(widget, position, Qt::NoButton, button, QEvent::MouseButtonRelease, modifiers);
}

bool Wheel(QWidget* widget, const QPoint& position, int angle, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(position, widget->mapToGlobal(position), QPoint(), QPoint(0, angle), Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    event.ignore();
    QApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

} // namespace InputEvents
