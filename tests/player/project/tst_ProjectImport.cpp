// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "project/ElementTimeline.h"
#include "project/MediaPaths.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectImport.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using ProjectSamples::Note;
using ProjectSamples::Written;
using Result = ProjectImport::Result;

class tst_ProjectImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void ASequenceIsOneSourceWhateverFileNamesIt();
    void FoldersAreLookedThroughInOrder();
    void FoldersOfMediaBecomeFolders();
    void TheSourceBinTakesThemFlat();
    void IndicesPlaceThePaths();
    void BadFilesAreToldAndOthersImported();
    void ACancelLeavesNothing();
    void AnImportEndsWithItsProject();
    void ATimelineTakesThemAsElements();
    void WhatIsThereIsNotImportedTwice();
    void ARemovedSourceComesBack();
    void AnImportForViewingIsNoWork();
    void WithoutALoaderNothingIsRead();
    void ReplacingKeepsWhatHangsOnTheSource();
    void ReplacingByABadFileChangesNothing();
    void RefreshingReadsTheMediumAnew();
    void NotedMediaAreNoSteps();
    void KeysOfPaths_data();
    void KeysOfPaths();

private:
    QString Path(const QString& name) const { return mFolder->filePath(name); }
    /// Saves a picture of @p name and returns its path.
    QString Picture(const QString& name, const QSize& size = QSize(16, 8)) const;
    QStringList Sequence(const QString& folder, int count) const;
    Result Wait(ProjectImport* import) const;
    /// The tree below @p object, a name a line.
    QString Tree(const std::shared_ptr<ProjectObject>& object, int depth = 0) const;
    QUuid Bin(FolderKind kind) const { return mProject->Content().Bin(kind)->GetID(); }

    std::unique_ptr<QTemporaryDir> mFolder;
    std::unique_ptr<FrameLoader> mLoader;
    std::unique_ptr<Project> mProject;
    QUuid mTimeline;
};

void tst_ProjectImport::init()
{
    Settings::RestoreDefaults();
    mFolder = std::make_unique<QTemporaryDir>();
    mLoader = std::make_unique<FrameLoader>(nullptr, 2);
    mProject = std::make_unique<Project>(mLoader.get());
    mTimeline = mProject->DefaultTimeline()->GetID();
}

void tst_ProjectImport::cleanup()
{
    mProject.reset();
    mLoader.reset();
}

QString tst_ProjectImport::Picture(const QString& name, const QSize& size) const
{
    const QString path = Path(name);
    QDir().mkpath(QFileInfo(path).path());
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    return picture.save(path) ? path : QString();
}

QStringList tst_ProjectImport::Sequence(const QString& folder, int count) const
{
    QStringList paths;
    for (int frame = 1; frame <= count; ++frame)
        paths << Picture(QStringLiteral("%1/shot.%2.png").arg(folder).arg(frame, 4, 10, QLatin1Char('0')));
    return paths;
}

Result tst_ProjectImport::Wait(ProjectImport* import) const
{
    Result result;
    bool done = false;
    QObject context;
    connect(import, &ProjectImport::Finished, &context,
            [&](const Result& told)
            {
                result = told;
                done = true;
            });
    if (!QTest::qWaitFor([&] { return done; }, 20000))
        qWarning("The import did not end");
    return result;
}

QString tst_ProjectImport::Tree(const std::shared_ptr<ProjectObject>& object, int depth) const
{
    QString lines;
    for (const auto& child : object->GetChildren())
        lines +=
            QString(depth, QLatin1Char(' ')) + child->GetName() + QLatin1Char('\n') + Tree(child, depth + 1);
    return lines;
}

