// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

/// Compares @p actual with @p expected whole. Returns an empty text if no channel of any pixel differs by
/// more than @p tolerance, otherwise what differs and where; both pictures are then kept in the temporary
/// directory and the text names them. Use it as `QVERIFY2(text.isEmpty(), text)`.
QByteArray PictureDifference(const QImage& actual, const QImage& expected, int tolerance = 0);
