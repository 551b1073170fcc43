// SPDX-License-Identifier: MIT
#include "OutputProbe.h"
#include "media/ImageFile.h"
#include "output/SnapshotFile.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

/// Stills written and read again.
class tst_SnapshotFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void PictureComesBack_data();
    void PictureComesBack();
    void FileThatIsThereIsLeftAlone();
    void FileThatIsThereIsReplacedWhereAsked();
    void PlaceThatCantBeWrittenIsNamed_data();
    void PlaceThatCantBeWrittenIsNamed();
};

namespace
{

QImage MakeStill()
{
    QImage image(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < 48; ++y)
    {
        for (int x = 0; x < 64; ++x)
            image.setPixel(x, y, qRgb(x * 4, y * 5, 255 - x * 2 - y));
    }
    return image;
}

} // namespace

void tst_SnapshotFile::PictureComesBack_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("pixels");
    QTest::addColumn<int>("tolerance");
    QTest::newRow("png") << "png"
                         << "uint8" << 0;
    QTest::newRow("jpg") << "jpeg"
                         << "uint8" << 12;
    QTest::newRow("jpeg") << "jpeg"
                          << "uint8" << 12;
    QTest::newRow("tif") << "tiff"
                         << "uint8" << 0;
    QTest::newRow("tiff") << "tiff"
                          << "uint8" << 0;
    QTest::newRow("exr") << "openexr"
                         << "half" << 0;
}

void tst_SnapshotFile::PictureComesBack()
{
    QFETCH(int, tolerance);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("still.%1").arg(QTest::currentDataTag()));
    QCOMPARE(SnapshotFile::Write(MakeStill(), path, false), QString());
    QCOMPARE(OutputProbe::NamesIn(dir.path()).size(), 1);
    ImageFileInfo info;
    QString error;
    QVERIFY2(ImageFile::ReadInfo(path, &info, &error), qPrintable(error));
    QTEST(info.formatName, "format");
    QTEST(info.pixelType, "pixels");
    const QImage read = ImageFile::Read(path, QImage::Format_RGB32, CancelToken(), &error);
    const QByteArray difference = PictureDifference(read, MakeStill(), tolerance);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_SnapshotFile::FileThatIsThereIsLeftAlone()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("still.png");
    QCOMPARE(SnapshotFile::Write(MakeStill(), path, false), QString());
    const QString problem = SnapshotFile::Write(QImage(2, 2, QImage::Format_RGB32), path, false);
    QVERIFY(problem.contains("still.png exists already"));
    QCOMPARE(QImage(path).size(), QSize(64, 48));
    QCOMPARE(OutputProbe::NamesIn(dir.path()), QStringList{"still.png"});
}

void tst_SnapshotFile::FileThatIsThereIsReplacedWhereAsked()
{
    QTemporaryDir dir;
    for (const char* const name : {"still.png", "still.exr"})
    {
        const QString path = dir.filePath(name);
        QImage small(2, 2, QImage::Format_RGB32);
        small.fill(Qt::red);
        QCOMPARE(SnapshotFile::Write(small, path, true), QString());
        QCOMPARE(SnapshotFile::Write(MakeStill(), path, true), QString());
        QString error;
        QCOMPARE(ImageFile::Read(path, QImage::Format_RGB32, CancelToken(), &error).size(), QSize(64, 48));
    }
    QCOMPARE(OutputProbe::NamesIn(dir.path()).size(), 2);
}

void tst_SnapshotFile::PlaceThatCantBeWrittenIsNamed_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char* const suffix : {"png", "jpg", "tif", "exr"})
        QTest::newRow(suffix) << suffix;
}

void tst_SnapshotFile::PlaceThatCantBeWrittenIsNamed()
{
    QFETCH(QString, suffix);
    QTemporaryDir dir;
    const QString missing = dir.filePath("missing/still.") + suffix;
    QVERIFY(SnapshotFile::Write(MakeStill(), missing, true).contains(missing));
    const QString unwritable = "/proc/self/still." + suffix;
    const QString problem = SnapshotFile::Write(MakeStill(), unwritable, true);
    QVERIFY2(problem.contains(unwritable) && problem.size() > unwritable.size() + 30, qPrintable(problem));
    const QString directory = dir.filePath("directory.") + suffix;
    QVERIFY(QDir().mkdir(directory));
    for (const bool replace : {false, true})
        QVERIFY(SnapshotFile::Write(MakeStill(), directory, replace).contains(directory));
    QCOMPARE(OutputProbe::NamesIn(dir.path()).size(), 1);
}

static const TestRegistration<tst_SnapshotFile> SnapshotFileRegistration;

#include "tst_SnapshotFile.moc"
