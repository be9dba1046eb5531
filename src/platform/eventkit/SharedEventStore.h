#pragma once

#include <memory>

class CalendarBackend;

/// What stores work on that are made without a backend; null if there is none.
std::shared_ptr<CalendarBackend> sharedCalendarBackend();
