// SPDX-License-Identifier: MIT
#include "console/ConsoleWindow.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

/// Messages that other threads log.
class tst_ConsoleThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mWindow.reset(); }

    void AFewMessagesComeWithTheNextEvents();
    void BurstArrivesWholeAndInOrder();
    void EachThreadsMessagesStayInOrder();
    void EventLoopRunsOnDuringABurst();
    void CallOfTheWindowsThreadIsWrittenAtOnceBehindWhatArrived();
    void BurstBringsTheWindowForwardByThePolicy_data();
    void BurstBringsTheWindowForwardByThePolicy();
    void WindowMayGoInTheMiddleOfABurst();
    void WindowMayGoByTheEventLoop();
    void AScriptStartedByAnEventIsSeenAsItLogs();
    void CarriageReturnsKeepTheirLines();
    void WhatWaitsIsClearedToo();

private:
    QPlainTextEdit* Pane() const { return mWindow->findChild<QPlainTextEdit*>("outputPane"); }
    QString Text() const { return Pane()->toPlainText(); }

    std::unique_ptr<ConsoleWindow> mWindow;
};

namespace
{

constexpr int BurstLines = 20000;

void LogFromAThread(int lines, const QString& name = QString())
{
    std::thread(
        [lines, name]
        {
            for (int i = 0; i < lines; ++i)
                Logger::GetInstance()->Output(QStringLiteral("%1%2\n").arg(name).arg(i));
        })
        .join();
}

QStringList Numbers(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QString::number(i);
    return lines << QString();
}

} // namespace

void tst_ConsoleThreads::init()
{
    Settings::RestoreDefaults();
    Settings::consoleShowOnType = 0;
    mWindow = std::make_unique<ConsoleWindow>();
}

void tst_ConsoleThreads::AFewMessagesComeWithTheNextEvents()
{
    std::thread(
        []
        {
            Logger* const logger = Logger::GetInstance();
            logger->Error(QStringLiteral("e"));
            logger->Output(QStringLiteral("o "));
            logger->Info(QStringLiteral("i"));
            logger->Warning(QStringLiteral("w"));
        })
        .join();
    QCOMPARE(Text(), QString());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(Text(), QStringLiteral("[ERROR] e\no i\n[WARNING] w\n"));
}

void tst_ConsoleThreads::BurstArrivesWholeAndInOrder()
{
    LogFromAThread(BurstLines);
    const QStringList expected = Numbers(BurstLines);
    QTRY_COMPARE_WITH_TIMEOUT(Pane()->blockCount(), expected.size(), 30000);
    QCOMPARE(Text(), expected.join(QLatin1Char('\n')));
    // What comes after it is written with the next events again.
    LogFromAThread(1);
    QTRY_COMPARE(Pane()->blockCount(), expected.size() + 1);
}

void tst_ConsoleThreads::EachThreadsMessagesStayInOrder()
{
    std::vector<std::thread> threads;
    const QStringList names = {"a", "b", "c"};
    for (const QString& name : names)
        threads.emplace_back(LogFromAThread, 3000, name);
    for (std::thread& thread : threads)
        thread.join();
    QTRY_COMPARE_WITH_TIMEOUT(Pane()->blockCount(), 9001, 30000);
    const QStringList lines = Text().split(QLatin1Char('\n'));
    for (const QString& name : names)
    {
        QStringList own;
        for (const QString& line : lines)
        {
            if (line.startsWith(name))
                own << line.mid(1);
        }
        own << QString();
        QCOMPARE(own, Numbers(3000));
    }
}

void tst_ConsoleThreads::EventLoopRunsOnDuringABurst()
{
    mWindow->resize(700, 500);
    mWindow->show();
    QTimer beat;
    QElapsedTimer sinceBeat;
    qint64 longest = 0;
    int beats = 0;
    connect(&beat, &QTimer::timeout, this,
            [&]
            {
                longest = std::max(longest, sinceBeat.restart());
                ++beats;
            });
    LogFromAThread(100000);
    QElapsedTimer whole;
    whole.start();
    sinceBeat.start();
    beat.start(1);
    QTRY_COMPARE_WITH_TIMEOUT(Pane()->blockCount(), 100001, 120000);
    const qint64 elapsed = whole.elapsed();
    qInfo("100,000 lines took %d ms; the event loop stood still for at most %d ms", int(elapsed),
          int(longest));
    // Written in one go it would have stood still for all of the time.
    QVERIFY2(beats > 10, qPrintable(QString::number(beats)));
    QVERIFY2(longest * 2 < elapsed, qPrintable(QStringLiteral("%1 of %2 ms").arg(longest).arg(elapsed)));
}

