// SPDX-License-Identifier: MIT
#include "OutputProbe.h"
#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "output/ExportJob.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <cstring>

/// The sound of exported movies: where it begins, how long it is, and silence where there is none.
class tst_ExportSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void SoundKeepsItsPlace_data();
    void SoundKeepsItsPlace();
    void CutsKeepTheSoundOfTheirSources();
    void SourcesWithoutSoundAreSilent();
    void LateSoundStaysLate();
    void FormatIsThatOfTheSource();

private:
    QString mClicks;
    QTemporaryDir mDir;
};

namespace
{

constexpr int SampleRate = 48000;
/// A frame of the encoder is about 21 ms long; a click is found within a few samples.
constexpr double Tolerance = 0.001;

/// The sound of the movie at @p path from its first frame on, in one channel.
std::vector<float> SoundOf(const QString& path)
{
    QProcess program;
    program.start("ffmpeg", {"-v", "error", "-i", path, "-map", "0:a:0", "-ac", "1", "-ar",
                             QString::number(SampleRate), "-f", "f32le", "-"});
    if (!program.waitForFinished(60000) || program.exitCode() != 0)
        return {};
    const QByteArray bytes = program.readAllStandardOutput();
    std::vector<float> samples(static_cast<size_t>(bytes.size()) / sizeof(float));
    std::memcpy(samples.data(), bytes.constData(), samples.size() * sizeof(float));
    return samples;
}

/// Where silence ends in @p samples, in seconds, each time.
std::vector<double> Onsets(const std::vector<float>& samples)
{
    std::vector<double> onsets;
    size_t quiet = SampleRate;
    for (size_t sample = 0; sample < samples.size(); ++sample)
    {
        if (std::fabs(samples[sample]) < 0.2f)
        {
            ++quiet;
            continue;
        }
        if (quiet > SampleRate / 10)
            onsets.push_back(static_cast<double>(sample) / SampleRate);
        quiet = 0;
    }
    return onsets;
}

bool IsNear(const std::vector<double>& actual, const std::vector<double>& expected)
{
    if (actual.size() != expected.size())
        return false;
    for (size_t index = 0; index < actual.size(); ++index)
    {
        if (std::fabs(actual[index] - expected[index]) > Tolerance)
            return false;
    }
    return true;
}

QByteArray OnsetText(const std::vector<double>& onsets)
{
    QByteArray text;
    for (const double onset : onsets)
        text += QByteArray::number(onset, 'f', 5) + ' ';
    return text;
}

} // namespace

void tst_ExportSound::initTestCase()
{
    // A tone of 50 ms each half second but at the start, uncompressed so that its place is certain.
    mClicks = NumberedMedia::Made(
        "clicks.mov", {"-i", OutputProbe::Movie(130, "60"), "-f", "lavfi", "-i",
                       "aevalsrc=0.8*sin(2*PI*1000*t)*lt(mod(t\\,0.5)\\,0.05)*gte(t\\,0.5):s=48000:d=3",
                       "-map", "0:v", "-map", "1:a", "-c:v", "copy", "-c:a", "pcm_s16le", "-shortest"});
    QVERIFY(!mClicks.isEmpty());
    const std::vector<double> onsets = Onsets(SoundOf(mClicks));
    QVERIFY2(IsNear(onsets, {0.5, 1.0, 1.5, 2.0}), OnsetText(onsets));
}

void tst_ExportSound::SoundKeepsItsPlace_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("whole") << 1 << 130;
    QTest::newRow("range") << 25 << 100;
    QTest::newRow("from a click on") << 31 << 130;
    QTest::newRow("short") << 55 << 70;
}

void tst_ExportSound::SoundKeepsItsPlace()
{
    QFETCH(int, first);
    QFETCH(int, last);
    const auto timeline = OutputProbe::TimelineOf(mClicks);
    QVERIFY(timeline->Info().hasAudio);
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    const QString path = mDir.filePath(QStringLiteral("%1.mp4").arg(QTest::currentDataTag()));
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(
        job, MakeOutputPlan(viewers, FramesBetween(first, last), false, true), OutputProbe::Options(path));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    QCOMPARE(OutputProbe::NumbersIn(path), FramesBetween(first, last));
    const std::vector<float> samples = SoundOf(path);
    const double start = (first - 1) / 60.0;
    const double duration = (last - first + 1) / 60.0;
    std::vector<double> expected;
    for (double click = 0.5; click < 2.1; click += 0.5)
    {
        if (click >= start - 1e-6 && click < start + duration)
            expected.push_back(click - start);
    }
    const std::vector<double> onsets = Onsets(samples);
    QVERIFY2(IsNear(onsets, expected), OnsetText(onsets) + "expected " + OnsetText(expected));
    // The encoder's last frame may be filled up.
    const double length = static_cast<double>(samples.size()) / SampleRate;
    QVERIFY2(length >= duration - Tolerance && length < duration + 0.025, QByteArray::number(length));
}

