// SPDX-License-Identifier: MIT
#include "dialogs/settings/PreferencesDialog.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QtTest>

/// What the preferences look like: names, texts, ranges and places.
class tst_PreferencesForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Settings::RestoreDefaults(); }

    void WindowStandsAsTold();
    void RowsShowTheirPages();
    void ControlsStandInTheirBoxes_data();
    void ControlsStandInTheirBoxes();
    void BoxesStandInTheirPages_data();
    void BoxesStandInTheirPages();
    void LayoutsOfRecentListsLieInTheirBox();
    void GeneralBoxesAreTight();
    void SpinBoxesStandAsTold_data();
    void SpinBoxesStandAsTold();
    void FormRowsStandInTheirOrder();
    void CombosCarryTheirValues();
    void BrowseButtonsTakeNoFocus();

private:
    template<typename Child>
    Child* Find(const QString& name)
    {
        auto* const child = mDialog.findChild<Child*>(name);
        if (!child)
            qFatal("there is no %s", qPrintable(name));
        return child;
    }

    PreferencesDialog mDialog{QString(), nullptr, nullptr};
};

void tst_PreferencesForm::WindowStandsAsTold()
{
    QCOMPARE(mDialog.objectName(), QStringLiteral("PreferencesDialog"));
    QCOMPARE(mDialog.windowTitle(), QStringLiteral("Preferences"));
    QCOMPARE(mDialog.size(), QSize(563, 563));
    QCOMPARE(mDialog.minimumSize(), QSize(0, 0));
    QCOMPARE(mDialog.maximumSize(), QSize(2000, 2000));
    QCOMPARE(mDialog.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(mDialog.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(mDialog.windowFlags(), QDialog().windowFlags());
    const QLayout* const layout = mDialog.layout();
    QCOMPARE(layout->objectName(), QStringLiteral("verticalLayout"));
    QCOMPARE(layout->count(), 2);
    const QLayout* const top = layout->itemAt(0)->layout();
    QCOMPARE(top->objectName(), QStringLiteral("preferencesLayout"));
    QCOMPARE(top->itemAt(0)->widget(), Find<QListWidget>("menuListWdg"));
    QCOMPARE(top->itemAt(1)->widget(), Find<QStackedWidget>("preferencesStackedWdg"));
    QCOMPARE(Find<QListWidget>("menuListWdg")->maximumWidth(), 130);
    const QLayout* const bottom = layout->itemAt(1)->layout();
    QCOMPARE(bottom->objectName(), QStringLiteral("okCancelLayout"));
    QCOMPARE(bottom->count(), 3);
    QCOMPARE(bottom->itemAt(0)->spacerItem()->sizeHint(), QSize(131, 31));
    QCOMPARE(bottom->itemAt(0)->expandingDirections(), Qt::Horizontal);
    const QList<QPair<QString, QString>> buttons = {{"okButton", "OK"}, {"cancelButton", "Cancel"}};
    for (int i = 0; i < 2; ++i)
    {
        auto* const button = Find<QPushButton>(buttons[i].first);
        QCOMPARE(bottom->itemAt(i + 1)->widget(), button);
        QCOMPARE(button->text(), buttons[i].second);
        QVERIFY(!button->autoDefault());
        QVERIFY(!button->isDefault());
    }
}

void tst_PreferencesForm::RowsShowTheirPages()
{
    auto* const list = Find<QListWidget>("menuListWdg");
    const auto* const stack = Find<QStackedWidget>("preferencesStackedWdg");
    QCOMPARE(list->currentRow(), 0);
    const QList<QPair<QString, QString>> pages = {
        {"General", "generalPage"},   {"Project", "page_2"},    {"Keyboard", "keyboardPage"},
        {"Annotation", "page"},       {"Export", "exportPage"}, {"Network", "networkPage"},
        {"Advanced", "advancedPage"},
    };
    QCOMPARE(list->count(), pages.size());
    QCOMPARE(stack->count(), pages.size());
    for (int row : {0, 6, 2, 5, 1, 4, 3})
    {
        list->setCurrentRow(row);
        QCOMPARE(list->item(row)->text(), pages[row].first);
        QCOMPARE(stack->currentWidget()->objectName(), pages[row].second);
    }
    list->setCurrentRow(0);
}

void tst_PreferencesForm::ControlsStandInTheirBoxes_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    const struct
    {
        const char* box;
        const char* name;
        const char* text;
    } rows[] = {
        {"tempDirGrp", "tempDirLE", nullptr},
        {"tempDirGrp", "tempDirBtn", "Browse..."},
        {"cacheGrp", "cacheSizeLabel", "Size:"},
        {"cacheGrp", "cacheSizeSB", nullptr},
        {"cacheGrp", "cacheMbLabel", "MB"},
        {"fileGrp", "numRecentFilesLabel", "Recent Files:"},
        {"fileGrp", "numRecentFilesSB", nullptr},
        {"fileGrp", "numRecentProjectsLabel", "Recent Projects:"},
        {"fileGrp", "numRecentProjectsSB", nullptr},
        {"OptionsGrp", "openMediaInNewPlayersCB", "Open media in new players"},
        {"OptionsGrp", "resizeToFitCB", "Resize to fit video"},
        {"OptionsGrp", "continuePlayingAfterSeekCB", "Continue playing after seek"},
        {"OptionsGrp", "endlessMouseScrubCB", "Endless mouse scrub"},
        {"OptionsGrp", "panZoomMouseControlsCB", "Pan/zoom mouse controls enabled"},
        {"OptionsGrp", "highlightActiveElementCB", "Highlight active element in Details View"},
        {"OptionsGrp", "linkProjectViewAndDetailsViewVisiblity",
         "Link Project View and Details View visibility"},
        {"OptionsGrp", "doubleClickTogglesPlaybackCB", "Double-click in viewer toggles playback"},
        {"OptionsGrp", "displayConfirmationOnCloseCB", "Display confirmation dialog on close"},
        {"sourceRootDirGrp", "sourceRootDirLE", nullptr},
        {"sourceRootDirGrp", "sourceRootDirBrowseBtn", "Browse..."},
        {"sourceRootDirGrp", "sourceRootDirProjectBtn", "Project"},
        {"imageSeqGrp", "imageSeqFrameRateLabel", "Frame Rate:"},
        {"imageSeqGrp", "imageSeqFrameRateSpinBox", nullptr},
        {"optionsGrp", "addDefaultTimelineCB", "Add default timeline to new project"},
        {"optionsGrp", "alwaysActivateDefaultTimelineCB",
         "Always set default timeline active in new project"},
        {"optionsGrp", "disablePanZoomOnProjectLoadCB", "Turn off pan/zoom enabled on project load"},
        {"ghostingGrp", "ghostDrawModeCmb", nullptr},
        {"ghostingGrp", "alphaMaxSB", nullptr},
        {"ghostingGrp", "alphaMinSB", nullptr},
        {"ffmpegGrp", "ffmpegPathLE", nullptr},
        {"ffmpegGrp", "ffmpegPathBtn", "Browse..."},
        {"exportDefaultsGrp", "exportOutputDirLE", nullptr},
        {"exportDefaultsGrp", "exportOutputDirBtn", "Browse..."},
        {"exportDefaultsGrp", "exportResolveRelativeOutputPathsCB", "Resolve relative output paths"},
        {"exportDefaultsGrp", "exportTempDirLE", nullptr},
        {"exportDefaultsGrp", "exportTempDirBtn", "Browse..."},
        {"exportDefaultsGrp", "exportDimensionsWidthSB", nullptr},
        {"exportDefaultsGrp", "exportDimensionsHeightSB", nullptr},
        {"exportDefaultsGrp", "exportProfileCmb", nullptr},
        {"exportDefaultsGrp", "exportQualityCmb", nullptr},
        {"exportDefaultsGrp", "exportPresetCmb", nullptr},
        {"exportDefaultsGrp", "exportAnnotationsCB", ""},
        {"exportDefaultsGrp", "exportViewerLayoutCB", ""},
        {"exportDefaultsGrp", "exportInoreRangeLabel", "Ignore Range:"},
        {"exportDefaultsGrp", "exportIgnoreRangeCB", ""},
        {"configurationGrp", "portLabel", "Port:"},
        {"configurationGrp", "portSB", nullptr},
        {"groupBox", "hardwareAcceleratedPlaybackCB", "Hardware accelerated playback (requires restart)"},
        {"groupBox", "highQualityRenderingCB", "High-quality rendering (requires restart)"},
        {"groupBox", "highDpiScalingCB", "High-DPI scaling (requires restart)"},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << QString(row.box) << QString(row.name)
                                << (row.text ? QString(row.text) : QString());
}

void tst_PreferencesForm::ControlsStandInTheirBoxes()
{
    QFETCH(QString, box);
    QFETCH(QString, name);
    QFETCH(QString, text);
    const auto* const control = Find<QWidget>(name);
    QCOMPARE(control->parentWidget(), Find<QGroupBox>(box));
    if (!text.isNull())
        QCOMPARE(control->property("text").toString(), text);
}

void tst_PreferencesForm::BoxesStandInTheirPages_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("general") << "generalPage"
                             << QStringList{"tempDirGrp", "cacheGrp", "fileGrp", "OptionsGrp"}
                             << QStringList{"Temp Directory", "Cache", "File", "Options"};
    QTest::newRow("project") << "page_2" << QStringList{"sourceRootDirGrp", "imageSeqGrp", "optionsGrp"}
                             << QStringList{"Source Root Directory", "Image Sequences", "Options"};
    QTest::newRow("annotation") << "page" << QStringList{"ghostingGrp"} << QStringList{"Ghosting"};
    QTest::newRow("export") << "exportPage" << QStringList{"ffmpegGrp", "exportDefaultsGrp"}
                            << QStringList{"FFmpeg Path (ffmpeg.exe)", "Defaults"};
    QTest::newRow("network") << "networkPage" << QStringList{"configurationGrp"}
                             << QStringList{"Configuration"};
    QTest::newRow("advanced") << "advancedPage" << QStringList{"groupBox"} << QStringList{"Options"};
}

void tst_PreferencesForm::BoxesStandInTheirPages()
{
    QFETCH(QString, page);
    QFETCH(QStringList, boxes);
    QFETCH(QStringList, titles);
    const auto* const layout = qobject_cast<QVBoxLayout*>(Find<QWidget>(page)->layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), boxes.size() + 1);
    for (int i = 0; i < boxes.size(); ++i)
    {
        const auto* const box = qobject_cast<QGroupBox*>(layout->itemAt(i)->widget());
        QVERIFY(box);
        QCOMPARE(box->objectName(), boxes[i]);
        QCOMPARE(box->title(), titles[i]);
    }
    QVERIFY(layout->itemAt(boxes.size())->spacerItem());
    QCOMPARE(layout->itemAt(boxes.size())->expandingDirections(), Qt::Vertical);
}

