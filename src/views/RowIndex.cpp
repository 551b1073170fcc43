// SPDX-License-Identifier: MIT
#include "views/RowIndex.h"

#include "views/ProjectRow.h"

#include <QTreeWidget>
#include <QVector>

#include <algorithm>

namespace
{

/// @p row and all that it lies below, from the top.
QVector<QTreeWidgetItem*> PathTo(QTreeWidgetItem* row)
{
    QVector<QTreeWidgetItem*> path;
    for (; row; row = row->parent())
        path << row;
    std::reverse(path.begin(), path.end());
    return path;
}

} // namespace

RowIndex::RowIndex(const QTreeWidget* tree)
{
    AppendChildren(tree->invisibleRootItem());
}

void RowIndex::AppendChildren(QTreeWidgetItem* parent)
{
    for (int index = 0; index < parent->childCount(); ++index)
    {
        Append(parent->child(index));
        AppendChildren(parent->child(index));
    }
}

void RowIndex::Append(QTreeWidgetItem* row)
{
    if (!row->parent())
        mTopLevelPlaces.insert(row, mTopLevelPlaces.size());
    const QUuid id = ProjectRow::GetID(row);
    QTreeWidgetItem*& first = mRows[id];
    if (!first || StandsBefore(row, first))
        first = row;
}

bool RowIndex::StandsBefore(QTreeWidgetItem* row, QTreeWidgetItem* other) const
{
    const QVector<QTreeWidgetItem*> path = PathTo(row);
    const QVector<QTreeWidgetItem*> otherPath = PathTo(other);
    int depth = 0;
    while (depth < path.size() && depth < otherPath.size() && path[depth] == otherPath[depth])
        ++depth;
    // Below the other, or after all its siblings.
    if (depth == otherPath.size() || depth >= path.size() - 1)
        return false;
    if (depth == 0)
        return mTopLevelPlaces.value(path[0]) < mTopLevelPlaces.value(otherPath[0]);
    QTreeWidgetItem* const common = path[depth - 1];
    return common->indexOfChild(path[depth]) < common->indexOfChild(otherPath[depth]);
}

QTreeWidgetItem* RowIndex::Find(const QUuid& id) const
{
    return id.isNull() ? nullptr : mRows.value(id);
}
