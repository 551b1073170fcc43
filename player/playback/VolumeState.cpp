// SPDX-License-Identifier: MIT
#include "playback/VolumeState.h"

#include <algorithm>

VolumeState::VolumeState(QObject* parent) : QObject(parent) {}

int VolumeState::Volume() const
{
    return mVolume;
}

bool VolumeState::IsMuted() const
{
    return mMuted;
}

float VolumeState::Gain() const
{
    return mMuted ? 0.0f : static_cast<float>(mVolume) / 100.0f;
}

void VolumeState::SetVolume(int volume)
{
    const int allowed = std::clamp(volume, 0, MaximumVolume);
    if (allowed == mVolume)
        return;
    mVolume = allowed;
    Q_EMIT VolumeChanged(mVolume);
}

void VolumeState::SetMuted(bool muted)
{
    if (muted == mMuted)
        return;
    mMuted = muted;
    Q_EMIT MutedChanged(mMuted);
}
