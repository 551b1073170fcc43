// SPDX-License-Identifier: MIT
#include "media/NumberedMedia.h"
#include "scripting/PortCaller.h"
#include "support/TestRegistry.h"
#include "window/PlayerProbe.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

/// Scripts of the whole program, as a user runs them.
class tst_ScriptProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void TheResultIsTheExitStatus_data();
    void TheResultIsTheExitStatus();
    void OutputAndErrorsGoTheirOwnWays();
    void AReviewIsDone();
    void ThePortOfTheSettingsIsOpened();
    void WithoutASettingThereIsNoPort();
    void TheExampleOfTheDocumentWorks();
    void ItClosesDuringACallThatCantBeInterrupted();

private:
    QString Write(const QString& name, const QByteArray& text);
    /// Starts the program with settings of its own and without a display.
    void Start(const QStringList& arguments);
    /// Waits for the end of the program. Returns its exit status, -1 if it did not end, -2 if it crashed.
    int WaitForEnd(int milliseconds = 60000);
    int Run(const QByteArray& script, const QStringList& arguments = {});
    /// Starts the program with its port open. Returns the port.
    quint16 StartWithPort();
    QByteArray Greeting(quint16 port) const;

    std::unique_ptr<QTemporaryDir> mFolder;
    std::unique_ptr<QProcess> mProgram;
    QByteArray mOutput;
    QByteArray mErrors;
};

void tst_ScriptProgram::init()
{
    mFolder = std::make_unique<QTemporaryDir>();
    mProgram = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    // As it stands on many a machine of a studio, and of no use to this Python.
    environment.insert("PYTHONHOME", "/nowhere");
    environment.insert("XDG_CONFIG_HOME", mFolder->path());
    environment.insert("XDG_RUNTIME_DIR", mFolder->path());
    mProgram->setProcessEnvironment(environment);
}

void tst_ScriptProgram::cleanup()
{
    mProgram->kill();
    mProgram->waitForFinished();
    mProgram.reset();
    mFolder.reset();
}

QString tst_ScriptProgram::Write(const QString& name, const QByteArray& text)
{
    const QString path = mFolder->filePath(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qWarning("%s can't be written", qUtf8Printable(path));
    return path;
}

void tst_ScriptProgram::Start(const QStringList& arguments)
{
    mProgram->start(QStringLiteral(TORVALEN_PROGRAM), arguments);
    QVERIFY(mProgram->waitForStarted());
}

int tst_ScriptProgram::WaitForEnd(int milliseconds)
{
    const bool ended =
        QTest::qWaitFor([this] { return mProgram->state() == QProcess::NotRunning; }, milliseconds);
    mOutput = mProgram->readAllStandardOutput();
    mErrors = mProgram->readAllStandardError();
    if (!ended)
        return -1;
    return mProgram->exitStatus() == QProcess::NormalExit ? mProgram->exitCode() : -2;
}

int tst_ScriptProgram::Run(const QByteArray& script, const QStringList& arguments)
{
    Start(QStringList{"--script", Write("script.py", script)} + arguments);
    return WaitForEnd();
}

quint16 tst_ScriptProgram::StartWithPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    const quint16 port = server.serverPort();
    server.close();
    Write("Torvalen/torvalen.ini", "[Application]\ncmdPort=" + QByteArray::number(port) + '\n');
    QProcessEnvironment environment = mProgram->processEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    mProgram->setProcessEnvironment(environment);
    Start({});
    const bool isOpen = QTest::qWaitFor([&] { return !Greeting(port).isEmpty(); }, 10000);
    return isOpen ? port : 0;
}

