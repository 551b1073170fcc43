// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "timelines/FakeTimeline.h"
#include "timelines/TimelineFormulas.h"
#include "timelines/TimelineHost.h"
#include "timelines/TimelineProbe.h"

#include <QApplication>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QtTest>

namespace
{

constexpr int Extra = 100;

/// What a global timeline of 100 frames at 24 per second asks for, told a second time.
class DragModel
{
public:
    DragModel(const std::shared_ptr<FakeTimeline>& timeline, int count, int barWidth)
        : mTimeline(timeline), mCount(count), mBarWidth(barWidth)
    {
    }

    int start = 1;
    int end = 1;
    int now = 1;
    bool answered = true;

    QStringList Press(QPoint pos)
    {
        QStringList log;
        const float frameWidth = Formula::GlobalFrameWidth(mBarWidth, mCount);
        const int s = Formula::GlobalPixel(start, mCount, 100, mBarWidth);
        const int e =
            Formula::Cut(double(float(Formula::GlobalPixel(end, mCount, 100, mBarWidth)) + frameWidth));
        const bool row = mCount > 1 && pos.y() >= 24 && pos.y() <= 35;
        const bool whole = start == 1 && end == mCount;
        const int x = pos.x();
        if (row && !whole && CrossedContains(e - 2, s + 1, x))
        {
            mMode = Whole;
            mLength = end - start;
            Seek(log, Formula::GlobalFrame(x, mCount, 100, mBarWidth), false, false);
        }
        else if (row && x >= s - 4 && x <= s + 1)
        {
            mMode = Start;
            Seek(log, start, false, true);
        }
        else if (row && x >= e - 2 && x <= e + 3)
        {
            mMode = End;
            Seek(log, end, false, true);
        }
        else
        {
            mMode = Playhead;
            Seek(log, Formula::GlobalFrame(x, mCount, 100, mBarWidth), false, false);
        }
        return log << TimelineHost::Scrub(true);
    }

    QStringList Move(QPoint pos)
    {
        QStringList log;
        int target = Formula::GlobalFrame(pos.x(), mCount, 100, mBarWidth);
        if (mMode == Playhead)
        {
            Seek(log, target, Settings::audioScrub, false);
            return log;
        }
        const int moved = target - now;
        int a = mMode == End ? start : start + moved;
        int b = mMode == Start ? end : end + moved;
        if (mMode == Whole && b - a < mLength)
        {
            const bool free = a > 1 && b < mCount;
            if (!free)
                mPinned = a == 1;
            else if (mPinned)
                a = end - mLength < 1 ? 1 : end - mLength;
            else
                b = a + mLength > mCount ? mCount : a + mLength;
        }
        if (mMode != End && a >= b)
        {
            a = b - 1;
            target = a;
        }
        else if (mMode != Start && b <= a)
        {
            b = a + 1;
            target = b;
        }
        a = a < 1 ? 1 : a > mCount ? mCount : a;
        b = b < 1 ? 1 : b > mCount ? mCount : b;
        if (a != start || b != end)
        {
            log << TimelineHost::Range(mTimeline->frameToTime(a), mTimeline->frameToTime(b));
            if (answered)
            {
                start = a;
                end = b;
            }
        }
        Seek(log, target, mMode == Whole, false);
        return log;
    }

    QStringList Release()
    {
        mMode = None;
        return {TimelineHost::Scrub(false)};
    }

private:
    enum Mode
    {
        None,
        Playhead,
        Whole,
        Start,
        End
    };

    /// Whether @p x lies within a rectangle stored with left and right edge @p left and @p right, crossed or
    /// not.
    static bool CrossedContains(int left, int right, int x)
    {
        return right < left - 1 ? x >= right && x <= left : x >= left && x <= right;
    }

    void Seek(QStringList& log, int frame, bool audio, bool always)
    {
        if (!always && frame == now)
            return;
        log << TimelineHost::Time(mTimeline->frameToTime(frame) + Extra, audio);
        if (answered)
            now = frame;
    }

