// SPDX-License-Identifier: MIT
#include "project/JournalCodec.h"

#include "project/DrawingJson.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/ProjectCodec.h"

#include <algorithm>

namespace JournalCodec
{

namespace
{

using L1 = QLatin1String;
using Kind = ProjectChange::Kind;
using Objects = QHash<QUuid, std::shared_ptr<ProjectObject>>;

void AppendSubtree(ProjectObject& object, const ProjectContent& content, const QString& sourceRoot,
                   QJsonArray& objects)
{
    objects.append(ProjectCodec::WriteObject(object, content.extras.value(object.GetID()), sourceRoot));
    if (object.GetType() != 0)
        return;
    for (const std::shared_ptr<ProjectObject>& child : object.GetChildren())
        AppendSubtree(*child, content, sourceRoot, objects);
}

bool SameAttributes(const DrawData& a, const DrawData& b)
{
    return a.id == b.id && a.type == b.type && !(a.width < b.width) && !(b.width < a.width) &&
           a.color == b.color && a.text == b.text;
}

/// Whether the points of @p whole begin with those of @p part, bit for bit.
bool BeginsWith(const QList<QPointF>& whole, const QList<QPointF>& part)
{
    return whole.isSharedWith(part) ||
           (part.size() <= whole.size() &&
            std::equal(part.begin(), part.end(), whole.begin(),
                       [](const QPointF& a, const QPointF& b)
                       { return std::equal_to<>()(a.x(), b.x()) && std::equal_to<>()(a.y(), b.y()); }));
}

QJsonArray WriteList(const QList<DrawData>& drawings, int from)
{
    return DrawingJson::WriteList(drawings.mid(from), ExtraParts());
}

class Replayer
{
public:
    Replayer(ProjectContent& content, Objects& gone, const QString& sourceRoot)
        : mContent(content), mGone(gone), mSourceRoot(sourceRoot)
    {
    }

    void Replay(const JsonPart& record)
    {
        ProjectChange change;
        if (record.Has("insert"))
            change = ReadInsert(record);
        else if (record.Has("remove"))
            change = ReadRemove(record);
        else if (record.Has("move"))
            change = ReadMove(record);
        else if (record.Has("rename"))
        {
            change.id = record.Member("rename").Id();
            change.name.after = record.Member("name").Text();
        }
        else if (record.Has("state"))
            change = ReadState(record);
        else if (record.Has("draw"))
            change = ReadDrawings(record);
        else if (record.Has("medium"))
            change = ReadMedium(record);
        else if (record.Has("default"))
        {
            change.kind = Kind::Default;
            const QString id = record.Member("default").Text();
            change.defaultTimeline = {mContent.defaultTimeline,
                                      id.isEmpty() ? QUuid() : record.Member("default").Id()};
        }
        else if (record.Has("settings"))
        {
            change.kind = Kind::Settings;
            change.settings.after = ProjectCodec::ReadSettings(record.Member("settings"));
        }
        else
            record.Fail(QStringLiteral("no change"));
        change.ApplyTo(mContent);
    }

private:
    std::shared_ptr<ProjectObject> Find(const JsonPart& part) const
    {
        const QUuid id = part.Id();
        const std::shared_ptr<ProjectObject> object = mContent.objects.value(id);
        if (!object)
            part.Fail(QStringLiteral("no object"));
        return object;
    }

    std::shared_ptr<MediaTimeline> FindSource(const QUuid& id, const Objects& added = Objects()) const
    {
        for (const Objects* const objects : std::initializer_list<const Objects*>{&mContent.objects, &added})
        {
            if (const auto source = std::dynamic_pointer_cast<MediaTimeline>(objects->value(id)))
                return source;
        }
        for (const std::shared_ptr<MediaTimeline>& source : mContent.RemovedSources())
        {
            if (source->GetID() == id)
                return source;
        }
        return std::dynamic_pointer_cast<MediaTimeline>(mGone.value(id));
    }

