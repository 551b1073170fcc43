// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QDialog>
#include <QList>
#include <QString>

class KeyBindings;
struct KeySequence;

namespace Ui
{
class PreferencesDialog;
}

/// The form over Settings and over the table of key bindings.
///
/// It reads both once, while it is built. After exec() was accepted the host calls Apply(), which writes them
/// back; nothing else does, but for annotation ghosting: its three settings are written as soon as the user
/// changes them, with GhostingChanged() for each change, and "Cancel" doesn't take them back.
class TORVALENUI_EXPORT PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    /// @p defaultDirPath is where the user begins to look for a source root directory while the one shown
    /// doesn't exist. @p keyBindings stays the caller's and outlives the dialog; null shows no commands.
    PreferencesDialog(const QString& defaultDirPath, KeyBindings* keyBindings, QWidget* parent = nullptr);
    ~PreferencesDialog() override;

    /// Writes the key bindings, to the table and to the user's file, then the settings, and last the user's
    /// configuration file. Nothing is checked beyond the ranges of the controls.
    void Apply();

Q_SIGNALS:
    /// A setting of annotation ghosting was written. The host hands the ghosts to its viewers anew.
    void GhostingChanged();

public Q_SLOTS:
    void SelectSourceRootDir();
    /// Makes the source root directory the project's own, whichever that is at the time.
    void ResetSourceRootDir();
    void BrowseForTempDir();
    void BrowseForFFmpegPath();
    void BrowseForTempExportDir();
    void BrowseForDefaultExportDir();
    void OnAnnotationGhostingAlphaMaxChanged();
    void OnAnnotationGhostingAlphaMinChanged();
    void OnAnnotationGhostingDrawModeChanged(int index);

    void OnSelectedItemChanged();
    /// Shows the shortcuts of the selected command.
    void RefreshCurrentKeyBindings();
    /// Shows which command holds the chord @p text, and turns "Assign" off if that one is permanent.
    void UpdateExistingKeyBindingDisplay(QString text);
    /// Gives the chord that was pressed to the selected command, and takes it from whichever holds it.
    void AssignKeyBinding();
    /// Takes the shortcut shown from the selected command.
    void RemoveKeyBinding();
    /// Takes the chord @p seqText, in Qt's portable form, from every command.
    void RemoveKeyBinding(QString seqText);
    /// Gives every command its default shortcuts, if the user says so.
    void RestoreDefaultKeyBindings();

private:
    void CreateConnections();
    void LoadSettings();
    QString GetDirectory(const QString& startDir);
    QString GetFilePath(const QString& startPath);

    void CopyKeyBindings();
    void LoadKeyBindings();
    void AddBinding(KeySequence* sequence);
    KeySequence* SelectedBinding() const;

    Ui::PreferencesDialog* mForm;
    QString mDefaultDirPath;
    KeyBindings* mKeyBindings;
    QList<KeySequence*> mWorkingBindings;
};
