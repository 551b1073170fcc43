// SPDX-License-Identifier: MIT
#include "project/BookmarkCommands.h"

#include "project/ProjectTimeline.h"

MarkFrameCommand::MarkFrameCommand(const QString& text, std::shared_ptr<ProjectTimeline> timeline, int frame,
                                   bool marked, BookmarksChanged changed)
    : QUndoCommand(text)
    , mTimeline(std::move(timeline))
    , mFrame(frame)
    , mMarked(marked)
    , mChanged(std::move(changed))
{
}

void MarkFrameCommand::undo()
{
    Apply(!mMarked, true);
}

void MarkFrameCommand::redo()
{
    Apply(mMarked, mPushed);
    mPushed = true;
}

void MarkFrameCommand::Apply(bool marked, bool replayed)
{
    mTimeline->SetMarked(mFrame, marked);
    mChanged(mTimeline.get(), mFrame, replayed);
}

MarkRangeCommand::MarkRangeCommand(const QString& text, std::shared_ptr<ProjectTimeline> timeline,
                                   const RangeBookmark& range, bool marked, BookmarksChanged changed)
    : QUndoCommand(text)
    , mTimeline(std::move(timeline))
    , mRange(range)
    , mMarked(marked)
    , mChanged(std::move(changed))
{
}

void MarkRangeCommand::undo()
{
    Apply(!mMarked, true);
}

void MarkRangeCommand::redo()
{
    Apply(mMarked, mPushed);
    mPushed = true;
}

void MarkRangeCommand::Apply(bool marked, bool replayed)
{
    Bookmarks* const bookmarks = mTimeline->GetBookmarks();
    bookmarks->RemoveRangeBookmark(mRange.startTime, mRange.endTime);
    if (marked)
        bookmarks->AddRangeBookmark(mRange);
    mChanged(mTimeline.get(), mTimeline->TimeToFrame(mRange.startTime), replayed);
}
