// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectImport.h"
#include "scripting/ScriptHost.h"

#include <QFileInfo>
#include <QPointer>

#include <vector>

namespace py = pybind11;

namespace
{

using ScriptModule::ObjectHandle;
using ScriptModule::OnGui;
using ScriptModule::TimelineHandle;
using ScriptModule::Words;

/// The pause between two looks whether an import is done, in seconds.
constexpr double ImportInterval = 0.01;

/// An object, and whether it is a timeline: what its Python class goes by.
using FoundObject = std::pair<QUuid, bool>;

py::object ToPython(const FoundObject& found)
{
    return found.second ? py::cast(TimelineHandle{{found.first}}) : py::cast(ObjectHandle{found.first});
}

py::list ToPython(const std::vector<FoundObject>& found)
{
    py::list list;
    for (const FoundObject& each : found)
        list.append(ToPython(each));
    return list;
}

FoundObject FoundOf(ProjectObject& object)
{
    return {object.GetID(), object.GetType() == 1};
}

std::shared_ptr<ProjectObject> FindObject(ScriptHost& host, const QUuid& id)
{
    if (auto object = host.GetProject()->Find(id))
        return object;
    throw std::runtime_error(
        Words(QStringLiteral("there is no object %1 any more").arg(id.toString(QUuid::WithoutBraces))));
}

/// Makes a change of the project and throws if the project refuses it.
template<typename Change>
auto Changed(Project* project, Change change)
{
    QString reason;
    const auto connection = QObject::connect(project, &Project::Refused, project,
                                             [&reason](const QString& text) { reason = text; });
    const auto result = change();
    QObject::disconnect(connection);
    if (!reason.isEmpty())
        throw std::runtime_error(Words(reason));
    return result;
}

QUuid IdOf(const std::optional<ObjectHandle>& handle)
{
    return handle ? handle->id : QUuid();
}

QList<QUuid> IdsOf(const std::vector<ObjectHandle>& handles)
{
    QList<QUuid> ids;
    for (const ObjectHandle& handle : handles)
        ids << handle.id;
    return ids;
}

/// A property of an object, asked on the GUI thread.
template<typename Ask>
auto ObjectProperty(Ask ask)
{
    return [ask](const ObjectHandle& handle)
    { return OnGui([ask, id = handle.id](ScriptHost& host) { return ask(*FindObject(host, id)); }); };
}

QString KindOf(ProjectObject& object)
{
    if (object.GetType() == 0)
        return QStringLiteral("folder");
    if (object.GetType() == 2)
        return QStringLiteral("element");
    return object.IsSourceTimeline() ? QStringLiteral("source") : QStringLiteral("timeline");
}

py::object ParentOf(const ObjectHandle& handle)
{
    const auto parent = OnGui(
        [id = handle.id](ScriptHost& host) -> std::optional<FoundObject>
        {
            const auto found = host.GetProject()->Find(FindObject(host, id)->GetParentID());
            if (!found)
                return std::nullopt;
            return FoundOf(*found);
        });
    return parent ? ToPython(*parent) : py::none();
}

std::vector<FoundObject> ChildrenOf(ProjectObject& object)
{
    std::vector<FoundObject> children;
    for (const std::shared_ptr<ProjectObject>& child : object.GetChildren())
        children.push_back(FoundOf(*child));
    return children;
}

void Rename(const ObjectHandle& handle, const QString& name)
{
    OnGui(
        [id = handle.id, name](ScriptHost& host)
        {
            FindObject(host, id);
            Changed(host.GetProject(), [&] { return host.GetProject()->Rename(id, name); });
        });
}

bool Move(const std::vector<ObjectHandle>& handles, const ObjectHandle& parent, int index)
{
    return OnGui(
        [ids = IdsOf(handles), parent = parent.id, index](ScriptHost& host)
        {
            FindObject(host, parent);
            for (const QUuid& id : ids)
                FindObject(host, id);
            Project* const project = host.GetProject();
            return Changed(project, [&] { return project->Move(ids, parent, index); });
        });
}

bool Remove(const std::vector<ObjectHandle>& handles)
{
    return OnGui(
        [ids = IdsOf(handles)](ScriptHost& host)
        {
            for (const QUuid& id : ids)
                FindObject(host, id);
            Project* const project = host.GetProject();
            return Changed(project, [&] { return project->Remove(ids); });
        });
}

/// An import that a script waits for; its fields belong to the GUI thread.
struct ImportRun
{
    QPointer<ProjectImport> import;
    bool done = false;
    ProjectImport::Result result;
};

std::vector<TimelineHandle> Import(const QStringList& paths, const std::optional<ObjectHandle>& parent)
{
    QStringList absolute;
    for (const QString& path : paths)
        absolute << QFileInfo(path).absoluteFilePath();
    const auto run = OnGui(
        [absolute, parent](ScriptHost& host)
        {
            if (parent)
                FindObject(host, parent->id);
            const auto started = std::make_shared<ImportRun>();
            started->import = host.GetProject()->Import(absolute, IdOf(parent));
            QObject::connect(started->import, &ProjectImport::Finished, host.GetProject(),
                             [started](const ProjectImport::Result& result)
                             {
                                 started->result = result;
                                 started->done = true;
                             });
            return started;
        });
    try
    {
        while (!OnGui([run](ScriptHost&) { return run->done; }))
            ScriptModule::Wait(ImportInterval);
    }
    catch (const py::error_already_set&)
    {
        if (const auto channel = ScriptModule::CurrentChannel())
        {
            const py::gil_scoped_release release;
            channel->Post(
                [run]
                {
                    if (run->import)
                        run->import->Cancel();
                });
        }
        throw;
    }
    const auto result = OnGui([run](ScriptHost&) { return run->result; });
    if (!result.errors.isEmpty())
        throw std::runtime_error(Words(result.errors.join(QLatin1Char('\n'))));
    std::vector<TimelineHandle> handles;
    for (const QUuid& id : result.sources)
        handles.push_back({{id}});
    return handles;
}

std::vector<ObjectHandle> InsertElements(const TimelineHandle& timeline,
                                         const std::vector<TimelineHandle>& sources, int index)
{
    std::vector<ObjectHandle> handles(sources.begin(), sources.end());
    const QList<QUuid> ids = IdsOf(handles);
    const auto inserted = OnGui(
        [id = timeline.id, ids, index](ScriptHost& host)
        {
            Project* const project = host.GetProject();
            if (!project->FindElementTimeline(id))
                throw std::invalid_argument(
                    Words(QStringLiteral("%1 takes no elements").arg(FindObject(host, id)->GetName())));
            QList<int> indices;
            for (const QUuid& source : ids)
            {
                if (!project->FindSource(source))
                    throw std::invalid_argument(Words(QStringLiteral("%1 is no source's timeline")
                                                          .arg(FindObject(host, source)->GetName())));
                // Each in front of the row that the one before pushed on.
                indices << (index < 0 ? -1 : index + indices.size());
            }
            return Changed(project, [&] { return project->InsertElements(id, ids, indices); });
        });
    std::vector<ObjectHandle> elements;
    for (const QUuid& id : inserted)
        elements.push_back({id});
    return elements;
}

std::optional<TimelineHandle> SourceOf(const ObjectHandle& handle)
{
    return OnGui(
        [id = handle.id](ScriptHost& host) -> std::optional<TimelineHandle>
        {
            const auto element = std::dynamic_pointer_cast<ElementObject>(FindObject(host, id));
            if (!element)
                return std::nullopt;
            return TimelineHandle{{element->SourceTimeline()->GetID()}};
        });
}

std::optional<TimelineHandle> DefaultTimeline(const std::optional<TimelineHandle>& wanted)
{
    return OnGui(
        [wanted](ScriptHost& host) -> std::optional<TimelineHandle>
        {
            Project* const project = host.GetProject();
            if (wanted && !project->FindElementTimeline(wanted->id))
                throw std::invalid_argument(Words(QStringLiteral("%1 can't be the default timeline")
                                                      .arg(FindObject(host, wanted->id)->GetName())));
            const auto current = project->DefaultTimeline();
            if (wanted && (!current || current->GetID() != wanted->id))
                Changed(project, [&] { return project->ToggleDefault(wanted->id); });
            const auto now = project->DefaultTimeline();
            if (!now)
                return std::nullopt;
            return TimelineHandle{{now->GetID()}};
        });
}

void OpenProject(const QString& path)
{
    OnGui(
        [path = QFileInfo(path).absoluteFilePath()](ScriptHost& host)
        {
            QString error;
            if (!host.GetProject()->Open(path, &error))
                throw std::runtime_error(Words(error));
        });
}

void SaveProject(const std::optional<QString>& path)
{
    OnGui(
        [path](ScriptHost& host)
        {
            Project* const project = host.GetProject();
            const QString target = path ? QFileInfo(*path).absoluteFilePath() : project->FilePath();
            if (target.isEmpty())
                throw std::invalid_argument("the project has no file yet: say which");
            QString error;
            if (!project->Save(target, &error))
                throw std::runtime_error(Words(error));
        });
}

/// Adds what makes and finds objects.
void AddFunctions(py::module_& module)
{
    module.def(
        "project_root",
        []
        { return ObjectHandle{OnGui([](ScriptHost& host) { return host.GetProject()->Root()->GetID(); })}; },
        "The root folder of the project; its children are the bins of folders, sources and timelines.");
    module.def(
        "find_object",
        [](const QString& id) -> py::object
        {
            const auto found = OnGui(
                [id = QUuid(id)](ScriptHost& host) -> std::optional<FoundObject>
                {
                    const auto object = host.GetProject()->Find(id);
                    if (!object)
                        return std::nullopt;
                    return FoundOf(*object);
                });
            return found ? ToPython(*found) : py::none();
        },
        py::arg("id"), "The object with an id; None if there is none.");
    module.def(
        "add_folder",
        [](const QString& name, const std::optional<ObjectHandle>& parent, int index)
        {
            return ObjectHandle{OnGui(
                [=](ScriptHost& host)
                {
                    Project* const project = host.GetProject();
                    return Changed(project, [&] { return project->AddFolder(IdOf(parent), index, name); });
                })};
        },
        py::arg("name") = QString(), py::arg("parent") = py::none(), py::arg("index") = -1,
        "Adds a folder to a folder, at index (-1 is the end), and returns it; without a parent, or in one "
        "that "
        "takes no folders, it goes to the bin.");
    module.def(
        "add_timeline",
        [](const QString& name, const std::optional<ObjectHandle>& parent, int index)
        {
            return TimelineHandle{{OnGui(
                [=](ScriptHost& host)
                {
                    Project* const project = host.GetProject();
                    return Changed(project, [&] { return project->AddTimeline(IdOf(parent), index, name); });
                })}};
        },
        py::arg("name") = QString(), py::arg("parent") = py::none(), py::arg("index") = -1,
        "Adds a timeline without elements, as add_folder() adds a folder.");
    module.def("import_media", &Import, py::arg("paths"), py::arg("parent") = py::none(),
               "Imports movies, image sequences and folders of them into a folder, or as elements of a "
               "timeline, and returns the timelines of the sources. One step; a medium that can't be read "
               "raises RuntimeError after the others are in.");
    module.def(
        "insert_elements", &InsertElements, py::arg("timeline"), py::arg("sources"), py::arg("index") = -1,
        "Inserts an element of each source into a timeline, in front of the row at index (-1 is the end), "
        "and returns them.");
    module.def(
        "move_objects", &Move, py::arg("objects"), py::arg("parent"), py::arg("index") = -1,
        "Moves folders, timelines and sources under a folder, in one step. Returns whether that changed "
        "anything.");
    module.def(
        "remove_objects", &Remove, py::arg("objects"),
        "Removes objects with all that is in them, in one step. Returns whether that changed anything.");
    module.def(
        "sort_elements",
        [](const TimelineHandle& timeline, bool ascending)
        {
            return OnGui(
                [id = timeline.id, ascending](ScriptHost& host)
                {
                    FindObject(host, id);
                    Project* const project = host.GetProject();
                    return Changed(project, [&] { return project->SortElements(id, ascending); });
                });
        },
        py::arg("timeline"), py::arg("ascending") = true,
        "Sorts the elements of a timeline by name. Returns whether that changed anything.");
    module.def("default_timeline", &DefaultTimeline, py::arg("timeline") = py::none(),
               "The project's default timeline, None if there is none; default_timeline(timeline) sets it "
               "first.");
}

/// Adds what deals with the project's file.
void AddFileFunctions(py::module_& module)
{
    module.def(
        "project_path",
        []
        {
            return OnGui(
                [](ScriptHost& host) -> std::optional<QString>
                {
                    if (host.GetProject()->FilePath().isEmpty())
                        return std::nullopt;
                    return host.GetProject()->FilePath();
                });
        },
        "Path of the project's file; None while it has none.");
    module.def(
        "new_project", [] { OnGui([](ScriptHost& host) { host.GetProject()->New(); }); },
        "Drops the project, without a question, and begins an untitled one.");
    module.def("open_project", &OpenProject, py::arg("path"),
               "Drops the project, without a question, and opens a project file; if that can't be read, the "
               "project stays.");
    module.def("save_project", &SaveProject, py::arg("path") = py::none(),
               "Saves the project in its file, or in the one at path, which becomes its file.");
}

} // namespace

