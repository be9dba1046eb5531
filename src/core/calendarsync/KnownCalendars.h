#pragma once

#include "eventkit/EKCalendar.h"

#include <vector>

/// The calendars as they were last seen, on the disk: while the desktop's service does not answer, and at a
/// start without it, their tasks are still shown.
namespace knowncalendars {

/// None if nothing was ever seen.
std::vector<EKCalendar> read();
/// Writes them into the defaults if they are others than before.
void keep(const std::vector<EKCalendar> &calendars);

} // namespace knowncalendars
