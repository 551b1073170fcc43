// SPDX-License-Identifier: MIT
#include "dialogs/settings/AboutDialog.h"
#include "dialogs/settings/PreferencesDialog.h"
#include "dialogs/settings/ProjectSettingsDialog.h"
#include "host/KeyBindings.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/Project.h"
#include "support/TestRegistry.h"
#include "toolbars/AnnotationWidget.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MessageBar.h"
#include "window/ModalProbe.h"
#include "window/PanelArea.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"
#include "window/SettingsBinding.h"

#include <QAction>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

#include <memory>

using ModalProbe::WithDialog;

/// Preferences, project settings and about box in the player.
class tst_PlayerSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void CommandsStandInTheirMenus();
    void PreferencesAreWrittenOnlyWhenAccepted();
    void KeysActAtOnceAndSurviveARestart();
    void BrokenKeysAreReportedAndKeptAside();
    void GhostingIsPassedOnWhileTheDialogIsOpen();
    void CacheFollowsItsSetting();
    void ZoomFollowsItsMaximum();
    void MediaOpenInAPlayerOfTheirOwn();
    void WindowFitsTheMedium();
    void ProjectSettingsReachTheProject();
    void ProjectPathSavesTheProject();
    void AboutIsShown();

private:
    void Make();
    QAction* Action(const char* name) const { return mWindow->Commands()->Action(QLatin1String(name)); }
    bool OpenSample();

    QTemporaryDir mFolder;
    std::unique_ptr<PlayerWindow> mWindow;
};

namespace
{

QString KeyBindingsPath()
{
    return KeyBindings({}).UserKeyBindingsPath();
}

void RemoveUserFiles()
{
    QDir folder = QFileInfo(KeyBindingsPath()).dir();
    for (const QString& name : folder.entryList({QStringLiteral("keybindings*")}, QDir::Files))
        folder.remove(name);
    QFile::remove(Settings::UserConfigPath());
}

template<typename Child>
Child* Find(QDialog* dialog, const char* name)
{
    return dialog->findChild<Child*>(QLatin1String(name));
}

/// Gives the command that reads @p text in the list the chord.
void Assign(PreferencesDialog* dialog, const QString& text, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    auto* const list = Find<QListWidget>(dialog, "keyboardCommandListWdg");
    const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
    if (found.size() != 1)
        return;
    list->setCurrentItem(found.first());
    QTest::keyClick(Find<QLineEdit>(dialog, "pressShortcutKeysLE"), key, modifiers);
    Find<QPushButton>(dialog, "assignShortcutBtn")->click();
}

QString PencilTip(const PlayerWindow& window)
{
    return window.findChild<AnnotationWidget*>()->findChild<QWidget*>("pencilButton")->toolTip();
}

} // namespace

void tst_PlayerSettings::init()
{
    Settings::RestoreDefaults();
    RemoveUserFiles();
    Make();
}

void tst_PlayerSettings::cleanup()
{
    mWindow.reset();
    RemoveUserFiles();
}

void tst_PlayerSettings::Make()
{
    mWindow.reset();
    mWindow = std::make_unique<PlayerWindow>();
}

bool tst_PlayerSettings::OpenSample()
{
    mWindow->show();
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 0);
    return QTest::qWaitFor([this] { return mWindow->Playback()->ShownFrame(0) == 1; }, 20000);
}

void tst_PlayerSettings::CommandsStandInTheirMenus()
{
    const QList<QPair<QString, QString>> rows = {{"file.preferences", "fileMenu"},
                                                 {"file.projectSettings", "fileMenu"},
                                                 {"help.about", "helpMenu"},
                                                 {"view.console", "viewMenu"},
                                                 {"view.scriptInput", "viewMenu"}};
    for (const auto& row : rows)
        QVERIFY2(mWindow->findChild<QMenu*>(row.second)
                     ->actions()
                     .contains(mWindow->Commands()->Action(row.first)),
                 qPrintable(row.first));
    QVERIFY(Action("file.projectSettings")->isEnabled());
}

