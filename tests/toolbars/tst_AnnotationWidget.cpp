// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "toolbars/AnnotationWidget.h"
#include "toolbars/BarProbe.h"

#include <QApplication>
#include <QColorDialog>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>

#include <limits>

class tst_AnnotationWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mHost.reset(); }

    void ButtonsStandInTheirPlaces_data();
    void ButtonsStandInTheirPlaces();
    void ToolButtonActivatesItsTool_data();
    void ToolButtonActivatesItsTool();
    void EyedropperHasNoWidth();
    void SelectedToolsAndGhostsAreLit();
    void GhostSwitchesFlipTheirSetting();
    void RequestsLeaveAsSignals_data();
    void RequestsLeaveAsSignals();
    void SyncFollowsTheSettings();
    void ShowingAndHidingTell();
    void ColorDialogSetsTheColor();
    void CancelledColorDialogKeepsTheColor();
    void IncrementMovesTheActiveTool_data();
    void IncrementMovesTheActiveTool();
    void IncrementBringsAWildWidthIn_data();
    void IncrementBringsAWildWidthIn();
    void WidthIsNotBelowTheMinimum();
    void HotkeysNameTheTools();
    void GhostCountWithoutAnActionIsRefused();

private:
    FlatButton* Button(const char* name) const { return BarProbe::Button(mBar, name); }
    QString Lit() const;

    AnnotationWidget* mBar = nullptr;
    std::unique_ptr<BarHost> mHost;
};

namespace
{

const char* const ToolButtons[] = {"pencilButton", "eraserButton",     "textButton",     "arrowButton",
                                   "ovalButton",   "eyedropperButton", "rectangleButton"};

/// Opens the colour dialog by its button and gives it to @p use.
template<typename Use>
void WithColorDialog(FlatButton* button, const Use& use)
{
    bool used = false;
    QTimer::singleShot(50, button,
                       [&]
                       {
                           if (auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget()))
                           {
                               used = true;
                               use(dialog);
                           }
                       });
    BarProbe::Click(button);
    QVERIFY2(used, "no dialog opened");
}

} // namespace

void tst_AnnotationWidget::init()
{
    Settings::RestoreDefaults();
    Settings::annotationTool = Eyedropper;
    Settings::annotationGhostPrevious = false;
    Settings::annotationGhostNext = false;
    mBar = new AnnotationWidget;
    mHost = std::make_unique<BarHost>(mBar, QRect(10, 10, 30, 400));
}

/// The names of the buttons that are switched on.
QString tst_AnnotationWidget::Lit() const
{
    QStringList lit;
    for (const FlatButton* button : mBar->findChildren<FlatButton*>())
    {
        if (button->styleSheet().contains(QLatin1String("background-color : #1e1e1e;")))
            lit << button->objectName();
    }
    return lit.join(QLatin1Char(' '));
}

void tst_AnnotationWidget::ButtonsStandInTheirPlaces_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QString>("tooltip");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("isMirrored");
    QTest::addColumn<int>("side");
    QTest::newRow("pencilButton") << 0 << "Pencil Tool"
                                  << "pencil" << false << 20;
    QTest::newRow("eraserButton") << 1 << "Eraser Tool"
                                  << "eraser" << false << 20;
    QTest::newRow("textButton") << 2 << "Text Tool"
                                << "text" << false << 16;
    QTest::newRow("arrowButton") << 3 << "Arrow Tool"
                                 << "arrow" << false << 16;
    QTest::newRow("rectangleButton") << 4 << "Rectangle Tool"
                                     << "rectangle" << false << 18;
    QTest::newRow("ovalButton") << 5 << "Oval Tool"
                                << "oval" << false << 18;
    QTest::newRow("eyedropperButton") << 6 << "Color Picker Tool"
                                      << "eyedropper" << false << 16;
    QTest::newRow("colorButton") << 7 << "Color Select"
                                 << "" << false << 0;
    QTest::newRow("ghostPreviousButton") << 8 << "Ghost Previous"
                                         << "annotation_ghost" << true << 20;
    QTest::newRow("ghostNextButton") << 9 << "Ghost Next"
                                     << "annotation_ghost" << false << 20;
    QTest::newRow("undoButton") << 10 << "Undo"
                                << "undo" << false << 20;
    QTest::newRow("redoButton") << 11 << "Redo"
                                << "undo" << true << 20;
    QTest::newRow("clearButton") << 12 << "Clear Frame"
                                 << "clear" << false << 16;
    QTest::newRow("clearAllButton") << 13 << "Delete Bookmark"
                                    << "clearall" << false << 20;
}

