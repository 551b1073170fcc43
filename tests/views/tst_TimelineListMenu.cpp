// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/FakeElements.h"
#include "views/TimelineListView.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QtTest>

#include <functional>

/// The menu of the element list, and showing an element's file.
class tst_TimelineListMenu : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void OpenUrl(const QUrl& url) { mOpened << url.toString(); }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void EntriesFollowTheSelection_data();
    void EntriesFollowTheSelection();
    void NoMenuWithoutASelection();
    void EntriesAsk_data();
    void EntriesAsk();
    void ProgramShowsAFile();
    void ProgramShowsADirectory();
    void DesktopStepsInForTheProgram();
    void FirstElementWithAFileIsShown();
    void NothingToShow();

private:
    /// Presses the right button on @p row and gives the menu that opens to @p use; false if none opens.
    bool WithMenu(int row, const std::function<void(QMenu*)>& use);
    void Select(const QList<int>& rows);
    /// Makes what FileManager starts a program that notes its arguments, or takes it away again.
    void HaveExplorer(bool isThere);
    QStringList Noted() const;

    QTemporaryDir mFolder;
    QByteArray mPath;
    QStringList mOpened;
    std::shared_ptr<FakeElementTimeline> mTimeline;
    std::unique_ptr<TimelineListView> mView;
    TimelineListViewTreeWidget* mTree = nullptr;
};

void tst_TimelineListMenu::initTestCase()
{
    mPath = qgetenv("PATH");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "OpenUrl");
}

void tst_TimelineListMenu::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    qputenv("PATH", mPath);
}

void tst_TimelineListMenu::init()
{
    Settings::RestoreDefaults();
    HaveExplorer(false);
    mOpened.clear();
    mTimeline = std::make_shared<FakeElementTimeline>(6);
    mView = std::make_unique<TimelineListView>();
    mTree = mView->findChild<TimelineListViewTreeWidget*>();
    mView->SetTimeline(mTimeline);
    mView->setGeometry(60, 60, 240, 260);
    mView->show();
    QVERIFY(QTest::qWaitForWindowExposed(mView.get()));
}

void tst_TimelineListMenu::cleanup()
{
    mView.reset();
    mTimeline.reset();
}

bool tst_TimelineListMenu::WithMenu(int row, const std::function<void(QMenu*)>& use)
{
    bool isOpen = false;
    QTimer::singleShot(50, this,
                       [&]
                       {
                           if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
                           {
                               isOpen = true;
                               use(menu);
                           }
                           while (QWidget* left = QApplication::activePopupWidget())
                               left->close();
                       });
    const QPoint place =
        row >= 0 ? mTree->visualItemRect(mTree->topLevelItem(row)).center() : QPoint(20, 200);
    InputEvents::Press(mTree->viewport(), place, Qt::RightButton);
    QTest::qWait(70);
    InputEvents::Release(mTree->viewport(), place, Qt::RightButton);
    return isOpen;
}

void tst_TimelineListMenu::Select(const QList<int>& rows)
{
    mTree->clearSelection();
    for (const int row : rows)
        mTree->topLevelItem(row)->setSelected(true);
}

