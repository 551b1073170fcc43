// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "support/TestRegistry.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

using namespace FakeProject;

/// How the project's objects become rows, and go.
class tst_ProjectViewRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void ARowShowsItsObject();
    void KindsHaveTheirIcons();
    void TheViewerIsALetterInWhite_data();
    void TheViewerIsALetterInWhite();
    void AMissingObjectIsRedInNameAlone();
    void TheDefaultTimelineHasAStar();
    void OnlySourceTimelinesTellTheirPath();
    void SpecialFoldersCantBeRenamed();
    void AnEmptyFolderForFoldersHasNoRow();
    void AnObjectWithoutARowForItsParentIsLogged();
    void WithoutARootNothingIsFound();
    void ADeadRootIsLogged();
    void DeadObjectsAreSkipped();
    void ADeadObjectLeavesAnIdleRow();
    void UpdateMakesWhatAddMakesOneByOne();
    void UpdateSendsNothing();
    void ChildrenGoToTheirOwnParents();
    void TheFirstOfTwinsTakesTheChildren();
    void FoldersThatHoldThemselvesEnd();
    void AddMirrorsWhatItExpandsAndSelects();
    void AddEndsWhereItsRowsAreTakenAway();
    void RemoveTakesTheRowsBelow();
    void RemoveGoesOnBehindAMatchDeepDown();
    void RemoveAllKeepsTheRoot();
    void RefreshNameIsSilent();

private:
    QString Name(int index) const;

    std::unique_ptr<ProjectView> mView;
    QTreeWidget* mTree = nullptr;
    std::shared_ptr<FakeObject> mRoot;
    std::unique_ptr<QSignalSpy> mErrors;
};

void tst_ProjectViewRows::init()
{
    mView = std::make_unique<ProjectView>();
    mTree = mView->findChild<QTreeWidget*>(QStringLiteral("projectTree"));
    mRoot = AddFolder(nullptr, QStringLiteral("root"));
    mView->SetRoot(mRoot);
    mErrors = std::make_unique<QSignalSpy>(Logger::GetInstance(), SIGNAL(ErrorLogged(QString)));
}

void tst_ProjectViewRows::cleanup()
{
    mView.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

QString tst_ProjectViewRows::Name(int index) const
{
    return mTree->topLevelItem(index)->text(0);
}

void tst_ProjectViewRows::ARowShowsItsObject()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("shots"));
    mView->Update();
    QCOMPARE(mTree->topLevelItemCount(), 1);
    const QTreeWidgetItem* const row = mTree->topLevelItem(0);
    QCOMPARE(row->text(0), QStringLiteral("shots"));
    QCOMPARE(row->data(0, 256).userType(), int(QMetaType::QUuid));
    QCOMPARE(row->data(0, 256).toUuid(), folder->GetID());
    QCOMPARE(row->data(0, 257).typeName(), "std::weak_ptr<ProjectObject>");
    QCOMPARE(row->data(0, 257).value<std::weak_ptr<ProjectObject>>().lock().get(),
             static_cast<ProjectObject*>(folder.get()));
    QCOMPARE(row->data(0, Qt::ToolTipRole), QVariant(QString()));
    QCOMPARE(row->text(1), QString());
    QCOMPARE(row->textAlignment(1), int(Qt::AlignHCenter));
    QCOMPARE(row->text(2), QString());
    QVERIFY(!row->data(2, Qt::TextAlignmentRole).isValid());
    QVERIFY(!row->data(0, Qt::ForegroundRole).isValid());
    QVERIFY(row->flags() & Qt::ItemIsEditable);
    QCOMPARE(folder.use_count(), 2L);
}

