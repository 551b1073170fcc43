// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "timelines/FakeTimeline.h"
#include "timelines/TimelineFormulas.h"
#include "timelines/TimelineProbe.h"

#include <QApplication>
#include <QtTest>

#include <cmath>

#include <limits>

class tst_GlobalTimelineWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void StartsEmpty();
    void GeometryFollowsTheWidth();
    void DisplayTypeComesFromTheSettings_data();
    void DisplayTypeComesFromTheSettings();
    void TakesElementsAndEnds();
    void UpdateElementInfosKeepsTheRangeStart();
    void EmptyTimelineClearsPositionRangeAndRates();
    void PlaybackTimeWithinTheFrameChangesNothing();
    void PlaybackTimeRepaintsAtOnce();
    void RangeIsCutToTheTimeline();
    void RangeIsRecomputedWithoutAChange();
    void CachedRangeIsComparedFirst();
    void RatesAndMultiplierRepaintOnChangeAlone();
    void BadRatesAreTakenSafely();
    void SteppedPlaybackDoesNotRepaint();
    void ReadOutsComeFromTheTimeline();
    void HandleRectsFollowTheRange();
    void HandleRectsStayWithoutFrames();
    void LabelsOfEachDisplayType();
    void ShowingWritesTheSettings();
    void SettingTheDisplayTypeWritesTheSettings();
    void TimerServesPendingUpdates_data();
    void TimerServesPendingUpdates();
    void TimerRunsOnItsOwn();

private:
    /// Forgets a pending update and the paints of @p probe.
    static void Settle(GlobalProbe& probe);

    std::shared_ptr<FakeTimeline> mTimeline;
};

void tst_GlobalTimelineWidget::init()
{
    Settings::RestoreDefaults();
    // No tick disturbs a test that does not ask for one.
    Settings::timelineUpdateInterval = 1000000;
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{30, 20, 50}, 24, 5000000);
}

void tst_GlobalTimelineWidget::Settle(GlobalProbe& probe)
{
    QApplication::processEvents();
    probe.TakePaints();
    probe.mUpdatePending = false;
}

void tst_GlobalTimelineWidget::StartsEmpty()
{
    GlobalProbe probe;
    QCOMPARE(probe.mPlaybackFrame, 0);
    QCOMPARE(probe.mFrameCount, 0);
    QCOMPARE(probe.mSpeedMultiplier, 1.0f);
    QCOMPARE(probe.mRangeRect, QRect());
    QCOMPARE(probe.GetPlaybackTimeAtOffset(3), int64_t(0));
    QCOMPARE(probe.mUpdateTimer.isActive(), true);
    QCOMPARE(probe.mUpdateTimer.interval(), 1000000);
    QCOMPARE(probe.PixelToFrame(300), 0);
    probe.SetPlaybackTime(77);
    QCOMPARE(probe.mPlaybackFrame, 1);
    QCOMPARE(probe.mPlaybackTime, int64_t(0));
    probe.mDisplayType = TimeCode;
    QCOMPARE(probe.FormatFrame(1), QStringLiteral("00:00:00"));
    probe.mDisplayType = Seconds;
    QCOMPARE(probe.FormatFrame(1), QStringLiteral("0.00"));
}

void tst_GlobalTimelineWidget::GeometryFollowsTheWidth()
{
    for (const int width : {0, 1, 150, 200, 900, 1600})
    {
        GlobalProbe probe;
        probe.resize(width, 40);
        probe.grab();
        if (width == 0)
            continue;
        QCOMPARE(probe.mLeftPanelX, 0);
        QCOMPARE(probe.mLeftPanelWidth, 90);
        QCOMPARE(probe.mBarAreaX, 100);
        QCOMPARE(probe.mBarAreaWidth, width - 200);
        QCOMPARE(probe.mRightPanelX, width - 90);
        QCOMPARE(probe.mRightPanelWidth, 100);
        QCOMPARE(probe.mLabelRowY, 0);
        QCOMPARE(probe.mBodyY, 20);
        QCOMPARE(probe.mBodyHeight, 20);
        QCOMPARE(probe.mBarX, 100);
        QCOMPARE(probe.mBarWidth, width - 200);
        QCOMPARE(probe.mElementStripY, 27);
        QCOMPARE(probe.mScrubBarY, 26);
        QCOMPARE(probe.mCacheBarY, 30);
        QCOMPARE(probe.mBarStartX, 100);
        QCOMPARE(probe.mBarEndX, width - 100);
        QCOMPARE(probe.mHandleY, 25);
        QCOMPARE(probe.mPlayheadY, 25);
        QCOMPARE(probe.mLabelOffsetX, -100);
    }
}

