// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "host/Source.h"
#include "host/Timeline.h"
#include "views/ProjectView.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

/// The host's objects: a folder, a timeline or an element is a name, a type and children here.
template<typename Base>
class NamedObject : public Base
{
public:
    NamedObject(const QUuid& parentID, const QString& objectName)
        : Base(QUuid::createUuid(), parentID), name(objectName)
    {
    }

    const QString& GetName() override { return name; }
    QList<std::shared_ptr<ProjectObject>> GetChildren() override { return children; }

    QString name;
    QList<std::shared_ptr<ProjectObject>> children;
};

using Folder = NamedObject<ProjectObject>;

class Clip : public NamedObject<Timeline>
{
public:
    Clip(const QUuid& parentID, const QString& path)
        : NamedObject(parentID, QFileInfo(path).fileName())
        , mSource(std::make_shared<Source>(QUuid::createUuid(), path))
    {
    }

    bool IsSourceTimeline() override { return true; }
    bool IsMissing() override { return !QFileInfo::exists(mSource->GetPath()); }
    int GetViewerIndex() override { return viewerIndex; }
    std::weak_ptr<Source> GetSource() override { return mSource; }

    int viewerIndex = -1;

private:
    std::shared_ptr<Source> mSource;
};

/// The host's side of the project view: it owns the objects, and does what the view asks for.
class Project
{
public:
    explicit Project(ProjectView* view) : mView(view), mRoot(std::make_shared<Folder>(QUuid(), QString()))
    {
        mView->SetRoot(mRoot);
    }

    std::shared_ptr<Folder> FolderWith(const QUuid& id) const
    {
        for (const auto& child : mRoot->children)
        {
            if (child->GetID() == id && child->GetType() == 0)
                return std::static_pointer_cast<Folder>(child);
        }
        return mRoot;
    }

    void AddFolder()
    {
        const auto folder = std::make_shared<Folder>(mRoot->GetID(), QStringLiteral("New Folder"));
        folder->SetExpanded(true);
        mRoot->children << folder;
        mView->Add(folder);
    }

    void AddFiles(const QList<QString>& paths, const QUuid& parentID)
    {
        const auto parent = FolderWith(parentID);
        for (const QString& path : paths)
            parent->children << std::make_shared<Clip>(parent->GetID(), path);
        mView->Update();
    }

    void Rename(const QUuid& id, const QString& name)
    {
        for (const auto& child : mRoot->children)
        {
            if (child->GetID() == id && child->GetType() == 0)
                std::static_pointer_cast<Folder>(child)->name = name;
        }
        // A clip bears its file's name.
        mView->RefreshName(id);
    }

    void RemoveSelected()
    {
        const QList<QUuid> ids = mView->GetSelectedItems();
        for (const QUuid& id : ids)
        {
            Take(id);
            mView->Remove(id);
        }
    }

    void Move(const QUuid& id, const QUuid& parentID, int index)
    {
        const auto parent = FolderWith(parentID);
        // These folders hold clips alone, so none can come below itself.
        if (FolderWith(id) != mRoot && parent != mRoot)
            return;
        const std::shared_ptr<ProjectObject> object = Take(id);
        if (!object)
            return;
        const int count = parent->children.size();
        object->SetParentID(parent->GetID());
        parent->children.insert(index < 0 ? count : std::min(index, count), object);
        mView->Update();
    }

    void Show(const std::shared_ptr<Timeline>& timeline, int viewer)
    {
        ForEachClip(
            [&](Clip& clip)
            {
                if (clip.viewerIndex == viewer)
                    clip.viewerIndex = -1;
                if (&clip == timeline.get())
                    clip.viewerIndex = viewer;
            });
        mView->Update();
    }

private:
    template<typename Function>
    void ForEachClip(const Function& function)
    {
        QList<std::shared_ptr<ProjectObject>> objects = mRoot->children;
        while (!objects.isEmpty())
        {
            const auto object = objects.takeFirst();
            objects << object->GetChildren();
            if (auto* const clip = dynamic_cast<Clip*>(object.get()))
                function(*clip);
        }
    }

    std::shared_ptr<ProjectObject> Take(const QUuid& id)
    {
        QList<std::shared_ptr<Folder>> folders = {mRoot};
        while (!folders.isEmpty())
        {
            const auto folder = folders.takeFirst();
            for (int index = 0; index < folder->children.size(); ++index)
            {
                const auto child = folder->children[index];
                if (child->GetID() == id)
                    return folder->children.takeAt(index);
                if (child->GetType() == 0)
                    folders << std::static_pointer_cast<Folder>(child);
            }
        }
        return nullptr;
    }

    ProjectView* mView;
    std::shared_ptr<Folder> mRoot;
};

} // namespace

/// A host of a project: lists the files of the folder named on the command line, lets them be moved, renamed,
/// removed, dropped in from outside and shown in a viewer, and keeps no more than that in mind.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // Widgets read settings while they are built.
    Settings::ReadUserConfig();

    ProjectView view;
    Project project(&view);
    const QDir folder(QApplication::arguments().value(1, QStringLiteral(".")));
    QList<QString> paths;
    for (const QFileInfo& file : folder.entryInfoList(QDir::Files, QDir::Name))
        paths << file.absoluteFilePath();
    project.AddFolder();
    project.AddFiles(paths, QUuid());

    // The view asks; no row changes until the host has answered.
    QObject::connect(&view, &ProjectView::NewFolderRequested, [&project] { project.AddFolder(); });
    QObject::connect(&view, &ProjectView::RemoveRequested, [&project] { project.RemoveSelected(); });
    QObject::connect(&view, &ProjectView::Renamed,
                     [&project](const QUuid& id, const QString& name) { project.Rename(id, name); });
    QObject::connect(&view, &ProjectView::InsertSourcesInFolderRequested,
                     [&project](const QList<QString>& dropped, const QUuid& parentID)
                     { project.AddFiles(dropped, parentID); });
    QObject::connect(&view, &ProjectView::ProjectObjectMoved,
                     [&project](const QUuid& id, const QUuid& parentID, int index)
                     { project.Move(id, parentID, index); });
    QObject::connect(&view, &ProjectView::ViewerChangeRequested,
                     [&project](const std::weak_ptr<Timeline>& timeline, int viewer)
                     { project.Show(timeline.lock(), viewer); });
    view.resize(320, 480);
    view.show();
    return QApplication::exec();
}
