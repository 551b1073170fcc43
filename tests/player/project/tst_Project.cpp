// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QtTest>

using ProjectSamples::Medium;
using ProjectSamples::Note;
using ProjectSamples::Written;

class tst_Project : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void ANewProjectHasBinsAndADefaultTimeline();
    void AnEmptyProjectHasNoTimeline();
    void WhatIsPutIntoTheRootGoesToItsBin();
    void BinsStayWhatTheyAre();
    void AFolderDoesNotGoIntoItself();
    void MovesCountTheIndexAfterLeaving();
    void SeveralMoveInOneStep();
    void SeveralMoveDownTogether();
    void AFolderIsRemovedWithAllInIt();
    void ElementsOfARemovedSourceStayAsMissing();
    void TheDefaultIsOneTimelineOrNone();
    void ElementsGoBeforeTheRowOfTheirIndex();
    void ElementsMoveAsTheListAsks_data();
    void ElementsMoveAsTheListAsks();
    void ElementsSortByNameAndNumber();
    void DrawingsMoveWithElementsAndComeBack();
    void RangesOfSourcesChangeTheirElements();
    void StepsOfAKindMergeWithinAMoment();
    void NewNamesAreFree();
    void DeadIdsAreIgnored();
    void NotedDrawingsMakeBookmarks();
    void MediaOpenedForALookAreNoWork();
    void SettingsAreUndone();

private:
    QList<QUuid> ChildrenOf(const QUuid& folder) const;
    QUuid Bin(FolderKind kind) const { return mProject->Content().Bin(kind)->GetID(); }
    QUuid AddClip(const QString& name, int frames = 10);
    QStringList ElementNames(const QUuid& timeline) const;

    std::unique_ptr<Project> mProject;
    QUuid mTimeline;
};

void tst_Project::init()
{
    Settings::RestoreDefaults();
    mProject = std::make_unique<Project>();
    mTimeline = mProject->DefaultTimeline()->GetID();
}

void tst_Project::cleanup()
{
    mProject.reset();
    Settings::RestoreDefaults();
}

QList<QUuid> tst_Project::ChildrenOf(const QUuid& folder) const
{
    QList<QUuid> ids;
    for (const auto& child : mProject->Find(folder)->GetChildren())
        ids.append(child->GetID());
    return ids;
}

QUuid tst_Project::AddClip(const QString& name, int frames)
{
    return mProject->AddSource(Medium(name, frames));
}

QStringList tst_Project::ElementNames(const QUuid& timeline) const
{
    QStringList names;
    for (const auto& element : mProject->FindElementTimeline(timeline)->GetElements())
        names.append(element->GetName());
    return names;
}

void tst_Project::ANewProjectHasBinsAndADefaultTimeline()
{
    const auto children = mProject->Root()->GetChildren();
    QCOMPARE(children.size(), 3);
    QVERIFY(children[0]->IsFolderBin());
    QVERIFY(children[1]->IsSourceBin());
    QVERIFY(children[2]->IsTimelineBin());
    QVERIFY(mProject->DefaultTimeline()->IsDefault());
    QCOMPARE(mProject->DefaultTimeline()->GetParentID(), children[2]->GetID());
    QVERIFY(!mProject->IsModified());
    QVERIFY(mProject->FilePath().isEmpty());
}

void tst_Project::AnEmptyProjectHasNoTimeline()
{
    Settings::emptyProject = true;
    QSignalSpy reset(mProject.get(), SIGNAL(Reset()));
    mProject->New();
    QCOMPARE(reset.size(), 1);
    QVERIFY(!mProject->DefaultTimeline());
    QVERIFY(mProject->Timelines(false).isEmpty());
}

void tst_Project::WhatIsPutIntoTheRootGoesToItsBin()
{
    const QUuid folder = mProject->AddFolder(mProject->Root()->GetID());
    const QUuid timeline = mProject->AddTimeline(mProject->Root()->GetID(), 0);
    const QUuid source = AddClip("a.mov");
    QCOMPARE(ChildrenOf(Bin(FolderKind::Folders)), QList<QUuid>{folder});
    QCOMPARE(ChildrenOf(Bin(FolderKind::Timelines)), (QList<QUuid>{mTimeline, timeline}));
    QCOMPARE(ChildrenOf(Bin(FolderKind::Sources)), QList<QUuid>{source});
    // Within the folder everything may stand.
    QVERIFY(mProject->Move({source, timeline}, folder, -1));
    QCOMPARE(ChildrenOf(folder), (QList<QUuid>{source, timeline}));
    QVERIFY(mProject->Move({source, timeline}, mProject->Root()->GetID(), 0));
    QCOMPARE(ChildrenOf(Bin(FolderKind::Sources)), QList<QUuid>{source});
    QCOMPARE(ChildrenOf(Bin(FolderKind::Timelines)), (QList<QUuid>{mTimeline, timeline}));
}

