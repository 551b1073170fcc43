// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/SnapshotNumbering.h"
#include "host/SnapshotType.h"

#include <QDialog>
#include <QString>

namespace Ui
{
class SnapshotDialog;
}

/// The form in which the user chooses what stills to write: where to, under which name, of which frames, with
/// what numbering.
///
/// It writes nothing and keeps nothing: the host sets the values, runs it, and reads them back when it was
/// accepted. The values of controls that are hidden for a single frame stay as they are.
class TORVALENUI_EXPORT SnapshotDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SnapshotDialog(QWidget* parent);
    ~SnapshotDialog() override;

    QString GetDirectoryPath() const;
    void SetDirectoryPath(const QString& path);
    /// The files' base name.
    QString GetName() const;
    void SetName(const QString& name);
    SnapshotType GetType() const;
    /// Chooses @p type, and shows only what goes with it even if it was chosen before; call it before the
    /// first show.
    void SetType(SnapshotType type);
    SnapshotNumbering GetNumbering() const;
    /// Chooses @p numbering; an unknown value counts as the one in sequence.
    void SetNumbering(SnapshotNumbering numbering);
    /// Digits of a number.
    int GetPadding() const;
    /// Sets the digits of a number (clamped to 1 to 6).
    void SetPadding(int padding);
    bool IsOverwriteEnabled() const;
    void SetOverwriteEnabled(bool enabled);
    /// Stores the directory that browsing starts in while none is entered.
    void SetLastSnapshotDirectory(const QString& path);

public Q_SLOTS:
    /// Closes the dialog if a directory and a name are entered; tells the user what is missing otherwise.
    void accept() override;
    /// Lets the user pick the directory.
    void SelectOutputDir();
    /// Hides what says nothing about a single frame, or shows it.
    void OnTypeChanged();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void CreateConnections();

    Ui::SnapshotDialog* mUi;
    QString mLastSnapshotDirectory;
};
