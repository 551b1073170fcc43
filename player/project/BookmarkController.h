// SPDX-License-Identifier: MIT
#pragma once

#include "host/Bookmarks.h"

#include <QObject>

#include <memory>

class AnnotationStore;
class ProjectTimeline;
class PlaybackController;
class QUndoStack;

/// Adds, removes and visits the bookmarks of the timeline that leads. Each change is a step of the undo
/// stack.
class BookmarkController : public QObject
{
    Q_OBJECT

public:
    BookmarkController(PlaybackController* playback, QUndoStack* undoStack, QObject* parent);

    /// Clears the drawings of the frame that viewer @p viewer (0 or 1) shows. Its bookmark goes too if
    /// @p removeBookmark; else it stays, empty.
    void ClearFrame(int viewer, bool removeBookmark);

public Q_SLOTS:
    /// Bookmarks the current frame, unless its mark or its drawings make it bookmarked already.
    void AddFrame();
    /// Removes the bookmark of the current frame with the drawings that it carries.
    void RemoveFrame();
    /// Marks the current frame, or takes its mark away; a frame with drawings stays bookmarked as it is.
    void ToggleFrame();
    /// Bookmarks the playback range.
    void AddRange();
    /// Removes the bookmark of the playback range, or else the one with the latest start that the current
    /// frame lies in.
    void RemoveRange();
    /// Bookmarks the playback range, or removes its bookmark.
    void ToggleRange();

    /// Go to the nearest bookmark or edit point.
    void GoToNext();
    void GoToPrevious();
    /// Go to the nearest bookmarked frame.
    void GoToNextFrame();
    void GoToPreviousFrame();
    /// Go to the start of the nearest bookmarked range and make it the playback range.
    void GoToNextRange();
    void GoToPreviousRange();

    /// Begin or end the playback range on the current frame; a range that this turns over ends there too.
    void RangeStartToCurrent();
    void RangeEndToCurrent();
    /// Make the playback range the whole timeline.
    void ResetRange();

Q_SIGNALS:
    /// Bookmarks of @p timeline changed; @p frame is the one to show. @p replayed says that undo or redo made
    /// the change.
    void BookmarksChanged(ProjectTimeline* timeline, int frame, bool replayed);
    /// The drawings of @p frame in @p store changed, as StrokeController tells it.
    void DrawingsChanged(AnnotationStore* store, int frame, bool replayed);

private:
    void Mark(const QString& text, const std::shared_ptr<ProjectTimeline>& timeline, int frame, bool marked);
    void MarkRange(const RangeBookmark& range, bool marked);
    /// Empties @p frame; it is marked or not after it as @p marked says.
    void Clear(const QString& text, const std::shared_ptr<ProjectTimeline>& timeline, int frame, bool marked);
    RangeBookmark PlaybackRangeBookmark() const;
    void GoToRange(int direction);

    PlaybackController* mPlayback;
    QUndoStack* mUndoStack;
};
