// SPDX-License-Identifier: MIT
#include "annotation/AnnotationController.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectJournal.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/ModalProbe.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"
#include "window/ProjectBinding.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using ModalProbe::WithDialog;

/// The player's project in its window: title, questions, recent projects, recovery, and how what is shown
/// follows it.
class tst_PlayerProject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void TheTitleNamesTheProjectAndItsChanges();
    void NamesThatHoldTheMarkAreShown();
    void MediaOpenedForALookStandInTheProject();
    void MediaStandInTheOrderInWhichTheyWereNamed();
    void DropsOfUnsavedWorkAreAskedFor_data();
    void DropsOfUnsavedWorkAreAskedFor();
    void AProjectIsOpenedAsItWasSaved();
    void TheDefaultTimelineIsActivated();
    void ABrokenProjectIsReported();
    void RecentProjectsAreKept();
    void WhatIsRemovedLeavesTheViewers();
    void RangesAreSteps();
    void StrokesAndBookmarksReachTheJournal();
    void ARecoveryIsOffered_data();
    void ARecoveryIsOffered();
    void PanAndZoomBelongToTheTimeline();
    void PanAndZoomAreOffAfterLoading();
    void AMissingSourceShowsAsMissing();
    void TheMediaMenuGoesByTheProject();

private:
    QString Path(const QString& name) const { return mFolder->filePath(name); }
    Project* GetProject() const { return mWindow->GetProject(); }
    static QString MovieName() { return QFileInfo(PlayerProbe::SampleMovie()).fileName(); }
    bool Open();
    bool Save(const QString& name);

    std::unique_ptr<QTemporaryDir> mFolder;
    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerProject::init()
{
    Settings::RestoreDefaults();
    mFolder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_STATE_HOME", Path("state").toLocal8Bit());
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->show();
}

void tst_PlayerProject::cleanup()
{
    mWindow.reset();
}

bool tst_PlayerProject::Open()
{
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 0);
    return QTest::qWaitFor([this] { return mWindow->Playback()->ShownFrame(0) == 1 && mWindow->IsSettled(); },
                           20000);
}

bool tst_PlayerProject::Save(const QString& name)
{
    QString error;
    return GetProject()->Save(Path(name), &error);
}

void tst_PlayerProject::TheTitleNamesTheProjectAndItsChanges()
{
    QCOMPARE(mWindow->windowTitle(), QString("Untitled[*] - Torvalen"));
    QVERIFY(!mWindow->isWindowModified());
    GetProject()->AddFolder();
    QVERIFY(mWindow->isWindowModified());
    QVERIFY(Save("cut.torvalen"));
    QVERIFY(!mWindow->isWindowModified());
    QCOMPARE(mWindow->windowTitle(), QString("cut[*] - Torvalen"));
    QVERIFY(Open());
    QCOMPARE(mWindow->windowTitle(), QString("cut[*] - %1 - Torvalen").arg(MovieName()));
    // A look at a medium is no change, and nothing to take back.
    QVERIFY(!mWindow->isWindowModified());
    mWindow->Commands()->Run("annotate.undo");
    QVERIFY(mWindow->windowTitle().contains(MovieName()));
}

void tst_PlayerProject::NamesThatHoldTheMarkAreShown()
{
    QVERIFY(Save("a[*]b.torvalen"));
    QCOMPARE(mWindow->windowTitle(), QString("a[*][*]b[*] - Torvalen"));
}

void tst_PlayerProject::MediaOpenedForALookStandInTheProject()
{
    QVERIFY(Open());
    const auto source = GetProject()->FindSourceByPath(PlayerProbe::SampleMovie());
    QVERIFY(source);
    QCOMPARE(source->GetViewerIndex(), 0);
    QCOMPARE(std::static_pointer_cast<ProjectTimeline>(source), mWindow->Playback()->TimelineOf(0));
    // It is no work: the player closes without a question.
    QCOMPARE(
        WithDialog<QMessageBox>([this] { QVERIFY(mWindow->Projects()->MayDrop()); }, [](QMessageBox*) {}), 0);
    // Opened again it is the same.
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 1);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 20000);
    QCOMPARE(GetProject()->Timelines(true).size(), 1);
}

void tst_PlayerProject::MediaStandInTheOrderInWhichTheyWereNamed()
{
    // The first takes the longest to read.
    const QStringList pictures{Path("a.png"), Path("b.png")};
    for (const QString& picture : pictures)
        QVERIFY(NumberedMedia::Picture(1).save(picture));
    mWindow->OpenFiles(QStringList{PlayerProbe::SampleMovie()} + pictures, 0);
    QTRY_COMPARE(GetProject()->Timelines(true).size(), 3);
    QStringList names;
    for (const std::shared_ptr<ProjectTimeline>& source : GetProject()->Timelines(true))
        names << source->GetName();
    QCOMPARE(names, (QStringList{MovieName(), QStringLiteral("a.png"), QStringLiteral("b.png")}));
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 1);
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetName(), MovieName());
}

