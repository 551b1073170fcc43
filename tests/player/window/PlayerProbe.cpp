// SPDX-License-Identifier: MIT
#include "window/PlayerProbe.h"

#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "support/InputEvents.h"
#include "viewers/ViewerWidget.h"
#include "window/PlayerWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QtTest>

namespace PlayerProbe
{

QString SampleMovie()
{
    return NumberedMedia::Movie(
        QStringLiteral("player.mp4"), 60, QStringLiteral("24"),
        QStringLiteral("-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 24").split(QLatin1Char(' ')),
        QSize(320, 180));
}

bool ShowWith(PlayerWindow* window, const QString& path)
{
    window->resize(900, 700);
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        return false;
    window->OpenFiles({path}, 0);
    return QTest::qWaitFor([window] { return window->Playback()->ShownFrame(0) == 1; }, 20000);
}

QImage ScreenOfViewer(PlayerWindow* window)
{
    QCoreApplication::processEvents();
    QTest::qWait(50);
    ViewerWidget* const viewer = window->Viewer();
    const QPoint corner = viewer->mapToGlobal(QPoint(0, 0));
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, corner.x(), corner.y(), viewer->width(), viewer->height())
        .toImage();
}

QRect PictureRect(PlayerWindow* window, int viewer, const QSize& pictureSize)
{
    const ViewerWidget* const area = window->Viewer();
    QRect slot = area->rect();
    if (area->GetViewerLayout() == Horizontal)
        slot = QRect(viewer * (area->width() / 2), 0, area->width() / 2, area->height());
    else if (area->GetViewerLayout() == Vertical)
        slot = QRect(0, viewer * (area->height() / 2), area->width(), area->height() / 2);
    // Fitted twice, as the picture is, which can take a pixel off.
    const QSize fitted = pictureSize.scaled(slot.size(), Qt::KeepAspectRatio);
    QRect picture(QPoint(), pictureSize.scaled(fitted, Qt::KeepAspectRatio));
    picture.moveCenter(slot.center());
    return picture;
}

int NumberOnScreen(PlayerWindow* window, int viewer)
{
    return NumberedMedia::NumberIn(ScreenOfViewer(window).copy(PictureRect(window, viewer)));
}

QWidget* Part(PlayerWindow* window, const char* name)
{
    return window->findChild<QWidget*>(QLatin1String(name));
}

void Click(QWidget* widget, Qt::MouseButton button)
{
    InputEvents::Press(widget, widget->rect().center(), button);
    InputEvents::Release(widget, widget->rect().center(), button);
}

void Drag(PlayerWindow* window, const QPoint& from, const QPoint& to, int steps)
{
    ViewerWidget* const viewer = window->Viewer();
    InputEvents::Press(viewer, from);
    for (int step = 1; step <= steps; ++step)
        InputEvents::Move(viewer, from + (to - from) * step / (steps + 1), Qt::LeftButton);
    InputEvents::Release(viewer, to);
    LeaveViewers(window);
}

void LeaveViewers(PlayerWindow* window)
{
    InputEvents::Move(window, QPoint(window->width() - 5, window->height() - 5));
    QCoreApplication::processEvents();
}

ExpectedOverlay::ExpectedOverlay(const QImage& picture, const QColor& color, double width)
    : mPicture(picture.convertToFormat(QImage::Format_RGB32)), mOverlay(picture.size(), QImage::Format_ARGB32)
{
    mOverlay.fill(Qt::transparent);
    mPainter.begin(&mOverlay);
    mPainter.setRenderHint(QPainter::Antialiasing);
    mPainter.setCompositionMode(QPainter::CompositionMode_Source);
    mPainter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

ExpectedOverlay::~ExpectedOverlay()
{
    if (mPainter.isActive())
        mPainter.end();
}

QImage ExpectedOverlay::Over()
{
    mPainter.end();
    QPainter painter(&mPicture);
    painter.drawImage(0, 0, mOverlay);
    painter.end();
    return mPicture;
}

} // namespace PlayerProbe
