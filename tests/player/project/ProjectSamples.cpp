// SPDX-License-Identifier: MIT
#include "project/ProjectSamples.h"

#include "project/ElementTimeline.h"
#include "project/JsonText.h"
#include "project/MediaTimeline.h"
#include "project/ProjectFile.h"

namespace ProjectSamples
{

namespace
{

template<typename Item>
Item Any(const QList<Item>& items, QRandomGenerator& random)
{
    return items.isEmpty() ? Item() : items[static_cast<int>(random.bounded(quint32(items.size())))];
}

QList<QUuid> AllIds(const Project& project, int type)
{
    QList<QUuid> ids;
    // In an order that the seed decides alone.
    QList<std::shared_ptr<ProjectObject>> left{project.Root()};
    while (!left.isEmpty())
    {
        const std::shared_ptr<ProjectObject> object = left.takeFirst();
        if (type < 0 || object->GetType() == type)
            ids.append(object->GetID());
        left += object->GetChildren();
    }
    return ids;
}

QList<QUuid> SomeOf(const QList<QUuid>& ids, QRandomGenerator& random, int most)
{
    QList<QUuid> some;
    const int count = random.bounded(1, most + 1);
    for (int index = 0; index < count && !ids.isEmpty(); ++index)
        some.append(Any(ids, random));
    return some;
}

} // namespace

MediaInfo Medium(const QString& name, int frames, const FrameRate& rate)
{
    MediaInfo info;
    info.path = QStringLiteral("/media/%1").arg(name);
    info.width = 1920;
    info.height = 1080;
    info.frameCount = frames;
    info.frameRate = rate;
    info.duration = rate.FrameToTime(int64_t(frames) + 1);
    info.codecName = QStringLiteral("h264");
    return info;
}

DrawData Note(const QString& text, uint64_t id)
{
    DrawData drawing;
    drawing.type = DrawText;
    drawing.id = id;
    drawing.text = text;
    drawing.width = 0.01f;
    drawing.color = QColor(10, 20, 30, 200);
    drawing.points = {QPointF(0.1, -0.2), QPointF(0.3, 0.4)};
    return drawing;
}

DrawData Stroke(QRandomGenerator& random, int points)
{
    DrawData drawing;
    drawing.type = random.bounded(4) == 0 ? DrawEraser : DrawPencil;
    drawing.id = random.generate64() >> 8;
    drawing.width = static_cast<float>(random.generateDouble());
    drawing.color =
        QColor(random.bounded(256), random.bounded(256), random.bounded(256), random.bounded(256));
    for (int index = 0; index < points; ++index)
        drawing.points.append(QPointF(random.generateDouble() - 0.5, random.generateDouble() - 0.5));
    return drawing;
}

QByteArray Written(const Project& project)
{
    return JsonText(ProjectFile::ToJson(project.Content(), QStringLiteral("/projects")));
}

bool ChangeAtRandom(Project& project, QRandomGenerator& random)
{
    const QList<QUuid> folders = AllIds(project, 0);
    const QList<QUuid> timelines = AllIds(project, 1);
    const QList<QUuid> elements = AllIds(project, 2);
    QList<QUuid> lists;
    QList<QUuid> sources;
    for (const QUuid& id : timelines)
        (project.FindElementTimeline(id) ? lists : sources).append(id);
    const QUuid list = Any(lists, random);
    const QUuid timeline = Any(timelines, random);
    const auto object = project.FindTimeline(timeline);
    const int frames = object ? std::max(object->FrameCount(), 1) : 1;
    const auto anyIndex = [&] { return random.bounded(-1, 5); };
    const int steps = project.UndoStack()->count();
    const QString name = QStringLiteral("name %1").arg(random.bounded(1000));
    switch (random.bounded(20))
    {
    case 0:
        project.AddFolder(Any(folders, random), anyIndex());
        break;
    case 1:
        project.AddTimeline(Any(folders, random), anyIndex());
        break;
    case 2:
    case 3:
        project.AddSource(Medium(QStringLiteral("clip%1.mov").arg(random.bounded(100000)),
                                 random.bounded(1, 100), FrameRate{random.bounded(2) == 0 ? 24 : 30, 1}),
                          Any(folders, random), anyIndex());
        break;
    case 4:
        project.Rename(Any(AllIds(project, -1), random), name);
        break;
    case 5:
    case 6:
        project.Move(SomeOf(folders + timelines, random, 3), Any(folders, random), anyIndex());
        break;
    case 7:
        project.Remove(SomeOf(folders + timelines + elements, random, 2));
        break;
    case 8:
        project.ToggleDefault(list);
        break;
    case 9:
    case 10:
        project.InsertElements(list, SomeOf(sources, random, 4), {anyIndex(), anyIndex()});
        break;
    case 11:
        project.MoveElements(list, SomeOf(elements, random, 3), {anyIndex(), anyIndex(), anyIndex()});
        break;
    case 12:
        project.RemoveElements(list, SomeOf(elements, random, 2));
        break;
    case 13:
        project.SortElements(list, random.bounded(2) == 0);
        break;
    case 14:
    {
        const int first = random.bounded(1, frames + 1);
        project.SetRange(timeline, first, random.bounded(first, frames + 1));
        break;
    }
    case 15:
        project.SetPanZoom(timeline, QPointF(random.generateDouble(), 0.25), 1.5f, random.bounded(2) == 0);
        break;
    case 16:
        project.SetUseSourceInOuts(list, random.bounded(2) == 0);
        break;
    case 17:
    {
        const int frame = random.bounded(1, frames + 1);
        if (!project.RemoveBookmark(timeline, frame))
            project.AddBookmark(timeline, frame);
        break;
    }
    case 18:
        project.AddRangeBookmark(timeline, random.bounded(1, frames + 1), frames, name);
        break;
    default:
    {
        const int frame = random.bounded(1, frames + 1);
        if (object)
            project.SetDrawings(timeline, frame,
                                object->Annotations()->Drawings(frame) +
                                    QList<DrawData>{Stroke(random, random.bounded(1, 6))},
                                QStringLiteral("Draw"));
        break;
    }
    }
    return project.UndoStack()->count() != steps;
}

} // namespace ProjectSamples
