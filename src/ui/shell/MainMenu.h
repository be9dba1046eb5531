#pragma once

class Actions;
class QMenuBar;

/// The menu bar, made from the table of commands.
namespace MainMenu {

void fill(QMenuBar &menuBar, Actions &actions);

} // namespace MainMenu
