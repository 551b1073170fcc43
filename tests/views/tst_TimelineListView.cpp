// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "kit/FlatButton.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/FakeElements.h"
#include "views/TimelineListView.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QtTest>

#include <ctime>
#include <limits>

/// What the list shows and what its buttons ask for; its menu and its drags have test classes of their own.
class tst_TimelineListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ListIsFlat();
    void LayoutIsTight();
    void ButtonsShowTheirPictures_data();
    void ButtonsShowTheirPictures();
    void RowsCarryTheirElements();
    void MissingElementsAreRed();
    void SetTimelineIsTheRefresh();
    void OtherObjectsEmptyTheList_data();
    void OtherObjectsEmptyTheList();
    void ActiveElementIsHighlighted();
    void HighlightingCanBeOff();
    void HighlightLosesTheRedUntilTheNextTimeline();
    void HighlightTakesTheListsPaletteAndGroup();
    void HighlightLeavesDeadRowsAlone();
    void MoveByOneRow_data();
    void MoveByOneRow();
    void MovedRowsStaySelectedAndTheListHasFocus();
    void StoppedMoveKeepsSelectionAndFocus();
    void DraggedRowsAreSelectedAfterTheAnswer();
    void RemovalNamesLivingElements();
    void SortAsks();
    void InsertionNamesTheTimeline();
    void DoubleClickSeeks();
    void SeekNeedsALivingElement();
    void FocusOfPanelAndListCounts();
    void PanelMayGoDuringAMove();
    void TenThousandElements();

private:
    void Select(const QList<int>& rows);
    QList<int> SelectedRows() const;
    void Click(const char* button);
    QColor Color(int row, Qt::ItemDataRole role) const
    {
        const QVariant value = mTree->topLevelItem(row)->data(0, role);
        // A plain colour, as rows have it from an item's own call.
        return value.userType() == QMetaType::QColor ? value.value<QColor>() : QColor();
    }

    std::shared_ptr<FakeElementTimeline> mTimeline;
    std::unique_ptr<TimelineListView> mView;
    TimelineListViewTreeWidget* mTree = nullptr;
};

void tst_TimelineListView::init()
{
    Settings::RestoreDefaults();
    QCursor::setPos(799, 599);
    mTimeline = std::make_shared<FakeElementTimeline>(6);
    mView = std::make_unique<TimelineListView>();
    mTree = mView->findChild<TimelineListViewTreeWidget*>();
    QVERIFY(mTree);
    mView->SetTimeline(mTimeline);
    mView->setGeometry(60, 60, 240, 260);
    mView->show();
    mView->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mView.get()));
}

void tst_TimelineListView::cleanup()
{
    mView.reset();
    mTimeline.reset();
}

void tst_TimelineListView::Select(const QList<int>& rows)
{
    mTree->clearSelection();
    for (const int row : rows)
        mTree->topLevelItem(row)->setSelected(true);
}

QList<int> tst_TimelineListView::SelectedRows() const
{
    QList<int> rows;
    for (int row = 0; row < mTree->topLevelItemCount(); ++row)
    {
        if (mTree->topLevelItem(row)->isSelected())
            rows << row;
    }
    return rows;
}

void tst_TimelineListView::Click(const char* button)
{
    auto* const widget = mView->findChild<FlatButton*>(QLatin1String(button));
    QVERIFY2(widget, button);
    InputEvents::Press(widget, widget->rect().center());
    InputEvents::Release(widget, widget->rect().center());
}

void tst_TimelineListView::ListIsFlat()
{
    QCOMPARE(mTree->columnCount(), 1);
    QVERIFY(mTree->isHeaderHidden());
    QVERIFY(!mTree->rootIsDecorated());
    QVERIFY(mTree->dragEnabled());
    QVERIFY(mTree->acceptDrops());
    QVERIFY(mTree->viewport()->acceptDrops());
    QCOMPARE(mTree->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(mView->contextMenuPolicy(), Qt::CustomContextMenu);
    QCOMPARE(TimelineListView().findChild<QTreeWidget*>()->topLevelItemCount(), 0);
    QStringList texts;
    for (const QAction* action : mView->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly))
        texts << action->text();
    const QStringList expected = {"Move Up", "Move Down", "Show in Folder", "Delete"};
    QCOMPARE(texts, expected);
}

