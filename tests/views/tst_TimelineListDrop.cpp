// SPDX-License-Identifier: MIT
#include "kit/DragPayload.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QUrl>
#include <QtTest>

/// Drags over the element list: what it takes, where the line stands, and what a drop asks for.
class tst_TimelineListDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void EnteringLooksAtTheFormatAlone_data();
    void EnteringLooksAtTheFormatAlone();
    void WhatMayBeDropped_data();
    void WhatMayBeDropped();
    void RefusedMoveLeavesTheLine();
    void LineSnapsToTheNearestGap();
    void LineShowsOnlyDuringADrag();
    void EmptyListShowsNoLineAndTakesDrops();
    void OwnRowsMove_data();
    void OwnRowsMove();
    void RowsOfAnotherListAreComparedWithNone();
    void ProjectObjectsAreInserted_data();
    void ProjectObjectsAreInserted();
    void UnreadableIDsAreNone_data();
    void UnreadableIDsAreNone();
    void FilesAreSorted();
    void NoLocalFilesNoSignal();
    void RefusedDropDoesNothing();
    void GeneratedListsFollowTheRules();
    void DraggedOrderIsKept();

private:
    void Fill(int count);
    void Select(const QList<int>& rows);
    /// The viewport's place in @p row, @p share (0 to 1) of its height down.
    QPoint In(int row, double share) const;
    QPoint Below() const { return In(mTree->topLevelItemCount() - 1, 1) + QPoint(0, 10); }
    template<typename Event>
    std::pair<bool, Qt::DropAction> Send(const QMimeData& data, const QPoint& position);
    bool Enter(const QMimeData& data) { return Send<QDragEnterEvent>(data, QPoint(10, 10)).first; }
    void Drop(const QMimeData& data, const QPoint& position)
    {
        // What hasn't entered is not delivered.
        Enter(data);
        Send<QDropEvent>(data, position);
    }
    void Leave();
    QImage Grab() const { return mTree->viewport()->grab().toImage(); }

    std::unique_ptr<TimelineListViewTreeWidget> mTree;
};

namespace
{

std::unique_ptr<QMimeData> Elements(const QList<QUuid>& ids)
{
    auto data = std::make_unique<QMimeData>();
    data->setData("merovane/element-uuid", DragPayload::WriteIDs(ids));
    return data;
}

std::unique_ptr<QMimeData> Objects(const QList<QUuid>& ids, const QByteArray& types = {"\1\0\1\1\0", 5})
{
    auto data = std::make_unique<QMimeData>();
    data->setData("merovane/proj-obj-uuid", DragPayload::WriteIDs(ids));
    data->setData("merovane/allowed-drop-types", types);
    return data;
}

std::unique_ptr<QMimeData> Files(const QStringList& urls)
{
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> list;
    for (const QString& url : urls)
        list << QUrl(url);
    data->setUrls(list);
    return data;
}

/// Rows of a list as numbers alone: where each begins and ends, counted from the top of the viewport.
struct RowEdges
{
    QList<int> tops;
    QList<int> ends;

    explicit RowEdges(const QTreeWidget& tree, const QList<int>& heights)
    {
        int y = 0;
        for (int row = 0; row < tree.verticalScrollBar()->value(); ++row)
            y -= heights.at(row);
        for (const int height : heights)
        {
            tops << y;
            y += height;
            ends << y;
        }
    }
    int RowAt(int y) const
    {
        for (int row = 0; row < tops.size(); ++row)
        {
            if (y >= tops.at(row) && y < ends.at(row))
                return row;
        }
        return -1;
    }
    /// The row in front of which a drop at @p y lands; -1 for the end.
    int Gap(int y) const
    {
        const int row = RowAt(y);
        if (row < 0)
            return -1;
        // Half a row further down: the row itself in its upper half, below that the next, or one behind it
        // where rows are lower than that.
        return RowAt(y + (ends.at(row) - tops.at(row)) / 2);
    }
    /// Where the line stands for a drag at @p y.
    int Line(int y) const
    {
        const int row = RowAt(y);
        if (row < 0)
            return ends.last();
        const int gap = Gap(y);
        return gap >= 0 ? tops.at(gap) : ends.at(row);
    }
};

} // namespace

