// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "viewers/SoftwareViewer.h"
#include "viewers/ViewerWidgetProbe.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

/// The private operation that nothing in the library calls, found as the language allows: access is not
/// checked where a template is instantiated by name.
struct SetZoomKey
{
    using Type = void (ViewerWidget::*)(float);
    friend Type Find(SetZoomKey);
};

template<typename Key, typename Key::Type Member>
struct Opened
{
    friend typename Key::Type Find(Key) { return Member; }
};

template struct Opened<SetZoomKey, &ViewerWidget::SetZoom>;

/// Where the back end of a viewer must stand, one axis at a time, and what the running pan must be.
struct ExpectedAxis
{
    ExpectedAxis(int length, float zoom, double committed, int drag)
    {
        extent = int(std::floor(double(length) * double(zoom) + 0.5));
        const float half = float(extent - length) / 2.0f;
        float delta = half == 0.0f ? 0.0f : 1.0f - (half - float(std::abs(drag))) / half;
        if (drag < 0)
            delta = -delta;
        current = std::min(1.0, std::max(-1.0, committed + double(delta)));
        start = length / 2 - extent / 2 + int(std::trunc(double(half) * current));
    }

    int extent = 0;
    int start = 0;
    double current = 0.0;
};

} // namespace

class tst_ViewerWidgetPanZoom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void StartsUnzoomedAndFilled();
    void RandomPansAndZoomsMatchTheSecondStatement_data();
    void RandomPansAndZoomsMatchTheSecondStatement();
    void PanOfFiveClampsToOne();
    void ZoomOfAHalfBecomesOneWithoutAPan();
    void ZoomIsCappedAtTheMaximum();
    void NotANumberIsTakenAsNoZoomAndNoPan();
    void DisabledTheBackEndFillsTheWidget();
    void TheSamePanAndZoomAgainDoNothing_data();
    void TheSamePanAndZoomAgainDoNothing();
    void EachDifferenceAloneIsTaken_data();
    void EachDifferenceAloneIsTaken();
    void AResizePlacesTheBackEndAgain();
    void WheelAsksForATenthMore();
    void WheelAsksForATenthLess();
    void WheelChangesNothingByItself();
    void SteppingDownToOneAsksForNoPan();
    void SteppingUpAtTheMaximumAsksForNothing();
    void SteppingUpIsCappedAtTheMaximum();
    void SteppingDownAtOneAsksForNothingAndDropsThePan();
    void SetZoomAsksForItsValue_data();
    void SetZoomAsksForItsValue();
    void OneWheelEventIsOneStep_data();
    void OneWheelEventIsOneStep();
    void OtherModifiersDontZoom_data();
    void OtherModifiersDontZoom();
    void WheelLeavesTheAcceptedFlagAlone();
    void WheelDuringAPanIsDropped();
    void APanShowsAtOnceAndIsAskedForAtItsEnd();
    void APanTurnsPanAndZoomOn();
    void APanReleasedWhereItStartedAsksForNothing();
    void APanWithoutAMoveAsksForTheLastOne();
    void ASecondPanGoesOnFromTheFirst();
    void AMiddlePressAtZoomOneStartsNoPan();
    void OtherModifiersDontPan_data();
    void OtherModifiersDontPan();
    void MovesWithOtherButtonsAreLeftAlone();
    void AMoveWithoutAPanLeavesTheAcceptedFlagAlone();

private:
    QWidget* BackEnd() const { return mViewer->findChild<SoftwareViewer*>(); }

    std::unique_ptr<ViewerWidgetProbe> mViewer;
};

void tst_ViewerWidgetPanZoom::init()
{
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = false;
    Settings::panZoomMouseControls = true;
    Settings::zoomMaximum = 8.0f;
    mViewer = std::make_unique<ViewerWidgetProbe>();
    mViewer->resize(400, 300);
    mViewer->show();
}

void tst_ViewerWidgetPanZoom::StartsUnzoomedAndFilled()
{
    QCOMPARE(BackEnd()->geometry(), QRect(0, 0, 400, 300));
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][0].toPointF() == QPointF(0, 0));
    QVERIFY(spy[0][1].toFloat() == 1.0f + 0.1f);
    QCOMPARE(spy[0][2].toBool(), true);
}

