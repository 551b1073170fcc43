// SPDX-License-Identifier: MIT
#include "console/ConsoleWindow.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QPlainTextEdit>
#include <QtTest>

#include <memory>

/// What the window asks to be run.
class tst_ConsoleScripts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ChordsRunTheirPart_data();
    void ChordsRunTheirPart();
    void ChordsWorkThroughTheInputPane_data();
    void ChordsWorkThroughTheInputPane();
    void OtherKeysLeaveTheAcceptedFlagAlone_data();
    void OtherKeysLeaveTheAcceptedFlagAlone();
    void ReturnInTheInputPaneInsertsALine();
    void SelectionIsRunAsItStands();
    void LineIsRunWithoutItsBlanks_data();
    void LineIsRunWithoutItsBlanks();
    void ParagraphSeparatorsBecomeLineEnds();
    void EmptyTextIsRunToo();

private:
    void Select(int from, int to);

    std::unique_ptr<ConsoleWindow> mWindow;
    QPlainTextEdit* mInput = nullptr;
    std::unique_ptr<QSignalSpy> mScripts;
};

namespace
{

const QString ThreeLines = QStringLiteral("first(1)\n  second(2) \nthird(3)");

} // namespace

void tst_ConsoleScripts::init()
{
    Settings::RestoreDefaults();
    Settings::consoleShowOnType = 0;
    mWindow = std::make_unique<ConsoleWindow>();
    mInput = mWindow->findChild<QPlainTextEdit*>("inputPane");
    mScripts = std::make_unique<QSignalSpy>(mWindow.get(), SIGNAL(ScriptExecuted(QString)));
    mInput->setPlainText(ThreeLines);
}

void tst_ConsoleScripts::cleanup()
{
    mScripts.reset();
    mWindow.reset();
}

void tst_ConsoleScripts::Select(int from, int to)
{
    QTextCursor cursor = mInput->textCursor();
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    mInput->setTextCursor(cursor);
}

void tst_ConsoleScripts::ChordsRunTheirPart_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("script");
    const QString all = ThreeLines;
    const QString line = QStringLiteral("second(2)");
    const QString selection = QStringLiteral("con");
    const struct
    {
        const char* name;
        int modifiers;
        QString script;
    } rows[] = {
        {"Control", Qt::ControlModifier, selection},
        {"Control, Meta", int(Qt::ControlModifier) | Qt::MetaModifier, selection},
        {"Control, Alt", int(Qt::ControlModifier) | Qt::AltModifier, line},
        {"Control, Shift", int(Qt::ControlModifier) | Qt::ShiftModifier, all},
        {"Control, Shift, Alt", int(Qt::ControlModifier) | Qt::ShiftModifier | Qt::AltModifier, all},
    };
    for (const auto& row : rows)
    {
        QTest::addRow("%s, Return", row.name) << int(Qt::Key_Return) << row.modifiers << row.script;
        QTest::addRow("%s, Enter", row.name) << int(Qt::Key_Enter) << row.modifiers << row.script;
        QTest::addRow("%s, Enter of the keypad", row.name)
            << int(Qt::Key_Enter) << (row.modifiers | int(Qt::KeypadModifier)) << row.script;
    }
}

void tst_ConsoleScripts::ChordsRunTheirPart()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, script);
    // The panes stay hidden: the chords act on the text all the same.
    Select(13, 16);
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
    event.ignore();
    QCoreApplication::sendEvent(mWindow.get(), &event);
    QVERIFY(event.isAccepted());
    QCOMPARE(mScripts->size(), 1);
    QCOMPARE(mScripts->first().first().toString(), script);
    QCOMPARE(mInput->toPlainText(), ThreeLines);
    QCOMPARE(mInput->textCursor().selectedText(), QStringLiteral("con"));
}

void tst_ConsoleScripts::ChordsWorkThroughTheInputPane_data()
{
    ChordsRunTheirPart_data();
}

void tst_ConsoleScripts::ChordsWorkThroughTheInputPane()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, script);
    mWindow->SetInputVisible(true);
    mWindow->show();
    Select(13, 16);
    QTest::keyClick(mInput, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(mScripts->size(), 1);
    QCOMPARE(mScripts->first().first().toString(), script);
    QCOMPARE(mInput->toPlainText(), ThreeLines);
}

