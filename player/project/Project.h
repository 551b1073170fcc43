// SPDX-License-Identifier: MIT
#pragma once

#include "host/DrawData.h"
#include "media/MediaInfo.h"
#include "project/ProjectChange.h"
#include "project/ProjectContent.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QSet>
#include <QUndoStack>
#include <QUuid>
#include <QVector>

#include <functional>
#include <memory>

class AnnotationStore;
class ElementTimeline;
class FrameLoader;
class MediaTimeline;
class ProjectImport;
class MediumReads;
class ProjectCommand;
class ProjectTimeline;
class RunningImport;

/// What a reviewer works on: folders, sources, timelines and their elements, with every mark and drawing on
/// them.
///
/// It owns its objects and hands them out as shared pointers; whoever keeps one past a call keeps a weak
/// pointer. Every change is a step of one undo stack, and is told by signals, object by object, and then once
/// by Changed(). An id that belongs to nothing is passed over in silence; a change that the project's rules
/// forbid is left undone and its reason told by Refused().
///
/// Three bins stand in the root and can't be moved, renamed or removed: one takes folders, one sources, one
/// timelines. Whatever is put into the root itself goes to the end of the bin that takes it.
class Project : public QObject
{
    Q_OBJECT

public:
    /// Media are read by @p loader, as pictures of @p pictureFormat (QImage::Format_RGB32 or
    /// QImage::Format_RGB888); without one no file can be imported, and all else works. The project begins as
    /// New() makes it.
    explicit Project(FrameLoader* loader = nullptr, QImage::Format pictureFormat = QImage::Format_RGB32,
                     QObject* parent = nullptr);
    ~Project() override;

    // The whole

    /// Drops everything and begins an untitled project: the three bins, and a default timeline unless
    /// Settings::emptyProject is on.
    void New();
    /// Opens the project file at @p path; with Settings::disablePanZoomOnProjectLoad no timeline is panned
    /// and zoomed after that. On failure the open project stays as it is, and @p error says what is wrong
    /// where.
    bool Open(const QString& path, QString* error);
    /// Writes the project to @p path, atomically, and makes that its file. On failure @p error says why.
    bool Save(const QString& path, QString* error);
    /// Takes over @p content as the unsaved state of the project of file @p path (empty for an untitled one).
    void Recover(ProjectContent content, const QString& path);
    /// The project's file; empty while it has none.
    const QString& FilePath() const;
    /// The folder that Settings::PROJECT_DIRECTORY_VAR stands for; empty while the project has no file.
    QString FolderPath() const;
    /// The project's name for a title: its file's name without the suffix, or "Untitled".
    QString Title() const;
    /// Whether there are changes that the file doesn't hold.
    bool IsModified() const;
    /// Whether closing would lose something worth asking about: changes other than media opened for a look in
    /// an untitled project.
    bool HasUnsavedWork() const;
    /// Every change of the project is one of its steps.
    QUndoStack* UndoStack();
    /// What the project holds, for writing it.
    const ProjectContent& Content() const;

    // Objects

    /// The root folder; views show its children.
    const std::shared_ptr<FolderObject>& Root() const;
    /// The object with @p id: a folder, a timeline or an element; null if there is none.
    std::shared_ptr<ProjectObject> Find(const QUuid& id) const;
    /// The timeline with @p id, of a source or of elements; null if there is none.
    std::shared_ptr<ProjectTimeline> FindTimeline(const QUuid& id) const;
    /// The timeline of elements with @p id; null if there is none.
    std::shared_ptr<ElementTimeline> FindElementTimeline(const QUuid& id) const;
    /// The timeline of the source with @p id, which is an id of the timeline or of its Source; null if there
    /// is none.
    std::shared_ptr<MediaTimeline> FindSource(const QUuid& id) const;
    /// The source timeline whose medium is the file, or the sequence of the file, at @p path; null if there
    /// is none.
    std::shared_ptr<MediaTimeline> FindSourceByPath(const QString& path) const;
    /// The timeline that owns @p annotations; null if there is none.
    std::shared_ptr<ProjectTimeline> FindByAnnotations(const AnnotationStore* annotations) const;
    /// Every timeline in the order of the tree; with @p ofSources those of sources, else those of elements.
    QList<std::shared_ptr<ProjectTimeline>> Timelines(bool ofSources) const;
    /// The default timeline; null if there is none.
    std::shared_ptr<ElementTimeline> DefaultTimeline() const;
    /// The folder that takes what is asked for while @p selected are selected: the single selected folder, or
    /// the folder of the single selected timeline, if it takes objects of type @p type (0 folder, 1 timeline;
    /// with @p ofSource one of a source); else the bin for them.
    QUuid FolderFor(const QList<QUuid>& selected, int type, bool ofSource) const;

