#pragma once

#include "foundation/Calendar.h"
#include "foundation/Date.h"

#include <optional>

/// What becomes of a row that no event of a pass claimed. Pure: the facts decide.
namespace rowfate {

struct Facts
{
    bool isDone = false;
    bool hasCalendarItem = true;
    OptionalDate dueDate;
    /// The start, or else the due date.
    OptionalDate date;
    DateInterval window;
    bool allowsChanges = true;
    /// The pass was called for another task.
    bool isOutsideOfPass = false;
    /// The calendar that the row lies on is chosen.
    bool isCalendarChosen = true;
    bool wasCreatedOffCalendar = false;
    /// Its calendar item, or the occurrence of that which it shows, starts before or after the window.
    bool hasItemOutsideOfWindow = false;
    /// Another device made the row, and its calendar item was never seen on this one.
    bool awaitsItem = false;
};

enum class Fate { Stays, Goes };

struct Decision
{
    Fate fate;
    /// In words, for the log.
    const char *reason;
};

/// Without the two facts that cost a question to the store. Absent if these are needed.
std::optional<Decision> decideAtOnce(const Facts &facts);
Decision decide(const Facts &facts);

} // namespace rowfate