void tst_PlayerSettings::PreferencesAreWrittenOnlyWhenAccepted()
{
    QSignalSpy applied(mWindow->Preferences(), SIGNAL(Applied()));
    for (const bool isAccepted : {false, true})
    {
        const int count = WithDialog<PreferencesDialog>(
            [this] { mWindow->Commands()->Run("file.preferences"); },
            [&](PreferencesDialog* dialog)
            {
                Find<QSpinBox>(dialog, "numRecentFilesSB")->setValue(3);
                Find<QCheckBox>(dialog, "linkProjectViewAndDetailsViewVisiblity")->setChecked(true);
                Find<QPushButton>(dialog, isAccepted ? "okButton" : "cancelButton")->click();
            });
        QCOMPARE(count, 1);
        QCOMPARE(applied.size(), isAccepted ? 1 : 0);
        QCOMPARE(Settings::numRecentFiles == 3, isAccepted);
        QCOMPARE(QFile::exists(Settings::UserConfigPath()), isAccepted);
    }
    Settings::RestoreDefaults();
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::numRecentFiles, 3);
    QVERIFY(Settings::linkProjectViewAndDetailsViewVisibility);
}

void tst_PlayerSettings::KeysActAtOnceAndSurviveARestart()
{
    QCOMPARE(Action("playback.next")->shortcut(), QKeySequence(Qt::Key_Right));
    QVERIFY(PencilTip(*mWindow).contains("P"));
    WithDialog<PreferencesDialog>([this] { Action("file.preferences")->trigger(); },
                                  [](PreferencesDialog* dialog)
                                  {
                                      Assign(dialog, "Next Frame", Qt::Key_N, Qt::ControlModifier);
                                      Assign(dialog, "Pencil", Qt::Key_F3, Qt::ShiftModifier);
                                      // Taken from "Play or Pause".
                                      Assign(dialog, "Eraser", Qt::Key_Space, Qt::NoModifier);
                                      Find<QPushButton>(dialog, "okButton")->click();
                                  });
    for (const bool isRestarted : {false, true})
    {
        if (isRestarted)
            Make();
        QCOMPARE(Action("playback.next")->shortcuts(),
                 (QList<QKeySequence>{QKeySequence(Qt::Key_Right), QKeySequence("Ctrl+N")}));
        QVERIFY(Action("annotate.eraser")->shortcuts().contains(QKeySequence(Qt::Key_Space)));
        QVERIFY(!Action("playback.toggle")->shortcuts().contains(QKeySequence(Qt::Key_Space)));
    }
    // The tooltip names the first key.
    WithDialog<PreferencesDialog>([this] { Action("file.preferences")->trigger(); },
                                  [](PreferencesDialog* dialog)
                                  {
                                      dialog->RemoveKeyBinding("P");
                                      Find<QPushButton>(dialog, "okButton")->click();
                                  });
    QVERIFY2(PencilTip(*mWindow).contains("Shift+F3"), qPrintable(PencilTip(*mWindow)));

    // The keys themselves work.
    QVERIFY(OpenSample());
    mWindow->activateWindow();
    QTRY_VERIFY(mWindow->isActiveWindow());
    QTest::keyClick(mWindow->Viewer(), Qt::Key_N, Qt::ControlModifier);
    QTRY_COMPARE(mWindow->Playback()->CurrentFrame(), 2);
}

