// SPDX-License-Identifier: MIT
#include "media/PngFile.h"

#include "media/Inflate.h"
#include "media/PicturePool.h"
#include "media/PictureRows.h"
#include "media/PngRows.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <vector>

namespace
{

constexpr uchar Signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
// Length, type and check sum around a chunk's content.
constexpr qint64 ChunkFrameBytes = 12;
constexpr qint64 MaximumPngBytes = qint64(1) << 30;
constexpr int MaximumSide = 65536;

enum class PngColours
{
    Grey = 0,
    Rgb = 2,
    Palette = 3,
    GreyAlpha = 4,
    RgbAlpha = 6
};

struct PngHeader
{
    int width = 0;
    int height = 0;
    PngColours colours = PngColours::Rgb;
    /// Bytes of one value of a pixel.
    int valueBytes = 1;
    PictureRows::Channels channels;

    int PixelBytes() const { return channels.count * valueBytes; }
    size_t RowBytes() const { return size_t(width) * size_t(PixelBytes()); }
};

/// The parts of a file that lies in memory.
struct PngContent
{
    PngHeader header;
    /// Red, green and blue of each entry.
    std::array<uchar, 256 * 3> palette{};
    int paletteSize = 0;
    /// What is packed, moved together.
    uchar* packed = nullptr;
    size_t packedBytes = 0;
};

/// Returns false if the kind is not taken here.
bool TakeHeader(const uchar* data, PngHeader* header)
{
    const auto width = qFromBigEndian<quint32>(data);
    const auto height = qFromBigEndian<quint32>(data + 4);
    const int bits = data[8];
    header->colours = PngColours(data[9]);
    header->valueBytes = bits / 8;
    const bool isPlain = data[10] == 0 && data[11] == 0 && data[12] == 0;
    if (!isPlain || width < 1 || width > MaximumSide || height < 1 || height > MaximumSide ||
        (bits != 8 && bits != 16))
        return false;
    header->width = int(width);
    header->height = int(height);
    switch (header->colours)
    {
    case PngColours::Grey:
        header->channels = {0, 1, 0, 0, 0, -1};
        break;
    case PngColours::GreyAlpha:
        header->channels = {0, 2, 0, 0, 0, 1};
        break;
    case PngColours::Rgb:
        header->channels = {0, 3, 0, 1, 2, -1};
        break;
    case PngColours::RgbAlpha:
        header->channels = {0, 4, 0, 1, 2, 3};
        break;
    case PngColours::Palette:
        if (bits != 8)
            return false;
        header->channels = {0, 1, 0, 0, 0, -1};
        break;
    default:
        return false;
    }
    return qint64(header->RowBytes() + 1) * header->height <= MaximumPngBytes;
}

/// Whether a chunk does not change the values that are shown.
bool IsHarmless(const uchar* type)
{
    static const char* const names[] = {"gAMA", "cHRM", "sRGB", "iCCP", "pHYs",
                                        "tEXt", "zTXt", "iTXt", "tIME"};
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char* name) { return std::memcmp(type, name, 4) == 0; });
}

/// Finds the parts of the @p bytes bytes at @p file, and moves the packed ones together. Returns false if the
/// file is broken or has parts that are not taken here.
bool TakeChunks(uchar* file, qint64 bytes, PngContent* content)
{
    if (bytes < qint64(sizeof(Signature)) || std::memcmp(file, Signature, sizeof(Signature)) != 0)
        return false;
    bool hasHeader = false;
    bool isPackedOver = false;
    for (qint64 at = sizeof(Signature); bytes - at >= ChunkFrameBytes;)
    {
        const qint64 length = qFromBigEndian<quint32>(file + at);
        uchar* const type = file + at + 4;
        uchar* const data = type + 4;
        if (length > bytes - at - ChunkFrameBytes ||
            Inflate::Crc32(type, size_t(length) + 4) != qFromBigEndian<quint32>(data + length))
            return false;
        at += length + ChunkFrameBytes;
        const auto is = [&](const char* name) { return std::memcmp(type, name, 4) == 0; };
        if (is("IHDR") != !hasHeader)
            return false;
        if (is("IHDR"))
        {
            if (length != 13 || !TakeHeader(data, &content->header))
                return false;
            hasHeader = true;
        }
        else if (is("PLTE"))
        {
            if (content->paletteSize != 0 || content->packed != nullptr || length % 3 != 0 ||
                length > qint64(content->palette.size()))
                return false;
            std::copy_n(data, length, content->palette.begin());
            content->paletteSize = int(length / 3);
        }
        else if (is("IDAT"))
        {
            if (isPackedOver)
                return false;
            if (content->packed == nullptr)
                content->packed = data;
            std::memmove(content->packed + content->packedBytes, data, size_t(length));
            content->packedBytes += size_t(length);
        }
        else if (is("IEND"))
        {
            return content->packed != nullptr;
        }
        else
        {
            isPackedOver = content->packed != nullptr;
            if (!IsHarmless(type))
                return false;
        }
    }
    return false;
}

