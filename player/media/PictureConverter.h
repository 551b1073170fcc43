// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"
#include "media/Orientation.h"

#include <QImage>

#include <mutex>
#include <vector>

/// Turns decoded frames of any pixel format into pictures: the right matrix and range, square pixels,
/// upright.
///
/// Any thread may call, several at once.
class PictureConverter
{
public:
    /// @p format is QImage::Format_RGB32 or QImage::Format_RGB888.
    PictureConverter(QImage::Format format, const Orientation& orientation);

    /// The picture of @p frame, whose pixels are shown @p pixelAspect as wide as high. Null if the frame's
    /// format is unknown, its size is none or memory is short.
    QImage Convert(const AVFrame& frame, AVRational pixelAspect) const;

    /// Width of a stored one of @p width at @p pixelAspect; @p width itself if that is 1, unknown or absurd.
    static int ShownWidth(int width, AVRational pixelAspect);
    /// Whether the pixels of @p frame are shown in the places where they are stored.
    bool ShowsAsStored(const AVFrame& frame, AVRational pixelAspect) const;
    /// The matrix (SWS_CS_*) by which @p frame is read; what no one wrote down follows the usage of its size.
    static int MatrixOf(const AVFrame& frame);
    /// Whether black and white of @p frame are 0 and 255.
    static bool IsFullRange(const AVFrame& frame);

private:
    struct Scaler
    {
        int width;
        int height;
        int format;
        int shownWidth;
        int matrix;
        bool isFullRange;
        LibavPointer<SwsContext> context;
    };

    Scaler TakeScaler(const AVFrame& frame, int shownWidth) const;

    QImage::Format mFormat;
    Orientation mOrientation;
    mutable std::mutex mMutex;
    /// Those not in use.
    mutable std::vector<Scaler> mScalers;
};
