// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPointF>
#include <QString>

#include <memory>

class CommandTable;
class PlaybackController;
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

    /// Has what shows or does something act on Settings that a script has changed; @p name is the one.
    virtual void ApplySetting(const QString& name) = 0;
};
