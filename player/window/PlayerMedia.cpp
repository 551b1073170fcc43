// SPDX-License-Identifier: MIT
// The window's media: what is open, and what the viewers show of it.
#include "window/PlayerWindow.h"

#include "annotation/AnnotationController.h"
#include "annotation/AnnotationStore.h"
#include "host/Logger.h"
#include "host/Source.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/DemoDrawing.h"
#include "window/MessageBar.h"
#include "window/ProjectBinding.h"
#include "window/RecentFiles.h"
#include "window/SettingsBinding.h"
#include "window/TimelineBinding.h"
#include "window/ViewerBackEndChoice.h"

#include <QAction>
#include <QFileDialog>
#include <QMenu>

void PlayerWindow::OpenFiles(const QStringList& paths, int viewer)
{
    QStringList media;
    for (const QString& path : paths)
    {
        if (ProjectBinding::IsProjectFile(path))
            mProjects->OpenProject(path);
        else
            media << path;
    }
    mProjects->OpenMedia(media, viewer);
    UpdateStatus();
}

void PlayerWindow::OpenFromDialog(int viewer)
{
    const QStringList patterns = MediaNamePatterns();
    const QStringList paths = QFileDialog::getOpenFileNames(
        this, viewer == 0 ? tr("Open Media") : tr("Open Media in Viewer B"), QString(),
        tr("Movies and Images (%1);;All Files (*)").arg(patterns.join(QLatin1Char(' '))));
    if (!paths.isEmpty())
        OpenForUser(paths, viewer);
}

void PlayerWindow::OpenForUser(const QStringList& paths, int viewer)
{
    // Viewer B is one of this player.
    if (viewer != 1 && mSettings->OpenElsewhere(paths))
        return;
    mMessages->Clear();
    OpenFiles(paths, viewer);
}

void PlayerWindow::OnRecentFilePicked(const QString& path)
{
    OpenForUser({path}, mPlayback->ActiveViewer());
}

void PlayerWindow::OnMediumOpened(const std::shared_ptr<ProjectTimeline>& timeline)
{
    const MediaInfo& info = std::static_pointer_cast<MediaTimeline>(timeline)->Info();
    Logger::GetInstance()->Info(tr("Opened %1: %2 x %3, %4 frames at %5 frames per second, %6")
                                    .arg(info.path)
                                    .arg(info.width)
                                    .arg(info.height)
                                    .arg(info.frameCount)
                                    .arg(info.frameRate.PerSecond(), 0, 'g', 6)
                                    .arg(info.codecName));
    if (info.missingFrames > 0)
        Logger::GetInstance()->Warning(tr("%1: %2 of %3 frames have no file")
                                           .arg(info.path)
                                           .arg(info.missingFrames)
                                           .arg(info.frameCount));
    mRecentFiles->Add(info.path);
}

void PlayerWindow::OnShowRequested(const std::shared_ptr<ProjectTimeline>& timeline, int viewer)
{
    ShowTimeline(timeline, viewer);
    const auto source = std::dynamic_pointer_cast<MediaTimeline>(timeline);
    if (source)
        mSettings->FitWindow(QSize(source->Info().width, source->Info().height));
    if (!source || viewer != 0 || !mDemoDrawing)
        return;
    mDemoDrawing = false;
    DemoDrawing::AddTo(source.get());
    PresentOverlays();
    RefreshViewers();
}

void PlayerWindow::OnProjectUpdated()
{
    UpdateTitle();
    UpdateStatus();
    mTimelines->UpdateBookmarks();
    PresentOverlays();
    RefreshViewers();
    const std::shared_ptr<ProjectTimeline>& lead = mPlayback->LeadingTimeline();
    if (mPlayWhenReady && lead && lead->FrameCount() > 0 && !mProject->IsReading())
    {
        mPlayWhenReady = false;
        mPlayback->Play(1);
    }
    EmitIfSettled();
}

void PlayerWindow::OnSourceFailed(const QString& text)
{
    Logger::GetInstance()->Error(text);
    UpdateStatus();
    EmitIfSettled();
}

