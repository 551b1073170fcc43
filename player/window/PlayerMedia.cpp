// SPDX-License-Identifier: MIT
// The window's media: what is open, and what the viewers show of it.
#include "window/PlayerWindow.h"

#include "annotation/AnnotationController.h"
#include "annotation/AnnotationStore.h"
#include "host/Logger.h"
#include "playback/PlaybackController.h"
#include "project/MediaLibrary.h"
#include "project/MediaTimeline.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/DemoDrawing.h"
#include "window/MessageBar.h"
#include "window/RecentFiles.h"
#include "window/SettingsBinding.h"
#include "window/ViewerBackEndChoice.h"

#include <QAction>
#include <QFileDialog>
#include <QMenu>

#include <algorithm>

void PlayerWindow::OpenFiles(const QStringList& paths, int viewer)
{
    for (const QString& path : paths)
    {
        mMedia->Open(path, viewer);
        viewer = -1;
    }
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

void PlayerWindow::OnMediaOpened(int index, int viewer)
{
    const MediaLibrary::Entry& entry = mMedia->Entries()[static_cast<size_t>(index)];
    const MediaInfo& info = entry.timeline->Info();
    mPlayback->Lanes().Adopt(entry.timeline->GetMediaSource(), entry.media);
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
    UpdateMediaMenu();
    mRecentFiles->Add(info.path);
    // A medium that is opened beside others goes to the first viewer only while nothing is there.
    if (viewer < 0 && !mPlayback->TimelineOf(0) && !mMedia->IsOpening())
        viewer = 0;
    if (viewer >= 0)
    {
        ShowEntry(index, viewer);
        mSettings->FitWindow(QSize(info.width, info.height));
    }
    EmitIfSettled();
}

void PlayerWindow::OnMediaFailed(const QString& text)
{
    Logger::GetInstance()->Error(text);
    UpdateStatus();
    EmitIfSettled();
}

void PlayerWindow::ShowEntry(int index, int viewer)
{
    const MediaLibrary::Entry& entry = mMedia->Entries()[static_cast<size_t>(index)];
    mAnnotation->EndEdits();
    if (const auto& old = mPlayback->TimelineOf(viewer); old && old != entry.timeline)
        old->SetViewerIndex(-1);
    entry.timeline->SetViewerIndex(viewer);
    ShowPicture(mViewer, viewer, QImage());
    if (viewer == 1 && mViewer->GetViewerLayout() == Single)
        SetLayout(Horizontal);
    mPlayback->SetTimeline(viewer, entry.timeline);
    UpdateTitle();
    UpdateMediaMenu();
    UpdateStatus();
    if (mDemoDrawing && viewer == 0)
    {
        mDemoDrawing = false;
        DemoDrawing::AddTo(entry.timeline.get());
        PresentOverlays();
        RefreshViewers();
    }
    if (mPlayWhenReady && !mMedia->IsOpening())
    {
        mPlayWhenReady = false;
        mPlayback->Play(1);
    }
}

void PlayerWindow::ShowTimeline(const std::shared_ptr<ProjectTimeline>& timeline, int viewer)
{
    const std::vector<MediaLibrary::Entry>& entries = mMedia->Entries();
    const auto found =
        std::find_if(entries.begin(), entries.end(),
                     [&](const MediaLibrary::Entry& entry) { return entry.timeline == timeline; });
    if (found != entries.end())
        ShowEntry(static_cast<int>(found - entries.begin()), viewer);
}

void PlayerWindow::DrawDemoWhenReady()
{
    mDemoDrawing = true;
}

void PlayerWindow::PlayWhenReady()
{
    mPlayWhenReady = true;
}

void PlayerWindow::ShowNeighbourEntry(int step)
{
    const std::vector<MediaLibrary::Entry>& entries = mMedia->Entries();
    const int viewer = mPlayback->ActiveViewer();
    const auto shown = std::find_if(entries.begin(), entries.end(),
                                    [&](const MediaLibrary::Entry& entry)
                                    { return entry.timeline == mPlayback->TimelineOf(viewer); });
    if (entries.empty())
        return;
    const int count = static_cast<int>(entries.size());
    const int current = shown == entries.end() ? 0 : static_cast<int>(shown - entries.begin());
    ShowEntry((current + step + count) % count, viewer);
}

void PlayerWindow::UpdateMediaMenu()
{
    mMediaMenu->clear();
    mCommands->FillMenu(QStringLiteral("media"), mMediaMenu);
    mMediaMenu->addSeparator();
    const std::vector<MediaLibrary::Entry>& entries = mMedia->Entries();
    for (int index = 0; index < static_cast<int>(entries.size()); ++index)
    {
        MediaTimeline& timeline = *entries[static_cast<size_t>(index)].timeline;
        QString name = timeline.GetName();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* const action = mMediaMenu->addAction(name);
        action->setToolTip(timeline.Info().path);
        action->setCheckable(true);
        action->setChecked(timeline.GetViewerIndex() >= 0);
        connect(action, &QAction::triggered, this,
                [this, index]
                {
                    ShowEntry(index, mPlayback->ActiveViewer());
                    UpdateMediaMenu();
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
    if (mMedia->IsOpening())
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
