// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>
#include <QString>

class PlayerWindow;

/// What tests of the whole player see of it: what is on the screen, and which frame that is.
namespace PlayerProbe
{

/// A numbered movie of 60 frames, 320 x 180, at 24 frames a second, whose first frame carries 1. Empty if it
/// can't be made.
QString SampleMovie();

/// Shows @p window with @p path open in viewer A and waits until its first frame is on screen. Returns
/// whether that came about.
bool ShowWith(PlayerWindow* window, const QString& path);

/// What the screen shows of @p window's viewer area.
QImage ScreenOfViewer(PlayerWindow* window);

/// Where the picture of viewer @p viewer stands in the viewer area, by its fitted size and the layout's
/// slots.
QRect PictureRect(PlayerWindow* window, int viewer, const QSize& pictureSize = QSize(320, 180));

/// The number that the picture of viewer @p viewer carries on the screen; -1 if none can be read.
int NumberOnScreen(PlayerWindow* window, int viewer = 0);

} // namespace PlayerProbe
