// SPDX-License-Identifier: MIT
#include "host/KeyBindings.h"
#include "host/Settings.h"
#include "host/Timeline.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QImage>

#include <cstdio>

/// Shows a red picture in a viewer of the installed library. Returns 0 if it can be seen and the icons are
/// there.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Settings::RestoreDefaults();
    KeyBindings bindings({new KeySequence});
    Timeline timeline;

    ViewerWidget viewer;
    viewer.resize(320, 180);
    QImage picture(320, 180, QImage::Format_RGB888);
    picture.fill(Qt::red);
    viewer.SetImage(0, picture, false);
    viewer.show();
    QApplication::processEvents();
    const QColor shown = viewer.grab().toImage().pixelColor(160, 90);
    const bool hasIcons = !QImage(QStringLiteral(":/icons/play.png")).isNull();
    std::printf("%s %s %s\n", Settings::APPLICATION_TITLE, Settings::TORVALEN_PRO_VERSION_STRING,
                qPrintable(shown.name()));
    return shown == QColor(Qt::red) && hasIcons && timeline.GetType() == 1 &&
                   bindings.GetKeySequences().size() == 1
               ? 0
               : 1;
}