void tst_TimelineListDrop::init()
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

void tst_TimelineListDrop::cleanup()
{
    // The application keeps the widget that a drag is over, and wouldn't see it go.
    Leave();
    mTree.reset();
}

void tst_TimelineListDrop::Fill(int count)
{
    mTree->clear();
    for (int row = 0; row < count; ++row)
    {
        auto* item = new QTreeWidgetItem(mTree.get(), {QStringLiteral("e%1").arg(row)});
        item->setData(0, Qt::UserRole, NumberedID(row));
    }
}

void tst_TimelineListDrop::Select(const QList<int>& rows)
{
    mTree->clearSelection();
    for (const int row : rows)
        mTree->topLevelItem(row)->setSelected(true);
}

QPoint tst_TimelineListDrop::In(int row, double share) const
{
    const QRect rect = mTree->visualItemRect(mTree->topLevelItem(row));
    return {20, rect.top() + int(share * rect.height())};
}

template<typename Event>
std::pair<bool, Qt::DropAction> tst_TimelineListDrop::Send(const QMimeData& data, const QPoint& position)
{
    Event event(position, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &event);
    return {event.isAccepted(), event.dropAction()};
}

void tst_TimelineListDrop::Leave()
{
    QDragLeaveEvent event;
    QApplication::sendEvent(mTree->viewport(), &event);
}

void tst_TimelineListDrop::EnteringLooksAtTheFormatAlone_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("enters");
    QTest::newRow("project objects") << "merovane/proj-obj-uuid" << true;
    QTest::newRow("elements") << "merovane/element-uuid" << true;
    QTest::newRow("files") << "text/uri-list" << true;
    QTest::newRow("flags alone") << "merovane/allowed-drop-types" << false;
    QTest::newRow("text") << "text/plain" << false;
}

void tst_TimelineListDrop::EnteringLooksAtTheFormatAlone()
{
    QFETCH(QString, format);
    QFETCH(bool, enters);
    QMimeData data;
    data.setData(format, "x");
    QCOMPARE(Enter(data), enters);
    const QImage plain = Grab();
    // The line of a drag that can be dropped shows whether the list knows of it.
    Send<QDragMoveEvent>(*Elements({NumberedID(1)}), In(3, 0.2));
    QCOMPARE(Grab() != plain, enters);
}

void tst_TimelineListDrop::WhatMayBeDropped_data()
{
    QTest::addColumn<QByteArray>("types");
    QTest::addColumn<bool>("hasElements");
    QTest::addColumn<bool>("isTaken");
    const auto bytes = [](std::initializer_list<char> list)
    { return QByteArray(list.begin(), int(list.size())); };
    QTest::newRow("source timelines") << bytes({1, 0, 1, 1, 0}) << false << true;
    QTest::newRow("byte 3 alone") << bytes({0, 0, 0, 1, 0}) << false << true;
    QTest::newRow("all but byte 3") << bytes({1, 1, 1, 0, 1}) << false << false;
    QTest::newRow("folders") << bytes({1, 1, 0, 0, 0}) << false << false;
    QTest::newRow("other timelines") << bytes({1, 0, 0, 0, 1}) << false << false;
    QTest::newRow("four bytes") << bytes({1, 0, 1, 1}) << false << false;
    QTest::newRow("six bytes") << bytes({1, 0, 1, 1, 0, 9}) << false << true;
    QTest::newRow("no bytes") << QByteArray() << false << false;
    // A drag of project objects isn't tried for what else it holds.
    QTest::newRow("folders, and elements") << bytes({1, 1, 0, 0, 0}) << true << false;
    QTest::newRow("source timelines, and elements") << bytes({1, 0, 1, 1, 0}) << true << true;
}

