// SPDX-License-Identifier: MIT
#include "scripting/ScriptEngine.h"

#include "scripting/PythonThread.h"
#include "scripting/ScriptRun.h"
#include "support/TestRegistry.h"
#include "window/PlayerWindow.h"
#include "window/ScriptBinding.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using Outcome = ScriptResult::Outcome;

class tst_ScriptEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void OutputArrivesInLines();
    void AThousandLinesArriveInOrder();
    void BothStreamsAndTheLogKeepTheirOrder();
    void AnUnfinishedLineArrivesWithTheEnd();
    void OddTextSurvives();
    void AnErrorBringsItsTraceback();
    void AnErrorOfSyntaxNamesItsPlace();
    void LeavingTellsTheCode_data();
    void LeavingTellsTheCode();
    void ScriptsShareTheirNames();
    void AnotherPlayerBeginsAnew();
    void TheConsoleShowsTheLastValue();
    void InputIsAtItsEnd();
    void AFileHasItsFolderAndArguments();
    void AFileThatIsNotThereIsNamed();
    void ScriptsRunOneAfterTheOther();
    void ThreadsOfAScriptReachThePlayer();
    void TheWindowStaysAliveDuringAnEndlessLoop();
    void MuchOutputLeavesTheWindowAlive();

private:
    ScriptResult Run(const QString& text) { return ScriptRun::Run(mEngine, text); }

    std::unique_ptr<PlayerWindow> mWindow;
    std::unique_ptr<ScriptLog> mLog;
    ScriptEngine* mEngine = nullptr;
};

void tst_ScriptEngine::init()
{
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->show();
    mLog = std::make_unique<ScriptLog>();
    mEngine = mWindow->Scripts()->Engine();
}

void tst_ScriptEngine::cleanup()
{
    mWindow.reset();
    mLog.reset();
    QVERIFY(!PythonThread::IsStuck());
    QVERIFY(QApplication::allWidgets().isEmpty());
}

void tst_ScriptEngine::OutputArrivesInLines()
{
    QCOMPARE(Run("print('one')\nprint('two', 3)").outcome, Outcome::Finished);
    QCOMPARE(mLog->Lines(), (QStringList{"out: one", "out: two 3"}));
}

void tst_ScriptEngine::AThousandLinesArriveInOrder()
{
    QCOMPARE(Run("for i in range(1000): print('line', i)").exitCode, 0);
    QStringList expected;
    for (int line = 0; line < 1000; ++line)
        expected << QStringLiteral("line %1").arg(line);
    QCOMPARE(mLog->Lines("out"), expected);
}

void tst_ScriptEngine::BothStreamsAndTheLogKeepTheirOrder()
{
    Run("import sys, torvalen\n"
        "print('a')\n"
        "print('b', file=sys.stderr)\n"
        "print('c', end='')\n"
        "sys.stderr.write('d\\ne\\n')\n"
        "torvalen.info('f')\n"
        "print('g')\n"
        "torvalen.warning('h')\n"
        "torvalen.error('i')\n"
        "torvalen.run('view.horizontal')\n"
        "print('j')");
    QCOMPARE(mLog->Lines(), (QStringList{"out: a", "error: b", "out: c", "error: d", "error: e", "info: f",
                                         "out: g", "warning: h", "error: i", "out: j"}));
}

void tst_ScriptEngine::AnUnfinishedLineArrivesWithTheEnd()
{
    Run("import sys\nprint('now', end='', flush=True)\nprint(' and then', end='')");
    QCOMPARE(mLog->Lines(), (QStringList{"out: now and then"}));
}

void tst_ScriptEngine::OddTextSurvives()
{
    const ScriptResult result =
        Run(QString::fromUtf8("print('Übung \\ud83c\\udfac \U0001F3AC', '\\udc80', '\\0x')"));
    QCOMPARE(result.error, QString());
    QCOMPARE(mLog->Lines("out"), QStringList(QString::fromUtf8("Übung ?? \U0001F3AC ? ") + QChar(0) + "x"));
}

