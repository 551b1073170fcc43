// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/ScriptHost.h"

#include <QObject>
#include <QStringList>

class AnnotationStore;
class CommandPort;
class PlayerWindow;
class ScriptEngine;

/// Ties scripts and the command port to the player's window.
class ScriptBinding : public QObject, public ScriptHost
{
    Q_OBJECT

public:
    /// @p window is the parent.
    explicit ScriptBinding(PlayerWindow* window);
    ~ScriptBinding() override;

    ScriptEngine* Engine() const;
    /// Runs the script at @p path with @p arguments, and ends the application with its result.
    void RunAndQuit(const QString& path, const QStringList& arguments);
    /// Opens the command port, if the settings ask for one; tells the user whether that went well.
    void OpenPort();
    /// Asks the user for a script's file and runs it.
    void RunFromDialog();

    CommandTable* Commands() override;
    PlaybackController* Playback() override;
    ViewerWidget* Viewer() override;
    QWidget* Window() override;
    bool IsSettled() override;
    void SetLayout(int layout) override;
    void SetActiveViewer(int viewer) override;
    QPointF Pan() override;
    float Zoom() override;
    void SetPanAndZoom(const QPointF& pan, float zoom) override;
    QImage WindowPicture() override;
    Project* GetProject() override;
    std::shared_ptr<const Opening> Open(const QString& path, int viewer) override;
    void ShowTimeline(const std::shared_ptr<ProjectTimeline>& timeline, int viewer) override;
    void SetDrawings(const std::shared_ptr<ProjectTimeline>& timeline, int frame,
                     const QList<DrawData>& drawings, const QString& text) override;
    void MarkFrame(const std::shared_ptr<ProjectTimeline>& timeline, int frame, bool marked) override;
    void MarkRange(const std::shared_ptr<ProjectTimeline>& timeline, const RangeBookmark& range,
                   bool marked) override;
    bool Undo() override;
    bool Redo() override;
    void ApplySetting(const QString& name) override;

Q_SIGNALS:
    /// A script, or undo or redo of what one did (@p replayed), changed the drawings of @p frame in @p store.
    void DrawingsChanged(AnnotationStore* store, int frame, bool replayed);
    /// The same of the bookmarks of @p timeline at @p frame.
    void BookmarksChanged(ProjectTimeline* timeline, int frame, bool replayed);

private:
    PlayerWindow* mWindow;
    ScriptEngine* mEngine;
    CommandPort* mPort = nullptr;
};