void tst_TimelineListDrop::WhatMayBeDropped()
{
    QFETCH(QByteArray, types);
    QFETCH(bool, hasElements);
    QFETCH(bool, isTaken);
    const auto data = Objects({NumberedID(50)}, types);
    if (hasElements)
    {
        data->setData("merovane/element-uuid", DragPayload::WriteIDs({NumberedID(1)}));
        data->setUrls({QUrl("file:///a.mov")});
    }
    CallLog log(mTree.get());
    QVERIFY(Enter(*data));
    const auto [isAccepted, action] = Send<QDragMoveEvent>(*data, In(2, 0.2));
    QCOMPARE(isAccepted, isTaken);
    QCOMPARE(action, isTaken ? Qt::MoveAction : Qt::IgnoreAction);
    Drop(*data, In(2, 0.2));
    QCOMPARE(log.Take(), isTaken ? QStringList{"InsertElementsRequested([#50], [2])"} : QStringList());
}

void tst_TimelineListDrop::RefusedMoveLeavesTheLine()
{
    Enter(*Elements({NumberedID(1)}));
    Send<QDragMoveEvent>(*Elements({NumberedID(1)}), In(3, 0.2));
    const QImage withLine = Grab();
    // A refused drag enters as well, and the line of the last move stays.
    const auto folder = Objects({NumberedID(50)}, QByteArray("\1\1\0\0\0", 5));
    QVERIFY(Enter(*folder));
    QCOMPARE(Send<QDragMoveEvent>(*folder, In(6, 0.2)).second, Qt::IgnoreAction);
    QCOMPARE(Grab(), withLine);
}

