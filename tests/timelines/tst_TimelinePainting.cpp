// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "timelines/TimelineProbe.h"
#include "timelines/TimelineReference.h"

#include <QApplication>
#include <QCursor>
#include <QPainter>
#include <QtTest>

class tst_TimelinePainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        Settings::RestoreDefaults();
        QCursor::setPos(799, 599);
        QApplication::processEvents();
    }

    void RandomStates_data();
    void RandomStates();
    void WithoutATimeline();
    void ATimelineThatDiesShowsAsNone();
    void WidthOfNothingPaintsNothing();
    void FrameSpanNeedsMoreThanTwoPixels();
    void FirstBookmarkOnAPixelDecidesTheColour();
    void BookmarkPastTheEndIsNotDrawn();
    void PlainBookmarkDoesNotEndTheSearchForAnAnnotatedOne();
    void CacheOfNoLengthDrawsNoLine();
    void CacheLineLetsTheElementsShowThrough();
    void PlaybackOutsideTheRangeLeavesTheRangeTimelineWithoutPlayhead();
    void HoverMarkerFollowsTheMouse();
    void HeldLeftButtonHidesTheHoverMarker();
    void HoveredRangeShowsBothGripsAndNoMarker();
    void StepsLeaveThePainterToTheNext();
    void HugeFramesAndTimesPaint();

private:
    static TimelineState HundredFrames(int width);
    template<typename Probe>
    static QImage Picture(Probe& probe, const TimelineState& state);
    static QByteArray Difference(const QImage& picture, const TimelineState& state);
};

template<typename Probe>
QImage tst_TimelinePainting::Picture(Probe& probe, const TimelineState& state)
{
    probe.resize(state.width, probe.height());
    ApplyTimelineState(&probe, state);
    probe.mHoverRange = state.hoverRange;
    probe.mHoverRangeStart = state.hoverStart;
    probe.mHoverRangeEnd = state.hoverEnd;
    probe.setAttribute(Qt::WA_UnderMouse, state.cursor.has_value());
    if (state.cursor)
        QCursor::setPos(probe.mapToGlobal(*state.cursor));
    return probe.grab().toImage();
}

QByteArray tst_TimelinePainting::Difference(const QImage& picture, const TimelineState& state)
{
    const QFont font = QWidget().font();
    return PictureDifference(picture, picture.height() == 40
                                          ? GlobalTimelinePicture(state, font, picture.format())
                                          : RangeTimelinePicture(state, font, picture.format()));
}

TimelineState tst_TimelinePainting::HundredFrames(int width)
{
    TimelineState state;
    state.width = width;
    state.timeline = std::make_shared<FakeTimeline>(QList<int>{30, 20, 50});
    state.rangeEnd = INT64_MAX;
    return state;
}

void tst_TimelinePainting::RandomStates_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 0; seed < 40; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_TimelinePainting::RandomStates()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    for (int i = 0; i < 25; ++i)
    {
        TimelineState state = RandomTimelineState(random);
        GlobalProbe global;
        QByteArray difference = Difference(Picture(global, state), state);
        QVERIFY2(difference.isEmpty(), difference + " global, state " + QByteArray::number(i));
        state.hoverRange = state.hoverStart = state.hoverEnd = false;
        RangeProbe range;
        difference = Difference(Picture(range, state), state);
        QVERIFY2(difference.isEmpty(), difference + " range, state " + QByteArray::number(i));
    }
}

