// SPDX-License-Identifier: MIT
#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "support/TestRegistry.h"

#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

constexpr int FaultFrames = 120;

QString FaultMovie(const QString& name, const QString& encoder)
{
    return NumberedMedia::Movie(name, FaultFrames, QStringLiteral("24"), encoder.split(QLatin1Char(' ')));
}

QByteArray BytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_MovieFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void RefusesWhatIsNoMedium_data();
    void RefusesWhatIsNoMedium();
    void RefusesAMovieWithoutPictures_data();
    void RefusesAMovieWithoutPictures();
    void RefusesAMovieWithoutItsIndex();
    void ShowsWhatACutOffMovieHas_data();
    void ShowsWhatACutOffMovieHas();
    void ReportsABrokenFrameAndGoesOn_data();
    void ReportsABrokenFrameAndGoesOn();
    void SurvivesBytesOfChance_data();
    void SurvivesBytesOfChance();
    void OpeningCanBeCancelled();

private:
    QString Write(const QString& name, const QByteArray& bytes);

    std::unique_ptr<QTemporaryDir> mFolder;
};

void tst_MovieFaults::init()
{
    mFolder = std::make_unique<QTemporaryDir>();
}

QString tst_MovieFaults::Write(const QString& name, const QByteArray& bytes)
{
    const QString path = mFolder->filePath(name);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? path : QString();
}

void tst_MovieFaults::RefusesWhatIsNoMedium_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    const QByteArray text = QByteArray("Dear reader, this is plain text and no movie.\n").repeated(50);
    QTest::newRow("missing") << "nothing.mov" << QByteArray() << "there is no such file";
    QTest::newRow("empty movie") << "empty.mov" << QByteArray("") << "it is empty";
    QTest::newRow("empty picture") << "empty.png" << QByteArray("") << "it is empty";
    QTest::newRow("text as text") << "notes.txt" << text << "can't be opened";
    QTest::newRow("text as movie") << "notes.mov" << text << "can't be opened";
    QTest::newRow("text as picture") << "notes.png" << text << "can't be opened";
    QTest::newRow("text as float picture") << "notes.exr" << text << "can't be opened";
    QTest::newRow("text as film scan") << "notes.dpx" << text << "can't be opened";
    QTest::newRow("list of other files")
        << "list.ffconcat" << QByteArray("ffconcat version 1.0\nfile other.mov\n") << "can't be opened";
    QTest::newRow("play list")
        << "list.m3u8"
        << QByteArray("#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nother.ts\n#EXT-X-ENDLIST\n")
        << "can't be opened";
    QTest::newRow("one byte") << "byte.mp4" << QByteArray("x") << "can't be opened";
}

void tst_MovieFaults::RefusesWhatIsNoMedium()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    const QString path = bytes.isNull() ? mFolder->filePath(name) : Write(name, bytes);
    QString error;
    QVERIFY(OpenMedia(path, &error) == nullptr);
    QVERIFY2(error.contains(path) && error.contains(reason), qPrintable(error));
    // Nobody has to want the text.
    QVERIFY(OpenMedia(path, nullptr) == nullptr);
    QVERIFY(OpenMedia(mFolder->path(), &error) == nullptr);
    QVERIFY2(error.contains(mFolder->path()) && error.contains(QLatin1String("it is a folder")),
             qPrintable(error));
}

void tst_MovieFaults::RefusesAMovieWithoutPictures_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"sound.mp4", "sound.wav", "sound.mkv", "sound.mp3"})
        QTest::newRow(name) << name;
}

void tst_MovieFaults::RefusesAMovieWithoutPictures()
{
    QFETCH(QString, name);
    const QString path = NumberedMedia::Made(name, {QStringLiteral("-f"), QStringLiteral("lavfi"),
                                                    QStringLiteral("-i"), QStringLiteral("sine=d=1")});
    QVERIFY(!path.isEmpty());
    QString error;
    QVERIFY(OpenMedia(path, &error) == nullptr);
    QCOMPARE(error, path + QStringLiteral(" holds no pictures"));
}

void tst_MovieFaults::RefusesAMovieWithoutItsIndex()
{
    // The index of this kind stands at the end.
    const QByteArray whole =
        BytesOf(FaultMovie(QStringLiteral("end.mp4"), QStringLiteral("-c:v libx264 -preset veryfast")));
    QVERIFY(!whole.isEmpty());
    const QString path = Write(QStringLiteral("cut.mp4"), whole.left(whole.size() / 2));
    QString error;
    QVERIFY(OpenMedia(path, &error) == nullptr);
    QVERIFY2(error.contains(path), qPrintable(error));
}

void tst_MovieFaults::ShowsWhatACutOffMovieHas_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("encoder");
    const QString h264 = QStringLiteral("-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 24");
    QTest::newRow("mkv") << "whole.mkv" << h264;
    QTest::newRow("mp4") << "whole.mp4" << h264 + QStringLiteral(" -movflags faststart");
    QTest::newRow("ts") << "whole.ts" << h264;
    QTest::newRow("avi") << "whole.avi"
                         << "-c:v mjpeg -q:v 3";
    QTest::newRow("mov") << "whole.mov"
                         << "-c:v prores_ks -movflags faststart";
}

