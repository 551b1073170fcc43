// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "sound/SoundRig.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <cmath>
#include <random>

#ifdef TORVALEN_SANITIZED
constexpr int Minutes = 1;
#else
constexpr int Minutes = 10;
#endif

class tst_SoundSync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Settings::RestoreDefaults(); }
    void ThePictureKeepsToTheSound_data();
    void ThePictureKeepsToTheSound();
    void LoopsKeepToTheSound_data();
    void LoopsKeepToTheSound();
    void EverySpeedKeepsToTheSound_data();
    void EverySpeedKeepsToTheSound();

private:
    struct Outcome
    {
        /// Largest distance in frames just before the controller looks at the clock, and after.
        int before = 0;
        int after = 0;
        double deviceSeconds = 0.0;
        double wallSeconds = 0.0;
    };
    /// Plays @p seconds of a device whose clock runs @p drift times too fast, with ticks that come 1 to 15 ms
    /// one after another, and compares what is heard with what is shown.
    static Outcome Simulate(SoundRig& rig, double seconds, double drift, unsigned seed);
};

tst_SoundSync::Outcome tst_SoundSync::Simulate(SoundRig& rig, double seconds, double drift, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> interval(0.001, 0.015);
    Outcome outcome;
    double deviceFrames = 0.0;
    int64_t advanced = 0;
    bool hasHeard = false;
    rig.playback->Play(1);
    while (outcome.wallSeconds < seconds && rig.playback->IsPlaying())
    {
        const double step = interval(random);
        outcome.wallSeconds += step;
        deviceFrames += step * rig.options.sampleRate * (1.0 + drift);
        const int frames = int(int64_t(deviceFrames) - advanced);
        advanced += frames;
        rig.player->Renderer()->Pump();
        const std::vector<float> heard = rig.sink->Advance(frames);
        const float* const last = heard.data() + heard.size() - 2;
        // Silence comes first, and then a ramp.
        hasHeard = hasHeard || (last[0] != 0.0f && rig.player->Played() > 10000);
        const auto distance = [&]
        {
            const int64_t place = TellingSource::ExactPlace(last);
            // What is heard now is between this place and the next.
            const int shown = rig.playback->CurrentFrame();
            return std::min(std::abs(shown - rig.FrameOfPlace(double(place))),
                            std::abs(shown - rig.FrameOfPlace(double(place + 1))));
        };
        if (hasHeard)
            outcome.before = std::max(outcome.before, distance());
        rig.Tick();
        if (hasHeard && rig.playback->IsPlaying())
            outcome.after = std::max(outcome.after, distance());
    }
    outcome.deviceSeconds = deviceFrames / rig.options.sampleRate;
    return outcome;
}

void tst_SoundSync::ThePictureKeepsToTheSound_data()
{
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::addColumn<int>("sampleRate");
    QTest::addColumn<double>("drift");
    for (const auto& [numerator, denominator] :
         {std::pair<int, int>{24000, 1001}, {24, 1}, {25, 1}, {30000, 1001}, {60000, 1001}})
        for (const int sampleRate : {44100, 48000})
            for (const double drift : {0.0, 0.001, -0.001})
                QTest::addRow("%.3f fps, %d Hz, drift %g", double(numerator) / denominator, sampleRate, drift)
                    << numerator << denominator << sampleRate << drift;
}

void tst_SoundSync::ThePictureKeepsToTheSound()
{
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    QFETCH(int, sampleRate);
    QFETCH(double, drift);
    SoundRig::Options options;
    options.rate = {numerator, denominator};
    options.sampleRate = sampleRate;
    options.frameCount = numerator / denominator * 60 * (Minutes + 1);
    SoundRig rig(options);
    const Outcome outcome = Simulate(rig, 60.0 * Minutes, drift, 1);
    QVERIFY(rig.playback->IsPlaying());
    QCOMPARE(outcome.after, 0);
    QVERIFY(outcome.before <= 1);
    // Time that goes by steadily would be this far off.
    const double apart = outcome.deviceSeconds - outcome.wallSeconds;
    QVERIFY(std::abs(apart - drift * 60.0 * Minutes) < 0.01);
    // And the picture has gone as far as the device, less its latency and the start.
    const double shown = double(rig.playback->CurrentTime()) * 1e-6;
    QVERIFY2(shown > outcome.deviceSeconds - 0.15 && shown <= outcome.deviceSeconds,
             qPrintable(QStringLiteral("%1 of %2 s").arg(shown).arg(outcome.deviceSeconds)));
}

