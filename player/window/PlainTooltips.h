// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Shows the tooltips of the whole program in the colours of its palette, also those of widgets that have a
/// style sheet of their own, which would else colour their tooltips too.
class PlainTooltips : public QObject
{
    Q_OBJECT

public:
    explicit PlainTooltips(QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;
};
