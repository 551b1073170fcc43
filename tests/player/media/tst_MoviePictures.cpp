// SPDX-License-Identifier: MIT
#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <cmath>

namespace
{

QString ColourMovie(const QString& name, const QString& size, const QString& arguments)
{
    return NumberedMedia::Made(
        name, QStringList{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                          QStringLiteral("color=c=0xC84020:s=%1:r=25:d=0.2").arg(size)} +
                  arguments.split(QLatin1Char(' ')));
}

/// What 8 bit Y'CbCr means, by the matrix's own definition.
QColor Shown(double y, double cb, double cr, double kr, double kb, bool isFullRange)
{
    const double luma = isFullRange ? y / 255.0 : (y - 16.0) / 219.0;
    const double blue = isFullRange ? (cb - 128.0) / 255.0 : (cb - 128.0) / 224.0;
    const double red = isFullRange ? (cr - 128.0) / 255.0 : (cr - 128.0) / 224.0;
    const double r = luma + 2.0 * (1.0 - kr) * red;
    const double b = luma + 2.0 * (1.0 - kb) * blue;
    const double g = (luma - kr * r - kb * b) / (1.0 - kr - kb);
    const auto byteOf = [](double value)
    { return int(std::lround(std::min(std::max(value, 0.0), 1.0) * 255.0)); };
    return QColor(byteOf(r), byteOf(g), byteOf(b));
}

int DifferenceOf(const QColor& a, const QColor& b)
{
    return std::max(
        {std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

} // namespace

class tst_MoviePictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void UsesTheMatrixAndTheRange_data();
    void UsesTheMatrixAndTheRange();
    void ShowsEveryPixelFormat_data();
    void ShowsEveryPixelFormat();
    void TurnsUprightByTheDisplayMatrix_data();
    void TurnsUprightByTheDisplayMatrix();
    void WidensByThePixelAspect();
    void TakesOddSizes_data();
    void TakesOddSizes();
    void GivesRgb888Too();
    void KnowsTheSound();
};

void tst_MoviePictures::UsesTheMatrixAndTheRange_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<double>("kr");
    QTest::addColumn<double>("kb");
    QTest::addColumn<bool>("isFullRange");
    QTest::newRow("bt709") << "64x64"
                           << "-colorspace bt709" << 0.2126 << 0.0722 << false;
    QTest::newRow("bt601") << "64x64"
                           << "-colorspace smpte170m" << 0.299 << 0.114 << false;
    QTest::newRow("bt2020") << "64x64"
                            << "-colorspace bt2020nc" << 0.2627 << 0.0593 << false;
    QTest::newRow("bt709 full") << "64x64"
                                << "-colorspace bt709 -color_range pc" << 0.2126 << 0.0722 << true;
    QTest::newRow("small, untold") << "64x64"
                                   << "-y" << 0.299 << 0.114 << false;
    QTest::newRow("tall, untold") << "64x720"
                                  << "-y" << 0.2126 << 0.0722 << false;
}

void tst_MoviePictures::UsesTheMatrixAndTheRange()
{
    QFETCH(QString, size);
    QFETCH(QString, flags);
    QFETCH(double, kr);
    QFETCH(double, kb);
    QFETCH(bool, isFullRange);
    // Stored values that no conversion of the program has touched: they are written by a filter after it.
    const QString path = ColourMovie(
        QStringLiteral("matrix.mkv"), size,
        QStringLiteral(
            "-vf format=yuv420p,geq=lum=110:cb=90:cr=180,setparams=colorspace=unknown:range=unknown "
            "-c:v libx264 -qp 1 ") +
            flags);
    QVERIFY(!path.isEmpty());
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    const QImage image = reader->ReadFrame(3).image;
    const QColor expected = Shown(110, 90, 180, kr, kb, isFullRange);
    const QColor actual = image.pixelColor(image.width() / 2, image.height() / 2);
    QVERIFY2(DifferenceOf(actual, expected) <= 3,
             qPrintable(QStringLiteral("%1, expected %2").arg(actual.name(), expected.name())));
}

void tst_MoviePictures::ShowsEveryPixelFormat_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("encoder");
    QTest::newRow("yuv420p") << "f.mp4"
                             << "-c:v libx264 -qp 2 -pix_fmt yuv420p";
    QTest::newRow("yuv422p") << "f.mp4"
                             << "-c:v libx264 -qp 2 -pix_fmt yuv422p";
    QTest::newRow("yuv444p") << "f.mp4"
                             << "-c:v libx264 -qp 2 -pix_fmt yuv444p";
    QTest::newRow("yuv420p10") << "f.mp4"
                               << "-c:v libx264 -qp 2 -pix_fmt yuv420p10le";
    QTest::newRow("rgb h264") << "f.mp4"
                              << "-c:v libx264rgb -qp 2 -pix_fmt rgb24";
    QTest::newRow("ProRes 422") << "f.mov"
                                << "-c:v prores_ks -profile:v 3";
    QTest::newRow("ProRes 4444 with alpha") << "f.mov"
                                            << "-c:v prores_ks -profile:v 4 -pix_fmt yuva444p10le";
    QTest::newRow("yuvj420p") << "f.avi"
                              << "-c:v mjpeg -q:v 2 -pix_fmt yuvj420p";
    QTest::newRow("PNG in mov") << "f.mov"
                                << "-c:v png";
    QTest::newRow("PNG with alpha in mov") << "f.mov"
                                           << "-c:v png -pix_fmt rgba";
    QTest::newRow("palette") << "f.gif"
                             << "-vf split[a][b];[a]palettegen[p];[b][p]paletteuse -c:v gif";
    QTest::newRow("lossless") << "f.mkv"
                              << "-c:v ffv1 -pix_fmt gbrp10le";
    QTest::newRow("raw") << "f.avi"
                         << "-c:v rawvideo -pix_fmt bgr24";
}

