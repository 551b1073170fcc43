// SPDX-License-Identifier: MIT
// The project as a whole: its file, what it holds, and how a step is done.
#include "project/Project.h"

#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/MediaPaths.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/MediumReads.h"
#include "project/ProjectCommand.h"
#include "project/ProjectFile.h"
#include "project/ProjectImport.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

bool SameSegments(const std::vector<TimelineSegment>& a, const std::vector<TimelineSegment>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const TimelineSegment& x, const TimelineSegment& y)
                      {
                          return x.first == y.first && x.count == y.count && x.source == y.source &&
                                 x.mediaFirst == y.mediaFirst && x.mediaLast == y.mediaLast &&
                                 x.element == y.element && x.rate == y.rate;
                      });
}

bool SameDrawings(const TimelineState& a, const TimelineState& b)
{
    return std::equal(a.drawings.begin(), a.drawings.end(), b.drawings.begin(), b.drawings.end(),
                      [](const auto& x, const auto& y)
                      { return x.first == y.first && x.second.isSharedWith(y.second); });
}

void TurnViewsOff(const ProjectContent& content)
{
    for (const std::shared_ptr<ProjectObject>& object : content.objects)
    {
        const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(object);
        if (!timeline)
            continue;
        PanZoom view = timeline->View();
        view.enabled = false;
        timeline->SetView(view);
    }
}

void AppendTimelines(ProjectObject& folder, bool ofSources,
                     QList<std::shared_ptr<ProjectTimeline>>& timelines)
{
    for (const std::shared_ptr<ProjectObject>& child : folder.GetChildren())
    {
        if (const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(child))
        {
            if (timeline->IsSourceTimeline() == ofSources)
                timelines.append(timeline);
        }
        else
        {
            AppendTimelines(*child, ofSources, timelines);
        }
    }
}

} // namespace

Project::Project(FrameLoader* loader, QImage::Format pictureFormat, QObject* parent)
    : QObject(parent), mReads(new MediumReads(loader, pictureFormat, this))
{
    connect(&mUndoStack, SIGNAL(cleanChanged(bool)), this, SLOT(OnCleanChanged(bool)));
    New();
}

Project::~Project()
{
    // Steps reach the project while they are taken off the stack.
    mUndoStack.disconnect(this);
    qDeleteAll(findChildren<ProjectImport*>());
    mUndoStack.clear();
}

void Project::New()
{
    ProjectSettings settings;
    settings.sourceRoot = Settings::globalSourceRootDirectory;
    settings.imageSequenceFrameRate = Settings::globalImageSequenceFrameRate;
    TakeOver(ProjectContent::Empty(settings, !Settings::emptyProject), QString());
}

bool Project::Open(const QString& path, QString* error)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    std::optional<ProjectContent> content = ProjectFile::Read(absolute, error);
    if (!content)
        return false;
    if (Settings::disablePanZoomOnProjectLoad)
        TurnViewsOff(*content);
    TakeOver(std::move(*content), absolute);
    return true;
}

bool Project::Save(const QString& path, QString* error)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (!ProjectFile::Write(mContent, absolute, error))
        return false;
    const bool isOther = absolute != mPath;
    mPath = absolute;
    mRecovered = false;
    mUndoStack.setClean();
    if (isOther)
        Q_EMIT TitleChanged();
    Q_EMIT BaseChanged();
    return true;
}

void Project::Recover(ProjectContent content, const QString& path)
{
    TakeOver(std::move(content), path);
    mRecovered = true;
    mUndoStack.resetClean();
    Q_EMIT BaseChanged();
}

void Project::TakeOver(ProjectContent content, const QString& path)
{
    Q_EMIT AboutToChange();
    for (ProjectImport* const import : findChildren<ProjectImport*>())
        import->Cancel();
    mReads->CancelAll();
    // Steps hold objects of the old content until they are gone.
    mUndoStack.clear();
    mRecovered = false;
    mContent = std::move(content);
    mPath = path;
    Q_EMIT Reset();
    Q_EMIT TitleChanged();
    Q_EMIT BaseChanged();
}