void tst_ConsoleScripts::OtherKeysLeaveTheAcceptedFlagAlone_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << 0;
    QTest::newRow("Enter, keypad") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
    QTest::newRow("Shift, Return") << int(Qt::Key_Return) << int(Qt::ShiftModifier);
    QTest::newRow("Alt, Return") << int(Qt::Key_Return) << int(Qt::AltModifier);
    QTest::newRow("Escape") << int(Qt::Key_Escape) << 0;
    QTest::newRow("Control, A") << int(Qt::Key_A) << int(Qt::ControlModifier);
    QTest::newRow("Control, Space") << int(Qt::Key_Space) << int(Qt::ControlModifier);
}

void tst_ConsoleScripts::OtherKeysLeaveTheAcceptedFlagAlone()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    for (const bool isAccepted : {true, false})
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
        event.setAccepted(isAccepted);
        // Not through QApplication, which sets the flag by itself.
        static_cast<QObject*>(mWindow.get())->event(&event);
        QCOMPARE(event.isAccepted(), isAccepted);
    }
    QVERIFY(mScripts->isEmpty());
    QVERIFY(!mWindow->isVisible());
}

void tst_ConsoleScripts::ReturnInTheInputPaneInsertsALine()
{
    mWindow->SetInputVisible(true);
    mWindow->show();
    Select(0, 0);
    QTest::keyClick(mInput, Qt::Key_Return);
    QCOMPARE(mInput->toPlainText(), '\n' + ThreeLines);
    QVERIFY(mScripts->isEmpty());
}

void tst_ConsoleScripts::SelectionIsRunAsItStands()
{
    mInput->setPlainText("  a = 1\n\n\tb = 2\nc = 3\n");
    Select(0, mInput->toPlainText().size());
    mWindow->ScriptExecuteSelection();
    // Backwards, and in the middle of lines.
    Select(20, 2);
    mWindow->ScriptExecuteSelection();
    Select(4, 4);
    mWindow->ScriptExecuteSelection();
    QCOMPARE(mScripts->size(), 3);
    QCOMPARE(mScripts->at(0).first().toString(), QStringLiteral("  a = 1\n\n\tb = 2\nc = 3\n"));
    QCOMPARE(mScripts->at(1).first().toString(), QStringLiteral("a = 1\n\n\tb = 2\nc = "));
    QCOMPARE(mScripts->at(2).first().toString(), QStringLiteral("  a = 1\n\n\tb = 2\nc = 3\n"));
    mInput->setPlainText("one\ntwo\nthree");
    Select(0, 13);
    mWindow->ScriptExecuteSelection();
    QCOMPARE(mScripts->at(3).first().toString(), QStringLiteral("one\ntwo\nthree"));
}

void tst_ConsoleScripts::LineIsRunWithoutItsBlanks_data()
{
    QTest::addColumn<int>("anchor");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("script");
    QTest::newRow("first line") << 3 << 3 << "first(1)";
    QTest::newRow("end of the first line") << 8 << 8 << "first(1)";
    QTest::newRow("start of the second line") << 9 << 9 << "second(2)";
    QTest::newRow("end of the second line") << 21 << 21 << "second(2)";
    QTest::newRow("last line") << 30 << 30 << "third(3)";
    QTest::newRow("a selection is ignored") << 2 << 25 << "third(3)";
}

void tst_ConsoleScripts::LineIsRunWithoutItsBlanks()
{
    QFETCH(int, anchor);
    QFETCH(int, position);
    Select(anchor, position);
    mWindow->ScriptExecuteLine();
    QCOMPARE(mScripts->size(), 1);
    QTEST(mScripts->first().first().toString(), "script");
    QCOMPARE(mInput->textCursor().anchor(), anchor);
    QCOMPARE(mInput->textCursor().position(), position);
}

void tst_ConsoleScripts::ParagraphSeparatorsBecomeLineEnds()
{
    mWindow->ScriptExecute(QStringLiteral(" a\u2029\u2029b\u2028c\n"));
    QCOMPARE(mScripts->size(), 1);
    QCOMPARE(mScripts->first().first().toString(), QStringLiteral(" a\n\nb\u2028c\n"));
}

void tst_ConsoleScripts::EmptyTextIsRunToo()
{
    mInput->clear();
    mWindow->ScriptExecuteAll();
    mWindow->ScriptExecuteSelection();
    mWindow->ScriptExecuteLine();
    mWindow->ScriptExecute(QString());
    QCOMPARE(mScripts->size(), 4);
    for (const QList<QVariant>& arguments : qAsConst(*mScripts))
        QCOMPARE(arguments, QList<QVariant>{QString("")});
}

static const TestRegistration<tst_ConsoleScripts> ConsoleScriptsRegistration;

#include "tst_ConsoleScripts.moc"
