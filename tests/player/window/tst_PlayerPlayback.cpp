// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MessageBar.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

using PlayerProbe::NumberOnScreen;

class tst_PlayerPlayback : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void KeysStepAndGoToTheEnds();
    void SpacePlaysAndPauses();
    void PlaysBackwards();
    void TheTransportBarActs();
    void LoopsWithinTheRange();
    void WithoutALoopItStopsAtTheEnd();
    void SteppedPlaybackShowsEveryFrame();
    void TwoViewersShowTheSameTime();
    void DoubleClickTogglesPlayback();
    void DraggingOverThePictureScrubs();
    void ASecondButtonLeavesTheScrubAsItIs();
    void CtrlWheelZoomsIn();
    void DroppedFilesOpenInTheViewerUnderThem_data();
    void DroppedFilesOpenInTheViewerUnderThem();
    void BadFilesAreReported_data();
    void BadFilesAreReported();
    void TheSamePictureStaysWhenAFileIsBad();

private:
    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    bool WaitForNumber(int number, int viewer = 0);

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerPlayback::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
}

void tst_PlayerPlayback::cleanup()
{
    mWindow.reset();
}

void tst_PlayerPlayback::Key(int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(mWindow.get(), static_cast<Qt::Key>(key), modifiers);
}

bool tst_PlayerPlayback::WaitForNumber(int number, int viewer)
{
    return QTest::qWaitFor([&] { return NumberOnScreen(mWindow.get(), viewer) == number; }, 8000);
}

void tst_PlayerPlayback::KeysStepAndGoToTheEnds()
{
    QCOMPARE(NumberOnScreen(mWindow.get()), 1);
    Key(Qt::Key_Right);
    QVERIFY(WaitForNumber(2));
    Key(Qt::Key_End);
    QVERIFY(WaitForNumber(60));
    Key(Qt::Key_Right);
    QVERIFY(WaitForNumber(60));
    for (int frame = 59; frame > 50; --frame)
    {
        Key(Qt::Key_Left);
        QVERIFY(WaitForNumber(frame));
    }
    Key(Qt::Key_Left, Qt::ShiftModifier);
    QVERIFY(WaitForNumber(27));
    Key(Qt::Key_Home);
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerPlayback::SpacePlaysAndPauses()
{
    Key(Qt::Key_Space);
    QVERIFY(mWindow->Playback()->IsPlaying());
    QTRY_VERIFY_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0) > 10, 10000);
    Key(Qt::Key_Space);
    QVERIFY(!mWindow->Playback()->IsPlaying());
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), mWindow->Playback()->CurrentFrame());
    QVERIFY(WaitForNumber(mWindow->Playback()->CurrentFrame()));
}

void tst_PlayerPlayback::PlaysBackwards()
{
    mWindow->Playback()->SeekFrame(40);
    QVERIFY(WaitForNumber(40));
    Key(Qt::Key_J);
    QTRY_VERIFY_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0) < 30, 10000);
    Key(Qt::Key_Space);
    QVERIFY(WaitForNumber(mWindow->Playback()->CurrentFrame()));
}

void tst_PlayerPlayback::TheTransportBarActs()
{
    const auto click = [this](const char* name)
    {
        QWidget* const button = mWindow->findChild<QWidget*>(QLatin1String(name));
        QVERIFY2(button, name);
        InputEvents::Press(button, button->rect().center());
        InputEvents::Release(button, button->rect().center());
    };
    PlaybackController* const playback = mWindow->Playback();
    click("seekEndButton");
    QVERIFY(WaitForNumber(60));
    click("stepBackwardsButton");
    QVERIFY(WaitForNumber(59));
    click("stepForwardsButton");
    QVERIFY(WaitForNumber(60));
    click("seekStartButton");
    QVERIFY(WaitForNumber(1));
    click("playForwardsButton");
    QVERIFY(playback->IsPlaying());
    QTRY_VERIFY_WITH_TIMEOUT(playback->ShownFrame(0) > 5, 10000);
    click("playForwardsButton");
    QVERIFY(!playback->IsPlaying());
    playback->SeekFrame(40);
    Key(Qt::Key_B);
    playback->SeekFrame(20);
    click("nextBookmarkButton");
    QCOMPARE(playback->CurrentFrame(), 40);
    QSignalSpy states(playback, SIGNAL(StateChanged(bool, bool)));
    click("playBackwardsButton");
    QVERIFY(playback->IsPlaying());
    QTRY_VERIFY_WITH_TIMEOUT(playback->ShownFrame(0) < 38, 10000);
    click("playForwardsButton");
    QVERIFY(playback->IsPlaying());
    click("playForwardsButton");
    QVERIFY(!playback->IsPlaying());
    QCOMPARE(states.size(), 3);
    QCOMPARE(states.at(0), (QList<QVariant>{true, false}));
    QCOMPARE(states.at(1), (QList<QVariant>{true, true}));
    QCOMPARE(states.at(2).first().toBool(), false);
    playback->SeekFrame(50);
    click("previousBookmarkButton");
    QCOMPARE(playback->CurrentFrame(), 40);
}