const QString& Project::FilePath() const
{
    return mPath;
}

QString Project::FolderPath() const
{
    return mPath.isEmpty() ? QString() : QFileInfo(mPath).absolutePath();
}

QString Project::Title() const
{
    return mPath.isEmpty() ? tr("Untitled") : QFileInfo(mPath).completeBaseName();
}

bool Project::IsModified() const
{
    return !mUndoStack.isClean();
}

bool Project::HasUnsavedWork() const
{
    if (!IsModified())
        return false;
    if (mRecovered || !mPath.isEmpty())
        return true;
    for (int index = 0; index < mUndoStack.index(); ++index)
    {
        const auto* const command = dynamic_cast<const ProjectCommand*>(mUndoStack.command(index));
        if (!command || !command->IsForViewing())
            return true;
    }
    return false;
}

QUndoStack* Project::UndoStack()
{
    return &mUndoStack;
}

const ProjectContent& Project::Content() const
{
    return mContent;
}

const ProjectSettings& Project::GetSettings() const
{
    return mContent.settings;
}

void Project::SetSettings(const ProjectSettings& settings)
{
    if (settings == mContent.settings)
        return;
    ProjectChange change;
    change.kind = ProjectChange::Kind::Settings;
    change.settings = {mContent.settings, settings};
    Changes changes{change};
    if (!qFuzzyCompare(settings.imageSequenceFrameRate, mContent.settings.imageSequenceFrameRate))
        AppendRetimes(changes, FrameRate::FromPerSecond(settings.imageSequenceFrameRate));
    Push({tr("Project Settings"), {}, false}, changes);
}

QString Project::SourceRootPath() const
{
    return MediaPaths::SourceRoot(mContent.settings.sourceRoot, FolderPath());
}

QString Project::RelativePath(const QString& path) const
{
    return MediaPaths::Relative(path, SourceRootPath());
}

const std::shared_ptr<FolderObject>& Project::Root() const
{
    return mContent.root;
}

std::shared_ptr<ProjectObject> Project::Find(const QUuid& id) const
{
    return mContent.objects.value(id);
}

std::shared_ptr<ProjectTimeline> Project::FindTimeline(const QUuid& id) const
{
    return std::dynamic_pointer_cast<ProjectTimeline>(Find(id));
}

std::shared_ptr<ElementTimeline> Project::FindElementTimeline(const QUuid& id) const
{
    return std::dynamic_pointer_cast<ElementTimeline>(Find(id));
}

std::shared_ptr<MediaTimeline> Project::FindSource(const QUuid& id) const
{
    if (const auto timeline = std::dynamic_pointer_cast<MediaTimeline>(Find(id)))
        return timeline;
    for (const std::shared_ptr<ProjectObject>& object : mContent.objects)
    {
        const auto timeline = std::dynamic_pointer_cast<MediaTimeline>(object);
        if (timeline && timeline->GetMediaSource()->GetID() == id)
            return timeline;
    }
    return nullptr;
}

std::shared_ptr<MediaTimeline> Project::FindSourceByPath(const QString& path) const
{
    const QString key = MediaPaths::Key(path);
    for (const std::shared_ptr<ProjectTimeline>& timeline : Timelines(true))
    {
        const auto source = std::static_pointer_cast<MediaTimeline>(timeline);
        if (MediaPaths::Key(source->Info().path) == key)
            return source;
    }
    return nullptr;
}

std::shared_ptr<ProjectTimeline> Project::FindByAnnotations(const AnnotationStore* annotations) const
{
    for (const std::shared_ptr<ProjectObject>& object : mContent.objects)
    {
        const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(object);
        if (timeline && timeline->Annotations().get() == annotations)
            return timeline;
    }
    return nullptr;
}

QList<std::shared_ptr<ProjectTimeline>> Project::Timelines(bool ofSources) const
{
    QList<std::shared_ptr<ProjectTimeline>> timelines;
    AppendTimelines(*mContent.root, ofSources, timelines);
    return timelines;
}

