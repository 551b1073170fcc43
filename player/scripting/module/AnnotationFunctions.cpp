// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "annotation/StrokeController.h"
#include "host/Settings.h"
#include "project/ProjectTimeline.h"
#include "scripting/ScriptHost.h"

#include <QColor>
#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace
{

using ScriptModule::ObjectHandle;
using ScriptModule::OnGui;
using ScriptModule::Words;

using Handle = std::optional<ObjectHandle>;
using Point = std::pair<double, double>;
using Points = std::vector<Point>;

/// More than a hand draws in a day.
constexpr size_t MostPoints = 1000000;
/// Far outside of every picture, and far inside of what painting can take.
constexpr double FarthestPoint = 1000.0;
/// How far a single point is drawn, in draw space: a drawing of one point paints nothing.
constexpr double ScriptDotLength = 1e-4;

struct DrawingKind
{
    const char* name;
    DrawType type;
};

constexpr DrawingKind DrawingKinds[] = {
    {"pencil", DrawPencil}, {"eraser", DrawEraser}, {"text", DrawText},          {"line", DrawLine},
    {"oval", DrawOval},     {"arrow", DrawArrow},   {"rectangle", DrawRectangle}};

QString KindName(DrawType type)
{
    for (const DrawingKind& kind : DrawingKinds)
    {
        if (kind.type == type)
            return QString::fromLatin1(kind.name);
    }
    return QStringLiteral("none");
}

/// A drawing as a script sees it.
struct DrawingInfo
{
    uint64_t id = 0;
    QString kind;
    Points points;
    QString color;
    float width = 0.0f;
    QString text;
};

DrawingInfo InfoOf(const DrawData& drawing)
{
    DrawingInfo info{
        drawing.id,  KindName(drawing.type), {}, drawing.color.name(QColor::HexArgb), drawing.width,
        drawing.text};
    for (const QPointF& point : drawing.points)
        info.points.emplace_back(point.x(), point.y());
    return info;
}

/// How a drawing is to look, as a script says it.
struct Look
{
    std::optional<QString> color;
    std::optional<float> width;
};

float ToolWidth(DrawType type)
{
    switch (type)
    {
    case DrawEraser:
        return Settings::eraserWidth;
    case DrawText:
        return Settings::textWidth;
    case DrawArrow:
        return Settings::arrowWidth;
    case DrawOval:
        return Settings::ovalWidth;
    case DrawRectangle:
        return Settings::rectangleWidth;
    default:
        return Settings::pencilWidth;
    }
}

void CheckPoints(const Points& points)
{
    if (points.empty())
        throw std::invalid_argument("a drawing needs a point");
    if (points.size() > MostPoints)
        throw std::invalid_argument(
            Words(QStringLiteral("%1 points are too many for a drawing").arg(points.size())));
    for (const auto& [x, y] : points)
    {
        if (!(std::abs(x) <= FarthestPoint && std::abs(y) <= FarthestPoint))
            throw std::invalid_argument(
                Words(QStringLiteral("the point (%1, %2) lies too far from the picture").arg(x).arg(y)));
    }
}

void CheckLook(const Look& look)
{
    if (look.color && !QColor::isValidColor(*look.color))
        throw std::invalid_argument(
            Words(QStringLiteral("\"%1\" is no colour; take a name, \"#RRGGBB\" or \"#AARRGGBB\"")
                      .arg(*look.color)));
    if (look.width && !(*look.width >= Settings::MINIMUM_DRAW_WIDTH && *look.width <= 1.0f))
        throw std::invalid_argument(Words(QStringLiteral("the width %1 lies outside %2 to 1")
                                              .arg(static_cast<double>(*look.width))
                                              .arg(static_cast<double>(Settings::MINIMUM_DRAW_WIDTH))));
}

uint64_t Draw(DrawType type, Points points, const Look& look, const QString& text, std::optional<int> frame,
              const Handle& handle)
{
    CheckPoints(points);
    CheckLook(look);
    if (points.size() == 1)
        points.emplace_back(points.front().first + (type == DrawText ? 0.0 : ScriptDotLength),
                            points.front().second);
    return OnGui(
        [=](ScriptHost& host)
        {
            const auto timeline = ScriptModule::TimelineFor(host, handle);
            const int target = ScriptModule::FrameFor(host, *timeline, frame);
            DrawData drawing;
            drawing.id = NextDrawingID();
            drawing.type = type;
            drawing.color = look.color ? QColor(*look.color) : Settings::drawColor;
            drawing.width = look.width ? *look.width : ToolWidth(type);
            drawing.text = text;
            for (const auto& [x, y] : points)
                drawing.points.append(QPointF(x, y));
            host.SetDrawings(timeline, target, timeline->Annotations()->Drawings(target) << drawing,
                             QCoreApplication::translate("AnnotationFunctions", "Draw by Script"));
            return drawing.id;
        });
}

std::vector<DrawingInfo> ListAnnotations(std::optional<int> frame, const Handle& handle)
{
    return OnGui(
        [=](ScriptHost& host)
        {
            const auto timeline = ScriptModule::TimelineFor(host, handle);
            std::vector<DrawingInfo> infos;
            for (const DrawData& drawing :
                 timeline->Annotations()->Drawings(ScriptModule::FrameFor(host, *timeline, frame)))
                infos.push_back(InfoOf(drawing));
            return infos;
        });
}

std::vector<int> ListAnnotatedFrames(const Handle& handle)
{
    return OnGui(
        [handle](ScriptHost& host)
        {
            const QVector<int> frames =
                ScriptModule::TimelineFor(host, handle)->Annotations()->AnnotatedFrames();
            return std::vector<int>(frames.begin(), frames.end());
        });
}

/// Takes the drawings of a frame away: the one with @p id, or all of them. Returns how many there were.
int RemoveAnnotations(std::optional<uint64_t> id, std::optional<int> frame, const Handle& handle)
{
    return OnGui(
        [=](ScriptHost& host)
        {
            const auto timeline = ScriptModule::TimelineFor(host, handle);
            const int target = ScriptModule::FrameFor(host, *timeline, frame);
            const QList<DrawData> before = timeline->Annotations()->Drawings(target);
            QList<DrawData> after;
            std::copy_if(before.begin(), before.end(), std::back_inserter(after),
                         [&](const DrawData& drawing) { return id && drawing.id != *id; });
            if (after.size() != before.size())
                host.SetDrawings(timeline, target, after,
                                 QCoreApplication::translate("AnnotationFunctions", "Remove by Script"));
            return before.size() - after.size();
        });
}

/// Adds a function that draws from one point to another.
void AddShape(py::module_& module, const char* name, DrawType type, const char* text)
{
    module.def(
        name,
        [type](const Point& start, const Point& end, const std::optional<QString>& color,
               std::optional<float> width, std::optional<int> frame, const Handle& handle) {
            return Draw(type, {start, end}, {color, width}, {}, frame, handle);
        },
        py::arg("start"), py::arg("end"), py::kw_only(), py::arg("color") = py::none(),
        py::arg("width") = py::none(), py::arg("frame") = py::none(), py::arg("timeline") = py::none(), text);
}

/// Adds a function that draws through points.
void AddStroke(py::module_& module, const char* name, DrawType type, const char* text)
{
    module.def(
        name,
        [type](const Points& points, const std::optional<QString>& color, std::optional<float> width,
               std::optional<int> frame, const Handle& handle) {
            return Draw(type, points, {color, width}, {}, frame, handle);
        },
        py::arg("points"), py::kw_only(), py::arg("color") = py::none(), py::arg("width") = py::none(),
        py::arg("frame") = py::none(), py::arg("timeline") = py::none(), text);
}

} // namespace