    std::shared_ptr<FakeTimeline> mTimeline;
    int mCount;
    int mBarWidth;
    Mode mMode = None;
    int mLength = 0;
    bool mPinned = false;
};

bool SendMouse(QWidget* widget, QEvent::Type type, QPoint pos, Qt::MouseButton button,
               Qt::MouseButtons buttons)
{
    QMouseEvent event(type, pos, widget->mapToGlobal(pos), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

} // namespace

class tst_GlobalTimelineInteraction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void RandomDragsAskForWhatTheRulesSay_data();
    void RandomDragsAskForWhatTheRulesSay();
    void PressSeeksAndStartsAScrub();
    void PressOnTheCurrentFrameAsksForNoTime();
    void PressNeverAsksForSound();
    void MoveAsksForSoundByTheSetting();
    void PressOnAHandleAsksForItsFrame();
    void EndHandleStopsOneFrameBehindTheStart();
    void StartHandleStopsOneFrameBeforeTheEnd();
    void WholeRangeShrinksAtAnEndAndGrowsBack();
    void WholeRangeCannotBeGrabbed();
    void RangeIsAskedForOnlyOnAChange();
    void UnansweredRequestsMoveNothing();
    void SecondButtonPausesTheDrag();
    void OtherButtonsScrubNothing();
    void PressAndReleaseGoOnToTheParent();
    void PressFocusesTheParent_data();
    void PressFocusesTheParent();
    void HoverAsksEachAreaOnItsOwn();
    void LeavingForgetsTheHover();
    void NoFramesClampToZero();
    void RealMouseDragsTheRange();

private:
    void Press(QPoint pos)
    {
        SendMouse(mProbe.get(), QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton);
    }
    void Drag(QPoint pos) { SendMouse(mProbe.get(), QEvent::MouseMove, pos, Qt::NoButton, Qt::LeftButton); }
    void Release() { SendMouse(mProbe.get(), QEvent::MouseButtonRelease, {}, Qt::LeftButton, Qt::NoButton); }
    void SetRange(int first, int last)
    {
        mProbe->SetPlaybackRange(mTimeline->frameToTime(first), mTimeline->frameToTime(last));
    }
    QString Time(int frame, bool audio) const
    {
        return TimelineHost::Time(mTimeline->frameToTime(frame) + Extra, audio);
    }
    QString Range(int first, int last) const
    {
        return TimelineHost::Range(mTimeline->frameToTime(first), mTimeline->frameToTime(last));
    }

    std::shared_ptr<FakeTimeline> mTimeline;
    std::unique_ptr<GlobalProbe> mProbe;
    std::unique_ptr<TimelineHost> mHost;
};

void tst_GlobalTimelineInteraction::init()
{
    Settings::RestoreDefaults();
    QCOMPARE(Settings::ROUNDING_ERROR_EXTRA_TIME, Extra);
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{60, 41});
    mHost.reset();
    mProbe = std::make_unique<GlobalProbe>();
    // 1010 pixels of bar for 101 frames: frame f begins at 90 + 10 f, and the mouse needs 10.1 for each.
    mProbe->resize(1210, 40);
    mProbe->grab();
    mProbe->SetTimeline(mTimeline);
    SetRange(1, 101);
    mProbe->SetPlaybackTime(0);
    mHost = std::make_unique<TimelineHost>(mProbe.get());
}

