// SPDX-License-Identifier: MIT
#pragma once

#include "viewers/ViewerWidget.h"

#include <QMouseEvent>
#include <QWheelEvent>

/// A viewer whose event handlers tests call directly, so that the accepted flag before and after is theirs to
/// set and to see.
class ViewerWidgetProbe : public ViewerWidget
{
    Q_OBJECT

public:
    using ViewerWidget::ViewerWidget;

    /// Each returns the event's accepted flag, which was @p accepted before.
    bool Press(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QPoint& global,
               bool accepted = true)
    {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(1, 1), global, button, button, modifiers);
        event.setAccepted(accepted);
        mousePressEvent(&event);
        return event.isAccepted();
    }

    bool Release(Qt::MouseButton button, const QPoint& global, bool accepted = true)
    {
        QMouseEvent event(QEvent::MouseButtonRelease, QPointF(1, 1), global, button, Qt::NoButton,
                          Qt::NoModifier);
        event.setAccepted(accepted);
        mouseReleaseEvent(&event);
        return event.isAccepted();
    }

    bool Move(Qt::MouseButtons buttons, const QPoint& global, bool accepted = true)
    {
        QMouseEvent event(QEvent::MouseMove, QPointF(1, 1), global, Qt::NoButton, buttons, Qt::NoModifier);
        event.setAccepted(accepted);
        mouseMoveEvent(&event);
        return event.isAccepted();
    }

    bool DoubleClick(Qt::MouseButton button, bool accepted = true)
    {
        QMouseEvent event(QEvent::MouseButtonDblClick, QPointF(1, 1), QPointF(1, 1), button, button,
                          Qt::NoModifier);
        event.setAccepted(accepted);
        mouseDoubleClickEvent(&event);
        return event.isAccepted();
    }

    bool Wheel(const QPoint& angle, Qt::KeyboardModifiers modifiers = Qt::ControlModifier,
               bool accepted = true)
    {
        QWheelEvent event(QPointF(1, 1), QPointF(1, 1), QPoint(), angle, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        event.setAccepted(accepted);
        wheelEvent(&event);
        return event.isAccepted();
    }
};
