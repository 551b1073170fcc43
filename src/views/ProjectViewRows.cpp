// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Source.h"
#include "views/ProjectRow.h"
#include "views/ProjectView.h"
#include "views/ProjectViewTreeWidget.h"
#include "views/RowIndex.h"

#include <QSignalBlocker>

/// What Add() knows while it adds an object and all below it.
struct ProjectView::AddedBranch
{
    Branch branch;
    RowIndex index;
    /// Whether the index knows the rows that there are.
    bool isIndexed = false;
};

/// The rows of a whole project, made before the tree sees any: it takes them in at once, where one by one
/// each row would visit all that are expanded or selected.
struct ProjectView::NewRows
{
    QList<QTreeWidgetItem*> topLevel;
    QSet<QTreeWidgetItem*> expanded;
    QList<QTreeWidgetItem*> selected;
    RowIndex index;
};

void ProjectView::SetRoot(std::weak_ptr<ProjectObject> object)
{
    mRoot = object.lock();
    if (!mRoot)
        Logger::GetInstance()->Error("Project View: Failed to set Root Object");
}

void ProjectView::Update()
{
    const QSignalBlocker blocker(mTreeWidget);
    NewRows rows;
    Branch branch;
    const auto children = mRoot ? mRoot->GetChildren() : QList<std::shared_ptr<ProjectObject>>();
    for (const auto& child : children)
        Gather(child, branch, rows);
    mTreeWidget->ReplaceRows(rows.topLevel, rows.expanded, rows.selected);
}

std::unique_ptr<QTreeWidgetItem> ProjectView::MakeRow(const std::shared_ptr<ProjectObject>& object) const
{
    if (object->IsFolderBin() && object->GetChildren().isEmpty())
        return nullptr;
    auto row = std::make_unique<QTreeWidgetItem>();
    row->setText(0, object->GetName());
    ProjectRow::SetObject(row.get(), object->GetID(), object);
    row->setToolTip(0, QString());
    if (!object->IsFolderBin() && !object->IsSourceBin() && !object->IsTimelineBin())
        row->setFlags(row->flags() | Qt::ItemIsEditable);

    const int type = object->GetType();
    const bool isSourceTimeline = object->IsSourceTimeline();
    if (type == 0)
        row->setIcon(0, mFolderIcon);
    else if (type == 1)
        row->setIcon(0, isSourceTimeline ? mSourceIcon : mTimelineIcon);

    QString viewer;
    const int viewerIndex = object->GetViewerIndex();
    if (viewerIndex >= 0)
    {
        viewer = viewerIndex == 0 ? tr("A") : tr("B");
        for (int column = 0; column < 3; ++column)
            row->setData(column, Qt::ForegroundRole, QColor(Qt::white));
    }
    row->setText(1, viewer);
    row->setTextAlignment(1, Qt::AlignHCenter);
    // After the white of a viewer, which it covers in the name alone.
    if (object->IsMissing())
        row->setData(0, Qt::ForegroundRole, QColor(Qt::red));
    if (object->IsDefault())
    {
        row->setText(2, QStringLiteral("*"));
        row->setTextAlignment(2, Qt::AlignHCenter);
    }
    if (isSourceTimeline)
    {
        if (const auto source = object->GetSource().lock())
            row->setToolTip(0, source->GetPath());
    }
    return row;
}

void ProjectView::LogFailureToAdd(ProjectObject& object) const
{
    Logger::GetInstance()->Error(
        QStringLiteral("Failed to add item to project view: %1").arg(object.GetName()));
}

void ProjectView::Gather(const std::shared_ptr<ProjectObject>& object, Branch& branch, NewRows& rows) const
{
    if (!object || branch.contains(object.get()))
        return;
    auto made = MakeRow(object);
    if (!made)
        return;
    QTreeWidgetItem* const row = made.get();
    if (object->GetParentID() == mRoot->GetID())
    {
        rows.topLevel << made.release();
    }
    else if (QTreeWidgetItem* const parent = rows.index.Find(object->GetParentID()))
    {
        parent->addChild(made.release());
    }
    else
    {
        LogFailureToAdd(*object);
        return;
    }
    rows.index.Append(row);
    if (object->IsExpanded())
        rows.expanded << row;
    if (object->IsSelected())
        rows.selected << row;
    if (object->GetType() != 0)
        return;
    branch << object.get();
    const auto children = object->GetChildren();
    for (const auto& child : children)
        Gather(child, branch, rows);
    branch.remove(object.get());
}

