// SPDX-License-Identifier: MIT
#include "kit/DragPayload.h"
#include "kit/UiGlobals.h"
#include "views/ProjectRow.h"
#include "views/ProjectViewTreeWidget.h"

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>

namespace
{

/// How near the edge of a folder's row a drop is meant for the gap, in pixels.
constexpr int EdgeReach = 3;

/// Index of @p child in @p parent; -1 for a row at top level, which has no parent row.
int IndexIn(QTreeWidgetItem* parent, QTreeWidgetItem* child)
{
    return parent ? parent->indexOfChild(child) : -1;
}

bool HaveSameParent(const QTreeWidgetItem* row, const QTreeWidgetItem* other)
{
    return row && other && row->parent() == other->parent();
}

/// Whether taking @p first, null for none, out of its place moves @p row up.
bool IsSiblingBefore(QTreeWidgetItem* first, QTreeWidgetItem* row)
{
    return HaveSameParent(first, row) && IndexIn(row->parent(), first) < IndexIn(row->parent(), row);
}

} // namespace

bool ProjectViewTreeWidget::CanDrop(const QMimeData* mimeData, const QPoint& pos)
{
    DragPayload::AllowedDropTypes types;
    if (DragPayload::HasFiles(mimeData))
    {
        types.general = true;
        types.sources = true;
    }
    else
    {
        const auto allowed = DragPayload::ReadAllowedDropTypes(mimeData);
        if (!allowed || !allowed->general || !selectionModel()->hasSelection() ||
            mimeData->data(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE).isEmpty())
            return false;
        types = *allowed;
    }

    QPoint point = pos;
    QPoint last;
    while (true)
    {
        QTreeWidgetItem* const row = itemAt(point);
        const auto object = ProjectRow::GetObject(row);
        if (!object)
            return false;
        if (object->GetType() != 0)
        {
            if (!row->parent())
                return false;
            // The folder at top level decides, whatever lies between.
            const QTreeWidgetItem* top = row;
            while (top->parent())
                top = top->parent();
            const auto bin = ProjectRow::GetObject(top);
            return bin && (bin->IsFolderBin() || (bin->IsSourceBin() && types.sources) ||
                           (bin->IsTimelineBin() && types.timelines));
        }
        if ((object->IsFolderBin() && !types.folders) || (object->IsSourceBin() && !types.sources) ||
            (object->IsTimelineBin() && !types.timelines))
            return false;
        // Near its edge, the row beyond has to take the drop as well.
        const QPoint reach(0, EdgeReach);
        const QTreeWidgetItem* const above = itemAt(point - reach);
        const QTreeWidgetItem* const below = itemAt(point + reach);
        const QPoint former = last;
        last = point;
        if (above && above != row)
            point -= 2 * reach;
        else if (below && below != row)
            point += 2 * reach;
        else
            return types.general;
        // Rows lower than the reach would send this to and fro for ever; both take the drop.
        if (point == former && last != pos)
            return types.general;
    }
}

void ProjectViewTreeWidget::dragEnterEvent(QDragEnterEvent* event)
{
    if (!DragPayload::HasFiles(event->mimeData()) && !DragPayload::HasProjectObjects(event->mimeData()))
        return;
    mDragActive = true;
    event->acceptProposedAction();
}

void ProjectViewTreeWidget::dragMoveEvent(QDragMoveEvent* event)
{
    mDropOnItem = false;
    mDropBelow = false;
    mDropIndex = -1;
    const QPoint pos = event->pos();
    if (!CanDrop(event->mimeData(), pos))
    {
        mDropRect = QRect();
        event->setDropAction(Qt::IgnoreAction);
        viewport()->update();
        return;
    }
    QTreeWidgetItem* const row = itemAt(pos);
    mDropRect = visualItemRect(row);
    const auto object = ProjectRow::GetObject(row);
    if (object && object->GetType() == 0)
        PlaceAtFolder(row, *object, pos);
    else
        PlaceAmongSiblings(row, pos);
    event->acceptProposedAction();
    event->setDropAction(Qt::MoveAction);
    viewport()->update();
}

