// SPDX-License-Identifier: MIT
#pragma once

#include "host/SnapshotNumbering.h"
#include "host/SnapshotType.h"
#include "playback/PlaybackRange.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class PlaybackController;
class ProjectTimeline;
class QWidget;
class SnapshotDialog;
class SnapshotJob;
class SnapshotProgressDialog;

/// Takes stills of what the active viewer shows: at a key, or as the dialog of snapshots says.
///
/// Stills have the size of their picture, and its annotations while the viewers show them.
class SnapshotBinding : public QObject
{
    Q_OBJECT

public:
    SnapshotBinding(PlaybackController* playback, std::function<bool()> annotationsShown, QWidget* window);
    ~SnapshotBinding() override;

    /// Writes the frame on screen under a name of its own into the directory of the snapshots before; the log
    /// tells where.
    void TakeShownFrame();
    /// Asks the user what to write, and writes it.
    void OpenDialog();
    /// Where the next snapshot at a key goes.
    QString Directory() const;
    void SetDirectory(const QString& directory);
    bool IsRunning() const;

private Q_SLOTS:
    void OnBeginSnapshot(const QString& dirPath, const QString& baseFileName, SnapshotType type,
                         SnapshotNumbering numbering, int padding, bool overwrite);
    void OnCancelSnapshot();
    void OnProgress(int done);
    void OnFinished(int written, const QStringList& problems);

private:
    bool IsReady() const;
    void Begin(const std::vector<int>& frames, const QStringList& paths, bool replace);
    void FillDialog(SnapshotDialog& dialog, ProjectTimeline& timeline) const;
    void KeepValues(const SnapshotDialog& dialog);

    PlaybackController* mPlayback;
    std::function<bool()> mAnnotationsShown;
    QWidget* mWindow;
    std::unique_ptr<SnapshotJob> mJob;
    SnapshotProgressDialog* mProgress;
    /// What the run was asked for, taken when the dialog was accepted.
    std::shared_ptr<ProjectTimeline> mTimeline;
    int mFrame = 1;
    PlaybackRange mRange;
    int mTotal = 0;
    bool mCancelled = false;

    // What the user chose last.
    QString mDirectory;
    QString mName;
    SnapshotType mType = SnapshotSingleFrame;
    SnapshotNumbering mNumbering = SnapshotNumberingSequence;
    int mPadding = 4;
    bool mOverwrite = false;
};
