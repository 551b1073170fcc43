// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"

#include <QImage>
#include <QString>

/// Reads EXR files of the plain kind several times faster than the picture library: block by block, each from
/// the file to the shown bytes while it lies in the processor's cache.
namespace ExrFile
{

/// Reads @p path into a picture of @p format (QImage::Format_RGB32 or QImage::Format_RGB888), the same as
/// the picture library's to the last bit. Null if the file is not of the kind that ExrHeader::Read() takes,
/// lacks the channels R, G and B or Y, is broken anywhere, or when cancelled. Any thread may call.
QImage Read(const QString& path, QImage::Format format, const CancelToken& cancel);

} // namespace ExrFile
