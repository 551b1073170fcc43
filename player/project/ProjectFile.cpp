// SPDX-License-Identifier: MIT
#include "project/ProjectFile.h"

#include "project/ElementTimeline.h"
#include "project/JsonText.h"
#include "project/MediaPaths.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/ProjectCodec.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

#include <vector>

namespace
{

const QString FormatName = QStringLiteral("torvalen-project");
const QStringList TopMembers = {QStringLiteral("format"),   QStringLiteral("version"),
                                QStringLiteral("settings"), QStringLiteral("root"),
                                QStringLiteral("objects"),  QStringLiteral("defaultTimeline")};
const QStringList SettingsMembers = {QStringLiteral("sourceRoot"), QStringLiteral("imageSequenceFrameRate"),
                                     QStringLiteral("notes")};

QString FileText(const char* text)
{
    return QCoreApplication::translate("ProjectFile", text);
}

/// More can't be counted on safely.
constexpr int64_t MaximumTimelineFrames = 1000000000;

void AppendObjects(const ProjectContent& content, ProjectObject& object, const QString& sourceRoot,
                   QJsonArray& objects)
{
    objects.append(ProjectCodec::WriteObject(object, content.extras.value(object.GetID()), sourceRoot));
    if (object.GetType() != 0)
        return;
    for (const std::shared_ptr<ProjectObject>& child : object.GetChildren())
        AppendObjects(content, *child, sourceRoot, objects);
}

/// Puts a document's objects together.
class ContentReader
{
public:
    ContentReader(const JsonPart& document, const QString& projectFolder)
        : mDocument(document), mProjectFolder(projectFolder)
    {
    }

    ~ContentReader()
    {
        // Folders that hold each other would never go.
        for (const Entry& entry : mEntries)
        {
            const auto folder = std::dynamic_pointer_cast<FolderObject>(entry.object);
            while (!mIsDone && folder && !folder->ChildList().isEmpty())
                folder->Take(folder->ChildList().last()->GetID(), folder->ChildList().size() - 1);
        }
    }

    ProjectContent Read()
    {
        ReadSettings();
        for (const JsonPart& part : mDocument.Member("objects").Items())
            ReadObject(part);
        FindRoot();
        for (Entry& entry : mEntries)
            ReadChildren(entry);
        // In the order of the document: a source timeline's range tells the length of its elements.
        for (const bool ofSources : {true, false})
        {
            for (Entry& entry : mEntries)
                ReadState(entry, ofSources);
        }
        CheckPlaces();
        mContent.Register(mContent.root);
        AddBins();
        ReadDefault();
        KeepExtras();
        mContent.MarkRemovedSources();
        mIsDone = true;
        return std::move(mContent);
    }

private:
    struct Entry
    {
        JsonPart part;
        std::shared_ptr<ProjectObject> object;
        bool removed = false;
        bool placed = false;
    };

    void ReadSettings()
    {
        if (mDocument.Has("settings"))
        {
            const JsonPart part = mDocument.Member("settings");
            mContent.settings = ProjectCodec::ReadSettings(part);
            mTop.inner.insert(QStringLiteral("settings"), part.Rest(SettingsMembers));
        }
        mSourceRoot = MediaPaths::SourceRoot(mContent.settings.sourceRoot, mProjectFolder);
    }

    void ReadObject(const JsonPart& part)
    {
        ExtraParts extras;
        const std::shared_ptr<ProjectObject> object = ProjectCodec::ReadObject(part, extras, mSourceRoot);
        TakeId(part.Member("id"), object->GetID());
        const auto media = std::dynamic_pointer_cast<MediaTimeline>(object);
        if (media)
            TakeId(part.Member("source").Member("id"), media->GetMediaSource()->GetID());
        const bool removed = media && part.FlagOr("removed", false);
        mExtras.insert(object->GetID(), extras);
        mIndices.insert(object->GetID(), mEntries.size());
        mEntries.push_back({part, object, removed, false});
    }

    void TakeId(const JsonPart& part, const QUuid& id)
    {
        if (mIds.contains(id))
            part.Fail(FileText("the id %1 is that of %2 too").arg(id.toString(), mIds.value(id)));
        mIds.insert(id, part.Place());
    }

    Entry* EntryOf(const QUuid& id)
    {
        const auto found = mIndices.constFind(id);
        return found == mIndices.constEnd() ? nullptr : &mEntries[*found];
    }

