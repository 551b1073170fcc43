// SPDX-License-Identifier: MIT
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>

class tst_ElementTimeline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void SegmentsOfOneRateShowEachFrameOnce();
    void OtherRatesShowTheFrameOfTheirTime_data();
    void OtherRatesShowTheFrameOfTheirTime();
    void ElementsFollowEachOtherWithoutGaps();
    void TheFirstElementBringsTheRate();
    void AnEmptyTimelineHasNoFrames();
    void SourceRangesCutElements();
    void MarksAndDrawingsMoveWithTheirElements();
    void WhatHangsOnARemovedElementGoesWithIt();
    void DrawingsThatARangeCutsOffComeBack();
    void RangesThatCoverTheWholeGoOnDoingSo();
    void RearrangingAtRandomKeepsDrawingsOnTheirPictures();
    void AMissingSourceMakesItsElementsMissing();
};

namespace
{

std::shared_ptr<MediaTimeline> MakeSource(int frames, const FrameRate& rate = FrameRate{24, 1},
                                          bool missing = false)
{
    MediaInfo info;
    info.path = QStringLiteral("/media/shot_%1.mov").arg(frames);
    info.frameCount = frames;
    info.frameRate = rate;
    return std::make_shared<MediaTimeline>(
        std::make_shared<const MediaSource>(QUuid::createUuid(), info, missing));
}

std::shared_ptr<ElementObject> MakeElement(const std::shared_ptr<MediaTimeline>& source)
{
    return std::make_shared<ElementObject>(source);
}

QList<DrawData> Note(const QString& text)
{
    DrawData drawing;
    drawing.type = DrawText;
    drawing.text = text;
    return {drawing};
}

QString NoteAt(const ElementTimeline& timeline, int frame)
{
    const QList<DrawData> drawings = timeline.Annotations()->Drawings(frame);
    return drawings.isEmpty() ? QString() : drawings.first().text;
}

/// The element and the frame of its source on @p frame, walked from the start.
std::pair<QUuid, int> PictureOn(const ElementTimeline& timeline, int frame)
{
    int left = frame;
    for (const std::shared_ptr<ElementObject>& element : timeline.GetElements())
    {
        const PlaybackRange range = element->SourceTimeline()->Range();
        const int count = range.last - range.first + 1;
        if (left <= count)
            return {element->GetID(), range.first + left - 1};
        left -= count;
    }
    return {};
}

} // namespace

void tst_ElementTimeline::SegmentsOfOneRateShowEachFrameOnce()
{
    ElementTimeline timeline(QStringLiteral("cut"));
    timeline.SetElements({MakeElement(MakeSource(10)), MakeElement(MakeSource(5))});
    QCOMPARE(timeline.FrameCount(), 15);
    const TimelineSegment& second = timeline.Segments()[1];
    for (int frame = 11; frame <= 15; ++frame)
    {
        QCOMPARE(SegmentIndex(timeline.Segments(), frame), 1);
        QCOMPARE(second.MediaFrameOf(frame), frame - 10);
        QCOMPARE(second.FrameOf(frame - 10), frame);
    }
    QCOMPARE(SegmentIndex(timeline.Segments(), 0), -1);
    QCOMPARE(SegmentIndex(timeline.Segments(), 16), -1);
}

void tst_ElementTimeline::OtherRatesShowTheFrameOfTheirTime_data()
{
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::addColumn<int>("timelineNumerator");
    QTest::addColumn<int>("timelineDenominator");
    QTest::newRow("24 in 25") << 24 << 1 << 25 << 1;
    QTest::newRow("25 in 24") << 25 << 1 << 24 << 1;
    QTest::newRow("60 in 24") << 60 << 1 << 24 << 1;
    QTest::newRow("24 in 60") << 24 << 1 << 60 << 1;
    QTest::newRow("23.976 in 24") << 24000 << 1001 << 24 << 1;
    QTest::newRow("29.97 in 23.976") << 30000 << 1001 << 24000 << 1001;
    QTest::newRow("12 in 48") << 12 << 1 << 48 << 1;
}

void tst_ElementTimeline::OtherRatesShowTheFrameOfTheirTime()
{
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    QFETCH(int, timelineNumerator);
    QFETCH(int, timelineDenominator);
    const FrameRate mediaRate{numerator, denominator};
    const FrameRate rate{timelineNumerator, timelineDenominator};
    const int mediaFrames = 499;
    ElementTimeline timeline(QStringLiteral("mixed"));
    timeline.SetRate(rate);
    timeline.SetElements({MakeElement(MakeSource(7, rate)), MakeElement(MakeSource(mediaFrames, mediaRate))});
    const TimelineSegment& segment = timeline.Segments()[1];
    const double ratio = mediaRate.PerSecond() / rate.PerSecond();
    QCOMPARE(segment.count, int(std::lround(mediaFrames / ratio)));
    QCOMPARE(segment.first, 8);
    for (int offset = 0; offset < segment.count; ++offset)
    {
        // The second statement, in real numbers: the frame on screen at the start of the timeline's frame. A
        // start within a microsecond of a boundary may belong to either side.
        const double exact = offset * ratio;
        const int expected = std::min(int(std::floor(exact + 1e-9)), mediaFrames - 1) + 1;
        const int actual = segment.MediaFrameOf(segment.first + offset);
        const double fromBoundary = std::abs(exact - std::round(exact));
        if (fromBoundary > 1e-4 || fromBoundary < 1e-9)
            QCOMPARE(actual, expected);
        const int back = segment.FrameOf(actual);
        QCOMPARE(segment.MediaFrameOf(back), actual);
        QVERIFY(back == segment.first || segment.MediaFrameOf(back - 1) < actual);
    }
}