QByteArray tst_ScriptProgram::Greeting(quint16 port) const
{
    QFile file(mFolder->filePath(QStringLiteral("torvalen/port-%1.token").arg(port)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray token = file.readAll();
    return token.size() == 65 ? "token " + token : QByteArray();
}

void tst_ScriptProgram::TheResultIsTheExitStatus_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("status");
    QTest::newRow("end") << QByteArray("pass") << 0;
    QTest::newRow("exit") << QByteArray("import sys\nsys.exit(42)") << 42;
    QTest::newRow("error") << QByteArray("1 / 0") << 1;
    QTest::newRow("syntax") << QByteArray("def") << 1;
    QTest::newRow("quit") << QByteArray("import torvalen\ntorvalen.run('file.quit')") << 0;
    QTest::newRow("thread goes on") << QByteArray("import threading\n"
                                                  "def on():\n    while True: pass\n"
                                                  "threading.Thread(target=on).start()")
                                    << 0;
}

void tst_ScriptProgram::TheResultIsTheExitStatus()
{
    QFETCH(QByteArray, script);
    QTEST(Run(script), "status");
    // A script that isn't there
    Start({"--script", "/nowhere/script.py"});
    QCOMPARE(WaitForEnd(), 2);
    QVERIFY2(mErrors.contains("/nowhere/script.py can't be read"), mErrors);
}

void tst_ScriptProgram::OutputAndErrorsGoTheirOwnWays()
{
    QCOMPARE(Run("import atexit, sys\n"
                 "kept = open(sys.argv[1], 'w')\n"
                 "kept.write('not flushed')\n"
                 "print('out', sys.argv[2:], end='')\n"
                 "print(' and on')\n"
                 "print('err', file=sys.stderr)\n"
                 "raise RuntimeError('why')",
                 {mFolder->filePath("kept.txt"), "a", QString::fromUtf8("Übung")}),
             1);
    QCOMPARE(mOutput, QByteArray("out ['a', 'Übung'] and on\n"));
    // Qt may speak between them.
    QVERIFY2(mErrors.contains("[ERROR] err\n"), mErrors);
    QVERIFY2(mErrors.indexOf("[ERROR] Traceback (most recent call last):\n") >
                 mErrors.indexOf("[ERROR] err\n"),
             mErrors);
    QVERIFY2(mErrors.contains("\nRuntimeError: why\n"), mErrors);
    // What a script leaves open is written.
    QFile kept(mFolder->filePath("kept.txt"));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("not flushed"));
}

void tst_ScriptProgram::AReviewIsDone()
{
    const QString movie = PlayerProbe::SampleMovie();
    QVERIFY(!movie.isEmpty());
    QCOMPARE(Run("import sys, torvalen\n"
                 "torvalen.window_size(900, 700)\n"
                 "movie = torvalen.open(sys.argv[1])\n"
                 "torvalen.seek(24)\n"
                 "torvalen.wait_until_settled()\n"
                 "print('size', *torvalen.viewer_size())\n"
                 "torvalen.grab(sys.argv[2] + '/bare.png')\n"
                 "torvalen.draw_arrow((-0.3, 0.1), (0.0, 0.0), color='red', width=0.02)\n"
                 "torvalen.draw_text((-0.4, 0.12), 'longer', width=0.01)\n"
                 "torvalen.add_bookmark(20, 40, note='timing')\n"
                 "torvalen.grab(sys.argv[2] + '/noted.png')\n"
                 "for mark in torvalen.bookmarks(): print(mark.first, mark.last, mark.annotated, mark.note)\n"
                 "for frame in torvalen.annotated_frames():\n"
                 "    print(frame, [drawing.kind for drawing in torvalen.annotations(frame)])\n"
                 "torvalen.range(20, 40)\n"
                 "torvalen.export(sys.argv[2] + '/review.mp4', preset='ultrafast')\n"
                 "print(torvalen.open(sys.argv[2] + '/review.mp4', None).frames)\n"
                 "torvalen.undo(); torvalen.undo(); torvalen.undo()\n"
                 "torvalen.grab(sys.argv[2] + '/undone.png')\n",
                 {movie, mFolder->path()}),
             0);
    QVERIFY2(mOutput.endsWith("20 40 False timing\n24 24 True \n24 ['arrow', 'text']\n21\n"), mOutput);
    const QImage bare(mFolder->filePath("bare.png"));
    const QImage noted(mFolder->filePath("noted.png"));
    const QList<QByteArray> size = mOutput.left(mOutput.indexOf('\n')).split(' ');
    QCOMPARE(bare.size(), QSize(size.at(1).toInt(), size.at(2).toInt()));
    const QSize shown = QSize(320, 180).scaled(bare.size(), Qt::KeepAspectRatio);
    QRect picture(QPoint(), shown);
    picture.moveCenter(bare.rect().center());
    QCOMPARE(NumberedMedia::NumberIn(bare.copy(picture)), 24);
    QVERIFY(noted != bare);
    // Where the arrow's line is.
    const QPoint middle = picture.center() + QPoint(-picture.width() * 15 / 100, picture.width() * 5 / 100);
    QCOMPARE(noted.pixelColor(middle), QColor(Qt::red));
    QCOMPARE(QImage(mFolder->filePath("undone.png")), bare);
}

