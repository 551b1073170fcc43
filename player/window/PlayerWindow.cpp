// SPDX-License-Identifier: MIT
#include "window/PlayerWindow.h"

#include "annotation/AnnotationController.h"
#include "annotation/AnnotationStore.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "playback/VolumeState.h"
#include "project/BookmarkController.h"
#include "project/MediaSource.h"
#include "project/Project.h"
#include "project/ProjectJournal.h"
#include "project/ProjectTimeline.h"
#include "sound/SoundPlayer.h"
#include "timelines/TimelineWidget.h"
#include "toolbars/BookmarksToolbarWidget.h"
#include "toolbars/PlaybackControlWidget.h"
#include "toolbars/SecondaryControlsWidget.h"
#include "toolbars/VolumeWidget.h"
#include "viewers/ViewerWidget.h"
#include "window/AnnotationBarBinding.h"
#include "window/BookmarksBarBinding.h"
#include "window/CommandTable.h"
#include "window/ConsoleBinding.h"
#include "window/EarlyLog.h"
#include "window/ElementPanelBinding.h"
#include "window/MessageBar.h"
#include "window/OutputBinding.h"
#include "window/PanelArea.h"
#include "window/PanelTogglesBinding.h"
#include "window/ProjectBinding.h"
#include "window/ProjectPlaybackBinding.h"
#include "window/PropertiesBinding.h"
#include "window/RecentFiles.h"
#include "window/ScriptBinding.h"
#include "window/SettingsBinding.h"
#include "window/TimelineBinding.h"
#include "window/ViewerInput.h"
#include "window/VolumeBarBinding.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr QSize InitialSize(1280, 800);
/// How much of a small screen a new window may take.
constexpr double ScreenPart = 0.9;
constexpr int StatusMargin = 8;
constexpr int BarMargin = 8;

QStringList LocalFiles(const QMimeData* data)
{
    QStringList paths;
    for (const QUrl& url : data->urls())
    {
        if (url.isLocalFile())
            paths << url.toLocalFile();
    }
    return paths;
}

QString ToolName(AnnotationToolType tool)
{
    switch (tool)
    {
    case Pencil:
        return PlayerWindow::tr("Pencil");
    case Eraser:
        return PlayerWindow::tr("Eraser");
    case Text:
        return PlayerWindow::tr("Text");
    case Arrow:
        return PlayerWindow::tr("Arrow");
    case Oval:
        return PlayerWindow::tr("Oval");
    case Eyedropper:
        return PlayerWindow::tr("Eyedropper");
    case Rectangle:
        return PlayerWindow::tr("Rectangle");
    }
    return QString();
}

QLabel* MakeStatusLabel(QWidget* parent, const char* objectName)
{
    auto* const label = new QLabel(parent);
    label->setObjectName(QLatin1String(objectName));
    label->setTextFormat(Qt::PlainText);
    label->setContentsMargins(StatusMargin, 0, StatusMargin, 0);
    return label;
}

} // namespace

PlayerWindow::PlayerWindow(const ViewerBackEndChoice& choice)
{
    const EarlyLog earlyLog;
    setObjectName(QStringLiteral("playerWindow"));
    mViewer = choice.MakeViewer(this);
    CreateWidgets();
    CreateActions();
    CreateLayout();
    CreateConnections();
    for (const EarlyLog::Message& message : EarlyLog::Messages())
    {
        if (message.kind == EarlyLog::Kind::Warning || message.kind == EarlyLog::Kind::Error)
            OnLogged(message.text);
    }
    mVolumeBar->ReadState();
    mBookmarksBar->ReadState();
    mAnnotationBar->ReadState();
    OnKeysChanged();
    SyncBars();
    resize(InitialSize.boundedTo(ScreenPart * QGuiApplication::primaryScreen()->availableSize()));
    setAcceptDrops(true);
    mProjects->ActivateDefault();
    UpdateTitle();
    UpdateStatus();
    // Once events run: by then the window is shown and its log is heard.
    if (!choice.message.isEmpty())
        QTimer::singleShot(0, this, [text = choice.message] { Logger::GetInstance()->Warning(text); });
}

