// SPDX-License-Identifier: MIT
#include "media/Orientation.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <QtTest>

class tst_Orientation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ShowsEachExifValue_data();
    void ShowsEachExifValue();
    void ReadsTheDisplayMatrix();
};

void tst_Orientation::ShowsEachExifValue_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<bool>("isMirrored");
    QTest::newRow("0 is none") << 0 << QTransform() << false;
    QTest::newRow("1") << 1 << QTransform() << false;
    QTest::newRow("2") << 2 << QTransform() << true;
    QTest::newRow("3") << 3 << QTransform().rotate(180) << false;
    QTest::newRow("4") << 4 << QTransform().rotate(180) << true;
    QTest::newRow("5") << 5 << QTransform().rotate(270) << true;
    QTest::newRow("6") << 6 << QTransform().rotate(90) << false;
    QTest::newRow("7") << 7 << QTransform().rotate(90) << true;
    QTest::newRow("8") << 8 << QTransform().rotate(270) << false;
    QTest::newRow("9 is none") << 9 << QTransform() << false;
}

void tst_Orientation::ShowsEachExifValue()
{
    QFETCH(int, value);
    QFETCH(QTransform, transform);
    QFETCH(bool, isMirrored);
    QImage stored(5, 3, QImage::Format_RGB32);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            stored.setPixel(x, y, qRgb(x * 50, y * 100, 7));
    const QImage expected = stored.mirrored(isMirrored, false).transformed(transform);
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_RGB888})
    {
        const QImage shown = Oriented(stored.convertToFormat(format), Orientation::FromExif(value));
        QCOMPARE(shown.format(), format);
        const QByteArray difference = PictureDifference(shown, expected);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_Orientation::ReadsTheDisplayMatrix()
{
    constexpr int32_t one = 1 << 16;
    const int32_t clockwise[9] = {0, one, 0, -one, 0, 0, 0, 0, 1 << 30};
    const Orientation orientation = Orientation::FromDisplayMatrix(clockwise);
    QCOMPARE(orientation.a, 0);
    QCOMPARE(orientation.b, 1);
    QCOMPARE(orientation.c, -1);
    QCOMPARE(orientation.d, 0);
    const int32_t slanted[9] = {one, one, 0, -one, one, 0, 0, 0, 1 << 30};
    QVERIFY(Orientation::FromDisplayMatrix(slanted).IsUpright());
    const int32_t nothing[9] = {};
    QVERIFY(Orientation::FromDisplayMatrix(nothing).IsUpright());
}

static const TestRegistration<tst_Orientation> OrientationRegistration;

#include "tst_Orientation.moc"
