// SPDX-License-Identifier: MIT
#include "dialogs/output/ExportDialog.h"
#include "host/Settings.h"

#include <QApplication>
#include <QTimer>

/// A host of the export dialog: it encodes nothing, and pretends for ten seconds that it does.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // Widgets read settings while they are built.
    Settings::ReadUserConfig();

    ExportDialog dialog(nullptr);
    dialog.SetTimelineWidthHeight(1920, 1080);
    dialog.SetDefaultOutputDirPath(QApplication::arguments().value(1));

    QTimer encoder;
    int progress = 0;
    // The dialog asks; it is exporting once the host says so, and no longer when the host says so again.
    QObject::connect(&dialog, &ExportDialog::ExportRequested, &encoder,
                     [&](const QString& path, int width, int height)
                     {
                         progress = 0;
                         encoder.start(100);
                         dialog.SetExporting(true);
                         dialog.AppendOutputText(
                             QStringLiteral("Exporting %1 x %2 to %3").arg(width).arg(height).arg(path),
                             false);
                     });
    QObject::connect(&encoder, &QTimer::timeout, &dialog,
                     [&]
                     {
                         progress += 10;
                         dialog.SetProgressBarValue(progress);
                         dialog.AppendOutputText(QStringLiteral("progress %1").arg(progress), true);
                         if (progress < 1000)
                             return;
                         encoder.stop();
                         dialog.AppendOutputText(QStringLiteral("Done"), false);
                         dialog.SetExporting(false);
                     });
    QObject::connect(&dialog, &ExportDialog::CancelExportRequested, &dialog,
                     [&]
                     {
                         encoder.stop();
                         dialog.AppendOutputText(QStringLiteral("Stopped"), false);
                         dialog.SetExporting(false);
                     });
    dialog.show();
    return QApplication::exec();
}
