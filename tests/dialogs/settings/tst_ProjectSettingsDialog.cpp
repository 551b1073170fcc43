// SPDX-License-Identifier: MIT
#include "DialogAnswer.h"
#include "dialogs/settings/ProjectSettingsDialog.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_ProjectSettingsDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void WindowStandsAsTold();
    void RowsStandAsTold();
    void TabOrderIsTheChain();
    void ValuesAreHandedBack();
    void FrameRateIsClamped_data();
    void FrameRateIsClamped();
    void AcceptChecksTheSourceRoot_data();
    void AcceptChecksTheSourceRoot();
    void CancelRejects();
    void BrowsingForTheProjectPath();
    void BrowsingForTheSourceRoot();
    void GlobalButtonsCopyTheGlobalValues();

private:
    void Make(const QString& projectDir);
    template<typename Child>
    Child* Find(const char* name) const
    {
        auto* const child = mDialog->findChild<Child*>(QLatin1String(name));
        if (!child)
            qFatal("there is no %s", name);
        return child;
    }

    QTemporaryDir mFolder;
    std::unique_ptr<ProjectSettingsDialog> mDialog;
};

void tst_ProjectSettingsDialog::init()
{
    Settings::RestoreDefaults();
    const QString project = mFolder.filePath("project");
    QVERIFY(QDir(project).mkpath("media"));
    QVERIFY(QDir().mkpath(project + project));
    Make(mFolder.filePath("project"));
}

void tst_ProjectSettingsDialog::Make(const QString& projectDir)
{
    mDialog = std::make_unique<ProjectSettingsDialog>(mFolder.path(), QStringLiteral("Projects (*.tvp)"),
                                                      projectDir, nullptr);
}

