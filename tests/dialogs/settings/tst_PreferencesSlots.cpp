// SPDX-License-Identifier: MIT
#include "DialogAnswer.h"
#include "dialogs/settings/PreferencesDialog.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// What the preferences do before they are applied: ghosting, browsing, and the source root's button.
class tst_PreferencesSlots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void GhostingIsLoaded_data();
    void GhostingIsLoaded();
    void AlphasAreWrittenWhenTheirBoxIsLeft();
    void LoweringTheMaximumMovesTheMinimumBoxAlone();
    void RaisingTheMinimumMovesTheMaximumBoxAlone();
    void DrawModeIsWrittenAtOnce();
    void CancelAndApplyLeaveGhostingAsItIs();
    void BrowsingFillsTheEdit_data();
    void BrowsingFillsTheEdit();
    void SourceRootIsBrowsedFromWhatExists();
    void ProjectButtonStoresTheVariable();
    void EnterInAnEditPressesNoButton();

private:
    void Make();
    template<typename Child>
    Child* Find(const char* name) const
    {
        auto* const child = mDialog->findChild<Child*>(QLatin1String(name));
        if (!child)
            qFatal("there is no %s", name);
        return child;
    }
    void SetAlphas(int minimum, int maximum);
    /// Types @p value into the box, and leaves it.
    void Enter(const char* name, int value);

    QTemporaryDir mFolder;
    std::unique_ptr<PreferencesDialog> mDialog;
    std::unique_ptr<QSignalSpy> mGhosting;
};

void tst_PreferencesSlots::init()
{
    Settings::RestoreDefaults();
    Make();
}

void tst_PreferencesSlots::Make()
{
    mGhosting.reset();
    mDialog = std::make_unique<PreferencesDialog>(mFolder.path(), nullptr, nullptr);
    mGhosting = std::make_unique<QSignalSpy>(mDialog.get(), SIGNAL(GhostingChanged()));
}

void tst_PreferencesSlots::SetAlphas(int minimum, int maximum)
{
    Settings::annotationGhostAlphaMin = minimum;
    Settings::annotationGhostAlphaMax = maximum;
    Make();
    Find<QListWidget>("menuListWdg")->setCurrentRow(3);
    mDialog->show();
    mDialog->activateWindow();
}

void tst_PreferencesSlots::Enter(const char* name, int value)
{
    auto* const box = Find<QSpinBox>(name);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, QString::number(value));
    QTest::keyClick(box, Qt::Key_Return);
}

void tst_PreferencesSlots::GhostingIsLoaded_data()
{
    QTest::addColumn<bool>("accurate");
    QTest::newRow("fast") << false;
    QTest::newRow("accurate") << true;
}

void tst_PreferencesSlots::GhostingIsLoaded()
{
    QFETCH(bool, accurate);
    Settings::annotationGhostAccurate = accurate;
    SetAlphas(90, 70);
    QCOMPARE(Find<QComboBox>("ghostDrawModeCmb")->currentIndex(), accurate ? 1 : 0);
    // A minimum above the maximum is shown as it is.
    QCOMPARE(Find<QSpinBox>("alphaMinSB")->value(), 90);
    QCOMPARE(Find<QSpinBox>("alphaMaxSB")->value(), 70);
    QCOMPARE(Settings::annotationGhostAccurate, accurate);
    QCOMPARE(Settings::annotationGhostAlphaMin, 90);
    QCOMPARE(Settings::annotationGhostAlphaMax, 70);
}

void tst_PreferencesSlots::AlphasAreWrittenWhenTheirBoxIsLeft()
{
    SetAlphas(50, 200);
    Find<QSpinBox>("alphaMaxSB")->setValue(100);
    Find<QSpinBox>("alphaMinSB")->setValue(60);
    QCOMPARE(Settings::annotationGhostAlphaMax, 200);
    QCOMPARE(Settings::annotationGhostAlphaMin, 50);
    QVERIFY(mGhosting->isEmpty());
    Enter("alphaMaxSB", 180);
    QCOMPARE(Settings::annotationGhostAlphaMax, 180);
    QCOMPARE(Settings::annotationGhostAlphaMin, 50);
    QCOMPARE(mGhosting->size(), 1);
    Enter("alphaMinSB", 70);
    QCOMPARE(Settings::annotationGhostAlphaMin, 70);
    QVERIFY(mDialog->isVisible());
}

