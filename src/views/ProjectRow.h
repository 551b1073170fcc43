// SPDX-License-Identifier: MIT
#pragma once

#include "host/ProjectObject.h"

#include <QUuid>

#include <memory>

class QTreeWidgetItem;

/// What the rows of the project tree and of the element list carry in column 0.
namespace ProjectRow
{

/// Role of the object's id, a QUuid.
constexpr int IDRole = Qt::UserRole;
/// Role of the object, a std::weak_ptr<ProjectObject>. A row never keeps its object alive.
constexpr int ObjectRole = Qt::UserRole + 1;

/// Gives @p row its id and object.
void SetObject(QTreeWidgetItem* row, const QUuid& id, const std::weak_ptr<ProjectObject>& object);
/// The id that @p row carries; null for no row.
QUuid GetID(const QTreeWidgetItem* row);
/// The object of @p row while it lives; null for no row.
std::shared_ptr<ProjectObject> GetObject(const QTreeWidgetItem* row);

} // namespace ProjectRow
