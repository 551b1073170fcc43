// SPDX-License-Identifier: MIT
#pragma once

#include "host/ViewerType.h"

#include <QImage>
#include <QPixmap>
#include <QString>

#include <memory>

class PlayerWindow;
class ViewerWidget;
class QWidget;

/// Which back end the viewers of a run draw through, and why it is not the one asked for.
///
/// The user's setting stays as it is where OpenGL can't be used, so that the next start tries again.
struct ViewerBackEndChoice
{
    /// What Settings::hardwareAcceleratedPlayback asks for, untried.
    static ViewerBackEndChoice BySettings();
    /// @p wanted if it works here: OpenGL is tried with a context of its own first.
    static ViewerBackEndChoice Tried(ViewerType wanted);
    /// The software viewer, with a message that gives @p reason.
    static ViewerBackEndChoice InSoftware(const QString& reason);

    /// Makes a viewer with the chosen back end.
    ViewerWidget* MakeViewer(QWidget* parent) const;

    ViewerType type;
    /// What the user is to be told; empty if the back end is the one asked for.
    QString message;
};

/// Makes the player's window and shows it. Where the OpenGL viewer turns out unusable with the first show,
/// the window is made again with the software viewer.
std::unique_ptr<PlayerWindow> ShowPlayerWindow(const ViewerBackEndChoice& choice);

/// Why @p viewer, which has been shown, can't draw, as a message for the user; empty if it can.
QString ProblemAfterShow(ViewerWidget* viewer);

/// Shows @p image in viewer @p index (-1 for both), with the context of an OpenGL viewer current. A null
/// image empties the viewer, annotations included.
void ShowPicture(ViewerWidget* viewer, int index, const QImage& image);

/// The format in which @p viewer takes pictures without converting them.
QImage::Format PictureFormatOf(const ViewerWidget* viewer);

/// The picture of @p window as it is on screen, annotations of an OpenGL viewer included.
QPixmap GrabWindow(PlayerWindow* window);
