// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "timelines/FakeTimeline.h"
#include "timelines/TimelineFormulas.h"
#include "timelines/TimelineHost.h"
#include "timelines/TimelineProbe.h"

#include <QApplication>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QtTest>

class tst_RangeTimelineWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void GeometryFollowsTheWidth();
    void DisplayTypeComesFromItsOwnSetting();
    void SlotsWriteItsOwnSettings();
    void BothOverloadsOfSetDisplayTypeAreThere();
    void FrameWidthIsWholeAndAtLeastTwo();
    void MapsTheRange_data();
    void MapsTheRange();
    void RangeOfOneFrameFillsTheBar();
    void PixelScaleIsTheWidthOfTheMoment();
    void SidePanelsAreTheHandles();
    void PressInAPanelAsksForNoTime();
    void PressOnTheBarSeeks();
    void JogMovesAFrameForTwentyPixels();
    void JogDropsTheRemainder();
    void QuickJogMovesSeveralFrames();
    void JogAsksForFrameZeroAndNoFurther();
    void JogStopsPastTheLastFrame();
    void JogCarriesTheOtherEndAlong();
    void JogOntoTheOtherEndKeepsItsTime();
    void JogPushesThePlayheadOnlyOutOfTheWay();
    void JogUsesGlobalTravel();
    void RandomJogsAskForWhatTheRulesSay();
    void MoveWithoutAButtonOnlyDefersAnUpdate();
    void AnyHeldButtonGoesOnScrubbing();
    void EventsGoOnToTheParent();

private:
    static bool SendRangeMouse(QWidget* widget, QEvent::Type type, QPoint pos, Qt::MouseButton button,
                               Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, pos, pos + QPoint(1000, 500), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
        return event.isAccepted();
    }
    bool Press(QPoint pos)
    {
        return SendRangeMouse(mProbe.get(), QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton);
    }
    void Drag(QPoint pos)
    {
        SendRangeMouse(mProbe.get(), QEvent::MouseMove, pos, Qt::NoButton, Qt::LeftButton);
    }
    bool Release(QPoint pos = {})
    {
        return SendRangeMouse(mProbe.get(), QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton);
    }
    void SetRange(int first, int last)
    {
        mProbe->SetPlaybackRange(mTimeline->frameToTime(first), mTimeline->frameToTime(last));
    }
    QString Time(int frame) const { return TimelineHost::Time(mTimeline->frameToTime(frame) + 100, false); }
    QString Range(int first, int last) const
    {
        return TimelineHost::Range(mTimeline->frameToTime(first), mTimeline->frameToTime(last));
    }

    std::shared_ptr<FakeTimeline> mTimeline;
    std::unique_ptr<RangeProbe> mProbe;
    std::unique_ptr<TimelineHost> mHost;
};

namespace
{

const QPoint LeftPanel(20, 30);
const QPoint RightPanel(680, 30);

} // namespace

void tst_RangeTimelineWidget::init()
{
    Settings::RestoreDefaults();
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{60, 40});
    mHost.reset();
    mProbe = std::make_unique<RangeProbe>();
    mProbe->resize(700, 46);
    mProbe->grab();
    mProbe->SetTimeline(mTimeline);
    SetRange(30, 60);
    mProbe->SetPlaybackTime(mTimeline->frameToTime(45));
    mHost = std::make_unique<TimelineHost>(mProbe.get());
}