void ScriptModule::AddProject(py::module_& module)
{
    py::class_<ObjectHandle>(
        module, "Object",
        "An object of the project: a folder, a timeline, the timeline of a source, or an "
        "element of a timeline. It may have gone since: then each use raises RuntimeError.")
        .def_property_readonly(
            "id", [](const ObjectHandle& handle) { return handle.id.toString(QUuid::WithoutBraces); },
            "Its identity, which stays when it is renamed or moved.")
        .def_property_readonly("kind", ObjectProperty([](ProjectObject& object) { return KindOf(object); }),
                               "\"folder\", \"timeline\", \"source\" or \"element\".")
        .def_property("name", ObjectProperty([](ProjectObject& object) { return object.GetName(); }), &Rename,
                      "Its name; another one is a step that can be undone.")
        .def_property_readonly("parent", &ParentOf,
                               "The folder or timeline that it is in; None for the root.")
        .def_property_readonly(
            "children",
            [](const ObjectHandle& handle) {
                return ToPython(
                    OnGui([id = handle.id](ScriptHost& host) { return ChildrenOf(*FindObject(host, id)); }));
            },
            "What is in it, in order: of a timeline its elements.")
        .def_property_readonly("missing",
                               ObjectProperty([](ProjectObject& object) { return object.IsMissing(); }),
                               "Whether the media behind it can't be read.")
        .def_property_readonly("source", &SourceOf, "The timeline that an element plays; None for others.")
        .def(
            "move",
            [](const ObjectHandle& handle, const ObjectHandle& parent, int index)
            { return Move({handle}, parent, index); },
            py::arg("parent"), py::arg("index") = -1, "Moves it under a folder, as move_objects().")
        .def(
            "remove", [](const ObjectHandle& handle) { return Remove({handle}); },
            "Removes it with all that is in it, as remove_objects().")
        .def("__eq__",
             [](const ObjectHandle& left, const ObjectHandle& right) { return left.id == right.id; })
        .def("__eq__", [](const ObjectHandle&, const py::object&) { return false; })
        .def("__hash__",
             [](const ObjectHandle& handle) { return static_cast<py::ssize_t>(qHash(handle.id)); })
        .def("__repr__",
             [](const ObjectHandle& handle)
             {
                 return OnGui(
                     [id = handle.id](ScriptHost& host)
                     {
                         const auto object = host.GetProject()->Find(id);
                         if (!object)
                             return QStringLiteral("<torvalen.Object that has gone>");
                         return QStringLiteral("<torvalen.%1 %2: %3>")
                             .arg(object->GetType() == 1 ? QStringLiteral("Timeline")
                                                         : QStringLiteral("Object"),
                                  KindOf(*object), object->GetName());
                     });
             });
    AddFunctions(module);
    AddFileFunctions(module);
}
