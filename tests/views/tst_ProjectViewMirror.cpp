// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtTest>

#include <random>

using namespace FakeProject;

/// What the user selects and expands reaches the objects, and large projects don't make that slow.
class tst_ProjectViewMirror : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void FlagsFollowTheSelectionExactly();
    void RandomSelectionsReachTheObjects();
    void AnEmptySelectionGivesThePanelTheFocus();
    void APressOnEmptySpaceClears();
    void APressOnARowSelectsIt();
    void ExpansionReachesTheObject();
    void ACollapseDropsTheSelectionOfTheBranch();
    void ACollapseStopsAtObjectsWithoutARow();
    void RandomCollapsesLeaveWhatRowByRowLeaves();
    void TheSelectionSurvivesUpdate();
    void ShiftAfterUpdateReplacesTheLastRowAlone();
    void TenThousandRowsAreQuick_data();
    void TenThousandRowsAreQuick();

private:
    /// Unselects the branch of @p row as one would row by row.
    void CollapsePlainly(const std::shared_ptr<ProjectObject>& object) const;
    QList<QTreeWidgetItem*> RowsOf(const std::shared_ptr<ProjectObject>& object) const;

    std::unique_ptr<QWidget> mWindow;
    ProjectView* mView = nullptr;
    QTreeWidget* mTree = nullptr;
    std::shared_ptr<FakeObject> mRoot;
};

void tst_ProjectViewMirror::init()
{
    mWindow = std::make_unique<QWidget>();
    mWindow->resize(400, 500);
    auto* const layout = new QVBoxLayout(mWindow.get());
    mView = new ProjectView(mWindow.get());
    layout->addWidget(mView);
    layout->addWidget(new QLineEdit(mWindow.get()));
    mTree = mView->findChild<QTreeWidget*>();
    mRoot = AddFolder(nullptr, QStringLiteral("root"));
    mView->SetRoot(mRoot);
}

void tst_ProjectViewMirror::cleanup()
{
    mWindow.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

QList<QTreeWidgetItem*> tst_ProjectViewMirror::RowsOf(const std::shared_ptr<ProjectObject>& object) const
{
    QList<QTreeWidgetItem*> found;
    for (QTreeWidgetItem* const row : Rows(mTree))
    {
        if (row->data(0, Qt::UserRole).toUuid() == object->GetID())
            found << row;
    }
    return found;
}

void tst_ProjectViewMirror::FlagsFollowTheSelectionExactly()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto child = AddTimeline(folder, QStringLiteral("child"));
    const auto element = std::make_shared<FakeObject>(QUuid::createUuid(), child->GetID());
    element->type = 2;
    child->children << element;
    const auto other = AddTimeline(mRoot, QStringLiteral("other"));
    mView->Update();
    mRoot->SetSelected(true);
    element->SetSelected(true);
    child->SetSelected(true);
    RowOf(mTree, QStringLiteral("other"))->setSelected(true);
    QVERIFY(other->IsSelected());
    QVERIFY(!mRoot->IsSelected() && !folder->IsSelected() && !child->IsSelected() && !element->IsSelected());
    RowOf(mTree, QStringLiteral("folder"))->setSelected(true);
    QVERIFY(other->IsSelected() && folder->IsSelected());
    mTree->clearSelection();
    QVERIFY(!other->IsSelected() && !folder->IsSelected());
}

void tst_ProjectViewMirror::RandomSelectionsReachTheObjects()
{
    QRandomGenerator random(8);
    for (int round = 0; round < 40; ++round)
    {
        mRoot = MakeRandom(random, 30, 4);
        mView->SetRoot(mRoot);
        mView->Update();
        const QList<QTreeWidgetItem*> rows = Rows(mTree);
        for (int step = 0; step < 6; ++step)
        {
            rows[random.bounded(rows.size())]->setSelected(random.bounded(3) > 0);
            QSet<QUuid> selected;
            for (const QTreeWidgetItem* const row : rows)
            {
                if (row->isSelected())
                    selected << row->data(0, Qt::UserRole).toUuid();
            }
            if (selected.isEmpty() && step == 0)
                continue;
            // Nothing was mirrored as long as the signal didn't come.
            mTree->clearSelection();
            for (QTreeWidgetItem* const row : rows)
                row->setSelected(selected.contains(row->data(0, Qt::UserRole).toUuid()));
            for (const auto& object : Below(mRoot))
                QCOMPARE(object->IsSelected(), selected.contains(object->GetID()));
        }
    }
}

