// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>

/// How a script ended.
struct ScriptResult
{
    enum class Outcome
    {
        /// Ran to its end, or left with sys.exit().
        Finished,
        /// Ended by an exception; @c error has the traceback.
        Failed,
        /// Stopped from outside.
        Stopped,
        /// Never began: Python can't be started, the file can't be read, or it was dropped before its turn.
        NotRun
    };

    Outcome outcome = Outcome::Finished;
    /// What a program that ran the script would leave with: 0 for success, that of sys.exit(), 1 for an
    /// exception, 130 after a stop, 2 for a script that never began.
    int exitCode = 0;
    /// What the script's last expression gave, as Python writes it; empty if it gave None or there is none.
    QString value;
    /// Why the script failed, or where it was stopped.
    QString error;
    /// What it wrote, where that was asked to be kept; cut off at a bound.
    QString output;
};

Q_DECLARE_METATYPE(ScriptResult)
