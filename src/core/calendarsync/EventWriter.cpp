#include "calendarsync/EventWriter.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarPass.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/SeriesRows.h"
#include "calendarsync/StoreReach.h"
#include "calendarsync/TaskToEvent.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

// From tasks to events. Where no calendar can be reached, the rows of a series are kept alike by themselves.

namespace {

EKSpan storeSpan(Span span)
{
    return span == Span::ThisTask ? EKSpan::ThisEvent : EKSpan::FutureEvents;
}

OptionalDate dateOf(const EntityTask &task)
{
    return task.startDate() ? task.startDate() : task.dueDate();
}

/// The event of a row that stands alone: its only one, or of several that of a day.
std::optional<EKEvent> eventOfSingle(const EntityTask &task, OptionalDate formerDate)
{
    const std::vector<EKEvent> events = series::eventsOf(task, formerDate);
    return events.size() == 1 ? std::optional(events.front())
                              : EventReader::eventByStartDateOfTask(formerDate, events);
}

std::optional<EKEvent> eventOfOccurrence(const EntityTask &task, OptionalDate formerDate)
{
    return EventReader::eventByStartDateOfTask(formerDate, series::eventsOf(task, formerDate));
}

/// An event that is there, with what is to be written to it; or a new one, which takes everything.
struct Draft
{
    EKEvent event;
    EventFields fields;

    Draft(const EntityTask &task, std::optional<EKEvent> found)
        : event(found ? *found : EKEvent::eventWithEventStore(EventStoreAccess::eventStore()))
        , fields(found ? EventFields::changedIn(task) : EventFields::all())
    {}
};

/// Saves the event. The row takes its identifier, and all that a pass would bring it: what others have
/// changed of the event, and the words of its calendar.
bool saveEventOf(EntityTask &task, EKEvent &event, Span span)
{
    EKEventStore &store = EventStoreAccess::eventStore();
    if (const auto error = store.saveEvent(event, storeSpan(span), true)) {
        Log::line(error->message);
        return false;
    }
    task.setCalendarID(event.calendarItemExternalIdentifier);
    CalendarPass::syncEvent(event, task);
    return true;
}

/// Whether one occurrence is to lie on another calendar than its series.
bool leavesCalendar(const Draft &draft, const EntityTask &task, Span span)
{
    if (!draft.fields.calendar)
        return false;
    const EKEvent &event = draft.event;
    const auto target = CalendarCatalogue::calendarOfIdentifier(task.typeCalendarID());
    return span == Span::ThisTask && event.hasRecurrenceRules() && event.calendar && target &&
           target->calendarIdentifier != event.calendar->calendarIdentifier;
}

/// There it becomes an event of its own, and its series goes without it.
bool moveAlone(EntityTask &task, const EKEvent &occurrence)
{
    EKEvent alone = EKEvent::eventWithEventStore(EventStoreAccess::eventStore());
    EventWriter::syncTask(task, alone);
    if (!saveEventOf(task, alone, Span::ThisTask))
        return false;
    if (const auto error = EventStoreAccess::eventStore().removeEvent(occurrence, EKSpan::ThisEvent, true))
        Log::line(error->message);
    return true;
}

bool write(EntityTask &task, Draft &draft, Span span)
{
    if (leavesCalendar(draft, task, span))
        return moveAlone(task, draft.event);
    taskevent::put(task, draft.event, draft.fields);
    return saveEventOf(task, draft.event, span);
}

void writeSingle(EntityTask &task, Span span, OptionalDate formerDate)
{
    Draft draft(task, eventOfSingle(task, formerDate));
    // An occurrence that was edited alone stands in its series still, which the next edit leaves alone too.
    if (write(task, draft, draft.event.hasRecurrenceRules() ? Span::ThisTask : span))
        EventWriter::setEventToDictionaryChangedEventsOfNow(draft.event);
}

/// The rows of a series from a date on, one excepted, which the store is about to give anew.
void deleteRowsFrom(OptionalDate date, const QString &calendarID, const EntityTask &kept)
{
    if (!date || calendarID.isEmpty())
        return;
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", calendarID)))) {
        const OptionalDate own = row ? dateOf(*row) : std::nullopt;
        const bool isFromThenOn = own && (*own > *date || MTDates::isWithinSameDay(*own, *date));
        if (isFromThenOn && row.get() != &kept)
            mainContext().deleteObject(row);
    }
}

bool canReadEvents()
{
    return EventReader::eventsForCalendars(CalendarCatalogue::getAllAccessCalendars()).has_value();
}

TaskPtr shared(EntityTask &task)
{
    return std::static_pointer_cast<EntityTask>(task.shared_from_this());
}

