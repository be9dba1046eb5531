#pragma once

#include "foundation/Date.h"
#include "objectstore/Predicate.h"
#include "store/entities/TaskValues.h"

#include <optional>
#include <vector>

/// Tells which open tasks are late at one moment: an Appointment or Email/Call as soon as its due date has
/// passed, a ToDo from the next day on. Days are compared as `MVDate::dayByPattern` gives them, with what
/// that does around New Year.
class Lateness
{
public:
    /// At this moment.
    Lateness();

    /// Whether a task of that type with that due date is late.
    bool isLate(std::optional<TaskType> type, OptionalDate dueDate) const;

    /// Conditions on the due date that exclude each other and pass, together, the tasks of that type that are
    /// late among those due from a day some years back on, whatever their status.
    std::vector<Predicate> recentlyLate(std::optional<TaskType> type) const;
    /// Passes the tasks due before that day; each of them must be asked by `isLate`.
    Predicate longPast() const;
    /// Passes all others, in words that leave the planner to an index on something else.
    Predicate notLongPast() const;

private:
    Date now;
    OptionalDate today;
    Date recentStart;
};
