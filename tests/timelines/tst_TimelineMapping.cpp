// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "timelines/TimelineFormulas.h"
#include "timelines/TimelineMapping.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_TimelineMapping : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void GlobalPixelsAndFrames();
    void GlobalProductsWrap();
    void GlobalEnds();
    void GlobalHalvesGoAwayFromZero();
    void RangePixelsAndFrames();
    void RangeProductsWrap();
    void RangeOfOneFrame();
    void RangeScaleOfZeroDoesNotDivide();
    void FrameWidths();
    void RightEdgeIsCutAfterTheSum();
    void TimeCodeCountsUp_data();
    void TimeCodeCountsUp();
    void TimeCodeOfOddRates();
    void TimeCodeEdges();
    void SecondsHaveTwoDecimals();
    void TruncationNeverOverflows();

private:
    static QList<int> Counts();
    static QList<int> BarWidths();
    static const int mWhole = std::numeric_limits<int>::max();
};

QList<int> tst_TimelineMapping::Counts()
{
    QList<int> counts;
    for (int count = 0; count <= 60; ++count)
        counts << count;
    return counts << 97 << 100 << 1000 << 1399 << 1400 << 1401 << 2399 << 17280;
}

QList<int> tst_TimelineMapping::BarWidths()
{
    QList<int> widths{-200, -101, -1, 0, 1, 2, 3, 10, 100, 1080, 1400, 1720, 3640};
    for (int width = 7; width < 1500; width += 83)
        widths << width;
    return widths;
}

void tst_TimelineMapping::GlobalPixelsAndFrames()
{
    for (const int count : Counts())
        for (const int barWidth : BarWidths())
        {
            const int step = std::max(count / 700, 1);
            for (int frame = -3; frame <= count + 3; frame += step)
                if (TimelineMapping::FrameToPixel(frame, count, 100, barWidth) !=
                    Formula::GlobalPixel(frame, count, 100, barWidth))
                    QFAIL(qPrintable(
                        QStringLiteral("frame %1 of %2, bar %3").arg(frame).arg(count).arg(barWidth)));
            for (int x = 90; x <= 100 + barWidth + 10; ++x)
                if (TimelineMapping::PixelToFrame(x, count, 100, barWidth) !=
                    Formula::GlobalFrame(x, count, 100, barWidth))
                    QFAIL(qPrintable(
                        QStringLiteral("x %1, %2 frames, bar %3").arg(x).arg(count).arg(barWidth)));
        }
}

void tst_TimelineMapping::GlobalProductsWrap()
{
    // 1400 pixels times 1,533,917 frames is the first product above 31 bits.
    QVERIFY(TimelineMapping::FrameToPixel(1533917, 2000000, 100, 1400) > 100);
    QVERIFY(TimelineMapping::FrameToPixel(1533919, 2000000, 100, 1400) < 0);
    for (const int count : {2000000, 100000000, mWhole})
        for (const int barWidth : {1080, 1400, 3640})
        {
            for (int64_t frame = 1; frame <= count; frame += count / 3000)
                QCOMPARE(TimelineMapping::FrameToPixel(static_cast<int>(frame), count, 100, barWidth),
                         Formula::GlobalPixel(frame, count, 100, barWidth));
            for (int x = 99; x < 102 + barWidth; ++x)
                QCOMPARE(TimelineMapping::PixelToFrame(x, count, 100, barWidth),
                         Formula::GlobalFrame(x, count, 100, barWidth));
        }
}

void tst_TimelineMapping::GlobalEnds()
{
    QCOMPARE(TimelineMapping::FrameToPixel(1, 10, 100, 1000), 100);
    QCOMPARE(TimelineMapping::FrameToPixel(10, 10, 100, 1000), 1000);
    QCOMPARE(TimelineMapping::FrameToPixel(0, 10, 100, 1000), 100);
    QCOMPARE(TimelineMapping::FrameToPixel(7, 0, 100, 1000), 100);
    QCOMPARE(TimelineMapping::PixelToFrame(100, 10, 100, 1000), 1);
    QCOMPARE(TimelineMapping::PixelToFrame(1099, 10, 100, 1000), 10);
    QCOMPARE(TimelineMapping::PixelToFrame(1100, 10, 100, 1000), 10);
    QCOMPARE(TimelineMapping::PixelToFrame(-mWhole, 10, 100, 1000), 1);
    for (int x = -50; x < 500; ++x)
        QCOMPARE(TimelineMapping::PixelToFrame(x, 1, 100, 200), 1);
}