void tst_TimelineListView::LayoutIsTight()
{
    auto* layout = qobject_cast<QVBoxLayout*>(mView->layout());
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->count(), 2);
    QCOMPARE(layout->itemAt(0)->widget(), mTree);
    auto* row = qobject_cast<QHBoxLayout*>(layout->itemAt(1)->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins(4, 0, 4, 6));
    QCOMPARE(row->spacing(), 0);
    const int top = mView->height() - 6 - 18;
    const QList<QPair<const char*, int>> places = {{"moveUpButton", 4},
                                                   {"moveDownButton", 22},
                                                   {"sortAscendingButton", 56},
                                                   {"sortDescendingButton", 74},
                                                   {"removeButton", 240 - 4 - 18}};
    for (const auto& [name, x] : places)
        QCOMPARE(mView->findChild<FlatButton*>(QLatin1String(name))->geometry(), QRect(x, top, 18, 18));
    QCOMPARE(mView->findChildren<FlatButton*>().size(), 5);
}

void tst_TimelineListView::ButtonsShowTheirPictures_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("isMirrored");
    QTest::addColumn<int>("side");
    QTest::addColumn<QString>("tooltip");
    QTest::newRow("moveUpButton") << "move_up" << false << 16 << "Move Up";
    QTest::newRow("moveDownButton") << "move_up" << true << 16 << "Move Down";
    QTest::newRow("sortAscendingButton") << "sort_acending" << false << 16 << "Sort Acending";
    QTest::newRow("sortDescendingButton") << "sort_decending" << false << 16 << "Sort Decending";
    QTest::newRow("removeButton") << "delete" << false << 14 << "Remove";
}

void tst_TimelineListView::ButtonsShowTheirPictures()
{
    QFETCH(QString, icon);
    QFETCH(bool, isMirrored);
    QFETCH(int, side);
    QFETCH(QString, tooltip);
    const auto* const button = mView->findChild<FlatButton*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(button);
    QCOMPARE(button->toolTip(), tooltip);
    QCOMPARE(button->accessibleName(), tooltip);
    const QImage image = QImage(QStringLiteral(":/icons/%1.png").arg(icon)).mirrored(false, isMirrored);
    const QByteArray difference =
        PictureDifference(button->pixmap(Qt::ReturnByValue).toImage(),
                          image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation), 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_TimelineListView::RowsCarryTheirElements()
{
    QCOMPARE(mTree->topLevelItemCount(), 6);
    for (int row = 0; row < 6; ++row)
    {
        const QTreeWidgetItem* const item = mTree->topLevelItem(row);
        QCOMPARE(item->text(0), mTimeline->elements.at(row)->name);
        QCOMPARE(item->data(0, 256).userType(), qMetaTypeId<QUuid>());
        QCOMPARE(item->data(0, 256).toUuid(), NumberedID(row + 1));
        QCOMPARE(item->data(0, 257).typeName(), "std::weak_ptr<ProjectObject>");
        QCOMPARE(item->data(0, 257).value<std::weak_ptr<ProjectObject>>().lock(),
                 std::shared_ptr<ProjectObject>(mTimeline->elements.at(row)));
        QCOMPARE(item->childCount(), 0);
        QVERIFY(!item->data(0, Qt::ForegroundRole).isValid());
        QVERIFY(!item->data(0, Qt::BackgroundRole).isValid());
        // A row doesn't keep its element alive.
        QCOMPARE(mTimeline->elements.at(row).use_count(), 1L);
    }
    // Any object that the timeline tells is a row, and a null one is none.
    mTimeline->elements[1]->type = 0;
    mTimeline->elements[2].reset();
    mView->SetTimeline(mTimeline);
    QCOMPARE(mTree->topLevelItemCount(), 5);
    QCOMPARE(mTree->topLevelItem(2)->text(0), QStringLiteral("e3"));
}

void tst_TimelineListView::MissingElementsAreRed()
{
    mTimeline->elements[2]->missing = true;
    mView->SetTimeline(mTimeline);
    QCOMPARE(Color(2, Qt::ForegroundRole), QColor(Qt::red));
    QVERIFY(!mTree->topLevelItem(1)->data(0, Qt::ForegroundRole).isValid());
}

void tst_TimelineListView::SetTimelineIsTheRefresh()
{
    Select({1, 3});
    QSignalSpy selection(mTree, SIGNAL(itemSelectionChanged()));
    mTimeline->elements.move(0, 5);
    mTimeline->elements[0]->name = QStringLiteral("renamed");
    QCOMPARE(mTree->topLevelItem(1)->text(0), QStringLiteral("e1"));
    mView->SetTimeline(mTimeline);
    QCOMPARE(mTree->topLevelItem(0)->text(0), QStringLiteral("renamed"));
    QCOMPARE(mTree->topLevelItem(5)->text(0), QStringLiteral("e0"));
    // The selection goes, and the list's signals are not held back.
    QCOMPARE(SelectedRows(), QList<int>());
    QCOMPARE(selection.size(), 1);
}

void tst_TimelineListView::OtherObjectsEmptyTheList_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("folder") << 0;
    QTest::newRow("element") << 2;
    QTest::newRow("unknown") << 7;
    QTest::newRow("dead") << -1;
}

