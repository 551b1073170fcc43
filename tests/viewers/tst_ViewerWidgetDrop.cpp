// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "kit/UiGlobals.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QUuid>
#include <QtTest>

/// What may be dropped on the viewers, and what becomes of it.
class tst_ViewerWidgetDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void OneTimelineOfEitherKindIsTaken_data();
    void OneTimelineOfEitherKindIsTaken();
    void FilesAreAlwaysTaken();
    void OtherDataIsRefused();
    void TheHostReadsTheDropInTheSignal();
    void TheViewerUnderThePointIsTold();

private:
    /// Whether enter, move and drop take @p data; they must agree.
    bool Takes(const QMimeData& data);

    std::unique_ptr<ViewerWidget> mViewer;
    QList<int> mIndexes;
};

namespace
{

QByteArray IDs(int count)
{
    QByteArray bytes(3, '\0');
    bytes.append(static_cast<char>(count));
    for (int index = 0; index < count; ++index)
        bytes += QUuid::createUuid().toRfc4122();
    return bytes;
}

} // namespace

void tst_ViewerWidgetDrop::init()
{
    Settings::hardwareAcceleratedPlayback = false;
    mViewer = std::make_unique<ViewerWidget>();
    mViewer->resize(600, 400);
    mIndexes.clear();
    connect(mViewer.get(), &ViewerWidget::ViewerDropEvent, this,
            [this](QDropEvent*, int index) { mIndexes << index; });
}

bool tst_ViewerWidgetDrop::Takes(const QMimeData& data)
{
    mIndexes.clear();
    const QPoint pos(20, 20);
    QDragEnterEvent enter(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setDropAction(Qt::MoveAction);
    enter.ignore();
    QApplication::sendEvent(mViewer.get(), &enter);
    const bool isTaken = enter.isAccepted();
    [&] { QCOMPARE(enter.dropAction(), isTaken ? enter.proposedAction() : Qt::MoveAction); }();
    if (isTaken)
    {
        // Moves and drops come only where the drag has entered.
        QDragMoveEvent move(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        move.ignore();
        QApplication::sendEvent(mViewer.get(), &move);
        [&] { QVERIFY(move.isAccepted()); }();
    }
    QDropEvent drop(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    // Straight to the handler, which a drag that didn't enter never reaches.
    static_cast<QObject*>(mViewer.get())->event(&drop);
    [&]
    {
        QCOMPARE(drop.isAccepted(), isTaken);
        QCOMPARE(mIndexes, isTaken ? QList<int>({0}) : QList<int>());
    }();
    QDragLeaveEvent leave;
    QApplication::sendEvent(mViewer.get(), &leave);
    return isTaken;
}

void tst_ViewerWidgetDrop::OneTimelineOfEitherKindIsTaken_data()
{
    QTest::addColumn<QByteArray>("ids");
    QTest::addColumn<QByteArray>("flags");
    QTest::addColumn<bool>("taken");
    const auto hex = [](const char* text) { return QByteArray::fromHex(text); };
    QTest::newRow("folder") << IDs(1) << hex("0101000000") << false;
    QTest::newRow("source timeline") << IDs(1) << hex("0100010100") << true;
    QTest::newRow("timeline") << IDs(1) << hex("0100000001") << true;
    QTest::newRow("source byte alone") << IDs(1) << hex("0000010000") << true;
    QTest::newRow("timeline byte alone") << IDs(1) << hex("0000000001") << true;
    QTest::newRow("element byte alone") << IDs(1) << hex("0000000100") << false;
    QTest::newRow("another value") << IDs(1) << hex("00000000ff") << true;
    QTest::newRow("mixture") << IDs(1) << hex("0100000000") << false;
    QTest::newRow("two timelines") << IDs(2) << hex("0100000001") << false;
    QTest::newRow("three timelines") << IDs(3) << hex("0100000001") << false;
    QTest::newRow("no ids") << IDs(0) << hex("0100000001") << true;
    QTest::newRow("no bytes") << QByteArray() << hex("0100000001") << true;
    QTest::newRow("forged number") << hex("7fffffff") + QByteArray(16, 'x') << hex("0100000001") << true;
    QTest::newRow("negative number") << hex("ffffffff") + QByteArray(16, 'x') << hex("0100000001") << true;
    QTest::newRow("cut ids") << IDs(2).left(30) << hex("0100000001") << true;
    QTest::newRow("no flags") << IDs(1) << QByteArray() << false;
    QTest::newRow("four flags") << IDs(1) << hex("01010101") << false;
    QTest::newRow("six flags") << IDs(1) << hex("000000000100") << true;
}

void tst_ViewerWidgetDrop::OneTimelineOfEitherKindIsTaken()
{
    QFETCH(QByteArray, ids);
    QFETCH(QByteArray, flags);
    QFETCH(bool, taken);
    QMimeData data;
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, ids);
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, flags);
    QCOMPARE(Takes(data), taken);
}

void tst_ViewerWidgetDrop::FilesAreAlwaysTaken()
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
    QVERIFY(Takes(data));
    data.setUrls({QUrl(QStringLiteral("http://host/x")), QUrl(QStringLiteral("http://host/y"))});
    QVERIFY(Takes(data));
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, IDs(2));
    QVERIFY(Takes(data));
    QMimeData empty;
    empty.setData(QStringLiteral("text/uri-list"), QByteArray());
    QVERIFY(Takes(empty));
}

void tst_ViewerWidgetDrop::OtherDataIsRefused()
{
    QMimeData data;
    QVERIFY(!Takes(data));
    data.setText(QStringLiteral("text"));
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, QByteArray(5, '\1'));
    QVERIFY(!Takes(data));
    data.setData(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE, IDs(1));
    QVERIFY(!Takes(data));
}

void tst_ViewerWidgetDrop::TheHostReadsTheDropInTheSignal()
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
    QDropEvent drop(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    bool wasAccepted = true;
    const QMimeData* read = nullptr;
    QDropEvent* handed = nullptr;
    connect(mViewer.get(), &ViewerWidget::ViewerDropEvent, this,
            [&](QDropEvent* event, int)
            {
                handed = event;
                read = event->mimeData();
                wasAccepted = event->isAccepted();
            });
    static_cast<QObject*>(mViewer.get())->event(&drop);
    QCOMPARE(handed, &drop);
    QCOMPARE(read, static_cast<const QMimeData*>(&data));
    QVERIFY(!wasAccepted);
    QVERIFY(drop.isAccepted());
}

void tst_ViewerWidgetDrop::TheViewerUnderThePointIsTold()
{
    mViewer->show();
    QVERIFY(QTest::qWaitForWindowExposed(mViewer.get()));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
    for (const auto layout : {Single, Horizontal, Vertical})
    {
        mViewer->SetViewerLayout(layout);
        mViewer->grab();
        for (const QPoint& pos : {QPoint(10, 10), QPoint(590, 10), QPoint(10, 390), QPoint(590, 390)})
        {
            mIndexes.clear();
            QDropEvent drop(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            static_cast<QObject*>(mViewer.get())->event(&drop);
            const bool isB = (layout == Horizontal && pos.x() > 300) || (layout == Vertical && pos.y() > 200);
            QCOMPARE(mIndexes, QList<int>({isB ? 1 : 0}));
        }
    }
}

static const TestRegistration<tst_ViewerWidgetDrop> ViewerWidgetDropRegistration;

#include "tst_ViewerWidgetDrop.moc"