void tst_ViewerWidgetPanZoom::RandomPansAndZoomsMatchTheSecondStatement_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 30; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_ViewerWidgetPanZoom::RandomPansAndZoomsMatchTheSecondStatement()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    QPointF pan;
    float zoom = 1.0f;
    bool enabled = false;
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    const auto verifyPlace = [&](const QPoint& drag)
    {
        const ExpectedAxis x(mViewer->width(), zoom, pan.x(), drag.x());
        const ExpectedAxis y(mViewer->height(), zoom, pan.y(), drag.y());
        QCOMPARE(BackEnd()->geometry(),
                 enabled ? QRect(x.start, y.start, x.extent, y.extent) : mViewer->rect());
    };
    for (int round = 0; round < 40; ++round)
    {
        if (random.bounded(3u) == 0)
            mViewer->resize(100 + int(random.bounded(900u)), 100 + int(random.bounded(700u)));
        pan = QPointF(random.generateDouble() * 2 - 1, random.generateDouble() * 2 - 1);
        zoom = 1.0001f + float(random.generateDouble()) * 6.9f;
        enabled = random.bounded(4u) != 0;
        mViewer->SetPanAndZoom(pan, zoom, enabled);
        verifyPlace(QPoint());
        const QPoint start(int(random.bounded(2000u)) - 1000, int(random.bounded(2000u)) - 1000);
        mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, start);
        verifyPlace(QPoint());
        QPoint drag;
        for (int move = 0; move < 5; ++move)
        {
            drag = QPoint(int(random.bounded(800u)) - 400, int(random.bounded(800u)) - 400);
            mViewer->Move(Qt::MiddleButton, start + drag);
            enabled = true;
            verifyPlace(drag);
        }
        mViewer->Release(Qt::MiddleButton, start + drag);
        const ExpectedAxis x(mViewer->width(), zoom, pan.x(), drag.x());
        const ExpectedAxis y(mViewer->height(), zoom, pan.y(), drag.y());
        QCOMPARE(spy.size(), 1);
        const QPointF asked = spy[0][0].toPointF();
        QVERIFY(asked.x() == x.current && asked.y() == y.current);
        QVERIFY(spy[0][1].toFloat() == zoom);
        QCOMPARE(spy[0][2].toBool(), true);
        spy.clear();
    }
}

void tst_ViewerWidgetPanZoom::PanOfFiveClampsToOne()
{
    mViewer->SetPanAndZoom(QPointF(5, -5), 2.0f, true);
    QCOMPARE(BackEnd()->geometry(), QRect(0, -300, 800, 600));
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    QVERIFY(spy[0][0].toPointF() == QPointF(1, -1));
}

void tst_ViewerWidgetPanZoom::ZoomOfAHalfBecomesOneWithoutAPan()
{
    mViewer->SetPanAndZoom(QPointF(0.5, 0.5), 2.0f, true);
    mViewer->SetPanAndZoom(QPointF(0.5, 0.5), 0.5f, true);
    QCOMPARE(BackEnd()->geometry(), QRect(0, 0, 400, 300));
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    QVERIFY(spy[0][0].toPointF() == QPointF(0, 0));
    QVERIFY(spy[0][1].toFloat() == 1.0f + 0.1f);
}

void tst_ViewerWidgetPanZoom::ZoomIsCappedAtTheMaximum()
{
    Settings::zoomMaximum = 3.0f;
    mViewer->SetPanAndZoom(QPointF(), 50.0f, true);
    QCOMPARE(BackEnd()->geometry(), QRect(-400, -300, 1200, 900));
}

void tst_ViewerWidgetPanZoom::NotANumberIsTakenAsNoZoomAndNoPan()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    mViewer->SetPanAndZoom(QPointF(nan, nan), 2.0f, true);
    QCOMPARE(BackEnd()->geometry(), QRect(-200, -150, 800, 600));
    mViewer->SetPanAndZoom(QPointF(), std::numeric_limits<float>::quiet_NaN(), true);
    QCOMPARE(BackEnd()->geometry(), QRect(0, 0, 400, 300));
}

void tst_ViewerWidgetPanZoom::DisabledTheBackEndFillsTheWidget()
{
    mViewer->SetPanAndZoom(QPointF(0.5, 0.5), 3.0f, false);
    QCOMPARE(BackEnd()->geometry(), QRect(0, 0, 400, 300));
    mViewer->SetPanAndZoom(QPointF(0.5, 0.5), 3.0f, true);
    QCOMPARE(BackEnd()->geometry(), QRect(-200, -150, 1200, 900));
}