void tst_ProjectViewMirror::AnEmptySelectionGivesThePanelTheFocus()
{
    AddTimeline(mRoot, QStringLiteral("cut"));
    mView->Update();
    mWindow->show();
    mWindow->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mWindow.get()));
    mTree->setFocus();
    mTree->topLevelItem(0)->setSelected(true);
    QVERIFY(mTree->hasFocus());
    mTree->topLevelItem(0)->setSelected(false);
    QVERIFY(mView->hasFocus());
    QVERIFY(mView->HasFocusExtended());
    mWindow->findChild<QLineEdit*>()->setFocus();
    QVERIFY(!mView->HasFocusExtended());
}

void tst_ProjectViewMirror::APressOnEmptySpaceClears()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    mView->Update();
    mWindow->show();
    mWindow->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mWindow.get()));
    mTree->topLevelItem(0)->setSelected(true);
    QVERIFY(cut->IsSelected());
    for (const auto button : {Qt::LeftButton, Qt::RightButton})
    {
        mTree->topLevelItem(0)->setSelected(true);
        QMouseEvent press(QEvent::MouseButtonPress, QPoint(50, 300), button, button, Qt::NoModifier);
        press.ignore();
        QApplication::sendEvent(mTree->viewport(), &press);
        QVERIFY(press.isAccepted());
        QVERIFY(mTree->selectedItems().isEmpty());
        QVERIFY(!cut->IsSelected());
        QVERIFY(mView->hasFocus());
    }
}

void tst_ProjectViewMirror::APressOnARowSelectsIt()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    mView->Update();
    mWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    const QPoint center = mTree->visualItemRect(mTree->topLevelItem(0)).center();
    InputEvents::Press(mTree->viewport(), center);
    InputEvents::Release(mTree->viewport(), center);
    QVERIFY(cut->IsSelected());
    QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({cut->GetID()}));
}

void tst_ProjectViewMirror::ExpansionReachesTheObject()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto inner = AddFolder(folder, QStringLiteral("inner"));
    AddTimeline(inner, QStringLiteral("cut"));
    mView->Update();
    QVERIFY(!mTree->topLevelItem(0)->isExpanded());
    mTree->topLevelItem(0)->setExpanded(true);
    mTree->topLevelItem(0)->child(0)->setExpanded(true);
    QVERIFY(folder->IsExpanded() && inner->IsExpanded());
    mTree->topLevelItem(0)->setExpanded(false);
    QVERIFY(!folder->IsExpanded());
    QVERIFY(inner->IsExpanded());
    mView->Update();
    QVERIFY(!mTree->topLevelItem(0)->isExpanded() && mTree->topLevelItem(0)->child(0)->isExpanded());
}

void tst_ProjectViewMirror::ACollapseDropsTheSelectionOfTheBranch()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto inner = AddFolder(folder, QStringLiteral("inner"));
    const auto grandchild = AddTimeline(inner, QStringLiteral("grandchild"));
    const auto other = AddTimeline(mRoot, QStringLiteral("other"));
    folder->SetExpanded(true);
    inner->SetExpanded(true);
    mView->Update();
    for (const char* name : {"other", "grandchild", "folder"})
        RowOf(mTree, QLatin1String(name))->setSelected(true);
    QVERIFY(grandchild->IsSelected());
    QSignalSpy selection(mTree, SIGNAL(itemSelectionChanged()));
    // Would be cleared if the mirror ran.
    mRoot->SetSelected(true);
    mTree->topLevelItem(0)->setExpanded(false);
    QVERIFY(selection.isEmpty());
    QVERIFY(mRoot->IsSelected());
    QVERIFY(!folder->IsSelected() && !grandchild->IsSelected() && other->IsSelected());
    QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({other->GetID()}));
    QVERIFY(!mTree->signalsBlocked());
}