void tst_TimelineListDrop::LineSnapsToTheNearestGap()
{
    const auto data = Files({"file:///a.mov"});
    Enter(*data);
    const int rowHeight = mTree->visualItemRect(mTree->topLevelItem(0)).height();
    const QImage plain = [this]
    {
        Leave();
        return Grab();
    }();
    Enter(*data);
    const QList<QPair<QPoint, int>> places = {
        {In(0, 0.1), 0},
        {In(0, 0.9), rowHeight},
        {In(4, 0.4), 4 * rowHeight},
        {In(4, 0.6), 5 * rowHeight},
        {In(9, 0.4), 9 * rowHeight},
        {In(9, 0.9), 10 * rowHeight},
        {Below(), 10 * rowHeight},
    };
    for (const auto& [place, y] : places)
    {
        const auto [isAccepted, action] = Send<QDragMoveEvent>(*data, place);
        QVERIFY(isAccepted);
        QCOMPARE(action, Qt::MoveAction);
        QImage expected = plain;
        QPainter painter(&expected);
        painter.setPen(mTree->viewport()->palette().color(mTree->viewport()->foregroundRole()));
        painter.drawLine(0, y, mTree->width(), y);
        painter.end();
        const QByteArray difference = PictureDifference(Grab(), expected);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_TimelineListDrop::LineShowsOnlyDuringADrag()
{
    const auto data = Elements({NumberedID(1)});
    const QImage plain = Grab();
    Send<QDragMoveEvent>(*data, In(3, 0.2));
    QCOMPARE(Grab(), plain);
    Enter(*data);
    QVERIFY(Grab() != plain);
    Leave();
    QCOMPARE(Grab(), plain);
    Enter(*data);
    QVERIFY(Grab() != plain);
    Drop(*data, In(3, 0.2));
    QCOMPARE(Grab(), plain);
    // A refused drop ends the drag too.
    Enter(*data);
    Drop(*Objects({}, QByteArray("\0\0\0\0\0", 5)), In(3, 0.2));
    QCOMPARE(Grab(), plain);
}

void tst_TimelineListDrop::EmptyListShowsNoLineAndTakesDrops()
{
    const auto data = Objects({NumberedID(50), NumberedID(51)});
    Enter(*data);
    Send<QDragMoveEvent>(*data, In(3, 0.2));
    Leave();
    Fill(0);
    const QImage plain = Grab();
    CallLog log(mTree.get());
    Enter(*data);
    const auto [isAccepted, action] = Send<QDragMoveEvent>(*data, QPoint(20, 30));
    QVERIFY(isAccepted);
    QCOMPARE(action, Qt::MoveAction);
    QCOMPARE(Grab(), plain);
    Drop(*data, QPoint(20, 30));
    QCOMPARE(log.Take(), QStringList{"InsertElementsRequested([#50 #51], [-1 -1])"});
}

void tst_TimelineListDrop::OwnRowsMove_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<int>("row");
    QTest::addColumn<double>("share");
    QTest::addColumn<QString>("request");
    QTest::newRow("down") << QList<int>{0, 1, 2} << 7 << 0.2 << "[#0 #1 #2], [7 7 7]";
    QTest::newRow("down, lower half") << QList<int>{0, 1, 2} << 6 << 0.8 << "[#0 #1 #2], [7 7 7]";
    QTest::newRow("up") << QList<int>{5, 6} << 1 << 0.2 << "[#6 #5], [1 1]";
    QTest::newRow("up, selected upwards") << QList<int>{6, 5} << 1 << 0.2 << "[#6 #5], [1 1]";
    QTest::newRow("to the top") << QList<int>{5, 6} << 0 << 0.2 << "[#6 #5], [0 0]";
    QTest::newRow("onto itself") << QList<int>{5, 6} << 5 << 0.2 << "[#6 #5], [5 5]";
    QTest::newRow("between its rows") << QList<int>{3, 8} << 5 << 0.2 << "[#3 #8], [5 5]";
    QTest::newRow("behind the last row") << QList<int>{2, 4} << 9 << 0.8 << "[#2 #4], [-1 -1]";
    QTest::newRow("below the rows") << QList<int>{2, 4} << 9 << 2.0 << "[#2 #4], [-1 -1]";
}

void tst_TimelineListDrop::OwnRowsMove()
{
    QFETCH(QList<int>, rows);
    QFETCH(int, row);
    QFETCH(double, share);
    QFETCH(QString, request);
    Select(rows);
    std::sort(rows.begin(), rows.end());
    QList<QUuid> ids;
    for (const int each : rows)
        ids << NumberedID(each);
    CallLog log(mTree.get());
    Enter(*Elements(ids));
    Drop(*Elements(ids), In(row, share));
    QCOMPARE(log.Take(), QStringList{QStringLiteral("MoveElementsRequested(%1)").arg(request)});
    // The list moves nothing itself.
    QCOMPARE(mTree->topLevelItem(0)->text(0), QStringLiteral("e0"));
    QCOMPARE(mTree->topLevelItemCount(), 10);
}

void tst_TimelineListDrop::RowsOfAnotherListAreComparedWithNone()
{
    mTree->clearSelection();
    CallLog log(mTree.get());
    Drop(*Elements({NumberedID(70), NumberedID(71)}), In(0, 0.2));
    QCOMPARE(log.Take(), QStringList{"MoveElementsRequested([#70 #71], [0 0])"});
}

void tst_TimelineListDrop::ProjectObjectsAreInserted_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<double>("share");
    QTest::addColumn<QString>("request");
    QTest::newRow("before a row") << 2 << 0.2 << "[#81 #80], [2 2]";
    QTest::newRow("behind a row") << 2 << 0.8 << "[#81 #80], [3 3]";
    QTest::newRow("at the top") << 0 << 0.2 << "[#81 #80], [0 0]";
    QTest::newRow("behind the last row") << 9 << 0.8 << "[#80 #81], [-1 -1]";
    QTest::newRow("below the rows") << 9 << 2.0 << "[#80 #81], [-1 -1]";
}

