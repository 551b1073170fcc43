// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "viewers/DrawSpace.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>

class tst_DrawSpace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void CentresEachSlot_data();
    void CentresEachSlot();
    void ScalesByTheDisplayedWidthOnBothAxes();
    void MapsToPixelsInDoubleAndBackInFloat();
    void BeforeTheFirstPaintNothingIsFinite();
    void ViewerHalvesCutTheOddPixelOff_data();
    void ViewerHalvesCutTheOddPixelOff();
};

void tst_DrawSpace::CentresEachSlot_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("index");
    QTest::addColumn<QPointF>("centre");
    // Of 403 by 301.
    QTest::newRow("single A") << int(Single) << 0 << QPointF(201.5, 150.5);
    QTest::newRow("single B") << int(Single) << 1 << QPointF(201.5, 150.5);
    QTest::newRow("horizontal A") << int(Horizontal) << 0 << QPointF(100.75, 150.5);
    QTest::newRow("horizontal B") << int(Horizontal) << 1 << QPointF(302.25, 150.5);
    QTest::newRow("vertical A") << int(Vertical) << 0 << QPointF(201.5, 75.25);
    QTest::newRow("vertical B") << int(Vertical) << 1 << QPointF(201.5, 225.75);
}

void tst_DrawSpace::CentresEachSlot()
{
    QFETCH(int, layout);
    QFETCH(int, index);
    QFETCH(QPointF, centre);
    const DrawSpace space = DrawSpace::Of(ViewerLayout(layout), index, QSize(403, 301), 123.0);
    QVERIFY(double(space.centerX) == centre.x() && double(space.centerY) == centre.y());
    QVERIFY(space.scale == 123.0f);
    const QPointF origin = space.ToPixel(QPointF(0, 0));
    QVERIFY(origin.x() == centre.x() && origin.y() == centre.y());
}

void tst_DrawSpace::ScalesByTheDisplayedWidthOnBothAxes()
{
    const DrawSpace space = DrawSpace::Of(Single, 0, QSize(400, 300), 200.0);
    QVERIFY(space.ToPixel(QPointF(0.5, 0.5)) == QPointF(300, 250));
    QVERIFY(space.ToPixel(QPointF(-1, -0.25)) == QPointF(0, 100));
    QVERIFY(space.FromPixel(QPoint(300, 250)) == QPointF(0.5, 0.5));
    QVERIFY(space.FromPixel(QPoint(0, 100)) == QPointF(-1, -0.25));
}

void tst_DrawSpace::MapsToPixelsInDoubleAndBackInFloat()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 2000; ++round)
    {
        const QSize size(int(random.bounded(3000)) + 1, int(random.bounded(3000)) + 1);
        const int width = int(random.bounded(3000)) + 1;
        const DrawSpace space = DrawSpace::Of(Vertical, round % 2, size, width);
        const double x = size.width() / 2.0;
        const double y = size.height() * (round % 2 == 0 ? 1 : 3) / 4.0;
        const QPointF point(random.generateDouble() - 0.5, random.generateDouble() - 0.5);
        const QPointF there = space.ToPixel(point);
        QVERIFY(there.x() == width * point.x() + x && there.y() == width * point.y() + y);
        const QPoint pixel(int(random.bounded(3000)), int(random.bounded(3000)));
        const QPointF back = space.FromPixel(pixel);
        QVERIFY(back.x() == double(float(pixel.x() - x) / float(width)));
        QVERIFY(back.y() == double(float(pixel.y() - y) / float(width)));
    }
}

void tst_DrawSpace::BeforeTheFirstPaintNothingIsFinite()
{
    const DrawSpace space = DrawSpace::Of(Single, 0, QSize(400, 300), 0.0);
    const QPointF point = space.FromPixel(QPoint(10, 10));
    QVERIFY(!std::isfinite(point.x()) && !std::isfinite(point.y()));
    QVERIFY(space.ToPixel(QPointF(0.3, 0.4)) == QPointF(200, 150));
}

void tst_DrawSpace::ViewerHalvesCutTheOddPixelOff_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("index");
    QTest::addColumn<QRect>("half");
    // Of 401 by 301, by left, top, right and bottom edge.
    QTest::newRow("horizontal A") << int(Horizontal) << 0 << QRect(QPoint(0, 0), QPoint(199, 300));
    QTest::newRow("horizontal B") << int(Horizontal) << 1 << QRect(QPoint(200, 0), QPoint(600, 300));
    QTest::newRow("vertical A") << int(Vertical) << 0 << QRect(QPoint(0, 0), QPoint(400, 149));
    QTest::newRow("vertical B") << int(Vertical) << 1 << QRect(QPoint(0, 150), QPoint(400, 450));
}

void tst_DrawSpace::ViewerHalvesCutTheOddPixelOff()
{
    QFETCH(int, layout);
    QFETCH(int, index);
    QFETCH(QRect, half);
    QCOMPARE(ViewerHalf(ViewerLayout(layout), index, QSize(401, 301)), half);
}

static const TestRegistration<tst_DrawSpace> DrawSpaceRegistration;

#include "tst_DrawSpace.moc"