void tst_RangeTimelineWidget::GeometryFollowsTheWidth()
{
    for (const int width : {1, 80, 100, 101, 640, 1600})
    {
        mProbe->resize(width, 46);
        mProbe->grab();
        QCOMPARE(mProbe->height(), 46);
        QCOMPARE(mProbe->mLeftPanelX, 0);
        QCOMPARE(mProbe->mLeftPanelWidth, 44);
        QCOMPARE(mProbe->mBarAreaX, 50);
        QCOMPARE(mProbe->mBarAreaWidth, width - 100);
        QCOMPARE(mProbe->mRightPanelX, width - 44);
        QCOMPARE(mProbe->mRightPanelWidth, 50);
        QCOMPARE(mProbe->mBodyY, 14);
        QCOMPARE(mProbe->mBodyHeight, 32);
        QCOMPARE(mProbe->mBarX, 50);
        QCOMPARE(mProbe->mBarWidth, width - 100);
        QCOMPARE(mProbe->mElementStripY, 29);
        QCOMPARE(mProbe->mScrubBarY, 26);
        QCOMPARE(mProbe->mCacheBarY, 32);
        QCOMPARE(mProbe->mBarStartX, 50);
        QCOMPARE(mProbe->mBarEndX, width - 50);
        QCOMPARE(mProbe->mHandleY, 18);
        QCOMPARE(mProbe->mPlayheadY, 18);
        QCOMPARE(mProbe->mLabelOffsetX, -100);
    }
}

void tst_RangeTimelineWidget::DisplayTypeComesFromItsOwnSetting()
{
    for (int global = 0; global < 4; ++global)
        for (int range = 0; range < 4; ++range)
        {
            Settings::globalTimelineDisplayType = global;
            Settings::rangeTimelineDisplayType = range;
            const RangeProbe probe;
            QCOMPARE(int(probe.mDisplayType), range);
            QCOMPARE(Settings::globalTimelineDisplayType, global);
            QCOMPARE(Settings::rangeTimelineDisplayType, range);
        }
}

void tst_RangeTimelineWidget::SlotsWriteItsOwnSettings()
{
    const auto call = [this](const char* slot)
    { QVERIFY(QMetaObject::invokeMethod(mProbe.get(), slot, Q_ARG(bool, false))); };
    call("ShowTimeBookmarks");
    call("ShowCache");
    call("ShowRangeBookmarks");
    QCOMPARE(Settings::rangeTimelineShowTimeBookmarks, false);
    QCOMPARE(Settings::rangeTimelineShowCache, false);
    QCOMPARE(Settings::globalTimelineShowTimeBookmarks, true);
    QCOMPARE(Settings::globalTimelineShowCache, true);
    QCOMPARE(Settings::globalTimelineShowRangeBookmarks, true);
    bool inMenu = true;
    QVERIFY(QMetaObject::invokeMethod(mProbe.get(), "ShowRangeBookmarksInMenu", Q_RETURN_ARG(bool, inMenu)));
    QVERIFY(!inMenu);
    QVERIFY(QMetaObject::invokeMethod(mProbe.get(), "SetDisplayType", Q_ARG(TimelineDisplayType, TimeCode)));
    QCOMPARE(Settings::rangeTimelineDisplayType, 2);
    QCOMPARE(Settings::globalTimelineDisplayType, 0);
    QCOMPARE(mProbe->mDisplayType, TimeCode);
}

void tst_RangeTimelineWidget::BothOverloadsOfSetDisplayTypeAreThere()
{
    mProbe->SetDisplayType(Seconds);
    mProbe->SetDisplayType();
    QCOMPARE(mProbe->mDisplayType, Seconds);
}

void tst_RangeTimelineWidget::FrameWidthIsWholeAndAtLeastTwo()
{
    for (int last = 30; last <= 100; ++last)
    {
        SetRange(30, last);
        QCOMPARE(mProbe->mFrameWidth, Formula::RangeFrameWidth(600, last - 30 + 1));
    }
    SetRange(60, 30);
    QCOMPARE(mProbe->mFrameWidth, 2.0f);
    mProbe->resize(120, 46);
    mProbe->grab();
    SetRange(1, 100);
    QCOMPARE(mProbe->mFrameWidth, 2.0f);
}

void tst_RangeTimelineWidget::MapsTheRange_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("all") << 1 << 100;
    QTest::newRow("some") << 30 << 60;
    QTest::newRow("two") << 30 << 31;
    QTest::newRow("one") << 30 << 30;
    QTest::newRow("crossed") << 40 << 30;
}