void tst_ProjectViewRows::KindsHaveTheirIcons()
{
    AddFolder(mRoot, QStringLiteral("folder"));
    AddSource(mRoot, QStringLiteral("source"));
    AddTimeline(mRoot, QStringLiteral("timeline"));
    AddObject(mRoot, QStringLiteral("element"), 2);
    mView->Update();
    for (int index = 0; index < 3; ++index)
    {
        for (const auto mode : {QIcon::Normal, QIcon::Selected})
        {
            const QString path =
                QStringLiteral(":/icons/project_%1%2.png")
                    .arg(Name(index), mode == QIcon::Selected ? QStringLiteral("_selected") : QString());
            const QPixmap expected(path);
            QVERIFY(!expected.isNull());
            const QPixmap actual = mTree->topLevelItem(index)->icon(0).pixmap(expected.size(), mode);
            QCOMPARE(actual.toImage().convertToFormat(QImage::Format_ARGB32),
                     expected.toImage().convertToFormat(QImage::Format_ARGB32));
        }
    }
    QVERIFY(mTree->topLevelItem(3)->icon(0).isNull());
}

void tst_ProjectViewRows::TheViewerIsALetterInWhite_data()
{
    QTest::addColumn<int>("viewer");
    QTest::addColumn<QString>("letter");
    QTest::newRow("none") << -1 << QString();
    QTest::newRow("none, oddly") << -7 << QString();
    QTest::newRow("A") << 0 << QStringLiteral("A");
    QTest::newRow("B") << 1 << QStringLiteral("B");
    QTest::newRow("another") << 2 << QStringLiteral("B");
}

void tst_ProjectViewRows::TheViewerIsALetterInWhite()
{
    QFETCH(int, viewer);
    QFETCH(QString, letter);
    AddTimeline(mRoot, QStringLiteral("cut"))->viewerIndex = viewer;
    mView->Update();
    const QTreeWidgetItem* const row = mTree->topLevelItem(0);
    QCOMPARE(row->text(1), letter);
    QCOMPARE(row->textAlignment(1), int(Qt::AlignHCenter));
    for (int column = 0; column < 3; ++column)
        QCOMPARE(row->data(column, Qt::ForegroundRole),
                 letter.isEmpty() ? QVariant() : QVariant(QColor(Qt::white)));
    QVERIFY(!row->data(3, Qt::ForegroundRole).isValid());
}

