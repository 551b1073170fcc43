// SPDX-License-Identifier: MIT
#include "sound/SoundPath.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <cmath>

class tst_SoundPath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void TheSoundIsWithinThePicturesFrame_data();
    void TheSoundIsWithinThePicturesFrame();
    void ALoopGoesOnWithoutAGap();
    void LapsDoNotDrift();
    void OneFrameAloneIsSilent();
    void AfterTheEndThereIsSilence();
};

void tst_SoundPath::TheSoundIsWithinThePicturesFrame_data()
{
    QTest::addColumn<int>("loopType");
    QTest::addColumn<int>("direction");
    for (const LoopType type : {NoLoop, Loop, PingPong})
        for (const int direction : {1, -1})
            QTest::addRow("loop type %d, direction %d", type, direction) << int(type) << direction;
}

void tst_SoundPath::TheSoundIsWithinThePicturesFrame()
{
    QFETCH(int, loopType);
    QFETCH(int, direction);
    for (const FrameRate rate : {FrameRate{24, 1}, FrameRate{24000, 1001}, FrameRate{60000, 1001}})
        for (const PlaybackRange range : {PlaybackRange{1, 7}, PlaybackRange{5, 6}, PlaybackRange{100, 140}})
            for (const int frame : {range.first, range.first + 1, range.last, range.last + 50})
            {
                const PlaybackStart start{rate, {frame, direction, false}, range, LoopType(loopType), 1.0f,
                                          false};
                SoundPath path(start, 44100);
                const double perFrame = 44100.0 * rate.denominator / rate.numerator;
                int64_t played = 0;
                while (double(played) < 60 * perFrame)
                {
                    const SoundPath::Piece piece = path.Next(97);
                    QVERIFY(piece.count >= 1 && piece.count <= 97);
                    for (int i = 0; i < piece.count; ++i, ++played)
                    {
                        const int64_t place =
                            piece.isBackwards ? piece.first + piece.count - 1 - i : piece.first + i;
                        // A sample frame that lies across the border of two frames may belong to either.
                        bool fits = false;
                        for (const double edge : {0.0, 1.0})
                        {
                            const auto steps = int64_t(std::floor((double(played) + edge) / perFrame));
                            const PlaybackPosition shown =
                                AdvancePlayback(start.position, steps, range, LoopType(loopType));
                            // To half a sample frame, since neither a lap nor a frame is a whole number of
                            // those.
                            fits = fits ||
                                   (shown.ended ? piece.isSilent
                                                : !piece.isSilent &&
                                                      double(place) >= (shown.frame - 1) * perFrame - 1.01 &&
                                                      double(place) <= shown.frame * perFrame + 0.01);
                        }
                        if (!fits)
                            QFAIL(qPrintable(QStringLiteral("place %1 after %2").arg(place).arg(played)));
                    }
                }
            }
}

void tst_SoundPath::ALoopGoesOnWithoutAGap()
{
    const PlaybackStart start{FrameRate{24, 1}, {3, 1, false}, {2, 5}, Loop, 1.0f, false};
    SoundPath path(start, 48000);
    SoundPath::Piece piece = path.Next(100000);
    QCOMPARE(piece.first, 2 * 2000);
    QCOMPARE(piece.count, 3 * 2000);
    for (int lap = 0; lap < 5; ++lap)
    {
        piece = path.Next(100000);
        QCOMPARE(piece.first, 1 * 2000);
        QCOMPARE(piece.count, 4 * 2000);
        QVERIFY(!piece.isBackwards && !piece.isSilent);
    }
}

void tst_SoundPath::LapsDoNotDrift()
{
    // A lap of 100100 / 60000 s is 73573.5 frames at 44100.
    const PlaybackStart start{FrameRate{60000, 1001}, {1, 1, false}, {1, 100}, Loop, 1.0f, false};
    SoundPath path(start, 44100);
    int64_t played = 0;
    for (int lap = 1; lap <= 1000; ++lap)
    {
        QCOMPARE(path.Next(1).first, 0);
        int64_t length = 1;
        while (length < 73573)
            length += path.Next(int(73573 - length)).count;
        played += length;
        const double wanted = lap * 73573.5;
        if (double(played) < wanted - 0.25)
            played += path.Next(1).count;
        QVERIFY(std::abs(double(played) - wanted) <= 0.51);
    }
}

void tst_SoundPath::OneFrameAloneIsSilent()
{
    for (const LoopType type : {Loop, PingPong})
    {
        SoundPath path({FrameRate{24, 1}, {3, 1, false}, {3, 3}, type, 1.0f, false}, 48000);
        QVERIFY(path.Next(5000).isSilent);
    }
    SoundPath once({FrameRate{24, 1}, {3, 1, false}, {3, 3}, NoLoop, 1.0f, false}, 48000);
    QCOMPARE(once.Next(5000).count, 2000);
    QVERIFY(once.Next(5000).isSilent);
}

void tst_SoundPath::AfterTheEndThereIsSilence()
{
    SoundPath path({FrameRate{24, 1}, {10, 1, false}, {1, 10}, NoLoop, 1.0f, false}, 48000);
    const SoundPath::Piece last = path.Next(1 << 20);
    QCOMPARE(last.first, 9 * 2000);
    QCOMPARE(last.count, 2000);
    for (int i = 0; i < 3; ++i)
    {
        const SoundPath::Piece piece = path.Next(512);
        QVERIFY(piece.isSilent);
        QCOMPARE(piece.count, 512);
    }
    QVERIFY(SoundPath().Next(10).isSilent);
}

static const TestRegistration<tst_SoundPath> SoundPathRegistration;

#include "tst_SoundPath.moc"