void tst_RangeTimelineWidget::MapsTheRange()
{
    QFETCH(int, first);
    QFETCH(int, last);
    for (const int width : {101, 103, 350, 700, 1601})
    {
        mProbe->resize(width, 46);
        mProbe->grab();
        SetRange(first, last);
        for (int frame = -2; frame < 110; ++frame)
            QCOMPARE(mProbe->FrameToPixel(frame), Formula::RangePixel(frame, first, last, 50, width - 100));
        for (int x = -2; x < width + 2; ++x)
            QCOMPARE(mProbe->PixelToFrame(x),
                     Formula::RangeFrame(x, first, last, 50, width - 100, width - 100));
    }
}

void tst_RangeTimelineWidget::RangeOfOneFrameFillsTheBar()
{
    SetRange(45, 45);
    QCOMPARE(mProbe->mFrameWidth, 600.0f);
    for (int frame = 1; frame <= 100; ++frame)
        QCOMPARE(mProbe->FrameToPixel(frame), 50);
}

void tst_RangeTimelineWidget::PixelScaleIsTheWidthOfTheMoment()
{
    // A hidden widget hears of its new width late: the bar area is still 600 wide.
    mProbe->resize(400, 46);
    QCOMPARE(mProbe->mBarAreaWidth, 600);
    for (int x = 51; x < 650; ++x)
        QCOMPARE(mProbe->PixelToFrame(x), Formula::RangeFrame(x, 30, 60, 50, 600, 300));
    mProbe->resize(100, 46);
    mProbe->PixelToFrame(300);
}

void tst_RangeTimelineWidget::SidePanelsAreTheHandles()
{
    for (int x = -2; x < 720; ++x)
        for (const int y : {13, 14, 45, 46})
        {
            const bool body = y >= 14 && y < 46;
            QCOMPARE(mProbe->HitsRangeStart(QPoint(x, y)), body && x >= 0 && x < 44);
            QCOMPARE(mProbe->HitsRangeEnd(QPoint(x, y)), body && x >= 656 && x < 706);
            QVERIFY(!mProbe->HitsRange(QPoint(x, y)));
        }
}

void tst_RangeTimelineWidget::PressInAPanelAsksForNoTime()
{
    for (const QPoint pos : {LeftPanel, RightPanel})
    {
        Press(pos);
        QCOMPARE(mHost->Take(), QStringList{TimelineHost::Scrub(true)});
        QCOMPARE(mProbe->mDraggingRangeStart, pos == LeftPanel);
        QCOMPARE(mProbe->mDraggingRangeEnd, pos == RightPanel);
        QVERIFY(!mProbe->mScrubbing);
        Release();
        QCOMPARE(mHost->Take(), QStringList{TimelineHost::Scrub(false)});
        QVERIFY(!mProbe->mDraggingRangeStart && !mProbe->mDraggingRangeEnd);
    }
}

void tst_RangeTimelineWidget::PressOnTheBarSeeks()
{
    // 30 steps on 600 pixels: frame 35 lies 100 pixels in.
    Press(QPoint(150, 30));
    QCOMPARE(mHost->Take(), (QStringList{Time(35), TimelineHost::Scrub(true)}));
    Settings::audioScrub = true;
    Drag(QPoint(170, 30));
    QCOMPARE(mHost->Take(), QStringList{TimelineHost::Time(mTimeline->frameToTime(36) + 100, true)});
    Drag(QPoint(-100, 30));
    QCOMPARE(mHost->Take(), QStringList{TimelineHost::Time(mTimeline->frameToTime(30) + 100, true)});
    Drag(QPoint(900, 30));
    QCOMPARE(mHost->Take(), QStringList{TimelineHost::Time(mTimeline->frameToTime(60) + 100, true)});
}

void tst_RangeTimelineWidget::JogMovesAFrameForTwentyPixels()
{
    Press(LeftPanel);
    mHost->Take();
    Drag(LeftPanel + QPoint(19, 0));
    QCOMPARE(mHost->Take(), QStringList());
    Drag(LeftPanel + QPoint(20, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(31, 60)});
    Drag(LeftPanel + QPoint(1, 0));
    QCOMPARE(mHost->Take(), QStringList());
    Drag(LeftPanel);
    QCOMPARE(mHost->Take(), QStringList{Range(30, 60)});
}

