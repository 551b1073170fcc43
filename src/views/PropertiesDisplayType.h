// SPDX-License-Identifier: MIT
#pragma once

/// Which groups a TimelinePropertiesWidget shows; "Pan/Zoom" always shows.
enum PropertiesDisplayType
{
    PropertiesDisplayNone = 0,
    /// The path of the source, and the range.
    PropertiesDisplaySource = 1,
    /// The range, and the options.
    PropertiesDisplayTimeline = 2
};
