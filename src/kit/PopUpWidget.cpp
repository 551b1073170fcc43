// SPDX-License-Identifier: MIT
#include "kit/PopUpWidget.h"

#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int PopUpMargin = 6;

} // namespace

PopUpWidget::PopUpWidget(QWidget* parent) : QWidget(parent)
{
    setWindowFlags(Qt::Popup);
    setFocusPolicy(Qt::NoFocus);
}

void PopUpWidget::AddWidget(QWidget* widget)
{
    if (widget == nullptr)
        return;
    widget->setParent(this);
    mWidgets.append(widget);
}

void PopUpWidget::UpdateLayout()
{
    // Compared as addresses, since a pointer may be dead.
    const auto isGone = [this](QWidget* widget) { return !children().contains(widget); };
    mWidgets.erase(std::remove_if(mWidgets.begin(), mWidgets.end(), isGone), mWidgets.end());

    delete layout();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(PopUpMargin, PopUpMargin, PopUpMargin, PopUpMargin);
    for (QWidget* widget : qAsConst(mWidgets))
        column->addWidget(widget);
    resize(sizeHint());
}
