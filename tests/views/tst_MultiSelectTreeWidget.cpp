// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/MultiSelectTreeWidget.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

class tst_MultiSelectTreeWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void SeveralRowsMayBeSelected();
    void SelectedRowsComeInTreeOrder();
    void RowsOfCollapsedAndHiddenParentsCount();
    void RandomSelectionsAreThoseOfAPlainWalk();
    void ManyRangesTakeNoLonger();
    void SelectingAllOverManyRangesIsAsOverFew_data();
    void SelectingAllOverManyRangesIsAsOverFew();
    void ARowBelowAnother();
    void NothingLiesBelowNull();
    void DraggingTheMouseSelectsOnlyWithASelection();
};

namespace
{

QTreeWidgetItem* AddTo(QTreeWidgetItem* parent, const QString& name)
{
    return new QTreeWidgetItem(parent, {name});
}

/// Each row before its children, asked one by one.
void WalkPlainly(QTreeWidgetItem* parent, QList<QTreeWidgetItem*>& selected)
{
    for (int index = 0; index < parent->childCount(); ++index)
    {
        if (parent->child(index)->isSelected())
            selected << parent->child(index);
        WalkPlainly(parent->child(index), selected);
    }
}

} // namespace

void tst_MultiSelectTreeWidget::SeveralRowsMayBeSelected()
{
    QWidget parent;
    auto* tree = new MultiSelectTreeWidget(&parent);
    QCOMPARE(tree->parentWidget(), &parent);
    QCOMPARE(tree->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(tree->GetSelectedItemsInOrder(), QList<QTreeWidgetItem*>());
}

void tst_MultiSelectTreeWidget::SelectedRowsComeInTreeOrder()
{
    MultiSelectTreeWidget tree;
    auto* first = AddTo(tree.invisibleRootItem(), QStringLiteral("first"));
    auto* child = AddTo(first, QStringLiteral("child"));
    auto* grandchild = AddTo(child, QStringLiteral("grandchild"));
    auto* second = AddTo(tree.invisibleRootItem(), QStringLiteral("second"));
    for (QTreeWidgetItem* row : {second, grandchild, first})
        row->setSelected(true);
    QCOMPARE(tree.selectedItems(), QList<QTreeWidgetItem*>({second, grandchild, first}));
    QCOMPARE(tree.GetSelectedItemsInOrder(), QList<QTreeWidgetItem*>({first, grandchild, second}));
}

void tst_MultiSelectTreeWidget::RowsOfCollapsedAndHiddenParentsCount()
{
    MultiSelectTreeWidget tree;
    tree.setColumnCount(4);
    auto* folder = AddTo(tree.invisibleRootItem(), QStringLiteral("folder"));
    auto* child = AddTo(folder, QStringLiteral("child"));
    auto* hidden = AddTo(tree.invisibleRootItem(), QStringLiteral("hidden"));
    child->setSelected(true);
    hidden->setSelected(true);
    hidden->setHidden(true);
    QVERIFY(!folder->isExpanded());
    QCOMPARE(tree.GetSelectedItemsInOrder(), QList<QTreeWidgetItem*>({child, hidden}));
}

void tst_MultiSelectTreeWidget::RandomSelectionsAreThoseOfAPlainWalk()
{
    QRandomGenerator random(20);
    for (int round = 0; round < 100; ++round)
    {
        MultiSelectTreeWidget tree;
        tree.setColumnCount(random.bounded(1, 5));
        QList<QTreeWidgetItem*> rows = {tree.invisibleRootItem()};
        for (int count = random.bounded(1, 60); count > 0; --count)
            rows << AddTo(rows[random.bounded(rows.size())], QString::number(count));
        for (int count = random.bounded(0, 80); count > 0; --count)
        {
            QTreeWidgetItem* const row = rows[random.bounded(rows.size())];
            if (row != rows.first())
                row->setSelected(random.bounded(3) > 0);
        }
        QList<QTreeWidgetItem*> expected;
        WalkPlainly(tree.invisibleRootItem(), expected);
        QCOMPARE(tree.GetSelectedItemsInOrder(), expected);
    }
}

void tst_MultiSelectTreeWidget::ManyRangesTakeNoLonger()
{
    MultiSelectTreeWidget tree;
    QList<QTreeWidgetItem*> rows;
    for (int index = 0; index < 10000; ++index)
        rows << new QTreeWidgetItem(QStringList(QString::number(index)));
    tree.addTopLevelItems(rows);
    QItemSelection selection;
    for (int index = 0; index < rows.size(); index += 2)
    {
        const QModelIndex row = tree.model()->index(index, 0);
        selection.append(QItemSelectionRange(row, row));
    }
    tree.selectionModel()->select(selection, QItemSelectionModel::Select);
    QElapsedTimer timer;
    timer.start();
    const QList<QTreeWidgetItem*> selected = tree.GetSelectedItemsInOrder();
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(selected.size(), 5000);
    for (int index = 0; index < selected.size(); ++index)
        QCOMPARE(selected[index], rows[2 * index]);
}

void tst_MultiSelectTreeWidget::SelectingAllOverManyRangesIsAsOverFew_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("isShown");
    for (const int step : {1, 2, 3, 50})
    {
        QTest::addRow("every %d, hidden", step) << step << false;
        QTest::addRow("every %d, shown", step) << step << true;
    }
}

