// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/TimelinePropertiesWidget.h"

#include <QApplication>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

/// The user's edits of the form, by mouse and keys, and the requests that they make.
class tst_TimelinePropertiesEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mPanel.reset(); }

    void ArrowPressActsAtOnce_data();
    void ArrowPressActsAtOnce();
    void ArrowHeldRepeats();
    void ArrowOfTheOutBoxPullsTheInBox();
    void ArrowOfTheInBoxPushesTheOutBox();
    void AnAnswerDuringTheRequestIsShown();
    void StepsWithoutTheLeftButtonAloneWait_data();
    void StepsWithoutTheLeftButtonAloneWait();
    void WheelWaitsForTheEndOfTheEdit();
    void WheelWithTheLeftButtonDownActsAtOnce();
    void WheelOverTheTextActsOnlyAtTheEnd();
    void ArrowKeysWaitForTheEndOfTheEdit();
    void TypingWaitsForReturn_data();
    void TypingWaitsForReturn();
    void TypingWaitsForTheLossOfFocus();
    void CrossedRangeFollowsTheTypedEnd_data();
    void CrossedRangeFollowsTheTypedEnd();
    void CrossedRangeWithoutASenderFollowsTheInBox();
    void ValuesSetByProgramRequestNothing();
    void ButtonsAndBoxesRequest_data();
    void ButtonsAndBoxesRequest();
    void ReturnInThePathRequestsTheSource();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        return mPanel->findChild<Type*>(QLatin1String(name));
    }
    QPoint Up(const QWidget* box) const { return {box->width() - 6, box->height() / 4}; }
    QPoint Down(const QWidget* box) const { return {box->width() - 6, box->height() * 3 / 4}; }
    void Click(QWidget* widget, const QPoint& position);
    void Type(const char* box, const QString& text);

    std::unique_ptr<TimelinePropertiesWidget> mPanel;
};

void tst_TimelinePropertiesEdits::init()
{
    Settings::RestoreDefaults();
    QCursor::setPos(799, 599);
    mPanel = std::make_unique<TimelinePropertiesWidget>();
    mPanel->setGeometry(60, 60, 420, 460);
    mPanel->SetDisplayType(PropertiesDisplaySource);
    mPanel->findChild<QWidget*>("optionsGroup")->show();
    mPanel->SetFrameCount(240);
    mPanel->SetFrameRange(10, 20);
    mPanel->SetPanAndZoom(QPointF(0.5, -0.5), 2.0F, true);
    mPanel->SetSourceInput(NumberedID(3), "/a.mov", "");
    mPanel->show();
    mPanel->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mPanel.get()));
}

void tst_TimelinePropertiesEdits::Click(QWidget* widget, const QPoint& position)
{
    InputEvents::Press(widget, position);
    InputEvents::Release(widget, position);
}

void tst_TimelinePropertiesEdits::Type(const char* box, const QString& text)
{
    auto* const edit = Find<QAbstractSpinBox>(box)->findChild<QLineEdit*>();
    Click(edit, edit->rect().center());
    edit->selectAll();
    QTest::keyClicks(edit, text);
}

void tst_TimelinePropertiesEdits::ArrowPressActsAtOnce_data()
{
    QTest::addColumn<bool>("isUp");
    QTest::addColumn<QString>("request");
    QTest::newRow("inSpinBox") << true << "RangeChangeRequested(11, 20)";
    QTest::newRow("outSpinBox") << true << "RangeChangeRequested(10, 21)";
    QTest::newRow("panXSpinBox") << true << "PanZoomChangeRequested((0.6 -0.5), 2, true)";
    QTest::newRow("panYSpinBox") << false << "PanZoomChangeRequested((0.5 -0.6), 2, true)";
    QTest::newRow("zoomSpinBox") << false << "PanZoomChangeRequested((0.5 -0.5), 1.9, true)";
}