void tst_GlobalTimelineInteraction::RandomDragsAskForWhatTheRulesSay_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 0; seed < 60; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_GlobalTimelineInteraction::RandomDragsAskForWhatTheRulesSay()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    static const QList<int> counts{1, 2, 3, 10, 101, 3000};
    const int count = counts[seed % counts.size()];
    const int width = 230 + random.bounded(1500);
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{count}, 24, seed % 2 * 777777);
    GlobalProbe probe;
    probe.resize(width, 40);
    probe.grab();
    probe.SetTimeline(mTimeline);
    DragModel model(mTimeline, count, width - 200);
    model.start = 1 + random.bounded(count);
    model.end = model.start + random.bounded(count - model.start + 1);
    model.now = 1 + random.bounded(count);
    probe.SetPlaybackRange(mTimeline->frameToTime(model.start), mTimeline->frameToTime(model.end));
    probe.SetPlaybackTime(mTimeline->frameToTime(model.now));
    TimelineHost host(&probe, seed % 5 != 4);
    model.answered = host.answers;
    const auto place = [&] { return QPoint(random.bounded(-50, width + 50), 20 + random.bounded(20)); };
    for (int drag = 0; drag < 40; ++drag)
    {
        Settings::audioScrub = random.bounded(2) == 0;
        // Most presses aim at the handles and the range.
        QPoint pos = place();
        if (random.bounded(4) != 0)
        {
            const int frame = random.bounded(2) == 0   ? model.start
                              : random.bounded(2) == 0 ? model.end
                                                       : (model.start + model.end) / 2;
            pos = QPoint(Formula::GlobalPixel(frame, count, 100, width - 200) + random.bounded(-6, 7), 30);
        }
        SendMouse(&probe, QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton);
        QCOMPARE(host.Take(), model.Press(pos));
        for (int move = random.bounded(12); move > 0; --move)
        {
            pos = random.bounded(3) == 0 ? place() : pos + QPoint(random.bounded(-60, 61), 0);
            SendMouse(&probe, QEvent::MouseMove, pos, Qt::NoButton, Qt::LeftButton);
            QCOMPARE(host.Take(), model.Move(pos));
        }
        SendMouse(&probe, QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton);
        QCOMPARE(host.Take(), model.Release());
    }
    QCOMPARE(probe.GetRangeStartFrame(), model.start);
    QCOMPARE(probe.GetRangeEndFrame(), model.end);
    QCOMPARE(probe.GetPlaybackFrame(), model.now);
}

void tst_GlobalTimelineInteraction::PressSeeksAndStartsAScrub()
{
    Press(QPoint(590, 10));
    QCOMPARE(mHost->Take(), (QStringList{Time(50, false), TimelineHost::Scrub(true)}));
    QVERIFY(mProbe->mScrubbing);
    QCOMPARE(mProbe->GetPlaybackFrame(), 50);
    // Past the ends the first and the last frame are asked for.
    Drag(QPoint(-400, 10));
    QCOMPARE(mHost->Take(), QStringList{Time(1, true)});
    Drag(QPoint(4000, 10));
    QCOMPARE(mHost->Take(), QStringList{Time(101, true)});
    Release();
    QCOMPARE(mHost->Take(), QStringList{TimelineHost::Scrub(false)});
    QVERIFY(!mProbe->mScrubbing);
}

void tst_GlobalTimelineInteraction::PressOnTheCurrentFrameAsksForNoTime()
{
    Press(QPoint(100, 10));
    QCOMPARE(mHost->Take(), QStringList{TimelineHost::Scrub(true)});
}

void tst_GlobalTimelineInteraction::PressNeverAsksForSound()
{
    Settings::audioScrub = true;
    SetRange(30, 60);
    for (const QPoint pos : {QPoint(590, 10), QPoint(500, 30), QPoint(388, 30), QPoint(702, 30)})
    {
        mProbe->SetPlaybackTime(0);
        Press(pos);
        const QStringList log = mHost->Take();
        QCOMPARE(log.size(), 2);
        QVERIFY(log[0].endsWith(QStringLiteral("audio 0")));
        Release();
        mHost->Take();
    }
}

