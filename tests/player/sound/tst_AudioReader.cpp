// SPDX-License-Identifier: MIT
#include "sound/ClickMedia.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>

using ClickMedia::Options;

namespace
{

QStringList Words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

float LargestDifference(const std::vector<float>& a, const float* b)
{
    float largest = 0.0f;
    for (size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

} // namespace

class tst_AudioReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ClicksAreWhereTheFramesAre_data();
    void ClicksAreWhereTheFramesAre();
    void SeeksGiveTheSameFramesAsReadingThrough_data() { ClicksAreWhereTheFramesAre_data(); }
    void SeeksGiveTheSameFramesAsReadingThrough();
    void BeforeAndAfterTheSoundIsSilence();
};

void tst_AudioReader::ClicksAreWhereTheFramesAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("rate");
    // How far a click may be off, in frames, and the largest difference after a seek.
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<float>("difference");

    const auto add =
        [](const char* name, Options options, const char* audio, int rate, double tolerance, float difference)
    {
        options.audioEncoder = Words(audio);
        QTest::addRow("%s to %d", name, rate)
            << QString::fromLatin1(name) << options << rate << tolerance << difference;
    };
    Options film;
    Options ntsc;
    ntsc.rateNumerator = 24000;
    ntsc.rateDenominator = 1001;
    Options ntscVideo;
    ntscVideo.rateNumerator = 30000;
    ntscVideo.rateDenominator = 1001;
    ntscVideo.sampleRate = 44100;
    Options reordered = ntsc;
    reordered.sampleRate = 44100;
    reordered.videoEncoder = Words("-c:v libx264 -preset veryfast -bf 3 -g 48");
    Options late = film;
    late.audioDelay = 0.5;
    Options early = film;
    early.audioDelay = -0.25;
    Options broadcast;
    broadcast.rateNumerator = 25;
    broadcast.videoEncoder = Words("-c:v mpeg2video -g 12 -bf 2");
    Options fast;
    fast.rateNumerator = 60000;
    fast.rateDenominator = 1001;

    add("pcm.mov", film, "-c:a pcm_s16le", 48000, 0.2, 0.0f);
    add("pcm.mov", film, "-c:a pcm_s16le", 44100, 0.2, 0.0f);
    add("pcm24.mov", ntsc, "-c:a pcm_s24le", 48000, 0.6, 0.0f);
    add("pcm441.mov", ntscVideo, "-c:a pcm_s16le", 48000, 1.0, 0.0f);
    add("pcm441.mov", ntscVideo, "-c:a pcm_s16le", 44100, 0.6, 0.0f);
    add("pcm60.mov", fast, "-c:a pcm_s16le", 48000, 0.6, 0.0f);
    add("alac.mov", film, "-c:a alac", 48000, 0.2, 0.0f);
    add("aac.mp4", film, "-c:a aac -b:a 192k", 48000, 1.0, 0.02f);
    add("aacb.mp4", reordered, "-c:a aac -b:a 192k", 48000, 1.5, 0.02f);
    add("mp3.mp4", film, "-c:a libmp3lame -b:a 192k", 48000, 1.0, 0.002f);
    add("late.mov", late, "-c:a pcm_s16le", 48000, 0.5, 0.0f);
    add("early.mov", early, "-c:a pcm_s16le", 48000, 0.5, 0.0f);
    // This kind of file counts a delay in whole milliseconds.
    add("late.mp4", late, "-c:a aac -b:a 192k", 48000, 48.0, 0.02f);
    add("opus.mp4", film, "-c:a libopus -b:a 192k", 48000, 4.0, 0.02f);
    // Times in these files are whole milliseconds, so a click can be off by half of one.
    add("flac.mkv", film, "-c:a flac", 48000, 24.0, 0.0f);
    add("flac441.mkv", reordered, "-c:a flac", 44100, 24.0, 0.0f);
    add("pcm.mkv", film, "-c:a pcm_s16le", 48000, 24.0, 0.0f);
    // What writes this kind of file takes the encoder's lead of 6.5 ms off twice.
    add("opus.mkv", film, "-c:a libopus -b:a 192k", 48000, 340.0, 0.02f);
    add("aac.mkv", reordered, "-c:a aac -b:a 192k", 44100, 24.0, 0.02f);
    add("ac3.mkv", film, "-c:a ac3 -b:a 384k", 48000, 24.0, 0.002f);
    add("aac.ts", reordered, "-c:a aac -b:a 192k", 48000, 2.0, 0.02f);
    add("mp2.ts", film, "-c:a mp2 -b:a 256k", 48000, 2.0, 0.002f);
    add("pcm.avi", film, "-c:a pcm_s16le", 48000, 1.0, 0.0f);
    add("pcm.mxf", broadcast, "-c:a pcm_s16le", 48000, 1.0, 0.0f);
}