void ProjectView::Add(std::weak_ptr<ProjectObject> object)
{
    AddedBranch added;
    // Expanding and selecting send signals, and whoever hears them may take rows away.
    QObject listener;
    const auto forget = [&added] { added.isIndexed = false; };
    connect(mTreeWidget->model(), &QAbstractItemModel::rowsAboutToBeRemoved, &listener, forget);
    connect(mTreeWidget->model(), &QAbstractItemModel::modelAboutToBeReset, &listener, forget);
    AddWithChildren(object.lock(), added);
}

void ProjectView::AddWithChildren(const std::shared_ptr<ProjectObject>& object, AddedBranch& added)
{
    if (!object || added.branch.contains(object.get()))
        return;
    auto made = MakeRow(object);
    if (!made)
        return;
    QTreeWidgetItem* const row = made.get();
    if (mRoot && object->GetParentID() == mRoot->GetID())
    {
        mTreeWidget->addTopLevelItem(made.release());
    }
    else if (QTreeWidgetItem* const parent = FindParent(object->GetParentID(), added))
    {
        parent->addChild(made.release());
    }
    else
    {
        LogFailureToAdd(*object);
        return;
    }
    if (added.isIndexed)
        added.index.Append(row);
    row->setExpanded(object->IsExpanded());
    if (object->IsSelected())
        row->setSelected(true);
    if (object->GetType() != 0)
        return;
    added.branch << object.get();
    const auto children = object->GetChildren();
    for (const auto& child : children)
        AddWithChildren(child, added);
    added.branch.remove(object.get());
}

QTreeWidgetItem* ProjectView::FindParent(const QUuid& id, AddedBranch& added)
{
    // One lookup is a walk that ends at the row; for a branch of them, the tree is walked once.
    if (added.branch.isEmpty())
        return FindItem(id);
    if (!added.isIndexed)
        added.index = RowIndex(mTreeWidget);
    added.isIndexed = true;
    return added.index.Find(id);
}

QTreeWidgetItem* ProjectView::FindItem(const QUuid& id)
{
    if (id.isNull())
        return nullptr;
    for (int index = 0; index < mTreeWidget->topLevelItemCount(); ++index)
    {
        QTreeWidgetItem* const item = mTreeWidget->topLevelItem(index);
        if (ProjectRow::GetID(item) == id)
            return item;
        if (QTreeWidgetItem* const found = RecursiveFindItem(id, item))
            return found;
    }
    return nullptr;
}

QTreeWidgetItem* ProjectView::RecursiveFindItem(const QUuid& id, QTreeWidgetItem* parent)
{
    for (int index = 0; index < parent->childCount(); ++index)
    {
        QTreeWidgetItem* const child = parent->child(index);
        if (ProjectRow::GetID(child) == id)
            return child;
        if (QTreeWidgetItem* const found = RecursiveFindItem(id, child))
            return found;
    }
    return nullptr;
}

void ProjectView::Remove(QUuid id)
{
    for (int index = 0; index < mTreeWidget->topLevelItemCount(); ++index)
    {
        QTreeWidgetItem* const item = mTreeWidget->topLevelItem(index);
        if (ProjectRow::GetID(item) == id)
        {
            delete mTreeWidget->takeTopLevelItem(index);
            return;
        }
        // Goes on whatever that answers: the same id may stand in several branches.
        RecursiveRemove(id, item);
    }
}

bool ProjectView::RecursiveRemove(const QUuid& id, QTreeWidgetItem* parent)
{
    for (int index = 0; index < parent->childCount(); ++index)
    {
        QTreeWidgetItem* const child = parent->child(index);
        if (ProjectRow::GetID(child) == id)
        {
            parent->removeChild(child);
            delete child;
            return true;
        }
        RecursiveRemove(id, child);
    }
    return false;
}

void ProjectView::RemoveAll()
{
    mTreeWidget->ReplaceRows({}, {}, {});
}

void ProjectView::RefreshName(QUuid id)
{
    QTreeWidgetItem* const item = FindItem(id);
    const auto object = ProjectRow::GetObject(item);
    if (object && item->text(0) != object->GetName())
        item->setText(0, object->GetName());
}
