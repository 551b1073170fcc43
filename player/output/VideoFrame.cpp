// SPDX-License-Identifier: MIT
#include "output/VideoFrame.h"

#include "media/PictureConverter.h"

#include <algorithm>

namespace
{

/// Height from which movies are in the newer matrix.
constexpr int HighDefinitionHeight = 720;
constexpr uint8_t LimitedBlack = 16;
constexpr uint8_t NoColor = 128;

} // namespace

VideoFrameMaker::VideoFrameMaker(const QSize& size)
    : mSize(size), mMatrix(size.height() >= HighDefinitionHeight ? SWS_CS_ITU709 : SWS_CS_ITU601)
{
}

size_t VideoFrameMaker::ByteCount() const
{
    return size_t(mSize.width()) * size_t(mSize.height()) * 3 / 2;
}

bool VideoFrameMaker::CanPass(const AVFrame& frame) const
{
    return frame.format == AV_PIX_FMT_YUV420P && QSize(frame.width, frame.height) == mSize &&
           !PictureConverter::IsFullRange(frame) && PictureConverter::MatrixOf(frame) == mMatrix;
}

VideoFrame VideoFrameMaker::Convert(const QImage& image) const
{
    LibavPointer<SwsContext> scaler;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (!mScalers.empty())
        {
            scaler = std::move(mScalers.back());
            mScalers.pop_back();
        }
    }
    if (!scaler)
    {
        scaler.reset(sws_getContext(mSize.width(), mSize.height(), AV_PIX_FMT_RGB32, mSize.width(),
                                    mSize.height(), AV_PIX_FMT_YUV420P, SWS_BILINEAR | SWS_ACCURATE_RND,
                                    nullptr, nullptr, nullptr));
        if (!scaler)
            return {};
        sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(SWS_CS_DEFAULT), 1,
                                 sws_getCoefficients(mMatrix), 0, 0, 1 << 16, 1 << 16);
    }
    VideoFrame frame;
    frame.bytes.resize(ByteCount());
    const int width = mSize.width();
    const int height = mSize.height();
    uint8_t* const luma = frame.bytes.data();
    uint8_t* const blue = luma + size_t(width) * size_t(height);
    uint8_t* const planes[4] = {luma, blue, blue + size_t(width / 2) * size_t(height / 2), nullptr};
    const int strides[4] = {width, width / 2, width / 2, 0};
    const uint8_t* const pixels[4] = {image.constBits(), nullptr, nullptr, nullptr};
    const int pixelStrides[4] = {image.bytesPerLine(), 0, 0, 0};
    sws_scale(scaler.get(), pixels, pixelStrides, 0, height, planes, strides);
    const std::lock_guard<std::mutex> lock(mMutex);
    mScalers.push_back(std::move(scaler));
    return frame;
}

VideoFrame VideoFrameMaker::Black() const
{
    VideoFrame frame;
    frame.bytes.assign(ByteCount(), NoColor);
    std::fill_n(frame.bytes.begin(), size_t(mSize.width()) * size_t(mSize.height()), LimitedBlack);
    return frame;
}
