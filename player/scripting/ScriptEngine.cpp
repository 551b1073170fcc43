// SPDX-License-Identifier: MIT
#include "scripting/ScriptEngine.h"

#include "host/Logger.h"
#include "scripting/PythonThread.h"
#include "scripting/ScriptBootstrap.h"
#include "scripting/ScriptChannel.h"
#include "scripting/ScriptCurrent.h"

#include <QFile>
#include <QFileInfo>

namespace
{

/// How often a script that is to stop is asked again, in milliseconds.
constexpr int StopInterval = 200;
/// After how long the user is told that it doesn't, in milliseconds.
constexpr int StopPatience = 3000;
/// How long the player's end waits for a script, in milliseconds.
constexpr int CloseTimeout = 4000;
/// A script is text that somebody wrote.
constexpr qint64 MaximumFileSize = 16 << 20;

} // namespace

struct ScriptEngine::Script
{
    int number = 0;
    ScriptBootstrap::Task task;
    /// Path of the file that is to be read first; empty for none.
    QString path;
    bool writesValue = false;
    bool keepsOutput = false;
};

ScriptEngine::ScriptEngine(ScriptHost* host, QObject* parent)
    : QObject(parent)
    , mHost(host)
    , mChannel(std::make_shared<ScriptChannel>(
          [this] { QMetaObject::invokeMethod(this, "Serve", Qt::QueuedConnection); }))
{
    qRegisterMetaType<ScriptResult>();
    mStopTimer.setInterval(StopInterval);
    connect(&mStopTimer, SIGNAL(timeout()), this, SLOT(PressForStop()));
}

ScriptEngine::~ScriptEngine()
{
    mWaiting.clear();
    mChannel->Close();
    if (mRunning)
    {
        PythonThread* const thread = PythonThread::Instance();
        for (int waited = 0; waited < CloseTimeout; waited += StopInterval)
        {
            thread->Interrupt();
            if (thread->WaitForIdle(StopInterval))
                break;
        }
        if (!thread->WaitForIdle(0))
            thread->GiveUp();
    }
    ScriptCurrent::Clear(mChannel);
}

bool ScriptEngine::IsRunning() const
{
    return mRunning;
}

int ScriptEngine::Run(const QString& text, const QString& name, bool keepOutput)
{
    Script script;
    script.task.text = text;
    script.task.name = name;
    script.task.wantsValue = true;
    script.keepsOutput = keepOutput;
    return Add(std::move(script));
}

int ScriptEngine::RunFile(const QString& path, const QStringList& arguments)
{
    Script script;
    script.path = QFileInfo(path).absoluteFilePath();
    script.task.name = script.path;
    script.task.arguments = arguments;
    script.task.folder = QFileInfo(script.path).absolutePath();
    return Add(std::move(script));
}

void ScriptEngine::Execute(const QString& text)
{
    Script script;
    script.task.text = text;
    script.task.wantsValue = true;
    script.writesValue = true;
    Add(std::move(script));
}

int ScriptEngine::Add(Script script)
{
    script.number = ++mLastNumber;
    if (script.task.name.isEmpty())
        script.task.name = QStringLiteral("<script %1>").arg(script.number);
    mWaiting.push_back(std::move(script));
    // Later, so that the caller knows the number before it hears of it.
    if (!mRunning)
    {
        mRunning = true;
        Q_EMIT RunningChanged(true);
        QMetaObject::invokeMethod(
            this, [this] { StartNext(); }, Qt::QueuedConnection);
    }
    return mLastNumber;
}

void ScriptEngine::StartNext()
{
    mStopTimer.stop();
    mChannel->SetStop(false);
    if (mWaiting.empty())
    {
        mRunning = false;
        Q_EMIT RunningChanged(false);
        return;
    }
    const Script script = std::move(mWaiting.front());
    mWaiting.pop_front();
    const bool first = !mHasRun;
    mHasRun = true;
    PythonThread::Instance()->Post(
        [this, script, first, channel = mChannel, host = mHost]
        {
            ScriptResult result = RunOnThread(script, channel, host, first);
            // Closed once the engine goes.
            channel->Post([this, script, result] { OnEnded(script, result); });
        });
}

ScriptResult ScriptEngine::RunOnThread(const Script& script, const std::shared_ptr<ScriptChannel>& channel,
                                       ScriptHost* host, bool first)
{
    ScriptResult result;
    result.outcome = ScriptResult::Outcome::NotRun;
    result.exitCode = 2;
    ScriptBootstrap::Task task = script.task;
    if (!script.path.isEmpty())
    {
        QFile file(script.path);
        if (!file.open(QIODevice::ReadOnly) || file.size() > MaximumFileSize)
        {
            result.error =
                QStringLiteral("%1 can't be read: %2")
                    .arg(script.path,
                         file.isOpen() ? QStringLiteral("it is too large for a script") : file.errorString());
            return result;
        }
        task.source = file.readAll();
    }
    if (!PythonThread::Instance()->EnsurePython(&result.error))
        return result;
    channel->SetScriptThread();
    ScriptCurrent::Set(channel, host);
    if (first)
        ScriptBootstrap::ClearMain();
    if (script.keepsOutput)
        channel->KeepOutput(true);
    task.onEnded = [channel] { return channel->SetStop(false); };
    result = ScriptBootstrap::Run(task);
    if (script.writesValue && !result.value.isEmpty())
        channel->Write(ScriptChannel::Level::Output, result.value + QLatin1Char('\n'));
    if (script.keepsOutput)
        result.output = channel->KeepOutput(false);
    return result;
}

void ScriptEngine::OnEnded(const Script& script, const ScriptResult& result)
{
    if (result.outcome == ScriptResult::Outcome::Stopped)
        Logger::GetInstance()->Warning(result.error);
    else if (!result.error.isEmpty())
        Logger::GetInstance()->Error(result.error);
    Q_EMIT Finished(script.number, result);
    StartNext();
}

void ScriptEngine::Serve()
{
    const std::shared_ptr<ScriptChannel> channel = mChannel;
    channel->Serve();
}

void ScriptEngine::Stop()
{
    std::deque<Script> dropped;
    dropped.swap(mWaiting);
    if (mRunning)
    {
        mToldStuck = false;
        mStopClock.start();
        mChannel->SetStop(true);
        PressForStop();
        mStopTimer.start();
    }
    for (const Script& script : dropped)
    {
        ScriptResult result;
        result.outcome = ScriptResult::Outcome::NotRun;
        result.exitCode = 2;
        result.error = tr("%1 was dropped before its turn").arg(script.task.name);
        Q_EMIT Finished(script.number, result);
    }
}

void ScriptEngine::PressForStop()
{
    PythonThread::Instance()->Interrupt();
    if (mToldStuck || mStopClock.elapsed() < StopPatience)
        return;
    mToldStuck = true;
    Logger::GetInstance()->Warning(
        tr("The script doesn't stop: it is in a call that can't be interrupted. It ends with that call."));
}
