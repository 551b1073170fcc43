// SPDX-License-Identifier: MIT
#include "views/TimelineView.h"

#include <QTreeWidget>
#include <QVBoxLayout>

namespace
{

QTreeWidgetItem* MakeTimelineViewRow(int id, const QString& name)
{
    auto* row = new QTreeWidgetItem;
    row->setText(0, name);
    row->setData(0, Qt::UserRole, id);
    return row;
}

bool IsTimelineViewRow(const QTreeWidgetItem* row, int id)
{
    return row->data(0, Qt::UserRole).toInt() == id;
}

} // namespace

TimelineView::TimelineView(QWidget* parent) : QWidget(parent)
{
    CreateWidgets();
    CreateLayout();
}

void TimelineView::AddTimeline(int timelineID, QString name)
{
    mTree->addTopLevelItem(MakeTimelineViewRow(timelineID, name));
}

void TimelineView::RemoveTimeline(int timelineID)
{
    for (int index = 0; index < mTree->topLevelItemCount(); ++index)
    {
        if (!IsTimelineViewRow(mTree->topLevelItem(index), timelineID))
            continue;
        // The row is let go of and not deleted: that is meant, whoever holds it goes on using it.
        mTree->takeTopLevelItem(index);
        return;
    }
}

void TimelineView::AddSequence(int timelineID, int sequenceID, QString name)
{
    for (int index = 0; index < mTree->topLevelItemCount(); ++index)
    {
        QTreeWidgetItem* const timeline = mTree->topLevelItem(index);
        if (!IsTimelineViewRow(timeline, timelineID))
            continue;
        timeline->addChild(MakeTimelineViewRow(sequenceID, name));
        return;
    }
}

void TimelineView::AddElement(int timelineID, int sequenceID, int elementID, QString name)
{
    // A timeline without the sequence doesn't end the search: the next one of the same id has its turn.
    for (int index = 0; index < mTree->topLevelItemCount(); ++index)
    {
        QTreeWidgetItem* const timeline = mTree->topLevelItem(index);
        if (!IsTimelineViewRow(timeline, timelineID))
            continue;
        for (int child = 0; child < timeline->childCount(); ++child)
        {
            QTreeWidgetItem* const sequence = timeline->child(child);
            if (!IsTimelineViewRow(sequence, sequenceID))
                continue;
            sequence->addChild(MakeTimelineViewRow(elementID, name));
            return;
        }
    }
}

void TimelineView::CreateWidgets()
{
    mTree = new QTreeWidget(this);
    mTree->setObjectName(QStringLiteral("tree"));
}

void TimelineView::CreateLayout()
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mTree);
}

void TimelineView::CreateConnections() {}