/// Puts one restored row into a picture's.
template<typename Pixels>
bool PutPngRow(const PngContent& content, const uchar* row, std::vector<quint16>& values, uchar* target)
{
    const PngHeader& header = content.header;
    if (header.colours == PngColours::Palette)
    {
        for (int x = 0; x < header.width; ++x, target += Pixels::Bytes)
        {
            if (row[x] >= content.paletteSize)
                return false;
            const uchar* const colour = content.palette.data() + size_t(row[x]) * 3;
            Pixels::Put(target, colour[0], colour[1], colour[2]);
        }
        return true;
    }
    if (header.valueBytes == 1)
    {
        PictureRows::PutPacked<Pixels>(row, target, header.width, header.channels, PictureRows::ByteTone());
        return true;
    }
    values.resize(size_t(header.width) * size_t(header.channels.count));
    qFromBigEndian<quint16>(row, qsizetype(values.size()), values.data());
    PictureRows::PutPacked<Pixels>(values.data(), target, header.width, header.channels,
                                   PictureRows::IntegerTone());
    return true;
}

/// The content of @p path; empty if it can't be read. Stands until the thread's next call.
std::vector<uchar>& PngBytes(const QString& path, qint64* bytes)
{
    thread_local std::vector<uchar> buffer;
    *bytes = 0;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || file.size() > MaximumPngBytes)
        return buffer;
    const qint64 size = file.size();
    if (qint64(buffer.size()) < size)
        buffer.resize(size_t(size));
    *bytes = std::max(file.read(reinterpret_cast<char*>(buffer.data()), size), qint64(0));
    return buffer;
}

} // namespace

QImage PngFile::Read(const QString& path, QImage::Format format)
{
    // Kept from picture to picture.
    thread_local std::vector<uchar> filtered;
    qint64 bytes = 0;
    std::vector<uchar>& file = PngBytes(path, &bytes);
    PngContent content;
    if (!TakeChunks(file.data(), bytes, &content))
        return {};
    const PngHeader& header = content.header;
    const size_t rowBytes = header.RowBytes();
    const size_t filteredBytes = (rowBytes + 1) * size_t(header.height);
    if (filtered.size() < filteredBytes + PngRows::Padding)
        filtered.resize(filteredBytes + PngRows::Padding);
    if (!Inflate::Unpack(content.packed, content.packedBytes, filtered.data(), filteredBytes))
        return {};
    QImage image = PicturePool::Take(QSize(header.width, header.height), format);
    if (image.isNull())
        return {};
    std::vector<uchar> above(rowBytes + PngRows::Padding);
    std::vector<uchar> row(rowBytes + PngRows::Padding);
    std::vector<quint16> values;
    uchar* const pixels = image.bits();
    for (int y = 0; y < header.height; ++y)
    {
        const uchar* const source = filtered.data() + size_t(y) * (rowBytes + 1);
        uchar* const target = pixels + qsizetype(y) * image.bytesPerLine();
        if (!PngRows::Restore(source[0], header.PixelBytes(), source + 1, above.data(), row.data(), rowBytes))
            return {};
        const bool isWhole = format == QImage::Format_RGB888
                                 ? PutPngRow<PictureRows::Rgb888Pixels>(content, row.data(), values, target)
                                 : PutPngRow<PictureRows::Rgb32Pixels>(content, row.data(), values, target);
        if (!isWhole)
            return {};
        std::swap(above, row);
    }
    return image;
}