void tst_PlayerProject::DropsOfUnsavedWorkAreAskedFor_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("asks");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("saves");
    QTest::newRow("save") << int(QMessageBox::Save) << true << true << true;
    QTest::newRow("discard") << int(QMessageBox::Discard) << true << true << false;
    QTest::newRow("cancel") << int(QMessageBox::Cancel) << true << false << false;
    QTest::newRow("not to be asked") << int(QMessageBox::Cancel) << false << true << false;
}

void tst_PlayerProject::DropsOfUnsavedWorkAreAskedFor()
{
    QFETCH(int, answer);
    QFETCH(bool, asks);
    QFETCH(bool, closes);
    QFETCH(bool, saves);
    QVERIFY(Save("p.torvalen"));
    GetProject()->AddFolder(QUuid(), -1, "Work");
    Settings::displayConfirmationOnClose = asks;
    const int questions =
        WithDialog<QMessageBox>([this] { mWindow->close(); },
                                [&](QMessageBox* box)
                                {
                                    QVERIFY(box->text().contains("p"));
                                    box->button(static_cast<QMessageBox::StandardButton>(answer))->click();
                                });
    QCOMPARE(questions, asks ? 1 : 0);
    QCOMPARE(!mWindow->isVisible(), closes);
    QFile file(Path("p.torvalen"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll().contains("Work"), saves);
}

void tst_PlayerProject::AProjectIsOpenedAsItWasSaved()
{
    QVERIFY(Open());
    const QUuid id = GetProject()->FindSourceByPath(PlayerProbe::SampleMovie())->GetID();
    mWindow->Commands()->Run("bookmark.frame");
    GetProject()->AddFolder(QUuid(), -1, "Cuts");
    QVERIFY(Save("p.torvalen"));
    mWindow->Commands()->Run("file.newProject");
    QVERIFY(!GetProject()->Find(id));
    QCOMPARE(mWindow->Playback()->ShownFrame(1), 0);
    QVERIFY(mWindow->Playback()->TimelineOf(0) != nullptr);
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->FrameCount(), 0);
    mWindow->OpenFiles({Path("p.torvalen")}, 0);
    QCOMPARE(GetProject()->FilePath(), Path("p.torvalen"));
    const auto source = GetProject()->FindSource(id);
    QVERIFY(source && !source->IsMissing());
    QCOMPARE(source->MarkedFrames(), QSet<int>{1});
    QCOMPARE(GetProject()->Content().Bin(FolderKind::Folders)->GetChildren().first()->GetName(),
             QString("Cuts"));
    mWindow->ShowTimeline(source, 0);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0), 1, 20000);
}

void tst_PlayerProject::TheDefaultTimelineIsActivated()
{
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetID(), GetProject()->DefaultTimeline()->GetID());
    QVERIFY(Open());
    const QUuid source = GetProject()->Timelines(true).first()->GetID();
    const QUuid list = GetProject()->DefaultTimeline()->GetID();
    GetProject()->InsertElements(list, {source, source});
    QVERIFY(Save("p.torvalen"));
    QVERIFY(mWindow->Projects()->OpenProject(Path("p.torvalen")));
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetID(), list);
    QCOMPARE(GetProject()->FindTimeline(list)->GetViewerIndex(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0), 1, 20000);
    Settings::alwaysActivateDefaultTimeline = false;
    QVERIFY(mWindow->Projects()->OpenProject(Path("p.torvalen")));
    QVERIFY(!mWindow->Playback()->TimelineOf(0));
}

