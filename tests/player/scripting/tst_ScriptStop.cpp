// SPDX-License-Identifier: MIT
#include "scripting/PythonThread.h"
#include "scripting/ScriptEngine.h"
#include "scripting/ScriptRun.h"
#include "support/TestRegistry.h"
#include "window/CommandTable.h"
#include "window/PlayerWindow.h"
#include "window/ScriptBinding.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

using Outcome = ScriptResult::Outcome;

class tst_ScriptStop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void AScriptIsStopped_data();
    void AScriptIsStopped();
    void TheLogTellsWhereItStopped();
    void StoppingDropsThoseThatWait();
    void StoppingBeforeTheBeginning();
    void StoppingNothingChangesNothing();
    void AScriptAfterAStopRuns();
    void TheCommandStops();
    void AScriptThatNeedsThePlayerIsStopped();
    void ThreadsOfAStoppedScriptAreRefused();
    void ThePlayerClosesWhileAScriptRuns_data();
    void ThePlayerClosesWhileAScriptRuns();
    void AScriptMayCloseThePlayer();

private:
    std::unique_ptr<PlayerWindow> mWindow;
    std::unique_ptr<ScriptLog> mLog;
    ScriptEngine* mEngine = nullptr;
};

void tst_ScriptStop::init()
{
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->show();
    mLog = std::make_unique<ScriptLog>();
    mEngine = mWindow->Scripts()->Engine();
}

void tst_ScriptStop::cleanup()
{
    mWindow.reset();
    mLog.reset();
    QVERIFY(!PythonThread::IsStuck());
}

namespace
{

void AddEndlessScripts()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("loop") << "while True: pass";
    QTest::newRow("loop of calls") << "def f(n):\n    return n + 1\nn = 0\nwhile True: n = f(n)";
    QTest::newRow("sleep") << "import time\ntime.sleep(1000)";
    QTest::newRow("lock") << "import threading\nlock = threading.Lock()\nlock.acquire()\nlock.acquire()";
    QTest::newRow("queue") << "import queue\nqueue.Queue().get()";
    QTest::newRow("thread") << "import threading, time\n"
                               "thread = threading.Thread(target=time.sleep, args=(1000,), daemon=True)\n"
                               "thread.start()\nthread.join()";
    QTest::newRow("program") << "import subprocess\nsubprocess.run(['sleep', '1000'])";
    QTest::newRow("socket") << "import socket\ns = socket.socket()\ns.bind(('127.0.0.1', 0))\ns.listen()\n"
                               "s.accept()";
    QTest::newRow("output") << "while True: print('on and on')";
    QTest::newRow("calls") << "import torvalen\nwhile True: torvalen.layout()";
#ifndef TORVALEN_SANITIZED
    // Python's own matcher loses a few bytes where it is interrupted.
    QTest::newRow("expression in C") << "import re\nre.match('(a*)*b', 'a' * 64)";
#endif
    QTest::newRow("large number") << "x = 7 ** (10 ** 9)";
    QTest::newRow("sort in C with a key") << "sorted(range(10 ** 6), key=lambda x: sum(range(1000)))";
    QTest::newRow("caught once") << "while True:\n    try:\n        while True: pass\n"
                                    "    except KeyboardInterrupt: pass\n    break\nwhile True: pass";
    QTest::newRow("always caught") << "import time\nwhile True:\n    try: time.sleep(1)\n    except: pass";
    QTest::newRow("caught in a loop") << "n = 0\nwhile True:\n    try:\n        n += 1\n"
                                         "    except BaseException:\n        continue";
    QTest::newRow("goes on at the end") << "try:\n    while True: pass\nfinally:\n    while True: pass";
}

} // namespace

void tst_ScriptStop::AScriptIsStopped_data()
{
    AddEndlessScripts();
}

void tst_ScriptStop::AScriptIsStopped()
{
    QFETCH(QString, text);
    const int number = mEngine->Run(text);
    QTest::qWait(150);
    QElapsedTimer clock;
    clock.start();
    mEngine->Stop();
    const ScriptResult result = ScriptRun::WaitFor(mEngine, number);
    QCOMPARE(result.outcome, Outcome::Stopped);
    QCOMPARE(result.exitCode, 130);
    QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(mLog->Lines("error").isEmpty());
}

void tst_ScriptStop::TheLogTellsWhereItStopped()
{
    const int number = mEngine->Run("import time\n\ntime.sleep(1000)", "<mine>");
    QTest::qWait(200);
    mEngine->Stop();
    ScriptRun::WaitFor(mEngine, number);
    QCOMPARE(mLog->Lines(), QStringList("warning: Stopped in <mine>, line 3"));
}

