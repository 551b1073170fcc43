// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "scripting/ScriptHost.h"
#include "viewers/ViewerWidget.h"

#include <QImageWriter>
#include <QWidget>

#include <cmath>

namespace py = pybind11;

namespace
{

using ScriptModule::OnGui;
using ScriptModule::Words;

const QStringList ViewLayoutNames = {QStringLiteral("single"), QStringLiteral("horizontal"),
                                     QStringLiteral("vertical")};

/// Bounds of what a script may make of the window, in pixels.
constexpr int SmallestWindow = 100;
constexpr int LargestWindow = 16384;

QString LayoutName(const std::optional<QString>& layout)
{
    if (layout && !ViewLayoutNames.contains(*layout))
        throw std::invalid_argument(Words(
            QStringLiteral("there is no layout \"%1\"; they are \"single\", \"horizontal\" and \"vertical\"")
                .arg(*layout)));
    return OnGui(
        [layout](ScriptHost& host)
        {
            if (layout)
                host.SetLayout(ViewLayoutNames.indexOf(*layout));
            return ViewLayoutNames.value(host.Viewer()->GetViewerLayout());
        });
}

QString ActiveViewer(const std::optional<QString>& viewer)
{
    const int wanted = viewer ? ScriptModule::ViewerNumber(*viewer) : -1;
    return OnGui(
        [wanted](ScriptHost& host)
        {
            if (wanted >= 0 && !host.Playback()->TimelineOf(wanted))
                throw std::runtime_error(
                    Words(QStringLiteral("viewer %1 shows nothing").arg(ScriptModule::ViewerName(wanted))));
            if (wanted >= 0)
                host.SetActiveViewer(wanted);
            return ScriptModule::ViewerName(host.Playback()->ActiveViewer());
        });
}

float Zoom(std::optional<float> zoom)
{
    return OnGui(
        [zoom](ScriptHost& host)
        {
            if (zoom && !(*zoom >= 1.0f && *zoom <= Settings::zoomMaximum))
                throw std::invalid_argument(Words(QStringLiteral("the zoom %1 lies outside 1 to %2")
                                                      .arg(static_cast<double>(*zoom))
                                                      .arg(static_cast<double>(Settings::zoomMaximum))));
            if (zoom)
                host.SetPanAndZoom(*zoom > 1.0f ? host.Pan() : QPointF(), *zoom);
            return host.Zoom();
        });
}

std::pair<double, double> Pan(std::optional<double> x, std::optional<double> y)
{
    if (x.has_value() != y.has_value())
        throw py::type_error("pan() takes x and y, or nothing");
    if (x && !(std::abs(*x) <= 1.0 && std::abs(*y) <= 1.0))
        throw std::invalid_argument(
            Words(QStringLiteral("the pan (%1, %2) lies outside -1 to 1").arg(*x).arg(*y)));
    return OnGui(
        [x, y](ScriptHost& host)
        {
            if (x)
                host.SetPanAndZoom(QPointF(*x, *y), host.Zoom());
            return std::make_pair(host.Pan().x(), host.Pan().y());
        });
}

std::pair<int, int> WindowSize(std::optional<int> width, std::optional<int> height)
{
    if (width.has_value() != height.has_value())
        throw py::type_error("window_size() takes the width and the height, or nothing");
    for (const int side : {width.value_or(SmallestWindow), height.value_or(SmallestWindow)})
    {
        if (side < SmallestWindow || side > LargestWindow)
            throw std::invalid_argument(
                Words(QStringLiteral("the window can't be %1 pixels; it can be %2 to %3")
                          .arg(side)
                          .arg(SmallestWindow)
                          .arg(LargestWindow)));
    }
    return OnGui(
        [width, height](ScriptHost& host)
        {
            if (width)
            {
                host.Window()->setWindowState(host.Window()->windowState() &
                                              ~(Qt::WindowFullScreen | Qt::WindowMaximized));
                host.Window()->resize(*width, *height);
            }
            return std::make_pair(host.Window()->width(), host.Window()->height());
        });
}

std::pair<int, int> ViewerSize()
{
    return OnGui([](ScriptHost& host)
                 { return std::make_pair(host.Viewer()->width(), host.Viewer()->height()); });
}

void Grab(const QString& path, const QString& what)
{
    if (what != QLatin1String("viewers") && what != QLatin1String("window"))
        throw std::invalid_argument(
            Words(QStringLiteral("\"%1\" can't be grabbed; \"viewers\" and \"window\" can").arg(what)));
    const QImage picture = OnGui([viewers = what == QLatin1String("viewers")](ScriptHost& host)
                                 { return viewers ? host.Viewer()->GetImage() : host.WindowPicture(); });
    QString problem;
    {
        const py::gil_scoped_release release;
        QImageWriter writer(path);
        if (picture.isNull())
            problem = QStringLiteral("there is no picture yet");
        else if (!writer.write(picture))
            problem = writer.errorString();
    }
    if (!problem.isEmpty())
        throw std::runtime_error(Words(QStringLiteral("%1 can't be written: %2").arg(path, problem)));
}

} // namespace

void ScriptModule::AddViewers(py::module_& module)
{
    module.def("layout", &LayoutName, py::arg("layout") = py::none(),
               "How the viewers stand: \"single\", \"horizontal\" (side by side) or \"vertical\"; "
               "layout(name) sets it first.");
    module.def("active_viewer", &ActiveViewer, py::arg("viewer") = py::none(),
               "The viewer whose timeline leads, \"A\" or \"B\"; active_viewer(\"B\") chooses it first.");
    module.def("zoom", &Zoom, py::arg("zoom") = py::none(),
               "How many times the viewers enlarge the picture that fits them; zoom(2) sets it first.");
    module.def(
        "pan", &Pan, py::arg("x") = py::none(), py::arg("y") = py::none(),
        "Which part of an enlarged picture is seen, x and y from -1 to 1, (0, 0) its middle; pan(x, y) "
        "sets it first.");
    module.def("window_size", &WindowSize, py::arg("width") = py::none(), py::arg("height") = py::none(),
               "Width and height of the window in pixels; window_size(1280, 800) sets them first.");
    module.def("viewer_size", &ViewerSize, "Width and height of the area of the viewers in pixels.");
    module.def(
        "grab", &Grab, py::arg("path"), py::arg("what") = QStringLiteral("viewers"),
        "Saves the picture of the \"viewers\", drawings included, or of the whole \"window\" as a file "
        "whose suffix tells the format, e.g. \"shot.png\".");
}
