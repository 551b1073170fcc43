// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "playback/VolumeState.h"
#include "project/ProjectTimeline.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PanelArea.h"
#include "window/PlayerProbe.h"
#include "window/PlayerState.h"
#include "window/PlayerWindow.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QStatusBar>
#include <QToolTip>
#include <QtTest>

/// The bars in the player, worked with the mouse.
class tst_PlayerBars : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void TheToolsComeAndGoWithDrawing();
    void EachToolButtonPicksItsTool_data();
    void EachToolButtonPicksItsTool();
    void TheToolsMoveToTheOtherSide();
    void AToolsWidthIsPickedFromItsSlider();
    void GhostCountsArePickedFromTheMenu();
    void ToolTipsNameTheKeys();
    void ToolTipsHaveTheColoursOfThePalette();
    void LoopTypesArePickedAndAct();
    void LayoutsArePickedAndShown();
    void TheWedgeSetsTheVolume();
    void MuteIsToggled();
    void PanelsAreToggled();
    void LinkedPanelsGoTogether();
    void BookmarkButtonsAreNamedInTheStatusBar();
    void TheBarsFitInASmallWindow();
    void ARestartBringsAllBack();
    void AWildStateFileIsHarmless();

private:
    QWidget* Part(const char* name) const { return PlayerProbe::Part(mWindow.get(), name); }
    void Click(const char* name) { PlayerProbe::Click(Part(name)); }
    void Run(const char* command) { QVERIFY(mWindow->Commands()->Run(QLatin1String(command))); }
    /// Right-clicks @p name and picks @p text from the menu that opens.
    bool PickFromMenu(QWidget* widget, const QPoint& place, const QString& text);
    QPoint PlaceInWindow(const QWidget* widget) const { return widget->mapTo(mWindow.get(), QPoint(0, 0)); }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerBars::init()
{
    Settings::RestoreDefaults();
    QFile::remove(PlayerState::Path());
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
}

void tst_PlayerBars::cleanup()
{
    mWindow.reset();
    QFile::remove(PlayerState::Path());
    Settings::RestoreDefaults();
}

bool tst_PlayerBars::PickFromMenu(QWidget* widget, const QPoint& place, const QString& text)
{
    bool picked = false;
    QTimer::singleShot(100, this,
                       [&]
                       {
                           auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                           if (!menu)
                               return;
                           for (QAction* const action : menu->actions())
                           {
                               if (action->text() != text)
                                   continue;
                               picked = true;
                               QTest::mouseClick(menu, Qt::LeftButton, {},
                                                 menu->actionGeometry(action).center());
                               return;
                           }
                           menu->close();
                       });
    InputEvents::Press(widget, place, Qt::RightButton);
    InputEvents::Release(widget, place, Qt::RightButton);
    return QTest::qWaitFor([&] { return picked && !QApplication::activePopupWidget(); }, 3000);
}

void tst_PlayerBars::TheToolsComeAndGoWithDrawing()
{
    QWidget* const strip = Part("annotationTools");
    QVERIFY(!strip->isVisible());
    QVERIFY(!Settings::drawEnabled);
    QCOMPARE(mWindow->Viewer()->cursor().shape(), Qt::ArrowCursor);
    Click("toggleAnnotationToolsButton");
    QVERIFY(strip->isVisible());
    QVERIFY(Settings::drawEnabled);
    QCOMPARE(mWindow->Viewer()->cursor().shape(), Qt::CrossCursor);
    QVERIFY(mWindow->Commands()->Action(QStringLiteral("annotate.draw"))->isChecked());
    Click("textButton");
    QCOMPARE(mWindow->Viewer()->cursor().shape(), Qt::IBeamCursor);
    Click("toggleAnnotationToolsButton");
    QVERIFY(!strip->isVisible());
    QVERIFY(!Settings::drawEnabled);
    QTest::keyClick(mWindow.get(), Qt::Key_D);
    QVERIFY(strip->isVisible());
    QTest::keyClick(mWindow.get(), Qt::Key_D);
    QVERIFY(!Settings::drawEnabled);
}

