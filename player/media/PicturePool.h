// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

/// Pictures whose memory is used again.
///
/// A frame of 8 MB costs more to get from the system and to touch for the first time than to fill. Any thread
/// may call; pictures may outlive everything.
namespace PicturePool
{

/// A picture of uninitialised pixels; null if @p size is empty or there is no memory. @p format is
/// QImage::Format_RGB32 (rows without a gap) or QImage::Format_RGB888 (rows of a multiple of 4 bytes).
QImage Take(const QSize& size, QImage::Format format);

} // namespace PicturePool