    // Changes of the tree. An index counts the receiving folder's children, -1 or one past the end is the
    // end. A parent that doesn't take the object, or that doesn't exist, gives way to the bin that does.

    /// Adds a folder. Returns its id, null if it was refused. An empty @p name is "New Folder", numbered
    /// where that name is taken.
    QUuid AddFolder(const QUuid& parentID = QUuid(), int index = -1, const QString& name = QString());
    /// Adds a timeline without elements. Returns its id. An empty @p name is "New Timeline", numbered.
    QUuid AddTimeline(const QUuid& parentID = QUuid(), int index = -1, const QString& name = QString());
    /// Adds the source of a medium that is known already. Returns the id of its timeline, that of an old
    /// one if the medium is in the project.
    QUuid AddSource(const MediaInfo& info, const QUuid& parentID = QUuid(), int index = -1);
    /// Imports @p paths: media, files of numbered sequences, folders of media with all below them. They are
    /// put under @p parentID, each at the index of its path in @p indices (-1 where that is too short),
    /// several in their order. If @p parentID is a timeline of elements, the sources go to their bin and
    /// become elements of it. A folder of media becomes a folder of the project where that may stand, unless
    /// it holds one medium alone.
    ///
    /// Reading goes on behind; the import is one step of the undo stack once it is done. The returned object
    /// tells its progress, takes a cancel, and deletes itself after it has finished. @p forViewing marks an
    /// import that is no work to be lost; see HasUnsavedWork().
    ProjectImport* Import(const QList<QString>& paths, const QUuid& parentID = QUuid(),
                          const QList<int>& indices = QList<int>(), bool forViewing = false);
    /// Whether any medium is being read for the project.
    bool IsReading() const;
    /// Renames a folder, timeline or element. An empty name is refused, and so is a bin.
    bool Rename(const QUuid& id, const QString& name);
    /// Moves the object under @p parentID, where it becomes the child of @p index, counted after it has left
    /// its place; -1 for the end. A folder can't go into itself or below itself.
    bool Move(const QUuid& id, const QUuid& parentID, int index);
    /// The same for several, in one step: each is put at @p index, the later ones after the earlier.
    bool Move(const QList<QUuid>& ids, const QUuid& parentID, int index);
    /// Removes folders with all that is in them, timelines, sources and elements. Bins are passed over.
    /// Elements of a removed source stay in their place, as missing ones, so that nothing after them moves;
    /// an import of the same medium gives them their source back.
    bool Remove(const QList<QUuid>& ids);
    /// Makes the timeline of elements the default one, or none if it is that already. Sources can't be it.
    bool ToggleDefault(const QUuid& id);

    // Sources. The id is that of the Source or of its timeline.

