// SPDX-License-Identifier: MIT
#include "kit/SmoothSlider.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"

#include <QCursor>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QtTest>

#include <cmath>

/// A widget that counts the keys that its children leave to it.
class KeyCounter : public QWidget
{
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent*) override { ++keys; }
};

class tst_SmoothSlider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ClickPutsTheHandleThere_data();
    void ClickPutsTheHandleThere();
    void EveryPixelFollowsTheFormula();
    void HalvesGoAwayFromZero();
    void InvertedAppearanceCountsFromTheMaximum();
    void InvertedValueOutsideTheRangeIsRefused();
    void PressOnTheHandleHoldsIt();
    void OtherButtonsDoNotJump();
    void DragFollowsTheMouseWithoutEdges();
    void MoveWithoutAButtonChangesNothing();
    void ValueComesBeforeTheSignalAndOnlyOnChange();
    void PressOutsideClosesAFreeSliderAlone();
    void EscapeHidesTheSliderAlone();
    void OtherKeysGoToTheParent();

private:
    SmoothSlider* Show(int width, int minimum, int maximum);
    static QPoint HandleCentre(const SmoothSlider* slider);

    std::unique_ptr<KeyCounter> mParent;
};

void tst_SmoothSlider::init()
{
    QCursor::setPos(799, 599);
    QCoreApplication::processEvents();
    mParent = std::make_unique<KeyCounter>();
    mParent->resize(500, 80);
}

void tst_SmoothSlider::cleanup()
{
    InputEvents::Release(mParent.get(), QPoint(1, 1));
    mParent.reset();
}

SmoothSlider* tst_SmoothSlider::Show(int width, int minimum, int maximum)
{
    auto* slider = new SmoothSlider(Qt::Horizontal, mParent.get());
    slider->setGeometry(20, 20, width, 30);
    slider->setRange(minimum, maximum);
    mParent->show();
    if (!QTest::qWaitForWindowExposed(mParent.get()))
        return nullptr;
    return slider;
}

QPoint tst_SmoothSlider::HandleCentre(const SmoothSlider* slider)
{
    QStyleOptionSlider option;
    option.initFrom(slider);
    option.orientation = Qt::Horizontal;
    option.state |= QStyle::State_Horizontal;
    option.minimum = slider->minimum();
    option.maximum = slider->maximum();
    option.sliderPosition = slider->sliderPosition();
    option.sliderValue = slider->value();
    option.upsideDown = slider->invertedAppearance();
    return slider->style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider)
        .center();
}

void tst_SmoothSlider::ClickPutsTheHandleThere_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("value");
    QTest::newRow("first pixel") << 200 << 50 << 0 << 0;
    QTest::newRow("second pixel is behind the edge") << 200 << 50 << 1 << 1;
    QTest::newRow("middle") << 200 << 0 << 100 << 50;
    QTest::newRow("last pixel is before the edge") << 200 << 50 << 199 << 100;
    QTest::newRow("edge of two pixels at the left") << 400 << 50 << 1 << 0;
    QTest::newRow("behind that edge") << 400 << 50 << 2 << 1;
    QTest::newRow("before the right edge") << 400 << 50 << 398 << 100;
    QTest::newRow("narrow sliders have no edge") << 190 << 50 << 0 << 0;
}

void tst_SmoothSlider::ClickPutsTheHandleThere()
{
    QFETCH(int, width);
    QFETCH(int, start);
    QFETCH(int, x);
    SmoothSlider* const slider = Show(width, 0, 100);
    slider->setValue(start);
    InputEvents::Press(slider, QPoint(x, 15));
    QTEST(slider->value(), "value");
    QVERIFY(!slider->isSliderDown());
}

void tst_SmoothSlider::EveryPixelFollowsTheFormula()
{
    SmoothSlider* const slider = Show(450, -30, 4000);
    for (int x = 0; x < 450; ++x)
    {
        slider->setValue(x < 225 ? 4000 : -30);
        InputEvents::Press(slider, QPoint(x, 15));
        InputEvents::Release(slider, QPoint(x, 15));
        // The edge is two pixels wide.
        const double exact = -30 + 4030.0 * x / 450;
        const int expected = x < 2 ? -30 : x > 448 ? 4000 : static_cast<int>(std::floor(exact + 0.5));
        if (std::abs(exact + 0.5 - std::floor(exact + 0.5)) > 0.001)
            QCOMPARE(slider->value(), expected);
    }
}

void tst_SmoothSlider::HalvesGoAwayFromZero()
{
    SmoothSlider* const slider = Show(200, -100, 0);
    slider->setValue(-100);
    // -100 + 100 * 101 / 200 = -49.5
    InputEvents::Press(slider, QPoint(101, 15));
    QCOMPARE(slider->value(), -50);
}

void tst_SmoothSlider::InvertedAppearanceCountsFromTheMaximum()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    slider->setInvertedAppearance(true);
    slider->setValue(90);
    InputEvents::Press(slider, QPoint(150, 15));
    QCOMPARE(slider->value(), 25);
}