PlayerWindow::~PlayerWindow()
{
    delete mScripts;
    // While all is there that hears of it: a text ends as the viewer loses the focus, and drawing with the
    // tools.
    mAnnotation->EndEdits();
    hide();
    // The journal goes while the project stands.
    delete mProjects;
    // The viewers hold plain pointers to the annotations of timelines that go before them.
    ShowPicture(mViewer, -1, QImage());
}

void PlayerWindow::CreateWidgets()
{
    mLoader = new FrameLoader(this);
    mPlayback = new PlaybackController(mLoader, this);
    mProject = new Project(mLoader, PictureFormatOf(mViewer), this);
    mSound = new SoundPlayer(
        [this]
        {
            const std::shared_ptr<ProjectTimeline>& lead = mPlayback->LeadingTimeline();
            return lead ? AudioSegmentsOf(*lead) : std::vector<AudioSegment>();
        },
        this);
    mSound->Lead(mPlayback);
    mViewer->setObjectName(QStringLiteral("viewer"));
    mViewer->setFocusPolicy(Qt::StrongFocus);
    mViewer->SetViewerLayout(static_cast<ViewerLayout>(Settings::viewerLayout));
    mAnnotation = new AnnotationController(
        mViewer, mProject->UndoStack(),
        [this](int viewer)
        {
            const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
            if (!timeline || mPlayback->ShownFrame(viewer) == 0)
                return StrokeTarget();
            return StrokeTarget{timeline->Annotations(), mPlayback->ShownFrame(viewer)};
        },
        [this](int viewer)
        {
            const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
            const auto source = timeline ? timeline->SourceAt(mPlayback->ShownFrame(viewer)) : nullptr;
            return source ? QSize(source->Info().width, source->Info().height) : QSize();
        },
        this);
    mBookmarks = new BookmarkController(mPlayback, mProject->UndoStack(), this);
    mVolume = new VolumeState(this);
    connect(mVolume, &VolumeState::VolumeChanged, mSound,
            [this] { mSound->SetVolume(static_cast<float>(mVolume->Volume()) / 100.0f); });
    connect(mVolume, &VolumeState::MutedChanged, mSound, &SoundPlayer::SetMuted);
    mPlayback->Lanes().SetPictureFormat(PictureFormatOf(mViewer));
    mInput = new ViewerInput(mViewer, mAnnotation, mPlayback, this);
    mTimelines = new TimelineBinding(mPlayback, mLoader, this, this);
    mOutput = new OutputBinding(
        mPlayback, mViewer, [this] { return mAnnotationsVisible; }, this);
    mTransport = new PlaybackControlWidget(this);
    mTransport->setObjectName(QStringLiteral("transport"));
    mMessages = new MessageBar(this);
    mCenter = new QWidget(this);
    mViewerRow = new QWidget(mCenter);
    mPanels = new PanelArea(mCenter, this);
    new ProjectPlaybackBinding(mProject, mPlayback, this);
    mProperties = new PropertiesBinding(mProject, mPlayback, mPanels, this);
    mElements = new ElementPanelBinding(mProject, mPlayback, mPanels, this);
    mProjects = new ProjectBinding(mProject, mPlayback, mAnnotation, ProjectJournal::DefaultFolder(), this);
    mAnnotationBar = new AnnotationBarBinding(mAnnotation, mViewerRow, this);
    mBookmarksBar = new BookmarksBarBinding(mBookmarks, mCenter, this);
    mVolumeBar = new VolumeBarBinding(mVolume, mCenter, this);
    mPanelToggles = new PanelTogglesBinding(mPanels, mAnnotationBar, mCenter, this);
    mScripts = new ScriptBinding(this);
    mConsole = new ConsoleBinding(this, mScripts->Engine());
    mSettings = new SettingsBinding(this);
}