void tst_ElementTimeline::ElementsFollowEachOtherWithoutGaps()
{
    ElementTimeline timeline(QStringLiteral("cut"));
    timeline.SetElements(
        {MakeElement(MakeSource(10)), MakeElement(MakeSource(1)), MakeElement(MakeSource(30))});
    int next = 1;
    for (const ElementInfo& info : timeline.GetElementInfos())
    {
        QCOMPARE(info.startFrame, next);
        next += info.frameCount;
    }
    QCOMPARE(next, 42);
    QCOMPARE(timeline.GetElements()[2]->GetStartTime(), timeline.FrameToTime(12));
    QCOMPARE(timeline.GetElements()[2]->GetParentID(), timeline.GetID());
    QCOMPARE(timeline.GetEndTime(), timeline.FrameToTime(41));
}

void tst_ElementTimeline::TheFirstElementBringsTheRate()
{
    ElementTimeline timeline(QStringLiteral("cut"));
    QVERIFY(timeline.Rate() == (FrameRate{24, 1}));
    timeline.SetElements({MakeElement(MakeSource(10, FrameRate{25, 1})), MakeElement(MakeSource(10))});
    QVERIFY(timeline.Rate() == (FrameRate{25, 1}));
    timeline.SetElements({timeline.GetElements()[1]});
    QVERIFY(timeline.Rate() == (FrameRate{25, 1}));
}

void tst_ElementTimeline::AnEmptyTimelineHasNoFrames()
{
    ElementTimeline timeline(QStringLiteral("empty"));
    QCOMPARE(timeline.FrameCount(), 0);
    QCOMPARE(timeline.TimeToFrame(1000000), 1);
    QCOMPARE(timeline.GetEndTime(), int64_t(0));
    QVERIFY(!timeline.SourceAt(1));
    QCOMPARE(timeline.Range().first, 1);
    QCOMPARE(timeline.Range().last, 1);
}

void tst_ElementTimeline::SourceRangesCutElements()
{
    const std::shared_ptr<MediaTimeline> source = MakeSource(100);
    source->SetRange({11, 30});
    ElementTimeline timeline(QStringLiteral("cut"));
    timeline.SetElements({MakeElement(source)});
    QCOMPARE(timeline.FrameCount(), 20);
    QCOMPARE(timeline.Segments()[0].MediaFrameOf(1), 11);
    timeline.SetUsesSourceRanges(false);
    QCOMPARE(timeline.FrameCount(), 100);
    QCOMPARE(timeline.Segments()[0].MediaFrameOf(1), 1);
}

void tst_ElementTimeline::MarksAndDrawingsMoveWithTheirElements()
{
    ElementTimeline timeline(QStringLiteral("cut"));
    const auto a = MakeElement(MakeSource(10));
    const auto b = MakeElement(MakeSource(20));
    timeline.SetElements({a, b});
    timeline.SetMarked(3, true);
    timeline.SetMarked(15, true);
    timeline.Annotations()->SetDrawings(4, Note(QStringLiteral("a4")));
    timeline.Annotations()->SetDrawings(30, Note(QStringLiteral("b20")));
    timeline.GetBookmarks()->AddRangeBookmark(
        RangeBookmark(timeline.FrameToTime(12), timeline.FrameToTime(14)));
    const FrameData* const record = timeline.Annotations()->Find(4);

    timeline.SetElements({b, a});
    QCOMPARE(timeline.MarkedFrames(), (QSet<int>{23, 5}));
    QCOMPARE(NoteAt(timeline, 24), QStringLiteral("a4"));
    QCOMPARE(NoteAt(timeline, 20), QStringLiteral("b20"));
    QCOMPARE(timeline.Annotations()->Find(24), record);
    QCOMPARE(timeline.GetBookmarks()->GetTimeBookmarks().size(), 4);
    QCOMPARE(timeline.GetBookmarks()->GetRangeBookmarks().size(), 1);
    QCOMPARE(timeline.GetBookmarks()->GetRangeBookmarks()[0].startTime, timeline.FrameToTime(2));
    QCOMPARE(timeline.GetBookmarks()->GetRangeBookmarks()[0].endTime, timeline.FrameToTime(4));
}

