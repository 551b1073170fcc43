// SPDX-License-Identifier: MIT
#include "window/ScriptCommands.h"

#include "scripting/ScriptEngine.h"
#include "window/CommandTable.h"
#include "window/ScriptBinding.h"

#include <QCoreApplication>

void AddScriptCommands(std::vector<Command>& commands, ScriptBinding* scripts)
{
    struct ScriptRow
    {
        const char* command;
        const char* text;
        int key;
        std::function<void()> run;
    };
    const ScriptRow rows[] = {{"script.runFile", QT_TRANSLATE_NOOP("ScriptCommands", "&Run Script…"), 0,
                               [scripts] { scripts->RunFromDialog(); }},
                              {"script.stop", QT_TRANSLATE_NOOP("ScriptCommands", "&Stop Script"),
                               Qt::CTRL + Qt::Key_Period, [scripts] { scripts->Engine()->Stop(); }}};
    for (const ScriptRow& row : rows)
        commands.push_back({QLatin1String(row.command),
                            QCoreApplication::translate("ScriptCommands", row.text),
                            QStringLiteral("scripts"),
                            {QKeySequence(row.key)},
                            row.run,
                            {}});
}
