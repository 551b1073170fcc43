// SPDX-License-Identifier: MIT
#include "kit/DragPayload.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/FakeElements.h"
#include "views/TimelineListView.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QTimer>
#include <QtTest>

/// Drags that go the whole way through the window system, from the press to the drop.
class tst_TimelineListDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void RowsAreReordered();
    void RowsAreDraggedToTheEnd();
    void PayloadHoldsTheIDsAlone();
    void LineShowsWhileTheDragIsOver();
    void EscapeCancels();
    void NothingSelectedDragsNothing();

private:
    /// Drags from @p from over @p stops and lets go at the last of them, all places of the list's viewport.
    void Drag(const QPoint& from, const QList<QPoint>& stops);
    QPoint In(int row, double share) const;
    QString Names() const;

    std::shared_ptr<FakeElementTimeline> mTimeline;
    std::unique_ptr<TimelineListView> mView;
    TimelineListViewTreeWidget* mTree = nullptr;
};

namespace
{

/// Keeps what a drag brings to the viewport, and leaves the event to it.
class DragRecorder : public QObject
{
public:
    explicit DragRecorder(QWidget* viewport) { viewport->installEventFilter(this); }

    QStringList formats;
    QByteArray bytes;
    QObject* source = nullptr;
    Qt::DropActions actions = Qt::IgnoreAction;
    int enters = 0;
    int drops = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::DragEnter)
        {
            ++enters;
            const auto* const enter = static_cast<QDragEnterEvent*>(event);
            formats = enter->mimeData()->formats();
            bytes = enter->mimeData()->data(QStringLiteral("merovane/element-uuid"));
            source = enter->source();
            actions = enter->possibleActions();
        }
        if (event->type() == QEvent::Drop)
            ++drops;
        return false;
    }
};

} // namespace

void tst_TimelineListDrag::init()
{
    mTimeline = std::make_shared<FakeElementTimeline>(6);
    mView = std::make_unique<TimelineListView>();
    mTree = mView->findChild<TimelineListViewTreeWidget*>();
    mView->SetTimeline(mTimeline);
    mView->setGeometry(60, 60, 240, 260);
    mView->show();
    mView->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mView.get()));
    // A host that applies the pairs one after another.
    connect(mView.get(), &TimelineListView::MoveElementsRequested, mView.get(),
            [this](const QList<QUuid>& ids, const QList<int>& indices)
            {
                auto& elements = mTimeline->elements;
                for (int pair = 0; pair < ids.size(); ++pair)
                {
                    int from = 0;
                    while (elements.at(from)->GetID() != ids.at(pair))
                        ++from;
                    const int target = indices.at(pair) < 0 ? elements.size() : indices.at(pair);
                    elements.move(from, target > from ? target - 1 : target);
                }
                mView->SetTimeline(mTimeline);
            });
}

void tst_TimelineListDrag::cleanup()
{
    mView.reset();
    mTimeline.reset();
}

QPoint tst_TimelineListDrag::In(int row, double share) const
{
    const QRect rect = mTree->visualItemRect(mTree->topLevelItem(row));
    return {60, rect.top() + int(share * rect.height())};
}

QString tst_TimelineListDrag::Names() const
{
    QString all;
    for (int row = 0; row < mTree->topLevelItemCount(); ++row)
        all += mTree->topLevelItem(row)->text(0).mid(1);
    return all;
}

void tst_TimelineListDrag::Drag(const QPoint& from, const QList<QPoint>& stops)
{
    QWidget* const viewport = mTree->viewport();
    // The drag has an event loop of its own, in which these run.
    int delay = 150;
    for (const QPoint& stop : stops)
    {
        for (const QPoint& step : {stop - QPoint(1, 0), stop})
        {
            QTimer::singleShot(delay, viewport,
                               [viewport, step] { InputEvents::Move(viewport, step, Qt::LeftButton); });
            delay += 60;
        }
    }
    bool isOver = false;
    QTimer::singleShot(delay, viewport,
                       [&isOver, viewport, stops]
                       {
                           InputEvents::Release(viewport, stops.last());
                           isOver = true;
                       });
    InputEvents::Press(viewport, from);
    InputEvents::Move(viewport, from + QPoint(4, 2), Qt::LeftButton);
    InputEvents::Move(viewport, from + QPoint(QApplication::startDragDistance() + 8, 2), Qt::LeftButton);
    QVERIFY(QTest::qWaitFor([&isOver] { return isOver; }, 5000));
}