void tst_GlobalTimelineInteraction::MoveAsksForSoundByTheSetting()
{
    Press(QPoint(590, 10));
    mHost->Take();
    Settings::audioScrub = false;
    Drag(QPoint(600, 10));
    QCOMPARE(mHost->Take(), QStringList{Time(51, false)});
    Settings::audioScrub = true;
    Drag(QPoint(620, 10));
    QCOMPARE(mHost->Take(), QStringList{Time(52, true)});
}

void tst_GlobalTimelineInteraction::PressOnAHandleAsksForItsFrame()
{
    SetRange(30, 60);
    // The innermost pixel of each handle belongs to the range too, which comes first.
    for (int x = 386; x <= 390; ++x)
    {
        Press(QPoint(x, 30));
        QCOMPARE(mHost->Take(), (QStringList{Time(30, false), TimelineHost::Scrub(true)}));
        QVERIFY(mProbe->mDraggingRangeStart);
        Release();
        mHost->Take();
    }
    for (int x = 699; x <= 703; ++x)
    {
        Press(QPoint(x, 30));
        QCOMPARE(mHost->Take(), (QStringList{Time(60, false), TimelineHost::Scrub(true)}));
        QVERIFY(mProbe->mDraggingRangeEnd);
        Release();
        mHost->Take();
    }
}

void tst_GlobalTimelineInteraction::EndHandleStopsOneFrameBehindTheStart()
{
    SetRange(30, 60);
    Press(QPoint(700, 30));
    mHost->Take();
    Drag(QPoint(200, 30));
    QCOMPARE(mHost->Take(), (QStringList{Range(30, 31), Time(31, false)}));
    QCOMPARE(mProbe->GetPlaybackFrame(), 31);
}

void tst_GlobalTimelineInteraction::StartHandleStopsOneFrameBeforeTheEnd()
{
    SetRange(30, 60);
    Press(QPoint(390, 30));
    mHost->Take();
    Drag(QPoint(1000, 30));
    QCOMPARE(mHost->Take(), (QStringList{Range(59, 60), Time(59, false)}));
}

void tst_GlobalTimelineInteraction::WholeRangeShrinksAtAnEndAndGrowsBack()
{
    SetRange(11, 30);
    mProbe->SetPlaybackTime(mTimeline->frameToTime(20));
    Press(QPoint(290, 30));
    QCOMPARE(mHost->Take(), QStringList{TimelineHost::Scrub(true)});
    QCOMPARE(mProbe->mDragRangeLength, 19);
    Drag(QPoint(190, 30));
    QCOMPARE(mHost->Take(), (QStringList{Range(1, 20), Time(10, true)}));
    // Nine frames further the start is held.
    Drag(QPoint(140, 30));
    QCOMPARE(mHost->Take(), (QStringList{Range(1, 15), Time(5, true)}));
    // Back by four: the start leaves the end of the timeline with its old length.
    Drag(QPoint(180, 30));
    const QStringList back = mHost->Take();
    QCOMPARE(back.size(), 2);
    QCOMPARE(mProbe->GetPlaybackFrame(), 9);
    Drag(QPoint(290, 30));
    Drag(QPoint(390, 30));
    QCOMPARE(mProbe->GetRangeEndFrame() - mProbe->GetRangeStartFrame(), 19);
    // The same against the other end.
    Drag(QPoint(1090, 30));
    QVERIFY(mProbe->GetRangeEndFrame() - mProbe->GetRangeStartFrame() < 19);
    QCOMPARE(mProbe->GetRangeEndFrame(), 101);
    for (int x = 1080; x > 700; x -= 10)
        Drag(QPoint(x, 30));
    QCOMPARE(mProbe->GetRangeEndFrame() - mProbe->GetRangeStartFrame(), 19);
}

void tst_GlobalTimelineInteraction::WholeRangeCannotBeGrabbed()
{
    Press(QPoint(590, 30));
    QVERIFY(!mProbe->mDraggingRange);
    QVERIFY(mProbe->mScrubbing);
    Release();
    SetRange(2, 101);
    Press(QPoint(600, 30));
    QVERIFY(mProbe->mDraggingRange);
}