void ProjectViewTreeWidget::PlaceAtFolder(QTreeWidgetItem* row, const ProjectObject& object,
                                          const QPoint& pos)
{
    QTreeWidgetItem* const parent = row->parent();
    // The first that was selected, which need not be the first in the tree.
    QTreeWidgetItem* const first = selectedItems().value(0);
    QTreeWidgetItem* const above = itemAt(pos.x(), pos.y() - EdgeReach);
    QTreeWidgetItem* const below = itemAt(pos.x(), pos.y() + EdgeReach);
    if (above && above != row && above == parent)
    {
        mDropParentID = object.GetParentID();
        // With an earlier sibling on the way the index is that of the parent in itself, which is none: the
        // objects go to the end, though the line stands over the row. It is meant so.
        mDropIndex = IndexIn(parent, IsSiblingBefore(first, row) ? above : row);
    }
    else if (above && above != row)
    {
        // Meant so: the frame is round this row, and the objects go to the end of the row above.
        mDropParentID = ProjectRow::GetID(above);
        mDropOnItem = true;
    }
    else if (!below)
    {
        mDropParentID = object.GetParentID();
        mDropBelow = true;
    }
    else if (below == row)
    {
        mDropParentID = object.GetID();
        mDropOnItem = true;
    }
    else if (HaveSameParent(first, row))
    {
        mDropParentID = object.GetParentID();
        if (IsSiblingBefore(first, row))
        {
            mDropIndex = IndexIn(parent, row);
            mDropBelow = true;
        }
        else if (HaveSameParent(below, row))
        {
            mDropIndex = IndexIn(parent, below);
            mDropBelow = true;
        }
        else
        {
            // Meant so: the frame is round this row, and the objects go to the end of its parent.
            mDropOnItem = true;
        }
    }
    else if (below == parent)
    {
        mDropParentID = object.GetParentID();
        mDropIndex = IndexIn(parent, row);
        mDropRect = visualItemRect(below);
        mDropBelow = true;
    }
    else
    {
        mDropParentID = object.GetID();
        mDropOnItem = true;
    }
}

void ProjectViewTreeWidget::PlaceAmongSiblings(QTreeWidgetItem* row, const QPoint& pos)
{
    QTreeWidgetItem* const parent = row->parent();
    const auto folder = ProjectRow::GetObject(parent);
    if (!folder)
        return;
    QTreeWidgetItem* const first = selectedItems().value(0);
    const int half = indexRowSizeHint(indexAt(pos)) / 2;
    QTreeWidgetItem* const above = itemAt(pos.x(), pos.y() - half);
    QTreeWidgetItem* const below = itemAt(pos.x(), pos.y() + half);
    const int index = parent->indexOfChild(row);
    mDropParentID = folder->GetID();
    if (below == row && (above == row || index == 0))
    {
        mDropIndex = index;
    }
    else if (above && above != row && above->parent() == parent)
    {
        mDropIndex = IsSiblingBefore(first, row) ? parent->indexOfChild(above) : index;
    }
    else if (below && below != row && below->parent() == parent)
    {
        mDropIndex = IsSiblingBefore(first, row) ? index : parent->indexOfChild(below);
        mDropRect = visualItemRect(below);
    }
    else
    {
        mDropBelow = true;
    }
}

void ProjectViewTreeWidget::dragLeaveEvent(QDragLeaveEvent*)
{
    mDragActive = false;
    viewport()->update();
}

void ProjectViewTreeWidget::dropEvent(QDropEvent* event)
{
    mDragActive = false;
    if (!CanDrop(event->mimeData(), event->pos()))
    {
        viewport()->update();
        return;
    }
    // Where it lands was found by the last move.
    if (DragPayload::HasFiles(event->mimeData()))
    {
        const QList<QString> paths = DragPayload::ReadFiles(event->mimeData());
        QList<int> indices;
        for (int count = 0; count < paths.size(); ++count)
            indices << mDropIndex;
        if (!paths.isEmpty())
            Q_EMIT InsertSourcesInFolderRequested(paths, mDropParentID, indices);
    }
    else
    {
        QList<QUuid> ids;
        QTreeWidgetItem* lastKept = nullptr;
        const QList<QTreeWidgetItem*> rows = GetSelectedItemsInOrder();
        for (QTreeWidgetItem* const row : rows)
        {
            // A row below another selected one moves with it. In tree order, that one is the last kept.
            if (IsDescendant(row, lastKept))
                continue;
            lastKept = row;
            ids << ProjectRow::GetID(row);
        }
        for (const QUuid& id : qAsConst(ids))
        {
            Q_EMIT ProjectObjectMoved(id, mDropParentID, mDropIndex);
            if (mDropIndex >= 0)
                ++mDropIndex;
        }
    }
    viewport()->update();
}
