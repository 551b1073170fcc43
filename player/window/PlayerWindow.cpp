// SPDX-License-Identifier: MIT
#include "window/PlayerWindow.h"

#include "annotation/AnnotationStore.h"
#include "annotation/StrokeController.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "project/MediaLibrary.h"
#include "project/MediaTimeline.h"
#include "timelines/TimelineWidget.h"
#include "toolbars/PlaybackControlWidget.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MessageBar.h"
#include "window/ScriptBinding.h"
#include "window/TimelineBinding.h"
#include "window/ViewerInput.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr QSize InitialSize(1280, 800);
constexpr int StatusMargin = 8;

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
    setObjectName(QStringLiteral("playerWindow"));
    mViewer = choice.MakeViewer(this);
    CreateWidgets();
    CreateActions();
    CreateLayout();
    CreateConnections();
    resize(InitialSize);
    setAcceptDrops(true);
    UpdateTitle();
    UpdateStatus();
    // Once events run: by then the window is shown and its log is heard.
    if (!choice.message.isEmpty())
        QTimer::singleShot(0, this, [text = choice.message] { Logger::GetInstance()->Warning(text); });
}

PlayerWindow::~PlayerWindow()
{
    delete mScripts;
    // The viewers hold plain pointers to the annotations of timelines that go before them.
    ShowPicture(mViewer, -1, QImage());
}

void PlayerWindow::CreateWidgets()
{
    mLoader = new FrameLoader(this);
    mPlayback = new PlaybackController(mLoader, this);
    mMedia = new MediaLibrary(mLoader, PictureFormatOf(mViewer), this);
    mViewer->setObjectName(QStringLiteral("viewer"));
    mViewer->setFocusPolicy(Qt::StrongFocus);
    mViewer->SetViewerLayout(static_cast<ViewerLayout>(Settings::viewerLayout));
    mStrokes = new StrokeController(
        mViewer, &mUndoStack,
        [this](int viewer)
        {
            const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer);
            if (!timeline || mPlayback->ShownFrame(viewer) == 0)
                return StrokeTarget();
            return StrokeTarget{timeline->Annotations(), mPlayback->ShownFrame(viewer)};
        },
        this);
    mInput = new ViewerInput(mViewer, mStrokes, mPlayback, this);
    mTimelines = new TimelineBinding(mPlayback, mLoader, this, this);
    mTransport = new PlaybackControlWidget(this);
    mTransport->setObjectName(QStringLiteral("transport"));
    mMessages = new MessageBar(this);
    mScripts = new ScriptBinding(this);
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
}

