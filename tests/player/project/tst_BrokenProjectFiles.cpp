// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/JsonText.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using ProjectSamples::Medium;
using ProjectSamples::Note;
using ProjectSamples::Written;

using Spoil = std::function<QByteArray(QJsonObject document)>;
Q_DECLARE_METATYPE(Spoil)

/// Files that are no sound projects: each is refused with an error that names the place, and the open project
/// stays as it is.
class tst_BrokenProjectFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void BrokenFilesAreRefused_data();
    void BrokenFilesAreRefused();
    void CutFilesAreRefused();
    void FilesWithFlippedBytesDoNoHarm();
    void ValuesOfTheWrongKindDoNoHarm();
    void AMissingFileIsRefused();

private:
    void Refuses(const QByteArray& text, const QStringList& inError);

    QTemporaryDir mFolder;
    QJsonObject mDocument;
};

namespace
{

/// Index of the first object of @p type with the name @p name in the document of the test.
int IndexOf(const QJsonObject& document, const QString& type, const QString& name)
{
    const QJsonArray objects = document["objects"].toArray();
    for (int index = 0; index < objects.size(); ++index)
    {
        if (objects[index].toObject()["type"] == type && objects[index].toObject()["name"] == name)
            return index;
    }
    return -1;
}

/// @p document with the member @p path of an object changed by @p change.
QByteArray With(QJsonObject document, int index, const std::function<void(QJsonObject&)>& change)
{
    QJsonArray objects = document["objects"].toArray();
    QJsonObject object = objects[index].toObject();
    change(object);
    objects[index] = object;
    document["objects"] = objects;
    return JsonText(document);
}

} // namespace

void tst_BrokenProjectFiles::initTestCase()
{
    Settings::RestoreDefaults();
    Project project;
    const QUuid outer = project.AddFolder(QUuid(), -1, "Outer");
    project.AddFolder(outer, -1, "Inner");
    const QUuid source = project.AddSource(Medium("a.mov"));
    const QUuid list = project.DefaultTimeline()->GetID();
    project.InsertElements(list, {source, source});
    project.SetDrawings(source, 7, {Note("c", 1)}, "Draw");
    project.SetRange(source, 2, 30);
    mDocument = ProjectFile::ToJson(project.Content(), mFolder.path());
}

void tst_BrokenProjectFiles::Refuses(const QByteArray& text, const QStringList& inError)
{
    const QString path = mFolder.filePath("broken.torvalen");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    Project project;
    const QUuid folder = project.AddFolder();
    const QByteArray before = Written(project);
    QSignalSpy reset(&project, SIGNAL(Reset()));
    QString error;
    QVERIFY(!project.Open(path, &error));
    QVERIFY2(error.startsWith(path), qPrintable(error));
    for (const QString& part : inError)
        QVERIFY2(error.contains(part), qPrintable(error + " lacks " + part));
    QCOMPARE(Written(project), before);
    QVERIFY(project.Find(folder));
    QVERIFY(project.IsModified());
    QVERIFY(project.FilePath().isEmpty());
    QCOMPARE(reset.size(), 0);
}