void tst_TimelineListView::OtherObjectsEmptyTheList()
{
    QFETCH(int, type);
    auto other = std::make_shared<FakeElement>(50, "other");
    other->type = type;
    std::weak_ptr<ProjectObject> object = other;
    if (type < 0)
        other.reset();
    mView->SetTimeline(object);
    QCOMPARE(mTree->topLevelItemCount(), 0);
    // There is no timeline now, though the one before lives.
    CallLog log(mView.get());
    mView->OnInsertElementsRequested({NumberedID(1)}, {0});
    QVERIFY(log.Take().isEmpty());
    mView->SetTimeline(mTimeline);
    QCOMPARE(mTree->topLevelItemCount(), 6);
}

void tst_TimelineListView::ActiveElementIsHighlighted()
{
    Settings::highlightActiveElementInDetailsView = true;
    const QPalette& palette = mTree->palette();
    QVERIFY(palette.color(QPalette::Base) != palette.color(QPalette::AlternateBase));
    for (const int active : {2, 4, -1})
    {
        mView->SetActiveElementID(active >= 0 ? NumberedID(active + 1) : QUuid());
        for (int row = 0; row < 6; ++row)
        {
            QCOMPARE(Color(row, Qt::ForegroundRole),
                     row == active ? QColor(Qt::white) : palette.color(QPalette::Text));
            QCOMPARE(Color(row, Qt::BackgroundRole),
                     palette.color(row == active ? QPalette::AlternateBase : QPalette::Base));
        }
    }
}

void tst_TimelineListView::HighlightingCanBeOff()
{
    Settings::highlightActiveElementInDetailsView = true;
    mView->SetActiveElementID(NumberedID(1));
    // The setting is read at each call and not before.
    Settings::highlightActiveElementInDetailsView = false;
    QCOMPARE(Color(0, Qt::ForegroundRole), QColor(Qt::white));
    mView->SetActiveElementID(NumberedID(1));
    for (int row = 0; row < 6; ++row)
    {
        QCOMPARE(Color(row, Qt::ForegroundRole), mTree->palette().color(QPalette::Text));
        QCOMPARE(Color(row, Qt::BackgroundRole), mTree->palette().color(QPalette::Base));
    }
}

void tst_TimelineListView::HighlightLosesTheRedUntilTheNextTimeline()
{
    mTimeline->elements[2]->missing = true;
    mView->SetTimeline(mTimeline);
    mView->SetActiveElementID(NumberedID(1));
    QCOMPARE(Color(2, Qt::ForegroundRole), mTree->palette().color(QPalette::Text));
    mView->SetTimeline(mTimeline);
    QCOMPARE(Color(2, Qt::ForegroundRole), QColor(Qt::red));
}

void tst_TimelineListView::HighlightTakesTheListsPaletteAndGroup()
{
    Settings::highlightActiveElementInDetailsView = true;
    QPalette palette = mTree->palette();
    palette.setColor(QPalette::Active, QPalette::Text, QColor(1, 2, 3));
    palette.setColor(QPalette::Active, QPalette::Base, QColor(4, 5, 6));
    palette.setColor(QPalette::Active, QPalette::AlternateBase, QColor(7, 8, 9));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(11, 12, 13));
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(14, 15, 16));
    palette.setColor(QPalette::Disabled, QPalette::AlternateBase, QColor(17, 18, 19));
    mTree->setPalette(palette);
    for (const int offset : {0, 10})
    {
        mView->setEnabled(offset == 0);
        mView->SetActiveElementID(NumberedID(2));
        QCOMPARE(Color(0, Qt::ForegroundRole), QColor(offset + 1, offset + 2, offset + 3));
        QCOMPARE(Color(0, Qt::BackgroundRole), QColor(offset + 4, offset + 5, offset + 6));
        QCOMPARE(Color(1, Qt::ForegroundRole), QColor(Qt::white));
        QCOMPARE(Color(1, Qt::BackgroundRole), QColor(offset + 7, offset + 8, offset + 9));
    }
}

