// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

/// Reads DPX files by the decoding library, which unpacks them several times faster than the picture library.
namespace DpxFile
{

/// Reads @p path into a picture of @p format. Null if the file is of a kind that is not taken here (other
/// than 8 to 16 bit grey or RGB) or can't be read; @p error is filled then.
QImage Read(const QString& path, QImage::Format format, QString* error);

} // namespace DpxFile
