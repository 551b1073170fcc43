// SPDX-License-Identifier: MIT
#include "OutputProbe.h"
#include "annotation/AnnotationStore.h"
#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "output/ExportJob.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QTemporaryDir>
#include <QtTest>

/// Exports decoded again: every frame's number, the rate and the size.
class tst_ExportJob : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void EveryFrameComesBack_data();
    void EveryFrameComesBack();
    void RangeIsCutToTheFrame();
    void CutAcrossSourcesComesBack();
    void SequenceComesBack();
    void OddSizeIsMadeEven();
    void OtherSizeIsFitted();
    void AnnotationsAreBurntInWhereAsked_data();
    void AnnotationsAreBurntInWhereAsked();
    void LayoutShowsBothViewers();
    void ChoicesReachTheEncoder_data();
    void ChoicesReachTheEncoder();
    void ProgressRisesToTheEnd();
    void EncoderSpeaksInTheDetailedLog();
    void FileThatIsThereIsReplaced();
    void MovieGrowsInTheTemporaryDirectory();
    void MissingPicturesAreToldAndBlack();
    void OneExportFollowsAnother();
};

namespace
{

std::vector<int> Numbers(int first, int last)
{
    return FramesBetween(first, last);
}

MediaInfo InfoOf(const QString& path)
{
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error);
    return reader ? reader->Info() : MediaInfo();
}

QImage FrameOf(const QString& path, int frame)
{
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error);
    return reader ? reader->ReadFrame(frame).image : QImage();
}

} // namespace

void tst_ExportJob::EveryFrameComesBack_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<int>("frames");
    QTest::newRow("24") << "24" << 60;
    QTest::newRow("23.976") << "24000/1001" << 49;
    QTest::newRow("29.97") << "30000/1001" << 31;
    QTest::newRow("60") << "60" << 130;
    QTest::newRow("two frames") << "25" << 2;
    QTest::newRow("one frame") << "25" << 1;
}

void tst_ExportJob::EveryFrameComesBack()
{
    QFETCH(QString, rate);
    QFETCH(int, frames);
    const std::shared_ptr<MediaTimeline> timeline = OutputProbe::TimelineOf(OutputProbe::Movie(frames, rate));
    QVERIFY(timeline);
    QTemporaryDir dir;
    const QString path = dir.filePath("out.mp4");
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), OutputProbe::Options(path));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    QCOMPARE(OutputProbe::NamesIn(dir.path()), QStringList{"out.mp4"});
    QCOMPARE(OutputProbe::NumbersIn(path), Numbers(1, frames));
    const MediaInfo info = InfoOf(path);
    if (frames > 1)
        QVERIFY(info.frameRate == timeline->Rate());
    QCOMPARE(QSize(info.width, info.height), QSize(320, 180));
    QCOMPARE(info.codecName, QStringLiteral("h264"));
    QVERIFY(!info.hasAudio);
    QVERIFY(record.basicLines.last().startsWith(QStringLiteral("Exported %1 frames in ").arg(frames)));
    QVERIFY(!job.IsRunning());
}

void tst_ExportJob::RangeIsCutToTheFrame()
{
    const std::shared_ptr<MediaTimeline> timeline = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    QTemporaryDir dir;
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, MakeOutputPlan(viewers, FramesBetween(17, 41), true, true),
                         OutputProbe::Options(dir.filePath("out.mp4")));
    QVERIFY(record.succeeded);
    QCOMPARE(OutputProbe::NumbersIn(dir.filePath("out.mp4")), Numbers(17, 41));
    QVERIFY(record.basicLines.first().contains("frames 17 to 41"));
}

void tst_ExportJob::CutAcrossSourcesComesBack()
{
    const std::shared_ptr<MediaTimeline> first = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    const std::shared_ptr<MediaTimeline> other =
        OutputProbe::TimelineOf(OutputProbe::Movie(49, "24000/1001"));
    first->SetRange(PlaybackRange{31, 40});
    other->SetRange(PlaybackRange{5, 14});
    const auto timeline = OutputProbe::TimelineOf({first, other, first});
    QCOMPARE(timeline->FrameCount(), 30);
    QTemporaryDir dir;
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                                                        OutputProbe::Options(dir.filePath("out.mp4")));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    std::vector<int> expected = Numbers(31, 40);
    for (int frame = 11; frame <= 20; ++frame)
        expected.push_back(timeline->Segments()[1].MediaFrameOf(frame));
    QCOMPARE(expected[10], 5);
    for (int number = 31; number <= 40; ++number)
        expected.push_back(number);
    QCOMPARE(OutputProbe::NumbersIn(dir.filePath("out.mp4")), expected);
}

void tst_ExportJob::SequenceComesBack()
{
    QTemporaryDir pictures;
    for (int frame = 1; frame <= 12; ++frame)
        QVERIFY(
            NumberedMedia::Picture(frame, QSize(320, 180))
                .save(pictures.filePath(QStringLiteral("shot.%1.png").arg(frame, 4, 10, QLatin1Char('0')))));
    const auto timeline = OutputProbe::TimelineOf(pictures.filePath("shot.0001.png"));
    QTemporaryDir dir;
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                                                        OutputProbe::Options(dir.filePath("out.mp4")));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    QCOMPARE(OutputProbe::NumbersIn(dir.filePath("out.mp4")), Numbers(1, 12));
}