void tst_GlobalTimelineInteraction::RangeIsAskedForOnlyOnAChange()
{
    SetRange(30, 60);
    Press(QPoint(700, 30));
    mHost->Take();
    Drag(QPoint(694, 30));
    Drag(QPoint(693, 30));
    QCOMPARE(mHost->Take(), QStringList());
    Drag(QPoint(685, 30));
    QCOMPARE(mHost->Take(), (QStringList{Range(30, 59), Time(59, false)}));
    Drag(QPoint(684, 30));
    QCOMPARE(mHost->Take(), QStringList());
}

void tst_GlobalTimelineInteraction::UnansweredRequestsMoveNothing()
{
    mHost->answers = false;
    SetRange(30, 60);
    Press(QPoint(390, 30));
    Drag(QPoint(500, 30));
    QCOMPARE(mProbe->GetPlaybackFrame(), 1);
    QCOMPARE(mProbe->GetRangeStartFrame(), 30);
    QCOMPARE(mProbe->GetRangeEndFrame(), 60);
}

void tst_GlobalTimelineInteraction::SecondButtonPausesTheDrag()
{
    Press(QPoint(590, 10));
    mHost->Take();
    SendMouse(mProbe.get(), QEvent::MouseMove, QPoint(690, 10), Qt::NoButton,
              Qt::LeftButton | Qt::RightButton);
    QCOMPARE(mHost->Take(), QStringList());
    SendMouse(mProbe.get(), QEvent::MouseButtonRelease, QPoint(690, 10), Qt::RightButton, Qt::LeftButton);
    QCOMPARE(mHost->Take(), QStringList());
    QVERIFY(mProbe->mScrubbing);
    Drag(QPoint(690, 10));
    QCOMPARE(mHost->Take(), QStringList{Time(59, true)});
}

void tst_GlobalTimelineInteraction::OtherButtonsScrubNothing()
{
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
    {
        SendMouse(mProbe.get(), QEvent::MouseButtonPress, QPoint(590, 10), button, button);
        SendMouse(mProbe.get(), QEvent::MouseMove, QPoint(690, 10), Qt::NoButton, button);
        SendMouse(mProbe.get(), QEvent::MouseButtonRelease, QPoint(690, 10), button, Qt::NoButton);
    }
    QCOMPARE(mHost->Take(), QStringList());
}

void tst_GlobalTimelineInteraction::PressAndReleaseGoOnToTheParent()
{
    QVERIFY(
        !SendMouse(mProbe.get(), QEvent::MouseButtonPress, QPoint(590, 10), Qt::LeftButton, Qt::LeftButton));
    QVERIFY(
        !SendMouse(mProbe.get(), QEvent::MouseButtonRelease, QPoint(590, 10), Qt::LeftButton, Qt::NoButton));
}

void tst_GlobalTimelineInteraction::PressFocusesTheParent_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("right") << int(Qt::RightButton);
}

void tst_GlobalTimelineInteraction::PressFocusesTheParent()
{
    QFETCH(int, button);
    QWidget window;
    window.resize(600, 100);
    window.setFocusPolicy(Qt::StrongFocus);
    QWidget other(&window);
    other.setFocusPolicy(Qt::StrongFocus);
    GlobalProbe probe(&window);
    probe.setGeometry(0, 50, 600, 40);
    // Tells the context menu off.
    probe.setContextMenuPolicy(Qt::NoContextMenu);
    TimelineHost host(&probe);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other.setFocus();
    InputEvents::Press(&probe, QPoint(300, 10), static_cast<Qt::MouseButton>(button));
    QVERIFY(window.hasFocus());
    InputEvents::Release(&probe, QPoint(300, 10), static_cast<Qt::MouseButton>(button));
    QCOMPARE(host.Take().contains(TimelineHost::Scrub(true)), button == Qt::LeftButton);
}