void tst_TimelineListMenu::HaveExplorer(bool isThere)
{
    const QString path = mFolder.filePath(QStringLiteral("explorer"));
    QFile::remove(path);
    QFile::remove(mFolder.filePath(QStringLiteral("noted")));
    // The program stands alone on the path, so that none of the machine is started.
    qputenv("PATH", isThere ? mFolder.path().toLocal8Bit() + ':' + mPath : mFolder.path().toLocal8Bit());
    if (!isThere)
        return;
    QFile program(path);
    QVERIFY(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\nfor each; do echo \"$each\"; done > '" +
                  mFolder.filePath(QStringLiteral("part")).toLocal8Bit() + "'\nmv '" +
                  mFolder.filePath(QStringLiteral("part")).toLocal8Bit() + "' '" +
                  mFolder.filePath(QStringLiteral("noted")).toLocal8Bit() + "'\n");
    program.close();
    QVERIFY(program.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
}

QStringList tst_TimelineListMenu::Noted() const
{
    QFile noted(mFolder.filePath(QStringLiteral("noted")));
    if (!QTest::qWaitFor([&noted] { return noted.exists(); }) || !noted.open(QIODevice::ReadOnly))
        return {QStringLiteral("nothing was started")};
    return QString::fromUtf8(noted.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void tst_TimelineListMenu::EntriesFollowTheSelection_data()
{
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<int>("row");
    QTest::addColumn<QStringList>("entries");
    const QStringList single = {"Move Up", "Move Down", "|", "Show in Folder", "|", "Delete"};
    const QStringList several = {"Move Up", "Move Down", "|", "Delete"};
    QTest::newRow("one") << QList<int>{2} << 2 << single;
    QTest::newRow("two") << QList<int>{2, 3} << 2 << several;
    QTest::newRow("all") << QList<int>{0, 1, 2, 3, 4, 5} << 5 << several;
    // A press on a row that isn't selected selects it alone.
    QTest::newRow("another") << QList<int>{2, 3} << 4 << single;
}

void tst_TimelineListMenu::EntriesFollowTheSelection()
{
    QFETCH(QList<int>, selected);
    QFETCH(int, row);
    Select(selected);
    QStringList texts;
    QVERIFY(WithMenu(row,
                     [&](QMenu* menu)
                     {
                         for (const QAction* action : menu->actions())
                             texts << (action->isSeparator() ? QStringLiteral("|") : action->text());
                     }));
    QTEST(texts, "entries");
}

void tst_TimelineListMenu::NoMenuWithoutASelection()
{
    Select({1});
    QVERIFY(!WithMenu(-1, [](QMenu*) {}));
    QCOMPARE(mTree->selectedItems().size(), 0);
    mView->ShowContextMenu(QPoint(10, 10));
    QVERIFY(!QApplication::activePopupWidget());
}

void tst_TimelineListMenu::EntriesAsk_data()
{
    QTest::addColumn<QString>("request");
    QTest::newRow("Move Up") << "MoveElementsRequested([#3], [1])";
    QTest::newRow("Move Down") << "MoveElementsRequested([#3], [4])";
    QTest::newRow("Delete") << "RemoveElementsRequested([#3])";
    QTest::newRow("Show in Folder") << "";
}

void tst_TimelineListMenu::EntriesAsk()
{
    QFETCH(QString, request);
    mTimeline->elements[2]->source = std::make_shared<Source>(NumberedID(40), "/plates/a.mov");
    CallLog log(mView.get());
    QPoint corner;
    QVERIFY(WithMenu(2,
                     [&](QMenu* menu)
                     {
                         corner = menu->pos();
                         for (QAction* action : menu->actions())
                         {
                             if (action->text() == QLatin1String(QTest::currentDataTag()))
                                 QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                                   menu->actionGeometry(action).center());
                         }
                     }));
    QCOMPARE(corner, mTree->viewport()->mapToGlobal(mTree->visualItemRect(mTree->topLevelItem(2)).center()));
    QCOMPARE(log.Take(), request.isEmpty() ? QStringList() : QStringList{request});
    QCOMPARE(mOpened, request.isEmpty() ? QStringList{"file:///plates"} : QStringList());
}

void tst_TimelineListMenu::ProgramShowsAFile()
{
    HaveExplorer(true);
    mTimeline->elements[1]->source = std::make_shared<Source>(NumberedID(40), "/plates/no such.mov");
    Select({1});
    mView->ShowInFolder();
    const QStringList arguments = {"/select,", "/plates/no such.mov"};
    QCOMPARE(Noted(), arguments);
    QVERIFY(mOpened.isEmpty());
}

void tst_TimelineListMenu::ProgramShowsADirectory()
{
    HaveExplorer(true);
    mTimeline->elements[1]->source = std::make_shared<Source>(NumberedID(40), mFolder.path());
    Select({1});
    mView->ShowInFolder();
    QCOMPARE(Noted(), QStringList{QDir::toNativeSeparators(mFolder.path())});
    QVERIFY(mOpened.isEmpty());
}

void tst_TimelineListMenu::DesktopStepsInForTheProgram()
{
    for (const QString& path : {mFolder.path(), mFolder.filePath(QStringLiteral("gone.mov"))})
    {
        mOpened.clear();
        mTimeline->elements[1]->source = std::make_shared<Source>(NumberedID(40), path);
        Select({1});
        mView->ShowInFolder();
        QCOMPARE(mOpened, QStringList{QUrl::fromLocalFile(mFolder.path()).toString()});
    }
}

void tst_TimelineListMenu::FirstElementWithAFileIsShown()
{
    const auto file = [](const QString& folder)
    { return std::make_shared<Source>(NumberedID(40), folder + QStringLiteral("/a.mov")); };
    mTimeline->elements[0]->source = file("/dead");
    mTimeline->elements[1]->source = file("/timeline");
    mTimeline->elements[1]->type = 1;
    mTimeline->elements[3]->source = std::make_shared<Source>(NumberedID(41), QString());
    mTimeline->elements[4]->source = file("/shown");
    mTimeline->elements[5]->source = file("/later");
    mTimeline->elements.removeAt(0);
    Select({5, 4, 3, 2, 1, 0});
    mView->ShowInFolder();
    QCOMPARE(mOpened, QStringList{"file:///shown"});
}

void tst_TimelineListMenu::NothingToShow()
{
    mView->ShowInFolder();
    Select({2});
    mView->ShowInFolder();
    QVERIFY(mOpened.isEmpty());
}

static const TestRegistration<tst_TimelineListMenu> TimelineListMenuRegistration;

#include "tst_TimelineListMenu.moc"