void PlayerWindow::ShowTimeline(const std::shared_ptr<ProjectTimeline>& timeline, int viewer)
{
    const std::shared_ptr<ProjectTimeline> old = mPlayback->TimelineOf(viewer);
    if (!timeline && !old)
        return;
    mAnnotation->EndEdits();
    ShowPicture(mViewer, viewer, QImage());
    if (timeline && viewer == 1 && mViewer->GetViewerLayout() == Single)
        SetLayout(Horizontal);
    mPlayback->SetTimeline(viewer, timeline);
    if (old && old != timeline)
    {
        old->SetViewerIndex(-1);
        mProject->NoteViewer(old->GetID(), -1);
    }
    for (int index = 0; index < PlaybackController::ViewerCount; ++index)
    {
        if (const std::shared_ptr<ProjectTimeline>& shown = mPlayback->TimelineOf(index))
            mProject->NoteViewer(shown->GetID(), index);
    }
    PresentOverlays();
    UpdateTitle();
    UpdateStatus();
}

void PlayerWindow::DrawDemoWhenReady()
{
    mDemoDrawing = true;
}

void PlayerWindow::PlayWhenReady()
{
    mPlayWhenReady = true;
}

void PlayerWindow::ShowNeighbourSource(int step)
{
    const QList<std::shared_ptr<ProjectTimeline>> sources = mProject->Timelines(true);
    if (sources.isEmpty())
        return;
    const int viewer = mPlayback->ActiveViewer();
    const int shown = sources.indexOf(mPlayback->TimelineOf(viewer));
    // From anything else it begins at one end.
    const int next = shown < 0 ? (step > 0 ? 0 : sources.size() - 1) : shown + step;
    ShowTimeline(sources[(next + sources.size()) % sources.size()], viewer);
}

void PlayerWindow::UpdateMediaMenu()
{
    mMediaMenu->clear();
    mCommands->FillMenu(QStringLiteral("media"), mMediaMenu);
    AddToMediaMenu(mProject->Timelines(false));
    AddToMediaMenu(mProject->Timelines(true));
}

void PlayerWindow::AddToMediaMenu(const QList<std::shared_ptr<ProjectTimeline>>& timelines)
{
    mMediaMenu->addSeparator();
    for (const std::shared_ptr<ProjectTimeline>& timeline : timelines)
    {
        QString name = timeline->GetName();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* const action = mMediaMenu->addAction(name);
        if (const std::shared_ptr<Source> source = timeline->GetSource().lock())
            action->setToolTip(source->GetPath());
        action->setCheckable(true);
        action->setChecked(timeline->GetViewerIndex() >= 0);
        connect(action, &QAction::triggered, this,
                [this, id = timeline->GetID()]
                {
                    if (const std::shared_ptr<ProjectTimeline> wanted = mProject->FindTimeline(id))
                        ShowTimeline(wanted, mPlayback->ActiveViewer());
                });
    }
}

void PlayerWindow::OnPictureReady(int viewer, int frame, const ReadResult& result)
{
    if (mAnnotation->Strokes()->DrawingViewer() == viewer)
        mAnnotation->Strokes()->Cancel();
    if (mAnnotation->Text()->TypingViewer() == viewer && mAnnotation->Text()->TypingFrame() != frame)
        mAnnotation->Text()->Finish();
    ShowPicture(mViewer, viewer, result.image);
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
    mOverlays.Present(mViewer, viewer, timeline->Annotations().get(), frame,
                      mAnnotation->Text()->TypingViewer() == viewer);
    RefreshViewers();
    EmitIfSettled();
}

void PlayerWindow::OnFrameFailed(int media, int frame, const QString& text)
{
    Q_UNUSED(media)
    Q_UNUSED(frame)
    Logger::GetInstance()->Error(text);
}

bool PlayerWindow::IsSettled() const
{
    if (mProject->IsReading())
        return false;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        if (mPlayback->ShownFrame(viewer) != mPlayback->WantedFrame(viewer))
            return false;
    }
    return true;
}

void PlayerWindow::EmitIfSettled()
{
    if (IsSettled())
        Q_EMIT Settled();
}
