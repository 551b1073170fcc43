// SPDX-License-Identifier: MIT
#include "viewers/AnnotationOverlay.h"

#include "host/FrameData.h"
#include "host/Settings.h"
#include "viewers/DrawDataPainting.h"
#include "viewers/DrawSpace.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cstdint>

namespace
{

using DrawDataPainting::OverlayRenderHints;

constexpr QSizeF CaretSize(5.0, 15.0);

QImage MakeTransparentImage(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

/// Whether @p frame has a drawing that is to be painted.
bool HasDrawings(const FrameData* frame)
{
    return frame && frame->lastIndex >= 0;
}

bool IsFreehand(const FrameData& frame, int entry)
{
    if (entry < 0 || entry >= frame.drawData.size())
        return false;
    const DrawType type = frame.drawData[entry].type;
    return type == DrawPencil || type == DrawEraser;
}

/// Index of the last point of @p entry; -1 if there is none.
int LastPointOf(const FrameData& frame, int entry)
{
    return entry >= 0 && entry < frame.drawData.size() ? frame.drawData[entry].points.size() - 1 : -1;
}

} // namespace

/// The painters of the whole overlay, opened where they are first needed: a paint that adds to a stroke needs
/// none, and opening one on the cached overlay would copy it.
class AnnotationOverlay::AnnotationPainter
{
public:
    explicit AnnotationPainter(QImage& image) : mImage(image) {}

    void SetClip(const QRect& clip)
    {
        mClip = clip;
        mClipped = true;
        if (mPainter.isActive())
            mPainter.setClipRect(clip, Qt::ReplaceClip);
    }

    QPainter& Painter()
    {
        if (!mPainter.isActive())
        {
            mPainter.begin(&mImage);
            mPainter.setRenderHints(OverlayRenderHints);
            if (mClipped)
                mPainter.setClipRect(mClip, Qt::ReplaceClip);
        }
        return mPainter;
    }

    /// Where one frame's drawings go: the overlay itself, or with accurate ghosts a cleared picture of its
    /// own.
    QPainter& BeginFrame()
    {
        if (!Settings::annotationGhostAccurate)
            return Painter();
        if (!mFramePainter.isActive())
        {
            mFrameImage = QImage(mImage.size(), QImage::Format_ARGB32);
            mFramePainter.begin(&mFrameImage);
            mFramePainter.setRenderHints(OverlayRenderHints);
        }
        mFrameImage.fill(Qt::transparent);
        return mFramePainter;
    }

