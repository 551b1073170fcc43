// SPDX-License-Identifier: MIT
#include "window/SettingsBinding.h"

#include "dialogs/settings/AboutDialog.h"
#include "dialogs/settings/PreferencesDialog.h"
#include "dialogs/settings/ProjectSettingsDialog.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/ProjectTimeline.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerWindow.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QScreen>

namespace
{

bool ShowsSomething(const PlaybackController* playback)
{
    return playback->LeadingTimeline() && playback->LeadingTimeline()->FrameCount() > 0;
}

} // namespace

SettingsBinding::SettingsBinding(PlayerWindow* window) : QObject(window), mWindow(window) {}

void SettingsBinding::SetProject(Project* project)
{
    mProject = project;
    if (QAction* const action = mWindow->Commands()->Action(QStringLiteral("file.projectSettings")))
        action->setEnabled(project != nullptr);
}

void SettingsBinding::EditPreferences()
{
    const QString folder = mProject ? mProject->FolderPath() : QString();
    PreferencesDialog dialog(folder.isEmpty() ? QDir::homePath() : folder, mWindow->Commands()->Keys(),
                             mWindow);
    connect(&dialog, SIGNAL(GhostingChanged()), this, SIGNAL(GhostingChanged()));
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.Apply();
    mWindow->Commands()->ApplyKeys();
    Q_EMIT Applied();
}

void SettingsBinding::EditProjectSettings()
{
    if (!mProject)
        return;
    const QString folder = mProject->FolderPath();
    ProjectSettingsDialog dialog(
        folder.isEmpty() ? QDir::homePath() : folder,
        tr("%1 Projects (*.%2)")
            .arg(QLatin1String(Settings::APPLICATION_TITLE), QLatin1String(ProjectFile::Suffix)),
        folder, mWindow);
    const ProjectSettings former = mProject->GetSettings();
    dialog.SetProjectPath(mProject->FilePath());
    dialog.SetSourceRootDir(former.sourceRoot);
    dialog.SetFrameRate(former.imageSequenceFrameRate);
    // The form shows three decimals, and a rate that it only rounds is none of the user's changes.
    const double shownRate = dialog.GetFrameRate();
    dialog.SetNotes(former.notes);
    if (dialog.exec() != QDialog::Accepted)
        return;
    ProjectSettings settings = former;
    settings.sourceRoot = dialog.GetSourceRootDir();
    if (!qFuzzyCompare(dialog.GetFrameRate(), shownRate))
        settings.imageSequenceFrameRate = dialog.GetFrameRate();
    settings.notes = dialog.GetNotes();
    mProject->SetSettings(settings);
    SaveProjectAs(dialog.GetProjectPath());
}

void SettingsBinding::SaveProjectAs(const QString& path)
{
    if (path.isEmpty() || QFileInfo(path).absoluteFilePath() == mProject->FilePath())
        return;
    QString whole = path;
    if (QFileInfo(path).suffix().isEmpty())
        whole += QLatin1Char('.') + QLatin1String(ProjectFile::Suffix);
    if (QFileInfo::exists(whole) &&
        QMessageBox::question(mWindow, tr("Project Path"), tr("%1 exists. Replace it?").arg(whole),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    QString error;
    if (!mProject->Save(whole, &error))
        Logger::GetInstance()->Error(error);
}

void SettingsBinding::ShowAbout()
{
    AboutDialog(mWindow).exec();
}

bool SettingsBinding::OpenElsewhere(const QStringList& paths)
{
    if (!Settings::openMediaInNewPlayers || !ShowsSomething(mWindow->Playback()))
        return false;
    const QString program = mProgram.isEmpty() ? QCoreApplication::applicationFilePath() : mProgram;
    if (QProcess::startDetached(program, paths))
        return true;
    Logger::GetInstance()->Warning(
        tr("No other player could be started with %1; the media are opened here").arg(program));
    return false;
}

void SettingsBinding::SetProgram(const QString& path)
{
    mProgram = path;
}

void SettingsBinding::FitWindow(const QSize& size)
{
    if (!Settings::resizeToFit || mWindow->isMaximized() || mWindow->isFullScreen() || size.isEmpty())
        return;
    const ViewerWidget* const viewer = mWindow->Viewer();
    QSize wanted = size / viewer->devicePixelRatioF();
    if (viewer->GetViewerLayout() == Horizontal)
        wanted.rwidth() *= 2;
    else if (viewer->GetViewerLayout() == Vertical)
        wanted.rheight() *= 2;
    const QSize around = mWindow->size() - viewer->size();
    const QSize frame = mWindow->frameGeometry().size() - mWindow->size();
    const QSize room = mWindow->screen()->availableSize() - frame - around;
    if (wanted.width() > room.width() || wanted.height() > room.height())
        wanted.scale(room, Qt::KeepAspectRatio);
    mWindow->resize(wanted + around);
}

namespace
{

struct SettingsCommandRow
{
    const char* name;
    const char* text;
    const char* menu;
    QList<QKeySequence> keys;
    void (SettingsBinding::*run)();
};

void AppendSettings(std::vector<Command>& commands, SettingsBinding* settings, const SettingsCommandRow& row)
{
    commands.push_back({QLatin1String(row.name),
                        QCoreApplication::translate("SettingsCommands", row.text),
                        QLatin1String(row.menu),
                        row.keys,
                        [settings, run = row.run] { (settings->*run)(); },
                        {}});
}

} // namespace

void AddSettingsCommands(std::vector<Command>& commands, SettingsBinding* settings)
{
    AppendSettings(commands, settings,
                   {"file.projectSettings",
                    QT_TRANSLATE_NOOP("SettingsCommands", "|Project &Settings…"),
                    "file",
                    {},
                    &SettingsBinding::EditProjectSettings});
    AppendSettings(commands, settings,
                   {"file.preferences",
                    QT_TRANSLATE_NOOP("SettingsCommands", "&Preferences…"),
                    "file",
                    {QKeySequence(Qt::CTRL + Qt::Key_Comma)},
                    &SettingsBinding::EditPreferences});
}

void AddHelpCommands(std::vector<Command>& commands, SettingsBinding* settings)
{
    AppendSettings(commands, settings,
                   {"help.about",
                    QT_TRANSLATE_NOOP("SettingsCommands", "&About"),
                    "help",
                    {},
                    &SettingsBinding::ShowAbout});
}