void tst_MoviePictures::ShowsEveryPixelFormat()
{
    QFETCH(QString, name);
    QFETCH(QString, encoder);
    const QString path = ColourMovie(name, QStringLiteral("64x48"), encoder);
    QVERIFY(!path.isEmpty());
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    for (int frame = 1; frame <= reader->Info().frameCount; ++frame)
    {
        const ReadResult result = reader->ReadFrame(frame);
        QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
        QCOMPARE(result.image.size(), QSize(64, 48));
        QCOMPARE(result.image.format(), QImage::Format_RGB32);
        QCOMPARE(result.image.bytesPerLine(), 64 * 4);
        for (const QPoint& point :
             {QPoint(0, 0), QPoint(63, 0), QPoint(31, 24), QPoint(0, 47), QPoint(63, 47)})
        {
            const QRgb pixel =
                reinterpret_cast<const QRgb*>(result.image.constScanLine(point.y()))[point.x()];
            QVERIFY2(DifferenceOf(QColor(pixel), QColor(0xC8, 0x40, 0x20)) <= 6,
                     qPrintable(QColor(pixel).name()));
            QCOMPARE(qAlpha(pixel), 255);
        }
    }
}

void tst_MoviePictures::TurnsUprightByTheDisplayMatrix_data()
{
    QTest::addColumn<int>("degrees");
    QTest::newRow("0") << 0;
    QTest::newRow("90") << 90;
    QTest::newRow("180") << 180;
    QTest::newRow("270") << 270;
}

