// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

struct Command;
class PanelArea;

/// Appends the commands that show and hide the panels of @p panels to @p commands.
void AddPanelCommands(std::vector<Command>& commands, PanelArea* panels);

/// Shows or hides the project's panel; while Settings::linkProjectViewAndDetailsViewVisibility holds, the
/// panel of details goes with it.
void ToggleProjectPanel(PanelArea* panels);
