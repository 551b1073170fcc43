// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <cstdint>

class PanelArea;
class PlaybackController;
class Project;
class ProjectImport;
class QTreeWidget;
class TimelineListView;

/// Ties the list of elements, the panel "details", to the project and to playback: it shows the elements of
/// the timeline that leads and the one under the playhead, and what the user asks of it becomes steps of the
/// project's undo stack.
class ElementPanelBinding : public QObject
{
    Q_OBJECT

public:
    /// The list goes into the place "details" of @p panels.
    ElementPanelBinding(Project* project, PlaybackController* playback, PanelArea* panels, QObject* parent);

    TimelineListView* List() const;

public Q_SLOTS:
    /// Highlights the element under the playhead, or none if Settings::highlightActiveElementInDetailsView is
    /// off; call it when that has changed.
    void UpdateHighlight();

Q_SIGNALS:
    /// Files that were dropped on the list are being imported; the import tells its progress.
    void ImportStarted(ProjectImport* import);

private Q_SLOTS:
    /// Shows the timeline that leads anew; what was selected and is still there stays so.
    void Refresh();
    void Note();
    void OnChanged();
    void OnPlayheadMoved();
    void OnInsertSourcesRequested(QList<QString> paths, QList<int> indices);
    void OnInsertElementsRequested(QUuid timelineID, QList<QUuid> ids, QList<int> indices);
    void OnMoveElementsRequested(QList<QUuid> ids, QList<int> indices);
    void OnSortElementsRequested(bool ascending);
    void OnRemoveElementsRequested(QList<QUuid> ids);

private:
    /// The timeline that leads; null if there is none.
    QUuid TimelineID() const;
    /// The element under the playhead; null if there is none.
    QUuid ActiveElementID() const;
    QTreeWidget* Rows() const;
    QList<QUuid> SelectedIDs() const;
    void Select(const QList<QUuid>& ids);

    Project* mProject;
    PlaybackController* mPlayback;
    TimelineListView* mList;
    QUuid mActiveID;
    /// Something has changed that the list may show.
    bool mStale = false;
};
