#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/EventWriter.h"
#include "calendarsync/OfflineChanges.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/SeriesRows.h"
#include "calendarsync/StoreReach.h"
#include "eventkit/CalendarError.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/EventDates.h"

// Taking tasks out of the calendars.

namespace {

void removeOffline(RecordsTransaction &transaction, const TaskPtr &task, Span span, bool isDeleteTasks)
{
    if (!isDeleteTasks && task->calendarID().isEmpty())
        return EventWriter::initEventCalendarFromTask(transaction, *task, span, std::nullopt, true);
    if (!isDeleteTasks) {
        // An occurrence that is ticked off alone leaves its series.
        if (span == Span::ThisTask) {
            task->setRepeat(QString());
            task->setEndRepeat(std::nullopt);
        }
        return offlinechanges::keepForLater(*task, span);
    }
    offlinechanges::keepDeletionForLater(*task, span);
    if (span == Span::FutureTasks) {
        for (const TaskPtr &row : series::otherRows(*task)) {
            if (series::isLater(*row, *task))
                mainContext().deleteObject(row);
        }
    }
    mainContext().deleteObject(task);
}

/// Whether the calendars cannot be asked or written now; other failures leave the event where it is.
bool mustWait(const OptionalError &error)
{
    if (error)
        Log::line(error->message);
    return error && !CalendarError::isRefusal(error);
}

OptionalError removeEventOfSingle(const EntityTask &task)
{
    const auto found = series::eventsOf(task);
    if (!found)
        return found.error();
    const std::vector<EKEvent> &events = found.value();
    const bool isOnly = events.size() == 1 && EventReader::standsAlone(events.front());
    const auto event = isOnly ? std::optional(events.front()) : EventReader::eventShownBy(task, events);
    if (!event)
        return std::nullopt;
    // An occurrence that was edited alone, or whose rule no row can say, stands in its series still, of which
    // the rest stays.
    return EventStoreAccess::eventStore().removeEvent(
        *event, event->isOfSeries() ? EKSpan::ThisEvent : EKSpan::FutureEvents, true);
}

/// A task that stays keeps its row, and with it its history and the place that it has in lists and windows.
/// No later pass pairs it with its former event: it names none, and is done or has no date.
void removeSingle(RecordsTransaction &transaction, const TaskPtr &task, Span span, bool isDeleteTasks)
{
    if (mustWait(removeEventOfSingle(*task)))
        removeOffline(transaction, task, span, isDeleteTasks);
    else if (isDeleteTasks)
        mainContext().deleteObject(task);
    else
        task->setCalendarID(QString());
}

/// The first occurrence that goes with a task: its own, or where that is not there, the next one if all later
/// ones go too.
std::optional<EKEvent> firstThatGoes(const EntityTask &task, bool isFuture,
                                     const std::vector<EKEvent> &occurrences)
{
    auto own = EventReader::eventShownBy(task, occurrences);
    const OptionalDate date = task.startDate() ? task.startDate() : task.dueDate();
    if (own || !isFuture || !date)
        return own;
    // In the order of the series: one that was moved behind the date can be older than it.
    std::optional<EKEvent> next;
    for (const EKEvent &event : occurrences) {
        const bool isLater = event.occurrenceDate && *event.occurrenceDate > *date;
        if (isLater && (!next || *event.occurrenceDate < *next->occurrenceDate))
            next = event;
    }
    return next;
}

Result<std::vector<EKEvent>> occurrencesOf(const EntityTask &task)
{
    const auto known = series::eventsOf(task);
    if (!known)
        return known;
    const auto &first = known.value().empty() ? std::nullopt : known.value().front().calendar;
    std::vector<EKEvent> dated;
    for (const EKEvent &one : known.value()) {
        // Another calendar can have a copy of the series.
        const bool isOfFirst =
            one.calendar && first && one.calendar->calendarIdentifier == first->calendarIdentifier;
        if (isOfFirst && one.startDate && one.endDate)
            dated.push_back(one);
    }
    return dated;
}

/// A series of which one event is left is none.
void endSeriesOfOne(const EntityTask &task)
{
    auto found = series::eventsOf(task);
    if (!found)
        return Log::line(found.error().message);
    std::vector<EKEvent> &left = found.value();
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

/// Until when a series repeats. Where it ends after a number of times, the rows that leave it could not count
/// them later.
OptionalDate endOfSeries(const EKEvent &event)
{
    const auto end =
        event.hasRecurrenceRules() ? event.recurrenceRules.front().recurrenceEnd() : std::nullopt;
    if (!end || end->occurrenceCount() == 0)
        return end ? end->endDate() : std::nullopt;
    const OptionalDate last = EKEventStore::lastStartOf(event);
    return last ? OptionalDate(MTDates::endOfCurrentDay(*last)) : std::nullopt;
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
        row->setEndRepeat(day ? OptionalDate(MTDates::endOfCurrentDay(*day)) : std::nullopt);
    const bool isPutOff = !isDeleteTasks && task->status() != TaskStatus::Done;
    for (const TaskPtr &row : future) {
        if (isPutOff && row == task)
            continue;
        // What was done before is not undone with what comes.
        if (isPutOff && row->status() == TaskStatus::Done)
            continue;
        if (isDeleteTasks || isPutOff)
            mainContext().deleteObject(row);
        else
            keepAsDone(*task, *row, endOfRule, offsets);
    }
    if (isPutOff) {
        task->setCalendarID(QString());
        task->setRepeat(QString());
        task->setEndRepeat(std::nullopt);
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
    const bool isFuture = span == Span::FutureTasks;
    OptionalDate endOfRule;
    const auto occurrences = occurrencesOf(*task);
    if (!occurrences && mustWait(occurrences.error()))
        return removeOffline(transaction, task, span, isDeleteTasks);
    const auto event =
        firstThatGoes(*task, isFuture, occurrences ? occurrences.value() : std::vector<EKEvent>());
    if (event) {
        endOfRule = endOfSeries(*event);
        const auto error = EventStoreAccess::eventStore().removeEvent(
            *event, isFuture ? EKSpan::FutureEvents : EKSpan::ThisEvent, true);
        if (mustWait(error))
            return removeOffline(transaction, task, span, isDeleteTasks);
        if (!error)
            endSeriesOfOne(*task);
    }
    if (isFuture)
        removeFuture(task, isDeleteTasks, endOfRule);
    else
        removeOne(transaction, task, isDeleteTasks);
}

} // namespace

void EventWriter::removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks)
{
    RecordsTransaction transaction;
    removeEventCalendarFromTask(transaction, task, span, isDeleteTasks);
    transaction.settle();
}

void EventWriter::removeEventCalendarFromTask(RecordsTransaction &transaction, const TaskPtr &task, Span span,
                                              bool isDeleteTasks)
{
    if (DBWorker::isSample()) {
        // Examples are on no calendar, but they can be deleted.
        if (isDeleteTasks)
            removeOffline(transaction, task, span, true);
    } else if (calendarstore::isOffline() || task->calendarID().isEmpty()) {
        removeOffline(transaction, task, span, isDeleteTasks);
    } else if (task->repeat().isEmpty()) {
        removeSingle(transaction, task, span, isDeleteTasks);
    } else {
        removeOccurrences(transaction, task, span, isDeleteTasks);
    }
}
