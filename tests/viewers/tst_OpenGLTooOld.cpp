// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "viewers/GlProbe.h"

#include <QOpenGLContext>
#include <QSignalSpy>
#include <QtTest>

/// Runs with a driver that claims to be of version 2.1, see the CMakeLists.txt beside.
class tst_OpenGLTooOld : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void AnOldContextIsReportedAndShowsNothing();
};

void tst_OpenGLTooOld::AnOldContextIsReportedAndShowsNothing()
{
    if (qgetenv("MESA_GL_VERSION_OVERRIDE") != "2.1")
        QSKIP("needs a driver that claims version 2.1");
    Settings::hardwareAcceleratedPlayback = true;
    QSignalSpy outputs(Logger::GetInstance(), &Logger::OutputLogged);
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    ViewerWidget widget;
    widget.resize(200, 100);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QTRY_COMPARE(errors.size(), 1);
    QCOMPARE(errors[0][0].toString(),
             QStringLiteral("OpenGL verison is too old (2.1). Minimum required version is 3.3."));
    QCOMPARE(outputs.size(), 4);
    QVERIFY(outputs[0][0].toString().startsWith(QStringLiteral("OpenGL Vendor: ")));
    QVERIFY(outputs[2][0].toString().startsWith(QStringLiteral("OpenGL Version: 2.1")));
    QVERIFY(!widget.IsInitialized());
    // It stays so for good, and logs no more.
    const FrameData frame;
    for (int round = 0; round < 3; ++round)
    {
        widget.findChild<QOpenGLWidget*>()->makeCurrent();
        widget.SetImage(-1, GlPlain(QSize(20, 10), Qt::white), false);
        widget.SetImage(2, GlPlain(QSize(20, 10), Qt::white), false);
        widget.SetOverlayData(0, &frame, {&frame}, {});
        widget.SetStoreLastImageEnabled(true);
        widget.SetViewerLayout(Horizontal);
        widget.RefreshAnnotations();
        widget.resize(210 + round, 100);
        QTest::qWait(10);
        widget.GetImage();
    }
    QCOMPARE(errors.size(), 1);
    QCOMPARE(outputs.size(), 4);
    QVERIFY(!widget.IsInitialized());
    QCOMPARE(widget.GetImageDisplayWidth(), 0);
}

static const TestRegistration<tst_OpenGLTooOld> OpenGLTooOldRegistration;

#include "tst_OpenGLTooOld.moc"
