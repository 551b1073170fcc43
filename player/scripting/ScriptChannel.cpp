// SPDX-License-Identifier: MIT
#include "scripting/ScriptChannel.h"

#include "host/Logger.h"

#include <utility>

namespace
{

/// Lines of output are joined up to this length: each message costs the console the same, short or long.
constexpr int JoinedLength = 1 << 12;
/// A line without an end goes on in parts of this length.
constexpr int LongestLine = 1 << 16;

void LogScriptText(ScriptChannel::Level level, const QString& text)
{
    Logger* const logger = Logger::GetInstance();
    switch (level)
    {
    case ScriptChannel::Level::Output:
        logger->Output(text);
        break;
    case ScriptChannel::Level::Info:
        logger->Info(text);
        break;
    case ScriptChannel::Level::Warning:
        logger->Warning(text);
        break;
    case ScriptChannel::Level::Error:
        logger->Error(text);
        break;
    }
}

} // namespace

ScriptChannel::ScriptChannel(std::function<void()> wakeUp) : mWakeUp(std::move(wakeUp)) {}

void ScriptChannel::WakeUp()
{
    if (mAwake || mItems.empty() || !mWakeUp)
        return;
    mAwake = true;
    mWakeUp();
}

void ScriptChannel::Push(Item item)
{
    mBacklog += item.text.size();
    mItems.push_back(std::move(item));
    WakeUp();
}

void ScriptChannel::Append(Level level, const QString& text)
{
    if (text.isEmpty())
        return;
    // An error is a message a line; output is a stream, whose lines may travel together.
    const bool joins = level == Level::Output && !mItems.empty() && !mItems.back().call &&
                       mItems.back().level == level && mItems.back().text.size() < JoinedLength;
    if (joins)
    {
        mItems.back().text += text;
        mBacklog += text.size();
        return;
    }
    Push({level, text, {}});
}

void ScriptChannel::FlushPartial(Level level)
{
    QString& partial = level == Level::Error ? mPartialError : mPartialOutput;
    Append(level, std::exchange(partial, QString()));
}

void ScriptChannel::Write(Level level, const QString& text)
{
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [this] { return mClosed || mBacklog < MaximumBacklog; });
    if (mClosed)
        return;
    if (mKeep && mKept.size() < MaximumKept)
    {
        mKept += text.left(static_cast<int>(MaximumKept) - mKept.size());
        if (level == Level::Info || level == Level::Warning)
            mKept += QLatin1Char('\n');
    }
    // What is not ended of the other stream was written before.
    if (level != Level::Output)
        FlushPartial(Level::Output);
    if (level != Level::Error)
        FlushPartial(Level::Error);
    if (level == Level::Info || level == Level::Warning)
    {
        Append(level, text);
        return;
    }
    QString& partial = level == Level::Error ? mPartialError : mPartialOutput;
    partial += text;
    const int end = partial.lastIndexOf(QLatin1Char('\n'));
    if (end >= 0)
    {
        const QString ended = partial.left(end + 1);
        partial.remove(0, end + 1);
        if (level == Level::Output)
        {
            Append(level, ended);
        }
        else
        {
            for (const QString& line : ended.left(end).split(QLatin1Char('\n')))
                Push({level, line, {}});
        }
    }
    if (partial.size() > LongestLine)
        FlushPartial(level);
}

void ScriptChannel::Flush()
{
    const std::lock_guard lock(mMutex);
    if (mClosed)
        return;
    FlushPartial(Level::Output);
    FlushPartial(Level::Error);
}

bool ScriptChannel::Call(std::function<void()> call)
{
    struct State
    {
        bool abandoned = false;
        bool done = false;
    };
    const auto state = std::make_shared<State>();
    std::unique_lock lock(mMutex);
    if (EndsHere())
        return false;
    Item item;
    item.call = [this, state, call = std::move(call)]
    {
        {
            const std::lock_guard check(mMutex);
            if (state->abandoned)
                return;
        }
        call();
        const std::lock_guard finish(mMutex);
        state->done = true;
        mChanged.notify_all();
    };
    Push(std::move(item));
    mChanged.wait(lock, [&] { return state->done || EndsHere(); });
    state->abandoned = true;
    return state->done;
}

void ScriptChannel::Post(std::function<void()> call)
{
    const std::lock_guard lock(mMutex);
    if (!mClosed)
        Push({Level::Output, {}, std::move(call)});
}

bool ScriptChannel::Sleep(std::chrono::milliseconds duration)
{
    std::unique_lock lock(mMutex);
    return !mChanged.wait_for(lock, duration, [this] { return EndsHere(); });
}

bool ScriptChannel::IsStopWanted() const
{
    const std::lock_guard lock(mMutex);
    return mStop || mClosed;
}

QString ScriptChannel::KeepOutput(bool keep)
{
    const std::lock_guard lock(mMutex);
    mKeep = keep;
    return std::exchange(mKept, QString());
}

void ScriptChannel::Serve()
{
    std::unique_lock lock(mMutex);
    mAwake = false;
    qsizetype served = 0;
    while (!mItems.empty() && served < TextOfATurn)
    {
        const Item item = std::move(mItems.front());
        mItems.pop_front();
        mBacklog -= item.text.size();
        served += item.text.size() + 1;
        // Awake for those that run an event loop of their own within the call.
        if (item.call)
            WakeUp();
        lock.unlock();
        mChanged.notify_all();
        if (item.call)
            item.call();
        else
            LogScriptText(item.level, item.text);
        lock.lock();
        if (item.call)
            break;
    }
    WakeUp();
}

bool ScriptChannel::SetStop(bool stop)
{
    const std::lock_guard lock(mMutex);
    const bool before = mStop;
    mStop = stop;
    mChanged.notify_all();
    return before;
}

void ScriptChannel::SetScriptThread()
{
    const std::lock_guard lock(mMutex);
    mScriptThread = std::this_thread::get_id();
}

bool ScriptChannel::EndsHere() const
{
    return mClosed || (mStop && std::this_thread::get_id() == mScriptThread);
}

void ScriptChannel::Close()
{
    std::deque<Item> dropped;
    {
        const std::lock_guard lock(mMutex);
        mClosed = true;
        mWakeUp = {};
        dropped.swap(mItems);
        mBacklog = 0;
    }
    mChanged.notify_all();
}
