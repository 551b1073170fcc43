// SPDX-License-Identifier: MIT
#include "views/ProjectViewTreeWidget.h"

#include "kit/DragPayload.h"
#include "kit/UiGlobals.h"
#include "views/ProjectRow.h"

#include <QDrag>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace
{

/// Whether @p object stays where it is: a drag that holds one may be dropped nowhere.
bool IsLockedOut(ProjectObject& object)
{
    return object.IsProtected() || object.IsFolderBin() || object.IsSourceBin() || object.IsTimelineBin();
}

} // namespace

ProjectViewTreeWidget::ProjectViewTreeWidget(QWidget* parent) : MultiSelectTreeWidget(parent) {}

void ProjectViewTreeWidget::startDrag(Qt::DropActions)
{
    const QList<QTreeWidgetItem*> rows = GetSelectedItemsInOrder();
    if (rows.isEmpty())
        return;
    QList<QUuid> ids;
    DragPayload::AllowedDropTypes types = {true, true, true, true, true};
    for (const QTreeWidgetItem* const row : rows)
    {
        ids << ProjectRow::GetID(row);
        const auto object = ProjectRow::GetObject(row);
        if (!object || IsLockedOut(*object))
        {
            types = {};
            break;
        }
        const int type = object->GetType();
        const bool isFolder = type == 0;
        const bool isSourceTimeline = object->IsSourceTimeline();
        types.general = types.general && (isFolder || type == 1);
        types.folders = types.folders && isFolder;
        types.sources = types.sources && !isFolder && isSourceTimeline;
        types.sourcesForElements = types.sources;
        types.timelines = types.timelines && !isFolder && !isSourceTimeline;
    }
    auto* const mimeData = new QMimeData;
    mimeData->setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, DragPayload::WriteIDs(ids));
    mimeData->setData(UiGlobals::ALLOWED_DROP_TYPES, DragPayload::WriteAllowedDropTypes(types));
    // The drag deletes itself when it has ended, and the mime data with it.
    auto* const drag = new QDrag(this);
    drag->setMimeData(mimeData);
    drag->exec(Qt::MoveAction);
}

void ProjectViewTreeWidget::mousePressEvent(QMouseEvent* event)
{
    if (itemAt(event->pos()))
    {
        MultiSelectTreeWidget::mousePressEvent(event);
        return;
    }
    clearSelection();
    event->accept();
}

void ProjectViewTreeWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The base would edit or expand the row.
    event->accept();
    const QList<QTreeWidgetItem*> selected = selectedItems();
    if (selected.size() != 1)
        return;
    const auto object = ProjectRow::GetObject(selected.first());
    if (object && object->GetType() == 1)
        Q_EMIT OpenInViewer(selected.first(), event->modifiers() & Qt::ControlModifier ? 1 : 0);
}

void ProjectViewTreeWidget::keyPressEvent(QKeyEvent* event)
{
    // The base would edit any row; renaming is a command of the host, which asks the panel for it.
    if (event->key() != Qt::Key_F2)
        QTreeView::keyPressEvent(event);
}

void ProjectViewTreeWidget::paintEvent(QPaintEvent* event)
{
    executeDelayedItemsLayout();
    QPainter painter(viewport());
    drawTree(&painter, event->region());
    if (!mDragActive || !mDropRect.isValid())
        return;
    if (mDropOnItem)
    {
        painter.drawRect(mDropRect);
        return;
    }
    const int y = mDropBelow ? mDropRect.bottom() + 1 : mDropRect.top();
    painter.drawLine(mDropRect.left(), y, width(), y);
}
