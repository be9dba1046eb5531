#pragma once

/// Cut, copy and paste in whatever text has the keys.
namespace TextCommands {

bool canCut();
bool canCopy();
bool canPaste();
void cut();
void copy();
void paste();

} // namespace TextCommands
