#pragma once

#include "eventkit/RecurrencePattern.h"

#include <libical/ical.h>

// Rules and times as libical holds them. For source files only.

/// A floating time, or a date.
icaltimetype icalTime(const WallClock &clock, bool isDate);
/// The rule with all that the library's lists can hold of it.
icalrecurrencetype icalRule(const RecurrencePattern &pattern);