    ProjectChange ReadInsert(const JsonPart& record)
    {
        const QList<JsonPart> parts = record.Member("insert").Items();
        Objects added;
        for (const JsonPart& part : parts)
        {
            ExtraParts extras;
            std::shared_ptr<ProjectObject> object = ProjectCodec::ReadObject(part, extras, mSourceRoot);
            // A source that elements still play is the same one.
            const auto read = std::dynamic_pointer_cast<MediaTimeline>(object);
            if (const auto known = read ? FindSource(object->GetID()) : nullptr)
            {
                known->SetName(read->GetName());
                known->SetMediaSource(read->GetMediaSource());
                object = known;
            }
            mContent.extras.insert(object->GetID(), extras);
            added.insert(object->GetID(), object);
        }
        for (const bool ofSources : {true, false})
        {
            for (const JsonPart& part : parts)
            {
                const auto timeline =
                    std::dynamic_pointer_cast<ProjectTimeline>(added.value(part.Member("id").Id()));
                if (!timeline || timeline->IsSourceTimeline() != ofSources)
                    continue;
                TimelineState state;
                ProjectCodec::ReadState(part, state, mContent.extras[timeline->GetID()],
                                        [&](const QUuid& id) { return FindSource(id, added); });
                state.ApplyTo(*timeline);
            }
        }
        for (const JsonPart& part : parts)
        {
            const auto folder = std::dynamic_pointer_cast<FolderObject>(added.value(part.Member("id").Id()));
            if (!folder)
                continue;
            for (const JsonPart& child : part.ItemsOf("children"))
            {
                if (const auto object = added.value(child.Id()); object && object != folder)
                    folder->Insert(-1, object);
            }
        }
        if (parts.isEmpty())
            record.Fail(QStringLiteral("nothing to insert"));
        ProjectChange change;
        change.kind = Kind::Insert;
        change.id = parts.first().Member("id").Id();
        change.object = added.value(change.id);
        change.place = {Find(record.Member("parent"))->GetID(), record.Member("index").Integer(-1, INT_MAX)};
        return change;
    }

    ProjectChange ReadRemove(const JsonPart& record)
    {
        ProjectChange change;
        change.kind = Kind::Remove;
        change.object = Find(record.Member("remove"));
        change.id = change.object->GetID();
        change.place.parent = change.object->GetParentID();
        KeepGone(change.object);
        return change;
    }

    void KeepGone(const std::shared_ptr<ProjectObject>& object)
    {
        mGone.insert(object->GetID(), object);
        for (const std::shared_ptr<ProjectObject>& child : object->GetChildren())
            KeepGone(child);
    }

    ProjectChange ReadMove(const JsonPart& record)
    {
        ProjectChange change;
        change.kind = Kind::Move;
        change.object = Find(record.Member("move"));
        change.id = change.object->GetID();
        change.place.parent = change.object->GetParentID();
        change.newPlace = {Find(record.Member("parent"))->GetID(),
                           record.Member("index").Integer(-1, INT_MAX)};
        return change;
    }

    ProjectChange ReadState(const JsonPart& record)
    {
        ProjectChange change;
        change.kind = Kind::State;
        change.object = Find(record.Member("state"));
        change.id = change.object->GetID();
        const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(change.object);
        if (!timeline)
            record.Member("state").Fail(QStringLiteral("no timeline"));
        TimelineState state = TimelineState::Of(*timeline);
        ProjectCodec::ReadState(record.Member("set"), state, mContent.extras[change.id],
                                [this](const QUuid& id) { return FindSource(id); });
        change.state.after = std::make_shared<const TimelineState>(state);
        return change;
    }

    ProjectChange ReadDrawings(const JsonPart& record)
    {
        ProjectChange change;
        change.kind = Kind::Drawings;
        change.object = Find(record.Member("draw"));
        change.id = change.object->GetID();
        change.frame = record.Member("frame").Integer(1, INT_MAX);
        const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(change.object);
        if (!timeline)
            record.Member("draw").Fail(QStringLiteral("no timeline"));
        change.drawings = timeline->Annotations()->Drawings(change.frame);
        const int kept = record.Member("keep").Integer(0, change.drawings.size());
        const QJsonArray more = record.Has("more") ? record.Member("more").Array() : QJsonArray();
        change.drawings = change.drawings.mid(0, more.isEmpty() ? kept : kept + 1);
        for (int index = 0; index + 1 < more.size() && change.drawings.size() > kept; index += 2)
            change.drawings[kept].points.append(QPointF(more[index].toDouble(), more[index + 1].toDouble()));
        ExtraParts extras;
        if (record.Has("add"))
            change.drawings += DrawingJson::ReadList(record.Member("add"), extras);
        return change;
    }

