// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/MessageBar.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QGuiApplication>
#include <QLabel>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

/// The player where OpenGL can't be used: once with a driver that claims to be of version 2.1, once without
/// any, see the CMakeLists.txt beside.
class tst_PlayerFallback : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void TheTrialKeepsOpenGLAway();
    void TheFirstShowKeepsOpenGLAway();
    void FilesOpenedAtTheStartLeaveTheMessage();
    void TheProgramSaysSoAndPlays();

private:
    void ExpectPicturesInSoftware();

    std::unique_ptr<PlayerWindow> mWindow;
    bool mHasDriver = false;
};

void tst_PlayerFallback::init()
{
    mHasDriver = QGuiApplication::platformName() == QLatin1String("xcb");
    if (mHasDriver ? qgetenv("MESA_GL_VERSION_OVERRIDE") != "2.1" : !qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("needs a driver that claims version 2.1, or none");
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = true;
}

void tst_PlayerFallback::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerFallback::ExpectPicturesInSoftware()
{
    QCOMPARE(mWindow->Viewer()->GetViewerType(), Software);
    QVERIFY(mWindow->Viewer()->IsInitialized());
    QVERIFY(mWindow->isVisible());
    QVERIFY2(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()), "no picture");
    QImage shown = mWindow->Viewer()->grab().toImage();
    QCOMPARE(NumberedMedia::NumberIn(shown.copy(PlayerProbe::PictureRect(mWindow.get(), 0))), 1);
    // The next start tries again.
    QVERIFY(Settings::hardwareAcceleratedPlayback);
}

void tst_PlayerFallback::TheTrialKeepsOpenGLAway()
{
    const ViewerBackEndChoice choice = ViewerBackEndChoice::Tried(OpenGL);
    const QString message =
        QStringLiteral("Hardware accelerated playback can't be used: %1. Pictures are drawn in software.")
            .arg(mHasDriver ? QStringLiteral("the driver offers OpenGL 2.1, and 3.3 is needed")
                            : QStringLiteral("there is no OpenGL driver"));
    QCOMPARE(choice.type, Software);
    QCOMPARE(choice.message, message);
    QSignalSpy warnings(Logger::GetInstance(), &Logger::WarningLogged);
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    mWindow = ShowPlayerWindow(choice);
    auto* const messages = mWindow->findChild<MessageBar*>();
    QTRY_COMPARE(messages->Message(), message);
    QVERIFY(messages->isVisible());
    QCOMPARE(messages->findChild<QLabel*>(QStringLiteral("messageLabel"))->text(), message);
    ExpectPicturesInSoftware();
    QCOMPARE(warnings.size(), 1);
    QCOMPARE(errors.size(), 0);
}

void tst_PlayerFallback::TheFirstShowKeepsOpenGLAway()
{
    QSignalSpy warnings(Logger::GetInstance(), &Logger::WarningLogged);
    QSignalSpy closed(qGuiApp, &QGuiApplication::lastWindowClosed);
    mWindow = ShowPlayerWindow(ViewerBackEndChoice::BySettings());
    const QString message =
        QStringLiteral("Hardware accelerated playback can't be used: %1. Pictures are drawn in software.")
            .arg(mHasDriver ? QStringLiteral("its viewer could not be set up on OpenGL 2.1")
                            : QStringLiteral("there is no OpenGL driver"));
    auto* const messages = mWindow->findChild<MessageBar*>();
    QTRY_COMPARE(messages->Message(), message);
    QCOMPARE(messages->findChild<QLabel*>(QStringLiteral("messageLabel"))->text(), message);
    ExpectPicturesInSoftware();
    QCOMPARE(warnings.size(), 1);
    QCOMPARE(closed.size(), 0);
}

void tst_PlayerFallback::FilesOpenedAtTheStartLeaveTheMessage()
{
    const ViewerBackEndChoice choice = ViewerBackEndChoice::Tried(OpenGL);
    mWindow = ShowPlayerWindow(choice);
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 0);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 1);
    QCOMPARE(mWindow->findChild<MessageBar*>()->Message(), choice.message);
}

void tst_PlayerFallback::TheProgramSaysSoAndPlays()
{
    for (const bool asked : {true, false})
    {
        QProcess program;
#ifdef TORVALEN_SANITIZED
        // The program unloads the driver, whose leaks are then nobody's.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        program.setProcessEnvironment(environment);
#endif
        program.start(QStringLiteral(TORVALEN_PROGRAM),
                      {QStringLiteral("--play-through"), PlayerProbe::SampleMovie(), QStringLiteral("--size"),
                       QStringLiteral("640x360"),
                       asked ? QStringLiteral("--opengl") : QStringLiteral("--software")});
        QVERIFY(program.waitForFinished(60000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        const QByteArray output = program.readAllStandardOutput();
        QVERIFY2(output.startsWith("frames 60 seconds "), output);
        QCOMPARE(program.readAllStandardError().count("Hardware accelerated playback can't be used"),
                 asked ? 1 : 0);
    }
}

static const TestRegistration<tst_PlayerFallback> PlayerFallbackRegistration;

#include "tst_PlayerFallback.moc"