void PlayerWindow::CreateLayout()
{
    auto* const center = new QWidget(this);
    mCenterLayout = new QVBoxLayout(center);
    mCenterLayout->setContentsMargins(0, 0, 0, 0);
    mCenterLayout->setSpacing(0);
    mCenterLayout->addWidget(mMessages);
    mCenterLayout->addWidget(mViewer, 1);
    ArrangeTimelines();
    setCentralWidget(center);
    auto* const bar = new QHBoxLayout;
    bar->addStretch();
    bar->addWidget(mTransport);
    bar->addStretch();
    mCenterLayout->addLayout(bar);

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
    connect(mMedia, SIGNAL(Opened(int, int)), this, SLOT(OnMediaOpened(int, int)));
    connect(mMedia, SIGNAL(Failed(QString)), this, SLOT(OnMediaFailed(QString)));
    connect(mPlayback, SIGNAL(PictureReady(int, int, const ReadResult&)), this,
            SLOT(OnPictureReady(int, int, const ReadResult&)));
    connect(mPlayback, SIGNAL(PlayheadMoved(int64_t)), this, SLOT(OnPlayheadMoved()));
    connect(mPlayback, SIGNAL(PlayingChanged(bool)), this, SLOT(OnPlayingChanged()));
    connect(mPlayback, SIGNAL(ActualFrameRateChanged(float)), this, SLOT(OnActualFrameRateChanged(float)));
    connect(mViewer, SIGNAL(PanZoomChangeRequested(QPointF, float, bool)), this,
            SLOT(OnPanZoomChangeRequested(QPointF, float, bool)));
    connect(mViewer, SIGNAL(PlaybackToggled()), mPlayback, SLOT(TogglePlayback()));
    connect(mTransport, SIGNAL(PlayForwardsPressed()), mPlayback, SLOT(ToggleForwards()));
    connect(mTransport, SIGNAL(PlayBackwardsPressed()), mPlayback, SLOT(ToggleBackwards()));
    connect(mTransport, SIGNAL(StepForwardsPressed()), mPlayback, SLOT(StepForwards()));
    connect(mTransport, SIGNAL(StepBackwardsPressed()), mPlayback, SLOT(StepBackwards()));
    connect(mTransport, SIGNAL(SeekStartPressed()), mPlayback, SLOT(GoToFirst()));
    connect(mTransport, SIGNAL(SeekEndPressed()), mPlayback, SLOT(GoToLast()));
    connect(mTransport, SIGNAL(NextBookmarkPressed()), this, SLOT(GoToNextBookmark()));
    connect(mTransport, SIGNAL(PreviousBookmarkPressed()), this, SLOT(GoToPreviousBookmark()));
    connect(mPlayback, SIGNAL(StateChanged(bool, bool)), mTransport,
            SLOT(OnPlaybackStateChanged(bool, bool)));
    connect(mInput, SIGNAL(FullPaintNeeded()), this, SLOT(RefreshViewers()));
    connect(mInput, SIGNAL(ViewerPressed(int)), this, SLOT(OnViewerPressed(int)));
    connect(mStrokes, SIGNAL(OverlayChanged()), this, SLOT(PresentOverlays()));
    connect(mStrokes, SIGNAL(DrawingsChanged(AnnotationStore*, int)), this,
            SLOT(OnDrawingsChanged(AnnotationStore*, int)));
    connect(mLoader, SIGNAL(FrameFailed(int, int, QString)), this, SLOT(OnFrameFailed(int, int, QString)));
    connect(mTimelines, SIGNAL(GlobalPositionChangeRequested(bool)), this,
            SLOT(OnGlobalPositionChangeRequested(bool)));
    connect(mTimelines, SIGNAL(RangePositionChangeRequested(bool)), this,
            SLOT(OnRangePositionChangeRequested(bool)));
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
        QWidget* const below = rangeIsAbove ? static_cast<QWidget*>(range) : mViewer;
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

MediaLibrary* PlayerWindow::Media() const
{
    return mMedia;
}

StrokeController* PlayerWindow::Strokes() const
{
    return mStrokes;
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

void PlayerWindow::UpdateTitle()
{
    QStringList names;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        if (const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer))
            names << timeline->GetName();
    }
    const QString title = QString::fromLatin1(Settings::APPLICATION_TITLE);
    setWindowTitle(names.isEmpty() ? title
                                   : QStringLiteral("%1 - %2").arg(names.join(QLatin1String(" | ")), title));
}

void PlayerWindow::UpdateStatus()
{
    const std::shared_ptr<MediaTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline)
    {
        mMediaLabel->setText(mMedia->IsOpening() ? tr("Opening…")
                                                 : tr("Open or drop a movie or an image sequence"));
        mFrameLabel->clear();
        mRateLabel->clear();
        mToolLabel->clear();
        return;
    }
    const MediaInfo& info = timeline->Info();
    mMediaLabel->setText(tr("%1   %2 x %3   %4")
                             .arg(timeline->GetName())
                             .arg(info.width)
                             .arg(info.height)
                             .arg(info.codecName));
    mFrameLabel->setText(tr("Frame %1 / %2").arg(mPlayback->CurrentFrame()).arg(info.frameCount));
    QString rate = tr("%1 fps").arg(info.frameRate.PerSecond(), 0, 'g', 5);
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
        mToolLabel->setText(Settings::annotationTool == Eraser ? tr("Eraser") : tr("Pencil"));
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
    mMessages->Clear();
    OpenFiles(paths, mStrokes->ViewerAt(mapToGlobal(event->pos())));
}

void PlayerWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && mStrokes->IsDrawing())
        mStrokes->Cancel();
    else
        QMainWindow::keyPressEvent(event);
}

void PlayerWindow::closeEvent(QCloseEvent* event)
{
    mPlayback->Pause();
    Settings::WriteUserConfig();
    QMainWindow::closeEvent(event);
}