void tst_TimelinePropertiesEdits::ArrowPressActsAtOnce()
{
    QFETCH(bool, isUp);
    QFETCH(QString, request);
    auto* const box = Find<QAbstractSpinBox>(QTest::currentDataTag());
    CallLog log(mPanel.get());
    const QPoint place = isUp ? Up(box) : Down(box);
    InputEvents::Press(box, place);
    QCOMPARE(log.Take(), QStringList{request});
    InputEvents::Release(box, place);
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelinePropertiesEdits::ArrowHeldRepeats()
{
    auto* const box = Find<QSpinBox>("inSpinBox");
    CallLog log(mPanel.get());
    InputEvents::Press(box, Down(box));
    QTRY_VERIFY(box->value() <= 6);
    InputEvents::Release(box, Down(box));
    QStringList expected;
    for (int in = 9; in >= box->value(); --in)
        expected << QStringLiteral("RangeChangeRequested(%1, 20)").arg(in);
    QCOMPARE(log.Take(), expected);
}

void tst_TimelinePropertiesEdits::ArrowOfTheOutBoxPullsTheInBox()
{
    mPanel->SetFrameRange(10, 10);
    CallLog log(mPanel.get());
    auto* const box = Find<QSpinBox>("outSpinBox");
    Click(box, Down(box));
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(9, 9)"});
    // The boxes wait for the host.
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 10);
}

void tst_TimelinePropertiesEdits::ArrowOfTheInBoxPushesTheOutBox()
{
    mPanel->SetFrameRange(10, 10);
    CallLog log(mPanel.get());
    auto* const box = Find<QSpinBox>("inSpinBox");
    Click(box, Up(box));
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(11, 11)"});
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 10);
}

void tst_TimelinePropertiesEdits::AnAnswerDuringTheRequestIsShown()
{
    connect(mPanel.get(), &TimelinePropertiesWidget::RangeChangeRequested, mPanel.get(),
            [this](int start, int end) { mPanel->SetFrameRange(start, end); });
    mPanel->SetFrameRange(10, 10);
    CallLog log(mPanel.get());
    auto* const box = Find<QSpinBox>("inSpinBox");
    Click(box, Up(box));
    Click(box, Up(box));
    const QStringList calls = {"RangeChangeRequested(11, 11)", "RangeChangeRequested(12, 12)"};
    QCOMPARE(log.Take(), calls);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 12);
}

void tst_TimelinePropertiesEdits::StepsWithoutTheLeftButtonAloneWait_data()
{
    QTest::addColumn<Qt::MouseButtons>("buttons");
    QTest::newRow("none") << Qt::MouseButtons(Qt::NoButton);
    QTest::newRow("middle") << Qt::MouseButtons(Qt::MiddleButton);
    QTest::newRow("left and middle") << (Qt::LeftButton | Qt::MiddleButton);
}

void tst_TimelinePropertiesEdits::StepsWithoutTheLeftButtonAloneWait()
{
    QFETCH(Qt::MouseButtons, buttons);
    CallLog log(mPanel.get());
    auto* const box = Find<QSpinBox>("inSpinBox");
    InputEvents::Move(box, Up(box));
    if (buttons & Qt::MiddleButton)
        InputEvents::Press(box, Up(box), Qt::MiddleButton);
    if (buttons & Qt::LeftButton)
    {
        const QPoint global = box->mapToGlobal(Up(box));
        qt_handleMouseEvent(mPanel->windowHandle(), mPanel->mapFromGlobal(global), global, buttons,
                            Qt::LeftButton, QEvent::MouseButtonPress, Qt::NoModifier, 1);
        QCoreApplication::processEvents();
    }
    else
    {
        box->stepUp();
    }
    QVERIFY(box->underMouse());
    QCOMPARE(QGuiApplication::mouseButtons(), buttons);
    QCOMPARE(box->value(), 11);
    QVERIFY(log.Take().isEmpty());
    InputEvents::Release(box, Up(box));
    InputEvents::Release(box, Up(box), Qt::MiddleButton);
}

