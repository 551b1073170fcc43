// SPDX-License-Identifier: MIT
#include "window/ElementPanelBinding.h"

#include "playback/PlaybackController.h"
#include "project/Project.h"
#include "project/ProjectImport.h"
#include "project/ProjectTimeline.h"
#include "views/TimelineListView.h"
#include "window/PanelArea.h"

#include <QItemSelectionModel>
#include <QShortcut>
#include <QTreeWidget>

ElementPanelBinding::ElementPanelBinding(Project* project, PlaybackController* playback, PanelArea* panels,
                                         QObject* parent)
    : QObject(parent), mProject(project), mPlayback(playback), mList(new TimelineListView)
{
    mList->setObjectName(QStringLiteral("elementList"));
    panels->SetPanel(QStringLiteral("details"), mList);
    auto* const remove = new QShortcut(QKeySequence(Qt::Key_Delete), mList);
    remove->setContext(Qt::WidgetWithChildrenShortcut);
    connect(remove, SIGNAL(activated()), mList, SLOT(OnRemoveElementsRequested()));

    connect(mList, SIGNAL(InsertSourcesRequested(QList<QString>, QList<int>)), this,
            SLOT(OnInsertSourcesRequested(QList<QString>, QList<int>)));
    connect(mList, SIGNAL(InsertElementsRequested(QUuid, QList<QUuid>, QList<int>)), this,
            SLOT(OnInsertElementsRequested(QUuid, QList<QUuid>, QList<int>)));
    connect(mList, SIGNAL(MoveElementsRequested(QList<QUuid>, QList<int>)), this,
            SLOT(OnMoveElementsRequested(QList<QUuid>, QList<int>)));
    connect(mList, SIGNAL(SortElementsRequested(bool)), this, SLOT(OnSortElementsRequested(bool)));
    connect(mList, SIGNAL(RemoveElementsRequested(QList<QUuid>)), this,
            SLOT(OnRemoveElementsRequested(QList<QUuid>)));
    connect(mList, SIGNAL(SeekPlaybackTimeRequested(int64_t)), playback, SLOT(SeekTime(int64_t)));

    connect(playback, SIGNAL(LeadingTimelineChanged()), this, SLOT(Refresh()));
    connect(playback, SIGNAL(PlayheadMoved(int64_t)), this, SLOT(OnPlayheadMoved()));
    for (const char* const changed : {SIGNAL(TimelineChanged(QUuid)), SIGNAL(SourceChanged(QUuid)),
                                      SIGNAL(ObjectChanged(QUuid)), SIGNAL(ObjectRenamed(QUuid))})
        connect(project, changed, this, SLOT(Note()));
    connect(project, SIGNAL(Changed()), this, SLOT(OnChanged()));
    connect(project, SIGNAL(Reset()), this, SLOT(Refresh()));
    Refresh();
}

TimelineListView* ElementPanelBinding::List() const
{
    return mList;
}

QUuid ElementPanelBinding::TimelineID() const
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    return timeline ? timeline->GetID() : QUuid();
}

QUuid ElementPanelBinding::ActiveElementID() const
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline)
        return {};
    const int index = SegmentIndex(timeline->Segments(), mPlayback->CurrentFrame());
    return index < 0 ? QUuid() : timeline->Segments()[static_cast<size_t>(index)].element;
}

QTreeWidget* ElementPanelBinding::Rows() const
{
    return mList->findChild<QTreeWidget*>();
}

void ElementPanelBinding::Note()
{
    mStale = true;
}

void ElementPanelBinding::OnChanged()
{
    // Once for a step, whatever it changed, and not again where playback has told of it.
    if (mStale)
        Refresh();
}

void ElementPanelBinding::OnPlayheadMoved()
{
    if (ActiveElementID() != mActiveID)
        UpdateHighlight();
}

void ElementPanelBinding::UpdateHighlight()
{
    mActiveID = ActiveElementID();
    mList->SetActiveElementID(mActiveID);
    // The list gives every row the palette's colours; missing media are red in the player all the same.
    QTreeWidget* const rows = Rows();
    for (int row = 0; row < rows->topLevelItemCount(); ++row)
    {
        QTreeWidgetItem* const item = rows->topLevelItem(row);
        const auto element = item->data(0, Qt::UserRole + 1).value<std::weak_ptr<ProjectObject>>().lock();
        if (element && element->IsMissing())
            item->setData(0, Qt::ForegroundRole, QColor(Qt::red));
    }
}

void ElementPanelBinding::Refresh()
{
    mStale = false;
    const QList<QUuid> selected = SelectedIDs();
    mList->SetTimeline(mPlayback->LeadingTimeline());
    Select(selected);
    UpdateHighlight();
}

QList<QUuid> ElementPanelBinding::SelectedIDs() const
{
    QList<QUuid> ids;
    for (const QTreeWidgetItem* const item : Rows()->selectedItems())
        ids << item->data(0, Qt::UserRole).toUuid();
    return ids;
}

void ElementPanelBinding::Select(const QList<QUuid>& ids)
{
    const QSet<QUuid> wanted(ids.begin(), ids.end());
    QTreeWidget* const rows = Rows();
    // Row by row it would take the square of their number.
    QItemSelection selection;
    for (int row = 0; row < rows->topLevelItemCount() && !wanted.isEmpty(); ++row)
    {
        if (wanted.contains(rows->topLevelItem(row)->data(0, Qt::UserRole).toUuid()))
            selection.append(QItemSelectionRange(rows->model()->index(row, 0)));
    }
    if (!selection.isEmpty())
        rows->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void ElementPanelBinding::OnInsertSourcesRequested(QList<QString> paths, QList<int> indices)
{
    // Where no timeline of elements leads, the files are for the project alone.
    const QUuid timelineID = TimelineID();
    const bool takesElements = mProject->FindElementTimeline(timelineID) != nullptr;
    ProjectImport* const import =
        mProject->Import(paths, takesElements ? timelineID : QUuid(), takesElements ? indices : QList<int>());
    connect(import, &ProjectImport::Finished, this,
            [this](const ProjectImport::Result& result) { Select(result.elements); });
    Q_EMIT ImportStarted(import);
}

void ElementPanelBinding::OnInsertElementsRequested(QUuid timelineID, QList<QUuid> ids, QList<int> indices)
{
    Select(mProject->InsertElements(timelineID, ids, indices));
}

void ElementPanelBinding::OnMoveElementsRequested(QList<QUuid> ids, QList<int> indices)
{
    mProject->MoveElements(TimelineID(), ids, indices);
}

void ElementPanelBinding::OnSortElementsRequested(bool ascending)
{
    mProject->SortElements(TimelineID(), ascending);
}

void ElementPanelBinding::OnRemoveElementsRequested(QList<QUuid> ids)
{
    mProject->RemoveElements(TimelineID(), ids);
}