void tst_ScriptStop::StoppingDropsThoseThatWait()
{
    QSignalSpy finished(mEngine, &ScriptEngine::Finished);
    mEngine->Run("while True: pass");
    mEngine->Run("print('never')");
    QTest::qWait(100);
    mEngine->Stop();
    QTRY_COMPARE(finished.size(), 2);
    QCOMPARE(finished.at(0).at(0).toInt(), 2);
    QCOMPARE(finished.at(0).at(1).value<ScriptResult>().outcome, Outcome::NotRun);
    QCOMPARE(finished.at(1).at(1).value<ScriptResult>().outcome, Outcome::Stopped);
    QVERIFY(mLog->Lines("out").isEmpty());
}

void tst_ScriptStop::StoppingBeforeTheBeginning()
{
    QSignalSpy finished(mEngine, &ScriptEngine::Finished);
    mEngine->Run("print('never')");
    mEngine->Stop();
    QTRY_COMPARE(finished.size(), 1);
    QTRY_VERIFY(!mEngine->IsRunning());
    QCOMPARE(ScriptRun::Run(mEngine, "1 + 1").value, QStringLiteral("2"));
    QVERIFY(mLog->Lines().isEmpty());
}

void tst_ScriptStop::StoppingNothingChangesNothing()
{
    mEngine->Stop();
    QTest::qWait(300);
    QCOMPARE(ScriptRun::Run(mEngine, "import time; time.sleep(0.4); 5").value, QStringLiteral("5"));
    mEngine->Stop();
    QCOMPARE(ScriptRun::Run(mEngine, "6").value, QStringLiteral("6"));
    QVERIFY(mLog->Lines().isEmpty());
}

void tst_ScriptStop::AScriptAfterAStopRuns()
{
    for (int round = 0; round < 20; ++round)
    {
        const int number = mEngine->Run("kept = 0\nwhile True: kept += 1");
        // At a different moment each time.
        QTest::qWait(round * 3);
        mEngine->Stop();
        const Outcome outcome = ScriptRun::WaitFor(mEngine, number).outcome;
        QVERIFY(outcome == Outcome::Stopped || (round == 0 && outcome == Outcome::NotRun));
        QCOMPARE(ScriptRun::Run(mEngine, "sum(range(100000))").value, QStringLiteral("4999950000"));
    }
}

void tst_ScriptStop::TheCommandStops()
{
    const int number = mEngine->Run("while True: pass");
    QTest::qWait(50);
    QVERIFY(mWindow->Commands()->Run("script.stop"));
    QCOMPARE(ScriptRun::WaitFor(mEngine, number).outcome, Outcome::Stopped);
}

void tst_ScriptStop::AScriptThatNeedsThePlayerIsStopped()
{
    // The call waits for the player, which waits for the user.
    QTimer::singleShot(300, mEngine, &ScriptEngine::Stop);
    bool blocked = true;
    QTimer::singleShot(150, this,
                       [&]
                       {
                           QEventLoop loop;
                           QTimer::singleShot(1500, &loop, &QEventLoop::quit);
                           loop.exec();
                           blocked = false;
                       });
    const ScriptResult result = ScriptRun::Run(mEngine, "import torvalen\ntorvalen.wait_until_settled()\n"
                                                        "while True: torvalen.wait_until_settled(1)");
    QCOMPARE(result.outcome, Outcome::Stopped);
    QTRY_VERIFY(!blocked);
}

void tst_ScriptStop::ThreadsOfAStoppedScriptAreRefused()
{
    const int number = mEngine->Run("import threading, torvalen\n"
                                    "ended = threading.Event()\n"
                                    "def ask():\n"
                                    "    try:\n"
                                    "        while True: torvalen.layout()\n"
                                    "    except SystemExit: ended.set()\n"
                                    "threading.Thread(target=ask).start()\n"
                                    "while True: pass");
    QTest::qWait(200);
    mEngine->Stop();
    QCOMPARE(ScriptRun::WaitFor(mEngine, number).outcome, Outcome::Stopped);
    QCOMPARE(ScriptRun::Run(mEngine, "ended.wait(5)").value, QStringLiteral("True"));
}

void tst_ScriptStop::ThePlayerClosesWhileAScriptRuns_data()
{
    AddEndlessScripts();
}

void tst_ScriptStop::ThePlayerClosesWhileAScriptRuns()
{
    QFETCH(QString, text);
    mEngine->Run(text);
    QTest::qWait(150);
    QElapsedTimer clock;
    clock.start();
    mWindow.reset();
    QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!PythonThread::IsStuck());
}

void tst_ScriptStop::AScriptMayCloseThePlayer()
{
    QCOMPARE(ScriptRun::Run(mEngine, "import torvalen\ntorvalen.run('file.quit')\ntorvalen.layout()").error,
             QString());
    QVERIFY(!mWindow->isVisible());
}

static const TestRegistration<tst_ScriptStop> ScriptStopRegistration;

#include "tst_ScriptStop.moc"
