// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "playback/PlaybackController.h"
#include "project/MediaSource.h"
#include "project/Project.h"
#include "project/ProjectTimeline.h"
#include "scripting/ScriptHost.h"

#include <vector>

namespace py = pybind11;

namespace
{

using ScriptModule::ObjectHandle;
using ScriptModule::OnGui;
using ScriptModule::Words;

/// The pause between two looks whether a medium is open, in seconds.
constexpr double OpenInterval = 0.005;

std::shared_ptr<ProjectTimeline> FindTimeline(ScriptHost& host, const QUuid& id)
{
    if (auto timeline = host.GetProject()->FindTimeline(id))
        return timeline;
    throw std::runtime_error(
        Words(QStringLiteral("there is no timeline %1 any more").arg(id.toString(QUuid::WithoutBraces))));
}

/// A property of a timeline, asked on the GUI thread.
template<typename Ask>
auto Property(Ask ask)
{
    return [ask](const ObjectHandle& handle)
    { return OnGui([ask, id = handle.id](ScriptHost& host) { return ask(*FindTimeline(host, id)); }); };
}

ObjectHandle Open(const QString& path, const std::optional<QString>& viewer, bool wait)
{
    const int index = viewer ? ScriptModule::ViewerNumber(*viewer) : -1;
    const auto opening = OnGui([path, index](ScriptHost& host) { return host.Open(path, index); });
    const auto isDone = [opening](ScriptHost&) { return opening->done; };
    while (!OnGui(isDone))
        ScriptModule::Wait(OpenInterval);
    const auto result = OnGui([opening](ScriptHost&) { return *opening; });
    if (result.timeline.isNull())
        throw std::runtime_error(Words(result.error));
    if (wait && index >= 0)
        py::module_::import("torvalen").attr("wait_until_settled")();
    return {result.timeline};
}

std::optional<ObjectHandle> ViewerTimeline(const std::optional<QString>& viewer)
{
    const int index = viewer ? ScriptModule::ViewerNumber(*viewer) : -1;
    return OnGui(
        [index](ScriptHost& host) -> std::optional<ObjectHandle>
        {
            const auto& timeline =
                index < 0 ? host.Playback()->LeadingTimeline() : host.Playback()->TimelineOf(index);
            if (!timeline)
                return std::nullopt;
            return ObjectHandle{timeline->GetID()};
        });
}

std::vector<ObjectHandle> ListTimelines()
{
    return OnGui(
        [](ScriptHost& host)
        {
            std::vector<ObjectHandle> handles;
            for (const bool ofSources : {false, true})
            {
                for (const std::shared_ptr<ProjectTimeline>& timeline :
                     host.GetProject()->Timelines(ofSources))
                    handles.push_back({timeline->GetID()});
            }
            return handles;
        });
}

void Show(const ObjectHandle& handle, const QString& viewer)
{
    OnGui([id = handle.id, index = ScriptModule::ViewerNumber(viewer)](ScriptHost& host)
          { host.ShowTimeline(FindTimeline(host, id), index); });
}

} // namespace

std::shared_ptr<ProjectTimeline> ScriptModule::TimelineFor(ScriptHost& host,
                                                           const std::optional<ObjectHandle>& handle)
{
    if (handle)
        return FindTimeline(host, handle->id);
    const auto& timeline = host.Playback()->LeadingTimeline();
    if (!timeline)
        throw std::runtime_error("no viewer shows anything: open a medium first");
    return timeline;
}

int ScriptModule::FrameFor(ScriptHost& host, ProjectTimeline& timeline, std::optional<int> frame)
{
    int wanted = 1;
    if (frame)
        wanted = *frame;
    else if (&timeline == host.Playback()->LeadingTimeline().get())
        wanted = host.Playback()->CurrentFrame();
    else if (timeline.GetViewerIndex() >= 0)
        wanted = host.Playback()->WantedFrame(timeline.GetViewerIndex());
    else
        throw std::invalid_argument(
            Words(QStringLiteral("no viewer shows %1: say which frame of it").arg(timeline.GetName())));
    if (wanted < 1 || wanted > timeline.FrameCount())
        throw std::invalid_argument(Words(QStringLiteral("there is no frame %1; %2 has frames 1 to %3")
                                              .arg(wanted)
                                              .arg(timeline.GetName())
                                              .arg(timeline.FrameCount())));
    return wanted;
}

void ScriptModule::AddTimelines(py::module_& module)
{
    py::class_<ObjectHandle>(module, "Timeline",
                             "A timeline of the player. It may have gone since: then each "
                             "use raises RuntimeError.")
        .def_property_readonly(
            "id", [](const ObjectHandle& handle) { return handle.id.toString(QUuid::WithoutBraces); },
            "Its identity, which stays when it is renamed or moved.")
        .def_property_readonly("name", Property([](ProjectTimeline& timeline) { return timeline.GetName(); }),
                               "Its name.")
        .def_property_readonly("frames",
                               Property([](ProjectTimeline& timeline) { return timeline.FrameCount(); }),
                               "Number of its frames.")
        .def_property_readonly(
            "rate", Property([](ProjectTimeline& timeline) { return timeline.Rate().PerSecond(); }),
            "Its frames per second.")
        .def_property_readonly("path",
                               Property(
                                   [](ProjectTimeline& timeline) -> std::optional<QString>
                                   {
                                       const std::shared_ptr<Source> source = timeline.GetSource().lock();
                                       if (!source)
                                           return std::nullopt;
                                       return source->GetPath();
                                   }),
                               "Path of its medium; None if it is no source's timeline.")
        .def_property_readonly("viewer",
                               Property(
                                   [](ProjectTimeline& timeline) -> std::optional<QString>
                                   {
                                       if (timeline.GetViewerIndex() < 0)
                                           return std::nullopt;
                                       return ScriptModule::ViewerName(timeline.GetViewerIndex());
                                   }),
                               "The viewer that shows it, \"A\" or \"B\"; None if none does.")
        .def(
            "frame_time",
            [](const ObjectHandle& handle, int frame)
            {
                return OnGui(
                    [id = handle.id, frame](ScriptHost& host)
                    {
                        const auto timeline = FindTimeline(host, id);
                        return timeline->FrameToTime(FrameFor(host, *timeline, frame));
                    });
            },
            py::arg("frame"), "The time of the start of a frame, in microseconds.")
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
                         const auto timeline = host.GetProject()->FindTimeline(id);
                         return timeline ? QStringLiteral("<torvalen.Timeline %1>").arg(timeline->GetName())
                                         : QStringLiteral("<torvalen.Timeline that has gone>");
                     });
             });
    module.def("timelines", &ListTimelines,
               "Every timeline of the project: those of elements, then those of sources.");
    module.def(
        "timeline", &ViewerTimeline, py::arg("viewer") = py::none(),
        "The timeline that leads, or the one that viewer \"A\" or \"B\" shows; None if there is none.");
    module.def(
        "open", &Open, py::arg("path"), py::arg("viewer") = QStringLiteral("A"), py::arg("wait") = true,
        "Opens the movie, or the image sequence of the file, at path and returns its timeline; viewer "
        "None shows it nowhere. With wait the first picture is on screen when it returns. A medium that "
        "can't be opened raises RuntimeError.");
    module.def("show", &Show, py::arg("timeline"), py::arg("viewer") = QStringLiteral("A"),
               "Shows a timeline in a viewer.");
}
