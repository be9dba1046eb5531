#include "calendarsync/EventReader.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/EventStoreAccess.h"
#include "eventkit/CalendarError.h"
#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/EventDates.h"
#include "store/state/CoreContext.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

// Events of the window, grouped and found.

namespace {

constexpr double aMinute = 60;

bool isEarlier(const EKEvent &one, const EKEvent &other)
{
    return one.startDate < other.startDate;
}

bool isSameCalendar(const EKEvent &one, const EKEvent &other)
{
    const auto identifier = [](const EKEvent &event) {
        return event.calendar ? event.calendar->calendarIdentifier : QString();
    };
    return identifier(one) == identifier(other);
}

/// Whether an event goes on with the series of the one before it.
bool continuesSeries(const EKEvent &event, const EKEvent &before)
{
    return event.calendarItemExternalIdentifier == before.calendarItemExternalIdentifier &&
           event.isOfSeries() && before.isOfSeries() && isSameCalendar(event, before);
}

Result<std::vector<EKEvent>> eventsBetween(Date start, Date end, const std::vector<EKCalendar> &calendars)
{
    EKEventStore &store = EventStoreAccess::eventStore();
    return store.eventsMatchingPredicate(store.predicateForEventsWithStartDate(start, end, calendars));
}

bool isSingle(const EKEvent &event)
{
    // Of a series only a few are given, which represent it.
    return !event.isOfSeries() && event.startDate && event.endDate;
}

bool isAmong(const std::vector<EKEvent> &events, const EKEvent &event)
{
    return std::ranges::any_of(events, [&event](const EKEvent &one) {
        return one.calendarItemExternalIdentifier == event.calendarItemExternalIdentifier &&
               one.startDate == event.startDate && isSameCalendar(one, event);
    });
}

Result<std::vector<EKEvent>> eventsIn(const std::vector<EKCalendar> &calendars, const QString &identifier,
                                      const std::vector<OptionalDate> &onDaysOf)
{
    // A single event is found without a look at all others.
    auto items = EventStoreAccess::eventStore().calendarItemsWithExternalIdentifier(identifier, calendars);
    if (!items || std::ranges::all_of(items.value(), isSingle))
        return items;
    const DateInterval seen = EventReader::window();
    auto events = eventsBetween(seen.start, seen.end, calendars);
    if (!events)
        return events;
    for (const OptionalDate &date : onDaysOf) {
        // Of one that has too many, the window lacks some.
        const bool isSeen = date && *date >= seen.start && *date <= seen.end;
        if (!date || (isSeen && !EventStoreAccess::eventStore().mayBeUnusable(identifier)))
            continue;
        auto ofDay =
            eventsBetween(MTDates::startOfCurrentDay(*date), MTDates::endOfCurrentDay(*date), calendars);
        if (!ofDay)
            return ofDay;
        for (EKEvent &event : *ofDay) {
            if (!isAmong(*events, event))
                events->push_back(std::move(event));
        }
    }
    // Wherever others have moved them.
    for (EKEvent &event : items.value()) {
        if (event.isDetached && !isAmong(*events, event))
            events->push_back(std::move(event));
    }
    return EventReader::getEventsWithEventIdentifier(identifier, *events);
}

double distance(const EKEvent &event, Date date)
{
    return event.startDate ? std::abs((*event.startDate - date).count())
                           : std::numeric_limits<double>::infinity();
}

/// Of a rule by minutes or seconds several start close to a date.
auto nearestTo(Date date, const std::vector<EKEvent> &events)
{
    return std::ranges::min_element(events, {},
                                    [date](const EKEvent &event) { return distance(event, date); });
}

bool wasAt(const EKEvent &event, Date date)
{
    return event.isDetached && event.occurrenceDate &&
           std::abs((*event.occurrenceDate - date).count()) <= aMinute;
}

/// Whether it is known to be that of a row, other than one of the date that it is looked for by.
bool isShownElsewhere(const EKEvent &event, Date date)
{
    const auto isOfDate = [date](const EntityTask &row) {
        const OptionalDate own = row.startDate() ? row.startDate() : row.dueDate();
        return own && std::abs((*own - date).count()) <= aMinute;
    };
    const auto rows = mainContext().fetch<EntityTask>(EntityTask::fetchRequest().where(
        Predicate::format("calendarID == %@", event.calendarItemExternalIdentifier)));
    return std::any_of(rows.begin(), rows.end(), [&](const TaskPtr &row) {
        return row && !isOfDate(*row) && eventdates::areShownBy(*row, event);
    });
}

} // namespace

