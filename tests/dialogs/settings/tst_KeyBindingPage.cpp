// SPDX-License-Identifier: MIT
#include "DialogAnswer.h"
#include "dialogs/settings/KeySequenceLineEdit.h"
#include "dialogs/settings/PreferencesDialog.h"
#include "host/KeyBindings.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

/// The keyboard page of the preferences.
class tst_KeyBindingPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void PageStandsAsTold();
    void CommandsAreListedWithoutPermanentOnes();
    void ListHoldsCopiesOfTheRecords();
    void SelectingACommandShowsItsShortcuts();
    void ChordShowsItsHolder_data();
    void ChordShowsItsHolder();
    void HolderFollowsTheKeys();
    void AssigningMovesTheChord();
    void AssigningToACommandWithoutShortcutsDropsThePlaceholder();
    void AssigningAgainPutsTheChordLast();
    void AssigningWithoutChordOrCommandDoesNothing();
    void RemovingTheLastShortcutLeavesABlank();
    void RemovingAChordTakesItFromEveryCommand();
    void RestoringDefaultsAsksFirst_data();
    void RestoringDefaultsAsksFirst();
    void OnlyApplyReachesTheTable();
    void EmptyTablesWork();

private:
    void Make(const QList<KeySequence*>& sequences);
    void MakeUsual();
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(mKeys, key, modifiers);
    }
    void SelectCommand(int row) { mList->setCurrentRow(row); }
    void Click(const char* name) { mDialog->findChild<QPushButton*>(QLatin1String(name))->click(); }
    bool CanAssign() const { return mDialog->findChild<QPushButton*>("assignShortcutBtn")->isEnabled(); }
    QStringList Shown() const;
    KeySequence* Working(int row) const;
    QStringList Held(int row) const { return Texts(Working(row)->currentSequences); }
    static QStringList Texts(const QList<QKeySequence>& sequences);

    QTemporaryDir mFolder;
    std::unique_ptr<KeyBindings> mBindings;
    std::unique_ptr<PreferencesDialog> mDialog;
    QListWidget* mList = nullptr;
    QComboBox* mAssigned = nullptr;
    QLineEdit* mKeys = nullptr;
    QLineEdit* mUsedBy = nullptr;
};

namespace
{

QList<QKeySequence> Chords(const QStringList& texts)
{
    QList<QKeySequence> sequences;
    for (const QString& text : texts)
        sequences << QKeySequence(text, QKeySequence::PortableText);
    return sequences;
}

KeySequence* Record(int identifier, const char* name, const QStringList& defaults, const QStringList& current,
                    bool permanent = false)
{
    return new KeySequence{identifier,
                           Chords(defaults),
                           Chords(current),
                           QLatin1String(name),
                           QStringLiteral("Does %1").arg(QLatin1String(name)),
                           nullptr,
                           permanent};
}

} // namespace

void tst_KeyBindingPage::init()
{
    Settings::RestoreDefaults();
    MakeUsual();
}

void tst_KeyBindingPage::Make(const QList<KeySequence*>& sequences)
{
    mDialog.reset();
    mBindings = std::make_unique<KeyBindings>(sequences);
    mBindings->SetUserKeyBindingsPath(mFolder.filePath("keys.txt"));
    QFile::remove(mFolder.filePath("keys.txt"));
    mDialog = std::make_unique<PreferencesDialog>(mFolder.path(), mBindings.get(), nullptr);
    mList = mDialog->findChild<QListWidget*>("keyboardCommandListWdg");
    mAssigned = mDialog->findChild<QComboBox*>("assignedShortcutCmb");
    mKeys = mDialog->findChild<QLineEdit*>("pressShortcutKeysLE");
    mUsedBy = mDialog->findChild<QLineEdit*>("shortcutCurrentlyUsedByLE");
}

void tst_KeyBindingPage::MakeUsual()
{
    Make({Record(10, "play", {"Space"}, {"Space", "Ctrl+P"}),
          Record(11, "quit", {"Ctrl+Q"}, {"Ctrl+Q"}, true), Record(12, "stop", {"S"}, {"S"}),
          Record(13, "mark", {}, {""}), Record(14, "help", {"F1"}, {"Shift+F1", "F1"})});
}

QStringList tst_KeyBindingPage::Texts(const QList<QKeySequence>& sequences)
{
    QStringList texts;
    for (const QKeySequence& keys : sequences)
        texts << keys.toString(QKeySequence::PortableText);
    return texts;
}

QStringList tst_KeyBindingPage::Shown() const
{
    QStringList texts;
    for (int row = 0; row < mAssigned->count(); ++row)
        texts << mAssigned->itemText(row);
    return texts;
}

