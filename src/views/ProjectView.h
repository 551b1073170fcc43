// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/ProjectObject.h"
#include "host/Timeline.h"

#include <QIcon>
#include <QList>
#include <QPoint>
#include <QSet>
#include <QString>
#include <QUuid>
#include <QWidget>

#include <memory>

class FlatButton;
class ProjectViewTreeWidget;
class QAction;
class QMenu;
class QTreeWidgetItem;
class RowIndex;
class Source;

/// The panel that shows a project as a tree of folders and timelines.
///
/// The host owns the project and hands its root in with SetRoot(), then shows it with Update(). The panel
/// writes what the user selects and expands back into the objects, and asks for every other change with a
/// signal; the host carries it out and answers with Add(), Remove(), RefreshName() or Update(). What a row
/// shows of its object is taken when the row is made: after a change of the viewer, of the default timeline
/// or of missing media the host calls Update().
class TORVALENUI_EXPORT ProjectView : public QWidget
{
    Q_OBJECT

public:
    explicit ProjectView(QWidget* parent = nullptr);

    /// Takes the root of the project, which has no row, and keeps it alive. A dead pointer leaves the panel
    /// without a root, which is logged as an error. The rows stay as they are until Update().
    void SetRoot(std::weak_ptr<ProjectObject> object);
    /// Makes all rows afresh from the root, with the expansion and the selection of their objects.
    void Update();
    /// The ids of the selected objects, in the order of selecting.
    QList<QUuid> GetSelectedItems() const;
    /// Whether the panel or its tree has the focus.
    bool HasFocusExtended() const;

Q_SIGNALS:
    /// The user gave the object @p id the name @p name. The row keeps it; the host renames the object, or
    /// puts the old name back with RefreshName().
    void Renamed(QUuid id, QString name);
    /// The host makes a folder where the selection is, and answers with Add().
    void NewFolderRequested();
    /// The host makes a timeline where the selection is, and answers with Add().
    void NewTimelineRequested();
    /// The host lets the user choose files, and answers with Add().
    void ImportFileRequested();
    /// The host removes the objects of GetSelectedItems(), and answers with Remove().
    void RemoveRequested();
    /// The host makes the selected timeline the default, or no longer so, and answers with Update().
    void MakeDefaultTimelineRequested();
    /// The host reads the source @p id afresh; that is the Source's id.
    void RefreshSourceRequested(QUuid id);
    /// The host puts another file in the place of @p oldPath for the source @p id. @p newPath is empty: the
    /// host asks the user for it.
    void ReplaceSourceRequested(QUuid id, QString newPath, QString oldPath);
    /// Files were dropped. The host makes source timelines of them under @p parentID, at the index that
    /// @p indicies holds once for each path, or at the end for -1.
    void InsertSourcesInFolderRequested(QList<QString> filePath, QUuid parentID, QList<int> indicies);
    /// The host shows @p timeline in viewer @p index (0 or 1), or clears that viewer for an empty pointer,
    /// and answers with Update().
    void ViewerChangeRequested(std::weak_ptr<Timeline> timeline, int index);
    /// The host moves the object @p id under @p parentID, to @p index among the children there once it has
    /// left its old place, or to the end for -1, and answers with Update(). It refuses to move a folder into
    /// or below itself.
    void ProjectObjectMoved(QUuid id, QUuid parentID, int index);

public Q_SLOTS:
    /// Adds a row for @p object, and rows for a folder's children, at the end of the rows of its parent. An
    /// empty folder for folders alone gets no row. Without a row for the parent nothing is added, which is
    /// logged as an error. A dead pointer does nothing.
    void Add(std::weak_ptr<ProjectObject> object);
    /// Removes the row of the object @p id and the rows below it.
    void Remove(QUuid id);
    /// Removes all rows; the root stays.
    void RemoveAll();
    /// Shows the name that the object @p id has now.
    void RefreshName(QUuid id);

    /// The slots of the buttons and of the menu.
    void OnNewFolder();
    void OnNewTimeline();
    void OnImportFile();
    void OnRemove();
    void OnMakeDefaultTimeline();
    /// Lets the user edit the name of the one selected row, if the panel has the focus.
    void OnRenameSelectedItem();
    void OnRefreshSource();
    void OnReplaceSource();

