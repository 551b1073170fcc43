// SPDX-License-Identifier: MIT
#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <random>
#include <thread>

namespace
{

struct MovieCase
{
    const char* name;
    int frames;
    const char* rate;
    const char* encoder;
};

// Open groups, groups of the whole length, pictures that are only references, times that start elsewhere,
// keys that are none, containers without presentation times.
constexpr MovieCase MovieCases[] = {
    {"h264-b.mp4", 240, "24", "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 48"},
    {"h264-open.mkv", 240, "24000/1001",
     "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -x264-params open-gop=1:keyint=40:scenecut=0"},
    {"h264-long.mov", 260, "30000/1001",
     "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 5 -x264-params "
     "keyint=250:scenecut=0:b-adapt=2:b-pyramid=normal"},
    {"h264-b.avi", 150, "25", "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 48"},
    {"h264-late.mp4", 240, "60",
     "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 2 -g 48 -output_ts_offset 7.3"},
    {"h264-late.ts", 150, "25",
     "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 30 -output_ts_offset 100 -muxdelay 0"},
    {"h264-refresh.mkv", 150, "24",
     "-c:v libx264 -preset veryfast -pix_fmt yuv420p -x264-params "
     "intra-refresh=1:keyint=30:scenecut=0:ref=1"},
    {"h264-raw.h264", 100, "25", "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 30"},
    {"hevc.mp4", 150, "24",
     "-c:v libx265 -preset veryfast -pix_fmt yuv420p -x265-params "
     "log-level=none:keyint=40:pools=1:frame-threads=1"},
    {"mjpeg.avi", 120, "25", "-c:v mjpeg -q:v 3 -pix_fmt yuvj420p"},
    {"mjpeg.mov", 120, "60", "-c:v mjpeg -q:v 3 -pix_fmt yuvj422p"},
    {"prores.mov", 120, "24000/1001", "-c:v prores_ks -profile:v 1 -pix_fmt yuv422p10le"},
    {"prores.mkv", 100, "30000/1001", "-c:v prores_ks -profile:v 4 -pix_fmt yuv444p10le"},
    {"vp9.webm", 180, "30000/1001",
     "-c:v libvpx-vp9 -b:v 200k -deadline good -cpu-used 5 -auto-alt-ref 1 -lag-in-frames 16 -g 60"},
    {"vp9.mp4", 120, "24",
     "-c:v libvpx-vp9 -b:v 200k -deadline good -cpu-used 5 -auto-alt-ref 1 -lag-in-frames 16 -g 60"},
    {"vp8.webm", 120, "25",
     "-c:v libvpx -b:v 300k -deadline good -cpu-used 5 -auto-alt-ref 1 -lag-in-frames 16 -g 60"},
    {"mpeg4.avi", 120, "25", "-c:v mpeg4 -q:v 3 -bf 2 -g 30"},
    {"mpeg2.mpg", 120, "25", "-c:v mpeg2video -q:v 3 -bf 2 -g 15"},
    {"mpeg2.mxf", 120, "25", "-c:v mpeg2video -q:v 3 -bf 2 -g 15"},
    {"uneven.mkv", 120, "30",
     "-vf setpts=(N+3*floor(N/7))/(30*TB) -vsync passthrough -c:v libx264 -preset veryfast -pix_fmt yuv420p "
     "-g 40"},
};

QString PathOf(const MovieCase& movie)
{
    return NumberedMedia::Movie(QString::fromLatin1(movie.name), movie.frames,
                                QString::fromLatin1(movie.rate),
                                QString::fromLatin1(movie.encoder).split(QLatin1Char(' ')));
}

} // namespace

