// SPDX-License-Identifier: MIT
#pragma once

extern "C"
{
#include <libavutil/mathematics.h>
}

#include <cstdint>

constexpr int64_t MicrosecondsPerSecond = 1000000;

/// The sample frame nearest to @p time (microseconds) at @p rate frames a second.
inline int64_t SampleAt(int64_t time, int rate)
{
    return av_rescale(time, rate, MicrosecondsPerSecond);
}
