// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

/// The thread on which Python lives: one of the process, begun with the first job and ended with the
/// application. Python takes the thread that starts it for its main one, on which alone a running script can
/// be interrupted, so that every script runs here.
class PythonThread
{
public:
    /// The one instance; made, with its thread, by the first call, which the GUI thread makes.
    static PythonThread* Instance();
    /// Whether a job was left running when the application, or an engine, gave up waiting for it. The process
    /// must then end without its usual tidying, which would pull the ground from under the job.
    static bool IsStuck();

    /// Runs @p job on the thread after those before it, without the interpreter's lock.
    void Post(std::function<void()> job);
    /// Waits until no job is left, for @p milliseconds at most. Returns whether none is.
    bool WaitForIdle(int milliseconds);
    /// Leaves what runs alone; from now on the thread is stuck.
    void GiveUp();
    /// Has the running script look whether it is to stop, also where it sleeps or waits for the system.
    void Interrupt();

    /// On the thread: starts Python where that wasn't done yet. Returns whether it runs; @p error says why
    /// not.
    bool EnsurePython(QString* error);

private:
    struct State;

    PythonThread();
    static void End();
    static void Work(const std::shared_ptr<State>& state);

    /// Shared with the thread, which may have to be left alone.
    std::shared_ptr<State> mState;
    std::thread mThread;
    bool mHasPython = false;
    QString mStartError;
};