void tst_PlayerProject::ABrokenProjectIsReported()
{
    QFile file(Path("bad.torvalen"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{ \"format\": \"torvalen-project\", \"version\": 99 }");
    file.close();
    QVERIFY(Open());
    QSignalSpy errors(Logger::GetInstance(), SIGNAL(ErrorLogged(QString)));
    mWindow->OpenFiles({Path("bad.torvalen")}, 0);
    QCOMPARE(errors.size(), 1);
    QVERIFY(errors.first().first().toString().contains(Path("bad.torvalen")));
    QVERIFY(errors.first().first().toString().contains("99"));
    QCOMPARE(GetProject()->Timelines(true).size(), 1);
    QCOMPARE(mWindow->Playback()->ShownFrame(0), 1);
}

void tst_PlayerProject::RecentProjectsAreKept()
{
    const auto* const menu = mWindow->findChild<QMenu*>("recentProjectsMenu");
    QVERIFY(menu);
    for (const char* const name : {"a.torvalen", "b.torvalen"})
    {
        QVERIFY(Save(name));
        QVERIFY(mWindow->Projects()->OpenProject(Path(name)));
    }
    const auto names = [&]
    {
        QStringList list;
        for (const QAction* const action : menu->actions())
            list << action->text();
        return list.mid(0, 2);
    };
    QCOMPARE(names(), (QStringList{"b.torvalen", "a.torvalen"}));
    menu->actions().at(1)->trigger();
    QCOMPARE(GetProject()->FilePath(), Path("a.torvalen"));
    QCOMPARE(names(), (QStringList{"a.torvalen", "b.torvalen"}));
    // The next player has them too.
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->Commands()->Run("file.openRecentProject");
    QCOMPARE(GetProject()->FilePath(), Path("a.torvalen"));
}

void tst_PlayerProject::WhatIsRemovedLeavesTheViewers()
{
    QVERIFY(Open());
    const QUuid id = mWindow->Playback()->TimelineOf(0)->GetID();
    GetProject()->Remove({id});
    QVERIFY(!mWindow->Playback()->TimelineOf(0));
    QVERIFY(!mWindow->windowTitle().contains(MovieName()));
    GetProject()->UndoStack()->undo();
    QCOMPARE(GetProject()->FindTimeline(id)->GetViewerIndex(), -1);
    mWindow->ShowTimeline(GetProject()->FindTimeline(id), 0);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0), 1, 20000);
}

void tst_PlayerProject::RangesAreSteps()
{
    QVERIFY(Open());
    PlaybackController* const playback = mWindow->Playback();
    playback->SeekFrame(10);
    mWindow->Commands()->Run("range.start");
    QCOMPARE(playback->Range().first, 10);
    QCOMPARE(playback->TimelineOf(0)->Range().first, 10);
    QVERIFY(GetProject()->IsModified());
    mWindow->Commands()->Run("annotate.undo");
    QCOMPARE(playback->TimelineOf(0)->Range().first, 1);
    QCOMPARE(playback->Range().first, 1);
    mWindow->Commands()->Run("annotate.redo");
    QCOMPARE(playback->Range().first, 10);
    GetProject()->SetRange(playback->TimelineOf(0)->GetID(), 3, 20);
    QCOMPARE(playback->Range().first, 3);
    QCOMPARE(playback->Range().last, 20);
}

void tst_PlayerProject::StrokesAndBookmarksReachTheJournal()
{
    QVERIFY(Open());
    const QUuid id = mWindow->Playback()->TimelineOf(0)->GetID();
    mWindow->Commands()->Run("bookmark.frame");
    mWindow->Commands()->Run("annotate.pencil");
    QWidget* const viewer = mWindow->Viewer();
    const QPoint center = viewer->mapToGlobal(viewer->rect().center());
    QVERIFY(mWindow->Strokes()->Press(center));
    for (int step = 1; step < 20; ++step)
        QVERIFY(mWindow->Strokes()->Move(center + QPoint(step, step)));
    QTest::qWait(3 * ProjectJournal::Interval);
    const auto drawnInJournal = [&](int* marks)
    {
        QString error;
        const QDir folder(ProjectJournal::DefaultFolder());
        const QStringList files = folder.entryList({"*.journal"}, QDir::Files);
        if (files.size() != 1)
            return -1;
        const auto recovered = ProjectJournal::Read(folder.filePath(files.first()), &error);
        if (!recovered)
            return -2;
        const auto timeline =
            std::dynamic_pointer_cast<ProjectTimeline>(recovered->content.objects.value(id));
        *marks = timeline->MarkedFrames().size();
        const QList<DrawData> drawings = timeline->Annotations()->Drawings(1);
        return drawings.isEmpty() ? 0 : drawings.last().points.size();
    };
    int marks = 0;
    QVERIFY(drawnInJournal(&marks) >= 20);
    QCOMPARE(marks, 1);
    QVERIFY(mWindow->Strokes()->Release(center + QPoint(30, 30)));
    QVERIFY(drawnInJournal(&marks) >= 21);
    mWindow->Commands()->Run("annotate.undo");
    QCOMPARE(drawnInJournal(&marks), 0);
    mWindow->Commands()->Run("annotate.undo");
    QCOMPARE(drawnInJournal(&marks), 0);
    QCOMPARE(marks, 0);
    Settings::drawEnabled = false;
}

void tst_PlayerProject::ARecoveryIsOffered_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("recovers");
    QTest::addColumn<bool>("stays");
    QTest::newRow("recover") << "Recover" << true << false;
    QTest::newRow("discard") << "Discard" << false << false;
    QTest::newRow("later") << "Later" << false << true;
}

