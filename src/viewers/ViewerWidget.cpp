// SPDX-License-Identifier: MIT
#include "viewers/ViewerWidget.h"

#include "host/Settings.h"
#include "kit/DragPayload.h"
#include "kit/UiGlobals.h"
#include "viewers/OpenGLViewer.h"
#include "viewers/PanZoom.h"
#include "viewers/SoftwareViewer.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QWheelEvent>

namespace
{

constexpr float ZoomStep = 0.1f;
constexpr int MinimumViewerSize = 100;

bool IsPanZoomModifier(Qt::KeyboardModifiers modifiers)
{
    return Settings::panZoomMouseControls && modifiers == Qt::ControlModifier;
}

} // namespace

ViewerWidget::ViewerWidget(QWidget* parent)
    : QWidget(parent), mViewerType(Settings::hardwareAcceleratedPlayback ? OpenGL : Software)
{
    Initialize();
}

void ViewerWidget::Initialize()
{
    setSizePolicy(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding, QSizePolicy::DefaultType));
    setMinimumSize(MinimumViewerSize, MinimumViewerSize);
    setAttribute(Qt::WA_MouseTracking, true);
    setAcceptDrops(true);
    if (mViewerType == OpenGL)
        mOpenGLViewer = new OpenGLViewer(this);
    else
        mSoftwareViewer = new SoftwareViewer(this);
    BackEndWidget()->setParent(this);
    // Without it, moves with no button held would end at the back end instead of falling through.
    BackEndWidget()->setMouseTracking(true);
    BackEnd()->SetViewerLayout(mViewerLayout);
    Clear(-1);
}

ViewerBackEnd* ViewerWidget::BackEnd() const
{
    return mOpenGLViewer ? static_cast<ViewerBackEnd*>(mOpenGLViewer) : mSoftwareViewer;
}

QWidget* ViewerWidget::BackEndWidget() const
{
    return mOpenGLViewer ? static_cast<QWidget*>(mOpenGLViewer) : mSoftwareViewer;
}

void ViewerWidget::SetImage(int index, const QImage& image, bool linear)
{
    BackEnd()->SetImage(index, image, linear);
}

void ViewerWidget::SetOverlayData(int index, const FrameData* current,
                                  const QList<const FrameData*>& previous,
                                  const QList<const FrameData*>& next)
{
    BackEnd()->SetOverlayData(index, current, previous, next);
}

void ViewerWidget::Clear(int index)
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::transparent);
    BackEnd()->SetImage(index, image, false);
    if (index >= 0)
    {
        BackEnd()->SetOverlayData(index, nullptr, {}, {});
        return;
    }
    BackEnd()->SetOverlayData(0, nullptr, {}, {});
    BackEnd()->SetOverlayData(1, nullptr, {}, {});
}

void ViewerWidget::ClearAll()
{
    Clear(-1);
}

QImage ViewerWidget::GetImage()
{
    return BackEnd()->GetImage();
}

int ViewerWidget::GetImageDisplayWidth() const
{
    return BackEnd()->GetImageDisplayWidth();
}

int ViewerWidget::GetImageDisplayHeight() const
{
    return BackEnd()->GetImageDisplayHeight();
}

int ViewerWidget::GetViewerIndexFromGlobal(const QPoint& pos)
{
    return BackEnd()->GetViewerIndexFromGlobal(pos);
}

ViewerLayout ViewerWidget::GetViewerLayout() const
{
    return mViewerLayout;
}

ViewerType ViewerWidget::GetViewerType() const
{
    return mViewerType;
}

void ViewerWidget::SetViewerLayout(ViewerLayout layout)
{
    mViewerLayout = layout;
    BackEnd()->SetViewerLayout(layout);
}

void ViewerWidget::SetSingleViewerIndex(int index)
{
    BackEnd()->SetSingleViewerIndex(index);
}

void ViewerWidget::SetActiveAnnotationViewerIndex(int index)
{
    BackEnd()->SetActiveAnnotationViewerIndex(index);
}

void ViewerWidget::SetAnnotationsVisible(bool visible)
{
    BackEnd()->SetAnnotationsVisible(visible);
}

void ViewerWidget::SetStoreLastImageEnabled(bool enabled)
{
    BackEnd()->SetStoreLastImageEnabled(enabled);
}

bool ViewerWidget::IsInitialized() const
{
    return BackEnd()->IsInitialized();
}

QPointF ViewerWidget::ToDrawSpace(int index, const QPoint& globalPos)
{
    return BackEnd()->ToDrawSpace(index, globalPos);
}

void ViewerWidget::RefreshAnnotations()
{
    BackEnd()->SetAnnotationsOnly(true);
    BackEndWidget()->update();
}

void ViewerWidget::RefreshAll()
{
    BackEndWidget()->update();
}

