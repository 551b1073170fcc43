// SPDX-License-Identifier: MIT
#include <pybind11/embed.h>

#include "scripting/PythonThread.h"

#include "scripting/ScriptBootstrap.h"
#include "scripting/module/ScriptModule.h"

#include <QCoreApplication>
#include <QDir>

#include <csignal>
#include <pthread.h>

namespace
{

/// How long the application waits at its end for a script that goes on, in milliseconds.
constexpr int EndTimeout = 2000;

std::atomic<bool> Stuck{false};
PythonThread* TheThread = nullptr;

QString StatusText(const PyStatus& status)
{
    const char* const text = status.err_msg ? status.err_msg : "unknown error";
    return QStringLiteral("Python can't be started: %1").arg(QString::fromUtf8(text));
}

/// Starts the interpreter apart from the user's Python environment: a PYTHONHOME or PYTHONPATH that is meant
/// for another version would keep it from starting.
bool StartInterpreter(QString* error)
{
    PyPreConfig preConfig;
    PyPreConfig_InitIsolatedConfig(&preConfig);
    preConfig.utf8_mode = 1;
#ifdef TORVALEN_SANITIZED
    // The leak check sees only what malloc() gave.
    preConfig.allocator = PYMEM_ALLOCATOR_MALLOC;
#endif
    PyStatus status = Py_PreInitialize(&preConfig);
    if (PyStatus_Exception(status))
    {
        *error = StatusText(status);
        return false;
    }
    if (PyImport_AppendInittab("torvalen", &PyInit_torvalen) < 0)
    {
        *error = QStringLiteral("Python can't be started: there is no memory for its modules");
        return false;
    }
    PyConfig config;
    PyConfig_InitIsolatedConfig(&config);
    config.buffered_stdio = 1;
    config.install_signal_handlers = 0;
    // Python finds its library by its program's path; the first "python3" on the user's may be another one.
    const std::string home = QDir::toNativeSeparators(QStringLiteral(TORVALEN_PYTHON_PREFIX)).toStdString();
    status = PyConfig_SetBytesString(&config, &config.home, home.c_str());
    if (!PyStatus_Exception(status))
        status = PyConfig_SetBytesString(&config, &config.program_name, "torvalen");
    if (!PyStatus_Exception(status))
        status = Py_InitializeFromConfig(&config);
    PyConfig_Clear(&config);
    if (!PyStatus_Exception(status))
        return true;
    *error =
        StatusText(status) +
        QStringLiteral("; its library was looked for below %1").arg(QStringLiteral(TORVALEN_PYTHON_PREFIX));
    return false;
}

} // namespace

struct PythonThread::State
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> jobs;
    bool busy = false;
    bool ending = false;
    bool ended = false;
};

PythonThread::PythonThread() : mState(std::make_shared<State>())
{
    mThread = std::thread(&PythonThread::Work, mState);
}

PythonThread* PythonThread::Instance()
{
    if (!TheThread)
    {
        TheThread = new PythonThread;
        qAddPostRoutine(&PythonThread::End);
    }
    return TheThread;
}

bool PythonThread::IsStuck()
{
    return Stuck;
}

void PythonThread::Work(const std::shared_ptr<State>& state)
{
    std::unique_lock lock(state->mutex);
    for (;;)
    {
        state->changed.wait(lock, [&] { return state->ending || !state->jobs.empty(); });
        if (state->jobs.empty())
            break;
        const std::function<void()> job = std::move(state->jobs.front());
        state->jobs.pop_front();
        state->busy = true;
        lock.unlock();
        job();
        lock.lock();
        state->busy = false;
        state->changed.notify_all();
    }
    state->ended = true;
    state->changed.notify_all();
}

void PythonThread::Post(std::function<void()> job)
{
    const std::lock_guard lock(mState->mutex);
    mState->jobs.push_back(std::move(job));
    mState->changed.notify_all();
}

bool PythonThread::WaitForIdle(int milliseconds)
{
    std::unique_lock lock(mState->mutex);
    return mState->changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                    [this] { return !mState->busy && mState->jobs.empty(); });
}

void PythonThread::GiveUp()
{
    Stuck = true;
}

void PythonThread::Interrupt()
{
    // Ignored by default: one that arrives too early or too late does no harm.
    pthread_kill(mThread.native_handle(), SIGURG);
}

bool PythonThread::EnsurePython(QString* error)
{
    // A start that failed is not tried again: Python may be half there.
    if (mHasPython || !mStartError.isEmpty())
    {
        *error = mStartError;
        return mHasPython;
    }
    if (!StartInterpreter(&mStartError))
    {
        *error = mStartError;
        return false;
    }
    mHasPython = ScriptBootstrap::Load(&mStartError);
    *error = mStartError;
    // Without the interpreter's lock from here on; each job takes it.
    PyEval_SaveThread();
    return mHasPython;
}

void PythonThread::End()
{
    PythonThread* const thread = TheThread;
    thread->Post(
        [thread]
        {
            if (thread->mHasPython)
                ScriptBootstrap::RunAtExit();
        });
    {
        std::unique_lock lock(thread->mState->mutex);
        thread->mState->ending = true;
        thread->mState->changed.notify_all();
        if (!thread->mState->changed.wait_for(lock, std::chrono::milliseconds(EndTimeout),
                                              [thread] { return thread->mState->ended; }))
            Stuck = true;
    }
    if (Stuck)
    {
        thread->mThread.detach();
        return;
    }
    thread->mThread.join();
}
