#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/EventWriter.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/SeriesRows.h"
#include "calendarsync/StoreReach.h"
#include "foundation/Log.h"
#include "records/copies/MVTask.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/EventDates.h"

// Taking tasks out of the calendars.

namespace {

TaskPtr leftOf(const TaskPtr &task)
{
    return task->context() && !task->isDeleted() ? task : nullptr;
}

void removeOffline(RecordsTransaction &transaction, const TaskPtr &task, Span span, bool isDeleteTasks)
{
    if (!isDeleteTasks)
        return EventWriter::initEventCalendarFromTask(transaction, *task, span, std::nullopt, true);
    if (span == Span::FutureTasks) {
        for (const TaskPtr &row : series::otherRows(*task)) {
            if (series::isLater(*row, *task))
                mainContext().deleteObject(row);
        }
    }
    mainContext().deleteObject(task);
}

bool removeFromStore(const EKEvent &event, EKSpan span)
{
    const auto error = EventStoreAccess::eventStore().removeEvent(event, span, true);
    if (error)
        Log::line(error->message);
    return !error;
}

/// A task that leaves the calendar gets a row of its own, so that no later pass pairs it with its old event.
TaskPtr replaceRow(const TaskPtr &task)
{
    task->setCalendarID(QString());
    MVTask copy(task);
    copy.detach();
    copy.save();
    mainContext().deleteObject(task);
    return copy.task();
}

TaskPtr removeSingle(const TaskPtr &task, bool isDeleteTasks)
{
    const std::vector<EKEvent> events = series::eventsOf(*task);
    std::optional<EKEvent> event;
    if (events.size() == 1)
        event = events.front();
    else
        event = EventReader::eventByStartDateOfTask(task->startDate() ? task->startDate() : task->dueDate(),
                                                    events);
    // An occurrence that was edited alone stands in its series still, of which the rest stays.
    if (event)
        removeFromStore(*event, event->hasRecurrenceRules() ? EKSpan::ThisEvent : EKSpan::FutureEvents);
    if (!isDeleteTasks)
        return replaceRow(task);
    mainContext().deleteObject(task);
    return nullptr;
}

/// The days of a task, by which its occurrence is found.
struct OccurrenceDays
{
    OptionalDate start;
    OptionalDate end;