void tst_GlobalTimelineInteraction::HoverAsksEachAreaOnItsOwn()
{
    SetRange(30, 60);
    const auto hover = [this](QPoint pos)
    {
        mProbe->mUpdatePending = false;
        SendMouse(mProbe.get(), QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton);
        return QList<bool>{mProbe->mHoverRange, mProbe->mHoverRangeStart, mProbe->mHoverRangeEnd,
                           mProbe->mUpdatePending};
    };
    QCOMPARE(hover(QPoint(500, 30)), (QList<bool>{true, false, false, true}));
    QCOMPARE(hover(QPoint(390, 30)), (QList<bool>{false, true, false, true}));
    QCOMPARE(hover(QPoint(700, 30)), (QList<bool>{false, false, true, true}));
    QCOMPARE(hover(QPoint(500, 10)), (QList<bool>{false, false, false, true}));
    // One frame of one pixel: the crossed corners meet, and the handles overlap the range.
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{1010});
    mProbe->SetTimeline(mTimeline);
    SetRange(500, 500);
    bool both = false;
    for (int x = 590; x < 610; ++x)
    {
        const QList<bool> flags = hover(QPoint(x, 30));
        both = both || (flags[0] && flags[1] && flags[2]);
    }
    QVERIFY(both);
    // A press takes the range first.
    Press(QPoint(599, 30));
    QVERIFY(mProbe->mDraggingRange);
    QVERIFY(!mProbe->mDraggingRangeStart);
}

void tst_GlobalTimelineInteraction::LeavingForgetsTheHover()
{
    mProbe->mHoverRange = mProbe->mHoverRangeStart = mProbe->mHoverRangeEnd = true;
    mProbe->mUpdatePending = false;
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(mProbe.get(), &leave);
    QVERIFY(!mProbe->mHoverRange && !mProbe->mHoverRangeStart && !mProbe->mHoverRangeEnd);
    QVERIFY(mProbe->mUpdatePending);
}

void tst_GlobalTimelineInteraction::NoFramesClampToZero()
{
    mHost->answers = false;
    mTimeline->frameToTime = [](int frame) { return int64_t(frame) * 1000; };
    mProbe->mFrameCount = 0;
    mProbe->DragRange(QPoint(590, 30), true, true, true);
    QCOMPARE(mHost->Take().value(0), TimelineHost::Range(0, 0));
}

void tst_GlobalTimelineInteraction::RealMouseDragsTheRange()
{
    mHost.reset();
    mProbe->resize(706, 40);
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{101});
    mProbe->SetTimeline(mTimeline);
    mProbe->show();
    QVERIFY(QTest::qWaitForWindowExposed(mProbe.get()));
    // 506 pixels of bar: a little over 5 for each frame.
    SetRange(30, 60);
    mProbe->SetPlaybackTime(mTimeline->frameToTime(45));
    mHost = std::make_unique<TimelineHost>(mProbe.get());
    InputEvents::Press(mProbe.get(), QPoint(324, 30));
    mHost->Take();
    const int before = mProbe->GetPlaybackFrame();
    InputEvents::Move(mProbe.get(), QPoint(374, 30), Qt::LeftButton);
    const int moved = mProbe->GetPlaybackFrame() - before;
    QVERIFY(moved >= 9 && moved <= 11);
    QCOMPARE(mProbe->GetRangeStartFrame(), 30 + moved);
    QCOMPARE(mProbe->GetRangeEndFrame(), 60 + moved);
    InputEvents::Release(mProbe.get(), QPoint(374, 30));
    QCOMPARE(mHost->Take().last(), TimelineHost::Scrub(false));
}

static const TestRegistration<tst_GlobalTimelineInteraction> GlobalTimelineInteractionRegistration;

#include "tst_GlobalTimelineInteraction.moc"
