// SPDX-License-Identifier: MIT
#include "window/PlayerWindow.h"

#include "annotation/AnnotationStore.h"
#include "annotation/FullPaint.h"
#include "annotation/StrokeController.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "project/MediaLibrary.h"
#include "project/MediaTimeline.h"
#include "timelines/TimelineWidget.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/DemoDrawing.h"
#include "window/MessageBar.h"
#include "window/OverlayPresenter.h"
#include "window/TimelineBinding.h"
#include "window/ViewerInput.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
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
    // Once events run, so that files which are opened before that don't clear it away.
    if (!choice.message.isEmpty())
        QTimer::singleShot(0, this, [text = choice.message] { Logger::GetInstance()->Warning(text); });
}

PlayerWindow::~PlayerWindow()
{
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
    mMessages = new MessageBar(this);
}

void PlayerWindow::CreateActions()
{
    mCommands = new CommandTable(MakeCommands(), this);
    struct MenuRow
    {
        const char* name;
        QString text;
    };
    for (const MenuRow& row :
         {MenuRow{"file", tr("&File")}, MenuRow{"playback", tr("&Playback")}, MenuRow{"view", tr("&View")},
          MenuRow{"annotate", tr("&Annotate")}, MenuRow{"bookmarks", tr("&Bookmarks")}})
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
    if (Settings::rangeTimelineAtTop)
        mCenterLayout->insertWidget(mCenterLayout->indexOf(mViewer), range);
    else
        mCenterLayout->addWidget(range);
    const bool sameSide = Settings::globalTimelineAtTop == Settings::rangeTimelineAtTop;
    if (Settings::globalTimelineAtTop)
        mCenterLayout->insertWidget(mCenterLayout->indexOf(sameSide ? range : static_cast<QWidget*>(mViewer)),
                                    global);
    else
        mCenterLayout->insertWidget(mCenterLayout->indexOf(mViewer) + 1, global);
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

void PlayerWindow::OpenFiles(const QStringList& paths, int viewer)
{
    mMessages->Clear();
    for (const QString& path : paths)
    {
        mMedia->Open(path, viewer);
        viewer = -1;
    }
    UpdateStatus();
}

void PlayerWindow::OpenFromDialog(int viewer)
{
    const QStringList patterns = MediaNamePatterns();
    const QStringList paths = QFileDialog::getOpenFileNames(
        this, viewer == 0 ? tr("Open Media") : tr("Open Media in Viewer B"), QString(),
        tr("Movies and Images (%1);;All Files (*)").arg(patterns.join(QLatin1Char(' '))));
    if (!paths.isEmpty())
        OpenFiles(paths, viewer);
}

void PlayerWindow::OnMediaOpened(int index, int viewer)
{
    const MediaInfo& info = mMedia->Entries()[static_cast<size_t>(index)].timeline->Info();
    Logger::GetInstance()->Info(tr("Opened %1: %2 x %3, %4 frames at %5 frames per second, %6")
                                    .arg(info.path)
                                    .arg(info.width)
                                    .arg(info.height)
                                    .arg(info.frameCount)
                                    .arg(info.frameRate.PerSecond(), 0, 'g', 6)
                                    .arg(info.codecName));
    if (info.missingFrames > 0)
        Logger::GetInstance()->Warning(tr("%1: %2 of %3 frames have no file")
                                           .arg(info.path)
                                           .arg(info.missingFrames)
                                           .arg(info.frameCount));
    UpdateMediaMenu();
    // A medium that is opened beside others goes to the first viewer only while nothing is there.
    if (viewer < 0 && !mPlayback->TimelineOf(0) && !mMedia->IsOpening())
        viewer = 0;
    if (viewer >= 0)
        ShowEntry(index, viewer);
    EmitIfSettled();
}

void PlayerWindow::OnMediaFailed(const QString& text)
{
    Logger::GetInstance()->Error(text);
    UpdateStatus();
    EmitIfSettled();
}

void PlayerWindow::ShowEntry(int index, int viewer)
{
    const MediaLibrary::Entry& entry = mMedia->Entries()[static_cast<size_t>(index)];
    mStrokes->Cancel();
    if (const auto& old = mPlayback->TimelineOf(viewer); old && old != entry.timeline)
        old->SetViewerIndex(-1);
    entry.timeline->SetViewerIndex(viewer);
    ShowPicture(mViewer, viewer, QImage());
    if (viewer == 1 && mViewer->GetViewerLayout() == Single)
        SetLayout(Horizontal);
    mPlayback->SetTimeline(viewer, entry.timeline, entry.media);
    UpdateTitle();
    UpdateMediaMenu();
    UpdateStatus();
    if (mDemoDrawing && viewer == 0)
    {
        mDemoDrawing = false;
        DemoDrawing::AddTo(entry.timeline.get());
        PresentOverlays();
        RefreshViewers();
    }
    if (mPlayWhenReady && !mMedia->IsOpening())
    {
        mPlayWhenReady = false;
        mPlayback->Play(1);
    }
}

void PlayerWindow::DrawDemoWhenReady()
{
    mDemoDrawing = true;
}

void PlayerWindow::PlayWhenReady()
{
    mPlayWhenReady = true;
}

void PlayerWindow::ShowNeighbourEntry(int step)
{
    const std::vector<MediaLibrary::Entry>& entries = mMedia->Entries();
    const int viewer = mPlayback->ActiveViewer();
    const auto shown = std::find_if(entries.begin(), entries.end(),
                                    [&](const MediaLibrary::Entry& entry)
                                    { return entry.timeline == mPlayback->TimelineOf(viewer); });
    if (entries.empty())
        return;
    const int count = static_cast<int>(entries.size());
    const int current = shown == entries.end() ? 0 : static_cast<int>(shown - entries.begin());
    ShowEntry((current + step + count) % count, viewer);
}

void PlayerWindow::UpdateMediaMenu()
{
    mMediaMenu->clear();
    mCommands->FillMenu(QStringLiteral("media"), mMediaMenu);
    mMediaMenu->addSeparator();
    const std::vector<MediaLibrary::Entry>& entries = mMedia->Entries();
    for (int index = 0; index < static_cast<int>(entries.size()); ++index)
    {
        MediaTimeline& timeline = *entries[static_cast<size_t>(index)].timeline;
        QString name = timeline.GetName();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* const action = mMediaMenu->addAction(name);
        action->setToolTip(timeline.Info().path);
        action->setCheckable(true);
        action->setChecked(timeline.GetViewerIndex() >= 0);
        connect(action, &QAction::triggered, this,
                [this, index]
                {
                    ShowEntry(index, mPlayback->ActiveViewer());
                    UpdateMediaMenu();
                });
    }
}

void PlayerWindow::OnPictureReady(int viewer, int frame, const ReadResult& result)
{
    if (mStrokes->DrawingViewer() == viewer)
        mStrokes->Cancel();
    ShowPicture(mViewer, viewer, result.image);
    const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer);
    OverlayPresenter::Present(mViewer, viewer, timeline->Annotations().get(), frame);
    RefreshViewers();
    EmitIfSettled();
}

