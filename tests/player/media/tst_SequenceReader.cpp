// SPDX-License-Identifier: MIT
#include "media/MediaReader.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <OpenImageIO/imageio.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

/// Writes a picture whose values, in the file's own scale, are given by a function.
template<typename Value, typename Function>
bool WritePicture(const QString& path, OIIO::ImageSpec spec, Function valueOf)
{
    std::vector<Value> values(size_t(spec.width) * size_t(spec.height) * size_t(spec.nchannels));
    size_t i = 0;
    for (int y = 0; y < spec.height; ++y)
        for (int x = 0; x < spec.width; ++x)
            for (int channel = 0; channel < spec.nchannels; ++channel)
                values[i++] = Value(valueOf(x, y, channel));
    const auto output = OIIO::ImageOutput::create(path.toStdString());
    return output && output->open(path.toStdString(), spec) &&
           output->write_image(OIIO::BaseTypeFromC<Value>::value, values.data()) && output->close();
}

ReadResult ReadFirst(const QString& path)
{
    QString error;
    const auto reader = OpenMedia(path, &error);
    if (!reader)
        return {ReadStatus::Broken, QImage(), error};
    return reader->ReadFrame(1);
}

/// The standard's own formula.
int Srgb(double linear)
{
    if (std::isnan(linear) || linear <= 0.0)
        return 0;
    const double encoded =
        linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::exp(std::log(linear) / 2.4) - 0.055;
    return int(std::floor(std::min(encoded, 1.0) * 255.0 + 0.5));
}

int Stored8(int x, int y, int channel)
{
    return (x * 37 + y * 11 + channel * 83) & 255;
}

/// The picture that Stored8() makes.
QImage Expected8(int width, int height, bool isGrey = false)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(
                x, y, qRgb(Stored8(x, y, 0), Stored8(x, y, isGrey ? 0 : 1), Stored8(x, y, isGrey ? 0 : 2)));
    return image;
}

} // namespace

class tst_SequenceReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void ShowsEightBitsAsTheyStand_data();
    void ShowsEightBitsAsTheyStand();
    void ShowsJpegNearly();
    void RoundsSixteenBits_data();
    void RoundsSixteenBits();
    void RoundsTenAndTwelveBitScans_data();
    void RoundsTenAndTwelveBitScans();
    void ShowsLinearLightThroughTheCurve_data();
    void ShowsLinearLightThroughTheCurve();
    void PutsTransparentPixelsOverBlack_data();
    void PutsTransparentPixelsOverBlack();
    void FindsColoursByName();
    void PlacesTheDataWindow();
    void TurnsByTheOrientationTag();
    void ReadsTheWholeSequenceByAnyOfItsFiles();
    void TellsOfGapsAndBrokenFrames();
    void FramesKeepTheirOwnSize();
    void ShowsTheRowsThatAreThere();
    void TakesTheRateItIsGiven();

private:
    QString Path(const QString& name) const { return mFolder->filePath(name); }

    std::unique_ptr<QTemporaryDir> mFolder;
};

void tst_SequenceReader::init()
{
    mFolder = std::make_unique<QTemporaryDir>();
}

void tst_SequenceReader::ShowsEightBitsAsTheyStand_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("channels");
    for (const char* name : {"a.png", "a.tif", "a.dpx", "a.tga", "a.bmp", "a.ppm", "a.sgi"})
    {
        QTest::newRow(name) << name << 33 << 21 << 3;
        QTest::newRow(QByteArray(name) + " 1x1") << name << 1 << 1 << 3;
    }
    for (const char* name : {"a.png", "a.tif", "a.pgm"})
        QTest::newRow(QByteArray(name) + " grey") << name << 17 << 9 << 1;
}