void tst_TimelineListDrag::RowsAreReordered()
{
    mTree->SelectItems({NumberedID(5), NumberedID(6)});
    CallLog log(mView.get());
    Drag(In(4, 0.5), {In(3, 0.5), In(1, 0.2)});
    QCOMPARE(log.Take(), QStringList{"MoveElementsRequested([#6 #5], [1 1])"});
    QCOMPARE(Names(), QStringLiteral("045123"));
    QCOMPARE(mTree->selectedItems().size(), 2);
    QVERIFY(mTree->topLevelItem(1)->isSelected() && mTree->topLevelItem(2)->isSelected());
    QVERIFY(mTree->hasFocus());
}

void tst_TimelineListDrag::RowsAreDraggedToTheEnd()
{
    mTree->SelectItems({NumberedID(1), NumberedID(3)});
    CallLog log(mView.get());
    Drag(In(2, 0.5), {In(4, 0.5), In(5, 1.8)});
    QCOMPARE(log.Take(), QStringList{"MoveElementsRequested([#1 #3], [-1 -1])"});
    QCOMPARE(Names(), QStringLiteral("134502"));
}

void tst_TimelineListDrag::PayloadHoldsTheIDsAlone()
{
    DragRecorder recorder(mTree->viewport());
    mTree->SelectItems({NumberedID(5), NumberedID(2)});
    Drag(In(1, 0.5), {In(3, 0.5)});
    QVERIFY(recorder.enters > 0);
    QCOMPARE(recorder.drops, 1);
    QCOMPARE(recorder.formats, QStringList{"merovane/element-uuid"});
    QCOMPARE(recorder.bytes, DragPayload::WriteIDs({NumberedID(2), NumberedID(5)}));
    QCOMPARE(recorder.bytes.size(), 4 + 2 * 16);
    QCOMPARE(recorder.source, mTree);
    QCOMPARE(recorder.actions, Qt::DropActions(Qt::MoveAction));
    // The drag is gone with its end.
    QTRY_VERIFY(mTree->findChildren<QDrag*>().isEmpty());
}

void tst_TimelineListDrag::LineShowsWhileTheDragIsOver()
{
    mTree->SelectItems({NumberedID(1)});
    const int y = mTree->visualItemRect(mTree->topLevelItem(4)).top();
    QRgb during = 0;
    QTimer::singleShot(320, mTree,
                       [&] { during = mTree->viewport()->grab().toImage().pixel(mTree->width() - 20, y); });
    const QRgb before = mTree->viewport()->grab().toImage().pixel(mTree->width() - 20, y);
    Drag(In(0, 0.5), {In(4, 0.2), In(4, 0.3), In(4, 0.1)});
    QCOMPARE(QColor(during), mTree->viewport()->palette().color(mTree->viewport()->foregroundRole()));
    QVERIFY(before != during);
}

void tst_TimelineListDrag::EscapeCancels()
{
    mTree->SelectItems({NumberedID(1)});
    CallLog log(mView.get());
    QTimer::singleShot(200, mTree, [this] { QTest::keyClick(mView->windowHandle(), Qt::Key_Escape); });
    Drag(In(0, 0.5), {In(4, 0.2), In(4, 0.3)});
    QVERIFY(log.Take().isEmpty());
    QCOMPARE(Names(), QStringLiteral("012345"));
}

void tst_TimelineListDrag::NothingSelectedDragsNothing()
{
    DragRecorder recorder(mTree->viewport());
    CallLog log(mView.get());
    Drag(In(5, 2.5), {In(3, 0.5), In(1, 0.5)});
    QCOMPARE(recorder.enters, 0);
    QVERIFY(log.Take().isEmpty());
    QVERIFY(mTree->selectedItems().isEmpty());
}

static const TestRegistration<tst_TimelineListDrag> TimelineListDragRegistration;

#include "tst_TimelineListDrag.moc"