void tst_TimelineMapping::GlobalHalvesGoAwayFromZero()
{
    // 3 frames on 8 pixels: a quarter of a frame for each pixel.
    QCOMPARE(TimelineMapping::PixelToFrame(1, 3, 0, 8), 1);
    QCOMPARE(TimelineMapping::PixelToFrame(2, 3, 0, 8), 2);
    QCOMPARE(TimelineMapping::PixelToFrame(5, 3, 0, 8), 2);
    QCOMPARE(TimelineMapping::PixelToFrame(6, 3, 0, 8), 3);
}

void tst_TimelineMapping::RangePixelsAndFrames()
{
    for (const int first : {-4, 0, 1, 2, 900})
        for (const int length : Counts())
            for (const int barWidth : BarWidths())
            {
                const int last = first + length - 1;
                const int step = std::max(length / 200, 1);
                for (int frame = first - 3; frame <= last + 3; frame += step)
                    if (TimelineMapping::RangeFrameToPixel(frame, first, last, 50, barWidth) !=
                        Formula::RangePixel(frame, first, last, 50, barWidth))
                        QFAIL(qPrintable(
                            QStringLiteral("frame %1 of %2 to %3").arg(frame).arg(first).arg(last)));
                for (int x = 45; x <= 55 + barWidth; x += 3)
                    if (TimelineMapping::RangePixelToFrame(x, first, last, 50, barWidth, barWidth + 7) !=
                        Formula::RangeFrame(x, first, last, 50, barWidth, barWidth + 7))
                        QFAIL(qPrintable(QStringLiteral("x %1 of %2 to %3").arg(x).arg(first).arg(last)));
            }
}

void tst_TimelineMapping::RangeProductsWrap()
{
    QVERIFY(TimelineMapping::RangeFrameToPixel(1533918, 1, 2000000, 50, 1400) < 0);
    for (const int last : {2000000, 100000000, mWhole - 1})
        for (const int barWidth : {1180, 1500, 3740})
        {
            for (int64_t frame = 1; frame <= last; frame += last / 3000)
                QCOMPARE(TimelineMapping::RangeFrameToPixel(static_cast<int>(frame), 1, last, 50, barWidth),
                         Formula::RangePixel(frame, 1, last, 50, barWidth));
            for (int x = 49; x < 52 + barWidth; ++x)
                QCOMPARE(TimelineMapping::RangePixelToFrame(x, 1, last, 50, barWidth, barWidth),
                         Formula::RangeFrame(x, 1, last, 50, barWidth, barWidth));
        }
}

void tst_TimelineMapping::RangeOfOneFrame()
{
    for (int frame = 0; frame < 20; ++frame)
        QCOMPARE(TimelineMapping::RangeFrameToPixel(frame, 7, 7, 50, 300), 50);
    for (int x = 0; x < 400; ++x)
        QCOMPARE(TimelineMapping::RangePixelToFrame(x, 7, 7, 50, 300, 300), 7);
    QCOMPARE(TimelineMapping::RangeFrameWidth(300, 1, 2), 300.0f);
}

void tst_TimelineMapping::RangeScaleOfZeroDoesNotDivide()
{
    QCOMPARE(TimelineMapping::RangePixelToFrame(60, 7, 7, 50, 300, 0), 7);
    QCOMPARE(TimelineMapping::RangePixelToFrame(60, 0, 9, 50, 300, 0), mWhole);
}

void tst_TimelineMapping::FrameWidths()
{
    for (const int count : Counts())
        for (const int barWidth : BarWidths())
        {
            QCOMPARE(TimelineMapping::FrameWidth(barWidth, count),
                     Formula::GlobalFrameWidth(barWidth, count));
            QCOMPARE(TimelineMapping::RangeFrameWidth(barWidth, count - 5, 2),
                     Formula::RangeFrameWidth(barWidth, count - 5));
        }
    QCOMPARE(TimelineMapping::FrameWidth(1400, -3), 0.0f);
    QCOMPARE(TimelineMapping::FrameWidth(1400, 2800), 0.5f);
    QCOMPARE(TimelineMapping::RangeFrameWidth(1500, 400, 2), 3.0f);
}

