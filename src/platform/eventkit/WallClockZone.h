#pragma once

#include "eventkit/WallClock.h"
#include "foundation/Calendar.h"

#include <QByteArray>

// The clocks of time zones by name: IANA names, and those that `registeredTimeZone` gives.

/// The calendar of a zone; for an empty name that of the user. Made once for each zone and thread.
const Calendar &calendarOfZone(const QByteArray &zone);
/// Whether the system knows a zone by this name.
bool isKnownZone(const QByteArray &name);
