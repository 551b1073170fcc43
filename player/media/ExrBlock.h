// SPDX-License-Identifier: MIT
#pragma once

#include "media/ExrHeader.h"

#include <vector>

/// Unpacks the blocks of EXR files.
namespace ExrBlock
{

/// Unpacks the @p bytes bytes at @p packed, the block of @p rows rows of a file with @p header, into
/// @p target, which becomes at least as long as those rows. Returns the rows, at @p packed itself where they
/// are not compressed; null if the block is broken. @p scratch is room that is kept from block to block.
const uchar* Unpack(const ExrHeader& header, int rows, const uchar* packed, qint64 bytes,
                    std::vector<uchar>& scratch, std::vector<uchar>& target);

/// Takes @p count values at @p source, little-endian and anyhow aligned, to the bits of half floats: those of
/// half files as they are, those of float files rounded to the nearest, halves to the even one.
void ToHalf(const uchar* source, bool isFloat, int count, quint16* target);

/// The rounding of one value, by integers alone.
quint16 RoundedToHalf(quint32 floatBits);

} // namespace ExrBlock
