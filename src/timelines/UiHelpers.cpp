// SPDX-License-Identifier: MIT
#include "timelines/UiHelpers.h"

#include "timelines/GlobalTimelineWidget.h"
#include "timelines/RangeTimelineWidget.h"

TimelineWidget* UiHelpers::CreateGlobalTimeline(QWidget* parent)
{
    return new GlobalTimelineWidget(parent);
}

TimelineWidget* UiHelpers::CreateRangeTimeline(QWidget* parent)
{
    return new RangeTimelineWidget(parent);
}
