// SPDX-License-Identifier: MIT
#include "media/ImageFile.h"

#include "media/DpxFile.h"
#include "media/ExrFile.h"
#include "media/Orientation.h"
#include "media/PicturePool.h"
#include "media/PictureRows.h"
#include "media/PngFile.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <vector>

namespace
{

// Larger pictures are refused instead of bringing the machine to a stand.
constexpr uint64_t MaximumBytes = uint64_t(2) << 30;
// Rows that are read at once: a whole number of any compression's blocks.
constexpr int RowsAtOnce = 256;

using InputPointer = std::unique_ptr<OIIO::ImageInput>;

using PictureRows::ByteTone;
using PictureRows::Channels;
using PictureRows::HalfTone;
using PictureRows::IntegerTone;

int ChannelNamed(const OIIO::ImageSpec& spec, const char* name)
{
    const auto found = std::find(spec.channelnames.begin(), spec.channelnames.end(), name);
    return found == spec.channelnames.end() ? -1 : int(found - spec.channelnames.begin());
}

Channels ShownChannels(const OIIO::ImageSpec& spec)
{
    int red = ChannelNamed(spec, "R");
    int green = ChannelNamed(spec, "G");
    int blue = ChannelNamed(spec, "B");
    if (red < 0 || green < 0 || blue < 0)
    {
        const bool hasColours = spec.nchannels >= 3 && ChannelNamed(spec, "Y") < 0;
        red = std::max(ChannelNamed(spec, "Y"), 0);
        green = hasColours ? red + 1 : red;
        blue = hasColours ? red + 2 : red;
    }
    // Colours that are multiplied by alpha already are those over black.
    int alpha = spec.get_int_attribute("oiio:UnassociatedAlpha") != 0 ? spec.alpha_channel : -1;
    if (alpha >= spec.nchannels)
        alpha = -1;
    Channels channels;
    channels.begin = std::min({red, green, blue, alpha < 0 ? red : alpha});
    channels.count = std::max({red, green, blue, alpha}) + 1 - channels.begin;
    channels.red = red - channels.begin;
    channels.green = green - channels.begin;
    channels.blue = blue - channels.begin;
    channels.alpha = alpha < 0 ? -1 : alpha - channels.begin;
    return channels;
}

OIIO::TypeDesc ReadType(const OIIO::ImageSpec& spec)
{
    switch (spec.format.basetype)
    {
    case OIIO::TypeDesc::UINT8:
    case OIIO::TypeDesc::INT8:
        return OIIO::TypeDesc::UINT8;
    case OIIO::TypeDesc::HALF:
    case OIIO::TypeDesc::FLOAT:
    case OIIO::TypeDesc::DOUBLE:
        return OIIO::TypeDesc::HALF;
    default:
        return OIIO::TypeDesc::UINT16;
    }
}

InputPointer OpenInput(const QString& path, QString* error)
{
    // One picture, one thread: several pictures are read at once instead.
    static const bool isSetUp = []
    {
        OIIO::attribute("threads", 1);
        OIIO::attribute("exr_threads", -1);
        return true;
    }();
    Q_UNUSED(isSetUp)
    OIIO::ImageSpec configuration;
    configuration.attribute("oiio:UnassociatedAlpha", 1);
    InputPointer input = OIIO::ImageInput::open(path.toStdString(), &configuration);
    if (!input)
    {
        *error = QString::fromStdString(OIIO::geterror()).trimmed();
        return nullptr;
    }
    input->threads(1);
    const OIIO::ImageSpec& spec = input->spec();
    const uint64_t bytes = spec.image_bytes(true);
    if (spec.deep)
        *error = QStringLiteral("it is a deep picture");
    else if (spec.depth > 1)
        *error = QStringLiteral("it is a volume");
    else if (spec.width < 1 || spec.height < 1 || spec.nchannels < 1 || spec.full_width < 1 ||
             spec.full_height < 1)
        *error = QStringLiteral("it holds no pixels");
    else if (bytes > MaximumBytes ||
             uint64_t(spec.full_width) * uint64_t(spec.full_height) > MaximumBytes / 4)
        *error = QStringLiteral("it is too large");
    else
        return input;
    return nullptr;
}

/// Fills @p buffer with the data window; rows that can't be read are black. Returns whether all could.
bool ReadPixels(OIIO::ImageInput& input, const QString& path, const Channels& channels, OIIO::TypeDesc type,
                uchar* buffer, size_t rowBytes, const CancelToken& cancel, QString* error)
{
    const OIIO::ImageSpec& spec = input.spec();
    const int end = channels.begin + channels.count;
    const auto takeError = [&]
    {
        *error = QString::fromStdString(input.geterror()).trimmed();
        if (error->isEmpty())
            *error = QStringLiteral("its pixels can't be read");
        return false;
    };
    if (spec.tile_width > 0)
    {
        std::fill_n(buffer, rowBytes * size_t(spec.height), uchar(0));
        const auto isCancelled = [](void* token, float)
        { return static_cast<const CancelToken*>(token)->IsCancelled(); };
        const bool read =
            input.read_image(0, 0, channels.begin, end, type, buffer, OIIO::AutoStride, OIIO::AutoStride,
                             OIIO::AutoStride, isCancelled, const_cast<CancelToken*>(&cancel));
        return read || takeError();
    }
    for (int row = 0; row < spec.height; row += RowsAtOnce)
    {
        if (cancel.IsCancelled())
            return true;
        const int last = std::min(row + RowsAtOnce, spec.height);
        uchar* const place = buffer + rowBytes * size_t(row);
        if (input.read_scanlines(0, 0, spec.y + row, spec.y + last, 0, channels.begin, end, type, place))
            continue;
        takeError();
        std::fill_n(place, rowBytes * size_t(spec.height - row), uchar(0));
        // What there is of the block that failed; a failure spoils the opened file for good.
        QString ignored;
        const InputPointer again = OpenInput(path, &ignored);
        for (int single = row; again && single < last; ++single)
            if (!again->read_scanlines(0, 0, spec.y + single, spec.y + single + 1, 0, channels.begin, end,
                                       type, buffer + rowBytes * size_t(single)))
            {
                again->geterror();
                break;
            }
        return false;
    }
    return true;
}

template<typename Value, typename Tone>
QImage ToPicture(const OIIO::ImageSpec& spec, const Channels& channels, const uchar* buffer, size_t rowBytes,
                 QImage::Format format)
{
    QImage image = PicturePool::Take(QSize(spec.full_width, spec.full_height), format);
    if (image.isNull())
        return image;
    // The part of the data window that lies within the display window.
    const int left = std::max(spec.x, spec.full_x);
    const int right = std::min(spec.x + spec.width, spec.full_x + spec.full_width);
    const int top = std::max(spec.y, spec.full_y);
    const int bottom = std::min(spec.y + spec.height, spec.full_y + spec.full_height);
    if (right - left < spec.full_width || bottom - top < spec.full_height)
        image.fill(Qt::black);
    const Tone tone;
    const int pixelBytes = format == QImage::Format_RGB888 ? 3 : 4;
    for (int y = top; y < bottom && right > left; ++y)
    {
        const auto* source = reinterpret_cast<const Value*>(buffer + rowBytes * size_t(y - spec.y)) +
                             qsizetype(left - spec.x) * channels.count;
        uchar* const target = image.bits() + qsizetype(y - spec.full_y) * image.bytesPerLine() +
                              qsizetype(left - spec.full_x) * pixelBytes;
        if (format == QImage::Format_RGB888)
            PictureRows::PutPacked<PictureRows::Rgb888Pixels>(source, target, right - left, channels, tone);
        else
            PictureRows::PutPacked<PictureRows::Rgb32Pixels>(source, target, right - left, channels, tone);
    }
    return Oriented(image, Orientation::FromExif(spec.get_int_attribute("Orientation", 1)));
}

QImage ReadOpened(OIIO::ImageInput& input, const QString& path, QImage::Format format,
                  const CancelToken& cancel, QString* error)
{
    // Kept from picture to picture: getting so much memory anew costs as much as filling it.
    thread_local std::vector<uchar> buffer;
    const OIIO::ImageSpec& spec = input.spec();
    const Channels channels = ShownChannels(spec);
    const OIIO::TypeDesc type = ReadType(spec);
    const size_t rowBytes = size_t(spec.width) * size_t(channels.count) * type.size();
    if (buffer.size() < rowBytes * size_t(spec.height))
        buffer.resize(rowBytes * size_t(spec.height));
    ReadPixels(input, path, channels, type, buffer.data(), rowBytes, cancel, error);
    if (cancel.IsCancelled())
        return {};
    if (type == OIIO::TypeDesc::UINT8)
        return ToPicture<quint8, ByteTone>(spec, channels, buffer.data(), rowBytes, format);
    if (type == OIIO::TypeDesc::HALF)
        return ToPicture<quint16, HalfTone>(spec, channels, buffer.data(), rowBytes, format);
    return ToPicture<quint16, IntegerTone>(spec, channels, buffer.data(), rowBytes, format);
}

} // namespace

