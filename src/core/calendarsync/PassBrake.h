#pragma once

#include "store/entities/Entities.h"

#include <vector>

/// Keeps a pass from taking away much because a calendar went missing.
namespace passbrake {

/// Whether so many rows may go: also if there are more than 25 and more than a third of all linked ones, or
/// if no event is left where there were some at the last pass, provided that the user says so. The user is
/// asked once while the program runs.
bool mayDelete(const std::vector<TaskPtr> &rows, size_t linkedCount, size_t eventCount);

} // namespace passbrake
