// SPDX-License-Identifier: MIT
#include "scripting/CommandPort.h"

#include "host/Logger.h"
#include "scripting/PortCaller.h"
#include "scripting/ScriptEngine.h"
#include "scripting/ScriptRun.h"
#include "support/TestRegistry.h"
#include "window/CommandTable.h"
#include "window/PlayerWindow.h"
#include "window/ScriptBinding.h"

#include <QAction>
#include <QElapsedTimer>
#include <QNetworkInterface>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class tst_CommandPort : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void OnlyTheLoopbackAddressAnswers();
    void TheTokenIsForTheUserAlone();
    void TheTokenIsAnotherEachTime();
    void AFolderForOthersIsRefused();
    void ALinkInTheTokensPlaceIsNotFollowed();
    void APortInUseIsNamed();
    void TheTokenOpensTheDoor();
    void StrangersLearnNothing_data();
    void StrangersLearnNothing();
    void ASlowStrangerIsClosed();
    void ManyStrangersDontKeepTheUserOut();
    void CallersAreCounted();
    void CommandsAreListedAndRun();
    void WrongRequestsAreAnswered_data();
    void WrongRequestsAreAnswered();
    void ALineOfPythonAnswers_data();
    void ALineOfPythonAnswers();
    void AScriptOfSeveralLinesAnswers();
    void RequestsInPiecesAndInOneAreTheSame();
    void AnotherCallerStopsAScript();
    void LargeOutputIsCutOff();
    void ACallerThatGoesLeavesItsScript();
    void ThePortClosesWithThePlayer();

private:
    QByteArray Token() const;
    QByteArray Greeting() const { return "token " + Token() + '\n'; }

    std::unique_ptr<QTemporaryDir> mFolder;
    std::unique_ptr<PlayerWindow> mWindow;
    CommandPort* mPort = nullptr;
};

void tst_CommandPort::init()
{
    mFolder = std::make_unique<QTemporaryDir>();
    mWindow = std::make_unique<PlayerWindow>();
    ScriptBinding* const scripts = mWindow->Scripts();
    mPort = new CommandPort(scripts, scripts->Engine(), scripts);
    QString error;
    QVERIFY2(mPort->Listen(0, mFolder->filePath("port"), &error), qPrintable(error));
    QVERIFY(mPort->Port() != 0);
}

void tst_CommandPort::cleanup()
{
    mWindow.reset();
    mFolder.reset();
}

QByteArray tst_CommandPort::Token() const
{
    QFile file(CommandPortToken::FilePath(mFolder->filePath("port"), mPort->Port()));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

void tst_CommandPort::OnlyTheLoopbackAddressAnswers()
{
    const auto* const server = mPort->findChild<QTcpServer*>();
    QCOMPARE(server->serverAddress(), QHostAddress(QHostAddress::LocalHost));
    for (const QHostAddress& address : QNetworkInterface::allAddresses())
    {
        if (address == QHostAddress(QHostAddress::LocalHost))
            continue;
        QTcpSocket socket;
        socket.connectToHost(address, mPort->Port());
        QVERIFY2(!socket.waitForConnected(500), qPrintable(address.toString()));
    }
}

void tst_CommandPort::TheTokenIsForTheUserAlone()
{
    const QByteArray folder = mFolder->filePath("port").toLocal8Bit();
    const QByteArray path =
        CommandPortToken::FilePath(mFolder->filePath("port"), mPort->Port()).toLocal8Bit();
    struct stat info = {};
    QCOMPARE(::stat(folder.constData(), &info), 0);
    QCOMPARE(info.st_mode & 0777u, 0700u);
    QCOMPARE(::stat(path.constData(), &info), 0);
    QVERIFY(S_ISREG(info.st_mode));
    QCOMPARE(info.st_mode & 0777u, 0600u);
    QCOMPARE(info.st_uid, ::geteuid());
    QCOMPARE(Token().size(), 64);
    QCOMPARE(QByteArray::fromHex(Token()).size(), 32);
}

void tst_CommandPort::TheTokenIsAnotherEachTime()
{
    const QByteArray first = Token();
    cleanup();
    init();
    QCOMPARE(Token().size(), first.size());
    QVERIFY(Token() != first);
}

void tst_CommandPort::AFolderForOthersIsRefused()
{
    const QString folder = mFolder->filePath("shared");
    QVERIFY(QDir().mkdir(folder));
    QCOMPARE(::chmod(folder.toLocal8Bit().constData(), 0750), 0);
    QVERIFY(QFile::link(mFolder->filePath("port"), mFolder->filePath("link")));
    for (const QString& wrong : {folder, mFolder->filePath("link")})
    {
        CommandPort other(mWindow->Scripts(), mWindow->Scripts()->Engine());
        QString error;
        QVERIFY(!other.Listen(0, wrong, &error));
        QVERIFY2(error.endsWith(QStringLiteral("%1 is no folder that only you can enter").arg(wrong)),
                 qPrintable(error));
        QCOMPARE(other.Port(), quint16(0));
    }
}

void tst_CommandPort::ALinkInTheTokensPlaceIsNotFollowed()
{
    const QString victim = mFolder->filePath("victim");
    QFile file(victim);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    const QString place = CommandPortToken::FilePath(mFolder->filePath("port"), 1);
    QVERIFY(QFile::link(victim, place));
    CommandPortToken token;
    QString error;
    QVERIFY(token.Create(mFolder->filePath("port"), 1, &error));
    QVERIFY(!QFileInfo(place).isSymLink());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("precious"));
}

