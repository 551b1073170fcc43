// SPDX-License-Identifier: MIT
#include "media/ExrHeader.h"

#include "media/FileWindow.h"

#include <QtEndian>

#include <algorithm>

namespace
{

constexpr quint32 Magic = 20000630;
constexpr quint32 FormatVersion = 2;
// The one flag that is taken; the others say tiles, deep pixels and several parts.
constexpr quint32 LongNamesFlag = 0x400;
// Headers are far smaller; some carry a preview or a long history.
constexpr qint64 MaximumHeaderBytes = qint64(1) << 20;
// Larger pictures are left to the library, which says what is wrong.
constexpr qint64 MaximumExrBytes = qint64(2) << 30;
constexpr int MaximumCoordinate = 1 << 20;

/// Takes values from memory; reading past the end fails for good.
class ExrFields
{
public:
    ExrFields(const uchar* begin, qint64 bytes) : mAt(begin), mLeft(bytes), mHasFailed(begin == nullptr) {}

    bool HasFailed() const { return mHasFailed; }
    qint64 Left() const { return mLeft; }

    const uchar* Bytes(qint64 count)
    {
        if (mHasFailed || count < 0 || count > mLeft)
        {
            mHasFailed = true;
            return nullptr;
        }
        const uchar* const at = mAt;
        mAt += count;
        mLeft -= count;
        return at;
    }

    int Byte()
    {
        const uchar* const at = Bytes(1);
        return at == nullptr ? 0 : *at;
    }

    qint32 Integer()
    {
        const uchar* const at = Bytes(4);
        return at == nullptr ? 0 : qFromLittleEndian<qint32>(at);
    }

    /// Up to a zero byte.
    QByteArray Name()
    {
        const uchar* const end = mHasFailed ? nullptr : std::find(mAt, mAt + mLeft, uchar(0));
        if (end == nullptr || end == mAt + mLeft)
        {
            mHasFailed = true;
            return {};
        }
        const auto length = int(end - mAt);
        return QByteArray(reinterpret_cast<const char*>(Bytes(length + 1)), length);
    }

private:
    const uchar* mAt;
    qint64 mLeft;
    bool mHasFailed;
};

/// False if there is a channel that is not taken here.
bool TakeChannels(ExrFields fields, std::vector<ExrChannel>* channels)
{
    constexpr int halfType = 1;
    constexpr int floatType = 2;
    while (true)
    {
        const QByteArray name = fields.Name();
        if (fields.HasFailed())
            return false;
        if (name.isEmpty())
            return !channels->empty();
        const int type = fields.Integer();
        fields.Bytes(4);
        const int stepX = fields.Integer();
        const int stepY = fields.Integer();
        if (fields.HasFailed() || (type != halfType && type != floatType) || stepX != 1 || stepY != 1)
            return false;
        channels->push_back({name, type == floatType});
    }
}

/// An empty one if it is out of bounds.
QRect TakeBox(ExrFields fields)
{
    const int left = fields.Integer();
    const int top = fields.Integer();
    const int right = fields.Integer();
    const int bottom = fields.Integer();
    for (const int value : {left, top, right, bottom})
        if (fields.HasFailed() || value < -MaximumCoordinate || value > MaximumCoordinate)
            return {};
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

bool TakeCompression(ExrFields fields, ExrCompression* compression)
{
    const int value = fields.Byte();
    for (const ExrCompression known : {ExrCompression::None, ExrCompression::Rle, ExrCompression::ZipLine,
                                       ExrCompression::ZipBlock, ExrCompression::Pxr24})
        if (int(known) == value && !fields.HasFailed())
        {
            *compression = known;
            return true;
        }
    return false;
}

/// Whether the picture library might show a file with this attribute in another way.
bool ChangesThePicture(const QByteArray& name, const QByteArray& type)
{
    const QByteArray lower = name.toLower();
    return lower.contains("orientation") || lower.startsWith("oiio:") || lower == "envmap" ||
           lower == "multiview" || lower == "tiles" || (lower == "type" && type != "string");
}

} // namespace

int ExrHeader::IndexOf(const char* name) const
{
    const auto found = std::find_if(channels.begin(), channels.end(),
                                    [&](const ExrChannel& channel) { return channel.name == name; });
    return found == channels.end() ? -1 : int(found - channels.begin());
}

qint64 ExrHeader::RowBytes() const
{
    qint64 bytes = 0;
    for (const ExrChannel& channel : channels)
        bytes += qint64(channel.Bytes()) * data.width();
    return bytes;
}

int ExrHeader::RowsPerBlock() const
{
    return compression == ExrCompression::ZipBlock || compression == ExrCompression::Pxr24 ? 16 : 1;
}

int ExrHeader::BlockCount() const
{
    return (data.height() + RowsPerBlock() - 1) / RowsPerBlock();
}

std::optional<ExrHeader> ExrHeader::Read(FileWindow& file)
{
    const qint64 bytes = std::min(file.Size(), MaximumHeaderBytes);
    ExrFields fields(file.At(0, bytes), bytes);
    const auto magic = quint32(fields.Integer());
    const auto version = quint32(fields.Integer());
    if (fields.HasFailed() || magic != Magic || (version & ~LongNamesFlag) != FormatVersion)
        return std::nullopt;
    ExrHeader header;
    bool hasCompression = false;
    while (true)
    {
        const QByteArray name = fields.Name();
        if (fields.HasFailed())
            return std::nullopt;
        if (name.isEmpty())
            break;
        const QByteArray type = fields.Name();
        const qint32 size = fields.Integer();
        const uchar* const value = fields.Bytes(size);
        if (value == nullptr || ChangesThePicture(name, type))
            return std::nullopt;
        const ExrFields content(value, size);
        if (name == "channels")
        {
            if (!header.channels.empty() || !TakeChannels(content, &header.channels))
                return std::nullopt;
        }
        else if (name == "compression")
        {
            hasCompression = TakeCompression(content, &header.compression);
            if (!hasCompression)
                return std::nullopt;
        }
        else if (name == "dataWindow")
            header.data = TakeBox(content);
        else if (name == "displayWindow")
            header.display = TakeBox(content);
        else if (name == "type" && QByteArray(reinterpret_cast<const char*>(value), size) != "scanlineimage")
            return std::nullopt;
    }
    header.tableOffset = bytes - fields.Left();
    const auto isSound = [](const QRect& box)
    { return !box.isEmpty() && qint64(box.width()) * box.height() <= MaximumExrBytes / 4; };
    if (!hasCompression || header.channels.empty() || !isSound(header.data) || !isSound(header.display) ||
        header.RowBytes() * header.data.height() > MaximumExrBytes)
        return std::nullopt;
    return header;
}
