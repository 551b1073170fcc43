// SPDX-License-Identifier: MIT
#include "project/BookmarkController.h"

#include "annotation/SetDrawingsCommand.h"
#include "playback/PlaybackController.h"
#include "project/BookmarkCommands.h"
#include "project/ProjectTimeline.h"
#include "project/TimelineStops.h"

#include <QUndoStack>

#include <algorithm>

namespace
{

bool IsSameRange(const RangeBookmark& left, const RangeBookmark& right)
{
    return left.startTime == right.startTime && left.endTime == right.endTime;
}

bool HasRange(ProjectTimeline* timeline, const RangeBookmark& range)
{
    const QList<RangeBookmark>& ranges = timeline->GetBookmarks()->GetRangeBookmarks();
    return std::any_of(ranges.begin(), ranges.end(),
                       [&range](const RangeBookmark& each) { return IsSameRange(each, range); });
}

} // namespace

BookmarkController::BookmarkController(PlaybackController* playback, QUndoStack* undoStack, QObject* parent)
    : QObject(parent), mPlayback(playback), mUndoStack(undoStack)
{
}

void BookmarkController::Mark(const QString& text, const std::shared_ptr<ProjectTimeline>& timeline,
                              int frame, bool marked)
{
    mUndoStack->push(new MarkFrameCommand(text, timeline, frame, marked,
                                          [this](ProjectTimeline* changed, int changedFrame, bool replayed)
                                          { Q_EMIT BookmarksChanged(changed, changedFrame, replayed); }));
}

void BookmarkController::Clear(const QString& text, const std::shared_ptr<ProjectTimeline>& timeline,
                               int frame, bool marked)
{
    const QList<DrawData> drawings = timeline->Annotations()->Drawings(frame);
    const bool changesMark = timeline->MarkedFrames().contains(frame) != marked;
    if (drawings.isEmpty() && !changesMark)
        return;
    mUndoStack->beginMacro(text);
    if (changesMark)
        Mark(text, timeline, frame, marked);
    if (!drawings.isEmpty())
        mUndoStack->push(
            new SetDrawingsCommand(text, timeline->Annotations(), frame, drawings, {},
                                   [this](AnnotationStore* store, int changedFrame, bool replayed)
                                   { Q_EMIT DrawingsChanged(store, changedFrame, replayed); }));
    mUndoStack->endMacro();
}

void BookmarkController::ClearFrame(int viewer, bool removeBookmark)
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
    const int frame = mPlayback->ShownFrame(viewer);
    if (!timeline || frame == 0)
        return;
    if (removeBookmark)
        Clear(tr("Delete Bookmark"), timeline, frame, false);
    else if (!timeline->Annotations()->Drawings(frame).isEmpty())
        Clear(tr("Clear Frame"), timeline, frame, true);
}

void BookmarkController::AddFrame()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    const int frame = mPlayback->CurrentFrame();
    if (timeline && !timeline->MarkedFrames().contains(frame) &&
        timeline->Annotations()->Drawings(frame).isEmpty())
        Mark(tr("Add Bookmark"), timeline, frame, true);
}

void BookmarkController::RemoveFrame()
{
    if (const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline())
        Clear(tr("Remove Bookmark"), timeline, mPlayback->CurrentFrame(), false);
}

void BookmarkController::ToggleFrame()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline)
        return;
    const int frame = mPlayback->CurrentFrame();
    // A step that shows nowhere would only puzzle who undoes it.
    if (!timeline->Annotations()->Drawings(frame).isEmpty())
        return;
    const bool marked = timeline->MarkedFrames().contains(frame);
    Mark(marked ? tr("Remove Bookmark") : tr("Add Bookmark"), timeline, frame, !marked);
}

RangeBookmark BookmarkController::PlaybackRangeBookmark() const
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    return RangeBookmark(timeline->FrameToTime(mPlayback->Range().first),
                         timeline->FrameToTime(mPlayback->Range().last));
}

