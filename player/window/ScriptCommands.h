// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

struct Command;
class ScriptBinding;

/// Appends the commands of scripts.
void AddScriptCommands(std::vector<Command>& commands, ScriptBinding* scripts);
