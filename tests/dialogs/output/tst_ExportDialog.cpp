// SPDX-License-Identifier: MIT
#include "dialogs/output/ExportDialog.h"
#include "host/Settings.h"
#include "support/ModalScript.h"
#include "support/TestRegistry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

/// What the export dialog asks its host for, and what it checks before.
class tst_ExportDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ChoicesHaveTheirTextsAndValues_data();
    void ChoicesHaveTheirTextsAndValues();
    void SettingsDecideTheStart();
    void SettingsAreReadOnceAndNotWritten();
    void RequestCarriesTheChoices();
    void RowWithoutANumberCountsAsItsFallback();
    void PathIsCheckedInOrder_data();
    void PathIsCheckedInOrder();
    void ExistingFileIsReplacedOnlyOnYes_data();
    void ExistingFileIsReplacedOnlyOnYes();
    void MissingDirectoryIsNotAsked();
    void LeavingTheEditResolvesANameAlone_data();
    void LeavingTheEditResolvesANameAlone();
    void BareNameIsResolvedAndThenCompleted();
    void ButtonAsksOnlyAfterTheFirstShow();
    void BrowsingStartsWhereItEnded();
    void CancelledBrowsingKeepsThePath();
    void DimensionsAreClamped_data();
    void DimensionsAreClamped();
    void DimensionsComeFromTheTimelineAndTheSettings();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        Type* const found = mDialog->findChild<Type*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    QString Path() const { return Find<QLineEdit>("outputPathEdit")->text(); }
    QSize Dimensions() const
    {
        return QSize(Find<QSpinBox>("widthBox")->value(), Find<QSpinBox>("heightBox")->value());
    }
    void Make();

    QTemporaryDir mDir;
    std::unique_ptr<ExportDialog> mDialog;
    std::unique_ptr<ModalScript> mModals;
    std::unique_ptr<QSignalSpy> mRequests;
};

void tst_ExportDialog::init()
{
    Settings::RestoreDefaults();
    Make();
}

void tst_ExportDialog::cleanup()
{
    QVERIFY(mModals->Take().isEmpty());
    mRequests.reset();
    mModals.reset();
    mDialog.reset();
}

void tst_ExportDialog::Make()
{
    mRequests.reset();
    mModals.reset();
    mDialog = std::make_unique<ExportDialog>(nullptr);
    mModals = std::make_unique<ModalScript>(mDialog.get());
    mRequests = std::make_unique<QSignalSpy>(
        mDialog.get(), SIGNAL(ExportRequested(QString, int, int, int, int, int, bool, bool, bool)));
    QVERIFY(mRequests->isValid());
}

void tst_ExportDialog::ChoicesHaveTheirTextsAndValues_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("profileCombo") << QStringList{"High", "Main", "Baseline    "};
    QTest::newRow("qualityCombo") << QStringList{"Very High  ", "High", "Medium", "Low"};
    QTest::newRow("presetCombo") << QStringList{"Very Slow", "Slower",    "Slow",       "Medium",    "Fast",
                                                "Faster",    "Very Fast", "Super Fast", "Ultra Fast"};
}

void tst_ExportDialog::ChoicesHaveTheirTextsAndValues()
{
    QFETCH(QStringList, texts);
    const auto* const combo = Find<QComboBox>(QTest::currentDataTag());
    QStringList shown;
    for (int row = 0; row < combo->count(); ++row)
    {
        shown << combo->itemText(row);
        QCOMPARE(combo->itemData(row).type(), QVariant::Int);
        QCOMPARE(combo->itemData(row).toInt(), row);
    }
    QCOMPARE(shown, texts);
}

void tst_ExportDialog::SettingsDecideTheStart()
{
    for (const bool on : {false, true})
    {
        Settings::globalExportWidth = on ? 1920 : 640;
        Settings::globalExportHeight = on ? 1080 : 360;
        Settings::exportProfile = on ? ExportProfileBaseline : ExportProfileHigh;
        Settings::exportQuality = on ? ExportQualityLow : ExportQualityMedium;
        Settings::exportPreset = on ? ExportPresetUltraFast : ExportPresetSlower;
        Settings::exportAnnotations = on;
        Settings::exportViewerLayout = !on;
        Settings::exportIgnoreRange = on;
        Make();
        QCOMPARE(Dimensions(), on ? QSize(1920, 1080) : QSize(640, 360));
        QCOMPARE(Find<QComboBox>("profileCombo")->currentIndex(), on ? 2 : 0);
        QCOMPARE(Find<QComboBox>("qualityCombo")->currentIndex(), on ? 3 : 2);
        QCOMPARE(Find<QComboBox>("presetCombo")->currentIndex(), on ? 8 : 1);
        QCOMPARE(Find<QCheckBox>("annotationsBox")->isChecked(), on);
        QCOMPARE(Find<QCheckBox>("viewerLayoutBox")->isChecked(), !on);
        QCOMPARE(Find<QCheckBox>("ignoreRangeBox")->isChecked(), on);
    }
}

