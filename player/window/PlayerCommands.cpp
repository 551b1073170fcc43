// SPDX-License-Identifier: MIT
#include "window/PlayerWindow.h"

#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "viewers/ViewerWidget.h"
#include "window/BarCommands.h"
#include "window/CommandTable.h"
#include "window/ConsoleBinding.h"
#include "window/OutputBinding.h"
#include "window/PanelCommands.h"
#include "window/ProjectBinding.h"
#include "window/ScriptCommands.h"
#include "window/SettingsBinding.h"

#include <algorithm>

namespace
{

constexpr float ZoomFactor = 1.25f;

QList<QKeySequence> Keys(std::initializer_list<int> keys)
{
    QList<QKeySequence> sequences;
    for (const int key : keys)
        sequences << QKeySequence(key);
    return sequences;
}

} // namespace

std::vector<Command> PlayerWindow::MakeCommands()
{
    std::vector<Command> commands;
    AddFileCommands(commands);
    AddPlaybackCommands(commands);
    AddSoundCommands(commands, mVolume);
    AddViewCommands(commands);
    AddPanelCommands(commands, mPanels);
    AddAnnotationCommands(commands, mAnnotationBar, mAnnotation,
                          [this](bool removeBookmark) { ClearFrame(removeBookmark); });
    AddBookmarkCommands(commands, mBookmarks, mBookmarksBar);
    AddConsoleCommands(commands, mConsole);
    AddScriptCommands(commands, mScripts);
    AddHelpCommands(commands, mSettings);
    return commands;
}

void PlayerWindow::AddFileCommands(std::vector<Command>& commands)
{
    commands.push_back(
        {"file.open", tr("&Open…"), "file", Keys({Qt::CTRL + Qt::Key_O}), [this] { OpenFromDialog(0); }, {}});
    commands.push_back({"file.openViewerB",
                        tr("Open in Viewer &B…"),
                        "file",
                        Keys({Qt::CTRL + Qt::SHIFT + Qt::Key_O}),
                        [this] { OpenFromDialog(1); },
                        {}});
    mProjects->AddCommands(commands);
    mOutput->AddCommands(commands);
    AddSettingsCommands(commands, mSettings);
    commands.push_back(
        {"file.quit", tr("|&Quit"), "file", Keys({Qt::CTRL + Qt::Key_Q}), [this] { close(); }, {}});
    commands.push_back({"media.next",
                        tr("&Next Medium"),
                        "media",
                        Keys({Qt::Key_PageDown}),
                        [this] { ShowNeighbourSource(1); },
                        {}});
    commands.push_back({"media.previous",
                        tr("&Previous Medium"),
                        "media",
                        Keys({Qt::Key_PageUp}),
                        [this] { ShowNeighbourSource(-1); },
                        {}});
}

void PlayerWindow::AddPlaybackCommands(std::vector<Command>& commands)
{
    const auto add = [&](const char* name, const QString& text, std::initializer_list<int> keys,
                         std::function<void()> run, std::function<bool()> isOn = {})
    {
        commands.push_back({QLatin1String(name), text, QStringLiteral("playback"), Keys(keys), std::move(run),
                            std::move(isOn)});
    };
    add("playback.toggle", tr("&Play or Pause"), {Qt::Key_Space, Qt::Key_K},
        [this] { mPlayback->TogglePlayback(); });
    add("playback.forwards", tr("Play &Forwards"), {Qt::Key_L}, [this] { mPlayback->Play(1); });
    add("playback.backwards", tr("Play &Backwards"), {Qt::Key_J}, [this] { mPlayback->Play(-1); });
    add("playback.next", tr("|&Next Frame"), {Qt::Key_Right}, [this] { mPlayback->Step(1); });
    add("playback.previous", tr("P&revious Frame"), {Qt::Key_Left}, [this] { mPlayback->Step(-1); });
    add("playback.nextSecond", tr("One Second On"), {Qt::SHIFT + Qt::Key_Right}, [this] { StepSeconds(1); });
    add("playback.previousSecond", tr("One Second Back"), {Qt::SHIFT + Qt::Key_Left},
        [this] { StepSeconds(-1); });
    add("playback.first", tr("F&irst Frame"), {Qt::Key_Home}, [this] { mPlayback->GoToFirst(); });
    add("playback.last", tr("&Last Frame"), {Qt::Key_End}, [this] { mPlayback->GoToLast(); });

    struct LoopRow
    {
        const char* name;
        QString text;
        LoopType type;
    };
    for (const LoopRow& row :
         {LoopRow{"playback.noLoop", tr("|No Loop"), NoLoop}, LoopRow{"playback.loop", tr("Loop"), Loop},
          LoopRow{"playback.pingPong", tr("Ping Pong"), PingPong}})
    {
        add(
            row.name, row.text, {}, [type = row.type] { Settings::loopType = type; },
            [type = row.type] { return Settings::loopType == type; });
    }
    add(
        "playback.stepped", tr("|Show Every Frame"), {},
        [this] { mPlayback->SetStepped(!mPlayback->IsStepped()); },
        [this] { return mPlayback->IsStepped(); });
    add("playback.faster", tr("Faster"), {Qt::CTRL + Qt::Key_Up},
        [this] { mPlayback->SetSpeed(mPlayback->Speed() * 2.0f); });
    add("playback.slower", tr("Slower"), {Qt::CTRL + Qt::Key_Down},
        [this] { mPlayback->SetSpeed(mPlayback->Speed() * 0.5f); });
    add("playback.normalSpeed", tr("Normal Speed"), {Qt::CTRL + Qt::Key_0},
        [this] { mPlayback->SetSpeed(1.0f); });
}