    /// The slots of the tree.
    void OnItemChanged(QTreeWidgetItem* item, int column);
    void OnItemExpanded(QTreeWidgetItem* item);
    void OnItemCollapsed(QTreeWidgetItem* item);
    void OnItemSelectionChanged();
    void OnProjectObjectMoved(QUuid id, QUuid parentID, int index);

    /// Shows the file of the first selected timeline in the system's file manager.
    void ShowInFolder();
    /// Puts the absolute path of the first selected timeline's file on the clipboard, if the file exists.
    void CopyPathToClipboard();
    /// Opens the menu of the selection at @p pos of the panel.
    void ShowContextMenu(QPoint pos);
    void RequestInsertSourcesInFolder(QList<QString> filePaths, QUuid parentID, QList<int> indicies);
    /// Asks for the selected timeline to be shown in viewer A when the action of that viewer sends it, else
    /// in viewer B, or for that viewer to be cleared if the timeline stands there.
    void RequestViewerChange();
    /// Asks for the timeline of @p item to be shown in viewer @p viewerIndex.
    void RequestViewerChange(QTreeWidgetItem* item, int viewerIndex);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void CreateWidgets();
    void CreateActions();
    void CreateLayout();
    void CreateConnections();
    void InitializeContextMenu();
    void CreateIcon(QIcon& icon, const QString& name);
    void CreateButton(FlatButton** button, const QImage& image, const QString& tooltip, const QString& name);

    QTreeWidgetItem* FindItem(const QUuid& id);
    QTreeWidgetItem* RecursiveFindItem(const QUuid& id, QTreeWidgetItem* parent);
    bool RecursiveRemove(const QUuid& id, QTreeWidgetItem* parent);
    void ClearSelected();
    void ClearSelected(std::weak_ptr<ProjectObject> object);
    void ClearSelectedOnCollapsed(std::weak_ptr<ProjectObject> object);

    /// The branch of the project that is being walked, against folders that hold themselves.
    using Branch = QSet<const ProjectObject*>;
    /// What Update() gathers before any row is in the tree.
    struct NewRows;
    struct AddedBranch;

    std::unique_ptr<QTreeWidgetItem> MakeRow(const std::shared_ptr<ProjectObject>& object) const;
    void AddWithChildren(const std::shared_ptr<ProjectObject>& object, AddedBranch& added);
    QTreeWidgetItem* FindParent(const QUuid& id, AddedBranch& added);
    void Gather(const std::shared_ptr<ProjectObject>& object, Branch& branch, NewRows& rows) const;
    void LogFailureToAdd(ProjectObject& object) const;
    void ClearSelected(const std::shared_ptr<ProjectObject>& object, Branch& branch);
    void UnselectBranch(const std::shared_ptr<ProjectObject>& object, const RowIndex& index, Branch& branch,
                        QSet<QTreeWidgetItem*>& rows);
    void FillMenuOfSeveral(QMenu& menu, const QList<QTreeWidgetItem*>& items) const;
    void FillMenuOfOne(QMenu& menu, const QTreeWidgetItem* item, ProjectObject& object) const;
    /// The source of the one selected object; null if there is none.
    std::shared_ptr<Source> SelectedSource() const;
    /// The path of the first selected timeline's source; null if there is none.
    QString FirstSelectedPath() const;

    std::shared_ptr<ProjectObject> mRoot;
    ProjectViewTreeWidget* mTreeWidget = nullptr;
    QAction* mAddFolderAction = nullptr;
    QAction* mAddTimelineAction = nullptr;
    QAction* mImportFileAction = nullptr;
    QAction* mRenameAction = nullptr;
    QAction* mDeleteAction = nullptr;
    QAction* mRefreshAction = nullptr;
    QAction* mReplaceAction = nullptr;
    QAction* mOpenInViewerAAction = nullptr;
    QAction* mOpenInViewerBAction = nullptr;
    QAction* mShowInFolderAction = nullptr;
    QAction* mCopyPathAction = nullptr;
    QAction* mMakeDefaultAction = nullptr;
    FlatButton* mNewFolderButton = nullptr;
    FlatButton* mNewTimelineButton = nullptr;
    FlatButton* mImportFileButton = nullptr;
    FlatButton* mDeleteButton = nullptr;
    QIcon mFolderIcon;
    QIcon mSourceIcon;
    QIcon mTimelineIcon;
    bool mColumnsSized = false;
};
