// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "scripting/ScriptHost.h"

#include <algorithm>
#include <vector>

namespace py = pybind11;

namespace
{

using ScriptModule::ObjectHandle;
using ScriptModule::OnGui;
using ScriptModule::Words;

using Handle = std::optional<ObjectHandle>;

/// A bookmark as a script sees it: of one frame, where both are the same, or of a range.
struct BookmarkInfo
{
    int first = 1;
    int last = 1;
    bool isRange = false;
    bool annotated = false;
    QString note;
};

std::vector<BookmarkInfo> ListBookmarks(const Handle& handle)
{
    return OnGui(
        [handle](ScriptHost& host)
        {
            const auto timeline = ScriptModule::TimelineFor(host, handle);
            std::vector<BookmarkInfo> infos;
            for (const TimeBookmark& bookmark : timeline->GetBookmarks()->GetTimeBookmarks())
            {
                const int frame = timeline->TimeToFrame(bookmark.time);
                infos.push_back({frame, frame, false, !bookmark.drawings.isEmpty(), bookmark.note});
            }
            for (const RangeBookmark& bookmark : timeline->GetBookmarks()->GetRangeBookmarks())
                infos.push_back({timeline->TimeToFrame(bookmark.startTime),
                                 timeline->TimeToFrame(bookmark.endTime), true, false, bookmark.note});
            std::stable_sort(infos.begin(), infos.end(),
                             [](const BookmarkInfo& left, const BookmarkInfo& right)
                             { return left.first < right.first; });
            return infos;
        });
}

/// The bookmark of a range with these ends. Throws where the timeline has no such frames.
RangeBookmark RangeOf(ScriptHost& host, ProjectTimeline& timeline, int first, int last, const QString& note)
{
    ScriptModule::FrameFor(host, timeline, first);
    ScriptModule::FrameFor(host, timeline, last);
    if (first > last)
        throw std::invalid_argument(Words(
            QStringLiteral("the bookmark would end at %1, before it starts at %2").arg(last).arg(first)));
    RangeBookmark range(timeline.FrameToTime(first), timeline.FrameToTime(last));
    range.note = note;
    return range;
}

bool HasRange(ProjectTimeline& timeline, const RangeBookmark& range)
{
    const QList<RangeBookmark>& ranges = timeline.GetBookmarks()->GetRangeBookmarks();
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](const RangeBookmark& each)
                       { return each.startTime == range.startTime && each.endTime == range.endTime; });
}

void AddBookmark(std::optional<int> first, std::optional<int> last, const QString& note, const Handle& handle)
{
    if (last && !first)
        throw py::type_error("add_bookmark() takes a last frame only with a first one");
    if (!last && !note.isEmpty())
        throw std::invalid_argument("only the bookmark of a range takes a note");
    OnGui(
        [=](ScriptHost& host)
        {
            const auto timeline = ScriptModule::TimelineFor(host, handle);
            if (last)
            {
                const RangeBookmark range = RangeOf(host, *timeline, *first, *last, note);
                if (!HasRange(*timeline, range))
                    host.MarkRange(timeline, range, true);
                return;
            }
            const int frame = ScriptModule::FrameFor(host, *timeline, first);
            if (!timeline->MarkedFrames().contains(frame))
                host.MarkFrame(timeline, frame, true);
        });
}

bool RemoveBookmark(std::optional<int> first, std::optional<int> last, const Handle& handle)
{
    if (last && !first)
        throw py::type_error("remove_bookmark() takes a last frame only with a first one");
    return OnGui(
        [=](ScriptHost& host)
        {
            const auto timeline = ScriptModule::TimelineFor(host, handle);
            if (last)
            {
                const RangeBookmark range = RangeOf(host, *timeline, *first, *last, {});
                if (!HasRange(*timeline, range))
                    return false;
                host.MarkRange(timeline, range, false);
                return true;
            }
            const int frame = ScriptModule::FrameFor(host, *timeline, first);
            if (!timeline->MarkedFrames().contains(frame))
                return false;
            host.MarkFrame(timeline, frame, false);
            return true;
        });
}

} // namespace

void ScriptModule::AddBookmarks(py::module_& module)
{
    py::class_<BookmarkInfo>(module, "Bookmark", "A bookmark of a timeline.")
        .def_readonly("first", &BookmarkInfo::first, "Its frame, or the first one of its range.")
        .def_readonly("last", &BookmarkInfo::last, "Its frame, or the last one of its range.")
        .def_readonly("is_range", &BookmarkInfo::isRange, "Whether it is the bookmark of a range.")
        .def_readonly("annotated", &BookmarkInfo::annotated, "Whether its frame has drawings.")
        .def_readonly("note", &BookmarkInfo::note, "What is noted with it.")
        .def("__repr__",
             [](const BookmarkInfo& info)
             {
                 return info.isRange
                            ? QStringLiteral("<torvalen.Bookmark %1 to %2>").arg(info.first).arg(info.last)
                            : QStringLiteral("<torvalen.Bookmark %1>").arg(info.first);
             });
    module.def(
        "bookmarks", &ListBookmarks, py::arg("timeline") = py::none(),
        "The bookmarks of a timeline, of the one that leads unless told, in the order of their frames. A "
        "frame with drawings has one of itself.");
    module.def("add_bookmark", &AddBookmark, py::arg("first") = py::none(), py::arg("last") = py::none(),
               py::kw_only(), py::arg("note") = QString(), py::arg("timeline") = py::none(),
               "Bookmarks a frame, the one under the playhead unless told: add_bookmark(12); or a range: "
               "add_bookmark(10, 20, note=\"retake\"). A step that can be undone; one that is there already "
               "stays as it is.");
    module.def(
        "remove_bookmark", &RemoveBookmark, py::arg("first") = py::none(), py::arg("last") = py::none(),
        py::kw_only(), py::arg("timeline") = py::none(),
        "Takes the bookmark of a frame, or of the range from first to last, away; the one that drawings "
        "make stays with them. Returns whether there was one.");
}
