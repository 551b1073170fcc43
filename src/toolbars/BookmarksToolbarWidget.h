// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QWidget>

class FlatButton;
class QHBoxLayout;

/// A centred strip of eleven small buttons that ask the host to add, remove and visit the bookmarks of frames
/// and of ranges, and to change the playback range. It holds no state.
///
/// The buttons show ":/icons/annotation.png", a picture that the host brings; without it they are empty and
/// work all the same.
class TORVALENUI_EXPORT BookmarksToolbarWidget : public QWidget
{
    Q_OBJECT

public:
    explicit BookmarksToolbarWidget(QWidget* parent = nullptr);

Q_SIGNALS:
    /// Add a bookmark at the current frame.
    void AddBookmarkPressed();
    /// Remove the bookmark of the current frame.
    void RemoveBookmarkPressed();
    /// Add a bookmark of the playback range.
    void AddRangeBookmarkPressed();
    /// Remove the bookmark of the playback range.
    void RemoveRangeBookmarkPressed();
    /// Go to the previous bookmark of a frame.
    void PreviousBookmarkPressed();
    /// Go to the next bookmark of a frame.
    void NextBookmarkPressed();
    /// Go to the previous bookmark of a range.
    void PreviousRangeBookmarkPressed();
    /// Go to the next bookmark of a range.
    void NextRangeBookmarkPressed();
    /// Start the playback range at the current frame.
    void RangeStartToCurrentPressed();
    /// End the playback range at the current frame.
    void RangeEndToCurrentPressed();
    /// Make the playback range the whole timeline.
    void ResetRangePressed();

public Q_SLOTS:
    /// The slots of the buttons: each emits its signal and does nothing else.
    void AddBookmark();
    void RemoveBookmark();
    void AddRangeBookmark();
    void RemoveRangeBookmark();
    void PreviousBookmark();
    void NextBookmark();
    void PreviousRangeBookmark();
    void NextRangeBookmark();
    void RangeStartToCurrent();
    void RangeEndToCurrent();
    void ResetRange();

    /// Does nothing, so that a right click on the bar opens no menu, its parent's included.
    void ShowContextMenu(QPoint pos);

private:
    void Initialize();
    void CreateConnections();
    void CreateButton(FlatButton** button, const QImage& image, QHBoxLayout* layout);

    FlatButton* mAddBookmarkButton = nullptr;
    FlatButton* mRemoveBookmarkButton = nullptr;
    FlatButton* mAddRangeBookmarkButton = nullptr;
    FlatButton* mRemoveRangeBookmarkButton = nullptr;
    FlatButton* mPreviousBookmarkButton = nullptr;
    FlatButton* mNextBookmarkButton = nullptr;
    FlatButton* mPreviousRangeBookmarkButton = nullptr;
    FlatButton* mNextRangeBookmarkButton = nullptr;
    FlatButton* mRangeStartToCurrentButton = nullptr;
    FlatButton* mRangeEndToCurrentButton = nullptr;
    FlatButton* mResetRangeButton = nullptr;
};