void tst_SequenceReader::ShowsEightBitsAsTheyStand()
{
    QFETCH(QString, name);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, channels);
    QVERIFY(WritePicture<quint8>(Path(name), OIIO::ImageSpec(width, height, channels, OIIO::TypeDesc::UINT8),
                                 Stored8));
    const ReadResult result = ReadFirst(Path(name));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    QCOMPARE(result.image.format(), QImage::Format_RGB32);
    const QByteArray difference = PictureDifference(result.image, Expected8(width, height, channels == 1));
    QVERIFY2(difference.isEmpty(), difference);
    MediaOptions options;
    options.pictureFormat = QImage::Format_RGB888;
    QString error;
    const QImage packed = OpenMedia(Path(name), &error, options)->ReadFrame(1).image;
    QCOMPARE(packed.format(), QImage::Format_RGB888);
    QCOMPARE(packed.convertToFormat(QImage::Format_RGB32), result.image);
}

void tst_SequenceReader::ShowsJpegNearly()
{
    OIIO::ImageSpec spec(32, 24, 3, OIIO::TypeDesc::UINT8);
    spec.attribute("CompressionQuality", 100);
    QVERIFY(
        WritePicture<quint8>(Path("a.jpg"), spec, [](int, int, int channel) { return 60 + channel * 60; }));
    const ReadResult result = ReadFirst(Path("a.jpg"));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    QImage expected(32, 24, QImage::Format_RGB32);
    expected.fill(qRgb(60, 120, 180));
    const QByteArray difference = PictureDifference(result.image, expected, 2);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::RoundsSixteenBits_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"a.png", "a.tif", "a.dpx"})
        QTest::newRow(name) << name;
}

void tst_SequenceReader::RoundsSixteenBits()
{
    QFETCH(QString, name);
    // Every value there is.
    const auto valueOf = [](int x, int y, int channel) { return (y * 256 + x + channel * 1000) & 65535; };
    QVERIFY(WritePicture<quint16>(Path(name), OIIO::ImageSpec(256, 256, 3, OIIO::TypeDesc::UINT16), valueOf));
    QImage expected(256, 256, QImage::Format_RGB32);
    const auto byteOf = [&](int x, int y, int channel)
    { return int(std::lround(valueOf(x, y, channel) / 65535.0 * 255.0)); };
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x)
            expected.setPixel(x, y, qRgb(byteOf(x, y, 0), byteOf(x, y, 1), byteOf(x, y, 2)));
    const ReadResult result = ReadFirst(Path(name));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    const QByteArray difference = PictureDifference(result.image, expected);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::RoundsTenAndTwelveBitScans_data()
{
    QTest::addColumn<int>("bits");
    QTest::newRow("10") << 10;
    QTest::newRow("12") << 12;
}

void tst_SequenceReader::RoundsTenAndTwelveBitScans()
{
    QFETCH(int, bits);
    const int maximum = (1 << bits) - 1;
    const auto valueOf = [&](int x, int y, int channel) { return (y * 64 + x + channel * 100) & maximum; };
    OIIO::ImageSpec spec(64, 64, 3, OIIO::TypeDesc::UINT16);
    spec.attribute("oiio:BitsPerSample", bits);
    // The library keeps the upper bits, so the value is written with its bits repeated below.
    QVERIFY(WritePicture<quint16>(Path("a.dpx"), spec,
                                  [&](int x, int y, int channel)
                                  {
                                      const int value = valueOf(x, y, channel);
                                      return value << (16 - bits) | value >> (2 * bits - 16);
                                  }));
    QImage expected(64, 64, QImage::Format_RGB32);
    const auto byteOf = [&](int x, int y, int channel)
    { return int(std::lround(valueOf(x, y, channel) * 255.0 / maximum)); };
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            expected.setPixel(x, y, qRgb(byteOf(x, y, 0), byteOf(x, y, 1), byteOf(x, y, 2)));
    const ReadResult result = ReadFirst(Path("a.dpx"));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    const QByteArray difference = PictureDifference(result.image, expected);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::ShowsLinearLightThroughTheCurve_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isHalf");
    QTest::addColumn<QString>("compression");
    for (const char* compression : {"none", "zip", "piz"})
        QTest::newRow(QByteArray("half ") + compression) << "a.exr" << true << compression;
    QTest::newRow("float exr") << "a.exr" << false << "zip";
    QTest::newRow("float tif") << "a.tif" << false << "none";
}