void tst_BrokenProjectFiles::BrokenFilesAreRefused_data()
{
    QTest::addColumn<Spoil>("spoil");
    QTest::addColumn<QStringList>("inError");
    const int outer = IndexOf(mDocument, "folder", "Outer");
    const int inner = IndexOf(mDocument, "folder", "Inner");
    const int sources = IndexOf(mDocument, "folder", "Sources");
    const int source = IndexOf(mDocument, "source", "a.mov");
    const int list = IndexOf(mDocument, "timeline", "Timeline");
    QVERIFY(outer > 0 && inner > 0 && sources > 0 && source > 0 && list > 0);
    const QJsonArray objects = mDocument["objects"].toArray();
    const auto idOf = [objects](int index) { return objects[index].toObject()["id"].toString(); };
    const auto place = [](int index, const QString& rest)
    { return QString("objects[%1]%2").arg(index).arg(rest); };
    const auto row = [](const char* name, const Spoil& spoil, const QStringList& inError)
    { QTest::newRow(name) << spoil << inError; };
    const auto top = [](const QString& key, const QJsonValue& value)
    {
        return [=](QJsonObject document)
        {
            if (value.isUndefined())
                document.remove(key);
            else
                document[key] = value;
            return JsonText(document);
        };
    };
    const auto member = [](int index, const QString& key, const QJsonValue& value)
    {
        return [=](const QJsonObject& document)
        {
            return With(document, index,
                        [&](QJsonObject& object)
                        {
                            if (value.isUndefined())
                                object.remove(key);
                            else
                                object[key] = value;
                        });
        };
    };
    const QJsonValue none(QJsonValue::Undefined);
    const QString stranger = QUuid::createUuid().toString();

    row("empty", [](QJsonObject) { return QByteArray(); }, {"line 1"});
    row("no JSON", [](QJsonObject) { return QByteArray("{\n \"format\": oops }"); }, {"line 2, column"});
    row("binary", [](QJsonObject) { return QByteArray(1000, '\0'); }, {"line 1"});
    row("a list", [](QJsonObject) { return QByteArray("[1, 2]"); }, {"object"});
    row("another format", top("format", "something"), {"format"});
    row("no format", top("format", none), {"\"format\""});
    row("newer version", top("version", 2), {"version", "2", "1"});
    row("version zero", top("version", 0), {"version"});
    row("version of a half", top("version", 1.5), {"version"});
    row("version as text", top("version", "1"), {"version"});
    row("no objects", top("objects", none), {"\"objects\""});
    row("objects as an object", top("objects", QJsonObject()), {"objects", "list"});
    row("object as a number", top("objects", QJsonArray{7}), {"objects[0]"});
    row("settings as a list", top("settings", QJsonArray()), {"settings"});
    row("rate of a text", top("settings", QJsonObject{{"imageSequenceFrameRate", "24"}}),
        {"settings.imageSequenceFrameRate"});
    row("rate out of range", top("settings", QJsonObject{{"imageSequenceFrameRate", 1e9}}),
        {"settings.imageSequenceFrameRate"});
    row("root of nothing", top("root", stranger), {"root", stranger});
    row("root that is no root", top("root", idOf(outer)), {"root"});
    row("root that is no id", top("root", "me"), {"root", "id"});
    row("default of nothing", top("defaultTimeline", stranger), {"defaultTimeline", stranger});
    row("default that is a source", top("defaultTimeline", idOf(source)), {"defaultTimeline"});
    row("no id", member(outer, "id", none), {place(outer, ""), "\"id\""});
    row("null id", member(outer, "id", QUuid().toString()), {place(outer, ".id")});
    row("no type", member(outer, "type", none), {place(outer, ""), "\"type\""});
    row("no name", member(outer, "name", none), {place(outer, ""), "\"name\""});
    row("duplicate id", member(inner, "id", idOf(outer)), {idOf(outer), place(outer, ".id")});
    row("unknown bin", member(sources, "bin", "things"), {place(sources, ".bin"), "things"});
    row("two bins of a kind", member(sources, "bin", "folders"), {});
    row("bin below a folder", member(inner, "bin", "folders"), {});
    row("two roots", member(inner, "bin", "root"), {});
    row("child of nothing", member(inner, "children", QJsonArray{stranger}),
        {place(inner, ".children[0]"), stranger});
    row("child of two folders", member(inner, "children", QJsonArray{idOf(source)}), {idOf(source)});
    row("child twice", member(outer, "children", QJsonArray{idOf(inner), idOf(inner)}),
        {place(outer, ".children[1]")});
    row("the root as a child", member(inner, "children", QJsonArray{objects[0].toObject()["id"]}),
        {place(inner, ".children[0]")});
    row("a folder in itself", member(inner, "children", QJsonArray{idOf(inner)}), {idOf(inner)});
    row("a timeline among sources", member(sources, "children", QJsonArray{idOf(source), idOf(list)}),
        {idOf(list)});
    row("children as a text", member(outer, "children", "inner"), {place(outer, ".children")});
    row("a circle of folders",
        [=](const QJsonObject& document)
        {
            // The outer folder hangs on the inner one instead of on its bin.
            QJsonObject spoiled =
                QJsonDocument::fromJson(With(document, inner,
                                             [&](QJsonObject& object)
                                             { object["children"] = QJsonArray{idOf(outer)}; }))
                    .object();
            return With(spoiled, IndexOf(document, "folder", "Folders"),
                        [](QJsonObject& object) { object["children"] = QJsonArray(); });
        },
        {idOf(outer), "circle"});
    row("an object in no folder", member(outer, "children", QJsonArray()), {idOf(inner), "no folder"});
    row("a source without a medium", member(source, "source", none), {place(source, ""), "\"source\""});
    row("a source without a path", member(source, "source", QJsonObject{{"id", stranger}, {"path", ""}}),
        {place(source, ".source.path")});
    row("a source without media", member(source, "source", QJsonObject{{"id", stranger}, {"path", "/x"}}),
        {place(source, ".source"), "media"});
    row("a medium without frames",
        member(source, "source",
               QJsonObject{{"id", stranger},
                           {"path", "/x"},
                           {"media", QJsonObject{{"frameCount", 0}, {"frameRate", QJsonArray{24, 1}}}}}),
        {place(source, ".source.media.frameCount")});
    row("a medium of rate zero",
        member(source, "source",
               QJsonObject{{"id", stranger},
                           {"path", "/x"},
                           {"media", QJsonObject{{"frameCount", 5}, {"frameRate", QJsonArray{24, 0}}}}}),
        {place(source, ".source.media.frameRate[1]")});
    row("a range the wrong way round", member(source, "range", QJsonObject{{"first", 9}, {"last", 3}}),
        {place(source, ".range.last")});
    row("a mark before the first frame", member(source, "marks", QJsonArray{4, 0}),
        {place(source, ".marks[1]")});
    row("a zoom of zero",
        member(source, "view", QJsonObject{{"pan", QJsonArray{0, 0}}, {"zoom", 0}, {"enabled", true}}),
        {place(source, ".view.zoom")});
    row("half a point",
        member(source, "drawings",
               QJsonArray{QJsonObject{
                   {"frame", 1},
                   {"drawings",
                    QJsonArray{QJsonObject{{"type", "pencil"}, {"width", 1}, {"points", QJsonArray{1}}}}}}}),
        {place(source, ".drawings[0].drawings[0].points")});
    row("a colour of three channels",
        member(source, "drawings",
               QJsonArray{QJsonObject{{"frame", 1},
                                      {"drawings", QJsonArray{QJsonObject{{"type", "pencil"},
                                                                          {"width", 1},
                                                                          {"color", QJsonArray{1, 2, 3}},
                                                                          {"points", QJsonArray()}}}}}}),
        {place(source, ".drawings[0].drawings[0].color")});
    row("an element of nothing",
        member(list, "elements",
               QJsonArray{QJsonObject{{"id", QUuid::createUuid().toString()}, {"source", stranger}}}),
        {place(list, ".elements[0].source"), stranger});
    row("an element of a folder",
        member(list, "elements",
               QJsonArray{QJsonObject{{"id", QUuid::createUuid().toString()}, {"source", idOf(outer)}}}),
        {place(list, ".elements[0].source")});
    row("an element with a folder's id",
        member(list, "elements", QJsonArray{QJsonObject{{"id", idOf(outer)}, {"source", idOf(source)}}}),
        {place(list, ".elements[0].id"), idOf(outer)});
    row("an element twice",
        member(list, "elements",
               QJsonArray{QJsonObject{{"id", stranger}, {"source", idOf(source)}},
                          QJsonObject{{"id", stranger}, {"source", idOf(source)}}}),
        {place(list, ".elements[1].id")});
    row("a removed source in a folder", member(source, "removed", true), {idOf(source), "removed"});
}