void tst_PreferencesSlots::LoweringTheMaximumMovesTheMinimumBoxAlone()
{
    SetAlphas(50, 200);
    Find<QSpinBox>("alphaMaxSB")->setValue(20);
    mDialog->OnAnnotationGhostingAlphaMaxChanged();
    QCOMPARE(Find<QSpinBox>("alphaMaxSB")->value(), 20);
    QCOMPARE(Find<QSpinBox>("alphaMinSB")->value(), 20);
    QCOMPARE(Settings::annotationGhostAlphaMax, 20);
    QCOMPARE(Settings::annotationGhostAlphaMin, 50);
    QCOMPARE(mGhosting->size(), 1);
    // Until that box is left.
    mDialog->OnAnnotationGhostingAlphaMinChanged();
    QCOMPARE(Settings::annotationGhostAlphaMin, 20);
    QCOMPARE(mGhosting->size(), 2);
}

void tst_PreferencesSlots::RaisingTheMinimumMovesTheMaximumBoxAlone()
{
    SetAlphas(50, 100);
    Find<QSpinBox>("alphaMinSB")->setValue(150);
    mDialog->OnAnnotationGhostingAlphaMinChanged();
    QCOMPARE(Find<QSpinBox>("alphaMinSB")->value(), 150);
    QCOMPARE(Find<QSpinBox>("alphaMaxSB")->value(), 150);
    QCOMPARE(Settings::annotationGhostAlphaMin, 150);
    QCOMPARE(Settings::annotationGhostAlphaMax, 100);
    QCOMPARE(mGhosting->size(), 1);
}

void tst_PreferencesSlots::DrawModeIsWrittenAtOnce()
{
    auto* const combo = Find<QComboBox>("ghostDrawModeCmb");
    combo->setCurrentIndex(1);
    QVERIFY(Settings::annotationGhostAccurate);
    combo->setCurrentIndex(0);
    QVERIFY(!Settings::annotationGhostAccurate);
    QCOMPARE(mGhosting->size(), 2);
    combo->setCurrentIndex(0);
    QCOMPARE(mGhosting->size(), 2);
    mDialog->OnAnnotationGhostingDrawModeChanged(7);
    QVERIFY(Settings::annotationGhostAccurate);
    mDialog->OnAnnotationGhostingDrawModeChanged(-1);
    QVERIFY(!Settings::annotationGhostAccurate);
}

void tst_PreferencesSlots::CancelAndApplyLeaveGhostingAsItIs()
{
    SetAlphas(50, 200);
    Enter("alphaMaxSB", 20);
    const int signalsBefore = mGhosting->size();
    Find<QPushButton>("cancelButton")->click();
    QCOMPARE(Settings::annotationGhostAlphaMax, 20);
    QCOMPARE(mGhosting->size(), signalsBefore);
    Settings::annotationGhostAlphaMin = 33;
    Settings::annotationGhostAccurate = true;
    mDialog->Apply();
    QCOMPARE(Settings::annotationGhostAlphaMin, 33);
    QCOMPARE(Settings::annotationGhostAlphaMax, 20);
    QVERIFY(Settings::annotationGhostAccurate);
    QCOMPARE(mGhosting->size(), signalsBefore);
    Settings::RestoreDefaults();
    Settings::ReadUserConfig();
    QCOMPARE(Settings::annotationGhostAlphaMax, 20);
}

void tst_PreferencesSlots::BrowsingFillsTheEdit_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<bool>("isFile");
    QTest::newRow("temp") << QByteArray("tempDirBtn") << QByteArray("tempDirLE") << false;
    QTest::newRow("output") << QByteArray("exportOutputDirBtn") << QByteArray("exportOutputDirLE") << false;
    QTest::newRow("export temp") << QByteArray("exportTempDirBtn") << QByteArray("exportTempDirLE") << false;
    QTest::newRow("ffmpeg") << QByteArray("ffmpegPathBtn") << QByteArray("ffmpegPathLE") << true;
}