void tst_ProjectViewRows::AMissingObjectIsRedInNameAlone()
{
    AddTimeline(mRoot, QStringLiteral("plain"))->isMissing = true;
    const auto shown = AddTimeline(mRoot, QStringLiteral("in B"));
    shown->isMissing = true;
    shown->viewerIndex = 1;
    mView->Update();
    QCOMPARE(mTree->topLevelItem(0)->data(0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
    QVERIFY(!mTree->topLevelItem(0)->data(1, Qt::ForegroundRole).isValid());
    QCOMPARE(mTree->topLevelItem(1)->data(0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
    QCOMPARE(mTree->topLevelItem(1)->data(1, Qt::ForegroundRole).value<QColor>(), QColor(Qt::white));
    QCOMPARE(mTree->topLevelItem(1)->text(1), QStringLiteral("B"));
}

void tst_ProjectViewRows::TheDefaultTimelineHasAStar()
{
    AddTimeline(mRoot, QStringLiteral("cut"))->isDefault = true;
    mView->Update();
    QCOMPARE(mTree->topLevelItem(0)->text(2), QStringLiteral("*"));
    QCOMPARE(mTree->topLevelItem(0)->textAlignment(2), int(Qt::AlignHCenter));
}

void tst_ProjectViewRows::OnlySourceTimelinesTellTheirPath()
{
    AddSource(mRoot, QStringLiteral("source"), QStringLiteral("/media/a.mov"));
    AddSource(mRoot, QStringLiteral("no source timeline"), QStringLiteral("/media/b.mov"))->isSourceTimeline =
        false;
    AddSource(mRoot, QStringLiteral("lost"))->source.reset();
    mView->Update();
    QCOMPARE(mTree->topLevelItem(0)->toolTip(0), QStringLiteral("/media/a.mov"));
    QCOMPARE(mTree->topLevelItem(1)->toolTip(0), QString());
    QCOMPARE(mTree->topLevelItem(2)->toolTip(0), QString());
}

void tst_ProjectViewRows::SpecialFoldersCantBeRenamed()
{
    AddTimeline(AddFolder(mRoot, QStringLiteral("folders")), QStringLiteral("x"));
    AddFolder(mRoot, QStringLiteral("sources"))->isSourceBin = true;
    AddFolder(mRoot, QStringLiteral("timelines"))->isTimelineBin = true;
    AddFolder(mRoot, QStringLiteral("protected"))->isProtected = true;
    std::static_pointer_cast<FakeObject>(mRoot->children[0])->isFolderBin = true;
    mView->Update();
    for (int index = 0; index < 3; ++index)
        QVERIFY2(!(mTree->topLevelItem(index)->flags() & Qt::ItemIsEditable), qPrintable(Name(index)));
    QVERIFY(mTree->topLevelItem(3)->flags() & Qt::ItemIsEditable);
}

void tst_ProjectViewRows::AnEmptyFolderForFoldersHasNoRow()
{
    const auto bin = AddFolder(mRoot, QStringLiteral("bin"));
    bin->isFolderBin = true;
    mView->Add(bin);
    mView->Update();
    QCOMPARE(mTree->topLevelItemCount(), 0);
    AddFolder(bin, QStringLiteral("child"));
    mView->Add(bin);
    QCOMPARE(mTree->topLevelItemCount(), 1);
    QCOMPARE(mTree->topLevelItem(0)->childCount(), 1);
    mView->Update();
    QCOMPARE(mTree->topLevelItem(0)->childCount(), 1);
    QVERIFY(mErrors->isEmpty());
}

void tst_ProjectViewRows::AnObjectWithoutARowForItsParentIsLogged()
{
    AddTimeline(mRoot, QStringLiteral("here"));
    mView->Update();
    const QString before = Describe(mTree);
    const auto stray =
        AddFolder(AddFolder(nullptr, QStringLiteral("unknown")), QStringLiteral("50 %1 stray"));
    AddTimeline(stray, QStringLiteral("child"));
    mView->Add(stray);
    QCOMPARE(mErrors->size(), 1);
    QCOMPARE(mErrors->first().first().toString(),
             QStringLiteral("Failed to add item to project view: 50 %1 stray"));
    QCOMPARE(Describe(mTree), before);
    mRoot->children << stray;
    mView->Update();
    QCOMPARE(mErrors->size(), 2);
    QCOMPARE(mErrors->last(), mErrors->first());
    QCOMPARE(Describe(mTree), before);
}

void tst_ProjectViewRows::WithoutARootNothingIsFound()
{
    ProjectView view;
    auto* const tree = view.findChild<QTreeWidget*>();
    view.Update();
    const auto orphan = std::make_shared<FakeObject>(QUuid::createUuid());
    orphan->name = QStringLiteral("orphan");
    view.Add(orphan);
    QCOMPARE(mErrors->size(), 1);
    QCOMPARE(tree->topLevelItemCount(), 0);
    view.Remove(orphan->GetID());
    view.RefreshName(QUuid());
    view.OnItemSelectionChanged();
    QCOMPARE(view.GetSelectedItems(), QList<QUuid>());
}

void tst_ProjectViewRows::ADeadRootIsLogged()
{
    AddTimeline(mRoot, QStringLiteral("cut"));
    mView->Update();
    mView->SetRoot({});
    QCOMPARE(mErrors->size(), 1);
    QCOMPARE(mErrors->first().first().toString(), QStringLiteral("Project View: Failed to set Root Object"));
    QCOMPARE(mTree->topLevelItemCount(), 1);
    mView->Update();
    QCOMPARE(mTree->topLevelItemCount(), 0);
    QVERIFY(!mTree->signalsBlocked());
}

void tst_ProjectViewRows::DeadObjectsAreSkipped()
{
    mView->Add({});
    mRoot->children << nullptr;
    mView->Update();
    QCOMPARE(mTree->topLevelItemCount(), 0);
    mView->OnItemSelectionChanged();
    QVERIFY(mErrors->isEmpty());
}

void tst_ProjectViewRows::ADeadObjectLeavesAnIdleRow()
{
    auto timeline = AddSource(mRoot, QStringLiteral("cut"), QStringLiteral("/media/a.mov"));
    const QUuid id = timeline->GetID();
    mView->Update();
    QTreeWidgetItem* const row = mTree->topLevelItem(0);
    row->setSelected(true);
    mRoot->children.clear();
    const std::weak_ptr<ProjectObject> watch = timeline;
    timeline.reset();
    QVERIFY(watch.expired());
    QSignalSpy renamed(mView.get(), SIGNAL(Renamed(QUuid, QString)));
    QSignalSpy refresh(mView.get(), SIGNAL(RefreshSourceRequested(QUuid)));
    QSignalSpy viewer(mView.get(), SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    row->setText(0, QStringLiteral("other"));
    mView->RefreshName(id);
    mView->OnRefreshSource();
    mView->OnReplaceSource();
    mView->ShowInFolder();
    mView->CopyPathToClipboard();
    mView->RequestViewerChange();
    mView->RequestViewerChange(row, 0);
    mView->RequestViewerChange(nullptr, 0);
    mView->OnItemExpanded(row);
    mView->OnItemCollapsed(row);
    mView->OnItemExpanded(nullptr);
    mView->OnItemCollapsed(nullptr);
    mView->OnItemChanged(nullptr, 0);
    mView->ShowContextMenu(QPoint());
    QVERIFY(renamed.isEmpty() && refresh.isEmpty() && viewer.isEmpty());
    QCOMPARE(row->text(0), QStringLiteral("other"));
    QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({id}));
}

void tst_ProjectViewRows::UpdateMakesWhatAddMakesOneByOne()
{
    QRandomGenerator random(4);
    int rows = 0;
    for (int round = 0; round < 60; ++round)
    {
        const auto root = MakeRandom(random, random.bounded(1, 80), random.bounded(1, 6));
        // Some stand with one object and name another as their parent, and some have another's id.
        QList<std::shared_ptr<ProjectObject>> objects = Below(root);
        for (int strays = round % 3; strays > 0; --strays)
        {
            const auto& stray = objects[random.bounded(objects.size())];
            stray->SetParentID(objects[random.bounded(objects.size())]->GetID());
            const auto twin =
                std::make_shared<FakeObject>(objects[random.bounded(objects.size())]->GetID(), root->GetID());
            twin->name = QStringLiteral("twin");
            root->children.insert(random.bounded(root->children.size() + 1), twin);
        }
        ProjectView plain;
        plain.SetRoot(root);
        plain.findChild<QTreeWidget*>()->blockSignals(true);
        for (const auto& child : qAsConst(root->children))
            plain.Add(child);
        mErrors->clear();
        ProjectView updated;
        updated.SetRoot(root);
        updated.Update();
        const QString expected = Describe(plain.findChild<QTreeWidget*>());
        rows += expected.count(QLatin1Char('\n'));
        QCOMPARE(Describe(updated.findChild<QTreeWidget*>()), expected);
        QCOMPARE(updated.GetSelectedItems(), plain.GetSelectedItems());
        // And again over what stands there.
        updated.Update();
        QCOMPARE(Describe(updated.findChild<QTreeWidget*>()), expected);
        QCOMPARE(updated.GetSelectedItems(), plain.GetSelectedItems());
    }
    QVERIFY2(rows > 500, qPrintable(QString::number(rows)));
}

void tst_ProjectViewRows::UpdateSendsNothing()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto cut = AddTimeline(folder, QStringLiteral("cut"));
    const auto other = AddTimeline(mRoot, QStringLiteral("other"));
    folder->SetExpanded(true);
    cut->SetSelected(true);
    other->SetSelected(true);
    QSignalSpy selection(mTree, SIGNAL(itemSelectionChanged()));
    QSignalSpy expansion(mTree, SIGNAL(itemExpanded(QTreeWidgetItem*)));
    QSignalSpy changes(mTree, SIGNAL(itemChanged(QTreeWidgetItem*, int)));
    for (int count = 0; count < 2; ++count)
    {
        mView->Update();
        QVERIFY(selection.isEmpty() && expansion.isEmpty() && changes.isEmpty());
        QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({cut->GetID(), other->GetID()}));
        QVERIFY(mTree->topLevelItem(0)->isExpanded());
        QVERIFY(folder->IsExpanded() && cut->IsSelected() && other->IsSelected() && !folder->IsSelected());
    }
    // What blocked before still blocks.
    mTree->blockSignals(true);
    mView->Update();
    QVERIFY(mTree->signalsBlocked());
}

void tst_ProjectViewRows::ChildrenGoToTheirOwnParents()
{
    const auto first = AddFolder(mRoot, QStringLiteral("first"));
    const auto second = AddFolder(mRoot, QStringLiteral("second"));
    const auto child = AddTimeline(second, QStringLiteral("child"));
    child->SetParentID(first->GetID());
    mView->Update();
    QCOMPARE(mTree->topLevelItem(0)->childCount(), 1);
    QCOMPARE(mTree->topLevelItem(1)->childCount(), 0);
    child->SetParentID(mRoot->GetID());
    mView->Update();
    QCOMPARE(mTree->topLevelItemCount(), 3);
    QCOMPARE(Name(2), QStringLiteral("child"));
}

void tst_ProjectViewRows::TheFirstOfTwinsTakesTheChildren()
{
    // The second of the twins comes in first, yet stands behind.
    const auto shelf = AddFolder(mRoot, QStringLiteral("shelf"));
    const auto late = AddFolder(mRoot, QStringLiteral("late twin"));
    const auto early = std::make_shared<FakeObject>(late->GetID(), shelf->GetID());
    early->name = QStringLiteral("early twin");
    mRoot->children << early;
    const auto child = std::make_shared<FakeObject>(QUuid::createUuid(), late->GetID());
    child->name = QStringLiteral("child");
    mRoot->children << child;
    mView->Update();
    QCOMPARE(mTree->topLevelItemCount(), 2);
    QCOMPARE(mTree->topLevelItem(0)->child(0)->text(0), QStringLiteral("early twin"));
    QCOMPARE(mTree->topLevelItem(0)->child(0)->childCount(), 1);
    QCOMPARE(mTree->topLevelItem(1)->childCount(), 0);
}

void tst_ProjectViewRows::FoldersThatHoldThemselvesEnd()
{
    const auto outer = AddFolder(mRoot, QStringLiteral("outer"));
    const auto inner = AddFolder(outer, QStringLiteral("inner"));
    inner->children << outer;
    mView->Update();
    QCOMPARE(Rows(mTree).size(), 2);
    mView->RemoveAll();
    mView->Add(outer);
    QCOMPARE(Rows(mTree).size(), 2);
    mTree->topLevelItem(0)->setExpanded(true);
    mTree->topLevelItem(0)->child(0)->setSelected(true);
    mTree->topLevelItem(0)->setExpanded(false);
    QVERIFY(mTree->selectedItems().isEmpty());
    outer->children.clear();
}

void tst_ProjectViewRows::AddMirrorsWhatItExpandsAndSelects()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto child = AddTimeline(folder, QStringLiteral("child"));
    folder->SetExpanded(true);
    folder->SetSelected(true);
    child->SetSelected(true);
    QSignalSpy expansion(mTree, SIGNAL(itemExpanded(QTreeWidgetItem*)));
    QSignalSpy selection(mTree, SIGNAL(itemSelectionChanged()));
    mView->Add(folder);
    QCOMPARE(expansion.size(), 1);
    // The folder's selection is mirrored at once, which unselects all other objects, the child among them.
    QCOMPARE(selection.size(), 1);
    QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({folder->GetID()}));
    QVERIFY(folder->IsSelected() && !child->IsSelected() && folder->IsExpanded());
}

