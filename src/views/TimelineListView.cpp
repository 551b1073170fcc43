// SPDX-License-Identifier: MIT
#include "views/TimelineListView.h"

#include "host/Settings.h"
#include "host/Source.h"
#include "kit/FlatButton.h"
#include "views/FileManager.h"
#include "views/ProjectRow.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QPointer>
#include <QVBoxLayout>

namespace
{

constexpr int TimelineObjectType = 1;
constexpr int ElementObjectType = 2;

/// Colours @p row; the role holds a plain colour.
void PaintRow(QTreeWidgetItem* row, Qt::ItemDataRole role, const QColor& color)
{
    row->setData(0, role, color);
}

} // namespace

TimelineListView::TimelineListView(QWidget* parent) : QWidget(parent)
{
    CreateWidgets();
    CreateActions();
    CreateLayout();
    CreateConnections();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

void TimelineListView::SetTimeline(std::weak_ptr<ProjectObject> object)
{
    mTreeWidget->clear();
    mTimeline = object;
    const std::shared_ptr<ProjectObject> timeline = mTimeline.lock();
    if (!timeline || timeline->GetType() != TimelineObjectType)
    {
        mTimeline.reset();
        return;
    }
    QList<QTreeWidgetItem*> rows;
    for (const std::shared_ptr<ProjectObject>& element : timeline->GetChildren())
    {
        if (!element)
            continue;
        auto* row = new QTreeWidgetItem;
        row->setText(0, element->GetName());
        ProjectRow::SetObject(row, element->GetID(), element);
        if (element->IsMissing())
            PaintRow(row, Qt::ForegroundRole, Qt::red);
        rows << row;
    }
    mTreeWidget->addTopLevelItems(rows);
}

void TimelineListView::SetActiveElementID(const QUuid& id)
{
    const QPalette& palette = mTreeWidget->palette();
    for (int index = 0; index < mTreeWidget->topLevelItemCount(); ++index)
    {
        QTreeWidgetItem* const row = mTreeWidget->topLevelItem(index);
        const std::shared_ptr<ProjectObject> element = ProjectRow::GetObject(row);
        if (!element)
            continue;
        const bool isActive = element->GetID() == id && Settings::highlightActiveElementInDetailsView;
        // The others lose the red of missing media with their colours: that is meant, SetTimeline() brings
        // it back.
        PaintRow(row, Qt::ForegroundRole, isActive ? QColor(Qt::white) : palette.color(QPalette::Text));
        PaintRow(row, Qt::BackgroundRole, palette.color(isActive ? QPalette::AlternateBase : QPalette::Base));
    }
}

bool TimelineListView::HasFocusExtended() const
{
    return hasFocus() || mTreeWidget->hasFocus();
}

void TimelineListView::OnInsertSourcesRequested(QList<QString> paths, QList<int> indicies)
{
    Q_EMIT InsertSourcesRequested(paths, indicies);
}

void TimelineListView::OnInsertElementsRequested(QList<QUuid> uuids, QList<int> indicies)
{
    if (const std::shared_ptr<ProjectObject> timeline = mTimeline.lock())
        Q_EMIT InsertElementsRequested(timeline->GetID(), uuids, indicies);
}

void TimelineListView::OnMoveElementsUpRequested()
{
    QList<QUuid> ids;
    QList<int> targets;
    for (const int row : SelectedRows())
    {
        const int target = row - 1;
        if (target < 0)
            return;
        ids << ProjectRow::GetID(mTreeWidget->topLevelItem(row));
        targets << target;
    }
    RequestMove(ids, targets);
}

void TimelineListView::OnMoveElementsDownRequested()
{
    const QList<int> rows = SelectedRows();
    const int count = mTreeWidget->topLevelItemCount();
    QList<QUuid> ids;
    QList<int> targets;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
    {
        // Counted with the element still in its place, so that the row after the next is the one to go
        // before.
        const int target = *row + 2;
        if (target > count)
            return;
        ids << ProjectRow::GetID(mTreeWidget->topLevelItem(*row));
        targets << target;
    }
    RequestMove(ids, targets);
}

void TimelineListView::OnMoveElementsRequested(QList<QUuid> uuids, QList<int> indicies)
{
    RequestMove(uuids, indicies);
}

void TimelineListView::RequestMove(const QList<QUuid>& uuids, const QList<int>& indicies)
{
    const QPointer<TimelineListView> guard(this);
    Q_EMIT MoveElementsRequested(uuids, indicies);
    if (!guard)
        return;
    mTreeWidget->SelectItems(uuids);
    mTreeWidget->setFocus(Qt::ActiveWindowFocusReason);
}

void TimelineListView::OnSortAscendingRequested()
{
    Q_EMIT SortElementsRequested(true);
}

void TimelineListView::OnSortDecendingRequested()
{
    Q_EMIT SortElementsRequested(false);
}

void TimelineListView::OnRemoveElementsRequested()
{
    QList<QUuid> ids;
    for (const QTreeWidgetItem* row : mTreeWidget->GetSelectedItemsInOrder())
    {
        if (const std::shared_ptr<ProjectObject> element = ProjectRow::GetObject(row))
            ids << element->GetID();
    }
    Q_EMIT RemoveElementsRequested(ids);
}

void TimelineListView::OnSeekPlaybackTimeRequested(QTreeWidgetItem* item)
{
    const std::shared_ptr<ProjectObject> element = ProjectRow::GetObject(item);
    if (!element || element->GetType() != ElementObjectType)
        return;
    // Unsigned, so that an absurd time wraps.
    const uint64_t time = static_cast<uint64_t>(element->GetStartTime()) +
                          static_cast<uint64_t>(Settings::ROUNDING_ERROR_EXTRA_TIME);
    Q_EMIT SeekPlaybackTimeRequested(static_cast<int64_t>(time));
}

void TimelineListView::ShowInFolder()
{
    for (const QTreeWidgetItem* row : mTreeWidget->GetSelectedItemsInOrder())
    {
        const std::shared_ptr<ProjectObject> element = ProjectRow::GetObject(row);
        if (!element || element->GetType() != ElementObjectType)
            continue;
        const std::shared_ptr<Source> source = element->GetSource().lock();
        if (!source || source->GetPath().isEmpty())
            continue;
        FileManager::Show(source->GetPath());
        return;
    }
}

void TimelineListView::ShowContextMenu(QPoint pos)
{
    const int count = mTreeWidget->GetSelectedItemsInOrder().size();
    if (count == 0)
        return;
    QMenu menu;
    menu.addAction(mMoveUpAction);
    menu.addAction(mMoveDownAction);
    menu.addSeparator();
    if (count == 1)
    {
        menu.addAction(mShowInFolderAction);
        menu.addSeparator();
    }
    menu.addAction(mDeleteAction);
    menu.exec(mapToGlobal(pos));
}

void TimelineListView::CreateWidgets()
{
    mTreeWidget = new TimelineListViewTreeWidget(this);
    mTreeWidget->setObjectName(QStringLiteral("treeWidget"));
    mTreeWidget->setAccessibleName(tr("Elements"));
    mTreeWidget->setColumnCount(1);
    mTreeWidget->setHeaderHidden(true);
    mTreeWidget->setRootIsDecorated(false);
    // Where each row may have a height of its own, Qt adds them all up for each row that changes out of
    // sight.
    mTreeWidget->setUniformRowHeights(true);
    mTreeWidget->setDragEnabled(true);
    mTreeWidget->setAcceptDrops(true);

    const QImage moveUp(QStringLiteral(":/icons/move_up.png"));
    const struct
    {
        FlatButton** button;
        const char* name;
        QImage image;
        int margin;
        QString tooltip;
    } buttons[] = {
        {&mMoveUpButton, "moveUpButton", moveUp, 2, tr("Move Up")},
        {&mMoveDownButton, "moveDownButton", moveUp.mirrored(false, true), 2, tr("Move Down")},
        {&mSortAscendingButton, "sortAscendingButton", QImage(QStringLiteral(":/icons/sort_acending.png")), 2,
         tr("Sort Acending")},
        {&mSortDescendingButton, "sortDescendingButton", QImage(QStringLiteral(":/icons/sort_decending.png")),
         2, tr("Sort Decending")},
        {&mRemoveButton, "removeButton", QImage(QStringLiteral(":/icons/delete.png")), 4, tr("Remove")},
    };
    for (const auto& row : buttons)
    {
        auto* button = new FlatButton(this);
        button->setObjectName(QLatin1String(row.name));
        button->setFixedSize(18, 18);
        button->SetImage(row.image, row.margin);
        button->SetHoverEnabled(false);
        button->setToolTip(row.tooltip);
        button->setAccessibleName(row.tooltip);
        *row.button = button;
    }
}

void TimelineListView::CreateActions()
{
    mMoveUpAction = new QAction(tr("Move Up"), this);
    mMoveDownAction = new QAction(tr("Move Down"), this);
    mShowInFolderAction = new QAction(tr("Show in Folder"), this);
    mDeleteAction = new QAction(tr("Delete"), this);
}

void TimelineListView::CreateLayout()
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(4, 0, 4, 6);
    row->setSpacing(0);
    row->addWidget(mMoveUpButton);
    row->addWidget(mMoveDownButton);
    row->addSpacing(16);
    row->addWidget(mSortAscendingButton);
    row->addWidget(mSortDescendingButton);
    row->addStretch();
    row->addWidget(mRemoveButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mTreeWidget);
    layout->addLayout(row);
}