void tst_MultiSelectTreeWidget::SelectingAllOverManyRangesIsAsOverFew()
{
    QFETCH(int, step);
    QFETCH(bool, isShown);
    MultiSelectTreeWidget tree;
    QTreeWidget plain;
    plain.setSelectionMode(QAbstractItemView::ExtendedSelection);
    QList<QString> selected[2];
    QList<int> signalCounts;
    for (QTreeWidget* const each : {static_cast<QTreeWidget*>(&tree), &plain})
    {
        if (isShown)
        {
            each->show();
            QVERIFY(QTest::qWaitForWindowExposed(each));
        }
        auto* const folder = AddTo(each->invisibleRootItem(), QStringLiteral("folder"));
        auto* const closed = AddTo(each->invisibleRootItem(), QStringLiteral("closed"));
        AddTo(closed, QStringLiteral("in closed"));
        for (int index = 0; index < 600; ++index)
            AddTo(folder, QString::number(index));
        folder->setExpanded(true);
        for (int index = 0; index < 600; index += step)
            folder->child(index)->setSelected(true);
        if (step == 1)
        {
            folder->setSelected(true);
            closed->setSelected(true);
        }
        QSignalSpy spy(each, SIGNAL(itemSelectionChanged()));
        QSignalSpy modelSpy(each->selectionModel(), SIGNAL(selectionChanged(QItemSelection, QItemSelection)));
        each->selectAll();
        signalCounts << spy.size() << modelSpy.size();
        for (const QTreeWidgetItem* const row : each->selectedItems())
            selected[each == &plain] << row->text(0);
    }
    QCOMPARE(selected[0], selected[1]);
    QCOMPARE(selected[0].size(), 602);
    QCOMPARE(signalCounts.mid(0, 2), signalCounts.mid(2, 2));
    QCOMPARE(signalCounts[0], step == 1 ? 0 : 1);
}

void tst_MultiSelectTreeWidget::ARowBelowAnother()
{
    MultiSelectTreeWidget tree;
    auto* first = AddTo(tree.invisibleRootItem(), QStringLiteral("first"));
    auto* child = AddTo(first, QStringLiteral("child"));
    auto* grandchild = AddTo(child, QStringLiteral("grandchild"));
    auto* second = AddTo(tree.invisibleRootItem(), QStringLiteral("second"));
    QVERIFY(tree.IsDescendant(child, first));
    QVERIFY(tree.IsDescendant(grandchild, first));
    QVERIFY(!tree.IsDescendant(first, first));
    QVERIFY(!tree.IsDescendant(first, child));
    QVERIFY(!tree.IsDescendant(grandchild, second));
    QVERIFY(tree.IsChildOfAny(grandchild, {second, first}));
    QVERIFY(tree.IsChildOfAny(grandchild, {grandchild, child}));
    QVERIFY(!tree.IsChildOfAny(first, {second, first, child}));
    QVERIFY(!tree.IsChildOfAny(second, {}));
}

void tst_MultiSelectTreeWidget::NothingLiesBelowNull()
{
    MultiSelectTreeWidget tree;
    auto* row = AddTo(tree.invisibleRootItem(), QStringLiteral("row"));
    QVERIFY(!tree.IsDescendant(row, nullptr));
    QVERIFY(!tree.IsDescendant(nullptr, row));
    QVERIFY(!tree.IsDescendant(nullptr, nullptr));
    QVERIFY(!tree.IsChildOfAny(row, {nullptr}));
}

void tst_MultiSelectTreeWidget::DraggingTheMouseSelectsOnlyWithASelection()
{
    MultiSelectTreeWidget tree;
    tree.resize(300, 300);
    QList<QTreeWidgetItem*> rows;
    for (int index = 0; index < 5; ++index)
        rows << AddTo(tree.invisibleRootItem(), QString::number(index));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    const QPoint empty(100, 280);
    const QPoint onLast = tree.visualItemRect(rows[4]).center();
    const QPoint onThird = tree.visualItemRect(rows[2]).center();

    // From empty space, nothing being selected.
    InputEvents::Press(tree.viewport(), empty);
    InputEvents::Move(tree.viewport(), onLast, Qt::LeftButton);
    InputEvents::Move(tree.viewport(), onThird, Qt::LeftButton);
    QCOMPARE(tree.GetSelectedItemsInOrder(), QList<QTreeWidgetItem*>());
    InputEvents::Release(tree.viewport(), onThird);
    QCOMPARE(tree.GetSelectedItemsInOrder(), QList<QTreeWidgetItem*>());

    // From a row, which the press selects.
    InputEvents::Press(tree.viewport(), onLast);
    InputEvents::Move(tree.viewport(), onThird, Qt::LeftButton);
    InputEvents::Release(tree.viewport(), onThird);
    QCOMPARE(tree.GetSelectedItemsInOrder(), QList<QTreeWidgetItem*>({rows[2], rows[3], rows[4]}));
}

static const TestRegistration<tst_MultiSelectTreeWidget> MultiSelectTreeWidgetRegistration;

#include "tst_MultiSelectTreeWidget.moc"
