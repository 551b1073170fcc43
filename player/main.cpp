// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "scripting/PythonThread.h"
#include "window/DarkPalette.h"
#include "window/EarlyLog.h"
#include "window/PlayThrough.h"
#include "window/PlayerWindow.h"
#include "window/ProjectBinding.h"
#include "window/ScriptBinding.h"
#include "window/StandardLog.h"
#include "window/ViewerBackEndChoice.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QStyleFactory>
#include <QSurfaceFormat>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace
{

/// How long a screenshot waits for the first pictures, in milliseconds.
constexpr int ScreenshotTimeout = 20000;

const QStringList LayoutNames = {QStringLiteral("single"), QStringLiteral("horizontal"),
                                 QStringLiteral("vertical")};

QCommandLineOption Option(const char* name, const char* description, const char* value = nullptr)
{
    return QCommandLineOption(QLatin1String(name), QCoreApplication::translate("main", description),
                              QLatin1String(value ? value : ""));
}

/// Keeps the memory of pictures in the process: each paint makes a picture of the window's size, and getting
/// and clearing fresh pages for it costs as much as a quarter of its scaling.
void KeepPictureMemory()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

/// What a host sets before its application: an OpenGL 3.3 core profile, with contexts that share, so that
/// moving a viewer to another window loses nothing.
void PrepareApplication()
{
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    QSurfaceFormat::setDefaultFormat(format);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    Settings::ReadUserConfig();
    if (Settings::highDpiScaling)
        QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setApplicationName(QString::fromLatin1(Settings::APPLICATION_TITLE));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(Settings::TORVALEN_PRO_VERSION_STRING));
}

/// Lets a script run where there is no display.
void AllowNoDisplay(int argc, char** argv)
{
    const auto isScript = [](const char* argument)
    { return qstrcmp(argument, "--script") == 0 || qstrncmp(argument, "--script=", 9) == 0; };
    const bool hasDisplay =
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (!hasDisplay && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
        std::any_of(argv + 1, argv + argc, isScript))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

/// Ends the process with @p status at once where a script can't be stopped: what is left would pull the
/// ground from under it.
int LeaveWith(int status)
{
    if (PythonThread::IsStuck())
    {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}

/// Saves the window's picture at @p path once it shows what it is to show, and ends the application.
void TakeScreenshot(PlayerWindow* window, const QString& path)
{
    const auto take = [window, path]
    {
        const bool saved = GrabWindow(window).save(path);
        if (!saved)
            Logger::GetInstance()->Error(
                QStringLiteral("The screenshot could not be written to %1").arg(path));
        QApplication::exit(saved ? 0 : 1);
    };
    QObject::connect(window, &PlayerWindow::Settled, window,
                     [window, take] { QTimer::singleShot(200, window, take); });
    QTimer::singleShot(ScreenshotTimeout, window, take);
}

} // namespace

int main(int argc, char** argv)
{
    KeepPictureMemory();
    StandardLog log;
    EarlyLog earlyLog;
    PrepareApplication();
    AllowNoDisplay(argc, argv);
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(DarkPalette());

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Plays movies and image sequences for review."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption viewerB = Option("viewer-b", "Opens FILE in viewer B.", "FILE");
    const QCommandLineOption layout = Option("layout", "Layout: single, horizontal or vertical.", "NAME");
    const QCommandLineOption play = Option("play", "Starts playing at once.");
    const QCommandLineOption demo =
        Option("demo", "Draws a greeting on the first frames, to show what drawings are.");
    const QCommandLineOption screenshot =
        Option("screenshot", "Saves the window's picture as FILE once it shows the first frames, and quits.",
               "FILE");
    const QCommandLineOption playThrough = Option(
        "play-through",
        "Plays FILE as fast as it can, prints frames, seconds and frames a second, and quits.", "FILE");
    const QCommandLineOption size = Option("size", "Size of the window of --play-through.", "WIDTHxHEIGHT");
    const QCommandLineOption openGL = Option("opengl", "Draws through OpenGL this time, whatever is set.");
    const QCommandLineOption software = Option("software", "Draws in software this time, whatever is set.");
    const QCommandLineOption script = Option(
        "script", "Runs the Python script SCRIPT, with the FILEs as its arguments, and quits.", "SCRIPT");
    parser.addOptions({viewerB, layout, play, demo, screenshot, playThrough, size, openGL, software, script});
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QCoreApplication::translate("main", "Movies, files of image sequences, or a project."),
        QStringLiteral("[FILE…]"));
    parser.process(application);

    ViewerType wanted = ViewerBackEndChoice::BySettings().type;
    if (parser.isSet(openGL))
        wanted = OpenGL;
    else if (parser.isSet(software))
        wanted = Software;
    const ViewerBackEndChoice choice = ViewerBackEndChoice::Tried(wanted);
    if (parser.isSet(playThrough))
        return RunPlayThrough(parser.value(playThrough), parser.value(size), choice);
    if (parser.isSet(layout) && !LayoutNames.contains(parser.value(layout)))
    {
        std::fprintf(stderr, "torvalen: there is no layout \"%s\"; take single, horizontal or vertical\n",
                     qUtf8Printable(parser.value(layout)));
        return 2;
    }

    std::unique_ptr<PlayerWindow> window = ShowPlayerWindow(choice);
    earlyLog.Stop();
    window->Scripts()->OpenPort();
    if (parser.isSet(layout))
        window->SetLayout(LayoutNames.indexOf(parser.value(layout)));
    if (parser.isSet(demo))
        window->DrawDemoWhenReady();
    if (parser.isSet(screenshot))
        TakeScreenshot(window.get(), parser.value(screenshot));
    // A picture is taken of what is asked for alone, and nobody answers a script's questions.
    if (!parser.isSet(screenshot) && !parser.isSet(script))
        window->Projects()->OfferRecovery();
    if (parser.isSet(script))
        window->Scripts()->RunAndQuit(parser.value(script), parser.positionalArguments());
    else if (!parser.positionalArguments().isEmpty())
        window->OpenFiles(parser.positionalArguments(), 0);
    if (parser.isSet(viewerB))
        window->OpenFiles({parser.value(viewerB)}, 1);
    if (parser.isSet(play))
        window->PlayWhenReady();
    const int status = QApplication::exec();
    window.reset();
    return LeaveWith(status);
}
