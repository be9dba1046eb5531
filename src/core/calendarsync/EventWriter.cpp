#include "calendarsync/EventWriter.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarPass.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/OfflineChanges.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/SeriesRows.h"
#include "calendarsync/StoreReach.h"
#include "calendarsync/TaskToEvent.h"
#include "eventkit/CalendarError.h"
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

using FoundEvent = Result<std::optional<EKEvent>>;

/// Whether a task that was done is open again, whose event was taken out of the calendar.
bool isOpenedAgain(const EntityTask &task)
{
    return task.changedColumns().test(static_cast<size_t>(EntityTask::column<"status">()));
}

/// That of an occurrence which had a date before the edit. A series that has none there, or several, gets no
/// event beside it.
FoundEvent occurrenceOf(const EntityTask &task, OptionalDate formerDate, const std::vector<EKEvent> &events)
{
    const auto found = EventReader::eventByStartDateOfTask(formerDate ? formerDate : dateOf(task), events);
    const bool isLost = !found && !isOpenedAgain(task) && std::ranges::any_of(events, &EKEvent::isOfSeries);
    if (isLost)
        return CalendarError::make(CalendarError::Invalid,
                                   QStringLiteral("The series has no such occurrence."));
    return found;
}

/// The event of a row that stands alone: its only one, or of several that of a day.
FoundEvent eventOfSingle(const EntityTask &task, OptionalDate formerDate)
{
    const auto events = series::eventsOf(task, formerDate);
    if (!events)
        return events.error();
    if (events.value().size() == 1 && EventReader::standsAlone(events.value().front()))
        return std::optional(events.value().front());
    return occurrenceOf(task, formerDate, events.value());
}

FoundEvent eventOfOccurrence(const EntityTask &task, OptionalDate formerDate)
{
    const auto events = series::eventsOf(task, formerDate);
    if (!events)
        return events.error();
    return occurrenceOf(task, formerDate, events.value());
}

/// What the event of a task is called that waits for its first one; empty for any other task. Each device of
/// the user that can reach the calendar writes it, maybe before it hears of the others: in the account these
/// are one event.
QString nameOfFirstEvent(const EntityTask &task)
{
    return task.wasCreatedOffCalendar() && task.calendarID().isEmpty() ? task.identifier() : QString();
}

/// The first event of a task, if another device has made it and the account has brought it.
FoundEvent orOfOtherDevice(FoundEvent found, const EntityTask &task)
{
    const QString name = nameOfFirstEvent(task);
    if (!found || found.value() || name.isEmpty())
        return found;
    const auto events = EventReader::eventsOfRow(name, task.typeCalendarID(), {dateOf(task)});
    return events && !events.value().empty() ? FoundEvent(events.value().front()) : found;
}

/// An event that is there, with what is to be written to it; or a new one, which takes everything.
struct Draft
{
    EKEvent event;
    EventFields fields;

    Draft(const EntityTask &task, std::optional<EKEvent> found)
        : event(found ? *found : EKEvent::eventWithEventStore(EventStoreAccess::eventStore()))
        , fields(found ? EventFields::changedIn(task) : EventFields::all())
    {
        if (!found)
            event.calendarItemExternalIdentifier = nameOfFirstEvent(task);
    }
};

/// The row takes the identifier of its saved event, and all that a pass would bring it: what others have
/// changed of the event, and the words of its calendar.
void take(EntityTask &task, const EKEvent &event)
{
    task.setCalendarID(event.calendarItemExternalIdentifier);
    if (task.wasCreatedOffCalendar())
        task.setWasCreatedOffCalendar(false);
    CalendarPass::syncEvent(event, task);
}

OptionalError saveEventOf(EntityTask &task, EKEvent &event, Span span)
{
    if (auto error = EventStoreAccess::eventStore().saveEvent(event, storeSpan(span), true))
        return error;
    take(task, event);
    return std::nullopt;
}