void tst_TimelineListDrop::ProjectObjectsAreInserted()
{
    QFETCH(int, row);
    QFETCH(double, share);
    QFETCH(QString, request);
    Select({4});
    CallLog log(mTree.get());
    Drop(*Objects({NumberedID(80), NumberedID(81)}), In(row, share));
    QCOMPARE(log.Take(), QStringList{QStringLiteral("InsertElementsRequested(%1)").arg(request)});
}

void tst_TimelineListDrop::UnreadableIDsAreNone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = DragPayload::WriteIDs({NumberedID(1), NumberedID(2)});
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no ids") << QByteArray(4, '\0');
    QTest::newRow("cut") << good.chopped(1);
    QTest::newRow("forged count") << QByteArray("\x7f\xff\xff\xff", 4) + good.mid(4);
    QTest::newRow("negative count") << QByteArray("\xff\xff\xff\xff", 4) + good.mid(4);
    QTest::newRow("three bytes") << QByteArray("\0\0\1", 3);
}

void tst_TimelineListDrop::UnreadableIDsAreNone()
{
    QFETCH(QByteArray, bytes);
    CallLog log(mTree.get());
    QMimeData elements;
    elements.setData("merovane/element-uuid", bytes);
    Drop(elements, In(2, 0.2));
    QCOMPARE(log.Take(), QStringList{"MoveElementsRequested([], [])"});
    const auto objects = Objects({});
    objects->setData("merovane/proj-obj-uuid", bytes);
    Drop(*objects, In(2, 0.2));
    QCOMPARE(log.Take(), QStringList{"InsertElementsRequested([], [])"});
}

void tst_TimelineListDrop::FilesAreSorted()
{
    CallLog log(mTree.get());
    const auto data = Files({"file:///b.mov", "http://host/x.mov", "file:///A.mov", "file:///c.mov"});
    Drop(*data, In(2, 0.2));
    QCOMPARE(log.Take(), QStringList{"InsertSourcesRequested([/A.mov /b.mov /c.mov], [2 2 2])"});
    Drop(*data, Below());
    QCOMPARE(log.Take(), QStringList{"InsertSourcesRequested([/A.mov /b.mov /c.mov], [-1 -1 -1])"});
}