void tst_TimelineListView::HighlightLeavesDeadRowsAlone()
{
    mTimeline->elements[3]->missing = true;
    mView->SetTimeline(mTimeline);
    mTimeline->elements.removeAt(3);
    mView->SetActiveElementID(NumberedID(4));
    QCOMPARE(Color(3, Qt::ForegroundRole), QColor(Qt::red));
    QVERIFY(!mTree->topLevelItem(3)->data(0, Qt::BackgroundRole).isValid());
    QCOMPARE(Color(4, Qt::ForegroundRole), mTree->palette().color(QPalette::Text));
}

void tst_TimelineListView::MoveByOneRow_data()
{
    QTest::addColumn<bool>("isUp");
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QString>("request");
    // Rows count from 0, and #1 is the id of row 0.
    QTest::newRow("up") << true << QList<int>{3} << "MoveElementsRequested([#4], [2])";
    QTest::newRow("up, two") << true << QList<int>{2, 3} << "MoveElementsRequested([#3 #4], [1 2])";
    QTest::newRow("up, apart, last first")
        << true << QList<int>{5, 2} << "MoveElementsRequested([#3 #6], [1 4])";
    QTest::newRow("up from the second")
        << true << QList<int>{1, 2, 3} << "MoveElementsRequested([#2 #3 #4], [0 1 2])";
    QTest::newRow("up at the top") << true << QList<int>{0} << "";
    QTest::newRow("up, one at the top") << true << QList<int>{0, 4} << "";
    QTest::newRow("up, nothing") << true << QList<int>{} << "MoveElementsRequested([], [])";
    QTest::newRow("down") << false << QList<int>{3} << "MoveElementsRequested([#4], [5])";
    QTest::newRow("down, two") << false << QList<int>{2, 3} << "MoveElementsRequested([#4 #3], [5 4])";
    QTest::newRow("down, apart, last first")
        << false << QList<int>{4, 1} << "MoveElementsRequested([#5 #2], [6 3])";
    QTest::newRow("down to the end") << false << QList<int>{4} << "MoveElementsRequested([#5], [6])";
    QTest::newRow("down at the end") << false << QList<int>{5} << "";
    QTest::newRow("down, one at the end") << false << QList<int>{1, 5} << "";
    QTest::newRow("down, nothing") << false << QList<int>{} << "MoveElementsRequested([], [])";
}

void tst_TimelineListView::MoveByOneRow()
{
    QFETCH(bool, isUp);
    QFETCH(QList<int>, rows);
    QFETCH(QString, request);
    Select(rows);
    CallLog log(mView.get());
    Click(isUp ? "moveUpButton" : "moveDownButton");
    QCOMPARE(log.Take(), request.isEmpty() ? QStringList() : QStringList{request});
    mView->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly).at(isUp ? 0 : 1)->trigger();
    QCOMPARE(log.Take(), request.isEmpty() ? QStringList() : QStringList{request});
    std::sort(rows.begin(), rows.end());
    QCOMPARE(SelectedRows(), rows);
}

