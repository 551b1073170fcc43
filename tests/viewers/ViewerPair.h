// SPDX-License-Identifier: MIT
#pragma once

#include "viewers/SoftwareViewer.h"
#include "viewers/ViewerModel.h"

#include <QByteArray>
#include <QWidget>

/// The software viewer with what it keeps between paints open to tests.
class SoftwareViewerProbe : public SoftwareViewer
{
    Q_OBJECT

public:
    using SoftwareViewer::SoftwareViewer;

    using AnnotationOverlay::mActiveAnnotationViewerIndex;
    using AnnotationOverlay::mAnnotationImage;
    using AnnotationOverlay::mAnnotationScratchImage;
    using AnnotationOverlay::mAnnotationsOnly;
    using AnnotationOverlay::mAnnotationsVisible;
    using AnnotationOverlay::mCurrentFrameData;
    using AnnotationOverlay::mDisplaySizes;
    using AnnotationOverlay::mImageChanged;
    using AnnotationOverlay::mLastDrawIndex;
    using AnnotationOverlay::mLastImage;
    using AnnotationOverlay::mLastPointIndex;
    using AnnotationOverlay::mLinearFlags;
    using AnnotationOverlay::mNextFrameData;
    using AnnotationOverlay::mPreviousFrameData;
    using AnnotationOverlay::mSingleViewerIndex;
    using AnnotationOverlay::mStoreLastImage;
    using AnnotationOverlay::mViewerLayout;
};

/// A software viewer and its model, driven alike. Nothing is shown, so that paints happen only when asked
/// for.
class ViewerPair
{
public:
    explicit ViewerPair(const QSize& size, const QPoint& position = QPoint(0, 0));
    ~ViewerPair();

    void Resize(const QSize& size);
    void SetImage(int index, const QImage& image);
    void SetOverlay(int index, const FrameData* current, const QList<const FrameData*>& previous = {},
                    const QList<const FrameData*>& next = {});
    void SetLayout(ViewerLayout layout);
    void SetSingle(int index);
    void SetActive(int index);
    void SetVisible(bool visible);
    void SetStore(bool store);
    void SetAnnotationsOnly();
    /// Moves the mouse cursor to @p position of the viewer, with or without Ctrl held.
    void MoveCursor(const QPoint& position, bool control = false);

    /// One paint of the viewer alone, on a canvas that starts as garbage.
    QImage PaintViewer();
    /// One paint of both. Returns an empty text if picture and kept state agree, otherwise what differs.
    QByteArray Paint(int tolerance = BlendTolerance);

    /// Qt blends rows in blocks that start at aligned addresses, and rounds the pixels before and after them
    /// otherwise. Twice, since a ghost is blended onto the overlay and the overlay onto the picture.
    static constexpr int BlendTolerance = 2;

    QWidget window;
    SoftwareViewerProbe* viewer;
    ViewerModel model;

private:
    QByteArray StateDifference(int tolerance) const;
};

/// A picture of noise that starts from @p seed, so that each pixel and each orientation tells.
QImage NoisePicture(const QSize& size, quint32 seed);
DrawData MakeDrawing(DrawType type, const QList<QPointF>& points, float width = 0.02f,
                     const QColor& color = QColor(200, 30, 60));
/// A frame that shows all of @p drawings.
FrameData MakeFrame(const QList<DrawData>& drawings);
/// Where anything was painted on a black picture.
QRect PaintedBounds(const QImage& image);