void tst_PlayerPlayback::LoopsWithinTheRange()
{
    ProjectTimeline& timeline = *mWindow->Playback()->TimelineOf(0);
    mWindow->Playback()->SetRange(timeline.FrameToTime(10), timeline.FrameToTime(16));
    QSet<int> seen;
    connect(mWindow->Playback(), &PlaybackController::PictureReady, mWindow.get(),
            [&](int, int frame, const ReadResult&) { seen << frame; });
    Key(Qt::Key_L);
    QTRY_VERIFY_WITH_TIMEOUT(seen.size() >= 6, 10000);
    QTest::qWait(400);
    Key(Qt::Key_Space);
    for (const int frame : seen)
        QVERIFY2(frame >= 10 && frame <= 16, QByteArray::number(frame));
}

void tst_PlayerPlayback::WithoutALoopItStopsAtTheEnd()
{
    Settings::loopType = NoLoop;
    mWindow->Playback()->SeekFrame(50);
    Key(Qt::Key_L);
    QTRY_VERIFY_WITH_TIMEOUT(!mWindow->Playback()->IsPlaying(), 10000);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 60);
    QVERIFY(WaitForNumber(60));
    // From the end, playing begins anew.
    Key(Qt::Key_L);
    QVERIFY(mWindow->Playback()->CurrentFrame() < 20);
}

void tst_PlayerPlayback::SteppedPlaybackShowsEveryFrame()
{
    Settings::loopType = NoLoop;
    mWindow->Playback()->SetStepped(true);
    mWindow->Playback()->SetSpeed(8.0f);
    QList<int> shown;
    connect(mWindow->Playback(), &PlaybackController::PictureReady, mWindow.get(),
            [&](int, int frame, const ReadResult&) { shown << frame; });
    Key(Qt::Key_L);
    QTRY_VERIFY_WITH_TIMEOUT(!mWindow->Playback()->IsPlaying(), 20000);
    QList<int> expected;
    for (int frame = 2; frame <= 60; ++frame)
        expected << frame;
    QCOMPARE(shown, expected);
}

void tst_PlayerPlayback::TwoViewersShowTheSameTime()
{
    const QString other = NumberedMedia::Movie(
        QStringLiteral("player-48.mov"), 96, QStringLiteral("48"),
        QStringLiteral("-c:v mjpeg -q:v 3 -pix_fmt yuvj420p").split(QLatin1Char(' ')), QSize(320, 180));
    QVERIFY(!other.isEmpty());
    mWindow->OpenFiles({other}, 1);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 10000);
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Horizontal);
    mWindow->Playback()->SeekFrame(21);
    QVERIFY(WaitForNumber(21, 0));
    QVERIFY(WaitForNumber(41, 1));
    Key(Qt::Key_3);
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Vertical);
    QVERIFY(WaitForNumber(21, 0));
    QVERIFY(WaitForNumber(41, 1));
    // The other viewer leads: a step is one of its own frames.
    Key(Qt::Key_Tab);
    QCOMPARE(mWindow->Playback()->ActiveViewer(), 1);
    Key(Qt::Key_Right);
    QVERIFY(WaitForNumber(42, 1));
    QVERIFY(WaitForNumber(21, 0));
}

void tst_PlayerPlayback::DoubleClickTogglesPlayback()
{
    QTest::mouseDClick(mWindow->Viewer(), Qt::LeftButton);
    QVERIFY(mWindow->Playback()->IsPlaying());
    QTest::mouseDClick(mWindow->Viewer(), Qt::LeftButton);
    QVERIFY(!mWindow->Playback()->IsPlaying());
}