void tst_ProjectViewMirror::ACollapseStopsAtObjectsWithoutARow()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto cut = AddTimeline(folder, QStringLiteral("cut"));
    const auto hidden = std::make_shared<FakeObject>(QUuid::createUuid(), cut->GetID());
    hidden->type = 2;
    const auto below = std::make_shared<FakeObject>(QUuid::createUuid(), hidden->GetID());
    hidden->children << below;
    cut->children << hidden;
    folder->SetExpanded(true);
    mView->Update();
    for (const auto& object : {hidden, below})
        object->SetSelected(true);
    mTree->topLevelItem(0)->setExpanded(false);
    QVERIFY(!hidden->IsSelected());
    QVERIFY(below->IsSelected());
}

void tst_ProjectViewMirror::CollapsePlainly(const std::shared_ptr<ProjectObject>& object) const
{
    object->SetSelected(false);
    const QList<QTreeWidgetItem*> rows = RowsOf(object);
    if (rows.isEmpty())
        return;
    rows.first()->setSelected(false);
    const auto children = object->GetChildren();
    for (const auto& child : children)
        CollapsePlainly(child);
}

void tst_ProjectViewMirror::RandomCollapsesLeaveWhatRowByRowLeaves()
{
    std::mt19937 generator(5);
    QRandomGenerator random(5);
    for (int round = 0; round < 60; ++round)
    {
        mRoot = MakeRandom(random, 40, 5);
        mView->SetRoot(mRoot);
        mView->Update();
        QList<QTreeWidgetItem*> rows = Rows(mTree);
        QTreeWidgetItem* folder = nullptr;
        for (QTreeWidgetItem* const row : rows)
        {
            if (row->childCount() > 0 && random.bounded(2) == 0)
                folder = row;
        }
        if (!folder)
            continue;
        mTree->clearSelection();
        std::shuffle(rows.begin(), rows.end(), generator);
        for (QTreeWidgetItem* const row : qAsConst(rows))
            row->setSelected(random.bounded(3) > 0);
        QList<QTreeWidgetItem*> order = mTree->selectedItems();
        const auto object = folder->data(0, Qt::UserRole + 1).value<std::weak_ptr<ProjectObject>>().lock();
        folder->setExpanded(true);
        folder->setExpanded(false);
        const QList<QTreeWidgetItem*> left = mTree->selectedItems();
        QList<bool> flags;
        for (const auto& each : Below(mRoot))
            flags << each->IsSelected();

        mTree->clearSelection();
        for (QTreeWidgetItem* const row : qAsConst(order))
            row->setSelected(true);
        mTree->blockSignals(true);
        CollapsePlainly(object);
        mTree->blockSignals(false);
        QCOMPARE(left, mTree->selectedItems());
        QList<bool> expected;
        for (const auto& each : Below(mRoot))
            expected << each->IsSelected();
        QCOMPARE(flags, expected);
    }
}

void tst_ProjectViewMirror::ShiftAfterUpdateReplacesTheLastRowAlone()
{
    QTreeWidget plain(mWindow.get());
    plain.setSelectionMode(QAbstractItemView::ExtendedSelection);
    QList<std::shared_ptr<FakeTimelineObject>> objects;
    for (int index = 0; index < 4; ++index)
    {
        objects << AddTimeline(mRoot, QString::number(index));
        new QTreeWidgetItem(&plain, QStringList(QString::number(index)));
    }
    for (const int selected : {0, 1, 3})
    {
        objects[selected]->SetSelected(true);
        plain.topLevelItem(selected)->setSelected(true);
    }
    mView->Update();
    mWindow->show();
    plain.resize(mTree->size());
    plain.show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    for (QTreeWidget* const tree : {static_cast<QTreeWidget*>(mTree), &plain})
    {
        tree->setCurrentItem(tree->topLevelItem(3), 0, QItemSelectionModel::NoUpdate);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::ShiftModifier,
                          tree->visualItemRect(tree->topLevelItem(2)).center());
    }
    for (int index = 0; index < 4; ++index)
    {
        QCOMPARE(mTree->topLevelItem(index)->isSelected(), plain.topLevelItem(index)->isSelected());
        QCOMPARE(objects[index]->IsSelected(), plain.topLevelItem(index)->isSelected());
    }
}

