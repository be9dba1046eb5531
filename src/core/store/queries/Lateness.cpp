#include "store/queries/Lateness.h"

#include "foundation/Clock.h"
#include "records/dates/MVDate.h"

Lateness::Lateness()
    : now(Clock::now())
    , startOfToday(MVDate::getStartOfDay(now))
{}

Date Lateness::bound(std::optional<TaskType> type) const
{
    return isMoment(type) ? now : startOfToday;
}

bool Lateness::isLate(std::optional<TaskType> type, OptionalDate dueDate) const
{
    return dueDate && *dueDate < bound(type);
}

Predicate Lateness::isLate(TaskType type) const
{
    return Predicate::format("dueDate < %@", bound(type));
}