void tst_TimelinePainting::WithoutATimeline()
{
    GlobalProbe global;
    global.resize(600, 40);
    TimelineState state;
    state.width = 600;
    state.desiredRate = 0;
    const QImage picture = global.grab().toImage();
    // A widget that was told nothing has frame 0 everywhere, and a bar without width at its left end.
    QCOMPARE(picture.pixelColor(105, 29), QColor(64, 64, 64));
    QCOMPARE(picture.pixelColor(499, 29), QColor(64, 64, 64));
    QCOMPARE(picture.pixelColor(500, 29), QColor(Qt::black));
    QCOMPARE(global.FormatFrame(0), QStringLiteral("0"));
    const QByteArray difference = Difference(Picture(global, state), state);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_TimelinePainting::ATimelineThatDiesShowsAsNone()
{
    TimelineState state = HundredFrames(600);
    state.timeline->MarkFrame(20, true);
    GlobalProbe global;
    RangeProbe range;
    const QImage before = Picture(global, state);
    Picture(range, state);
    state.timeline.reset();
    const QImage after = global.grab().toImage();
    QVERIFY(after != before);
    QVERIFY(!range.grab().toImage().isNull());
    QCOMPARE(global.FormatFrame(5), QStringLiteral("5"));
    global.UpdateElementInfos();
    QCOMPARE(global.mFrameCount, 0);
    QCOMPARE(global.mPlaybackFrame, 0);
}

void tst_TimelinePainting::WidthOfNothingPaintsNothing()
{
    for (const int width : {0, 1})
    {
        TimelineState state = HundredFrames(width);
        GlobalProbe global;
        RangeProbe range;
        QCOMPARE(Picture(global, state).width(), width);
        QCOMPARE(Picture(range, state).width(), width);
    }
}

void tst_TimelinePainting::FrameSpanNeedsMoreThanTwoPixels()
{
    TimelineState state = HundredFrames(400);
    state.playback = state.timeline->FrameToTime(41);
    GlobalProbe global;
    QImage picture = Picture(global, state);
    QCOMPARE(global.mFrameWidth, 2.0f);
    QCOMPARE(picture.pixelColor(182, 27), QColor(160, 160, 160));
    state.width = 500;
    picture = Picture(global, state);
    QVERIFY(picture.pixelColor(222, 27) != QColor(160, 160, 160));
    QCOMPARE(picture.pixelColor(223, 27), QColor(160, 160, 160));
}

void tst_TimelinePainting::FirstBookmarkOnAPixelDecidesTheColour()
{
    TimelineState state = HundredFrames(250);
    state.timeline->MarkFrame(51, false);
    state.timeline->MarkFrame(52, true);
    GlobalProbe global;
    const QImage picture = Picture(global, state);
    const QColor flag = picture.pixelColor(125, 34);
    QCOMPARE(flag.red(), flag.green());
    QVERIFY(flag.red() > 140);
    QVERIFY(Difference(picture, state).isEmpty());
}

void tst_TimelinePainting::BookmarkPastTheEndIsNotDrawn()
{
    TimelineState state = HundredFrames(600);
    GlobalProbe global;
    RangeProbe range;
    const QImage globalBare = Picture(global, state);
    const QImage rangeBare = Picture(range, state);
    state.timeline->Mark(state.timeline->endTime + 1, true);
    QCOMPARE(Picture(global, state), globalBare);
    QCOMPARE(Picture(range, state), rangeBare);
    state.timeline->Mark(state.timeline->endTime, true);
    QVERIFY(Picture(global, state) != globalBare);
    QVERIFY(Picture(range, state) != rangeBare);
}

void tst_TimelinePainting::PlainBookmarkDoesNotEndTheSearchForAnAnnotatedOne()
{
    TimelineState state = HundredFrames(1000);
    state.playback = state.timeline->FrameToTime(51);
    state.timeline->MarkFrame(51, false);
    GlobalProbe global;
    QColor head = Picture(global, state).pixelColor(501, 30);
    QCOMPARE(head.red(), head.green());
    state.timeline->MarkFrame(51, true);
    head = Picture(global, state).pixelColor(501, 30);
    QVERIFY(head.green() > head.red() + 50);
}

void tst_TimelinePainting::CacheOfNoLengthDrawsNoLine()
{
    TimelineState state = HundredFrames(1000);
    state.cacheStart = state.cacheEnd = state.timeline->FrameToTime(50);
    GlobalProbe global;
    QCOMPARE(Picture(global, state).pixelColor(495, 31), Picture(global, state).pixelColor(495, 27));
    state.cacheEnd = state.timeline->FrameToTime(51);
    QVERIFY(Picture(global, state).pixelColor(495, 31).blue() >
            Picture(global, state).pixelColor(495, 31).red());
}

void tst_TimelinePainting::CacheLineLetsTheElementsShowThrough()
{
    TimelineState state = HundredFrames(1000);
    state.cacheEnd = state.timeline->endTime;
    GlobalProbe global;
    const QImage picture = Picture(global, state);
    QVERIFY(picture.pixelColor(330, 31) != picture.pixelColor(400, 31));
    QCOMPARE(picture.pixelColor(330, 29), QColor(140, 140, 140));
    QCOMPARE(picture.pixelColor(400, 29), QColor(160, 160, 160));
    QCOMPARE(picture.pixelColor(400, 33), QColor(160, 160, 160));
}

void tst_TimelinePainting::PlaybackOutsideTheRangeLeavesTheRangeTimelineWithoutPlayhead()
{
    TimelineState state = HundredFrames(600);
    state.rangeStart = state.timeline->FrameToTime(10);
    state.rangeEnd = state.timeline->FrameToTime(20);
    state.playback = state.rangeEnd;
    RangeProbe range;
    QVERIFY(Picture(range, state).pixelColor(505, 20) != QColor(Qt::black));
    state.playback = state.timeline->FrameToTime(21);
    const QImage picture = Picture(range, state);
    for (int x = 55; x < 545; ++x)
        QCOMPARE(picture.pixelColor(x, 20), QColor(Qt::black));
}

void tst_TimelinePainting::HoverMarkerFollowsTheMouse()
{
    for (const bool isRange : {false, true})
    {
        QCursor::setPos(799, 599);
        GlobalProbe global;
        RangeProbe range;
        TimelineWidget* const widget = isRange ? static_cast<TimelineWidget*>(&range) : &global;
        TimelineState state = HundredFrames(700);
        state.rangeStart = state.timeline->FrameToTime(41);
        widget->resize(700, widget->height());
        ApplyTimelineState(widget, state);
        widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(widget));
        state.cursor = QPoint(150, 10);
        InputEvents::Move(widget, *state.cursor);
        QVERIFY(widget->underMouse());
        QByteArray difference = Difference(widget->grab().toImage(), state);
        QVERIFY2(difference.isEmpty(), difference);
        // In a side panel of the range timeline there is no frame to point at.
        state.cursor = QPoint(10, 30);
        InputEvents::Move(widget, *state.cursor);
        difference = Difference(widget->grab().toImage(), state);
        QVERIFY2(difference.isEmpty(), difference);
        InputEvents::Move(widget, QPoint(150, 10), Qt::RightButton);
        state.cursor = QPoint(150, 10);
        difference = Difference(widget->grab().toImage(), state);
        QVERIFY2(difference.isEmpty(), difference);
        InputEvents::Move(widget, QPoint(150, 10));
    }
}