void tst_TimelinePropertiesEdits::WheelWaitsForTheEndOfTheEdit()
{
    CallLog log(mPanel.get());
    auto* const box = Find<QSpinBox>("inSpinBox");
    box->setFocus();
    InputEvents::Move(box, Up(box));
    QVERIFY(InputEvents::Wheel(box, Up(box), 120));
    QCOMPARE(box->value(), 11);
    QVERIFY(log.Take().isEmpty());
    Find<QSpinBox>("outSpinBox")->setFocus();
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(11, 20)"});
}

void tst_TimelinePropertiesEdits::WheelWithTheLeftButtonDownActsAtOnce()
{
    auto* const box = Find<QSpinBox>("inSpinBox");
    mPanel->SetFrameRange(240, 240);
    CallLog log(mPanel.get());
    // At the end of the range the press itself changes nothing.
    InputEvents::Press(box, Up(box));
    QVERIFY(log.Take().isEmpty());
    QVERIFY(InputEvents::Wheel(box, Up(box), -120));
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(239, 240)"});
    InputEvents::Release(box, Up(box));
}

void tst_TimelinePropertiesEdits::WheelOverTheTextActsOnlyAtTheEnd()
{
    auto* const box = Find<QSpinBox>("inSpinBox");
    auto* const edit = box->findChild<QLineEdit*>();
    CallLog log(mPanel.get());
    InputEvents::Press(edit, edit->rect().center());
    QVERIFY(edit->underMouse() && box->underMouse());
    QVERIFY(InputEvents::Wheel(box, Up(box), 120));
    QCOMPARE(box->value(), 11);
    QVERIFY(log.Take().isEmpty());
    InputEvents::Release(edit, edit->rect().center());
}

void tst_TimelinePropertiesEdits::ArrowKeysWaitForTheEndOfTheEdit()
{
    CallLog log(mPanel.get());
    auto* const box = Find<QDoubleSpinBox>("panXSpinBox");
    auto* const edit = box->findChild<QLineEdit*>();
    Click(edit, edit->rect().center());
    QTest::keyClick(box, Qt::Key_Up);
    QCOMPARE(box->value(), 0.6);
    QVERIFY(log.Take().isEmpty());
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(log.Take(), QStringList{"PanZoomChangeRequested((0.6 -0.5), 2, true)"});
}

void tst_TimelinePropertiesEdits::TypingWaitsForReturn_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("request");
    QTest::newRow("inSpinBox") << "15"
                               << "RangeChangeRequested(15, 20)";
    QTest::newRow("outSpinBox") << "115"
                                << "RangeChangeRequested(10, 115)";
    QTest::newRow("panXSpinBox") << "-0.75"
                                 << "PanZoomChangeRequested((-0.75 -0.5), 2, true)";
    QTest::newRow("panYSpinBox") << "0.25"
                                 << "PanZoomChangeRequested((0.5 0.25), 2, true)";
    QTest::newRow("zoomSpinBox") << "3.5"
                                 << "PanZoomChangeRequested((0.5 -0.5), 3.5, true)";
}

void tst_TimelinePropertiesEdits::TypingWaitsForReturn()
{
    QFETCH(QString, text);
    QFETCH(QString, request);
    CallLog log(mPanel.get());
    Type(QTest::currentDataTag(), text);
    QVERIFY(log.Take().isEmpty());
    QTest::keyClick(Find<QAbstractSpinBox>(QTest::currentDataTag()), Qt::Key_Return);
    QCOMPARE(log.Take(), QStringList{request});
}

void tst_TimelinePropertiesEdits::TypingWaitsForTheLossOfFocus()
{
    CallLog log(mPanel.get());
    Type("inSpinBox", "5");
    QVERIFY(log.Take().isEmpty());
    Find<QLineEdit>("sourcePathEdit")->setFocus();
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(5, 20)"});
}

void tst_TimelinePropertiesEdits::CrossedRangeFollowsTheTypedEnd_data()
{
    QTest::addColumn<int>("in");
    QTest::addColumn<int>("out");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("request");
    QTest::newRow("outSpinBox") << 10 << 20 << "5"
                                << "RangeChangeRequested(5, 5)";
    QTest::newRow("inSpinBox") << 1 << 5 << "10"
                               << "RangeChangeRequested(10, 10)";
}

