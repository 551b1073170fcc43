// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/FrameData.h"
#include "host/ViewerLayout.h"
#include "host/ViewerType.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <QPointF>
#include <QWidget>

class OpenGLViewer;
class QMimeData;
class SoftwareViewer;
class ViewerBackEnd;

/// The picture area of the player: one or two viewers, A (index 0) and B (index 1), alone, side by side or
/// stacked, each with its picture and the annotations on it.
///
/// The host hands in pictures and annotations for each frame shown, and answers what the user asks for. Zoom
/// and pan never change by themselves: the widget asks with PanZoomChangeRequested() and the host answers
/// with SetPanAndZoom(). Mouse events are ignored after their signal, so that the host's window sees them too
/// and can drive drawing and scrubbing from them.
///
/// Through OpenGL, pictures must arrive as QImage::Format_RGB888 while the back end's context is current; the
/// host makes it so on `findChild<QOpenGLWidget*>()`, and asks IsInitialized() after the first show.
class TORVALENUI_EXPORT ViewerWidget : public QWidget
{
    Q_OBJECT

public:
    /// Chooses the back end by Settings::hardwareAcceleratedPlayback, for the widget's life.
    explicit ViewerWidget(QWidget* parent = nullptr);

    /// Shows @p image in viewer @p index; -1 means both. The picture is kept (implicitly shared) until the
    /// next one. A null image leaves its slot black. @p linear changes nothing on screen. Repaints.
    void SetImage(int index, const QImage& image, bool linear);
    /// Takes the annotations of viewer @p index (0 or 1; another is ignored): those of the frame shown, which
    /// may be null, and the ghosts before and after it, each list with the frame furthest from the current
    /// one first. The records stay the host's, which keeps them alive until it replaces them here. Requests
    /// no repaint.
    void SetOverlayData(int index, const FrameData* current, const QList<const FrameData*>& previous,
                        const QList<const FrameData*>& next);
    /// Empties viewer @p index, or both for -1: a black picture of 1 by 1 and no annotations.
    void Clear(int index);
    /// Empties both viewers.
    void ClearAll();
    /// The picture as displayed, overlay included, at display size.
    QImage GetImage();
    /// Size on screen, in logical pixels, of the layout's first picture as painted last.
    int GetImageDisplayWidth() const;
    int GetImageDisplayHeight() const;
    /// The viewer under the global point @p pos: 0 or 1, and 0 outside.
    int GetViewerIndexFromGlobal(const QPoint& pos);
    ViewerLayout GetViewerLayout() const;
    ViewerType GetViewerType() const;
    /// Repaints in @p layout.
    void SetViewerLayout(ViewerLayout layout);
    /// Chooses the viewer of the single layout; anything but 0 and 1 is taken as 0. Requests no repaint.
    void SetSingleViewerIndex(int index);
    /// Chooses the viewer that the user draws in; only its strokes are painted incrementally.
    void SetActiveAnnotationViewerIndex(int index);
    /// Shows or hides drawings, ghosts and the cursor preview. Repaints.
    void SetAnnotationsVisible(bool visible);
    /// Keeps a copy of the composed picture at each full paint, which RefreshAnnotations() needs; off drops
    /// it.
    void SetStoreLastImageEnabled(bool enabled);
    /// Whether the back end can draw: always with the software viewer; with OpenGL once the context stands.
    bool IsInitialized() const;
    /// Takes a pan (each axis clamped to -1 .. 1; 0 is centred, ±1 puts that edge of the enlarged picture at
    /// the widget's edge), a zoom (1.0 or less means 1.0 and no pan; at most Settings::zoomMaximum) and
    /// whether they are in force; while not @p enabled, the picture fills the widget.
    void SetPanAndZoom(QPointF panInterpolation, float zoom, bool enabled);
    /// The global point @p globalPos in the draw space of viewer @p index (0 or 1): the origin is the centre
    /// of the viewer's slot, and one unit the displayed picture's width on both axes. Not finite before the
    /// first paint.
    QPointF ToDrawSpace(int index, const QPoint& globalPos);

public Q_SLOTS:
    /// Repaints the annotations over the stored picture; a full paint if none is stored.
    void RefreshAnnotations();
    /// Repaints.
    void RefreshAll();

Q_SIGNALS:
    /// The left button was double-clicked, with Settings::doubleClickTogglesPlayback on. The host starts or
    /// stops playback.
    void PlaybackToggled();
    /// The left button went down (@p enabled) or up. The host suspends and resumes what scrubbing disturbs.
    void ScrubStateChanged(bool enabled);
    /// The focus went elsewhere while a text was being typed. The host ends the text.
    void FocusLost();
    /// The user asked for another zoom or ended a pan. The host answers with SetPanAndZoom().
    void PanZoomChangeRequested(QPointF panInterpolation, float zoom, bool enabled);
    /// Files or one timeline of the project tree were dropped on viewer @p index (0 or 1). The host opens
    /// them there; it reads what is dropped from @p e during the signal, so it must be connected directly.
    void ViewerDropEvent(QDropEvent* e, int index);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void Initialize();
    bool CanDrop(const QMimeData* mimeData) const;
    void AcceptIfDroppable(QDropEvent* event) const;
    void SetZoom(float value);
    void IncreaseZoom();
    void DecreaseZoom();
    void UpdatePanAndZoom();
    void RequestZoom(float value);
    ViewerBackEnd* BackEnd() const;
    QWidget* BackEndWidget() const;

    OpenGLViewer* mOpenGLViewer = nullptr;
    SoftwareViewer* mSoftwareViewer = nullptr;
    ViewerType mViewerType;
    ViewerLayout mViewerLayout = Single;
    bool mPanZoomEnabled = false;
    float mZoom = 1.0f;
    QPointF mPanInterpolation;
    QPointF mPanDelta;
    QPointF mPanCurrent;
    bool mPanning = false;
    QPoint mPanStart;
    QPoint mPanOffset;
};
