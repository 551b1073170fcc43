// SPDX-License-Identifier: MIT
#include "host/Source.h"
#include "views/FileManager.h"
#include "views/ProjectRow.h"
#include "views/ProjectView.h"
#include "views/ProjectViewTreeWidget.h"

#include <QAction>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>

#include <algorithm>

namespace
{

bool CanBeDeleted(ProjectObject& object)
{
    return !object.IsProtected() && !object.IsSourceBin() && !object.IsFolderBin() && !object.IsTimelineBin();
}

} // namespace

void ProjectView::ShowContextMenu(QPoint pos)
{
    QMenu menu;
    const QList<QTreeWidgetItem*> selected = mTreeWidget->selectedItems();
    if (selected.size() == 1)
    {
        const auto object = ProjectRow::GetObject(selected.first());
        if (!object)
            return;
        FillMenuOfOne(menu, selected.first(), *object);
    }
    else
    {
        FillMenuOfSeveral(menu, selected);
    }
    // A folder that is protected and special has nothing to offer.
    if (!menu.isEmpty())
        menu.exec(mapToGlobal(pos));
}

void ProjectView::FillMenuOfSeveral(QMenu& menu, const QList<QTreeWidgetItem*>& items) const
{
    menu.addActions({mAddFolderAction, mAddTimelineAction});
    const bool canDelete = std::any_of(items.begin(), items.end(),
                                       [](const QTreeWidgetItem* item)
                                       {
                                           const auto object = ProjectRow::GetObject(item);
                                           return object && CanBeDeleted(*object);
                                       });
    if (!canDelete)
        return;
    menu.addSeparator();
    menu.addAction(mDeleteAction);
}

void ProjectView::FillMenuOfOne(QMenu& menu, const QTreeWidgetItem* item, ProjectObject& object) const
{
    const int type = object.GetType();
    if (type == 0 && !object.IsProtected())
    {
        const bool isFolderBin = object.IsFolderBin();
        const bool isSourceBin = object.IsSourceBin();
        const bool isTimelineBin = object.IsTimelineBin();
        if (!isTimelineBin && !isSourceBin)
            menu.addAction(mAddFolderAction);
        if (!isFolderBin && !isSourceBin)
            menu.addAction(mAddTimelineAction);
        if (!isFolderBin && !isTimelineBin)
        {
            menu.addSeparator();
            menu.addAction(mImportFileAction);
        }
    }
    else if (type == 1)
    {
        const int viewerIndex = object.GetViewerIndex();
        mOpenInViewerAAction->setText(viewerIndex == 0 ? tr("Remove from Viewer A") : tr("Open in Viewer A"));
        mOpenInViewerBAction->setText(viewerIndex == 1 ? tr("Remove from Viewer B") : tr("Open in Viewer B"));
        menu.addActions({mOpenInViewerAAction, mOpenInViewerBAction});
        if (!object.IsSourceTimeline())
        {
            mMakeDefaultAction->setText(object.IsDefault() ? tr("Clear Default") : tr("Make Default"));
            menu.addSeparator();
            menu.addAction(mMakeDefaultAction);
        }
    }
    if (item->flags() & Qt::ItemIsEditable)
    {
        menu.addSeparator();
        menu.addAction(mRenameAction);
    }
    if (!object.GetSource().expired())
    {
        menu.addSeparator();
        menu.addActions({mRefreshAction, mReplaceAction});
        menu.addSeparator();
        menu.addActions({mShowInFolderAction, mCopyPathAction});
    }
    if (CanBeDeleted(object))
    {
        menu.addSeparator();
        menu.addAction(mDeleteAction);
    }
}

std::shared_ptr<Source> ProjectView::SelectedSource() const
{
    const QList<QTreeWidgetItem*> selected = mTreeWidget->selectedItems();
    if (selected.size() != 1)
        return nullptr;
    const auto object = ProjectRow::GetObject(selected.first());
    return object ? object->GetSource().lock() : nullptr;
}

void ProjectView::OnRefreshSource()
{
    if (const auto source = SelectedSource())
        Q_EMIT RefreshSourceRequested(source->GetID());
}

void ProjectView::OnReplaceSource()
{
    if (const auto source = SelectedSource())
        Q_EMIT ReplaceSourceRequested(source->GetID(), QString(), source->GetPath());
}

QString ProjectView::FirstSelectedPath() const
{
    const auto object = ProjectRow::GetObject(mTreeWidget->selectedItems().value(0));
    if (!object || object->GetType() != 1)
        return {};
    const auto source = object->GetSource().lock();
    return source ? source->GetPath() : QString();
}

void ProjectView::ShowInFolder()
{
    FileManager::Show(FirstSelectedPath());
}

void ProjectView::CopyPathToClipboard()
{
    const QFileInfo file(FirstSelectedPath());
    if (file.exists())
        QGuiApplication::clipboard()->setText(file.absoluteFilePath(), QClipboard::Clipboard);
}
