// SPDX-License-Identifier: MIT
#include "host/KeyBindings.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <type_traits>

// The record is a plain one whose fields stand in this order, which aggregate initialisation proves.
static_assert(std::is_aggregate_v<KeySequence>);
static_assert(std::is_same_v<decltype(KeySequence::identifier), int>);
static_assert(std::is_same_v<decltype(KeySequence::defaultSequences), QList<QKeySequence>>);
static_assert(std::is_same_v<decltype(KeySequence::currentSequences), QList<QKeySequence>>);
static_assert(std::is_same_v<decltype(KeySequence::name), QString>);
static_assert(std::is_same_v<decltype(KeySequence::displayText), QString>);
static_assert(std::is_pointer_v<decltype(KeySequence::owner)>);
static_assert(std::is_same_v<decltype(KeySequence::permanent), bool>);

static_assert(
    std::is_same_v<decltype(&KeyBindings::GetKeySequences), const QList<KeySequence*>& (KeyBindings::*)()>);
static_assert(std::is_same_v<decltype(&KeyBindings::UpdateUserSequences),
                             void (KeyBindings::*)(const QList<KeySequence*>&)>);
static_assert(std::is_same_v<decltype(&KeyBindings::WriteUserKeyBindings), void (KeyBindings::*)()>);
static_assert(!std::is_copy_constructible_v<KeyBindings>, "two tables would own the same records");

namespace
{

QKeySequence Keys(const char* text)
{
    return QKeySequence(QString::fromLatin1(text), QKeySequence::PortableText);
}

KeySequence* MakeRecord(int identifier, const char* name, const char* keys, bool permanent = false)
{
    return new KeySequence{identifier, {Keys(keys)}, {Keys(keys)}, QString::fromLatin1(name),
                           {},         nullptr,      permanent};
}

} // namespace

class tst_KeyBindings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void FieldsStandInOrder();
    void KeepsTheRecordsInOrder();
    void OwnsTheRecords();
    void UpdateChangesTheCurrentListsInPlace();
    void UpdateTakesPermanentRecordsToo();
    void UpdateCopiesAndOwnsNothing();
    void UpdateMatchesByIdentifier();
    void UpdateFromItsOwnTableChangesNothing();
    void NullRecordsAreLeftOut();
};

void tst_KeyBindings::FieldsStandInOrder()
{
    QObject owner;
    const KeySequence record{
        7, {Keys("A")}, {Keys("B"), Keys("C")}, QStringLiteral("name"), QStringLiteral("text"), &owner, true};
    QCOMPARE(record.identifier, 7);
    QCOMPARE(record.defaultSequences, QList<QKeySequence>{Keys("A")});
    QCOMPARE(record.currentSequences, (QList<QKeySequence>{Keys("B"), Keys("C")}));
    QCOMPARE(record.name, QStringLiteral("name"));
    QCOMPARE(record.displayText, QStringLiteral("text"));
    QCOMPARE(record.owner, &owner);
    QVERIFY(record.permanent);
}

void tst_KeyBindings::KeepsTheRecordsInOrder()
{
    const QList<KeySequence*> records = {MakeRecord(3, "c", "C"), MakeRecord(1, "a", "A"),
                                         MakeRecord(2, "b", "B")};
    KeyBindings bindings(records);
    QCOMPARE(bindings.GetKeySequences(), records);
}

void tst_KeyBindings::OwnsTheRecords()
{
    // A leak, and a record that is deleted twice, show under the sanitizers; here the shared text tells.
    const QString text = QString(QLatin1String("of its own"));
    auto* const record = new KeySequence;
    record->displayText = text;
    QVERIFY(!text.isDetached());
    {
        KeyBindings bindings({record});
        QVERIFY(!text.isDetached());
    }
    QVERIFY(text.isDetached());
}

void tst_KeyBindings::UpdateChangesTheCurrentListsInPlace()
{
    QObject owner;
    KeyBindings bindings({MakeRecord(1, "a", "A"), MakeRecord(2, "b", "B")});
    bindings.GetKeySequences().first()->owner = &owner;
    const QList<KeySequence*> before = bindings.GetKeySequences();
    KeySequence second{2,       {},  {Keys("X"), Keys("Y")}, QStringLiteral("other"), QStringLiteral("other"),
                       nullptr, true};
    KeySequence first{1, {}, {QKeySequence()}, {}, {}, nullptr, false};
    bindings.UpdateUserSequences({&second, &first});
    QCOMPARE(bindings.GetKeySequences(), before);
    QCOMPARE(before[0]->currentSequences, QList<QKeySequence>{QKeySequence()});
    QCOMPARE(before[1]->currentSequences, (QList<QKeySequence>{Keys("X"), Keys("Y")}));
    // Nothing but the current shortcuts comes from the working copies.
    QCOMPARE(before[0]->defaultSequences, QList<QKeySequence>{Keys("A")});
    QCOMPARE(before[0]->owner, &owner);
    QCOMPARE(before[1]->name, QStringLiteral("b"));
    QCOMPARE(before[1]->displayText, QString());
    QVERIFY(!before[1]->permanent);
}

void tst_KeyBindings::UpdateTakesPermanentRecordsToo()
{
    KeyBindings bindings({MakeRecord(1, "a", "A", true)});
    KeySequence update{1, {}, {Keys("X")}, {}, {}, nullptr, true};
    bindings.UpdateUserSequences({&update});
    QCOMPARE(bindings.GetKeySequences().first()->currentSequences, QList<QKeySequence>{Keys("X")});
}

void tst_KeyBindings::UpdateCopiesAndOwnsNothing()
{
    KeyBindings bindings({MakeRecord(1, "a", "A")});
    {
        KeySequence update{1, {}, {Keys("X")}, {}, {}, nullptr, false};
        bindings.UpdateUserSequences({&update});
        update.currentSequences = {Keys("Z")};
    }
    QCOMPARE(bindings.GetKeySequences().first()->currentSequences, QList<QKeySequence>{Keys("X")});
}

void tst_KeyBindings::UpdateMatchesByIdentifier()
{
    KeyBindings bindings({MakeRecord(1, "a", "A"), MakeRecord(2, "b", "B")});
    KeySequence unknown{9, {}, {Keys("X")}, QStringLiteral("a"), {}, nullptr, false};
    bindings.UpdateUserSequences({&unknown});
    QCOMPARE(bindings.GetKeySequences()[0]->currentSequences, QList<QKeySequence>{Keys("A")});
    QCOMPARE(bindings.GetKeySequences()[1]->currentSequences, QList<QKeySequence>{Keys("B")});
    QCOMPARE(bindings.GetKeySequences().size(), 2);
}

void tst_KeyBindings::UpdateFromItsOwnTableChangesNothing()
{
    KeyBindings bindings({MakeRecord(1, "a", "A"), MakeRecord(2, "b", "B")});
    bindings.UpdateUserSequences(bindings.GetKeySequences());
    QCOMPARE(bindings.GetKeySequences()[1]->currentSequences, QList<QKeySequence>{Keys("B")});
}

void tst_KeyBindings::NullRecordsAreLeftOut()
{
    KeyBindings bindings({nullptr, MakeRecord(1, "a", "A")});
    QCOMPARE(bindings.GetKeySequences().size(), 1);
    bindings.UpdateUserSequences({nullptr});
    QCOMPARE(bindings.GetKeySequences().first()->currentSequences, QList<QKeySequence>{Keys("A")});
}

static const TestRegistration<tst_KeyBindings> KeyBindingsRegistration;

#include "tst_KeyBindings.moc"
