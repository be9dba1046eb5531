#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

#include <optional>

/// Which type and dates a row has that shows an event.
namespace eventdates {

struct Taken
{
    TaskType type;
    /// Absent for a moment.
    OptionalDate start;
    Date due;
};

/// Absent for an event without a start or an end.
std::optional<Taken> of(const EKEvent &event);

/// Whether a row has them, each within a minute: whoever edited it left its type and dates alone.
bool areShownBy(const EntityTask &row, const EKEvent &event);

/// The moment of one of the event's alarms, counted from the start of a row, of a mail or call from its due
/// date; absent if there is no such
/// alarm, or no start to count from.
OptionalDate momentOfAlarm(const EKEvent &event, size_t place, const EntityTask &row);

} // namespace eventdates