    void FindRoot()
    {
        const JsonPart part = mDocument.Member("root");
        Entry* const entry = EntryOf(part.Id());
        if (!entry)
            part.Fail(FileText("there is no object %1").arg(part.Text()));
        mContent.root = std::dynamic_pointer_cast<FolderObject>(entry->object);
        if (!mContent.root || mContent.root->Kind() != FolderKind::Root)
            part.Fail(FileText("the root is a folder with the bin \"root\""));
        entry->placed = true;
    }

    void ReadChildren(Entry& entry)
    {
        const auto folder = std::dynamic_pointer_cast<FolderObject>(entry.object);
        if (!folder)
            return;
        if (folder->Kind() == FolderKind::Root && folder != mContent.root)
            entry.part.Member("bin").Fail(FileText("the root alone is this"));
        for (const JsonPart& part : entry.part.ItemsOf("children"))
        {
            const QUuid id = part.Id();
            Entry* const child = EntryOf(id);
            if (!child)
                part.Fail(FileText("there is no object %1").arg(id.toString()));
            if (child->placed)
                part.Fail(FileText("the object %1 has a place already").arg(id.toString()));
            CheckKind(part, *folder, *child);
            child->placed = true;
            folder->Insert(-1, child->object);
        }
    }

    void CheckKind(const JsonPart& part, const FolderObject& folder, const Entry& child)
    {
        const auto childFolder = std::dynamic_pointer_cast<FolderObject>(child.object);
        const bool isBin = childFolder && childFolder->Kind() != FolderKind::Plain;
        const int type = child.object->GetType();
        // An object that this version doesn't know may stand anywhere.
        const bool fits = type > 2 || (folder.Kind() == FolderKind::Root
                                           ? isBin
                                           : !isBin && folder.Takes(type, child.object->IsSourceTimeline()));
        if (!fits)
            part.Fail(FileText("the object %1 can't stand here").arg(child.object->GetID().toString()));
        if (child.removed)
            part.Fail(FileText("the source %1 is removed").arg(child.object->GetID().toString()));
        if (isBin && mBins.contains(static_cast<int>(childFolder->Kind())))
            part.Fail(FileText("there are two of this bin"));
        if (isBin)
            mBins.insert(static_cast<int>(childFolder->Kind()));
    }

    void ReadState(Entry& entry, bool ofSources)
    {
        const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(entry.object);
        if (!timeline || timeline->IsSourceTimeline() != ofSources)
            return;
        TimelineState state;
        ProjectCodec::ReadState(entry.part, state, mExtras[timeline->GetID()],
                                [this](const QUuid& id)
                                {
                                    const Entry* const source = EntryOf(id);
                                    return source ? std::dynamic_pointer_cast<MediaTimeline>(source->object)
                                                  : nullptr;
                                });
        const QList<JsonPart> elements = ofSources ? QList<JsonPart>() : entry.part.ItemsOf("elements");
        for (const JsonPart& element : elements)
            TakeId(element.Member("id"), element.Member("id").Id());
        if (ofSources)
        {
            state.elements.clear();
            state.offstage.clear();
        }
        int64_t frames = 0;
        for (const std::shared_ptr<ElementObject>& element : state.elements)
        {
            const MediaTimeline& source = *element->SourceTimeline();
            if (!state.rate.IsValid())
                state.rate = source.Rate();
            frames += FramesForMedia(source.FrameCount(), source.Rate(), state.rate);
        }
        if (frames > MaximumTimelineFrames)
            entry.part.Fail(FileText("the timeline is too long"));
        state.ApplyTo(*timeline);
    }

    /// Everything must hang on the root: what doesn't hangs on itself in a circle, or on nothing.
    void CheckPlaces()
    {
        mContent.Register(mContent.root);
        for (const Entry& entry : mEntries)
        {
            if (entry.removed || mContent.objects.contains(entry.object->GetID()))
                continue;
            const QString id = entry.object->GetID().toString();
            entry.part.Fail(entry.placed
                                ? FileText("the folders over the object %1 go round in a circle").arg(id)
                                : FileText("the object %1 stands in no folder").arg(id));
        }
        mContent.objects.clear();
    }

    void AddBins()
    {
        ProjectContent empty = ProjectContent::Empty(mContent.settings, false);
        const QList<std::shared_ptr<ProjectObject>> bins = empty.root->GetChildren();
        for (int index = 0; index < bins.size(); ++index)
        {
            if (mBins.contains(static_cast<int>(static_cast<FolderObject&>(*bins[index]).Kind())))
                continue;
            mContent.root->Insert(index, bins[index]);
            mContent.Register(bins[index]);
        }
    }