void tst_PlayerSettings::BrokenKeysAreReportedAndKeptAside()
{
    const QByteArray broken = "playback.next = Ctrl+N\nthis is no binding\n";
    mWindow.reset();
    QVERIFY(QDir().mkpath(QFileInfo(KeyBindingsPath()).path()));
    QFile file(KeyBindingsPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(broken);
    file.close();
    Make();
    const QString message = mWindow->findChild<MessageBar*>()->Message();
    QVERIFY2(message.contains(KeyBindingsPath()) && message.contains("line 2"), qPrintable(message));
    const QString log = mWindow->findChild<QPlainTextEdit*>("outputPane")->toPlainText();
    QCOMPARE(log.count("[ERROR] "), 1);
    QVERIFY2(log.contains(message), qPrintable(log));
    QCOMPARE(Action("playback.next")->shortcuts(), QList<QKeySequence>{QKeySequence(Qt::Key_Right)});
    QVERIFY(!QFile::exists(KeyBindingsPath()));
    const QDir folder = QFileInfo(KeyBindingsPath()).dir();
    const QStringList kept = folder.entryList({"keybindings*"}, QDir::Files);
    QCOMPARE(kept.size(), 1);
    QFile backup(folder.filePath(kept.first()));
    QVERIFY(backup.open(QIODevice::ReadOnly));
    QCOMPARE(backup.readAll(), broken);
    QVERIFY2(message.contains(backup.fileName()), qPrintable(message));
}

void tst_PlayerSettings::GhostingIsPassedOnWhileTheDialogIsOpen()
{
    QSignalSpy ghosting(mWindow->Preferences(), SIGNAL(GhostingChanged()));
    WithDialog<PreferencesDialog>([this] { Action("file.preferences")->trigger(); },
                                  [&](PreferencesDialog* dialog)
                                  {
                                      const int before = ghosting.size();
                                      Find<QSpinBox>(dialog, "alphaMaxSB")->setValue(33);
                                      dialog->OnAnnotationGhostingAlphaMaxChanged();
                                      QCOMPARE(ghosting.size(), before + 1);
                                      QCOMPARE(Settings::annotationGhostAlphaMax, 33);
                                  });
    QCOMPARE(Settings::annotationGhostAlphaMax, 33);
}

void tst_PlayerSettings::CacheFollowsItsSetting()
{
    QVERIFY(OpenSample());
    const auto cached = [this]
    {
        int frames = 0;
        for (const auto& [first, last] : mWindow->Playback()->CachedRanges())
            frames += last - first + 1;
        return frames;
    };
    QTRY_VERIFY_WITH_TIMEOUT(cached() > 20, 20000);
    // A frame of 320 x 180 takes a quarter of a megabyte.
    Settings::cacheSize = 1;
    QVERIFY(QMetaObject::invokeMethod(mWindow->Preferences(), "Applied"));
    QTRY_VERIFY2(cached() <= 6, qPrintable(QString::number(cached())));
}

void tst_PlayerSettings::ZoomFollowsItsMaximum()
{
    mWindow->SetPanAndZoom(QPointF(0.1, 0.2), 6.0f);
    QCOMPARE(mWindow->Zoom(), 6.0f);
    Settings::zoomMaximum = 2.5f;
    QVERIFY(QMetaObject::invokeMethod(mWindow->Preferences(), "Applied"));
    QCOMPARE(mWindow->Zoom(), 2.5f);
    Settings::zoomMaximum = 8.0f;
    QVERIFY(QMetaObject::invokeMethod(mWindow->Preferences(), "Applied"));
    QCOMPARE(mWindow->Zoom(), 2.5f);
}

void tst_PlayerSettings::MediaOpenInAPlayerOfTheirOwn()
{
    const QString arguments = mFolder.filePath("arguments");
    QFile program(mFolder.filePath("program"));
    QVERIFY(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\nprintf '%s\\n' \"$@\" > " + arguments.toUtf8() + ".new\nmv " +
                  arguments.toUtf8() + ".new " + arguments.toUtf8() + "\n");
    program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    program.close();
    mWindow->Preferences()->SetProgram(program.fileName());
    const QStringList paths = {"/a file.mov", "/b.mov"};

    Settings::openMediaInNewPlayers = true;
    QVERIFY(!mWindow->Preferences()->OpenElsewhere(paths));
    QVERIFY(OpenSample());
    Settings::openMediaInNewPlayers = false;
    QVERIFY(!mWindow->Preferences()->OpenElsewhere(paths));
    QVERIFY(!QFile::exists(arguments));
    Settings::openMediaInNewPlayers = true;
    QVERIFY(mWindow->Preferences()->OpenElsewhere(paths));
    QTRY_VERIFY(QFile::exists(arguments));
    QFile file(arguments);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("/a file.mov\n/b.mov\n"));
    // What can't be started is opened here.
    mWindow->Preferences()->SetProgram(mFolder.filePath("nothing"));
    QVERIFY(!mWindow->Preferences()->OpenElsewhere(paths));
    QVERIFY(mWindow->findChild<MessageBar*>()->Message().contains(mFolder.filePath("nothing")));
}

void tst_PlayerSettings::WindowFitsTheMedium()
{
    // The screen has no room for panels and picture.
    for (const QString& panel : mWindow->Panels()->Names())
        mWindow->Panels()->SetVisible(panel, false);
    mWindow->resize(1000, 760);
    mWindow->show();
    QCoreApplication::processEvents();
    const QSize before = mWindow->size();
    mWindow->Preferences()->FitWindow(QSize(400, 300));
    QCOMPARE(mWindow->size(), before);
    Settings::resizeToFit = true;
    // As far as the window's own least size and the screen allow; the picture's shape decides.
    const QSize wanted(720, 330);
    mWindow->Preferences()->FitWindow(wanted);
    QCoreApplication::processEvents();
    const QSize least = mWindow->minimumSizeHint();
    if (least.width() <= 720)
        QCOMPARE(mWindow->Viewer()->width(), 720);
    QVERIFY(mWindow->size() != before);
    mWindow->Preferences()->FitWindow(QSize(100000, 100000));
    QVERIFY(mWindow->height() <= mWindow->screen()->availableSize().height());
    const QSize full = mWindow->size();
    mWindow->Preferences()->FitWindow(QSize());
    QCOMPARE(mWindow->size(), full);
}