void tst_TimelinePainting::HeldLeftButtonHidesTheHoverMarker()
{
    TimelineState state = HundredFrames(700);
    GlobalProbe global;
    global.resize(700, 40);
    ApplyTimelineState(&global, state);
    global.show();
    QVERIFY(QTest::qWaitForWindowExposed(&global));
    InputEvents::Press(&global, QPoint(400, 10));
    QByteArray difference = Difference(global.grab().toImage(), state);
    QVERIFY2(difference.isEmpty(), difference);
    // With another button held too, the marker is back.
    const QPoint pressed(400, 10);
    qt_handleMouseEvent(global.windowHandle(), pressed, global.mapToGlobal(pressed),
                        Qt::LeftButton | Qt::MiddleButton, Qt::MiddleButton, QEvent::MouseButtonPress,
                        Qt::NoModifier, 1);
    QApplication::processEvents();
    state.cursor = QPoint(400, 10);
    difference = Difference(global.grab().toImage(), state);
    QVERIFY2(difference.isEmpty(), difference);
    InputEvents::Release(&global, QPoint(400, 10));
    difference = Difference(global.grab().toImage(), state);
    QVERIFY2(difference.isEmpty(), difference);
}

namespace
{

/// Notes what a step finds on the painter.
class PainterSpy : public GlobalProbe
{
public:
    QStringList found;

protected:
    void DrawRangeBookmarks(QPainter* painter) override
    {
        Note("range bookmarks", painter);
        GlobalProbe::DrawRangeBookmarks(painter);
    }
    void DrawTimeBookmarks(QPainter* painter) override
    {
        Note("frame bookmarks", painter);
        GlobalProbe::DrawTimeBookmarks(painter);
    }
    void DrawRangePosition(QPainter* painter) override
    {
        Note("position", painter);
        GlobalProbe::DrawRangePosition(painter);
    }
    void DrawFrameRates(QPainter* painter) override
    {
        Note("rates", painter);
        GlobalProbe::DrawFrameRates(painter);
    }

private:
    void Note(const char* step, const QPainter* painter)
    {
        const QPen pen = painter->pen();
        found << QStringLiteral("%1: pen %2 of %3, brush %4, font %5")
                     .arg(QLatin1String(step), pen.color().name(QColor::HexArgb))
                     .arg(pen.width())
                     .arg(painter->brush().style() == Qt::NoBrush
                              ? QStringLiteral("none")
                              : painter->brush().color().name(QColor::HexArgb))
                     .arg(painter->font().pointSize());
    }
};

} // namespace