void tst_ProjectViewMirror::TheSelectionSurvivesUpdate()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto child = AddTimeline(folder, QStringLiteral("child"));
    const auto other = AddTimeline(mRoot, QStringLiteral("other"));
    mView->Update();
    for (const char* name : {"other", "child"})
        RowOf(mTree, QLatin1String(name))->setSelected(true);
    QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({other->GetID(), child->GetID()}));
    mView->Update();
    // Restored as the rows are made.
    QCOMPARE(mView->GetSelectedItems(), QList<QUuid>({child->GetID(), other->GetID()}));
    // What the user does next goes on from there.
    RowOf(mTree, QStringLiteral("folder"))->setSelected(true);
    QVERIFY(folder->IsSelected() && child->IsSelected() && other->IsSelected());
    RowOf(mTree, QStringLiteral("child"))->setSelected(false);
    QVERIFY(folder->IsSelected() && !child->IsSelected() && other->IsSelected());
}

void tst_ProjectViewMirror::TenThousandRowsAreQuick_data()
{
    QTest::addColumn<bool>("isShown");
    QTest::newRow("hidden") << false;
    QTest::newRow("shown") << true;
}

void tst_ProjectViewMirror::TenThousandRowsAreQuick()
{
    QFETCH(bool, isShown);
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    for (int index = 0; index < 10000; ++index)
        AddTimeline(folder, QString::number(index));
    folder->SetExpanded(true);
    mView->Update();
    if (isShown)
    {
        mWindow->show();
        QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    }
    const auto isQuick = [](const char* what, const std::function<void()>& work)
    {
        QElapsedTimer timer;
        timer.start();
        work();
        const qint64 elapsed = timer.elapsed();
        qInfo("%s: %lld ms", what, static_cast<long long>(elapsed));
        // Milliseconds as a rule, and minutes where it grows with the square of the rows; the benchmark
        // measures it.
        return elapsed < 10000;
    };
    QVERIFY(isQuick("select and mirror all", [this] { mTree->selectAll(); }));
    QCOMPARE(mView->GetSelectedItems().size(), 10001);
    QVERIFY(folder->children.last()->IsSelected());
    QVERIFY(isQuick("collapse", [this] { mTree->topLevelItem(0)->setExpanded(false); }));
    QCOMPARE(mView->GetSelectedItems().size(), 0);
    QVERIFY(!folder->children.last()->IsSelected());
    folder->SetExpanded(true);
    for (int index = 0; index < 10000; index += 2)
        folder->children[index]->SetSelected(true);
    QSignalSpy selection(mTree, SIGNAL(itemSelectionChanged()));
    QVERIFY(isQuick("update with every other row", [this] { mView->Update(); }));
    QVERIFY(selection.isEmpty());
    const QList<QUuid> selected = mView->GetSelectedItems();
    QCOMPARE(selected.size(), 5000);
    for (int index = 0; index < 5000; ++index)
        QCOMPARE(selected[index], folder->children[2 * index]->GetID());
    QVERIFY(isQuick("select all over every other row", [this] { mTree->selectAll(); }));
    QCOMPARE(selection.size(), 1);
    for (int index = 1; index < 10000; index += 2)
        folder->children[index]->SetSelected(false);
    QVERIFY(isQuick("update again", [this] { mView->Update(); }));
    QCOMPARE(mView->GetSelectedItems().size(), 5001);
    QVERIFY(isQuick("collapse every other row", [this] { mTree->topLevelItem(0)->setExpanded(false); }));
    QCOMPARE(mView->GetSelectedItems().size(), 0);
    for (int index = 0; index < 10000; index += 2)
        folder->children[index]->SetSelected(true);
    mView->Update();
    QVERIFY(isQuick("remove all", [this] { mView->RemoveAll(); }));
}

static const TestRegistration<tst_ProjectViewMirror> ProjectViewMirrorRegistration;

#include "tst_ProjectViewMirror.moc"