void tst_CommandPort::APortInUseIsNamed()
{
    const QByteArray token = Token();
    CommandPort other(mWindow->Scripts(), mWindow->Scripts()->Engine());
    QString error;
    QVERIFY(!other.Listen(mPort->Port(), mFolder->filePath("port"), &error));
    QVERIFY2(error.startsWith(QStringLiteral("The command port %1 can't be opened: ").arg(mPort->Port())),
             qPrintable(error));
    // The player that has the port keeps its token.
    QCOMPARE(Token(), token);
}

void tst_CommandPort::TheTokenOpensTheDoor()
{
    PortCaller caller(mPort->Port());
    QCOMPARE(caller.Ask(Greeting()), QByteArray("ok: "));
    QCOMPARE(mPort->CallerCount(), 1);
    QVERIFY(caller.IsOpen());
}

void tst_CommandPort::StrangersLearnNothing_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("no token") << QByteArray("list\n");
    QTest::newRow("wrong token") << QByteArray("token ") + QByteArray(64, '0') + "\nrun view.horizontal\n";
    QTest::newRow("short token") << QByteArray("token 1\nrun view.horizontal\n");
    QTest::newRow("empty token") << QByteArray("token \nrun view.horizontal\n");
    QTest::newRow("bare word") << QByteArray("token\nrun view.horizontal\n");
    QTest::newRow("empty line") << QByteArray("\n");
    QTest::newRow("browser") << QByteArray(
        "POST / HTTP/1.1\r\nHost: localhost\r\n\r\nrun view.horizontal\r\n");
    QTest::newRow("long line") << QByteArray(1 << 20, 'x');
    QTest::newRow("script") << QByteArray("script 100000\nimport torvalen");
    QTest::newRow("zeros") << QByteArray(64, '\0') + '\n';
}

void tst_CommandPort::StrangersLearnNothing()
{
    QFETCH(QByteArray, words);
    ScriptLog log;
    PortCaller caller(mPort->Port());
    caller.Send(words);
    QCOMPARE(caller.WaitForEnd(), QByteArray());
    QTRY_COMPARE(mPort->CallerCount(), 0);
    QVERIFY(!mWindow->Commands()->Action("view.horizontal")->isChecked());
    QVERIFY(!mWindow->Scripts()->Engine()->IsRunning());
    QVERIFY(log.Lines().isEmpty());
}

void tst_CommandPort::ASlowStrangerIsClosed()
{
    PortCaller silent(mPort->Port());
    PortCaller slow(mPort->Port());
    QElapsedTimer clock;
    clock.start();
    // A letter at a time, as often as one likes, wins no time.
    const QByteArray words = Greeting();
    for (int at = 0;
         at < words.size() - 1 && clock.elapsed() < 2 * CommandPort::TokenTimeout && slow.IsOpen(); ++at)
    {
        slow.Send(words.mid(at, 1));
        QTest::qWait(100);
    }
    QCOMPARE(slow.WaitForEnd(), QByteArray());
    QCOMPARE(silent.WaitForEnd(), QByteArray());
    QVERIFY2(clock.elapsed() > CommandPort::TokenTimeout / 2, qPrintable(QString::number(clock.elapsed())));
    QVERIFY2(clock.elapsed() < CommandPort::TokenTimeout + 2000,
             qPrintable(QString::number(clock.elapsed())));
}

