// SPDX-License-Identifier: MIT
#include "output/FrameComposer.h"

#include "kit/VectorState.h"
#include "media/PicturePool.h"
#include "viewers/AnnotationRenderer.h"

#include <QPainter>

FrameComposer::FrameComposer(const OutputPlan& plan, const QSize& size) : mPlan(plan), mSize(size) {}

bool FrameComposer::IsShown(int viewer) const
{
    return mPlan.layout != Single || viewer == mPlan.singleViewer;
}

QSize FrameComposer::SlotSize() const
{
    return QSize(mPlan.layout == Horizontal ? mSize.width() / 2 : mSize.width(),
                 mPlan.layout == Vertical ? mSize.height() / 2 : mSize.height());
}

QPoint FrameComposer::PlaceOf(int viewer, const QSize& picture) const
{
    const QSize slot = SlotSize();
    QPoint place(static_cast<int>(static_cast<float>(slot.width() - picture.width()) * 0.5f),
                 static_cast<int>(static_cast<float>(slot.height() - picture.height()) * 0.5f));
    // The viewers' own offsets, so that what goes out is what was seen.
    if (mPlan.layout == Horizontal)
        place.rx() += slot.width() * viewer + (viewer == 0 ? 1 : -1);
    else if (mPlan.layout == Vertical)
        place.ry() += slot.height() * viewer - 1;
    return place;
}

bool FrameComposer::IsPlain(int index) const
{
    return mPlan.layout == Single && !mPlan.tracks[static_cast<size_t>(mPlan.singleViewer)].DrawingsAt(index);
}

QImage FrameComposer::Compose(int index, const std::array<QImage, 2>& pictures) const
{
    if (IsPlain(index) && pictures[static_cast<size_t>(mPlan.singleViewer)].size() == mSize)
        return pictures[static_cast<size_t>(mPlan.singleViewer)];
    QImage frame = PicturePool::Take(mSize, QImage::Format_RGB32);
    if (frame.isNull())
        return {};
    frame.fill(Qt::black);
    VectorState::ClearUpperHalves();
    std::array<AnnotationRenderer::Slot, 2> viewers;
    {
        QPainter painter(&frame);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (int viewer = 0; viewer < 2; ++viewer)
        {
            const auto at = static_cast<size_t>(viewer);
            if (!IsShown(viewer) || pictures[at].isNull())
                continue;
            const QSize fitted = pictures[at].size().scaled(SlotSize(), Qt::KeepAspectRatio);
            const QImage scaled = pictures[at].scaled(fitted, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            painter.drawImage(PlaceOf(viewer, scaled.size()), scaled);
            viewers[at].drawings = mPlan.tracks[at].DrawingsAt(index);
            viewers[at].displayWidth = scaled.width();
        }
    }
    AnnotationRenderer::Paint(&frame, mPlan.layout, mPlan.singleViewer, viewers);
    return frame;
}