void tst_TimelineMapping::RightEdgeIsCutAfterTheSum()
{
    QCOMPARE(TimelineMapping::FrameRightEdge(100, 0.75f), 100);
    QCOMPARE(TimelineMapping::FrameRightEdge(100, 1.5f), 101);
    QCOMPARE(TimelineMapping::FrameRightEdge(-3, 1.5f), -1);
    // In single precision the sum is already rounded.
    QCOMPARE(TimelineMapping::FrameRightEdge(16777216, 0.9f), 16777216);
}

void tst_TimelineMapping::TimeCodeCountsUp_data()
{
    QTest::addColumn<int>("rate");
    for (const int rate : {1, 2, 24, 25, 30, 60})
        QTest::addRow("%d", rate) << rate;
}

void tst_TimelineMapping::TimeCodeCountsUp()
{
    QFETCH(int, rate);
    const auto given = static_cast<float>(rate);
    for (int frame = 1; frame < 4000; ++frame)
        QCOMPARE(TimelineMapping::TimeCodeText(frame, given), Formula::TimeCodeByCounting(frame, rate));
    for (int hour = 1; hour < 13; hour += 3)
        for (int frame = hour * 3600 * rate - 2; frame < hour * 3600 * rate + 3; ++frame)
            QCOMPARE(TimelineMapping::TimeCodeText(frame, given), Formula::TimeCodeByCounting(frame, rate));
    for (int frame = -200; frame < 2000000; frame += 37)
        QCOMPARE(TimelineMapping::TimeCodeText(frame, given), Formula::TimeCode(frame, given));
}

void tst_TimelineMapping::TimeCodeOfOddRates()
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float endless = std::numeric_limits<float>::infinity();
    for (int frame = -100; frame < 100000; frame += 7)
    {
        for (const float rate : {23.976f, 29.97f, 59.94f, 12.5f, 24.5f, 1000.0f, 300000.0f})
            QCOMPARE(TimelineMapping::TimeCodeText(frame, rate), Formula::TimeCode(frame, rate));
        for (const float rate : {0.0f, -24.0f, nan, -endless, 0.3f, 0.49f})
            QCOMPARE(TimelineMapping::TimeCodeText(frame, rate), Formula::TimeCode(frame, 1.0f));
    }
    QCOMPARE(TimelineMapping::TimeCodeText(14, 12.5f), QStringLiteral("00:01:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(100, endless), QStringLiteral("00:00:99"));
    // A rate whose hour has 2^32 multiples of frames.
    QCOMPARE(TimelineMapping::TimeCodeText(100, 268435456.0f), QStringLiteral("00:00:99"));
}

void tst_TimelineMapping::TimeCodeEdges()
{
    QCOMPARE(TimelineMapping::TimeCodeText(1, 24), QStringLiteral("00:00:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(13, 24), QStringLiteral("00:00:12"));
    QCOMPARE(TimelineMapping::TimeCodeText(25, 24), QStringLiteral("00:01:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(86401, 24), QStringLiteral("01:00:00:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(864001, 24), QStringLiteral("10:00:00:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(0, 24), QStringLiteral("00:00:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(std::numeric_limits<int>::min(), 24), QStringLiteral("00:00:00"));
    QCOMPARE(TimelineMapping::TimeCodeText(mWhole, 1), Formula::TimeCode(mWhole, 1));
}

void tst_TimelineMapping::SecondsHaveTwoDecimals()
{
    QCOMPARE(TimelineMapping::SecondsText(0), QStringLiteral("0.00"));
    QCOMPARE(TimelineMapping::SecondsText(5000000), QStringLiteral("5.00"));
    QCOMPARE(TimelineMapping::SecondsText(1234567), QStringLiteral("1.23"));
    QCOMPARE(TimelineMapping::SecondsText(-1500000), QStringLiteral("-1.50"));
}

void tst_TimelineMapping::TruncationNeverOverflows()
{
    QCOMPARE(TimelineMapping::Truncated(3e9), mWhole);
    QCOMPARE(TimelineMapping::Truncated(-3e9), std::numeric_limits<int>::min());
    QCOMPARE(TimelineMapping::Truncated(std::numeric_limits<double>::quiet_NaN()), 0);
    QCOMPARE(TimelineMapping::Truncated(-1.9), -1);
    QCOMPARE(TimelineMapping::Truncated(1.9), 1);
}

static const TestRegistration<tst_TimelineMapping> TimelineMappingRegistration;

#include "tst_TimelineMapping.moc"