KeySequence* tst_KeyBindingPage::Working(int row) const
{
    return static_cast<KeySequence*>(mList->item(row)->data(Qt::UserRole).value<void*>());
}

void tst_KeyBindingPage::PageStandsAsTold()
{
    const QWidget* const page = mDialog->findChild<QWidget*>("keyboardPage");
    const auto* const layout = qobject_cast<QVBoxLayout*>(page->layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("verticalLayout_8"));
    const QList<QStringList> rows = {{"keyboardCommandListWdg"},
                                     {"assignedShortcutLabel"},
                                     {"assignedShortcutCmb", "removeShortcutBtn"},
                                     {"pressShortcutKeysLabel"},
                                     {"pressShortcutKeysLE", "assignShortcutBtn"},
                                     {"shortcutCurrentlyUsedByLabel"},
                                     {"shortcutCurrentlyUsedByLE"},
                                     {"restoreDefaultsBtn"}};
    QCOMPARE(layout->count(), rows.size() + 1);
    for (int row = 0; row < rows.size(); ++row)
    {
        QStringList names;
        if (const QWidget* const widget = layout->itemAt(row)->widget())
            names << widget->objectName();
        else
        {
            const QLayout* const line = layout->itemAt(row)->layout();
            for (int i = 0; i < line->count(); ++i)
                names << line->itemAt(i)->widget()->objectName();
        }
        QCOMPARE(names, rows[row]);
    }
    QCOMPARE(layout->itemAt(rows.size())->spacerItem()->sizeHint(), QSize(20, 71));
    QCOMPARE(layout->itemAt(rows.size())->expandingDirections(), Qt::Vertical);

    const QList<QPair<QString, QString>> texts = {
        {"assignedShortcutLabel", "Assigned Shortcut:"},
        {"removeShortcutBtn", "Remove"},
        {"pressShortcutKeysLabel", "Press Shortcut Keys:"},
        {"assignShortcutBtn", "Assign"},
        {"shortcutCurrentlyUsedByLabel", "Shortcut currently used by:"},
        {"restoreDefaultsBtn", "Restore Defaults"}};
    for (const auto& row : texts)
        QCOMPARE(page->findChild<QWidget*>(row.first)->property("text").toString(), row.second);
    for (const char* name : {"removeShortcutBtn", "assignShortcutBtn", "restoreDefaultsBtn"})
        QCOMPARE(page->findChild<QPushButton*>(QLatin1String(name))->focusPolicy(), Qt::NoFocus);
    QVERIFY(dynamic_cast<KeySequenceLineEdit*>(mKeys));
    QVERIFY(mUsedBy->isReadOnly());
    QCOMPARE(mAssigned->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
}

void tst_KeyBindingPage::CommandsAreListedWithoutPermanentOnes()
{
    QStringList texts;
    for (int row = 0; row < mList->count(); ++row)
        texts << mList->item(row)->text();
    QCOMPARE(texts, (QStringList{"Does play", "Does stop", "Does mark", "Does help"}));
    QCOMPARE(mList->currentRow(), 0);
    QVERIFY(mList->item(0)->isSelected());
    QCOMPARE(Shown(), (QStringList{"Space", "Ctrl+P"}));
}

void tst_KeyBindingPage::ListHoldsCopiesOfTheRecords()
{
    QObject owner;
    KeySequence* const record = Record(10, "play", {"Space"}, {"Space", "Ctrl+P"});
    record->owner = &owner;
    Make({record});
    QCOMPARE(mList->item(0)->data(Qt::UserRole).userType(), int(QMetaType::VoidStar));
    const KeySequence* const copy = Working(0);
    QVERIFY(copy != record);
    QCOMPARE(copy->identifier, 10);
    QCOMPARE(Texts(copy->defaultSequences), QStringList{"Space"});
    QCOMPARE(Texts(copy->currentSequences), (QStringList{"Space", "Ctrl+P"}));
    QCOMPARE(copy->name, QStringLiteral("play"));
    QCOMPARE(copy->displayText, QStringLiteral("Does play"));
    QVERIFY(!copy->owner);
    QVERIFY(!copy->permanent);
}

void tst_KeyBindingPage::SelectingACommandShowsItsShortcuts()
{
    Press(Qt::Key_X);
    SelectCommand(3);
    QCOMPARE(mKeys->text(), QString());
    QCOMPARE(Shown(), (QStringList{"Shift+F1", "F1"}));
    SelectCommand(2);
    QCOMPARE(Shown(), QStringList{""});
    QVERIFY(!mAssigned->itemData(0).isValid());
    mList->setCurrentItem(nullptr);
    QCOMPARE(Shown(), QStringList());
}

void tst_KeyBindingPage::ChordShowsItsHolder_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("usedBy");
    QTest::addColumn<bool>("canAssign");
    QTest::newRow("empty") << ""
                           << "" << true;
    QTest::newRow("free") << "Ctrl+X"
                          << "" << true;
    QTest::newRow("held") << "S"
                          << "Does stop" << true;
    QTest::newRow("held by the selected one") << "Ctrl+P"
                                              << "Does play" << true;
    QTest::newRow("second of a list") << "F1"
                                      << "Does help" << true;
    QTest::newRow("permanent") << "Ctrl+Q"
                               << "Does quit (Permanent)" << false;
    QTest::newRow("another case") << "ctrl+q"
                                  << "" << true;
}