void tst_MovieFaults::ShowsWhatACutOffMovieHas()
{
    QFETCH(QString, name);
    QFETCH(QString, encoder);
    const QByteArray whole = BytesOf(FaultMovie(name, encoder));
    QVERIFY(!whole.isEmpty());
    const QString path = Write(name, whole.left(whole.size() * 6 / 10));
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    const int count = reader->Info().frameCount;
    QVERIFY2(count > 30 && count <= FaultFrames, qPrintable(QString::number(count)));
    int shown = 0;
    for (int frame = 1; frame <= count; ++frame)
    {
        const ReadResult result = reader->ReadFrame(frame);
        if (result.status == ReadStatus::Ok)
        {
            QCOMPARE(NumberedMedia::NumberIn(result.image), frame);
            ++shown;
        }
        else
        {
            QCOMPARE(result.status, ReadStatus::Broken);
            QVERIFY(result.text.contains(path) && result.text.contains(QString::number(frame)));
        }
    }
    // All but those at the cut.
    QVERIFY2(shown >= count - 8 && shown > 30, qPrintable(QStringLiteral("%1 of %2").arg(shown).arg(count)));
    // The end is still there after a step back.
    QCOMPARE(NumberedMedia::NumberIn(reader->ReadFrame(20).image), 20);
}

void tst_MovieFaults::ReportsABrokenFrameAndGoesOn_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("encoder");
    QTest::newRow("ProRes") << "broken.mov"
                            << "-c:v prores_ks -movflags faststart";
    QTest::newRow("all-intra H.264")
        << "broken.mp4"
        << "-c:v libx264 -preset veryfast -pix_fmt yuv420p -g 1 -movflags faststart";
    QTest::newRow("H.264 picture that no other needs")
        << "broken.mkv"
        << "-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 1 -g 13 -x264-params b-adapt=0:scenecut=0";
    QTest::newRow("MPEG-2") << "broken.mkv"
                            << "-c:v mpeg2video -q:v 2 -g 1";
    QTest::newRow("VP9") << "broken.webm"
                         << "-c:v libvpx-vp9 -cpu-used 8 -deadline realtime -g 1";
}

void tst_MovieFaults::ReportsABrokenFrameAndGoesOn()
{
    QFETCH(QString, name);
    QFETCH(QString, encoder);
    const QString wholePath = FaultMovie(name, encoder);
    QByteArray bytes = BytesOf(wholePath);
    QVERIFY(!bytes.isEmpty());
    // Where frame 60 lies, by another program.
    QProcess probe;
    probe.start(QStringLiteral("ffprobe"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                 QStringLiteral("v"), QStringLiteral("-show_entries"), QStringLiteral("packet=pts,pos,size"),
                 QStringLiteral("-of"), QStringLiteral("csv=p=0"), wholePath});
    QVERIFY(probe.waitForFinished());
    // By presentation: time, size, position.
    QMap<qint64, QPair<int, int>> packets;
    for (const QByteArray& line : probe.readAllStandardOutput().split('\n'))
    {
        const QList<QByteArray> fields = line.split(',');
        if (fields.size() >= 3)
            packets[fields.at(0).toLongLong()] = {fields.at(1).toInt(), fields.at(2).toInt()};
    }
    QCOMPARE(packets.size(), FaultFrames);
    const auto [size, position] = packets.values().at(59);
    QVERIFY(size > 50 && position > 0);
    // Behind the container's own bytes, which must stay for the others to be found; VP9 knows no errors but
    // those of its header.
    const int kept = name.endsWith(QLatin1String(".webm")) ? 24 : std::max(24, size / 4);
    for (int i = position + kept; i < position + size; ++i)
        bytes[i] = char(0xFF);
    const QString path = Write(name, bytes);
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(reader->Info().frameCount, FaultFrames);
    for (int pass = 0; pass < 2; ++pass)
        for (int frame = 50; frame <= 70; ++frame)
        {
            const ReadResult result = reader->ReadFrame(frame);
            if (frame != 60)
            {
                QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
                QCOMPARE(NumberedMedia::NumberIn(result.image), frame);
                continue;
            }
            QCOMPARE(result.status, ReadStatus::Broken);
            QVERIFY2(result.text.contains(path) && result.text.contains(QLatin1String("frame 60")),
                     qPrintable(result.text));
        }
}

void tst_MovieFaults::SurvivesBytesOfChance_data()
{
    ShowsWhatACutOffMovieHas_data();
}

void tst_MovieFaults::SurvivesBytesOfChance()
{
    QFETCH(QString, name);
    QFETCH(QString, encoder);
    const QByteArray whole = BytesOf(FaultMovie(name, encoder));
    QRandomGenerator random(4);
    for (int round = 0; round < 12; ++round)
    {
        QByteArray bytes = whole;
        for (int i = 0; i < 40; ++i)
            bytes[random.bounded(round < 6 ? bytes.size() : std::min(bytes.size(), 4000))] =
                char(random.bounded(256));
        QString error;
        const auto reader = OpenMedia(Write(name, bytes), &error);
        if (!reader)
        {
            QVERIFY(error.contains(name));
            continue;
        }
        const int count = reader->Info().frameCount;
        for (int frame = 1; frame <= std::min(count, 400); frame += 1 + frame % 5)
        {
            const ReadResult result = reader->ReadFrame(frame);
            QVERIFY(result.status == ReadStatus::Ok || !result.text.isEmpty());
        }
        reader->ReadFrame(count);
        reader->ReadFrame(1);
    }
}

void tst_MovieFaults::OpeningCanBeCancelled()
{
    MediaOptions options;
    options.cancel.Cancel();
    QString error;
    const QString path =
        FaultMovie(QStringLiteral("whole.mkv"), QStringLiteral("-c:v libx264 -preset veryfast"));
    QVERIFY(OpenMedia(path, &error, options) == nullptr);
    QVERIFY(error.contains(path));
}

static const TestRegistration<tst_MovieFaults> MovieFaultsRegistration;

#include "tst_MovieFaults.moc"