void tst_Project::BinsStayWhatTheyAre()
{
    const QByteArray before = Written(*mProject);
    QSignalSpy refused(mProject.get(), SIGNAL(Refused(QString)));
    QVERIFY(!mProject->Rename(Bin(FolderKind::Sources), "x"));
    QVERIFY(!mProject->Move(Bin(FolderKind::Sources), Bin(FolderKind::Folders), 0));
    QCOMPARE(refused.size(), 2);
    QVERIFY(!mProject->Remove({Bin(FolderKind::Sources), mProject->Root()->GetID()}));
    // A bin takes its kind alone.
    QVERIFY(!mProject->Move(mTimeline, Bin(FolderKind::Sources), 0));
    QCOMPARE(refused.size(), 3);
    QCOMPARE(Written(*mProject), before);
    QCOMPARE(mProject->UndoStack()->count(), 0);
}

void tst_Project::AFolderDoesNotGoIntoItself()
{
    const QUuid outer = mProject->AddFolder();
    const QUuid inner = mProject->AddFolder(outer);
    const QByteArray before = Written(*mProject);
    QSignalSpy refused(mProject.get(), SIGNAL(Refused(QString)));
    QVERIFY(!mProject->Move(outer, inner, 0));
    QVERIFY(!mProject->Move(outer, outer, 0));
    QCOMPARE(refused.size(), 2);
    QCOMPARE(Written(*mProject), before);
    QVERIFY(mProject->Move(inner, Bin(FolderKind::Folders), 0));
}

void tst_Project::MovesCountTheIndexAfterLeaving()
{
    const QUuid folder = mProject->AddFolder();
    QList<QUuid> ids;
    for (int index = 0; index < 4; ++index)
        ids.append(mProject->AddFolder(folder));
    QVERIFY(mProject->Move(ids[0], folder, 2));
    QCOMPARE(ChildrenOf(folder), (QList<QUuid>{ids[1], ids[2], ids[0], ids[3]}));
    QVERIFY(mProject->Move(ids[3], folder, 0));
    QCOMPARE(ChildrenOf(folder), (QList<QUuid>{ids[3], ids[1], ids[2], ids[0]}));
    mProject->UndoStack()->undo();
    mProject->UndoStack()->undo();
    QCOMPARE(ChildrenOf(folder), ids);
}

void tst_Project::SeveralMoveInOneStep()
{
    const QUuid folder = mProject->AddFolder();
    const QUuid other = mProject->AddFolder();
    QList<QUuid> ids;
    for (int index = 0; index < 4; ++index)
        ids.append(mProject->AddFolder(folder));
    const QUuid there = mProject->AddFolder(other);
    QVERIFY(mProject->Move({ids[2], ids[0]}, other, 0));
    QCOMPARE(ChildrenOf(other), (QList<QUuid>{ids[2], ids[0], there}));
    QCOMPARE(ChildrenOf(folder), (QList<QUuid>{ids[1], ids[3]}));
    mProject->UndoStack()->undo();
    QCOMPARE(ChildrenOf(folder), ids);
    QCOMPARE(ChildrenOf(other), QList<QUuid>{there});
}

void tst_Project::SeveralMoveDownTogether()
{
    const QUuid folder = mProject->AddFolder();
    QList<QUuid> ids;
    for (int index = 0; index < 5; ++index)
        ids.append(mProject->AddFolder(folder));
    QVERIFY(mProject->Move({ids[0], ids[1]}, folder, 2));
    QCOMPARE(ChildrenOf(folder), (QList<QUuid>{ids[2], ids[0], ids[1], ids[3], ids[4]}));
    mProject->UndoStack()->undo();
    QVERIFY(mProject->Move({ids[3], ids[0], ids[4]}, folder, 1));
    QCOMPARE(ChildrenOf(folder), (QList<QUuid>{ids[3], ids[0], ids[4], ids[1], ids[2]}));
}