bool ImageFile::ReadInfo(const QString& path, ImageFileInfo* info, QString* error)
{
    try
    {
        const InputPointer input = OpenInput(path, error);
        if (!input)
            return false;
        const OIIO::ImageSpec& spec = input->spec();
        info->size = QSize(spec.full_width, spec.full_height);
        if (Orientation::FromExif(spec.get_int_attribute("Orientation", 1)).IsTurned())
            info->size.transpose();
        info->formatName = QString::fromLatin1(input->format_name());
        info->pixelType = QString::fromLatin1(spec.format.c_str());
        return true;
    }
    catch (const std::exception& failure)
    {
        *error = QString::fromLocal8Bit(failure.what());
        return false;
    }
}

QImage ImageFile::Read(const QString& path, QImage::Format format, const CancelToken& cancel, QString* error)
{
    // The faster ways, for the usual kinds; what they don't take, broken files above all, is left to the
    // library.
    QString ignored;
    QImage image;
    const auto isNamed = [&](QLatin1String suffix) { return path.endsWith(suffix, Qt::CaseInsensitive); };
    if (isNamed(QLatin1String(".exr")))
        image = ExrFile::Read(path, format, cancel);
    else if (isNamed(QLatin1String(".png")))
        image = PngFile::Read(path, format);
    else if (isNamed(QLatin1String(".dpx")))
        image = DpxFile::Read(path, format, &ignored);
    if (!image.isNull() || cancel.IsCancelled())
        return image;
    try
    {
        const InputPointer input = OpenInput(path, error);
        return input ? ReadOpened(*input, path, format, cancel, error) : QImage();
    }
    catch (const std::exception& failure)
    {
        *error = QString::fromLocal8Bit(failure.what());
        return {};
    }
}
