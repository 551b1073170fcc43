// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "window/PanelArea.h"
#include "window/PlayerState.h"

#include <QFile>
#include <QSignalSpy>
#include <QSplitter>
#include <QtTest>

#include <memory>

class tst_PanelArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void PlacesWithoutAPanelTakeNoRoom();
    void PanelsStandRoundTheCenter();
    void AHiddenPanelGivesItsRoomBack();
    void UnknownPlacesAreRefused();
    void AReplacedPanelIsDeleted();
    void SizesAndVisibilityOutliveTheArea();
    void AWildStateFileIsHarmless();
    void ColumnsKeepTheirWidthAsTheWindowGrows();

private:
    void Make();
    void Fill();
    QRect Rect(const char* name) const
    {
        QWidget* const panel = mArea->Panel(QLatin1String(name));
        return QRect(panel->mapTo(mArea.get(), QPoint(0, 0)), panel->size());
    }
    QRect CenterRect() const { return QRect(mCenter->mapTo(mArea.get(), QPoint(0, 0)), mCenter->size()); }

    std::unique_ptr<PanelArea> mArea;
    QWidget* mCenter = nullptr;
};

void tst_PanelArea::init()
{
    QFile::remove(PlayerState::Path());
    Make();
}

void tst_PanelArea::cleanup()
{
    mArea.reset();
    QFile::remove(PlayerState::Path());
}

void tst_PanelArea::Make()
{
    mArea.reset();
    mCenter = new QWidget;
    mArea = std::make_unique<PanelArea>(mCenter);
    mArea->resize(1000, 600);
    mArea->show();
    QVERIFY(QTest::qWaitForWindowExposed(mArea.get()));
}

void tst_PanelArea::Fill()
{
    for (const QString& name : mArea->Names())
        QVERIFY(mArea->SetPanel(name, new QWidget));
    QCoreApplication::processEvents();
}

void tst_PanelArea::PlacesWithoutAPanelTakeNoRoom()
{
    QCOMPARE(CenterRect(), mArea->rect());
    for (const QString& name : mArea->Names())
        QVERIFY(!mArea->IsVisible(name));
    mArea->SetVisible(QStringLiteral("project"), true);
    QCOMPARE(CenterRect(), mArea->rect());
}

void tst_PanelArea::PanelsStandRoundTheCenter()
{
    Fill();
    QCOMPARE(mArea->Names(), (QStringList{"project", "details", "properties"}));
    QVERIFY(Rect("project").right() < CenterRect().left());
    QVERIFY(Rect("details").right() < CenterRect().left());
    QVERIFY(Rect("details").top() > Rect("project").bottom());
    QVERIFY(Rect("properties").left() > CenterRect().right());
    QCOMPARE(Rect("project").width(), 260);
    QCOMPARE(Rect("properties").width(), 260);
}

void tst_PanelArea::AHiddenPanelGivesItsRoomBack()
{
    Fill();
    QSignalSpy changes(mArea.get(), SIGNAL(VisibilityChanged(QString, bool)));
    mArea->Toggle(QStringLiteral("project"));
    QVERIFY(!mArea->IsVisible(QStringLiteral("project")));
    QCoreApplication::processEvents();
    QCOMPARE(Rect("details").top(), 0);
    QCOMPARE(Rect("details").height(), 600);
    mArea->SetVisible(QStringLiteral("details"), false);
    QCoreApplication::processEvents();
    QCOMPARE(CenterRect().left(), 0);
    mArea->SetVisible(QStringLiteral("properties"), false);
    QCoreApplication::processEvents();
    QCOMPARE(CenterRect(), mArea->rect());
    mArea->SetVisible(QStringLiteral("properties"), false);
    QCOMPARE(changes.size(), 3);
    QCOMPARE(changes.at(0), (QVariantList{QStringLiteral("project"), false}));
    for (const QString& name : mArea->Names())
        mArea->SetVisible(name, true);
    QCoreApplication::processEvents();
    QCOMPARE(Rect("project").width(), 260);
    QVERIFY(Rect("project").height() > 100);
}

void tst_PanelArea::UnknownPlacesAreRefused()
{
    auto panel = std::make_unique<QWidget>();
    QVERIFY(!mArea->SetPanel(QStringLiteral("nowhere"), panel.get()));
    QVERIFY(!panel->parent());
    QVERIFY(!mArea->Panel(QStringLiteral("nowhere")));
    QVERIFY(!mArea->IsVisible(QStringLiteral("nowhere")));
    mArea->SetVisible(QStringLiteral("nowhere"), true);
    mArea->Toggle(QString());
    QCOMPARE(CenterRect(), mArea->rect());
}

void tst_PanelArea::AReplacedPanelIsDeleted()
{
    const QPointer<QWidget> first = new QWidget;
    mArea->SetPanel(QStringLiteral("project"), first);
    const QPointer<QWidget> second = new QWidget;
    mArea->SetPanel(QStringLiteral("project"), second);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!first);
    QCOMPARE(mArea->Panel(QStringLiteral("project")), second.data());
    QVERIFY(mArea->SetPanel(QStringLiteral("project"), nullptr));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!second);
    QCOMPARE(CenterRect(), mArea->rect());
}

void tst_PanelArea::SizesAndVisibilityOutliveTheArea()
{
    Fill();
    const auto drag = [this](const char* splitterName, int handle, const QPoint& distance)
    {
        auto* const splitter = mArea->findChild<QSplitter*>(QLatin1String(splitterName));
        QWidget* const grip = splitter->handle(handle);
        const QPoint from = grip->rect().center();
        InputEvents::Press(grip, from);
        InputEvents::Move(grip, from + distance / 2, Qt::LeftButton);
        InputEvents::Release(grip, from + distance - distance / 2);
    };
    drag("panelColumns", 1, QPoint(80, 0));
    drag("panelColumns", 2, QPoint(60, 0));
    drag("leftPanels", 1, QPoint(0, -100));
    mArea->SetVisible(QStringLiteral("properties"), false);
    QCoreApplication::processEvents();
    const QRect project = Rect("project");
    QCOMPARE(project.width(), 340);
    QVERIFY(project.height() < 240);

    Make();
    Fill();
    QCOMPARE(Rect("project"), project);
    QVERIFY(!mArea->IsVisible(QStringLiteral("properties")));
    mArea->SetVisible(QStringLiteral("properties"), true);
    QCoreApplication::processEvents();
    QCOMPARE(Rect("properties").width(), 200);
}

void tst_PanelArea::AWildStateFileIsHarmless()
{
    mArea.reset();
    QFile file(PlayerState::Path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[panels]\nleftWidth=-5\nrightWidth=99999999999\nprojectHeight=tall\n"
               "detailsVisible=perhaps\n\x01\x02 = [[[\n");
    file.close();
    Make();
    Fill();
    QCOMPARE(Rect("project").width(), 260);
    QCOMPARE(Rect("properties").width(), 260);
    QVERIFY(Rect("project").height() > 100);
}

void tst_PanelArea::ColumnsKeepTheirWidthAsTheWindowGrows()
{
    Fill();
    mArea->resize(1600, 900);
    QCoreApplication::processEvents();
    QCOMPARE(Rect("project").width(), 260);
    QCOMPARE(Rect("properties").width(), 260);
    mArea->resize(300, 200);
    QCoreApplication::processEvents();
    mArea->resize(1000, 600);
    QCoreApplication::processEvents();
    QCOMPARE(Rect("project").width(), 260);
}

static const TestRegistration<tst_PanelArea> PanelAreaRegistration;

#include "tst_PanelArea.moc"