void tst_ViewerWidgetPanZoom::TheSamePanAndZoomAgainDoNothing_data()
{
    QTest::addColumn<QPointF>("pan");
    QTest::newRow("equal") << QPointF(0.25, -0.5);
    QTest::newRow("within a trillionth") << QPointF(0.25 + 0.9e-12, -0.5 - 0.9e-12);
}

void tst_ViewerWidgetPanZoom::TheSamePanAndZoomAgainDoNothing()
{
    QFETCH(QPointF, pan);
    mViewer->SetPanAndZoom(QPointF(0.25, -0.5), 2.0f, true);
    // A back end moved from outside shows whether it was placed again.
    BackEnd()->move(3, 4);
    mViewer->SetPanAndZoom(pan, 2.0f, true);
    QCOMPARE(BackEnd()->pos(), QPoint(3, 4));
    // And nothing is stored either.
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    const QPointF stored = spy[0][0].toPointF();
    QVERIFY(stored.x() == 0.25 && stored.y() == -0.5);
}

void tst_ViewerWidgetPanZoom::EachDifferenceAloneIsTaken_data()
{
    QTest::addColumn<QPointF>("pan");
    QTest::addColumn<float>("zoom");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QRect>("place");
    QTest::newRow("pan x") << QPointF(0.5, -0.5) << 2.0f << true << QRect(-100, -225, 800, 600);
    QTest::newRow("pan y") << QPointF(0.25, 0.5) << 2.0f << true << QRect(-150, -75, 800, 600);
    QTest::newRow("a little over a trillionth")
        << QPointF(0.25 + 2e-12, -0.5) << 2.0f << true << QRect(-150, -225, 800, 600);
    QTest::newRow("zoom") << QPointF(0.25, -0.5) << 3.0f << true << QRect(-300, -450, 1200, 900);
    QTest::newRow("enabled") << QPointF(0.25, -0.5) << 2.0f << false << QRect(0, 0, 400, 300);
}

void tst_ViewerWidgetPanZoom::EachDifferenceAloneIsTaken()
{
    QFETCH(QPointF, pan);
    QFETCH(float, zoom);
    QFETCH(bool, enabled);
    QFETCH(QRect, place);
    mViewer->SetPanAndZoom(QPointF(0.25, -0.5), 2.0f, true);
    BackEnd()->move(3, 4);
    mViewer->SetPanAndZoom(pan, zoom, enabled);
    QCOMPARE(BackEnd()->geometry(), place);
}

void tst_ViewerWidgetPanZoom::AResizePlacesTheBackEndAgain()
{
    mViewer->SetPanAndZoom(QPointF(1, 0), 2.0f, true);
    mViewer->resize(200, 150);
    QCOMPARE(BackEnd()->geometry(), QRect(0, -75, 400, 300));
    mViewer->SetPanAndZoom(QPointF(1, 0), 2.0f, false);
    mViewer->resize(300, 200);
    QCOMPARE(BackEnd()->geometry(), QRect(0, 0, 300, 200));
}

void tst_ViewerWidgetPanZoom::WheelAsksForATenthMore()
{
    mViewer->SetPanAndZoom(QPointF(0.5, -0.25), 2.0f, false);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][0].toPointF() == QPointF(0.5, -0.25));
    QVERIFY(spy[0][1].toFloat() == 2.0f + 0.1f);
    QCOMPARE(spy[0][2].toBool(), true);
}

void tst_ViewerWidgetPanZoom::WheelAsksForATenthLess()
{
    mViewer->SetPanAndZoom(QPointF(0.5, -0.25), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, -120));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][0].toPointF() == QPointF(0.5, -0.25));
    QVERIFY(spy[0][1].toFloat() == 2.0f - 0.1f);
    QCOMPARE(spy[0][2].toBool(), true);
}

void tst_ViewerWidgetPanZoom::WheelChangesNothingByItself()
{
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 2);
    QVERIFY(spy[1][1].toFloat() == 2.0f + 0.1f);
    QCOMPARE(BackEnd()->geometry(), QRect(-200, -150, 800, 600));
}

