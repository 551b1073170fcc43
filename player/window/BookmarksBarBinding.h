// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class BookmarkController;
class BookmarksToolbarWidget;
class QWidget;

/// Ties the bar of bookmarks to the bookmarks. Its buttons, which all look the same, are told apart by the
/// status bar while the mouse is over them.
class BookmarksBarBinding : public QObject
{
    Q_OBJECT

public:
    /// @p barParent becomes the parent of the bar.
    BookmarksBarBinding(BookmarkController* bookmarks, QWidget* barParent, QObject* parent);

    BookmarksToolbarWidget* Bar() const;
    bool IsShown() const;
    /// Hides the bar if it was hidden when the player was closed last.
    void ReadState();
    void WriteState() const;

public Q_SLOTS:
    void Toggle();

private:
    BookmarksToolbarWidget* mBar;
};