void tst_ScriptEngine::AnErrorBringsItsTraceback()
{
    const int number = mEngine->Run("def inner():\n    return 1 / 0\n\ninner()\n", "<mine>");
    const ScriptResult result = ScriptRun::WaitFor(mEngine, number);
    QCOMPARE(result.outcome, Outcome::Failed);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(mLog->Lines("error").size(), 1);
    const QString trace = mLog->Lines("error").first();
    QCOMPARE(trace, result.error);
    QVERIFY2(trace.startsWith("Traceback (most recent call last):\n  File \"<mine>\", line 4, in <module>\n"
                              "    inner()\n  File \"<mine>\", line 2, in inner\n    return 1 / 0\n"),
             qPrintable(trace));
    QVERIFY2(trace.endsWith("\nZeroDivisionError: division by zero"), qPrintable(trace));
}

void tst_ScriptEngine::AnErrorOfSyntaxNamesItsPlace()
{
    const ScriptResult result = Run("a = 1\nb = = 2\n");
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.error.contains("line 2\n    b = = 2\n        ^\n"), qPrintable(result.error));
    QVERIFY2(!result.error.contains("<torvalen>"), qPrintable(result.error));
}

void tst_ScriptEngine::LeavingTellsTheCode_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("error");
    QTest::newRow("end") << "1" << 0 << "";
    QTest::newRow("exit") << "import sys; sys.exit()" << 0 << "";
    QTest::newRow("exit 7") << "import sys; sys.exit(7)" << 7 << "";
    QTest::newRow("exit with a text") << "import sys; sys.exit('no media')" << 1 << "no media";
    QTest::newRow("interrupt of its own") << "raise KeyboardInterrupt" << 1 << "KeyboardInterrupt";
    QTest::newRow("error without words")
        << "class E(Exception):\n    def __str__(self): raise ValueError\nraise E" << 1
        << "E: <exception str() failed>";
    QTest::newRow("deep recursion") << "def f(): f()\nf()" << 1
                                    << "RecursionError: maximum recursion depth exceeded";
}

void tst_ScriptEngine::LeavingTellsTheCode()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    const ScriptResult result = Run(text);
    QTEST(result.exitCode, "code");
    QVERIFY2(error.isEmpty() || result.error.endsWith(error), qPrintable(result.error));
    QCOMPARE(result.error.isEmpty(), error.isEmpty());
}

void tst_ScriptEngine::ScriptsShareTheirNames()
{
    Run("import math\nradius = 2\ndef area(): return math.pi * radius ** 2");
    QCOMPARE(Run("radius = 1\narea()").value, QStringLiteral("3.141592653589793"));
    // A script that fails leaves what it had named before.
    Run("left = 5\nraise ValueError");
    QCOMPARE(Run("left").value, QStringLiteral("5"));
    QCOMPARE(Run("__name__").value, QStringLiteral("'__main__'"));
}

void tst_ScriptEngine::AnotherPlayerBeginsAnew()
{
    QCOMPARE(Run("kept = 1\nkept").value, QStringLiteral("1"));
    cleanup();
    init();
    QVERIFY(Run("kept").error.contains("NameError: name 'kept' is not defined"));
}

void tst_ScriptEngine::TheConsoleShowsTheLastValue()
{
    QSignalSpy finished(mEngine, &ScriptEngine::Finished);
    mEngine->Execute("x = [1, 'a']\nx");
    mEngine->Execute("None");
    mEngine->Execute("x = 3");
    mEngine->Execute("_");
    mEngine->Execute("");
    QTRY_COMPARE(finished.size(), 5);
    QCOMPARE(mLog->Lines(), (QStringList{"out: [1, 'a']", "out: [1, 'a']"}));
}

void tst_ScriptEngine::InputIsAtItsEnd()
{
    QVERIFY(Run("input()").error.endsWith("EOFError: EOF when reading a line"));
}

