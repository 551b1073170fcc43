// SPDX-License-Identifier: MIT
#include "viewers/AnnotationRenderer.h"

#include "viewers/DrawDataPainting.h"
#include "viewers/DrawSpace.h"

#include <QImage>
#include <QPainter>

#include <algorithm>

namespace
{

bool HasShownDrawings(const AnnotationRenderer::Slot& viewer)
{
    return viewer.drawings && viewer.drawings->lastIndex >= 0;
}

void PaintDrawings(QImage& overlay, const DrawSpace& space, const FrameData& frame, const QRect& clip)
{
    QPainter painter(&overlay);
    painter.setRenderHints(DrawDataPainting::OverlayRenderHints);
    painter.setClipRect(clip);
    const int last = std::min(frame.lastIndex, frame.drawData.size() - 1);
    for (int entry = std::max(frame.firstIndex, 0); entry <= last; ++entry)
        DrawDataPainting::Paint(&painter, frame.drawData[entry], -1, space, -1, false);
}

} // namespace

void AnnotationRenderer::Paint(QImage* picture, ViewerLayout layout, int singleViewerIndex,
                               const std::array<Slot, 2>& viewers)
{
    if (!HasShownDrawings(viewers[0]) && !HasShownDrawings(viewers[1]))
        return;
    QImage overlay(picture->size(), QImage::Format_ARGB32);
    overlay.fill(Qt::transparent);
    for (int index = 0; index < 2; ++index)
    {
        if (layout == Single && index != (singleViewerIndex == 1 ? 1 : 0))
            continue;
        const Slot& viewer = viewers[static_cast<size_t>(index)];
        if (HasShownDrawings(viewer))
        {
            const DrawSpace space = DrawSpace::Of(layout, index, picture->size(), viewer.displayWidth);
            PaintDrawings(overlay, space, *viewer.drawings,
                          layout == Single ? picture->rect() : ViewerHalf(layout, index, picture->size()));
        }
        // The whole overlay each time, as the viewers do: that is meant, so that translucent drawings come
        // out as they show on screen.
        QPainter painter(picture);
        painter.drawImage(0, 0, overlay);
    }
}