void takeSharedFields(const TaskPtr &task, const series::SharedFields &fields)
{
    fields.writeTo(*task);
    for (const TaskPtr &row : series::otherRows(*task))
        fields.writeTo(*row);
    const DateInterval seen = EventReader::window();
    if (task->startDate() && (*task->startDate() < seen.start || *task->startDate() > seen.end))
        mainContext().deleteObject(task);
}

void rebuildSeries(RecordsTransaction &transaction, const TaskPtr &task)
{
    transaction.passFor(task,
                        [task, fields = series::SharedFields(*task)] { takeSharedFields(task, fields); });
}

void writeOccurrence(RecordsTransaction &transaction, EntityTask &task, Span span, OptionalDate formerDate)
{
    const QString formerIdentifier = task.calendarID();
    Draft draft(task, eventOfOccurrence(task, formerDate));
    if (span == Span::FutureTasks && draft.fields.rule)
        EventWriter::setRecurrenceRuleFromEvent(draft.event, task);
    if (!write(task, draft, span) || span == Span::ThisTask)
        return;
    // Rows go only where the store can give them anew, and it can fall silent at any time.
    const auto held = EventStoreAccess::eventStore().holdContents();
    if (!canReadEvents())
        return;
    deleteRowsFrom(formerDate, formerIdentifier, task);
    rebuildSeries(transaction, shared(task));
}

void copyToSeries(const EntityTask &task)
{
    const auto offsets = series::AlertOffsets::of(task);
    for (const TaskPtr &row : series::otherRows(task))
        series::copyEdit(task, *row, offsets);
}

} // namespace

void taskevent::write(EntityTask &row, const EventFields &fields)
{
    auto event = eventOfSingle(row, dateOf(row));
    if (!event)
        return;
    put(row, *event, fields);
    saveEventOf(row, *event, event->hasRecurrenceRules() ? Span::ThisTask : Span::FutureTasks);
}

bool calendarstore::isOffline()
{
    return !EventStoreAccess::hasAccesToCalendar() || CalendarCatalogue::getAllAccessCalendars().empty() ||
           !state().isReachable;
}

void EventWriter::initEventCalendarFromTask(EntityTask &task, Span span, OptionalDate changeStartDue,
                                            bool wasRepeatRule)
{
    RecordsTransaction transaction;
    initEventCalendarFromTask(transaction, task, span, changeStartDue, wasRepeatRule);
    transaction.settle();
}

void EventWriter::initEventCalendarFromTask(RecordsTransaction &transaction, EntityTask &task, Span span,
                                            OptionalDate changeStartDue, bool wasRepeatRule)
{
    if (span == Span::ThisTask) {
        // An occurrence that is edited alone leaves its series.
        task.setRepeat(QString());
        task.setEndRepeat(std::nullopt);
    }
    if (DBWorker::isSample())
        return;
    if (calendarstore::isOffline()) {
        if (!task.repeat().isEmpty())
            copyToSeries(task);
        return;
    }
    if (task.status() == TaskStatus::Done || !task.dueDate())
        return;
    if (wasRepeatRule || !task.repeat().isEmpty())
        writeOccurrence(transaction, task, span, changeStartDue);
    else
        writeSingle(task, span, changeStartDue);
}

void EventWriter::changeEventCalendarStatusFromTask(const TaskPtr &task, Span withSpan,
                                                    OptionalDate withChangeStartDue)
{
    if (DBWorker::isSample() || !task->dueDate())
        return;
    if (task->status() == TaskStatus::Done)
        removeEventCalendarFromTask(task, withSpan, false);
    else
        initEventCalendarFromTask(*task, withSpan, withChangeStartDue, !task->repeat().isEmpty());
}

// The changes that this program made itself.

void EventWriter::setEventToDictionaryChangedEventsOfNow(const EKEvent &event)
{
    if (!event.eventIdentifier.isEmpty() && event.lastModifiedDate)
        calendarstore::state().changedEvents.insert_or_assign(event.eventIdentifier, *event.lastModifiedDate);
}

bool EventWriter::isEventInDictionaryChangedEventsOfNow(const EKEvent &event)
{
    return calendarstore::state().changedEvents.contains(event.eventIdentifier);
}

void EventWriter::removeEventFromDictionaryChangedEventsOfNow(const EKEvent &event)
{
    constexpr qint64 secondsKept = 6;
    const auto entry = calendarstore::state().changedEvents.find(event.eventIdentifier);
    if (entry != calendarstore::state().changedEvents.end() &&
        MTDates::secondsSinceDate(MVDate::date(), entry->second) >= secondsKept)
        calendarstore::state().changedEvents.erase(entry);
}

void EventWriter::removeAllObectsFromDictionaryChangedEventsOfNow()
{
    calendarstore::state().changedEvents.clear();
}
