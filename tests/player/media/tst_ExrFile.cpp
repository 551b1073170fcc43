// SPDX-License-Identifier: MIT
#include "media/ExrBlock.h"
#include "media/ExrFile.h"
#include "media/ImageFile.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <OpenImageIO/imageio.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{

/// What a test file is like.
struct ExrKind
{
    QByteArray compression;
    OIIO::TypeDesc type = OIIO::TypeDesc::HALF;
    QRect data;
    QRect display;
    std::vector<std::string> channels = {"R", "G", "B"};
    /// Noise that no compression makes smaller, else soft ramps.
    bool isNoise = false;
};

OIIO::ImageSpec SpecOf(const ExrKind& kind)
{
    OIIO::ImageSpec spec(kind.data.width(), kind.data.height(), int(kind.channels.size()), kind.type);
    spec.x = kind.data.left();
    spec.y = kind.data.top();
    spec.full_x = kind.display.left();
    spec.full_y = kind.display.top();
    spec.full_width = kind.display.width();
    spec.full_height = kind.display.height();
    spec.channelnames = kind.channels;
    spec.attribute("compression", kind.compression.toStdString());
    return spec;
}

bool WriteExr(const QString& path, const OIIO::ImageSpec& spec, bool isNoise)
{
    std::mt19937 random(7);
    std::vector<float> values(size_t(spec.width) * size_t(spec.height) * size_t(spec.nchannels));
    for (size_t i = 0; i < values.size(); ++i)
    {
        // Ramps stay equal over a few pixels, so that runs are found too.
        values[i] = float(i / 64 % 400) / 300.0F - 0.1F;
        if (isNoise)
        {
            const auto bits = quint32(random());
            std::memcpy(&values[i], &bits, sizeof(bits));
            if (i % 3 != 0)
                values[i] = float(bits % 100003) / 100003.0F;
        }
    }
    const auto output = OIIO::ImageOutput::create("exr");
    return output && output->open(path.toStdString(), spec) &&
           output->write_image(OIIO::TypeDesc::FLOAT, values.data()) && output->close();
}

double HalfValueOf(quint16 bits)
{
    const int exponent = bits >> 10 & 31;
    const int fraction = bits & 1023;
    double value = exponent == 0 ? fraction * std::pow(2.0, -24)
                                 : (1.0 + fraction / 1024.0) * std::pow(2.0, exponent - 15);
    if (exponent == 31)
        value = fraction != 0 ? std::numeric_limits<double>::quiet_NaN()
                              : std::numeric_limits<double>::infinity();
    return (bits & 0x8000) != 0 ? -value : value;
}

int ShownLevel(quint16 bits)
{
    const double linear = HalfValueOf(bits);
    if (std::isnan(linear) || linear <= 0.0)
        return 0;
    const double encoded =
        linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::exp(std::log(linear) / 2.4) - 0.055;
    return int(std::floor(std::min(encoded, 1.0) * 255.0 + 0.5));
}

/// The picture by way of the picture library.
QImage LibraryPicture(const QString& path)
{
    const auto input = OIIO::ImageInput::open(path.toStdString());
    if (!input)
        return {};
    const OIIO::ImageSpec spec = input->spec();
    std::vector<quint16> values(size_t(spec.width) * size_t(spec.height) * size_t(spec.nchannels));
    if (!input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::HALF, values.data()))
        return {};
    const auto indexOf = [&](const char* name)
    {
        const auto& names = spec.channelnames;
        return int(std::find(names.begin(), names.end(), name) - names.begin());
    };
    int colours[3] = {indexOf("R"), indexOf("G"), indexOf("B")};
    if (colours[0] == spec.nchannels)
        colours[0] = colours[1] = colours[2] = indexOf("Y");
    QImage image(spec.full_width, spec.full_height, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int y = 0; y < spec.height; ++y)
        for (int x = 0; x < spec.width; ++x)
        {
            const QPoint place(x + spec.x - spec.full_x, y + spec.y - spec.full_y);
            const quint16* const pixel = values.data() + size_t(y * spec.width + x) * size_t(spec.nchannels);
            if (image.rect().contains(place))
                image.setPixel(place, qRgb(ShownLevel(pixel[colours[0]]), ShownLevel(pixel[colours[1]]),
                                           ShownLevel(pixel[colours[2]])));
        }
    return image;
}

} // namespace

Q_DECLARE_METATYPE(ExrKind)

class tst_ExrFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void ShowsWhatThePictureLibraryShows_data();
    void ShowsWhatThePictureLibraryShows();
    void LeavesOtherKindsToTheLibrary_data();
    void LeavesOtherKindsToTheLibrary();
    void ReadsBlocksFromTheLastToTheFirst();
    void RoundsFloatToTheNearestHalf();
    void RefusesBrokenFiles_data();
    void RefusesBrokenFiles();
    void StandsAnySpoiltByte_data();
    void StandsAnySpoiltByte();
    void StopsWhenCancelled();

