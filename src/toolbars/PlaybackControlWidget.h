// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QImage>
#include <QWidget>

class FlatButton;

/// The transport bar: eight buttons in a row that ask the host to play, step and seek.
///
/// It keeps no playback state; the host reports what it does through OnPlaybackStateChanged().
class TORVALENUI_EXPORT PlaybackControlWidget : public QWidget
{
    Q_OBJECT

public:
    explicit PlaybackControlWidget(QWidget* parent = nullptr);

Q_SIGNALS:
    /// Play forwards, or pause if that is what runs. The host answers with OnPlaybackStateChanged().
    void PlayForwardsPressed();
    /// Play backwards, or pause if that is what runs. The host answers with OnPlaybackStateChanged().
    void PlayBackwardsPressed();
    /// Go to the next frame.
    void StepForwardsPressed();
    /// Go to the previous frame.
    void StepBackwardsPressed();
    /// Go to the next bookmark or edit point.
    void NextBookmarkPressed();
    /// Go to the previous bookmark or edit point.
    void PreviousBookmarkPressed();
    /// Go to the start.
    void SeekStartPressed();
    /// Go to the end.
    void SeekEndPressed();

public Q_SLOTS:
    /// The slots of the buttons: each emits its signal and does nothing else.
    void PlayForwards();
    void PlayBackwards();
    void StepForwards();
    void StepBackwards();
    void NextBookmark();
    void PreviousBookmark();
    void SeekStart();
    void SeekEnd();

    /// The host's report: the button of the direction that plays shows the pause picture; while @p playing is
    /// false, none does, whatever @p playingForwards.
    void OnPlaybackStateChanged(bool playing, bool playingForwards);

    /// Does nothing, so that a right click on the bar opens no menu, its parent's included.
    void ShowContextMenu(QPoint pos);

private:
    void Initialize();
    void CreateConnections();
    void CreateButton(FlatButton** button, const QImage& image, int margin, const QString& tooltip);

    FlatButton* mPlayForwardsButton = nullptr;
    FlatButton* mPlayBackwardsButton = nullptr;
    FlatButton* mStepForwardsButton = nullptr;
    FlatButton* mStepBackwardsButton = nullptr;
    FlatButton* mNextBookmarkButton = nullptr;
    FlatButton* mPreviousBookmarkButton = nullptr;
    FlatButton* mSeekStartButton = nullptr;
    FlatButton* mSeekEndButton = nullptr;
    QImage mPlayForwardsImage;
    QImage mPlayBackwardsImage;
    QImage mPauseImage;
    QImage mStepForwardsImage;
    QImage mStepBackwardsImage;
    QImage mNextBookmarkImage;
    QImage mPreviousBookmarkImage;
    QImage mSeekEndImage;
    QImage mSeekStartImage;
};
