// SPDX-License-Identifier: MIT
#pragma once

/// How a timeline prints frames. The values are stored in the settings.
enum TimelineDisplayType
{
    FrameNumbersGlobal = 0, ///< frame of the timeline
    Seconds = 1,            ///< seconds with two decimals
    TimeCode = 2,           ///< hours, minutes, seconds and frames; no drop-frame
    FrameNumbersRange = 3   ///< frame counted from the start of the playback range
};
