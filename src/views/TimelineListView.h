// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/MetaTypes.h"
#include "host/ProjectObject.h"

#include <QList>
#include <QString>
#include <QUuid>
#include <QWidget>

#include <cstdint>
#include <memory>

class FlatButton;
class QAction;
class QTreeWidgetItem;
class TimelineListViewTreeWidget;

/// The list of one timeline's elements, in the timeline's order.
///
/// It shows what the last SetTimeline() found and changes nothing itself: each edit is a request, and the
/// host answers it by SetTimeline(), with the same timeline too. Objects may go away between two calls; their
/// rows then stay and do nothing.
///
/// Where ids and indices come in pairs, the host applies them one after another: each index is counted in the
/// list as it then stands, with the element still in it, and names the row before which the element goes; the
/// number of rows, or -1, is the end.
class TORVALENUI_EXPORT TimelineListView : public QWidget
{
    Q_OBJECT

public:
    /// Shows no timeline at first.
    explicit TimelineListView(QWidget* parent = nullptr);

    /// Highlights the element with @p id, if `Settings::highlightActiveElementInDetailsView` is on; no other
    /// keeps a colour of its own, a missing one's red included, until the next SetTimeline().
    void SetActiveElementID(const QUuid& id);
    /// Whether the panel or its list has the keyboard focus.
    bool HasFocusExtended() const;

Q_SIGNALS:
    /// Files were dropped: insert them. @p path is sorted without regard to case. Answer: SetTimeline().
    void InsertSourcesRequested(QList<QString> path, QList<int> indicies);
    /// Source timelines of the project were dropped: insert them into the timeline shown. Answer:
    /// SetTimeline().
    void InsertElementsRequested(QUuid timelineID, QList<QUuid> uuids, QList<int> indicies);
    /// Elements are to move; the lists may be empty. Answer: SetTimeline(), during the signal, so that the
    /// elements moved are selected again.
    void MoveElementsRequested(QList<QUuid> uuids, QList<int> indicies);
    /// The elements are to be sorted; by what is the host's choice. Answer: SetTimeline().
    void SortElementsRequested(bool acending);
    /// Elements are to be removed; the list may be empty. Answer: SetTimeline().
    void RemoveElementsRequested(QList<QUuid> uuids);
    /// The host is to seek to @p playbackTime (microseconds): the start of an element, and
    /// `Settings::ROUNDING_ERROR_EXTRA_TIME`.
    void SeekPlaybackTimeRequested(int64_t playbackTime);

public Q_SLOTS:
    /// Shows the elements of the timeline @p object. A dead pointer, or an object that is no timeline,
    /// empties the list.
    void SetTimeline(std::weak_ptr<ProjectObject> object);
    /// Passes on files that were dropped on the list.
    void OnInsertSourcesRequested(QList<QString> paths, QList<int> indicies);
    /// Passes on objects that were dropped on the list; without a timeline there is no request.
    void OnInsertElementsRequested(QList<QUuid> uuids, QList<int> indicies);
    /// Each requests to move the selected elements by one row. If one of them would leave the list, none
    /// moves.
    void OnMoveElementsUpRequested();
    void OnMoveElementsDownRequested();
    /// Passes on rows that were dropped on the list, and selects them.
    void OnMoveElementsRequested(QList<QUuid> uuids, QList<int> indicies);
    void OnSortAscendingRequested();
    void OnSortDecendingRequested();
    /// Requests to remove the selected elements.
    void OnRemoveElementsRequested();
    /// Requests a seek to the element of @p item; null does nothing.
    void OnSeekPlaybackTimeRequested(QTreeWidgetItem* item);
    /// Shows the file of the first selected element that has one in the system's file manager.
    void ShowInFolder();
    /// Opens the menu of the selected elements at @p pos of the panel; without a selection there is none.
    void ShowContextMenu(QPoint pos);

private:
    void CreateWidgets();
    void CreateActions();
    void CreateLayout();
    void CreateConnections();
    /// The selected rows' places, in the list's order.
    QList<int> SelectedRows() const;
    void RequestMove(const QList<QUuid>& uuids, const QList<int>& indicies);

    std::weak_ptr<ProjectObject> mTimeline;
    TimelineListViewTreeWidget* mTreeWidget = nullptr;
    QAction* mMoveUpAction = nullptr;
    QAction* mMoveDownAction = nullptr;
    QAction* mShowInFolderAction = nullptr;
    QAction* mDeleteAction = nullptr;
    FlatButton* mMoveUpButton = nullptr;
    FlatButton* mMoveDownButton = nullptr;
    FlatButton* mSortAscendingButton = nullptr;
    FlatButton* mSortDescendingButton = nullptr;
    FlatButton* mRemoveButton = nullptr;
};
