// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "media/NumberedMedia.h"
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
    void TheCachedRangeIsLookedUpAsThePlayheadMoves();
    void NothingCachedShowsNoLine();
    void AnotherTimelineBringsItsOwnTimes();
    void AScrubHoldsWhatBeganDuringALostOne();
    void BookmarksOfFramesAndRanges();
    void ScrubbingCarriesTheWishForSound();
    void EachTimelineKeepsItsRange();

private:
    /// Opens a movie of @p frames at 48 frames a second in viewer B, and makes it lead.
    bool LeadWithOther(int frames);
    /// Whether the global timeline's cache line covers @p frame of @p count.
    bool ShowsCached(int frame, int count) const;
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

bool tst_PlayerTimelines::ShowsCached(int frame, int count) const
{
    const int x = 100 + (2 * frame - 1) * (Global()->width() - 200) / (2 * count);
    const QColor color(Global()->grab().toImage().pixel(x, 31));
    return color.blue() > color.red() + 30;
}

bool tst_PlayerTimelines::LeadWithOther(int frames)
{
    const QString path = NumberedMedia::Movie(
        QStringLiteral("player-48-%1.mov").arg(frames), frames, QStringLiteral("48"),
        QStringLiteral("-c:v mjpeg -q:v 3 -pix_fmt yuvj420p").split(QLatin1Char(' ')), QSize(320, 180));
    mWindow->OpenFiles({path}, 1);
    const auto* const loader = mWindow->findChild<FrameLoader*>();
    const auto isCached = [&]
    {
        const auto& timeline = mWindow->Playback()->TimelineOf(1);
        const int media = timeline ? mWindow->Playback()->Lanes().Find(timeline->SourceAt(1), 0) : -1;
        return media >= 0 && loader->CachedRanges(media) == std::map<int, int>{{1, frames}};
    };
    if (!QTest::qWaitFor(isCached, 20000))
        return false;
    mWindow->Playback()->SetActiveViewer(1);
    return true;
}

void tst_PlayerTimelines::TheCachedRangeIsLookedUpAsThePlayheadMoves()
{
    QTRY_VERIFY_WITH_TIMEOUT(ShowsCached(60, 60), 10000);
    // Out of date, and no change of the cache is to come.
    QTest::qWait(300);
    Global()->SetCachedRange(0, 0);
    QVERIFY(!ShowsCached(60, 60));
    mWindow->Playback()->SeekFrame(30);
    QVERIFY(ShowsCached(60, 60));
}

void tst_PlayerTimelines::NothingCachedShowsNoLine()
{
    QTRY_VERIFY_WITH_TIMEOUT(ShowsCached(60, 60), 10000);
    QTest::qWait(300);
    mWindow->Playback()->SeekFrame(30);
    const auto firstFrame = [this] { return QColor(Range()->grab().toImage().pixel(54, 29)); };
    QVERIFY(firstFrame().blue() > firstFrame().red() + 30);
    // Without its medium the loader keeps nothing.
    mWindow->findChild<FrameLoader*>()->Close(
        mWindow->Playback()->Lanes().Find(mWindow->Playback()->TimelineOf(0)->SourceAt(1), 0));
    mWindow->Playback()->SeekFrame(31);
    QCOMPARE(firstFrame(), QColor(64, 64, 64));
    QVERIFY(!ShowsCached(1, 60));
}

void tst_PlayerTimelines::AnotherTimelineBringsItsOwnTimes()
{
    // The other medium's cached range ends at the same time, by twice the frames.
    QTRY_VERIFY_WITH_TIMEOUT(ShowsCached(60, 60), 10000);
    QVERIFY(LeadWithOther(119));
    QVERIFY(ShowsCached(110, 119));
    // The other medium has no frame after 21, which begins long before this one's frame 21.
    mWindow->Playback()->SetActiveViewer(0);
    mWindow->Playback()->SeekFrame(21);
    QVERIFY(LeadWithOther(21));
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 21);
    const int playhead = 50 + 20 * (Range()->width() - 100) / 21;
    QVERIFY(QColor(Range()->grab().toImage().pixel(playhead, 36)).red() > 150);
}

void tst_PlayerTimelines::AScrubHoldsWhatBeganDuringALostOne()
{
    PlaybackController* const playback = mWindow->Playback();
    // A scrub whose end is never told.
    playback->SetScrubbing(true);
    playback->Play(1);
    playback->SetScrubbing(true);
    QVERIFY(!playback->IsPlaying());
    playback->SetScrubbing(false);
    QVERIFY(playback->IsPlaying());
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

void tst_PlayerTimelines::EachTimelineKeepsItsRange()
{
    const QString other = NumberedMedia::Movie(
        QStringLiteral("player-48.mov"), 96, QStringLiteral("48"),
        QStringLiteral("-c:v mjpeg -q:v 3 -pix_fmt yuvj420p").split(QLatin1Char(' ')), QSize(320, 180));
    mWindow->OpenFiles({other}, 1);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 10000);
    ProjectTimeline& first = *mWindow->Playback()->TimelineOf(0);
    mWindow->Playback()->SetRange(first.FrameToTime(10), first.FrameToTime(20));
    mWindow->Playback()->SetActiveViewer(1);
    QCOMPARE(Global()->GetRangeEndFrame(), 96);
    mWindow->Playback()->SetActiveViewer(0);
    QCOMPARE(Global()->GetRangeStartFrame(), 10);
    QCOMPARE(Global()->GetRangeEndFrame(), 20);
    QCOMPARE(mWindow->Playback()->Range().last, 20);
}

static const TestRegistration<tst_PlayerTimelines> PlayerTimelinesRegistration;

#include "tst_PlayerTimelines.moc"