void tst_TimelineListDrop::NoLocalFilesNoSignal()
{
    CallLog log(mTree.get());
    Drop(*Files({"http://host/x.mov"}), In(2, 0.2));
    QMimeData nothing;
    nothing.setData("text/uri-list", QByteArray());
    Drop(nothing, In(2, 0.2));
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelineListDrop::RefusedDropDoesNothing()
{
    CallLog log(mTree.get());
    QMimeData text;
    text.setText("e1");
    Drop(text, In(2, 0.2));
    Drop(*Objects({NumberedID(5)}, QByteArray("\1\0\0\0\1", 5)), In(2, 0.2));
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelineListDrop::GeneratedListsFollowTheRules()
{
    QRandomGenerator random(20260507);
    CallLog log(mTree.get());
    int lines = 0;
    for (int list = 0; list < 150; ++list)
    {
        const int count = 1 + int(random.bounded(20));
        Fill(count);
        QList<int> heights;
        for (int row = 0; row < count; ++row)
        {
            heights << 8 + int(random.bounded(30));
            mTree->topLevelItem(row)->setSizeHint(0, QSize(50, heights.last()));
        }
        mTree->doItemsLayout();
        mTree->verticalScrollBar()->setValue(int(random.bounded(mTree->verticalScrollBar()->maximum() + 1)));
        QList<int> selected;
        for (int row = 0; row < count; ++row)
        {
            if (random.bounded(3) == 0)
                selected << row;
        }
        Select(selected);
        const RowEdges edges(*mTree, heights);
        Leave();
        const QImage plain = Grab();
        for (int drag = 0; drag < 20; ++drag)
        {
            const QPoint place(int(random.bounded(mTree->viewport()->width())),
                               int(random.bounded(mTree->viewport()->height())));
            const bool isMove = random.bounded(2) == 0;
            QList<QUuid> ids;
            QStringList shown;
            for (const int row : isMove ? selected : QList<int>{60, 61, 62})
                ids << NumberedID(row);
            for (const QUuid& id : ids)
                shown << QStringLiteral("#%1").arg(id.data1);
            const auto data = isMove ? Elements(ids) : Objects(ids);
            QVERIFY(Enter(*data));
            const auto [isAccepted, action] = Send<QDragMoveEvent>(*data, place);
            QVERIFY(isAccepted);
            QCOMPARE(action, Qt::MoveAction);
            QImage expected = plain;
            QPainter painter(&expected);
            painter.setPen(mTree->viewport()->palette().color(mTree->viewport()->foregroundRole()));
            painter.drawLine(0, edges.Line(place.y()), mTree->width(), edges.Line(place.y()));
            painter.end();
            const QByteArray difference = PictureDifference(Grab(), expected);
            QVERIFY2(difference.isEmpty(), difference);
            if (expected != plain)
                ++lines;

            Drop(*data, place);
            const int gap = edges.Gap(place.y());
            const int first = selected.isEmpty() ? -1 : selected.first();
            const bool isReversed = isMove ? gap >= 0 && gap <= first : gap >= 0;
            if (isReversed)
                std::reverse(shown.begin(), shown.end());
            QStringList indices;
            for (int entry = 0; entry < ids.size(); ++entry)
                indices << QString::number(gap);
            QCOMPARE(log.Take(),
                     QStringList{
                         QStringLiteral("%1Requested([%2], [%3])")
                             .arg(isMove ? QStringLiteral("MoveElements") : QStringLiteral("InsertElements"),
                                  shown.join(QLatin1Char(' ')), indices.join(QLatin1Char(' ')))});
        }
    }
    QVERIFY(lines > 1000);
}

void tst_TimelineListDrop::DraggedOrderIsKept()
{
    // What the order of the ids is for: a host that moves each before the row of its index, one after
    // another, ends with the rows in the gap and in their order, as long as the gap isn't among them.
    QSignalSpy moves(mTree.get(), SIGNAL(MoveElementsRequested(QList<QUuid>, QList<int>)));
    for (int mask = 1; mask < 64; ++mask)
    {
        for (int gap = 0; gap <= 6; ++gap)
        {
            Fill(6);
            QList<int> selected;
            QList<QUuid> ids;
            for (int row = 0; row < 6; ++row)
            {
                if ((mask & (1 << row)) == 0)
                    continue;
                selected << row;
                ids << NumberedID(row);
            }
            if (gap > selected.first() && gap <= selected.last())
                continue;
            Select(selected);
            Drop(*Elements(ids), gap < 6 ? In(gap, 0.2) : In(5, 0.8));
            QCOMPARE(moves.size(), 1);
            const QList<QVariant> arguments = moves.takeFirst();
            const auto sent = arguments.at(0).value<QList<QUuid>>();
            const auto indices = arguments.at(1).value<QList<int>>();
            QList<int> rows = {0, 1, 2, 3, 4, 5};
            for (int pair = 0; pair < sent.size(); ++pair)
            {
                const int from = rows.indexOf(int(sent.at(pair).data1));
                const int target = indices.at(pair) < 0 ? 6 : indices.at(pair);
                rows.move(from, target > from ? target - 1 : target);
            }
            QList<int> expected;
            for (int row = 0; row <= 6; ++row)
            {
                if (row == gap)
                    expected += selected;
                if (row < 6 && !selected.contains(row))
                    expected << row;
            }
            QCOMPARE(rows, expected);
        }
    }
}

static const TestRegistration<tst_TimelineListDrop> TimelineListDropRegistration;

#include "tst_TimelineListDrop.moc"