void tst_ProjectImport::ASequenceIsOneSourceWhateverFileNamesIt()
{
    const QStringList paths = Sequence("a", 5);
    ProjectImport* const import = mProject->Import({paths[3], paths[0], paths[4]});
    QVERIFY(mProject->IsReading());
    const Result result = Wait(import);
    QVERIFY(!mProject->IsReading());
    QCOMPARE(result.sources.size(), 1);
    QVERIFY(result.errors.isEmpty());
    const auto source = mProject->FindSource(result.sources.first());
    QCOMPARE(source->FrameCount(), 5);
    QCOMPARE(source->Info().path, paths[3]);
    QCOMPARE(source->GetParentID(), Bin(FolderKind::Sources));
    QCOMPARE(mProject->UndoStack()->count(), 1);
    mProject->UndoStack()->undo();
    QVERIFY(mProject->Timelines(true).isEmpty());
}

void tst_ProjectImport::FoldersAreLookedThroughInOrder()
{
    Sequence("in/b", 3);
    Picture("in/b/still10x.png");
    Picture("in/b/still9x.png");
    Picture("in/a/deep/er/one.png");
    Picture("in/.hidden/secret.png");
    QFile(Path("in/readme.txt")).open(QIODevice::WriteOnly);
    QVERIFY(QFile::link(Path("in"), Path("in/a/round")));
    const std::atomic<bool> cancelled{false};
    QStringList found;
    for (const MediaPaths::Found& medium : MediaPaths::InFolder(Path("in"), cancelled))
        found << medium.folders.join('/') + '/' + QFileInfo(medium.path).fileName();
    QCOMPARE(found, (QStringList{"in/a/deep/er/one.png", "in/b/shot.0001.png", "in/b/still9x.png",
                                 "in/b/still10x.png"}));
}

void tst_ProjectImport::FoldersOfMediaBecomeFolders()
{
    Sequence("day/one", 2);
    Picture("day/two/x.png");
    Picture("day/two/y.png");
    Picture("single/only.png");
    const Result result = Wait(mProject->Import({Path("day"), Path("single")}));
    QCOMPARE(result.sources.size(), 4);
    QCOMPARE(Tree(mProject->Find(Bin(FolderKind::Folders))),
             QString("day\n one\n  shot.0001.png\n two\n  x.png\n  y.png\n"));
    QCOMPARE(Tree(mProject->Find(Bin(FolderKind::Sources))), QString("only.png\n"));
    QCOMPARE(mProject->UndoStack()->count(), 1);
    const QByteArray after = Written(*mProject);
    mProject->UndoStack()->undo();
    QVERIFY(mProject->Find(Bin(FolderKind::Folders))->GetChildren().isEmpty());
    mProject->UndoStack()->redo();
    QCOMPARE(Written(*mProject), after);
}

void tst_ProjectImport::TheSourceBinTakesThemFlat()
{
    Picture("day/one/x.png");
    Picture("day/two/y.png");
    const Result result = Wait(mProject->Import({Path("day")}, Bin(FolderKind::Sources)));
    QCOMPARE(result.sources.size(), 2);
    QCOMPARE(Tree(mProject->Find(Bin(FolderKind::Sources))), QString("x.png\ny.png\n"));
    QVERIFY(mProject->Find(Bin(FolderKind::Folders))->GetChildren().isEmpty());
}

void tst_ProjectImport::IndicesPlaceThePaths()
{
    const QUuid folder = mProject->AddFolder();
    Wait(mProject->Import({Picture("a.png"), Picture("b.png")}, folder));
    QCOMPARE(Tree(mProject->Find(folder)), QString("a.png\nb.png\n"));
    // As the tree sends them: sorted, all at one index.
    Wait(mProject->Import({Picture("c.png"), Picture("d.png")}, folder, {1, 1}));
    QCOMPARE(Tree(mProject->Find(folder)), QString("a.png\nc.png\nd.png\nb.png\n"));
    Wait(mProject->Import({Picture("e.png")}, folder, {77}));
    QCOMPARE(Tree(mProject->Find(folder)), QString("a.png\nc.png\nd.png\nb.png\ne.png\n"));
}

void tst_ProjectImport::BadFilesAreToldAndOthersImported()
{
    QFile bad(Path("bad.png"));
    QVERIFY(bad.open(QIODevice::WriteOnly));
    bad.write("no picture");
    bad.close();
    QVERIFY(QDir(mFolder->path()).mkdir("empty"));
    const Result result =
        Wait(mProject->Import({Path("bad.png"), Picture("good.png"), Path("none.mov"), Path("empty")}));
    QCOMPARE(result.sources.size(), 1);
    QCOMPARE(result.errors.size(), 3);
    for (const char* const name : {"bad.png", "none.mov", "empty"})
        QCOMPARE(result.errors.filter(Path(name)).size(), 1);
}

