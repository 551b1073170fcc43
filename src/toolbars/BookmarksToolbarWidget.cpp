// SPDX-License-Identifier: MIT
#include "toolbars/BookmarksToolbarWidget.h"

#include "kit/FlatButton.h"

#include <QHBoxLayout>

namespace
{

constexpr int BookmarkGroupSpacing = 20;

} // namespace

BookmarksToolbarWidget::BookmarksToolbarWidget(QWidget* parent) : QWidget(parent)
{
    Initialize();
    CreateConnections();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

void BookmarksToolbarWidget::AddBookmark()
{
    Q_EMIT AddBookmarkPressed();
}

void BookmarksToolbarWidget::RemoveBookmark()
{
    Q_EMIT RemoveBookmarkPressed();
}

void BookmarksToolbarWidget::AddRangeBookmark()
{
    Q_EMIT AddRangeBookmarkPressed();
}

void BookmarksToolbarWidget::RemoveRangeBookmark()
{
    Q_EMIT RemoveRangeBookmarkPressed();
}

void BookmarksToolbarWidget::PreviousBookmark()
{
    Q_EMIT PreviousBookmarkPressed();
}

void BookmarksToolbarWidget::NextBookmark()
{
    Q_EMIT NextBookmarkPressed();
}

void BookmarksToolbarWidget::PreviousRangeBookmark()
{
    Q_EMIT PreviousRangeBookmarkPressed();
}

void BookmarksToolbarWidget::NextRangeBookmark()
{
    Q_EMIT NextRangeBookmarkPressed();
}

void BookmarksToolbarWidget::RangeStartToCurrent()
{
    Q_EMIT RangeStartToCurrentPressed();
}

void BookmarksToolbarWidget::RangeEndToCurrent()
{
    Q_EMIT RangeEndToCurrentPressed();
}

void BookmarksToolbarWidget::ResetRange()
{
    Q_EMIT ResetRangePressed();
}

void BookmarksToolbarWidget::ShowContextMenu(QPoint) {}

void BookmarksToolbarWidget::Initialize()
{
    const struct
    {
        FlatButton** button;
        const char* name;
        QString accessibleName;
        int group;
    } buttons[] = {
        {&mAddBookmarkButton, "addBookmarkButton", tr("Add Bookmark"), 1},
        {&mRemoveBookmarkButton, "removeBookmarkButton", tr("Remove Bookmark"), 1},
        {&mAddRangeBookmarkButton, "addRangeBookmarkButton", tr("Add Range Bookmark"), 2},
        {&mRemoveRangeBookmarkButton, "removeRangeBookmarkButton", tr("Remove Range Bookmark"), 2},
        {&mPreviousBookmarkButton, "previousBookmarkButton", tr("Previous Bookmark"), 3},
        {&mNextBookmarkButton, "nextBookmarkButton", tr("Next Bookmark"), 3},
        {&mPreviousRangeBookmarkButton, "previousRangeBookmarkButton", tr("Previous Range Bookmark"), 3},
        {&mNextRangeBookmarkButton, "nextRangeBookmarkButton", tr("Next Range Bookmark"), 3},
        {&mRangeStartToCurrentButton, "rangeStartToCurrentButton", tr("Range Start to Current Frame"), 4},
        {&mRangeEndToCurrentButton, "rangeEndToCurrentButton", tr("Range End to Current Frame"), 4},
        {&mResetRangeButton, "resetRangeButton", tr("Reset Range"), 4},
    };

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addStretch();
    // One picture for all, and no tooltips: the buttons are told apart by their place. That is meant.
    const QImage image(QStringLiteral(":/icons/annotation.png"));
    int group = 1;
    for (const auto& row : buttons)
    {
        if (row.group != group)
            layout->addSpacing(BookmarkGroupSpacing);
        group = row.group;
        CreateButton(row.button, image, layout);
        (*row.button)->setObjectName(QLatin1String(row.name));
        (*row.button)->setAccessibleName(row.accessibleName);
    }
    layout->addStretch();
}

void BookmarksToolbarWidget::CreateConnections()
{
    connect(mAddBookmarkButton, SIGNAL(clicked()), this, SLOT(AddBookmark()));
    connect(mRemoveBookmarkButton, SIGNAL(clicked()), this, SLOT(RemoveBookmark()));
    connect(mAddRangeBookmarkButton, SIGNAL(clicked()), this, SLOT(AddRangeBookmark()));
    connect(mRemoveRangeBookmarkButton, SIGNAL(clicked()), this, SLOT(RemoveRangeBookmark()));
    connect(mPreviousBookmarkButton, SIGNAL(clicked()), this, SLOT(PreviousBookmark()));
    connect(mNextBookmarkButton, SIGNAL(clicked()), this, SLOT(NextBookmark()));
    connect(mPreviousRangeBookmarkButton, SIGNAL(clicked()), this, SLOT(PreviousRangeBookmark()));
    connect(mNextRangeBookmarkButton, SIGNAL(clicked()), this, SLOT(NextRangeBookmark()));
    connect(mRangeStartToCurrentButton, SIGNAL(clicked()), this, SLOT(RangeStartToCurrent()));
    connect(mRangeEndToCurrentButton, SIGNAL(clicked()), this, SLOT(RangeEndToCurrent()));
    connect(mResetRangeButton, SIGNAL(clicked()), this, SLOT(ResetRange()));
}

void BookmarksToolbarWidget::CreateButton(FlatButton** button, const QImage& image, QHBoxLayout* layout)
{
    *button = new FlatButton(this);
    (*button)->setFixedSize(16, 16);
    (*button)->SetImage(image, 0);
    layout->addWidget(*button);
}
