// SPDX-License-Identifier: MIT
#include "media/ImageFile.h"
#include "media/PngFile.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <OpenImageIO/imageio.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <random>

namespace
{

/// Writes PNG files by the format's own rules, so that each filter and each kind of pixel can be had.
class PngWriter
{
public:
    int width = 1;
    int height = 1;
    int bits = 8;
    /// The format's number: 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGB and alpha.
    int colours = 2;
    /// 0 to 4; 5 takes them in turn.
    int filter = 5;
    int paletteSize = 200;
    int interlace = 0;
    /// Chunks before the packed ones.
    QByteArray more;
    /// What the packed data is cut into.
    int piece = 1000;

    int Channels() const { return colours == 2 ? 3 : colours == 4 ? 2 : colours == 6 ? 4 : 1; }
    int PixelBytes() const { return Channels() * bits / 8; }

    /// Bytes of the picture, rows without a gap.
    QByteArray Pixels() const
    {
        QByteArray pixels(width * height * PixelBytes(), 0);
        std::mt19937 random(5);
        for (int i = 0; i < pixels.size(); ++i)
            pixels[i] = char(colours == 3 ? random() % unsigned(paletteSize)
                                          : unsigned(i / 7) + random() % 2 * (random() % 255));
        return pixels;
    }

    QByteArray Palette() const
    {
        QByteArray palette;
        for (int i = 0; i < paletteSize; ++i)
            palette += QByteArray(1, char(i)) + QByteArray(1, char(255 - i)) + QByteArray(1, char(i * 7));
        return palette;
    }

    static QByteArray Chunk(const QByteArray& type, const QByteArray& data)
    {
        const QByteArray body = type + data;
        quint32 check = 0xffffffffU;
        for (const char byte : body)
        {
            check ^= quint8(byte);
            for (int bit = 0; bit < 8; ++bit)
                check = (check >> 1) ^ ((check & 1U) != 0 ? 0xedb88320U : 0U);
        }
        return Number(quint32(data.size())) + body + Number(~check);
    }

    static QByteArray Number(quint32 value)
    {
        QByteArray bytes(4, 0);
        qToBigEndian(value, bytes.data());
        return bytes;
    }

    QByteArray File() const
    {
        QByteArray header = Number(quint32(width)) + Number(quint32(height));
        for (const int value : {bits, colours, 0, 0, interlace})
            header += char(value);
        QByteArray file = QByteArray::fromHex("89504e470d0a1a0a") + Chunk("IHDR", header);
        if (colours == 3)
            file += Chunk("PLTE", Palette());
        file += more;
        const QByteArray packed = qCompress(Filtered()).mid(4);
        for (int at = 0; at < packed.size(); at += piece)
            file += Chunk("IDAT", packed.mid(at, piece));
        return file + Chunk("IEND", {});
    }

private:
    QByteArray Filtered() const
    {
        const QByteArray pixels = Pixels();
        const int step = PixelBytes();
        const int rowBytes = width * step;
        QByteArray filtered;
        for (int y = 0; y < height; ++y)
        {
            const int rule = filter == 5 ? y % 5 : filter;
            filtered += char(rule);
            for (int x = 0; x < rowBytes; ++x)
            {
                const auto at = [&](int dx, int dy)
                { return x < dx || y < dy ? 0 : int(quint8(pixels[(y - dy) * rowBytes + x - dx])); };
                const int left = at(step, 0);
                const int above = at(0, 1);
                const int corner = at(step, 1);
                const int guess = left + above - corner;
                int nearest = left;
                if (qAbs(guess - above) < qAbs(guess - nearest))
                    nearest = above;
                if (qAbs(guess - corner) < qAbs(guess - nearest))
                    nearest = corner;
                const int foretold[] = {0, left, above, (left + above) / 2, nearest};
                filtered += char(at(0, 0) - foretold[rule]);
            }
        }
        return filtered;
    }
};

QImage ExpectedPicture(const PngWriter& writer)
{
    const QByteArray pixels = writer.Pixels();
    const QByteArray palette = writer.Palette();
    const auto valueOf = [&](int x, int y, int channel)
    {
        const int place = (y * writer.width + x) * writer.Channels() + channel;
        return writer.bits == 8 ? quint32(quint8(pixels[place]))
                                : quint32(quint8(pixels[2 * place])) << 8 | quint8(pixels[2 * place + 1]);
    };
    const double most = writer.bits == 8 ? 255.0 : 65535.0;
    QImage image(writer.width, writer.height, QImage::Format_RGB32);
    for (int y = 0; y < writer.height; ++y)
        for (int x = 0; x < writer.width; ++x)
        {
            int levels[3];
            for (int i = 0; i < 3; ++i)
            {
                const bool isGrey = writer.colours == 0 || writer.colours == 4;
                double level = valueOf(x, y, isGrey || writer.colours == 3 ? 0 : i) / most;
                if (writer.colours >= 4)
                    level *= valueOf(x, y, writer.Channels() - 1) / most;
                levels[i] = writer.colours == 3 ? quint8(palette[int(valueOf(x, y, 0)) * 3 + i])
                                                : int(std::lround(level * 255.0));
            }
            image.setPixel(x, y, qRgb(levels[0], levels[1], levels[2]));
        }
    return image;
}

} // namespace

