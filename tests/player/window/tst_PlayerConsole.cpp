// SPDX-License-Identifier: MIT
#include "console/ConsoleWindow.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "window/CommandTable.h"
#include "window/ConsoleBinding.h"
#include "window/EarlyLog.h"
#include "window/PlayerWindow.h"

#include <QAction>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QScreen>
#include <QtTest>

#include <memory>

/// The console in the player.
class tst_PlayerConsole : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mWindow.reset(); }

    void CommandsShowAndHideIt();
    void TextOfTheInputPaneIsRun();
    void AnErrorOfAScriptBringsItForward();
    void ItFirstComesForwardInTheCorner();
    void PlaceAndPolicySurviveARestart();
    void WhatWasLoggedBeforeTheWindowIsThere();
    void OnlyTheOutermostLogHears();
    void CommandsWorkInItToo();

private:
    void Make() { mWindow = std::make_unique<PlayerWindow>(); }
    ConsoleWindow* Console() const { return mWindow->Console()->Console(); }
    QString Text() const { return Console()->findChild<QPlainTextEdit*>("outputPane")->toPlainText(); }
    QPlainTextEdit* Input() const { return Console()->findChild<QPlainTextEdit*>("inputPane"); }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerConsole::init()
{
    Settings::RestoreDefaults();
    QFile::remove(Settings::UserConfigPath());
    Make();
    mWindow->show();
}

void tst_PlayerConsole::CommandsShowAndHideIt()
{
    QVERIFY(Console()->isHidden());
    QVERIFY(Console()->isWindow());
    QAction* const action = mWindow->Commands()->Action("view.console");
    QVERIFY(!action->isChecked());
    action->trigger();
    QVERIFY(Console()->isVisible());
    QVERIFY(action->isChecked());
    QVERIFY(Input()->isHidden());
    action->trigger();
    QVERIFY(Console()->isHidden());
    // The pane for scripts brings the window with it.
    mWindow->Commands()->Run("view.scriptInput");
    QVERIFY(Console()->isVisible());
    QVERIFY(Input()->isVisible());
    mWindow->Commands()->Run("view.scriptInput");
    QVERIFY(Console()->isVisible());
    QVERIFY(Input()->isHidden());
    mWindow->close();
    QVERIFY(Console()->isHidden());
}

void tst_PlayerConsole::TextOfTheInputPaneIsRun()
{
    mWindow->Commands()->Run("view.scriptInput");
    Input()->setPlainText("first = 6\nsecond = 7\nprint(first * second)");
    QTest::keyClick(Input(), Qt::Key_Return, Qt::ControlModifier);
    QTRY_VERIFY_WITH_TIMEOUT(Text().contains("42\n"), 20000);
    // The window stays as it is while a script runs, and the next one knows what this one did.
    Input()->setPlainText("print('again', first)");
    QTest::keyClick(Input(), Qt::Key_Return, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_VERIFY_WITH_TIMEOUT(Text().contains("again 6\n"), 20000);
}

void tst_PlayerConsole::AnErrorOfAScriptBringsItForward()
{
    QVERIFY(Console()->isHidden());
    Console()->ScriptExecute("raise ValueError('told so')");
    QTRY_VERIFY_WITH_TIMEOUT(Console()->isVisible(), 20000);
    QVERIFY2(Text().contains("[ERROR] ") && Text().contains("told so"), qPrintable(Text()));
}

void tst_PlayerConsole::ItFirstComesForwardInTheCorner()
{
    Logger::GetInstance()->Error("something");
    QVERIFY(Console()->isVisible());
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    QVERIFY(Console()->geometry().center().y() > room.center().y());
    QVERIFY(room.bottomRight().x() - Console()->geometry().right() < 20);
    QVERIFY(room.bottomRight().y() - Console()->geometry().bottom() < 50);
}

void tst_PlayerConsole::PlaceAndPolicySurviveARestart()
{
    mWindow->Commands()->Run("view.console");
    Console()->setGeometry(40, 50, 456, 321);
    Console()->findChild<QComboBox*>("showOnCombo")->setCurrentIndex(3);
    // Closing the player closes the console, and keeps both.
    mWindow->close();
    mWindow.reset();
    Settings::RestoreDefaults();
    QVERIFY(Settings::consoleWindowGeometry.isEmpty());
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::consoleShowOnType, 3);
    Make();
    QCOMPARE(Console()->findChild<QComboBox*>("showOnCombo")->currentIndex(), 3);
    Logger::GetInstance()->Info("something");
    QVERIFY(Console()->isVisible());
    QCOMPARE(Console()->geometry(), QRect(40, 50, 456, 321));
    // A player that never shows it keeps the place.
    const QByteArray kept = Settings::consoleWindowGeometry;
    mWindow->close();
    Make();
    mWindow->close();
    QCOMPARE(Settings::consoleWindowGeometry, kept);
}

void tst_PlayerConsole::WhatWasLoggedBeforeTheWindowIsThere()
{
    mWindow.reset();
    Logger* const logger = Logger::GetInstance();
    logger->Info("unheard");
    auto early = std::make_unique<EarlyLog>();
    logger->Info("i");
    logger->Warning("w");
    logger->Output("o\n");
    Make();
    QVERIFY2(Text().startsWith("i\n[WARNING] w\no\n"), qPrintable(Text()));
    logger->Info("after");
    // Made again, as where OpenGL turns out unusable: nothing is missing, and nothing is there twice.
    Make();
    early->Stop();
    logger->Info("last");
    QVERIFY(EarlyLog::Messages().last().text != QLatin1String("last"));
    early.reset();
    QCOMPARE(Text().count("[WARNING] w\n"), 1);
    QCOMPARE(Text().count("after\n"), 1);
    QCOMPARE(Text().count("last\n"), 1);
}

void tst_PlayerConsole::OnlyTheOutermostLogHears()
{
    QVERIFY(EarlyLog::Messages().isEmpty());
    {
        const EarlyLog outer;
        {
            const EarlyLog inner;
            Logger::GetInstance()->Info("x");
        }
        QCOMPARE(EarlyLog::Messages().size(), 1);
        QCOMPARE(EarlyLog::Messages().first().text, QStringLiteral("x"));
        QCOMPARE(EarlyLog::Messages().first().kind, EarlyLog::Kind::Info);
    }
    QVERIFY(EarlyLog::Messages().isEmpty());
}

void tst_PlayerConsole::CommandsWorkInItToo()
{
    mWindow->Commands()->Run("view.console");
    Console()->activateWindow();
    QTRY_VERIFY(Console()->isActiveWindow());
    QTest::keyClick(Console(), Qt::Key_F12);
    QVERIFY(Console()->isHidden());
}

static const TestRegistration<tst_PlayerConsole> PlayerConsoleRegistration;

#include "tst_PlayerConsole.moc"