void tst_ViewerWidgetPanZoom::SteppingDownToOneAsksForNoPan()
{
    mViewer->SetPanAndZoom(QPointF(0.5, 0.5), 1.05f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, -120));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][0].toPointF() == QPointF(0, 0));
    QVERIFY(spy[0][1].toFloat() == 1.0f);
    QCOMPARE(spy[0][2].toBool(), true);
    // The committed pan went at once, although the host did not answer.
    spy.clear();
    mViewer->Wheel(QPoint(0, 120));
    QVERIFY(spy[0][0].toPointF() == QPointF(0, 0));
    QVERIFY(spy[0][1].toFloat() == 1.05f + 0.1f);
}

void tst_ViewerWidgetPanZoom::SteppingUpAtTheMaximumAsksForNothing()
{
    Settings::zoomMaximum = 3.0f;
    mViewer->SetPanAndZoom(QPointF(), 3.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 0);
}

void tst_ViewerWidgetPanZoom::SteppingUpIsCappedAtTheMaximum()
{
    Settings::zoomMaximum = 3.0f;
    mViewer->SetPanAndZoom(QPointF(), 2.95f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][1].toFloat() == 3.0f);
}

void tst_ViewerWidgetPanZoom::SteppingDownAtOneAsksForNothingAndDropsThePan()
{
    // A pan that ends after the host went back to zoom 1 is committed there: what was on screen last counts.
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(0, 0));
    mViewer->Move(Qt::MiddleButton, QPoint(100, 75));
    mViewer->SetPanAndZoom(QPointF(), 1.0f, true);
    mViewer->Release(Qt::MiddleButton, QPoint(100, 75));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][0].toPointF() == QPointF(0.5, 0.5));
    QVERIFY(spy[0][1].toFloat() == 1.0f);
    spy.clear();
    mViewer->Wheel(QPoint(0, -120));
    QCOMPARE(spy.size(), 0);
    mViewer->Wheel(QPoint(0, 120));
    QVERIFY(spy[0][0].toPointF() == QPointF(0, 0));
}

void tst_ViewerWidgetPanZoom::SetZoomAsksForItsValue_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("asked");
    QTest::addColumn<QPointF>("pan");
    QTest::newRow("within") << 2.75f << 2.75f << QPointF(0.25, -0.5);
    QTest::newRow("too much") << 100.0f << 8.0f << QPointF(0.25, -0.5);
    QTest::newRow("one") << 1.0f << 1.0f << QPointF(0, 0);
    QTest::newRow("too little") << -3.0f << 1.0f << QPointF(0, 0);
    QTest::newRow("as it is") << 2.0f << 0.0f << QPointF();
}

void tst_ViewerWidgetPanZoom::SetZoomAsksForItsValue()
{
    QFETCH(float, value);
    QFETCH(float, asked);
    QFETCH(QPointF, pan);
    mViewer->SetPanAndZoom(QPointF(0.25, -0.5), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    (mViewer.get()->*Find(SetZoomKey()))(value);
    QCOMPARE(spy.size(), asked > 0.0f ? 1 : 0);
    if (asked > 0.0f)
    {
        QVERIFY(spy[0][0].toPointF() == pan);
        QVERIFY(spy[0][1].toFloat() == asked);
        QCOMPARE(spy[0][2].toBool(), true);
    }
    QCOMPARE(BackEnd()->geometry(), QRect(-150, -225, 800, 600));
}

void tst_ViewerWidgetPanZoom::OneWheelEventIsOneStep_data()
{
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<float>("zoom");
    QTest::newRow("an eighth of a degree") << QPoint(0, 1) << 2.0f + 0.1f;
    QTest::newRow("many notches") << QPoint(0, 1200) << 2.0f + 0.1f;
    QTest::newRow("many notches down") << QPoint(0, -1200) << 2.0f - 0.1f;
    QTest::newRow("sideways") << QPoint(120, 0) << 0.0f;
    QTest::newRow("nothing") << QPoint(0, 0) << 0.0f;
}

void tst_ViewerWidgetPanZoom::OneWheelEventIsOneStep()
{
    QFETCH(QPoint, angle);
    QFETCH(float, zoom);
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(angle);
    QCOMPARE(spy.size(), zoom > 0.0f ? 1 : 0);
    if (zoom > 0.0f)
        QVERIFY(spy[0][1].toFloat() == zoom);
}

void tst_ViewerWidgetPanZoom::OtherModifiersDontZoom_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("controls");
    QTest::newRow("none") << int(Qt::NoModifier) << true;
    QTest::newRow("Shift") << int(Qt::ShiftModifier) << true;
    QTest::newRow("Ctrl+Shift") << int(Qt::ControlModifier | Qt::ShiftModifier) << true;
    QTest::newRow("Ctrl+keypad") << int(Qt::ControlModifier | Qt::KeypadModifier) << true;
    QTest::newRow("Ctrl, controls off") << int(Qt::ControlModifier) << false;
}

