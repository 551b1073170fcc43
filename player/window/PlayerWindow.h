// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaReader.h"
#include "window/ViewerBackEndChoice.h"

#include <QMainWindow>
#include <QStringList>
#include <QUndoStack>

#include <memory>
#include <vector>

struct Command;
class AnnotationStore;
class CommandTable;
class FrameLoader;
class MediaLibrary;
class MessageBar;
class PlaybackControlWidget;
class PlaybackController;
class QLabel;
class QMenu;
class QVBoxLayout;
class ScriptBinding;
class StrokeController;
class TimelineBinding;
class ViewerInput;
class ViewerWidget;

/// The player's window: lays the library's widgets out and wires them to the controllers.
class PlayerWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The viewers draw through the back end of @p choice, whose message is shown.
    explicit PlayerWindow(const ViewerBackEndChoice& choice = ViewerBackEndChoice::BySettings());
    ~PlayerWindow() override;

    /// Opens @p paths: the first in viewer @p viewer, the others beside it in the list of media.
    void OpenFiles(const QStringList& paths, int viewer);
    void SetLayout(int layout);
    /// Plays as soon as a medium is there.
    void PlayWhenReady();
    /// Draws a greeting on the first frames of the medium that opens first in viewer A.
    void DrawDemoWhenReady();
    /// The table of commands.
    CommandTable* Commands() const;
    PlaybackController* Playback() const;
    ViewerWidget* Viewer() const;
    MediaLibrary* Media() const;
    StrokeController* Strokes() const;
    ScriptBinding* Scripts() const;
    /// How the viewers are panned and zoomed, in ViewerWidget::SetPanAndZoom()'s terms.
    QPointF Pan() const;
    float Zoom() const;
    void SetPanAndZoom(const QPointF& pan, float zoom);
    void SetActiveViewer(int viewer);
    /// Whether every viewer shows what it is to show, and nothing is being opened.
    bool IsSettled() const;
    /// Has the window act on settings that have changed.
    void OnSettingsChanged();

Q_SIGNALS:
    /// Every viewer that is to show a picture shows the one that it is to show, and nothing is being opened.
    void Settled();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private Q_SLOTS:
    void OnMediaOpened(int index, int viewer);
    void OnMediaFailed(const QString& text);
    void OnFrameFailed(int media, int frame, const QString& text);
    void OnPictureReady(int viewer, int frame, const ReadResult& result);
    void OnPlayheadMoved();
    void OnPlayingChanged();
    void OnActualFrameRateChanged(float rate);
    void OnViewerPressed(int viewer);
    void OnDrawingsChanged(AnnotationStore* store, int frame);
    void OnPanZoomChangeRequested(QPointF panInterpolation, float zoom, bool enabled);
    void OnLogged(const QString& text);
    void PresentOverlays();
    void RefreshViewers();
    void GoToNextBookmark();
    void GoToPreviousBookmark();
    void OnGlobalPositionChangeRequested(bool top);
    void OnRangePositionChangeRequested(bool top);

private:
    void CreateWidgets();
    void CreateActions();
    void CreateLayout();
    void CreateConnections();
    std::vector<Command> MakeCommands();
    void AddFileCommands(std::vector<Command>& commands);
    void AddPlaybackCommands(std::vector<Command>& commands);
    void AddViewCommands(std::vector<Command>& commands);
    void AddAnnotationCommands(std::vector<Command>& commands);
    void AddBookmarkCommands(std::vector<Command>& commands);
    void AddScriptCommands(std::vector<Command>& commands);

    void OpenFromDialog(int viewer);
    void ShowEntry(int index, int viewer);
    void ShowNeighbourEntry(int step);
    void UpdateMediaMenu();
    void UpdateStatus();
    void UpdateTitle();
    void SetDrawEnabled(bool enabled);
    void SelectTool(int tool);
    void ChangeDrawWidth(float factor);
    void ZoomBy(float factor);
    void SetZoom(float zoom);
    void EmitIfSettled();
    void ArrangeTimelines();
    void ToggleTimeBookmark();
    void ToggleRangeBookmark();
    void GoToBookmark(int direction);
    void StepSeconds(int seconds);

    FrameLoader* mLoader = nullptr;
    PlaybackController* mPlayback = nullptr;
    MediaLibrary* mMedia = nullptr;
    QUndoStack mUndoStack;
    ViewerWidget* mViewer = nullptr;
    StrokeController* mStrokes = nullptr;
    ViewerInput* mInput = nullptr;
    TimelineBinding* mTimelines = nullptr;
    PlaybackControlWidget* mTransport = nullptr;
    QVBoxLayout* mCenterLayout = nullptr;
    CommandTable* mCommands = nullptr;
    MessageBar* mMessages = nullptr;
    ScriptBinding* mScripts = nullptr;
    QMenu* mMediaMenu = nullptr;
    QLabel* mMediaLabel = nullptr;
    QLabel* mToolLabel = nullptr;
    QLabel* mFrameLabel = nullptr;
    QLabel* mRateLabel = nullptr;
    bool mAnnotationsVisible = true;
    QPointF mPan;
    float mZoom = 1.0f;
    float mActualRate = 0.0f;
    bool mPlayWhenReady = false;
    bool mDemoDrawing = false;
};
