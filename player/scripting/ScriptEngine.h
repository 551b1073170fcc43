// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/ScriptResult.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <memory>

class ScriptChannel;
class ScriptHost;

/// Runs Python scripts against the player, one after the other, on a thread of their own.
///
/// Python is started by the first script. All scripts of an engine share one `__main__`. What they write
/// comes back through Logger, in order: output as Output, errors, with the traceback, as Error. The GUI
/// thread never waits for a script, nor for the interpreter's lock.
class ScriptEngine : public QObject
{
    Q_OBJECT

public:
    /// Scripts reach the player through @p host, which outlives the engine. One engine of a process is in use
    /// at a time: the newest.
    explicit ScriptEngine(ScriptHost* host, QObject* parent = nullptr);
    /// Stops what runs. A script that doesn't stop within a few seconds is left alone; see
    /// PythonThread::IsStuck().
    ~ScriptEngine() override;

    /// Runs @p text as soon as the scripts before it have ended. @p name is what tracebacks call it; a
    /// made-up one if empty. With @p keepOutput the result holds what it writes. Returns the number under
    /// which Finished() tells its end.
    int Run(const QString& text, const QString& name = QString(), bool keepOutput = false);
    /// The same for the file at @p path, whose folder its imports are looked for in. @p arguments are
    /// sys.argv behind the path.
    int RunFile(const QString& path, const QStringList& arguments = QStringList());
    /// Whether a script runs or waits for its turn.
    bool IsRunning() const;

public Q_SLOTS:
    /// Runs what the user typed: the value of its last expression is written to the log.
    void Execute(const QString& text);
    /// Stops the script that runs and drops those that wait.
    void Stop();

Q_SIGNALS:
    /// Scripts begin to run (@p running), or the last one has ended.
    void RunningChanged(bool running);
    /// Script @p number has ended; what it wrote is in the log.
    void Finished(int number, const ScriptResult& result);

private Q_SLOTS:
    void Serve();
    void PressForStop();

private:
    struct Script;

    int Add(Script script);
    void StartNext();
    void OnEnded(const Script& script, const ScriptResult& result);
    static ScriptResult RunOnThread(const Script& script, const std::shared_ptr<ScriptChannel>& channel,
                                    ScriptHost* host, bool first);

    ScriptHost* mHost;
    std::shared_ptr<ScriptChannel> mChannel;
    std::deque<Script> mWaiting;
    bool mRunning = false;
    bool mHasRun = false;
    int mLastNumber = 0;
    QTimer mStopTimer;
    QElapsedTimer mStopClock;
    bool mToldStuck = false;
};