private:
    QString Path() const { return mFolder->filePath(QStringLiteral("a.exr")); }

    std::unique_ptr<QTemporaryDir> mFolder;
};

void tst_ExrFile::init()
{
    // Threads that start and end with each small file take far longer than the file.
    OIIO::attribute("threads", 1);
    OIIO::attribute("exr_threads", -1);
    mFolder = std::make_unique<QTemporaryDir>();
}

void tst_ExrFile::ShowsWhatThePictureLibraryShows_data()
{
    QTest::addColumn<ExrKind>("kind");
    const QRect odd(0, 0, 131, 37);
    for (const char* compression : {"none", "rle", "zips", "zip", "pxr24"})
        for (const bool isFloat : {false, true})
            for (const bool isNoise : {false, true})
            {
                const OIIO::TypeDesc type = isFloat ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::HALF;
                const QByteArray name = QByteArray(compression) + (isFloat ? " float" : " half") +
                                        (isNoise ? " noise" : " ramps");
                const auto add = [&](const char* detail, const QRect& data, const QRect& display,
                                     const std::vector<std::string>& channels) {
                    QTest::newRow(name + detail)
                        << ExrKind{compression, type, data, display, channels, isNoise};
                };
                add("", odd, odd, {"R", "G", "B"});
                add(" 1x1", QRect(0, 0, 1, 1), QRect(0, 0, 1, 1), {"R", "G", "B"});
                add(" alpha", odd, odd, {"R", "G", "B", "A"});
                add(" grey", odd, odd, {"Y"});
                add(" grey alpha", odd, odd, {"Y", "A"});
                add(" other channels", odd, odd, {"Z", "B", "diffuse.R", "R", "G", "mask", "Y"});
                add(" within", QRect(5, 7, 60, 20), QRect(0, 0, 90, 41), {"R", "G", "B"});
                add(" over the edges", QRect(-9, -20, 131, 90), QRect(3, -2, 64, 33), {"R", "G", "B"});
                add(" beside", QRect(200, 7, 60, 20), QRect(0, 0, 90, 41), {"R", "G", "B"});
            }
    // More than is read from the file at once.
    QTest::newRow("large") << ExrKind{
        "none", OIIO::TypeDesc::FLOAT, QRect(0, 0, 900, 200), QRect(0, 0, 900, 200), {"R", "G", "B"}, true};
    QTest::newRow("large zip") << ExrKind{
        "zip", OIIO::TypeDesc::FLOAT, QRect(0, 0, 2500, 70), QRect(0, 0, 2500, 70), {"R", "G", "B"}, true};
}

void tst_ExrFile::ShowsWhatThePictureLibraryShows()
{
    QFETCH(ExrKind, kind);
    QVERIFY(WriteExr(Path(), SpecOf(kind), kind.isNoise));
    const QImage expected = LibraryPicture(Path());
    QCOMPARE(expected.size(), kind.display.size());
    const QImage image = ExrFile::Read(Path(), QImage::Format_RGB32, CancelToken());
    QCOMPARE(image.format(), QImage::Format_RGB32);
    const QByteArray difference = PictureDifference(image, expected);
    QVERIFY2(difference.isEmpty(), difference);
    const QImage packed = ExrFile::Read(Path(), QImage::Format_RGB888, CancelToken());
    QCOMPARE(packed.format(), QImage::Format_RGB888);
    QCOMPARE(packed.convertToFormat(QImage::Format_RGB32), image);
}

void tst_ExrFile::LeavesOtherKindsToTheLibrary_data()
{
    QTest::addColumn<QByteArray>("compression");
    QTest::addColumn<QByteArray>("what");
    for (const char* compression : {"piz", "b44", "b44a", "dwaa", "dwab"})
        QTest::newRow(compression) << QByteArray(compression) << QByteArray();
    for (const char* what : {"tiled", "uint", "layer", "orientation"})
        QTest::newRow(what) << QByteArray("zip") << QByteArray(what);
}