    ProjectChange ReadMedium(const JsonPart& record)
    {
        ProjectChange change;
        change.kind = Kind::Medium;
        change.id = record.Member("medium").Id();
        change.object = FindSource(change.id);
        if (!change.object)
            record.Member("medium").Fail(QStringLiteral("no source"));
        change.medium.after =
            ProjectCodec::ReadMedium(record.Member("source"), mContent.extras[change.id], mSourceRoot);
        return change;
    }

    ProjectContent& mContent;
    Objects& mGone;
    QString mSourceRoot;
};

} // namespace

QJsonObject WriteChange(const ProjectChange& change, const ProjectContent& content, const QString& sourceRoot)
{
    const QString id = change.id.toString();
    const ExtraParts extras = content.extras.value(change.id);
    switch (change.kind)
    {
    case Kind::Insert:
    {
        QJsonArray objects;
        AppendSubtree(*change.object, content, sourceRoot, objects);
        return {{L1("insert"), objects},
                {L1("parent"), change.place.parent.toString()},
                {L1("index"), change.place.index}};
    }
    case Kind::Remove:
        return {{L1("remove"), id}};
    case Kind::Move:
        return {{L1("move"), id},
                {L1("parent"), change.newPlace.parent.toString()},
                {L1("index"), change.newPlace.index}};
    case Kind::Rename:
        return {{L1("rename"), id}, {L1("name"), change.name.after}};
    case Kind::State:
        return {
            {L1("state"), id},
            {L1("set"), ProjectCodec::WriteState(*change.state.after, change.state.before.get(), extras)}};
    case Kind::Bookmarks:
        return {{L1("state"), id}, {L1("set"), ProjectCodec::WriteBookmarks(*change.state.after, extras)}};
    case Kind::Drawings:
        return WriteDrawings(change.id, change.frame, {}, change.drawings);
    case Kind::Medium:
        return {{L1("medium"), id},
                {L1("source"), ProjectCodec::WriteMedium(*change.medium.after, extras, sourceRoot)}};
    case Kind::Default:
        return {{L1("default"), change.defaultTimeline.after.isNull()
                                    ? QString()
                                    : change.defaultTimeline.after.toString()}};
    case Kind::Settings:
        return {{L1("settings"), ProjectCodec::WriteSettings(change.settings.after)}};
    }
    return {};
}

QJsonObject WriteDrawings(const QUuid& timeline, int frame, const QList<DrawData>& before,
                          const QList<DrawData>& after)
{
    int kept = 0;
    while (kept < before.size() && kept < after.size() && SameAttributes(before[kept], after[kept]) &&
           before[kept].points.size() == after[kept].points.size() &&
           BeginsWith(after[kept].points, before[kept].points))
        ++kept;
    QJsonObject record{{L1("draw"), timeline.toString()}, {L1("frame"), frame}, {L1("keep"), kept}};
    int from = kept;
    if (kept < before.size() && kept < after.size() && SameAttributes(before[kept], after[kept]) &&
        BeginsWith(after[kept].points, before[kept].points))
    {
        QJsonArray more;
        for (int index = before[kept].points.size(); index < after[kept].points.size(); ++index)
        {
            more.append(after[kept].points[index].x());
            more.append(after[kept].points[index].y());
        }
        record[L1("more")] = more;
        ++from;
    }
    if (from < after.size())
        record[L1("add")] = WriteList(after, from);
    return record;
}

void Replay(const QJsonObject& record, ProjectContent& content, Objects& gone, const QString& sourceRoot)
{
    Replayer(content, gone, sourceRoot).Replay(JsonPart(record, QString()));
}

} // namespace JournalCodec
