// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "scripting/ScriptChannel.h"
#include "scripting/module/QStringCaster.h"

#include <QUuid>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

class ProjectTimeline;
class ScriptHost;

/// The module "torvalen", as Python asks for it.
extern "C" PyObject* PyInit_torvalen();

/// What the parts of the module have in common. The functions of the module run on the script's thread; what
/// they do to the player they hand to OnGui().
///
/// Bad arguments become Python's own exceptions: std::invalid_argument is a ValueError, std::runtime_error a
/// RuntimeError.
namespace ScriptModule
{

/// The way of scripts to the player; null while there is none.
std::shared_ptr<ScriptChannel> CurrentChannel();

/// Makes @p call on the GUI thread and waits for it, without the interpreter's lock; raises KeyboardInterrupt
/// if the script is to stop or the player is going.
void CallOnGui(const std::function<void(ScriptHost&)>& call);
/// Waits for @p seconds, or raises KeyboardInterrupt if the script is to stop meanwhile.
void Wait(double seconds);

/// The text of a message for an exception.
inline std::string Words(const QString& text)
{
    return text.toStdString();
}

/// Runs @p function on the GUI thread and returns what it returns, or throws what it throws. It must hold all
/// that it needs by value, and nothing of Python: a script that is stopped does not wait for it.
template<typename Function>
auto OnGui(Function function)
{
    using Result = std::invoke_result_t<Function, ScriptHost&>;
    struct State
    {
        std::conditional_t<std::is_void_v<Result>, bool, std::optional<Result>> result{};
        std::exception_ptr error;
    };
    const auto state = std::make_shared<State>();
    CallOnGui(
        [state, function = std::move(function)](ScriptHost& host) mutable
        {
            try
            {
                if constexpr (std::is_void_v<Result>)
                    function(host);
                else
                    state->result.emplace(function(host));
            }
            catch (...)
            {
                state->error = std::current_exception();
            }
        });
    if (state->error)
        std::rethrow_exception(state->error);
    if constexpr (!std::is_void_v<Result>)
        return std::move(*state->result);
}

/// A timeline, or another object of the project, as scripts hold it: by its id, so that it may have gone.
struct ObjectHandle
{
    QUuid id;
};

/// On the GUI thread: the timeline that @p handle names, or the one that leads without any. Throws where
/// there is none.
std::shared_ptr<ProjectTimeline> TimelineFor(ScriptHost& host, const std::optional<ObjectHandle>& handle);
/// On the GUI thread: @p frame, or the frame under the playhead of @p timeline without any. Throws where the
/// timeline has no such frame.
int FrameFor(ScriptHost& host, ProjectTimeline& timeline, std::optional<int> frame);

/// Turns a viewer's name, "A" or "B", into its number (0 or 1).
int ViewerNumber(const QString& name);
QString ViewerName(int viewer);

// The parts

void AddTimelines(pybind11::module_& module);
void AddBookmarks(pybind11::module_& module);
void AddAnnotations(pybind11::module_& module);
void AddCommands(pybind11::module_& module);
void AddPlayback(pybind11::module_& module);
void AddViewers(pybind11::module_& module);
void AddOutput(pybind11::module_& module);
void AddSettings(pybind11::module_& module);
void AddLog(pybind11::module_& module);

} // namespace ScriptModule
