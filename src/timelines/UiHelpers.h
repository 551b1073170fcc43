// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

class QWidget;
class TimelineWidget;

/// Makes the timelines whose classes the library keeps to itself.
///
/// Beyond TimelineWidget, both have slots that the host connects to by name:
/// `SetDisplayType(TimelineDisplayType)`, `ShowTimeBookmarks(bool)`, `ShowRangeBookmarks(bool)`,
/// `ShowCache(bool)`, `DeferredUpdate()`, `OnPlaybackStateChanaged(bool)` (spelled so),
/// `UpdateElementInfos()`, `SetRangeStartToPosition()`, `SetRangeEndToPosition()`, `ResetRange()`,
/// `SetDisplayType()`, `SetPositionAtTop(bool)`, `ShowContextMenu(QPoint)`.
class TORVALENUI_EXPORT UiHelpers
{
public:
    UiHelpers() = delete;

    /// A new timeline that shows the whole of a Timeline object, 40 pixels high. @p parent, which may be
    /// null, owns it.
    static TimelineWidget* CreateGlobalTimeline(QWidget* parent);
    /// A new timeline that shows the playback range alone, stretched over its width, 46 pixels high. @p
    /// parent, which may be null, owns it.
    static TimelineWidget* CreateRangeTimeline(QWidget* parent);
};