void tst_ViewerWidgetPanZoom::OtherModifiersDontZoom()
{
    QFETCH(int, modifiers);
    QFETCH(bool, controls);
    Settings::panZoomMouseControls = controls;
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Wheel(QPoint(0, 120), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(spy.size(), 0);
}

void tst_ViewerWidgetPanZoom::WheelLeavesTheAcceptedFlagAlone()
{
    for (const bool accepted : {false, true})
    {
        for (const int angle : {-120, 0, 120})
        {
            QCOMPARE(mViewer->Wheel(QPoint(0, angle), Qt::ControlModifier, accepted), accepted);
            QCOMPARE(mViewer->Wheel(QPoint(0, angle), Qt::NoModifier, accepted), accepted);
        }
    }
}

void tst_ViewerWidgetPanZoom::WheelDuringAPanIsDropped()
{
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(50, 50));
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 0);
    mViewer->Release(Qt::MiddleButton, QPoint(50, 50));
    mViewer->Wheel(QPoint(0, 120));
    QCOMPARE(spy.size(), 1);
}

void tst_ViewerWidgetPanZoom::APanShowsAtOnceAndIsAskedForAtItsEnd()
{
    mViewer->SetPanAndZoom(QPointF(0.25, 0), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    QVERIFY(!mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(500, 500)));
    QVERIFY(mViewer->Move(Qt::MiddleButton, QPoint(520, 485), false));
    QCOMPARE(BackEnd()->pos(), QPoint(-200 + 70, -150 - 15));
    QCOMPARE(spy.size(), 0);
    QVERIFY(!mViewer->Release(Qt::MiddleButton, QPoint(520, 485)));
    QCOMPARE(spy.size(), 1);
    const QPointF pan = spy[0][0].toPointF();
    QVERIFY(std::abs(pan.x() - 0.35) < 1e-6 && std::abs(pan.y() + 0.1) < 1e-6);
    // What the host answers with is what is on screen already.
    mViewer->SetPanAndZoom(pan, 2.0f, true);
    QCOMPARE(BackEnd()->pos(), QPoint(-200 + 70, -150 - 15));
    // The drag is over: another move does nothing.
    mViewer->Move(Qt::MiddleButton, QPoint(600, 600));
    QCOMPARE(BackEnd()->pos(), QPoint(-200 + 70, -150 - 15));
}

void tst_ViewerWidgetPanZoom::APanTurnsPanAndZoomOn()
{
    mViewer->SetPanAndZoom(QPointF(), 2.0f, false);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(0, 0));
    QCOMPARE(BackEnd()->geometry(), QRect(0, 0, 400, 300));
    mViewer->Move(Qt::MiddleButton, QPoint(10, 0));
    QCOMPARE(BackEnd()->geometry(), QRect(-190, -150, 800, 600));
    mViewer->Release(Qt::MiddleButton, QPoint(10, 0));
    QCOMPARE(spy[0][2].toBool(), true);
}

void tst_ViewerWidgetPanZoom::APanReleasedWhereItStartedAsksForNothing()
{
    mViewer->SetPanAndZoom(QPointF(0.25, 0.5), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(5, 5));
    mViewer->Move(Qt::MiddleButton, QPoint(30, 40));
    mViewer->Move(Qt::MiddleButton, QPoint(5, 5));
    mViewer->Release(Qt::MiddleButton, QPoint(5, 5));
    QCOMPARE(spy.size(), 0);
}

