// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QList>
#include <QWidget>

/// A frameless pop-up that lines widgets up in a column, and closes when the user clicks elsewhere.
///
/// It doesn't show itself: the owner gives it a geometry and calls show().
class TORVALENUI_EXPORT PopUpWidget : public QWidget
{
    Q_OBJECT

public:
    explicit PopUpWidget(QWidget* parent = nullptr);

    /// Takes @p widget as a child, below those added before; UpdateLayout() puts it in its place. A null
    /// pointer is left out.
    void AddWidget(QWidget* widget);
    /// Lays the widgets out in the order of their adding and takes the size that they need. Those that were
    /// deleted or taken by another parent in the meantime are forgotten.
    void UpdateLayout();

private:
    QList<QWidget*> mWidgets;
};
