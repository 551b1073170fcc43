// SPDX-License-Identifier: MIT
#include "playback/PlaybackRange.h"
#include "support/TestRegistry.h"

#include <QRandomGenerator>
#include <QtTest>

class tst_PlaybackRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void EveryAdvanceAgreesWithSingleSteps();
    void NoLoopStopsAtTheEnd();
    void LoopGoesOnAtTheOtherEnd();
    void PingPongShowsTheEndOnce();
    void AStartOutsideCountsAsItsNearestFrame();
    void ARangeOfOneFrameStays();
    void ManyLapsDoNotOverflow();
};

namespace
{

/// One step, told as a reviewer would: the second statement of the rule.
PlaybackPosition StepOnce(PlaybackPosition position, const PlaybackRange& range, LoopType loopType)
{
    if (position.ended)
        return position;
    const int next = position.frame + position.direction;
    if (next >= range.first && next <= range.last)
        position.frame = next;
    else if (loopType == NoLoop)
        position.ended = true;
    else if (range.first == range.last)
        return position;
    else if (loopType == Loop)
        position.frame = position.direction > 0 ? range.first : range.last;
    else
    {
        position.direction = -position.direction;
        position.frame += position.direction;
    }
    return position;
}

} // namespace

void tst_PlaybackRange::EveryAdvanceAgreesWithSingleSteps()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 2000; ++round)
    {
        const int first = random.bounded(1, 20);
        const PlaybackRange range{first, first + random.bounded(0, 12)};
        const LoopType loopType = static_cast<LoopType>(random.bounded(3));
        const PlaybackPosition start{random.bounded(range.first, range.last + 1), random.bounded(2) ? 1 : -1,
                                     false};
        PlaybackPosition expected = start;
        for (int steps = 0; steps < 40; ++steps)
        {
            const PlaybackPosition actual = AdvancePlayback(start, steps, range, loopType);
            QCOMPARE(actual.frame, expected.frame);
            QCOMPARE(actual.ended, expected.ended);
            // At a turning point either direction leads on to the same frame.
            if (loopType != PingPong || (expected.frame != range.first && expected.frame != range.last))
                QCOMPARE(actual.direction, expected.direction);
            expected = StepOnce(expected, range, loopType);
        }
    }
}

void tst_PlaybackRange::NoLoopStopsAtTheEnd()
{
    const PlaybackPosition end = AdvancePlayback({5, 1, false}, 6, {1, 10}, NoLoop);
    QCOMPARE(end.frame, 10);
    QVERIFY(end.ended);
    QVERIFY(!AdvancePlayback({5, 1, false}, 5, {1, 10}, NoLoop).ended);
    const PlaybackPosition start = AdvancePlayback({5, -1, false}, 50, {1, 10}, NoLoop);
    QCOMPARE(start.frame, 1);
    QVERIFY(start.ended);
}

void tst_PlaybackRange::LoopGoesOnAtTheOtherEnd()
{
    QCOMPARE(AdvancePlayback({10, 1, false}, 1, {3, 10}, Loop).frame, 3);
    QCOMPARE(AdvancePlayback({3, -1, false}, 1, {3, 10}, Loop).frame, 10);
}

void tst_PlaybackRange::PingPongShowsTheEndOnce()
{
    QList<int> frames;
    for (int steps = 0; steps < 8; ++steps)
        frames << AdvancePlayback({2, 1, false}, steps, {1, 4}, PingPong).frame;
    QCOMPARE(frames, (QList<int>{2, 3, 4, 3, 2, 1, 2, 3}));
    QCOMPARE(AdvancePlayback({2, 1, false}, 4, {1, 4}, PingPong).direction, -1);
}

void tst_PlaybackRange::AStartOutsideCountsAsItsNearestFrame()
{
    QCOMPARE(AdvancePlayback({1, 1, false}, 2, {5, 10}, Loop).frame, 7);
    QCOMPARE(AdvancePlayback({99, -1, false}, 2, {5, 10}, Loop).frame, 8);
}

void tst_PlaybackRange::ARangeOfOneFrameStays()
{
    for (const LoopType loopType : {Loop, PingPong})
    {
        const PlaybackPosition position = AdvancePlayback({4, 1, false}, 1000, {4, 4}, loopType);
        QCOMPARE(position.frame, 4);
        QVERIFY(!position.ended);
    }
    QVERIFY(AdvancePlayback({4, 1, false}, 1, {4, 4}, NoLoop).ended);
}

void tst_PlaybackRange::ManyLapsDoNotOverflow()
{
    const PlaybackPosition position =
        AdvancePlayback({1, 1, false}, int64_t(1) << 60, {1, std::numeric_limits<int>::max()}, Loop);
    QVERIFY(position.frame >= 1);
}

static const TestRegistration<tst_PlaybackRange> PlaybackRangeRegistration;

#include "tst_PlaybackRange.moc"