void tst_Project::AFolderIsRemovedWithAllInIt()
{
    const QUuid folder = mProject->AddFolder();
    const QUuid source = mProject->AddSource(Medium("a.mov"), folder);
    const QUuid timeline = mProject->AddTimeline(folder);
    mProject->ToggleDefault(timeline);
    mProject->InsertElements(timeline, {source});
    const QByteArray before = Written(*mProject);
    QSignalSpy removed(mProject.get(), SIGNAL(ObjectRemoved(QUuid, QUuid)));
    QVERIFY(mProject->Remove({source, folder, timeline}));
    QCOMPARE(removed.size(), 1);
    QVERIFY(!mProject->Find(source));
    QVERIFY(!mProject->Find(timeline));
    QVERIFY(!mProject->DefaultTimeline());
    mProject->UndoStack()->undo();
    QCOMPARE(Written(*mProject), before);
    QCOMPARE(mProject->DefaultTimeline()->GetID(), timeline);
}

void tst_Project::ElementsOfARemovedSourceStayAsMissing()
{
    const QUuid a = AddClip("a.mov", 10);
    const QUuid b = AddClip("b.mov", 20);
    mProject->InsertElements(mTimeline, {a, b, a});
    mProject->SetDrawings(mTimeline, 35, {Note("late", 7)}, "Draw");
    const QByteArray before = Written(*mProject);
    QVERIFY(mProject->Remove({a}));
    const auto timeline = mProject->FindElementTimeline(mTimeline);
    QCOMPARE(timeline->FrameCount(), 40);
    QVERIFY(timeline->GetElements()[0]->IsMissing());
    QVERIFY(!timeline->GetElements()[1]->IsMissing());
    QCOMPARE(timeline->Annotations()->Drawings(35).first().text, QString("late"));
    mProject->UndoStack()->undo();
    QCOMPARE(Written(*mProject), before);
    QVERIFY(!timeline->GetElements()[0]->IsMissing());
    mProject->UndoStack()->redo();
    QVERIFY(timeline->GetElements()[2]->IsMissing());
}

void tst_Project::TheDefaultIsOneTimelineOrNone()
{
    const QUuid other = mProject->AddTimeline();
    const QUuid source = AddClip("a.mov");
    QSignalSpy changed(mProject.get(), SIGNAL(DefaultChanged()));
    QVERIFY(mProject->ToggleDefault(other));
    QVERIFY(!mProject->FindTimeline(mTimeline)->IsDefault());
    QVERIFY(mProject->FindTimeline(other)->IsDefault());
    QVERIFY(!mProject->ToggleDefault(source));
    QVERIFY(mProject->ToggleDefault(other));
    QVERIFY(!mProject->DefaultTimeline());
    mProject->UndoStack()->undo();
    mProject->UndoStack()->undo();
    QCOMPARE(mProject->DefaultTimeline()->GetID(), mTimeline);
    QCOMPARE(changed.size(), 4);
}

void tst_Project::ElementsGoBeforeTheRowOfTheirIndex()
{
    const QUuid a = AddClip("a");
    const QUuid b = AddClip("b");
    const QUuid c = AddClip("c");
    mProject->InsertElements(mTimeline, {a, b});
    QCOMPARE(ElementNames(mTimeline), (QStringList{"a", "b"}));
    // As the list sends two that are dropped before row 1: reversed, at one index.
    mProject->InsertElements(mTimeline, {c, a}, {1, 1});
    QCOMPARE(ElementNames(mTimeline), (QStringList{"a", "a", "c", "b"}));
    // Only source timelines become elements.
    QVERIFY(mProject->InsertElements(mTimeline, {mTimeline, QUuid::createUuid()}).isEmpty());
}

void tst_Project::ElementsMoveAsTheListAsks_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QList<int>>("indices");
    QTest::addColumn<QString>("expected");
    QTest::newRow("up") << QList<int>{3} << QList<int>{2} << "abdce";
    QTest::newRow("down") << QList<int>{2} << QList<int>{4} << "abdce";
    QTest::newRow("two up") << QList<int>{2, 3} << QList<int>{1, 2} << "acdbe";
    QTest::newRow("two down") << QList<int>{3, 2} << QList<int>{5, 4} << "abecd";
    QTest::newRow("to the end") << QList<int>{0, 2} << QList<int>{-1, -1} << "bdeac";
    QTest::newRow("dragged down") << QList<int>{0, 1} << QList<int>{4, 4} << "cdabe";
    QTest::newRow("dragged up") << QList<int>{4, 3} << QList<int>{1, 1} << "adebc";
    QTest::newRow("onto itself") << QList<int>{1} << QList<int>{1} << "abcde";
    QTest::newRow("past the end") << QList<int>{1} << QList<int>{99} << "acdeb";
}