void tst_GlobalTimelineWidget::DisplayTypeComesFromTheSettings_data()
{
    QTest::addColumn<int>("setting");
    QTest::addColumn<int>("type");
    for (int type = 0; type < 4; ++type)
        QTest::addRow("%d", type) << type << type;
    QTest::newRow("too small") << -5 << 0;
    QTest::newRow("too large") << 99 << 3;
}

void tst_GlobalTimelineWidget::DisplayTypeComesFromTheSettings()
{
    QFETCH(int, setting);
    Settings::globalTimelineDisplayType = setting;
    const GlobalProbe probe;
    QTEST(int(probe.mDisplayType), "type");
    QCOMPARE(Settings::globalTimelineDisplayType, setting);
}

void tst_GlobalTimelineWidget::TakesElementsAndEnds()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    QCOMPARE(probe.mElementInfos.size(), 3);
    QCOMPARE(probe.mFrameCount, 100);
    QCOMPARE(probe.mStartTime, int64_t(5000000));
    QCOMPARE(probe.mEndTime, mTimeline->endTime);
    QCOMPARE(probe.mRangeLimitTime, mTimeline->endTime);
    QCOMPARE(probe.mRangeEndTime, mTimeline->endTime);
    QCOMPARE(probe.mRangeStartTime, int64_t(0));
    QCOMPARE(probe.mRangeEndFrame, 0);
    // The list is a copy.
    mTimeline->elements.clear();
    QCOMPARE(probe.mElementInfos.size(), 3);
    for (ElementInfo& element : probe.mElementInfos)
        element.frameCount = std::numeric_limits<int>::max();
    mTimeline->elements = probe.mElementInfos;
    probe.UpdateElementInfos();
    QCOMPARE(probe.mFrameCount, Formula::Low32(3LL * std::numeric_limits<int>::max()));
}

void tst_GlobalTimelineWidget::UpdateElementInfosKeepsTheRangeStart()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(10), mTimeline->frameToTime(20));
    probe.SetPlaybackTime(mTimeline->frameToTime(15));
    probe.UpdateElementInfos();
    QCOMPARE(probe.mRangeStartTime, mTimeline->frameToTime(10));
    QCOMPARE(probe.mRangeEndTime, mTimeline->endTime);
    QCOMPARE(probe.mRangeStartFrame, 10);
    QCOMPARE(probe.mRangeEndFrame, 20);
    QCOMPARE(probe.mPlaybackFrame, 15);
}

void tst_GlobalTimelineWidget::EmptyTimelineClearsPositionRangeAndRates()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(10), mTimeline->frameToTime(20));
    probe.SetPlaybackTime(mTimeline->frameToTime(15));
    probe.SetDesiredFrameRate(24);
    probe.SetActualFrameRate(23);
    probe.SetTimeline(std::make_shared<FakeTimeline>());
    QCOMPARE(probe.mPlaybackTime, int64_t(0));
    QCOMPARE(probe.mPlaybackFrame, 0);
    QCOMPARE(probe.mRangeStartTime, int64_t(0));
    QCOMPARE(probe.mRangeEndTime, int64_t(0));
    QCOMPARE(probe.mRangeStartFrame, 10);
    QCOMPARE(probe.mDesiredFrameRate, 0.0f);
    QCOMPARE(probe.mActualFrameRate, 0.0f);
    QCOMPARE(probe.mEndTime, int64_t(0));
}

void tst_GlobalTimelineWidget::PlaybackTimeWithinTheFrameChangesNothing()
{
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackTime(mTimeline->frameToTime(7) + 30000);
    QCOMPARE(probe.mPlaybackTime, mTimeline->frameToTime(7));
    Settle(probe);
    // Another clock for the same frame: even the stored time stays.
    mTimeline->frameToTime = [](int) { return int64_t(1); };
    probe.SetPlaybackTime(mTimeline->startTime + 6 * 41667 + 100);
    QCOMPARE(probe.mPlaybackFrame, 7);
    QVERIFY(probe.mPlaybackTime != 1);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 0);
    QVERIFY(!probe.mUpdatePending);
}

