// SPDX-License-Identifier: MIT
#include "project/TimelineState.h"

#include <algorithm>

bool operator==(const FrameRangeBookmark& a, const FrameRangeBookmark& b)
{
    return a.first == b.first && a.last == b.last && a.note == b.note;
}

TimelineState TimelineState::Of(ProjectTimeline& timeline)
{
    TimelineState state;
    state.range = timeline.RangeAsSet();
    state.view = timeline.View();
    state.marks = timeline.MarkedFrames();
    const FrameRate rate = timeline.Rate();
    for (const RangeBookmark& bookmark : timeline.GetBookmarks()->GetRangeBookmarks())
        state.rangeBookmarks.append({static_cast<int>(rate.TimeToFrame(bookmark.startTime)),
                                     static_cast<int>(rate.TimeToFrame(bookmark.endTime)), bookmark.note});
    for (const int frame : timeline.Annotations()->AnnotatedFrames())
        state.drawings[frame] = timeline.Annotations()->Drawings(frame);
    if (const auto* const elements = dynamic_cast<const ElementTimeline*>(&timeline))
    {
        state.elements = elements->GetElements();
        state.offstage = elements->OffstageDrawings();
        if (elements->HasRate())
            state.rate = elements->Rate();
        state.usesSourceRanges = elements->UsesSourceRanges();
    }
    return state;
}

void TimelineState::ApplyTo(ProjectTimeline& timeline) const
{
    if (auto* const target = dynamic_cast<ElementTimeline*>(&timeline))
    {
        // The layout first: marks and drawings would follow it.
        target->SetUsesSourceRanges(usesSourceRanges);
        target->SetRate(rate);
        target->SetElements(elements);
        target->SetOffstageDrawings(offstage);
    }
    AnnotationStore& annotations = *timeline.Annotations();
    for (const int frame : annotations.AnnotatedFrames())
    {
        if (drawings.count(frame) == 0)
            annotations.SetDrawings(frame, {});
    }
    for (const auto& [frame, drawn] : drawings)
        annotations.SetDrawings(frame, drawn);

    timeline.GetBookmarks()->Clear();
    for (const FrameRangeBookmark& bookmark : rangeBookmarks)
    {
        RangeBookmark moved(timeline.FrameToTime(bookmark.first), timeline.FrameToTime(bookmark.last));
        moved.note = bookmark.note;
        timeline.GetBookmarks()->AddRangeBookmark(moved);
    }
    // Makes the bookmarks of drawings too.
    timeline.SetMarkedFrames(marks);
    timeline.SetRangeAsSet(range);
    timeline.SetView(view);
}