void tst_KeyBindingPage::ChordShowsItsHolder()
{
    QFETCH(QString, text);
    mDialog->UpdateExistingKeyBindingDisplay("Ctrl+Q");
    QVERIFY(!CanAssign());
    mDialog->UpdateExistingKeyBindingDisplay(text);
    QTEST(mUsedBy->text(), "usedBy");
    QTEST(CanAssign(), "canAssign");
}

void tst_KeyBindingPage::HolderFollowsTheKeys()
{
    Press(Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(mKeys->text(), QStringLiteral("Ctrl+Q"));
    QCOMPARE(mUsedBy->text(), QStringLiteral("Does quit (Permanent)"));
    QVERIFY(!CanAssign());
    Press(Qt::Key_Control, Qt::ControlModifier);
    QCOMPARE(mKeys->text(), QStringLiteral("Ctrl+Q"));
    Click("assignShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"Space", "Ctrl+P"}));
    Press(Qt::Key_F1, Qt::ShiftModifier);
    QCOMPARE(mUsedBy->text(), QStringLiteral("Does help"));
    QVERIFY(CanAssign());
    Press(Qt::Key_Q, Qt::ControlModifier);
    SelectCommand(1);
    QVERIFY(CanAssign());
    QCOMPARE(mUsedBy->text(), QString());
}

void tst_KeyBindingPage::AssigningMovesTheChord()
{
    SelectCommand(0);
    Press(Qt::Key_S);
    Click("assignShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"Space", "Ctrl+P", "S"}));
    QCOMPARE(mAssigned->currentIndex(), 2);
    QCOMPARE(mKeys->text(), QString());
    QCOMPARE(mUsedBy->text(), QString());
    QCOMPARE(Held(1), QStringList{""});
    Press(Qt::Key_F1);
    Click("assignShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"Space", "Ctrl+P", "S", "F1"}));
    QCOMPARE(Held(3), QStringList{"Shift+F1"});
    // Removing acts on what was just assigned.
    Click("removeShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"Space", "Ctrl+P", "S"}));
}

void tst_KeyBindingPage::AssigningToACommandWithoutShortcutsDropsThePlaceholder()
{
    SelectCommand(2);
    Press(Qt::Key_M);
    Click("assignShortcutBtn");
    QCOMPARE(Held(2), QStringList{"M"});
    Press(Qt::Key_N);
    Click("assignShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"M", "N"}));
    QCOMPARE(mAssigned->currentText(), QStringLiteral("N"));
}

void tst_KeyBindingPage::AssigningAgainPutsTheChordLast()
{
    Press(Qt::Key_Space);
    Click("assignShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"Ctrl+P", "Space"}));
    QCOMPARE(mAssigned->currentIndex(), 1);
    SelectCommand(1);
    Press(Qt::Key_S);
    Click("assignShortcutBtn");
    QCOMPARE(Held(1), QStringList{"S"});
}

void tst_KeyBindingPage::AssigningWithoutChordOrCommandDoesNothing()
{
    mKeys->clear();
    Click("assignShortcutBtn");
    QCOMPARE(Shown(), (QStringList{"Space", "Ctrl+P"}));
    mList->setCurrentItem(nullptr);
    Press(Qt::Key_S);
    Click("assignShortcutBtn");
    QCOMPARE(Held(1), QStringList{"S"});
    QCOMPARE(mKeys->text(), QStringLiteral("S"));
}

void tst_KeyBindingPage::RemovingTheLastShortcutLeavesABlank()
{
    SelectCommand(1);
    Click("removeShortcutBtn");
    QCOMPARE(Shown(), QStringList{""});
    QCOMPARE(Held(1), QStringList{""});
    Click("removeShortcutBtn");
    QCOMPARE(Held(1), QStringList{""});
    SelectCommand(0);
    mAssigned->setCurrentIndex(1);
    Click("removeShortcutBtn");
    QCOMPARE(Shown(), QStringList{"Space"});
}

void tst_KeyBindingPage::RemovingAChordTakesItFromEveryCommand()
{
    Make({Record(1, "a", {}, {"X", "Y", "X"}), Record(2, "b", {}, {"X"}, true), Record(3, "c", {}, {}),
          Record(4, "d", {}, {"x"})});
    mDialog->RemoveKeyBinding(QString());
    QCOMPARE(Held(1), QStringList());
    mDialog->RemoveKeyBinding("Q");
    // Whichever list is empty gets the placeholder, this call's doing or not.
    QCOMPARE(Held(1), QStringList{""});
    mDialog->RemoveKeyBinding("X");
    QCOMPARE(Shown(), QStringList{"Y"});
    QCOMPARE(Held(2), QStringList{""});
    mDialog->Apply();
    // The permanent one too.
    QCOMPARE(Texts(mBindings->GetKeySequences()[1]->currentSequences), QStringList{""});
}

void tst_KeyBindingPage::RestoringDefaultsAsksFirst_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("yes") << int(QMessageBox::Yes);
    QTest::newRow("no") << int(QMessageBox::No);
}

void tst_KeyBindingPage::RestoringDefaultsAsksFirst()
{
    QFETCH(int, answer);
    const bool isYes = answer == QMessageBox::Yes;
    Press(Qt::Key_Space);
    const DialogAnswer::MessageBox box = DialogAnswer::ToMessageBox(
        [this] { Click("restoreDefaultsBtn"); }, static_cast<QMessageBox::StandardButton>(answer));
    QCOMPARE(box.count, 1);
    QCOMPARE(box.parent, mDialog.get());
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.title, QString::fromLatin1(Settings::APPLICATION_TITLE));
    QCOMPARE(box.text, QStringLiteral("Keyboard mappings will reset to their default values. Continue?"));
    QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box.defaultButton, QMessageBox::Yes);
    QCOMPARE(Shown(), isYes ? QStringList{"Space"} : (QStringList{"Space", "Ctrl+P"}));
    QCOMPARE(Held(2), isYes ? QStringList() : QStringList{""});
    QCOMPARE(Held(3), isYes ? QStringList{"F1"} : (QStringList{"Shift+F1", "F1"}));
    QCOMPARE(mUsedBy->text(), QStringLiteral("Does play"));
    SelectCommand(2);
    // An empty list of defaults leaves no row.
    QCOMPARE(mAssigned->count(), isYes ? 0 : 1);
    // The copies alone.
    QCOMPARE(mBindings->GetKeySequences()[0]->currentSequences.size(), 2);
}

void tst_KeyBindingPage::OnlyApplyReachesTheTable()
{
    SelectCommand(2);
    Press(Qt::Key_S);
    Click("assignShortcutBtn");
    QCOMPARE(Texts(mBindings->GetKeySequences()[2]->currentSequences), QStringList{"S"});
    mDialog->accept();
    QCOMPARE(Texts(mBindings->GetKeySequences()[2]->currentSequences), QStringList{"S"});
    QVERIFY(!QFile::exists(mFolder.filePath("keys.txt")));
    mDialog->Apply();
    mDialog.reset();
    QCOMPARE(Texts(mBindings->GetKeySequences()[2]->currentSequences), QStringList{""});
    QCOMPARE(Texts(mBindings->GetKeySequences()[3]->currentSequences), QStringList{"S"});
    QCOMPARE(Texts(mBindings->GetKeySequences()[1]->currentSequences), QStringList{"Ctrl+Q"});
    KeyBindings again({Record(12, "stop", {"S"}, {"S"}), Record(13, "mark", {}, {""})});
    again.SetUserKeyBindingsPath(mFolder.filePath("keys.txt"));
    QVERIFY(again.ReadUserKeyBindings());
    QCOMPARE(Texts(again.GetKeySequences()[0]->currentSequences), QStringList{""});
    QCOMPARE(Texts(again.GetKeySequences()[1]->currentSequences), QStringList{"S"});
}

void tst_KeyBindingPage::EmptyTablesWork()
{
    for (const bool hasTable : {true, false})
    {
        Make({});
        if (!hasTable)
        {
            mDialog = std::make_unique<PreferencesDialog>(mFolder.path(), nullptr, nullptr);
            mList = mDialog->findChild<QListWidget*>("keyboardCommandListWdg");
            mKeys = mDialog->findChild<QLineEdit*>("pressShortcutKeysLE");
            mAssigned = mDialog->findChild<QComboBox*>("assignedShortcutCmb");
        }
        QCOMPARE(mList->currentRow(), -1);
        Press(Qt::Key_S);
        Click("assignShortcutBtn");
        Click("removeShortcutBtn");
        QCOMPARE(mAssigned->count(), 0);
        mDialog->Apply();
    }
}

static const TestRegistration<tst_KeyBindingPage> KeyBindingPageRegistration;

#include "tst_KeyBindingPage.moc"
