// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <Qt>

class QWidget;

/// Mouse input for tests that goes the whole way through the window system's event queue, so that the cursor,
/// the buttons and the events agree.
namespace InputEvents
{

/// Moves the cursor to @p position of @p widget with @p buttons held.
void Move(QWidget* widget, const QPoint& position, Qt::MouseButtons buttons = Qt::NoButton,
          Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Moves the cursor to @p position of @p widget and presses @p button.
void Press(QWidget* widget, const QPoint& position, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Moves the cursor to @p position of @p widget with @p button held, and releases it.
void Release(QWidget* widget, const QPoint& position, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Sends @p widget a wheel event of @p angle (eighths of a degree) at @p position. Returns whether it was
/// accepted.
bool Wheel(QWidget* widget, const QPoint& position, int angle,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier);

} // namespace InputEvents
