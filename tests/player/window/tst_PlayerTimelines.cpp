// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "timelines/TimelineWidget.h"
#include "viewers/ViewerWidget.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QSignalSpy>
#include <QtTest>

class tst_PlayerTimelines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void APressSeeks();
    void ScrubbingHoldsPlayback();
    void ScrubbingStopsAtTheEnds();
    void TheNewestSeekWins();
    void TheRangeFollowsItsHandles();
    void ThePlayheadFollowsPlayback();
    void PositionsAreKept();
    void TheCachedRangeShows();
    void BookmarksOfFramesAndRanges();
    void ScrubbingCarriesTheWishForSound();

private:
    TimelineWidget* Global() const
    {
        return mWindow->findChild<TimelineWidget*>(QStringLiteral("globalTimeline"));
    }
    TimelineWidget* Range() const
    {
        return mWindow->findChild<TimelineWidget*>(QStringLiteral("rangeTimeline"));
    }
    /// A point of the global timeline whose nearest frame is @p frame of 60.
    QPoint PointOf(int frame) const
    {
        return QPoint(100 + qRound((frame - 1) * (Global()->width() - 200) / 59.0), 30);
    }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerTimelines::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
}

void tst_PlayerTimelines::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerTimelines::APressSeeks()
{
    InputEvents::Press(Global(), PointOf(31));
    InputEvents::Release(Global(), PointOf(31));
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 31);
    QCOMPARE(Global()->GetPlaybackFrame(), 31);
    QCOMPARE(Range()->GetPlaybackFrame(), 31);
    QTRY_COMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), 31);
}

void tst_PlayerTimelines::ScrubbingHoldsPlayback()
{
    mWindow->Playback()->Play(1);
    InputEvents::Press(Global(), PointOf(31));
    QVERIFY(!mWindow->Playback()->IsPlaying());
    InputEvents::Move(Global(), PointOf(40), Qt::LeftButton);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 40);
    InputEvents::Release(Global(), PointOf(40));
    QVERIFY(mWindow->Playback()->IsPlaying());
}

void tst_PlayerTimelines::ScrubbingStopsAtTheEnds()
{
    InputEvents::Press(Global(), PointOf(31));
    InputEvents::Move(Global(), QPoint(Global()->width() - 1, 30), Qt::LeftButton);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 60);
    InputEvents::Move(Global(), QPoint(0, 30), Qt::LeftButton);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 1);
    InputEvents::Release(Global(), QPoint(0, 30));
    QTRY_COMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), 1);
}

void tst_PlayerTimelines::TheNewestSeekWins()
{
    InputEvents::Press(Global(), PointOf(5));
    for (int frame = 6; frame <= 55; frame += 7)
        InputEvents::Move(Global(), PointOf(frame), Qt::LeftButton);
    InputEvents::Move(Global(), PointOf(23), Qt::LeftButton);
    InputEvents::Release(Global(), PointOf(23));
    QTRY_COMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), 23);
    QTest::qWait(300);
    QCOMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), 23);
}

void tst_PlayerTimelines::TheRangeFollowsItsHandles()
{
    // The end handle stands at the right end of the bar.
    const QPoint handle(Global()->width() - 100, 30);
    InputEvents::Press(Global(), handle);
    InputEvents::Move(Global(), PointOf(40), Qt::LeftButton);
    InputEvents::Release(Global(), PointOf(40));
    QCOMPARE(mWindow->Playback()->Range().last, 40);
    QCOMPARE(Range()->GetRangeEndFrame(), 40);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 40);
    QTest::keyClick(mWindow.get(), Qt::Key_Home);
    QTest::keyClick(mWindow.get(), Qt::Key_End);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 40);
    QTest::keyClick(mWindow.get(), Qt::Key_Backslash);
    QCOMPARE(Global()->GetRangeEndFrame(), 60);
}

void tst_PlayerTimelines::ThePlayheadFollowsPlayback()
{
    mWindow->Playback()->Play(1);
    QTRY_VERIFY_WITH_TIMEOUT(Global()->GetPlaybackFrame() > 8, 10000);
    QCOMPARE(Global()->GetPlaybackFrame(), Range()->GetPlaybackFrame());
    QTRY_VERIFY_WITH_TIMEOUT(Global()->GetActualFrameRate() > 1.0, 5000);
}

