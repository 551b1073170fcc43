// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

/// Movies whose frames carry their own number in their pixels, so that a test can tell which frame it got.
///
/// The number stands in black and white blocks that survive any encoder: eight to a row, the low byte, the
/// high byte and a check byte; below them something moves. Files are made once and kept in the build folder.
namespace NumberedMedia
{

/// The picture of frame @p number (0 to 65535), grey.
QImage Picture(int number, const QSize& size = QSize(160, 90));

/// The number that @p image carries; -1 if there is none.
int NumberIn(const QImage& image);

/// Path of a movie called @p name with the frames 1 to @p frames at @p rate (as the ffmpeg program reads it),
/// encoded by @p encoder arguments. Empty if the program fails; its words then go to the test log.
QString Movie(const QString& name, int frames, const QString& rate, const QStringList& encoder,
              const QSize& size = QSize(160, 90));

/// Path of a file called @p name that the ffmpeg program makes with @p arguments; the output path is added to
/// them.
QString Made(const QString& name, const QStringList& arguments);

} // namespace NumberedMedia
