// SPDX-License-Identifier: MIT
#include "media/DpxFile.h"

#include "media/LibavError.h"
#include "media/LibavPointers.h"
#include "media/PicturePool.h"

extern "C"
{
#include <libavutil/pixdesc.h>
}

#include <QFile>
#include <QtEndian>

#include <array>
#include <climits>

namespace
{

/// To 8 bits, rounded to the nearest, from @p Bits.
template<int Bits>
const quint8* ByteTable()
{
    static const auto table = []
    {
        std::array<quint8, size_t(1) << Bits> made{};
        constexpr unsigned maximum = (1U << Bits) - 1;
        for (unsigned value = 0; value <= maximum; ++value)
            made[value] = quint8((value * 255U + maximum / 2) / maximum);
        return made;
    }();
    return table.data();
}

struct Rows
{
    QImage* image;

    void Put(int y, int x, quint8 red, quint8 green, quint8 blue) const
    {
        uchar* const row = image->bits() + qsizetype(y) * image->bytesPerLine();
        if (image->format() == QImage::Format_RGB888)
        {
            row[3 * x] = red;
            row[3 * x + 1] = green;
            row[3 * x + 2] = blue;
            return;
        }
        reinterpret_cast<QRgb*>(row)[x] = qRgb(red, green, blue);
    }
};

/// Planes of 10 or 12 bits, green, blue, red; or one grey plane.
template<int Bits>
void FromPlanes(const AVFrame& frame, QImage& image, bool isGrey)
{
    const quint8* const table = ByteTable<Bits>();
    constexpr unsigned mask = (1U << Bits) - 1;
    const bool isRgb32 = image.format() == QImage::Format_RGB32;
    uchar* const pixels = image.bits();
    const Rows rows{&image};
    for (int y = 0; y < frame.height; ++y)
    {
        const auto plane = [&](int i)
        { return reinterpret_cast<const quint16*>(frame.data[i] + qsizetype(y) * frame.linesize[i]); };
        const quint16* const green = plane(0);
        const quint16* const blue = isGrey ? green : plane(1);
        const quint16* const red = isGrey ? green : plane(2);
        auto* const row = reinterpret_cast<QRgb*>(pixels + qsizetype(y) * image.bytesPerLine());
        for (int x = 0; x < frame.width; ++x)
        {
            const quint8 r = table[red[x] & mask];
            const quint8 g = table[green[x] & mask];
            const quint8 b = table[blue[x] & mask];
            if (isRgb32)
                row[x] = qRgb(r, g, b);
            else
                rows.Put(y, x, r, g, b);
        }
    }
}

/// Packed 8 or 16 bits with @p channels values a pixel, the last of four unused.
template<typename Value>
void FromPacked(const AVFrame& frame, QImage& image, int channels, bool isBigEndian)
{
    const quint8* const table = ByteTable<16>();
    const auto byteOf = [&](Value value) -> quint8
    {
        if constexpr (sizeof(Value) == 1)
            return value;
        else
            return table[isBigEndian ? qFromBigEndian(value) : qFromLittleEndian(value)];
    };
    const Rows rows{&image};
    for (int y = 0; y < frame.height; ++y)
    {
        const auto* value = reinterpret_cast<const Value*>(frame.data[0] + qsizetype(y) * frame.linesize[0]);
        for (int x = 0; x < frame.width; ++x, value += channels)
        {
            const quint8 first = byteOf(value[0]);
            if (channels < 3)
                rows.Put(y, x, first, first, first);
            else
                rows.Put(y, x, first, byteOf(value[1]), byteOf(value[2]));
        }
    }
}

bool FillFrom(const AVFrame& frame, QImage& image)
{
    switch (frame.format)
    {
    case AV_PIX_FMT_GBRP10LE:
    case AV_PIX_FMT_GRAY10LE:
        FromPlanes<10>(frame, image, frame.format == AV_PIX_FMT_GRAY10LE);
        return true;
    case AV_PIX_FMT_GBRP12LE:
    case AV_PIX_FMT_GRAY12LE:
        FromPlanes<12>(frame, image, frame.format == AV_PIX_FMT_GRAY12LE);
        return true;
    case AV_PIX_FMT_GRAY8:
        FromPacked<quint8>(frame, image, 1, false);
        return true;
    case AV_PIX_FMT_RGB24:
        FromPacked<quint8>(frame, image, 3, false);
        return true;
    case AV_PIX_FMT_RGBA:
        FromPacked<quint8>(frame, image, 4, false);
        return true;
    case AV_PIX_FMT_RGB48LE:
    case AV_PIX_FMT_RGB48BE:
        FromPacked<quint16>(frame, image, 3, frame.format == AV_PIX_FMT_RGB48BE);
        return true;
    case AV_PIX_FMT_RGBA64LE:
    case AV_PIX_FMT_RGBA64BE:
        FromPacked<quint16>(frame, image, 4, frame.format == AV_PIX_FMT_RGBA64BE);
        return true;
    default:
        return false;
    }
}

/// The decoder is kept from file to file; each thread has its own.
AVCodecContext* DpxDecoder()
{
    thread_local LibavPointer<AVCodecContext> decoder;
    if (decoder)
        return decoder.get();
    const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_DPX);
    LibavPointer<AVCodecContext> made(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
    if (!made)
        return nullptr;
    made->thread_count = 1;
    if (avcodec_open2(made.get(), codec, nullptr) >= 0)
        decoder = std::move(made);
    return decoder.get();
}

} // namespace

QImage DpxFile::Read(const QString& path, QImage::Format format, QString* error)
{
    SilenceLibav();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        *error = file.errorString();
        return {};
    }
    const LibavPointer<AVPacket> packet(av_packet_alloc());
    const LibavPointer<AVFrame> frame(av_frame_alloc());
    AVCodecContext* const decoder = DpxDecoder();
    const qint64 bytes = file.size();
    if (!packet || !frame || decoder == nullptr || bytes <= 0 || bytes > INT_MAX / 2 ||
        av_new_packet(packet.get(), int(bytes)) < 0)
    {
        *error = QStringLiteral("it is empty or too large");
        return {};
    }
    if (file.read(reinterpret_cast<char*>(packet->data), bytes) != bytes)
    {
        *error = file.errorString();
        return {};
    }
    avcodec_flush_buffers(decoder);
    int result = avcodec_send_packet(decoder, packet.get());
    if (result >= 0)
        result = avcodec_receive_frame(decoder, frame.get());
    if (result < 0)
    {
        *error = LibavErrorText(result);
        return {};
    }
    QImage image = PicturePool::Take(QSize(frame->width, frame->height), format);
    if (image.isNull() || !FillFrom(*frame, image))
    {
        *error = QStringLiteral("its pixel format is not one of the known");
        return {};
    }
    return image;
}
