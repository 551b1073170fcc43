// SPDX-License-Identifier: MIT
#pragma once

#include "host/DrawData.h"
#include "viewers/ViewerBackEnd.h"

#include <QVector>

class QPainter;
class QWidget;
struct DrawSpace;

/// What the back ends share: the annotations of both viewers, the space they are drawn in, and their
/// painting.
///
/// A paint is of one of two kinds. A full paint makes the picture anew, throws the overlay cache away and
/// redraws every annotation. An annotation-only paint takes the stored picture and adds to the cached overlay
/// only what has changed, so that a stroke in progress costs its new segments whatever its length and
/// whatever lies behind it.
///
/// A back end calls SettlePaintFlags() before it paints, ResetOverlayCache() after a full picture, and
/// FinishPaint() with no painter open on the widget.
class AnnotationOverlay : public ViewerBackEnd
{
public:
    void SetOverlayData(int index, const FrameData* current, const QList<const FrameData*>& previous,
                        const QList<const FrameData*>& next) override;
    int GetViewerIndexFromGlobal(const QPoint& pos) override;
    void SetViewerLayout(ViewerLayout layout) override;
    void SetSingleViewerIndex(int index) override;
    void SetActiveAnnotationViewerIndex(int index) override;
    void SetAnnotationsVisible(bool visible) override;
    void SetStoreLastImageEnabled(bool enabled) override;
    void SetAnnotationsOnly(bool annotationsOnly) override;
    QPointF ToDrawSpace(int index, const QPoint& globalPos) override;
    QPointF FromDrawSpace(int index, const QPointF& drawPos) override;

    /// Paints entry @p entry of @p frame as it stands in viewer @p viewerIndex. A freehand drawing goes on
    /// from its point @p startPoint; -1 paints it whole. An @p alpha of 0 to 255 replaces the drawing's own.
    /// An entry that doesn't exist paints nothing.
    void PaintDrawData(QPainter* painter, const FrameData* frame, int entry, int startPoint, int viewerIndex,
                       int alpha);
    /// The end, in draw space, of one barb of an arrow from @p tail to @p tip; @p angle (radians) turns it
    /// off the shaft.
    QPointF GetArrowHeadPoint(const QPointF& tail, const QPointF& tip, float angle);
    /// Paints the annotations of the viewers shown, and the cursor preview, on the widget.
    void PaintAnnotations();

protected:
    /// @p widget is the back end itself.
    explicit AnnotationOverlay(QWidget* widget);

    /// Decides whether this paint is a full one.
    void SettlePaintFlags();
    /// Forgets the cached overlay, as every full paint does.
    void ResetOverlayCache();
    /// Paints the overlay if there is any to show, and takes the result over into the cache.
    void FinishPaint();

    static constexpr int ViewerCount = 2;

    QVector<QPointF> mDisplaySizes = QVector<QPointF>(ViewerCount);
    ViewerLayout mViewerLayout = Single;
    bool mLinearFlags[ViewerCount] = {false, false};
    const FrameData* mCurrentFrameData[ViewerCount] = {nullptr, nullptr};
    QList<const FrameData*> mPreviousFrameData[ViewerCount];
    QList<const FrameData*> mNextFrameData[ViewerCount];
    bool mImageChanged = true;
    bool mAnnotationsOnly = false;
    int mActiveAnnotationViewerIndex = 0;
    bool mAnnotationsVisible = true;
    int mLastDrawIndex[ViewerCount] = {-1, -1};
    int mLastPointIndex[ViewerCount] = {-1, -1};
    QImage mLastImage;
    bool mStoreLastImage = false;
    QImage mAnnotationImage;
    QImage mAnnotationScratchImage;
    int mSingleViewerIndex = 0;

private:
    class AnnotationPainter;

    DrawSpace SpaceOf(int index) const;
    bool HasOverlay(int index) const;
    bool TakesIncrementalPath(int index) const;
    void PaintIncrementally(QPainter& widgetPainter, int index);
    void PaintWhole(QPainter& widgetPainter, AnnotationPainter& annotationPainter, int index);
    void PaintGhosts(AnnotationPainter& annotationPainter, const QList<const FrameData*>& ghosts, int count,
                     int index);
    void PaintFrame(AnnotationPainter& annotationPainter, const FrameData* frame, int index, int alpha);
    void PaintCursorPreview(QPainter& widgetPainter);

    QWidget* mWidget;
};
