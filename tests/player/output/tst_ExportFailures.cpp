// SPDX-License-Identifier: MIT
#include "OutputProbe.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "output/ExportJob.h"
#include "output/FinishedFile.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

/// Exports that can't be made: the reason is told, and nothing is left behind.
class tst_ExportFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void EncoderIsThatOfTheSettings();
    void EncoderThatIsMissingIsNamed_data();
    void EncoderThatIsMissingIsNamed();
    void EncoderThatFailsSaysWhy_data();
    void EncoderThatFailsSaysWhy();
    void EncoderThatWritesTooLittleIsCaught_data();
    void EncoderThatWritesTooLittleIsCaught();
    void DirectoryThatCantBeWrittenIsNamed_data();
    void DirectoryThatCantBeWrittenIsNamed();
    void ShownSourceIsNotReplaced();
    void NothingToExportIsTold();
    void StopLeavesNothingBehind_data();
    void StopLeavesNothingBehind();
    void JobThatGoesAwayLeavesNothingBehind();
    void OldFileSurvivesAFailure();
    void MediumThatCantBeOpenedIsTold();
    void FinishedFileIsCounted();

private:
    OutputPlan Plan() const { return OutputProbe::WholePlan(*mTimeline); }

    std::shared_ptr<MediaTimeline> mTimeline;
    std::unique_ptr<QTemporaryDir> mDir;
    std::unique_ptr<QTemporaryDir> mPrograms;
};

void tst_ExportFailures::initTestCase()
{
    mTimeline = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    QVERIFY(mTimeline);
}

void tst_ExportFailures::init()
{
    Settings::RestoreDefaults();
    mDir = std::make_unique<QTemporaryDir>();
    mPrograms = std::make_unique<QTemporaryDir>();
}

void tst_ExportFailures::EncoderIsThatOfTheSettings()
{
    QVERIFY(ExportJob::FindEncoder().endsWith("/ffmpeg"));
    Settings::ffmpegExePath = "/some/where/encoder";
    QCOMPARE(ExportJob::FindEncoder(), QStringLiteral("/some/where/encoder"));
    Settings::ffmpegExePath.clear();
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", mDir->path().toLocal8Bit());
    const QString none = ExportJob::FindEncoder();
    qputenv("PATH", path);
    QCOMPARE(none, QString());
}

void tst_ExportFailures::EncoderThatIsMissingIsNamed_data()
{
    QTest::addColumn<QString>("encoder");
    QTest::addColumn<QString>("told");
    QTest::newRow("none") << QString() << "ffmpeg was not found on the path";
    QTest::newRow("no file") << "/no such/encoder"
                             << "/no such/encoder";
    QTest::newRow("a directory") << QDir::tempPath() << QDir::tempPath();
}

void tst_ExportFailures::EncoderThatIsMissingIsNamed()
{
    QFETCH(QString, encoder);
    QFETCH(QString, told);
    ExportOptions options = OutputProbe::Options(mDir->filePath("out.mp4"));
    options.encoder = encoder;
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, Plan(), options);
    QVERIFY(record.isFinished);
    QVERIFY(!record.succeeded);
    QVERIFY2(record.basicLines.last().startsWith("Error: ") && record.basicLines.last().contains(told),
             qPrintable(record.basicLines.join('\n')));
    QVERIFY(OutputProbe::NamesIn(mDir->path()).isEmpty());
}

void tst_ExportFailures::EncoderThatFailsSaysWhy_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("told");
    QTest::newRow("at once") << QByteArray("echo 'Unknown encoder' >&2; exit 3")
                             << "The encoder failed (exit status 3): Unknown encoder";
    QTest::newRow("full disk")
        << QByteArray(
               "head -c 500000 >/dev/null\necho '[error] av_write(): No space left on device' >&2\n"
               "echo '[libx264 @ 0x1] [info] kb/s:100' >&2\necho '[fatal] Conversion failed!' >&2\nexit 1")
        << "The encoder failed (exit status 1): av_write(): No space left on device";
    QTest::newRow("full disk in truth")
        << QByteArray("ulimit -f 64\ntrap '' XFSZ\nexec ffmpeg \"$@\"") << "File too large";
    QTest::newRow("without a line end") << QByteArray("printf 'first\\nlast words' >&2; exit 1")
                                        << "The encoder failed (exit status 1): last words";
    QTest::newRow("crash") << QByteArray("echo 'going' >&2; kill -SEGV $$") << "The encoder crashed. going";
    QTest::newRow("in silence") << QByteArray("cat >/dev/null; exit 0")
                                << "The movie that was written can't be read";
}