void PlayerWindow::CreateActions()
{
    mCommands = new CommandTable(MakeCommands(), this);
    struct MenuRow
    {
        const char* name;
        QString text;
    };
    for (const MenuRow& row : {MenuRow{"file", tr("&File")}, MenuRow{"playback", tr("&Playback")},
                               MenuRow{"view", tr("&View")}, MenuRow{"annotate", tr("&Annotate")},
                               MenuRow{"bookmarks", tr("&Bookmarks")}, MenuRow{"scripts", tr("&Scripts")}})
    {
        QMenu* const menu = menuBar()->addMenu(row.text);
        menu->setObjectName(QLatin1String(row.name) + QLatin1String("Menu"));
        mCommands->FillMenu(QLatin1String(row.name), menu);
        connect(menu, &QMenu::aboutToShow, mCommands, &CommandTable::UpdateSwitches);
    }
    mMediaMenu = menuBar()->addMenu(tr("&Media"));
    mMediaMenu->setObjectName(QStringLiteral("mediaMenu"));
    UpdateMediaMenu();
    connect(mMediaMenu, SIGNAL(aboutToShow()), this, SLOT(UpdateMediaMenu()));
    QMenu* const helpMenu = menuBar()->addMenu(tr("&Help"));
    helpMenu->setObjectName(QStringLiteral("helpMenu"));
    mCommands->FillMenu(QStringLiteral("help"), helpMenu);

    auto* const fileMenu = menuBar()->findChild<QMenu*>(QStringLiteral("fileMenu"));
    auto* const recentMenu = new QMenu(tr("Open &Recent"), fileMenu);
    recentMenu->setObjectName(QStringLiteral("recentFilesMenu"));
    const QList<QAction*> fileActions = fileMenu->actions();
    fileMenu->insertMenu(
        fileActions.value(fileActions.indexOf(mCommands->Action(QStringLiteral("file.openViewerB"))) + 1),
        recentMenu);
    mRecentFiles =
        new RecentFiles(QStringLiteral("recent/files"), &Settings::numRecentFiles, recentMenu, this);
    auto* const projectsMenu = new QMenu(tr("Open Recent Pro&ject"), fileMenu);
    projectsMenu->setObjectName(QStringLiteral("recentProjectsMenu"));
    fileMenu->insertMenu(mCommands->Action(QStringLiteral("file.openRecentProject")), projectsMenu);
    mProjects->SetRecentMenu(projectsMenu);
    mConsole->AddActions(mCommands);
    mSettings->SetProject(mProject);
}

