// SPDX-License-Identifier: MIT
#include "annotation/FullPaint.h"

#include "viewers/ViewerWidget.h"

QWidget* BackEndOf(const ViewerWidget* viewer)
{
    return viewer->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

void RequestFullPaint(ViewerWidget* viewer, bool keepPicture)
{
    // A viewer without a kept picture has no choice but to compose it.
    viewer->SetStoreLastImageEnabled(false);
    viewer->SetStoreLastImageEnabled(keepPicture);
    viewer->RefreshAll();
}

void PaintFullyNow(ViewerWidget* viewer)
{
    RequestFullPaint(viewer, true);
    BackEndOf(viewer)->repaint();
}