/// The other calendar on which one occurrence is to lie; absent if it stays with its series.
std::optional<EKCalendar> newCalendar(const Draft &draft, const EntityTask &task, Span span)
{
    const EKEvent &event = draft.event;
    if (!draft.fields.calendar || span != Span::ThisTask || !event.isOfSeries() || !event.calendar)
        return std::nullopt;
    auto target = CalendarCatalogue::calendarOfIdentifier(task.typeCalendarID());
    const bool isOther = target && target->calendarIdentifier != event.calendar->calendarIdentifier;
    return isOther ? target : std::nullopt;
}

OptionalError write(EntityTask &task, Draft &draft, Span span)
{
    EKEventStore &store = EventStoreAccess::eventStore();
    const auto target = newCalendar(draft, task, span);
    const auto together = target ? store.together() : nullptr;
    if (target) {
        if (auto error = store.moveOccurrence(draft.event, *target, false))
            return error;
    }
    taskevent::put(task, draft.event, draft.fields);
    return saveEventOf(task, draft.event, span);
}

OptionalError writeSingle(EntityTask &task, Span span, OptionalDate formerDate)
{
    const FoundEvent found = orOfOtherDevice(eventOfSingle(task, formerDate), task);
    if (!found)
        return found.error();
    Draft draft(task, found.value());
    // An occurrence that was edited alone stands in its series still, which the next edit leaves alone too.
    if (auto error = write(task, draft, draft.event.isOfSeries() ? Span::ThisTask : span))
        return error;
    EventWriter::setEventToDictionaryChangedEventsOfNow(draft.event);
    return std::nullopt;
}

/// The rows of a series from a date on, one excepted, which the store is about to give anew.
void deleteRowsFrom(OptionalDate date, const QString &calendarID, const EntityTask &kept)
{
    if (!date || calendarID.isEmpty())
        return;
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", calendarID)))) {
        const OptionalDate own = row ? dateOf(*row) : std::nullopt;
        // An earlier occurrence of the same day belongs to the part that stays. What was done is on no
        // calendar, which could not give it anew.
        const bool isFromThenOn = own && *own >= *date && row->status() != TaskStatus::Done;
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
    for (const TaskPtr &row : series::otherRows(*task)) {
        const bool isEarlier = series::isLater(*task, *row);
        if (!isEarlier && row->status() != TaskStatus::Done)
            fields.writeTo(*row);
    }
    const DateInterval seen = EventReader::window();
    if (task->startDate() && (*task->startDate() < seen.start || *task->startDate() > seen.end))
        mainContext().deleteObject(task);
}

void rebuildSeries(RecordsTransaction &transaction, const TaskPtr &task, std::shared_ptr<void> held)
{
    transaction.passFor(
        task, [task, fields = series::SharedFields(*task)] { takeSharedFields(task, fields); },
        std::move(held));
}

OptionalError writeOccurrence(RecordsTransaction &transaction, EntityTask &task, Span span,
                              OptionalDate formerDate)
{
    const QString formerIdentifier = task.calendarID();
    const FoundEvent found = orOfOtherDevice(eventOfOccurrence(task, formerDate), task);
    if (!found)
        return found.error();
    Draft draft(task, found.value());
    if (span == Span::FutureTasks && draft.fields.rule)
        EventWriter::setRecurrenceRuleFromEvent(draft.event, task);
    if (auto error = write(task, draft, span); error || span == Span::ThisTask)
        return error;
    // Rows go only where the store can give them anew, and it can fall silent at any time.
    auto held = EventStoreAccess::eventStore().holdContents();
    if (!canReadEvents())
        return std::nullopt;
    deleteRowsFrom(formerDate, formerIdentifier, task);
    rebuildSeries(transaction, shared(task), std::move(held));
    return std::nullopt;
}

/// The event of a date; of an identifier that stands once, that one.
std::optional<EKEvent> eventOfDate(const std::vector<EKEvent> &events, OptionalDate date)
{
    if (events.size() == 1 && EventReader::standsAlone(events.front()))
        return events.front();
    return EventReader::eventByStartDateOfTask(date, events);
}

} // namespace

