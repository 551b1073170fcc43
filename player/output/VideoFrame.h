// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"

#include <QImage>
#include <QSize>

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

/// A frame as the encoder reads it: three planes, brightness whole and colour at half the size on both axes,
/// in limited range.
struct VideoFrame
{
    /// Either the planes one after the other, without gaps …
    std::vector<uint8_t> bytes;
    /// … or the decoder's own picture.
    std::shared_ptr<const AVFrame> stored;
};

/// Makes frames for the encoder. Any thread may call, several at once.
class VideoFrameMaker
{
public:
    /// @p size is even on both axes.
    explicit VideoFrameMaker(const QSize& size);

    /// Whether the encoder can read @p frame as it is: of the size, the layout, the range and the matrix.
    bool CanPass(const AVFrame& frame) const;
    /// @p image (RGB32 of the size) as a frame; without bytes if memory is short.
    VideoFrame Convert(const QImage& image) const;
    /// A black frame.
    VideoFrame Black() const;

    /// The matrix (SWS_CS_*) of all frames: that of the usage of its size.
    int Matrix() const { return mMatrix; }

private:
    size_t ByteCount() const;

    QSize mSize;
    int mMatrix;
    mutable std::mutex mMutex;
    /// Those not in use.
    mutable std::vector<LibavPointer<SwsContext>> mScalers;
};
