// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QApplication>
#include <QFont>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

#ifdef TORVALEN_SANITIZED
// Unloaded plug-ins would show as leaks without a name. Visible, or the plug-in loader doesn't find it.
extern "C" __attribute__((visibility("default"))) int dlclose(void*)
{
    return 0;
}
#endif

/// Runs the test class named by the first argument, or each one without an argument, with a fixed font and
/// style and with settings of its own.
int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("XDG_STATE_HOME", home.path().toLocal8Bit());
    qputenv("XDG_CACHE_HOME", home.path().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home.path().toLocal8Bit());
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    QSurfaceFormat::setDefaultFormat(format);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    QApplication::setFont(font);
    Settings::SetUserConfigPath(home.filePath(QStringLiteral("torvalen.ini")));

    QStringList arguments = QApplication::arguments();
    const std::string wanted = argc > 1 ? argv[1] : "";
    if (argc > 1)
        arguments.removeAt(1);
    int failures = 0;
    int run = 0;
    for (const auto& [name, make] : RegisteredTests())
    {
        if (!wanted.empty() && wanted != name)
            continue;
        ++run;
        Settings::RestoreDefaults();
        const std::unique_ptr<QObject> test = make();
        failures += QTest::qExec(test.get(), arguments);
    }
    if (run == 0)
        std::fprintf(stderr, "no test class is called \"%s\"\n", wanted.c_str());
    return run == 0 || failures > 0 ? 1 : 0;
}
