// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "timelines/TimelineProbe.h"
#include "timelines/TimelineReference.h"

#include <QCursor>
#include <QPainter>
#include <QtTest>

/// Timelines with thousands of elements and bookmarks, whose pictures are put together another way than one
/// fill after the other, and on painters where that way is not open.
class tst_TimelineCrowds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Settings::RestoreDefaults(); }

    void PictureIsThatOfOneFillAfterTheOther_data();
    void PictureIsThatOfOneFillAfterTheOther();
    void RangeBookmarksAddUpUntilTheirColourSettles();
    void ElementsOutOfOrderKeepTheLastOnTop();
    void TranslucentElementColoursAddUp();
    void PartOfAWidgetIsPaintedLikeTheWhole();

private:
    static QByteArray Difference(GlobalProbe& probe, const TimelineState& state, QImage::Format format);
    static TimelineState Crowd(int count, QRandomGenerator& random);
};

TimelineState tst_TimelineCrowds::Crowd(int count, QRandomGenerator& random)
{
    TimelineState state;
    QList<int> lengths;
    for (int i = 0; i < count; ++i)
        lengths << 1 + random.bounded(4);
    state.timeline = std::make_shared<FakeTimeline>(lengths);
    const int frames = state.timeline->timeToFrame(state.timeline->endTime);
    for (int i = 0; i < count; ++i)
    {
        state.timeline->MarkFrame(1 + random.bounded(frames), random.bounded(2) == 0);
        const int from = 1 + random.bounded(frames);
        const int to = std::min(from + random.bounded(-2, i % 2 == 0 ? 5 : frames / 3), frames);
        state.timeline->GetBookmarks()->AddRangeBookmark(
            RangeBookmark(state.timeline->frameToTime(from), state.timeline->frameToTime(to)));
    }
    state.rangeStart = state.timeline->frameToTime(frames / 10);
    state.rangeEnd = state.timeline->frameToTime(frames * 8 / 10);
    state.playback = state.timeline->frameToTime(frames / 2);
    state.cacheEnd = state.timeline->frameToTime(frames / 3);
    return state;
}

QByteArray tst_TimelineCrowds::Difference(GlobalProbe& probe, const TimelineState& state,
                                          QImage::Format format)
{
    probe.resize(state.width, 40);
    ApplyTimelineState(&probe, state);
    const QImage expected = GlobalTimelinePicture(state, probe.font(), format);
    QImage actual(expected.size(), format);
    actual.setDevicePixelRatio(state.pixelRatio);
    probe.render(&actual, QPoint(), QRegion(), QWidget::RenderFlags());
    return PictureDifference(actual, expected);
}

void tst_TimelineCrowds::PictureIsThatOfOneFillAfterTheOther_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("pixelRatio");
    for (const int count : {15, 16, 300, 2500})
        for (const int width : {204, 500, 1600})
            for (const double pixelRatio : {1.0, 1.5, 2.0})
                QTest::addRow("%d in %d pixels at %.1f", count, width, pixelRatio)
                    << count << width << pixelRatio;
}

void tst_TimelineCrowds::PictureIsThatOfOneFillAfterTheOther()
{
    QFETCH(int, count);
    QFETCH(int, width);
    QFETCH(double, pixelRatio);
    QRandomGenerator random(static_cast<quint32>(count * width));
    TimelineState state = Crowd(count, random);
    state.width = width;
    state.pixelRatio = pixelRatio;
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied})
    {
        GlobalProbe global;
        const QByteArray difference = Difference(global, state, format);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_TimelineCrowds::RangeBookmarksAddUpUntilTheirColourSettles()
{
    for (int depth = 1; depth < 40; ++depth)
    {
        TimelineState state;
        state.timeline = std::make_shared<FakeTimeline>(QList<int>{60, 40});
        state.rangeEnd = state.timeline->frameToTime(50);
        for (int i = 0; i < depth; ++i)
            state.timeline->GetBookmarks()->AddRangeBookmark(
                RangeBookmark(state.timeline->frameToTime(1 + i), state.timeline->frameToTime(90 - i)));
        GlobalProbe global;
        const QByteArray difference = Difference(global, state, QImage::Format_RGB32);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_TimelineCrowds::ElementsOutOfOrderKeepTheLastOnTop()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 50; ++round)
    {
        TimelineState state = Crowd(40, random);
        state.width = 500;
        for (ElementInfo& element : state.timeline->elements)
            element.startFrame = random.bounded(-5, 110);
        GlobalProbe global;
        const QByteArray difference = Difference(global, state, QImage::Format_RGB32);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

namespace
{

class TranslucentProbe : public GlobalProbe
{
protected:
    QColor ElementStripColor() override { return QColor(255, 0, 0, 60); }
};

} // namespace

void tst_TimelineCrowds::TranslucentElementColoursAddUp()
{
    TimelineState state;
    state.width = 400;
    state.timeline = std::make_shared<FakeTimeline>(QList<int>{10, 10, 10, 10, 10});
    TranslucentProbe probe;
    probe.resize(400, 40);
    probe.SetTimeline(state.timeline);
    probe.SetPlaybackRange(0, 0);
    const QImage picture = probe.grab().toImage();
    QImage row(400, 1, picture.format());
    row.fill(Qt::black);
    QPainter painter(&row);
    for (int i = 0; i < 5; ++i)
        painter.fillRect(100 + i * 40, 0, 200 - i * 40, 1,
                         i % 2 == 0 ? QColor(255, 0, 0, 60) : QColor(74, 74, 74));
    painter.end();
    for (int x = 130; x < 310; ++x)
        QCOMPARE(picture.pixelColor(x, 32), row.pixelColor(x, 0));
}

void tst_TimelineCrowds::PartOfAWidgetIsPaintedLikeTheWhole()
{
    QRandomGenerator random(3);
    TimelineState state = Crowd(2000, random);
    state.width = 900;
    GlobalProbe probe;
    probe.resize(900, 40);
    ApplyTimelineState(&probe, state);
    const QImage whole = GlobalTimelinePicture(state, probe.font(), QImage::Format_RGB32);
    for (const QRect part : {QRect(0, 0, 300, 40), QRect(333, 0, 250, 40), QRect(150, 25, 600, 8)})
    {
        QImage actual(900, 40, QImage::Format_RGB32);
        actual.fill(Qt::black);
        probe.render(&actual, part.topLeft(), part, QWidget::RenderFlags());
        // A fill that a clip cuts may lie a shade beside the uncut one.
        const QByteArray difference = PictureDifference(actual.copy(part), whole.copy(part), 1);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

static const TestRegistration<tst_TimelineCrowds> TimelineCrowdsRegistration;

#include "tst_TimelineCrowds.moc"