void tst_PlayerPlayback::DraggingOverThePictureScrubs()
{
    ViewerWidget* const viewer = mWindow->Viewer();
    mWindow->Playback()->Play(1);
    InputEvents::Press(viewer, QPoint(200, 200));
    QVERIFY(!mWindow->Playback()->IsPlaying());
    mWindow->Playback()->SeekFrame(20);
    InputEvents::Move(viewer, QPoint(320, 200), Qt::LeftButton);
    const int scrubbed = mWindow->Playback()->CurrentFrame();
    QVERIFY(scrubbed > 25);
    InputEvents::Move(viewer, QPoint(899, 200), Qt::LeftButton);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 60);
    InputEvents::Move(viewer, QPoint(240, 200), Qt::LeftButton);
    QVERIFY(mWindow->Playback()->CurrentFrame() < scrubbed);
    InputEvents::Release(viewer, QPoint(240, 200));
    QVERIFY(mWindow->Playback()->IsPlaying());
}

void tst_PlayerPlayback::ASecondButtonLeavesTheScrubAsItIs()
{
    ViewerWidget* const viewer = mWindow->Viewer();
    InputEvents::Press(viewer, QPoint(200, 200));
    InputEvents::Move(viewer, QPoint(320, 200), Qt::LeftButton);
    const int scrubbed = mWindow->Playback()->CurrentFrame();
    QVERIFY(scrubbed > 25);
    QMouseEvent press(QEvent::MouseButtonPress, QPoint(320, 200), viewer->mapToGlobal(QPoint(320, 200)),
                      Qt::MiddleButton, Qt::LeftButton | Qt::MiddleButton, Qt::NoModifier);
    QApplication::sendEvent(viewer, &press);
    InputEvents::Move(viewer, QPoint(321, 200), Qt::LeftButton);
    QVERIFY(std::abs(mWindow->Playback()->CurrentFrame() - scrubbed) <= 1);
    InputEvents::Release(viewer, QPoint(321, 200));
}

void tst_PlayerPlayback::CtrlWheelZoomsIn()
{
    ViewerWidget* const viewer = mWindow->Viewer();
    InputEvents::Wheel(viewer, QPoint(200, 200), 120, Qt::ControlModifier);
    InputEvents::Wheel(viewer, QPoint(200, 200), 120, Qt::ControlModifier);
    const QWidget* const backEnd = viewer->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(backEnd->width(), qRound(viewer->width() * 1.2));
    Key(Qt::Key_F);
    QCOMPARE(backEnd->width(), viewer->width());
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerPlayback::DroppedFilesOpenInTheViewerUnderThem_data()
{
    QTest::addColumn<bool>("reachesViewer");
    QTest::newRow("by the viewer") << true;
    QTest::newRow("by the window") << false;
}

void tst_PlayerPlayback::DroppedFilesOpenInTheViewerUnderThem()
{
    QFETCH(bool, reachesViewer);
    mWindow->SetLayout(Horizontal);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(PlayerProbe::SampleMovie())});
    QWidget* const receiver = reachesViewer ? static_cast<QWidget*>(mWindow->Viewer()) : mWindow.get();
    const QPoint right =
        receiver->mapFromGlobal(mWindow->Viewer()->mapToGlobal(QPoint(mWindow->Viewer()->width() - 40, 100)));
    QDragEnterEvent enter(right, Qt::CopyAction, &data, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(receiver, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(right, Qt::CopyAction, &data, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(receiver, &drop);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 10000);
    QVERIFY(WaitForNumber(1, 1));
}

void tst_PlayerPlayback::BadFilesAreReported_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("exists");
    QTest::newRow("missing") << QByteArray() << false;
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("text") << QByteArray("This is no movie.\n").repeated(200) << true;
}

void tst_PlayerPlayback::BadFilesAreReported()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, exists);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("bad.mp4"));
    if (exists)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QSignalSpy logged(Logger::GetInstance(), SIGNAL(ErrorLogged(QString)));
    mWindow->OpenFiles({path}, 0);
    QTRY_COMPARE_WITH_TIMEOUT(logged.size(), 1, 10000);
    const QString error = logged.first().first().toString();
    QVERIFY2(error.contains(path), qPrintable(error));
    const MessageBar* const bar = mWindow->findChild<MessageBar*>();
    QVERIFY(bar->isVisible());
    QVERIFY(bar->Message().contains(path));
    QVERIFY(!mWindow->GetProject()->IsReading());
}

void tst_PlayerPlayback::TheSamePictureStaysWhenAFileIsBad()
{
    mWindow->OpenFiles({QStringLiteral("/nowhere/at/all.mov")}, 0);
    QTRY_VERIFY_WITH_TIMEOUT(mWindow->findChild<MessageBar*>()->isVisible(), 10000);
    mWindow->findChild<MessageBar*>()->Clear();
    QVERIFY(WaitForNumber(1));
}

static const TestRegistration<tst_PlayerPlayback> PlayerPlaybackRegistration;

#include "tst_PlayerPlayback.moc"
