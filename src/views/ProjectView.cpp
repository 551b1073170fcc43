// SPDX-License-Identifier: MIT
#include "views/ProjectView.h"

#include "kit/FlatButton.h"
#include "views/ProjectRow.h"
#include "views/ProjectViewTreeWidget.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace
{

constexpr int MinimumColumnWidth = 10;

} // namespace

ProjectView::ProjectView(QWidget* parent) : QWidget(parent)
{
    CreateIcon(mFolderIcon, QStringLiteral("folder"));
    CreateIcon(mSourceIcon, QStringLiteral("source"));
    CreateIcon(mTimelineIcon, QStringLiteral("timeline"));
    CreateWidgets();
    CreateActions();
    CreateLayout();
    CreateConnections();
    InitializeContextMenu();
}

void ProjectView::CreateIcon(QIcon& icon, const QString& name)
{
    icon.addFile(QStringLiteral(":/icons/project_%1.png").arg(name), QSize(), QIcon::Normal, QIcon::Off);
    icon.addFile(QStringLiteral(":/icons/project_%1_selected.png").arg(name), QSize(), QIcon::Selected,
                 QIcon::Off);
}

void ProjectView::CreateWidgets()
{
    mTreeWidget = new ProjectViewTreeWidget(this);
    mTreeWidget->setObjectName(QStringLiteral("projectTree"));
    mTreeWidget->setAccessibleName(tr("Project"));
    mTreeWidget->setColumnCount(4);
    mTreeWidget->setHeaderLabels({tr("Name"), QString(), QString(), QString()});
    // The narrow columns keep their share of a narrow panel.
    mTreeWidget->header()->setMinimumSectionSize(MinimumColumnWidth);
    mTreeWidget->setDragEnabled(true);
    mTreeWidget->setAcceptDrops(true);
    CreateButton(&mNewFolderButton, QImage(QStringLiteral(":/icons/add_folder.png")).mirrored(true, false),
                 tr("New Folder"), QStringLiteral("newFolderButton"));
    CreateButton(&mNewTimelineButton, QImage(QStringLiteral(":/icons/add_timeline.png")), tr("New Timeline"),
                 QStringLiteral("newTimelineButton"));
    CreateButton(&mImportFileButton, QImage(QStringLiteral(":/icons/import_file.png")), tr("Import File"),
                 QStringLiteral("importFileButton"));
    CreateButton(&mDeleteButton, QImage(QStringLiteral(":/icons/delete.png")), tr("Delete"),
                 QStringLiteral("deleteButton"));
}

void ProjectView::CreateButton(FlatButton** button, const QImage& image, const QString& tooltip,
                               const QString& name)
{
    *button = new FlatButton(this);
    (*button)->setFixedSize(18, 18);
    (*button)->SetImage(image, 4);
    (*button)->setToolTip(tooltip);
    (*button)->setAccessibleName(tooltip);
    (*button)->setObjectName(name);
    (*button)->SetHoverEnabled(false);
}

void ProjectView::CreateActions()
{
    const struct
    {
        QAction** action;
        QString text;
        const char* name;
        const char* slot;
    } actions[] = {
        {&mAddFolderAction, tr("Add Folder"), "addFolderAction", SLOT(OnNewFolder())},
        {&mAddTimelineAction, tr("Add Timeline"), "addTimelineAction", SLOT(OnNewTimeline())},
        {&mImportFileAction, tr("Import File..."), "importFileAction", SLOT(OnImportFile())},
        {&mRenameAction, tr("Rename"), "renameAction", SLOT(OnRenameSelectedItem())},
        {&mDeleteAction, tr("Delete"), "deleteAction", SLOT(OnRemove())},
        {&mRefreshAction, tr("Refresh"), "refreshAction", SLOT(OnRefreshSource())},
        {&mReplaceAction, tr("Replace..."), "replaceAction", SLOT(OnReplaceSource())},
        {&mOpenInViewerAAction, tr("Open in Viewer A"), "openInViewerAAction", SLOT(RequestViewerChange())},
        {&mOpenInViewerBAction, tr("Open in Viewer B"), "openInViewerBAction", SLOT(RequestViewerChange())},
        {&mShowInFolderAction, tr("Show in Folder"), "showInFolderAction", SLOT(ShowInFolder())},
        {&mCopyPathAction, tr("Copy Path to Clipboard"), "copyPathAction", SLOT(CopyPathToClipboard())},
        {&mMakeDefaultAction, tr("Make Default"), "makeDefaultAction", SLOT(OnMakeDefaultTimeline())},
    };
    for (const auto& each : actions)
    {
        *each.action = new QAction(each.text, this);
        (*each.action)->setObjectName(QLatin1String(each.name));
        connect(*each.action, SIGNAL(triggered()), this, each.slot);
    }
}

void ProjectView::CreateLayout()
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const treeLayout = new QVBoxLayout;
    treeLayout->setContentsMargins(0, 0, 0, 0);
    treeLayout->addWidget(mTreeWidget);
    auto* const buttonLayout = new QHBoxLayout;
    buttonLayout->setContentsMargins(4, 0, 4, 6);
    buttonLayout->setSpacing(4);
    buttonLayout->addWidget(mNewFolderButton);
    buttonLayout->addWidget(mNewTimelineButton);
    buttonLayout->addWidget(mImportFileButton);
    buttonLayout->addStretch();
    buttonLayout->addWidget(mDeleteButton);
    layout->addLayout(treeLayout);
    layout->addLayout(buttonLayout);
}

