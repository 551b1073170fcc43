// SPDX-License-Identifier: MIT
#pragma once

#include "project/ElementTimeline.h"

#include <QSet>

#include <map>
#include <optional>

/// A bookmark of the frames from @c first to @c last.
struct FrameRangeBookmark
{
    int first = 1;
    int last = 1;
    QString note;
};

bool operator==(const FrameRangeBookmark& a, const FrameRangeBookmark& b);

/// Everything of a timeline that the user can change, but its name: what a step of the undo stack puts back.
struct TimelineState
{
    /// Unset for the whole timeline.
    std::optional<PlaybackRange> range;
    PanZoom view;
    QSet<int> marks;
    QList<FrameRangeBookmark> rangeBookmarks;
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
