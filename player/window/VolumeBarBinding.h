// SPDX-License-Identifier: MIT
#pragma once

#include "host/LoopType.h"

#include <QObject>

class QWidget;
class VolumeState;
class VolumeWidget;

/// Ties the bar of loop, layout and volume to the settings and to the volume, which it keeps from one start
/// to the next.
class VolumeBarBinding : public QObject
{
    Q_OBJECT

public:
    /// @p barParent becomes the parent of the bar.
    VolumeBarBinding(VolumeState* volume, QWidget* barParent, QObject* parent);

    VolumeWidget* Bar() const;
    /// Brings loop and layout in line with the settings, after they changed elsewhere.
    void Sync();
    /// Takes the volume over that the player had when it was closed last.
    void ReadState();
    void WriteState() const;

Q_SIGNALS:
    void LoopChanged();
    /// The user picked @p layout, a ViewerLayout value.
    void LayoutRequested(int layout);

private Q_SLOTS:
    void OnVolumePicked();
    void OnLoopPressed(LoopType loopType);
    void ShowVolume();

private:
    VolumeState* mVolume;
    VolumeWidget* mBar;
};