    explicit OccurrenceDays(const EntityTask &task)
        : start(task.startDate())
        , end(task.dueDate())
    {
        if (end && task.type().value_or(TaskType::ToDo) == TaskType::ToDo)
            end = MTDates::endOfCurrentDay(*end);
    }
    bool isOf(const EKEvent &event) const
    {
        const bool hasSameEnd = end && MTDates::isWithinSameDay(lastMomentOf(event), *end);
        return hasSameEnd && (!start || MTDates::isWithinSameDay(*event.startDate, *start));
    }
    bool isBefore(const EKEvent &event) const
    {
        return start ? *event.startDate > *start : end && lastMomentOf(event) > *end;
    }
    static Date lastMomentOf(const EKEvent &event)
    {
        // A moment has no second before its end that would still be its own.
        return event.allDay || event.startDate == event.endDate ? *event.endDate
                                                                : *event.endDate - Seconds(1);
    }
};

std::vector<EKEvent> occurrencesOf(const EntityTask &task)
{
    const std::vector<EKEvent> known = series::eventsOf(task);
    std::vector<EKEvent> dated;
    for (const EKEvent &one : known) {
        // Another calendar can have a copy of the series.
        const bool isOfFirst = one.calendar && known.front().calendar &&
                               one.calendar->calendarIdentifier == known.front().calendar->calendarIdentifier;
        if (isOfFirst && one.startDate && one.endDate)
            dated.push_back(one);
    }
    return dated;
}

/// A series of which one event is left is none.
void endSeriesOfOne(const EntityTask &task)
{
    std::vector<EKEvent> left = series::eventsOf(task);
    // The window shows one of a yearly series too.
    if (left.size() != 1 || !left.front().hasRecurrenceRules() ||
        !EventStoreAccess::eventStore().isOnlyOccurrence(left.front()))
        return;
    left.front().recurrenceRules.clear();
    if (const auto error = EventStoreAccess::eventStore().saveEvent(left.front(), EKSpan::FutureEvents, true))
        return Log::line(error->message);
    // Nor is its row one of a series, which an edit would begin again.
    for (const TaskPtr &row : series::otherRows(task)) {
        if (!eventdates::areShownBy(*row, left.front()))
            continue;
        row->setRepeat(QString());
        row->setEndRepeat(std::nullopt);
    }
}

void keepAsDone(const EntityTask &task, EntityTask &row, OptionalDate endOfRule,
                const series::AlertOffsets &offsets)
{
    series::SharedFields(task).writeTo(row);
    row.setTitle(task.title());
    row.setDetails(task.details());
    row.setEndRepeat(endOfRule);
    row.setExpirationDate(MVDate::date());
    series::copyAlerts(task, row, offsets);
}

void removeFuture(const TaskPtr &task, bool isDeleteTasks, OptionalDate endOfRule)
{
    const auto offsets = series::AlertOffsets::of(*task);
    std::vector<TaskPtr> future = {task};
    std::vector<TaskPtr> earlier;
    for (const TaskPtr &row : series::otherRows(*task))
        (series::isLater(*row, *task) ? future : earlier).push_back(row);
    const OptionalDate day = task->startDate() ? task->startDate() : task->dueDate();
    for (const TaskPtr &row : earlier)
        row->setEndRepeat(day ? OptionalDate(MTDates::endOfCurrentDay(MVDate::addDay(-1, *day)))
                              : std::nullopt);
    for (const TaskPtr &row : future) {
        if (isDeleteTasks)
            mainContext().deleteObject(row);
        else
            keepAsDone(*task, *row, endOfRule, offsets);
    }
    if (isDeleteTasks && earlier.size() == 1) {
        earlier.front()->setRepeat(QString());
        earlier.front()->setEndRepeat(std::nullopt);
    }
}

void removeOne(RecordsTransaction &transaction, const TaskPtr &task, bool isDeleteTasks)
{
    task->setCalendarID(QString());
    task->setRepeat(QString());
    task->setEndRepeat(std::nullopt);
    if (!isDeleteTasks)
        return;
    transaction.passFor(task);
    mainContext().deleteObject(task);
}

void removeOccurrences(RecordsTransaction &transaction, const TaskPtr &task, Span span, bool isDeleteTasks)
{
    const OccurrenceDays days(*task);
    const bool isFuture = span == Span::FutureTasks;
    OptionalDate endOfRule;
    for (const EKEvent &event : occurrencesOf(*task)) {
        if (!days.isOf(event) && !(isFuture && days.isBefore(event)))
            continue;
        if (event.hasRecurrenceRules() && event.recurrenceRules.front().recurrenceEnd())
            endOfRule = event.recurrenceRules.front().recurrenceEnd()->endDate();
        if (removeFromStore(event, isFuture ? EKSpan::FutureEvents : EKSpan::ThisEvent))
            endSeriesOfOne(*task);
        break;
    }
    if (isFuture)
        removeFuture(task, isDeleteTasks, endOfRule);
    else
        removeOne(transaction, task, isDeleteTasks);
}

} // namespace

TaskPtr EventWriter::removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks)
{
    RecordsTransaction transaction;
    const TaskPtr row = removeEventCalendarFromTask(transaction, task, span, isDeleteTasks);
    transaction.settle();
    return row ? leftOf(row) : nullptr;
}

TaskPtr EventWriter::removeEventCalendarFromTask(RecordsTransaction &transaction, const TaskPtr &task,
                                                 Span span, bool isDeleteTasks)
{
    if (DBWorker::isSample()) {
        // Examples are on no calendar, but they can be deleted.
        if (isDeleteTasks)
            removeOffline(transaction, task, span, true);
    } else if (calendarstore::isOffline() || task->calendarID().isEmpty()) {
        removeOffline(transaction, task, span, isDeleteTasks);
    } else if (task->repeat().isEmpty()) {
        return removeSingle(task, isDeleteTasks);
    } else {
        removeOccurrences(transaction, task, span, isDeleteTasks);
    }
    return leftOf(task);
}
