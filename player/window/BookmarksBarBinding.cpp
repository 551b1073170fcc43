// SPDX-License-Identifier: MIT
#include "window/BookmarksBarBinding.h"

#include "project/BookmarkController.h"
#include "toolbars/BookmarksToolbarWidget.h"
#include "window/PlayerState.h"

#include <QLabel>

namespace
{

constexpr int BarMargin = 3;

QString BookmarksShownKey()
{
    return QStringLiteral("bookmarksBar/visible");
}

} // namespace

BookmarksBarBinding::BookmarksBarBinding(BookmarkController* bookmarks, QWidget* barParent, QObject* parent)
    : QObject(parent), mBar(new BookmarksToolbarWidget(barParent))
{
    mBar->setObjectName(QStringLiteral("bookmarksBar"));
    mBar->setContentsMargins(0, BarMargin, 0, BarMargin);
    for (QLabel* const button : mBar->findChildren<QLabel*>())
        button->setStatusTip(button->accessibleName());
    connect(mBar, SIGNAL(AddBookmarkPressed()), bookmarks, SLOT(AddFrame()));
    connect(mBar, SIGNAL(RemoveBookmarkPressed()), bookmarks, SLOT(RemoveFrame()));
    connect(mBar, SIGNAL(AddRangeBookmarkPressed()), bookmarks, SLOT(AddRange()));
    connect(mBar, SIGNAL(RemoveRangeBookmarkPressed()), bookmarks, SLOT(RemoveRange()));
    connect(mBar, SIGNAL(PreviousBookmarkPressed()), bookmarks, SLOT(GoToPreviousFrame()));
    connect(mBar, SIGNAL(NextBookmarkPressed()), bookmarks, SLOT(GoToNextFrame()));
    connect(mBar, SIGNAL(PreviousRangeBookmarkPressed()), bookmarks, SLOT(GoToPreviousRange()));
    connect(mBar, SIGNAL(NextRangeBookmarkPressed()), bookmarks, SLOT(GoToNextRange()));
    connect(mBar, SIGNAL(RangeStartToCurrentPressed()), bookmarks, SLOT(RangeStartToCurrent()));
    connect(mBar, SIGNAL(RangeEndToCurrentPressed()), bookmarks, SLOT(RangeEndToCurrent()));
    connect(mBar, SIGNAL(ResetRangePressed()), bookmarks, SLOT(ResetRange()));
}

BookmarksToolbarWidget* BookmarksBarBinding::Bar() const
{
    return mBar;
}

bool BookmarksBarBinding::IsShown() const
{
    return !mBar->isHidden();
}

void BookmarksBarBinding::Toggle()
{
    mBar->setVisible(!IsShown());
}

void BookmarksBarBinding::ReadState()
{
    mBar->setVisible(PlayerState::Value(BookmarksShownKey(), true).toBool());
}

void BookmarksBarBinding::WriteState() const
{
    PlayerState::SetValue(BookmarksShownKey(), IsShown());
}
