// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/JsonText.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>

using ProjectSamples::Medium;
using ProjectSamples::Note;
using ProjectSamples::Written;

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void RandomProjectsComeBackAsTheyWere_data();
    void RandomProjectsComeBackAsTheyWere();
    void UnknownPartsSurviveAtEveryLevel();
    void UnknownObjectsAndDrawingsSurvive();
    void SavingMakesTheProjectUnmodified();
    void UndoAfterSavingModifies();
    void AFileThatCantBeWrittenIsReported();
    void RelativePathsFollowTheProject();
    void TheSourceRootFillsInTheProjectsFolder_data();
    void TheSourceRootFillsInTheProjectsFolder();
    void MissingMediaKeepWhatHangsOnThem();
    void RemovedSourcesOfElementsComeBackMissing();
    void DrawingsAreExact();
    void ALargeProjectIsQuick();

private:
    QString Path(const QString& name) const { return mFolder->filePath(name); }

    std::unique_ptr<QTemporaryDir> mFolder;
};

void tst_ProjectFile::init()
{
    Settings::RestoreDefaults();
    mFolder = std::make_unique<QTemporaryDir>();
}

void tst_ProjectFile::RandomProjectsComeBackAsTheyWere_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_ProjectFile::RandomProjectsComeBackAsTheyWere()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed + 1000));
    Project project;
    for (int change = 0; change < 200; ++change)
        ProjectSamples::ChangeAtRandom(project, random);
    const QString path = Path("a.torvalen");
    QString error;
    QVERIFY2(project.Save(path, &error), qPrintable(error));
    Project other;
    QVERIFY2(other.Open(path, &error), qPrintable(error));
    // None of the samples' media is on the disk; that alone is no part of the file.
    QCOMPARE(Written(other), Written(project));
    QVERIFY(!other.IsModified());
    QCOMPARE(other.Title(), QString("a"));
    const QString again = Path("b.torvalen");
    QVERIFY(other.Save(again, &error));
    QFile first(path);
    QFile second(again);
    QVERIFY(first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly));
    QCOMPARE(second.readAll(), first.readAll());
}

namespace
{

/// @p value with a member that no version knows in every object.
QJsonValue WithUnknown(const QJsonValue& value, int* count)
{
    if (value.isArray())
    {
        QJsonArray array;
        for (const QJsonValue& item : value.toArray())
            array.append(WithUnknown(item, count));
        return array;
    }
    if (!value.isObject())
        return value;
    QJsonObject object = value.toObject();
    for (const QString& key : object.keys())
        object[key] = WithUnknown(object[key], count);
    object["zz later"] = QJsonObject{{"deep", QJsonArray{++*count, QJsonValue(), "text"}}};
    return object;
}

} // namespace

void tst_ProjectFile::UnknownPartsSurviveAtEveryLevel()
{
    Project project;
    const QUuid list = project.DefaultTimeline()->GetID();
    const QUuid source = project.AddSource(Medium("a.mov"), project.AddFolder());
    project.InsertElements(list, {source, source});
    project.SetPanZoom(source, QPointF(0.5, 0.25), 3.0f, true);
    project.AddRangeBookmark(source, 2, 5, "note");
    project.AddBookmark(list, 3);
    project.SetDrawings(list, 60, {Note("a", 1), Note("b", 2)}, "Draw");
    project.SetDrawings(source, 7, {Note("c", 1)}, "Draw");
    // Cuts the drawing on the second element off.
    project.SetRange(source, 20, 40);
    int count = 0;
    QJsonObject json = WithUnknown(ProjectFile::ToJson(project.Content(), "/projects"), &count).toObject();
    QVERIFY2(count > 20, QByteArray::number(count));
    QString error;
    const auto content = ProjectFile::FromText(QJsonDocument(json).toJson(), "/projects", &error);
    QVERIFY2(content, qPrintable(error));
    QCOMPARE(JsonText(ProjectFile::ToJson(*content, "/projects")), JsonText(json));
}

