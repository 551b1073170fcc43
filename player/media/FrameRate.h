// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Frames per second as a ratio of two whole numbers, so that 24000/1001 stays what it is.
///
/// Frames count from 1, times are microseconds from the start of the first frame. All arithmetic is exact, in
/// 64 bits, for up to 2^31 frames. A rate is valid if both numbers are above 0; another counts as 24.
struct FrameRate
{
    int numerator = 24;
    int denominator = 1;

    /// Frames per second.
    double PerSecond() const;
    /// Whether both numbers are above 0.
    bool IsValid() const { return numerator > 0 && denominator > 0; }

    /// Start of @p frame (1-based): the first whole microsecond that lies within it, which is its exact start
    /// rounded up. Frames below 1 start at 0.
    int64_t FrameToTime(int64_t frame) const;
    /// The frame (1-based) that is shown at @p time: the last one whose exact start is not after it. Times
    /// below 0 belong to frame 1.
    int64_t TimeToFrame(int64_t time) const;

    /// The ratio nearest to @p perSecond: a whole number, one of the 1001 family, or a decimal fraction of
    /// three digits. 24 unless @p perSecond is above 0 and finite.
    static FrameRate FromPerSecond(double perSecond);
};

inline bool operator==(const FrameRate& a, const FrameRate& b)
{
    return int64_t(a.numerator) * b.denominator == int64_t(b.numerator) * a.denominator;
}
inline bool operator!=(const FrameRate& a, const FrameRate& b)
{
    return !(a == b);
}
