// SPDX-License-Identifier: MIT
#include "kit/FlatButton.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"

#include <QAction>
#include <QClipboard>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtTest>

using namespace FakeProject;

/// The panel: its parts, its requests, its focus and its keys.
class tst_ProjectView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void TheTreeHasFourColumns();
    void TheButtonsStandInARow();
    void ButtonsAndActionsAskForTheirRequest_data();
    void ButtonsAndActionsAskForTheirRequest();
    void ColumnsAreSizedAtTheFirstShow_data();
    void ColumnsAreSizedAtTheFirstShow();
    void AnEditThatDiffersAsksForTheName();
    void RenamingNeedsTheFocusAndOneRow();
    void KeysGoOnToTheParent();
    void F2DoesNothing();
    void AViewerActionAsksForTheTimeline();
    void ATimelineInTheViewerIsAskedOut();
    void OnlyOneTimelineIsAskedFor();
    void AnObjectThatIsNoTimelineClassGivesAnEmptyPointer();
    void ADoubleClickOpensInAViewer_data();
    void ADoubleClickOpensInAViewer();
    void ADoubleClickNeitherEditsNorExpands();
    void SourcesAreRefreshedAndReplacedByTheirID();
    void SourceRequestsNeedOneRowWithASource();
    void TheTreesRequestsAreForwarded();
    void SelectedItemsComeInTheOrderOfSelecting();
    void CopyPathNeedsAFile();
    void ShowInFolderTriesTheExplorerFirst_data();
    void ShowInFolderTriesTheExplorerFirst();

private:
    QAction* Action(const char* name) const { return mView->findChild<QAction*>(QLatin1String(name)); }
    void ShowInWindow();

    std::unique_ptr<QWidget> mWindow;
    ProjectView* mView = nullptr;
    QTreeWidget* mTree = nullptr;
    std::shared_ptr<FakeObject> mRoot;
};

void tst_ProjectView::init()
{
    mWindow = std::make_unique<QWidget>();
    mWindow->resize(400, 500);
    auto* const layout = new QVBoxLayout(mWindow.get());
    layout->setContentsMargins(0, 0, 0, 0);
    mView = new ProjectView(mWindow.get());
    layout->addWidget(mView);
    mTree = mView->findChild<QTreeWidget*>(QStringLiteral("projectTree"));
    mRoot = AddFolder(nullptr, QStringLiteral("root"));
    mView->SetRoot(mRoot);
}

void tst_ProjectView::cleanup()
{
    mWindow.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

void tst_ProjectView::ShowInWindow()
{
    mView->Update();
    mWindow->show();
    mWindow->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mWindow.get()));
    mTree->setFocus();
}