void tst_PlayerBars::EachToolButtonPicksItsTool_data()
{
    QTest::addColumn<int>("tool");
    QTest::addColumn<float>("width");
    QTest::newRow("pencil") << int(Pencil) << 0.01f;
    QTest::newRow("eraser") << int(Eraser) << 0.02f;
    QTest::newRow("text") << int(Text) << 0.03f;
    QTest::newRow("arrow") << int(Arrow) << 0.04f;
    QTest::newRow("rectangle") << int(Rectangle) << 0.05f;
    QTest::newRow("oval") << int(Oval) << 0.06f;
    QTest::newRow("eyedropper") << int(Eyedropper) << 0.0f;
}

void tst_PlayerBars::EachToolButtonPicksItsTool()
{
    QFETCH(int, tool);
    QFETCH(float, width);
    Settings::pencilWidth = 0.01f;
    Settings::eraserWidth = 0.02f;
    Settings::textWidth = 0.03f;
    Settings::arrowWidth = 0.04f;
    Settings::rectangleWidth = 0.05f;
    Settings::ovalWidth = 0.06f;
    Run("annotate.draw");
    Click(qPrintable(QLatin1String(QTest::currentDataTag()) + QStringLiteral("Button")));
    QCOMPARE(int(Settings::annotationTool), tool);
    QCOMPARE(Settings::drawWidth, width);
    // The key does the same, from hidden tools too.
    Settings::annotationTool = tool == Pencil ? Eraser : Pencil;
    Run("annotate.draw");
    const QAction* const action =
        mWindow->Commands()->Action(QStringLiteral("annotate.") + QLatin1String(QTest::currentDataTag()));
    QTest::keyClick(mWindow.get(), static_cast<Qt::Key>(action->shortcut()[0]));
    QCOMPARE(int(Settings::annotationTool), tool);
    QCOMPARE(Settings::drawWidth, width);
    QVERIFY(Settings::drawEnabled);
}

void tst_PlayerBars::TheToolsMoveToTheOtherSide()
{
    Run("annotate.draw");
    QWidget* const strip = Part("annotationTools");
    QVERIFY(PlaceInWindow(strip).x() < PlaceInWindow(mWindow->Viewer()).x());
    QVERIFY(PickFromMenu(strip, QPoint(15, strip->height() - 10), QStringLiteral("Position Tools at Right")));
    QCoreApplication::processEvents();
    QVERIFY(Settings::annotationToolsAtRight);
    QVERIFY(PlaceInWindow(strip).x() > PlaceInWindow(mWindow->Viewer()).x());
    QVERIFY(strip->isVisible());
    QVERIFY(Settings::drawEnabled);
    Settings::annotationToolsAtRight = false;
    QVERIFY(Settings::ReadUserConfig());
    QVERIFY(Settings::annotationToolsAtRight);
    Run("annotate.toolsAtRight");
    QCoreApplication::processEvents();
    QVERIFY(PlaceInWindow(strip).x() < PlaceInWindow(mWindow->Viewer()).x());
}

void tst_PlayerBars::AToolsWidthIsPickedFromItsSlider()
{
    Run("annotate.pencil");
    QWidget* const eraser = Part("eraserButton");
    InputEvents::Press(eraser, eraser->rect().center(), Qt::RightButton);
    InputEvents::Release(eraser, eraser->rect().center(), Qt::RightButton);
    QWidget* slider = nullptr;
    for (QWidget* const widget : QApplication::topLevelWidgets())
    {
        if (widget->objectName() == QLatin1String("widthSlider") && widget->isVisible())
            slider = widget;
    }
    QVERIFY(slider);
    InputEvents::Press(slider, QPoint(80, 13));
    InputEvents::Release(slider, QPoint(80, 13));
    // Half the way from 2 to 99 steps.
    QCOMPARE(Settings::eraserWidth, 51.0f / 2000.0f);
    QCOMPARE(Settings::pencilWidth, 0.004f);
    QCOMPARE(Settings::drawWidth, 0.004f);
    slider->close();
    Click("eraserButton");
    QCOMPARE(Settings::drawWidth, 51.0f / 2000.0f);
}

void tst_PlayerBars::GhostCountsArePickedFromTheMenu()
{
    Run("annotate.draw");
    QVERIFY(PickFromMenu(Part("ghostPreviousButton"), QPoint(13, 13), QStringLiteral("5")));
    QCOMPARE(Settings::annotationGhostPreviousNumFrames, 5);
    QVERIFY(PickFromMenu(Part("ghostNextButton"), QPoint(13, 13), QStringLiteral("1")));
    QCOMPARE(Settings::annotationGhostNextNumFrames, 1);
    Click("ghostNextButton");
    QVERIFY(Settings::annotationGhostNext);
    QVERIFY(!Settings::annotationGhostPrevious);
}

