// SPDX-License-Identifier: MIT
#pragma once

#include "host/Bookmarks.h"

#include <QList>

class Timeline;

/// The places of a timeline that a reviewer jumps between.
namespace TimelineStops
{

/// The nearest stop after @p frame (@p direction 1) or before it (-1) of @p timeline; 0 if there is none.
///
/// Stops are bookmarked frames, both ends of bookmarked ranges, and edit points, which are the frames that
/// elements begin on.
int NextStop(Timeline* timeline, int frame, int direction);

/// The nearest bookmarked frame after (@p direction 1) or before (-1) @p frame of @p timeline; 0 if there is
/// none.
int NextBookmarkedFrame(Timeline* timeline, int frame, int direction);

/// The bookmarked ranges of @p timeline, the earlier start first, of two with one start the shorter first.
QList<RangeBookmark> SortedRanges(Timeline* timeline);

} // namespace TimelineStops
