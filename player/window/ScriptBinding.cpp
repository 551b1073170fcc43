// SPDX-License-Identifier: MIT
#include "window/ScriptBinding.h"

#include "annotation/AnnotationController.h"
#include "annotation/SetDrawingsCommand.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "project/BookmarkCommands.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectImport.h"
#include "scripting/CommandPort.h"
#include "scripting/ScriptEngine.h"
#include "window/PlayerWindow.h"
#include "window/ProjectBinding.h"
#include "window/ViewerBackEndChoice.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QUndoStack>

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

Project* ScriptBinding::GetProject()
{
    return mWindow->GetProject();
}

std::shared_ptr<const ScriptHost::Opening> ScriptBinding::Open(const QString& path, int viewer)
{
    const auto opening = std::make_shared<Opening>();
    ProjectImport* const import =
        mWindow->GetProject()->Import({QFileInfo(path).absoluteFilePath()}, QUuid(), QList<int>(), true);
    connect(import, &ProjectImport::Finished, this,
            [this, opening, path, viewer](const ProjectImport::Result& result)
            {
                opening->done = true;
                if (result.sources.isEmpty())
                {
                    opening->error = result.errors.isEmpty() ? tr("%1 holds no media").arg(path)
                                                             : result.errors.join(QLatin1Char('\n'));
                    return;
                }
                opening->timeline = result.sources.first();
                if (viewer >= 0)
                    mWindow->ShowTimeline(mWindow->GetProject()->FindTimeline(opening->timeline), viewer);
            });
    return opening;
}

void ScriptBinding::ShowTimeline(const std::shared_ptr<ProjectTimeline>& timeline, int viewer)
{
    mWindow->ShowTimeline(timeline, viewer);
}

void ScriptBinding::SetDrawings(const std::shared_ptr<ProjectTimeline>& timeline, int frame,
                                const QList<DrawData>& drawings, const QString& text)
{
    mWindow->Annotation()->EndEdits();
    mWindow->GetProject()->UndoStack()->push(new SetDrawingsCommand(
        text, timeline->Annotations(), frame, timeline->Annotations()->Drawings(frame), drawings,
        [this](AnnotationStore* store, int changed, bool replayed)
        { Q_EMIT DrawingsChanged(store, changed, replayed); }));
}

void ScriptBinding::MarkFrame(const std::shared_ptr<ProjectTimeline>& timeline, int frame, bool marked)
{
    mWindow->GetProject()->UndoStack()->push(new MarkFrameCommand(
        marked ? tr("Add Bookmark by Script") : tr("Remove Bookmark by Script"), timeline, frame, marked,
        [this](ProjectTimeline* changed, int changedFrame, bool replayed)
        { Q_EMIT BookmarksChanged(changed, changedFrame, replayed); }));
}

void ScriptBinding::MarkRange(const std::shared_ptr<ProjectTimeline>& timeline, const RangeBookmark& range,
                              bool marked)
{
    mWindow->GetProject()->UndoStack()->push(new MarkRangeCommand(
        marked ? tr("Add Bookmark by Script") : tr("Remove Bookmark by Script"), timeline, range, marked,
        [this](ProjectTimeline* changed, int changedFrame, bool replayed)
        { Q_EMIT BookmarksChanged(changed, changedFrame, replayed); }));
}

bool ScriptBinding::Undo()
{
    const bool can = mWindow->GetProject()->UndoStack()->canUndo();
    mWindow->Annotation()->Undo();
    return can;
}

bool ScriptBinding::Redo()
{
    const bool can = mWindow->GetProject()->UndoStack()->canRedo();
    mWindow->Annotation()->Redo();
    return can;
}

void ScriptBinding::ApplySetting(const QString& name)
{
    if (name == QLatin1String("viewerLayout"))
        mWindow->SetLayout(Settings::viewerLayout);
    mWindow->OnSettingsChanged();
}