void tst_PreferencesForm::LayoutsOfRecentListsLieInTheirBox()
{
    const QLayout* const layout = Find<QGroupBox>("fileGrp")->layout();
    const QList<QStringList> rows = {{"recentFilesGrp", "numRecentFilesLabel", "numRecentFilesSB"},
                                     {"recentProjectsGrp", "numRecentProjectsLabel", "numRecentProjectsSB"}};
    for (int i = 0; i < 2; ++i)
    {
        const QLayout* const line = layout->itemAt(i)->layout();
        QVERIFY(line);
        QCOMPARE(line->objectName(), rows[i][0]);
        QCOMPARE(line->itemAt(0)->widget()->objectName(), rows[i][1]);
        QCOMPARE(line->itemAt(1)->widget()->objectName(), rows[i][2]);
    }
    const QLayout* const port = Find<QGroupBox>("configurationGrp")->layout();
    QCOMPARE(qobject_cast<QLabel*>(port->itemAt(2)->widget())->text(), QStringLiteral("(requires restart)"));
}

void tst_PreferencesForm::GeneralBoxesAreTight()
{
    const int left = QVBoxLayout(new QGroupBox(&mDialog)).contentsMargins().left();
    for (const char* name : {"tempDirGrp", "cacheGrp", "fileGrp", "OptionsGrp"})
    {
        const QLayout* const layout = Find<QGroupBox>(name)->layout();
        QCOMPARE(layout->spacing(), 2);
        QCOMPARE(layout->contentsMargins(), QMargins(left, 6, left, 6));
    }
}