void tst_PlayerProject::ARecoveryIsOffered()
{
    QFETCH(QString, answer);
    QFETCH(bool, recovers);
    QFETCH(bool, stays);
    // A player that is gone: its journal without its lock.
    const QString left = ProjectJournal::DefaultFolder() + "/left.journal";
    {
        Project project;
        const ProjectJournal journal(&project, ProjectJournal::DefaultFolder());
        project.AddFolder(QUuid(), -1, "Lost");
        QVERIFY(QFile::copy(journal.Path(), left));
    }
    const int questions = WithDialog<QMessageBox>([this] { mWindow->Projects()->OfferRecovery(); },
                                                  [&](QMessageBox* box)
                                                  {
                                                      for (QAbstractButton* const button : box->buttons())
                                                      {
                                                          if (button->text().remove('&') == answer)
                                                              button->click();
                                                      }
                                                  });
    QCOMPARE(questions, 1);
    const auto folders = GetProject()->Content().Bin(FolderKind::Folders)->GetChildren();
    QCOMPARE(!folders.isEmpty(), recovers);
    QCOMPARE(GetProject()->IsModified(), recovers);
    QCOMPARE(QFile::exists(left), stays);
    // Nobody is asked twice for one.
    QCOMPARE(WithDialog<QMessageBox>([this] { mWindow->Projects()->OfferRecovery(); }, [](QMessageBox*) {}),
             stays ? 1 : 0);
}

void tst_PlayerProject::PanAndZoomBelongToTheTimeline()
{
    QVERIFY(Open());
    const QUuid id = mWindow->Playback()->TimelineOf(0)->GetID();
    mWindow->SetPanAndZoom(QPointF(0.5, 0.25), 2.0f);
    QCOMPARE(mWindow->Zoom(), 2.0f);
    QCOMPARE(GetProject()->FindTimeline(id)->View().zoom, 2.0f);
    // A look at a medium is no work, however close.
    QVERIFY(!GetProject()->IsModified());
    mWindow->ShowTimeline(GetProject()->DefaultTimeline(), 0);
    QCOMPARE(mWindow->Zoom(), 1.0f);
    mWindow->ShowTimeline(GetProject()->FindTimeline(id), 0);
    QCOMPARE(mWindow->Zoom(), 2.0f);
    QCOMPARE(mWindow->Pan(), QPointF(0.5, 0.25));
}

void tst_PlayerProject::PanAndZoomAreOffAfterLoading()
{
    const QUuid list = GetProject()->DefaultTimeline()->GetID();
    GetProject()->SetPanZoom(list, QPointF(0.5, 0), 3.0f, true);
    QVERIFY(Save("p.torvalen"));
    QVERIFY(mWindow->Projects()->OpenProject(Path("p.torvalen")));
    QVERIFY(GetProject()->FindTimeline(list)->View().enabled);
    Settings::disablePanZoomOnProjectLoad = true;
    QVERIFY(mWindow->Projects()->OpenProject(Path("p.torvalen")));
    QVERIFY(!GetProject()->FindTimeline(list)->View().enabled);
    QCOMPARE(GetProject()->FindTimeline(list)->View().zoom, 3.0f);
    QVERIFY(!GetProject()->IsModified());
}

void tst_PlayerProject::AMissingSourceShowsAsMissing()
{
    const QString copy = Path("copy.mp4");
    QVERIFY(QFile::copy(PlayerProbe::SampleMovie(), copy));
    mWindow->OpenFiles({copy}, 1);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 20000);
    QVERIFY(Save("p.torvalen"));
    QVERIFY(QFile::rename(copy, Path("elsewhere.mp4")));
    QVERIFY(mWindow->Projects()->OpenProject(Path("p.torvalen")));
    const auto source = GetProject()->FindSourceByPath(copy);
    QVERIFY(source->IsMissing());
    QCOMPARE(source->FrameCount(), 60);
    mWindow->ShowTimeline(source, 0);
    QTRY_VERIFY(mWindow->IsSettled());
    GetProject()->ReplaceSource(source->GetID(), Path("elsewhere.mp4"));
    QTRY_VERIFY_WITH_TIMEOUT(!source->IsMissing(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0) == 1 && mWindow->IsSettled(), 20000);
}

void tst_PlayerProject::TheMediaMenuGoesByTheProject()
{
    QVERIFY(Open());
    GetProject()->AddTimeline(QUuid(), -1, "R&D");
    auto* const menu = mWindow->findChild<QMenu*>("mediaMenu");
    Q_EMIT menu->aboutToShow();
    QStringList names;
    QAction* timeline = nullptr;
    for (QAction* const action : menu->actions())
    {
        if (action->isCheckable())
            names << action->text();
        if (action->text() == "R&&D")
            timeline = action;
    }
    QCOMPARE(names, (QStringList{"Timeline", "R&&D", MovieName()}));
    QVERIFY(timeline);
    timeline->trigger();
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetName(), QString("R&D"));
    mWindow->Commands()->Run("media.next");
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetName(), MovieName());
}

static const TestRegistration<tst_PlayerProject> PlayerProjectRegistration;

#include "tst_PlayerProject.moc"
