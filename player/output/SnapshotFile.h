// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

/// Writes stills. Any thread may call.
namespace SnapshotFile
{

/// Writes @p image (RGB32) to @p path in the format of its suffix: PNG, JPEG, TIFF or EXR. EXR holds linear
/// light in half floats, which shows as the same picture. The file is whole or not there: it is written
/// beside and renamed. Without @p replace a file that is there is left alone. Returns the reason of a
/// failure; empty if there was none.
QString Write(const QImage& image, const QString& path, bool replace);

} // namespace SnapshotFile