void tst_ProjectViewRows::AddEndsWhereItsRowsAreTakenAway()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    for (int index = 0; index < 3; ++index)
        AddFolder(folder, QStringLiteral("child"))->SetExpanded(index == 1);
    connect(mTree, &QTreeWidget::itemExpanded, mView.get(), [this] { mView->RemoveAll(); });
    mView->Add(folder);
    QCOMPARE(mTree->topLevelItemCount(), 0);
    QCOMPARE(mErrors->size(), 1);
}

void tst_ProjectViewRows::RemoveTakesTheRowsBelow()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    AddTimeline(folder, QStringLiteral("child"));
    const auto inner = AddFolder(folder, QStringLiteral("inner"));
    AddTimeline(inner, QStringLiteral("grandchild"));
    AddTimeline(mRoot, QStringLiteral("last"));
    mView->Update();
    mView->Remove(QUuid::createUuid());
    mView->Remove(QUuid());
    QCOMPARE(Rows(mTree).size(), 5);
    mView->Remove(inner->GetID());
    QCOMPARE(Rows(mTree).size(), 3);
    mView->Remove(folder->GetID());
    QCOMPARE(mTree->topLevelItemCount(), 1);
    QCOMPARE(Name(0), QStringLiteral("last"));
}

void tst_ProjectViewRows::RemoveGoesOnBehindAMatchDeepDown()
{
    // Twins of one id: below the first folder, below the second, at top level twice.
    const QUuid id = QUuid::createUuid();
    const auto add = [&id](const std::shared_ptr<FakeObject>& parent, const QString& name)
    {
        const auto twin = std::make_shared<FakeObject>(id, parent->GetID());
        twin->name = name;
        parent->children << twin;
    };
    const auto first = AddFolder(mRoot, QStringLiteral("first"));
    add(first, QStringLiteral("one"));
    add(first, QStringLiteral("two"));
    add(AddFolder(mRoot, QStringLiteral("second")), QStringLiteral("three"));
    add(mRoot, QStringLiteral("four"));
    add(AddFolder(mRoot, QStringLiteral("third")), QStringLiteral("five"));
    add(mRoot, QStringLiteral("six"));
    mView->Update();
    mView->Remove(id);
    QStringList left;
    for (const QTreeWidgetItem* const row : Rows(mTree))
        left << row->text(0);
    QCOMPARE(left.join(QLatin1Char(' ')), QStringLiteral("first two second third five six"));
}

