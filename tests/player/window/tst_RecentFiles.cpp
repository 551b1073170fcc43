// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "window/PlayerState.h"
#include "window/RecentFiles.h"

#include <QAction>
#include <QMenu>
#include <QtTest>

class tst_RecentFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { PlayerState::SetValue("test/recent", QStringList()); }

    void NewestStandsFirstAndOnce();
    void LimitBoundsTheList();
    void ListSurvivesARestart();
    void MenuOpensWhatIsPicked();
};

namespace
{

QStringList Names(const QMenu& menu)
{
    QStringList names;
    for (const QAction* action : menu.actions())
        names << action->text();
    return names;
}

} // namespace

void tst_RecentFiles::NewestStandsFirstAndOnce()
{
    const int limit = 5;
    QMenu menu;
    RecentFiles recent("test/recent", &limit, &menu, nullptr);
    QVERIFY(recent.Paths().isEmpty());
    QVERIFY(!menu.isEnabled());
    for (const char* path : {"/a.mov", "/x/b, b.mov", "/c.mov", "/a.mov"})
        recent.Add(QLatin1String(path));
    QCOMPARE(recent.Paths(), (QStringList{"/a.mov", "/c.mov", "/x/b, b.mov"}));
    QCOMPARE(Names(menu), (QStringList{"a.mov", "c.mov", "b, b.mov"}));
    QVERIFY(menu.isEnabled());
}

void tst_RecentFiles::LimitBoundsTheList()
{
    int limit = 2;
    QMenu menu;
    RecentFiles recent("test/recent", &limit, &menu, nullptr);
    for (int i = 0; i < 5; ++i)
        recent.Add(QStringLiteral("/%1.mov").arg(i));
    QCOMPARE(recent.Paths(), (QStringList{"/4.mov", "/3.mov"}));
    limit = 1;
    recent.Update();
    QCOMPARE(Names(menu), QStringList{"4.mov"});
    limit = 0;
    recent.Update();
    QVERIFY(!menu.menuAction()->isVisible());
    recent.Add("/other.mov");
    limit = 4;
    recent.Update();
    QVERIFY(menu.menuAction()->isVisible());
    QVERIFY(recent.Paths().isEmpty());
}

void tst_RecentFiles::ListSurvivesARestart()
{
    const int limit = 5;
    QMenu menu;
    RecentFiles("test/recent", &limit, &menu, nullptr).Add("/a.mov");
    const RecentFiles again("test/recent", &limit, &menu, nullptr);
    QCOMPARE(again.Paths(), QStringList{"/a.mov"});
}

void tst_RecentFiles::MenuOpensWhatIsPicked()
{
    const int limit = 5;
    QMenu menu;
    RecentFiles recent("test/recent", &limit, &menu, nullptr);
    recent.Add("/one & two.mov");
    QSignalSpy opened(&recent, SIGNAL(OpenRequested(QString)));
    QCOMPARE(Names(menu), QStringList{"one && two.mov"});
    menu.actions().first()->trigger();
    QCOMPARE(opened, (QList<QVariantList>{{"/one & two.mov"}}));
}

static const TestRegistration<tst_RecentFiles> RecentFilesRegistration;

#include "tst_RecentFiles.moc"
