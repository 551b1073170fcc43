// SPDX-License-Identifier: MIT
// How the window shows what it shows: annotations, layout, zoom, tools.
#include "window/PlayerWindow.h"

#include "annotation/AnnotationStore.h"
#include "annotation/FullPaint.h"
#include "annotation/StrokeController.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/MediaLibrary.h"
#include "project/MediaTimeline.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MessageBar.h"
#include "window/OverlayPresenter.h"
#include "window/TimelineBinding.h"

#include <algorithm>

void PlayerWindow::PresentOverlays()
{
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer);
        OverlayPresenter::Present(mViewer, viewer, timeline ? timeline->Annotations().get() : nullptr,
                                  mPlayback->ShownFrame(viewer));
    }
}

void PlayerWindow::RefreshViewers()
{
    // While playing every paint is a full one: a copy of each picture would be wasted.
    RequestFullPaint(mViewer, Settings::drawEnabled && !mPlayback->IsPlaying());
}

void PlayerWindow::OnDrawingsChanged(AnnotationStore* store, int frame)
{
    // Undo and redo take the user to the frame that they change.
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer);
        if (timeline && timeline->Annotations().get() == store && mPlayback->ShownFrame(viewer) != frame)
        {
            mPlayback->Pause();
            mPlayback->SeekTime(timeline->FrameToTime(frame) + Settings::ROUNDING_ERROR_EXTRA_TIME);
            break;
        }
    }
    for (const MediaLibrary::Entry& entry : mMedia->Entries())
    {
        if (entry.timeline->Annotations().get() == store)
            entry.timeline->UpdateAnnotationBookmark(frame);
    }
    mTimelines->UpdateBookmarks();
    PresentOverlays();
    RefreshViewers();
}

void PlayerWindow::OnPlayheadMoved()
{
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

void PlayerWindow::OnPanZoomChangeRequested(QPointF panInterpolation, float zoom, bool enabled)
{
    mPan = panInterpolation;
    mZoom = zoom;
    mViewer->SetPanAndZoom(panInterpolation, zoom, enabled);
    RefreshViewers();
    UpdateStatus();
}

void PlayerWindow::SetPanAndZoom(const QPointF& pan, float zoom)
{
    OnPanZoomChangeRequested(pan, zoom, true);
}

void PlayerWindow::SetZoom(float zoom)
{
    const float allowed = std::min(std::max(zoom, 1.0f), Settings::zoomMaximum);
    OnPanZoomChangeRequested(allowed > 1.0f ? mPan : QPointF(), allowed, true);
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
    mViewer->SetViewerLayout(static_cast<ViewerLayout>(layout));
    RefreshViewers();
    mCommands->UpdateSwitches();
}

void PlayerWindow::SetDrawEnabled(bool enabled)
{
    mStrokes->Cancel();
    Settings::drawEnabled = enabled;
    mViewer->setCursor(enabled ? Qt::CrossCursor : Qt::ArrowCursor);
    PresentOverlays();
    RefreshViewers();
    UpdateStatus();
}

void PlayerWindow::SelectTool(int tool)
{
    Settings::annotationTool = static_cast<AnnotationToolType>(tool);
    Settings::drawWidth = tool == Eraser ? Settings::eraserWidth : Settings::pencilWidth;
    SetDrawEnabled(true);
}

void PlayerWindow::ChangeDrawWidth(float factor)
{
    float& width = Settings::annotationTool == Eraser ? Settings::eraserWidth : Settings::pencilWidth;
    width = std::min(std::max(width * factor, Settings::MINIMUM_DRAW_WIDTH), 0.25f);
    Settings::drawWidth = width;
    if (Settings::drawEnabled)
        mViewer->RefreshAnnotations();
    UpdateStatus();
}

void PlayerWindow::OnSettingsChanged()
{
    ArrangeTimelines();
    PresentOverlays();
    RefreshViewers();
    mCommands->UpdateSwitches();
    UpdateStatus();
}
