// SPDX-License-Identifier: MIT
#include "window/PlainTooltips.h"

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

PlainTooltips::PlainTooltips(QObject* parent) : QObject(parent)
{
    QApplication::instance()->installEventFilter(this);
}

bool PlainTooltips::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !watched->isWidgetType())
        return false;
    auto* const widget = static_cast<QWidget*>(watched);
    if (widget->toolTip().isEmpty() || widget->styleSheet().isEmpty())
        return false;
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), widget->toolTip(), widget->window());
    return true;
}
