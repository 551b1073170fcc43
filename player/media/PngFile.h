// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

/// Reads PNG files of the usual kinds faster than the picture library, which unpacks them in small pieces.
namespace PngFile
{

/// Reads @p path into a picture of @p format (QImage::Format_RGB32 or QImage::Format_RGB888), the same as the
/// picture library's. Null if the file is interlaced, of less than 8 bits, has a transparent colour or chunks
/// that are not known here, or is broken anywhere. Any thread may call.
QImage Read(const QString& path, QImage::Format format);

} // namespace PngFile