void tst_GlobalTimelineWidget::PlaybackTimeRepaintsAtOnce()
{
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    probe.SetTimeline(mTimeline);
    Settle(probe);
    probe.SetPlaybackTime(mTimeline->frameToTime(8));
    QVERIFY(!probe.mUpdatePending);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 1);
}

void tst_GlobalTimelineWidget::RangeIsCutToTheTimeline()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(0, std::numeric_limits<int64_t>::max());
    QCOMPARE(probe.mRangeStartTime, mTimeline->startTime);
    QCOMPARE(probe.mRangeEndTime, mTimeline->endTime);
    QCOMPARE(probe.mRangeStartFrame, 1);
    QCOMPARE(probe.mRangeEndFrame, 100);
    // End before start is taken as it stands.
    probe.SetPlaybackRange(mTimeline->frameToTime(50), mTimeline->frameToTime(40));
    QCOMPARE(probe.mRangeStartFrame, 50);
    QCOMPARE(probe.mRangeEndFrame, 40);
}

void tst_GlobalTimelineWidget::RangeIsRecomputedWithoutAChange()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(10), mTimeline->frameToTime(20));
    probe.mUpdatePending = false;
    mTimeline->timeToFrame = [](int64_t) { return 3; };
    probe.SetPlaybackRange(mTimeline->frameToTime(10), mTimeline->frameToTime(20));
    QCOMPARE(probe.mRangeStartFrame, 3);
    QVERIFY(probe.mUpdatePending);
}

void tst_GlobalTimelineWidget::CachedRangeIsComparedFirst()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.mUpdatePending = false;
    probe.SetCachedRange(mTimeline->frameToTime(10), mTimeline->frameToTime(20));
    QCOMPARE(probe.mCacheStartFrame, 10);
    QCOMPARE(probe.mCacheEndFrame, 20);
    QVERIFY(probe.mUpdatePending);
    probe.mUpdatePending = false;
    mTimeline->timeToFrame = [](int64_t) { return 3; };
    probe.SetCachedRange(mTimeline->frameToTime(10), mTimeline->frameToTime(20));
    QCOMPARE(probe.mCacheStartFrame, 10);
    QVERIFY(!probe.mUpdatePending);
    probe.SetCachedRange(mTimeline->frameToTime(10), mTimeline->frameToTime(21));
    QCOMPARE(probe.mCacheStartFrame, 3);
    QVERIFY(probe.mUpdatePending);
}

void tst_GlobalTimelineWidget::RatesAndMultiplierRepaintOnChangeAlone()
{
    GlobalProbe probe;
    const auto pending = [&probe] { return std::exchange(probe.mUpdatePending, false); };
    pending();
    probe.SetDesiredFrameRate(24);
    QVERIFY(pending());
    probe.SetDesiredFrameRate(24);
    QVERIFY(!pending());
    probe.SetActualFrameRate(23.5f);
    QVERIFY(pending());
    QCOMPARE(probe.GetActualFrameRate(), 23.5);
    probe.SetActualFrameRate(23.5f);
    QVERIFY(!pending());
    probe.SetPlaybackSpeedMultiplier(1.0f);
    QVERIFY(!pending());
    probe.SetPlaybackSpeedMultiplier(2.0f);
    QVERIFY(pending());
    QCOMPARE(probe.mSpeedMultiplier, 2.0f);
    QVERIFY(QMetaObject::invokeMethod(&probe, "DeferredUpdate"));
    QVERIFY(pending());
}

void tst_GlobalTimelineWidget::BadRatesAreTakenSafely()
{
    GlobalProbe probe;
    probe.resize(500, 40);
    probe.SetTimeline(mTimeline);
    probe.SetActualFrameRate(10);
    probe.SetActualFrameRate(-1);
    QCOMPARE(probe.mActualFrameRate, 0.0f);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    probe.SetActualFrameRate(nan);
    QCOMPARE(probe.mActualFrameRate, 0.0f);
    probe.mDisplayType = TimeCode;
    for (const float rate : {0.0f, -24.0f, nan, std::numeric_limits<float>::infinity(), 1e30f, 0.001f})
    {
        probe.SetDesiredFrameRate(rate);
        probe.SetPlaybackSpeedMultiplier(rate);
        QCOMPARE(probe.FormatFrame(31), rate > 1 ? QStringLiteral("00:00:30") : QStringLiteral("00:30:00"));
        QVERIFY(!probe.grab().isNull());
    }
}