void tst_ProjectView::TheTreeHasFourColumns()
{
    QCOMPARE(mTree->parentWidget(), mView);
    QCOMPARE(mTree->columnCount(), 4);
    QCOMPARE(mTree->headerItem()->text(0), QStringLiteral("Name"));
    for (int column = 1; column < 4; ++column)
        QCOMPARE(mTree->headerItem()->text(column), QString());
    QVERIFY(mTree->dragEnabled());
    QVERIFY(mTree->acceptDrops());
    QVERIFY(mTree->viewport()->acceptDrops());
    QCOMPARE(mTree->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(mTree->topLevelItemCount(), 0);
    QCOMPARE(mView->contextMenuPolicy(), Qt::CustomContextMenu);
}

void tst_ProjectView::TheButtonsStandInARow()
{
    auto* const outer = qobject_cast<QVBoxLayout*>(mView->layout());
    QVERIFY(outer);
    QCOMPARE(outer->contentsMargins(), QMargins());
    QCOMPARE(outer->count(), 2);
    auto* const trees = qobject_cast<QVBoxLayout*>(outer->itemAt(0)->layout());
    QVERIFY(trees);
    QCOMPARE(trees->contentsMargins(), QMargins());
    QCOMPARE(trees->itemAt(0)->widget(), mTree);
    auto* const row = qobject_cast<QHBoxLayout*>(outer->itemAt(1)->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins(4, 0, 4, 6));
    QCOMPARE(row->spacing(), 4);
    QCOMPARE(row->count(), 5);
    QVERIFY(row->itemAt(3)->spacerItem());
    const char* const names[] = {"newFolderButton", "newTimelineButton", "importFileButton", nullptr,
                                 "deleteButton"};
    const char* const tips[] = {"New Folder", "New Timeline", "Import File", nullptr, "Delete"};
    const char* const pictures[] = {"add_folder", "add_timeline", "import_file", nullptr, "delete"};
    for (const int index : {0, 1, 2, 4})
    {
        auto* const button = qobject_cast<FlatButton*>(row->itemAt(index)->widget());
        QVERIFY(button);
        QCOMPARE(button->objectName(), QLatin1String(names[index]));
        QCOMPARE(button->toolTip(), QLatin1String(tips[index]));
        QCOMPARE(button->accessibleName(), QLatin1String(tips[index]));
        QCOMPARE(button->minimumSize(), QSize(18, 18));
        QCOMPARE(button->maximumSize(), QSize(18, 18));
        FlatButton expected;
        expected.setFixedSize(18, 18);
        const QImage picture(QStringLiteral(":/icons/%1.png").arg(QLatin1String(pictures[index])));
        QVERIFY(!picture.isNull());
        expected.SetImage(picture.mirrored(index == 0, false), 4);
        QCOMPARE(button->pixmap(Qt::ReturnByValue).toImage(), expected.pixmap(Qt::ReturnByValue).toImage());
    }
}

void tst_ProjectView::ButtonsAndActionsAskForTheirRequest_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("request");
    const auto row = [](const char* button, const char* action, const char* text, const char* request)
    {
        QTest::newRow(action) << QByteArray(button) << QByteArray(action) << QString::fromLatin1(text)
                              << QByteArray(request);
    };
    row("newFolderButton", "addFolderAction", "Add Folder", SIGNAL(NewFolderRequested()));
    row("newTimelineButton", "addTimelineAction", "Add Timeline", SIGNAL(NewTimelineRequested()));
    row("importFileButton", "importFileAction", "Import File...", SIGNAL(ImportFileRequested()));
    row("deleteButton", "deleteAction", "Delete", SIGNAL(RemoveRequested()));
    row("", "makeDefaultAction", "Make Default", SIGNAL(MakeDefaultTimelineRequested()));
}

void tst_ProjectView::ButtonsAndActionsAskForTheirRequest()
{
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, action);
    QFETCH(QString, text);
    QFETCH(QByteArray, request);
    AddTimeline(mRoot, QStringLiteral("cut"));
    ShowInWindow();
    const QString before = Describe(mTree);
    QSignalSpy spy(mView, request.constData());
    QAction* const found = Action(action.constData());
    QVERIFY(found);
    QCOMPARE(found->parent(), mView);
    QCOMPARE(found->text(), text);
    QVERIFY(found->shortcut().isEmpty());
    QVERIFY(found->icon().isNull());
    found->trigger();
    QCOMPARE(spy.size(), 1);
    if (!button.isEmpty())
    {
        auto* const widget = mView->findChild<FlatButton*>(QLatin1String(button));
        InputEvents::Press(widget, QPoint(9, 9));
        InputEvents::Release(widget, QPoint(9, 9));
        QCOMPARE(spy.size(), 2);
    }
    // The host answers; until then nothing changes.
    QCOMPARE(Describe(mTree), before);
}

void tst_ProjectView::ColumnsAreSizedAtTheFirstShow_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("name");
    QTest::addColumn<int>("letter");
    QTest::newRow("997") << 997 << 797 << 99;
    QTest::newRow("400") << 400 << 320 << 40;
    QTest::newRow("160") << 160 << 128 << 16;
}

void tst_ProjectView::ColumnsAreSizedAtTheFirstShow()
{
    QFETCH(int, width);
    QFETCH(int, name);
    QFETCH(int, letter);
    mWindow->resize(width, 400);
    ShowInWindow();
    QCOMPARE(mTree->width(), width);
    QCOMPARE(mTree->columnWidth(0), name);
    QCOMPARE(mTree->columnWidth(1), letter);
    QCOMPARE(mTree->columnWidth(2), letter);
    mTree->header()->resizeSection(0, 500);
    mWindow->hide();
    mWindow->resize(600, 400);
    mWindow->show();
    QCOMPARE(mTree->columnWidth(0), 500);
    QCOMPARE(mTree->columnWidth(1), letter);
}

