// SPDX-License-Identifier: MIT
#pragma once

#include "host/AnnotationToolType.h"
#include "host/LoopType.h"
#include "media/MediaReader.h"
#include "window/OverlayPresenter.h"
#include "window/ViewerBackEndChoice.h"

#include <QColor>
#include <QMainWindow>
#include <QStringList>

#include <memory>
#include <tuple>
#include <vector>

struct Command;
class AnnotationBarBinding;
class AnnotationController;
class AnnotationStore;
class BookmarkController;
class BookmarksBarBinding;
class CommandTable;
class ConsoleBinding;
class ElementPanelBinding;
class FrameLoader;
class MessageBar;
class OutputBinding;
class PanelArea;
class PanelTogglesBinding;
class PlaybackControlWidget;
class PlaybackController;
class QLabel;
class QMenu;
class QUndoStack;
class Project;
class ProjectBinding;
class ProjectTimeline;
class PropertiesBinding;
class RecentFiles;
class QVBoxLayout;
class ScriptBinding;
class SoundPlayer;
class SettingsBinding;
class StrokeController;
class TimelineBinding;
class ViewerInput;
class ViewerWidget;
class VolumeBarBinding;
class VolumeState;

/// The player's window: lays the library's widgets out and wires them to the controllers.
class PlayerWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The viewers draw through the back end of @p choice, whose message is shown.
    explicit PlayerWindow(const ViewerBackEndChoice& choice = ViewerBackEndChoice::BySettings());
    ~PlayerWindow() override;

    /// Opens @p paths: a project, or media, the first in viewer @p viewer and the others beside it in the
    /// project.
    void OpenFiles(const QStringList& paths, int viewer);
    /// Plays as soon as a medium is there.
    void PlayWhenReady();
    /// Draws a greeting on the first frames of the medium that opens first in viewer A.
    void DrawDemoWhenReady();
    /// The table of commands.
    CommandTable* Commands() const;
    PlaybackController* Playback() const;
    ViewerWidget* Viewer() const;
    Project* GetProject() const;
    /// The commands and questions of the project.
    ProjectBinding* Projects() const;
    /// Shows @p timeline in viewer @p viewer (0 or 1); an empty pointer clears it.
    void ShowTimeline(const std::shared_ptr<ProjectTimeline>& timeline, int viewer);
    StrokeController* Strokes() const;
    ScriptBinding* Scripts() const;
    ConsoleBinding* Console() const;
    /// Preferences, project settings, about box.
    SettingsBinding* Preferences() const;
    /// How the viewers are panned and zoomed, in ViewerWidget::SetPanAndZoom()'s terms.
    QPointF Pan() const;
    float Zoom() const;
    void SetPanAndZoom(const QPointF& pan, float zoom);
    void SetActiveViewer(int viewer);
    /// Whether every viewer shows what it is to show, and nothing is being opened.
    bool IsSettled() const;
    AnnotationController* Annotation() const;
    /// How loud it is to be.
    VolumeState* Volume() const;
    OutputBinding* Output() const;
    /// The places of the panels round the viewers.
    PanelArea* Panels() const;

public Q_SLOTS:
    /// Shows the viewers in @p layout, a ViewerLayout value.
    void SetLayout(int layout);
    /// Brings the bars in line with the settings, after these changed.
    void SyncBars();
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
    void OnViewerDropped(QDropEvent* event, int viewer);
    void OnRecentFilePicked(const QString& path);
    void OnMediumOpened(const std::shared_ptr<ProjectTimeline>& timeline);
    void OnShowRequested(const std::shared_ptr<ProjectTimeline>& timeline, int viewer);
    void OnProjectUpdated();
    void OnSourceFailed(const QString& text);
    void OnFrameFailed(int media, int frame, const QString& text);
    void OnPictureReady(int viewer, int frame, const ReadResult& result);
    void OnPlayheadMoved();
    void OnPlayingChanged();
    void OnActualFrameRateChanged(float rate);
    void OnViewerPressed(int viewer);
    void OnDrawingsChanged(AnnotationStore* store, int frame, bool replayed);
    void OnBookmarksChanged(ProjectTimeline* timeline, int frame, bool replayed);
    void OnGhostingChanged();
    void OnToolChanged();
    void OnKeysChanged();
    void OnViewerDoubleClicked();
    void OnPanZoomChanged(QPointF panInterpolation, float zoom, bool enabled);
    void OnLogged(const QString& text);
    void PresentOverlays();
    void RefreshViewers();
    void UpdateMediaMenu();
    void ClearFrame(bool removeBookmark);
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

    void OpenFromDialog(int viewer);
    /// Opens @p paths as the user asks: in viewer @p viewer, or in a player of their own.
    void OpenForUser(const QStringList& paths, int viewer);
    void ShowNeighbourSource(int step);
    void AddToMediaMenu(const QList<std::shared_ptr<ProjectTimeline>>& timelines);
    void UpdateStatus();
    void UpdateTitle();
    void SetAnnotationsVisible(bool visible);
    /// Goes to @p frame of @p timeline, if a viewer shows it.
    void ShowChange(const ProjectTimeline* timeline, int frame);
    void ZoomBy(float factor);
    void SetZoom(float zoom);
    void EmitIfSettled();
    void ArrangeTimelines();
    void StepSeconds(int seconds);

    FrameLoader* mLoader = nullptr;
    PlaybackController* mPlayback = nullptr;
    Project* mProject = nullptr;
    SoundPlayer* mSound = nullptr;
    ViewerWidget* mViewer = nullptr;
    AnnotationController* mAnnotation = nullptr;
    BookmarkController* mBookmarks = nullptr;
    VolumeState* mVolume = nullptr;
    OverlayPresenter mOverlays;
    ViewerInput* mInput = nullptr;
    TimelineBinding* mTimelines = nullptr;
    OutputBinding* mOutput = nullptr;
    PlaybackControlWidget* mTransport = nullptr;
    AnnotationBarBinding* mAnnotationBar = nullptr;
    BookmarksBarBinding* mBookmarksBar = nullptr;
    VolumeBarBinding* mVolumeBar = nullptr;
    PanelTogglesBinding* mPanelToggles = nullptr;
    QWidget* mViewerRow = nullptr;
    QWidget* mCenter = nullptr;
    QVBoxLayout* mCenterLayout = nullptr;
    PanelArea* mPanels = nullptr;
    PropertiesBinding* mProperties = nullptr;
    ElementPanelBinding* mElements = nullptr;
    ProjectBinding* mProjects = nullptr;
    CommandTable* mCommands = nullptr;
    MessageBar* mMessages = nullptr;
    ScriptBinding* mScripts = nullptr;
    ConsoleBinding* mConsole = nullptr;
    SettingsBinding* mSettings = nullptr;
    RecentFiles* mRecentFiles = nullptr;
    QMenu* mMediaMenu = nullptr;
    QLabel* mMediaLabel = nullptr;
    QLabel* mToolLabel = nullptr;
    QLabel* mFrameLabel = nullptr;
    QLabel* mRateLabel = nullptr;
    /// What the bars show of the settings.
    using BarSettings = std::tuple<QColor, AnnotationToolType, bool, bool, LoopType, int, bool>;
    BarSettings mShownBarSettings;
    bool mAnnotationsVisible = true;
    QPointF mPan;
    float mZoom = 1.0f;
    float mActualRate = 0.0f;
    bool mPlayWhenReady = false;
    bool mDemoDrawing = false;
};
