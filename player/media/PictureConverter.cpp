// SPDX-License-Identifier: MIT
#include "media/PictureConverter.h"

#include "media/PicturePool.h"

extern "C"
{
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>

namespace
{

/// The formats that differ from another in nothing but their full range.
AVPixelFormat PlainFormat(int format)
{
    switch (format)
    {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P:
        return AV_PIX_FMT_YUV411P;
    default:
        return AVPixelFormat(format);
    }
}

bool HasAlpha(int format)
{
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(AVPixelFormat(format));
    return descriptor != nullptr && ((descriptor->flags & AV_PIX_FMT_FLAG_ALPHA) != 0 ||
                                     (descriptor->flags & AV_PIX_FMT_FLAG_PAL) != 0);
}

void MakeOpaque(QImage& image)
{
    auto* const pixels = reinterpret_cast<QRgb*>(image.bits());
    std::transform(pixels, pixels + qsizetype(image.width()) * image.height(), pixels,
                   [](QRgb pixel) { return pixel | 0xFF000000U; });
}

} // namespace

PictureConverter::PictureConverter(QImage::Format format, const Orientation& orientation)
    : mFormat(format), mOrientation(orientation)
{
}

int PictureConverter::ShownWidth(int width, AVRational pixelAspect)
{
    if (pixelAspect.num <= 0 || pixelAspect.den <= 0)
        return width;
    const double aspect = av_q2d(pixelAspect);
    if (aspect < 1.0 / 16.0 || aspect > 16.0)
        return width;
    const double shown = std::round(width * aspect);
    return shown < 1.0 || shown > 32768.0 ? width : int(shown);
}

int PictureConverter::MatrixOf(const AVFrame& frame)
{
    switch (frame.colorspace)
    {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return SWS_CS_ITU601;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default:
        return frame.height >= 720 ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

bool PictureConverter::IsFullRange(const AVFrame& frame)
{
    if (frame.color_range == AVCOL_RANGE_JPEG || PlainFormat(frame.format) != frame.format)
        return true;
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(AVPixelFormat(frame.format));
    return descriptor != nullptr && (descriptor->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

bool PictureConverter::ShowsAsStored(const AVFrame& frame, AVRational pixelAspect) const
{
    return mOrientation.IsUpright() && ShownWidth(frame.width, pixelAspect) == frame.width;
}

PictureConverter::Scaler PictureConverter::TakeScaler(const AVFrame& frame, int shownWidth) const
{
    Scaler wanted{frame.width,        frame.height, PlainFormat(frame.format), shownWidth, MatrixOf(frame),
                  IsFullRange(frame), nullptr};
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto fits = [&](const Scaler& s)
        {
            return s.width == wanted.width && s.height == wanted.height && s.format == wanted.format &&
                   s.shownWidth == wanted.shownWidth && s.matrix == wanted.matrix &&
                   s.isFullRange == wanted.isFullRange;
        };
        const auto found = std::find_if(mScalers.begin(), mScalers.end(), fits);
        if (found != mScalers.end())
        {
            Scaler scaler = std::move(*found);
            mScalers.erase(found);
            return scaler;
        }
    }
    const AVPixelFormat target = mFormat == QImage::Format_RGB888 ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_RGB32;
    // Without exact rounding the library has vector code for what movies are made of; it is several times
    // faster and a level or two apart at most. Where nothing is enlarged, bilinear leaves every value as it
    // is.
    const int flags = SWS_BILINEAR;
    wanted.context.reset(sws_getContext(frame.width, frame.height, AVPixelFormat(wanted.format), shownWidth,
                                        frame.height, target, flags, nullptr, nullptr, nullptr));
    if (wanted.context)
    {
        const int* const coefficients = sws_getCoefficients(wanted.matrix);
        sws_setColorspaceDetails(wanted.context.get(), coefficients, wanted.isFullRange ? 1 : 0,
                                 sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    }
    return wanted;
}

QImage PictureConverter::Convert(const AVFrame& frame, AVRational pixelAspect) const
{
    if (frame.width <= 0 || frame.height <= 0 || frame.data[0] == nullptr)
        return {};
    const int shownWidth = ShownWidth(frame.width, pixelAspect);
    QImage image = PicturePool::Take(QSize(shownWidth, frame.height), mFormat);
    Scaler scaler = TakeScaler(frame, shownWidth);
    if (image.isNull() || !scaler.context)
        return {};
    uint8_t* const planes[4] = {image.bits(), nullptr, nullptr, nullptr};
    const int strides[4] = {image.bytesPerLine(), 0, 0, 0};
    const int rows =
        sws_scale(scaler.context.get(), frame.data, frame.linesize, 0, frame.height, planes, strides);
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mScalers.push_back(std::move(scaler));
    }
    if (rows <= 0)
        return {};
    if (mFormat == QImage::Format_RGB32 && HasAlpha(frame.format))
        MakeOpaque(image);
    return Oriented(image, mOrientation);
}
