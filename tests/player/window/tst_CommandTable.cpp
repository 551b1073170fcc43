// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "window/CommandTable.h"

#include <QAction>
#include <QMenu>
#include <QWidget>
#include <QtTest>

class tst_CommandTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void EachCommandIsReachedByNameMenuAndKey();
    void AnUnknownNameRunsNothing();
    void SwitchesShowTheirState();
    void KeysFollowTheBindings();
    void MenusKeepOrderAndSeparators();

private:
    QWidget mWindow;
    int mRuns = 0;
    bool mOn = false;
    std::unique_ptr<CommandTable> mTable;
};

void tst_CommandTable::init()
{
    mRuns = 0;
    mOn = false;
    mTable.reset();
    qDeleteAll(mWindow.findChildren<QAction*>());
    mTable = std::make_unique<CommandTable>(
        std::vector<Command>{
            {"test.run", "&Run", "one", {QKeySequence("Ctrl+R")}, [this] { ++mRuns; }, {}},
            {"test.switch", "|Switch", "one", {}, [this] { mOn = !mOn; }, [this] { return mOn; }},
            {"test.other", "Other", "two", {}, [] {}, {}}},
        &mWindow);
}

void tst_CommandTable::EachCommandIsReachedByNameMenuAndKey()
{
    QVERIFY(mTable->Run("test.run"));
    QMenu menu;
    mTable->FillMenu("one", &menu);
    menu.actions().first()->trigger();
    QCOMPARE(mRuns, 2);
    QCOMPARE(mTable->Action("test.run")->shortcuts(), (QList<QKeySequence>{QKeySequence("Ctrl+R")}));
    QCOMPARE(mTable->Keys()->GetKeySequences().first()->displayText, QString("Run"));
}

void tst_CommandTable::AnUnknownNameRunsNothing()
{
    QVERIFY(!mTable->Run("test.none"));
    QVERIFY(!mTable->Action("test.none"));
    QCOMPARE(mRuns, 0);
}

void tst_CommandTable::SwitchesShowTheirState()
{
    QAction* const action = mTable->Action("test.switch");
    QVERIFY(action->isCheckable());
    QVERIFY(!action->isChecked());
    mTable->Run("test.switch");
    QVERIFY(action->isChecked());
    mOn = false;
    mTable->UpdateSwitches();
    QVERIFY(!action->isChecked());
    QVERIFY(!mTable->Action("test.run")->isCheckable());
}

void tst_CommandTable::KeysFollowTheBindings()
{
    mTable->Keys()->GetKeySequences().at(2)->currentSequences = {QKeySequence("Ctrl+T"), QKeySequence("F5")};
    mTable->ApplyKeys();
    QCOMPARE(mTable->Action("test.other")->shortcuts(),
             (QList<QKeySequence>{QKeySequence("Ctrl+T"), QKeySequence("F5")}));
}

void tst_CommandTable::MenusKeepOrderAndSeparators()
{
    QMenu menu;
    mTable->FillMenu("one", &menu);
    QCOMPARE(menu.actions().size(), 3);
    QCOMPARE(menu.actions().at(0)->text(), QString("&Run"));
    QVERIFY(menu.actions().at(1)->isSeparator());
    QCOMPARE(menu.actions().at(2)->text(), QString("Switch"));
}

static const TestRegistration<tst_CommandTable> CommandTableRegistration;

#include "tst_CommandTable.moc"
