#pragma once

#include "shell/Actions.h"
#include "shell/help/ShortcutsOverlay.h"

#include <vector>

/// The keys of the commands as the user reads them, made from the table of commands.
namespace Shortcuts {

/// The page of the guide with every command that has keys, menu by menu, in HTML.
QString page();
/// Commands with their keys in the given order; those without keys are left out.
std::vector<ShortcutsOverlay::Line> linesOf(const std::vector<ActionId> &commands);

} // namespace Shortcuts
