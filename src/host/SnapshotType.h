// SPDX-License-Identifier: MIT
#pragma once

/// Which frames a series of stills takes.
enum SnapshotType
{
    SnapshotSingleFrame = 0,
    SnapshotAllFrames = 1,
    SnapshotAllFramesInRange = 2,
    SnapshotBookmarks = 3,
    SnapshotBookmarksInRange = 4
};