class tst_PngFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void ShowsEachKindOfPixelAndFilter_data();
    void ShowsEachKindOfPixelAndFilter();
    void TakesNoNoteOfColourChunks();
    void LeavesOtherKindsToTheLibrary_data();
    void LeavesOtherKindsToTheLibrary();
    void RefusesBrokenFiles();
    void StandsAnySpoiltByte_data();
    void StandsAnySpoiltByte();

private:
    QString Path() const { return mFolder->filePath(QStringLiteral("a.png")); }
    bool Write(const QByteArray& bytes) const
    {
        QFile file(Path());
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    std::unique_ptr<QTemporaryDir> mFolder;
};

void tst_PngFile::init()
{
    mFolder = std::make_unique<QTemporaryDir>();
}

void tst_PngFile::ShowsEachKindOfPixelAndFilter_data()
{
    QTest::addColumn<int>("colours");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("filter");
    QTest::addColumn<QSize>("size");
    for (const int colours : {0, 2, 3, 4, 6})
        for (const int bits : {8, 16})
            for (int filter = 0; filter <= 5 && (colours != 3 || bits == 8); ++filter)
                for (const QSize& size : {QSize(1, 1), QSize(5, 3), QSize(67, 41)})
                    QTest::addRow("kind %d of %d bits, filter %d, %dx%d", colours, bits, filter, size.width(),
                                  size.height())
                        << colours << bits << filter << size;
}

void tst_PngFile::ShowsEachKindOfPixelAndFilter()
{
    QFETCH(int, colours);
    QFETCH(int, bits);
    QFETCH(int, filter);
    QFETCH(QSize, size);
    PngWriter writer;
    writer.colours = colours;
    writer.bits = bits;
    writer.filter = filter;
    writer.width = size.width();
    writer.height = size.height();
    QVERIFY(Write(writer.File()));
    const QImage image = PngFile::Read(Path(), QImage::Format_RGB32);
    QByteArray difference = PictureDifference(image, ExpectedPicture(writer));
    QVERIFY2(difference.isEmpty(), difference);
    const QImage packed = PngFile::Read(Path(), QImage::Format_RGB888);
    QCOMPARE(packed.format(), QImage::Format_RGB888);
    QCOMPARE(packed.convertToFormat(QImage::Format_RGB32), image);
    // The picture library's way, by a name that the faster way does not take.
    const QString other = mFolder->filePath(QStringLiteral("a.other"));
    QVERIFY(QFile::copy(Path(), other));
    QString error;
    difference =
        PictureDifference(image, ImageFile::Read(other, QImage::Format_RGB32, CancelToken(), &error));
    QVERIFY2(error.isEmpty() && difference.isEmpty(), difference + qPrintable(error));
}

