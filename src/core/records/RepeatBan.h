#pragma once

#include "store/entities/Entities.h"

class MVTask;

/// Repeating tasks live in the calendar, so they can only be edited while it can be reached.
namespace RepeatBan {

/// Whether a task repeats while edits of repeats are barred.
bool concerns(const EntityTask &task);
bool concerns(const MVTask &task);
/// Tells the user why edits of repeats are barred; nothing if they are not.
void tell();

} // namespace RepeatBan
