// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/FrameRate.h"
#include "support/TestRegistry.h"

#include <QtTest>

__extension__ using Wide = __int128;

class tst_FrameRate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void TimesLeadBackToTheirFrames_data();
    void TimesLeadBackToTheirFrames();
    void StartIsTheExactOneRoundedUp_data();
    void StartIsTheExactOneRoundedUp();
    void FindsTheRatioOfACommonRate_data();
    void FindsTheRatioOfACommonRate();
    void InvalidRatesCountAsTwentyFour();
    void FarTimesStayWithin64Bits();
};

static void AddRates()
{
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::newRow("23.976") << 24000 << 1001;
    QTest::newRow("24") << 24 << 1;
    QTest::newRow("25") << 25 << 1;
    QTest::newRow("29.97") << 30000 << 1001;
    QTest::newRow("30") << 30 << 1;
    QTest::newRow("50") << 50 << 1;
    QTest::newRow("59.94") << 60000 << 1001;
    QTest::newRow("60") << 60 << 1;
    QTest::newRow("odd") << 1234567 << 98765;
}

void tst_FrameRate::TimesLeadBackToTheirFrames_data()
{
    AddRates();
}

void tst_FrameRate::TimesLeadBackToTheirFrames()
{
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    const FrameRate rate{numerator, denominator};
    // Six hours at 60 frames a second.
    int64_t previous = -1;
    for (int64_t frame = 1; frame <= 1296000; ++frame)
    {
        const int64_t time = rate.FrameToTime(frame);
        if (time <= previous || rate.TimeToFrame(time) != frame ||
            rate.TimeToFrame(time + Settings::ROUNDING_ERROR_EXTRA_TIME) != frame ||
            (frame > 1 && rate.TimeToFrame(time - 1) != frame - 1))
            QFAIL(qPrintable(QStringLiteral("frame %1 starts at %2").arg(frame).arg(time)));
        previous = time;
    }
}

void tst_FrameRate::StartIsTheExactOneRoundedUp_data()
{
    AddRates();
}

void tst_FrameRate::StartIsTheExactOneRoundedUp()
{
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    const FrameRate rate{numerator, denominator};
    for (const int64_t frame : {1LL, 2LL, 3LL, 1001LL, 86400LL, 5184001LL, 2147483648LL})
    {
        // By another way: 128 bits and one division.
        const Wide exact = Wide(frame - 1) * denominator * 1000000;
        QCOMPARE(rate.FrameToTime(frame), int64_t((exact + numerator - 1) / numerator));
    }
    QCOMPARE(rate.FrameToTime(0), int64_t(0));
    QCOMPARE(rate.TimeToFrame(-5), int64_t(1));
}

void tst_FrameRate::FindsTheRatioOfACommonRate_data()
{
    QTest::addColumn<double>("perSecond");
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::newRow("24") << 24.0 << 24 << 1;
    QTest::newRow("23.976") << 23.976 << 24000 << 1001;
    QTest::newRow("23.98") << 23.98 << 24000 << 1001;
    QTest::newRow("29.97") << 29.97 << 30000 << 1001;
    QTest::newRow("59.94") << 59.94 << 60000 << 1001;
    QTest::newRow("12.5") << 12.5 << 25 << 2;
    QTest::newRow("1") << 1.0 << 1 << 1;
    QTest::newRow("zero") << 0.0 << 24 << 1;
    QTest::newRow("negative") << -25.0 << 24 << 1;
    QTest::newRow("not a number") << qQNaN() << 24 << 1;
}

void tst_FrameRate::FindsTheRatioOfACommonRate()
{
    QFETCH(double, perSecond);
    const FrameRate rate = FrameRate::FromPerSecond(perSecond);
    QTEST(rate.numerator, "numerator");
    QTEST(rate.denominator, "denominator");
}

void tst_FrameRate::InvalidRatesCountAsTwentyFour()
{
    const FrameRate rate{0, 0};
    QVERIFY(!rate.IsValid());
    QCOMPARE(rate.PerSecond(), 24.0);
    QCOMPARE(rate.FrameToTime(25), int64_t(1000000));
    QCOMPARE(rate.TimeToFrame(1000000), int64_t(25));
}

void tst_FrameRate::FarTimesStayWithin64Bits()
{
    const FrameRate rate{60000, 1001};
    QCOMPARE(rate.TimeToFrame(INT64_MAX), rate.TimeToFrame((int64_t(1) << 31) * 1000000));
    QVERIFY(rate.TimeToFrame(INT64_MAX) > 0);
}

static const TestRegistration<tst_FrameRate> FrameRateRegistration;

#include "tst_FrameRate.moc"