void tst_ExportFailures::EncoderThatFailsSaysWhy()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, told);
    ExportOptions options = OutputProbe::Options(mDir->filePath("out.mp4"));
    options.encoder = mPrograms->filePath("encoder");
    QVERIFY(OutputProbe::MakeProgram(options.encoder, script));
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, Plan(), options);
    QVERIFY(record.isFinished);
    QVERIFY(!record.succeeded);
    QVERIFY2(record.basicLines.last().contains(told), qPrintable(record.basicLines.join('\n')));
    QCOMPARE(record.detailedLines.last(), record.basicLines.last());
    QVERIFY(OutputProbe::NamesIn(mDir->path()).isEmpty());
}

void tst_ExportFailures::EncoderThatWritesTooLittleIsCaught_data()
{
    QTest::addColumn<QString>("replaced");
    QTest::addColumn<QString>("by");
    QTest::addColumn<QString>("told");
    QTest::newRow("frames") << "-map 0:v:0"
                            << "-map 0:v:0 -frames:v 59"
                            << "The movie that was written has 59 frames instead of 60.";
    QTest::newRow("rate") << "-framerate 24/1"
                          << "-framerate 25/1"
                          << "The movie that was written has 25 frames per second instead of 24.";
}

void tst_ExportFailures::EncoderThatWritesTooLittleIsCaught()
{
    QFETCH(QString, replaced);
    QFETCH(QString, by);
    QFETCH(QString, told);
    ExportOptions options = OutputProbe::Options(mDir->filePath("out.mp4"));
    const QString real = options.encoder;
    options.encoder = mPrograms->filePath("encoder");
    // No argument holds a blank here, so they can be taken as one text.
    QVERIFY(OutputProbe::MakeProgram(
        options.encoder,
        QStringLiteral("exec %1 $(echo \"$*\" | sed 's#%2#%3#')\n").arg(real, replaced, by).toLocal8Bit()));
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, Plan(), options);
    QVERIFY(!record.succeeded);
    QVERIFY2(record.basicLines.last().contains(told), qPrintable(record.detailedLines.join('\n')));
    QVERIFY(OutputProbe::NamesIn(mDir->path()).isEmpty());
}

void tst_ExportFailures::DirectoryThatCantBeWrittenIsNamed_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* const kind : {"missing", "file", "read-only", "target is a directory", "temporary"})
        QTest::newRow(kind) << kind;
}

void tst_ExportFailures::DirectoryThatCantBeWrittenIsNamed()
{
    QFETCH(QString, kind);
    QDir dir(mDir->path());
    QVERIFY(dir.mkdir("place"));
    QString directory = dir.filePath("place");
    QString path = directory + "/out.mp4";
    ExportOptions options = OutputProbe::Options(path);
    if (kind == "missing")
        directory = dir.filePath("missing");
    else if (kind == "file")
    {
        QFile file(dir.filePath("file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        directory = file.fileName();
    }
    else if (kind == "read-only")
        // Not even an administrator can write there.
        directory = "/proc/self";
    else if (kind == "target is a directory")
    {
        QVERIFY(QDir(directory).mkdir("out.mp4"));
        directory = path;
    }
    else
    {
        options.temporaryDirectory = dir.filePath("no temporary");
        directory = options.temporaryDirectory;
    }
    options.outputPath =
        kind == "target is a directory" || kind == "temporary" ? path : directory + "/out.mp4";
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, Plan(), options);
    QVERIFY(!record.succeeded);
    QVERIFY2(record.basicLines.last().startsWith("Error: ") && record.basicLines.last().contains(directory),
             qPrintable(record.basicLines.join('\n')));
    QCOMPARE(record.detailedLines.last(), record.basicLines.last());
    QVERIFY(OutputProbe::NamesIn(dir.filePath("place")).filter("torvalen").isEmpty());
}

void tst_ExportFailures::ShownSourceIsNotReplaced()
{
    const QString copy = mDir->filePath("source.mp4");
    QVERIFY(QFile::copy(OutputProbe::Movie(2, "25"), copy));
    const auto timeline = OutputProbe::TimelineOf(copy);
    const QByteArray before = [&]
    {
        QFile file(copy);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(
        job, OutputProbe::WholePlan(*timeline),
        OutputProbe::Options(mDir->path() + "/../" + QFileInfo(mDir->path()).fileName() + "/source.mp4"));
    QVERIFY(!record.succeeded);
    QVERIFY(record.basicLines.last().contains("is shown by the timeline"));
    QFile file(copy);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
}

void tst_ExportFailures::NothingToExportIsTold()
{
    OutputViewers viewers;
    viewers.timelines[0] = mTimeline.get();
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, MakeOutputPlan(viewers, {}, true, true),
                                                        OutputProbe::Options(mDir->filePath("out.mp4")));
    QVERIFY(!record.succeeded);
    QCOMPARE(record.basicLines, QStringList{"Error: There are no frames to export."});
}

void tst_ExportFailures::StopLeavesNothingBehind_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("encoding") << QByteArray();
    QTest::newRow("reading nothing") << QByteArray("exec sleep 100");
    QTest::newRow("deaf") << QByteArray("trap '' TERM INT PIPE; cat >/dev/null; while :; do sleep 0.1; done");
}

