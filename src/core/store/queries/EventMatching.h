#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

#include <vector>

/// Which row an event belongs to. Pure: it looks at nothing but what it is given.
namespace matching {

/// The row of an event.
/// \param candidates rows of its title or identifier that are not done, by due date ascending.
/// Only rows at the times of the event, each within a minute, count, and those of its identifier with the
/// dates that a pass gave them. Of a series the first is taken, of a single event the one that was changed
/// last; null if there is none, or none with a date of change.
TaskPtr rowOf(const EKEvent &event, const std::vector<TaskPtr> &candidates);

} // namespace matching
