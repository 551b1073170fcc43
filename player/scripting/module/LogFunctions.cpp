// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

namespace py = pybind11;

void ScriptModule::AddLog(py::module_& module)
{
    const auto add = [&](const char* name, ScriptChannel::Level level, const char* text)
    {
        module.def(
            name,
            [level](const QString& words)
            {
                const auto channel = CurrentChannel();
                const py::gil_scoped_release release;
                if (channel)
                    channel->Write(level,
                                   level == ScriptChannel::Level::Error ? words + QLatin1Char('\n') : words);
            },
            py::arg("text"), text);
    };
    add("info", ScriptChannel::Level::Info, "Logs a line that is worth knowing.");
    add("warning", ScriptChannel::Level::Warning, "Logs a warning.");
    add("error", ScriptChannel::Level::Error, "Logs an error; the script goes on.");
}
