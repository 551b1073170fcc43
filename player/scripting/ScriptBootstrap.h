// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/ScriptResult.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

/// What of running scripts is written in Python: the streams, compiling and running, the words of an error.
///
/// Everything is for the thread of Python. But for Load(), each takes the interpreter's lock by itself.
namespace ScriptBootstrap
{

/// Brings the helpers into the interpreter that was just started, with its lock held. Returns whether that
/// went well; @p error says what is missing.
bool Load(QString* error);

/// Gives the scripts that follow an empty `__main__`.
void ClearMain();

/// What is to be run.
struct Task
{
    QString text;
    /// What a file holds, in place of the text, where @c folder is one.
    QByteArray source;
    /// What tracebacks call it: a file's path or a made-up name.
    QString name;
    /// The rest of sys.argv; its first is @c name.
    QStringList arguments;
    /// Folder that modules are looked for in first; empty for none.
    QString folder;
    /// Whether the value of the last expression is wanted.
    bool wantsValue = false;
    /// Asked once Python code of the script is over: whether the script was to stop.
    std::function<bool()> onEnded;
};

/// Runs @p task in `__main__`.
ScriptResult Run(const Task& task);

/// Runs what scripts asked to be run at the end, and lets go of what they hold.
void RunAtExit();

} // namespace ScriptBootstrap
