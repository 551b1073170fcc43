// SPDX-License-Identifier: MIT
// Steps that change the project's tree.
#include "project/Project.h"

#include "project/ElementTimeline.h"
#include "project/MediaPaths.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"

#include <algorithm>

namespace
{

FolderKind BinKindFor(int type, bool ofSource)
{
    if (type == 0)
        return FolderKind::Folders;
    return ofSource ? FolderKind::Sources : FolderKind::Timelines;
}

void AppendSources(const std::shared_ptr<ProjectObject>& object,
                   QList<std::shared_ptr<MediaTimeline>>& sources)
{
    if (const auto source = std::dynamic_pointer_cast<MediaTimeline>(object))
        sources.append(source);
    if (object->GetType() != 0)
        return;
    for (const std::shared_ptr<ProjectObject>& child : object->GetChildren())
        AppendSources(child, sources);
}

bool HoldsObject(ProjectObject& object, const QUuid& id)
{
    if (object.GetID() == id)
        return true;
    if (object.GetType() != 0)
        return false;
    const QList<std::shared_ptr<ProjectObject>> children = object.GetChildren();
    return std::any_of(children.begin(), children.end(),
                       [&](const std::shared_ptr<ProjectObject>& child) { return HoldsObject(*child, id); });
}

} // namespace

QUuid Project::FolderFor(const QList<QUuid>& selected, int type, bool ofSource) const
{
    std::shared_ptr<ProjectObject> object = selected.size() == 1 ? Find(selected.first()) : nullptr;
    if (object && object->GetType() != 0)
        object = Find(object->GetParentID());
    const auto folder = std::dynamic_pointer_cast<FolderObject>(object);
    if (folder && folder->Takes(type, ofSource))
        return folder->GetID();
    const std::shared_ptr<FolderObject> bin = mContent.Bin(BinKindFor(type, ofSource));
    return bin ? bin->GetID() : QUuid();
}

std::shared_ptr<FolderObject> Project::ParentFor(const QUuid& parentID, int type, bool ofSource,
                                                 int* index) const
{
    const auto folder = std::dynamic_pointer_cast<FolderObject>(Find(parentID));
    if (folder && folder->Takes(type, ofSource))
    {
        if (*index < 0 || *index > folder->ChildList().size())
            *index = folder->ChildList().size();
        return folder;
    }
    const std::shared_ptr<FolderObject> bin = mContent.Bin(BinKindFor(type, ofSource));
    *index = bin->ChildList().size();
    return bin;
}

bool Project::IsFixed(const std::shared_ptr<ProjectObject>& object) const
{
    return object->IsProtected() || object->IsFolderBin() || object->IsSourceBin() || object->IsTimelineBin();
}

bool Project::IsWithin(const QUuid& id, const QUuid& ancestorID) const
{
    for (std::shared_ptr<ProjectObject> object = Find(id); object; object = Find(object->GetParentID()))
    {
        if (object->GetID() == ancestorID)
            return true;
    }
    return false;
}

QString Project::FreeName(const QString& name) const
{
    QSet<QString> names;
    for (const std::shared_ptr<ProjectObject>& object : mContent.objects)
        names.insert(object->GetName());
    QString free = name;
    for (int number = 2; names.contains(free); ++number)
        free = QStringLiteral("%1 %2").arg(name).arg(number);
    return free;
}

ProjectChange Project::InsertOf(const std::shared_ptr<ProjectObject>& object, const QUuid& parentID,
                                int index) const
{
    ProjectChange change;
    change.kind = ProjectChange::Kind::Insert;
    change.id = object->GetID();
    change.object = object;
    change.place = {parentID, index};
    return change;
}

QUuid Project::AddFolder(const QUuid& parentID, int index, const QString& name)
{
    const auto folder = std::make_shared<FolderObject>(name.isEmpty() ? FreeName(tr("New Folder")) : name);
    const std::shared_ptr<FolderObject> parent = ParentFor(parentID, 0, false, &index);
    Push({tr("Add Folder"), {}, false}, {InsertOf(folder, parent->GetID(), index)});
    return folder->GetID();
}

QUuid Project::AddTimeline(const QUuid& parentID, int index, const QString& name)
{
    const auto timeline =
        std::make_shared<ElementTimeline>(name.isEmpty() ? FreeName(tr("New Timeline")) : name);
    const std::shared_ptr<FolderObject> parent = ParentFor(parentID, 1, false, &index);
    Push({tr("Add Timeline"), {}, false}, {InsertOf(timeline, parent->GetID(), index)});
    return timeline->GetID();
}

