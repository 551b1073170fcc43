// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QDialog>
#include <QString>

namespace Ui
{
class ProjectSettingsDialog;
}

/// The form of an open project's settings: its file, the root directory of its sources, the frame rate of its
/// image sequences, and its notes.
///
/// The host fills it with the setters, runs it, and reads the getters when it was accepted. Accepting checks
/// the source root directory alone.
class TORVALENUI_EXPORT ProjectSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    /// @p defaultDirPath is where the user begins to look while an edit is empty, @p fileFilter the filter of
    /// the project's file, and @p projectDirPath what Settings::PROJECT_DIRECTORY_VAR stands for in a source
    /// root directory; empty while the project has none.
    ProjectSettingsDialog(const QString& defaultDirPath, const QString& fileFilter,
                          const QString& projectDirPath, QWidget* parent = nullptr);
    ~ProjectSettingsDialog() override;

    QString GetProjectPath() const;
    void SetProjectPath(const QString& path);
    /// As the user sees it: Settings::PROJECT_DIRECTORY_VAR stays in it.
    QString GetSourceRootDir() const;
    void SetSourceRootDir(const QString& path);
    /// Frames per second of image sequences (1 to 60, three decimals).
    double GetFrameRate() const;
    void SetFrameRate(double frameRate);
    QString GetNotes() const;
    void SetNotes(const QString& notes);

public Q_SLOTS:
    /// Accepts the form unless the source root directory doesn't exist, which the user is told. An empty one
    /// stands for the project's directory.
    void accept() override;
    void SelectProjectPath();
    void SelectSourceRootDir();
    /// Takes the source root directory of the preferences, or the project's own if there is none. It stays as
    /// it is when that of the preferences changes later.
    void ResetSourceRootDir();
    /// Takes the frame rate of the preferences.
    void ResetImageSequenceFrameRate();

private:
    Ui::ProjectSettingsDialog* mForm;
    QString mDefaultDirPath;
    QString mFileFilter;
    QString mProjectDirPath;
};
