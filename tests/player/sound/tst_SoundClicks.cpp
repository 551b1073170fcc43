// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/MediaReader.h"
#include "sound/AudioReader.h"
#include "sound/ClickMedia.h"
#include "sound/SoundRig.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>

using ClickMedia::Options;

/// Movies with clicks, from the file through the whole player to the device.
class tst_SoundClicks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Settings::loopType = NoLoop; }
    void cleanup() { Settings::RestoreDefaults(); }
    void PlayingAndSeeking_data();
    void PlayingAndSeeking();
    void Looping_data() { PlayingAndSeeking_data(); }
    void Looping();

private:
    static SoundRig::Options RigFor(const QString& path, const Options& options);
    /// Runs @p rig for @p frames frames of the device and returns the times of the clicks that are heard
    /// meanwhile, in frames of the device since playback began.
    static std::vector<double> Clicks(SoundRig& rig, int frames);
};

void tst_SoundClicks::PlayingAndSeeking_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Options>("options");
    // In frames of the device.
    QTest::addColumn<double>("tolerance");
    const auto add = [](const char* name, Options options, const char* audio, double tolerance)
    {
        options.audioEncoder = QString::fromLatin1(audio).split(QLatin1Char(' '));
        QTest::newRow(name) << QString::fromLatin1(name) << options << tolerance;
    };
    Options film;
    Options ntsc;
    ntsc.rateNumerator = 24000;
    ntsc.rateDenominator = 1001;
    ntsc.sampleRate = 44100;
    Options fast;
    fast.rateNumerator = 60000;
    fast.rateDenominator = 1001;
    // Half a sample of the file, half of the device, and what the encoder blurs.
    add("clicks.mov", film, "-c:a pcm_s16le", 0.6);
    add("clicks-ntsc.mov", ntsc, "-c:a pcm_s16le", 1.2);
    add("clicks-fast.mov", fast, "-c:a pcm_s16le", 1.1);
    add("clicks-ntsc.mp4", ntsc, "-c:a aac -b:a 192k", 2.0);
    add("clicks.mkv", film, "-c:a flac", 24.0);
}

SoundRig::Options tst_SoundClicks::RigFor(const QString& path, const Options& options)
{
    SoundRig::Options rig;
    const std::unique_ptr<MediaReader> movie = OpenMedia(path, nullptr);
    if (!movie)
        return rig;
    rig.rate = {options.rateNumerator, options.rateDenominator};
    rig.frameCount = movie->Info().frameCount;
    rig.segments = AudioSegmentsOf(movie->Info());
    rig.opener = [](const AudioSegment& segment, int rate, QString* error)
    { return AudioReader::Open(segment, rate, CancelToken(), error); };
    return rig;
}

std::vector<double> tst_SoundClicks::Clicks(SoundRig& rig, int frames)
{
    const std::vector<float> heard = rig.Run(frames);
    const double start =
        double(heard.size() / 2) - double(rig.player->Played()) * rig.options.sampleRate / 1e6;
    std::vector<double> clicks;
    for (const double click : ClickMedia::ClicksIn(heard, rig.options.sampleRate))
    {
        // What the ramp at the start makes of a click there is none of the file's.
        if (click - start > SoundFeed::RampFrames)
            clicks.push_back(click - start);
    }
    return clicks;
}

void tst_SoundClicks::PlayingAndSeeking()
{
    QFETCH(QString, name);
    QFETCH(Options, options);
    QFETCH(double, tolerance);
    SoundRig rig(RigFor(ClickMedia::Movie(name, options), options));
    QVERIFY(!rig.options.segments.empty());
    const double perFrame =
        ClickMedia::ClickPlace(options, 1, rig.options.sampleRate) / ClickMedia::FramesPerClick;
    std::mt19937 random(5);
    double largest = 0.0;
    int count = 0;
    for (int turn = 0; turn < 20; ++turn)
    {
        const int frame =
            turn == 0 ? 1 : std::uniform_int_distribution<int>(1, rig.options.frameCount / 2)(random);
        rig.playback->SeekFrame(frame);
        if (!rig.playback->IsPlaying())
            rig.playback->Play(1);
        for (const double click : Clicks(rig, 2 * rig.options.sampleRate))
        {
            // The frame at whose start it sounds, counted from the first one.
            const double shown = frame - 1 + click / perFrame;
            const double number = std::round(shown / ClickMedia::FramesPerClick);
            largest = std::max(largest, std::abs(shown - number * ClickMedia::FramesPerClick) * perFrame);
            ++count;
        }
    }
    qInfo("%d clicks, %.2f samples off at most", count, largest);
    QVERIFY(count >= 30);
    QVERIFY(largest <= tolerance);
    QVERIFY(rig.warnings.texts.isEmpty());
}

void tst_SoundClicks::Looping()
{
    QFETCH(QString, name);
    QFETCH(Options, options);
    QFETCH(double, tolerance);
    constexpr int first = 20;
    constexpr int length = 41;
    Settings::loopType = Loop;
    SoundRig rig(RigFor(ClickMedia::Movie(name, options), options));
    QVERIFY(!rig.options.segments.empty());
    const double perFrame =
        ClickMedia::ClickPlace(options, 1, rig.options.sampleRate) / ClickMedia::FramesPerClick;
    rig.playback->SetRange(rig.timeline->FrameToTime(first), rig.timeline->FrameToTime(first + length - 1));
    rig.playback->SeekFrame(first);
    rig.playback->Play(1);
    // The clicks of frames 25 and 49 are within each lap.
    double largest = 0.0;
    int count = 0;
    for (const double click : Clicks(rig, int(20.5 * length * perFrame)))
    {
        const double inLap = std::fmod(click / perFrame, length);
        const double off = std::min(std::abs(inLap - 5), std::abs(inLap - 29));
        largest = std::max(largest, off * perFrame);
        ++count;
    }
    qInfo("%d clicks, %.2f samples off at most", count, largest);
    QVERIFY(count >= 39 && count <= 41);
    // Each lap begins on a whole sample, which takes another half.
    QVERIFY(largest <= tolerance + 0.5);
}

static const TestRegistration<tst_SoundClicks> SoundClicksRegistration;

#include "tst_SoundClicks.moc"