void tst_ProjectView::AnEditThatDiffersAsksForTheName()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    ShowInWindow();
    QSignalSpy renamed(mView, SIGNAL(Renamed(QUuid, QString)));
    const auto edit = [this](const QString& text)
    {
        mTree->topLevelItem(0)->setSelected(true);
        mView->OnRenameSelectedItem();
        auto* const editor = mTree->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->setText(text);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(!mTree->findChild<QLineEdit*>());
        mTree->setFocus();
    };
    edit(QStringLiteral("cut"));
    QVERIFY(renamed.isEmpty());
    edit(QStringLiteral("final cut"));
    QCOMPARE(renamed.size(), 1);
    QCOMPARE(renamed.first(), QVariantList({cut->GetID(), QStringLiteral("final cut")}));
    // The row keeps what was typed, whatever the host makes of it.
    QCOMPARE(mTree->topLevelItem(0)->text(0), QStringLiteral("final cut"));
    mTree->topLevelItem(0)->setText(1, QStringLiteral("A"));
    mTree->topLevelItem(0)->setText(2, QStringLiteral("*"));
    QCOMPARE(renamed.size(), 1);
}

void tst_ProjectView::RenamingNeedsTheFocusAndOneRow()
{
    AddTimeline(mRoot, QStringLiteral("one"));
    AddTimeline(mRoot, QStringLiteral("two"));
    AddFolder(mRoot, QStringLiteral("bin"))->isSourceBin = true;
    auto* const other = new QLineEdit(mWindow.get());
    ShowInWindow();
    QTreeWidgetItem* const one = mTree->topLevelItem(0);
    const auto isEditing = [this] { return mTree->findChild<QLineEdit*>() != nullptr; };
    mView->OnRenameSelectedItem();
    QVERIFY(!isEditing());
    one->setSelected(true);
    mTree->topLevelItem(1)->setSelected(true);
    mView->OnRenameSelectedItem();
    QVERIFY(!isEditing());
    mTree->topLevelItem(1)->setSelected(false);
    other->setFocus();
    QVERIFY(!mView->HasFocusExtended());
    mView->OnRenameSelectedItem();
    QVERIFY(!isEditing());
    mView->setFocus();
    QVERIFY(mView->HasFocusExtended());
    mView->OnRenameSelectedItem();
    QVERIFY(isEditing());
    mTree->closePersistentEditor(one);
    mTree->setFocus();
    QVERIFY(mView->HasFocusExtended());
    one->setSelected(false);
    mTree->topLevelItem(2)->setSelected(true);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    mView->OnRenameSelectedItem();
    QVERIFY(!isEditing());
}

void tst_ProjectView::KeysGoOnToTheParent()
{
    ShowInWindow();
    struct Listener : QObject
    {
        QList<int> keys;
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::KeyPress)
                keys << static_cast<QKeyEvent*>(event)->key();
            return false;
        }
    } listener;
    mWindow->installEventFilter(&listener);
    mView->setFocus();
    QTest::keyClick(mView, Qt::Key_Space);
    QTest::keyClick(mView, Qt::Key_F2);
    QCOMPARE(listener.keys, QList<int>({Qt::Key_Space, Qt::Key_F2}));
}

void tst_ProjectView::F2DoesNothing()
{
    AddTimeline(mRoot, QStringLiteral("one"));
    AddTimeline(mRoot, QStringLiteral("two"));
    ShowInWindow();
    mTree->setCurrentItem(mTree->topLevelItem(0));
    QKeyEvent press(QEvent::KeyPress, Qt::Key_F2, Qt::NoModifier);
    QApplication::sendEvent(mTree, &press);
    QVERIFY(press.isAccepted());
    QVERIFY(!mTree->findChild<QLineEdit*>());
    QTest::keyClick(mTree, Qt::Key_Down);
    QCOMPARE(mTree->currentItem(), mTree->topLevelItem(1));
}

void tst_ProjectView::AViewerActionAsksForTheTimeline()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    QSignalSpy spy(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    const auto asked = [&spy] { return spy.last()[0].value<std::weak_ptr<Timeline>>().lock().get(); };
    Action("openInViewerAAction")->trigger();
    QCOMPARE(asked(), static_cast<Timeline*>(cut.get()));
    QCOMPARE(spy.last()[1].toInt(), 0);
    Action("openInViewerBAction")->trigger();
    QCOMPARE(asked(), static_cast<Timeline*>(cut.get()));
    QCOMPARE(spy.last()[1].toInt(), 1);
    // Whoever else calls means viewer B.
    mView->RequestViewerChange();
    QCOMPARE(spy.last()[1].toInt(), 1);
    QCOMPARE(spy.size(), 3);
}

