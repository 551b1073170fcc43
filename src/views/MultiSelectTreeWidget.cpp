// SPDX-License-Identifier: MIT
#include "views/MultiSelectTreeWidget.h"

#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QSignalBlocker>

#include <algorithm>

namespace
{

/// From this many ranges on, a selection is handled as a whole.
constexpr int ManyRanges = 100;

/// Appends whole rows from @p top to @p bottom below @p parent, to the last range where they go on from it.
void AppendRows(QItemSelection& selection, const QAbstractItemModel* model, const QModelIndex& parent,
                int top, int bottom)
{
    const int lastColumn = model->columnCount(parent) - 1;
    QModelIndex first = model->index(top, 0, parent);
    if (!selection.isEmpty() && selection.last().bottom() + 1 == top && selection.last().parent() == parent)
    {
        first = selection.last().topLeft();
        selection.removeLast();
    }
    selection.append(QItemSelectionRange(first, model->index(bottom, lastColumn, parent)));
}

} // namespace

MultiSelectTreeWidget::MultiSelectTreeWidget(QWidget* parent) : QTreeWidget(parent)
{
    setSelectionMode(QAbstractItemView::ExtendedSelection);
}

QList<QTreeWidgetItem*> MultiSelectTreeWidget::GetSelectedItemsInOrder() const
{
    const QSet<QTreeWidgetItem*> selected = SelectedRows();
    QList<QTreeWidgetItem*> ordered;
    ordered.reserve(selected.size());
    AppendSelectedChildren(invisibleRootItem(), selected, ordered);
    return ordered;
}

QSet<QTreeWidgetItem*> MultiSelectTreeWidget::SelectedRows() const
{
    // Asking each row whether it is selected would search all ranges of the selection each time.
    QSet<QTreeWidgetItem*> selected;
    const QModelIndexList indexes = selectionModel()->selectedIndexes();
    for (const QModelIndex& index : indexes)
    {
        if (index.column() == 0)
            selected << itemFromIndex(index);
    }
    return selected;
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

void MultiSelectTreeWidget::ReplaceRows(const QList<QTreeWidgetItem*>& rows,
                                        const QSet<QTreeWidgetItem*>& expanded,
                                        const QList<QTreeWidgetItem*>& selected)
{
    clear();
    addTopLevelItems(rows);
    if (!expanded.isEmpty())
        ExpandBelow(QModelIndex(), expanded);
    if (selected.isEmpty())
        return;
    QItemSelection selection;
    for (int place = 0; place < selected.size() - 1; ++place)
    {
        const QModelIndex index = indexFromItem(selected.at(place));
        AppendRows(selection, model(), index.parent(), index.row(), index.row());
    }
    // The last one on its own: what was selected last is what a click with Shift replaces.
    if (!selection.isEmpty())
        selectionModel()->select(selection, QItemSelectionModel::Select);
    selected.last()->setSelected(true);
}

void MultiSelectTreeWidget::ExpandBelow(const QModelIndex& parent, const QSet<QTreeWidgetItem*>& expanded)
{
    // Going down from the top tells each row's place, for which the tree would search among its siblings.
    const int count = model()->rowCount(parent);
    for (int row = 0; row < count; ++row)
    {
        const QModelIndex index = model()->index(row, 0, parent);
        if (expanded.contains(itemFromIndex(index)))
            setExpanded(index, true);
        ExpandBelow(index, expanded);
    }
}

void MultiSelectTreeWidget::UnselectRows(const QSet<QTreeWidgetItem*>& rows)
{
    bool isChanged = false;
    QItemSelection kept;
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange& range : selection)
    {
        const QModelIndex parent = range.parent();
        for (int row = range.top(); row <= range.bottom(); ++row)
        {
            if (rows.contains(itemFromIndex(model()->index(row, 0, parent))))
                isChanged = true;
            else
                AppendRows(kept, model(), parent, row, row);
        }
    }
    if (!isChanged)
        return;
    // Taking the rows out of each range would compare all ranges with each other.
    selectionModel()->clearSelection();
    selectionModel()->select(kept, QItemSelectionModel::Select);
    // A click with Shift replaces none of it.
    selectionModel()->select(QItemSelection(), QItemSelectionModel::Deselect);
}

void MultiSelectTreeWidget::selectAll()
{
    if (selectionModel()->selection().size() < ManyRanges)
    {
        QTreeWidget::selectAll();
        return;
    }
    // To tell what changes, the selection model would compare all ranges of before and after with each other.
    const QSet<QTreeWidgetItem*> before = SelectedRows();
    {
        const QSignalBlocker blocker(selectionModel());
        selectionModel()->clearSelection();
        QTreeWidget::selectAll();
    }
    if (SelectedRows() != before)
        Q_EMIT selectionModel()->selectionChanged(selectionModel()->selection(), QItemSelection());
}

QRegion MultiSelectTreeWidget::visualRegionForSelection(const QItemSelection& selection) const
{
    // The place of each range would be looked for among all rows.
    if (selection.size() >= ManyRanges)
        return viewport()->rect();
    return QTreeWidget::visualRegionForSelection(selection);
}

void MultiSelectTreeWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (selectionModel()->hasSelection())
        QTreeView::mouseMoveEvent(event);
}
