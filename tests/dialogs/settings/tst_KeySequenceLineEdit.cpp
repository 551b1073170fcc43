// SPDX-License-Identifier: MIT
#include "dialogs/settings/KeySequenceLineEdit.h"
#include "support/TestRegistry.h"

#include <QtTest>

class tst_KeySequenceLineEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ChordsReplaceTheText_data();
    void ChordsReplaceTheText();
    void ModifiersAloneChangeNothing_data();
    void ModifiersAloneChangeNothing();
};

void tst_KeySequenceLineEdit::ChordsReplaceTheText_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("text");
    const int shift = Qt::ShiftModifier;
    const int control = Qt::ControlModifier;
    const int alt = Qt::AltModifier;
    const int meta = Qt::MetaModifier;
    QTest::newRow("letter") << int(Qt::Key_A) << 0 << "a"
                            << "A";
    QTest::newRow("Shift") << int(Qt::Key_A) << shift << "A"
                           << "Shift+A";
    QTest::newRow("Control") << int(Qt::Key_A) << control << "\x01"
                             << "Ctrl+A";
    QTest::newRow("Alt") << int(Qt::Key_A) << alt << "a"
                         << "Alt+A";
    QTest::newRow("Meta") << int(Qt::Key_A) << meta << "a"
                          << "Meta+A";
    QTest::newRow("all") << int(Qt::Key_F5) << (shift | control | alt | meta) << ""
                         << "Meta+Ctrl+Alt+Shift+F5";
    QTest::newRow("keypad's own bit is left out")
        << int(Qt::Key_5) << (control | int(Qt::KeypadModifier)) << "5"
        << "Ctrl+5";
    QTest::newRow("Backspace") << int(Qt::Key_Backspace) << 0 << "\b"
                               << "Backspace";
    QTest::newRow("Delete") << int(Qt::Key_Delete) << 0 << "\x7f"
                            << "Del";
    QTest::newRow("Escape") << int(Qt::Key_Escape) << 0 << "\x1b"
                            << "Esc";
    QTest::newRow("Return") << int(Qt::Key_Return) << 0 << "\r"
                            << "Return";
    QTest::newRow("Space") << int(Qt::Key_Space) << 0 << " "
                           << "Space";
    QTest::newRow("paste") << int(Qt::Key_V) << control << ""
                           << "Ctrl+V";
    QTest::newRow("arrow") << int(Qt::Key_Left) << control << ""
                           << "Ctrl+Left";
}

void tst_KeySequenceLineEdit::ChordsReplaceTheText()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, typed);
    QFETCH(QString, text);
    KeySequenceLineEdit edit(nullptr);
    edit.setText("Ctrl+Q");
    QSignalSpy edited(&edit, SIGNAL(textEdited(QString)));
    QSignalSpy changed(&edit, SIGNAL(textChanged(QString)));
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers), typed);
    QCoreApplication::sendEvent(&edit, &event);
    QCOMPARE(edit.text(), text);
    QCOMPARE(edited, (QList<QVariantList>{{text}}));
    QCOMPARE(changed, (QList<QVariantList>{{text}}));
    // The same chord again is another edit without a change.
    QCoreApplication::sendEvent(&edit, &event);
    QCOMPARE(edit.text(), text);
    QCOMPARE(edited.size(), 2);
    QCOMPARE(changed.size(), 1);
}

void tst_KeySequenceLineEdit::ModifiersAloneChangeNothing_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Shift") << int(Qt::Key_Shift) << int(Qt::ShiftModifier);
    QTest::newRow("Control") << int(Qt::Key_Control) << int(Qt::ControlModifier);
    QTest::newRow("Meta") << int(Qt::Key_Meta) << int(Qt::MetaModifier);
    QTest::newRow("Alt") << int(Qt::Key_Alt) << int(Qt::AltModifier);
    QTest::newRow("Shift after Control")
        << int(Qt::Key_Shift) << (int(Qt::ShiftModifier) | int(Qt::ControlModifier));
    QTest::newRow("unknown") << int(Qt::Key_unknown) << 0;
    QTest::newRow("unknown with Control") << int(Qt::Key_unknown) << int(Qt::ControlModifier);
}

void tst_KeySequenceLineEdit::ModifiersAloneChangeNothing()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    KeySequenceLineEdit edit(nullptr);
    edit.setText("Ctrl+Q");
    QSignalSpy edited(&edit, SIGNAL(textEdited(QString)));
    QSignalSpy changed(&edit, SIGNAL(textChanged(QString)));
    QTest::sendKeyEvent(QTest::Click, &edit, static_cast<Qt::Key>(key), QString(),
                        Qt::KeyboardModifiers(modifiers));
    QCOMPARE(edit.text(), QStringLiteral("Ctrl+Q"));
    QVERIFY(edited.isEmpty());
    QVERIFY(changed.isEmpty());
}

static const TestRegistration<tst_KeySequenceLineEdit> KeySequenceLineEditRegistration;

#include "tst_KeySequenceLineEdit.moc"
