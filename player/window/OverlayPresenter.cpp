// SPDX-License-Identifier: MIT
#include "window/OverlayPresenter.h"

#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

namespace
{

/// A record that paints nothing. A viewer without any drawing or ghost leaves the cursor's preview out; with
/// this one it shows it.
const FrameData& NothingDrawn()
{
    static const FrameData nothing = []
    {
        FrameData data;
        data.drawData.append(DrawData());
        data.lastIndex = 0;
        return data;
    }();
    return nothing;
}

} // namespace

namespace OverlayPresenter
{

void Present(ViewerWidget* viewer, int index, const AnnotationStore* store, int frame)
{
    if (!store)
    {
        viewer->SetOverlayData(index, nullptr, {}, {});
        return;
    }
    QList<const FrameData*> previous;
    QList<const FrameData*> next;
    if (Settings::annotationGhostPrevious)
        previous = store->Before(frame, Settings::annotationGhostPreviousNumFrames);
    if (Settings::annotationGhostNext)
        next = store->After(frame, Settings::annotationGhostNextNumFrames);
    const FrameData* current = store->Find(frame);
    if (Settings::drawEnabled && (!current || current->lastIndex < 0))
        current = &NothingDrawn();
    viewer->SetOverlayData(index, current, previous, next);
}

} // namespace OverlayPresenter