void tst_PngFile::TakesNoNoteOfColourChunks()
{
    PngWriter writer;
    writer.width = 20;
    writer.height = 12;
    writer.more = PngWriter::Chunk("gAMA", PngWriter::Number(100000)) +
                  PngWriter::Chunk("pHYs", PngWriter::Number(2) + PngWriter::Number(1) + QByteArray(1, 0)) +
                  PngWriter::Chunk("tEXt", QByteArray("Title\0ramp", 10));
    QVERIFY(Write(writer.File()));
    const QImage image = PngFile::Read(Path(), QImage::Format_RGB32);
    QByteArray difference = PictureDifference(image, ExpectedPicture(writer));
    QVERIFY2(difference.isEmpty(), difference);
    const QString other = mFolder->filePath(QStringLiteral("a.other"));
    QVERIFY(QFile::copy(Path(), other));
    QString error;
    difference =
        PictureDifference(image, ImageFile::Read(other, QImage::Format_RGB32, CancelToken(), &error));
    QVERIFY2(error.isEmpty() && difference.isEmpty(), difference + qPrintable(error));
}

void tst_PngFile::LeavesOtherKindsToTheLibrary_data()
{
    QTest::addColumn<QByteArray>("chunk");
    QTest::newRow("transparent colour") << PngWriter::Chunk("tRNS", QByteArray(6, 0));
    QTest::newRow("meaningful bits") << PngWriter::Chunk("sBIT", QByteArray(3, 5));
    QTest::newRow("unknown") << PngWriter::Chunk("abCd", QByteArray(3, 5));
}

void tst_PngFile::LeavesOtherKindsToTheLibrary()
{
    QFETCH(QByteArray, chunk);
    PngWriter writer;
    writer.width = 20;
    writer.height = 12;
    writer.more = chunk;
    QVERIFY(Write(writer.File()));
    QVERIFY(PngFile::Read(Path(), QImage::Format_RGB32).isNull());
    QString error;
    QCOMPARE(ImageFile::Read(Path(), QImage::Format_RGB32, CancelToken(), &error).size(), QSize(20, 12));
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

void tst_PngFile::RefusesBrokenFiles()
{
    PngWriter writer;
    writer.width = 20;
    writer.height = 12;
    QVERIFY(Write(writer.File()));
    QVERIFY(!PngFile::Read(Path(), QImage::Format_RGB32).isNull());
    for (const int filter : {5, 6, 200})
    {
        PngWriter wrong = writer;
        wrong.interlace = filter;
        QVERIFY(Write(wrong.File()));
        QVERIFY(PngFile::Read(Path(), QImage::Format_RGB32).isNull());
    }
    PngWriter palette = writer;
    palette.colours = 3;
    QByteArray file = palette.File();
    const int place = file.indexOf("PLTE") - 4;
    file.replace(place, 12 + palette.paletteSize * 3, PngWriter::Chunk("PLTE", QByteArray(30, 1)));
    QVERIFY(Write(file));
    QVERIFY(PngFile::Read(Path(), QImage::Format_RGB32).isNull());
    const QByteArray sound = writer.File();
    for (int length = 0; length < sound.size(); ++length)
    {
        QVERIFY(Write(sound.left(length)));
        QVERIFY2(PngFile::Read(Path(), QImage::Format_RGB32).isNull(), QByteArray::number(length));
    }
}

void tst_PngFile::StandsAnySpoiltByte_data()
{
    QTest::addColumn<int>("colours");
    QTest::newRow("RGB") << 2;
    QTest::newRow("palette") << 3;
}

void tst_PngFile::StandsAnySpoiltByte()
{
    QFETCH(int, colours);
    PngWriter writer;
    writer.colours = colours;
    writer.width = 9;
    writer.height = 7;
    const QByteArray sound = writer.File();
    for (int i = 0; i < sound.size(); ++i)
    {
        QByteArray spoilt = sound;
        spoilt[i] = char(spoilt[i] ^ 0x55);
        QVERIFY(Write(spoilt));
        // Check sums cover all but the lengths, which then miss theirs.
        QVERIFY2(PngFile::Read(Path(), QImage::Format_RGB32).isNull(), QByteArray::number(i));
    }
}

static const TestRegistration<tst_PngFile> PngFileRegistration;

#include "tst_PngFile.moc"
