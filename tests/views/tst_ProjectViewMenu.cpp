// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"

#include <QAction>
#include <QMenu>
#include <QSignalSpy>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

#include <functional>

using namespace FakeProject;

namespace
{

/// Calls a function with each menu that opens while it lives, as soon as the menu's own event loop runs.
class MenuUser
{
public:
    explicit MenuUser(const std::function<void(QMenu*)>& use)
    {
        QObject::connect(&mTimer, &QTimer::timeout, &mTimer,
                         [use]
                         {
                             if (auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
                                 use(menu);
                         });
        mTimer.start(5);
    }

private:
    QTimer mTimer;
};

} // namespace

/// The menu of each selection.
class tst_ProjectViewMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void OneRow_data();
    void OneRow();
    void SeveralRows_data();
    void SeveralRows();
    void ADeadObjectHasNoMenu();
    void TheMenuOpensAtThePointOfThePanel();
    void ARightClickOnARowOpensItsMenu();
    void AnEntryDoesItsWork();
    void TextsFollowTheTimeline();

private:
    /// The menu as text, with a bar for each separator.
    QString MenuText();
    std::shared_ptr<ProjectObject> AddKind(const QString& kind);

    std::unique_ptr<ProjectView> mView;
    QTreeWidget* mTree = nullptr;
    std::shared_ptr<FakeObject> mRoot;
    QPoint mMenuPosition;
};

void tst_ProjectViewMenu::init()
{
    mView = std::make_unique<ProjectView>();
    mView->resize(300, 400);
    mTree = mView->findChild<QTreeWidget*>();
    mRoot = AddFolder(nullptr, QStringLiteral("root"));
    mView->SetRoot(mRoot);
}

void tst_ProjectViewMenu::cleanup()
{
    mView.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

std::shared_ptr<ProjectObject> tst_ProjectViewMenu::AddKind(const QString& kind)
{
    if (kind.contains(QLatin1String("element")))
        return AddObject(mRoot, kind, 2);
    if (kind.contains(QLatin1String("timeline")))
    {
        const auto timeline =
            kind.contains(QLatin1String("source")) ? AddSource(mRoot, kind) : AddTimeline(mRoot, kind);
        timeline->isSourceTimeline = kind.contains(QLatin1String("source timeline"));
        timeline->isDefault = kind.contains(QLatin1String("default"));
        timeline->viewerIndex = kind.contains(QLatin1String("in A"))   ? 0
                                : kind.contains(QLatin1String("in B")) ? 1
                                                                       : -1;
        return timeline;
    }
    const auto folder = AddFolder(mRoot, kind);
    folder->isProtected = kind.contains(QLatin1String("protected"));
    folder->isFolderBin = kind.contains(QLatin1String("for folders"));
    folder->isSourceBin = kind.contains(QLatin1String("for sources"));
    folder->isTimelineBin = kind.contains(QLatin1String("for cuts"));
    if (folder->isFolderBin)
        AddFolder(folder, QStringLiteral("child"));
    return folder;
}

QString tst_ProjectViewMenu::MenuText()
{
    QString text = QStringLiteral("none");
    const MenuUser user(
        [this, &text](QMenu* menu)
        {
            text.clear();
            for (const QAction* const action : menu->actions())
                text += action->isSeparator() ? QStringLiteral("| ") : action->text() + QStringLiteral("; ");
            mMenuPosition = menu->pos();
            menu->close();
        });
    mView->ShowContextMenu(QPoint(40, 30));
    return text.trimmed();
}

void tst_ProjectViewMenu::OneRow_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("menu");
    const auto row = [](const char* kind, const char* menu)
    { QTest::newRow(kind) << QString::fromLatin1(kind) << QString::fromLatin1(menu); };
    row("folder", "Add Folder; Add Timeline; | Import File...; | Rename; | Delete;");
    row("protected folder", "| Rename;");
    row("for folders", "Add Folder;");
    row("for sources", "| Import File...;");
    row("for cuts", "Add Timeline;");
    row("for folders and for sources", "none");
    row("protected for cuts", "none");
    row("timeline", "Open in Viewer A; Open in Viewer B; | Make Default; | Rename; | Delete;");
    row("timeline in A, default",
        "Remove from Viewer A; Open in Viewer B; | Clear Default; | Rename; | Delete;");
    row("timeline in B", "Open in Viewer A; Remove from Viewer B; | Make Default; | Rename; | Delete;");
    row("source timeline", "Open in Viewer A; Open in Viewer B; | Rename; | Refresh; Replace...; | Show in "
                           "Folder; Copy Path to Clipboard; | Delete;");
    row("timeline with a source", "Open in Viewer A; Open in Viewer B; | Make Default; | Rename; | Refresh; "
                                  "Replace...; | Show in Folder; Copy Path to Clipboard; | Delete;");
    row("element", "| Rename; | Delete;");
}

void tst_ProjectViewMenu::OneRow()
{
    QFETCH(QString, kind);
    QFETCH(QString, menu);
    AddKind(kind);
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    QCOMPARE(MenuText(), menu);
}

