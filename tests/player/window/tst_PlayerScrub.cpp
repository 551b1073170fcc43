// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QScreen>
#include <QtTest>

#include <memory>

/// Scrubbing over the picture to the edge of the screen.
class tst_PlayerScrub : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ScrubbingGoesOnAtTheOtherEdge_data();
    void ScrubbingGoesOnAtTheOtherEdge();
};

void tst_PlayerScrub::ScrubbingGoesOnAtTheOtherEdge_data()
{
    QTest::addColumn<bool>("isEndless");
    QTest::addColumn<bool>("isLeft");
    QTest::newRow("endless, left") << true << true;
    QTest::newRow("endless, right") << true << false;
    QTest::newRow("ends at the left") << false << true;
    QTest::newRow("ends at the right") << false << false;
}

void tst_PlayerScrub::ScrubbingGoesOnAtTheOtherEdge()
{
    QFETCH(bool, isEndless);
    QFETCH(bool, isLeft);
    constexpr int Way = 40;
    Settings::RestoreDefaults();
    Settings::endlessMouseScurb = isEndless;
    const auto window = std::make_unique<PlayerWindow>();
    const int right = QGuiApplication::primaryScreen()->geometry().right();
    QVERIFY(PlayerProbe::ShowWith(window.get(), PlayerProbe::SampleMovie()));
    window->move(isLeft ? 0 : right - window->width(), 60);
    ViewerWidget* const viewer = window->Viewer();
    window->Playback()->SeekFrame(30);
    QTRY_COMPARE(window->Playback()->ShownFrame(0), 30);

    const int y = viewer->mapToGlobal(QPoint(0, viewer->height() / 2)).y();
    const auto local = [&](int x) { return viewer->mapFromGlobal(QPoint(x, y)); };
    const int edge = isLeft ? 0 : right;
    const int inward = isLeft ? 1 : -1;
    InputEvents::Press(viewer, local(edge + inward * Way));
    InputEvents::Move(viewer, local(edge), Qt::LeftButton);
    const int atEdge = window->Playback()->CurrentFrame();
    QVERIFY2(isLeft ? atEdge < 30 : atEdge > 30, qPrintable(QString::number(atEdge)));
    if (!isEndless)
    {
        QCOMPARE(QCursor::pos().x(), edge);
        InputEvents::Release(viewer, local(edge));
        return;
    }
    const int other = isLeft ? right - 1 : 1;
    QTRY_COMPARE(QCursor::pos().x(), other);
    // A move from before, still on its way, is no way that the hand has gone.
    InputEvents::Move(viewer, local(other), Qt::LeftButton);
    QCOMPARE(window->Playback()->CurrentFrame(), atEdge);
    InputEvents::Move(viewer, local(other - inward * Way), Qt::LeftButton);
    const int beyond = window->Playback()->CurrentFrame();
    // As far again as up to the edge.
    QVERIFY2(std::abs((beyond - atEdge) - (atEdge - 30)) <= 1,
             qPrintable(QStringLiteral("30, %1, %2").arg(atEdge).arg(beyond)));
    InputEvents::Release(viewer, local(other - inward * Way));
}

static const TestRegistration<tst_PlayerScrub> PlayerScrubRegistration;

#include "tst_PlayerScrub.moc"
