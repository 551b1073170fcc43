// SPDX-License-Identifier: MIT
#include <pybind11/embed.h>

#include "scripting/ScriptBootstrap.h"

#include "scripting/ScriptChannel.h"
#include "scripting/module/ScriptModule.h"

#include <csignal>

namespace py = pybind11;

namespace
{

/// How often a script is asked to stop before it no longer gets to run a line, whatever it catches.
constexpr int PatientStops = 3;

constexpr char BootstrapName[] = "<torvalen>";

constexpr char BootstrapText[] = R"(
import ast, atexit, builtins, gc, io, linecache, signal, sys, traceback

FILE = '<torvalen>'
names = []


class Stream(io.TextIOBase):
    """A stream whose lines go to the player's log."""

    encoding = 'utf-8'
    errors = 'replace'

    def __init__(self, name, level):
        self.name = name
        self.mode = 'w'
        self._level = level

    def writable(self):
        return True

    def write(self, text):
        if not isinstance(text, str):
            raise TypeError('write() takes a str, not ' + type(text).__name__)
        write_text(self._level, text)
        return len(text)

    def flush(self):
        flush_text()


def begin():
    sys.stdout = sys.__stdout__ = Stream('<stdout>', 'output')
    sys.stderr = sys.__stderr__ = Stream('<stderr>', 'error')
    # A script that asks for input would wait for good.
    sys.stdin = sys.__stdin__ = io.StringIO()
    signal.signal(signal.SIGURG, on_signal)


def clear_main():
    main = sys.modules['__main__'].__dict__
    main.clear()
    main.update(__name__='__main__', __doc__=None, __package__=None, __builtins__=builtins)
    gc.collect()


def remember_source(text, name):
    linecache.cache[name] = (len(text), None, text.splitlines(True), name)
    if name in names:
        names.remove(name)
    names.append(name)
    while len(names) > 100:
        linecache.cache.pop(names.pop(0), None)


def run(text, name, arguments, folder, wants_value):
    main = sys.modules['__main__'].__dict__
    sys.argv = [name] + arguments
    if folder and folder not in sys.path:
        sys.path.insert(0, folder)
    if folder:
        main['__file__'] = name
    else:
        remember_source(text, name)
    tree = compile(text, name, 'exec', ast.PyCF_ONLY_AST, dont_inherit=True)
    last = None
    if wants_value and tree.body and isinstance(tree.body[-1], ast.Expr):
        last = ast.Expression(tree.body.pop().value)
    exec(compile(tree, name, 'exec', dont_inherit=True), main)
    if last is None:
        return ''
    value = eval(compile(last, name, 'eval', dont_inherit=True), main)
    if value is None:
        return ''
    main['_'] = value
    return repr(value)


def describe(error, stopped):
    trace = error.__traceback__
    while trace is not None and trace.tb_frame.f_code.co_filename == FILE:
        trace = trace.tb_next
    if isinstance(error, SystemExit):
        code = error.code
        if code is None:
            return 'finished', 0, ''
        if isinstance(code, int):
            return 'finished', code & 255, ''
        return 'failed', 1, str(code)
    if stopped and isinstance(error, KeyboardInterrupt):
        place = ''
        for frame, line in traceback.walk_tb(trace):
            if frame.f_code.co_filename != FILE:
                place = ' in ' + frame.f_code.co_filename + ', line ' + str(line)
        return 'stopped', 130, 'Stopped' + place
    lines = traceback.format_exception(type(error), error, trace)
    return 'failed', 1, ''.join(lines).rstrip('\n')


def at_exit():
    atexit._run_exitfuncs()
    clear_main()
)";

/// The helpers; never let go of, since the interpreter stays until the process ends.
PyObject* Helpers = nullptr;
int StopsAsked = 0;

py::object Helper(const char* name)
{
    return py::reinterpret_borrow<py::dict>(Helpers)[name];
}

int RefuseToRun(PyObject*, PyFrameObject*, int, PyObject*)
{
    PyErr_SetNone(PyExc_KeyboardInterrupt);
    return -1;
}

void WriteText(const std::string& level, const py::str& text)
{
    // Lone surrogates, which no encoding takes, become question marks.
    const auto bytes =
        py::reinterpret_steal<py::bytes>(PyUnicode_AsEncodedString(text.ptr(), "utf-8", "replace"));
    if (!bytes)
        throw py::error_already_set();
    const QString words =
        QString::fromUtf8(PyBytes_AsString(bytes.ptr()), static_cast<int>(PyBytes_Size(bytes.ptr())));
    const auto channel = ScriptModule::CurrentChannel();
    const py::gil_scoped_release release;
    if (channel)
        channel->Write(level == "error" ? ScriptChannel::Level::Error : ScriptChannel::Level::Output, words);
}