void tst_PlayerTimelines::PositionsAreKept()
{
    const auto top = [this](QWidget* widget) { return widget->mapTo(mWindow.get(), QPoint(0, 0)).y(); };
    QVERIFY(top(Global()) > top(mWindow->Viewer()));
    QVERIFY(top(Range()) > top(Global()));
    QMetaObject::invokeMethod(Global(), "SetPositionAtTop", Q_ARG(bool, true));
    QTRY_VERIFY(top(Global()) < top(mWindow->Viewer()));
    QVERIFY(top(Range()) > top(mWindow->Viewer()));
    QMetaObject::invokeMethod(Range(), "SetPositionAtTop", Q_ARG(bool, true));
    QTRY_VERIFY(top(Range()) < top(mWindow->Viewer()));
    QVERIFY(top(Range()) > top(Global()));

    Settings::globalTimelineAtTop = false;
    Settings::rangeTimelineAtTop = false;
    QVERIFY(Settings::ReadUserConfig());
    QVERIFY(Settings::globalTimelineAtTop);
    QVERIFY(Settings::rangeTimelineAtTop);
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->show();
    QTRY_VERIFY(top(Global()) < top(mWindow->Viewer()));
    QMetaObject::invokeMethod(Global(), "SetPositionAtTop", Q_ARG(bool, false));
    QTRY_VERIFY(top(Global()) > top(mWindow->Viewer()));
    QMetaObject::invokeMethod(Range(), "SetPositionAtTop", Q_ARG(bool, false));
}

void tst_PlayerTimelines::TheCachedRangeShows()
{
    // Once all is decoded the cache's line runs the whole way, in its blue over the bar's grey.
    const auto middleOfLine = [this]
    { return QColor(Global()->grab().toImage().pixel(Global()->width() / 2, 31)); };
    QTRY_VERIFY_WITH_TIMEOUT(middleOfLine().blue() > middleOfLine().red() + 30, 10000);
}

void tst_PlayerTimelines::BookmarksOfFramesAndRanges()
{
    mWindow->Playback()->SeekFrame(20);
    QTest::keyClick(mWindow.get(), Qt::Key_B);
    mWindow->Playback()->SeekFrame(30);
    QTest::keyClick(mWindow.get(), Qt::Key_B);
    QTest::keyClick(mWindow.get(), Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 20);
    QTest::keyClick(mWindow.get(), Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 30);
    QTest::keyClick(mWindow.get(), Qt::Key_B);
    Bookmarks* const bookmarks = mWindow->Playback()->TimelineOf(0)->GetBookmarks();
    QCOMPARE(bookmarks->GetTimeBookmarks().size(), 1);
    QTest::keyClick(mWindow.get(), Qt::Key_I);
    QTest::keyClick(mWindow.get(), Qt::Key_B, Qt::ShiftModifier);
    QCOMPARE(bookmarks->GetRangeBookmarks().size(), 1);
    QCOMPARE(mWindow->Playback()->Range().first, 30);
    QTest::keyClick(mWindow.get(), Qt::Key_B, Qt::ShiftModifier);
    QVERIFY(bookmarks->GetRangeBookmarks().isEmpty());
}

void tst_PlayerTimelines::ScrubbingCarriesTheWishForSound()
{
    QSignalSpy sought(mWindow->Playback(), SIGNAL(Sought(int64_t, bool)));
    for (const bool wanted : {true, false})
    {
        Settings::audioScrub = wanted;
        InputEvents::Press(Global(), PointOf(10));
        InputEvents::Move(Global(), PointOf(30), Qt::LeftButton);
        InputEvents::Release(Global(), PointOf(30));
        QCOMPARE(sought.size(), 2);
        QCOMPARE(sought.at(0).at(1).toBool(), false);
        QCOMPARE(sought.at(1).at(1).toBool(), wanted);
        QCOMPARE(sought.at(1).at(0).value<int64_t>(), mWindow->Playback()->CurrentTime());
        sought.clear();
    }
}

static const TestRegistration<tst_PlayerTimelines> PlayerTimelinesRegistration;

#include "tst_PlayerTimelines.moc"
