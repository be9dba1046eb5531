#pragma once

#include "foundation/Date.h"
#include "objectstore/Predicate.h"
#include "store/entities/TaskValues.h"

#include <optional>

/// Tells which open tasks are late at one moment: an Appointment or Email/Call as soon as its due date has
/// passed, a ToDo from the next day on. A task without a type counts as a ToDo.
class Lateness
{
public:
    /// At this moment.
    Lateness();

    /// Whether a task of that type with that due date is late.
    bool isLate(std::optional<TaskType> type, OptionalDate dueDate) const;
    /// Passes those of that type that are late, whatever their status.
    Predicate isLate(TaskType type) const;

private:
    /// What a due date must lie before.
    Date bound(std::optional<TaskType> type) const;

    Date now;
    Date startOfToday;
};