void FlushText()
{
    const auto channel = ScriptModule::CurrentChannel();
    const py::gil_scoped_release release;
    if (channel)
        channel->Flush();
}

/// Ends the threads that the script has made, without a word, as soon as they run Python.
void StopOtherThreads()
{
    PyThreadState* const own = PyThreadState_Get();
    for (PyThreadState* each = PyInterpreterState_ThreadHead(PyInterpreterState_Get()); each;
         each = PyThreadState_Next(each))
    {
        if (each != own)
            PyThreadState_SetAsyncExc(each->thread_id, PyExc_SystemExit);
    }
}

/// Python's handler of the signal that interrupts: ends the script if it is to stop.
void OnSignal(int, const py::object&)
{
    const auto channel = ScriptModule::CurrentChannel();
    if (!channel || !channel->IsStopWanted())
        return;
    if (++StopsAsked == 1)
        StopOtherThreads();
    if (StopsAsked > PatientStops)
        PyEval_SetTrace(RefuseToRun, nullptr);
    PyErr_SetNone(PyExc_KeyboardInterrupt);
    throw py::error_already_set();
}

ScriptResult::Outcome OutcomeOf(const std::string& word)
{
    if (word == "finished")
        return ScriptResult::Outcome::Finished;
    return word == "stopped" ? ScriptResult::Outcome::Stopped : ScriptResult::Outcome::Failed;
}

void Describe(const py::object& error, bool stopped, ScriptResult* result)
{
    try
    {
        const auto [outcome, code, text] =
            Helper("describe")(error, stopped).cast<std::tuple<std::string, int, QString>>();
        result->outcome = OutcomeOf(outcome);
        result->exitCode = code;
        result->error = text;
    }
    catch (py::error_already_set& second)
    {
        result->outcome = ScriptResult::Outcome::Failed;
        result->exitCode = 1;
        result->error = QStringLiteral("%1 (its words could not be had)")
                            .arg(QString::fromUtf8(
                                py::str(error.get_type().attr("__name__")).cast<std::string>().c_str()));
        second.discard_as_unraisable("an error's words");
    }
}

} // namespace

bool ScriptBootstrap::Load(QString* error)
{
    try
    {
        py::dict helpers;
        helpers["__builtins__"] = py::module_::import("builtins");
        helpers["__name__"] = "torvalen.bootstrap";
        helpers["write_text"] = py::cpp_function(&WriteText);
        helpers["flush_text"] = py::cpp_function(&FlushText);
        helpers["on_signal"] = py::cpp_function(&OnSignal);
        const auto code =
            py::reinterpret_steal<py::object>(Py_CompileString(BootstrapText, BootstrapName, Py_file_input));
        if (!code)
            throw py::error_already_set();
        const auto ran =
            py::reinterpret_steal<py::object>(PyEval_EvalCode(code.ptr(), helpers.ptr(), helpers.ptr()));
        if (!ran)
            throw py::error_already_set();
        Helpers = helpers.inc_ref().ptr();
        Helper("begin")();
        Helper("clear_main")();
        return true;
    }
    catch (const std::exception& problem)
    {
        *error = QStringLiteral("Python's library is not whole: %1").arg(QString::fromUtf8(problem.what()));
        return false;
    }
}

void ScriptBootstrap::ClearMain()
{
    const py::gil_scoped_acquire acquire;
    try
    {
        Helper("clear_main")();
    }
    catch (py::error_already_set& error)
    {
        error.discard_as_unraisable("clearing __main__");
    }
}

ScriptResult ScriptBootstrap::Run(const Task& task)
{
    const py::gil_scoped_acquire acquire;
    ScriptResult result;
    StopsAsked = 0;
    try
    {
        const py::object text =
            task.folder.isEmpty() ? py::cast(task.text) : py::object(py::bytes(task.source.toStdString()));
        result.value =
            Helper("run")(text, task.name, task.arguments, task.folder, task.wantsValue).cast<QString>();
        task.onEnded();
    }
    catch (py::error_already_set& error)
    {
        PyEval_SetTrace(nullptr, nullptr);
        const bool stopped = task.onEnded();
        const py::object value = error.value();
        if (error.trace())
            PyException_SetTraceback(value.ptr(), error.trace().ptr());
        Describe(value, stopped, &result);
    }
    PyEval_SetTrace(nullptr, nullptr);
    FlushText();
    return result;
}

void ScriptBootstrap::RunAtExit()
{
    const py::gil_scoped_acquire acquire;
    try
    {
        Helper("at_exit")();
    }
    catch (py::error_already_set& error)
    {
        error.discard_as_unraisable("the functions at the end");
    }
}
