// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectImport.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <memory>
#include <vector>

struct Command;
class AnnotationController;
class PlaybackController;
class Project;
class ProjectJournal;
class ProjectTimeline;
class QMenu;
class QProgressDialog;
class QWidget;
class RecentFiles;

/// Gives the player's window its project: the commands that begin, open, save and import, the questions that
/// come with them, the title, the recent projects, and the journal that brings back what was not saved.
class ProjectBinding : public QObject
{
    Q_OBJECT

public:
    /// @p window is the parent of every question. The journal is kept in @p journalFolder.
    ProjectBinding(Project* project, PlaybackController* playback, AnnotationController* annotation,
                   const QString& journalFolder, QWidget* window);
    ~ProjectBinding() override;

    Project* GetProject() const;
    /// Appends the commands of projects to @p commands, for the menu of files.
    void AddCommands(std::vector<Command>& commands);
    /// Has @p menu show the recent projects.
    void SetRecentMenu(QMenu* menu);
    /// Brings the menu of recent projects in line with the settings.
    void UpdateRecent();

    /// Gives the window the title of the project, @p shown and the player, with the mark of changes.
    void UpdateTitle(const QStringList& shown);
    /// Whether the project may be dropped: asks where it holds unsaved work and
    /// Settings::displayConfirmationOnClose is on, and saves it if that is the answer.
    bool MayDrop();
    /// Offers to take over what players that were ended without saving have left.
    void OfferRecovery();

    /// Whether @p path is that of a project file.
    static bool IsProjectFile(const QString& path);
    /// Opens the project at @p path after MayDrop(). Returns whether it is open.
    bool OpenProject(const QString& path);
    /// Imports @p paths for viewing and shows the first in viewer @p viewer (-1 for none). One that the
    /// project has already is shown at once.
    void OpenMedia(const QStringList& paths, int viewer);

public Q_SLOTS:
    void NewProject();
    void OpenFromDialog();
    /// Each returns whether the project is saved.
    bool SaveProject();
    bool SaveProjectAs();
    /// Asks for media and imports them.
    void ImportFromDialog();
    /// Shows the progress of @p import where it takes long, and tells its errors.
    void Watch(ProjectImport* import);
    /// Shows the default timeline in viewer A if Settings::alwaysActivateDefaultTimeline says so.
    void ActivateDefault();

Q_SIGNALS:
    /// Viewer @p viewer is to show @p timeline; an empty pointer clears it.
    void ShowRequested(const std::shared_ptr<ProjectTimeline>& timeline, int viewer);
    /// A medium or project that was to be opened can't be; @p text says which and why.
    void OpenFailed(const QString& text);
    /// The source with timeline @p timeline was opened for viewing, and is shown if it was to be.
    void MediumOpened(const std::shared_ptr<ProjectTimeline>& timeline);
    /// An import has ended, or the project has changed: what depends on it is out of date.
    void Updated();

private Q_SLOTS:
    void OnReset();
    void OnChanged();
    void OnRefused(const QString& reason);
    void OnSourceFailed();
    void OpenRecent(const QString& path);

private:
    /// Imports @p paths without showing them, unless nothing is shown.
    void OpenBeside(const QStringList& paths);
    void OnOpened(const ProjectImport::Result& result, int viewer);
    void TellErrors(const QStringList& errors);
    QString ProjectFilter() const;
    QString StartFolder() const;
    bool SaveTo(const QString& path);
    void AddRecent(const QString& path);

    Project* mProject;
    PlaybackController* mPlayback;
    AnnotationController* mAnnotation;
    QString mJournalFolder;
    QWidget* mWindow;
    std::unique_ptr<ProjectJournal> mJournal;
    RecentFiles* mRecent = nullptr;
};