void tst_ExportSound::CutsKeepTheSoundOfTheirSources()
{
    const auto first = OutputProbe::TimelineOf(mClicks);
    const auto other = OutputProbe::TimelineOf(mClicks);
    first->SetRange(PlaybackRange{25, 54});
    other->SetRange(PlaybackRange{85, 126});
    const auto timeline = OutputProbe::TimelineOf({first, other, first});
    QCOMPARE(timeline->FrameCount(), 30 + 42 + 30);
    const QString path = mDir.filePath("cut.mp4");
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), OutputProbe::Options(path));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    const std::vector<double> expected = {6 / 60.0, (30 + 6) / 60.0, (30 + 36) / 60.0, (72 + 6) / 60.0};
    const std::vector<double> onsets = Onsets(SoundOf(path));
    QVERIFY2(IsNear(onsets, expected), OnsetText(onsets) + "expected " + OnsetText(expected));
}

void tst_ExportSound::SourcesWithoutSoundAreSilent()
{
    const auto silent = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    const auto loud = OutputProbe::TimelineOf(mClicks);
    silent->SetRange(PlaybackRange{1, 24});
    const auto timeline = OutputProbe::TimelineOf({silent, loud, silent});
    const QString path = mDir.filePath("silent.mp4");
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), OutputProbe::Options(path));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    const std::vector<float> samples = SoundOf(path);
    const std::vector<double> onsets = Onsets(samples);
    QVERIFY2(IsNear(onsets, {1.5, 2.0, 2.5, 3.0}), OnsetText(onsets));
    const double duration = timeline->FrameCount() / 24.0;
    QVERIFY(std::fabs(static_cast<double>(samples.size()) / SampleRate - duration) < 0.025);
}

void tst_ExportSound::LateSoundStaysLate()
{
    // Sound that begins 0.7 s after the picture, and a picture that doesn't begin at 0.
    const QString late = NumberedMedia::Made(
        "late.mov", {"-itsoffset", "0.25", "-i", OutputProbe::Movie(130, "60"), "-itsoffset", "0.95", "-f",
                     "lavfi", "-i", "aevalsrc=0.8*sin(2*PI*1000*t)*lt(t\\,0.1):s=48000:d=1", "-map", "0:v",
                     "-map", "1:a", "-c:v", "copy", "-c:a", "pcm_s16le"});
    const auto timeline = OutputProbe::TimelineOf(late);
    QVERIFY(timeline);
    QCOMPARE(timeline->FrameCount(), 130);
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    for (const int first : {1, 13})
    {
        const QString path = mDir.filePath(QStringLiteral("late%1.mp4").arg(first));
        ExportJob job;
        QVERIFY(OutputProbe::Run(job, MakeOutputPlan(viewers, FramesBetween(first, 130), false, true),
                                 OutputProbe::Options(path))
                    .succeeded);
        const std::vector<double> onsets = Onsets(SoundOf(path));
        QVERIFY2(IsNear(onsets, {0.7 - (first - 1) / 60.0}), OnsetText(onsets));
    }
}

void tst_ExportSound::FormatIsThatOfTheSource()
{
    const QString mono = NumberedMedia::Made(
        "mono.mp4", {"-i", OutputProbe::Movie(31, "30000/1001"), "-f", "lavfi", "-i", "sine=r=44100:d=1",
                     "-map", "0:v", "-map", "1:a", "-c:v", "copy", "-c:a", "aac", "-ac", "1"});
    const auto timeline = OutputProbe::TimelineOf(mono);
    const QString path = mDir.filePath("mono.mp4");
    ExportJob job;
    QVERIFY(OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), OutputProbe::Options(path)).succeeded);
    const auto result = OutputProbe::TimelineOf(path);
    QCOMPARE(result->Info().audioSampleRate, 44100);
    QCOMPARE(result->Info().audioChannels, 1);
    QCOMPARE(result->Info().audioCodecName, QStringLiteral("aac"));
}

static const TestRegistration<tst_ExportSound> ExportSoundRegistration;

#include "tst_ExportSound.moc"