void PlayerWindow::CreateLayout()
{
    mCenterLayout = new QVBoxLayout(mCenter);
    mCenterLayout->setContentsMargins(0, 0, 0, 0);
    mCenterLayout->setSpacing(0);
    mCenterLayout->addWidget(mMessages);
    mCenterLayout->addWidget(mViewerRow, 1);
    auto* const row = new QHBoxLayout(mViewerRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(mViewer, 1);
    mAnnotationBar->PlaceIn(row, mViewer);
    ArrangeTimelines();
    setCentralWidget(mPanels);
    mCenterLayout->addWidget(mBookmarksBar->Bar());
    // The outer columns share what is left evenly, so that the transport stands in the middle.
    auto* const bars = new QHBoxLayout;
    bars->setContentsMargins(BarMargin, 0, BarMargin, 0);
    bars->setSpacing(BarMargin);
    bars->addWidget(mPanelToggles->Bar(), 1);
    bars->addWidget(mTransport);
    bars->addWidget(mVolumeBar->Bar(), 1);
    mCenterLayout->addLayout(bars);

    mMediaLabel = MakeStatusLabel(this, "mediaLabel");
    mToolLabel = MakeStatusLabel(this, "toolLabel");
    mFrameLabel = MakeStatusLabel(this, "frameLabel");
    mRateLabel = MakeStatusLabel(this, "rateLabel");
    statusBar()->addWidget(mMediaLabel, 1);
    for (QLabel* const label : {mToolLabel, mFrameLabel, mRateLabel})
        statusBar()->addPermanentWidget(label);
}

void PlayerWindow::CreateConnections()
{
    // Directly, since what is dropped is read during the signal.
    connect(mViewer, SIGNAL(ViewerDropEvent(QDropEvent*, int)), this, SLOT(OnViewerDropped(QDropEvent*, int)),
            Qt::DirectConnection);
    connect(mProjects, &ProjectBinding::MediumOpened, this, &PlayerWindow::OnMediumOpened);
    connect(mProjects, &ProjectBinding::ShowRequested, this, &PlayerWindow::OnShowRequested);
    connect(mProjects, SIGNAL(Updated()), this, SLOT(OnProjectUpdated()));
    connect(mElements, SIGNAL(ImportStarted(ProjectImport*)), mProjects, SLOT(Watch(ProjectImport*)));
    mPlayback->SetRangeKeeper(
        [this](ProjectTimeline& timeline, const PlaybackRange& range)
        {
            if (mProject->FindTimeline(timeline.GetID()).get() == &timeline)
                mProject->SetRange(timeline.GetID(), range.first, range.last);
            else
                timeline.SetRange(range);
        });
    connect(mPlayback, SIGNAL(PictureReady(int, int, const ReadResult&)), this,
            SLOT(OnPictureReady(int, int, const ReadResult&)));
    connect(mPlayback, SIGNAL(SourceFailed(QString)), this, SLOT(OnSourceFailed(QString)));
    connect(mPlayback, SIGNAL(PlayheadMoved(int64_t)), this, SLOT(OnPlayheadMoved()));
    connect(mPlayback, SIGNAL(PlayingChanged(bool)), this, SLOT(OnPlayingChanged()));
    connect(mPlayback, SIGNAL(ActualFrameRateChanged(float)), this, SLOT(OnActualFrameRateChanged(float)));
    connect(mViewer, SIGNAL(PanZoomChangeRequested(QPointF, float, bool)), mProperties,
            SLOT(RequestPanZoom(QPointF, float, bool)));
    connect(mProperties, SIGNAL(PanZoomChanged(QPointF, float, bool)), this,
            SLOT(OnPanZoomChanged(QPointF, float, bool)));
    connect(mViewer, SIGNAL(PlaybackToggled()), this, SLOT(OnViewerDoubleClicked()));
    connect(mTransport, SIGNAL(PlayForwardsPressed()), mPlayback, SLOT(ToggleForwards()));
    connect(mTransport, SIGNAL(PlayBackwardsPressed()), mPlayback, SLOT(ToggleBackwards()));
    connect(mTransport, SIGNAL(StepForwardsPressed()), mPlayback, SLOT(StepForwards()));
    connect(mTransport, SIGNAL(StepBackwardsPressed()), mPlayback, SLOT(StepBackwards()));
    connect(mTransport, SIGNAL(SeekStartPressed()), mPlayback, SLOT(GoToFirst()));
    connect(mTransport, SIGNAL(SeekEndPressed()), mPlayback, SLOT(GoToLast()));
    connect(mTransport, SIGNAL(NextBookmarkPressed()), mBookmarks, SLOT(GoToNext()));
    connect(mTransport, SIGNAL(PreviousBookmarkPressed()), mBookmarks, SLOT(GoToPrevious()));
    connect(mPlayback, SIGNAL(StateChanged(bool, bool)), mTransport,
            SLOT(OnPlaybackStateChanged(bool, bool)));
    connect(mInput, SIGNAL(FullPaintNeeded()), this, SLOT(RefreshViewers()));
    connect(mInput, SIGNAL(ViewerPressed(int)), this, SLOT(OnViewerPressed(int)));
    const StrokeController* const strokes = mAnnotation->Strokes();
    connect(strokes, SIGNAL(OverlayChanged()), this, SLOT(PresentOverlays()));
    connect(strokes, SIGNAL(DrawingsChanged(AnnotationStore*, int, bool)), this,
            SLOT(OnDrawingsChanged(AnnotationStore*, int, bool)));
    connect(mBookmarks, SIGNAL(DrawingsChanged(AnnotationStore*, int, bool)), this,
            SLOT(OnDrawingsChanged(AnnotationStore*, int, bool)));
    connect(mBookmarks, SIGNAL(BookmarksChanged(ProjectTimeline*, int, bool)), this,
            SLOT(OnBookmarksChanged(ProjectTimeline*, int, bool)));
    connect(mAnnotationBar, SIGNAL(ToolChanged()), this, SLOT(OnToolChanged()));
    connect(mAnnotationBar, SIGNAL(GhostingChanged()), this, SLOT(OnGhostingChanged()));
    connect(mAnnotationBar, SIGNAL(ClearFrameRequested(bool)), this, SLOT(ClearFrame(bool)));
    connect(mVolumeBar, SIGNAL(LayoutRequested(int)), this, SLOT(SetLayout(int)));
    connect(mCommands, SIGNAL(CommandRun()), this, SLOT(SyncBars()));
    connect(mAnnotationBar, SIGNAL(ToolChanged()), mCommands, SLOT(UpdateSwitches()));
    connect(mAnnotationBar, SIGNAL(GhostingChanged()), mCommands, SLOT(UpdateSwitches()));
    connect(mVolumeBar, SIGNAL(LoopChanged()), mCommands, SLOT(UpdateSwitches()));
    connect(mVolume, SIGNAL(MutedChanged(bool)), mCommands, SLOT(UpdateSwitches()));
    connect(mPanels, SIGNAL(VisibilityChanged(QString, bool)), mCommands, SLOT(UpdateSwitches()));
    connect(mCommands, SIGNAL(KeysChanged()), this, SLOT(OnKeysChanged()));
    connect(mScripts, SIGNAL(DrawingsChanged(AnnotationStore*, int, bool)), this,
            SLOT(OnDrawingsChanged(AnnotationStore*, int, bool)));
    connect(mScripts, SIGNAL(BookmarksChanged(ProjectTimeline*, int, bool)), this,
            SLOT(OnBookmarksChanged(ProjectTimeline*, int, bool)));
    connect(mLoader, SIGNAL(FrameFailed(int, int, QString)), this, SLOT(OnFrameFailed(int, int, QString)));
    connect(mTimelines, SIGNAL(GlobalPositionChangeRequested(bool)), this,
            SLOT(OnGlobalPositionChangeRequested(bool)));
    connect(mTimelines, SIGNAL(RangePositionChangeRequested(bool)), this,
            SLOT(OnRangePositionChangeRequested(bool)));
    connect(mSettings, SIGNAL(Applied()), this, SLOT(OnSettingsChanged()));
    connect(mSettings, SIGNAL(GhostingChanged()), this, SLOT(OnGhostingChanged()));
    connect(mRecentFiles, SIGNAL(OpenRequested(QString)), this, SLOT(OnRecentFilePicked(QString)));
    connect(Logger::GetInstance(), SIGNAL(ErrorLogged(QString)), this, SLOT(OnLogged(QString)));
    connect(Logger::GetInstance(), SIGNAL(WarningLogged(QString)), this, SLOT(OnLogged(QString)));
}

void PlayerWindow::ArrangeTimelines()
{
    TimelineWidget* const global = mTimelines->GlobalTimeline();
    TimelineWidget* const range = mTimelines->RangeTimeline();
    mCenterLayout->removeWidget(global);
    mCenterLayout->removeWidget(range);
    // The global timeline stands above the range timeline where both are on one side.
    for (const bool isRange : {true, false})
    {
        const bool atTop = isRange ? Settings::rangeTimelineAtTop : Settings::globalTimelineAtTop;
        const bool rangeIsAbove = !isRange && atTop && Settings::rangeTimelineAtTop;
        QWidget* const below = rangeIsAbove ? static_cast<QWidget*>(range) : mViewerRow;
        mCenterLayout->insertWidget(mCenterLayout->indexOf(below) + (atTop ? 0 : 1),
                                    isRange ? range : global);
    }
}

void PlayerWindow::OnGlobalPositionChangeRequested(bool top)
{
    Settings::globalTimelineAtTop = top;
    ArrangeTimelines();
    Settings::WriteUserConfig();
}

void PlayerWindow::OnRangePositionChangeRequested(bool top)
{
    Settings::rangeTimelineAtTop = top;
    ArrangeTimelines();
    Settings::WriteUserConfig();
}

CommandTable* PlayerWindow::Commands() const
{
    return mCommands;
}

PlaybackController* PlayerWindow::Playback() const
{
    return mPlayback;
}

ViewerWidget* PlayerWindow::Viewer() const
{
    return mViewer;
}

Project* PlayerWindow::GetProject() const
{
    return mProject;
}

ProjectBinding* PlayerWindow::Projects() const
{
    return mProjects;
}

StrokeController* PlayerWindow::Strokes() const
{
    return mAnnotation->Strokes();
}

AnnotationController* PlayerWindow::Annotation() const
{
    return mAnnotation;
}

VolumeState* PlayerWindow::Volume() const
{
    return mVolume;
}

void PlayerWindow::OnKeysChanged()
{
    mAnnotationBar->UpdateHotkeys(mCommands);
}

PanelArea* PlayerWindow::Panels() const
{
    return mPanels;
}

ConsoleBinding* PlayerWindow::Console() const
{
    return mConsole;
}

SettingsBinding* PlayerWindow::Preferences() const
{
    return mSettings;
}

ScriptBinding* PlayerWindow::Scripts() const
{
    return mScripts;
}

QPointF PlayerWindow::Pan() const
{
    return mPan;
}

float PlayerWindow::Zoom() const
{
    return mZoom;
}

OutputBinding* PlayerWindow::Output() const
{
    return mOutput;
}

void PlayerWindow::UpdateTitle()
{
    QStringList names;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
        if (timeline && timeline->FrameCount() > 0)
            names << timeline->GetName();
    }
    mProjects->UpdateTitle(names);
}