void tst_ProjectFile::UnknownObjectsAndDrawingsSurvive()
{
    Project project;
    const QUuid source = project.AddSource(Medium("a.mov"));
    project.SetDrawings(source, 7, {Note("c", 1)}, "Draw");
    QByteArray text = Written(project);
    text.replace("\"type\": \"text\"", "\"type\": \"star\", \"corners\": [5]");
    QJsonObject json = QJsonDocument::fromJson(text).object();
    QJsonArray objects = json["objects"].toArray();
    const QString id = QUuid::createUuid().toString();
    QJsonObject root = objects[0].toObject();
    QJsonArray children = root["children"].toArray();
    children.insert(1, id);
    root["children"] = children;
    objects[0] = root;
    objects.insert(
        2, QJsonObject{{"id", id}, {"type", "playlist"}, {"name", "Later"}, {"items", QJsonArray{1, 2}}});
    json["objects"] = objects;
    const QString path = Path("later.torvalen");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QJsonDocument(json).toJson());
    file.close();
    QString error;
    QVERIFY2(project.Open(path, &error), qPrintable(error));
    const auto later = project.Find(QUuid(id));
    QVERIFY(later && later->GetType() > 2);
    QVERIFY(!project.Remove({QUuid(id)}));
    QCOMPARE(project.FindTimeline(source)->Annotations()->Drawings(7).size(), 1);
    const QJsonObject again = ProjectFile::ToJson(project.Content(), "/projects");
    const auto sorted = [](const QJsonObject& document)
    {
        QStringList lines;
        for (const QJsonValue& object : document["objects"].toArray())
            lines.append(JsonText(object.toObject()));
        lines.sort();
        return lines;
    };
    QCOMPARE(sorted(again), sorted(json));
}

void tst_ProjectFile::SavingMakesTheProjectUnmodified()
{
    Project project;
    project.AddFolder();
    QSignalSpy modified(&project, SIGNAL(ModifiedChanged(bool)));
    QSignalSpy title(&project, SIGNAL(TitleChanged()));
    QString error;
    QVERIFY(project.IsModified());
    QVERIFY(project.Save(Path("x.torvalen"), &error));
    QVERIFY(!project.IsModified());
    QCOMPARE(modified, (QList<QVariantList>{{false}}));
    QCOMPARE(title.size(), 1);
    QCOMPARE(project.FilePath(), Path("x.torvalen"));
    QCOMPARE(project.FolderPath(), mFolder->path());
}

void tst_ProjectFile::UndoAfterSavingModifies()
{
    Project project;
    const QUuid folder = project.AddFolder();
    QString error;
    QVERIFY(project.Save(Path("x.torvalen"), &error));
    project.UndoStack()->undo();
    QVERIFY(project.IsModified());
    QVERIFY(!project.Find(folder));
    project.UndoStack()->redo();
    QVERIFY(!project.IsModified());
}

void tst_ProjectFile::AFileThatCantBeWrittenIsReported()
{
    Project project;
    project.AddFolder();
    QString error;
    QVERIFY(!project.Save(Path("none/x.torvalen"), &error));
    QVERIFY2(error.contains(Path("none/x.torvalen")), qPrintable(error));
    QVERIFY(project.FilePath().isEmpty());
    QVERIFY(project.IsModified());
    // What is there stays whole where writing fails half way: a folder has the file's name.
    QVERIFY(QDir(mFolder->path()).mkdir("folder.torvalen"));
    QVERIFY(!project.Save(Path("folder.torvalen"), &error));
    QVERIFY(QFileInfo(Path("folder.torvalen")).isDir());
}