void tst_CommandPort::ManyStrangersDontKeepTheUserOut()
{
    std::vector<std::unique_ptr<PortCaller>> strangers;
    for (int count = 0; count < 3 * CommandPort::MaximumStrangers; ++count)
    {
        strangers.push_back(std::make_unique<PortCaller>(mPort->Port()));
        QTest::qWait(1);
    }
    PortCaller user(mPort->Port());
    QCOMPARE(user.Ask(Greeting()), QByteArray("ok: "));
    QVERIFY(mPort->CallerCount() <= CommandPort::MaximumStrangers + 1);
    // Those that waited longest have gone.
    QCOMPARE(strangers.front()->WaitForEnd(), QByteArray());
    QVERIFY(strangers.back()->IsOpen());
}

void tst_CommandPort::CallersAreCounted()
{
    std::vector<std::unique_ptr<PortCaller>> callers;
    for (int count = 0; count < CommandPort::MaximumCallers; ++count)
    {
        callers.push_back(std::make_unique<PortCaller>(mPort->Port()));
        QCOMPARE(callers.back()->Ask(Greeting()), QByteArray("ok: "));
    }
    PortCaller tooMany(mPort->Port());
    QCOMPARE(tooMany.Ask(Greeting()), QByteArray("error: there are too many callers"));
    QCOMPARE(tooMany.WaitForEnd(), QByteArray());
    callers.pop_back();
    QTRY_COMPARE(mPort->CallerCount(), CommandPort::MaximumCallers - 1);
    PortCaller next(mPort->Port());
    QCOMPARE(next.Ask(Greeting()), QByteArray("ok: "));
}

void tst_CommandPort::CommandsAreListedAndRun()
{
    PortCaller caller(mPort->Port());
    caller.Ask(Greeting());
    const QByteArray list = caller.Ask("list\n");
    QVERIFY2(list.startsWith("ok: file.open\tOpen"), list);
    QCOMPARE(list.count('\n'), mWindow->Commands()->Keys()->GetKeySequences().size());
    QVERIFY(list.contains("\nview.horizontal\tViewers Side by Side\n"));
    QCOMPARE(caller.Ask("run view.horizontal\r\n"), QByteArray("ok: "));
    QVERIFY(mWindow->Commands()->Action("view.horizontal")->isChecked());
    QCOMPARE(caller.Ask("run view.diagonal\n"), QByteArray("error: there is no command \"view.diagonal\""));
    QVERIFY(caller.IsOpen());
}

void tst_CommandPort::WrongRequestsAreAnswered_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("word") << QByteArray("dance now\n") << QByteArray("there is no request \"dance\"");
    QTest::newRow("bytes") << QByteArray("\x01\xff\n") << QByteArray("there is no request \"\\01\\FF\"");
    QTest::newRow("run") << QByteArray("run\n") << QByteArray("run needs an argument");
    QTest::newRow("list") << QByteArray("list all\n") << QByteArray("list takes no argument");
    QTest::newRow("long line") << "eval " + QByteArray(70000, ' ') + "1\n"
                               << QByteArray("a line is too long");
    QTest::newRow("no size") << QByteArray("script -1\n")
                             << QByteArray("the size of the script is no number");
    QTest::newRow("large script") << QByteArray("script 1048577\n") << QByteArray("the script is too large");
    QTest::newRow("huge script") << QByteArray("script 18446744073709551617\n")
                                 << QByteArray("the size of the script is no number");
}

void tst_CommandPort::WrongRequestsAreAnswered()
{
    QFETCH(QByteArray, words);
    QFETCH(QByteArray, answer);
    PortCaller caller(mPort->Port());
    caller.Ask(Greeting());
    QCOMPARE(caller.Ask(words), "error: " + answer);
    QCOMPARE(caller.WaitForEnd(), QByteArray());
}

void tst_CommandPort::ALineOfPythonAnswers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("value") << QByteArray("1 + 1") << QByteArray("ok: 2");
    QTest::newRow("nothing") << QByteArray("x = 1") << QByteArray("ok: ");
    QTest::newRow("output") << QByteArray("print('a'); print('b', end='')") << QByteArray("ok: a\nb\n");
    QTest::newRow("both") << QByteArray("print('a'); 5") << QByteArray("ok: a\n5");
    QTest::newRow("letters") << QByteArray("'\xc3\x9c'") << QByteArray("ok: '\xc3\x9c'");
    QTest::newRow("player") << QByteArray("import torvalen; torvalen.layout('vertical')")
                            << QByteArray("ok: 'vertical'");
    QTest::newRow("log") << QByteArray("import torvalen; torvalen.info('i'); torvalen.error('e')")
                         << QByteArray("ok: i\ne\n");
}