void PlayerWindow::OnFrameFailed(int media, int frame, const QString& text)
{
    Q_UNUSED(media)
    Q_UNUSED(frame)
    Logger::GetInstance()->Error(text);
}

void PlayerWindow::EmitIfSettled()
{
    if (mMedia->IsOpening())
        return;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        if (mPlayback->ShownFrame(viewer) != mPlayback->WantedFrame(viewer))
            return;
    }
    Q_EMIT Settled();
}

void PlayerWindow::PresentOverlays()
{
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer);
        OverlayPresenter::Present(mViewer, viewer, timeline ? timeline->Annotations().get() : nullptr,
                                  mPlayback->ShownFrame(viewer));
    }
}

void PlayerWindow::RefreshViewers()
{
    // While playing every paint is a full one: a copy of each picture would be wasted.
    RequestFullPaint(mViewer, Settings::drawEnabled && !mPlayback->IsPlaying());
}

void PlayerWindow::OnDrawingsChanged(AnnotationStore* store, int frame)
{
    // Undo and redo take the user to the frame that they change.
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<MediaTimeline>& timeline = mPlayback->TimelineOf(viewer);
        if (timeline && timeline->Annotations().get() == store && mPlayback->ShownFrame(viewer) != frame)
        {
            mPlayback->Pause();
            mPlayback->SeekTime(timeline->FrameToTime(frame) + Settings::ROUNDING_ERROR_EXTRA_TIME);
            break;
        }
    }
    for (const MediaLibrary::Entry& entry : mMedia->Entries())
    {
        if (entry.timeline->Annotations().get() == store)
            entry.timeline->UpdateAnnotationBookmark(frame);
    }
    mTimelines->UpdateBookmarks();
    PresentOverlays();
    RefreshViewers();
}