std::shared_ptr<ElementTimeline> Project::DefaultTimeline() const
{
    return FindElementTimeline(mContent.defaultTimeline);
}

bool Project::Push(const Step& step, const Changes& changes)
{
    if (changes.isEmpty())
        return false;
    // Not while the step is done: what is in progress may end in a step of its own.
    Q_EMIT AboutToChange();
    mUndoStack.push(new ProjectCommand(this, step.text, changes, step.mergeKey, step.forViewing));
    return true;
}

void Project::Apply(const Changes& changes)
{
    using Kind = ProjectChange::Kind;
    // States name all of a timeline, so they come when its media are what they will be; those of elements lie
    // on the ranges of sources.
    for (const ProjectChange& change : changes)
    {
        if (change.kind != Kind::State)
            ApplyOne(change);
    }
    for (const bool ofSource : {true, false})
    {
        for (const ProjectChange& change : changes)
        {
            if (change.kind == Kind::State && change.object->IsSourceTimeline() == ofSource)
                ApplyState(change);
        }
    }
    Q_EMIT Changed();
}

void Project::ApplyOne(const ProjectChange& change)
{
    change.ApplyTo(mContent);
    switch (change.kind)
    {
    case ProjectChange::Kind::Insert:
        Q_EMIT ObjectAdded(change.id);
        break;
    case ProjectChange::Kind::Remove:
        Q_EMIT ObjectRemoved(change.id, change.place.parent);
        break;
    case ProjectChange::Kind::Move:
        Q_EMIT ObjectMoved(change.id);
        break;
    case ProjectChange::Kind::Rename:
        Q_EMIT ObjectRenamed(change.id);
        // Elements bear the name of their source.
        for (const auto& timeline : FollowersOf({dynamic_cast<ProjectTimeline*>(Find(change.id).get())}))
            Q_EMIT TimelineChanged(timeline->GetID());
        if (const std::shared_ptr<ProjectObject> object = Find(change.id); object && object->GetType() == 2)
            Q_EMIT TimelineChanged(object->GetParentID());
        break;
    case ProjectChange::Kind::Medium:
        Q_EMIT SourceChanged(change.id);
        Q_EMIT TimelineChanged(change.id);
        Q_EMIT ObjectChanged(change.id);
        break;
    case ProjectChange::Kind::Default:
        Q_EMIT DefaultChanged();
        for (const QUuid& id : {change.defaultTimeline.before, change.defaultTimeline.after})
        {
            if (Find(id))
                Q_EMIT ObjectChanged(id);
        }
        break;
    case ProjectChange::Kind::Settings:
        Q_EMIT SettingsChanged();
        break;
    case ProjectChange::Kind::State:
    case ProjectChange::Kind::Drawings:
    case ProjectChange::Kind::Bookmarks:
        break;
    }
    Q_EMIT ChangeApplied(change);
}

void Project::ApplyState(const ProjectChange& change)
{
    const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(change.object);
    const std::vector<TimelineSegment> segments = timeline->Segments();
    change.ApplyTo(mContent);
    const TimelineState& before = *change.state.before;
    const TimelineState& after = *change.state.after;
    if (!SameSegments(segments, timeline->Segments()))
    {
        Q_EMIT TimelineChanged(change.id);
        Q_EMIT ObjectChanged(change.id);
    }
    if (before.range != after.range || before.view != after.view ||
        before.usesSourceRanges != after.usesSourceRanges)
        Q_EMIT PropertiesChanged(change.id);
    if (!SameDrawings(before, after))
        Q_EMIT DrawingsChanged(change.id, 0);
    if (before.marks != after.marks || before.rangeBookmarks != after.rangeBookmarks ||
        !SameDrawings(before, after))
        Q_EMIT BookmarksChanged(change.id);
    Q_EMIT ChangeApplied(change);
}

