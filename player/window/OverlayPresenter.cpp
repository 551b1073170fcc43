// SPDX-License-Identifier: MIT
#include "window/OverlayPresenter.h"

#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

namespace
{

bool EndsFreehand(const FrameData* data)
{
    if (!data || data->lastIndex < 0 || data->lastIndex >= data->drawData.size())
        return false;
    const DrawType type = data->drawData[data->lastIndex].type;
    return type == DrawPencil || type == DrawEraser;
}

} // namespace

const FrameData* OverlayPresenter::AtRest(int index, const FrameData* current)
{
    if (EndsFreehand(current))
        return current;
    FrameData& data = mAtRest[static_cast<size_t>(index)];
    data = current ? *current : FrameData();
    data.drawData = data.drawData.mid(0, data.lastIndex + 1);
    data.drawData.append(DrawData());
    data.lastIndex = data.drawData.size() - 1;
    return &data;
}

void OverlayPresenter::Present(ViewerWidget* viewer, int index, const AnnotationStore* store, int frame,
                               bool isEdited)
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
    if (Settings::drawEnabled && !isEdited)
        current = AtRest(index, current);
    viewer->SetOverlayData(index, current, previous, next);
}
