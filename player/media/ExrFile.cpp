// SPDX-License-Identifier: MIT
#include "media/ExrFile.h"

#include "media/ExrBlock.h"
#include "media/FileWindow.h"
#include "media/PicturePool.h"
#include "media/PictureRows.h"

#include <array>

namespace
{

constexpr int Colours = 3;
// In front of each block: its first row, and how many bytes follow.
constexpr qint64 BlockHeadBytes = 8;

/// Where a shown channel lies within a row.
struct ExrPlane
{
    qint64 offset = 0;
    bool isFloat = false;
};

class ExrPicture
{
public:
    ExrPicture(const ExrHeader& header, QImage::Format format)
        : mHeader(header)
        , mShown(header.data & header.display)
        , mImage(PicturePool::Take(header.display.size(), format))
    {
        for (auto& row : mHalves)
            row.resize(size_t(mShown.width()));
        if (!mImage.isNull() && mShown != header.display)
            mImage.fill(Qt::black);
    }

    /// Finds the channels that are shown; false if they are not there.
    bool FindPlanes()
    {
        int index[Colours] = {mHeader.IndexOf("R"), mHeader.IndexOf("G"), mHeader.IndexOf("B")};
        if (index[0] < 0 || index[1] < 0 || index[2] < 0)
            index[0] = index[1] = index[2] = mHeader.IndexOf("Y");
        if (index[0] < 0)
            return false;
        mIsGrey = index[0] == index[1];
        for (int colour = 0; colour < Colours; ++colour)
        {
            ExrPlane& plane = mPlanes[size_t(colour)];
            for (int i = 0; i < index[colour]; ++i)
                plane.offset += qint64(mHeader.channels[size_t(i)].Bytes()) * mHeader.data.width();
            const ExrChannel& channel = mHeader.channels[size_t(index[colour])];
            plane.isFloat = channel.isFloat;
            plane.offset += qint64(channel.Bytes()) * (mShown.left() - mHeader.data.left());
        }
        return true;
    }

    bool Shows(int y) const { return y >= mShown.top() && y <= mShown.bottom(); }

    void PutRow(const uchar* row, int y)
    {
        const int width = mShown.width();
        const quint16* values[Colours];
        for (size_t colour = 0; colour < Colours; ++colour)
        {
            values[colour] = mHalves[mIsGrey ? 0 : colour].data();
            if (colour == 0 || !mIsGrey)
                ExrBlock::ToHalf(row + mPlanes[colour].offset, mPlanes[colour].isFloat, width,
                                 mHalves[colour].data());
        }
        const bool isRgb32 = mImage.format() == QImage::Format_RGB32;
        uchar* const target = mImage.bits() + qsizetype(y - mHeader.display.top()) * mImage.bytesPerLine() +
                              qsizetype(mShown.left() - mHeader.display.left()) * (isRgb32 ? 4 : 3);
        if (isRgb32)
            PictureRows::PutPlanes<PictureRows::Rgb32Pixels>(values[0], values[1], values[2], target, width,
                                                             mTone);
        else
            PictureRows::PutPlanes<PictureRows::Rgb888Pixels>(values[0], values[1], values[2], target, width,
                                                              mTone);
    }

    const QImage& Image() const { return mImage; }

private:
    const ExrHeader& mHeader;
    const QRect mShown;
    QImage mImage;
    std::array<ExrPlane, Colours> mPlanes;
    bool mIsGrey = false;
    std::array<std::vector<quint16>, Colours> mHalves;
    const PictureRows::HalfTone mTone;
};

/// The places of the blocks in the file; empty if the file is too short.
std::vector<qint64> BlockPlaces(FileWindow& file, const ExrHeader& header)
{
    const auto count = size_t(header.BlockCount());
    const uchar* const table = file.At(header.tableOffset, qint64(count) * 8);
    std::vector<qint64> places(table == nullptr ? 0 : count);
    for (size_t i = 0; i < places.size(); ++i)
        places[i] = qFromLittleEndian<qint64>(table + 8 * i);
    return places;
}

} // namespace

QImage ExrFile::Read(const QString& path, QImage::Format format, const CancelToken& cancel)
{
    // Kept from picture to picture.
    thread_local std::vector<uchar> scratch;
    thread_local std::vector<uchar> unpacked;
    FileWindow file(path);
    if (!file.Open())
        return {};
    const std::optional<ExrHeader> header = ExrHeader::Read(file);
    if (!header)
        return {};
    ExrPicture picture(*header, format);
    const std::vector<qint64> places = BlockPlaces(file, *header);
    if (picture.Image().isNull() || places.empty() || !picture.FindPlanes())
        return {};
    // In the order in which they lie in the file.
    const auto count = int(places.size());
    const bool isReversed = places.front() > places.back();
    for (int i = 0; i < count; ++i)
    {
        if (cancel.IsCancelled())
            return {};
        const int block = isReversed ? count - 1 - i : i;
        const qint64 place = places[size_t(block)];
        const int first = header->data.top() + block * header->RowsPerBlock();
        const int rows = std::min(header->RowsPerBlock(), header->data.bottom() - first + 1);
        const uchar* const head = file.At(place, BlockHeadBytes);
        if (head == nullptr || qFromLittleEndian<qint32>(head) != first)
            return {};
        const qint64 bytes = qFromLittleEndian<qint32>(head + 4);
        const uchar* const packed = file.At(place + BlockHeadBytes, bytes);
        const uchar* row =
            packed == nullptr ? nullptr : ExrBlock::Unpack(*header, rows, packed, bytes, scratch, unpacked);
        if (row == nullptr)
            return {};
        for (int y = first; y < first + rows; ++y, row += header->RowBytes())
            if (picture.Shows(y))
                picture.PutRow(row, y);
    }
    return picture.Image();
}
