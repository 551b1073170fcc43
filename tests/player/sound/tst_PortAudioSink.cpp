// SPDX-License-Identifier: MIT
#include "sound/PortAudioSink.h"
#include "sound/SoundFeed.h"
#include "support/TestRegistry.h"

#include <QtTest>

class tst_PortAudioSink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void OpensTheDefaultDeviceOrSaysWhyNot();
};

void tst_PortAudioSink::OpensTheDefaultDeviceOrSaysWhyNot()
{
    SoundFeed feed;
    PortAudioSink sink;
    QCOMPARE(sink.HeardPosition(), 0);
    sink.Close();
    for (int turn = 0; turn < 2; ++turn)
    {
        QString error;
        if (!sink.Open(&feed, &error))
        {
            QVERIFY(!error.isEmpty());
            continue;
        }
        QVERIFY(error.isEmpty());
        const int rate = sink.Rate();
        QVERIFY(rate >= 8000);
        const std::vector<float> silence(2 * 20000, 0.0f);
        const int64_t start = feed.WritePosition();
        feed.Write(silence.data(), 20000);
        QVERIFY(sink.HeardPosition() <= start);
        feed.SetRunning(true);
        QTRY_COMPARE_WITH_TIMEOUT(sink.HeardPosition(), start + 20000, 5000);
        feed.SetRunning(false);
        sink.Close();
    }
}

static const TestRegistration<tst_PortAudioSink> PortAudioSinkRegistration;

#include "tst_PortAudioSink.moc"