    /// Puts the medium at @p path behind the source; its timeline keeps its name unless it bears the old
    /// file's, and all that hangs on it. Reading goes on behind: SourceChanged() or Refused() answers.
    void ReplaceSource(const QUuid& id, const QString& path);
    /// Reads the source's medium anew.
    void RefreshSource(const QUuid& id);
    /// @p path relative to the project's source root, with "/" between; empty if it isn't below the root.
    QString RelativePath(const QString& path) const;
    /// The project's source root with Settings::PROJECT_DIRECTORY_VAR filled in; empty if it needs the
    /// project's folder and there is none.
    QString SourceRootPath() const;
    /// What a source root says: with Settings::PROJECT_DIRECTORY_VAR, which an empty one stands for.
    const ProjectSettings& GetSettings() const;
    /// Sets the settings, as a step of the undo stack. Another frame rate re-times every image sequence: each
    /// keeps its frames and what hangs on them.
    void SetSettings(const ProjectSettings& settings);

    // Elements of a timeline

    /// Inserts an element of each of the source timelines @p sourceIDs. Each is put before the row of its
    /// index in @p indices as the list then stands; -1 and a missing one are the end. Others are passed over.
    /// Returns the new elements' ids.
    QList<QUuid> InsertElements(const QUuid& timelineID, const QList<QUuid>& sourceIDs,
                                const QList<int>& indices = QList<int>());
    /// Moves elements, pair after pair: each goes before the row of its index, counted in the list as it then
    /// stands with the element still in it; -1 is the end.
    bool MoveElements(const QUuid& timelineID, const QList<QUuid>& ids, const QList<int>& indices);
    bool RemoveElements(const QUuid& timelineID, const QList<QUuid>& ids);
    /// Sorts by name, numbers in names by their value, case aside; equal names keep their order.
    bool SortElements(const QUuid& timelineID, bool ascending);

    // What belongs to a timeline. Steps of one kind on one timeline that follow each other within a moment
    // are one step of the undo stack.

    /// Sets the frames that playback stays within, from 1, both included and clamped to the timeline.
    bool SetRange(const QUuid& timelineID, int first, int last);
    bool SetPanZoom(const QUuid& timelineID, const QPointF& pan, float zoom, bool enabled);
    /// Has the timeline's elements play their sources' ranges alone.
    bool SetUseSourceInOuts(const QUuid& timelineID, bool enabled);
    bool AddBookmark(const QUuid& timelineID, int frame);
    /// Takes the mark away; a frame with drawings keeps the one that these make.
    bool RemoveBookmark(const QUuid& timelineID, int frame);
    bool AddRangeBookmark(const QUuid& timelineID, int first, int last, const QString& note = QString());
    bool RemoveRangeBookmark(const QUuid& timelineID, int first, int last);
    /// Makes @p drawings the drawings of @p frame.
    bool SetDrawings(const QUuid& timelineID, int frame, const QList<DrawData>& drawings,
                     const QString& text);

public Q_SLOTS:
    /// Tells that a step that isn't the project's own has changed the drawings of @p frame.
    void NoteDrawings(AnnotationStore* annotations, int frame);
    /// Tells that a step that isn't the project's own has changed the timeline's bookmarks.
    void NoteBookmarks(const QUuid& timelineID);
    /// Tells that the timeline @p id shows in viewer @p viewer, or in none (-1): ObjectChanged() follows.
    void NoteViewer(const QUuid& id, int viewer);
    /// Tells that the medium of the source @p id was found to be @p info; what hangs on it follows. No step
    /// of the undo stack.
    void NoteMedium(const QUuid& id, const MediaInfo& info);
    /// Tells that the medium of the source @p id can't be read: it shows as missing. No step of the undo
    /// stack.
    void NoteMissing(const QUuid& id);

Q_SIGNALS:
    /// Everything is another: the views set the root anew.
    void Reset();
    /// An object is there, at its place, with all that is below it.
    void ObjectAdded(const QUuid& id);
    /// An object has gone from @p parentID, with all that was below it.
    void ObjectRemoved(const QUuid& id, const QUuid& parentID);
    void ObjectRenamed(const QUuid& id);
    void ObjectMoved(const QUuid& id);
    /// How the object shows has changed: missing or not, default, viewer.
    void ObjectChanged(const QUuid& id);
    /// The timeline's elements, their order or their lengths have changed, or the medium of a source.
    void TimelineChanged(const QUuid& id);
    /// The timeline's range, pan and zoom or use of source ranges has changed.
    void PropertiesChanged(const QUuid& id);
    void BookmarksChanged(const QUuid& id);
    void DrawingsChanged(const QUuid& id, int frame);
    /// Another timeline is the default one, or none.
    void DefaultChanged();
    /// The source timeline @p id has another medium, or its medium was read anew.
    void SourceChanged(const QUuid& id);
    void SettingsChanged();
    /// A step is about to be made, or another content taken over: the time to end what is in progress, such
    /// as a stroke. Undo and redo don't tell it; who calls them ends it before.
    void AboutToChange();
    /// A step, with all that it changed, is done: the time to rebuild a view.
    void Changed();
    void ModifiedChanged(bool modified);
    /// The file has another name, or none.
    void TitleChanged();
    /// What was asked for was left undone; @p reason is for the user.
    void Refused(const QString& reason);
    /// A part of a step, as it is applied, undone or redone. The journal keeps these.
    void ChangeApplied(const ProjectChange& change);
    /// The file was written, or another content taken over: the journal begins anew.
    void BaseChanged();

private Q_SLOTS:
    void OnCleanChanged(bool clean);

private:
    friend class ProjectCommand;
    friend class RunningImport;