void tst_RangeTimelineWidget::JogDropsTheRemainder()
{
    Press(RightPanel);
    mHost->Take();
    Drag(RightPanel + QPoint(39, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(30, 61)});
    Drag(RightPanel + QPoint(58, 0));
    QCOMPARE(mHost->Take(), QStringList());
    Drag(RightPanel + QPoint(59, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(30, 62)});
}

void tst_RangeTimelineWidget::QuickJogMovesSeveralFrames()
{
    Press(RightPanel);
    mHost->Take();
    Drag(RightPanel + QPoint(100, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(30, 65)});
    Drag(RightPanel - QPoint(19, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(30, 60)});
}

void tst_RangeTimelineWidget::JogAsksForFrameZeroAndNoFurther()
{
    mHost->answers = false;
    SetRange(3, 60);
    Press(LeftPanel);
    mHost->Take();
    Drag(LeftPanel - QPoint(60, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(0, 60)});
    Release();
    Press(LeftPanel);
    mHost->Take();
    Drag(LeftPanel - QPoint(80, 0));
    QCOMPARE(mHost->Take(), QStringList());
    // The travel counts as used up all the same.
    Drag(LeftPanel - QPoint(60, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(4, 60)});
}

void tst_RangeTimelineWidget::JogStopsPastTheLastFrame()
{
    SetRange(30, 99);
    Press(RightPanel);
    mHost->Take();
    Drag(RightPanel + QPoint(40, 0));
    QCOMPARE(mHost->Take(), QStringList());
    Drag(RightPanel + QPoint(60, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(30, 100)});
}

void tst_RangeTimelineWidget::JogCarriesTheOtherEndAlong()
{
    SetRange(30, 32);
    mProbe->SetPlaybackTime(mTimeline->frameToTime(30));
    Press(LeftPanel);
    mHost->Take();
    Drag(LeftPanel + QPoint(40, 0));
    QCOMPARE(mHost->Take(), (QStringList{Range(32, 32), Time(32)}));
    Drag(LeftPanel + QPoint(100, 0));
    QCOMPARE(mHost->Take(), (QStringList{Range(35, 35), Time(35)}));
    Release();
    Press(RightPanel);
    mHost->Take();
    Drag(RightPanel - QPoint(60, 0));
    QCOMPARE(mHost->Take(), (QStringList{Range(32, 32), Time(32)}));
    QCOMPARE(mProbe->GetRangeStartFrame(), 32);
}

void tst_RangeTimelineWidget::JogOntoTheOtherEndKeepsItsTime()
{
    // Both ends lie within their frames.
    const int64_t start = mTimeline->frameToTime(30) + 700;
    const int64_t end = mTimeline->frameToTime(32) + 900;
    mHost->answers = false;
    mProbe->SetPlaybackRange(start, end);
    mProbe->SetPlaybackTime(mTimeline->frameToTime(31));
    Press(LeftPanel);
    mHost->Take();
    Drag(LeftPanel + QPoint(40, 0));
    QCOMPARE(mHost->Take(), (QStringList{TimelineHost::Range(mTimeline->frameToTime(32), end), Time(32)}));
    Release();
    Press(RightPanel);
    mHost->Take();
    Drag(RightPanel - QPoint(40, 0));
    QCOMPARE(mHost->Take(), (QStringList{TimelineHost::Range(start, mTimeline->frameToTime(30)), Time(30)}));
}

void tst_RangeTimelineWidget::JogPushesThePlayheadOnlyOutOfTheWay()
{
    mProbe->SetPlaybackTime(mTimeline->frameToTime(32));
    Press(LeftPanel);
    mHost->Take();
    Drag(LeftPanel + QPoint(40, 0));
    QCOMPARE(mHost->Take(), QStringList{Range(32, 60)});
    Drag(LeftPanel + QPoint(60, 0));
    QCOMPARE(mHost->Take(), (QStringList{Range(33, 60), Time(33)}));
}

