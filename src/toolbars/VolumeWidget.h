// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/LoopType.h"

#include <QImage>
#include <QWidget>

class FlatButton;
class PopUpWidget;
class VolumeSlider;

/// The bar of the loop selector, the viewer layout selector, the mute button and the volume.
///
/// It only reports: the host applies what was picked, writes `Settings::loopType` and
/// `Settings::viewerLayout` and then calls UpdateLooping() and UpdateViewerLayout().
class TORVALENUI_EXPORT VolumeWidget : public QWidget
{
    Q_OBJECT

public:
    explicit VolumeWidget(QWidget* parent = nullptr);

    /// The volume in per cent (0 to 150).
    int GetVolume() const;
    bool IsMuted() const;
    /// Moves the slider to @p volume, clamped to 0 to 150; a change is signalled by VolumeChanged().
    void SetVolume(int volume);
    /// Sets both as the host has them, without a signal.
    void SetVolume(int volume, bool muted);
    /// Shows whether the sound is muted, without a signal.
    void SetMuted(bool muted);
    /// Brings the loop button in line with `Settings::loopType`; an unknown value counts as no loop.
    void UpdateLooping();
    /// Brings the layout button in line with `Settings::viewerLayout`; an unknown value counts as the single
    /// viewer.
    void UpdateViewerLayout();

Q_SIGNALS:
    /// The slider has moved. A drag past its ends reports a @p volume that lies outside of 0 to 150, while
    /// GetVolume() stays within.
    void VolumeChanged(int volume);
    /// The mute button was pressed.
    void MutingChanged(bool muted);
    /// A loop type was picked. The host answers with UpdateLooping().
    void LoopPressed(LoopType loopType);
    /// A ViewerLayout value was picked. The host answers with UpdateViewerLayout().
    void ViewerLayoutPressed(int layout);

public Q_SLOTS:
    void OnSliderValueChange(int value);
    /// Flips the muting and signals it.
    void ToggleMute();
    /// Opens the choice of loop types above its button.
    void ShowLoopSelectWidget();
    /// Each closes the choice and signals it.
    void SetNoLoop();
    void SetLoop();
    void SetPingPong();
    /// Opens the choice of viewer layouts above its button.
    void ShowViewerSelectWidget();
    /// Each closes the choice and signals it.
    void SetViewerLayoutSingle();
    void SetViewerLayoutHorizontal();
    void SetViewerLayoutVertical();

    /// Does nothing, so that a right click on the bar opens no menu, its parent's included.
    void ShowContextMenu(QPoint pos);

private:
    void CreateWidgets();
    void CreateLayout();
    void CreateConnections();
    void ShowMuting();
    void ShowAbove(const FlatButton* button, PopUpWidget* popUp);

    VolumeSlider* mVolumeSlider = nullptr;
    FlatButton* mMuteButton = nullptr;
    QImage mVolumeImage;
    QImage mMuteImage;
    FlatButton* mLoopButton = nullptr;
    PopUpWidget* mLoopSelectWidget = nullptr;
    FlatButton* mNoLoopButton = nullptr;
    FlatButton* mLoopOnButton = nullptr;
    FlatButton* mPingPongButton = nullptr;
    QImage mLoopImage;
    QImage mNoLoopImage;
    QImage mPingPongImage;
    FlatButton* mViewerButton = nullptr;
    PopUpWidget* mViewerSelectWidget = nullptr;
    FlatButton* mViewerSingleButton = nullptr;
    FlatButton* mViewerHorizontalButton = nullptr;
    FlatButton* mViewerVerticalButton = nullptr;
    QImage mViewerSingleImage;
    QImage mViewerHorizontalImage;
    QImage mViewerVerticalImage;
    bool mMuted = false;
    /// True while the host sets the volume.
    bool mSignalsBlocked = false;
};