void tst_BrokenProjectFiles::BrokenFilesAreRefused()
{
    QFETCH(Spoil, spoil);
    QFETCH(QStringList, inError);
    Refuses(spoil(mDocument), inError);
}

void tst_BrokenProjectFiles::CutFilesAreRefused()
{
    const QByteArray text = JsonText(mDocument).trimmed();
    for (int length = 0; length < text.size(); length += length < text.size() - 40 ? 37 : 1)
    {
        QString error;
        QVERIFY2(!ProjectFile::FromText(text.left(length), mFolder.path(), &error),
                 QByteArray::number(length));
        QVERIFY2(error.startsWith("line "), qPrintable(error));
    }
}

void tst_BrokenProjectFiles::FilesWithFlippedBytesDoNoHarm()
{
    const QByteArray text = JsonText(mDocument);
    QRandomGenerator random(3);
    int refused = 0;
    for (int round = 0; round < 1500; ++round)
    {
        QByteArray spoiled = text;
        for (int flip = random.bounded(1, 4); flip > 0; --flip)
            spoiled[random.bounded(spoiled.size())] = static_cast<char>(random.bounded(256));
        QString error;
        const auto content = ProjectFile::FromText(spoiled, mFolder.path(), &error);
        QCOMPARE(content.has_value(), error.isEmpty());
        refused += content ? 0 : 1;
        if (content)
            ProjectFile::ToJson(*content, mFolder.path());
    }
    QVERIFY(refused > 300);
}

