// SPDX-License-Identifier: MIT
// Steps that bring sources in and change their media.
#include "project/Project.h"

#include "project/ElementTimeline.h"
#include "project/MediaPaths.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/MediumReads.h"
#include "project/RunningImport.h"

#include <QFileInfo>

#include <algorithm>

namespace
{

/// Builds the folders that an imported folder becomes.
class FolderTree
{
public:
    /// The folder under the names @p path, made with those above it where it isn't there yet; the first of
    /// them is the top folder of the dropped folder @p tree.
    std::shared_ptr<FolderObject> At(int tree, const QStringList& path)
    {
        const QString key = QString::number(tree) + QLatin1Char('/') + path.join(QLatin1Char('/'));
        if (const auto known = mFolders.value(key))
            return known;
        const auto folder = std::make_shared<FolderObject>(path.last());
        mFolders.insert(key, folder);
        if (path.size() > 1)
            At(tree, path.mid(0, path.size() - 1))->Insert(-1, folder);
        return folder;
    }

private:
    QHash<QString, std::shared_ptr<FolderObject>> mFolders;
};

} // namespace

QUuid Project::AddSource(const MediaInfo& info, const QUuid& parentID, int index)
{
    if (const auto known = FindSourceByPath(info.path))
        return known->GetID();
    const auto timeline =
        std::make_shared<MediaTimeline>(std::make_shared<const MediaSource>(QUuid::createUuid(), info));
    const std::shared_ptr<FolderObject> parent = ParentFor(parentID, 1, true, &index);
    Push({tr("Add Source"), {}, false}, {InsertOf(timeline, parent->GetID(), index)});
    return timeline->GetID();
}

ProjectImport* Project::Import(const QList<QString>& paths, const QUuid& parentID, const QList<int>& indices,
                               bool forViewing)
{
    return new RunningImport(this, paths, parentID, indices, forViewing);
}

bool Project::IsReading() const
{
    const QList<ProjectImport*> imports = findChildren<ProjectImport*>();
    return mReads->IsReading() ||
           std::any_of(imports.begin(), imports.end(),
                       [](const ProjectImport* import) { return import->IsRunning(); });
}

void Project::FinishImport(RunningImport& running)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(running.ParentID());
    QHash<QString, std::shared_ptr<MediaTimeline>> known;
    for (const std::shared_ptr<ProjectTimeline>& source : Timelines(true))
        known.insert(MediaPaths::Key(std::static_pointer_cast<MediaTimeline>(source)->Info().path),
                     std::static_pointer_cast<MediaTimeline>(source));
    QHash<QString, std::shared_ptr<MediaTimeline>> removed;
    for (const std::shared_ptr<MediaTimeline>& source : mContent.RemovedSources())
        removed.insert(MediaPaths::Key(source->Info().path), source);

    Changes media;
    Changes inserts;
    QSet<const ProjectTimeline*> returned;
    // Where the next object of a path goes, by folder and the index that was asked for.
    QHash<QPair<QUuid, int>, int> nextPlaces;
    QHash<QUuid, int> appended;
    const auto insert = [&](const std::shared_ptr<ProjectObject>& object, int type, bool ofSource, int wanted)
    {
        int place = wanted;
        const QUuid parentID = timeline ? QUuid() : running.ParentID();
        const std::shared_ptr<FolderObject> parent = ParentFor(parentID, type, ofSource, &place);
        const bool atEnd = wanted < 0 || place != wanted;
        if (atEnd)
            place = parent->ChildList().size() + appended[parent->GetID()];
        else
            place += nextPlaces[{parent->GetID(), wanted}]++;
        ++appended[parent->GetID()];
        inserts.append(InsertOf(object, parent->GetID(), place));
    };

    // Each dropped folder becomes one insertion with all that it holds.
    FolderTree folders;
    QSet<QUuid> insertedFolders;
    const auto parent = std::dynamic_pointer_cast<FolderObject>(Find(running.ParentID()));
    const bool makesFolders =
        !timeline && (!parent || parent->Takes(0, false) || parent->Kind() == FolderKind::Root);
    for (const RunningImport::Item& item : running.Items())
    {
        if (!item.info)
            continue;
        const QString key = MediaPaths::Key(item.info->path);
        std::shared_ptr<MediaTimeline> source = known.value(key);
        if (!source)
        {
            source = removed.value(key);
            if (source)
            {
                ProjectChange change;
                change.kind = ProjectChange::Kind::Medium;
                change.id = source->GetID();
                change.object = source;
                change.medium = {
                    source->GetMediaSource(),
                    std::make_shared<const MediaSource>(source->GetMediaSource()->GetID(), *item.info)};
                media.append(change);
                returned.insert(source.get());
            }
            else
            {
                source = std::make_shared<MediaTimeline>(
                    std::make_shared<const MediaSource>(QUuid::createUuid(), *item.info));
            }
            known.insert(key, source);
            if (makesFolders && !item.found.folders.isEmpty())
            {
                const std::shared_ptr<FolderObject> top =
                    folders.At(item.pathIndex, item.found.folders.mid(0, 1));
                folders.At(item.pathIndex, item.found.folders)->Insert(-1, source);
                if (!insertedFolders.contains(top->GetID()))
                {
                    insertedFolders.insert(top->GetID());
                    insert(top, 0, false, running.IndexOf(item));
                }
            }
            else
            {
                insert(source, 1, true, running.IndexOf(item));
            }
        }
        running.GetResult().sources.append(source->GetID());
    }

    Followers timelines = FollowersOf(returned);
    if (timeline && !timelines.contains(timeline))
        timelines.append(timeline);
    Changes changes = media;
    AppendStates(changes, timelines,
                 [&]
                 {
                     if (!timeline)
                         return;
                     ElementTimeline::Elements elements = timeline->GetElements();
                     QHash<int, int> inserted;
                     for (const RunningImport::Item& item : running.Items())
                     {
                         if (!item.info)
                             continue;
                         const auto element =
                             std::make_shared<ElementObject>(known.value(MediaPaths::Key(item.info->path)));
                         const int wanted = running.IndexOf(item);
                         const bool atEnd = wanted < 0 || wanted > static_cast<int>(elements.size());
                         const std::ptrdiff_t place = atEnd ? static_cast<std::ptrdiff_t>(elements.size())
                                                            : wanted + inserted[wanted]++;
                         elements.insert(elements.begin() + place, element);
                         running.GetResult().elements.append(element->GetID());
                     }
                     timeline->SetElements(elements);
                 });
    // States follow what comes into the tree.
    Push({running.Items().size() == 1 ? tr("Import") : tr("Import Media"), {}, running.IsForViewing()},
         inserts + changes);
}