void tst_RangeTimelineWidget::JogUsesGlobalTravel()
{
    Press(LeftPanel);
    mHost->Take();
    // The widget moved under the mouse: what counts is the mouse on the screen.
    QMouseEvent move(QEvent::MouseMove, LeftPanel + QPoint(300, 0), LeftPanel + QPoint(1000 + 20, 500),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mProbe.get(), &move);
    QCOMPARE(mHost->Take(), QStringList{Range(31, 60)});
}

void tst_RangeTimelineWidget::RandomJogsAskForWhatTheRulesSay()
{
    for (quint32 seed = 0; seed < 40; ++seed)
    {
        QRandomGenerator random(seed);
        int first = 1 + random.bounded(100);
        int last = first + random.bounded(101 - first);
        int now = 1 + random.bounded(100);
        SetRange(first, last);
        mProbe->SetPlaybackTime(mTimeline->frameToTime(now));
        for (int drag = 0; drag < 20; ++drag)
        {
            const bool left = random.bounded(2) == 0;
            QPoint pos = left ? LeftPanel : RightPanel;
            int from = pos.x();
            Press(pos);
            mHost->Take();
            for (int move = random.bounded(15); move > 0; --move)
            {
                pos.rx() += random.bounded(-90, 91);
                Drag(pos);
                const int steps = (pos.x() - from) / 20;
                QStringList expected;
                if (steps != 0)
                {
                    from = pos.x();
                    const int frame = (left ? first : last) + steps;
                    if (frame >= 0 && frame <= 100)
                    {
                        int newFirst = left ? frame : first;
                        int newLast = left ? last : frame;
                        if (newFirst > newLast)
                            newFirst = newLast = frame;
                        expected << Range(newFirst, newLast);
                        // The host cuts the range to the timeline.
                        first = std::max(newFirst, 1);
                        last = std::max(newLast, 0);
                        if (left ? frame > now : frame < now)
                        {
                            expected << Time(frame);
                            now = frame;
                        }
                    }
                }
                QCOMPARE(mHost->Take(), expected);
            }
            Release(pos);
            QCOMPARE(mHost->Take(), QStringList{TimelineHost::Scrub(false)});
        }
    }
}

void tst_RangeTimelineWidget::MoveWithoutAButtonOnlyDefersAnUpdate()
{
    mProbe->mUpdatePending = false;
    mProbe->mHoverRange = true;
    SendRangeMouse(mProbe.get(), QEvent::MouseMove, QPoint(20, 30), Qt::NoButton, Qt::NoButton);
    QVERIFY(mProbe->mUpdatePending);
    QVERIFY(mProbe->mHoverRange);
    QVERIFY(!mProbe->mHoverRangeStart);
    QCOMPARE(mHost->Take(), QStringList());
}

void tst_RangeTimelineWidget::AnyHeldButtonGoesOnScrubbing()
{
    Press(QPoint(150, 30));
    mHost->Take();
    SendRangeMouse(mProbe.get(), QEvent::MouseMove, QPoint(170, 30), Qt::NoButton,
                   Qt::LeftButton | Qt::RightButton);
    QCOMPARE(mHost->Take().size(), 1);
    Release();
    mHost->Take();
    SendRangeMouse(mProbe.get(), QEvent::MouseMove, QPoint(190, 30), Qt::NoButton, Qt::RightButton);
    QCOMPARE(mHost->Take(), QStringList());
}

void tst_RangeTimelineWidget::EventsGoOnToTheParent()
{
    QVERIFY(!Press(QPoint(150, 30)));
    QVERIFY(!Release());
    mHost->Take();
    SendRangeMouse(mProbe.get(), QEvent::MouseButtonPress, QPoint(150, 30), Qt::RightButton, Qt::RightButton);
    SendRangeMouse(mProbe.get(), QEvent::MouseButtonRelease, QPoint(150, 30), Qt::RightButton, Qt::NoButton);
    QCOMPARE(mHost->Take(), QStringList());
}

static const TestRegistration<tst_RangeTimelineWidget> RangeTimelineWidgetRegistration;

#include "tst_RangeTimelineWidget.moc"
