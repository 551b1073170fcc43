// SPDX-License-Identifier: MIT
#include "toolbars/PlaybackControlWidget.h"

#include "kit/FlatButton.h"

#include <QHBoxLayout>

namespace
{

constexpr int PlayMargin = 3;

} // namespace

PlaybackControlWidget::PlaybackControlWidget(QWidget* parent)
    : QWidget(parent)
    , mPlayForwardsImage(QStringLiteral(":/icons/play.png"))
    , mPlayBackwardsImage(mPlayForwardsImage.mirrored(true, false))
    , mPauseImage(QStringLiteral(":/icons/pause.png"))
    , mStepForwardsImage(QStringLiteral(":/icons/stepfwd.png"))
    , mStepBackwardsImage(mStepForwardsImage.mirrored(true, false))
    , mNextBookmarkImage(QStringLiteral(":/icons/nexttorvalen.png"))
    , mPreviousBookmarkImage(mNextBookmarkImage.mirrored(true, false))
    , mSeekEndImage(QStringLiteral(":/icons/seekend.png"))
    , mSeekStartImage(mSeekEndImage.mirrored(true, false))
{
    Initialize();
    CreateConnections();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

void PlaybackControlWidget::PlayForwards()
{
    Q_EMIT PlayForwardsPressed();
}

void PlaybackControlWidget::PlayBackwards()
{
    Q_EMIT PlayBackwardsPressed();
}

void PlaybackControlWidget::StepForwards()
{
    Q_EMIT StepForwardsPressed();
}

void PlaybackControlWidget::StepBackwards()
{
    Q_EMIT StepBackwardsPressed();
}

void PlaybackControlWidget::NextBookmark()
{
    Q_EMIT NextBookmarkPressed();
}

void PlaybackControlWidget::PreviousBookmark()
{
    Q_EMIT PreviousBookmarkPressed();
}

void PlaybackControlWidget::SeekStart()
{
    Q_EMIT SeekStartPressed();
}

void PlaybackControlWidget::SeekEnd()
{
    Q_EMIT SeekEndPressed();
}

void PlaybackControlWidget::OnPlaybackStateChanged(bool playing, bool playingForwards)
{
    const bool forwards = playing && playingForwards;
    const bool backwards = playing && !playingForwards;
    mPlayForwardsButton->SetImage(forwards ? mPauseImage : mPlayForwardsImage, PlayMargin);
    mPlayBackwardsButton->SetImage(backwards ? mPauseImage : mPlayBackwardsImage, PlayMargin);
}

void PlaybackControlWidget::ShowContextMenu(QPoint) {}

void PlaybackControlWidget::Initialize()
{
    setFixedHeight(40);

    const struct
    {
        FlatButton** button;
        const char* name;
        const QImage& image;
        int margin;
        QString tooltip;
    } buttons[] = {
        {&mSeekStartButton, "seekStartButton", mSeekStartImage, 8, tr("Go to Start")},
        {&mPreviousBookmarkButton, "previousBookmarkButton", mPreviousBookmarkImage, 9,
         tr("Previous Bookmark or Edit Point")},
        {&mStepBackwardsButton, "stepBackwardsButton", mStepBackwardsImage, 9, tr("Previous Frame")},
        {&mPlayBackwardsButton, "playBackwardsButton", mPlayBackwardsImage, PlayMargin,
         tr("Play Backwards/Pause")},
        {&mPlayForwardsButton, "playForwardsButton", mPlayForwardsImage, PlayMargin,
         tr("Play Forwards/Pause")},
        {&mStepForwardsButton, "stepForwardsButton", mStepForwardsImage, 9, tr("Next Frame")},
        {&mNextBookmarkButton, "nextBookmarkButton", mNextBookmarkImage, 9,
         tr("Next Bookmark or Edit Point")},
        {&mSeekEndButton, "seekEndButton", mSeekEndImage, 8, tr("Go to End")},
    };

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const auto& row : buttons)
    {
        CreateButton(row.button, row.image, row.margin, row.tooltip);
        (*row.button)->setObjectName(QLatin1String(row.name));
        layout->addWidget(*row.button);
        if (row.button == &mPlayBackwardsButton)
            layout->addSpacing(4);
    }
}

void PlaybackControlWidget::CreateConnections()
{
    connect(mSeekStartButton, SIGNAL(clicked()), this, SLOT(SeekStart()));
    connect(mPreviousBookmarkButton, SIGNAL(clicked()), this, SLOT(PreviousBookmark()));
    connect(mStepBackwardsButton, SIGNAL(clicked()), this, SLOT(StepBackwards()));
    connect(mPlayBackwardsButton, SIGNAL(clicked()), this, SLOT(PlayBackwards()));
    connect(mPlayForwardsButton, SIGNAL(clicked()), this, SLOT(PlayForwards()));
    connect(mStepForwardsButton, SIGNAL(clicked()), this, SLOT(StepForwards()));
    connect(mNextBookmarkButton, SIGNAL(clicked()), this, SLOT(NextBookmark()));
    connect(mSeekEndButton, SIGNAL(clicked()), this, SLOT(SeekEnd()));
}

void PlaybackControlWidget::CreateButton(FlatButton** button, const QImage& image, int margin,
                                         const QString& tooltip)
{
    *button = new FlatButton(this);
    (*button)->setFixedSize(26, 26);
    (*button)->SetImage(image, margin);
    (*button)->SetHoverEnabled(false);
    (*button)->setToolTip(tooltip);
    (*button)->setAccessibleName(tooltip);
}