void tst_SequenceReader::ShowsLinearLightThroughTheCurve()
{
    QFETCH(QString, name);
    QFETCH(bool, isHalf);
    QFETCH(QString, compression);
    // Powers of two and three bits of fraction, which half floats hold exactly; then what is out of range.
    static const float special[] = {-1.0F,
                                    -0.0F,
                                    0.0F,
                                    1.0F,
                                    1.0005F,
                                    60000.0F,
                                    1e9F,
                                    std::numeric_limits<float>::infinity(),
                                    -std::numeric_limits<float>::infinity(),
                                    std::numeric_limits<float>::quiet_NaN()};
    const auto valueOf = [](int x, int y, int channel) -> float
    {
        if (y == 0)
            return special[x % 10];
        return std::ldexp(float(8 + (x + channel) % 8), -3 - y);
    };
    OIIO::ImageSpec spec(40, 17, 3, isHalf ? OIIO::TypeDesc::HALF : OIIO::TypeDesc::FLOAT);
    spec.attribute("compression", compression.toStdString());
    QVERIFY(WritePicture<float>(Path(name), spec, valueOf));
    QImage expected(40, 17, QImage::Format_RGB32);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 40; ++x)
            expected.setPixel(x, y,
                              qRgb(Srgb(double(valueOf(x, y, 0))), Srgb(double(valueOf(x, y, 1))),
                                   Srgb(double(valueOf(x, y, 2)))));
    const ReadResult result = ReadFirst(Path(name));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    const QByteArray difference = PictureDifference(result.image, expected);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::PutsTransparentPixelsOverBlack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isMultiplied");
    QTest::newRow("png") << "a.png" << false;
    QTest::newRow("tif, colours as they are") << "a.tif" << false;
    QTest::newRow("tif, colours times alpha") << "a.tif" << true;
}

void tst_SequenceReader::PutsTransparentPixelsOverBlack()
{
    QFETCH(QString, name);
    QFETCH(bool, isMultiplied);
    OIIO::ImageSpec spec(16, 4, 4, OIIO::TypeDesc::UINT8);
    spec.alpha_channel = 3;
    if (!isMultiplied)
        spec.attribute("oiio:UnassociatedAlpha", 1);
    const auto valueOf = [](int x, int y, int channel)
    { return channel == 3 ? x * 17 : (x * 5 + y * 40 + channel * 20); };
    QVERIFY(WritePicture<quint8>(Path(name), spec, valueOf));
    QImage expected(16, 4, QImage::Format_RGB32);
    const auto byteOf = [&](int x, int y, int channel)
    {
        const int value = valueOf(x, y, channel);
        return isMultiplied ? value : int(std::lround(value * (x * 17) / 255.0));
    };
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 16; ++x)
            expected.setPixel(x, y, qRgb(byteOf(x, y, 0), byteOf(x, y, 1), byteOf(x, y, 2)));
    const ReadResult result = ReadFirst(Path(name));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    const QByteArray difference = PictureDifference(result.image, expected);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::FindsColoursByName()
{
    OIIO::ImageSpec spec(8, 8, 6, OIIO::TypeDesc::HALF);
    spec.channelnames = {"Z", "diffuse.R", "B", "G", "R", "A"};
    spec.alpha_channel = 5;
    const auto valueOf = [](int, int, int channel) { return float(channel + 1) / 8.0F; };
    QVERIFY(WritePicture<float>(Path("a.exr"), spec, valueOf));
    const ReadResult result = ReadFirst(Path("a.exr"));
    QVERIFY2(result.status == ReadStatus::Ok, qPrintable(result.text));
    QCOMPARE(result.image.pixel(3, 3), qRgb(Srgb(5 / 8.0), Srgb(4 / 8.0), Srgb(3 / 8.0)));
}