DateInterval EventReader::window()
{
    const DataConteiner &data = CoreContext::current().dataConteiner;
    const Date now = MVDate::date();
    return {MTDates::startOfCurrentDay(now + Seconds(static_cast<double>(data.leftIntervalAccessCalendar()))),
            MTDates::endOfCurrentDay(now + Seconds(static_cast<double>(data.rightIntervalAccessCalendar())))};
}

std::optional<std::vector<EKEvent>> EventReader::eventsForCalendars(const std::vector<EKCalendar> &calendars)
{
    if (calendars.empty())
        return std::vector<EKEvent>();
    const DateInterval seen = window();
    auto events = eventsBetween(seen.start, seen.end, calendars);
    if (events)
        return std::move(*events);
    Log::line(events.error().message);
    return std::nullopt;
}

std::vector<std::vector<EKEvent>>
EventReader::getEventsGroupedCalendarIDfromAllEvents(std::vector<EKEvent> events)
{
    const qint64 mostFuture = CoreContext::current().dataConteiner.calendarFrequencyDay();
    const Date endOfToday = MTDates::endOfCurrentDay(MVDate::date());
    std::stable_sort(events.begin(), events.end(), [](const EKEvent &one, const EKEvent &other) {
        if (one.calendarItemExternalIdentifier != other.calendarItemExternalIdentifier)
            return one.calendarItemExternalIdentifier < other.calendarItemExternalIdentifier;
        return one.startDate < other.startDate;
    });
    std::vector<std::vector<EKEvent>> groups;
    qint64 future = 0;
    for (size_t place = 0; place < events.size(); ++place) {
        EKEvent &event = events[place];
        const bool goesOn = place > 0 && continuesSeries(event, events[place - 1]);
        if (goesOn && mostFuture <= future)
            continue;
        if (!goesOn) {
            groups.emplace_back();
            future = 0;
        }
        future += event.isOfSeries() && event.startDate && *event.startDate > endOfToday;
        groups.back().push_back(event);
    }
    return groups;
}

std::vector<EKEvent> EventReader::getEventsWithEventIdentifier(const QString &identifier,
                                                               const std::vector<EKEvent> &fromEvents)
{
    std::vector<EKEvent> found;
    std::copy_if(fromEvents.begin(), fromEvents.end(), std::back_inserter(found),
                 [&](const EKEvent &one) { return one.calendarItemExternalIdentifier == identifier; });
    std::stable_sort(found.begin(), found.end(), isEarlier);
    return found;
}

Result<std::vector<EKEvent>>
EventReader::eventsWithExternalIdentifier(const QString &identifier,
                                          const std::vector<OptionalDate> &onDaysOf)
{
    if (DBWorker::isSample() || !EventStoreAccess::hasAccesToCalendar())
        return std::vector<EKEvent>();
    return eventsIn(CalendarCatalogue::getAllAccessCalendars(), identifier, onDaysOf);
}