void tst_ExportDialog::SettingsAreReadOnceAndNotWritten()
{
    const int width = Settings::globalExportWidth;
    Find<QSpinBox>("widthBox")->setValue(333);
    Find<QComboBox>("presetCombo")->setCurrentIndex(7);
    Find<QCheckBox>("annotationsBox")->toggle();
    const bool annotations = Settings::exportAnnotations;
    mDialog->SetOutputPath(mDir.filePath("once.mp4"));
    mDialog->Export();
    QCOMPARE(mRequests->count(), 1);
    QCOMPARE(Settings::globalExportWidth, width);
    QVERIFY(Settings::exportPreset != 7);
    QCOMPARE(Settings::exportAnnotations, annotations);
    Settings::exportPreset = ExportPresetFast;
    mDialog->show();
    QCOMPARE(Find<QComboBox>("presetCombo")->currentIndex(), 7);
}

void tst_ExportDialog::RequestCarriesTheChoices()
{
    const QString path = mDir.filePath("film.mp4");
    mDialog->SetOutputPath(path);
    mDialog->SetWidthHeight(801, 603);
    Find<QComboBox>("profileCombo")->setCurrentIndex(2);
    Find<QComboBox>("qualityCombo")->setCurrentIndex(3);
    Find<QComboBox>("presetCombo")->setCurrentIndex(5);
    for (int on = 0; on < 3; ++on)
    {
        Find<QCheckBox>("ignoreRangeBox")->setChecked(on == 0);
        Find<QCheckBox>("annotationsBox")->setChecked(on == 1);
        Find<QCheckBox>("viewerLayoutBox")->setChecked(on == 2);
        mDialog->Export();
        QCOMPARE(mRequests->takeFirst(),
                 QList<QVariant>({path, 801, 603, 3, 5, 2, on == 0, on == 1, on == 2}));
    }
    // Asking alone changes nothing: the host answers.
    QCOMPARE(Find<QPushButton>("closeButton")->text(), QStringLiteral("Close"));
}

void tst_ExportDialog::RowWithoutANumberCountsAsItsFallback()
{
    for (const char* const name : {"profileCombo", "qualityCombo", "presetCombo"})
        Find<QComboBox>(name)->setCurrentIndex(-1);
    mDialog->SetOutputPath(mDir.filePath("film.mp4"));
    mDialog->Export();
    const QList<QVariant> request = mRequests->takeFirst();
    QCOMPARE(request.at(3), QVariant(1));
    QCOMPARE(request.at(4), QVariant(3));
    QCOMPARE(request.at(5), QVariant(1));
}

void tst_ExportDialog::PathIsCheckedInOrder_data()
{
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<QString>("box");
    const QString relative =
        QStringLiteral("critical|Invaild Output Path|An absolute output path is expected.|OK");
    const QString absolute = QDir::tempPath() + QStringLiteral("/no such folder/");
    QTest::newRow("empty") << ""
                           << ""
                           << "critical|Error|The output path is not set.|OK";
    QTest::newRow("bare name") << "film"
                               << "film.mp4" << relative;
    QTest::newRow("relative") << "a/film.mp4"
                              << "a/film.mp4" << relative;
    QTest::newRow("blank") << " "
                           << " .mp4" << relative;
    QTest::newRow("upper case") << absolute + "film.MP4" << absolute + "film.MP4.mp4" << QString();
    QTest::newRow("other suffix") << absolute + "film.mov" << absolute + "film.mov.mp4" << QString();
    QTest::newRow("suffix") << absolute + "film.mp4" << absolute + "film.mp4" << QString();
    QTest::newRow("no dot") << absolute + "filmmp4" << absolute + "filmmp4.mp4" << QString();
}

void tst_ExportDialog::PathIsCheckedInOrder()
{
    QFETCH(QString, entered);
    QFETCH(QString, kept);
    QFETCH(QString, box);
    mDialog->SetOutputPath(entered);
    QCOMPARE(Path(), entered);
    if (!box.isEmpty())
        mModals->Answer(QMessageBox::Ok);
    mDialog->Export();
    QCOMPARE(mModals->Take(), box.isEmpty() ? QStringList() : QStringList{box});
    QCOMPARE(Path(), kept);
    QCOMPARE(mRequests->count(), box.isEmpty() ? 1 : 0);
    if (box.isEmpty())
        QCOMPARE(mRequests->first().first().toString(), kept);
}