void tst_TimelinePainting::StepsLeaveThePainterToTheNext()
{
    TimelineState state = HundredFrames(700);
    state.timeline->MarkFrame(30, false);
    PainterSpy spy;
    Picture(spy, state);
    QCOMPARE(spy.found, (QStringList{"range bookmarks: pen #ffc8c8c8 of 2, brush none, font -1",
                                     "frame bookmarks: pen #ffc8c8c8 of 2, brush #ff000000, font -1",
                                     "position: pen #c8ffffff of 1, brush #ff000000, font 15",
                                     "rates: pen #ff8c8c8c of 1, brush #ff000000, font 8"}));
}

void tst_TimelinePainting::HoveredRangeShowsBothGripsAndNoMarker()
{
    TimelineState state = HundredFrames(700);
    state.rangeStart = state.timeline->FrameToTime(41);
    state.rangeEnd = state.timeline->FrameToTime(60);
    GlobalProbe global;
    global.resize(700, 40);
    ApplyTimelineState(&global, state);
    global.show();
    QVERIFY(QTest::qWaitForWindowExposed(&global));
    state.cursor = QPoint(350, 30);
    state.hoverRange = true;
    InputEvents::Move(&global, *state.cursor);
    QByteArray difference = Difference(global.grab().toImage(), state);
    QVERIFY2(difference.isEmpty(), difference);
    // One handle alone.
    state.cursor = QPoint(296, 30);
    state.hoverRange = false;
    state.hoverStart = true;
    InputEvents::Move(&global, *state.cursor);
    difference = Difference(global.grab().toImage(), state);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_TimelinePainting::HugeFramesAndTimesPaint()
{
    for (const int huge : {2147483647, -2147483647 - 1, 1073741824})
    {
        TimelineState state = HundredFrames(600);
        state.timeline->elements[1].startFrame = huge;
        state.timeline->elements[2].frameCount = huge;
        state.timeline->timeToFrame = [huge](int64_t time) { return time % 2 == 0 ? huge : -(huge / 3); };
        state.timeline->frameToTime = [huge](int) { return huge > 0 ? INT64_MAX : INT64_MIN; };
        state.timeline->Mark(3, true);
        state.timeline->Mark(4, false);
        state.timeline->GetBookmarks()->AddRangeBookmark(RangeBookmark(3, 4));
        state.timeline->GetBookmarks()->AddRangeBookmark(RangeBookmark(4, 3));
        for (const int64_t time : {INT64_MIN, INT64_MAX, int64_t(-7), int64_t(8)})
            for (const TimelineDisplayType type : {FrameNumbersGlobal, Seconds, TimeCode, FrameNumbersRange})
            {
                state.displayType = type;
                state.playback = state.rangeStart = state.cacheEnd = time;
                state.cursor = QPoint(300, 10);
                GlobalProbe global;
                RangeProbe range;
                QCOMPARE(Picture(global, state).height(), 40);
                QCOMPARE(Picture(range, state).height(), 46);
                for (GlobalTimelineWidget* widget : {static_cast<GlobalTimelineWidget*>(&global),
                                                     static_cast<GlobalTimelineWidget*>(&range)})
                    for (const QPoint from :
                         {QPoint(300, 10), QPoint(300, 30), QPoint(10, 30), QPoint(590, 30)})
                    {
                        QTest::mousePress(widget, Qt::LeftButton, {}, from);
                        QMouseEvent move(QEvent::MouseMove, from + QPoint(50, 0), QPoint(5000, 10),
                                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
                        QApplication::sendEvent(widget, &move);
                        QTest::mouseRelease(widget, Qt::LeftButton, {}, from);
                        widget->SetRangeStartToPosition();
                        widget->SetRangeEndToPosition();
                    }
                global.mDraggingRange = true;
                global.DragRange(QPoint(300, 10), true, true, true);
                global.UpdateMenuActions(300);
                range.UpdateMenuActions(300);
                QCOMPARE(global.GetPlaybackTimeAtOffset(huge), state.timeline->frameToTime(0));
            }
    }
}

static const TestRegistration<tst_TimelinePainting> TimelinePaintingRegistration;

#include "tst_TimelinePainting.moc"