void tst_ProjectImport::ACancelLeavesNothing()
{
    const QByteArray before = Written(*mProject);
    QStringList paths;
    for (int index = 0; index < 40; ++index)
        paths << Picture(QStringLiteral("p%1x.png").arg(index));
    ProjectImport* const import = mProject->Import(paths);
    QList<int> progress;
    connect(import, &ProjectImport::Progressed, import,
            [&](int done, int total, const QString& path)
            {
                QCOMPARE(total, 40);
                QVERIFY(!path.isEmpty());
                progress << done;
                if (done == 5)
                    import->Cancel();
            });
    const Result result = Wait(import);
    QVERIFY(result.cancelled);
    QVERIFY(result.sources.isEmpty());
    QCOMPARE(progress, (QList<int>{0, 1, 2, 3, 4, 5}));
    QCOMPARE(Written(*mProject), before);
    QCOMPARE(mProject->UndoStack()->count(), 0);
    QVERIFY(!mProject->IsReading());
    // At once, before anything is read.
    ProjectImport* const other = mProject->Import(paths);
    other->Cancel();
    QVERIFY(Wait(other).cancelled);
}

void tst_ProjectImport::AnImportEndsWithItsProject()
{
    mProject->Import({Picture("a.png")});
    QCoreApplication::processEvents();
    mProject->Import({mFolder->path()});
    mProject.reset();
    mProject = std::make_unique<Project>(mLoader.get());
    ProjectImport* const import = mProject->Import({Picture("a.png")});
    mProject->New();
    QVERIFY(Wait(import).cancelled);
}

void tst_ProjectImport::ATimelineTakesThemAsElements()
{
    const QUuid known = Wait(mProject->Import({Picture("known.png")})).sources.first();
    mProject->InsertElements(mTimeline, {known, known});
    const int steps = mProject->UndoStack()->count();
    const QByteArray before = Written(*mProject);
    const Result result =
        Wait(mProject->Import({Picture("a.png"), Path("known.png"), Picture("b.png")}, mTimeline, {1, 1, 1}));
    QCOMPARE(result.sources.size(), 3);
    QCOMPARE(result.elements.size(), 3);
    QCOMPARE(Tree(mProject->Find(mTimeline)), QString("known.png\na.png\nknown.png\nb.png\nknown.png\n"));
    QCOMPARE(Tree(mProject->Find(Bin(FolderKind::Sources))), QString("known.png\na.png\nb.png\n"));
    QCOMPARE(mProject->UndoStack()->count(), steps + 1);
    mProject->UndoStack()->undo();
    QCOMPARE(Written(*mProject), before);
}

void tst_ProjectImport::WhatIsThereIsNotImportedTwice()
{
    const QStringList paths = Sequence("a", 3);
    const QUuid first = Wait(mProject->Import({paths[0]})).sources.first();
    const int steps = mProject->UndoStack()->count();
    const Result again = Wait(mProject->Import({paths[2]}));
    QCOMPARE(again.sources, QList<QUuid>{first});
    QCOMPARE(mProject->UndoStack()->count(), steps);
    QCOMPARE(mProject->FindSourceByPath(paths[1])->GetID(), first);
}