    void EndFrame()
    {
        if (Settings::annotationGhostAccurate)
            Painter().drawImage(0, 0, mFrameImage);
    }

private:
    QImage& mImage;
    QRect mClip;
    bool mClipped = false;
    QPainter mPainter;
    QImage mFrameImage;
    QPainter mFramePainter;
};

AnnotationOverlay::AnnotationOverlay(QWidget* widget) : mWidget(widget) {}

void AnnotationOverlay::SetOverlayData(int index, const FrameData* current,
                                       const QList<const FrameData*>& previous,
                                       const QList<const FrameData*>& next)
{
    if (index < 0 || index >= ViewerCount)
        return;
    mCurrentFrameData[index] = current;
    mPreviousFrameData[index] = previous;
    mNextFrameData[index] = next;
}

int AnnotationOverlay::GetViewerIndexFromGlobal(const QPoint& pos)
{
    const QPoint local = mWidget->mapFromGlobal(pos);
    // The geometry is in the parent's coordinates and the point is not. That is meant: hosts rely on the far
    // part of a moved back end counting as outside.
    if (!mWidget->geometry().contains(local))
        return 0;
    if (mViewerLayout == Horizontal)
        return static_cast<float>(local.x()) > static_cast<float>(mWidget->width()) * 0.5f ? 1 : 0;
    if (mViewerLayout == Vertical)
        return static_cast<float>(local.y()) > static_cast<float>(mWidget->height()) * 0.5f ? 1 : 0;
    return mSingleViewerIndex;
}

void AnnotationOverlay::SetViewerLayout(ViewerLayout layout)
{
    mViewerLayout = layout;
    mWidget->update();
}

void AnnotationOverlay::SetSingleViewerIndex(int index)
{
    mSingleViewerIndex = index == 1 ? 1 : 0;
}

void AnnotationOverlay::SetActiveAnnotationViewerIndex(int index)
{
    mActiveAnnotationViewerIndex = index;
}

void AnnotationOverlay::SetAnnotationsVisible(bool visible)
{
    mAnnotationsVisible = visible;
    mWidget->update();
}

void AnnotationOverlay::SetStoreLastImageEnabled(bool enabled)
{
    mStoreLastImage = enabled;
    if (!enabled)
        mLastImage = QImage();
}

void AnnotationOverlay::SetAnnotationsOnly(bool annotationsOnly)
{
    mAnnotationsOnly = annotationsOnly;
}

DrawSpace AnnotationOverlay::SpaceOf(int index) const
{
    return DrawSpace::Of(mViewerLayout, index, mWidget->size(), mDisplaySizes[index].x());
}

QPointF AnnotationOverlay::ToDrawSpace(int index, const QPoint& globalPos)
{
    return SpaceOf(index).FromPixel(mWidget->mapFromGlobal(globalPos));
}

QPointF AnnotationOverlay::FromDrawSpace(int index, const QPointF& drawPos)
{
    return SpaceOf(index).ToPixel(drawPos);
}

void AnnotationOverlay::SettlePaintFlags()
{
    if (mImageChanged || mLastImage.isNull() || !mAnnotationsVisible)
    {
        mImageChanged = false;
        mAnnotationsOnly = false;
    }
}

void AnnotationOverlay::ResetOverlayCache()
{
    std::fill(std::begin(mLastDrawIndex), std::end(mLastDrawIndex), -1);
    std::fill(std::begin(mLastPointIndex), std::end(mLastPointIndex), -1);
    mAnnotationImage = QImage();
    mAnnotationScratchImage = QImage();
}

bool AnnotationOverlay::HasOverlay(int index) const
{
    return HasDrawings(mCurrentFrameData[index]) || !mPreviousFrameData[index].isEmpty() ||
           !mNextFrameData[index].isEmpty();
}

void AnnotationOverlay::FinishPaint()
{
    // With nothing to paint the annotations-only flag stays up. That is meant: the first drawing after it
    // still finds the stored picture.
    if (!mAnnotationsVisible || (!HasOverlay(0) && !HasOverlay(1)))
        return;
    PaintAnnotations();
    if (!mAnnotationsOnly)
        return;
    mAnnotationImage = mAnnotationScratchImage;
    mAnnotationsOnly = false;
}

bool AnnotationOverlay::TakesIncrementalPath(int index) const
{
    return HasDrawings(mCurrentFrameData[index]) && mAnnotationsOnly && mLastDrawIndex[index] >= 0 &&
           index == mActiveAnnotationViewerIndex;
}

void AnnotationOverlay::PaintAnnotations()
{
    QPainter widgetPainter(mWidget);
    widgetPainter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (!mAnnotationsOnly || mAnnotationImage.isNull())
        mAnnotationImage = MakeTransparentImage(mWidget->size());

    {
        AnnotationPainter annotationPainter(mAnnotationImage);
        for (int index = 0; index < ViewerCount; ++index)
        {
            if (mViewerLayout == Single && index != mSingleViewerIndex)
                continue;
            if (mViewerLayout != Single)
                annotationPainter.SetClip(ViewerHalf(mViewerLayout, index, mWidget->size()));
            // PaintDrawData() leaves its composition mode on the widget's painter, and what follows here is
            // painted in it. That is meant: nothing resets it between the viewers.
            if (TakesIncrementalPath(index))
                PaintIncrementally(widgetPainter, index);
            else
                PaintWhole(widgetPainter, annotationPainter, index);
        }
    }
    PaintCursorPreview(widgetPainter);
}

void AnnotationOverlay::PaintIncrementally(QPainter& widgetPainter, int index)
{
    const FrameData* const frame = mCurrentFrameData[index];
    const int last = frame->lastIndex;
    const bool freehand = IsFreehand(*frame, last);

    mAnnotationScratchImage = mAnnotationImage.copy();
    {
        QPainter scratchPainter(&mAnnotationScratchImage);
        scratchPainter.setRenderHint(QPainter::Antialiasing);
        if (mViewerLayout != Single)
            scratchPainter.setClipRect(ViewerHalf(mViewerLayout, index, mWidget->size()), Qt::ReplaceClip);
        const int done = mLastDrawIndex[index];
        if (freehand || done < last - 1)
            PaintDrawData(&scratchPainter, frame, done, mLastPointIndex[index], index, -1);
        // Each pass paints the frame's last entry and not the one it counts. That is meant: the host adds one
        // drawing at a time and relies on the newest one showing.
        for (int entry = done + 1; entry <= last; ++entry)
        {
            if (entry != last || freehand)
                PaintDrawData(&scratchPainter, frame, last, -1, index, -1);
        }
    }
    widgetPainter.drawImage(0, 0, mAnnotationScratchImage);

    if (freehand)
    {
        mLastDrawIndex[index] = last;
        mLastPointIndex[index] = LastPointOf(*frame, last);
        return;
    }
    // A shape that is being dragged never enters the cache: the next paint shows it at its new size, without
    // a trail.
    mLastDrawIndex[index] = last - 1;
    mLastPointIndex[index] = -1;
    PaintDrawData(&widgetPainter, frame, last, -1, index, -1);
}

void AnnotationOverlay::PaintWhole(QPainter& widgetPainter, AnnotationPainter& annotationPainter, int index)
{
    PaintGhosts(annotationPainter, mPreviousFrameData[index], Settings::annotationGhostPreviousNumFrames,
                index);
    PaintGhosts(annotationPainter, mNextFrameData[index], Settings::annotationGhostNextNumFrames, index);
    if (const FrameData* const frame = mCurrentFrameData[index]; HasDrawings(frame))
    {
        PaintFrame(annotationPainter, frame, index, -1);
        mLastDrawIndex[index] = frame->lastIndex;
        mLastPointIndex[index] = LastPointOf(*frame, frame->lastIndex);
    }
    // Not cut to the viewer's half: in a two-viewer layout each pass blits the whole overlay, and that is
    // meant.
    widgetPainter.drawImage(0, 0, mAnnotationImage);
}

void AnnotationOverlay::PaintGhosts(AnnotationPainter& annotationPainter,
                                    const QList<const FrameData*>& ghosts, int count, int index)
{
    // In 64 bits, since the settings may hold anything.
    const int64_t span = int64_t(Settings::annotationGhostAlphaMax) - Settings::annotationGhostAlphaMin;
    const int64_t step = count >= 1 ? span / count : 0;
    int64_t alpha = (int64_t(count) - ghosts.size()) * step + Settings::annotationGhostAlphaMin;
    for (const FrameData* ghost : ghosts)
    {
        PaintFrame(annotationPainter, ghost, index, static_cast<int>(alpha));
        alpha += step;
    }
}

void AnnotationOverlay::PaintFrame(AnnotationPainter& annotationPainter, const FrameData* frame, int index,
                                   int alpha)
{
    QPainter& painter = annotationPainter.BeginFrame();
    if (frame)
    {
        const int last = std::min(frame->lastIndex, frame->drawData.size() - 1);
        for (int entry = std::max(frame->firstIndex, 0); entry <= last; ++entry)
            PaintDrawData(&painter, frame, entry, -1, index, alpha);
    }
    annotationPainter.EndFrame();
}

void AnnotationOverlay::PaintCursorPreview(QPainter& widgetPainter)
{
    if (!mAnnotationsOnly)
        return;
    if ((QGuiApplication::queryKeyboardModifiers() & Qt::ControlModifier) && !Settings::drawEnabled)
        return;
    widgetPainter.setPen(
        QPen(QBrush(Qt::gray, Qt::SolidPattern), 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPoint pos = mWidget->mapFromGlobal(QCursor::pos());
    switch (Settings::annotationTool)
    {
    case Text:
        if (!Settings::textToolActive)
            widgetPainter.drawRect(QRectF(pos, CaretSize));
        break;
    case Pencil:
    case Eraser:
    {
        // The scale of viewer A serves both viewers, and that is meant.
        const int radius =
            static_cast<int>(static_cast<double>(Settings::drawWidth) * mDisplaySizes[0].x() * 0.5 + 1.0);
        widgetPainter.drawEllipse(pos, radius, radius);
        break;
    }
    default:
        break;
    }
}