void tst_PlayerBars::ToolTipsNameTheKeys()
{
    QCOMPARE(Part("pencilButton")->toolTip(), QStringLiteral("Pencil (P)"));
    QCOMPARE(Part("rectangleButton")->toolTip(), QStringLiteral("Rectangle (R)"));
    QCOMPARE(Part("ghostNextButton")->toolTip(), QStringLiteral("Ghost Next (Shift+G)"));
    for (KeySequence* const sequence : mWindow->Commands()->Keys()->GetKeySequences())
    {
        if (sequence->name == QLatin1String("annotate.pencil"))
            sequence->currentSequences = {QKeySequence(Qt::CTRL + Qt::Key_9)};
        else if (sequence->name == QLatin1String("annotate.oval"))
            sequence->currentSequences = {QKeySequence()};
    }
    mWindow->Commands()->ApplyKeys();
    QCOMPARE(Part("pencilButton")->toolTip(), QStringLiteral("Pencil (Ctrl+9)"));
    QCOMPARE(Part("ovalButton")->toolTip(), QStringLiteral("Oval"));
}

void tst_PlayerBars::ToolTipsHaveTheColoursOfThePalette()
{
    Settings::drawColor = QColor(255, 0, 255);
    Run("annotate.draw");
    QWidget* const button = Part("colorButton");
    QHelpEvent event(QEvent::ToolTip, button->rect().center(), button->mapToGlobal(button->rect().center()));
    QApplication::sendEvent(button, &event);
    QVERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), QStringLiteral("Color Select"));
    QWidget* tip = nullptr;
    for (QWidget* const widget : QApplication::topLevelWidgets())
    {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            tip = widget;
    }
    QVERIFY(tip);
    const QImage picture = tip->grab().toImage();
    QVERIFY(QColor(picture.pixel(picture.width() / 2, 3)) != Settings::drawColor);
    QToolTip::hideText();
}

void tst_PlayerBars::LoopTypesArePickedAndAct()
{
    QWidget* const button = Part("loopButton");
    const struct
    {
        const char* name;
        LoopType type;
        const char* tip;
    } choices[] = {{"noLoopButton", NoLoop, "No Loop"},
                   {"pingPongButton", PingPong, "Ping Pong"},
                   {"loopOnButton", Loop, "Loop"}};
    for (const auto& choice : choices)
    {
        PlayerProbe::Click(button);
        QVERIFY(Part("loopSelectWidget")->isVisible());
        Click(choice.name);
        QVERIFY(!Part("loopSelectWidget")->isVisible());
        QCOMPARE(Settings::loopType, choice.type);
        QCOMPARE(button->toolTip(), QLatin1String(choice.tip));
    }
    QVERIFY(mWindow->Commands()->Action(QStringLiteral("playback.loop"))->isChecked());
    Run("playback.pingPong");
    QCOMPARE(button->toolTip(), QStringLiteral("Ping Pong"));
    // It holds for what plays.
    Run("playback.noLoop");
    mWindow->Playback()->SeekFrame(56);
    mWindow->Playback()->Play(1);
    QTRY_VERIFY(!mWindow->Playback()->IsPlaying());
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 60);
}

void tst_PlayerBars::LayoutsArePickedAndShown()
{
    const std::pair<const char*, ViewerLayout> choices[] = {{"viewerHorizontalButton", Horizontal},
                                                            {"viewerVerticalButton", Vertical},
                                                            {"viewerSingleButton", Single}};
    for (const auto& [name, layout] : choices)
    {
        Click("viewerButton");
        QVERIFY(Part("viewerSelectWidget")->isVisible());
        Click(name);
        QCOMPARE(mWindow->Viewer()->GetViewerLayout(), layout);
        QCOMPARE(Settings::viewerLayout, int(layout));
    }
    QTest::keyClick(mWindow.get(), Qt::Key_3);
    QCOMPARE(Part("viewerButton")->toolTip(), QStringLiteral("Vertical Viewer"));
}