void tst_ExportFailures::StopLeavesNothingBehind()
{
    QFETCH(QByteArray, script);
    ExportOptions options = OutputProbe::Options(mDir->filePath("out.mp4"), QSize(1920, 1080));
    if (!script.isEmpty())
    {
        options.encoder = mPrograms->filePath("encoder");
        QVERIFY(OutputProbe::MakeProgram(options.encoder, script));
    }
    else
        options.preset = ExportPresetVerySlow;
    ExportJob job;
    const auto record = OutputProbe::RecordOf(job);
    job.Start(Plan(), options);
    QVERIFY(job.IsRunning());
    QTest::qWait(400);
    QVERIFY(!record->isFinished);
    QCOMPARE(OutputProbe::NamesIn(mDir->path()).size(), 1);
    QVERIFY(!QFile::exists(options.outputPath));
    QElapsedTimer clock;
    clock.start();
    job.Stop();
    job.Stop();
    QVERIFY(QTest::qWaitFor([&] { return record->isFinished; }, 10000));
    QVERIFY(clock.elapsed() < 20000);
    QVERIFY(!record->succeeded);
    QVERIFY(!job.IsRunning());
    QCOMPARE(record->basicLines.mid(2), QStringList({"Stopping.", "Stopped; nothing was written."}));
    QVERIFY(OutputProbe::NamesIn(mDir->path()).isEmpty());
}

void tst_ExportFailures::JobThatGoesAwayLeavesNothingBehind()
{
    ExportOptions options = OutputProbe::Options(mDir->filePath("out.mp4"), QSize(1920, 1080));
    options.preset = ExportPresetVerySlow;
    {
        ExportJob job;
        job.Start(Plan(), options);
        QTest::qWait(200);
        QVERIFY(job.IsRunning());
    }
    QVERIFY(OutputProbe::NamesIn(mDir->path()).isEmpty());
    {
        ExportJob job;
        job.Start(Plan(), options);
    }
    QVERIFY(OutputProbe::NamesIn(mDir->path()).isEmpty());
}

void tst_ExportFailures::OldFileSurvivesAFailure()
{
    const QString path = mDir->filePath("out.mp4");
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("old");
    }
    ExportOptions options = OutputProbe::Options(path);
    options.encoder = mPrograms->filePath("encoder");
    QVERIFY(OutputProbe::MakeProgram(options.encoder, "exit 1"));
    ExportJob job;
    QVERIFY(!OutputProbe::Run(job, Plan(), options).succeeded);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("old"));
    QCOMPARE(OutputProbe::NamesIn(mDir->path()), QStringList{"out.mp4"});
}

void tst_ExportFailures::MediumThatCantBeOpenedIsTold()
{
    OutputPlan plan = Plan();
    plan.frames.resize(3);
    plan.media[0].path = mDir->filePath("gone.mov");
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, plan, OutputProbe::Options(mPrograms->filePath("out.mp4")));
    QVERIFY(record.succeeded);
    // Black frames, one line each.
    QCOMPARE(record.basicLines.filter("gone.mov").size(), 3);
    QCOMPARE(OutputProbe::NumbersIn(mPrograms->filePath("out.mp4")), (std::vector<int>{-1, -1, -1}));
}

void tst_ExportFailures::FinishedFileIsCounted()
{
    const QString movie = OutputProbe::Movie(60, "24");
    const CancelToken cancel;
    QCOMPARE(FinishedFile::Check(movie, 60, FrameRate{24, 1}, cancel), QString());
    QVERIFY(FinishedFile::Check(movie, 61, FrameRate{24, 1}, cancel).contains("60 frames instead of 61"));
    QVERIFY(FinishedFile::Check(movie, 60, FrameRate{24000, 1001}, cancel).contains("23.976"));
    QVERIFY(!FinishedFile::Check(mDir->filePath("none.mp4"), 60, FrameRate{24, 1}, cancel).isEmpty());
    QVERIFY(!FinishedFile::Move(mDir->filePath("none"), mDir->filePath("other")).isEmpty());
}

static const TestRegistration<tst_ExportFailures> ExportFailuresRegistration;

#include "tst_ExportFailures.moc"