void ProjectView::CreateConnections()
{
    connect(mNewFolderButton, SIGNAL(clicked()), this, SLOT(OnNewFolder()));
    connect(mNewTimelineButton, SIGNAL(clicked()), this, SLOT(OnNewTimeline()));
    connect(mImportFileButton, SIGNAL(clicked()), this, SLOT(OnImportFile()));
    connect(mDeleteButton, SIGNAL(clicked()), this, SLOT(OnRemove()));
    connect(mTreeWidget, SIGNAL(InsertSourcesInFolderRequested(QList<QString>, QUuid, QList<int>)), this,
            SLOT(RequestInsertSourcesInFolder(QList<QString>, QUuid, QList<int>)));
    connect(mTreeWidget, SIGNAL(OpenInViewer(QTreeWidgetItem*, int)), this,
            SLOT(RequestViewerChange(QTreeWidgetItem*, int)));
    connect(mTreeWidget, SIGNAL(ProjectObjectMoved(QUuid, QUuid, int)), this,
            SLOT(OnProjectObjectMoved(QUuid, QUuid, int)));
    connect(mTreeWidget, SIGNAL(itemExpanded(QTreeWidgetItem*)), this,
            SLOT(OnItemExpanded(QTreeWidgetItem*)));
    connect(mTreeWidget, SIGNAL(itemCollapsed(QTreeWidgetItem*)), this,
            SLOT(OnItemCollapsed(QTreeWidgetItem*)));
    connect(mTreeWidget, SIGNAL(itemChanged(QTreeWidgetItem*, int)), this,
            SLOT(OnItemChanged(QTreeWidgetItem*, int)));
    connect(mTreeWidget, SIGNAL(itemSelectionChanged()), this, SLOT(OnItemSelectionChanged()));
}

void ProjectView::InitializeContextMenu()
{
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

QList<QUuid> ProjectView::GetSelectedItems() const
{
    QList<QUuid> ids;
    const QList<QTreeWidgetItem*> selected = mTreeWidget->selectedItems();
    for (const QTreeWidgetItem* const item : selected)
        ids << ProjectRow::GetID(item);
    return ids;
}

bool ProjectView::HasFocusExtended() const
{
    return hasFocus() || mTreeWidget->hasFocus();
}

void ProjectView::OnNewFolder()
{
    Q_EMIT NewFolderRequested();
}

void ProjectView::OnNewTimeline()
{
    Q_EMIT NewTimelineRequested();
}

void ProjectView::OnImportFile()
{
    Q_EMIT ImportFileRequested();
}

void ProjectView::OnRemove()
{
    Q_EMIT RemoveRequested();
}

void ProjectView::OnMakeDefaultTimeline()
{
    Q_EMIT MakeDefaultTimelineRequested();
}

void ProjectView::OnProjectObjectMoved(QUuid id, QUuid parentID, int index)
{
    Q_EMIT ProjectObjectMoved(id, parentID, index);
}

void ProjectView::RequestInsertSourcesInFolder(QList<QString> filePaths, QUuid parentID, QList<int> indicies)
{
    Q_EMIT InsertSourcesInFolderRequested(filePaths, parentID, indicies);
}

void ProjectView::OnRenameSelectedItem()
{
    const QList<QTreeWidgetItem*> selected = mTreeWidget->selectedItems();
    if (!HasFocusExtended() || selected.size() != 1)
        return;
    // Asked to edit a row that can't be, the tree would only warn.
    if (selected.first()->flags() & Qt::ItemIsEditable)
        mTreeWidget->editItem(selected.first(), 0);
}

void ProjectView::OnItemChanged(QTreeWidgetItem* item, int column)
{
    if (column != 0)
        return;
    const auto object = ProjectRow::GetObject(item);
    if (object && object->GetName() != item->text(0))
        Q_EMIT Renamed(ProjectRow::GetID(item), item->text(0));
}

void ProjectView::RequestViewerChange()
{
    const int viewerIndex = sender() == mOpenInViewerAAction ? 0 : 1;
    const QList<QTreeWidgetItem*> selected = mTreeWidget->selectedItems();
    if (selected.size() != 1)
        return;
    const auto object = ProjectRow::GetObject(selected.first());
    if (!object || object->GetType() != 1)
        return;
    // An empty pointer asks for the viewer to be cleared.
    std::weak_ptr<Timeline> timeline;
    if (object->GetViewerIndex() != viewerIndex)
        timeline = std::dynamic_pointer_cast<Timeline>(object);
    Q_EMIT ViewerChangeRequested(timeline, viewerIndex);
}

void ProjectView::RequestViewerChange(QTreeWidgetItem* item, int viewerIndex)
{
    const auto object = ProjectRow::GetObject(item);
    if (object && object->GetType() == 1)
        Q_EMIT ViewerChangeRequested(std::dynamic_pointer_cast<Timeline>(object), viewerIndex);
}

void ProjectView::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
}

void ProjectView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (mColumnsSized)
        return;
    // What is left goes to the last column; the user's later widths stay.
    const auto width = static_cast<float>(mTreeWidget->width());
    mTreeWidget->header()->resizeSection(0, static_cast<int>(width * 0.8f));
    mTreeWidget->header()->resizeSection(1, static_cast<int>(width * 0.1f));
    mTreeWidget->header()->resizeSection(2, static_cast<int>(width * 0.1f));
    mColumnsSized = true;
}