void tst_ProjectView::ATimelineInTheViewerIsAskedOut()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    cut->viewerIndex = 0;
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    QSignalSpy spy(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    Action("openInViewerAAction")->trigger();
    QVERIFY(spy.last()[0].value<std::weak_ptr<Timeline>>().expired());
    QCOMPARE(spy.last()[1].toInt(), 0);
    Action("openInViewerBAction")->trigger();
    QVERIFY(!spy.last()[0].value<std::weak_ptr<Timeline>>().expired());
    cut->viewerIndex = 1;
    Action("openInViewerBAction")->trigger();
    QVERIFY(spy.last()[0].value<std::weak_ptr<Timeline>>().expired());
    QCOMPARE(spy.last()[1].toInt(), 1);
}

void tst_ProjectView::OnlyOneTimelineIsAskedFor()
{
    AddFolder(mRoot, QStringLiteral("folder"));
    AddTimeline(mRoot, QStringLiteral("one"));
    AddTimeline(mRoot, QStringLiteral("two"));
    AddObject(mRoot, QStringLiteral("element"), 2);
    mView->Update();
    QSignalSpy spy(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    Action("openInViewerAAction")->trigger();
    mTree->topLevelItem(0)->setSelected(true);
    Action("openInViewerAAction")->trigger();
    mView->RequestViewerChange(mTree->topLevelItem(0), 0);
    mTree->clearSelection();
    mTree->topLevelItem(3)->setSelected(true);
    Action("openInViewerAAction")->trigger();
    mTree->clearSelection();
    mTree->topLevelItem(1)->setSelected(true);
    mTree->topLevelItem(2)->setSelected(true);
    Action("openInViewerAAction")->trigger();
    QVERIFY(spy.isEmpty());
}

void tst_ProjectView::AnObjectThatIsNoTimelineClassGivesAnEmptyPointer()
{
    AddObject(mRoot, QStringLiteral("odd"), 1);
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    QSignalSpy spy(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    Action("openInViewerAAction")->trigger();
    mView->RequestViewerChange(mTree->topLevelItem(0), 1);
    QCOMPARE(spy.size(), 2);
    QVERIFY(spy[0][0].value<std::weak_ptr<Timeline>>().expired());
    QVERIFY(spy[1][0].value<std::weak_ptr<Timeline>>().expired());
}

void tst_ProjectView::ADoubleClickOpensInAViewer_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("standsIn");
    QTest::addColumn<int>("viewer");
    QTest::newRow("plain") << int(Qt::NoModifier) << -1 << 0;
    QTest::newRow("Ctrl") << int(Qt::ControlModifier) << -1 << 1;
    QTest::newRow("Shift") << int(Qt::ShiftModifier) << -1 << 0;
    QTest::newRow("already in A") << int(Qt::NoModifier) << 0 << 0;
    QTest::newRow("already in B") << int(Qt::ControlModifier) << 1 << 1;
}

void tst_ProjectView::ADoubleClickOpensInAViewer()
{
    QFETCH(int, modifiers);
    QFETCH(int, standsIn);
    QFETCH(int, viewer);
    const auto cut = AddTimeline(mRoot, QStringLiteral("cut"));
    cut->viewerIndex = standsIn;
    ShowInWindow();
    mTree->topLevelItem(0)->setSelected(true);
    QSignalSpy spy(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    QTest::mouseDClick(mTree->viewport(), Qt::LeftButton, Qt::KeyboardModifiers(modifiers),
                       mTree->visualItemRect(mTree->topLevelItem(0)).center());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy[0][0].value<std::weak_ptr<Timeline>>().lock().get(), static_cast<Timeline*>(cut.get()));
    QCOMPARE(spy[0][1].toInt(), viewer);
}

void tst_ProjectView::ADoubleClickNeitherEditsNorExpands()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    AddTimeline(folder, QStringLiteral("child"));
    AddTimeline(mRoot, QStringLiteral("cut"));
    ShowInWindow();
    QSignalSpy spy(mView, SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    for (QTreeWidgetItem* const row : {mTree->topLevelItem(0), mTree->topLevelItem(1)})
    {
        mTree->clearSelection();
        row->setSelected(true);
        QMouseEvent event(QEvent::MouseButtonDblClick, mTree->visualItemRect(row).center(), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QApplication::sendEvent(mTree->viewport(), &event);
        QVERIFY(event.isAccepted());
        QVERIFY(!mTree->findChild<QLineEdit*>());
        QVERIFY(!row->isExpanded());
    }
    QCOMPARE(spy.size(), 1);
    mTree->selectAll();
    QTest::mouseDClick(mTree->viewport(), Qt::LeftButton, Qt::NoModifier,
                       mTree->visualItemRect(mTree->topLevelItem(1)).center());
    QCOMPARE(spy.size(), 1);
}

void tst_ProjectView::SourcesAreRefreshedAndReplacedByTheirID()
{
    const auto cut = AddSource(mRoot, QStringLiteral("cut"), QStringLiteral("/media/a.mov"));
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    QSignalSpy refresh(mView, SIGNAL(RefreshSourceRequested(QUuid)));
    QSignalSpy replace(mView, SIGNAL(ReplaceSourceRequested(QUuid, QString, QString)));
    Action("refreshAction")->trigger();
    QCOMPARE(refresh.first().first().toUuid(), cut->source->GetID());
    Action("replaceAction")->trigger();
    QCOMPARE(replace.first(),
             QVariantList({cut->source->GetID(), QString(), QStringLiteral("/media/a.mov")}));
    QCOMPARE(refresh.size() + replace.size(), 2);
}

void tst_ProjectView::SourceRequestsNeedOneRowWithASource()
{
    AddTimeline(mRoot, QStringLiteral("without"));
    AddSource(mRoot, QStringLiteral("with"));
    // Its type doesn't matter.
    AddObject(mRoot, QStringLiteral("element"), 2)->source =
        std::make_shared<Source>(QUuid::createUuid(), QStringLiteral("/media/b.mov"));
    mView->Update();
    QSignalSpy refresh(mView, SIGNAL(RefreshSourceRequested(QUuid)));
    QSignalSpy replace(mView, SIGNAL(ReplaceSourceRequested(QUuid, QString, QString)));
    const auto ask = [this]
    {
        mView->OnRefreshSource();
        mView->OnReplaceSource();
    };
    ask();
    mTree->topLevelItem(0)->setSelected(true);
    ask();
    mTree->topLevelItem(1)->setSelected(true);
    ask();
    QVERIFY(refresh.isEmpty() && replace.isEmpty());
    mTree->clearSelection();
    mTree->topLevelItem(2)->setSelected(true);
    ask();
    QCOMPARE(refresh.size(), 1);
    QCOMPARE(replace.size(), 1);
}

void tst_ProjectView::TheTreesRequestsAreForwarded()
{
    QSignalSpy moved(mView, SIGNAL(ProjectObjectMoved(QUuid, QUuid, int)));
    QSignalSpy inserted(mView, SIGNAL(InsertSourcesInFolderRequested(QList<QString>, QUuid, QList<int>)));
    const QUuid id = QUuid::createUuid();
    const QUuid parentID = QUuid::createUuid();
    const QList<QString> paths = {QStringLiteral("b"), QStringLiteral("a")};
    const QList<int> indices = {3, 3};
    QVERIFY(QMetaObject::invokeMethod(mTree, "ProjectObjectMoved", Q_ARG(QUuid, id), Q_ARG(QUuid, parentID),
                                      Q_ARG(int, 5)));
    QVERIFY(QMetaObject::invokeMethod(mTree, "InsertSourcesInFolderRequested", Q_ARG(QList<QString>, paths),
                                      Q_ARG(QUuid, parentID), Q_ARG(QList<int>, indices)));
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.first(), QVariantList({id, parentID, 5}));
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(inserted.first()[0].value<QList<QString>>(), paths);
    QCOMPARE(inserted.first()[1].toUuid(), parentID);
    QCOMPARE(inserted.first()[2].value<QList<int>>(), indices);
}

void tst_ProjectView::SelectedItemsComeInTheOrderOfSelecting()
{
    for (int index = 0; index < 4; ++index)
        AddTimeline(mRoot, QString::number(index));
    mView->Update();
    QList<QUuid> expected;
    for (const int index : {2, 0, 3})
    {
        mTree->topLevelItem(index)->setSelected(true);
        expected << mRoot->children[index]->GetID();
    }
    QCOMPARE(mView->GetSelectedItems(), expected);
}

void tst_ProjectView::CopyPathNeedsAFile()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a b.mov"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    AddSource(mRoot, QStringLiteral("there"), folder.path() + QStringLiteral("/./a b.mov"));
    AddSource(mRoot, QStringLiteral("gone"), folder.filePath(QStringLiteral("gone.mov")));
    AddSource(mRoot, QStringLiteral("without"))->source.reset();
    AddObject(mRoot, QStringLiteral("element"), 2)->source =
        std::make_shared<Source>(QUuid::createUuid(), path);
    mView->Update();
    QClipboard* const clipboard = QApplication::clipboard();
    clipboard->setText(QStringLiteral("before"));
    mView->CopyPathToClipboard();
    for (const int index : {1, 2, 3})
    {
        mTree->clearSelection();
        mTree->topLevelItem(index)->setSelected(true);
        mView->CopyPathToClipboard();
    }
    QCOMPARE(clipboard->text(), QStringLiteral("before"));
    // The first that was selected counts.
    mTree->clearSelection();
    mTree->topLevelItem(0)->setSelected(true);
    mTree->topLevelItem(1)->setSelected(true);
    Action("copyPathAction")->trigger();
    QCOMPARE(clipboard->text(), QFileInfo(folder.path() + QStringLiteral("/./a b.mov")).absoluteFilePath());
}

