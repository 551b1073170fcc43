// SPDX-License-Identifier: MIT
#include "window/ProjectPanelBinding.h"

#include "kit/UiGlobals.h"
#include "media/MediaReader.h"
#include "project/FolderObject.h"
#include "project/Project.h"
#include "project/ProjectImport.h"
#include "project/ProjectTimeline.h"
#include "viewers/ViewerWidget.h"
#include "views/ProjectView.h"
#include "window/ImportProgress.h"
#include "window/PanelArea.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace
{

/// How soon the view is looked at again while a name is being typed, in milliseconds.
constexpr int TypingPause = 200;

QString MediaFilter()
{
    return ProjectPanelBinding::tr("Movies and Images (%1);;All Files (*)")
        .arg(MediaNamePatterns().join(QLatin1Char(' ')));
}

/// The one id that @p bytes hold, as the project view writes it; null for anything else.
QUuid OnlyID(const QByteArray& bytes)
{
    constexpr int CountSize = 4;
    constexpr int IDSize = 16;
    if (bytes.size() != CountSize + IDSize || bytes.left(CountSize) != QByteArray("\0\0\0\1", CountSize))
        return {};
    return QUuid::fromRfc4122(bytes.mid(CountSize));
}

} // namespace

ProjectPanelBinding::ProjectPanelBinding(Project* project, ViewerWidget* viewer, PanelArea* panels,
                                         QObject* parent)
    : QObject(parent), mProject(project)
{
    auto* const panel = new QWidget;
    auto* const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    mView = new ProjectView(panel);
    mView->setObjectName(QStringLiteral("projectView"));
    mProgress = new ImportProgress(panel);
    layout->addWidget(mView);
    layout->addWidget(mProgress);
    panels->SetPanel(QStringLiteral("project"), panel);
    const struct
    {
        Qt::Key key;
        const char* slot;
    } keys[] = {{Qt::Key_Delete, SLOT(OnRemove())}, {Qt::Key_F2, SLOT(OnRenameSelectedItem())}};
    for (const auto& each : keys)
    {
        auto* const shortcut = new QShortcut(QKeySequence(each.key), mView);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, SIGNAL(activated()), mView, each.slot);
    }
    mMoveTimer.setSingleShot(true);
    mRefreshTimer.setSingleShot(true);
    connect(&mMoveTimer, SIGNAL(timeout()), this, SLOT(MoveGathered()));
    connect(&mRefreshTimer, SIGNAL(timeout()), this, SLOT(Refresh()));

    connect(mView, SIGNAL(Renamed(QUuid, QString)), this, SLOT(OnRenamed(QUuid, QString)));
    connect(mView, SIGNAL(NewFolderRequested()), this, SLOT(OnNewFolderRequested()));
    connect(mView, SIGNAL(NewTimelineRequested()), this, SLOT(OnNewTimelineRequested()));
    connect(mView, SIGNAL(ImportFileRequested()), this, SLOT(ImportByDialog()));
    connect(mView, SIGNAL(RemoveRequested()), this, SLOT(OnRemoveRequested()));
    connect(mView, SIGNAL(MakeDefaultTimelineRequested()), this, SLOT(OnMakeDefaultTimelineRequested()));
    connect(mView, SIGNAL(RefreshSourceRequested(QUuid)), this, SLOT(OnRefreshSourceRequested(QUuid)));
    connect(mView, SIGNAL(ReplaceSourceRequested(QUuid, QString, QString)), this,
            SLOT(OnReplaceSourceRequested(QUuid, QString, QString)));
    connect(mView, SIGNAL(InsertSourcesInFolderRequested(QList<QString>, QUuid, QList<int>)), this,
            SLOT(OnInsertSourcesRequested(QList<QString>, QUuid, QList<int>)));
    connect(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)), this,
            SLOT(OnViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    connect(mView, SIGNAL(ProjectObjectMoved(QUuid, QUuid, int)), this,
            SLOT(OnProjectObjectMoved(QUuid, QUuid, int)));
    // What is dropped is read during the signal.
    if (viewer)
        connect(viewer, SIGNAL(ViewerDropEvent(QDropEvent*, int)), this,
                SLOT(OnViewerDropped(QDropEvent*, int)), Qt::DirectConnection);

    connect(project, SIGNAL(Reset()), this, SLOT(OnReset()));
    for (const char* const changed :
         {SIGNAL(ObjectAdded(QUuid)), SIGNAL(ObjectRemoved(QUuid, QUuid)), SIGNAL(ObjectMoved(QUuid)),
          SIGNAL(ObjectChanged(QUuid)), SIGNAL(SourceChanged(QUuid)), SIGNAL(DefaultChanged())})
        connect(project, changed, this, SLOT(Note()));
    connect(project, SIGNAL(ObjectRenamed(QUuid)), this, SLOT(OnObjectRenamed(QUuid)));
    connect(project, SIGNAL(Changed()), this, SLOT(Refresh()));
    OnReset();
}

ProjectView* ProjectPanelBinding::View() const
{
    return mView;
}

ImportProgress* ProjectPanelBinding::Progress() const
{
    return mProgress;
}

QTreeWidget* ProjectPanelBinding::Tree() const
{
    return mView->findChild<QTreeWidget*>();
}

