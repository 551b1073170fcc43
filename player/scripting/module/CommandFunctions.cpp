// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "scripting/ScriptHost.h"
#include "window/CommandTable.h"

#include <QAction>

#include <vector>

namespace py = pybind11;

namespace
{

/// A command as a script sees it.
struct CommandInfo
{
    QString name;
    QString text;
    QStringList keys;
    std::optional<bool> checked;
};

std::vector<CommandInfo> ListCommands(ScriptHost& host)
{
    std::vector<CommandInfo> infos;
    for (const KeySequence* sequence : host.Commands()->Keys()->GetKeySequences())
    {
        CommandInfo info{sequence->name, sequence->displayText, {}, {}};
        for (const QKeySequence& keys : sequence->currentSequences)
        {
            if (!keys.isEmpty())
                info.keys << keys.toString(QKeySequence::PortableText);
        }
        const QAction* const action = host.Commands()->Action(sequence->name);
        if (action && action->isCheckable())
            info.checked = action->isChecked();
        infos.push_back(info);
    }
    return infos;
}

void RunCommand(const QString& name)
{
    ScriptModule::OnGui(
        [name](ScriptHost& host)
        {
            if (!host.Commands()->Run(name))
                throw std::invalid_argument(
                    ScriptModule::Words(QStringLiteral("there is no command \"%1\"").arg(name)));
        });
}

} // namespace

void ScriptModule::AddCommands(py::module_& module)
{
    py::class_<CommandInfo>(module, "Command", "A command of the player, as the menus and the keys reach it.")
        .def_readonly("name", &CommandInfo::name, "Its name for run() and for the file of key bindings.")
        .def_readonly("text", &CommandInfo::text, "What the menu says.")
        .def_readonly("keys", &CommandInfo::keys, "Its keys now, e.g. [\"Ctrl+Z\"].")
        .def_readonly("checked", &CommandInfo::checked, "Whether the command is on; None if it is no switch.")
        .def("__repr__", [](const CommandInfo& info)
             { return QStringLiteral("<torvalen.Command %1: %2>").arg(info.name, info.text); });
    module.def(
        "commands", [] { return OnGui(&ListCommands); },
        "Every command of the player, in the order of the table.");
    module.def("run", &RunCommand, py::arg("name"),
               "Runs the command called name, e.g. run(\"playback.toggle\"). A command that opens a dialog "
               "returns when the user has closed it.");
}