void tst_AnnotationWidget::ButtonsStandInTheirPlaces()
{
    QFETCH(int, place);
    QFETCH(QString, tooltip);
    QFETCH(QString, icon);
    QFETCH(bool, isMirrored);
    QFETCH(int, side);
    Settings::annotationTool = static_cast<AnnotationToolType>(7);
    mBar->Sync();
    const FlatButton* const button = Button(QTest::currentDataTag());
    QVERIFY(button);
    QCOMPARE(button->geometry(), QRect(2, 26 * place, 26, 26));
    QCOMPARE(button->toolTip(), tooltip);
    QCOMPARE(button->accessibleName(), tooltip);
    QCOMPARE(mBar->minimumWidth(), 30);
    QCOMPARE(mBar->maximumWidth(), 30);
    QCOMPARE(mBar->findChildren<FlatButton*>().size(), 14);
    if (icon.isEmpty())
    {
        QVERIFY(button->pixmap(Qt::ReturnByValue).isNull());
        return;
    }
    const QByteArray difference =
        BarProbe::PictureDiffers(button, BarProbe::Icon(icon.toLatin1().constData(), side, isMirrored));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_AnnotationWidget::ToolButtonActivatesItsTool_data()
{
    QTest::addColumn<int>("tool");
    QTest::addColumn<float>("width");
    QTest::newRow("pencilButton") << int(Pencil) << 0.011f;
    QTest::newRow("eraserButton") << int(Eraser) << 0.012f;
    QTest::newRow("textButton") << int(Text) << 0.013f;
    QTest::newRow("arrowButton") << int(Arrow) << 0.014f;
    QTest::newRow("ovalButton") << int(Oval) << 0.015f;
    QTest::newRow("rectangleButton") << int(Rectangle) << 0.016f;
    QTest::newRow("eyedropperButton") << int(Eyedropper) << 0.0f;
}

void tst_AnnotationWidget::ToolButtonActivatesItsTool()
{
    QFETCH(int, tool);
    Settings::pencilWidth = 0.011f;
    Settings::eraserWidth = 0.012f;
    Settings::textWidth = 0.013f;
    Settings::arrowWidth = 0.014f;
    Settings::ovalWidth = 0.015f;
    Settings::rectangleWidth = 0.016f;
    Settings::drawWidth = 1.0f;
    SignalLog log(mBar);
    BarProbe::Click(Button(QTest::currentDataTag()));
    QCOMPARE(int(Settings::annotationTool), tool);
    QTEST(Settings::drawWidth, "width");
    QCOMPARE(log.Take(), QStringList{"ToolChanged()"});
    QCOMPARE(Lit(), QString(QLatin1String(QTest::currentDataTag())));
}

void tst_AnnotationWidget::EyedropperHasNoWidth()
{
    Settings::pencilWidth = 0.02f;
    mBar->ActivateEyedropper();
    QCOMPARE(Settings::drawWidth, 0.0f);
    QCOMPARE(Settings::pencilWidth, 0.02f);
    mBar->ActivatePencil();
    QCOMPARE(Settings::drawWidth, 0.02f);
}

void tst_AnnotationWidget::SelectedToolsAndGhostsAreLit()
{
    for (int tool = 0; tool < 7; ++tool)
    {
        Settings::annotationTool = static_cast<AnnotationToolType>(tool);
        mBar->Sync();
        QCOMPARE(Lit(), QString(QLatin1String(ToolButtons[tool])));
    }
    Settings::annotationTool = Pencil;
    Settings::annotationGhostNext = true;
    mBar->Sync();
    QCOMPARE(Lit(), QStringLiteral("pencilButton ghostNextButton"));
    // A lit picture is recoloured, whole, through its alpha.
    QImage expected = BarProbe::Icon("pencil", 20).convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < 20; ++y)
    {
        for (int x = 0; x < 20; ++x)
            expected.setPixel(x, y, qRgba(220, 220, 220, qAlpha(expected.pixel(x, y))));
    }
    const QByteArray difference = BarProbe::PictureDiffers(
        Button("pencilButton"), expected.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_AnnotationWidget::GhostSwitchesFlipTheirSetting()
{
    SignalLog log(mBar);
    BarProbe::Click(Button("ghostPreviousButton"));
    QVERIFY(Settings::annotationGhostPrevious);
    QVERIFY(!Settings::annotationGhostNext);
    QCOMPARE(Lit(), QStringLiteral("eyedropperButton ghostPreviousButton"));
    QCOMPARE(log.Take(), QStringList{"GhostingChanged()"});
    BarProbe::Click(Button("ghostNextButton"));
    QVERIFY(Settings::annotationGhostNext);
    QCOMPARE(log.Take(), QStringList{"GhostingChanged()"});
    BarProbe::Click(Button("ghostPreviousButton"));
    QVERIFY(!Settings::annotationGhostPrevious);
    QCOMPARE(Lit(), QStringLiteral("eyedropperButton ghostNextButton"));
}

void tst_AnnotationWidget::RequestsLeaveAsSignals_data()
{
    QTest::addColumn<QString>("raised");
    QTest::newRow("undoButton") << "UndoRequested()";
    QTest::newRow("redoButton") << "RedoRequested()";
    QTest::newRow("clearButton") << "ClearFrameRequested(false)";
    QTest::newRow("clearAllButton") << "ClearFrameRequested(true)";
}

void tst_AnnotationWidget::RequestsLeaveAsSignals()
{
    QFETCH(QString, raised);
    SignalLog log(mBar);
    BarProbe::Click(Button(QTest::currentDataTag()));
    QCOMPARE(log.Take(), QStringList{raised});
}

void tst_AnnotationWidget::SyncFollowsTheSettings()
{
    const QString sheet = QStringLiteral("background-color : %1; border-radius: 4px; border-width: 3;");
    Settings::drawColor = QColor(1, 2, 3);
    Settings::annotationTool = Oval;
    QCOMPARE(Lit(), QStringLiteral("eyedropperButton"));
    SignalLog log(mBar);
    mBar->Sync();
    QCOMPARE(Lit(), QStringLiteral("ovalButton"));
    QVERIFY(Button("colorButton")->styleSheet().contains(sheet.arg(QStringLiteral("#010203"))));
    QVERIFY(log.Take().isEmpty());
}

void tst_AnnotationWidget::ShowingAndHidingTell()
{
    SignalLog log(mBar);
    mBar->hide();
    QCOMPARE(log.Take(), QStringList{"ToolChanged()"});
    Settings::drawColor = QColor(9, 8, 7);
    Settings::annotationTool = Arrow;
    mBar->show();
    QCOMPARE(log.Take(), QStringList{"ToolChanged()"});
    QCOMPARE(Lit(), QStringLiteral("arrowButton"));
    QVERIFY(Button("colorButton")->styleSheet().contains(QLatin1String("#090807")));
}

void tst_AnnotationWidget::ColorDialogSetsTheColor()
{
    Settings::drawColor = QColor(10, 20, 30);
    SignalLog log(mBar);
    WithColorDialog(Button("colorButton"),
                    [this](QColorDialog* dialog)
                    {
                        QCOMPARE(dialog->currentColor(), QColor(10, 20, 30));
                        QCOMPARE(dialog->windowTitle(), QStringLiteral("Select Color"));
                        QVERIFY(dialog->testOption(QColorDialog::DontUseNativeDialog));
                        QCOMPARE(dialog->parentWidget(), mBar);
                        dialog->setCurrentColor(QColor(200, 100, 50));
                        dialog->accept();
                    });
    QCOMPARE(Settings::drawColor, QColor(200, 100, 50));
    QVERIFY(Button("colorButton")->styleSheet().contains(QLatin1String("#c86432")));
    QVERIFY(log.Take().isEmpty());
}

void tst_AnnotationWidget::CancelledColorDialogKeepsTheColor()
{
    Settings::drawColor = QColor(10, 20, 30);
    WithColorDialog(Button("colorButton"),
                    [](QColorDialog* dialog)
                    {
                        dialog->setCurrentColor(QColor(200, 100, 50));
                        dialog->reject();
                    });
    QCOMPARE(Settings::drawColor, QColor(10, 20, 30));
}

void tst_AnnotationWidget::IncrementMovesTheActiveTool_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("steps");
    QTest::newRow("up") << 3 << 23;
    QTest::newRow("down") << -3 << 17;
    QTest::newRow("nothing") << 0 << 20;
    QTest::newRow("far up") << 5000 << 99;
    QTest::newRow("far down") << -5000 << 2;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << 99;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << 2;
}

void tst_AnnotationWidget::IncrementMovesTheActiveTool()
{
    QFETCH(int, delta);
    QFETCH(int, steps);
    const float eraser = Settings::eraserWidth;
    Settings::ovalWidth = 0.01f;
    mBar->ActivateOval();
    mBar->IncrementWidthSlider(delta);
    QCOMPARE(Settings::drawWidth, static_cast<float>(steps) / 2000.0f);
    QCOMPARE(Settings::ovalWidth, static_cast<float>(steps) / 2000.0f);
    QCOMPARE(Settings::eraserWidth, eraser);
}

void tst_AnnotationWidget::IncrementBringsAWildWidthIn_data()
{
    QTest::addColumn<float>("width");
    QTest::addColumn<int>("steps");
    QTest::newRow("wide") << 0.5f << 99;
    QTest::newRow("negative") << -4.0f << 2;
    QTest::newRow("huge") << 1e30f << 99;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << 99;
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << 2;
}

void tst_AnnotationWidget::IncrementBringsAWildWidthIn()
{
    QFETCH(float, width);
    QFETCH(int, steps);
    Settings::pencilWidth = width;
    mBar->ActivatePencil();
    mBar->IncrementWidthSlider(0);
    QCOMPARE(Settings::pencilWidth, static_cast<float>(steps) / 2000.0f);
    // Also where the slider already stands there.
    Settings::drawWidth = width;
    mBar->IncrementWidthSlider(0);
    QCOMPARE(Settings::drawWidth, static_cast<float>(steps) / 2000.0f);
}

void tst_AnnotationWidget::WidthIsNotBelowTheMinimum()
{
    mBar->ActivatePencil();
    mBar->IncrementWidthSlider(0);
    for (const int value : {0, -20, std::numeric_limits<int>::min()})
    {
        mBar->SetWidth(value);
        QCOMPARE(Settings::pencilWidth, Settings::MINIMUM_DRAW_WIDTH);
        QCOMPARE(Settings::drawWidth, Settings::MINIMUM_DRAW_WIDTH);
    }
    mBar->SetWidth(4);
    QCOMPARE(Settings::pencilWidth, 4 / 2000.0f);
}

void tst_AnnotationWidget::HotkeysNameTheTools()
{
    mBar->UpdateHotkeys("P", "E", "T", "A", "O", "R", "I", "Ctrl+1", "Ctrl+2");
    QCOMPARE(Button("pencilButton")->toolTip(), QStringLiteral("Pencil (P)"));
    QCOMPARE(Button("eraserButton")->toolTip(), QStringLiteral("Eraser (E)"));
    QCOMPARE(Button("textButton")->toolTip(), QStringLiteral("Text (T)"));
    QCOMPARE(Button("arrowButton")->toolTip(), QStringLiteral("Arrow (A)"));
    QCOMPARE(Button("ovalButton")->toolTip(), QStringLiteral("Oval (O)"));
    QCOMPARE(Button("rectangleButton")->toolTip(), QStringLiteral("Rectangle (R)"));
    QCOMPARE(Button("eyedropperButton")->toolTip(), QStringLiteral("Eyedropper (I)"));
    QCOMPARE(Button("ghostPreviousButton")->toolTip(), QStringLiteral("Ghost Previous (Ctrl+1)"));
    QCOMPARE(Button("ghostNextButton")->toolTip(), QStringLiteral("Ghost Next (Ctrl+2)"));
    const QString none;
    mBar->UpdateHotkeys(none, none, none, none, none, none, none, none, none);
    QCOMPARE(Button("pencilButton")->toolTip(), QStringLiteral("Pencil"));
    QCOMPARE(Button("eyedropperButton")->toolTip(), QStringLiteral("Eyedropper"));
    QCOMPARE(Button("ghostNextButton")->toolTip(), QStringLiteral("Ghost Next"));
}

void tst_AnnotationWidget::GhostCountWithoutAnActionIsRefused()
{
    Settings::annotationGhostPreviousNumFrames = 4;
    Settings::annotationGhostNextNumFrames = 5;
    SignalLog log(mBar);
    mBar->SetGhostPreviousNumFrames();
    mBar->SetGhostNextNumFrames();
    QTimer sender;
    connect(&sender, SIGNAL(timeout()), mBar, SLOT(SetGhostNextNumFrames()));
    sender.start(0);
    QTest::qWait(20);
    QCOMPARE(Settings::annotationGhostPreviousNumFrames, 4);
    QCOMPARE(Settings::annotationGhostNextNumFrames, 5);
    QVERIFY(log.Take().isEmpty());
}

static const TestRegistration<tst_AnnotationWidget> AnnotationWidgetRegistration;

#include "tst_AnnotationWidget.moc"
