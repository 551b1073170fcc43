// SPDX-License-Identifier: MIT
#include "project/ProjectContent.h"

#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/TimelineState.h"

#include <QCoreApplication>
#include <QSet>

namespace
{

QString ContentText(const char* text)
{
    return QCoreApplication::translate("Project", text);
}

} // namespace

bool operator==(const ProjectSettings& a, const ProjectSettings& b)
{
    return a.sourceRoot == b.sourceRoot &&
           qFuzzyCompare(a.imageSequenceFrameRate, b.imageSequenceFrameRate) && a.notes == b.notes;
}

bool operator!=(const ProjectSettings& a, const ProjectSettings& b)
{
    return !(a == b);
}

ProjectContent ProjectContent::Empty(const ProjectSettings& settings, bool withTimeline)
{
    ProjectContent content;
    content.settings = settings;
    content.root = std::make_shared<FolderObject>(ContentText("Project"), FolderKind::Root);
    const std::shared_ptr<FolderObject> timelines =
        std::make_shared<FolderObject>(ContentText("Timelines"), FolderKind::Timelines);
    content.root->Insert(-1, std::make_shared<FolderObject>(ContentText("Folders"), FolderKind::Folders));
    content.root->Insert(-1, std::make_shared<FolderObject>(ContentText("Sources"), FolderKind::Sources));
    content.root->Insert(-1, timelines);
    if (withTimeline)
    {
        const auto timeline = std::make_shared<ElementTimeline>(ContentText("Timeline"));
        timeline->SetDefault(true);
        content.defaultTimeline = timeline->GetID();
        timelines->Insert(-1, timeline);
    }
    content.Register(content.root);
    return content;
}

std::shared_ptr<FolderObject> ProjectContent::Bin(FolderKind kind) const
{
    for (const std::shared_ptr<ProjectObject>& child : root->ChildList())
    {
        const auto folder = std::dynamic_pointer_cast<FolderObject>(child);
        if (folder && folder->Kind() == kind)
            return folder;
    }
    return nullptr;
}

void ProjectContent::Register(const std::shared_ptr<ProjectObject>& object)
{
    objects.insert(object->GetID(), object);
    for (const std::shared_ptr<ProjectObject>& child : object->GetChildren())
        Register(child);
}

void ProjectContent::Unregister(const std::shared_ptr<ProjectObject>& object)
{
    objects.remove(object->GetID());
    for (const std::shared_ptr<ProjectObject>& child : object->GetChildren())
        Unregister(child);
}

namespace
{

void CollectRemovedSources(const ProjectContent& content, ProjectObject& object, QSet<QUuid>& seen,
                           QList<std::shared_ptr<MediaTimeline>>& sources)
{
    for (const std::shared_ptr<ProjectObject>& child : object.GetChildren())
    {
        if (const auto* const element = dynamic_cast<const ElementObject*>(child.get()))
        {
            const std::shared_ptr<MediaTimeline>& source = element->SourceTimeline();
            if (!content.objects.contains(source->GetID()) && !seen.contains(source->GetID()))
            {
                seen.insert(source->GetID());
                sources.append(source);
            }
        }
        else
        {
            CollectRemovedSources(content, *child, seen, sources);
        }
    }
}

} // namespace

QList<std::shared_ptr<MediaTimeline>> ProjectContent::RemovedSources() const
{
    QSet<QUuid> seen;
    QList<std::shared_ptr<MediaTimeline>> sources;
    CollectRemovedSources(*this, *root, seen, sources);
    return sources;
}

void ProjectContent::MarkRemovedSources()
{
    QSet<const ProjectTimeline*> marked;
    for (const std::shared_ptr<MediaTimeline>& source : RemovedSources())
    {
        if (source->IsMissing())
            continue;
        const auto known = source->GetMediaSource();
        source->SetMediaSource(std::make_shared<const MediaSource>(known->GetID(), known->Info(), true));
        marked.insert(source.get());
    }
    if (marked.isEmpty())
        return;
    for (const std::shared_ptr<ProjectObject>& object : objects)
    {
        // The layout holds the media.
        if (const auto timeline = std::dynamic_pointer_cast<ElementTimeline>(object))
            TimelineState::Of(*timeline).ApplyTo(*timeline);
    }
}