void tst_GlobalTimelineWidget::SteppedPlaybackDoesNotRepaint()
{
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    Settle(probe);
    probe.SetSteppedPlaybackEnabled(true);
    QVERIFY(probe.mSteppedPlayback);
    QVERIFY(!probe.mUpdatePending);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 0);
}

void tst_GlobalTimelineWidget::ReadOutsComeFromTheTimeline()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(10) + 5, mTimeline->frameToTime(20) + 5);
    probe.SetPlaybackTime(mTimeline->frameToTime(15));
    QCOMPARE(probe.GetPlaybackFrame(), 15);
    QCOMPARE(probe.GetRangeStartFrame(), 10);
    QCOMPARE(probe.GetRangeEndFrame(), 20);
    QCOMPARE(probe.GetRangeStartTime(), mTimeline->frameToTime(10));
    QCOMPARE(probe.GetRangeEndTime(), mTimeline->frameToTime(20));
    for (const int offset : {-20, -1, 0, 1, 500})
        QCOMPARE(probe.GetPlaybackTimeAtOffset(offset), mTimeline->frameToTime(15 + offset));
    mTimeline.reset();
    QCOMPARE(probe.GetRangeEndTime(), int64_t(0));
    QCOMPARE(probe.GetRangeEndFrame(), 20);
}

void tst_GlobalTimelineWidget::HandleRectsFollowTheRange()
{
    GlobalProbe probe;
    probe.resize(700, 40);
    probe.grab();
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(11), mTimeline->frameToTime(30));
    // 5 pixels a frame: the range runs from 150 to 250.
    QRect expected;
    expected.setCoords(146, 24, 151, 35);
    QCOMPARE(probe.mRangeStartRect, expected);
    expected.setCoords(248, 24, 253, 35);
    QCOMPARE(probe.mRangeEndRect, expected);
    expected.setCoords(248, 24, 151, 35);
    QCOMPARE(probe.mRangeRect, expected);
    for (int x = 100; x < 300; ++x)
    {
        QCOMPARE(probe.HitsRange(QPoint(x, 30)), x >= 151 && x <= 248);
        QCOMPARE(probe.HitsRangeStart(QPoint(x, 30)), x >= 146 && x <= 151);
        QCOMPARE(probe.HitsRangeEnd(QPoint(x, 35)), x >= 248 && x <= 253);
        QVERIFY(!probe.HitsRange(QPoint(x, 23)));
        QVERIFY(!probe.HitsRangeStart(QPoint(x, 36)));
    }
    // A range that is the whole timeline can't be grabbed.
    probe.SetPlaybackRange(0, mTimeline->endTime);
    QVERIFY(probe.mRangeRect.contains(300, 30));
    QVERIFY(!probe.HitsRange(QPoint(300, 30)));
}

void tst_GlobalTimelineWidget::HandleRectsStayWithoutFrames()
{
    GlobalProbe probe;
    probe.resize(700, 40);
    probe.grab();
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(11), mTimeline->frameToTime(30));
    const QRect before = probe.mRangeStartRect;
    const auto single = std::make_shared<FakeTimeline>(QList<int>{1});
    probe.SetTimeline(single);
    probe.SetPlaybackRange(0, 0);
    QCOMPARE(probe.mRangeStartRect, before);
    probe.SetTimeline({});
    probe.SetPlaybackRange(0, 0);
    QCOMPARE(probe.mRangeStartRect, before);
    for (int x = 0; x < 700; ++x)
        QVERIFY(!probe.HitsRange(QPoint(x, 30)));
}

void tst_GlobalTimelineWidget::LabelsOfEachDisplayType()
{
    GlobalProbe probe;
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(11), mTimeline->frameToTime(30));
    probe.SetDesiredFrameRate(23.976f);
    for (int frame = -5; frame < 300; ++frame)
    {
        probe.mDisplayType = FrameNumbersGlobal;
        QCOMPARE(probe.FormatFrame(frame), QString::number(frame));
        probe.mDisplayType = FrameNumbersRange;
        QCOMPARE(probe.FormatFrame(frame), QString::number(frame - 10));
        probe.mDisplayType = TimeCode;
        QCOMPARE(probe.FormatFrame(frame), Formula::TimeCode(frame, 24));
        probe.mDisplayType = Seconds;
        const int64_t time = std::min(mTimeline->frameToTime(frame), mTimeline->endTime);
        QCOMPARE(probe.FormatFrame(frame), QString::asprintf("%.2f", double(time) / 1e6));
    }
}

