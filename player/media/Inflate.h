// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>

/// Unpacks zlib streams that lie in memory as a whole.
namespace Inflate
{

/// Unpacks the @p bytes bytes at @p packed into @p target. Returns false if they don't make exactly
/// @p targetBytes bytes. Any thread may call.
bool Unpack(const uchar* packed, size_t bytes, uchar* target, size_t targetBytes);

/// The CRC-32 of @p bytes bytes at @p data.
quint32 Crc32(const uchar* data, size_t bytes);

} // namespace Inflate