void tst_ExportJob::OddSizeIsMadeEven()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(2, "25"));
    QTemporaryDir dir;
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                         OutputProbe::Options(dir.filePath("out.mp4"), QSize(481, 271)));
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    const MediaInfo info = InfoOf(dir.filePath("out.mp4"));
    QCOMPARE(QSize(info.width, info.height), QSize(482, 272));
    QVERIFY(record.basicLines.contains("Odd sizes can't be encoded: the movie gets 482 x 272 pixels."));
    QCOMPARE(OutputProbe::NumbersIn(dir.filePath("out.mp4")), Numbers(1, 2));
}

void tst_ExportJob::OtherSizeIsFitted()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(2, "25"));
    QTemporaryDir dir;
    ExportJob job;
    QVERIFY(OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                             OutputProbe::Options(dir.filePath("out.mp4"), QSize(480, 480)))
                .succeeded);
    const QImage frame = FrameOf(dir.filePath("out.mp4"), 2);
    QCOMPARE(frame.size(), QSize(480, 480));
    // Black above and below the picture, which is 480 x 270 in the middle.
    QVERIFY(qGray(frame.pixel(240, 50)) < 6);
    QVERIFY(qGray(frame.pixel(240, 430)) < 6);
    QCOMPARE(NumberedMedia::NumberIn(frame.copy(0, 105, 480, 270)), 2);
}

void tst_ExportJob::AnnotationsAreBurntInWhereAsked_data()
{
    QTest::addColumn<bool>("asked");
    QTest::newRow("asked") << true;
    QTest::newRow("not asked") << false;
}

void tst_ExportJob::AnnotationsAreBurntInWhereAsked()
{
    QFETCH(bool, asked);
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    DrawData stroke;
    stroke.type = DrawPencil;
    stroke.color = QColor(255, 0, 0);
    stroke.width = 0.1f;
    stroke.points = {QPointF(-0.3, 0.2), QPointF(0.3, 0.2)};
    timeline->Annotations()->SetDrawings(7, {stroke});
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    QTemporaryDir dir;
    ExportJob job;
    QVERIFY(OutputProbe::Run(job, MakeOutputPlan(viewers, FramesBetween(5, 9), asked, false),
                             OutputProbe::Options(dir.filePath("out.mp4")))
                .succeeded);
    for (int frame = 1; frame <= 5; ++frame)
    {
        // Draw space (0, 0.2) of a picture 320 wide lies 64 pixels below its middle.
        const QColor color = FrameOf(dir.filePath("out.mp4"), frame).pixelColor(160, 154);
        const bool isRed = color.red() > 200 && color.green() < 60 && color.blue() < 60;
        QCOMPARE(isRed, asked && frame == 3);
    }
}

void tst_ExportJob::LayoutShowsBothViewers()
{
    const auto a = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    const auto b = OutputProbe::TimelineOf(OutputProbe::Movie(130, "60"));
    OutputViewers viewers;
    viewers.timelines = {a.get(), b.get()};
    viewers.layout = Horizontal;
    QTemporaryDir dir;
    ExportJob job;
    QVERIFY(OutputProbe::Run(job, MakeOutputPlan(viewers, FramesBetween(1, 24), true, false),
                             OutputProbe::Options(dir.filePath("out.mp4"), QSize(640, 180)))
                .succeeded);
    for (const int frame : {1, 2, 13, 24})
    {
        const QImage picture = FrameOf(dir.filePath("out.mp4"), frame);
        QCOMPARE(NumberedMedia::NumberIn(picture.copy(1, 0, 320, 180)), frame);
        // The same time of its own clock.
        QCOMPARE(NumberedMedia::NumberIn(picture.copy(319, 0, 320, 180)), (frame - 1) * 60 / 24 + 1);
    }
}

void tst_ExportJob::ChoicesReachTheEncoder_data()
{
    QTest::addColumn<int>("profile");
    QTest::addColumn<int>("quality");
    QTest::addColumn<int>("preset");
    QTest::addColumn<QString>("words");
    QTest::newRow("best") << 0 << 0 << 3 << "profile High";
    QTest::newRow("main") << 1 << 2 << 6 << "profile Main";
    QTest::newRow("baseline") << 2 << 3 << 8 << "profile Constrained Baseline";
}

void tst_ExportJob::ChoicesReachTheEncoder()
{
    QFETCH(int, profile);
    QFETCH(int, quality);
    QFETCH(int, preset);
    QFETCH(QString, words);
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(31, "30000/1001"));
    QTemporaryDir dir;
    ExportOptions options = OutputProbe::Options(dir.filePath("out.mp4"));
    options.profile = static_cast<ExportProfile>(profile);
    options.quality = static_cast<ExportQuality>(quality);
    options.preset = static_cast<ExportPreset>(preset);
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), options);
    QVERIFY(record.succeeded);
    const QStringList told = record.detailedLines.filter("[libx264").filter("profile ");
    QCOMPARE(told.size(), 1);
    QVERIFY2(told.first().contains(words), qPrintable(told.first()));
}