void tst_ProjectSettingsDialog::WindowStandsAsTold()
{
    QCOMPARE(mDialog->objectName(), QStringLiteral("ProjectSettingsDialog"));
    QCOMPARE(mDialog->windowTitle(), QStringLiteral("Project Settings"));
    QCOMPARE(mDialog->size(), QSize(529, 251));
    // The flags are left alone.
    QCOMPARE(mDialog->windowFlags(), QDialog().windowFlags());
    const auto* const buttons = Find<QDialogButtonBox>("buttonBox");
    QCOMPARE(buttons->orientation(), Qt::Horizontal);
    QCOMPARE(buttons->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QCOMPARE(mDialog->layout()->objectName(), QStringLiteral("verticalLayout"));
    QCOMPARE(mDialog->layout()->count(), 2);
    QCOMPARE(mDialog->layout()->itemAt(0)->layout()->objectName(), QStringLiteral("formLayout"));
    QCOMPARE(mDialog->layout()->itemAt(1)->widget(), buttons);
}

void tst_ProjectSettingsDialog::RowsStandAsTold()
{
    const auto* const form = mDialog->findChild<QFormLayout*>("formLayout");
    QVERIFY(form);
    QCOMPARE(form->labelAlignment() & (Qt::AlignRight | Qt::AlignVCenter), Qt::AlignRight | Qt::AlignVCenter);
    QCOMPARE(form->rowCount(), 4);
    const QString root = "The root directory for relative path sources. Use project dir if empty.";
    const QString rootEdit = "The root directory for relative path sources. Use [PROJECT_DIR] if empty.";
    const struct
    {
        const char* label;
        QString text;
        QString labelTip;
        QString field;
        QList<const char*> widgets;
        QString tip;
    } rows[] = {
        {"projectPathLabel",
         "Project Path:",
         "The path to the project file",
         "horizontalLayout",
         {"projectPathLineEdit", "projectPathButton"},
         "The path to the project file"},
        {"sourceRootDirLabel",
         "Source Root Dir:",
         root,
         "horizontalLayout_2",
         {"sourceRootDirLineEdit", "sourceRootDirButton", "globalSourceRootDirButton"},
         rootEdit},
        {"frameRateLabel",
         "Seq Frame Rate:",
         "Default image sequence frame rate",
         "horizontalLayout_3",
         {"frameRateDoubleSpinBox", "frameRateGlobalButton", nullptr},
         "Default image sequence frame rate"},
        {"notesLabel", "Notes:", "Notes", "", {"notesTextEdit"}, "Notes"},
    };
    int index = 0;
    for (const auto& row : rows)
    {
        const auto* const label = Find<QLabel>(row.label);
        QCOMPARE(form->itemAt(index, QFormLayout::LabelRole)->widget(), label);
        QCOMPARE(label->text(), row.text);
        QCOMPARE(label->toolTip(), row.labelTip);
        QCOMPARE(Find<QWidget>(row.widgets.first())->toolTip(), row.tip);
        QLayoutItem* const field = form->itemAt(index, QFormLayout::FieldRole);
        if (row.field.isEmpty())
            QCOMPARE(field->widget(), Find<QWidget>(row.widgets.first()));
        else
        {
            QCOMPARE(field->layout()->objectName(), row.field);
            QCOMPARE(field->layout()->count(), row.widgets.size());
            for (int i = 0; i < row.widgets.size(); ++i)
            {
                if (row.widgets[i])
                    QCOMPARE(field->layout()->itemAt(i)->widget(), Find<QWidget>(row.widgets[i]));
                else
                {
                    QCOMPARE(field->layout()->itemAt(i)->spacerItem()->sizeHint(), QSize(40, 20));
                    QCOMPARE(field->layout()->itemAt(i)->expandingDirections(), Qt::Horizontal);
                }
            }
        }
        ++index;
    }
    QCOMPARE(Find<QPushButton>("projectPathButton")->text(), QStringLiteral("Browse..."));
    QCOMPARE(Find<QPushButton>("sourceRootDirButton")->text(), QStringLiteral("Browse..."));
    QCOMPARE(Find<QPushButton>("globalSourceRootDirButton")->text(), QStringLiteral("Global"));
    QCOMPARE(Find<QPushButton>("frameRateGlobalButton")->text(), QStringLiteral("Global"));
    QCOMPARE(Find<QLineEdit>("sourceRootDirLineEdit")->minimumWidth(), 240);
    const auto* const rate = Find<QDoubleSpinBox>("frameRateDoubleSpinBox");
    QCOMPARE(rate->decimals(), 3);
    QCOMPARE(rate->minimum(), 1.0);
    QCOMPARE(rate->maximum(), 60.0);
    QCOMPARE(rate->buttonSymbols(), QAbstractSpinBox::NoButtons);
    QVERIFY(rate->alignment().testFlag(Qt::AlignRight));
    QVERIFY(rate->alignment().testFlag(Qt::AlignVCenter));
    for (const char* name : {"projectPathLineEdit", "sourceRootDirLineEdit", "notesTextEdit"})
        QCOMPARE(Find<QWidget>(name)->focusPolicy(), Qt::StrongFocus);
}

void tst_ProjectSettingsDialog::TabOrderIsTheChain()
{
    const QList<const char*> chain = {
        "projectPathLineEdit",       "projectPathButton",      "sourceRootDirLineEdit", "sourceRootDirButton",
        "globalSourceRootDirButton", "frameRateDoubleSpinBox", "notesTextEdit"};
    QStringList order;
    QWidget* const first = Find<QWidget>(chain.first());
    QWidget* widget = first;
    do
    {
        order << widget->objectName();
        widget = widget->nextInFocusChain();
    } while (widget != first);
    int place = 0;
    for (const char* name : chain)
    {
        const int next = order.indexOf(QLatin1String(name));
        QVERIFY2(next >= place, name);
        place = next;
    }
    // Beside the chain.
    const int global = order.indexOf("frameRateGlobalButton");
    QVERIFY(global > place || global == 0);
}

void tst_ProjectSettingsDialog::ValuesAreHandedBack()
{
    QCOMPARE(mDialog->GetProjectPath(), QString());
    mDialog->SetProjectPath("/a/b.tvp");
    mDialog->SetSourceRootDir("[PROJECT_DIR]/media");
    mDialog->SetFrameRate(23.976);
    mDialog->SetNotes("first\nsecond <b>");
    QCOMPARE(Find<QLineEdit>("projectPathLineEdit")->text(), QStringLiteral("/a/b.tvp"));
    QCOMPARE(Find<QLineEdit>("sourceRootDirLineEdit")->text(), QStringLiteral("[PROJECT_DIR]/media"));
    QCOMPARE(Find<QDoubleSpinBox>("frameRateDoubleSpinBox")->value(), 23.976);
    QCOMPARE(Find<QPlainTextEdit>("notesTextEdit")->toPlainText(), QStringLiteral("first\nsecond <b>"));
    QCOMPARE(mDialog->GetProjectPath(), QStringLiteral("/a/b.tvp"));
    QCOMPARE(mDialog->GetSourceRootDir(), QStringLiteral("[PROJECT_DIR]/media"));
    QCOMPARE(mDialog->GetFrameRate(), 23.976);
    QCOMPARE(mDialog->GetNotes(), QStringLiteral("first\nsecond <b>"));
}

void tst_ProjectSettingsDialog::FrameRateIsClamped_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("shown");
    QTest::newRow("below") << 0.5 << 1.0;
    QTest::newRow("above") << 120.0 << 60.0;
    QTest::newRow("rounded") << 29.97002997 << 29.97;
}