void tst_ViewerWidgetPanZoom::APanWithoutAMoveAsksForTheLastOne()
{
    // Stepping down to 1 drops the committed pan, not the one on screen; the next release tells the host.
    mViewer->SetPanAndZoom(QPointF(0.5, 0.5), 1.05f, true);
    mViewer->Wheel(QPoint(0, -120));
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(5, 5));
    mViewer->Release(Qt::MiddleButton, QPoint(5, 5));
    QCOMPARE(spy.size(), 1);
    QVERIFY(spy[0][0].toPointF() == QPointF(0.5, 0.5));
    QVERIFY(spy[0][1].toFloat() == 1.05f);
}

void tst_ViewerWidgetPanZoom::ASecondPanGoesOnFromTheFirst()
{
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    for (const int way : {30, 40})
    {
        mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(100, 100));
        mViewer->Move(Qt::MiddleButton, QPoint(100 + way, 100));
        mViewer->Release(Qt::MiddleButton, QPoint(100 + way, 100));
    }
    mViewer->resize(401, 300);
    mViewer->resize(400, 300);
    QVERIFY(std::abs(BackEnd()->x() - (-200 + 70)) <= 1);
    QCOMPARE(BackEnd()->y(), -150);
}

void tst_ViewerWidgetPanZoom::AMiddlePressAtZoomOneStartsNoPan()
{
    mViewer->SetPanAndZoom(QPointF(), 1.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    QVERIFY(!mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(5, 5)));
    QVERIFY(!mViewer->Move(Qt::MiddleButton, QPoint(30, 40), false));
    // The host zooms in while the button is down: still no pan.
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    QVERIFY(!mViewer->Move(Qt::MiddleButton, QPoint(60, 40), false));
    QCOMPARE(BackEnd()->pos(), QPoint(-200, -150));
    QVERIFY(!mViewer->Release(Qt::MiddleButton, QPoint(60, 40)));
    QCOMPARE(spy.size(), 0);
}

void tst_ViewerWidgetPanZoom::OtherModifiersDontPan_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("controls");
    QTest::newRow("no modifier") << int(Qt::MiddleButton) << int(Qt::NoModifier) << true;
    QTest::newRow("Ctrl+Shift") << int(Qt::MiddleButton) << int(Qt::ControlModifier | Qt::ShiftModifier)
                                << true;
    QTest::newRow("controls off") << int(Qt::MiddleButton) << int(Qt::ControlModifier) << false;
    QTest::newRow("right button") << int(Qt::RightButton) << int(Qt::ControlModifier) << true;
    QTest::newRow("left button") << int(Qt::LeftButton) << int(Qt::ControlModifier) << true;
}

void tst_ViewerWidgetPanZoom::OtherModifiersDontPan()
{
    QFETCH(int, button);
    QFETCH(int, modifiers);
    QFETCH(bool, controls);
    Settings::panZoomMouseControls = controls;
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    mViewer->Press(Qt::MouseButton(button), Qt::KeyboardModifiers(modifiers), QPoint(5, 5));
    mViewer->Move(Qt::MiddleButton, QPoint(50, 50));
    QCOMPARE(BackEnd()->pos(), QPoint(-200, -150));
}

void tst_ViewerWidgetPanZoom::MovesWithOtherButtonsAreLeftAlone()
{
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(5, 5));
    for (const Qt::MouseButtons buttons :
         {Qt::MouseButtons(Qt::NoButton), Qt::MouseButtons(Qt::LeftButton), Qt::MouseButtons(Qt::RightButton),
          Qt::LeftButton | Qt::MiddleButton})
    {
        QVERIFY(!mViewer->Move(buttons, QPoint(50, 50), true));
        QCOMPARE(BackEnd()->pos(), QPoint(-200, -150));
    }
    // The pan is still running, and only the middle button's release ends it.
    mViewer->Release(Qt::RightButton, QPoint(5, 5));
    QVERIFY(mViewer->Move(Qt::MiddleButton, QPoint(15, 5), false));
    QCOMPARE(BackEnd()->pos(), QPoint(-190, -150));
}

void tst_ViewerWidgetPanZoom::AMoveWithoutAPanLeavesTheAcceptedFlagAlone()
{
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    for (const bool accepted : {false, true})
        QCOMPARE(mViewer->Move(Qt::MiddleButton, QPoint(50, 50), accepted), accepted);
}

static const TestRegistration<tst_ViewerWidgetPanZoom> ViewerWidgetPanZoomRegistration;

#include "tst_ViewerWidgetPanZoom.moc"