void tst_TimelinePropertiesEdits::CrossedRangeFollowsTheTypedEnd()
{
    QFETCH(int, in);
    QFETCH(int, out);
    QFETCH(QString, typed);
    QFETCH(QString, request);
    mPanel->SetFrameRange(in, out);
    CallLog log(mPanel.get());
    Type(QTest::currentDataTag(), typed);
    QTest::keyClick(Find<QSpinBox>(QTest::currentDataTag()), Qt::Key_Return);
    QCOMPARE(log.Take(), QStringList{request});
}

void tst_TimelinePropertiesEdits::CrossedRangeWithoutASenderFollowsTheInBox()
{
    mPanel->SetFrameRange(10, 5);
    CallLog log(mPanel.get());
    mPanel->RequestRangeChange();
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(10, 10)"});
    mPanel->SetFrameRange(7, 7);
    mPanel->RequestRangeChange();
    QCOMPARE(log.Take(), QStringList{"RangeChangeRequested(7, 7)"});
}

void tst_TimelinePropertiesEdits::ValuesSetByProgramRequestNothing()
{
    CallLog log(mPanel.get());
    Find<QSpinBox>("inSpinBox")->setValue(15);
    Find<QSpinBox>("outSpinBox")->setValue(16);
    for (const char* name : {"panXSpinBox", "panYSpinBox", "zoomSpinBox"})
        Find<QDoubleSpinBox>(name)->setValue(1.0);
    Find<QCheckBox>("panZoomEnabledCheckBox")->setChecked(false);
    Find<QCheckBox>("applySourceRangesCheckBox")->setChecked(false);
    Find<QCheckBox>("showRelativePathCheckBox")->setChecked(true);
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelinePropertiesEdits::ButtonsAndBoxesRequest_data()
{
    QTest::addColumn<QString>("request");
    QTest::newRow("replaceButton") << "SourceChangeRequested(#3, , /a.mov)";
    QTest::newRow("resetRangeButton") << "RangeChangeRequested(1, 240)";
    QTest::newRow("resetPanZoomButton") << "PanZoomChangeRequested((0 0), 1, false)";
    QTest::newRow("panZoomEnabledCheckBox") << "PanZoomChangeRequested((0.5 -0.5), 2, false)";
    QTest::newRow("applySourceRangesCheckBox") << "UseSourceInOutsChanged(false)";
}

void tst_TimelinePropertiesEdits::ButtonsAndBoxesRequest()
{
    QFETCH(QString, request);
    auto* const button = Find<QAbstractButton>(QTest::currentDataTag());
    CallLog log(mPanel.get());
    Click(button, QPoint(8, button->height() / 2));
    QCOMPARE(log.Take(), QStringList{request});
    // What the boxes show is left to the host.
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 10);
    QCOMPARE(Find<QDoubleSpinBox>("panXSpinBox")->value(), 0.5);
    QCOMPARE(Find<QDoubleSpinBox>("zoomSpinBox")->value(), 2.0);
}

void tst_TimelinePropertiesEdits::ReturnInThePathRequestsTheSource()
{
    auto* const edit = Find<QLineEdit>("sourcePathEdit");
    CallLog log(mPanel.get());
    Click(edit, edit->rect().center());
    edit->selectAll();
    QTest::keyClicks(edit, "/b.mov");
    QVERIFY(log.Take().isEmpty());
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(log.Take(), QStringList{"SourceChangeRequested(#3, /b.mov, )"});
    // Losing focus alone is no request.
    QTest::keyClicks(edit, "x");
    Find<QSpinBox>("inSpinBox")->setFocus();
    QVERIFY(log.Take().isEmpty());
}

static const TestRegistration<tst_TimelinePropertiesEdits> TimelinePropertiesEditsRegistration;

#include "tst_TimelinePropertiesEdits.moc"
