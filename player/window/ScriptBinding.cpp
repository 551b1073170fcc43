// SPDX-License-Identifier: MIT
#include "window/ScriptBinding.h"

#include "host/Logger.h"
#include "host/Settings.h"
#include "scripting/CommandPort.h"
#include "scripting/ScriptEngine.h"
#include "window/PlayerWindow.h"
#include "window/ViewerBackEndChoice.h"

#include <QApplication>
#include <QFileDialog>

ScriptBinding::ScriptBinding(PlayerWindow* window)
    : QObject(window), mWindow(window), mEngine(new ScriptEngine(this, this))
{
}

ScriptBinding::~ScriptBinding()
{
    // Before the parts of the window that scripts reach, in the order of dependence.
    delete mPort;
    delete mEngine;
}

ScriptEngine* ScriptBinding::Engine() const
{
    return mEngine;
}

void ScriptBinding::RunAndQuit(const QString& path, const QStringList& arguments)
{
    const int number = mEngine->RunFile(path, arguments);
    connect(mEngine, &ScriptEngine::Finished, this,
            [number](int ended, const ScriptResult& result)
            {
                if (ended == number)
                    QApplication::exit(result.exitCode);
            });
}

void ScriptBinding::OpenPort()
{
    if (Settings::cmdPort == 0)
        return;
    mPort = new CommandPort(this, mEngine, this);
    const QString folder = CommandPortToken::DefaultFolder();
    QString error;
    if (mPort->Listen(static_cast<quint16>(Settings::cmdPort), folder, &error))
        Logger::GetInstance()->Info(tr("The command port %1 is open; its token is in %2")
                                        .arg(mPort->Port())
                                        .arg(CommandPortToken::FilePath(folder, mPort->Port())));
    else
        Logger::GetInstance()->Error(error);
}

void ScriptBinding::RunFromDialog()
{
    const QString path = QFileDialog::getOpenFileName(mWindow, tr("Run Script"), QString(),
                                                      tr("Python Scripts (*.py);;All Files (*)"));
    if (!path.isEmpty())
        mEngine->RunFile(path);
}

CommandTable* ScriptBinding::Commands()
{
    return mWindow->Commands();
}

PlaybackController* ScriptBinding::Playback()
{
    return mWindow->Playback();
}

ViewerWidget* ScriptBinding::Viewer()
{
    return mWindow->Viewer();
}

QWidget* ScriptBinding::Window()
{
    return mWindow;
}

bool ScriptBinding::IsSettled()
{
    return mWindow->IsSettled();
}

void ScriptBinding::SetLayout(int layout)
{
    mWindow->SetLayout(layout);
}

void ScriptBinding::SetActiveViewer(int viewer)
{
    mWindow->SetActiveViewer(viewer);
}

QPointF ScriptBinding::Pan()
{
    return mWindow->Pan();
}

float ScriptBinding::Zoom()
{
    return mWindow->Zoom();
}

void ScriptBinding::SetPanAndZoom(const QPointF& pan, float zoom)
{
    mWindow->SetPanAndZoom(pan, zoom);
}

QImage ScriptBinding::WindowPicture()
{
    return GrabWindow(mWindow).toImage();
}

void ScriptBinding::ApplySetting(const QString& name)
{
    if (name == QLatin1String("viewerLayout"))
        mWindow->SetLayout(Settings::viewerLayout);
    mWindow->OnSettingsChanged();
}