void PlayerWindow::OnPlayheadMoved()
{
    UpdateStatus();
}

void PlayerWindow::OnPlayingChanged()
{
    RefreshViewers();
    mCommands->UpdateSwitches();
    UpdateStatus();
}

void PlayerWindow::OnActualFrameRateChanged(float rate)
{
    mActualRate = rate;
    UpdateStatus();
}

void PlayerWindow::OnViewerPressed(int viewer)
{
    if (mPlayback->TimelineOf(viewer))
        SetActiveViewer(viewer);
}

void PlayerWindow::SetActiveViewer(int viewer)
{
    mPlayback->SetActiveViewer(viewer);
    UpdateTitle();
    UpdateStatus();
}

void PlayerWindow::OnPanZoomChangeRequested(QPointF panInterpolation, float zoom, bool enabled)
{
    mPan = panInterpolation;
    mZoom = zoom;
    mViewer->SetPanAndZoom(panInterpolation, zoom, enabled);
    RefreshViewers();
    UpdateStatus();
}

void PlayerWindow::SetZoom(float zoom)
{
    const float allowed = std::min(std::max(zoom, 1.0f), Settings::zoomMaximum);
    OnPanZoomChangeRequested(allowed > 1.0f ? mPan : QPointF(), allowed, true);
}

void PlayerWindow::ZoomBy(float factor)
{
    SetZoom(mZoom * factor);
}

void PlayerWindow::OnLogged(const QString& text)
{
    mMessages->ShowMessage(text);
}

void PlayerWindow::SetLayout(int layout)
{
    Settings::viewerLayout = layout;
    mViewer->SetViewerLayout(static_cast<ViewerLayout>(layout));
    RefreshViewers();
    mCommands->UpdateSwitches();
}

void PlayerWindow::SetDrawEnabled(bool enabled)
{
    mStrokes->Cancel();
    Settings::drawEnabled = enabled;
    mViewer->setCursor(enabled ? Qt::CrossCursor : Qt::ArrowCursor);
    PresentOverlays();
    RefreshViewers();
    UpdateStatus();
}

void PlayerWindow::SelectTool(int tool)
{
    Settings::annotationTool = static_cast<AnnotationToolType>(tool);
    Settings::drawWidth = tool == Eraser ? Settings::eraserWidth : Settings::pencilWidth;
    SetDrawEnabled(true);
}

void PlayerWindow::ChangeDrawWidth(float factor)
{
    float& width = Settings::annotationTool == Eraser ? Settings::eraserWidth : Settings::pencilWidth;
    width = std::min(std::max(width * factor, Settings::MINIMUM_DRAW_WIDTH), 0.25f);
    Settings::drawWidth = width;
    if (Settings::drawEnabled)
        mViewer->RefreshAnnotations();
    UpdateStatus();
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
