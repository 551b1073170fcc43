// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "kit/SmoothSlider.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "toolbars/AnnotationWidget.h"
#include "toolbars/BarProbe.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include <functional>

/// What right clicks on the annotation strip open: the width slider and the menus.
class tst_AnnotationWidgetMenus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void SliderOpensBesideTheTool_data();
    void SliderOpensBesideTheTool();
    void SliderOfAnIdleToolLeavesThePenAlone();
    void SliderOfTheActiveToolMovesThePen();
    void OpeningRoundsTheWidthDown();
    void SliderIsAFreePopUp();
    void PressOutsideClosesTheSlider();
    void HidingTheStripHidesTheSlider();
    void OtherButtonsOpenNothing_data();
    void OtherButtonsOpenNothing();
    void GhostMenuOffersItsNumbers_data();
    void GhostMenuOffersItsNumbers();
    void ChosenNumberOfGhosts_data();
    void ChosenNumberOfGhosts();
    void GhostEntriesDoNotPileUp();
    void FreePlaceOffersThePosition_data();
    void FreePlaceOffersThePosition();
    void StripMayGoWhileItsMenuIsOpen();

private:
    FlatButton* Button(const char* name) const { return BarProbe::Button(mBar, name); }
    /// Right-clicks @p pos of @p widget and gives the menu that opens to @p use.
    void WithMenu(QWidget* widget, QPoint pos, const std::function<void(QMenu*)>& use);
    void RightClick(const char* button) { BarProbe::Click(Button(button), Qt::RightButton); }
    static void Choose(QMenu* menu, const QString& text);

    AnnotationWidget* mBar = nullptr;
    QPointer<SmoothSlider> mSlider;
    std::unique_ptr<BarHost> mHost;
};

void tst_AnnotationWidgetMenus::init()
{
    Settings::RestoreDefaults();
    mBar = new AnnotationWidget;
    mHost = std::make_unique<BarHost>(mBar, QRect(200, 10, 30, 400));
    // So that the menus find room below the mouse.
    mHost->move(60, 0);
    mSlider.clear();
    for (QWidget* widget : QApplication::topLevelWidgets())
    {
        if (widget->objectName() == QLatin1String("widthSlider"))
            mSlider = qobject_cast<SmoothSlider*>(widget);
    }
    QVERIFY(mSlider);
}

void tst_AnnotationWidgetMenus::cleanup()
{
    mHost.reset();
    // The strip owns its slider.
    QVERIFY(mSlider.isNull());
}

void tst_AnnotationWidgetMenus::WithMenu(QWidget* widget, QPoint pos, const std::function<void(QMenu*)>& use)
{
    bool used = false;
    QTimer::singleShot(50, QCoreApplication::instance(),
                       [&]
                       {
                           if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
                           {
                               used = true;
                               use(menu);
                           }
                           while (QWidget* left = QApplication::activePopupWidget())
                               left->close();
                       });
    InputEvents::Press(widget, pos, Qt::RightButton);
    QTest::qWait(60);
    QVERIFY2(used, "no menu opened");
}

void tst_AnnotationWidgetMenus::Choose(QMenu* menu, const QString& text)
{
    for (QAction* action : menu->actions())
    {
        if (action->text() == text)
        {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("no entry \"%1\"").arg(text)));
}

void tst_AnnotationWidgetMenus::SliderOpensBesideTheTool_data()
{
    QTest::addColumn<bool>("isAtRight");
    QTest::addColumn<QString>("button");
    for (const char* name :
         {"pencilButton", "eraserButton", "ovalButton", "rectangleButton", "arrowButton", "textButton"})
    {
        QTest::addRow("%s at the left", name) << false << QString(QLatin1String(name));
        QTest::addRow("%s at the right", name) << true << QString(QLatin1String(name));
    }
}

void tst_AnnotationWidgetMenus::SliderOpensBesideTheTool()
{
    QFETCH(bool, isAtRight);
    QFETCH(QString, button);
    Settings::annotationToolsAtRight = isAtRight;
    FlatButton* const tool = Button(button.toLatin1().constData());
    SignalLog log(mBar);
    BarProbe::Click(tool, Qt::RightButton);
    QVERIFY(mSlider->isVisible());
    const QPoint corner = tool->mapToGlobal(QPoint(0, 0));
    const int x = isAtRight ? corner.x() - 162 : corner.x() + 28;
    QCOMPARE(mSlider->geometry(), QRect(x, corner.y() + 2, 160, 26));
    QVERIFY(log.Take().isEmpty());
}

