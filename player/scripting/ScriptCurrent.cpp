// SPDX-License-Identifier: MIT
#include "scripting/ScriptCurrent.h"

#include <mutex>

namespace
{

struct GuardedPlayer
{
    std::mutex mutex;
    ScriptCurrent::Player player;
};

GuardedPlayer& CurrentPlayer()
{
    // Never destroyed: a thread of a script may outlive everything.
    static auto* const current = new GuardedPlayer;
    return *current;
}

} // namespace

void ScriptCurrent::Set(const std::shared_ptr<ScriptChannel>& channel, ScriptHost* host)
{
    const std::lock_guard lock(CurrentPlayer().mutex);
    CurrentPlayer().player = Player{channel, host};
}

void ScriptCurrent::Clear(const std::shared_ptr<ScriptChannel>& channel)
{
    const std::lock_guard lock(CurrentPlayer().mutex);
    if (CurrentPlayer().player.channel == channel)
        CurrentPlayer().player = Player();
}

ScriptCurrent::Player ScriptCurrent::Get()
{
    const std::lock_guard lock(CurrentPlayer().mutex);
    return CurrentPlayer().player;
}
