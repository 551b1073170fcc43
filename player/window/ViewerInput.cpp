// SPDX-License-Identifier: MIT
#include "window/ViewerInput.h"

#include "annotation/AnnotationController.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QScreen>

#include <algorithm>

namespace
{

/// Pixels of mouse movement for one frame, in a medium short enough for that.
constexpr double PixelsPerFrame = 4.0;

} // namespace

ViewerInput::ViewerInput(ViewerWidget* viewer, AnnotationController* annotation, PlaybackController* playback,
                         QObject* parent)
    : QObject(parent), mViewer(viewer), mAnnotation(annotation), mPlayback(playback)
{
    viewer->installEventFilter(this);
    connect(viewer, SIGNAL(ScrubStateChanged(bool)), this, SLOT(OnScrubStateChanged(bool)));
}

bool ViewerInput::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type())
    {
    case QEvent::MouseButtonPress:
        Press(*static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseButtonDblClick:
        // Two quick presses are two strokes.
        if (Settings::drawEnabled)
            Press(*static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseMove:
        Move(*static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseButtonRelease:
        Release(*static_cast<QMouseEvent*>(event));
        break;
    case QEvent::Leave:
        // The cursor's preview leaves with it.
        if (Settings::drawEnabled && !mAnnotation->IsBusy())
            Q_EMIT FullPaintNeeded();
        break;
    case QEvent::Resize:
        Q_EMIT FullPaintNeeded();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ViewerInput::Press(const QMouseEvent& event)
{
    // A second button during a scrub leaves it as it is.
    if (mScrubbing && event.button() != Qt::LeftButton)
        return;
    mPressPos = event.globalPos();
    Q_EMIT ViewerPressed(mAnnotation->Strokes()->ViewerAt(event.globalPos()));
    if (event.button() != Qt::LeftButton || !Settings::drawEnabled)
        return;
    mPlayback->HoldShownFrame();
    mAnnotation->Press(event.globalPos());
}

void ViewerInput::Move(const QMouseEvent& event)
{
    if (mAnnotation->Move(event.globalPos()))
        return;
    if (mScrubbing)
        Scrub(event.globalPos());
    else if (Settings::drawEnabled && event.buttons() == Qt::NoButton && !mPlayback->IsPlaying() &&
             !mAnnotation->IsBusy())
        mViewer->RefreshAnnotations();
}

void ViewerInput::Release(const QMouseEvent& event)
{
    if (event.button() == Qt::LeftButton)
        mAnnotation->Release(event.globalPos());
}

void ViewerInput::OnScrubStateChanged(bool enabled)
{
    if (enabled && Settings::drawEnabled)
        return;
    if (enabled)
    {
        mPressFrame = mPlayback->CurrentFrame();
        mScrubMoved = false;
        mWrappedTo.reset();
    }
    mScrubbing = enabled;
    mPlayback->SetScrubbing(enabled);
}

void ViewerInput::Scrub(const QPoint& globalPos)
{
    // Moves from before the cursor was put elsewhere are still on their way.
    const QScreen* const screen = QGuiApplication::screenAt(globalPos);
    if (mWrappedTo && screen && std::abs(globalPos.x() - *mWrappedTo) > screen->geometry().width() / 2)
        return;
    mWrappedTo.reset();
    const int distance = globalPos.x() - mPressPos.x();
    // A click is no scrub: the hand may tremble.
    if (!mScrubMoved && std::abs(distance) < QApplication::startDragDistance())
        return;
    mScrubMoved = true;
    const PlaybackRange& range = mPlayback->Range();
    const double length = range.last - range.first + 1;
    const double framesPerPixel = std::max(1.0 / PixelsPerFrame, length / std::max(mViewer->width(), 1));
    const int frame = range.Clamp(mPressFrame + static_cast<int64_t>(distance * framesPerPixel));
    const auto& lead = mPlayback->LeadingTimeline();
    if (lead && frame != mPlayback->CurrentFrame())
        mPlayback->SeekTime(lead->FrameToTime(frame) + Settings::ROUNDING_ERROR_EXTRA_TIME,
                            Settings::audioScrub);
    if (Settings::endlessMouseScurb)
        WrapCursor(globalPos);
}

void ViewerInput::WrapCursor(const QPoint& globalPos)
{
    const QScreen* const screen = QGuiApplication::screenAt(globalPos);
    if (!screen)
        return;
    const QRect area = screen->geometry();
    int x = globalPos.x();
    if (x <= area.left())
        x = area.right() - 1;
    else if (x >= area.right())
        x = area.left() + 1;
    else
        return;
    // The way that the hand has gone stays as long as it is.
    mPressPos.rx() += x - globalPos.x();
    mWrappedTo = x;
    QCursor::setPos(x, globalPos.y());
}