void tst_SequenceReader::PlacesTheDataWindow()
{
    // It stands over the display window's left edge and ends within.
    OIIO::ImageSpec spec(10, 6, 3, OIIO::TypeDesc::HALF);
    spec.x = -3;
    spec.y = 2;
    spec.full_x = 0;
    spec.full_y = 0;
    spec.full_width = 12;
    spec.full_height = 9;
    QVERIFY(WritePicture<float>(Path("a.exr"), spec, [](int x, int, int) { return x == 9 ? 1.0F : 0.25F; }));
    QImage expected(12, 9, QImage::Format_RGB32);
    expected.fill(Qt::black);
    for (int y = 2; y < 8; ++y)
        for (int x = 0; x < 7; ++x)
        {
            const int level = x == 6 ? 255 : Srgb(0.25);
            expected.setPixel(x, y, qRgb(level, level, level));
        }
    QString error;
    const auto reader = OpenMedia(Path("a.exr"), &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(QSize(reader->Info().width, reader->Info().height), QSize(12, 9));
    const QByteArray difference = PictureDifference(reader->ReadFrame(1).image, expected);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::TurnsByTheOrientationTag()
{
    OIIO::ImageSpec spec(7, 4, 3, OIIO::TypeDesc::UINT8);
    spec.attribute("Orientation", 6);
    QVERIFY(WritePicture<quint8>(Path("a.tif"), spec, Stored8));
    QString error;
    const auto reader = OpenMedia(Path("a.tif"), &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(QSize(reader->Info().width, reader->Info().height), QSize(4, 7));
    const QByteArray difference =
        PictureDifference(reader->ReadFrame(1).image, Expected8(7, 4).transformed(QTransform().rotate(90)));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SequenceReader::ReadsTheWholeSequenceByAnyOfItsFiles()
{
    for (int number = 98; number <= 102; ++number)
        QVERIFY(WritePicture<quint8>(Path(QStringLiteral("shot.%1.png").arg(number, 4, 10, QLatin1Char('0'))),
                                     OIIO::ImageSpec(4, 3, 3, OIIO::TypeDesc::UINT8),
                                     [&](int, int, int) { return number; }));
    for (const char* name : {"shot.0098.png", "shot.0100.png", "shot.0102.png"})
    {
        QString error;
        const auto reader = OpenMedia(Path(QString::fromLatin1(name)), &error);
        QVERIFY2(reader != nullptr, qPrintable(error));
        const MediaInfo& info = reader->Info();
        QVERIFY(info.isSequence && !info.hasAudio);
        QCOMPARE(info.firstSequenceNumber, 98);
        QCOMPARE(info.frameCount, 5);
        QCOMPARE(info.missingFrames, 0);
        QCOMPARE(info.codecName, QStringLiteral("png"));
        QCOMPARE(info.pixelFormat, QStringLiteral("uint8"));
        QVERIFY(reader->CanReadInParallel());
        for (int frame = 1; frame <= 5; ++frame)
            QCOMPARE(qRed(reader->ReadFrame(frame).image.pixel(0, 0)), 97 + frame);
        for (const int frame : {0, 6, INT_MIN, INT_MAX})
            QCOMPARE(reader->ReadFrame(frame).status, ReadStatus::Missing);
    }
}

void tst_SequenceReader::TellsOfGapsAndBrokenFrames()
{
    for (const int number : {1, 2, 5, 6})
        QVERIFY(WritePicture<quint8>(Path(QStringLiteral("s%1.png").arg(number, 2, 10, QLatin1Char('0'))),
                                     OIIO::ImageSpec(4, 3, 3, OIIO::TypeDesc::UINT8),
                                     [&](int, int, int) { return number; }));
    for (const char* name : {"s03.png", "s07.png"})
    {
        QFile text(Path(QString::fromLatin1(name)));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write(name[2] == '3' ? "not a picture" : "") >= 0);
    }
    QString error;
    // Named by a file that is itself broken.
    const auto reader = OpenMedia(Path("s07.png"), &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(reader->Info().frameCount, 7);
    QCOMPARE(reader->Info().missingFrames, 1);
    for (const int frame : {1, 2, 5, 6})
        QCOMPARE(qRed(reader->ReadFrame(frame).image.pixel(0, 0)), frame);
    const ReadResult missing = reader->ReadFrame(4);
    QCOMPARE(missing.status, ReadStatus::Missing);
    QVERIFY2(missing.text.contains(Path("s04.png")) && missing.text.contains(QLatin1String("frame 4")),
             qPrintable(missing.text));
    QVERIFY(missing.image.isNull());
    for (const int frame : {3, 7})
    {
        const ReadResult broken = reader->ReadFrame(frame);
        QCOMPARE(broken.status, ReadStatus::Broken);
        QVERIFY2(broken.text.contains(Path(QStringLiteral("s0%1.png").arg(frame))), qPrintable(broken.text));
    }
}

void tst_SequenceReader::FramesKeepTheirOwnSize()
{
    for (int number = 1; number <= 3; ++number)
        QVERIFY(WritePicture<quint8>(
            Path(QStringLiteral("s%1.tif").arg(number)),
            OIIO::ImageSpec(number == 2 ? 31 : 16, number == 2 ? 5 : 8, 3, OIIO::TypeDesc::UINT8), Stored8));
    QString error;
    const auto reader = OpenMedia(Path("s1.tif"), &error);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QCOMPARE(QSize(reader->Info().width, reader->Info().height), QSize(16, 8));
    for (const int frame : {2, 1, 3, 2})
    {
        const QByteArray difference = PictureDifference(reader->ReadFrame(frame).image,
                                                        frame == 2 ? Expected8(31, 5) : Expected8(16, 8));
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_SequenceReader::ShowsTheRowsThatAreThere()
{
    OIIO::ImageSpec spec(64, 400, 3, OIIO::TypeDesc::HALF);
    spec.attribute("compression", "none");
    QVERIFY(WritePicture<float>(Path("a.exr"), spec, [](int, int, int) { return 0.5F; }));
    QFile file(Path("a.exr"));
    QVERIFY(file.resize(file.size() * 3 / 4));
    const ReadResult result = ReadFirst(Path("a.exr"));
    QCOMPARE(result.status, ReadStatus::Broken);
    QVERIFY2(result.text.contains(Path("a.exr")), qPrintable(result.text));
    QCOMPARE(result.image.size(), QSize(64, 400));
    const int level = Srgb(0.5);
    QCOMPARE(result.image.pixel(10, 10), qRgb(level, level, level));
    QCOMPARE(result.image.pixel(63, 280), qRgb(level, level, level));
    QCOMPARE(result.image.pixel(10, 399), qRgb(0, 0, 0));
}

void tst_SequenceReader::TakesTheRateItIsGiven()
{
    QVERIFY(
        WritePicture<quint8>(Path("still.png"), OIIO::ImageSpec(4, 3, 3, OIIO::TypeDesc::UINT8), Stored8));
    MediaOptions options;
    options.sequenceRate = FrameRate::FromPerSecond(23.976);
    QString error;
    const auto reader = OpenMedia(Path("still.png"), &error, options);
    QVERIFY2(reader != nullptr, qPrintable(error));
    QVERIFY(!reader->Info().isSequence);
    QCOMPARE(reader->Info().frameCount, 1);
    QVERIFY(reader->Info().frameRate == (FrameRate{24000, 1001}));
    QCOMPARE(reader->Info().duration, int64_t(41709));
}

static const TestRegistration<tst_SequenceReader> SequenceReaderRegistration;

#include "tst_SequenceReader.moc"
