// SPDX-License-Identifier: MIT
#include "project/ProjectChange.h"

#include "project/MediaSource.h"
#include "project/MediaTimeline.h"

#include <utility>

namespace
{

void Rename(ProjectObject& object, const QString& name)
{
    if (auto* const folder = dynamic_cast<FolderObject*>(&object))
        folder->SetName(name);
    else if (auto* const timeline = dynamic_cast<ProjectTimeline*>(&object))
        timeline->SetName(name);
    else if (auto* const element = dynamic_cast<ElementObject*>(&object))
        element->SetOwnName(name);
}

std::shared_ptr<FolderObject> FolderAt(const ProjectContent& content, const QUuid& id)
{
    return std::dynamic_pointer_cast<FolderObject>(content.objects.value(id));
}

void SetState(ProjectContent& content, const ProjectChange& change)
{
    const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(content.objects.value(change.id));
    if (!timeline)
        return;
    content.Unregister(timeline);
    change.state.after->ApplyTo(*timeline);
    content.Register(timeline);
}

void SetDefault(ProjectContent& content, const QUuid& id, bool isDefault)
{
    if (const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(content.objects.value(id)))
        timeline->SetDefault(isDefault);
}

} // namespace

ProjectChange ProjectChange::Inverted() const
{
    ProjectChange inverted = *this;
    switch (kind)
    {
    case Kind::Insert:
        inverted.kind = Kind::Remove;
        break;
    case Kind::Remove:
        inverted.kind = Kind::Insert;
        break;
    case Kind::Move:
        std::swap(inverted.place, inverted.newPlace);
        break;
    case Kind::Rename:
        std::swap(inverted.name.before, inverted.name.after);
        break;
    case Kind::State:
        std::swap(inverted.state.before, inverted.state.after);
        break;
    case Kind::Medium:
        std::swap(inverted.medium.before, inverted.medium.after);
        break;
    case Kind::Default:
        std::swap(inverted.defaultTimeline.before, inverted.defaultTimeline.after);
        break;
    case Kind::Settings:
        std::swap(inverted.settings.before, inverted.settings.after);
        break;
    case Kind::Drawings:
    case Kind::Bookmarks:
        break;
    }
    return inverted;
}

void ProjectChange::ApplyTo(ProjectContent& content) const
{
    switch (kind)
    {
    case Kind::Insert:
        if (const auto folder = FolderAt(content, place.parent))
        {
            folder->Insert(place.index, object);
            content.Register(object);
        }
        break;
    case Kind::Remove:
        if (const auto folder = FolderAt(content, place.parent); folder && folder->Take(id, place.index) >= 0)
            content.Unregister(object);
        break;
    case Kind::Move:
    {
        const auto from = FolderAt(content, place.parent);
        const auto to = FolderAt(content, newPlace.parent);
        if (from && to && from->Take(id, place.index) >= 0)
            to->Insert(newPlace.index, object);
        break;
    }
    case Kind::Rename:
        if (const auto renamed = content.objects.value(id))
            Rename(*renamed, name.after);
        break;
    case Kind::State:
    case Kind::Bookmarks:
        SetState(content, *this);
        break;
    case Kind::Drawings:
        if (const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(content.objects.value(id)))
        {
            timeline->Annotations()->SetDrawings(frame, drawings);
            timeline->UpdateAnnotationBookmark(frame);
        }
        break;
    case Kind::Medium:
        // By the object: the timeline may be out of the tree while elements play it.
        if (const auto timeline = std::dynamic_pointer_cast<MediaTimeline>(object))
        {
            const TimelineState kept = TimelineState::Of(*timeline);
            timeline->SetMediaSource(medium.after);
            kept.ApplyTo(*timeline);
        }
        break;
    case Kind::Default:
        SetDefault(content, defaultTimeline.before, false);
        SetDefault(content, defaultTimeline.after, true);
        content.defaultTimeline = defaultTimeline.after;
        break;
    case Kind::Settings:
        content.settings = settings.after;
        break;
    }
}
