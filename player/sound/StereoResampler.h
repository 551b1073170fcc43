// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"

#include <vector>

/// Changes the rate of a stream of stereo sample frames.
///
/// Frame N of what comes out is the sound at the time of N / the rate out, counted from the first frame that
/// went in, exactly and without a drift.
class StereoResampler
{
public:
    /// Frames that must have gone in before what comes out is as if there had been sound before the first
    /// one.
    static int SettlingFrames(int inRate, int outRate);

    /// Begins a stream. Rates are frames a second, 1 or more; equal ones pass through unchanged. Returns
    /// false if the library refuses.
    bool Start(int inRate, int outRate);
    /// Takes @p count frames and adds those that come out to @p out.
    void Push(const float* stereo, int count, std::vector<float>* out);

private:
    LibavPointer<SwrContext> mContext;
};
