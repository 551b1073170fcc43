// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <vector>

struct Command;
class CommandTable;
class ConsoleWindow;
class QWidget;
class ScriptEngine;

/// Gives the player its console: the log, and a pane whose text the script engine runs.
class ConsoleBinding : public QObject
{
    Q_OBJECT

public:
    /// The console stays above @p window and goes with it. It begins with what was logged before.
    ConsoleBinding(QWidget* window, ScriptEngine* engine);

    ConsoleWindow* Console() const;
    bool IsShown() const;
    bool IsInputShown() const;
    /// Closes the console, which keeps its place in the settings.
    void Close();
    /// Makes the commands of @p commands that are of use in the console work there too.
    void AddActions(const CommandTable* commands);

public Q_SLOTS:
    void Toggle();
    /// Shows the console with the pane for scripts, or hides the pane.
    void ToggleInput();

private:
    ConsoleWindow* mConsole;
};

/// Appends the commands of @p console to @p commands.
void AddConsoleCommands(std::vector<Command>& commands, ConsoleBinding* console);
