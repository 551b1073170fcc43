// SPDX-License-Identifier: MIT
#include "media/SequenceFiles.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class tst_SequenceFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void FindsTheFilesThatBelongTogether_data();
    void FindsTheFilesThatBelongTogether();
    void KnowsItsGaps();
    void OfTwoPaddingsTheNamedOneCounts();
};

void tst_SequenceFiles::FindsTheFilesThatBelongTogether_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("named");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("namedFrame");
    QTest::newRow("padded") << QStringList{"shot.0099.exr", "shot.0100.exr", "shot.0101.exr"}
                            << "shot.0101.exr" << 99 << 3 << 3;
    QTest::newRow("not padded") << QStringList{"a9.png", "a10.png", "a11.png"} << "a9.png" << 9 << 3 << 1;
    QTest::newRow("grows out of its padding")
        << QStringList{"a.999.png", "a.1000.png"} << "a.1000.png" << 999 << 2 << 2;
    QTest::newRow("number alone") << QStringList{"1.tif", "2.tif"} << "2.tif" << 1 << 2 << 2;
    QTest::newRow("from zero") << QStringList{"a_000.jpg", "a_001.jpg"} << "a_000.jpg" << 0 << 2 << 1;
    QTest::newRow("others beside") << QStringList{"a.1.png",  "a.2.png", "b.3.png",     "a.4.jpg",
                                                  "aa.5.png", "a.x.png", "a.6.png.bak", "a..7.png"}
                                   << "a.1.png" << 1 << 2 << 1;
    QTest::newRow("alone") << QStringList{"still.7.png"} << "still.7.png" << 7 << 1 << 1;
    QTest::newRow("no number") << QStringList{"still.png", "still1.png"} << "still.png" << 0 << 1 << 1;
    QTest::newRow("no extension") << QStringList{"still1", "still2"} << "still2" << 1 << 2 << 2;
    QTest::newRow("number too long") << QStringList{"a20240102030405.png", "a20240102030406.png"}
                                     << "a20240102030405.png" << 0 << 1 << 1;
    QTest::newRow("as large as can be")
        << QStringList{"a999999998.png", "a999999999.png"} << "a999999998.png" << 999999998 << 2 << 1;
}

void tst_SequenceFiles::FindsTheFilesThatBelongTogether()
{
    QFETCH(QStringList, files);
    QFETCH(QString, named);
    QTemporaryDir folder;
    for (const QString& name : files)
    {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const SequenceFiles sequence = SequenceFiles::Of(folder.filePath(named));
    QFETCH(int, count);
    QCOMPARE(sequence.FrameCount(), count);
    QCOMPARE(sequence.IsSequence(), count > 1);
    QTEST(sequence.FirstNumber(), "first");
    QTEST(sequence.NamedFrame(), "namedFrame");
    QCOMPARE(sequence.MissingFrames(), 0);
    bool exists = false;
    QCOMPARE(sequence.PathOf(sequence.NamedFrame(), &exists), folder.filePath(named));
    QVERIFY(exists);
    for (int frame = 1; frame <= count; ++frame)
        QVERIFY(QFile::exists(sequence.PathOf(frame, &exists)));
}

void tst_SequenceFiles::KnowsItsGaps()
{
    QTemporaryDir folder;
    for (const char* name : {"s.008.png", "s.009.png", "s.012.png"})
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const SequenceFiles sequence = SequenceFiles::Of(folder.filePath(QStringLiteral("s.009.png")));
    QCOMPARE(sequence.FrameCount(), 5);
    QCOMPARE(sequence.MissingFrames(), 2);
    bool exists = true;
    QCOMPARE(sequence.PathOf(3, &exists), folder.filePath(QStringLiteral("s.010.png")));
    QVERIFY(!exists);
    QCOMPARE(sequence.PathOf(5, &exists), folder.filePath(QStringLiteral("s.012.png")));
    QVERIFY(exists);
}

void tst_SequenceFiles::OfTwoPaddingsTheNamedOneCounts()
{
    QTemporaryDir folder;
    for (const char* name : {"s.1.png", "s.001.png", "s.002.png"})
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    bool exists = false;
    QCOMPARE(SequenceFiles::Of(folder.filePath(QStringLiteral("s.002.png"))).PathOf(1, &exists),
             folder.filePath(QStringLiteral("s.001.png")));
    QCOMPARE(SequenceFiles::Of(folder.filePath(QStringLiteral("s.1.png"))).PathOf(1, &exists),
             folder.filePath(QStringLiteral("s.1.png")));
}

static const TestRegistration<tst_SequenceFiles> SequenceFilesRegistration;

#include "tst_SequenceFiles.moc"
