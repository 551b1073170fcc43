// SPDX-License-Identifier: MIT
#include "views/ProjectRow.h"

#include <QTreeWidgetItem>

namespace ProjectRow
{

void SetObject(QTreeWidgetItem* row, const QUuid& id, const std::weak_ptr<ProjectObject>& object)
{
    row->setData(0, IDRole, id);
    row->setData(0, ObjectRole, QVariant::fromValue(object));
}

QUuid GetID(const QTreeWidgetItem* row)
{
    return row ? row->data(0, IDRole).toUuid() : QUuid();
}

std::shared_ptr<ProjectObject> GetObject(const QTreeWidgetItem* row)
{
    if (!row)
        return nullptr;
    return row->data(0, ObjectRole).value<std::weak_ptr<ProjectObject>>().lock();
}

} // namespace ProjectRow