    using Changes = QVector<ProjectChange>;
    using Followers = QList<std::shared_ptr<ProjectTimeline>>;

    /// How a step behaves on the undo stack.
    struct Step
    {
        QString text;
        /// Steps of one key that follow each other within a moment are one; empty for one of its own.
        QString mergeKey;
        bool forViewing = false;
    };

    // What changes is done by steps, these by changes.
    bool Push(const Step& step, const Changes& changes);
    void Apply(const Changes& changes);
    void ApplyOne(const ProjectChange& change);
    void ApplyState(const ProjectChange& change);
    /// Adds to @p changes what @p mutate changes of @p timelines, and of the media in @p changes; all of it
    /// is as before after that.
    void AppendStates(Changes& changes, const Followers& timelines, const std::function<void()>& mutate);
    /// The timelines with elements of any of @p sources.
    Followers FollowersOf(const QSet<const ProjectTimeline*>& sources) const;

    void TakeOver(ProjectContent content, const QString& path);
    bool Refuse(const QString& reason);
    QString FreeName(const QString& name) const;
    std::shared_ptr<FolderObject> ParentFor(const QUuid& parentID, int type, bool ofSource, int* index) const;
    bool IsFixed(const std::shared_ptr<ProjectObject>& object) const;
    bool IsWithin(const QUuid& id, const QUuid& ancestorID) const;
    ProjectChange InsertOf(const std::shared_ptr<ProjectObject>& object, const QUuid& parentID,
                           int index) const;
    std::shared_ptr<MediaTimeline> RemovedSource(const QUuid& id) const;
    bool AppendMoves(Changes& changes, const QList<QUuid>& ids, const QUuid& parentID, int index);
    bool ChangeState(const QUuid& timelineID, const Step& step,
                     const std::function<bool(ProjectTimeline&)>& mutate);
    bool ChangeElements(const QUuid& timelineID, const QString& text,
                        std::vector<std::shared_ptr<ElementObject>> elements);
    void ReadMedium(const QUuid& id, const QString& path, const QString& text);
    void SetMedium(const std::shared_ptr<MediaTimeline>& timeline, const MediaInfo& info, bool missing,
                   const QString& text);
    /// Adds to @p changes what gives every image sequence the frame rate @p rate.
    void AppendRetimes(Changes& changes, const FrameRate& rate);
    void SwapMedium(const QUuid& id, const MediaInfo& info, bool missing);
    /// Makes the step of an import that has read its media.
    void FinishImport(RunningImport& running);

    ProjectContent mContent;
    QString mPath;
    QUndoStack mUndoStack;
    MediumReads* mReads;
    /// Taken over from a journal, and not saved since.
    bool mRecovered = false;
};
