// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "host/Settings.h"
#include "scripting/ScriptCurrent.h"

namespace py = pybind11;

namespace
{

[[noreturn]] void RaiseStopped()
{
    PyErr_SetNone(PyExc_KeyboardInterrupt);
    throw py::error_already_set();
}

constexpr char ModuleText[] =
    "The player that the script runs in.\n\n"
    "Frames count from 1, times are whole microseconds from the start of frame 1. Every function acts on "
    "the\n"
    "player as if the user had done it, and returns when that is done. A bad argument raises ValueError, an\n"
    "argument of the wrong type TypeError, what can't be done RuntimeError.";

} // namespace

std::shared_ptr<ScriptChannel> ScriptModule::CurrentChannel()
{
    return ScriptCurrent::Get().channel;
}

void ScriptModule::CallOnGui(const std::function<void(ScriptHost&)>& call)
{
    const ScriptCurrent::Player player = ScriptCurrent::Get();
    bool done = false;
    if (player.channel)
    {
        const py::gil_scoped_release release;
        done = player.channel->Call([call, host = player.host] { call(*host); });
    }
    if (!done)
        RaiseStopped();
}

void ScriptModule::Wait(double seconds)
{
    const auto channel = CurrentChannel();
    bool waited = false;
    if (channel)
    {
        const py::gil_scoped_release release;
        waited = channel->Sleep(std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000.0)));
    }
    if (!waited)
        RaiseStopped();
}

int ScriptModule::ViewerNumber(const QString& name)
{
    if (name.compare(QLatin1String("A"), Qt::CaseInsensitive) == 0)
        return 0;
    if (name.compare(QLatin1String("B"), Qt::CaseInsensitive) == 0)
        return 1;
    throw std::invalid_argument(
        Words(QStringLiteral("there is no viewer \"%1\"; they are \"A\" and \"B\"").arg(name)));
}

QString ScriptModule::ViewerName(int viewer)
{
    return viewer == 0 ? QStringLiteral("A") : QStringLiteral("B");
}

PYBIND11_MODULE(torvalen, module)
{
    module.doc() = ModuleText;
    module.attr("__version__") = QString::fromLatin1(Settings::TORVALEN_PRO_VERSION_STRING);
    ScriptModule::AddCommands(module);
    ScriptModule::AddPlayback(module);
    ScriptModule::AddViewers(module);
    ScriptModule::AddTimelines(module);
    ScriptModule::AddBookmarks(module);
    ScriptModule::AddAnnotations(module);
    ScriptModule::AddOutput(module);
    ScriptModule::AddSettings(module);
    ScriptModule::AddLog(module);
}