void tst_ScriptEngine::AFileHasItsFolderAndArguments()
{
    QTemporaryDir folder;
    const auto write = [&](const char* name, const QByteArray& text)
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write("beside.py", "word = 'found'\n");
    // In an encoding of its own, as a file may say.
    write("main.py",
          "# -*- coding: latin-1 -*-\nimport sys, beside\nprint(beside.word, sys.argv[1:], '\xdc')\n"
          "print(__file__ == sys.argv[0], __name__)\nbeside.missing\n");
    const QString path = folder.filePath("main.py");
    const ScriptResult result = ScriptRun::WaitFor(mEngine, mEngine->RunFile(path, {"a b", "c"}));
    QCOMPARE(mLog->Lines("out"), (QStringList{QString::fromUtf8("found ['a b', 'c'] Ü"), "True __main__"}));
    QVERIFY2(result.error.contains(
                 QStringLiteral("File \"%1\", line 5, in <module>\n    beside.missing\n").arg(path)),
             qPrintable(result.error));
}

void tst_ScriptEngine::AFileThatIsNotThereIsNamed()
{
    const ScriptResult result = ScriptRun::WaitFor(mEngine, mEngine->RunFile("/nowhere/script.py"));
    QCOMPARE(result.outcome, Outcome::NotRun);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(mLog->Lines("error"),
             QStringList("/nowhere/script.py can't be read: No such file or directory"));
}

void tst_ScriptEngine::ScriptsRunOneAfterTheOther()
{
    QSignalSpy running(mEngine, &ScriptEngine::RunningChanged);
    QSignalSpy finished(mEngine, &ScriptEngine::Finished);
    QVERIFY(!mEngine->IsRunning());
    mEngine->Run("import time; time.sleep(0.05); print(1)");
    mEngine->Run("print(2)");
    QVERIFY(mEngine->IsRunning());
    QTRY_COMPARE(finished.size(), 2);
    QCOMPARE(finished.at(0).at(0).toInt() + 1, finished.at(1).at(0).toInt());
    QTRY_COMPARE(running.size(), 2);
    QVERIFY(!mEngine->IsRunning());
    QCOMPARE(mLog->Lines("out"), (QStringList{"1", "2"}));
}

void tst_ScriptEngine::ThreadsOfAScriptReachThePlayer()
{
    const ScriptResult result = Run("import threading, torvalen\n"
                                    "found = []\n"
                                    "def ask():\n"
                                    "    for i in range(50): found.append(torvalen.layout('vertical'))\n"
                                    "threads = [threading.Thread(target=ask) for i in range(4)]\n"
                                    "for each in threads: each.start()\n"
                                    "for each in threads: each.join()\n"
                                    "found == ['vertical'] * 200");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.value, QStringLiteral("True"));
}

void tst_ScriptEngine::TheWindowStaysAliveDuringAnEndlessLoop()
{
    const int number = mEngine->Run("while True: pass");
    QTest::qWait(100);
    QElapsedTimer clock;
    clock.start();
    int turns = 0;
    qint64 longest = 0;
    while (clock.elapsed() < 500)
    {
        const qint64 begin = clock.elapsed();
        mWindow->repaint();
        QTest::qWait(5);
        longest = std::max(longest, clock.elapsed() - begin);
        ++turns;
    }
    QVERIFY2(turns > 3, qPrintable(QString::number(turns)));
    QVERIFY2(longest < 3000, qPrintable(QString::number(longest)));
    mEngine->Stop();
    QCOMPARE(ScriptRun::WaitFor(mEngine, number).outcome, Outcome::Stopped);
}

void tst_ScriptEngine::MuchOutputLeavesTheWindowAlive()
{
    const int number = mEngine->Run("for i in range(100000): print('a line of output, number', i)");
    QElapsedTimer clock;
    clock.start();
    // Between its events the window never waits long for the log.
    bool ended = false;
    qint64 longest = 0;
    connect(mEngine, &ScriptEngine::Finished, mLog.get(),
            [&](int which, const ScriptResult&) { ended = which == number; });
    while (!ended && clock.elapsed() < 30000)
    {
        const qint64 begin = clock.elapsed();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
        longest = std::max(longest, clock.elapsed() - begin);
    }
    QVERIFY(ended);
    QCOMPARE(mLog->Lines("out").size(), 100000);
    QCOMPARE(mLog->Lines("out").last(), QStringLiteral("a line of output, number 99999"));
    QVERIFY2(longest < 3000, qPrintable(QString::number(longest)));
}

static const TestRegistration<tst_ScriptEngine> ScriptEngineRegistration;

#include "tst_ScriptEngine.moc"