void tst_ProjectFile::RelativePathsFollowTheProject()
{
    QVERIFY(QDir(mFolder->path()).mkpath("old/shots"));
    QFile medium(Path("old/shots/a.mov"));
    QVERIFY(medium.open(QIODevice::WriteOnly));
    medium.close();
    Project project;
    MediaInfo info = Medium("a.mov");
    info.path = Path("old/shots/a.mov");
    const QUuid id = project.AddSource(info);
    QCOMPARE(project.RelativePath(info.path), QString());
    QString error;
    QVERIFY(project.Save(Path("old/p.torvalen"), &error));
    QCOMPARE(project.RelativePath(info.path), QString("shots/a.mov"));
    QCOMPARE(project.RelativePath(Path("elsewhere.mov")), QString());
    QVERIFY(QDir().rename(Path("old"), Path("new")));
    QVERIFY2(project.Open(Path("new/p.torvalen"), &error), qPrintable(error));
    const auto source = project.FindSource(id);
    QVERIFY(!source->IsMissing());
    QCOMPARE(source->Info().path, Path("new/shots/a.mov"));
    // Without the relative one, the path as it was holds.
    QVERIFY(QFile::rename(Path("new/shots/a.mov"), Path("a.mov")));
    QVERIFY2(project.Open(Path("new/p.torvalen"), &error), qPrintable(error));
    QVERIFY(project.FindSource(id)->IsMissing());
    QCOMPARE(project.FindSource(id)->Info().path, Path("old/shots/a.mov"));
}

void tst_ProjectFile::TheSourceRootFillsInTheProjectsFolder_data()
{
    QTest::addColumn<QString>("root");
    QTest::addColumn<bool>("saved");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << "" << true << "$";
    QTest::newRow("empty, untitled") << "" << false << "";
    QTest::newRow("variable") << "[PROJECT_DIR]/media" << true << "$/media";
    QTest::newRow("variable up") << "[PROJECT_DIR]/../x" << true << "$/../x";
    QTest::newRow("variable, untitled") << "[PROJECT_DIR]/media" << false << "";
    QTest::newRow("absolute") << "/media/" << false << "/media";
    QTest::newRow("relative") << "media" << true << "$/media";
    QTest::newRow("case counts") << "/[project_dir]" << true << "/[project_dir]";
}

void tst_ProjectFile::TheSourceRootFillsInTheProjectsFolder()
{
    QFETCH(QString, root);
    QFETCH(bool, saved);
    QFETCH(QString, expected);
    Project project;
    ProjectSettings settings = project.GetSettings();
    settings.sourceRoot = root;
    project.SetSettings(settings);
    QString error;
    QVERIFY(!saved || project.Save(Path("x.torvalen"), &error));
    expected.replace("$", mFolder->path());
    QCOMPARE(project.SourceRootPath(), expected.isEmpty() ? QString() : QDir::cleanPath(expected));
}

void tst_ProjectFile::MissingMediaKeepWhatHangsOnThem()
{
    Project project;
    const QUuid list = project.DefaultTimeline()->GetID();
    const QUuid id = project.AddSource(Medium("gone.mov", 33, FrameRate{30000, 1001}));
    project.InsertElements(list, {id});
    project.SetDrawings(id, 20, {Note("x", 1)}, "Draw");
    project.AddBookmark(id, 30);
    QString error;
    QVERIFY(project.Save(Path("x.torvalen"), &error));
    QVERIFY(project.Open(Path("x.torvalen"), &error));
    const auto source = project.FindSource(id);
    QVERIFY(source->IsMissing());
    QCOMPARE(source->FrameCount(), 33);
    QVERIFY((source->Rate() == FrameRate{30000, 1001}));
    QCOMPARE(source->GetBookmarks()->GetTimeBookmarks().size(), 2);
    const auto timeline = project.FindElementTimeline(list);
    QVERIFY(timeline->GetElements()[0]->IsMissing());
    QCOMPARE(timeline->FrameCount(), 33);
}

