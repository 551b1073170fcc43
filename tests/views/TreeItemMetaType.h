// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QTreeWidgetItem>

Q_DECLARE_METATYPE(QTreeWidgetItem*)

/// For the spies of the trees' signals.
inline const int TreeItemMetaType = qRegisterMetaType<QTreeWidgetItem*>();