void tst_ProjectViewMenu::SeveralRows_data()
{
    QTest::addColumn<QStringList>("kinds");
    QTest::addColumn<QString>("menu");
    const QString plain = QStringLiteral("Add Folder; Add Timeline;");
    const QString withDelete = plain + QStringLiteral(" | Delete;");
    QTest::newRow("nothing") << QStringList() << plain;
    QTest::newRow("one special, one plain")
        << QStringList({QStringLiteral("for cuts"), QStringLiteral("folder")}) << withDelete;
    QTest::newRow("one plain, one special")
        << QStringList({QStringLiteral("folder"), QStringLiteral("protected folder")}) << withDelete;
    QTest::newRow("special ones") << QStringList({QStringLiteral("for cuts"), QStringLiteral("for sources"),
                                                  QStringLiteral("for folders"),
                                                  QStringLiteral("protected folder")})
                                  << plain;
    QTest::newRow("timelines") << QStringList(
                                      {QStringLiteral("timeline 1"), QStringLiteral("source timeline 2")})
                               << withDelete;
}

void tst_ProjectViewMenu::SeveralRows()
{
    QFETCH(QStringList, kinds);
    QFETCH(QString, menu);
    AddTimeline(mRoot, QStringLiteral("not selected"));
    for (const QString& kind : kinds)
        AddKind(kind)->SetSelected(true);
    mView->Update();
    QCOMPARE(mView->GetSelectedItems().size(), kinds.size());
    QCOMPARE(MenuText(), menu);
}

void tst_ProjectViewMenu::ADeadObjectHasNoMenu()
{
    AddTimeline(mRoot, QStringLiteral("timeline"));
    AddTimeline(mRoot, QStringLiteral("other"));
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    mRoot->children.clear();
    QCOMPARE(MenuText(), QStringLiteral("none"));
    mTree->topLevelItem(1)->setSelected(true);
    QCOMPARE(MenuText(), QStringLiteral("Add Folder; Add Timeline;"));
}

void tst_ProjectViewMenu::TheMenuOpensAtThePointOfThePanel()
{
    mView->move(50, 60);
    mView->show();
    QVERIFY(QTest::qWaitForWindowExposed(mView.get()));
    MenuText();
    QCOMPARE(mMenuPosition, mView->mapToGlobal(QPoint(40, 30)));
}

void tst_ProjectViewMenu::ARightClickOnARowOpensItsMenu()
{
    AddTimeline(mRoot, QStringLiteral("timeline"));
    AddFolder(mRoot, QStringLiteral("folder"));
    mView->Update();
    mView->show();
    QVERIFY(QTest::qWaitForWindowExposed(mView.get()));
    const QPoint center = mTree->visualItemRect(mTree->topLevelItem(1)).center();
    const QPoint global = mTree->viewport()->mapToGlobal(center);
    QString first;
    QPoint position;
    const MenuUser user(
        [&first, &position](QMenu* menu)
        {
            first = menu->actions().first()->text();
            position = menu->pos();
            menu->close();
        });
    // The window system asks for the menu with the press.
    InputEvents::Press(mTree->viewport(), center, Qt::RightButton);
    QCOMPARE(first, QStringLiteral("Add Folder"));
    QCOMPARE(position, global);
    InputEvents::Release(mTree->viewport(), center, Qt::RightButton);
}

void tst_ProjectViewMenu::AnEntryDoesItsWork()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("timeline"));
    mView->Update();
    mView->show();
    QVERIFY(QTest::qWaitForWindowExposed(mView.get()));
    mTree->topLevelItem(0)->setSelected(true);
    QSignalSpy viewer(mView.get(), SIGNAL(ViewerChangeRequested(std::weak_ptr<Timeline>, int)));
    const MenuUser user(
        [](QMenu* menu)
        {
            QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                              menu->actionGeometry(menu->actions().first()).center());
        });
    mView->ShowContextMenu(QPoint(5, 5));
    QCOMPARE(viewer.size(), 1);
    QCOMPARE(viewer[0][1].toInt(), 0);
    QCOMPARE(viewer[0][0].value<std::weak_ptr<Timeline>>().lock().get(), static_cast<Timeline*>(cut.get()));
}

void tst_ProjectViewMenu::TextsFollowTheTimeline()
{
    const auto cut = AddTimeline(mRoot, QStringLiteral("timeline"));
    mView->Update();
    mTree->topLevelItem(0)->setSelected(true);
    cut->viewerIndex = 0;
    cut->isDefault = true;
    QVERIFY(MenuText().startsWith(QLatin1String("Remove from Viewer A; Open in Viewer B; | Clear Default;")));
    cut->viewerIndex = 1;
    cut->isDefault = false;
    QVERIFY(MenuText().startsWith(QLatin1String("Open in Viewer A; Remove from Viewer B; | Make Default;")));
}

static const TestRegistration<tst_ProjectViewMenu> ProjectViewMenuRegistration;

#include "tst_ProjectViewMenu.moc"
