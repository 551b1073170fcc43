// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QApplication>
#include <QMouseEvent>
#include <QtTest>

/// Rows of the element list under the mouse: selecting, clearing, double clicks, and their picture.
class tst_TimelineListRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mTree.reset(); }

    void PressOnEmptySpaceClearsTheSelection();
    void PressOnARowSelectsIt();
    void DoubleClickNeedsOneRow();
    void ItemsAreSelectedByID();
    void PaintedAsATree();

private:
    void Fill(int count);
    void Select(const QList<int>& rows);
    /// The viewport's place in @p row, @p share (0 to 1) of its height down.
    QPoint In(int row, double share) const;
    QPoint Below() const { return In(mTree->topLevelItemCount() - 1, 1) + QPoint(0, 10); }
    QImage Grab() const { return mTree->viewport()->grab().toImage(); }

    std::unique_ptr<TimelineListViewTreeWidget> mTree;
};

void tst_TimelineListRows::init()
{
    QCursor::setPos(799, 599);
    mTree = std::make_unique<TimelineListViewTreeWidget>();
    mTree->setHeaderHidden(true);
    mTree->setRootIsDecorated(false);
    mTree->setAcceptDrops(true);
    mTree->setGeometry(60, 60, 200, 240);
    Fill(10);
    mTree->show();
    QVERIFY(QTest::qWaitForWindowExposed(mTree.get()));
}

void tst_TimelineListRows::Fill(int count)
{
    mTree->clear();
    for (int row = 0; row < count; ++row)
    {
        auto* item = new QTreeWidgetItem(mTree.get(), {QStringLiteral("e%1").arg(row)});
        item->setData(0, Qt::UserRole, NumberedID(row));
    }
}

void tst_TimelineListRows::Select(const QList<int>& rows)
{
    mTree->clearSelection();
    for (const int row : rows)
        mTree->topLevelItem(row)->setSelected(true);
}

QPoint tst_TimelineListRows::In(int row, double share) const
{
    const QRect rect = mTree->visualItemRect(mTree->topLevelItem(row));
    return {20, rect.top() + int(share * rect.height())};
}

void tst_TimelineListRows::PressOnEmptySpaceClearsTheSelection()
{
    QWidget panel;
    panel.setGeometry(60, 60, 300, 300);
    mTree->setParent(&panel);
    mTree->setGeometry(0, 0, 200, 260);
    mTree->setDragEnabled(true);
    panel.show();
    mTree->show();
    panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    Select({1, 2});
    mTree->setFocus();
    InputEvents::Press(mTree->viewport(), Below());
    QVERIFY(mTree->selectedItems().isEmpty());
    QVERIFY(panel.hasFocus());
    // Nothing is selected, so the mouse drags nothing and selects nothing.
    InputEvents::Move(mTree->viewport(), In(2, 0.5), Qt::LeftButton);
    InputEvents::Move(mTree->viewport(), In(1, 0.5), Qt::LeftButton);
    QVERIFY(mTree->selectedItems().isEmpty());
    InputEvents::Release(mTree->viewport(), In(1, 0.5));
    // Accepted, so it doesn't reach the panel.
    QMouseEvent press(QEvent::MouseButtonPress, Below(), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    press.ignore();
    QApplication::sendEvent(mTree->viewport(), &press);
    QVERIFY(press.isAccepted());
    mTree->setParent(nullptr);
}

void tst_TimelineListRows::PressOnARowSelectsIt()
{
    for (const int row : {3, 7})
    {
        InputEvents::Press(mTree->viewport(), In(row, 0.5));
        InputEvents::Release(mTree->viewport(), In(row, 0.5));
        QCOMPARE(mTree->selectedItems(), QList<QTreeWidgetItem*>{mTree->topLevelItem(row)});
    }
    InputEvents::Press(mTree->viewport(), In(5, 0.5), Qt::LeftButton, Qt::ShiftModifier);
    InputEvents::Release(mTree->viewport(), In(5, 0.5), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(mTree->selectedItems().size(), 3);
    // Without a parent, a press on empty space still clears.
    InputEvents::Press(mTree->viewport(), Below());
    InputEvents::Release(mTree->viewport(), Below());
    QVERIFY(mTree->selectedItems().isEmpty());
}

void tst_TimelineListRows::DoubleClickNeedsOneRow()
{
    CallLog log(mTree.get());
    mTree->topLevelItem(4)->setFlags(mTree->topLevelItem(4)->flags() | Qt::ItemIsEditable);
    const auto doubleClick = [this](const QPoint& place)
    {
        QMouseEvent event(QEvent::MouseButtonDblClick, place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QApplication::sendEvent(mTree->viewport(), &event);
        return event.isAccepted();
    };
    QVERIFY(doubleClick(In(4, 0.5)));
    QVERIFY(log.Take().isEmpty());
    Select({4});
    QVERIFY(doubleClick(In(4, 0.5)));
    QCOMPARE(log.Take(), QStringList{"SeekPlaybackTimeRequested(e4)"});
    // It is the selected row that counts, and the base has no part: nothing is edited.
    QVERIFY(doubleClick(Below()));
    QCOMPARE(log.Take(), QStringList{"SeekPlaybackTimeRequested(e4)"});
    QVERIFY(mTree->viewport()->findChildren<QWidget*>().isEmpty());
    Select({4, 5});
    QVERIFY(doubleClick(In(4, 0.5)));
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelineListRows::ItemsAreSelectedByID()
{
    Select({0, 9});
    mTree->SelectItems({NumberedID(7), NumberedID(2), NumberedID(99), NumberedID(3), NumberedID(7)});
    QList<int> rows;
    for (const QTreeWidgetItem* item : mTree->selectedItems())
        rows << int(item->data(0, Qt::UserRole).toUuid().data1);
    QCOMPARE(rows, (QList<int>{2, 3, 7}));
    // Each row of an id that stands twice.
    mTree->topLevelItem(9)->setData(0, Qt::UserRole, NumberedID(7));
    mTree->SelectItems({NumberedID(7)});
    QCOMPARE(mTree->selectedItems().size(), 2);
    mTree->SelectItems({});
    QVERIFY(mTree->selectedItems().isEmpty());
    Fill(0);
    mTree->SelectItems({NumberedID(7)});
    QVERIFY(mTree->selectedItems().isEmpty());
}

void tst_TimelineListRows::PaintedAsATree()
{
    QTreeWidget plain;
    plain.setHeaderHidden(true);
    plain.setRootIsDecorated(false);
    plain.setSelectionMode(QAbstractItemView::ExtendedSelection);
    plain.setGeometry(60, 60, 200, 240);
    for (QTreeWidget* tree : {&plain, static_cast<QTreeWidget*>(mTree.get())})
    {
        tree->clear();
        for (int row = 0; row < 4; ++row)
            new QTreeWidgetItem(tree, {QStringLiteral("row %1").arg(row)});
        tree->topLevelItem(1)->setData(0, Qt::ForegroundRole, QColor(Qt::red));
        tree->topLevelItem(2)->setData(0, Qt::BackgroundRole, QColor(Qt::green));
        tree->topLevelItem(3)->setSelected(true);
    }
    const QByteArray difference = PictureDifference(Grab(), plain.viewport()->grab().toImage());
    QVERIFY2(difference.isEmpty(), difference);
}

static const TestRegistration<tst_TimelineListRows> TimelineListRowsRegistration;

#include "tst_TimelineListRows.moc"