void Project::ReplaceSource(const QUuid& id, const QString& path)
{
    if (!path.isEmpty())
        ReadMedium(id, QFileInfo(path).absoluteFilePath(), tr("Replace Source"));
}

void Project::RefreshSource(const QUuid& id)
{
    if (const std::shared_ptr<MediaTimeline> timeline = FindSource(id))
        ReadMedium(id, timeline->Info().path, tr("Refresh Source"));
}

void Project::ReadMedium(const QUuid& id, const QString& path, const QString& text)
{
    const std::shared_ptr<MediaTimeline> timeline = FindSource(id);
    if (!timeline)
        return;
    const bool isSame = path == timeline->Info().path;
    mReads->Read(path, mContent.settings.imageSequenceFrameRate,
                 [this, id, path, text, isSame](const MediaInfo* info, const QString& error)
                 {
                     const std::shared_ptr<MediaTimeline> target = FindSource(id);
                     if (!target)
                         return;
                     if (!info)
                     {
                         // What is known of a medium that has gone is kept.
                         if (isSame && !target->IsMissing())
                             SetMedium(target, target->Info(), true, text);
                         Refuse(error);
                         return;
                     }
                     SetMedium(target, *info, false, text);
                 });
}

void Project::SetMedium(const std::shared_ptr<MediaTimeline>& timeline, const MediaInfo& info, bool missing,
                        const QString& text)
{
    const auto old = timeline->GetMediaSource();
    Changes changes;
    ProjectChange change;
    change.kind = ProjectChange::Kind::Medium;
    change.id = timeline->GetID();
    change.object = timeline;
    change.medium = {old, std::make_shared<const MediaSource>(old->GetID(), info, missing)};
    changes.append(change);
    if (info.path != old->Info().path && timeline->GetName() == QFileInfo(old->Info().path).fileName())
    {
        ProjectChange rename;
        rename.kind = ProjectChange::Kind::Rename;
        rename.id = timeline->GetID();
        rename.name = {timeline->GetName(), QFileInfo(info.path).fileName()};
        changes.append(rename);
    }
    AppendStates(changes, FollowersOf({timeline.get()}), {});
    Push({text, {}, false}, changes);
}

void Project::NoteMedium(const QUuid& id, const MediaInfo& info)
{
    SwapMedium(id, info, false);
}

void Project::NoteMissing(const QUuid& id)
{
    if (const std::shared_ptr<MediaTimeline> timeline = FindSource(id))
        SwapMedium(id, timeline->Info(), true);
}

void Project::SwapMedium(const QUuid& id, const MediaInfo& info, bool missing)
{
    const std::shared_ptr<MediaTimeline> timeline = FindSource(id);
    if (!timeline)
        return;
    const auto old = timeline->GetMediaSource();
    if (old->IsMissing() == missing && old->Info().path == info.path &&
        old->Info().frameCount == info.frameCount && old->Info().frameRate == info.frameRate &&
        old->Info().width == info.width && old->Info().height == info.height)
        return;
    ProjectChange change;
    change.kind = ProjectChange::Kind::Medium;
    change.id = timeline->GetID();
    change.object = timeline;
    change.medium = {old, std::make_shared<const MediaSource>(old->GetID(), info, missing)};
    Changes changes{change};
    AppendStates(changes, FollowersOf({timeline.get()}), {});
    Apply(changes);
}

void Project::AppendRetimes(Changes& changes, const FrameRate& rate)
{
    QList<std::shared_ptr<MediaTimeline>> sources = mContent.RemovedSources();
    for (const std::shared_ptr<ProjectTimeline>& timeline : Timelines(true))
        sources.append(std::dynamic_pointer_cast<MediaTimeline>(timeline));
    QSet<const ProjectTimeline*> retimed;
    for (const std::shared_ptr<MediaTimeline>& source : qAsConst(sources))
    {
        const auto old = source->GetMediaSource();
        if (!old->Info().isSequence || old->Info().frameRate == rate)
            continue;
        MediaInfo info = old->Info();
        info.frameRate = rate;
        ProjectChange change;
        change.kind = ProjectChange::Kind::Medium;
        change.id = source->GetID();
        change.object = source;
        change.medium = {old, std::make_shared<const MediaSource>(old->GetID(), info, old->IsMissing())};
        changes.append(change);
        retimed.insert(source.get());
    }
    if (!retimed.isEmpty())
        AppendStates(changes, FollowersOf(retimed), {});
}
