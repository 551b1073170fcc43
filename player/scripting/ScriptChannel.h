// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

/// The way between scripts, which run on threads of their own, and the player on the GUI thread.
///
/// Calls and output go through one queue, so that what a script wrote before a call is in the log before the
/// call is made. The GUI thread never waits for a script; a script waits for its call, and for the log where
/// it writes faster than that is read.
class ScriptChannel
{
public:
    /// Which call of Logger a text goes to.
    enum class Level
    {
        Output,
        Info,
        Warning,
        Error
    };

    /// Text of the log that waits to be read before a script that writes more has to wait, in characters.
    static constexpr qsizetype MaximumBacklog = 1 << 20;
    /// Text that is handed to the log in one turn of the event loop, in characters.
    static constexpr qsizetype TextOfATurn = 1 << 15;
    /// Output that KeepOutput() keeps, in characters.
    static constexpr qsizetype MaximumKept = 1 << 20;

    /// @p wakeUp asks the GUI thread to call Serve(); it is called from any thread, never after Close().
    explicit ScriptChannel(std::function<void()> wakeUp);

    // For scripts: from any thread, without the interpreter's lock.

    /// Takes text for the log. Output and errors go on when their line ends; information and warnings at
    /// once, one line each.
    void Write(Level level, const QString& text);
    /// Lets lines go on that have not ended yet.
    void Flush();
    /// Runs @p call on the GUI thread and waits until it is done. Returns whether it was; false if the script
    /// is to stop or the player is going, and then the call may still be made, so that it must not refer to
    /// anything of the caller.
    bool Call(std::function<void()> call);
    /// Has @p call made on the GUI thread, after what has been written, and doesn't wait.
    void Post(std::function<void()> call);
    /// Waits for @p duration. Returns false at once when the script is to stop.
    bool Sleep(std::chrono::milliseconds duration);
    /// Whether the running script is to stop.
    bool IsStopWanted() const;
    /// Keeps what is written from now on (@p keep), or no longer; returns what was kept.
    QString KeepOutput(bool keep);

    // For the engine.

    /// Hands text to the log and makes calls, for a short turn; wakes up anew if there is more.
    void Serve();
    /// Asks the running script to stop (@p stop), or takes that back. Returns what was wanted before.
    bool SetStop(bool stop);
    /// Makes the calling thread the one of scripts, the only one whose calls a stop ends; the threads that a
    /// script makes are stopped by Python.
    void SetScriptThread();
    /// Ends everything: waiting scripts are stopped, what was not served is dropped, and so is what comes.
    void Close();

private:
    struct Item
    {
        Level level = Level::Output;
        QString text;
        std::function<void()> call;
    };

    void Append(Level level, const QString& text);
    void FlushPartial(Level level);
    void Push(Item item);
    void WakeUp();
    bool EndsHere() const;

    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    std::function<void()> mWakeUp;
    std::deque<Item> mItems;
    qsizetype mBacklog = 0;
    bool mAwake = false;
    bool mStop = false;
    bool mClosed = false;
    std::thread::id mScriptThread;
    /// Lines of the output and of the errors that have not ended.
    QString mPartialOutput;
    QString mPartialError;
    bool mKeep = false;
    QString mKept;
};