void tst_ProjectFile::RemovedSourcesOfElementsComeBackMissing()
{
    Project project;
    const QUuid list = project.DefaultTimeline()->GetID();
    const QUuid id = project.AddSource(Medium("a.mov", 33));
    project.SetDrawings(id, 20, {Note("x", 1)}, "Draw");
    project.InsertElements(list, {id, project.AddSource(Medium("b.mov"))});
    project.Remove({id});
    QString error;
    QVERIFY(project.Save(Path("x.torvalen"), &error));
    const QByteArray before = Written(project);
    QVERIFY2(project.Open(Path("x.torvalen"), &error), qPrintable(error));
    QCOMPARE(Written(project), before);
    QVERIFY(!project.Find(id));
    const auto elements = project.FindElementTimeline(list)->GetElements();
    QVERIFY(elements[0]->IsMissing());
    QCOMPARE(elements[0]->SourceTimeline()->GetID(), id);
    QCOMPARE(elements[0]->SourceTimeline()->FrameCount(), 33);
    // Once no element is left, nothing of the source is.
    project.RemoveElements(list, {elements[0]->GetID()});
    QVERIFY(!Written(project).contains("a.mov"));
}

void tst_ProjectFile::DrawingsAreExact()
{
    Project project;
    const QUuid id = project.AddSource(Medium("a.mov"));
    QRandomGenerator random(5);
    QList<DrawData> drawings;
    for (int index = 0; index < 20; ++index)
        drawings.append(ProjectSamples::Stroke(random, 50));
    drawings[3].id = ~uint64_t(0);
    drawings[4].width = 1.0f / 3.0f;
    drawings[5].text = QString::fromUtf8("ÄÖ\n\"\\\t€𝄞");
    project.SetDrawings(id, 3, drawings, "Draw");
    QString error;
    QVERIFY(project.Save(Path("x.torvalen"), &error));
    QVERIFY(project.Open(Path("x.torvalen"), &error));
    const QList<DrawData> read = project.FindTimeline(id)->Annotations()->Drawings(3);
    QCOMPARE(read.size(), drawings.size());
    for (int index = 0; index < read.size(); ++index)
    {
        QCOMPARE(read[index].id, drawings[index].id);
        QVERIFY(!(read[index].width < drawings[index].width) && !(drawings[index].width < read[index].width));
        QCOMPARE(read[index].color, drawings[index].color);
        QCOMPARE(read[index].type, drawings[index].type);
        QCOMPARE(read[index].text, drawings[index].text);
        for (int point = 0; point < drawings[index].points.size(); ++point)
        {
            // Bit for bit: QPointF compares with tolerance.
            const QPointF a = read[index].points[point];
            const QPointF b = drawings[index].points[point];
            QVERIFY(std::memcmp(&a, &b, sizeof a) == 0);
        }
    }
}

void tst_ProjectFile::ALargeProjectIsQuick()
{
    Project project;
    project.UndoStack()->beginMacro("Fill");
    const QUuid list = project.DefaultTimeline()->GetID();
    QList<QUuid> folders;
    for (int index = 0; index < 2000; ++index)
    {
        if (index % 100 == 0)
            folders.append(project.AddFolder(QUuid(), -1, QString::number(index)));
    }
    QList<QUuid> ids;
    for (int index = 0; index < 300; ++index)
        ids.append(
            project.AddSource(Medium(QString::number(index) + ".mov"), folders[index % folders.size()]));
    project.InsertElements(list, ids);
    QRandomGenerator random(1);
    for (int index = 0; index < 300; ++index)
        project.SetDrawings(ids[index], 5, {ProjectSamples::Stroke(random, 500)}, "Draw");
    project.UndoStack()->endMacro();
    QString error;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(project.Save(Path("x.torvalen"), &error));
    QVERIFY2(project.Open(Path("x.torvalen"), &error), qPrintable(error));
    QVERIFY2(timer.elapsed() < 20000, QByteArray::number(timer.elapsed()));
}

static const TestRegistration<tst_ProjectFile> ProjectFileRegistration;

#include "tst_ProjectFile.moc"
