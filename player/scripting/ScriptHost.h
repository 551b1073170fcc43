// SPDX-License-Identifier: MIT
#pragma once

#include "host/Bookmarks.h"
#include "host/DrawData.h"

#include <QImage>
#include <QList>
#include <QPointF>
#include <QString>
#include <QUuid>

#include <memory>

class CommandTable;
class PlaybackController;
class Project;
class ProjectTimeline;
class QWidget;
class ViewerWidget;

/// What scripts and the command port reach of the player. Every call is made on the GUI thread.
class ScriptHost
{
public:
    virtual ~ScriptHost() = default;

    virtual CommandTable* Commands() = 0;
    virtual PlaybackController* Playback() = 0;
    virtual ViewerWidget* Viewer() = 0;
    virtual QWidget* Window() = 0;

    /// Whether every viewer shows what it is to show, and nothing is being opened.
    virtual bool IsSettled() = 0;

    virtual void SetLayout(int layout) = 0;
    virtual void SetActiveViewer(int viewer) = 0;
    virtual QPointF Pan() = 0;
    virtual float Zoom() = 0;
    virtual void SetPanAndZoom(const QPointF& pan, float zoom) = 0;
    /// The window as it is on screen.
    virtual QImage WindowPicture() = 0;

    // Timelines

    /// How the opening of a medium went, once that is known.
    struct Opening
    {
        bool done = false;
        /// The medium's timeline; null if it could not be opened.
        QUuid timeline;
        QString error;
    };

    /// What the player works on; never null.
    virtual Project* GetProject() = 0;
    /// Opens the medium at @p path, and shows it in viewer @p viewer (-1 for none). What is returned is
    /// filled in on the GUI thread.
    virtual std::shared_ptr<const Opening> Open(const QString& path, int viewer) = 0;
    /// Shows @p timeline in viewer @p viewer.
    virtual void ShowTimeline(const std::shared_ptr<ProjectTimeline>& timeline, int viewer) = 0;

    // Steps of the undo stack

    /// Makes @p drawings the drawings of @p frame.
    virtual void SetDrawings(const std::shared_ptr<ProjectTimeline>& timeline, int frame,
                             const QList<DrawData>& drawings, const QString& text) = 0;
    virtual void MarkFrame(const std::shared_ptr<ProjectTimeline>& timeline, int frame, bool marked) = 0;
    virtual void MarkRange(const std::shared_ptr<ProjectTimeline>& timeline, const RangeBookmark& range,
                           bool marked) = 0;
    /// Each returns whether there was a step.
    virtual bool Undo() = 0;
    virtual bool Redo() = 0;

    /// Has what shows or does something act on Settings that a script has changed; @p name is the one.
    virtual void ApplySetting(const QString& name) = 0;
};
