// SPDX-License-Identifier: MIT
#include "output/EncoderArguments.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <cstring>

/// What the encoder is told.
class tst_EncoderArguments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void WordsOfTheEncoder_data();
    void WordsOfTheEncoder();
    void BetterQualityHasALowerFactor();
    void SizesAreMadeEven_data();
    void SizesAreMadeEven();
    void InputAndOutputAreDescribed();
    void SoundIsPlacedToTheSample();
    void SilentPlanHasNoSound();
    void PathsAreTakenAsFiles();
};

namespace
{

OutputPlan MakePlan(const FrameRate& rate, int frames)
{
    OutputPlan plan;
    plan.rate = rate;
    plan.frames = FramesBetween(1, frames);
    MediaInfo info;
    info.path = QStringLiteral("/media/a-b:c.mov");
    info.startTime = 250000;
    info.hasAudio = true;
    info.audioChannels = 2;
    info.audioSampleRate = 48000;
    plan.media = {info};
    return plan;
}

/// What follows @p option in @p arguments, of the first @p occurrence.
QString After(const QStringList& arguments, const QString& option, int occurrence = 0)
{
    int at = -1;
    for (int time = 0; time <= occurrence; ++time)
        at = arguments.indexOf(option, at + 1);
    return at < 0 ? QString() : arguments.value(at + 1);
}

} // namespace

void tst_EncoderArguments::WordsOfTheEncoder_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("profile");
    QTest::addColumn<QString>("preset");
    const QStringList profiles = {"high", "main", "baseline"};
    const QStringList presets = {"veryslow", "slower",   "slow",      "medium",   "fast",
                                 "faster",   "veryfast", "superfast", "ultrafast"};
    for (int value = 0; value < presets.size(); ++value)
        QTest::addRow("%d", value) << value << profiles.value(value, "baseline") << presets[value];
    QTest::newRow("too high") << 9 << "baseline"
                              << "ultrafast";
    QTest::newRow("negative") << -1 << "baseline"
                              << "ultrafast";
}

void tst_EncoderArguments::WordsOfTheEncoder()
{
    QFETCH(int, value);
    ExportProfile profile;
    ExportPreset preset;
    std::memcpy(&profile, &value, sizeof(profile));
    std::memcpy(&preset, &value, sizeof(preset));
    QTEST(EncoderProfile(profile), "profile");
    QTEST(EncoderPreset(preset), "preset");
}

void tst_EncoderArguments::BetterQualityHasALowerFactor()
{
    int before = 0;
    for (const ExportQuality quality :
         {ExportQualityVeryHigh, ExportQualityHigh, ExportQualityMedium, ExportQualityLow})
    {
        QVERIFY(EncoderRateFactor(quality) > before);
        before = EncoderRateFactor(quality);
    }
    QVERIFY(before < 35);
}

void tst_EncoderArguments::SizesAreMadeEven_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("even");
    QTest::newRow("even") << QSize(1920, 1080) << QSize(1920, 1080);
    QTest::newRow("odd width") << QSize(853, 480) << QSize(854, 480);
    QTest::newRow("odd height") << QSize(240, 241) << QSize(240, 242);
    QTest::newRow("largest") << QSize(4095, 4095) << QSize(4096, 4096);
}

void tst_EncoderArguments::SizesAreMadeEven()
{
    QFETCH(QSize, size);
    QTEST(EncodableSize(size), "even");
}