void tst_ProjectSettingsDialog::FrameRateIsClamped()
{
    QFETCH(double, rate);
    mDialog->SetFrameRate(rate);
    QTEST(mDialog->GetFrameRate(), "shown");
}

void tst_ProjectSettingsDialog::AcceptChecksTheSourceRoot_data()
{
    QTest::addColumn<QString>("root");
    QTest::addColumn<bool>("hasProjectDir");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("empty") << "" << true << true;
    QTest::newRow("empty, no project directory") << "" << false << true;
    QTest::newRow("there") << "FOLDER/project" << true << true;
    QTest::newRow("not there") << "FOLDER/nothing" << true << false;
    QTest::newRow("not there, no project directory") << "FOLDER/nothing" << false << false;
    QTest::newRow("variable") << "[PROJECT_DIR]" << true << true;
    QTest::newRow("variable, there") << "[PROJECT_DIR]/media" << true << true;
    QTest::newRow("variable, not there") << "[PROJECT_DIR]/nothing" << true << false;
    QTest::newRow("variable, unchecked") << "[PROJECT_DIR]/nothing" << false << true;
    // Its folder holds a copy of the whole path.
    QTest::newRow("each variable is replaced") << "[PROJECT_DIR][PROJECT_DIR]" << true << true;
    QTest::newRow("another case") << "[project_dir]" << true << false;
    QTest::newRow("another case, no project directory") << "[project_dir]" << false << false;
}

void tst_ProjectSettingsDialog::AcceptChecksTheSourceRoot()
{
    QFETCH(QString, root);
    QFETCH(bool, hasProjectDir);
    QFETCH(bool, isAccepted);
    root.replace("FOLDER", mFolder.path());
    Make(hasProjectDir ? mFolder.filePath("project") : QString());
    mDialog->SetProjectPath("/not/there");
    mDialog->SetSourceRootDir(root);
    mDialog->SetNotes("notes");
    mDialog->show();
    QSignalSpy accepted(mDialog.get(), SIGNAL(accepted()));
    const DialogAnswer::MessageBox box = DialogAnswer::ToMessageBox(
        [this] { Find<QDialogButtonBox>("buttonBox")->button(QDialogButtonBox::Ok)->click(); },
        QMessageBox::Ok);
    QCOMPARE(accepted.size(), isAccepted ? 1 : 0);
    QCOMPARE(mDialog->isVisible(), !isAccepted);
    QCOMPARE(mDialog->GetSourceRootDir(), root);
    QCOMPARE(mDialog->GetProjectPath(), QStringLiteral("/not/there"));
    QCOMPARE(mDialog->GetNotes(), QStringLiteral("notes"));
    QCOMPARE(box.count, isAccepted ? 0 : 1);
    if (isAccepted)
        return;
    QCOMPARE(box.parent, mDialog.get());
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.title, QStringLiteral("Invalid Directory"));
    QCOMPARE(box.text, QStringLiteral("The source root directory does not exist."));
    QCOMPARE(box.buttons, QMessageBox::Ok);
}

