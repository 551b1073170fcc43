// SPDX-License-Identifier: MIT
#include "console/ConsoleWindow.h"
#include "host/Logger.h"
#include "host/Settings.h"

#include <QApplication>

#include <thread>

/// A host of the console: its interpreter counts the letters of each line of the script, on a thread of its
/// own, and answers with log traffic. Type into the lower pane; Ctrl+Return runs what is selected, or all of
/// it.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Settings::ReadUserConfig();

    ConsoleWindow console;
    console.SetInputVisible(true);
    QObject::connect(&console, &ConsoleWindow::ScriptExecuted,
                     [](const QString& script)
                     {
                         std::thread(
                             [script]
                             {
                                 Logger* const logger = Logger::GetInstance();
                                 for (const QString& line : script.split(QLatin1Char('\n')))
                                 {
                                     if (line.isEmpty())
                                         logger->Warning(QStringLiteral("an empty line"));
                                     logger->Output(QStringLiteral("%1 letters\n").arg(line.size()));
                                 }
                             })
                             .detach();
                     });
    console.resize(700, 500);
    console.show();
    const int status = QApplication::exec();
    // The policy and the place of the window.
    Settings::WriteUserConfig();
    return status;
}
