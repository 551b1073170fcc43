// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "viewers/PanZoom.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// One axis of the placement, stated apart from the product's code.
struct Axis
{
    Axis(int length, float zoom, double pan, int drag)
    {
        scaled = int(std::floor(double(length) * double(zoom) + 0.5));
        position = length / 2 - scaled / 2;
        const float half = float(scaled - length) / 2.0f;
        if (half != 0.0f)
            delta = 1.0f - (half - float(std::abs(drag))) / half;
        if (drag < 0)
            delta = -delta;
        current = qBound(-1.0, pan + double(delta), 1.0);
        position += int(std::trunc(double(half) * current));
    }

    int scaled = 0;
    int position = 0;
    float delta = 0.0f;
    double current = 0.0;
};

} // namespace

class tst_PanZoom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void PlacesLikeTheSecondStatement_data();
    void PlacesLikeTheSecondStatement();
    void ZoomOneFillsTheViewerWhateverThePan();
    void FullPanPutsTheEdgeAtTheEdge();
    void HalfAPixelRoundsUp();
    void AZoomBelowOnePixelDividesByNothing();
    void DragOfHalfTheSurplusIsAPanOfOne();
    void SamePanAllowsATrillionth_data();
    void SamePanAllowsATrillionth();
    void ClampPanKeepsEachAxisWithinOne_data();
    void ClampPanKeepsEachAxisWithinOne();
};

void tst_PanZoom::PlacesLikeTheSecondStatement_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_PanZoom::PlacesLikeTheSecondStatement()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int round = 0; round < 2000; ++round)
    {
        const QSize size(int(random.bounded(3000)) + 1, int(random.bounded(2000)) + 1);
        const float zoom = 1.0f + float(random.generateDouble()) * (round % 2 == 0 ? 7.0f : 0.01f);
        if (zoom == 1.0f)
            continue;
        const QPointF pan(random.generateDouble() * 2 - 1, random.generateDouble() * 2 - 1);
        const QPoint drag(int(random.bounded(4000)) - 2000, int(random.bounded(4000)) - 2000);
        const Axis x(size.width(), zoom, pan.x(), drag.x());
        const Axis y(size.height(), zoom, pan.y(), drag.y());
        const PanZoomPlacement placement = PlacePanZoom(size, zoom, pan, drag);
        QCOMPARE(placement.geometry, QRect(x.position, y.position, x.scaled, y.scaled));
        // To the last bit, so not by QCOMPARE, which is lenient with points.
        QVERIFY(placement.delta.x() == double(x.delta) && placement.delta.y() == double(y.delta));
        QVERIFY(placement.current.x() == x.current && placement.current.y() == y.current);
    }
}

void tst_PanZoom::ZoomOneFillsTheViewerWhateverThePan()
{
    for (const QSize& size : {QSize(640, 360), QSize(101, 333), QSize(1, 1)})
    {
        const PanZoomPlacement placement = PlacePanZoom(size, 1.0f, QPointF(0.7, -0.4), QPoint(30, 40));
        QCOMPARE(placement.geometry, QRect(QPoint(0, 0), size));
    }
}

void tst_PanZoom::FullPanPutsTheEdgeAtTheEdge()
{
    const QSize size(400, 300);
    QCOMPARE(PlacePanZoom(size, 3.0f, QPointF(1, 1), QPoint()).geometry, QRect(0, 0, 1200, 900));
    QCOMPARE(PlacePanZoom(size, 3.0f, QPointF(-1, -1), QPoint()).geometry, QRect(-800, -600, 1200, 900));
    QCOMPARE(PlacePanZoom(size, 3.0f, QPointF(0, 0), QPoint()).geometry, QRect(-400, -300, 1200, 900));
    QCOMPARE(PlacePanZoom(size, 3.0f, QPointF(1, -1), QPoint()).geometry, QRect(0, -600, 1200, 900));
}

