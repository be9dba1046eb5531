#include "store/queries/EventDates.h"

#include "records/dates/MTDates.h"

#include <cmath>

namespace eventdates {

namespace {

bool isNear(OptionalDate one, OptionalDate other)
{
    constexpr double lessThanAMinute = 59.5;
    return one.has_value() == other.has_value() &&
           (!one || std::abs((*one - *other).count()) <= lessThanAMinute);
}

} // namespace

std::optional<Taken> of(const EKEvent &event)
{
    if (!event.startDate || !event.endDate)
        return std::nullopt;
    const Date start = *event.startDate;
    Date end = *event.endDate;
    TaskType type = start == end ? TaskType::EmailCall : TaskType::Appointment;
    if (event.allDay) {
        type = TaskType::ToDo;
        if (MTDates::secondOfMinute(end) == 0)
            end = end - Seconds(1);
    }
    if (!MTDates::isWithinSameDay(start, end))
        return Taken{TaskType::ToDo, MTDates::startOfCurrentDay(start), end};
    return Taken{type, type == TaskType::EmailCall ? std::nullopt : OptionalDate(start), end};
}

bool areShownBy(const EntityTask &row, const EKEvent &event)
{
    const auto taken = of(event);
    return taken && row.type().value_or(TaskType::ToDo) == taken->type &&
           isNear(row.startDate(), taken->start) && isNear(row.dueDate(), taken->due);
}

OptionalDate momentOfAlarm(const EKEvent &event, size_t place, const EntityTask &row)
{
    if (event.alarms.size() <= place)
        return std::nullopt;
    const EKAlarm &alarm = event.alarms[place];
    if (alarm.absoluteDate())
        return alarm.absoluteDate();
    // A moment has no start but itself.
    const OptionalDate base = row.type() == TaskType::EmailCall ? row.dueDate() : row.startDate();
    return base ? OptionalDate(*base + Seconds(alarm.relativeOffset())) : std::nullopt;
}

} // namespace eventdates