bool Project::Rename(const QUuid& id, const QString& name)
{
    const std::shared_ptr<ProjectObject> object = Find(id);
    if (!object || object->GetName() == name)
        return false;
    if (IsFixed(object))
        return Refuse(tr("%1 can't be renamed").arg(object->GetName()));
    if (name.trimmed().isEmpty())
        return Refuse(tr("%1 needs a name").arg(object->GetName()));
    ProjectChange change;
    change.kind = ProjectChange::Kind::Rename;
    change.id = id;
    const auto* const element = dynamic_cast<const ElementObject*>(object.get());
    change.name = {element ? element->OwnName() : object->GetName(), name};
    return Push({tr("Rename"), {}, false}, {change});
}

bool Project::Move(const QUuid& id, const QUuid& parentID, int index)
{
    return Move(QList<QUuid>{id}, parentID, index);
}

bool Project::Move(const QList<QUuid>& ids, const QUuid& parentID, int index)
{
    Changes changes;
    return AppendMoves(changes, ids, parentID, index) && Push({tr("Move"), {}, false}, changes);
}

bool Project::AppendMoves(Changes& changes, const QList<QUuid>& ids, const QUuid& parentID, int index)
{
    // The children of the folders that are touched, as they will be.
    QHash<QUuid, QList<QUuid>> children;
    const auto childrenOf = [&](const FolderObject& folder) -> QList<QUuid>&
    {
        if (!children.contains(folder.GetID()))
        {
            QList<QUuid>& list = children[folder.GetID()];
            for (const std::shared_ptr<ProjectObject>& child : folder.ChildList())
                list.append(child->GetID());
        }
        return children[folder.GetID()];
    };
    const auto wanted = std::dynamic_pointer_cast<FolderObject>(Find(parentID));
    if (!wanted)
        return false;
    QSet<QUuid> moved;
    for (const QUuid& id : ids)
    {
        const std::shared_ptr<ProjectObject> object = Find(id);
        const auto from =
            object ? std::dynamic_pointer_cast<FolderObject>(Find(object->GetParentID())) : nullptr;
        if (!from || moved.contains(id))
            continue;
        if (IsFixed(object))
            return Refuse(tr("%1 can't be moved").arg(object->GetName()));
        if (object->GetType() == 0 && IsWithin(parentID, id))
            return Refuse(tr("%1 can't be moved into itself").arg(object->GetName()));
        const bool ofSource = object->IsSourceTimeline();
        std::shared_ptr<FolderObject> to = wanted;
        int target = index;
        if (wanted->Kind() == FolderKind::Root)
        {
            to = mContent.Bin(BinKindFor(object->GetType(), ofSource));
            target = -1;
        }
        else if (!wanted->Takes(object->GetType(), ofSource))
        {
            return Refuse(tr("%1 can't be moved into %2").arg(object->GetName(), wanted->GetName()));
        }
        const int place = childrenOf(*from).indexOf(id);
        childrenOf(*from).removeAt(place);
        // What follows the first goes behind it, also where it leaves a place before it.
        if (from == to && !moved.isEmpty() && place < target)
            --target;
        QList<QUuid>& siblings = childrenOf(*to);
        if (target < 0 || target > siblings.size())
            target = siblings.size();
        siblings.insert(target, id);
        moved.insert(id);
        if (index >= 0 && to == wanted)
            index = target + 1;
        if (from == to && place == target)
            continue;
        ProjectChange change;
        change.kind = ProjectChange::Kind::Move;
        change.id = id;
        change.object = object;
        change.place = {from->GetID(), place};
        change.newPlace = {to->GetID(), target};
        changes.append(change);
    }
    return true;
}