void tst_PanZoom::HalfAPixelRoundsUp()
{
    // 101 * 1.5 = 151.5 and 103 * 1.5 = 154.5.
    const QRect geometry = PlacePanZoom(QSize(101, 103), 1.5f, QPointF(), QPoint()).geometry;
    QCOMPARE(geometry.size(), QSize(152, 155));
    // Each half is cut, not their difference: 50 - 76 and 51 - 77.
    QCOMPARE(geometry.topLeft(), QPoint(-26, -26));
}

void tst_PanZoom::AZoomBelowOnePixelDividesByNothing()
{
    const float zoom = std::nextafter(1.0f, 2.0f);
    const PanZoomPlacement placement =
        PlacePanZoom(QSize(200, 100), zoom, QPointF(0.5, -0.25), QPoint(7, -9));
    QCOMPARE(placement.geometry, QRect(0, 0, 200, 100));
    QVERIFY(placement.delta.x() == 0.0 && placement.delta.y() == 0.0);
    QVERIFY(placement.current.x() == 0.5 && placement.current.y() == -0.25);
}

void tst_PanZoom::DragOfHalfTheSurplusIsAPanOfOne()
{
    // 200 wide at zoom 2: 100 pixels each way.
    const PanZoomPlacement full = PlacePanZoom(QSize(200, 200), 2.0f, QPointF(), QPoint(100, -100));
    QVERIFY(full.delta.x() == 1.0 && full.delta.y() == -1.0);
    const PanZoomPlacement past = PlacePanZoom(QSize(200, 200), 2.0f, QPointF(0.5, -0.5), QPoint(150, -150));
    QVERIFY(past.delta.x() == 1.5 && past.delta.y() == -1.5);
    QVERIFY(past.current.x() == 1.0 && past.current.y() == -1.0);
}

void tst_PanZoom::SamePanAllowsATrillionth_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<bool>("same");
    QTest::newRow("equal") << QPointF(0.5, -0.5) << QPointF(0.5, -0.5) << true;
    QTest::newRow("x within") << QPointF(0.9e-12, 0) << QPointF() << true;
    QTest::newRow("x at the limit") << QPointF(1e-12, 0) << QPointF() << true;
    QTest::newRow("x beyond") << QPointF(1.1e-12, 0) << QPointF() << false;
    QTest::newRow("x beyond, below") << QPointF(-1.1e-12, 0) << QPointF() << false;
    QTest::newRow("y within") << QPointF(0, -0.9e-12) << QPointF() << true;
    QTest::newRow("y beyond") << QPointF(0, 1.1e-12) << QPointF() << false;
    QTest::newRow("both beyond") << QPointF(1, 1) << QPointF() << false;
}

void tst_PanZoom::SamePanAllowsATrillionth()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(bool, same);
    QCOMPARE(SamePan(a, b), same);
    QCOMPARE(SamePan(b, a), same);
}

void tst_PanZoom::ClampPanKeepsEachAxisWithinOne_data()
{
    QTest::addColumn<QPointF>("pan");
    QTest::addColumn<QPointF>("clamped");
    QTest::newRow("within") << QPointF(0.25, -0.75) << QPointF(0.25, -0.75);
    QTest::newRow("five") << QPointF(5, -5) << QPointF(1, -1);
    QTest::newRow("one axis") << QPointF(-5, 0.5) << QPointF(-1, 0.5);
    QTest::newRow("edges") << QPointF(1, -1) << QPointF(1, -1);
    QTest::newRow("endless") << QPointF(std::numeric_limits<double>::infinity(),
                                        -std::numeric_limits<double>::infinity())
                             << QPointF(1, -1);
    QTest::newRow("not a number") << QPointF(NaN, NaN) << QPointF(0, 0);
}

void tst_PanZoom::ClampPanKeepsEachAxisWithinOne()
{
    QFETCH(QPointF, pan);
    QFETCH(QPointF, clamped);
    const QPointF result = ClampPan(pan);
    QVERIFY(result.x() == clamped.x() && result.y() == clamped.y());
}

static const TestRegistration<tst_PanZoom> PanZoomRegistration;

#include "tst_PanZoom.moc"