void tst_SoundSync::LoopsKeepToTheSound_data()
{
    QTest::addColumn<int>("loopType");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    for (const LoopType type : {Loop, PingPong})
        for (const PlaybackRange range : {PlaybackRange{1, 100}, PlaybackRange{50, 52}, PlaybackRange{7, 37}})
            QTest::addRow("loop type %d, %d to %d", type, range.first, range.last)
                << int(type) << range.first << range.last;
}

void tst_SoundSync::LoopsKeepToTheSound()
{
    QFETCH(int, loopType);
    QFETCH(int, first);
    QFETCH(int, last);
    Settings::loopType = LoopType(loopType);
    SoundRig::Options options;
    // Neither a frame nor a lap is a whole number of samples.
    options.rate = {60000, 1001};
    options.sampleRate = 44100;
    SoundRig rig(options);
    rig.playback->SetRange(rig.timeline->FrameToTime(first), rig.timeline->FrameToTime(last));
    rig.playback->SeekFrame(first);
    const Outcome outcome = Simulate(rig, 60.0, 0.001, 2);
    QVERIFY(rig.playback->IsPlaying());
    // Where a lap ends the place jumps; the last place may lie before the jump and the picture behind it.
    QVERIFY2(outcome.after <= last - first, qPrintable(QString::number(outcome.after)));
    // After a minute of laps each frame shown is still the one that is heard.
    int apart = 0;
    int looks = 0;
    for (int turn = 0; turn < 2000; ++turn)
    {
        const std::vector<float> heard = rig.Run(97, 97);
        const int64_t place = TellingSource::ExactPlace(heard.data() + heard.size() - 2);
        const int frame = rig.FrameOfPlace(double(place));
        ++looks;
        apart += frame == rig.playback->CurrentFrame() ? 0 : 1;
    }
    // At a boundary between two frames one sample decides: fewer than one look in a hundred.
    QVERIFY2(apart * 100 < looks, qPrintable(QStringLiteral("%1 of %2").arg(apart).arg(looks)));
}

void tst_SoundSync::EverySpeedKeepsToTheSound_data()
{
    QTest::addColumn<float>("speed");
    QTest::addColumn<int>("direction");
    for (const float speed : {0.05f, 0.1f, 0.5f, 0.7371f, 1.0f, 1.5f, 2.0f, 4.0f, 16.0f})
        for (const int direction : {1, -1})
            QTest::addRow("speed %g, direction %d", double(speed), direction) << speed << direction;
}

void tst_SoundSync::EverySpeedKeepsToTheSound()
{
    QFETCH(float, speed);
    QFETCH(int, direction);
    SoundRig::Options options;
    options.frameCount = 4000;
    options.kind = TellingSource::Slope;
    SoundRig rig(options);
    rig.playback->SetSpeed(speed);
    // Near the slope's foot, since the filter changes the level by a hundred thousandth.
    rig.playback->SeekFrame(direction > 0 ? 10 : 40 + int(150.0f * speed));
    rig.playback->Play(direction);
    rig.Run(4800);
    double largest = 0.0;
    int looks = 0;
    while (rig.playback->IsPlaying() && looks < 800)
    {
        const std::vector<float> heard = rig.Run(301, 301);
        if (!rig.playback->IsPlaying())
            break;
        ++looks;
        const double place = TellingSource::SlopePlace(heard.data() + heard.size() - 2);
        const double seconds = place / options.sampleRate;
        const double start = double(rig.playback->CurrentTime()) * 1e-6;
        // How far what is heard lies outside of the frame that is shown.
        const double outside = std::max({0.0, start - seconds, seconds - start - 1.0 / 24.0});
        largest = std::max(largest, outside);
    }
    QVERIFY(looks > 100);
    // A sample frame of the device at this speed, and the filter's ripple.
    QVERIFY2(largest < 0.0002 * double(std::max(speed, 1.0f)), qPrintable(QString::number(largest)));
}

static const TestRegistration<tst_SoundSync> SoundSyncRegistration;

#include "tst_SoundSync.moc"
