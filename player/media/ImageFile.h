// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"

#include <QImage>
#include <QString>

/// What a picture file says of itself, without its pixels.
struct ImageFileInfo
{
    QSize size;
    QString formatName;
    /// Type of the stored pixels, e.g. "uint8", "half".
    QString pixelType;
};

/// Reads single picture files.
///
/// What is shown: the display window, with black where the file has no pixels; the channels R, G and B by
/// name, else the first three, else the first as grey; transparent pixels over black. Floating point is
/// linear light and goes through the sRGB transfer curve, with negative values and NaN as 0; integers are
/// shown as they stand. Any thread may call.
namespace ImageFile
{

/// Reads the header of @p path. Returns false and fills @p error with the reason if that fails.
bool ReadInfo(const QString& path, ImageFileInfo* info, QString* error);

/// Reads @p path into a picture of @p format (QImage::Format_RGB32 or QImage::Format_RGB888), upright. On
/// failure
/// @p error holds the reason, and the picture what could be read, or null. When cancelled the picture is
/// null.
QImage Read(const QString& path, QImage::Format format, const CancelToken& cancel, QString* error);

} // namespace ImageFile
