// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

class ScriptChannel;
class ScriptHost;

/// The player that scripts act on. From any thread: a script may have threads of its own.
namespace ScriptCurrent
{

struct Player
{
    /// Null while there is none.
    std::shared_ptr<ScriptChannel> channel;
    /// For the GUI thread alone, within a call through the channel.
    ScriptHost* host = nullptr;
};

void Set(const std::shared_ptr<ScriptChannel>& channel, ScriptHost* host);
/// Leaves scripts without a player if theirs is that of @p channel.
void Clear(const std::shared_ptr<ScriptChannel>& channel);
Player Get();

} // namespace ScriptCurrent