void PlayerWindow::AddViewCommands(std::vector<Command>& commands)
{
    const auto add = [&](const char* name, const QString& text, std::initializer_list<int> keys,
                         std::function<void()> run, std::function<bool()> isOn = {})
    {
        commands.push_back(
            {QLatin1String(name), text, QStringLiteral("view"), Keys(keys), std::move(run), std::move(isOn)});
    };
    struct LayoutRow
    {
        const char* name;
        QString text;
        int key;
        ViewerLayout layout;
    };
    for (const LayoutRow& row :
         {LayoutRow{"view.single", tr("&Single Viewer"), Qt::Key_1, Single},
          LayoutRow{"view.horizontal", tr("Viewers Side by Side"), Qt::Key_2, Horizontal},
          LayoutRow{"view.vertical", tr("Viewers Stacked"), Qt::Key_3, Vertical}})
    {
        add(
            row.name, row.text, {row.key}, [this, layout = row.layout] { SetLayout(layout); },
            [this, layout = row.layout] { return mViewer->GetViewerLayout() == layout; });
    }
    add("view.otherViewer", tr("Other &Viewer"), {Qt::Key_Tab},
        [this]
        {
            if (mPlayback->TimelineOf(1 - mPlayback->ActiveViewer()))
                SetActiveViewer(1 - mPlayback->ActiveViewer());
        });
    add("view.zoomIn", tr("|Zoom &In"), {Qt::Key_Plus, Qt::Key_Equal}, [this] { ZoomBy(ZoomFactor); });
    add("view.zoomOut", tr("Zoom &Out"), {Qt::Key_Minus}, [this] { ZoomBy(1.0f / ZoomFactor); });
    add("view.fit", tr("&Fit"), {Qt::Key_F}, [this] { SetZoom(1.0f); });
    add(
        "view.annotations", tr("|Show &Annotations"), {Qt::Key_A},
        [this] { SetAnnotationsVisible(!mAnnotationsVisible); }, [this] { return mAnnotationsVisible; });
    add(
        "view.annotationsOnly", tr("Annotations &Without Picture"), {},
        [this]
        {
            Settings::onlyDisplayAnnotations = !Settings::onlyDisplayAnnotations;
            RefreshViewers();
        },
        [] { return Settings::onlyDisplayAnnotations; });
    add(
        "view.hardware", tr("|Hardware Accelerated Playback (After Restart)"), {},
        []
        {
            Settings::hardwareAcceleratedPlayback = !Settings::hardwareAcceleratedPlayback;
            Settings::WriteUserConfig();
        },
        [] { return Settings::hardwareAcceleratedPlayback; });
    add(
        "view.fullScreen", tr("|F&ull Screen"), {Qt::Key_F11},
        [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); }, [this] { return isFullScreen(); });
}

void PlayerWindow::StepSeconds(int seconds)
{
    if (const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline())
        mPlayback->Step(seconds * qRound(timeline->Rate().PerSecond()));
}
