// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QString>

class PlayerWindow;
class QWidget;

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

/// The button or other part called @p name of @p window; null if there is none.
QWidget* Part(PlayerWindow* window, const char* name);

/// Clicks the middle of @p widget with the mouse.
void Click(QWidget* widget, Qt::MouseButton button = Qt::LeftButton);

/// Drags the mouse over the viewers from @p from to @p to by way of @p steps positions between, and away from
/// the viewers, so that no preview of the cursor is in the picture.
void Drag(PlayerWindow* window, const QPoint& from, const QPoint& to, int steps = 3);

/// Moves the mouse away from the viewers.
void LeaveViewers(PlayerWindow* window);

/// Draws lines as the viewers' overlay does, for a statement of its own of what a drawing looks like: over
/// @p picture, in @p color, @p width pixels wide.
class ExpectedOverlay
{
public:
    ExpectedOverlay(const QImage& picture, const QColor& color, double width);
    ~ExpectedOverlay();

    QPainter* Painter() { return &mPainter; }
    /// The picture with what was painted over it.
    QImage Over();

private:
    QImage mPicture;
    QImage mOverlay;
    QPainter mPainter;
};

} // namespace PlayerProbe
