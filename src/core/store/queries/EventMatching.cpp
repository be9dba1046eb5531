#include "store/queries/EventMatching.h"

#include "records/dates/MTDates.h"
#include "store/queries/EventDates.h"

#include <cmath>

namespace matching {

namespace {

constexpr double tolerance = 60;

bool isNear(Date date, OptionalDate other)
{
    return other && std::abs((date - *other).count()) <= tolerance;
}

bool isAtTimesOf(const EntityTask &row, const EKEvent &event)
{
    if (!row.dueDate())
        return false;
    // A row over midnight has other dates than its event, but no other event has these.
    if (row.calendarID() == event.calendarItemExternalIdentifier && eventdates::areShownBy(row, event))
        return true;
    const bool isToDo = row.type().value_or(TaskType::ToDo) == TaskType::ToDo;
    const Date due = isToDo ? MTDates::endOfCurrentDay(*row.dueDate()) : *row.dueDate();
    return isNear(due, event.endDate) && (!row.startDate() || isNear(*row.startDate(), event.startDate));
}

} // namespace

TaskPtr rowOf(const EKEvent &event, const std::vector<TaskPtr> &candidates)
{
    TaskPtr best;
    for (const TaskPtr &row : candidates) {
        if (!row || !isAtTimesOf(*row, event))
            continue;
        if (event.isOfSeries())
            return row;
        const OptionalDate modified = row->lastModificationDate();
        if (modified && (!best || *modified > *best->lastModificationDate()))
            best = row;
    }
    return best;
}

} // namespace matching
