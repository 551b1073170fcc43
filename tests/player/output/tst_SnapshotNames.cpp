// SPDX-License-Identifier: MIT
#include "host/Bookmarks.h"
#include "output/SnapshotNames.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class tst_SnapshotNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void SuffixDecidesTheFormat_data();
    void SuffixDecidesTheFormat();
    void NumbersArePadded_data();
    void NumbersArePadded();
    void TakenNamesAreAvoided();
    void NamesOfOtherPlacesAreRefused();
    void TypesChooseTheirFrames_data();
    void TypesChooseTheirFrames();
};

void tst_SnapshotNames::SuffixDecidesTheFormat_data()
{
    QTest::addColumn<QString>("stem");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("shot") << "shot"
                          << "png";
    QTest::newRow("shot.png") << "shot"
                              << "png";
    QTest::newRow("shot.JPG") << "shot"
                              << "jpg";
    QTest::newRow("shot.jpeg") << "shot"
                               << "jpeg";
    QTest::newRow("shot.tif") << "shot"
                              << "tif";
    QTest::newRow("a.b.tiff") << "a.b"
                              << "tiff";
    QTest::newRow("shot.exr") << "shot"
                              << "exr";
    QTest::newRow("shot.v2") << "shot.v2"
                             << "png";
    QTest::newRow("shot.bmp") << "shot.bmp"
                              << "png";
    QTest::newRow(".png") << ".png"
                          << "png";
    QTest::newRow("png") << "png"
                         << "png";
    QTest::newRow("shot.") << "shot."
                           << "png";
}

void tst_SnapshotNames::SuffixDecidesTheFormat()
{
    const SnapshotNames::Parts parts = SnapshotNames::Split(QTest::currentDataTag());
    QTEST(parts.stem, "stem");
    QTEST(parts.suffix, "suffix");
}

void tst_SnapshotNames::NumbersArePadded_data()
{
    QTest::addColumn<int>("numbering");
    QTest::addColumn<int>("padding");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("frame");
    QTest::addColumn<QString>("name");
    QTest::newRow("sequence") << 0 << 4 << 3 << 120 << "shot.0003.jpg";
    QTest::newRow("frame") << 1 << 4 << 3 << 120 << "shot.0120.jpg";
    QTest::newRow("narrow") << 1 << 1 << 3 << 120 << "shot.120.jpg";
    QTest::newRow("wide") << 0 << 6 << 3 << 120 << "shot.000003.jpg";
    QTest::newRow("beyond the digits") << 1 << 2 << 3 << 12345 << "shot.12345.jpg";
}

void tst_SnapshotNames::NumbersArePadded()
{
    QFETCH(int, numbering);
    QFETCH(int, padding);
    QFETCH(int, position);
    QFETCH(int, frame);
    QTEST(SnapshotNames::Numbered({"shot", "jpg"}, static_cast<SnapshotNumbering>(numbering), padding,
                                  position, frame),
          "name");
    // Not even a stem that looks like a place is filled in.
    QCOMPARE(SnapshotNames::Numbered({"%2%1", "png"}, SnapshotNumberingFrame, 4, 1, 7),
             QStringLiteral("%2%1.0007.png"));
}

void tst_SnapshotNames::TakenNamesAreAvoided()
{
    QTemporaryDir dir;
    const SnapshotNames::Parts parts = {"shot", "png"};
    for (const char* const name : {"shot.png", "shot (2).png", "shot (3).png"})
    {
        QCOMPARE(SnapshotNames::Unused(dir.path(), parts), dir.filePath(name));
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
}

void tst_SnapshotNames::NamesOfOtherPlacesAreRefused()
{
    QVERIFY(SnapshotNames::Problem("shot.png").isEmpty());
    QVERIFY(SnapshotNames::Problem("..").isEmpty());
    QVERIFY(SnapshotNames::Problem("../shot").contains("../shot"));
    QVERIFY(!SnapshotNames::Problem("a/b").isEmpty());
}

void tst_SnapshotNames::TypesChooseTheirFrames_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<std::vector<int>>("frames");
    QTest::newRow("single") << int(SnapshotSingleFrame) << std::vector<int>{9};
    QTest::newRow("all") << int(SnapshotAllFrames) << std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    QTest::newRow("range") << int(SnapshotAllFramesInRange) << std::vector<int>{4, 5, 6, 7, 8};
    QTest::newRow("bookmarks") << int(SnapshotBookmarks) << std::vector<int>{2, 5, 8, 11};
    QTest::newRow("bookmarks in range") << int(SnapshotBookmarksInRange) << std::vector<int>{5, 8};
}

void tst_SnapshotNames::TypesChooseTheirFrames()
{
    QFETCH(int, type);
    QFETCH(std::vector<int>, frames);
    MediaInfo info;
    info.frameCount = 12;
    info.frameRate = FrameRate{24, 1};
    MediaTimeline timeline(std::make_shared<const MediaSource>(QUuid::createUuid(), info));
    for (const int frame : {8, 2, 11, 5})
        timeline.ToggleBookmark(frame);
    QCOMPARE(SnapshotNames::Frames(timeline, static_cast<SnapshotType>(type), 9, PlaybackRange{4, 8}),
             frames);
}

static const TestRegistration<tst_SnapshotNames> SnapshotNamesRegistration;

#include "tst_SnapshotNames.moc"
