#pragma once

#include "foundation/Calendar.h"

#include <vector>

/// Appointments at the same time.
namespace CalendarClashes {

/// For each of some days whether two appointments meet on it. One that begins when another ends does not meet
/// it, and one without length meets nothing.
std::vector<bool> daysOf(std::vector<DateInterval> appointments, const std::vector<Date> &days);

} // namespace CalendarClashes