void Project::AppendStates(Changes& changes, const Followers& timelines, const std::function<void()>& mutate)
{
    // Done once to see what comes of it, and taken back.
    Q_EMIT AboutToChange();
    QList<std::shared_ptr<const TimelineState>> before;
    for (const std::shared_ptr<ProjectTimeline>& timeline : timelines)
        before.append(std::make_shared<const TimelineState>(TimelineState::Of(*timeline)));
    for (const ProjectChange& change : changes)
    {
        if (change.kind == ProjectChange::Kind::Medium)
            change.ApplyTo(mContent);
    }
    if (mutate)
        mutate();
    for (const std::shared_ptr<ProjectTimeline>& timeline : timelines)
    {
        if (const auto elements = std::dynamic_pointer_cast<ElementTimeline>(timeline))
            elements->Relayout();
    }
    const int count = changes.size();
    for (int index = 0; index < timelines.size(); ++index)
    {
        ProjectChange change;
        change.kind = ProjectChange::Kind::State;
        change.id = timelines[index]->GetID();
        change.object = timelines[index];
        change.state = {before[index],
                        std::make_shared<const TimelineState>(TimelineState::Of(*timelines[index]))};
        changes.append(change);
    }
    for (int index = 0; index < count; ++index)
    {
        if (changes[index].kind == ProjectChange::Kind::Medium)
            changes[index].Inverted().ApplyTo(mContent);
    }
    for (const bool ofSource : {true, false})
    {
        for (int index = 0; index < timelines.size(); ++index)
        {
            if (timelines[index]->IsSourceTimeline() == ofSource)
                before[index]->ApplyTo(*timelines[index]);
        }
    }
}

Project::Followers Project::FollowersOf(const QSet<const ProjectTimeline*>& sources) const
{
    Followers followers;
    for (const std::shared_ptr<ProjectTimeline>& timeline : Timelines(false))
    {
        const auto& elements = std::static_pointer_cast<ElementTimeline>(timeline)->GetElements();
        const bool follows = std::any_of(elements.begin(), elements.end(),
                                         [&](const std::shared_ptr<ElementObject>& element)
                                         { return sources.contains(element->SourceTimeline().get()); });
        if (follows)
            followers.append(timeline);
    }
    return followers;
}

bool Project::Refuse(const QString& reason)
{
    Q_EMIT Refused(reason);
    return false;
}

void Project::OnCleanChanged(bool clean)
{
    Q_EMIT ModifiedChanged(!clean);
}

void Project::NoteDrawings(AnnotationStore* annotations, int frame)
{
    const std::shared_ptr<ProjectTimeline> timeline = FindByAnnotations(annotations);
    if (!timeline)
        return;
    timeline->UpdateAnnotationBookmark(frame);
    ProjectChange change;
    change.kind = ProjectChange::Kind::Drawings;
    change.id = timeline->GetID();
    change.object = timeline;
    change.frame = frame;
    change.drawings = annotations->Drawings(frame);
    Q_EMIT DrawingsChanged(change.id, frame);
    Q_EMIT BookmarksChanged(change.id);
    Q_EMIT ChangeApplied(change);
    Q_EMIT Changed();
}

void Project::NoteBookmarks(const QUuid& timelineID)
{
    const std::shared_ptr<ProjectTimeline> timeline = FindTimeline(timelineID);
    if (!timeline)
        return;
    ProjectChange change;
    change.kind = ProjectChange::Kind::Bookmarks;
    change.id = timelineID;
    change.object = timeline;
    change.state.after = std::make_shared<const TimelineState>(TimelineState::Of(*timeline));
    Q_EMIT BookmarksChanged(timelineID);
    Q_EMIT ChangeApplied(change);
    Q_EMIT Changed();
}

void Project::NoteViewer(const QUuid& id, int viewer)
{
    for (const bool ofSources : {true, false})
    {
        for (const std::shared_ptr<ProjectTimeline>& timeline : Timelines(ofSources))
        {
            const bool isShown = timeline->GetID() == id;
            if (!isShown && (viewer < 0 || timeline->GetViewerIndex() != viewer))
                continue;
            const int index = isShown ? viewer : -1;
            if (timeline->GetViewerIndex() == index)
                continue;
            timeline->SetViewerIndex(index);
            Q_EMIT ObjectChanged(timeline->GetID());
        }
    }
}
