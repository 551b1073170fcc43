// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <vector>

struct Command;
class PlayerWindow;
class Project;

/// Gives the player its preferences, the project's settings and the about box, and acts on those preferences
/// that the parts of the player don't look at by themselves.
class SettingsBinding : public QObject
{
    Q_OBJECT

public:
    /// @p window is the parent.
    explicit SettingsBinding(PlayerWindow* window);

    /// Makes @p project, which may be null, the one whose settings the user edits.
    void SetProject(Project* project);

    /// Opens @p paths in a player of their own if Settings::openMediaInNewPlayers says so and this one shows
    /// something. Returns whether it did.
    bool OpenElsewhere(const QStringList& paths);
    /// The program that OpenElsewhere() starts; this one unless told otherwise.
    void SetProgram(const QString& path);
    /// Makes the viewers as large as pictures of @p size, if Settings::resizeToFit says so and the screen has
    /// the room.
    void FitWindow(const QSize& size);

public Q_SLOTS:
    void EditPreferences();
    void EditProjectSettings();
    void ShowAbout();

Q_SIGNALS:
    /// Settings have changed: bring them into force.
    void Applied();
    /// Settings of annotation ghosting have changed.
    void GhostingChanged();

private:
    /// Saves the project in the file @p path, if that is another one than its own.
    void SaveProjectAs(const QString& path);

    PlayerWindow* mWindow;
    Project* mProject = nullptr;
    QString mProgram;
};

/// Appends the commands of @p settings that stand in the menu of files to @p commands.
void AddSettingsCommands(std::vector<Command>& commands, SettingsBinding* settings);
/// The same for those of the menu of help.
void AddHelpCommands(std::vector<Command>& commands, SettingsBinding* settings);