void tst_ScriptProgram::ThePortOfTheSettingsIsOpened()
{
    const quint16 port = StartWithPort();
    QVERIFY(port != 0);
    PortCaller caller(port);
    QCOMPARE(caller.Ask(Greeting(port)), QByteArray("ok: "));
    QCOMPARE(caller.Ask("eval import torvalen; torvalen.layout()\n"), QByteArray("ok: 'single'"));
    const QString tokenPath = mFolder->filePath(QStringLiteral("torvalen/port-%1.token").arg(port));
    QVERIFY(QFile::exists(tokenPath));
    caller.Send("run file.quit\n");
    QCOMPARE(WaitForEnd(), 0);
    QVERIFY(!QFile::exists(tokenPath));
    QVERIFY2(mErrors.contains("The command port " + QByteArray::number(port) + " is open; its token is in "),
             mErrors);
}

void tst_ScriptProgram::WithoutASettingThereIsNoPort()
{
    QCOMPARE(Run("import os, torvalen\nprint(torvalen.setting('cmdPort'), "
                 "os.path.exists(os.environ['XDG_RUNTIME_DIR'] + '/torvalen'))"),
             0);
    QCOMPARE(mOutput, QByteArray("0 False\n"));
}

void tst_ScriptProgram::TheExampleOfTheDocumentWorks()
{
    QFile document(QStringLiteral(TORVALEN_SCRIPTING_DOCUMENT));
    QVERIFY(document.open(QIODevice::ReadOnly));
    QString text = QString::fromUtf8(document.readAll());
    text = text.mid(text.lastIndexOf("```python\n") + 10);
    text.truncate(text.indexOf("```"));
    QVERIFY(text.contains("port = 17171"));
    const quint16 port = StartWithPort();
    QVERIFY(port != 0);
    PortCaller caller(port);
    caller.Ask(Greeting(port));
    caller.Ask(QStringLiteral("eval import torvalen; torvalen.open('%1')\n")
                   .arg(PlayerProbe::SampleMovie())
                   .toUtf8());
    text.replace("port = 17171", QStringLiteral("port = %1").arg(port));
    QProcess example;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_RUNTIME_DIR", mFolder->path());
    example.setProcessEnvironment(environment);
    example.start(QStringLiteral("/usr/bin/python3"), {"-c", text});
    QVERIFY(example.waitForFinished());
    QCOMPARE(example.readAllStandardError(), QByteArray());
    const QByteArray output = example.readAllStandardOutput();
    QVERIFY2(output.startsWith("file.open\tOpen"), output);
    QVERIFY2(output.contains("\n1\n0\n1\n2\n"), output);
}

void tst_ScriptProgram::ItClosesDuringACallThatCantBeInterrupted()
{
    const quint16 port = StartWithPort();
    QVERIFY(port != 0);
    PortCaller script(port);
    PortCaller caller(port);
    script.Ask(Greeting(port));
    caller.Ask(Greeting(port));
    // In C throughout, with the interpreter's lock held, and looking at nothing.
    script.Send("eval sum(range(10 ** 13))\n");
    QTest::qWait(500);
    QCOMPARE(caller.Ask("run view.vertical\n"), QByteArray("ok: "));
    QCOMPARE(caller.Ask("stop\n"), QByteArray("ok: "));
    QTest::qWait(4000);
    QElapsedTimer clock;
    clock.start();
    caller.Send("run file.quit\n");
    QCOMPARE(WaitForEnd(20000), 0);
    QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY2(
        mErrors.contains("[WARNING] The script doesn't stop: it is in a call that can't be interrupted."),
        mErrors);
    // The settings were written all the same.
    QFile settings(mFolder->filePath("Torvalen/torvalen.ini"));
    QVERIFY(settings.open(QIODevice::ReadOnly));
    QVERIFY(settings.readAll().contains("viewerLayout=2"));
}

static const TestRegistration<tst_ScriptProgram> ScriptProgramRegistration;

#include "tst_ScriptProgram.moc"
