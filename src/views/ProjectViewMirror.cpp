// SPDX-License-Identifier: MIT
#include "views/ProjectRow.h"
#include "views/ProjectView.h"
#include "views/ProjectViewTreeWidget.h"
#include "views/RowIndex.h"

#include <QSignalBlocker>

void ProjectView::OnItemSelectionChanged()
{
    ClearSelected();
    const QList<QTreeWidgetItem*> selected = mTreeWidget->selectedItems();
    if (selected.isEmpty())
    {
        setFocus(Qt::NoFocusReason);
        return;
    }
    for (const QTreeWidgetItem* const item : selected)
    {
        if (const auto object = ProjectRow::GetObject(item))
            object->SetSelected(true);
    }
}

void ProjectView::ClearSelected()
{
    ClearSelected(mRoot);
}

void ProjectView::ClearSelected(std::weak_ptr<ProjectObject> object)
{
    Branch branch;
    ClearSelected(object.lock(), branch);
}

void ProjectView::ClearSelected(const std::shared_ptr<ProjectObject>& object, Branch& branch)
{
    if (!object || branch.contains(object.get()))
        return;
    object->SetSelected(false);
    const auto children = object->GetChildren();
    if (children.isEmpty())
        return;
    branch << object.get();
    for (const auto& child : children)
        ClearSelected(child, branch);
    branch.remove(object.get());
}

void ProjectView::OnItemExpanded(QTreeWidgetItem* item)
{
    if (const auto object = ProjectRow::GetObject(item))
        object->SetExpanded(true);
}

void ProjectView::OnItemCollapsed(QTreeWidgetItem* item)
{
    const auto object = ProjectRow::GetObject(item);
    if (!object)
        return;
    object->SetExpanded(false);
    const QSignalBlocker blocker(mTreeWidget);
    ClearSelectedOnCollapsed(object);
}

void ProjectView::ClearSelectedOnCollapsed(std::weak_ptr<ProjectObject> object)
{
    // Found and unselected one by one, the rows of a large folder would each cost a walk of the tree and
    // another of the selection.
    const RowIndex index(mTreeWidget);
    Branch branch;
    QSet<QTreeWidgetItem*> rows;
    UnselectBranch(object.lock(), index, branch, rows);
    mTreeWidget->UnselectRows(rows);
}

void ProjectView::UnselectBranch(const std::shared_ptr<ProjectObject>& object, const RowIndex& index,
                                 Branch& branch, QSet<QTreeWidgetItem*>& rows)
{
    if (!object || branch.contains(object.get()))
        return;
    object->SetSelected(false);
    QTreeWidgetItem* const row = index.Find(object->GetID());
    if (!row)
        return;
    rows << row;
    branch << object.get();
    const auto children = object->GetChildren();
    for (const auto& child : children)
        UnselectBranch(child, index, branch, rows);
    branch.remove(object.get());
}