void tst_Project::ElementsMoveAsTheListAsks()
{
    QFETCH(QList<int>, rows);
    QFETCH(QList<int>, indices);
    QFETCH(QString, expected);
    QList<QUuid> ids;
    for (const char* const name : {"a", "b", "c", "d", "e"})
        ids += mProject->InsertElements(mTimeline, {AddClip(name)});
    QList<QUuid> moved;
    for (const int row : rows)
        moved.append(ids[row]);
    mProject->MoveElements(mTimeline, moved, indices);
    QCOMPARE(ElementNames(mTimeline).join(QString()), expected);
}

void tst_Project::ElementsSortByNameAndNumber()
{
    const QStringList names{"shot10", "Shot2", "shot1", "a", "shot02"};
    for (const QString& name : names)
        mProject->InsertElements(mTimeline, {AddClip(name)});
    QVERIFY(mProject->SortElements(mTimeline, true));
    QCOMPARE(ElementNames(mTimeline), (QStringList{"a", "shot1", "Shot2", "shot02", "shot10"}));
    QVERIFY(mProject->SortElements(mTimeline, false));
    QCOMPARE(ElementNames(mTimeline), (QStringList{"shot10", "Shot2", "shot02", "shot1", "a"}));
    mProject->UndoStack()->undo();
    mProject->UndoStack()->undo();
    QCOMPARE(ElementNames(mTimeline), names);
}

void tst_Project::DrawingsMoveWithElementsAndComeBack()
{
    const QList<QUuid> ids = mProject->InsertElements(mTimeline, {AddClip("a", 10), AddClip("b", 20)});
    mProject->SetDrawings(mTimeline, 5, {Note("on a", 1)}, "Draw");
    mProject->SetDrawings(mTimeline, 12, {Note("on b", 2)}, "Draw");
    const QByteArray before = Written(*mProject);
    mProject->MoveElements(mTimeline, {ids[1]}, {0});
    const auto annotations = mProject->FindTimeline(mTimeline)->Annotations();
    QCOMPARE(annotations->Drawings(25).value(0).text, QString("on a"));
    QCOMPARE(annotations->Drawings(2).value(0).text, QString("on b"));
    mProject->RemoveElements(mTimeline, {ids[0]});
    QCOMPARE(annotations->AnnotatedFrames(), QVector<int>{2});
    mProject->UndoStack()->undo();
    mProject->UndoStack()->undo();
    QCOMPARE(Written(*mProject), before);
}

void tst_Project::RangesOfSourcesChangeTheirElements()
{
    const QUuid a = AddClip("a", 10);
    mProject->InsertElements(mTimeline, {a, AddClip("b", 20)});
    mProject->SetDrawings(mTimeline, 15, {Note("on b", 2)}, "Draw");
    QSignalSpy changed(mProject.get(), SIGNAL(TimelineChanged(QUuid)));
    QVERIFY(mProject->SetRange(a, 3, 6));
    QVERIFY(changed.contains(QVariantList{mTimeline}));
    const auto timeline = mProject->FindElementTimeline(mTimeline);
    QCOMPARE(timeline->FrameCount(), 24);
    QCOMPARE(timeline->Annotations()->Drawings(9).size(), 1);
    QVERIFY(mProject->SetUseSourceInOuts(mTimeline, false));
    QCOMPARE(timeline->FrameCount(), 30);
    mProject->UndoStack()->undo();
    mProject->UndoStack()->undo();
    QCOMPARE(timeline->FrameCount(), 30);
    QCOMPARE(timeline->Annotations()->Drawings(15).size(), 1);
    QVERIFY(!mProject->SetRange(a, -5, 500));
}