void PlayerWindow::UpdateStatus()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline || timeline->FrameCount() == 0)
    {
        mMediaLabel->setText(mProject->IsReading() ? tr("Opening…")
                                                   : tr("Open or drop a movie or an image sequence"));
        mFrameLabel->clear();
        mRateLabel->clear();
        mToolLabel->clear();
        return;
    }
    const std::shared_ptr<const MediaSource> source = timeline->SourceAt(mPlayback->CurrentFrame());
    if (source)
        mMediaLabel->setText(tr("%1   %2 x %3   %4")
                                 .arg(timeline->GetName())
                                 .arg(source->Info().width)
                                 .arg(source->Info().height)
                                 .arg(source->Info().codecName));
    else
        mMediaLabel->setText(timeline->GetName());
    mFrameLabel->setText(tr("Frame %1 / %2").arg(mPlayback->CurrentFrame()).arg(timeline->FrameCount()));
    QString rate = tr("%1 fps").arg(timeline->Rate().PerSecond(), 0, 'g', 5);
    if (mPlayback->IsPlaying())
    {
        rate += tr("   showing %1").arg(static_cast<double>(mActualRate), 0, 'f', 1);
        if (mPlayback->DroppedFrames() > 0)
            rate += tr("   %1 dropped").arg(mPlayback->DroppedFrames());
    }
    if (mZoom > 1.0f)
        rate += tr("   zoom %1%").arg(qRound(static_cast<double>(mZoom) * 100.0));
    mRateLabel->setText(rate);
    if (!Settings::drawEnabled)
        mToolLabel->clear();
    else
        mToolLabel->setText(ToolName(Settings::annotationTool));
}

void PlayerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!LocalFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void PlayerWindow::dropEvent(QDropEvent* event)
{
    const QStringList paths = LocalFiles(event->mimeData());
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    OpenForUser(paths, mAnnotation->Strokes()->ViewerAt(mapToGlobal(event->pos())));
}

void PlayerWindow::OnViewerDropped(QDropEvent* event, int viewer)
{
    const QStringList paths = LocalFiles(event->mimeData());
    if (!paths.isEmpty())
        OpenForUser(paths, viewer);
}

void PlayerWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && mAnnotation->IsBusy())
        mAnnotation->EndEdits();
    else
        QMainWindow::keyPressEvent(event);
}

void PlayerWindow::closeEvent(QCloseEvent* event)
{
    mPlayback->Pause();
    mAnnotation->EndEdits();
    // An export is stopped only when nothing else keeps the window open.
    if (!mProjects->MayDrop() || !mOutput->MayClose())
    {
        event->ignore();
        return;
    }
    mConsole->Close();
    mAnnotationBar->WriteState();
    mBookmarksBar->WriteState();
    mVolumeBar->WriteState();
    Settings::WriteUserConfig();
    QMainWindow::closeEvent(event);
}
