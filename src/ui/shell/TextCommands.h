#pragma once

/// The commands of the Edit menu in whatever text has the keys.
namespace TextCommands {

/// Whether a text has the keys, which the commands of a list then leave alone.
bool hasText();
/// Whether Undo and Redo belong to that text.
bool hasSteps();

bool canCut();
bool canCopy();
bool canPaste();
bool canRemove();
bool canUndo();
bool canRedo();
void cut();
void copy();
void paste();
/// Takes the selected part away.
void remove();
void selectAll();
void undo();
void redo();

} // namespace TextCommands