void tst_ProjectSettingsDialog::CancelRejects()
{
    QSignalSpy rejected(mDialog.get(), SIGNAL(rejected()));
    mDialog->show();
    Find<QDialogButtonBox>("buttonBox")->button(QDialogButtonBox::Cancel)->click();
    QCOMPARE(rejected.size(), 1);
}

void tst_ProjectSettingsDialog::BrowsingForTheProjectPath()
{
    const auto browse = [this] { Find<QPushButton>("projectPathButton")->click(); };
    const QString wanted = mFolder.filePath("project/new.tvp");
    DialogAnswer::FileDialog seen = DialogAnswer::ToFileDialog(browse, wanted);
    QCOMPARE(seen.count, 1);
    QCOMPARE(seen.parent, mDialog.get());
    QCOMPARE(seen.caption, QStringLiteral("Project Path"));
    QCOMPARE(seen.start, mFolder.path());
    QCOMPARE(seen.filters, QStringList{"Projects (*.tvp)"});
    QCOMPARE(seen.acceptMode, QFileDialog::AcceptSave);
    QCOMPARE(mDialog->GetProjectPath(), wanted);
    seen = DialogAnswer::ToFileDialog(browse, QString());
    QCOMPARE(seen.start, wanted);
    QCOMPARE(mDialog->GetProjectPath(), wanted);
}

void tst_ProjectSettingsDialog::BrowsingForTheSourceRoot()
{
    const auto browse = [this] { Find<QPushButton>("sourceRootDirButton")->click(); };
    const QString wanted = mFolder.filePath("project/media");
    DialogAnswer::FileDialog seen = DialogAnswer::ToFileDialog(browse, wanted);
    QCOMPARE(seen.caption, QStringLiteral("Source Root Directory"));
    QCOMPARE(seen.start, mFolder.path());
    QVERIFY(seen.options.testFlag(QFileDialog::ShowDirsOnly));
    QCOMPARE(seen.parent, mDialog.get());
    QCOMPARE(mDialog->GetSourceRootDir(), wanted);
    mDialog->SetSourceRootDir(mFolder.filePath("project"));
    seen = DialogAnswer::ToFileDialog(browse, QString());
    QCOMPARE(seen.start, mFolder.filePath("project"));
    QCOMPARE(mDialog->GetSourceRootDir(), mFolder.filePath("project"));
}

void tst_ProjectSettingsDialog::GlobalButtonsCopyTheGlobalValues()
{
    Settings::globalSourceRootDirectory.clear();
    Settings::globalImageSequenceFrameRate = 29.97;
    Find<QPushButton>("globalSourceRootDirButton")->click();
    QCOMPARE(mDialog->GetSourceRootDir(), QString::fromLatin1(Settings::PROJECT_DIRECTORY_VAR));
    Settings::globalSourceRootDirectory = "/somewhere";
    Find<QPushButton>("globalSourceRootDirButton")->click();
    QCOMPARE(mDialog->GetSourceRootDir(), QStringLiteral("/somewhere"));
    Settings::globalSourceRootDirectory = "/elsewhere";
    Find<QPushButton>("frameRateGlobalButton")->click();
    QCOMPARE(mDialog->GetFrameRate(), 29.97);
    Settings::globalImageSequenceFrameRate = 12.0;
    QCOMPARE(mDialog->GetFrameRate(), 29.97);
    QCOMPARE(mDialog->GetSourceRootDir(), QStringLiteral("/somewhere"));
}

static const TestRegistration<tst_ProjectSettingsDialog> ProjectSettingsDialogRegistration;

#include "tst_ProjectSettingsDialog.moc"