void TimelineListView::CreateConnections()
{
    connect(mMoveUpAction, SIGNAL(triggered()), this, SLOT(OnMoveElementsUpRequested()));
    connect(mMoveDownAction, SIGNAL(triggered()), this, SLOT(OnMoveElementsDownRequested()));
    connect(mShowInFolderAction, SIGNAL(triggered()), this, SLOT(ShowInFolder()));
    connect(mDeleteAction, SIGNAL(triggered()), this, SLOT(OnRemoveElementsRequested()));

    connect(mMoveUpButton, SIGNAL(clicked()), this, SLOT(OnMoveElementsUpRequested()));
    connect(mMoveDownButton, SIGNAL(clicked()), this, SLOT(OnMoveElementsDownRequested()));
    connect(mSortAscendingButton, SIGNAL(clicked()), this, SLOT(OnSortAscendingRequested()));
    connect(mSortDescendingButton, SIGNAL(clicked()), this, SLOT(OnSortDecendingRequested()));
    connect(mRemoveButton, SIGNAL(clicked()), this, SLOT(OnRemoveElementsRequested()));

    connect(mTreeWidget, SIGNAL(InsertSourcesRequested(QList<QString>, QList<int>)), this,
            SLOT(OnInsertSourcesRequested(QList<QString>, QList<int>)));
    connect(mTreeWidget, SIGNAL(InsertElementsRequested(QList<QUuid>, QList<int>)), this,
            SLOT(OnInsertElementsRequested(QList<QUuid>, QList<int>)));
    connect(mTreeWidget, SIGNAL(MoveElementsRequested(QList<QUuid>, QList<int>)), this,
            SLOT(OnMoveElementsRequested(QList<QUuid>, QList<int>)));
    connect(mTreeWidget, SIGNAL(SeekPlaybackTimeRequested(QTreeWidgetItem*)), this,
            SLOT(OnSeekPlaybackTimeRequested(QTreeWidgetItem*)));
}

QList<int> TimelineListView::SelectedRows() const
{
    // One walk: looking each row up in the list costs a walk each.
    const QList<QTreeWidgetItem*> selected = mTreeWidget->GetSelectedItemsInOrder();
    QList<int> rows;
    for (int row = 0; row < mTreeWidget->topLevelItemCount() && rows.size() < selected.size(); ++row)
    {
        if (mTreeWidget->topLevelItem(row) == selected.at(rows.size()))
            rows << row;
    }
    return rows;
}