void tst_MoviePictures::TurnsUprightByTheDisplayMatrix()
{
    QFETCH(int, degrees);
    const QString plain =
        NumberedMedia::Movie(QStringLiteral("plain.mp4"), 20, QStringLiteral("25"),
                             QStringLiteral("-c:v libx264 -qp 4 -pix_fmt yuv420p").split(QLatin1Char(' ')));
    const QString turned =
        NumberedMedia::Made(QStringLiteral("turned.mp4"),
                            {QStringLiteral("-i"), plain, QStringLiteral("-c"), QStringLiteral("copy"),
                             QStringLiteral("-metadata:s:v:0"), QStringLiteral("rotate=%1").arg(degrees)});
    QString error;
    const auto reader = OpenMedia(turned, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    // What the program itself makes of the tag; it turns the picture before any conversion.
    const QString still = NumberedMedia::Made(QStringLiteral("turned.png"),
                                              {QStringLiteral("-i"), turned, QStringLiteral("-vf"),
                                               QStringLiteral("select=eq(n\\,6)"),
                                               QStringLiteral("-frames:v"), QStringLiteral("1")});
    const QImage expected(still);
    QVERIFY(!expected.isNull());
    QCOMPARE(expected.size(), degrees % 180 == 0 ? QSize(160, 90) : QSize(90, 160));
    const QImage actual = reader->ReadFrame(7).image;
    QCOMPARE(QSize(reader->Info().width, reader->Info().height), expected.size());
    const QByteArray difference = PictureDifference(actual, expected, 4);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_MoviePictures::WidensByThePixelAspect()
{
    const QString path = NumberedMedia::Movie(
        QStringLiteral("wide.mp4"), 10, QStringLiteral("25"),
        QStringLiteral("-vf setsar=2/1 -c:v libx264 -qp 4 -pix_fmt yuv420p").split(QLatin1Char(' ')));
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(reader->Info().width, 320);
    QCOMPARE(reader->Info().height, 90);
    const QImage image = reader->ReadFrame(5).image;
    QCOMPARE(image.size(), QSize(320, 90));
    QCOMPARE(NumberedMedia::NumberIn(image), 5);
}

void tst_MoviePictures::TakesOddSizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("encoder");
    for (const QSize& size : {QSize(1, 1), QSize(3, 5), QSize(17, 1), QSize(1, 19), QSize(161, 91)})
    {
        const QByteArray text = QByteArray::number(size.width()) + 'x' + QByteArray::number(size.height());
        QTest::newRow(text + " lossless") << size << "odd.mkv"
                                          << "-c:v ffv1 -pix_fmt yuv420p";
        QTest::newRow(text + " PNG") << size << "odd.mov"
                                     << "-c:v png -pix_fmt rgb24";
        QTest::newRow(text + " MJPEG") << size << "odd.avi"
                                       << "-c:v mjpeg -q:v 1 -pix_fmt yuvj420p";
    }
}

void tst_MoviePictures::TakesOddSizes()
{
    QFETCH(QSize, size);
    QFETCH(QString, name);
    QFETCH(QString, encoder);
    const QString path =
        NumberedMedia::Movie(name, 4, QStringLiteral("25"), encoder.split(QLatin1Char(' ')), size);
    QVERIFY(!path.isEmpty());
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(QSize(reader->Info().width, reader->Info().height), size);
    for (int frame = 4; frame >= 1; --frame)
    {
        const ReadResult result = reader->ReadFrame(frame);
        QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
        QCOMPARE(result.image.size(), size);
        const QByteArray difference = PictureDifference(
            result.image, NumberedMedia::Picture(frame, size).convertToFormat(QImage::Format_RGB32),
            name.endsWith(QLatin1String(".avi")) ? 30 : 4);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_MoviePictures::GivesRgb888Too()
{
    const QString path = NumberedMedia::Movie(
        QStringLiteral("odd.mkv"), 4, QStringLiteral("25"),
        QStringLiteral("-c:v ffv1 -pix_fmt yuv420p").split(QLatin1Char(' ')), QSize(161, 91));
    MediaOptions options;
    options.pictureFormat = QImage::Format_RGB888;
    QString error;
    const auto reader = OpenMedia(path, &error, options);
    QVERIFY2(reader != nullptr, qPrintable(error));
    const QImage image = reader->ReadFrame(2).image;
    QCOMPARE(image.format(), QImage::Format_RGB888);
    const QByteArray difference = PictureDifference(image, NumberedMedia::Picture(2, QSize(161, 91)), 4);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_MoviePictures::KnowsTheSound()
{
    const QString path = NumberedMedia::Made(
        QStringLiteral("sound.mov"),
        QStringLiteral(
            "-f lavfi -i color=s=64x48:r=25:d=1 -f lavfi -i sine=r=44100:d=1 -ac 2 -c:v mjpeg -c:a pcm_s16le")
            .split(QLatin1Char(' ')));
    QString error;
    const auto reader = OpenMedia(path, &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(reader->Info().frameCount, 25);
    QVERIFY(reader->Info().hasAudio);
    QCOMPARE(reader->Info().audioCodecName, QStringLiteral("pcm_s16le"));
    QCOMPARE(reader->Info().audioChannels, 2);
    QCOMPARE(reader->Info().audioSampleRate, 44100);
}

static const TestRegistration<tst_MoviePictures> MoviePicturesRegistration;

#include "tst_MoviePictures.moc"
