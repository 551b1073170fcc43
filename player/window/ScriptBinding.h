// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/ScriptHost.h"

#include <QObject>
#include <QStringList>

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
    void ApplySetting(const QString& name) override;

private:
    PlayerWindow* mWindow;
    ScriptEngine* mEngine;
    CommandPort* mPort = nullptr;
};