void tst_PlayerBars::TheWedgeSetsTheVolume()
{
    QSignalSpy changes(mWindow->Volume(), SIGNAL(VolumeChanged(int)));
    QWidget* const wedge = Part("volumeSlider");
    InputEvents::Press(wedge, QPoint(41, 12));
    QCOMPARE(mWindow->Volume()->Volume(), 75);
    InputEvents::Move(wedge, QPoint(60, 12), Qt::LeftButton);
    QCOMPARE(mWindow->Volume()->Volume(), 109);
    InputEvents::Move(wedge, QPoint(500, 12), Qt::LeftButton);
    InputEvents::Release(wedge, QPoint(500, 12));
    QCOMPARE(mWindow->Volume()->Volume(), 150);
    QCOMPARE(changes.size(), 3);
    QCOMPARE(changes.last().at(0).toInt(), 150);
    for (int press = 0; press < 4; ++press)
        QTest::keyClick(mWindow.get(), Qt::Key_Down);
    QCOMPARE(mWindow->Volume()->Volume(), 110);
    QTest::keyClick(mWindow.get(), Qt::Key_Up);
    QCOMPARE(mWindow->Volume()->Volume(), 120);
    // The wedge follows: it is filled to four fifths.
    const QImage picture = wedge->grab().toImage();
    QVERIFY(QColor(picture.pixel(60, 20)).lightness() > 140);
    QVERIFY(QColor(picture.pixel(72, 15)).lightness() < 130 ||
            QColor(picture.pixel(72, 20)).lightness() < 130 ||
            picture.pixel(72, 20) != picture.pixel(60, 20));
}

void tst_PlayerBars::MuteIsToggled()
{
    QSignalSpy changes(mWindow->Volume(), SIGNAL(MutedChanged(bool)));
    Click("muteButton");
    QVERIFY(mWindow->Volume()->IsMuted());
    QCOMPARE(mWindow->Volume()->Gain(), 0.0f);
    QTest::keyClick(mWindow.get(), Qt::Key_M);
    QVERIFY(!mWindow->Volume()->IsMuted());
    QCOMPARE(mWindow->Volume()->Gain(), 1.0f);
    Click("muteButton");
    QVERIFY(mWindow->Commands()->Action(QStringLiteral("sound.mute"))->isChecked());
    // Who moves the wedge wants to hear it.
    InputEvents::Press(Part("volumeSlider"), QPoint(41, 12));
    InputEvents::Release(Part("volumeSlider"), QPoint(41, 12));
    QVERIFY(!mWindow->Volume()->IsMuted());
    QCOMPARE(changes.size(), 4);
}

void tst_PlayerBars::PanelsAreToggled()
{
    PanelArea* const panels = mWindow->Panels();
    for (const char* const name : {"project", "details", "properties"})
        panels->SetPanel(QLatin1String(name), new QWidget);
    Click("toggleProjectViewButton");
    QVERIFY(!panels->IsVisible(QStringLiteral("project")));
    QVERIFY(panels->IsVisible(QStringLiteral("details")));
    Click("toggleTimelineListViewButton");
    QVERIFY(!panels->IsVisible(QStringLiteral("details")));
    Run("view.properties");
    QVERIFY(!panels->IsVisible(QStringLiteral("properties")));
    QVERIFY(!mWindow->Commands()->Action(QStringLiteral("view.properties"))->isChecked());
    QTest::keyClick(mWindow.get(), Qt::Key_F5);
    QTest::keyClick(mWindow.get(), Qt::Key_F6);
    QVERIFY(panels->IsVisible(QStringLiteral("project")));
    QVERIFY(panels->IsVisible(QStringLiteral("details")));
}

void tst_PlayerBars::LinkedPanelsGoTogether()
{
    PanelArea* const panels = mWindow->Panels();
    for (const char* const name : {"project", "details"})
        panels->SetPanel(QLatin1String(name), new QWidget);
    Settings::linkProjectViewAndDetailsViewVisibility = true;
    mWindow->SyncBars();
    QVERIFY(Part("toggleTimelineListViewButton")->isHidden());
    Click("toggleProjectViewButton");
    QVERIFY(!panels->IsVisible(QStringLiteral("project")));
    QVERIFY(!panels->IsVisible(QStringLiteral("details")));
    Click("toggleProjectViewButton");
    QVERIFY(panels->IsVisible(QStringLiteral("project")));
    QVERIFY(panels->IsVisible(QStringLiteral("details")));
    Settings::linkProjectViewAndDetailsViewVisibility = false;
    mWindow->SyncBars();
    QVERIFY(!Part("toggleTimelineListViewButton")->isHidden());
}