void tst_CommandPort::ALineOfPythonAnswers()
{
    QFETCH(QByteArray, line);
    PortCaller caller(mPort->Port());
    caller.Ask(Greeting());
    QTEST(caller.Ask("eval " + line + '\n'), "answer");
}

void tst_CommandPort::AScriptOfSeveralLinesAnswers()
{
    PortCaller caller(mPort->Port());
    caller.Ask(Greeting());
    const QByteArray script = "def f(n):\n    return n * 2\n\nprint(f(4))\nf(1) / 0\n";
    const QByteArray answer = caller.Ask("script " + QByteArray::number(script.size()) + '\n' + script);
    QVERIFY2(answer.startsWith("error: 8\nTraceback (most recent call last):\n"), answer);
    QVERIFY2(answer.contains("line 5, in <module>\n    f(1) / 0\n"), answer);
    QVERIFY2(answer.endsWith("ZeroDivisionError: division by zero"), answer);
    // The connection and what was named go on.
    QCOMPARE(caller.Ask("eval f(3)\n"), QByteArray("ok: 6"));
}

void tst_CommandPort::RequestsInPiecesAndInOneAreTheSame()
{
    const QByteArray all = Greeting() + "eval 1\nscript 3\n2+2run view.vertical\neval 4\n";
    PortCaller atOnce(mPort->Port());
    const QList<QByteArray> answers{atOnce.Ask(all), atOnce.Ask(""), atOnce.Ask(""), atOnce.Ask(""),
                                    atOnce.Ask("")};
    QCOMPARE(answers, (QList<QByteArray>{"ok: ", "ok: 1", "ok: 4", "ok: ", "ok: 4"}));
    PortCaller inPieces(mPort->Port());
    for (const char each : all)
    {
        inPieces.Send(QByteArray(1, each));
        QTest::qWait(1);
    }
    for (const QByteArray& answer : answers)
        QCOMPARE(inPieces.Ask(""), answer);
}

void tst_CommandPort::AnotherCallerStopsAScript()
{
    PortCaller first(mPort->Port());
    PortCaller second(mPort->Port());
    first.Ask(Greeting());
    second.Ask(Greeting());
    first.Send("eval while True: pass\n");
    QTest::qWait(200);
    QCOMPARE(second.Ask("stop\n"), QByteArray("ok: "));
    const QByteArray answer = first.Ask("");
    QCOMPARE(answer, QByteArray("error: Stopped in <port>, line 1"));
}

void tst_CommandPort::LargeOutputIsCutOff()
{
    PortCaller caller(mPort->Port());
    caller.Ask(Greeting());
    const QByteArray answer = caller.Ask("eval for i in range(30): print('x' * 99999)\n", 20000);
    QVERIFY2(answer.startsWith("ok: xxx"), answer.left(100));
    QVERIFY2(answer.size() > 500000 && answer.size() < 2000000, QByteArray::number(answer.size()));
    QCOMPARE(caller.Ask("eval 'y' * 10000000\n", 20000).size(), CommandPort::LongestAnswer + 4);
}

void tst_CommandPort::ACallerThatGoesLeavesItsScript()
{
    ScriptLog log;
    {
        PortCaller caller(mPort->Port());
        caller.Ask(Greeting());
        caller.Send("eval import time; time.sleep(0.3); print('done')\n");
        QTest::qWait(100);
    }
    QTRY_COMPARE(log.Lines("out"), QStringList("done"));
    QCOMPARE(mPort->CallerCount(), 0);
}

void tst_CommandPort::ThePortClosesWithThePlayer()
{
    PortCaller caller(mPort->Port());
    caller.Ask(Greeting());
    PortCaller stranger(mPort->Port());
    caller.Send("eval while True: pass\n");
    QTest::qWait(100);
    const QString tokenPath = CommandPortToken::FilePath(mFolder->filePath("port"), mPort->Port());
    QVERIFY(QFile::exists(tokenPath));
    mWindow.reset();
    QCOMPARE(caller.WaitForEnd(), QByteArray());
    QCOMPARE(stranger.WaitForEnd(), QByteArray());
    QVERIFY(!QFile::exists(tokenPath));
}

static const TestRegistration<tst_CommandPort> CommandPortRegistration;

#include "tst_CommandPort.moc"
