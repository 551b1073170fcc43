// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>

#include <cstdio>

/// A host of one viewer: shows the picture named on the command line with a stroke on it. Ctrl with the wheel
/// zooms, Ctrl with the middle button pans.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // Widgets read settings while they are built.
    Settings::ReadUserConfig();
    Settings::hardwareAcceleratedPlayback = false;

    const QImage picture(QApplication::arguments().value(1));
    if (picture.isNull())
    {
        std::fprintf(stderr, "usage: %s PICTURE\n", argv[0]);
        return 1;
    }

    // The records of what is drawn are the host's and outlive their time in the viewer.
    DrawData stroke;
    stroke.type = DrawPencil;
    stroke.color = QColor(255, 160, 0);
    stroke.width = 0.01f;
    stroke.points = {QPointF(-0.2, 0.0), QPointF(-0.05, 0.15), QPointF(0.25, -0.15)};
    FrameData drawings;
    drawings.drawData << stroke;
    drawings.lastIndex = 0;

    ViewerWidget viewer;
    viewer.resize(960, 540);
    viewer.SetImage(0, picture, false);
    viewer.SetOverlayData(0, &drawings, {}, {});

    // A viewer asks; nothing moves until the host answers.
    QObject::connect(&viewer, &ViewerWidget::PanZoomChangeRequested, &viewer, &ViewerWidget::SetPanAndZoom);
    viewer.show();
    return QApplication::exec();
}
