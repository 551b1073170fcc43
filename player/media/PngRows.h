// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>

/// Undoes the filters of PNG rows.
namespace PngRows
{

/// Bytes behind each row handed to Restore() that it may read or, in @p row, write.
constexpr size_t Padding = 16;

/// Restores the @p bytes bytes at @p filtered, a row of pixels of @p pixelBytes bytes (1 to 8) that went
/// through @p filter, into @p row; @p above is the row above, restored. Returns false if there is no such
/// filter.
bool Restore(int filter, int pixelBytes, const uchar* filtered, const uchar* above, uchar* row, size_t bytes);

} // namespace PngRows
