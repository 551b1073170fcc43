// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QRect>

#include <optional>
#include <vector>

class FileWindow;

/// How the blocks of an EXR file are packed, as numbered in the file.
enum class ExrCompression
{
    None = 0,
    Rle = 1,
    ZipLine = 2,
    ZipBlock = 3,
    Pxr24 = 5
};

/// One channel of an EXR file; each row of a block holds the values of all of them one after the other.
struct ExrChannel
{
    QByteArray name;
    /// 4 bytes instead of 2 a value.
    bool isFloat = false;

    int Bytes() const { return isFloat ? 4 : 2; }
};

/// What an EXR file says before its blocks, for files of the plain kind.
struct ExrHeader
{
    std::vector<ExrChannel> channels;
    ExrCompression compression = ExrCompression::None;
    /// Where there are pixels, and what is shown.
    QRect data;
    QRect display;
    /// Where the table of the blocks' places begins in the file.
    qint64 tableOffset = 0;

    /// Of the channel @p name; -1 if there is none.
    int IndexOf(const char* name) const;
    /// Bytes of one row, all channels together.
    qint64 RowBytes() const;
    int RowsPerBlock() const;
    int BlockCount() const;

    /// Reads the header of @p file. Nothing if the file is broken or of another than the plain kind: one part
    /// of rows, a compression that is listed above, channels of half or float values for each pixel, and
    /// nothing that turns the picture.
    static std::optional<ExrHeader> Read(FileWindow& file);
};