void tst_EncoderArguments::InputAndOutputAreDescribed()
{
    ExportOptions options;
    options.profile = ExportProfileMain;
    options.quality = ExportQualityMedium;
    options.preset = ExportPresetSlow;
    for (const bool isLarge : {false, true})
    {
        const QSize size = isLarge ? QSize(1280, 720) : QSize(1280, 718);
        const QStringList arguments =
            EncoderArguments(MakePlan(FrameRate{24000, 1001}, 48), options, size, "/out/.part.mp4");
        QCOMPARE(After(arguments, "-f"), QStringLiteral("rawvideo"));
        QCOMPARE(After(arguments, "-pixel_format"), QStringLiteral("yuv420p"));
        QCOMPARE(After(arguments, "-video_size"), QStringLiteral("1280x%1").arg(size.height()));
        QCOMPARE(After(arguments, "-framerate"), QStringLiteral("24000/1001"));
        QCOMPARE(After(arguments, "-i"), QStringLiteral("pipe:0"));
        QCOMPARE(After(arguments, "-c:v"), QStringLiteral("libx264"));
        QCOMPARE(After(arguments, "-profile:v"), QStringLiteral("main"));
        QCOMPARE(After(arguments, "-preset"), QStringLiteral("slow"));
        QCOMPARE(After(arguments, "-crf"), QString::number(EncoderRateFactor(ExportQualityMedium)));
        QCOMPARE(After(arguments, "-f", 1), QStringLiteral("mp4"));
        QCOMPARE(arguments.last(), QStringLiteral("file:/out/.part.mp4"));
        // Movies of a high definition are in the newer matrix.
        QCOMPARE(After(arguments, "-colorspace"), isLarge ? "bt709" : "smpte170m");
        QVERIFY(arguments.indexOf("-nostdin") >= 0);
    }
}

void tst_EncoderArguments::SoundIsPlacedToTheSample()
{
    OutputPlan plan = MakePlan(FrameRate{25, 1}, 100);
    OutputSound first;
    first.mediaTime = 400000;
    first.start = 1000000;
    first.end = 2000000;
    OutputSound second = first;
    second.start = 2000000;
    second.end = 3000000;
    plan.sound = {first, second};
    const QStringList arguments = EncoderArguments(plan, ExportOptions(), QSize(640, 360), "/out.mp4");
    QCOMPARE(arguments.count("-i"), 3);
    // By the file's own times, which begin at a quarter of a second.
    QCOMPARE(arguments.count("-seek_timestamp"), 2);
    QCOMPARE(After(arguments, "-ss"), QStringLiteral("0.650000"));
    QCOMPARE(After(arguments, "-t"), QStringLiteral("1.000000"));
    const QString filter = After(arguments, "-filter_complex");
    // Silence before, both stretches, silence behind: four seconds.
    QCOMPARE(filter.count("atrim=end_sample="), 4);
    QCOMPARE(filter.count("atrim=end_sample=48000,"), 4);
    QVERIFY(filter.startsWith("anullsrc=r=48000:cl=stereo"));
    QVERIFY(filter.endsWith("[s0][s1][s2][s3]concat=n=4:v=0:a=1[sound]"));
    QCOMPARE(After(arguments, "-map", 1), QStringLiteral("[sound]"));
    QCOMPARE(After(arguments, "-b:a"), QStringLiteral("192000"));
}

void tst_EncoderArguments::SilentPlanHasNoSound()
{
    const QStringList arguments =
        EncoderArguments(MakePlan(FrameRate{25, 1}, 10), ExportOptions(), QSize(640, 360), "/out.mp4");
    QCOMPARE(arguments.count("-i"), 1);
    QVERIFY(!arguments.contains("-c:a"));
    QVERIFY(!arguments.contains("-filter_complex"));
}

void tst_EncoderArguments::PathsAreTakenAsFiles()
{
    OutputPlan plan = MakePlan(FrameRate{25, 1}, 25);
    OutputSound sound;
    sound.end = 1000000;
    plan.sound = {sound};
    const QStringList arguments = EncoderArguments(plan, ExportOptions(), QSize(640, 360), "/-y:concat.mp4");
    QCOMPARE(After(arguments, "-i", 1), QStringLiteral("file:/media/a-b:c.mov"));
    QCOMPARE(arguments.last(), QStringLiteral("file:/-y:concat.mp4"));
}

static const TestRegistration<tst_EncoderArguments> EncoderArgumentsRegistration;

#include "tst_EncoderArguments.moc"