void tst_ProjectImport::ARemovedSourceComesBack()
{
    const QString path = Picture("a.png");
    const QUuid id = Wait(mProject->Import({path})).sources.first();
    mProject->SetDrawings(id, 1, {Note("mine", 1)}, "Draw");
    mProject->InsertElements(mTimeline, {id});
    mProject->Remove({id});
    const auto element = mProject->FindElementTimeline(mTimeline)->GetElements()[0];
    QVERIFY(element->IsMissing());
    QVERIFY(mProject->FindElementTimeline(mTimeline)->SourceAt(1)->IsMissing());
    QCOMPARE(Wait(mProject->Import({path})).sources, QList<QUuid>{id});
    QVERIFY(!element->IsMissing());
    QVERIFY(!mProject->FindElementTimeline(mTimeline)->SourceAt(1)->IsMissing());
    QCOMPARE(mProject->FindSource(id)->Annotations()->Drawings(1).size(), 1);
    mProject->UndoStack()->undo();
    QVERIFY(element->IsMissing());
    // Saved and read again it is missing still, though its file is there.
    mProject->UndoStack()->redo();
    mProject->UndoStack()->undo();
    QString error;
    QVERIFY(mProject->Save(Path("p.torvalen"), &error));
    QVERIFY2(mProject->Open(Path("p.torvalen"), &error), qPrintable(error));
    QVERIFY(mProject->FindElementTimeline(mTimeline)->GetElements()[0]->IsMissing());
    QVERIFY(mProject->FindElementTimeline(mTimeline)->SourceAt(1)->IsMissing());
}

void tst_ProjectImport::AnImportForViewingIsNoWork()
{
    const Result result = Wait(mProject->Import({Picture("a.png")}, QUuid(), {}, true));
    QCOMPARE(result.sources.size(), 1);
    QVERIFY(mLoader->Info(result.openMedium));
    QVERIFY(mProject->IsModified());
    QVERIFY(!mProject->HasUnsavedWork());
    const Result kept = Wait(mProject->Import({Picture("b.png")}));
    QCOMPARE(kept.openMedium, -1);
    QVERIFY(mProject->HasUnsavedWork());
}

void tst_ProjectImport::WithoutALoaderNothingIsRead()
{
    Project project;
    const Result result = Wait(project.Import({Picture("a.png"), Picture("b.png")}));
    QCOMPARE(result.errors.size(), 2);
    QVERIFY(result.sources.isEmpty());
}

void tst_ProjectImport::ReplacingKeepsWhatHangsOnTheSource()
{
    const QStringList five = Sequence("five", 5);
    const QStringList three = Sequence("three", 3);
    const QUuid id = Wait(mProject->Import({five[0]})).sources.first();
    const QUuid other = Wait(mProject->Import({Picture("other.png")})).sources.first();
    const QUuid sourceID = mProject->FindSource(id)->GetMediaSource()->GetID();
    mProject->InsertElements(mTimeline, {id, other});
    mProject->SetDrawings(id, 2, {Note("two", 1)}, "Draw");
    mProject->SetDrawings(mTimeline, 6, {Note("on other", 2)}, "Draw");
    mProject->AddBookmark(id, 3);
    const QByteArray before = Written(*mProject);
    QSignalSpy changed(mProject.get(), SIGNAL(SourceChanged(QUuid)));
    mProject->ReplaceSource(sourceID, three[0]);
    QVERIFY(mProject->IsReading());
    QVERIFY(changed.wait(10000));
    const auto source = mProject->FindSource(id);
    QCOMPARE(source->FrameCount(), 3);
    QCOMPARE(source->GetMediaSource()->GetID(), sourceID);
    QCOMPARE(source->Annotations()->Drawings(2).size(), 1);
    QVERIFY(source->MarkedFrames().contains(3));
    const auto timeline = mProject->FindElementTimeline(mTimeline);
    QCOMPARE(timeline->FrameCount(), 4);
    QCOMPARE(timeline->Annotations()->Drawings(4).value(0).text, QString("on other"));
    mProject->UndoStack()->undo();
    QCOMPARE(Written(*mProject), before);
    QCOMPARE(timeline->FrameCount(), 6);
    mProject->UndoStack()->redo();
    QCOMPARE(timeline->FrameCount(), 4);
    // A name that was the file's goes with it; one of its own stays.
    mProject->Rename(id, "Hero");
    mProject->ReplaceSource(id, Picture("new.png"));
    QVERIFY(changed.wait(10000));
    QCOMPARE(source->GetName(), QString("Hero"));
    mProject->ReplaceSource(other, Picture("fresh.png"));
    QVERIFY(changed.wait(10000));
    QCOMPARE(mProject->FindSource(other)->GetName(), QString("fresh.png"));
}