void ScriptModule::AddAnnotations(py::module_& module)
{
    py::class_<DrawingInfo>(module, "Drawing", "A drawing on a frame.")
        .def_readonly("id", &DrawingInfo::id, "Tells it apart from others.")
        .def_readonly("kind", &DrawingInfo::kind,
                      "\"pencil\", \"eraser\", \"text\", \"line\", \"oval\", \"arrow\" or \"rectangle\".")
        .def_readonly("points", &DrawingInfo::points, "Its points, (x, y) each.")
        .def_readonly("color", &DrawingInfo::color, "Its colour, \"#AARRGGBB\".")
        .def_readonly("width", &DrawingInfo::width, "Its width as a fraction of the picture's.")
        .def_readonly("text", &DrawingInfo::text, "What a text says.")
        .def("__repr__", [](const DrawingInfo& info)
             { return QStringLiteral("<torvalen.Drawing %1: %2>").arg(info.id).arg(info.kind); });
    module.def("annotations", &ListAnnotations, py::arg("frame") = py::none(), py::kw_only(),
               py::arg("timeline") = py::none(), "The drawings of a frame, the first drawn first.");
    module.def("annotated_frames", &ListAnnotatedFrames, py::arg("timeline") = py::none(),
               "The frames that have drawings.");
    AddStroke(module, "draw_pencil", DrawPencil,
              "Draws a stroke through points, on the frame under the playhead unless told. (0, 0) is the "
              "picture's middle, and its width is 1 on both axes: x runs from -0.5 to 0.5, y downwards. The "
              "colour and the width, a fraction of the picture's, are the user's unless told. Returns the "
              "drawing's id; a step that can be undone.");
    AddStroke(module, "draw_eraser", DrawEraser, "Erases along points, as draw_pencil() draws.");
    AddShape(module, "draw_line", DrawLine, "Draws a line from start to end; see draw_pencil().");
    AddShape(module, "draw_arrow", DrawArrow, "Draws an arrow that points at end; see draw_pencil().");
    AddShape(module, "draw_oval", DrawOval,
             "Draws an oval in the rectangle from start to end; see draw_pencil().");
    AddShape(module, "draw_rectangle", DrawRectangle,
             "Draws a rectangle from start to end; see draw_pencil().");
    module.def(
        "draw_text",
        [](const Point& position, const QString& text, const std::optional<QString>& color,
           std::optional<float> width, std::optional<int> frame, const Handle& handle)
        {
            if (text.isEmpty())
                throw std::invalid_argument("a text that is drawn needs letters");
            return Draw(DrawText, {position}, {color, width}, text, frame, handle);
        },
        py::arg("position"), py::arg("text"), py::kw_only(), py::arg("color") = py::none(),
        py::arg("width") = py::none(), py::arg("frame") = py::none(), py::arg("timeline") = py::none(),
        "Writes a text at position; its width is a quarter of its letters' size. See draw_pencil().");
    module.def(
        "remove_annotation",
        [](uint64_t id, std::optional<int> frame, const Handle& handle)
        { return RemoveAnnotations(id, frame, handle) > 0; },
        py::arg("id"), py::arg("frame") = py::none(), py::kw_only(), py::arg("timeline") = py::none(),
        "Takes the drawing with an id away from a frame. Returns whether there was one.");
    module.def(
        "clear_annotations",
        [](std::optional<int> frame, const Handle& handle) { return RemoveAnnotations({}, frame, handle); },
        py::arg("frame") = py::none(), py::kw_only(), py::arg("timeline") = py::none(),
        "Takes every drawing of a frame away, in one step. Returns how many there were.");
    module.def(
        "undo", [] { return OnGui([](ScriptHost& host) { return host.Undo(); }); },
        "Takes the last step back. Returns whether there was one.");
    module.def(
        "redo", [] { return OnGui([](ScriptHost& host) { return host.Redo(); }); },
        "Makes the step that was taken back again. Returns whether there was one.");
}
