// SPDX-License-Identifier: MIT
#include "window/OverlayPresenter.h"

#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

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
    viewer->SetOverlayData(index, store->Find(frame), previous, next);
}

} // namespace OverlayPresenter