class tst_MovieFrames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void CountsTheFramesAndKnowsTheRate_data() { AddMovies(); }
    void CountsTheFramesAndKnowsTheRate();
    void ReadsEveryFrameInOrder_data() { AddMovies(); }
    void ReadsEveryFrameInOrder();
    void SeeksAtRandom_data() { AddMovies(); }
    void SeeksAtRandom();
    void StepsBackwardsAndForwards_data() { AddMovies(); }
    void StepsBackwardsAndForwards();
    void ReadsOnAfterACancelledSeek_data() { AddMovies(); }
    void ReadsOnAfterACancelledSeek();
    void LeavesOutWhatAnEditListCutsOff();
    void GroupStartIsAKeyPicture();
    void FramesOutOfRangeAreMissing();
    void KnowsWhereTheStreamStarts();

private:
    static void AddMovies();

    std::unique_ptr<MediaReader> mReader;
};

void tst_MovieFrames::AddMovies()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < int(std::size(MovieCases)); ++row)
        QTest::newRow(MovieCases[row].name) << row;
}

void tst_MovieFrames::init()
{
    mReader.reset();
    if (QTest::currentDataTag() == nullptr)
        return;
    QFETCH(int, row);
    const QString path = PathOf(MovieCases[row]);
    QVERIFY2(!path.isEmpty(), "the ffmpeg program did not make the movie");
    QString error;
    MediaOptions options;
    options.decoderThreads = 2;
    mReader = OpenMedia(path, &error, options);
    QVERIFY2(mReader != nullptr, qPrintable(error));
}

#define COMPARE_FRAME(reader, frame, number)                                                                 \
    do                                                                                                       \
    {                                                                                                        \
        const ReadResult frameResult = (reader).ReadFrame(frame);                                            \
        if (frameResult.status != ReadStatus::Ok)                                                            \
            QFAIL(qPrintable(frameResult.text));                                                             \
        if (NumberedMedia::NumberIn(frameResult.image) != (number))                                          \
            QFAIL(qPrintable(QStringLiteral("frame %1 shows %2, not %3")                                     \
                                 .arg(frame)                                                                 \
                                 .arg(NumberedMedia::NumberIn(frameResult.image))                            \
                                 .arg(number)));                                                             \
    } while (false)

void tst_MovieFrames::CountsTheFramesAndKnowsTheRate()
{
    QFETCH(int, row);
    const MovieCase& movie = MovieCases[row];
    const MediaInfo& info = mReader->Info();
    QCOMPARE(info.frameCount, movie.frames);
    QCOMPARE(QSize(info.width, info.height), QSize(160, 90));
    QVERIFY(!info.isSequence);
    QVERIFY(!info.codecName.isEmpty() && !info.containerName.isEmpty() && !info.pixelFormat.isEmpty());
    if (QByteArray(movie.name).startsWith("uneven"))
        return;
    const QStringList ratio = QString::fromLatin1(movie.rate).split(QLatin1Char('/'));
    QCOMPARE(info.frameRate.numerator, ratio.first().toInt());
    QCOMPARE(info.frameRate.denominator, ratio.size() > 1 ? ratio.last().toInt() : 1);
    QCOMPARE(info.duration, info.frameRate.FrameToTime(movie.frames + 1));
}

void tst_MovieFrames::ReadsEveryFrameInOrder()
{
    for (int frame = 1; frame <= mReader->Info().frameCount; ++frame)
        COMPARE_FRAME(*mReader, frame, frame);
    // And from the end back to the beginning.
    COMPARE_FRAME(*mReader, 1, 1);
}

void tst_MovieFrames::SeeksAtRandom()
{
    const int count = mReader->Info().frameCount;
    std::mt19937 random(20);
    COMPARE_FRAME(*mReader, count, count);
    for (int i = 0; i < 500; ++i)
    {
        const int frame = 1 + int(random() % unsigned(count));
        COMPARE_FRAME(*mReader, frame, frame);
        // Some go on from there.
        if (i % 10 == 0 && frame < count)
            COMPARE_FRAME(*mReader, frame + 1, frame + 1);
    }
    COMPARE_FRAME(*mReader, count, count);
}