void tst_AudioReader::ClicksAreWhereTheFramesAre()
{
    QFETCH(QString, name);
    QFETCH(Options, options);
    QFETCH(int, rate);
    QFETCH(double, tolerance);
    const QString path = ClickMedia::Movie(name, options);
    QVERIFY(!path.isEmpty());
    QString error;
    const std::unique_ptr<AudioSource> source = ClickMedia::Open(path, rate, &error);
    QVERIFY2(source, qPrintable(error));
    const std::vector<float> stereo = ClickMedia::ReadThrough(source.get(), 0, 12 * rate);
    const std::vector<double> clicks = ClickMedia::ClicksIn(stereo, rate);
    QVERIFY(clicks.size() >= 4);
    // The first one may be cut off at the start.
    double largest = 0.0;
    for (const double click : clicks)
    {
        const double period =
            ClickMedia::ClickPlace(options, 1, rate) - ClickMedia::ClickPlace(options, 0, rate);
        const double number = std::round((click - ClickMedia::ClickPlace(options, 0, rate)) / period);
        const double wanted = ClickMedia::ClickPlace(options, int(number), rate);
        largest = std::max(largest, std::abs(click - wanted));
        QVERIFY2(std::abs(click - wanted) <= tolerance,
                 qPrintable(QStringLiteral("a click at %1 instead of %2").arg(click).arg(wanted)));
    }
    qInfo("largest offset %.2f samples, %d clicks, %s", largest, int(clicks.size()),
          qPrintable(source->Problem()));
    QVERIFY(source->Problem().isEmpty());
}

void tst_AudioReader::SeeksGiveTheSameFramesAsReadingThrough()
{
    QFETCH(QString, name);
    QFETCH(Options, options);
    QFETCH(int, rate);
    QFETCH(float, difference);
    const std::unique_ptr<AudioSource> through = ClickMedia::Open(ClickMedia::Movie(name, options), rate);
    const std::unique_ptr<AudioSource> seeking = ClickMedia::Open(ClickMedia::Movie(name, options), rate);
    QVERIFY(through && seeking);
    const std::vector<float> stereo = ClickMedia::ReadThrough(through.get(), 0, 12 * rate);
    std::mt19937 random(7);
    float largest = 0.0f;
    for (int turn = 0; turn < 60; ++turn)
    {
        const int first = std::uniform_int_distribution<int>(0, 11 * rate)(random);
        const std::vector<float> piece = ClickMedia::ReadThrough(seeking.get(), first, 3000, 500);
        const float off = LargestDifference(piece, stereo.data() + 2 * first);
        largest = std::max(largest, off);
        QVERIFY2(off <= difference, qPrintable(QStringLiteral("off by %1 at %2").arg(off).arg(first)));
    }
    qInfo("largest difference %g", double(largest));
}

void tst_AudioReader::BeforeAndAfterTheSoundIsSilence()
{
    Options options;
    options.seconds = 6.0;
    options.audioSeconds = 3.0;
    options.audioDelay = 1.0;
    const QString path = ClickMedia::Movie(QStringLiteral("short.mov"), options);
    const std::unique_ptr<AudioSource> source = ClickMedia::Open(path, 48000);
    QVERIFY(source);
    const auto isSilent = [&](int64_t first, int count)
    {
        const std::vector<float> stereo = ClickMedia::ReadThrough(source.get(), first, count);
        return std::all_of(stereo.begin(), stereo.end(), [](float sample) { return sample == 0.0f; });
    };
    QVERIFY(isSilent(-5000, 5000));
    QVERIFY(isSilent(0, 47990));
    QVERIFY(!isSilent(48000, 100));
    QVERIFY(!isSilent(4 * 48000 - 100, 100));
    QVERIFY(isSilent(4 * 48000, 96000));
    QVERIFY(isSilent(int64_t(1) << 40, 1000));
    QVERIFY(isSilent(-(int64_t(1) << 40), 1000));
    QVERIFY(!isSilent(48000, 100));
    QVERIFY(source->Problem().isEmpty());
}

static const TestRegistration<tst_AudioReader> AudioReaderRegistration;

#include "tst_AudioReader.moc"
