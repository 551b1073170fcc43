// SPDX-License-Identifier: MIT
#include "annotation/FullPaint.h"

#include "viewers/ViewerWidget.h"

void RequestFullPaint(ViewerWidget* viewer, bool keepPicture)
{
    // A viewer without a kept picture has no choice but to compose it.
    viewer->SetStoreLastImageEnabled(false);
    viewer->SetStoreLastImageEnabled(keepPicture);
    viewer->RefreshAll();
}
