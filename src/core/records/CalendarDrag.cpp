#include "records/CalendarDrag.h"

#include "foundation/Calendar.h"
#include "records/RepeatBan.h"
#include "records/dates/MVDate.h"

void TaskDates::putInto(MVTask &task) const
{
    const auto base = [&task](const TaskDates &dates) {
        return task.isEmailCall() || !dates.start ? dates.due : dates.start;
    };
    const OptionalDate before = base(of(task));
    const OptionalDate after = base(*this);
    for (OptionalDate *alert : {&task.alert, &task.secondAlert}) {
        if (*alert && before && after)
            *alert = **alert + (*after - *before);
    }
    task.startDate = start;
    task.dueDate = due;
}

bool CalendarDrag::isMovable(const MVTask &task)
{
    return task.status != TaskStatus::Done && task.allowsContentModifications.value_or(true) &&
           !RepeatBan::concerns(task);
}

TaskDates CalendarDrag::movedTo(const MVTask &task, Date start)
{
    if (task.isEmailCall())
        return {start, start};
    const OptionalDate from = task.startDate ? task.startDate : task.dueDate;
    return {start, task.dueDate ? OptionalDate(start + (*task.dueDate - *from)) : std::nullopt};
}

TaskDates CalendarDrag::resizedTo(const MVTask &task, Edge edge, Date moment, Seconds least)
{
    TaskDates dates = TaskDates::of(task);
    if (edge == Edge::Start)
        dates.start = dates.due ? std::min(moment, *dates.due - least) : moment;
    else
        dates.due = dates.start ? std::max(moment, *dates.start + least) : moment;
    return dates;
}

TaskDates CalendarDrag::movedByDays(const MVTask &task, int days)
{
    const auto moved = [days](Date date) { return MVDate::addDay(days, date); };
    const OptionalDate from = task.startDate ? task.startDate : task.dueDate;
    if (!from || !task.dueDate)
        return TaskDates::of(task);
    return {MVDate::getStartOfDay(moved(*from)), MVDate::getEndOfDay(moved(*task.dueDate))};
}

std::optional<TaskDates> CalendarDrag::resizedByDays(const MVTask &task, Edge edge, int days)
{
    const TaskDates moved = movedByDays(task, days);
    TaskDates dates = TaskDates::of(task);
    (edge == Edge::Start ? dates.start : dates.due) = edge == Edge::Start ? moved.start : moved.due;
    if (dates.start && dates.due && *dates.due < *dates.start)
        return std::nullopt;
    return dates;
}

void CalendarDrag::planAt(MVTask &task, Date moment)
{
    constexpr Seconds usualLength{3600};
    if (task.isToDo())
        return planOn(task, moment);
    TaskDates dates = movedTo(task, moment);
    if (!dates.due)
        dates.due = moment + usualLength;
    dates.putInto(task);
    task.dueSomeDay = false;
}

void CalendarDrag::planOn(MVTask &task, Date day)
{
    constexpr int usualHour = 9;
    const Calendar calendar = Calendar::current();
    const OptionalDate from = task.startDate ? task.startDate : task.dueDate;
    if (!task.isToDo()) {
        const int hour = from ? calendar.hour(*from) : usualHour;
        const int minute = from ? calendar.minute(*from) : 0;
        return planAt(task, MVDate::setTimeWithCurrentDate(day, hour, minute, 0));
    }
    TaskDates dates{MVDate::getStartOfDay(day), MVDate::getEndOfDay(day)};
    if (from && task.dueDate)
        dates = movedByDays(task, calendar.dayNumber(day) - calendar.dayNumber(*from));
    dates.putInto(task);
    task.dueSomeDay = false;
}

TaskDates CalendarDrag::shiftedByDays(const MVTask &task, int days)
{
    const auto shifted = [days](OptionalDate date) {
        return date ? OptionalDate(Calendar::current().dateByAdding(CalendarUnit::Day, days, *date)) : date;
    };
    const OptionalDate due = shifted(task.dueDate);
    if (task.isEmailCall())
        return {due, due};
    return {task.startDate ? shifted(task.startDate) : due, due};
}