void tst_PlayerBars::BookmarkButtonsAreNamedInTheStatusBar()
{
    const QImage expected = QImage(QStringLiteral(":/icons/annotation.png"));
    QVERIFY(!expected.isNull());
    InputEvents::Move(Part("addRangeBookmarkButton"), QPoint(8, 8));
    QCOMPARE(mWindow->statusBar()->currentMessage(), QStringLiteral("Add Range Bookmark"));
    QVERIFY(Part("addRangeBookmarkButton")->toolTip().isEmpty());
    InputEvents::Move(mWindow->Viewer(), QPoint(100, 100));
    QVERIFY(mWindow->statusBar()->currentMessage().isEmpty());
}

void tst_PlayerBars::TheBarsFitInASmallWindow()
{
    Run("annotate.draw");
    // What a screen of 1920 by 1080 leaves at a scale of 2.
    mWindow->resize(900, 480);
    QCoreApplication::processEvents();
    QVERIFY(mWindow->height() <= 480);
    QVERIFY(mWindow->Viewer()->height() >= 100);
    // The lowest tools are reached with the wheel.
    QWidget* const lowest = Part("clearAllButton");
    QVERIFY(lowest->visibleRegion().isEmpty());
    for (int step = 0; step < 5; ++step)
        InputEvents::Wheel(
            Part("annotationToolsArea")->findChild<QWidget*>(QStringLiteral("qt_scrollarea_viewport")),
            QPoint(15, 50), -120);
    QVERIFY(!lowest->visibleRegion().isEmpty());
}

void tst_PlayerBars::ARestartBringsAllBack()
{
    Run("annotate.arrow");
    Run("annotate.toolsAtRight");
    Run("annotate.wider");
    Settings::drawColor = QColor(12, 200, 34);
    Run("annotate.ghostNext");
    Run("playback.pingPong");
    Run("view.vertical");
    Run("view.bookmarksBar");
    mWindow->Volume()->SetVolume(42);
    mWindow->Volume()->SetMuted(true);
    const float width = Settings::arrowWidth;
    mWindow->close();
    mWindow.reset();

    Settings::RestoreDefaults();
    QVERIFY(Settings::ReadUserConfig());
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->resize(900, 700);
    mWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    QVERIFY(Part("annotationTools")->isVisible());
    QVERIFY(Settings::drawEnabled);
    QVERIFY(PlaceInWindow(Part("annotationTools")).x() > PlaceInWindow(mWindow->Viewer()).x());
    QCOMPARE(Settings::annotationTool, Arrow);
    QCOMPARE(Settings::arrowWidth, width);
    QCOMPARE(Settings::drawColor, QColor(12, 200, 34));
    QVERIFY(Settings::annotationGhostNext);
    QCOMPARE(Part("loopButton")->toolTip(), QStringLiteral("Ping Pong"));
    QCOMPARE(Part("viewerButton")->toolTip(), QStringLiteral("Vertical Viewer"));
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Vertical);
    QVERIFY(!Part("bookmarksBar")->isVisible());
    QCOMPARE(mWindow->Volume()->Volume(), 42);
    QVERIFY(mWindow->Volume()->IsMuted());
    QCOMPARE(QColor(Part("colorButton")->grab().toImage().pixel(13, 13)), Settings::drawColor);
}

void tst_PlayerBars::AWildStateFileIsHarmless()
{
    mWindow.reset();
    QFile file(PlayerState::Path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[sound]\nvolume=loud\nmuted=7up\n[annotationTools]\nvisible=maybe\n");
    file.close();
    mWindow = std::make_unique<PlayerWindow>();
    QCOMPARE(mWindow->Volume()->Volume(), 100);
    mWindow.reset();
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("[sound]\nvolume=-99999999999\n");
    file.close();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(mWindow->Volume()->Volume() >= 0 && mWindow->Volume()->Volume() <= 150);
}

static const TestRegistration<tst_PlayerBars> PlayerBarsRegistration;

#include "tst_PlayerBars.moc"
