// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/ScriptResult.h"

#include <QObject>
#include <QStringList>

class ScriptEngine;

/// The log while a test runs scripts, line by line with its level, e.g. "out: text" or "error: text".
class ScriptLog : public QObject
{
    Q_OBJECT

public:
    ScriptLog();

    /// Every message, in order. Output is cut into its lines; a line that has not ended is one too.
    QStringList Lines() const;
    /// Only those of @p level ("out", "info", "warning", "error"), without their level.
    QStringList Lines(const QString& level) const;
    void Clear();

private:
    void Add(const char* level, const QString& text);

    QStringList mMessages;
    QString mOutput;
};

namespace ScriptRun
{

/// Runs @p text and waits for its end, @p milliseconds at most. A script that doesn't end gives an exit code
/// of -1.
ScriptResult Run(ScriptEngine* engine, const QString& text, int milliseconds = 20000);

/// Waits for the end of script @p number.
ScriptResult WaitFor(ScriptEngine* engine, int number, int milliseconds = 20000);

} // namespace ScriptRun