void tst_ProjectViewRows::RemoveAllKeepsTheRoot()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    cut->SetSelected(true);
    mView->Update();
    QSignalSpy selection(mTree, SIGNAL(itemSelectionChanged()));
    mView->RemoveAll();
    QCOMPARE(mTree->topLevelItemCount(), 0);
    QCOMPARE(selection.size(), 1);
    QVERIFY(!cut->IsSelected());
    mView->Add(cut);
    QCOMPARE(mTree->topLevelItemCount(), 1);
}

void tst_ProjectViewRows::RefreshNameIsSilent()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    mView->Update();
    QSignalSpy renamed(mView.get(), SIGNAL(Renamed(QUuid, QString)));
    QSignalSpy changes(mTree, SIGNAL(itemChanged(QTreeWidgetItem*, int)));
    mView->RefreshName(cut->GetID());
    QVERIFY(changes.isEmpty());
    cut->name = QStringLiteral("final cut");
    mView->RefreshName(QUuid::createUuid());
    mView->RefreshName(cut->GetID());
    QCOMPARE(Name(0), QStringLiteral("final cut"));
    QCOMPARE(changes.size(), 1);
    QVERIFY(renamed.isEmpty());
}

static const TestRegistration<tst_ProjectViewRows> ProjectViewRowsRegistration;

#include "tst_ProjectViewRows.moc"
