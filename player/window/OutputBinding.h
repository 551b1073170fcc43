// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class ExportDialog;
class ExportJob;
class MediaInfoBinding;
class PlaybackController;
class QWidget;
class SnapshotBinding;
class ViewerWidget;
struct Command;
struct OutputViewers;

/// Ties export, snapshots and media information to what the player shows: their commands, their dialogs and
/// the jobs behind them.
class OutputBinding : public QObject
{
    Q_OBJECT

public:
    /// @p window becomes the parent of the dialogs. @p annotationsShown tells whether the viewers show
    /// annotations.
    OutputBinding(PlaybackController* playback, ViewerWidget* viewer, std::function<bool()> annotationsShown,
                  QWidget* window);
    ~OutputBinding() override;

    /// Appends the commands to @p commands.
    void AddCommands(std::vector<Command>& commands);
    /// Whether the window may close: asks the user if an export is running, and stops it if so told.
    bool MayClose();

    /// The dialog of the export; null before it was opened first.
    ExportDialog* Dialog() const;
    SnapshotBinding* Snapshots() const;
    MediaInfoBinding* MediaInformation() const;

private Q_SLOTS:
    void OnExportRequested(const QString& outputPath, int width, int height, int quality, int preset,
                           int profile, bool ignoreRange, bool annotations, bool viewerLayout);
    void OnCancelExportRequested();
    void OnExportLine(const QString& text, bool detailedOnly);
    void OnExportProgress(int perMille);
    void OnExportFinished();
    void UpdateTimelineSize();

private:
    void OpenExportDialog();
    void MakeExportDialog();

    PlaybackController* mPlayback;
    ViewerWidget* mViewer;
    QWidget* mWindow;
    QPointer<ExportDialog> mDialog;
    std::unique_ptr<ExportJob> mJob;
    SnapshotBinding* mSnapshots;
    MediaInfoBinding* mMediaInfo;
};

/// What the viewers of @p playback show, laid out as @p layout.
OutputViewers ShownViewers(const PlaybackController* playback, int layout);
