#include "calendarsync/CalendarEvent.h"
#include "calendarsync/SeriesRows.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

// From tasks to events. Where no calendar can be reached, the rows of a series are kept alike by themselves.

namespace {

bool isOffline()
{
    return !CalendarEvent::hasAccesToCalendar() || CalendarEvent::getAllAccessCalendars().empty();
}

void deleteOffline(const TaskPtr &task, Span span)
{
    if (span == Span::FutureTasks) {
        for (const TaskPtr &row : series::otherRows(*task)) {
            if (series::isLater(*row, *task))
                mainContext().deleteObject(row);
        }
    }
    mainContext().deleteObject(task);
}

} // namespace

void CalendarEvent::initEventCalendarFromTask(EntityTask &task, Span span, OptionalDate, bool)
{
    if (span == Span::ThisTask) {
        // An occurrence that is edited alone leaves its series.
        task.setRepeat(QString());
        task.setEndRepeat(std::nullopt);
    }
    if (DBWorker::isSample() || task.repeat().isEmpty() || !isOffline())
        return;
    const auto offsets = series::AlertOffsets::of(task);
    for (const TaskPtr &row : series::otherRows(task))
        series::copyEdit(task, *row, offsets);
}

void CalendarEvent::changeEventCalendarStatusFromTask(const TaskPtr &task, Span withSpan,
                                                      OptionalDate withChangeStartDue)
{
    if (DBWorker::isSample() || !task->dueDate())
        return;
    if (task->status() == static_cast<int>(TaskStatus::Done))
        removeEventCalendarFromTask(task, withSpan, false);
    else
        initEventCalendarFromTask(*task, withSpan, withChangeStartDue, !task->repeat().isEmpty());
}

void CalendarEvent::removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks)
{
    // Examples are on no calendar, but they can be deleted.
    if (DBWorker::isSample() && !isDeleteTasks)
        return;
    if (!isDeleteTasks)
        return initEventCalendarFromTask(*task, span, std::nullopt, true);
    deleteOffline(task, span);
}
