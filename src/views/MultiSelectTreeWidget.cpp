// SPDX-License-Identifier: MIT
#include "views/MultiSelectTreeWidget.h"

#include <QItemSelectionModel>
#include <QMouseEvent>

#include <algorithm>

MultiSelectTreeWidget::MultiSelectTreeWidget(QWidget* parent) : QTreeWidget(parent)
{
    setSelectionMode(QAbstractItemView::ExtendedSelection);
}

QList<QTreeWidgetItem*> MultiSelectTreeWidget::GetSelectedItemsInOrder() const
{
    // Asking each row whether it is selected searches all ranges of the selection each time.
    QSet<QTreeWidgetItem*> selected;
    const QModelIndexList indexes = selectionModel()->selectedIndexes();
    for (const QModelIndex& index : indexes)
    {
        if (index.column() == 0)
            selected << itemFromIndex(index);
    }
    QList<QTreeWidgetItem*> ordered;
    ordered.reserve(selected.size());
    AppendSelectedChildren(invisibleRootItem(), selected, ordered);
    return ordered;
}

void MultiSelectTreeWidget::AppendSelectedChildren(QTreeWidgetItem* parent,
                                                   const QSet<QTreeWidgetItem*>& selected,
                                                   QList<QTreeWidgetItem*>& ordered) const
{
    for (int index = 0; index < parent->childCount() && ordered.size() < selected.size(); ++index)
    {
        QTreeWidgetItem* const child = parent->child(index);
        if (selected.contains(child))
            ordered << child;
        AppendSelectedChildren(child, selected, ordered);
    }
}

bool MultiSelectTreeWidget::IsChildOfAny(QTreeWidgetItem* item, const QList<QTreeWidgetItem*>& items) const
{
    return std::any_of(items.begin(), items.end(),
                       [this, item](QTreeWidgetItem* parent) { return IsDescendant(item, parent); });
}

bool MultiSelectTreeWidget::IsDescendant(QTreeWidgetItem* item, QTreeWidgetItem* parent) const
{
    if (!item || !parent || !item->parent())
        return false;
    return item->parent() == parent || IsDescendant(item->parent(), parent);
}

void MultiSelectTreeWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (selectionModel()->hasSelection())
        QTreeView::mouseMoveEvent(event);
}
