// SPDX-License-Identifier: MIT
#pragma once

#include "host/Bookmarks.h"

#include <QUndoCommand>

#include <functional>
#include <memory>

class ProjectTimeline;

/// Called after each change of bookmarks with the timeline and the frame to show; @p replayed says that undo
/// or redo made the change.
using BookmarksChanged = std::function<void(ProjectTimeline* timeline, int frame, bool replayed)>;

/// Marks a frame, or takes its mark away.
class MarkFrameCommand : public QUndoCommand
{
public:
    MarkFrameCommand(const QString& text, std::shared_ptr<ProjectTimeline> timeline, int frame, bool marked,
                     BookmarksChanged changed);

    void undo() override;
    void redo() override;

private:
    void Apply(bool marked, bool replayed);

    std::shared_ptr<ProjectTimeline> mTimeline;
    int mFrame;
    bool mMarked;
    BookmarksChanged mChanged;
    bool mPushed = false;
};

/// Bookmarks a range, or takes its bookmark away.
class MarkRangeCommand : public QUndoCommand
{
public:
    MarkRangeCommand(const QString& text, std::shared_ptr<ProjectTimeline> timeline,
                     const RangeBookmark& range, bool marked, BookmarksChanged changed);

    void undo() override;
    void redo() override;

private:
    void Apply(bool marked, bool replayed);

    std::shared_ptr<ProjectTimeline> mTimeline;
    RangeBookmark mRange;
    bool mMarked;
    BookmarksChanged mChanged;
    bool mPushed = false;
};
