// SPDX-License-Identifier: MIT
#include "project/ProjectCodec.h"

#include "project/DrawingJson.h"
#include "project/MediaPaths.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/UnknownObject.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ProjectCodec
{

namespace
{

using L1 = QLatin1String;

constexpr int MaximumFrame = std::numeric_limits<int>::max();
/// Frames of one medium: at 24 a second, seven weeks.
constexpr int MaximumMediumFrames = 100000000;

struct BinName
{
    FolderKind kind;
    const char* name;
};

const BinName BinNames[] = {{FolderKind::Root, "root"},
                            {FolderKind::Folders, "folders"},
                            {FolderKind::Sources, "sources"},
                            {FolderKind::Timelines, "timelines"}};

const QStringList StateMembers = {
    QStringLiteral("range"),          QStringLiteral("view"),     QStringLiteral("marks"),
    QStringLiteral("rangeBookmarks"), QStringLiteral("drawings"), QStringLiteral("elements"),
    QStringLiteral("offstage"),       QStringLiteral("rate"),     QStringLiteral("usesSourceRanges")};
const QStringList ObjectMembers = {QStringLiteral("id"),       QStringLiteral("type"),
                                   QStringLiteral("name"),     QStringLiteral("bin"),
                                   QStringLiteral("children"), QStringLiteral("expanded"),
                                   QStringLiteral("source"),   QStringLiteral("removed")};
const QStringList MediumMembers = {QStringLiteral("id"), QStringLiteral("path"),
                                   QStringLiteral("relativePath"), QStringLiteral("media")};
const QStringList InfoMembers = {
    QStringLiteral("width"),           QStringLiteral("height"),     QStringLiteral("frameCount"),
    QStringLiteral("frameRate"),       QStringLiteral("duration"),   QStringLiteral("startTime"),
    QStringLiteral("codec"),           QStringLiteral("container"),  QStringLiteral("pixelFormat"),
    QStringLiteral("hasAudio"),        QStringLiteral("audioCodec"), QStringLiteral("audioChannels"),
    QStringLiteral("audioSampleRate"), QStringLiteral("isSequence"), QStringLiteral("firstSequenceNumber"),
    QStringLiteral("missingFrames")};

QString CodecText(const char* text)
{
    return QCoreApplication::translate("ProjectFile", text);
}

void InsertAll(QJsonObject& into, const QJsonObject& members)
{
    for (auto member = members.constBegin(); member != members.constEnd(); ++member)
        into.insert(member.key(), member.value());
}

void Keep(ExtraParts& extras, const QString& name, const QJsonObject& rest)
{
    if (!rest.isEmpty())
        extras.inner.insert(name, rest);
}

QJsonArray WriteRate(const FrameRate& rate)
{
    return {rate.numerator, rate.denominator};
}

FrameRate ReadRate(const JsonPart& part)
{
    const QList<JsonPart> numbers = part.Items();
    if (numbers.size() != 2)
        part.Fail(CodecText("a rate is two whole numbers"));
    return {numbers[0].Integer(1, MaximumFrame), numbers[1].Integer(1, MaximumFrame)};
}

QString FrameName(int frame)
{
    return QStringLiteral("frame %1").arg(frame);
}

QString RangeName(int first, int last)
{
    return QStringLiteral("range %1 %2").arg(first).arg(last);
}

QJsonObject WriteFrame(int frame, const QList<DrawData>& drawings, const ExtraParts& extras)
{
    QJsonObject json{{L1("frame"), frame}, {L1("drawings"), DrawingJson::WriteList(drawings, extras)}};
    InsertAll(json, extras.inner.value(FrameName(frame)));
    return json;
}

bool SameList(const QList<DrawData>& a, const QList<DrawData>& b)
{
    return a.isSharedWith(b) || (a.isEmpty() && b.isEmpty());
}

QJsonArray WriteDrawings(const TimelineState& state, const TimelineState* before, const ExtraParts& extras)
{
    QJsonArray list;
    if (before)
    {
        for (const auto& [frame, drawings] : before->drawings)
        {
            if (state.drawings.count(frame) == 0)
                list.append(WriteFrame(frame, {}, ExtraParts()));
        }
    }
    for (const auto& [frame, drawings] : state.drawings)
    {
        const auto old = before ? before->drawings.find(frame) : state.drawings.end();
        const bool isSame = before && old != before->drawings.end() && SameList(old->second, drawings);
        if (!isSame && !(drawings.isEmpty() && !before))
            list.append(WriteFrame(frame, drawings, extras));
    }
    return list;
}

QJsonArray WriteElements(const ElementTimeline::Elements& elements, const ExtraParts& extras)
{
    QJsonArray list;
    for (const std::shared_ptr<ElementObject>& element : elements)
    {
        QJsonObject json{{L1("id"), element->GetID().toString()},
                         {L1("source"), element->SourceTimeline()->GetID().toString()}};
        if (!element->OwnName().isEmpty())
            json[L1("name")] = element->OwnName();
        InsertAll(json, extras.inner.value(element->GetID().toString()));
        list.append(json);
    }
    return list;
}

QString OffstageName(const QUuid& element, int frame)
{
    return QStringLiteral("offstage %1 %2").arg(element.toString()).arg(frame);
}

QJsonArray WriteOffstage(const ElementTimeline::Offstage& offstage, const ExtraParts& extras)
{
    QJsonArray list;
    for (const auto& [place, drawings] : offstage)
    {
        QJsonObject json{{L1("element"), place.first.toString()},
                         {L1("frame"), place.second},
                         {L1("drawings"), DrawingJson::WriteList(drawings, extras)}};
        InsertAll(json, extras.inner.value(OffstageName(place.first, place.second)));
        list.append(json);
    }
    return list;
}

QJsonObject WriteRange(const PlaybackRange& range, const ExtraParts& extras)
{
    QJsonObject json{{L1("first"), range.first}, {L1("last"), range.last}};
    InsertAll(json, extras.inner.value(QStringLiteral("range")));
    return json;
}

QJsonObject WriteView(const PanZoom& view, const ExtraParts& extras)
{
    QJsonObject json{{L1("pan"), QJsonArray{view.pan.x(), view.pan.y()}},
                     {L1("zoom"), static_cast<double>(view.zoom)},
                     {L1("enabled"), view.enabled}};
    InsertAll(json, extras.inner.value(QStringLiteral("view")));
    return json;
}

PanZoom ReadView(const JsonPart& part)
{
    const QList<JsonPart> pan = part.Member("pan").Items();
    if (pan.size() != 2)
        part.Member("pan").Fail(CodecText("a point is two numbers"));
    PanZoom view;
    view.pan = QPointF(pan[0].Number(), pan[1].Number());
    view.zoom = static_cast<float>(part.Member("zoom").Number());
    if (!std::isfinite(view.zoom) || view.zoom <= 0.0f)
        part.Member("zoom").Fail(CodecText("a number above 0 belongs here"));
    view.enabled = part.Member("enabled").Flag();
    return view;
}

QJsonArray WriteMarks(const QSet<int>& marks)
{
    QList<int> frames = marks.values();
    std::sort(frames.begin(), frames.end());
    QJsonArray list;
    for (const int frame : frames)
        list.append(frame);
    return list;
}

QJsonArray WriteRangeBookmarks(const QList<FrameRangeBookmark>& bookmarks, const ExtraParts& extras)
{
    QJsonArray list;
    for (const FrameRangeBookmark& bookmark : bookmarks)
    {
        QJsonObject json{{L1("first"), bookmark.first}, {L1("last"), bookmark.last}};
        if (!bookmark.note.isEmpty())
            json[L1("note")] = bookmark.note;
        InsertAll(json, extras.inner.value(RangeName(bookmark.first, bookmark.last)));
        list.append(json);
    }
    return list;
}

/// @p first to @p last of an object with these members, in order.
PlaybackRange ReadRange(const JsonPart& part)
{
    const int first = part.Member("first").Integer(1, MaximumFrame);
    return {first, part.Member("last").Integer(first, MaximumFrame)};
}

void ReadElements(const JsonPart& part, TimelineState& state, ExtraParts& extras,
                  const SourceFinder& findSource)
{
    QHash<QUuid, std::shared_ptr<ElementObject>> known;
    for (const std::shared_ptr<ElementObject>& element : state.elements)
        known.insert(element->GetID(), element);
    state.elements.clear();
    for (const JsonPart& item : part.Items())
    {
        const QUuid id = item.Member("id").Id();
        const QUuid sourceID = item.Member("source").Id();
        std::shared_ptr<ElementObject> element = known.value(id);
        if (!element)
        {
            const std::shared_ptr<MediaTimeline> source = findSource(sourceID);
            if (!source)
                item.Member("source").Fail(CodecText("there is no source %1").arg(sourceID.toString()));
            element = std::make_shared<ElementObject>(source, id);
            element->SetOwnName(item.TextOr("name"));
        }
        Keep(extras, id.toString(),
             item.Rest({QStringLiteral("id"), QStringLiteral("source"), QStringLiteral("name")}));
        state.elements.push_back(element);
    }
}

MediaInfo ReadInfo(const JsonPart& part)
{
    MediaInfo info;
    info.width = part.IntegerOr("width", 0, MaximumFrame, 0);
    info.height = part.IntegerOr("height", 0, MaximumFrame, 0);
    info.frameCount = part.Member("frameCount").Integer(1, MaximumMediumFrames);
    info.frameRate = ReadRate(part.Member("frameRate"));
    info.duration = part.LongIntegerOr("duration", info.frameRate.FrameToTime(int64_t(info.frameCount) + 1));
    info.startTime = part.LongIntegerOr("startTime", 0);
    info.codecName = part.TextOr("codec");
    info.containerName = part.TextOr("container");
    info.pixelFormat = part.TextOr("pixelFormat");
    info.hasAudio = part.FlagOr("hasAudio", false);
    info.audioCodecName = part.TextOr("audioCodec");
    info.audioChannels = part.IntegerOr("audioChannels", 0, MaximumFrame, 0);
    info.audioSampleRate = part.IntegerOr("audioSampleRate", 0, MaximumFrame, 0);
    info.isSequence = part.FlagOr("isSequence", false);
    info.firstSequenceNumber = part.IntegerOr("firstSequenceNumber", 0, MaximumFrame, 0);
    info.missingFrames = part.IntegerOr("missingFrames", 0, MaximumFrame, 0);
    return info;
}

QJsonObject WriteInfo(const MediaInfo& info)
{
    QJsonObject json{{L1("width"), info.width},
                     {L1("height"), info.height},
                     {L1("frameCount"), std::clamp(info.frameCount, 1, MaximumMediumFrames)},
                     {L1("frameRate"), WriteRate(info.frameRate.IsValid() ? info.frameRate : FrameRate())},
                     {L1("duration"), static_cast<double>(info.duration)},
                     {L1("startTime"), static_cast<double>(info.startTime)},
                     {L1("codec"), info.codecName},
                     {L1("container"), info.containerName},
                     {L1("pixelFormat"), info.pixelFormat},
                     {L1("hasAudio"), info.hasAudio}};
    if (info.hasAudio)
    {
        json[L1("audioCodec")] = info.audioCodecName;
        json[L1("audioChannels")] = info.audioChannels;
        json[L1("audioSampleRate")] = info.audioSampleRate;
    }
    if (info.isSequence)
    {
        json[L1("isSequence")] = true;
        json[L1("firstSequenceNumber")] = info.firstSequenceNumber;
        json[L1("missingFrames")] = info.missingFrames;
    }
    return json;
}

} // namespace

QJsonObject WriteMedium(const MediaSource& source, const ExtraParts& extras, const QString& sourceRoot)
{
    QJsonObject json{{L1("id"), source.GetID().toString()}, {L1("path"), source.GetPath()}};
    const QString relative = MediaPaths::Relative(source.GetPath(), sourceRoot);
    if (!relative.isEmpty())
        json[L1("relativePath")] = relative;
    QJsonObject info = WriteInfo(source.Info());
    InsertAll(info, extras.inner.value(QStringLiteral("media")));
    json[L1("media")] = info;
    InsertAll(json, extras.inner.value(QStringLiteral("source")));
    return json;
}

std::shared_ptr<const MediaSource> ReadMedium(const JsonPart& part, ExtraParts& extras,
                                              const QString& sourceRoot)
{
    const QUuid id = part.Member("id").Id();
    QString path = part.Member("path").Text();
    if (path.isEmpty())
        part.Member("path").Fail(CodecText("a path belongs here"));
    // A project that was moved with its media finds them beside it.
    const QString relative = part.TextOr("relativePath");
    const QString moved = relative.isEmpty() || sourceRoot.isEmpty()
                              ? QString()
                              : QDir::cleanPath(sourceRoot + QLatin1Char('/') + relative);
    bool exists = !moved.isEmpty() && MediaPaths::Exists(moved);
    if (exists)
        path = moved;
    else
        exists = MediaPaths::Exists(path);
    MediaInfo info = ReadInfo(part.Member("media"));
    info.path = path;
    Keep(extras, QStringLiteral("media"), part.Member("media").Rest(InfoMembers));
    Keep(extras, QStringLiteral("source"), part.Rest(MediumMembers));
    return std::make_shared<const MediaSource>(id, info, !exists);
}

QJsonObject WriteState(const TimelineState& state, const TimelineState* before, const ExtraParts& extras)
{
    QJsonObject json;
    const TimelineState initial;
    const TimelineState& old = before ? *before : initial;
    if (state.range != old.range)
        json[L1("range")] = state.range ? QJsonValue(WriteRange(*state.range, extras)) : QJsonValue();
    if (state.view != old.view)
        json[L1("view")] = WriteView(state.view, extras);
    if (state.marks != old.marks)
        json[L1("marks")] = WriteMarks(state.marks);
    if (!(state.rangeBookmarks == old.rangeBookmarks))
        json[L1("rangeBookmarks")] = WriteRangeBookmarks(state.rangeBookmarks, extras);
    const QJsonArray drawings = WriteDrawings(state, before, extras);
    if (!drawings.isEmpty())
        json[L1("drawings")] = drawings;
    if (state.elements != old.elements)
        json[L1("elements")] = WriteElements(state.elements, extras);
    const auto sameOffstage = [](const auto& a, const auto& b)
    { return a.first == b.first && SameList(a.second, b.second); };
    if (!std::equal(state.offstage.begin(), state.offstage.end(), old.offstage.begin(), old.offstage.end(),
                    sameOffstage))
        json[L1("offstage")] = WriteOffstage(state.offstage, extras);
    if (state.rate.IsValid() != old.rate.IsValid() || state.rate != old.rate)
        json[L1("rate")] = state.rate.IsValid() ? QJsonValue(WriteRate(state.rate)) : QJsonValue();
    if (state.usesSourceRanges != old.usesSourceRanges)
        json[L1("usesSourceRanges")] = state.usesSourceRanges;
    return json;
}

QJsonObject WriteBookmarks(const TimelineState& state, const ExtraParts& extras)
{
    return {{L1("marks"), WriteMarks(state.marks)},
            {L1("rangeBookmarks"), WriteRangeBookmarks(state.rangeBookmarks, extras)}};
}

void ReadState(const JsonPart& part, TimelineState& state, ExtraParts& extras, const SourceFinder& findSource)
{
    if (part.Has("range"))
    {
        state.range.reset();
        if (!part.Object().value(L1("range")).isNull())
        {
            state.range = ReadRange(part.Member("range"));
            Keep(extras, QStringLiteral("range"),
                 part.Member("range").Rest({QStringLiteral("first"), QStringLiteral("last")}));
        }
    }
    if (part.Has("view"))
    {
        state.view = ReadView(part.Member("view"));
        Keep(extras, QStringLiteral("view"),
             part.Member("view").Rest(
                 {QStringLiteral("pan"), QStringLiteral("zoom"), QStringLiteral("enabled")}));
    }
    if (part.Has("marks"))
    {
        state.marks.clear();
        for (const JsonPart& item : part.ItemsOf("marks"))
            state.marks.insert(item.Integer(1, MaximumFrame));
    }
    if (part.Has("rangeBookmarks"))
    {
        state.rangeBookmarks.clear();
        for (const JsonPart& item : part.ItemsOf("rangeBookmarks"))
        {
            const PlaybackRange range = ReadRange(item);
            state.rangeBookmarks.append({range.first, range.last, item.TextOr("note")});
            Keep(extras, RangeName(range.first, range.last),
                 item.Rest({QStringLiteral("first"), QStringLiteral("last"), QStringLiteral("note")}));
        }
    }
    for (const JsonPart& item : part.ItemsOf("drawings"))
    {
        const int frame = item.Member("frame").Integer(1, MaximumFrame);
        const QList<DrawData> drawings = DrawingJson::ReadList(item.Member("drawings"), extras);
        if (drawings.isEmpty())
            state.drawings.erase(frame);
        else
            state.drawings[frame] = drawings;
        Keep(extras, FrameName(frame), item.Rest({QStringLiteral("frame"), QStringLiteral("drawings")}));
    }
    if (part.Has("elements"))
        ReadElements(part.Member("elements"), state, extras, findSource);
    if (part.Has("offstage"))
    {
        state.offstage.clear();
        for (const JsonPart& item : part.ItemsOf("offstage"))
        {
            const QUuid element = item.Member("element").Id();
            const int frame = item.Member("frame").Integer(1, MaximumFrame);
            state.offstage[{element, frame}] = DrawingJson::ReadList(item.Member("drawings"), extras);
            Keep(extras, OffstageName(element, frame),
                 item.Rest({QStringLiteral("element"), QStringLiteral("frame"), QStringLiteral("drawings")}));
        }
    }
    if (part.Has("rate"))
    {
        const bool isNone = part.Object().value(L1("rate")).isNull();
        state.rate = isNone ? FrameRate{0, 0} : ReadRate(part.Member("rate"));
    }
    state.usesSourceRanges = part.FlagOr("usesSourceRanges", state.usesSourceRanges);
}

QJsonObject WriteObject(ProjectObject& object, const ExtraParts& extras, const QString& sourceRoot,
                        bool removed)
{
    if (const auto* const unknown = dynamic_cast<const UnknownObject*>(&object))
        return unknown->Json();
    QJsonObject json = extras.own;
    json[L1("id")] = object.GetID().toString();
    json[L1("name")] = object.GetName();
    if (object.GetType() == 0)
    {
        json[L1("type")] = L1("folder");
        json[L1("expanded")] = object.IsExpanded();
        const FolderKind kind = static_cast<FolderObject&>(object).Kind();
        for (const BinName& bin : BinNames)
        {
            if (bin.kind == kind)
                json[L1("bin")] = L1(bin.name);
        }
        QJsonArray children;
        for (const std::shared_ptr<ProjectObject>& child : object.GetChildren())
            children.append(child->GetID().toString());
        json[L1("children")] = children;
        return json;
    }
    auto& timeline = static_cast<ProjectTimeline&>(object);
    InsertAll(json, WriteState(TimelineState::Of(timeline), nullptr, extras));
    if (const auto* const media = dynamic_cast<const MediaTimeline*>(&timeline))
    {
        json[L1("type")] = L1("source");
        json[L1("source")] = WriteMedium(*media->GetMediaSource(), extras, sourceRoot);
        if (removed)
            json[L1("removed")] = true;
    }
    else
    {
        json[L1("type")] = L1("timeline");
        if (!json.contains(L1("elements")))
            json[L1("elements")] = QJsonArray();
    }
    return json;
}

std::shared_ptr<ProjectObject> ReadObject(const JsonPart& part, ExtraParts& extras, const QString& sourceRoot)
{
    const QUuid id = part.Member("id").Id();
    const QString type = part.Member("type").Text();
    if (type == L1("folder"))
    {
        FolderKind kind = FolderKind::Plain;
        if (part.Has("bin"))
        {
            const QString name = part.Member("bin").Text();
            const auto* const bin =
                std::find_if(std::begin(BinNames), std::end(BinNames),
                             [&](const BinName& candidate) { return name == L1(candidate.name); });
            if (bin == std::end(BinNames))
                part.Member("bin").Fail(CodecText("there is no bin \"%1\"").arg(name));
            kind = bin->kind;
        }
        const auto folder = std::make_shared<FolderObject>(part.Member("name").Text(), kind, id);
        folder->SetExpanded(part.FlagOr("expanded", true));
        extras.own = part.Rest(ObjectMembers);
        return folder;
    }
    if (type == L1("source"))
    {
        const auto source = ReadMedium(part.Member("source"), extras, sourceRoot);
        const auto timeline = std::make_shared<MediaTimeline>(source, id);
        timeline->SetName(part.Member("name").Text());
        extras.own = part.Rest(ObjectMembers + StateMembers);
        return timeline;
    }
    if (type == L1("timeline"))
    {
        const auto timeline = std::make_shared<ElementTimeline>(part.Member("name").Text(), id);
        extras.own = part.Rest(ObjectMembers + StateMembers);
        return timeline;
    }
    return std::make_shared<UnknownObject>(part.Object(), id);
}

QJsonObject WriteSettings(const ProjectSettings& settings)
{
    return {{L1("sourceRoot"), settings.sourceRoot},
            {L1("imageSequenceFrameRate"), settings.imageSequenceFrameRate},
            {L1("notes"), settings.notes}};
}

ProjectSettings ReadSettings(const JsonPart& part)
{
    ProjectSettings settings;
    settings.sourceRoot = part.TextOr("sourceRoot");
    settings.notes = part.TextOr("notes");
    if (part.Has("imageSequenceFrameRate"))
    {
        settings.imageSequenceFrameRate = part.Member("imageSequenceFrameRate").Number();
        if (settings.imageSequenceFrameRate < 1.0 || settings.imageSequenceFrameRate > 60.0)
            part.Member("imageSequenceFrameRate").Fail(CodecText("a number from 1 to 60 belongs here"));
    }
    return settings;
}

} // namespace ProjectCodec
