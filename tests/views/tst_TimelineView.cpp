// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "views/TimelineView.h"

#include <QMetaMethod>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtTest>

class tst_TimelineView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mView.reset(); }

    void HoldsAPlainTree();
    void DeclaresItsSlotsAndNothingElse();
    void RowsCarryNamesAndNumbers();
    void SequenceGoesToTheFirstTimelineOfItsID();
    void ElementGoesToTheFirstSequenceAmongAllTimelinesOfItsID();
    void UnknownIDsDoNothing_data();
    void UnknownIDsDoNothing();
    void RemovingTakesTheFirstAndKeepsItAlive();
    void RemovingAnUnknownTimelineDoesNothing();

private:
    /// The tree as text: "a1(s10(e100,e101),s11),b2"; each row with its name and its id.
    QString Shown() const;
    void Slot(const char* name, QList<int> ids, const QString& text = {});

    std::unique_ptr<TimelineView> mView;
    QTreeWidget* mTree = nullptr;
};

namespace
{

QString ShownRow(const QTreeWidgetItem* row)
{
    QStringList children;
    for (int child = 0; child < row->childCount(); ++child)
        children << ShownRow(row->child(child));
    const QVariant id = row->data(0, Qt::UserRole);
    const QString text =
        row->text(0) + (id.userType() == QMetaType::Int ? id.toString() : QStringLiteral("?"));
    return children.isEmpty() ? text : text + QStringLiteral("(%1)").arg(children.join(QLatin1Char(',')));
}

} // namespace

void tst_TimelineView::init()
{
    mView = std::make_unique<TimelineView>();
    mTree = mView->findChild<QTreeWidget*>();
    QVERIFY(mTree);
}

QString tst_TimelineView::Shown() const
{
    QStringList rows;
    for (int index = 0; index < mTree->topLevelItemCount(); ++index)
        rows << ShownRow(mTree->topLevelItem(index));
    return rows.join(QLatin1Char(','));
}

void tst_TimelineView::Slot(const char* name, QList<int> ids, const QString& text)
{
    // By name, as a host connects them.
    bool isCalled = false;
    if (ids.size() == 1 && text.isNull())
        isCalled = QMetaObject::invokeMethod(mView.get(), name, Q_ARG(int, ids.at(0)));
    else if (ids.size() == 1)
        isCalled = QMetaObject::invokeMethod(mView.get(), name, Q_ARG(int, ids.at(0)), Q_ARG(QString, text));
    else if (ids.size() == 2)
        isCalled = QMetaObject::invokeMethod(mView.get(), name, Q_ARG(int, ids.at(0)), Q_ARG(int, ids.at(1)),
                                             Q_ARG(QString, text));
    else
        isCalled = QMetaObject::invokeMethod(mView.get(), name, Q_ARG(int, ids.at(0)), Q_ARG(int, ids.at(1)),
                                             Q_ARG(int, ids.at(2)), Q_ARG(QString, text));
    QVERIFY2(isCalled, name);
}

void tst_TimelineView::HoldsAPlainTree()
{
    QCOMPARE(mView->findChildren<QTreeWidget*>().size(), 1);
    QCOMPARE(mTree->parentWidget(), mView.get());
    QCOMPARE(mTree->metaObject()->className(), "QTreeWidget");
    QCOMPARE(mTree->columnCount(), 1);
    QCOMPARE(mTree->topLevelItemCount(), 0);
    QVERIFY(!mTree->isHeaderHidden());
    QVERIFY(!mTree->dragEnabled());
    QVERIFY(!mTree->acceptDrops());
    QCOMPARE(mTree->selectionMode(), QAbstractItemView::SingleSelection);
    QVERIFY(!mTree->objectName().isEmpty());
    auto* layout = qobject_cast<QVBoxLayout*>(mView->layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 1);
    QCOMPARE(layout->itemAt(0)->widget(), mTree);
    QWidget window;
    QCOMPARE(layout->contentsMargins(), QVBoxLayout(&window).contentsMargins());
}

void tst_TimelineView::DeclaresItsSlotsAndNothingElse()
{
    const QMetaObject& meta = TimelineView::staticMetaObject;
    QStringList methods;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index)
    {
        QCOMPARE(meta.method(index).methodType(), QMetaMethod::Slot);
        methods << QString::fromLatin1(meta.method(index).methodSignature());
    }
    const QStringList expected = {"AddTimeline(int,QString)", "RemoveTimeline(int)",
                                  "AddSequence(int,int,QString)", "AddElement(int,int,int,QString)"};
    QCOMPARE(methods, expected);
}