Result<std::vector<EKEvent>> EventReader::eventsOfRow(const QString &identifier, const QString &calendar,
                                                      const std::vector<OptionalDate> &onDaysOf)
{
    if (DBWorker::isSample() || !EventStoreAccess::hasAccesToCalendar())
        return std::vector<EKEvent>();
    // Its own calendar first: another one can hold a copy, or be silent.
    std::vector<EKCalendar> others = CalendarCatalogue::getAllAccessCalendars();
    const auto isOwn = [&calendar](const EKCalendar &one) {
        return CalendarCatalogue::identifierOfCalendar(one) == calendar;
    };
    const auto firstOwn = std::stable_partition(others.begin(), others.end(), std::not_fn(isOwn));
    const std::vector<EKCalendar> own(firstOwn, others.end());
    others.erase(firstOwn, others.end());
    for (const std::vector<EKCalendar> &calendars : {own, others}) {
        auto events = eventsIn(calendars, identifier, onDaysOf);
        if (!events || !events->empty())
            return events;
    }
    if (EventStoreAccess::eventStore().mayBeUnusable(identifier))
        return CalendarError::make(CalendarError::Unreadable,
                                   QStringLiteral("The event cannot be read at present."));
    // Another device may have the calendar, and the event.
    if (!calendar.isEmpty() && !CalendarCatalogue::isHere(calendar))
        return CalendarError::make(CalendarError::Storage,
                                   QStringLiteral("The calendar %1 is not there at present.").arg(calendar));
    return std::vector<EKEvent>();
}

std::optional<EKEvent> EventReader::eventByStartDateOfTask(OptionalDate date,
                                                           const std::vector<EKEvent> &fromEvents)
{
    if (!date)
        return std::nullopt;
    if (const auto near = nearestTo(*date, fromEvents);
        near != fromEvents.end() && distance(*near, *date) <= aMinute)
        return *near;
    // Moved since the row was made.
    std::vector<const EKEvent *> ofDay;
    for (const EKEvent &event : fromEvents) {
        if (wasAt(event, *date) && !isShownElsewhere(event, *date))
            ofDay.push_back(&event);
    }
    // A moved one is not what has taken its place on the day.
    if (ofDay.empty()) {
        for (const EKEvent &event : fromEvents) {
            if (event.startDate && MTDates::isWithinSameDay(*event.startDate, *date) &&
                !isShownElsewhere(event, *date))
                ofDay.push_back(&event);
        }
    }
    // Another calendar can have a copy.
    const bool isClear = !ofDay.empty() && std::none_of(ofDay.begin() + 1, ofDay.end(), [&](const auto *one) {
        return isSameCalendar(*one, *ofDay.front());
    });
    return isClear ? std::optional(*ofDay.front()) : std::nullopt;
}

std::optional<EKEvent> EventReader::eventShownBy(const EntityTask &row,
                                                 const std::vector<EKEvent> &fromEvents)
{
    const OptionalDate date = row.startDate() ? row.startDate() : row.dueDate();
    std::vector<EKEvent> shown;
    std::ranges::copy_if(fromEvents, std::back_inserter(shown),
                         [&row](const EKEvent &event) { return eventdates::areShownBy(row, event); });
    return date && !shown.empty() ? std::optional(*nearestTo(*date, shown))
                                  : eventByStartDateOfTask(date, fromEvents);
}

bool EventReader::standsAlone(const EKEvent &event)
{
    if (!event.isOfSeries())
        return true;
    return !event.hasRecurrenceRules() && event.isDetached && EKEventStore::isOnlyOccurrence(event);
}

std::optional<EKEvent> EventReader::getEventByTitleOfTask(const EntityTask &task)
{
    constexpr Seconds aDay{86400};
    if (!task.dueDate())
        return std::nullopt;
    const Date start = task.startDate().value_or(*task.dueDate());
    const auto events =
        eventsBetween(start - aDay, *task.dueDate() + aDay, CalendarCatalogue::getAllAccessCalendars());
    if (!events) {
        Log::line(events.error().message);
        return std::nullopt;
    }
    for (const EKEvent &event : events.value()) {
        if (event.title == task.title())
            return event;
    }
    return std::nullopt;
}