void ViewerWidget::SetPanAndZoom(QPointF panInterpolation, float zoom, bool enabled)
{
    QPointF pan = ClampPan(panInterpolation);
    // Written so that a zoom that is not a number becomes 1 too.
    if (!(zoom > 1.0f))
    {
        zoom = 1.0f;
        pan = QPointF();
    }
    else if (zoom > Settings::zoomMaximum)
    {
        zoom = Settings::zoomMaximum;
    }
    if (SamePan(pan, mPanInterpolation) && zoom == mZoom && enabled == mPanZoomEnabled)
        return;
    mPanInterpolation = pan;
    mZoom = zoom;
    mPanZoomEnabled = enabled;
    UpdatePanAndZoom();
}

void ViewerWidget::RequestZoom(float value)
{
    if (!(value > 1.0f))
    {
        value = 1.0f;
        // At once, whatever becomes of the request: at zoom 1 there is nothing to pan.
        mPanInterpolation = QPointF();
    }
    else if (value > Settings::zoomMaximum)
    {
        value = Settings::zoomMaximum;
    }
    if (value == mZoom)
        return;
    Q_EMIT PanZoomChangeRequested(mPanInterpolation, value, true);
}

void ViewerWidget::SetZoom(float value)
{
    RequestZoom(value);
}

void ViewerWidget::IncreaseZoom()
{
    RequestZoom(mZoom + ZoomStep);
}

void ViewerWidget::DecreaseZoom()
{
    RequestZoom(mZoom - ZoomStep);
}

void ViewerWidget::UpdatePanAndZoom()
{
    const PanZoomPlacement placement = PlacePanZoom(size(), mZoom, mPanInterpolation, mPanOffset);
    if (mZoom != 1.0f)
    {
        mPanDelta = placement.delta;
        mPanCurrent = placement.current;
    }
    const QRect geometry = mPanZoomEnabled ? placement.geometry : rect();
    BackEndWidget()->setFixedSize(geometry.size());
    BackEndWidget()->move(geometry.topLeft());
}

void ViewerWidget::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::MouseFocusReason);
    if (event->button() == Qt::LeftButton)
    {
        Q_EMIT ScrubStateChanged(true);
    }
    else if (event->button() == Qt::MiddleButton && IsPanZoomModifier(event->modifiers()) && mZoom != 1.0f)
    {
        mPanStart = event->globalPos();
        mPanning = true;
    }
    event->ignore();
}

void ViewerWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() != Qt::MiddleButton)
    {
        event->ignore();
        return;
    }
    if (!mPanning)
        return;
    mPanZoomEnabled = true;
    mPanOffset = event->globalPos() - mPanStart;
    UpdatePanAndZoom();
    event->accept();
}

void ViewerWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
    {
        Q_EMIT ScrubStateChanged(false);
    }
    else if (event->button() == Qt::MiddleButton && mPanning)
    {
        mPanOffset = QPoint();
        mPanning = false;
        if (!SamePan(mPanInterpolation, mPanCurrent))
        {
            mPanInterpolation = mPanCurrent;
            Q_EMIT PanZoomChangeRequested(mPanCurrent, mZoom, mPanZoomEnabled);
        }
    }
    event->ignore();
}

void ViewerWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && Settings::doubleClickTogglesPlayback)
        Q_EMIT PlaybackToggled();
    event->ignore();
}

void ViewerWidget::wheelEvent(QWheelEvent* event)
{
    if (mPanning || !IsPanZoomModifier(event->modifiers()))
        return;
    if (event->angleDelta().y() > 0)
        IncreaseZoom();
    else if (event->angleDelta().y() < 0)
        DecreaseZoom();
}

void ViewerWidget::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    if (Settings::textToolActive)
        Q_EMIT FocusLost();
}

void ViewerWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    UpdatePanAndZoom();
}

bool ViewerWidget::CanDrop(const QMimeData* mimeData) const
{
    if (DragPayload::HasFiles(mimeData))
        return true;
    if (!DragPayload::HasProjectObjects(mimeData) ||
        DragPayload::ReadIDs(mimeData->data(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE)).size() >= 2)
        return false;
    const auto types = DragPayload::ReadAllowedDropTypes(mimeData);
    return types && (types->sources || types->timelines);
}

void ViewerWidget::AcceptIfDroppable(QDropEvent* event) const
{
    if (CanDrop(event->mimeData()))
        event->acceptProposedAction();
}

void ViewerWidget::dragEnterEvent(QDragEnterEvent* event)
{
    AcceptIfDroppable(event);
}

void ViewerWidget::dragMoveEvent(QDragMoveEvent* event)
{
    AcceptIfDroppable(event);
}

void ViewerWidget::dropEvent(QDropEvent* event)
{
    if (!CanDrop(event->mimeData()))
        return;
    Q_EMIT ViewerDropEvent(event, GetViewerIndexFromGlobal(mapToGlobal(event->pos())));
    event->acceptProposedAction();
}