void tst_GlobalTimelineWidget::ShowingWritesTheSettings()
{
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    const std::pair<const char*, bool*> flags[] = {
        {"ShowTimeBookmarks", &Settings::globalTimelineShowTimeBookmarks},
        {"ShowRangeBookmarks", &Settings::globalTimelineShowRangeBookmarks},
        {"ShowCache", &Settings::globalTimelineShowCache}};
    for (const auto& [slot, setting] : flags)
        for (const bool show : {false, true, true})
        {
            Settle(probe);
            QVERIFY(QMetaObject::invokeMethod(&probe, slot, Q_ARG(bool, show)));
            QCOMPARE(*setting, show);
            QApplication::processEvents();
            QCOMPARE(probe.TakePaints(), 1);
        }
    bool inMenu = false;
    QVERIFY(QMetaObject::invokeMethod(&probe, "ShowRangeBookmarksInMenu", Q_RETURN_ARG(bool, inMenu)));
    QVERIFY(inMenu);
}

void tst_GlobalTimelineWidget::SettingTheDisplayTypeWritesTheSettings()
{
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    Settle(probe);
    probe.SetDisplayType(TimeCode);
    QCOMPARE(probe.mDisplayType, TimeCode);
    QCOMPARE(Settings::globalTimelineDisplayType, 2);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 1);
    Settings::globalTimelineDisplayType = 0;
    probe.SetDisplayType(TimeCode);
    QCOMPARE(Settings::globalTimelineDisplayType, 2);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 0);
    // Without a menu entry as its sender the slot of the menu does nothing.
    QVERIFY(QMetaObject::invokeMethod(&probe, "SetDisplayType"));
    QCOMPARE(probe.mDisplayType, TimeCode);
}

void tst_GlobalTimelineWidget::TimerServesPendingUpdates_data()
{
    QTest::addColumn<bool>("playing");
    QTest::addColumn<float>("rate");
    QTest::addColumn<float>("multiplier");
    QTest::addColumn<bool>("repaints");
    QTest::newRow("stopped") << false << 60.0f << 1.0f << true;
    QTest::newRow("playing at 24") << true << 24.0f << 1.0f << false;
    QTest::newRow("playing at 23.976") << true << 23.976f << 1.0f << true;
    QTest::newRow("playing just below 24") << true << std::nextafter(24.0f, 0.0f) << 1.0f << true;
    QTest::newRow("playing faster") << true << 12.0f << 2.0f << false;
    QTest::newRow("playing slower") << true << 60.0f << 0.25f << true;
    QTest::newRow("playing backwards") << true << 60.0f << -1.0f << true;
}

void tst_GlobalTimelineWidget::TimerServesPendingUpdates()
{
    QFETCH(bool, playing);
    QFETCH(float, rate);
    QFETCH(float, multiplier);
    QFETCH(bool, repaints);
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    probe.SetDesiredFrameRate(rate);
    probe.SetPlaybackSpeedMultiplier(multiplier);
    Settle(probe);
    probe.OnPlaybackStateChanaged(playing);
    QVERIFY(!probe.mUpdatePending);
    probe.OnUpdateTimerFired();
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 0);
    probe.DeferredUpdate();
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 0);
    probe.OnUpdateTimerFired();
    QVERIFY(!probe.mUpdatePending);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), repaints ? 1 : 0);
}

void tst_GlobalTimelineWidget::TimerRunsOnItsOwn()
{
    Settings::timelineUpdateInterval = 5;
    GlobalProbe probe;
    probe.resize(400, 40);
    probe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&probe));
    QTest::qWait(20);
    probe.TakePaints();
    probe.SetDesiredFrameRate(24);
    QTRY_VERIFY(!probe.mUpdatePending);
    QApplication::processEvents();
    QCOMPARE(probe.TakePaints(), 1);
    probe.hide();
    QVERIFY(probe.mUpdateTimer.isActive());
}

static const TestRegistration<tst_GlobalTimelineWidget> GlobalTimelineWidgetRegistration;

#include "tst_GlobalTimelineWidget.moc"