void tst_PreferencesForm::SpinBoxesStandAsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<bool>("isRight");
    QTest::newRow("cache") << "cacheSizeSB" << 256.0 << 65536.0 << true;
    QTest::newRow("files") << "numRecentFilesSB" << 0.0 << 20.0 << true;
    QTest::newRow("projects") << "numRecentProjectsSB" << 0.0 << 20.0 << true;
    QTest::newRow("rate") << "imageSeqFrameRateSpinBox" << 1.0 << 60.0 << true;
    QTest::newRow("alpha max") << "alphaMaxSB" << 10.0 << 255.0 << false;
    QTest::newRow("alpha min") << "alphaMinSB" << 10.0 << 255.0 << false;
    QTest::newRow("width") << "exportDimensionsWidthSB" << 240.0 << 4096.0 << false;
    QTest::newRow("height") << "exportDimensionsHeightSB" << 240.0 << 4096.0 << false;
    QTest::newRow("port") << "portSB" << 0.0 << 65535.0 << true;
}

void tst_PreferencesForm::SpinBoxesStandAsTold()
{
    QFETCH(QString, name);
    QFETCH(bool, isRight);
    auto* const box = Find<QAbstractSpinBox>(name);
    QCOMPARE(box->buttonSymbols(), QAbstractSpinBox::NoButtons);
    QTEST(box->property("minimum").toDouble(), "minimum");
    QTEST(box->property("maximum").toDouble(), "maximum");
    QCOMPARE(box->alignment().testFlag(Qt::AlignRight), isRight);
    QVERIFY(box->alignment().testFlag(Qt::AlignVCenter));
    if (const auto* const real = qobject_cast<QDoubleSpinBox*>(box))
        QCOMPARE(real->decimals(), 3);
    QCOMPARE(mDialog.findChildren<QAbstractSpinBox*>().size(), 9);
}

