// SPDX-License-Identifier: MIT
#pragma once

#include "host/Bookmarks.h"
#include "project/ElementTimeline.h"

#include <QSet>

#include <map>

/// Everything of a timeline that the user can change, but its name: what a step of the undo stack puts back.
struct TimelineState
{
    bool hasRange = false;
    PlaybackRange range;
    PanZoom view;
    QSet<int> marks;
    QList<RangeBookmark> rangeBookmarks;
    /// Drawings by frame; no frame has none.
    std::map<int, QList<DrawData>> drawings;

    // Of a timeline of elements alone
    ElementTimeline::Elements elements;
    ElementTimeline::Offstage offstage;
    FrameRate rate{0, 0};
    bool usesSourceRanges = true;

    static TimelineState Of(ProjectTimeline& timeline);
    /// Makes this the state of @p timeline, whose elements are laid out anew.
    void ApplyTo(ProjectTimeline& timeline) const;
};