    void ReadDefault()
    {
        if (!mDocument.Has("defaultTimeline"))
            return;
        const JsonPart part = mDocument.Member("defaultTimeline");
        const QUuid id = part.Id();
        const auto timeline = std::dynamic_pointer_cast<ElementTimeline>(mContent.objects.value(id));
        if (!timeline)
            part.Fail(FileText("there is no timeline %1").arg(id.toString()));
        timeline->SetDefault(true);
        mContent.defaultTimeline = id;
    }

    void KeepExtras()
    {
        mTop.own = mDocument.Rest(TopMembers);
        mExtras.insert(QUuid(), mTop);
        mContent.extras = mExtras;
    }

    JsonPart mDocument;
    QString mProjectFolder;
    QString mSourceRoot;
    ProjectContent mContent;
    ExtraParts mTop;
    std::vector<Entry> mEntries;
    QHash<QUuid, size_t> mIndices;
    /// Where each id stands.
    QHash<QUuid, QString> mIds;
    QSet<int> mBins;
    QHash<QUuid, ExtraParts> mExtras;
    bool mIsDone = false;
};

/// The line and column of byte @p offset, both from 1.
QString LineOf(const QByteArray& text, int offset)
{
    const QByteArray before = text.left(offset);
    return FileText("line %1, column %2")
        .arg(before.count('\n') + 1)
        .arg(before.size() - before.lastIndexOf('\n'));
}

void SetFileError(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

} // namespace

namespace ProjectFile
{

QJsonObject ToJson(const ProjectContent& content, const QString& projectFolder)
{
    const QString sourceRoot = MediaPaths::SourceRoot(content.settings.sourceRoot, projectFolder);
    const ExtraParts top = content.extras.value(QUuid());
    QJsonObject json = top.own;
    json[QLatin1String("format")] = FormatName;
    json[QLatin1String("version")] = Version;
    QJsonObject settings = top.inner.value(QStringLiteral("settings"));
    const QJsonObject known = ProjectCodec::WriteSettings(content.settings);
    for (auto member = known.constBegin(); member != known.constEnd(); ++member)
        settings.insert(member.key(), member.value());
    json[QLatin1String("settings")] = settings;
    json[QLatin1String("root")] = content.root->GetID().toString();
    if (!content.defaultTimeline.isNull())
        json[QLatin1String("defaultTimeline")] = content.defaultTimeline.toString();
    QJsonArray objects;
    AppendObjects(content, *content.root, sourceRoot, objects);
    for (const std::shared_ptr<MediaTimeline>& source : content.RemovedSources())
        objects.append(
            ProjectCodec::WriteObject(*source, content.extras.value(source->GetID()), sourceRoot, true));
    json[QLatin1String("objects")] = objects;
    return json;
}

std::optional<ProjectContent> FromText(const QByteArray& text, const QString& projectFolder, QString* error)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(text, &problem);
    if (problem.error != QJsonParseError::NoError)
    {
        SetFileError(error,
                     QStringLiteral("%1: %2").arg(LineOf(text, problem.offset), problem.errorString()));
        return std::nullopt;
    }
    if (!document.isObject())
    {
        SetFileError(error, FileText("the document: an object belongs here"));
        return std::nullopt;
    }
    return FromJson(document.object(), projectFolder, error);
}

std::optional<ProjectContent> FromJson(const QJsonObject& document, const QString& projectFolder,
                                       QString* error)
{
    try
    {
        const JsonPart part(document, QString());
        if (part.Member("format").Text() != FormatName)
            part.Member("format").Fail(FileText("this is no project of the player"));
        const int version = part.Member("version").Integer(1, INT_MAX);
        if (version > Version)
            part.Member("version").Fail(
                FileText("the project is of version %1; this player reads versions up to %2")
                    .arg(version)
                    .arg(Version));
        return ContentReader(part, projectFolder).Read();
    }
    catch (const JsonError& wrong)
    {
        SetFileError(error, wrong.Text());
        return std::nullopt;
    }
}

std::optional<ProjectContent> Read(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        SetFileError(error, FileText("%1 can't be opened: %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    const QByteArray text = file.readAll();
    if (file.error() != QFileDevice::NoError)
    {
        SetFileError(error, FileText("%1 can't be read: %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    QString problem;
    std::optional<ProjectContent> content = FromText(text, QFileInfo(path).absolutePath(), &problem);
    if (!content)
        SetFileError(error, FileText("%1 can't be read as a project: %2").arg(path, problem));
    return content;
}

bool Write(const ProjectContent& content, const QString& path, QString* error)
{
    QSaveFile file(path);
    const QByteArray text = JsonText(ToJson(content, QFileInfo(path).absolutePath()));
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit())
        return true;
    SetFileError(error, FileText("%1 can't be written: %2").arg(path, file.errorString()));
    return false;
}

} // namespace ProjectFile