void tst_ElementTimeline::WhatHangsOnARemovedElementGoesWithIt()
{
    ElementTimeline timeline(QStringLiteral("cut"));
    const auto a = MakeElement(MakeSource(10));
    const auto b = MakeElement(MakeSource(20));
    timeline.SetElements({a, b});
    timeline.SetMarked(3, true);
    timeline.Annotations()->SetDrawings(4, Note(QStringLiteral("a4")));
    timeline.Annotations()->SetDrawings(11, Note(QStringLiteral("b1")));
    timeline.SetElements({b});
    QCOMPARE(timeline.MarkedFrames(), QSet<int>());
    QCOMPARE(timeline.Annotations()->AnnotatedFrames(), (QVector<int>{1}));
    QVERIFY(timeline.OffstageDrawings().empty());
}

void tst_ElementTimeline::DrawingsThatARangeCutsOffComeBack()
{
    const std::shared_ptr<MediaTimeline> source = MakeSource(100);
    ElementTimeline timeline(QStringLiteral("cut"));
    timeline.SetElements({MakeElement(MakeSource(10)), MakeElement(source)});
    timeline.Annotations()->SetDrawings(15, Note(QStringLiteral("5")));
    timeline.Annotations()->SetDrawings(60, Note(QStringLiteral("50")));
    source->SetRange({20, 60});
    timeline.Relayout();
    QCOMPARE(timeline.Annotations()->AnnotatedFrames(), (QVector<int>{41}));
    QCOMPARE(timeline.OffstageDrawings().size(), size_t(1));
    source->SetRange({1, 100});
    timeline.Relayout();
    QCOMPARE(timeline.Annotations()->AnnotatedFrames(), (QVector<int>{15, 60}));
    QCOMPARE(NoteAt(timeline, 15), QStringLiteral("5"));
    QVERIFY(timeline.OffstageDrawings().empty());
}

void tst_ElementTimeline::RangesThatCoverTheWholeGoOnDoingSo()
{
    ElementTimeline timeline(QStringLiteral("cut"));
    timeline.SetElements({MakeElement(MakeSource(10))});
    timeline.SetRange({1, 10});
    timeline.SetElements({timeline.GetElements()[0], MakeElement(MakeSource(10))});
    QCOMPARE(timeline.Range().last, 20);
    timeline.SetRange({5, 15});
    timeline.SetElements({timeline.GetElements()[0]});
    QCOMPARE(timeline.Range().first, 5);
    QCOMPARE(timeline.Range().last, 10);
}

void tst_ElementTimeline::RearrangingAtRandomKeepsDrawingsOnTheirPictures()
{
    QRandomGenerator random(31);
    for (int round = 0; round < 200; ++round)
    {
        ElementTimeline timeline(QStringLiteral("cut"));
        ElementTimeline::Elements elements;
        for (int i = 0; i < 6; ++i)
            elements.push_back(MakeElement(MakeSource(random.bounded(1, 20))));
        timeline.SetElements(elements);
        std::map<std::pair<QUuid, int>, QString> notes;
        for (int i = 0; i < 12; ++i)
        {
            const int frame = random.bounded(1, timeline.FrameCount() + 1);
            const QString text = QString::number(random.bounded(100000));
            timeline.Annotations()->SetDrawings(frame, Note(text));
            notes[PictureOn(timeline, frame)] = text;
        }
        for (int change = 0; change < 8; ++change)
        {
            const int from = random.bounded(int(elements.size()));
            std::rotate(elements.begin(), elements.begin() + from, elements.end());
            MediaTimeline& source = *elements[0]->SourceTimeline();
            const int first = random.bounded(1, source.FrameCount() + 1);
            source.SetRange({first, random.bounded(first, source.FrameCount() + 1)});
            timeline.SetElements(elements);
            int shown = 0;
            for (int frame = 1; frame <= timeline.FrameCount(); ++frame)
            {
                const auto expected = notes.find(PictureOn(timeline, frame));
                QCOMPARE(NoteAt(timeline, frame), expected == notes.end() ? QString() : expected->second);
                shown += expected == notes.end() ? 0 : 1;
            }
            QCOMPARE(size_t(shown) + timeline.OffstageDrawings().size(), notes.size());
        }
    }
}

void tst_ElementTimeline::AMissingSourceMakesItsElementsMissing()
{
    const auto missing = MakeElement(MakeSource(10, FrameRate{24, 1}, true));
    ElementTimeline timeline(QStringLiteral("cut"));
    timeline.SetElements({MakeElement(MakeSource(10))});
    QVERIFY(!timeline.IsMissing());
    timeline.SetElements({timeline.GetElements()[0], missing});
    QVERIFY(missing->IsMissing());
    QVERIFY(timeline.IsMissing());
    QCOMPARE(timeline.FrameCount(), 20);
}

static const TestRegistration<tst_ElementTimeline> ElementTimelineRegistration;

#include "tst_ElementTimeline.moc"
