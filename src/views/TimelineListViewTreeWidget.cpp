// SPDX-License-Identifier: MIT
#include "views/TimelineListViewTreeWidget.h"

#include "kit/DragPayload.h"
#include "kit/UiGlobals.h"
#include "views/ProjectRow.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QSet>

#include <algorithm>

namespace
{

QList<QUuid> ReversedIDs(const QList<QUuid>& ids)
{
    QList<QUuid> reversed = ids;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

/// One index for each of @p count entries.
QList<int> RepeatedIndex(int index, int count)
{
    QList<int> indices;
    indices.reserve(count);
    for (int entry = 0; entry < count; ++entry)
        indices << index;
    return indices;
}

} // namespace

TimelineListViewTreeWidget::TimelineListViewTreeWidget(QWidget* parent) : MultiSelectTreeWidget(parent) {}

void TimelineListViewTreeWidget::SelectItems(const QList<QUuid>& uuids)
{
    clearSelection();
    // Selecting row by row searches all ranges selected before each time; so does the flag for
    // whole rows, which one column doesn't need.
    const QSet<QUuid> wanted(uuids.begin(), uuids.end());
    QItemSelection selection;
    const int count = topLevelItemCount();
    int first = -1;
    for (int row = 0; row <= count; ++row)
    {
        const bool isWanted = row < count && wanted.contains(ProjectRow::GetID(topLevelItem(row)));
        if (isWanted && first < 0)
            first = row;
        if (isWanted || first < 0)
            continue;
        selection.append(QItemSelectionRange(model()->index(first, 0), model()->index(row - 1, 0)));
        first = -1;
    }
    if (!selection.isEmpty())
        selectionModel()->select(selection, QItemSelectionModel::Select);
}

bool TimelineListViewTreeWidget::CanDrop(const QMimeData* mimeData)
{
    if (DragPayload::HasProjectObjects(mimeData))
    {
        const auto allowed = DragPayload::ReadAllowedDropTypes(mimeData);
        return allowed && allowed->sourcesForElements;
    }
    return DragPayload::HasElements(mimeData) || DragPayload::HasFiles(mimeData);
}

QTreeWidgetItem* TimelineListViewTreeWidget::RowBelowGap(const QPoint& position) const
{
    const int half = indexRowSizeHint(indexAt(position)) / 2;
    return itemAt(position + QPoint(0, half));
}

void TimelineListViewTreeWidget::startDrag(Qt::DropActions)
{
    const QList<QTreeWidgetItem*> rows = GetSelectedItemsInOrder();
    if (rows.isEmpty())
        return;
    QList<QUuid> ids;
    ids.reserve(rows.size());
    for (const QTreeWidgetItem* row : rows)
        ids << ProjectRow::GetID(row);
    auto* mimeData = new QMimeData;
    mimeData->setData(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE, DragPayload::WriteIDs(ids));
    auto* drag = new QDrag(this);
    drag->setMimeData(mimeData);
    drag->exec(Qt::MoveAction);
}

void TimelineListViewTreeWidget::dragEnterEvent(QDragEnterEvent* event)
{
    // What the drag may do is not looked at yet: one that can't be dropped enters and is refused by its
    // first move.
    const QMimeData* const mimeData = event->mimeData();
    if (!DragPayload::HasProjectObjects(mimeData) && !DragPayload::HasElements(mimeData) &&
        !DragPayload::HasFiles(mimeData))
        return;
    mDragActive = true;
    event->acceptProposedAction();
}

void TimelineListViewTreeWidget::dragMoveEvent(QDragMoveEvent* event)
{
    if (!CanDrop(event->mimeData()))
    {
        event->setDropAction(Qt::IgnoreAction);
        return;
    }
    QTreeWidgetItem* row = itemAt(event->pos());
    if (!row)
        row = topLevelItem(topLevelItemCount() - 1);
    if (row)
    {
        const QTreeWidgetItem* const next = RowBelowGap(event->pos());
        mDropLineY = next ? visualItemRect(next).top() : visualItemRect(row).bottom() + 1;
    }
    event->acceptProposedAction();
    event->setDropAction(Qt::MoveAction);
    viewport()->update();
}

void TimelineListViewTreeWidget::dragLeaveEvent(QDragLeaveEvent*)
{
    mDragActive = false;
    viewport()->update();
}

void TimelineListViewTreeWidget::dropEvent(QDropEvent* event)
{
    mDragActive = false;
    const QMimeData* const mimeData = event->mimeData();
    if (CanDrop(mimeData))
    {
        const int index = itemAt(event->pos()) ? indexOfTopLevelItem(RowBelowGap(event->pos())) : -1;
        if (DragPayload::HasProjectObjects(mimeData))
            DropProjectObjects(mimeData, index);
        else if (DragPayload::HasElements(mimeData))
            DropElements(mimeData, index);
        else
            DropFiles(mimeData, index);
    }
    viewport()->update();
}

void TimelineListViewTreeWidget::DropProjectObjects(const QMimeData* mimeData, int index)
{
    const QList<QUuid> ids = DragPayload::ReadIDs(mimeData->data(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE));
    Q_EMIT InsertElementsRequested(index >= 0 ? ReversedIDs(ids) : ids, RepeatedIndex(index, ids.size()));
}

void TimelineListViewTreeWidget::DropElements(const QMimeData* mimeData, int index)
{
    // Rows that come from another list are compared with no row.
    const QList<QTreeWidgetItem*> rows = GetSelectedItemsInOrder();
    const int first = rows.isEmpty() ? -1 : indexOfTopLevelItem(rows.first());
    const QList<QUuid> ids = DragPayload::ReadIDs(mimeData->data(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE));
    const bool isTowardsTheEnd = index < 0 || index > first;
    Q_EMIT MoveElementsRequested(isTowardsTheEnd ? ids : ReversedIDs(ids), RepeatedIndex(index, ids.size()));
}

void TimelineListViewTreeWidget::DropFiles(const QMimeData* mimeData, int index)
{
    const QList<QString> paths = DragPayload::ReadFiles(mimeData);
    if (!paths.isEmpty())
        Q_EMIT InsertSourcesRequested(paths, RepeatedIndex(index, paths.size()));
}

void TimelineListViewTreeWidget::mousePressEvent(QMouseEvent* event)
{
    if (itemAt(event->pos()))
    {
        MultiSelectTreeWidget::mousePressEvent(event);
        return;
    }
    clearSelection();
    if (parentWidget())
        parentWidget()->setFocus(Qt::NoFocusReason);
    event->accept();
}

void TimelineListViewTreeWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    // Accepted first: the host may replace the rows, or the list.
    event->accept();
    const QList<QTreeWidgetItem*> rows = selectedItems();
    if (rows.size() == 1)
        Q_EMIT SeekPlaybackTimeRequested(rows.first());
}

void TimelineListViewTreeWidget::paintEvent(QPaintEvent* event)
{
    // Rows that came since the last paint may not be laid out yet.
    executeDelayedItemsLayout();
    QPainter painter(viewport());
    drawTree(&painter, event->region());
    if (mDragActive && topLevelItemCount() > 0)
        painter.drawLine(0, mDropLineY, width(), mDropLineY);
}