void ProjectPanelBinding::OnReset()
{
    mMovedIDs.clear();
    mView->SetRoot(mProject->Root());
    mRefreshTimer.start(0);
    Refresh();
}

void ProjectPanelBinding::Note()
{
    mRefreshTimer.start(0);
}

void ProjectPanelBinding::OnObjectRenamed(const QUuid& id)
{
    mView->RefreshName(id);
}

void ProjectPanelBinding::Refresh()
{
    // A step that changed nothing to be seen here leaves the view as it is.
    if (!mRefreshTimer.isActive() && sender() != &mRefreshTimer)
        return;
    const auto* const editor = Tree()->findChild<QLineEdit*>();
    if (editor && editor->hasFocus())
    {
        mRefreshTimer.start(TypingPause);
        return;
    }
    mRefreshTimer.stop();
    const int place = Tree()->verticalScrollBar()->value();
    mView->Update();
    // The rows have their places once they are laid out.
    Tree()->doItemsLayout();
    Tree()->verticalScrollBar()->setValue(place);
}

void ProjectPanelBinding::SelectAndRename(const QUuid& id)
{
    const auto object = mProject->Find(id);
    if (!object)
        return;
    for (auto folder = mProject->Find(object->GetParentID()); folder;
         folder = mProject->Find(folder->GetParentID()))
        folder->SetExpanded(true);
    QTreeWidget* const tree = Tree();
    mRefreshTimer.start(0);
    Refresh();
    tree->clearSelection();
    for (QTreeWidgetItemIterator row(tree); *row; ++row)
    {
        if ((*row)->data(0, Qt::UserRole).toUuid() != id)
            continue;
        tree->setCurrentItem(*row);
        break;
    }
    tree->setFocus();
    mView->OnRenameSelectedItem();
}

void ProjectPanelBinding::OnRenamed(QUuid id, QString name)
{
    // The row shows what was typed; a refused name gives way to the old one.
    if (!mProject->Rename(id, name))
        mView->RefreshName(id);
}

void ProjectPanelBinding::OnNewFolderRequested()
{
    SelectAndRename(mProject->AddFolder(mProject->FolderFor(mView->GetSelectedItems(), 0, false)));
}

void ProjectPanelBinding::OnNewTimelineRequested()
{
    SelectAndRename(mProject->AddTimeline(mProject->FolderFor(mView->GetSelectedItems(), 1, false)));
}

void ProjectPanelBinding::ImportByDialog()
{
    const QUuid folder = mProject->FolderFor(mView->GetSelectedItems(), 1, true);
    const QStringList paths =
        QFileDialog::getOpenFileNames(mView->window(), tr("Import Media"), QString(), MediaFilter());
    if (!paths.isEmpty())
        Follow(mProject->Import(paths, folder));
}

void ProjectPanelBinding::OnRemoveRequested()
{
    const QList<QUuid> ids = mView->GetSelectedItems();
    if (!ids.isEmpty())
        mProject->Remove(ids);
}

void ProjectPanelBinding::OnMakeDefaultTimelineRequested()
{
    const QList<QUuid> ids = mView->GetSelectedItems();
    if (ids.size() == 1)
        mProject->ToggleDefault(ids.first());
}

void ProjectPanelBinding::OnRefreshSourceRequested(QUuid id)
{
    mProject->RefreshSource(id);
}

void ProjectPanelBinding::OnReplaceSourceRequested(QUuid id, QString newPath, QString oldPath)
{
    if (newPath.isEmpty())
        newPath = QFileDialog::getOpenFileName(mView->window(), tr("Replace Media"),
                                               QFileInfo(oldPath).absolutePath(), MediaFilter());
    if (!newPath.isEmpty())
        mProject->ReplaceSource(id, newPath);
}

void ProjectPanelBinding::OnInsertSourcesRequested(QList<QString> paths, QUuid parentID, QList<int> indices)
{
    Follow(mProject->Import(paths, parentID, indices));
}

void ProjectPanelBinding::Follow(ProjectImport* import)
{
    mProgress->Follow(import);
}

void ProjectPanelBinding::OnViewerChangeRequested(std::weak_ptr<Timeline> timeline, int viewer)
{
    Q_EMIT ShowRequested(std::dynamic_pointer_cast<ProjectTimeline>(timeline.lock()), viewer);
}

void ProjectPanelBinding::OnProjectObjectMoved(QUuid id, QUuid parentID, int index)
{
    // One drop tells each of its objects in turn; together they are one step.
    if (!mMovedIDs.isEmpty() && parentID != mMovedParentID)
        MoveGathered();
    if (mMovedIDs.isEmpty())
        mMovedIndex = index;
    mMovedIDs << id;
    mMovedParentID = parentID;
    mMoveTimer.start(0);
}

void ProjectPanelBinding::MoveGathered()
{
    mMoveTimer.stop();
    const QList<QUuid> ids = mMovedIDs;
    mMovedIDs.clear();
    mProject->Move(ids, mMovedParentID, mMovedIndex);
}

void ProjectPanelBinding::OnViewerDropped(QDropEvent* event, int viewer)
{
    if (event->mimeData()->hasUrls())
        return;
    const QUuid id = OnlyID(event->mimeData()->data(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE));
    if (const auto timeline = mProject->FindTimeline(id))
        Q_EMIT ShowRequested(timeline, viewer);
}
