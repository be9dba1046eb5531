#pragma once

namespace calendarstore {

/// Whether there is no access to the calendars, or none is chosen.
bool isOffline();

} // namespace calendarstore