void tst_PreferencesForm::FormRowsStandInTheirOrder()
{
    const struct
    {
        QString box;
        QStringList labels;
        QStringList fields;
    } forms[] = {
        {"ghostingGrp",
         {"Draw Mode:", "Alpha Maximum (10 - 255):", "Alpha Minimum (10 - 255):"},
         {"ghostDrawModeCmb", "alphaMaxSB", "alphaMinSB"}},
        {"exportDefaultsGrp",
         {"Output Dir:", "Temp Dir:", "Dimensions:", "Profile", "Quality:", "Preset:", "Annotations",
          "Viewer Layout", "Ignore Range:"},
         {"exportOutputDirLE exportOutputDirBtn exportResolveRelativeOutputPathsCB",
          "exportTempDirLE exportTempDirBtn", "exportDimensionsWidthSB x exportDimensionsHeightSB",
          "exportProfileCmb", "exportQualityCmb", "exportPresetCmb", "exportAnnotationsCB",
          "exportViewerLayoutCB", "exportIgnoreRangeCB"}},
    };
    const std::function<QStringList(QLayoutItem*)> names = [&](QLayoutItem* item) -> QStringList
    {
        if (const auto* const label = qobject_cast<QLabel*>(item->widget()))
            return {label->text()};
        if (item->widget())
            return {item->widget()->objectName()};
        QStringList all;
        for (int i = 0; item->layout() && i < item->layout()->count(); ++i)
            all << names(item->layout()->itemAt(i));
        return all;
    };
    for (const auto& form : forms)
    {
        const auto* const layout = qobject_cast<QFormLayout*>(Find<QGroupBox>(form.box)->layout());
        QVERIFY(layout);
        QCOMPARE(layout->rowCount(), form.labels.size());
        for (int row = 0; row < layout->rowCount(); ++row)
        {
            QCOMPARE(names(layout->itemAt(row, QFormLayout::LabelRole)), QStringList{form.labels[row]});
            QCOMPARE(names(layout->itemAt(row, QFormLayout::FieldRole)).join(' '), form.fields[row]);
        }
    }
}

void tst_PreferencesForm::CombosCarryTheirValues()
{
    const QList<QPair<QString, QStringList>> combos = {
        {"exportProfileCmb", {"High", "Main", "Baseline    "}},
        {"exportQualityCmb", {"Very High  ", "High", "Medium", "Low"}},
        {"exportPresetCmb",
         {"Very Slow", "Slower", "Slow", "Medium", "Fast", "Faster", "Very Fast", "Super Fast",
          "Ultra Fast"}},
    };
    for (const auto& row : combos)
    {
        const auto* const combo = Find<QComboBox>(row.first);
        QCOMPARE(combo->count(), row.second.size());
        for (int i = 0; i < combo->count(); ++i)
        {
            QCOMPARE(combo->itemText(i), row.second[i]);
            QCOMPARE(combo->itemData(i), QVariant(i));
        }
    }
    const auto* const mode = Find<QComboBox>("ghostDrawModeCmb");
    QCOMPARE(mode->count(), 2);
    QCOMPARE(mode->itemText(0), QStringLiteral("Fast"));
    QCOMPARE(mode->itemText(1), QStringLiteral("Accurate (may impact playback)"));
}

void tst_PreferencesForm::BrowseButtonsTakeNoFocus()
{
    int count = 0;
    for (const QPushButton* button : mDialog.findChildren<QPushButton*>())
    {
        if (button->text() != QLatin1String("Browse..."))
            continue;
        ++count;
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    }
    QCOMPARE(count, 5);
}

static const TestRegistration<tst_PreferencesForm> PreferencesFormRegistration;

#include "tst_PreferencesForm.moc"