void BookmarkController::MarkRange(const RangeBookmark& range, bool marked)
{
    const QString text = marked ? tr("Add Range Bookmark") : tr("Remove Range Bookmark");
    mUndoStack->push(new MarkRangeCommand(text, mPlayback->LeadingTimeline(), range, marked,
                                          [this](ProjectTimeline* timeline, int frame, bool replayed)
                                          { Q_EMIT BookmarksChanged(timeline, frame, replayed); }));
}

void BookmarkController::AddRange()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (timeline && !HasRange(timeline.get(), PlaybackRangeBookmark()))
        MarkRange(PlaybackRangeBookmark(), true);
}

void BookmarkController::RemoveRange()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline)
        return;
    const QList<RangeBookmark> ranges = TimelineStops::SortedRanges(timeline.get());
    const RangeBookmark playbackRange = PlaybackRangeBookmark();
    const int64_t time = mPlayback->CurrentTime();
    auto found = std::find_if(ranges.rbegin(), ranges.rend(),
                              [&](const RangeBookmark& range) { return IsSameRange(range, playbackRange); });
    if (found == ranges.rend())
        found = std::find_if(ranges.rbegin(), ranges.rend(),
                             [time](const RangeBookmark& range)
                             { return range.startTime <= time && time <= range.endTime; });
    if (found != ranges.rend())
        MarkRange(*found, false);
}

void BookmarkController::ToggleRange()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (timeline)
        MarkRange(PlaybackRangeBookmark(), !HasRange(timeline.get(), PlaybackRangeBookmark()));
}

void BookmarkController::GoToNext()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (const int frame =
            timeline ? TimelineStops::NextStop(timeline.get(), mPlayback->CurrentFrame(), 1) : 0)
        mPlayback->SeekFrame(frame);
}

void BookmarkController::GoToPrevious()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (const int frame =
            timeline ? TimelineStops::NextStop(timeline.get(), mPlayback->CurrentFrame(), -1) : 0)
        mPlayback->SeekFrame(frame);
}

void BookmarkController::GoToNextFrame()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (const int frame =
            timeline ? TimelineStops::NextBookmarkedFrame(timeline.get(), mPlayback->CurrentFrame(), 1) : 0)
        mPlayback->SeekFrame(frame);
}

void BookmarkController::GoToPreviousFrame()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (const int frame =
            timeline ? TimelineStops::NextBookmarkedFrame(timeline.get(), mPlayback->CurrentFrame(), -1) : 0)
        mPlayback->SeekFrame(frame);
}

void BookmarkController::GoToNextRange()
{
    GoToRange(1);
}

void BookmarkController::GoToPreviousRange()
{
    GoToRange(-1);
}

void BookmarkController::GoToRange(int direction)
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline)
        return;
    const QList<RangeBookmark> ranges = TimelineStops::SortedRanges(timeline.get());
    const RangeBookmark playbackRange = PlaybackRangeBookmark();
    const int64_t time = mPlayback->CurrentTime();
    int target = -1;
    for (int index = 0; index < ranges.size(); ++index)
    {
        // From a range that is being visited on to its neighbour, also where both begin on one frame.
        if (IsSameRange(ranges[index], playbackRange) && ranges[index].startTime == time)
        {
            target = index + direction;
            break;
        }
        const bool isNext = direction > 0 && target < 0 && ranges[index].startTime > time;
        const bool isPrevious = direction < 0 && ranges[index].startTime < time;
        if (isNext || isPrevious)
            target = index;
    }
    if (target < 0 || target >= ranges.size())
        return;
    mPlayback->SetRange(ranges[target].startTime, ranges[target].endTime);
    mPlayback->SeekFrame(timeline->TimeToFrame(ranges[target].startTime));
}

void BookmarkController::RangeStartToCurrent()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (timeline)
        mPlayback->SetRange(
            mPlayback->CurrentTime(),
            timeline->FrameToTime(std::max(mPlayback->Range().last, mPlayback->CurrentFrame())));
}

void BookmarkController::RangeEndToCurrent()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (timeline)
        mPlayback->SetRange(
            timeline->FrameToTime(std::min(mPlayback->Range().first, mPlayback->CurrentFrame())),
            mPlayback->CurrentTime());
}

void BookmarkController::ResetRange()
{
    if (const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline())
        mPlayback->SetRange(timeline->GetStartTime(), timeline->GetEndTime());
}