void tst_Project::StepsOfAKindMergeWithinAMoment()
{
    const QUuid a = AddClip("a", 10);
    const int steps = mProject->UndoStack()->count();
    for (int first = 2; first < 9; ++first)
        mProject->SetRange(a, first, 10);
    mProject->SetPanZoom(a, QPointF(0.5, 0), 2.0f, true);
    QCOMPARE(mProject->UndoStack()->count(), steps + 2);
    QCOMPARE(mProject->FindTimeline(a)->Range().first, 8);
    mProject->UndoStack()->undo();
    mProject->UndoStack()->undo();
    QVERIFY(!mProject->FindTimeline(a)->HasRange());
    mProject->UndoStack()->redo();
    QCOMPARE(mProject->FindTimeline(a)->Range().first, 8);
}

void tst_Project::NewNamesAreFree()
{
    const QUuid first = mProject->AddFolder();
    const QUuid second = mProject->AddFolder();
    QCOMPARE(mProject->Find(first)->GetName(), QString("New Folder"));
    QCOMPARE(mProject->Find(second)->GetName(), QString("New Folder 2"));
    QSignalSpy refused(mProject.get(), SIGNAL(Refused(QString)));
    QVERIFY(!mProject->Rename(first, "  "));
    QCOMPARE(refused.size(), 1);
    QVERIFY(mProject->Rename(first, "Cuts"));
    QCOMPARE(mProject->Find(first)->GetName(), QString("Cuts"));
}

void tst_Project::DeadIdsAreIgnored()
{
    const QByteArray before = Written(*mProject);
    const QUuid dead = QUuid::createUuid();
    QSignalSpy refused(mProject.get(), SIGNAL(Refused(QString)));
    QVERIFY(!mProject->Rename(dead, "x"));
    QVERIFY(!mProject->Move(dead, Bin(FolderKind::Folders), 0));
    QVERIFY(!mProject->Move(mTimeline, dead, 0));
    QVERIFY(!mProject->Remove({dead, QUuid()}));
    QVERIFY(!mProject->ToggleDefault(dead));
    QVERIFY(mProject->InsertElements(dead, {dead}).isEmpty());
    QVERIFY(!mProject->MoveElements(mTimeline, {dead}, {0}));
    QVERIFY(!mProject->RemoveElements(mTimeline, {dead}));
    QVERIFY(!mProject->SetRange(dead, 1, 2));
    QVERIFY(!mProject->AddBookmark(mTimeline, 1));
    mProject->ReplaceSource(dead, "/x.mov");
    mProject->RefreshSource(dead);
    mProject->NoteDrawings(nullptr, 1);
    mProject->NoteViewer(dead, 0);
    QCOMPARE(refused.size(), 0);
    QCOMPARE(Written(*mProject), before);
    QCOMPARE(mProject->UndoStack()->count(), 0);
}

void tst_Project::NotedDrawingsMakeBookmarks()
{
    const QUuid a = AddClip("a", 10);
    const auto timeline = mProject->FindTimeline(a);
    timeline->Annotations()->SetDrawings(4, {Note("x", 1)});
    QSignalSpy drawn(mProject.get(), SIGNAL(DrawingsChanged(QUuid, int)));
    mProject->NoteDrawings(timeline->Annotations().get(), 4);
    QCOMPARE(drawn, (QList<QVariantList>{{a, 4}}));
    QCOMPARE(timeline->GetBookmarks()->GetTimeBookmarks().size(), 1);
    QCOMPARE(timeline->TimeToFrame(timeline->GetBookmarks()->GetTimeBookmarks().first().time), 4);
}

void tst_Project::MediaOpenedForALookAreNoWork()
{
    QVERIFY(!mProject->HasUnsavedWork());
    mProject->AddFolder();
    QVERIFY(mProject->HasUnsavedWork());
    mProject->UndoStack()->undo();
    QVERIFY(!mProject->HasUnsavedWork());
}

void tst_Project::SettingsAreUndone()
{
    ProjectSettings settings = mProject->GetSettings();
    settings.notes = "of Tuesday";
    QSignalSpy modified(mProject.get(), SIGNAL(ModifiedChanged(bool)));
    mProject->SetSettings(settings);
    QCOMPARE(mProject->GetSettings().notes, QString("of Tuesday"));
    mProject->UndoStack()->undo();
    QCOMPARE(mProject->GetSettings().notes, QString());
    QCOMPARE(modified, (QList<QVariantList>{{true}, {false}}));
}

static const TestRegistration<tst_Project> ProjectRegistration;

#include "tst_Project.moc"
