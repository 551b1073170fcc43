// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <thread>
#include <vector>

namespace
{

/// Collects what the log says, as a window of the GUI thread would.
class LogReceiver : public QObject
{
    Q_OBJECT

public:
    LogReceiver()
    {
        Logger* const logger = Logger::GetInstance();
        connect(logger, SIGNAL(OutputLogged(const QString&)), this, SLOT(OnOutput(const QString&)));
        connect(logger, SIGNAL(InfoLogged(const QString&)), this, SLOT(OnInfo(const QString&)));
        connect(logger, SIGNAL(WarningLogged(const QString&)), this, SLOT(OnWarning(const QString&)));
        connect(logger, SIGNAL(ErrorLogged(const QString&)), this, SLOT(OnError(const QString&)));
    }

    QStringList received;
    bool onlyOnOwnThread = true;

public Q_SLOTS:
    void OnOutput(const QString& text) { Add(QLatin1String("output "), text); }
    void OnInfo(const QString& text) { Add(QLatin1String("info "), text); }
    void OnWarning(const QString& text) { Add(QLatin1String("warning "), text); }
    void OnError(const QString& text) { Add(QLatin1String("error "), text); }

private:
    void Add(QLatin1String level, const QString& text)
    {
        received << level + text;
        onlyOnOwnThread = onlyOnOwnThread && QThread::currentThread() == thread();
    }
};

} // namespace

class tst_Logger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ThereIsOneInstance();
    void EachLevelHasItsSignal();
    void CharactersAreUtf8();
    void OtherThreadsArriveThroughTheEventLoop();
    void EachThreadKeepsItsOrder();
};

void tst_Logger::ThereIsOneInstance()
{
    Logger* other = nullptr;
    std::thread([&other] { other = Logger::GetInstance(); }).join();
    QVERIFY(other);
    QCOMPARE(Logger::GetInstance(), other);
}

void tst_Logger::EachLevelHasItsSignal()
{
    LogReceiver receiver;
    Logger* const logger = Logger::GetInstance();
    const QString text = QStringLiteral("100 %1 <b>\n");
    logger->Output(text);
    logger->Info(text);
    logger->Warning(text);
    logger->Error(text);
    logger->Error("characters");
    // On the receiver's own thread nothing waits for the event loop.
    QCOMPARE(receiver.received, (QStringList{QLatin1String("output ") + text, QLatin1String("info ") + text,
                                             QLatin1String("warning ") + text, QLatin1String("error ") + text,
                                             QStringLiteral("error characters")}));
}

void tst_Logger::CharactersAreUtf8()
{
    LogReceiver receiver;
    Logger::GetInstance()->Error("\xc3\x9c"
                                 "bung");
    Logger::GetInstance()->Error(static_cast<const char*>(nullptr));
    QCOMPARE(receiver.received, (QStringList{QStringLiteral("error \u00dcbung"), QStringLiteral("error ")}));
}

void tst_Logger::OtherThreadsArriveThroughTheEventLoop()
{
    LogReceiver receiver;
    std::thread([] { Logger::GetInstance()->Warning(QStringLiteral("from afar")); }).join();
    QVERIFY(receiver.received.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(receiver.received, QStringList{QStringLiteral("warning from afar")});
    QVERIFY(receiver.onlyOnOwnThread);
}

void tst_Logger::EachThreadKeepsItsOrder()
{
    constexpr int ThreadCount = 8;
    constexpr int MessageCount = 500;
    LogReceiver receiver;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < ThreadCount; ++thread)
    {
        threads.emplace_back(
            [thread]
            {
                Logger* const logger = Logger::GetInstance();
                for (int message = 0; message < MessageCount; ++message)
                {
                    const QString text = QStringLiteral("%1 %2").arg(thread).arg(message);
                    // Levels alternate, so that the order must hold across the four signals.
                    if (message % 4 == 0)
                        logger->Output(text);
                    else if (message % 4 == 1)
                        logger->Info(text);
                    else if (message % 4 == 2)
                        logger->Warning(text);
                    else
                        logger->Error(text);
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCoreApplication::processEvents();

    const QStringList levels = {QStringLiteral("output"), QStringLiteral("info"), QStringLiteral("warning"),
                                QStringLiteral("error")};
    QCOMPARE(receiver.received.size(), ThreadCount * MessageCount);
    QVERIFY(receiver.onlyOnOwnThread);
    std::vector<int> next(ThreadCount, 0);
    for (const QString& line : qAsConst(receiver.received))
    {
        const QStringList words = line.split(QLatin1Char(' '));
        QCOMPARE(words.size(), 3);
        int& expected = next.at(static_cast<size_t>(words[1].toInt()));
        QCOMPARE(words[2].toInt(), expected);
        QCOMPARE(words[0], levels[expected % 4]);
        ++expected;
    }
}

static const TestRegistration<tst_Logger> LoggerRegistration;

#include "tst_Logger.moc"