void tst_PlayerSettings::ProjectSettingsReachTheProject()
{
    Project project;
    project.SetSettings({QStringLiteral("[PROJECT_DIR]/plates"), 23.976023976, QStringLiteral("old")});
    const ProjectSettings former = project.GetSettings();
    mWindow->Preferences()->SetProject(&project);
    QVERIFY(Action("file.projectSettings")->isEnabled());
    const auto edit = [this](const std::function<void(ProjectSettingsDialog*)>& act)
    { return WithDialog<ProjectSettingsDialog>([this] { Action("file.projectSettings")->trigger(); }, act); };

    const int steps = project.UndoStack()->count();
    QCOMPARE(edit(
                 [](ProjectSettingsDialog* dialog)
                 {
                     QCOMPARE(dialog->GetProjectPath(), QString());
                     QCOMPARE(dialog->GetSourceRootDir(), QStringLiteral("[PROJECT_DIR]/plates"));
                     QCOMPARE(dialog->GetFrameRate(), 23.976);
                     QCOMPARE(dialog->GetNotes(), QStringLiteral("old"));
                     dialog->accept();
                 }),
             1);
    // Accepted as it was: the rate isn't rounded to what the form shows.
    QVERIFY(project.GetSettings() == former);
    QCOMPARE(project.UndoStack()->count(), steps);

    edit(
        [](ProjectSettingsDialog* dialog)
        {
            dialog->SetNotes("dropped");
            dialog->reject();
        });
    QVERIFY(project.GetSettings() == former);

    edit(
        [this](ProjectSettingsDialog* dialog)
        {
            dialog->SetSourceRootDir(mFolder.path());
            dialog->SetFrameRate(30.0);
            dialog->SetNotes("new\nnotes");
            dialog->accept();
        });
    QCOMPARE(project.GetSettings().sourceRoot, mFolder.path());
    QCOMPARE(project.GetSettings().imageSequenceFrameRate, 30.0);
    QCOMPARE(project.GetSettings().notes, QStringLiteral("new\nnotes"));
    project.UndoStack()->undo();
    QVERIFY(project.GetSettings() == former);
    mWindow->Preferences()->SetProject(nullptr);
    QVERIFY(!Action("file.projectSettings")->isEnabled());
}

void tst_PlayerSettings::ProjectPathSavesTheProject()
{
    Project project;
    mWindow->Preferences()->SetProject(&project);
    const auto setPath = [&](const QString& path)
    {
        WithDialog<ProjectSettingsDialog>([this] { Action("file.projectSettings")->trigger(); },
                                          [&](ProjectSettingsDialog* dialog)
                                          {
                                              dialog->SetProjectPath(path);
                                              dialog->accept();
                                          });
    };
    setPath(mFolder.filePath("review"));
    QCOMPARE(project.FilePath(), mFolder.filePath("review.torvalen"));
    QVERIFY(QFile::exists(project.FilePath()));
    setPath(QString());
    QCOMPARE(project.FilePath(), mFolder.filePath("review.torvalen"));
    // A file that can't be written is told, and the project stays where it is.
    setPath("/nowhere/at/all/x.torvalen");
    QCOMPARE(project.FilePath(), mFolder.filePath("review.torvalen"));
    QVERIFY(mWindow->findChild<MessageBar*>()->Message().contains("/nowhere/at/all/x.torvalen"));
    mWindow->Preferences()->SetProject(nullptr);
}

void tst_PlayerSettings::AboutIsShown()
{
    const int count =
        WithDialog<AboutDialog>([this] { Action("help.about")->trigger(); }, [this](AboutDialog* dialog)
                                { QCOMPARE(dialog->parentWidget(), mWindow.get()); });
    QCOMPARE(count, 1);
}

static const TestRegistration<tst_PlayerSettings> PlayerSettingsRegistration;

#include "tst_PlayerSettings.moc"
