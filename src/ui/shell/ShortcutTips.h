#pragma once

class QWidget;

/// Tips that say which keys do what a button does.
namespace ShortcutTips {

/// Gives them to all controls of a part of the window that a command stands behind.
void put(const QWidget &part);

} // namespace ShortcutTips