bool Project::Remove(const QList<QUuid>& ids)
{
    const QSet<QUuid> wanted(ids.begin(), ids.end());
    QList<std::shared_ptr<ProjectObject>> objects;
    QHash<QUuid, QSet<QUuid>> elements;
    QSet<QUuid> seen;
    for (const QUuid& id : ids)
    {
        const std::shared_ptr<ProjectObject> object = Find(id);
        if (!object || IsFixed(object) || seen.contains(id))
            continue;
        seen.insert(id);
        bool goesWithParent = false;
        for (auto parent = Find(object->GetParentID()); parent; parent = Find(parent->GetParentID()))
            goesWithParent = goesWithParent || (wanted.contains(parent->GetID()) && !IsFixed(parent));
        if (goesWithParent)
            continue;
        if (object->GetType() == 2)
            elements[object->GetParentID()].insert(id);
        else
            objects.append(object);
    }

    Changes changes;
    const bool takesDefault = std::any_of(objects.begin(), objects.end(),
                                          [this](const std::shared_ptr<ProjectObject>& object)
                                          { return HoldsObject(*object, mContent.defaultTimeline); });
    if (takesDefault)
    {
        ProjectChange change;
        change.kind = ProjectChange::Kind::Default;
        change.defaultTimeline = {mContent.defaultTimeline, QUuid()};
        changes.append(change);
    }

    // Elements of a source that goes stay as missing ones.
    QList<std::shared_ptr<MediaTimeline>> sources;
    for (const std::shared_ptr<ProjectObject>& object : objects)
        AppendSources(object, sources);
    QSet<const ProjectTimeline*> removedSources;
    for (const std::shared_ptr<MediaTimeline>& source : sources)
        removedSources.insert(source.get());
    Followers timelines;
    QSet<const ProjectTimeline*> played;
    for (const std::shared_ptr<ProjectTimeline>& timeline : FollowersOf(removedSources))
    {
        const bool goesToo = std::any_of(objects.begin(), objects.end(),
                                         [&](const std::shared_ptr<ProjectObject>& object)
                                         { return IsWithin(timeline->GetID(), object->GetID()); });
        if (goesToo)
            continue;
        timelines.append(timeline);
        for (const auto& element : std::static_pointer_cast<ElementTimeline>(timeline)->GetElements())
            played.insert(element->SourceTimeline().get());
    }
    for (const std::shared_ptr<MediaTimeline>& source : sources)
    {
        if (!played.contains(source.get()) || source->IsMissing())
            continue;
        ProjectChange change;
        change.kind = ProjectChange::Kind::Medium;
        change.id = source->GetID();
        change.object = source;
        change.medium = {
            source->GetMediaSource(),
            std::make_shared<const MediaSource>(source->GetMediaSource()->GetID(), source->Info(), true)};
        changes.append(change);
    }
    for (auto of = elements.constBegin(); of != elements.constEnd(); ++of)
    {
        const std::shared_ptr<ProjectTimeline> timeline = FindTimeline(of.key());
        if (timeline && !timelines.contains(timeline))
            timelines.append(timeline);
    }
    AppendStates(changes, timelines,
                 [&]
                 {
                     for (auto of = elements.constBegin(); of != elements.constEnd(); ++of)
                     {
                         const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(of.key());
                         ElementTimeline::Elements left;
                         for (const std::shared_ptr<ElementObject>& element : timeline->GetElements())
                         {
                             if (!of->contains(element->GetID()))
                                 left.push_back(element);
                         }
                         timeline->SetElements(left);
                     }
                 });

    // From the end of each folder on, so that every index is that of the child as it stands.
    Changes removals;
    QHash<QUuid, QHash<QUuid, int>> places;
    for (const std::shared_ptr<ProjectObject>& object : objects)
    {
        const auto folder = std::dynamic_pointer_cast<FolderObject>(Find(object->GetParentID()));
        QHash<QUuid, int>& indices = places[folder->GetID()];
        if (indices.isEmpty())
        {
            for (int index = 0; index < folder->ChildList().size(); ++index)
                indices.insert(folder->ChildList()[index]->GetID(), index);
        }
        ProjectChange change = InsertOf(object, folder->GetID(), indices.value(object->GetID()));
        change.kind = ProjectChange::Kind::Remove;
        removals.append(change);
    }
    std::stable_sort(removals.begin(), removals.end(),
                     [](const ProjectChange& a, const ProjectChange& b)
                     { return a.place.index > b.place.index; });
    return Push({tr("Remove"), {}, false}, changes + removals);
}

bool Project::ToggleDefault(const QUuid& id)
{
    if (!FindElementTimeline(id))
        return false;
    ProjectChange change;
    change.kind = ProjectChange::Kind::Default;
    change.defaultTimeline = {mContent.defaultTimeline, id == mContent.defaultTimeline ? QUuid() : id};
    return Push({change.defaultTimeline.after.isNull() ? tr("Clear Default") : tr("Make Default"), {}, false},
                {change});
}