void tst_MovieFrames::StepsBackwardsAndForwards()
{
    const int count = mReader->Info().frameCount;
    for (int frame = count; frame > count - 12; --frame)
        COMPARE_FRAME(*mReader, frame, frame);
    for (int frame = 70; frame > 20; --frame)
        COMPARE_FRAME(*mReader, frame, frame);
    for (int frame = 20; frame < 60; ++frame)
        COMPARE_FRAME(*mReader, frame, frame);
    for (const int frame : {30, 31, 30, 31, 29, 30, 33, 1, 2, 1, count, count - 1, count, 1})
        COMPARE_FRAME(*mReader, frame, frame);
}

void tst_MovieFrames::ReadsOnAfterACancelledSeek()
{
    const int count = mReader->Info().frameCount;
    std::mt19937 random(3);
    for (int i = 0; i < 20; ++i)
    {
        const CancelToken token;
        std::thread canceller(
            [&, microseconds = random() % 4000]
            {
                std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
                token.Cancel();
            });
        const int far = 1 + int(random() % unsigned(count));
        const ReadResult result = mReader->ReadFrame(far, token);
        canceller.join();
        QVERIFY(result.status == ReadStatus::Cancelled || NumberedMedia::NumberIn(result.image) == far);
        const int frame = std::max(1, far - int(random() % 30));
        COMPARE_FRAME(*mReader, frame, frame);
    }
}

void tst_MovieFrames::LeavesOutWhatAnEditListCutsOff()
{
    // A copy from the middle of a group keeps the group's beginning in the file and hides it by an edit list.
    const QString whole = PathOf(MovieCases[0]);
    const QString cut = NumberedMedia::Made(
        QStringLiteral("cut.mp4"), {QStringLiteral("-ss"), QStringLiteral("2.6"), QStringLiteral("-i"), whole,
                                    QStringLiteral("-c"), QStringLiteral("copy")});
    QString error;
    const auto reader = OpenMedia(cut, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    const int first = NumberedMedia::NumberIn(reader->ReadFrame(1).image);
    // 2.6 s at 24 frames a second; the program may keep the frame that is shown at that moment or the next.
    QVERIFY2(first == 63 || first == 64, qPrintable(QString::number(first)));
    const int count = reader->Info().frameCount;
    QCOMPARE(count, 240 - first + 1);
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i)
    {
        const int frame = 1 + int(random() % unsigned(count));
        COMPARE_FRAME(*reader, frame, frame + first - 1);
    }
}

void tst_MovieFrames::GroupStartIsAKeyPicture()
{
    QString error;
    const auto reader = OpenMedia(PathOf(MovieCases[0]), &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(reader->GroupStart(1), 1);
    const int start = reader->GroupStart(60);
    QVERIFY(start > 1 && start <= 60);
    QCOMPARE(reader->GroupStart(start), start);
    QVERIFY(reader->GroupStart(start - 1) < start);
    const auto intra = OpenMedia(PathOf(MovieCases[9]), &error);
    QCOMPARE(intra->GroupStart(17), 17);
}

void tst_MovieFrames::FramesOutOfRangeAreMissing()
{
    QString error;
    const auto reader = OpenMedia(PathOf(MovieCases[0]), &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    for (const int frame : {-1, 0, 241, INT_MAX, INT_MIN})
    {
        const ReadResult result = reader->ReadFrame(frame);
        QCOMPARE(result.status, ReadStatus::Missing);
        QVERIFY(result.text.contains(QString::number(frame)));
    }
    COMPARE_FRAME(*reader, 240, 240);
}

void tst_MovieFrames::KnowsWhereTheStreamStarts()
{
    QString error;
    const auto late = OpenMedia(PathOf(MovieCases[5]), &error);
    QVERIFY2(late != nullptr, qPrintable(error));
    QVERIFY(late->Info().startTime >= 100000000);
    const auto plain = OpenMedia(PathOf(MovieCases[0]), &error);
    QCOMPARE(plain->Info().startTime, int64_t(0));
}

static const TestRegistration<tst_MovieFrames> MovieFramesRegistration;

#include "tst_MovieFrames.moc"