void tst_TimelineListView::MovedRowsStaySelectedAndTheListHasFocus()
{
    // A host that applies the pairs one after another, each index counted with the element still in the list.
    connect(mView.get(), &TimelineListView::MoveElementsRequested, mView.get(),
            [this](const QList<QUuid>& ids, const QList<int>& indices)
            {
                for (int pair = 0; pair < ids.size(); ++pair)
                {
                    auto& elements = mTimeline->elements;
                    int from = 0;
                    while (elements.at(from)->GetID() != ids.at(pair))
                        ++from;
                    elements.move(from, indices.at(pair) > from ? indices.at(pair) - 1 : indices.at(pair));
                }
                mView->SetTimeline(mTimeline);
            });
    const auto names = [this]
    {
        QString all;
        for (int row = 0; row < mTree->topLevelItemCount(); ++row)
            all += mTree->topLevelItem(row)->text(0).mid(1);
        return all;
    };
    Select({2, 3, 5});
    Click("moveUpButton");
    QCOMPARE(names(), QStringLiteral("023154"));
    QCOMPARE(SelectedRows(), (QList<int>{1, 2, 4}));
    QVERIFY(mTree->hasFocus());
    Click("moveUpButton");
    QCOMPARE(names(), QStringLiteral("230514"));
    Click("moveUpButton");
    QCOMPARE(names(), QStringLiteral("230514"));
    Click("moveDownButton");
    Click("moveDownButton");
    QCOMPARE(names(), QStringLiteral("012345"));
    QCOMPARE(SelectedRows(), (QList<int>{2, 3, 5}));
    Click("moveDownButton");
    QCOMPARE(names(), QStringLiteral("012345"));
}

void tst_TimelineListView::StoppedMoveKeepsSelectionAndFocus()
{
    Select({0, 4});
    mView->setFocus();
    mView->OnMoveElementsUpRequested();
    QCOMPARE(SelectedRows(), (QList<int>{0, 4}));
    QVERIFY(!mTree->hasFocus());
    Select({});
    mView->OnMoveElementsUpRequested();
    QVERIFY(mTree->hasFocus());
    mView->setFocus();
    mView->OnMoveElementsDownRequested();
    QVERIFY(mTree->hasFocus());
}

void tst_TimelineListView::DraggedRowsAreSelectedAfterTheAnswer()
{
    Select({0});
    mView->setFocus();
    QStringList order;
    connect(mView.get(), &TimelineListView::MoveElementsRequested, mView.get(),
            [&]
            {
                order << QStringLiteral("focus %1, selected %2")
                             .arg(mTree->hasFocus())
                             .arg(mTree->selectedItems().size());
                mTimeline->elements.move(4, 0);
                mView->SetTimeline(mTimeline);
            });
    CallLog log(mView.get());
    mView->OnMoveElementsRequested({NumberedID(5), NumberedID(99)}, {0, 0});
    QCOMPARE(log.Take(), QStringList{"MoveElementsRequested([#5 #99], [0 0])"});
    QCOMPARE(order, QStringList{"focus 0, selected 1"});
    QCOMPARE(SelectedRows(), QList<int>{0});
    QCOMPARE(mTree->topLevelItem(0)->text(0), QStringLiteral("e4"));
    QVERIFY(mTree->hasFocus());
}

void tst_TimelineListView::RemovalNamesLivingElements()
{
    CallLog log(mView.get());
    Click("removeButton");
    QCOMPARE(log.Take(), QStringList{"RemoveElementsRequested([])"});
    Select({4, 1, 2});
    Click("removeButton");
    QCOMPARE(log.Take(), QStringList{"RemoveElementsRequested([#2 #3 #5])"});
    mTimeline->elements.removeAt(2);
    mView->OnRemoveElementsRequested();
    QCOMPARE(log.Take(), QStringList{"RemoveElementsRequested([#2 #5])"});
    QCOMPARE(mTree->topLevelItemCount(), 6);
}

void tst_TimelineListView::SortAsks()
{
    CallLog log(mView.get());
    Click("sortAscendingButton");
    QCOMPARE(log.Take(), QStringList{"SortElementsRequested(true)"});
    Click("sortDescendingButton");
    QCOMPARE(log.Take(), QStringList{"SortElementsRequested(false)"});
}

void tst_TimelineListView::InsertionNamesTheTimeline()
{
    CallLog log(mView.get());
    mView->OnInsertElementsRequested({NumberedID(7), NumberedID(8)}, {2, 2});
    QCOMPARE(log.Take(), QStringList{"InsertElementsRequested(#1000000, [#7 #8], [2 2])"});
    mView->OnInsertSourcesRequested({"/a.mov", "/b.mov"}, {-1, -1});
    QCOMPARE(log.Take(), QStringList{"InsertSourcesRequested([/a.mov /b.mov], [-1 -1])"});
    // Files go out without a timeline too.
    mTimeline.reset();
    mView->OnInsertElementsRequested({NumberedID(7)}, {2});
    QVERIFY(log.Take().isEmpty());
    mView->OnInsertSourcesRequested({"/a.mov"}, {0});
    QCOMPARE(log.Take(), QStringList{"InsertSourcesRequested([/a.mov], [0])"});
}