void tst_ExportDialog::ExistingFileIsReplacedOnlyOnYes_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("requests");
    QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
    QTest::newRow("no") << int(QMessageBox::No) << 0;
    QTest::newRow("escape") << int(QMessageBox::NoButton) << 0;
}

void tst_ExportDialog::ExistingFileIsReplacedOnlyOnYes()
{
    QFETCH(int, answer);
    QFile file(mDir.filePath("there is.mp4"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    // The suffix is completed before the file is looked for.
    mDialog->SetOutputPath(mDir.filePath("there is"));
    mModals->Answer(QMessageBox::StandardButton(answer));
    mDialog->Export();
    QCOMPARE(mModals->Take(),
             QStringList{
                 "warning|Confirm Export|there is.mp4 already exists.\nDo you want to replace it?|Yes,No"});
    QTEST(mRequests->count(), "requests");
    QCOMPARE(Path(), file.fileName());
    QVERIFY(file.exists());
}

void tst_ExportDialog::MissingDirectoryIsNotAsked()
{
    mDialog->SetOutputPath(mDir.filePath("missing/film.mp4"));
    mDialog->Export();
    QCOMPARE(mRequests->count(), 1);
}

void tst_ExportDialog::LeavingTheEditResolvesANameAlone_data()
{
    QTest::addColumn<bool>("isOn");
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("expected");
    QTest::newRow("name") << true << "/out"
                          << "film"
                          << "/out/film";
    QTest::newRow("path") << true << "/out"
                          << "a/film.mp4"
                          << "/out/a/film.mp4";
    QTest::newRow("doubled separator") << true << "/out/"
                                       << "film"
                                       << "/out//film";
    QTest::newRow("absolute") << true << "/out"
                              << "/a/film"
                              << "/a/film";
    QTest::newRow("empty") << true << "/out"
                           << ""
                           << "";
    QTest::newRow("no directory") << true << ""
                                  << "film"
                                  << "film";
    QTest::newRow("off") << false << "/out"
                         << "film"
                         << "film";
}

void tst_ExportDialog::LeavingTheEditResolvesANameAlone()
{
    QFETCH(bool, isOn);
    QFETCH(QString, directory);
    QFETCH(QString, entered);
    Settings::resolveRelativeExportOutputPaths = isOn;
    Settings::defaultExportOutputDirPath = directory;
    // The dialog's own directory is for browsing alone.
    mDialog->SetDefaultOutputDirPath("/elsewhere");
    mDialog->SetOutputPath(entered);
    QCOMPARE(Path(), entered);
    Q_EMIT Find<QLineEdit>("outputPathEdit")->editingFinished();
    QTEST(Path(), "expected");
}

void tst_ExportDialog::BareNameIsResolvedAndThenCompleted()
{
    Settings::resolveRelativeExportOutputPaths = true;
    Settings::defaultExportOutputDirPath = mDir.path();
    mDialog->show();
    auto* const edit = Find<QLineEdit>("outputPathEdit");
    edit->setFocus();
    QTest::keyClicks(edit, "film");
    // Return finishes the editing and presses no button.
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(Path(), mDir.path() + "/film");
    QCOMPARE(mRequests->count(), 0);
    QVERIFY(mDialog->isVisible());
    Find<QPushButton>("exportButton")->click();
    QCOMPARE(mRequests->count(), 1);
    QCOMPARE(mRequests->first().first().toString(), mDir.path() + "/film.mp4");
}

void tst_ExportDialog::ButtonAsksOnlyAfterTheFirstShow()
{
    mDialog->SetOutputPath(mDir.filePath("film.mp4"));
    auto* const button = Find<QPushButton>("exportButton");
    button->click();
    QCOMPARE(mRequests->count(), 0);
    for (int show = 0; show < 3; ++show)
    {
        mDialog->show();
        mRequests->clear();
        button->click();
        QCOMPARE(mRequests->count(), 1);
        mDialog->hide();
    }
}

void tst_ExportDialog::BrowsingStartsWhereItEnded()
{
    const QDir dir(mDir.path());
    for (const char* const name : {"fallback", "first", "other"})
        QVERIFY(dir.mkpath(QLatin1String(name)));
    const QString lastBefore = mDialog->GetLastOutputDirPath();
    if (!lastBefore.isEmpty())
        QSKIP("another test has browsed");

    QString filters;
    QString selected;
    bool confirms = true;
    mDialog->SetDefaultOutputDirPath(dir.filePath("fallback"));
    mModals->Browse(
        [&](QFileDialog* browser)
        {
            filters = browser->nameFilters().join(QLatin1Char('|'));
            selected = browser->selectedNameFilter();
            confirms = !browser->testOption(QFileDialog::DontConfirmOverwrite);
            browser->reject();
        });
    Find<QPushButton>("browseButton")->click();
    QCOMPARE(mModals->Take(), QStringList{"file|Export|" + dir.filePath("fallback")});
    QCOMPARE(filters, QStringLiteral("All Files (*.*)|Export (*.mp4)"));
    QCOMPARE(selected, QStringLiteral("Export (*.mp4)"));
    QVERIFY(!confirms);
    // Taken over even when the browsing is cancelled.
    QCOMPARE(mDialog->GetLastOutputDirPath(), dir.filePath("fallback"));
    QCOMPARE(Path(), QString());

    const QString picked = dir.filePath("first/film.mp4");
    const auto pick = [&](QFileDialog* browser)
    {
        selected = browser->selectedNameFilter();
        browser->selectNameFilter(QStringLiteral("All Files (*.*)"));
        browser->setDirectory(QFileInfo(picked).path());
        browser->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(picked);
        QMetaObject::invokeMethod(browser, "accept");
    };
    mModals->Browse(pick);
    mDialog->SelectOutputFile();
    QCOMPARE(mModals->Take(), QStringList{"file|Export|" + dir.filePath("fallback")});
    QCOMPARE(Path(), picked);
    QCOMPARE(mDialog->GetLastOutputDirPath(), dir.filePath("first"));

    // Another dialog goes on from there, with the filter chosen last, whatever its own fallback is.
    Make();
    mDialog->SetDefaultOutputDirPath(dir.filePath("other"));
    QCOMPARE(mDialog->GetLastOutputDirPath(), dir.filePath("first"));
    mModals->Browse(pick);
    mDialog->SelectOutputFile();
    QCOMPARE(mModals->Take(), QStringList{"file|Export|" + dir.filePath("first")});
    QCOMPARE(selected, QStringLiteral("All Files (*.*)"));
}

void tst_ExportDialog::CancelledBrowsingKeepsThePath()
{
    mDialog->SetOutputPath("/kept.mp4");
    const QString last = mDialog->GetLastOutputDirPath();
    mModals->Browse([](QFileDialog* browser) { browser->reject(); });
    mDialog->SelectOutputFile();
    QCOMPARE(mModals->Take().size(), 1);
    QCOMPARE(Path(), QStringLiteral("/kept.mp4"));
    QCOMPARE(mDialog->GetLastOutputDirPath(), last);
}

void tst_ExportDialog::DimensionsAreClamped_data()
{
    QTest::addColumn<QSize>("asked");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("least") << QSize(240, 240) << QSize(240, 240);
    QTest::newRow("most") << QSize(4096, 4096) << QSize(4096, 4096);
    QTest::newRow("below") << QSize(239, 0) << QSize(240, 240);
    QTest::newRow("above") << QSize(4097, 9000) << QSize(4096, 4096);
    QTest::newRow("odd") << QSize(853, 479) << QSize(853, 479);
}

void tst_ExportDialog::DimensionsAreClamped()
{
    QFETCH(QSize, asked);
    QFETCH(QSize, shown);
    mDialog->SetWidthHeight(asked.width(), asked.height());
    QCOMPARE(Dimensions(), shown);
    mDialog->SetWidthHeight(500, 500);
    mDialog->SetTimelineWidthHeight(asked.width(), asked.height());
    QCOMPARE(Dimensions(), QSize(500, 500));
    Find<QPushButton>("timelineButton")->click();
    QCOMPARE(Dimensions(), shown);
    Settings::globalExportWidth = asked.width();
    Settings::globalExportHeight = asked.height();
    mDialog->SetWidthHeight(500, 500);
    Find<QPushButton>("globalButton")->click();
    QCOMPARE(Dimensions(), shown);
}

void tst_ExportDialog::DimensionsComeFromTheTimelineAndTheSettings()
{
    mDialog->DimensionsToTimeline();
    QCOMPARE(Dimensions(), QSize(960, 540));
    // Read at the click, and not when the dialog was built.
    Settings::globalExportWidth = 1000;
    Settings::globalExportHeight = 700;
    mDialog->DimensionsToGlobal();
    QCOMPARE(Dimensions(), QSize(1000, 700));
}

static const TestRegistration<tst_ExportDialog> ExportDialogRegistration;

#include "tst_ExportDialog.moc"
