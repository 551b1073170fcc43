// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/SnapshotNumbering.h"
#include "host/SnapshotType.h"

#include <QDialog>
#include <QString>

class QLabel;
class QProgressBar;
class QPushButton;

/// The window that stands open while the host writes a series of stills.
///
/// The host calls SetFrameTotal(), then SetCurrentFrame() for each frame, all on the GUI thread, and closes
/// the dialog with accept(), done() or hide(): reject() asks the user, whether or not there is work under
/// way.
class TORVALENUI_EXPORT SnapshotProgressDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SnapshotProgressDialog(QWidget* parent);

    /// Sets how many frames there are; call it before the first SetCurrentFrame(). 0 shows the bar busy.
    void SetFrameTotal(int total);
    /// Shows @p frame, as the host counts them, in the text and on the bar; the bar ignores one that it has
    /// no room for.
    void SetCurrentFrame(int frame);

public Q_SLOTS:
    /// Asks whether to cancel; if the user says so, signals it and closes the dialog.
    void reject() override;

Q_SIGNALS:
    /// For the host to start its work by, with the values of SnapshotDialog: the dialog itself never emits
    /// it.
    void BeginSnapshot(QString dirPath, QString baseFileName, SnapshotType type, SnapshotNumbering numbering,
                       int padding, bool overwrite);
    /// The user cancelled. The host ends its work.
    void CancelSnapshot();

private:
    void CreateWidgets();
    void CreateLayout();
    void CreateConnections();

    QLabel* mTextLabel = nullptr;
    QProgressBar* mProgressBar = nullptr;
    QPushButton* mCancelButton = nullptr;
    int mFrameTotal = 0;
};