void tst_ProjectView::ShowInFolderTriesTheExplorerFirst_data()
{
    QTest::addColumn<bool>("hasExplorer");
    QTest::addColumn<bool>("isDirectory");
    QTest::newRow("explorer, file") << true << false;
    QTest::newRow("explorer, directory") << true << true;
    QTest::newRow("desktop, file") << false << false;
    QTest::newRow("desktop, directory") << false << true;
}

/// Stands for the desktop.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void Open(const QUrl& url) { urls << url; }
};

void tst_ProjectView::ShowInFolderTriesTheExplorerFirst()
{
    QFETCH(bool, hasExplorer);
    QFETCH(bool, isDirectory);
    QTemporaryDir folder;
    const QString log = folder.filePath(QStringLiteral("log"));
    const QByteArray formerPath = qgetenv("PATH");
    const QString programs = folder.filePath(QStringLiteral("bin"));
    QVERIFY(QDir().mkpath(programs));
    if (hasExplorer)
    {
        QFile script(programs + QStringLiteral("/explorer"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + log.toUtf8() + ".part'\nPATH=" + formerPath +
                     "\nmv '" + log.toUtf8() + ".part' '" + log.toUtf8() + "'\n");
        script.close();
        QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    const QString path =
        isDirectory ? folder.path() : folder.filePath(QStringLiteral("no such file, of course.mov"));
    AddSource(mRoot, QStringLiteral("source"), path);
    AddSource(mRoot, QStringLiteral("nameless"));
    AddTimeline(mRoot, QStringLiteral("timeline"));
    mView->Update();
    UrlCatcher desktop;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &desktop, "Open");
    qputenv("PATH", programs.toLocal8Bit());
    mView->ShowInFolder();
    for (const int index : {1, 2})
    {
        mTree->clearSelection();
        mTree->topLevelItem(index)->setSelected(true);
        mView->ShowInFolder();
    }
    QVERIFY(desktop.urls.isEmpty());
    mTree->clearSelection();
    mTree->topLevelItem(0)->setSelected(true);
    mTree->topLevelItem(2)->setSelected(true);
    Action("showInFolderAction")->trigger();
    qputenv("PATH", formerPath);
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    if (!hasExplorer)
    {
        QCOMPARE(desktop.urls, QList<QUrl>({QUrl::fromLocalFile(folder.path())}));
        return;
    }
    QVERIFY(desktop.urls.isEmpty());
    QTRY_VERIFY(QFile::exists(log));
    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()),
             (isDirectory ? QString() : QStringLiteral("/select,\n")) + path + QLatin1Char('\n'));
}

static const TestRegistration<tst_ProjectView> ProjectViewRegistration;

#include "tst_ProjectView.moc"
