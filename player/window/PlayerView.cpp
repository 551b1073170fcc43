// SPDX-License-Identifier: MIT
// How the window shows what it shows: annotations, layout, zoom, tools.
#include "window/PlayerWindow.h"

#include "annotation/AnnotationController.h"
#include "annotation/AnnotationStore.h"
#include "annotation/FullPaint.h"
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "project/BookmarkController.h"
#include "project/Project.h"
#include "project/ProjectTimeline.h"
#include "viewers/ViewerWidget.h"
#include "window/AnnotationBarBinding.h"
#include "window/CommandTable.h"
#include "window/ElementPanelBinding.h"
#include "window/MessageBar.h"
#include "window/PanelTogglesBinding.h"
#include "window/ProjectBinding.h"
#include "window/PropertiesBinding.h"
#include "window/RecentFiles.h"
#include "window/TimelineBinding.h"
#include "window/VolumeBarBinding.h"

#include <algorithm>

void PlayerWindow::PresentOverlays()
{
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
        const bool isEdited = mAnnotation->Strokes()->DrawingViewer() == viewer ||
                              mAnnotation->Text()->TypingViewer() == viewer;
        mOverlays.Present(mViewer, viewer, timeline ? timeline->Annotations().get() : nullptr,
                          mPlayback->ShownFrame(viewer), isEdited);
    }
}

void PlayerWindow::RefreshViewers()
{
    // While playing every paint is a full one: a copy of each picture would be wasted.
    RequestFullPaint(mViewer, Settings::drawEnabled && !mPlayback->IsPlaying());
}

void PlayerWindow::ShowChange(const ProjectTimeline* timeline, int frame)
{
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<ProjectTimeline>& shown = mPlayback->TimelineOf(viewer);
        if (shown.get() != timeline || mPlayback->ShownFrame(viewer) == frame)
            continue;
        mPlayback->Pause();
        mPlayback->SeekTime(shown->FrameToTime(frame) + Settings::ROUNDING_ERROR_EXTRA_TIME);
        return;
    }
}

void PlayerWindow::OnDrawingsChanged(AnnotationStore* store, int frame, bool replayed)
{
    mProject->NoteDrawings(store, frame);
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<ProjectTimeline> timeline = mPlayback->TimelineOf(viewer);
        if (!timeline || timeline->Annotations().get() != store)
            continue;
        timeline->UpdateAnnotationBookmark(frame);
        // Undo and redo take the user to the frame that they change.
        if (replayed)
            ShowChange(timeline.get(), frame);
    }
    mTimelines->UpdateBookmarks();
    PresentOverlays();
    RefreshViewers();
}

void PlayerWindow::OnBookmarksChanged(ProjectTimeline* timeline, int frame, bool replayed)
{
    mProject->NoteBookmarks(timeline->GetID());
    if (replayed)
        ShowChange(timeline, frame);
    mTimelines->UpdateBookmarks();
}

void PlayerWindow::OnGhostingChanged()
{
    PresentOverlays();
    RefreshViewers();
}

void PlayerWindow::OnToolChanged()
{
    if (Settings::drawEnabled && !mAnnotationsVisible)
        SetAnnotationsVisible(true);
    const Qt::CursorShape drawing = Settings::annotationTool == Text ? Qt::IBeamCursor : Qt::CrossCursor;
    mViewer->setCursor(Settings::drawEnabled ? drawing : Qt::ArrowCursor);
    PresentOverlays();
    RefreshViewers();
    UpdateStatus();
}

void PlayerWindow::SetAnnotationsVisible(bool visible)
{
    mAnnotationsVisible = visible;
    mViewer->SetAnnotationsVisible(visible);
    RefreshViewers();
}

void PlayerWindow::ClearFrame(bool removeBookmark)
{
    mAnnotation->EndEdits();
    const int active = mPlayback->ActiveViewer();
    mBookmarks->ClearFrame(mPlayback->TimelineOf(active) ? active : 1 - active, removeBookmark);
}

void PlayerWindow::OnViewerDoubleClicked()
{
    // While drawing, two quick presses are two strokes.
    if (!Settings::drawEnabled)
        mPlayback->TogglePlayback();
}

void PlayerWindow::SyncBars()
{
    const BarSettings now{Settings::drawColor,
                          Settings::annotationTool,
                          Settings::annotationGhostPrevious,
                          Settings::annotationGhostNext,
                          Settings::loopType,
                          Settings::viewerLayout,
                          Settings::linkProjectViewAndDetailsViewVisibility};
    // Each button that is told its colours is laid out anew, which is too much after each command.
    if (now == mShownBarSettings)
        return;
    mShownBarSettings = now;
    mAnnotationBar->Sync();
    mVolumeBar->Sync();
    mPanelToggles->Sync();
    mCommands->UpdateSwitches();
}

void PlayerWindow::OnPlayheadMoved()
{
    // The text that is being typed belongs to the frame that goes.
    if (const int viewer = mAnnotation->Text()->TypingViewer();
        viewer >= 0 && mPlayback->WantedFrame(viewer) != mAnnotation->Text()->TypingFrame())
        mAnnotation->Text()->Finish();
    UpdateStatus();
}

void PlayerWindow::OnPlayingChanged()
{
    RefreshViewers();
    mCommands->UpdateSwitches();
    UpdateStatus();
}

void PlayerWindow::OnActualFrameRateChanged(float rate)
{
    mActualRate = rate;
    UpdateStatus();
}

void PlayerWindow::OnViewerPressed(int viewer)
{
    if (mPlayback->TimelineOf(viewer))
        SetActiveViewer(viewer);
}

void PlayerWindow::SetActiveViewer(int viewer)
{
    mPlayback->SetActiveViewer(viewer);
    UpdateTitle();
    UpdateStatus();
}

void PlayerWindow::OnPanZoomChanged(QPointF panInterpolation, float zoom, bool enabled)
{
    mPan = panInterpolation;
    mZoom = zoom;
    mViewer->SetPanAndZoom(panInterpolation, zoom, enabled);
    RefreshViewers();
    mAnnotation->Text()->FollowPicture();
    UpdateStatus();
}

void PlayerWindow::SetPanAndZoom(const QPointF& pan, float zoom)
{
    mProperties->RequestPanZoom(pan, zoom, true);
}

void PlayerWindow::SetZoom(float zoom)
{
    const float allowed = std::min(std::max(zoom, 1.0f), Settings::zoomMaximum);
    mProperties->RequestPanZoom(allowed > 1.0f ? mPan : QPointF(), allowed, true);
}

void PlayerWindow::ZoomBy(float factor)
{
    SetZoom(mZoom * factor);
}

void PlayerWindow::OnLogged(const QString& text)
{
    mMessages->ShowMessage(text);
}

void PlayerWindow::SetLayout(int layout)
{
    Settings::viewerLayout = layout;
    mAnnotation->EndEdits();
    mViewer->SetViewerLayout(static_cast<ViewerLayout>(layout));
    RefreshViewers();
    SyncBars();
}

void PlayerWindow::OnSettingsChanged()
{
    mLoader->SetCacheSize(Settings::cacheSize);
    if (mZoom > Settings::zoomMaximum)
        SetZoom(mZoom);
    mRecentFiles->Update();
    mProjects->UpdateRecent();
    mElements->UpdateHighlight();
    ArrangeTimelines();
    OnToolChanged();
    SyncBars();
    mCommands->UpdateSwitches();
}