void tst_ExrFile::LeavesOtherKindsToTheLibrary()
{
    QFETCH(QByteArray, compression);
    QFETCH(QByteArray, what);
    const QRect box(0, 0, 70, 40);
    OIIO::ImageSpec spec = SpecOf({compression, OIIO::TypeDesc::HALF, box, box});
    if (what == "tiled")
        spec.tile_width = spec.tile_height = 16;
    else if (what == "uint")
        spec.set_format(OIIO::TypeDesc::UINT32);
    else if (what == "layer")
        spec.channelnames = {"l.R", "l.G", "l.B"};
    else if (what == "orientation")
        spec.attribute("Orientation", 3);
    QVERIFY(WriteExr(Path(), spec, false));
    QVERIFY(ExrFile::Read(Path(), QImage::Format_RGB32, CancelToken()).isNull());
    QString error;
    const QImage image = ImageFile::Read(Path(), QImage::Format_RGB32, CancelToken(), &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QCOMPARE(image.size(), box.size());
}

void tst_ExrFile::ReadsBlocksFromTheLastToTheFirst()
{
    const QRect box(0, 0, 40, 50);
    OIIO::ImageSpec spec = SpecOf({"zip", OIIO::TypeDesc::HALF, box, box});
    spec.attribute("openexr:lineOrder", "decreasingY");
    QVERIFY(WriteExr(Path(), spec, true));
    const QByteArray difference =
        PictureDifference(ExrFile::Read(Path(), QImage::Format_RGB32, CancelToken()), LibraryPicture(Path()));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_ExrFile::RoundsFloatToTheNearestHalf()
{
    const auto bitsOf = [](double value)
    {
        const auto single = float(value);
        quint32 bits = 0;
        std::memcpy(&bits, &single, sizeof(bits));
        return bits;
    };
    QVector<quint32> values;
    QVector<quint16> expected;
    // Each half float, the middle between it and the next, and the floats beside that.
    for (int half = 0; half < 0x7c00; ++half)
    {
        const double low = HalfValueOf(quint16(half));
        const double high = half == 0x7bff ? 65536.0 : HalfValueOf(quint16(half + 1));
        const quint32 middle = bitsOf((low + high) / 2);
        values << bitsOf(low) << middle - 1 << middle << middle + 1;
        expected << quint16(half) << quint16(half) << quint16(half + half % 2) << quint16(half + 1);
    }
    values << 1U << bitsOf(1e30) << 0x7f800000U;
    expected << quint16(0) << quint16(0x7c00) << quint16(0x7c00);
    const int positive = values.size();
    for (int i = 0; i < positive; ++i)
    {
        values << (values[i] | 0x80000000U);
        expected << quint16(expected[i] | 0x8000U);
    }
    std::vector<uchar> bytes(size_t(values.size()) * 4 + 1);
    for (int i = 0; i < values.size(); ++i)
    {
        QCOMPARE(ExrBlock::RoundedToHalf(values[i]), expected[i]);
        qToLittleEndian<quint32>(values[i], bytes.data() + 1 + i * 4);
    }
    QVector<quint16> halves(values.size());
    ExrBlock::ToHalf(bytes.data() + 1, true, values.size(), halves.data());
    QCOMPARE(halves, expected);
    for (const quint32 nan : {0x7fc00000U, 0x7f800001U, 0xffffffffU})
        QVERIFY(std::isnan(HalfValueOf(ExrBlock::RoundedToHalf(nan))));
}

void tst_ExrFile::RefusesBrokenFiles_data()
{
    QTest::addColumn<double>("part");
    for (const double part : {0.0, 0.001, 0.02, 0.05, 0.5, 0.999})
        QTest::addRow("%g", part) << part;
}

void tst_ExrFile::RefusesBrokenFiles()
{
    QFETCH(double, part);
    const QRect box(0, 0, 120, 90);
    QVERIFY(WriteExr(Path(), SpecOf({"zip", OIIO::TypeDesc::HALF, box, box}), true));
    QFile file(Path());
    QVERIFY(file.resize(qint64(double(file.size()) * part)));
    QVERIFY(ExrFile::Read(Path(), QImage::Format_RGB32, CancelToken()).isNull());
    QString error;
    ImageFile::Read(Path(), QImage::Format_RGB32, CancelToken(), &error);
    QVERIFY(!error.isEmpty());
}

void tst_ExrFile::StandsAnySpoiltByte_data()
{
    QTest::addColumn<QByteArray>("compression");
    for (const char* compression : {"none", "rle", "zip", "pxr24"})
        QTest::newRow(compression) << QByteArray(compression);
}

void tst_ExrFile::StandsAnySpoiltByte()
{
    QFETCH(QByteArray, compression);
    const QRect box(0, 0, 9, 20);
    QVERIFY(WriteExr(Path(), SpecOf({compression, OIIO::TypeDesc::HALF, box, box}), false));
    QFile file(Path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray sound = file.readAll();
    file.close();
    int taken = 0;
    for (int i = 0; i < sound.size(); ++i)
        for (const char value : {char(0), char(0x7f), char(0xff)})
        {
            QByteArray spoilt = sound;
            spoilt[i] = value;
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(spoilt) == spoilt.size());
            file.close();
            taken += ExrFile::Read(Path(), QImage::Format_RGB32, CancelToken()).isNull() ? 0 : 1;
        }
    // Some bytes say nothing of the picture, others all.
    QVERIFY(taken > 0 && taken < sound.size() * 3);
}

void tst_ExrFile::StopsWhenCancelled()
{
    const QRect box(0, 0, 9, 20);
    QVERIFY(WriteExr(Path(), SpecOf({"zip", OIIO::TypeDesc::HALF, box, box}), false));
    CancelToken cancel;
    cancel.Cancel();
    QVERIFY(ExrFile::Read(Path(), QImage::Format_RGB32, cancel).isNull());
    QString error;
    QVERIFY(ImageFile::Read(Path(), QImage::Format_RGB32, cancel, &error).isNull());
    QVERIFY(error.isEmpty());
}

static const TestRegistration<tst_ExrFile> ExrFileRegistration;

#include "tst_ExrFile.moc"