void tst_SmoothSlider::InvertedValueOutsideTheRangeIsRefused()
{
    SmoothSlider* const slider = Show(200, 50, 150);
    slider->setInvertedAppearance(true);
    slider->setValue(150);
    QSignalSpy positions(slider, SIGNAL(SliderPositionChanged()));
    // 150 - 125 lies below the minimum of 50.
    InputEvents::Press(slider, QPoint(150, 15));
    QCOMPARE(slider->value(), 150);
    QCOMPARE(positions.size(), 0);
}

void tst_SmoothSlider::PressOnTheHandleHoldsIt()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    slider->setValue(50);
    QSignalSpy positions(slider, SIGNAL(SliderPositionChanged()));
    const QPoint handle = HandleCentre(slider);
    InputEvents::Press(slider, handle + QPoint(3, 0));
    QVERIFY(slider->isSliderDown());
    QCOMPARE(slider->value(), 50);
    QCOMPARE(positions.size(), 0);
    InputEvents::Release(slider, handle);
    QVERIFY(!slider->isSliderDown());
}

void tst_SmoothSlider::OtherButtonsDoNotJump()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    slider->setValue(50);
    QSignalSpy positions(slider, SIGNAL(SliderPositionChanged()));
    InputEvents::Press(slider, QPoint(20, 15), Qt::RightButton);
    InputEvents::Release(slider, QPoint(20, 15), Qt::RightButton);
    QCOMPARE(slider->value(), 50);
    QCOMPARE(positions.size(), 0);
}

void tst_SmoothSlider::DragFollowsTheMouseWithoutEdges()
{
    SmoothSlider* const slider = Show(400, 0, 1000);
    slider->setValue(500);
    InputEvents::Press(slider, QPoint(100, 15));
    QCOMPARE(slider->value(), 250);
    InputEvents::Move(slider, QPoint(200, 15), Qt::LeftButton);
    QCOMPARE(slider->value(), 500);
    // A press at 399 would give the maximum.
    InputEvents::Move(slider, QPoint(399, 15), Qt::LeftButton);
    QCOMPARE(slider->value(), 998);
    // Outside the range nothing changes.
    InputEvents::Move(slider, QPoint(440, 15), Qt::LeftButton);
    QCOMPARE(slider->value(), 998);
    InputEvents::Release(slider, QPoint(440, 15));
    InputEvents::Press(slider, QPoint(10, 15), Qt::RightButton);
    InputEvents::Move(slider, QPoint(40, 15), Qt::RightButton);
    QCOMPARE(slider->value(), 100);
    InputEvents::Release(slider, QPoint(40, 15), Qt::RightButton);
}

void tst_SmoothSlider::MoveWithoutAButtonChangesNothing()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    slider->setMouseTracking(true);
    InputEvents::Move(slider, QPoint(100, 15));
    QCOMPARE(slider->value(), 0);
}

void tst_SmoothSlider::ValueComesBeforeTheSignalAndOnlyOnChange()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    slider->setValue(90);
    QStringList order;
    connect(slider, &QSlider::valueChanged, this, [&] { order << QStringLiteral("value"); });
    connect(slider, &SmoothSlider::SliderPositionChanged, this, [&] { order << QStringLiteral("position"); });
    InputEvents::Press(slider, QPoint(40, 15));
    QCOMPARE(order, (QStringList{"value", "position"}));
    InputEvents::Move(slider, QPoint(40, 16), Qt::LeftButton);
    QCOMPARE(order.size(), 2);
}

void tst_SmoothSlider::PressOutsideClosesAFreeSliderAlone()
{
    QMouseEvent press(QEvent::MouseButtonPress, QPoint(-20, -20), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    SmoothSlider* const child = Show(200, 0, 100);
    child->setValue(50);
    press.ignore();
    QCoreApplication::sendEvent(child, &press);
    QVERIFY(press.isAccepted());
    QVERIFY(child->isVisible());
    QCOMPARE(child->value(), 50);

    SmoothSlider alone(Qt::Horizontal);
    alone.setValue(50);
    alone.show();
    press.ignore();
    QCoreApplication::sendEvent(&alone, &press);
    QVERIFY(press.isAccepted());
    QVERIFY(!alone.isVisible());
    QCOMPARE(alone.value(), 50);

    // A pop-up that belongs to a widget is that widget's to close.
    SmoothSlider owned(Qt::Horizontal, mParent.get());
    owned.setWindowFlags(Qt::Popup);
    owned.show();
    press.ignore();
    QCoreApplication::sendEvent(&owned, &press);
    QVERIFY(press.isAccepted());
    QVERIFY(owned.isVisible());
}

void tst_SmoothSlider::EscapeHidesTheSliderAlone()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    QTest::keyClick(slider, Qt::Key_Escape);
    QVERIFY(!slider->isVisible());
    QVERIFY(mParent->isVisible());
    QCOMPARE(mParent->keys, 0);
}

void tst_SmoothSlider::OtherKeysGoToTheParent()
{
    SmoothSlider* const slider = Show(200, 0, 100);
    slider->setValue(50);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_A})
        QTest::keyClick(slider, key);
    QCOMPARE(slider->value(), 50);
    QCOMPARE(mParent->keys, 5);
}

static const TestRegistration<tst_SmoothSlider> SmoothSliderRegistration;

#include "tst_SmoothSlider.moc"