void tst_ProjectImport::ReplacingByABadFileChangesNothing()
{
    const QUuid id = Wait(mProject->Import({Picture("a.png")})).sources.first();
    const QByteArray before = Written(*mProject);
    QSignalSpy refused(mProject.get(), SIGNAL(Refused(QString)));
    mProject->ReplaceSource(id, Path("none.png"));
    QVERIFY(refused.wait(10000));
    QVERIFY(refused.first().first().toString().contains(Path("none.png")));
    QCOMPARE(Written(*mProject), before);
    QVERIFY(!mProject->FindSource(id)->IsMissing());
}

void tst_ProjectImport::RefreshingReadsTheMediumAnew()
{
    const QStringList paths = Sequence("a", 3);
    const QUuid id = Wait(mProject->Import({paths[0]})).sources.first();
    Sequence("a", 6);
    QSignalSpy changed(mProject.get(), SIGNAL(SourceChanged(QUuid)));
    mProject->RefreshSource(id);
    QVERIFY(changed.wait(10000));
    QCOMPARE(mProject->FindSource(id)->FrameCount(), 6);
    mProject->UndoStack()->undo();
    QCOMPARE(mProject->FindSource(id)->FrameCount(), 3);
    mProject->UndoStack()->redo();
    // Gone, it is missing and keeps its length.
    QVERIFY(QDir(Path("a")).removeRecursively());
    QSignalSpy refused(mProject.get(), SIGNAL(Refused(QString)));
    mProject->RefreshSource(id);
    QVERIFY(refused.wait(10000));
    QVERIFY(mProject->FindSource(id)->IsMissing());
    QCOMPARE(mProject->FindSource(id)->FrameCount(), 6);
}

void tst_ProjectImport::NotedMediaAreNoSteps()
{
    const QUuid id = mProject->AddSource(ProjectSamples::Medium("a.mov", 10));
    mProject->InsertElements(mTimeline, {id});
    const int steps = mProject->UndoStack()->count();
    mProject->NoteMissing(mProject->FindSource(id)->GetMediaSource()->GetID());
    QVERIFY(mProject->FindSource(id)->IsMissing());
    QVERIFY(mProject->FindElementTimeline(mTimeline)->GetElements()[0]->IsMissing());
    mProject->NoteMedium(id, ProjectSamples::Medium("a.mov", 25));
    QVERIFY(!mProject->FindSource(id)->IsMissing());
    QCOMPARE(mProject->FindElementTimeline(mTimeline)->FrameCount(), 25);
    QCOMPARE(mProject->UndoStack()->count(), steps);
}

void tst_ProjectImport::KeysOfPaths_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<bool>("same");
    QTest::newRow("numbers of a picture") << "/x/a.0001.png"
                                          << "/x/a.0200.png" << true;
    QTest::newRow("another padding") << "/x/a.1.png"
                                     << "/x/a.0200.png" << true;
    QTest::newRow("movies with numbers") << "/x/a1.mov"
                                         << "/x/a2.mov" << false;
    QTest::newRow("another folder") << "/x/a.0001.png"
                                    << "/y/a.0001.png" << false;
    QTest::newRow("another name") << "/x/a.0001.png"
                                  << "/x/b.0001.png" << false;
    QTest::newRow("another kind") << "/x/a.0001.png"
                                  << "/x/a.0001.exr" << false;
    QTest::newRow("number elsewhere") << "/x/1.a.png"
                                      << "/x/2.a.png" << false;
    QTest::newRow("number too long") << "/x/a.1234567890.png"
                                     << "/x/a.1234567891.png" << false;
    QTest::newRow("roundabout") << "/x/../x/a.mov"
                                << "/x/./a.mov" << true;
}

void tst_ProjectImport::KeysOfPaths()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(bool, same);
    QCOMPARE(MediaPaths::Key(a) == MediaPaths::Key(b), same);
}

static const TestRegistration<tst_ProjectImport> ProjectImportRegistration;

#include "tst_ProjectImport.moc"