void tst_TimelineListView::DoubleClickSeeks()
{
    mTimeline->elements[2]->startTime = 5000000;
    CallLog log(mView.get());
    const QPoint place = mTree->visualItemRect(mTree->topLevelItem(2)).center();
    InputEvents::Press(mTree->viewport(), place);
    InputEvents::Release(mTree->viewport(), place);
    QVERIFY(log.Take().isEmpty());
    QTest::mouseDClick(mTree->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(log.Take(), QStringList{QStringLiteral("SeekPlaybackTimeRequested(%1)")
                                         .arg(5000000 + Settings::ROUNDING_ERROR_EXTRA_TIME)});
}

void tst_TimelineListView::SeekNeedsALivingElement()
{
    CallLog log(mView.get());
    mView->OnSeekPlaybackTimeRequested(nullptr);
    mTimeline->elements[1]->type = 1;
    mView->OnSeekPlaybackTimeRequested(mTree->topLevelItem(1));
    mTimeline->elements.removeAt(2);
    mView->OnSeekPlaybackTimeRequested(mTree->topLevelItem(2));
    QVERIFY(log.Take().isEmpty());
    // An absurd time harms nothing.
    mTimeline->elements[0]->startTime = std::numeric_limits<int64_t>::max();
    mView->OnSeekPlaybackTimeRequested(mTree->topLevelItem(0));
    QCOMPARE(log.Take().size(), 1);
}

void tst_TimelineListView::FocusOfPanelAndListCounts()
{
    mTree->clearFocus();
    QVERIFY(!mView->HasFocusExtended());
    mTree->setFocus();
    QVERIFY(mView->HasFocusExtended());
    mView->setFocus();
    QVERIFY(mView->HasFocusExtended());
}

void tst_TimelineListView::PanelMayGoDuringAMove()
{
    Select({2});
    connect(mView.get(), &TimelineListView::MoveElementsRequested, this, [this] { mView.reset(); });
    mView->OnMoveElementsRequested({NumberedID(1)}, {0});
    QVERIFY(!mView);
}

void tst_TimelineListView::TenThousandElements()
{
    constexpr int count = 10000;
    // Each takes some milliseconds, and minutes where it grows with the square of the rows. What is between
    // is the machine's business.
    constexpr int limit = 10000;
    auto many = std::make_shared<FakeElementTimeline>(count);
    std::clock_t start = std::clock();
    const auto measure = [&start](const char* what)
    {
        const int elapsed = int((std::clock() - start) * 1000 / CLOCKS_PER_SEC);
        qInfo("%s: %d ms", what, elapsed);
        start = std::clock();
        return elapsed;
    };
    mView->SetTimeline(many);
    QCOMPARE(mTree->topLevelItemCount(), count);
    QVERIFY(measure("fill") < limit);

    QList<QUuid> ids;
    for (int row = 1; row < count - 1; row += 2)
        ids << NumberedID(row + 1);
    start = std::clock();
    mTree->SelectItems(ids);
    QVERIFY(measure("select every other row") < limit);
    QCOMPARE(mTree->selectedItems().size(), ids.size());

    QSignalSpy moves(mView.get(), SIGNAL(MoveElementsRequested(QList<QUuid>, QList<int>)));
    for (const bool isUp : {true, false})
    {
        start = std::clock();
        if (isUp)
            mView->OnMoveElementsUpRequested();
        else
            mView->OnMoveElementsDownRequested();
        QVERIFY(measure("ask to move every other row") < limit);
        QCOMPARE(moves.takeFirst().at(0).value<QList<QUuid>>().size(), ids.size());
    }
    start = std::clock();
    mView->OnRemoveElementsRequested();
    QVERIFY(measure("ask to remove every other row") < limit);
    for (const int active : {3, 9000})
    {
        start = std::clock();
        mView->SetActiveElementID(NumberedID(active));
        QVERIFY(measure("highlight") < limit);
    }
    start = std::clock();
    mTree->selectAll();
    QVERIFY(measure("select all") < limit);
    mTree->SelectItems(ids);
    start = std::clock();
    mView->SetTimeline(many);
    QVERIFY(measure("refill, every other row selected") < limit);
}

static const TestRegistration<tst_TimelineListView> TimelineListViewRegistration;

#include "tst_TimelineListView.moc"