void tst_AnnotationWidgetMenus::SliderOfAnIdleToolLeavesThePenAlone()
{
    Settings::pencilWidth = 0.01f;
    mBar->ActivateEraser();
    const float pen = Settings::drawWidth;
    RightClick("pencilButton");
    QCOMPARE(mSlider->value(), 20);
    InputEvents::Press(mSlider, QPoint(80, 13));
    // 2 + 97 * 80 / 160 = 50.5
    QCOMPARE(mSlider->value(), 51);
    QCOMPARE(Settings::pencilWidth, 51 / 2000.0f);
    QCOMPARE(Settings::drawWidth, pen);
    QCOMPARE(Settings::eraserWidth, pen);
    InputEvents::Release(mSlider, QPoint(80, 13));
}

void tst_AnnotationWidgetMenus::SliderOfTheActiveToolMovesThePen()
{
    mBar->ActivateText();
    RightClick("textButton");
    InputEvents::Press(mSlider, QPoint(80, 13));
    InputEvents::Move(mSlider, QPoint(120, 13), Qt::LeftButton);
    QCOMPARE(Settings::textWidth, 75 / 2000.0f);
    QCOMPARE(Settings::drawWidth, 75 / 2000.0f);
    InputEvents::Release(mSlider, QPoint(120, 13));
    QVERIFY(mSlider->isVisible());
}

void tst_AnnotationWidgetMenus::OpeningRoundsTheWidthDown()
{
    // 20.8 steps
    Settings::arrowWidth = 0.0104f;
    RightClick("arrowButton");
    QCOMPARE(mSlider->value(), 20);
    QCOMPARE(Settings::arrowWidth, 20 / 2000.0f);
}

void tst_AnnotationWidgetMenus::SliderIsAFreePopUp()
{
    QVERIFY(mSlider->parent() == nullptr);
    QCOMPARE(mSlider->windowType(), Qt::Popup);
    QCOMPARE(mSlider->orientation(), Qt::Horizontal);
    QCOMPARE(mSlider->focusPolicy(), Qt::NoFocus);
    QCOMPARE(mSlider->minimum(), 2);
    QCOMPARE(mSlider->maximum(), 99);
    QCOMPARE(mSlider->minimumSize(), QSize(160, 26));
    QCOMPARE(mSlider->maximumSize(), QSize(160, 26));
}

void tst_AnnotationWidgetMenus::PressOutsideClosesTheSlider()
{
    RightClick("pencilButton");
    const float width = Settings::pencilWidth;
    InputEvents::Press(mSlider, QPoint(20, 120));
    QVERIFY(!mSlider->isVisible());
    QCOMPARE(Settings::pencilWidth, width);
    InputEvents::Release(mHost.get(), QPoint(1, 1));

    RightClick("pencilButton");
    QTest::keyClick(mSlider, Qt::Key_Escape);
    QVERIFY(!mSlider->isVisible());
    QVERIFY(mBar->isVisible());
}

void tst_AnnotationWidgetMenus::HidingTheStripHidesTheSlider()
{
    RightClick("pencilButton");
    QVERIFY(mSlider->isVisible());
    SignalLog log(mBar);
    mBar->hide();
    QVERIFY(!mSlider->isVisible());
    QCOMPARE(log.Take(), QStringList{"ToolChanged()"});
}

void tst_AnnotationWidgetMenus::OtherButtonsOpenNothing_data()
{
    QTest::addColumn<bool>("unused");
    for (const char* name :
         {"eyedropperButton", "colorButton", "undoButton", "redoButton", "clearButton", "clearAllButton"})
        QTest::newRow(name) << false;
}

void tst_AnnotationWidgetMenus::OtherButtonsOpenNothing()
{
    SignalLog log(mBar);
    bool opened = false;
    QTimer::singleShot(30, this,
                       [&]
                       {
                           while (QWidget* left = QApplication::activePopupWidget())
                           {
                               opened = true;
                               left->close();
                           }
                       });
    RightClick(QTest::currentDataTag());
    QTest::qWait(40);
    QVERIFY(!opened);
    QVERIFY(!mSlider->isVisible());
    QVERIFY(log.Take().isEmpty());
    QCOMPARE(mHost->contextMenus, 0);
}

