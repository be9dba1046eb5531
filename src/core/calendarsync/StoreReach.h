#pragma once

namespace calendarstore {

/// Whether there is no access to the calendars, none is chosen, or they cannot be reached.
bool isOffline();

} // namespace calendarstore