namespace
{

/// Every value of @p document, in order, put by @p visit in turn to another one.
void ForEachValue(const QJsonValue& value, const std::function<void(const QJsonValue&)>& emitChanged,
                  const QList<QJsonValue>& others)
{
    for (const QJsonValue& other : others)
        emitChanged(other);
    if (value.isArray())
    {
        const QJsonArray array = value.toArray();
        for (int index = 0; index < array.size(); ++index)
            ForEachValue(
                array[index],
                [&](const QJsonValue& changed)
                {
                    QJsonArray copy = array;
                    copy[index] = changed;
                    emitChanged(copy);
                },
                others);
    }
    else if (value.isObject())
    {
        const QJsonObject object = value.toObject();
        for (const QString& key : object.keys())
            ForEachValue(
                object[key],
                [&](const QJsonValue& changed)
                {
                    QJsonObject copy = object;
                    copy[key] = changed;
                    emitChanged(copy);
                },
                others);
    }
}

} // namespace

void tst_BrokenProjectFiles::ValuesOfTheWrongKindDoNoHarm()
{
    int count = 0;
    ForEachValue(mDocument,
                 [&](const QJsonValue& changed)
                 {
                     ++count;
                     if (!changed.isObject())
                         return;
                     QString error;
                     const auto content = ProjectFile::FromText(QJsonDocument(changed.toObject()).toJson(),
                                                                mFolder.path(), &error);
                     if (content)
                         ProjectFile::ToJson(*content, mFolder.path());
                     else
                         QVERIFY(!error.isEmpty());
                 },
                 {QJsonValue(), true, -1, 1e300, 2147483647, "text", QJsonArray{QJsonArray()},
                  QJsonObject{{"id", 3}}});
    QVERIFY(count > 500);
}

void tst_BrokenProjectFiles::AMissingFileIsRefused()
{
    Project project;
    QString error;
    QVERIFY(!project.Open(mFolder.filePath("none.torvalen"), &error));
    QVERIFY2(error.contains("none.torvalen"), qPrintable(error));
    QVERIFY(!project.Open(mFolder.path(), &error));
    QVERIFY2(error.contains(mFolder.path()), qPrintable(error));
}

static const TestRegistration<tst_BrokenProjectFiles> BrokenProjectFilesRegistration;

#include "tst_BrokenProjectFiles.moc"