/// Why an event that is not found may still be there: its calendar is not one of those that can be read now.
static OptionalError absenceOf(const QString &calendar)
{
    const auto isNamed = [&calendar](const EKCalendar &one) {
        return CalendarCatalogue::identifierOfCalendar(one) == calendar;
    };
    if (calendar.isEmpty() || std::ranges::any_of(CalendarCatalogue::getAllAccessCalendars(), isNamed))
        return std::nullopt;
    return CalendarError::make(CalendarError::Storage,
                               QStringLiteral("The calendar %1 is not there at present.").arg(calendar));
}

bool taskevent::isOffCalendar(const EntityTask &row)
{
    return row.status() == TaskStatus::Done || !row.dueDate() ||
           (!row.startDate() && row.type() != TaskType::EmailCall);
}

OptionalError taskevent::write(EntityTask &row, const EventFields &fields, Span span, OptionalDate day,
                               const QString &identifier)
{
    const QString formerIdentifier = row.calendarID();
    const auto events = series::eventsOf(row, day);
    if (!events)
        return events.error();
    const auto found = eventOfDate(events.value(), day);
    if (!found && !formerIdentifier.isEmpty())
        return absenceOf(row.typeCalendarID());
    EKEvent event = found ? *found : EKEvent::eventWithEventStore(EventStoreAccess::eventStore());
    if (!found)
        event.calendarItemExternalIdentifier = identifier;
    const bool isOfSeries = span == Span::FutureTasks && !row.repeat().isEmpty();
    if (isOfSeries && fields.rule)
        EventWriter::setRecurrenceRuleFromEvent(event, row);
    put(row, event, found ? fields : EventFields::all());
    const bool isAlone = event.isOfSeries() && !isOfSeries;
    if (auto error = saveEventOf(row, event, isAlone ? Span::ThisTask : Span::FutureTasks))
        return error;
    if (!isOfSeries || row.calendarID() == formerIdentifier)
        return std::nullopt;
    // The series was divided: the later rows belong to its later part.
    for (const TaskPtr &other : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", formerIdentifier)))) {
        if (other && series::isLater(*other, row))
            other->setCalendarID(row.calendarID());
    }
    return std::nullopt;
}

OptionalError taskevent::remove(const QString &identifier, const QString &calendar, Span span,
                                OptionalDate day)
{
    const auto events = EventReader::eventsOfRow(identifier, calendar, {day});
    if (!events)
        return events.error();
    const auto event = eventOfDate(events.value(), day);
    const auto isThere = [&calendar](const EKEvent &one) {
        return calendar.isEmpty() ||
               (one.calendar && CalendarCatalogue::identifierOfCalendar(*one.calendar) == calendar);
    };
    if (!event || !isThere(*event))
        return absenceOf(calendar);
    const bool isAlone = event->isOfSeries() && span == Span::ThisTask;
    return EventStoreAccess::eventStore().removeEvent(
        *event, isAlone ? EKSpan::ThisEvent : EKSpan::FutureEvents, true);
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
    if (calendarstore::isOffline())
        return offlinechanges::keepForLater(task, span, changeStartDue);
    if (taskevent::isOffCalendar(task))
        return;
    const bool isOfSeries = wasRepeatRule || !task.repeat().isEmpty();
    const auto error = isOfSeries ? writeOccurrence(transaction, task, span, changeStartDue)
                                  : writeSingle(task, span, changeStartDue);
    if (error)
        Log::line(error->message);
    if (error && !CalendarError::isRefusal(error))
        offlinechanges::keepForLater(task, span, changeStartDue);
}

bool EventWriter::hasLostOccurrence(const EntityTask &task)
{
    if (DBWorker::isSample() || task.calendarID().isEmpty() || calendarstore::isOffline() ||
        taskevent::isOffCalendar(task))
        return false;
    const FoundEvent found =
        task.repeat().isEmpty() ? eventOfSingle(task, std::nullopt) : eventOfOccurrence(task, std::nullopt);
    return !found && CalendarError::is(found.error(), CalendarError::Invalid);
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
