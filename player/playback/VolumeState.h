// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// How loud the player is to be. The volume bar and the commands write it; what plays the sound reads it.
class VolumeState : public QObject
{
    Q_OBJECT

public:
    static constexpr int MaximumVolume = 150;

    explicit VolumeState(QObject* parent = nullptr);

    /// Volume in per cent (0 to 150).
    int Volume() const;
    bool IsMuted() const;
    /// The factor of each sample: 0 while muted, 1 at a volume of 100.
    float Gain() const;

public Q_SLOTS:
    /// Sets the volume, clamped to 0 to 150.
    void SetVolume(int volume);
    void SetMuted(bool muted);

Q_SIGNALS:
    void VolumeChanged(int volume);
    void MutedChanged(bool muted);

private:
    int mVolume = 100;
    bool mMuted = false;
};