void tst_PreferencesSlots::BrowsingFillsTheEdit()
{
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, edit);
    QFETCH(bool, isFile);
    QVERIFY(QDir(mFolder.path()).mkpath("start/inner"));
    QFile program(mFolder.filePath("start/program"));
    QVERIFY(program.open(QIODevice::WriteOnly));
    program.close();
    auto* const line = Find<QLineEdit>(edit);
    for (const char* name : {"tempDirLE", "exportOutputDirLE", "exportTempDirLE", "ffmpegPathLE"})
        Find<QLineEdit>(name)->setText("unchanged");
    line->setText(mFolder.filePath("start"));
    const QString wanted = mFolder.filePath(isFile ? "start/program" : "start/inner");
    const auto browse = [&] { Find<QPushButton>(button)->click(); };
    DialogAnswer::FileDialog seen = DialogAnswer::ToFileDialog(browse, QString());
    QCOMPARE(seen.count, 1);
    QCOMPARE(line->text(), mFolder.filePath("start"));
    seen = DialogAnswer::ToFileDialog(browse, wanted);
    QCOMPARE(seen.parent, mDialog.get());
    QCOMPARE(seen.caption,
             isFile ? QStringLiteral("Select ffmpeg executable") : QStringLiteral("Select Directory"));
    QCOMPARE(seen.start, mFolder.filePath("start"));
    QCOMPARE(seen.options.testFlag(QFileDialog::ShowDirsOnly), !isFile);
    QCOMPARE(seen.acceptMode, QFileDialog::AcceptOpen);
    QCOMPARE(line->text(), wanted);
    for (const char* name : {"tempDirLE", "exportOutputDirLE", "exportTempDirLE", "ffmpegPathLE"})
        QVERIFY(edit == name || Find<QLineEdit>(name)->text() == QLatin1String("unchanged"));
}

void tst_PreferencesSlots::SourceRootIsBrowsedFromWhatExists()
{
    QVERIFY(QDir(mFolder.path()).mkpath("there"));
    auto* const edit = Find<QLineEdit>("sourceRootDirLE");
    const auto browse = [&] { Find<QPushButton>("sourceRootDirBrowseBtn")->click(); };
    for (const QString& shown : {QString(), QStringLiteral("/not/there"), QStringLiteral("[PROJECT_DIR]")})
    {
        edit->setText(shown);
        const DialogAnswer::FileDialog seen = DialogAnswer::ToFileDialog(browse, QString());
        QCOMPARE(seen.count, 1);
        QCOMPARE(seen.caption, QStringLiteral("Source Root Directory"));
        QCOMPARE(seen.start, mFolder.path());
        QVERIFY(seen.options.testFlag(QFileDialog::ShowDirsOnly));
        QCOMPARE(edit->text(), shown);
    }
    edit->setText(mFolder.filePath("there"));
    const DialogAnswer::FileDialog seen = DialogAnswer::ToFileDialog(browse, mFolder.path());
    QCOMPARE(seen.start, mFolder.filePath("there"));
    QCOMPARE(edit->text(), mFolder.path());
}

void tst_PreferencesSlots::ProjectButtonStoresTheVariable()
{
    Find<QPushButton>("sourceRootDirProjectBtn")->click();
    QCOMPARE(Find<QLineEdit>("sourceRootDirLE")->text(),
             QString::fromLatin1(Settings::PROJECT_DIRECTORY_VAR));
    QVERIFY(Settings::globalSourceRootDirectory.isEmpty());
    mDialog->Apply();
    QCOMPARE(Settings::globalSourceRootDirectory, QString::fromLatin1(Settings::PROJECT_DIRECTORY_VAR));
}

void tst_PreferencesSlots::EnterInAnEditPressesNoButton()
{
    mDialog->show();
    mDialog->activateWindow();
    const QList<QPair<int, const char*>> edits = {
        {0, "tempDirLE"}, {1, "sourceRootDirLE"}, {4, "ffmpegPathLE"}};
    for (const auto& row : edits)
    {
        Find<QListWidget>("menuListWdg")->setCurrentRow(row.first);
        auto* const edit = Find<QLineEdit>(row.second);
        edit->setFocus();
        edit->setText("/typed");
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(edit->text(), QStringLiteral("/typed"));
        QVERIFY(mDialog->isVisible());
        QVERIFY(!QApplication::activeModalWidget());
    }
}

static const TestRegistration<tst_PreferencesSlots> PreferencesSlotsRegistration;

#include "tst_PreferencesSlots.moc"
