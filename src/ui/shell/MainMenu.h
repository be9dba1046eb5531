#pragma once

#include "shell/Actions.h"

#include <optional>
#include <vector>

class QMenuBar;

/// The menu bar, made from the table of commands.
namespace MainMenu {

/// A menu with its commands in their order.
struct Description
{
    /// In English.
    const char16_t *title;
    /// Nothing in place of a command is a separator.
    std::vector<std::optional<ActionId>> entries;
    /// The entry of another menu above which it lies; absent for a menu of the bar.
    std::optional<ActionId> before = {};
};

/// All menus, those of the bar in their order.
const std::vector<Description> &menus();

void fill(QMenuBar &menuBar, Actions &actions);

} // namespace MainMenu