void tst_TimelineView::RowsCarryNamesAndNumbers()
{
    Slot("AddTimeline", {1}, "a");
    Slot("AddTimeline", {2}, "b");
    Slot("AddTimeline", {-3}, "");
    Slot("AddSequence", {1, 10}, "s");
    Slot("AddSequence", {1, 11}, "s");
    Slot("AddSequence", {2, 10}, "t");
    Slot("AddElement", {1, 10, 100}, "e");
    Slot("AddElement", {1, 10, 101}, "f");
    Slot("AddElement", {2, 10, 100}, "g");
    QCOMPARE(Shown(), QStringLiteral("a1(s10(e100,f101),s11),b2(t10(g100)),-3"));
}

void tst_TimelineView::SequenceGoesToTheFirstTimelineOfItsID()
{
    Slot("AddTimeline", {1}, "a");
    Slot("AddTimeline", {1}, "b");
    Slot("AddSequence", {1, 10}, "s");
    Slot("AddSequence", {1, 10}, "t");
    QCOMPARE(Shown(), QStringLiteral("a1(s10,t10),b1"));
}

void tst_TimelineView::ElementGoesToTheFirstSequenceAmongAllTimelinesOfItsID()
{
    // The second timeline of the id is the one that has the sequence.
    Slot("AddTimeline", {2}, "b");
    Slot("AddSequence", {2, 20}, "s");
    Slot("AddSequence", {2, 20}, "t");
    Slot("AddTimeline", {1}, "a");
    Slot("AddSequence", {1, 20}, "u");
    auto* const renumbered = mTree->topLevelItem(1);
    renumbered->setData(0, Qt::UserRole, 2);
    Slot("AddElement", {2, 20, 200}, "e");
    QCOMPARE(Shown(), QStringLiteral("b2(s20(e200),t20),a2(u20)"));
    mTree->topLevelItem(0)->child(0)->setData(0, Qt::UserRole, 21);
    mTree->topLevelItem(0)->child(1)->setData(0, Qt::UserRole, 22);
    Slot("AddElement", {2, 20, 201}, "f");
    QCOMPARE(Shown(), QStringLiteral("b2(s21(e200),t22),a2(u20(f201))"));
}

void tst_TimelineView::UnknownIDsDoNothing_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QList<int>>("ids");
    QTest::newRow("sequence of no timeline") << "AddSequence" << QList<int>{5, 10};
    QTest::newRow("element of no timeline") << "AddElement" << QList<int>{5, 10, 100};
    QTest::newRow("element of no sequence") << "AddElement" << QList<int>{1, 11, 100};
    QTest::newRow("element of another timeline's sequence") << "AddElement" << QList<int>{2, 10, 100};
    QTest::newRow("a sequence's id is no timeline's") << "AddSequence" << QList<int>{10, 12};
    QTest::newRow("removing what isn't there") << "RemoveTimeline" << QList<int>{10};
}

void tst_TimelineView::UnknownIDsDoNothing()
{
    QFETCH(QString, slot);
    QFETCH(QList<int>, ids);
    Slot("AddTimeline", {1}, "a");
    Slot("AddTimeline", {2}, "b");
    Slot("AddSequence", {1, 10}, "s");
    Slot(slot.toLatin1().constData(), ids, ids.size() == 1 ? QString() : QStringLiteral("x"));
    QCOMPARE(Shown(), QStringLiteral("a1(s10),b2"));
}

void tst_TimelineView::RemovingTakesTheFirstAndKeepsItAlive()
{
    Slot("AddTimeline", {1}, "a");
    Slot("AddTimeline", {2}, "b");
    Slot("AddTimeline", {2}, "c");
    Slot("AddSequence", {2, 10}, "s");
    const std::unique_ptr<QTreeWidgetItem> taken(mTree->topLevelItem(1));
    Slot("RemoveTimeline", {2});
    QCOMPARE(Shown(), QStringLiteral("a1,c2"));
    QVERIFY(!taken->treeWidget());
    QCOMPARE(ShownRow(taken.get()), QStringLiteral("b2(s10)"));
    const std::unique_ptr<QTreeWidgetItem> second(mTree->topLevelItem(1));
    Slot("RemoveTimeline", {2});
    QCOMPARE(Shown(), QStringLiteral("a1"));
}

void tst_TimelineView::RemovingAnUnknownTimelineDoesNothing()
{
    Slot("RemoveTimeline", {2});
    QCOMPARE(Shown(), QString());
}

static const TestRegistration<tst_TimelineView> TimelineViewRegistration;

#include "tst_TimelineView.moc"