void tst_ConsoleThreads::CallOfTheWindowsThreadIsWrittenAtOnceBehindWhatArrived()
{
    LogFromAThread(BurstLines);
    QCoreApplication::sendPostedEvents();
    mWindow->Info(QStringLiteral("own"));
    QStringList expected = Numbers(BurstLines);
    expected.last() = QStringLiteral("own");
    expected << QString();
    QCOMPARE(Text(), expected.join(QLatin1Char('\n')));
}

void tst_ConsoleThreads::BurstBringsTheWindowForwardByThePolicy_data()
{
    QTest::addColumn<int>("policy");
    QTest::addColumn<bool>("withError");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("output, any output") << 4 << false << true;
    QTest::newRow("output, info") << 3 << false << false;
    QTest::newRow("an error in it, errors only") << 1 << true << true;
    QTest::newRow("an error in it, disabled") << 0 << true << false;
}

void tst_ConsoleThreads::BurstBringsTheWindowForwardByThePolicy()
{
    QFETCH(int, policy);
    QFETCH(bool, withError);
    mWindow->findChild<QComboBox*>("showOnCombo")->setCurrentIndex(policy);
    std::thread(
        [withError]
        {
            for (int i = 0; i < BurstLines; ++i)
            {
                if (withError && i == BurstLines - 10)
                    Logger::GetInstance()->Error(QStringLiteral("late"));
                else
                    Logger::GetInstance()->Output(QStringLiteral("line\n"));
            }
        })
        .join();
    QTRY_COMPARE_WITH_TIMEOUT(Pane()->blockCount(), BurstLines + 1, 30000);
    QTEST(mWindow->isVisible(), "isShown");
}

void tst_ConsoleThreads::WindowMayGoInTheMiddleOfABurst()
{
    LogFromAThread(BurstLines);
    QCoreApplication::sendPostedEvents();
    mWindow.reset();
    QCoreApplication::processEvents();
}

void tst_ConsoleThreads::WindowMayGoByTheEventLoop()
{
    LogFromAThread(BurstLines);
    QPointer<ConsoleWindow> window = mWindow.release();
    window->deleteLater();
    QCoreApplication::sendPostedEvents(window, QEvent::DeferredDelete);
    QVERIFY(!window);
    QCoreApplication::processEvents();
}

void tst_ConsoleThreads::AScriptStartedByAnEventIsSeenAsItLogs()
{
    QString seen;
    connect(mWindow.get(), &ConsoleWindow::ScriptExecuted, this,
            [this, &seen]
            {
                Logger::GetInstance()->Output(QStringLiteral("first\n"));
                QTest::qSleep(60);
                Logger::GetInstance()->Output(QStringLiteral("second\n"));
                Logger::GetInstance()->Output(QStringLiteral("third\n"));
                seen = Text();
            });
    QMetaObject::invokeMethod(mWindow.get(), "ScriptExecuteAll", Qt::QueuedConnection);
    QCoreApplication::processEvents();
    QCOMPARE(seen, QStringLiteral("first\nsecond\nthird\n"));
}

void tst_ConsoleThreads::CarriageReturnsKeepTheirLines()
{
    std::thread(
        []
        {
            for (int i = 0; i < BurstLines; ++i)
                Logger::GetInstance()->Output(QStringLiteral("line\n"));
            Logger::GetInstance()->Output(QStringLiteral("progress\r"));
            Logger::GetInstance()->Output(QStringLiteral("\nend"));
        })
        .join();
    QTRY_VERIFY(Text().endsWith(QStringLiteral("end")));
    QVERIFY(Text().endsWith(QStringLiteral("line\nprogress\n\nend")));
}

void tst_ConsoleThreads::WhatWaitsIsClearedToo()
{
    LogFromAThread(BurstLines);
    QCoreApplication::sendPostedEvents();
    QVERIFY(!Text().contains(QStringLiteral("%1\n").arg(BurstLines - 1)));
    mWindow->findChild<QPushButton*>(QStringLiteral("clearButton"))->click();
    QTest::qWait(100);
    QCOMPARE(Text(), QString());
}

static const TestRegistration<tst_ConsoleThreads> ConsoleThreadsRegistration;

#include "tst_ConsoleThreads.moc"
