// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"

#include <vector>

/// Turns decoded blocks of any format and channel layout into stereo, at their own rate.
///
/// One channel becomes both sides at its full level; the centre and what is behind are added at 0.707. Where
/// nobody says what the channels are, up to eight have their usual places; of more, and where the library
/// can't mix them, the first two are left and right.
class StereoMixer
{
public:
    StereoMixer() = default;
    ~StereoMixer();
    StereoMixer(const StereoMixer&) = delete;
    StereoMixer& operator=(const StereoMixer&) = delete;

    /// Writes @p frame to @p stereo, left before right. Returns false, and nothing, if its channels can't be
    /// mixed.
    bool Mix(const AVFrame& frame, std::vector<float>* stereo);

private:
    bool Prepare(const AVFrame& frame);

    LibavPointer<SwrContext> mContext;
    // What mContext was made for.
    AVChannelLayout mLayout = {};
    int mFormat = -1;
    int mRate = 0;
};
