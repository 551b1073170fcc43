// SPDX-License-Identifier: MIT
#include "window/OutputBinding.h"

#include "dialogs/output/ExportDialog.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "output/ExportJob.h"
#include "output/OutputPlan.h"
#include "playback/PlaybackController.h"
#include "project/MediaSource.h"
#include "project/ProjectTimeline.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MediaInfoBinding.h"
#include "window/SnapshotBinding.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

OutputViewers ShownViewers(const PlaybackController* playback, int layout)
{
    OutputViewers viewers;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
        viewers.timelines[static_cast<size_t>(viewer)] = playback->TimelineOf(viewer).get();
    viewers.leading = playback->ActiveViewer();
    if (!viewers.timelines[static_cast<size_t>(viewers.leading)])
        viewers.leading = 1 - viewers.leading;
    viewers.layout = static_cast<ViewerLayout>(layout);
    return viewers;
}

OutputBinding::OutputBinding(PlaybackController* playback, ViewerWidget* viewer,
                             std::function<bool()> annotationsShown, QWidget* window)
    : QObject(window)
    , mPlayback(playback)
    , mViewer(viewer)
    , mWindow(window)
    , mJob(std::make_unique<ExportJob>())
    , mSnapshots(new SnapshotBinding(playback, std::move(annotationsShown), window))
    , mMediaInfo(new MediaInfoBinding(playback, viewer, window))
{
    connect(mJob.get(), SIGNAL(Line(QString, bool)), this, SLOT(OnExportLine(QString, bool)));
    connect(mJob.get(), SIGNAL(Progress(int)), this, SLOT(OnExportProgress(int)));
    connect(mJob.get(), SIGNAL(Finished(bool)), this, SLOT(OnExportFinished()));
    connect(playback, SIGNAL(LeadingTimelineChanged()), this, SLOT(UpdateTimelineSize()));
}

OutputBinding::~OutputBinding() = default;

void OutputBinding::AddCommands(std::vector<Command>& commands)
{
    const QString file = QStringLiteral("file");
    commands.push_back({"output.export",
                        tr("|&Export…"),
                        file,
                        {QKeySequence(Qt::CTRL + Qt::Key_E)},
                        [this] { OpenExportDialog(); },
                        {}});
    commands.push_back({"output.snapshot",
                        tr("&Snapshot"),
                        file,
                        {QKeySequence(Qt::Key_S)},
                        [this] { mSnapshots->TakeShownFrame(); },
                        {}});
    commands.push_back({"output.advancedSnapshot",
                        tr("&Advanced Snapshot…"),
                        file,
                        {QKeySequence(Qt::SHIFT + Qt::Key_S)},
                        [this] { mSnapshots->OpenDialog(); },
                        {}});
    commands.push_back({"media.information",
                        tr("|Media &Information"),
                        file,
                        {QKeySequence(Qt::CTRL + Qt::Key_I)},
                        [this] { mMediaInfo->Toggle(); },
                        [this] { return mMediaInfo->IsShown(); }});
}

bool OutputBinding::MayClose()
{
    if (!mJob->IsRunning())
        return true;
    if (QMessageBox::question(mWindow, tr("Stop Export"),
                              tr("An export is running. Stop it and close the window?"),
                              QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return false;
    mJob->Stop();
    return true;
}

ExportDialog* OutputBinding::Dialog() const
{
    return mDialog;
}

SnapshotBinding* OutputBinding::Snapshots() const
{
    return mSnapshots;
}

MediaInfoBinding* OutputBinding::MediaInformation() const
{
    return mMediaInfo;
}

void OutputBinding::OpenExportDialog()
{
    if (!mPlayback->LeadingTimeline() || mPlayback->LeadingTimeline()->FrameCount() == 0)
    {
        Logger::GetInstance()->Warning(tr("There is nothing to export: no viewer shows a timeline."));
        return;
    }
    // It takes the settings when it is built; while an export runs, or its log is being read, it stays.
    if (!mDialog || (!mDialog->isVisible() && !mJob->IsRunning()))
        MakeExportDialog();
    mDialog->show();
    mDialog->raise();
    mDialog->activateWindow();
}

void OutputBinding::MakeExportDialog()
{
    delete mDialog;
    mDialog = new ExportDialog(mWindow);
    mDialog->setObjectName(QStringLiteral("exportDialog"));
    connect(mDialog, SIGNAL(ExportRequested(QString, int, int, int, int, int, bool, bool, bool)), this,
            SLOT(OnExportRequested(QString, int, int, int, int, int, bool, bool, bool)));
    connect(mDialog, SIGNAL(CancelExportRequested()), this, SLOT(OnCancelExportRequested()));

    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    QString directory = Settings::defaultExportOutputDirPath;
    const std::shared_ptr<const MediaSource> source = timeline->SourceAt(mPlayback->CurrentFrame());
    if (source && directory.isEmpty())
        directory = QFileInfo(source->Info().path).absolutePath();
    UpdateTimelineSize();
    mDialog->SetDefaultOutputDirPath(directory);
    // Another name than that of the source, whose directory this often is.
    const QString name = QFileInfo(timeline->GetName()).completeBaseName();
    if (!directory.isEmpty() && !name.isEmpty())
        mDialog->SetOutputPath(QDir(directory).filePath(tr("%1 export.mp4").arg(name)));
}

void OutputBinding::UpdateTimelineSize()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    const std::shared_ptr<const MediaSource> source =
        timeline ? timeline->SourceAt(mPlayback->CurrentFrame()) : nullptr;
    if (mDialog && source)
        mDialog->SetTimelineWidthHeight(source->Info().width, source->Info().height);
}

void OutputBinding::OnExportRequested(const QString& outputPath, int width, int height, int quality,
                                      int preset, int profile, bool ignoreRange, bool annotations,
                                      bool viewerLayout)
{
    if (mJob->IsRunning())
        return;
    const std::shared_ptr<ProjectTimeline> timeline = mPlayback->LeadingTimeline();
    if (!timeline)
    {
        mDialog->AppendOutputText(tr("Error: no viewer shows a timeline."), false);
        return;
    }
    PlaybackRange range = mPlayback->Range();
    if (ignoreRange)
        range = PlaybackRange{1, timeline->FrameCount()};
    ExportOptions options;
    options.outputPath = outputPath;
    options.size = QSize(width, height);
    options.quality = static_cast<ExportQuality>(quality);
    options.preset = static_cast<ExportPreset>(preset);
    options.profile = static_cast<ExportProfile>(profile);
    options.encoder = ExportJob::FindEncoder();
    options.temporaryDirectory = Settings::tempExportDirPath;
    mDialog->SetExporting(true);
    mJob->Start(MakeOutputPlan(ShownViewers(mPlayback, viewerLayout ? mViewer->GetViewerLayout() : Single),
                               FramesBetween(range.first, range.last), annotations, true),
                options);
}

void OutputBinding::OnCancelExportRequested()
{
    mJob->Stop();
    // An export that has ended while the user was asked is not heard of again.
    if (!mJob->IsRunning())
        mDialog->SetExporting(false);
}

void OutputBinding::OnExportLine(const QString& text, bool detailedOnly)
{
    if (mDialog)
        mDialog->AppendOutputText(text, detailedOnly);
}

void OutputBinding::OnExportProgress(int perMille)
{
    if (mDialog)
        mDialog->SetProgressBarValue(perMille);
}

void OutputBinding::OnExportFinished()
{
    if (mDialog)
        mDialog->SetExporting(false);
}
