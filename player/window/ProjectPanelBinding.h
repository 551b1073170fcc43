// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUuid>

#include <memory>

class ImportProgress;
class PanelArea;
class Project;
class ProjectImport;
class ProjectTimeline;
class ProjectView;
class QDropEvent;
class QTreeWidget;
class Timeline;
class ViewerWidget;

/// Ties the project view, the panel "project", to the project, and drops on the viewers with it: what the
/// user asks of them becomes steps of the project's undo stack, and the view shows the project as it is after
/// each.
class ProjectPanelBinding : public QObject
{
    Q_OBJECT

public:
    /// The view goes into the place "project" of @p panels, with the progress of imports below it. Timelines
    /// that are dropped on @p viewer, which may be null, are asked for as those of the menu are; files that
    /// are dropped there are left to the window.
    ProjectPanelBinding(Project* project, ViewerWidget* viewer, PanelArea* panels, QObject* parent);

    ProjectView* View() const;
    /// Where imports show how far they are; others may hand theirs in.
    ImportProgress* Progress() const;

public Q_SLOTS:
    /// Lets the user choose media and imports them to where the selection is.
    void ImportByDialog();

Q_SIGNALS:
    /// @p timeline is to be shown in viewer @p viewer (0 or 1); null asks for that viewer to be cleared. The
    /// window answers with Project::NoteViewer().
    void ShowRequested(const std::shared_ptr<ProjectTimeline>& timeline, int viewer);

private Q_SLOTS:
    void OnRenamed(QUuid id, QString name);
    void OnNewFolderRequested();
    void OnNewTimelineRequested();
    void OnRemoveRequested();
    void OnMakeDefaultTimelineRequested();
    void OnRefreshSourceRequested(QUuid id);
    void OnReplaceSourceRequested(QUuid id, QString newPath, QString oldPath);
    void OnInsertSourcesRequested(QList<QString> paths, QUuid parentID, QList<int> indices);
    void OnViewerChangeRequested(std::weak_ptr<Timeline> timeline, int viewer);
    void OnProjectObjectMoved(QUuid id, QUuid parentID, int index);
    void OnViewerDropped(QDropEvent* event, int viewer);
    void Note();
    void OnObjectRenamed(const QUuid& id);
    void OnReset();
    /// Shows the project anew, where it was scrolled to, unless a name is being typed.
    void Refresh();
    void MoveGathered();

private:
    QTreeWidget* Tree() const;
    /// Selects the object @p id alone, with its folders open, and lets the user type its name.
    void SelectAndRename(const QUuid& id);
    void Follow(ProjectImport* import);

    Project* mProject;
    ProjectView* mView;
    ImportProgress* mProgress;
    /// What one drop moves: the objects, where they go, and the place of the first.
    QList<QUuid> mMovedIDs;
    QUuid mMovedParentID;
    int mMovedIndex = -1;
    QTimer mMoveTimer;
    /// Tells of what changes outside the steps of the undo stack.
    QTimer mRefreshTimer;
};