void tst_ExportJob::ProgressRisesToTheEnd()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(130, "60"));
    QTemporaryDir dir;
    ExportJob job;
    const OutputProbe::Record record =
        OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                         OutputProbe::Options(dir.filePath("out.mp4"), QSize(960, 540)));
    QVERIFY(record.succeeded);
    QVERIFY(record.progress.size() > 2);
    QCOMPARE(record.progress.front(), 0);
    QCOMPARE(record.progress.back(), 1000);
    QVERIFY(std::is_sorted(record.progress.begin(), record.progress.end()));
}

void tst_ExportJob::EncoderSpeaksInTheDetailedLog()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(2, "25"));
    QTemporaryDir dir;
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                                                        OutputProbe::Options(dir.filePath("out.mp4")));
    QCOMPARE(record.basicLines.size(), 3);
    QCOMPARE(record.basicLines[1], "To " + dir.filePath("out.mp4"));
    QVERIFY(record.detailedLines.filter("libx264").size() > 2);
    QVERIFY(record.detailedLines.size() > 10);
    for (const QString& line : record.basicLines)
        QVERIFY(record.detailedLines.contains(line));
    for (const QString& line : record.detailedLines)
        QVERIFY(!line.contains('\n') && !line.contains('\r') && !line.isEmpty());
}

void tst_ExportJob::FileThatIsThereIsReplaced()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(2, "25"));
    QTemporaryDir dir;
    const QString path = dir.filePath("out.mp4");
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("old");
    }
    ExportJob job;
    QVERIFY(OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), OutputProbe::Options(path)).succeeded);
    QCOMPARE(OutputProbe::NumbersIn(path), Numbers(1, 2));
    QCOMPARE(OutputProbe::NamesIn(dir.path()), QStringList{"out.mp4"});
}

void tst_ExportJob::MovieGrowsInTheTemporaryDirectory()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(2, "25"));
    // Another file system, where there is one.
    QTemporaryDir temporary(QDir("/dev/shm").exists() ? "/dev/shm/torvalen-test-XXXXXX"
                                                      : QDir::tempPath() + "/torvalen-test-XXXXXX");
    QVERIFY(temporary.isValid());
    QTemporaryDir dir;
    ExportOptions options = OutputProbe::Options(dir.filePath("out.mp4"));
    options.temporaryDirectory = temporary.path();
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), options);
    QVERIFY2(record.succeeded, qPrintable(record.detailedLines.join('\n')));
    QVERIFY(record.detailedLines.filter(temporary.path()).size() > 0);
    QCOMPARE(OutputProbe::NamesIn(dir.path()), QStringList{"out.mp4"});
    QVERIFY(OutputProbe::NamesIn(temporary.path()).isEmpty());
    QCOMPARE(OutputProbe::NumbersIn(options.outputPath), Numbers(1, 2));
}

void tst_ExportJob::MissingPicturesAreToldAndBlack()
{
    QTemporaryDir pictures;
    const auto name = [&](int frame)
    { return pictures.filePath(QStringLiteral("shot.%1.png").arg(frame, 4, 10, QLatin1Char('0'))); };
    for (int frame = 1; frame <= 6; ++frame)
        QVERIFY(NumberedMedia::Picture(frame, QSize(320, 180)).save(name(frame)));
    QVERIFY(QFile::remove(name(3)));
    const auto timeline = OutputProbe::TimelineOf(name(1));
    QTemporaryDir dir;
    ExportJob job;
    const OutputProbe::Record record = OutputProbe::Run(job, OutputProbe::WholePlan(*timeline),
                                                        OutputProbe::Options(dir.filePath("out.mp4")));
    QVERIFY(record.succeeded);
    QCOMPARE(record.basicLines.filter("shot.0003.png").size(), 1);
    QCOMPARE(OutputProbe::NumbersIn(dir.filePath("out.mp4")), (std::vector<int>{1, 2, -1, 4, 5, 6}));
    QVERIFY(qGray(FrameOf(dir.filePath("out.mp4"), 3).pixel(100, 100)) < 6);
}

void tst_ExportJob::OneExportFollowsAnother()
{
    const auto timeline = OutputProbe::TimelineOf(OutputProbe::Movie(2, "25"));
    QTemporaryDir dir;
    ExportJob job;
    for (const char* const name : {"one.mp4", "two.mp4", "one.mp4"})
    {
        QVERIFY(
            OutputProbe::Run(job, OutputProbe::WholePlan(*timeline), OutputProbe::Options(dir.filePath(name)))
                .succeeded);
        QCOMPARE(OutputProbe::NumbersIn(dir.filePath(name)), Numbers(1, 2));
    }
}

static const TestRegistration<tst_ExportJob> ExportJobRegistration;

#include "tst_ExportJob.moc"