void tst_AnnotationWidgetMenus::GhostMenuOffersItsNumbers_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("set");
    QTest::newRow("ghostPreviousButton") << 0 << 3;
    QTest::newRow("ghostNextButton") << 1 << 7;
}

void tst_AnnotationWidgetMenus::GhostMenuOffersItsNumbers()
{
    QFETCH(int, first);
    QFETCH(int, set);
    Settings::annotationGhostPreviousNumFrames = 3;
    Settings::annotationGhostNextNumFrames = 7;
    FlatButton* const button = Button(QTest::currentDataTag());
    WithMenu(button, QPoint(4, 5),
             [&](QMenu* menu)
             {
                 QCOMPARE(menu->pos(), button->mapToGlobal(QPoint(4, 5)));
                 QCOMPARE(menu->actions().size(), 10 - first);
                 for (int number = first; number < 10; ++number)
                 {
                     const QAction* const action = menu->actions().at(number - first);
                     QCOMPARE(action->text(), QString::number(number));
                     QCOMPARE(action->data().toInt(), number);
                     QVERIFY(action->isCheckable());
                     QCOMPARE(action->isChecked(), number == set);
                     QCOMPARE(action->parent(), mBar);
                 }
             });
    QCOMPARE(Settings::annotationGhostPreviousNumFrames, 3);
    QCOMPARE(Settings::annotationGhostNextNumFrames, 7);
}

void tst_AnnotationWidgetMenus::ChosenNumberOfGhosts_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("number");
    for (const int number : {0, 5, 9})
        QTest::addRow("%d before", number) << "ghostPreviousButton" << number;
    for (const int number : {1, 9})
        QTest::addRow("%d after", number) << "ghostNextButton" << number;
}

void tst_AnnotationWidgetMenus::ChosenNumberOfGhosts()
{
    QFETCH(QString, button);
    QFETCH(int, number);
    Settings::annotationGhostPreviousNumFrames = 42;
    Settings::annotationGhostNextNumFrames = 42;
    SignalLog log(mBar);
    WithMenu(Button(button.toLatin1().constData()), QPoint(4, 5),
             [&](QMenu* menu) { Choose(menu, QString::number(number)); });
    const bool isNext = button == QLatin1String("ghostNextButton");
    QCOMPARE(Settings::annotationGhostPreviousNumFrames, isNext ? 42 : number);
    QCOMPARE(Settings::annotationGhostNextNumFrames, isNext ? number : 42);
    QCOMPARE(log.Take(), QStringList{"GhostingChanged()"});
}

void tst_AnnotationWidgetMenus::GhostEntriesDoNotPileUp()
{
    for (int round = 0; round < 3; ++round)
        WithMenu(Button("ghostNextButton"), QPoint(4, 5), [](QMenu*) {});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(mBar->findChildren<QAction*>().size(), 1);
}

void tst_AnnotationWidgetMenus::FreePlaceOffersThePosition_data()
{
    QTest::addColumn<bool>("isAtRight");
    QTest::newRow("left") << false;
    QTest::newRow("right") << true;
}

void tst_AnnotationWidgetMenus::FreePlaceOffersThePosition()
{
    QFETCH(bool, isAtRight);
    Settings::annotationToolsAtRight = isAtRight;
    SignalLog log(mBar);
    WithMenu(mBar, QPoint(15, 390),
             [&](QMenu* menu)
             {
                 QCOMPARE(menu->actions().size(), 1);
                 const QAction* const action = menu->actions().first();
                 QCOMPARE(action->text(), QStringLiteral("Position Tools at Right"));
                 QCOMPARE(action->parent(), mBar);
                 QVERIFY(action->isCheckable());
                 QCOMPARE(action->isChecked(), isAtRight);
                 Choose(menu, action->text());
             });
    QCOMPARE(log.Take(),
             QStringList{QStringLiteral("PositionChangeRequested(%1)").arg(isAtRight ? "false" : "true")});
    // The setting is the host's to write.
    QCOMPARE(Settings::annotationToolsAtRight, isAtRight);
}

void tst_AnnotationWidgetMenus::StripMayGoWhileItsMenuIsOpen()
{
    WithMenu(Button("ghostNextButton"), QPoint(4, 5),
             [this](QMenu*)
             {
                 delete mBar;
                 mBar = nullptr;
             });
    QVERIFY(mBar == nullptr);
}

static const TestRegistration<tst_AnnotationWidgetMenus> AnnotationWidgetMenusRegistration;

#include "tst_AnnotationWidgetMenus.moc"
