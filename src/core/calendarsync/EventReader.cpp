#include "calendarsync/EventReader.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/EventStoreAccess.h"
#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <algorithm>

// Events of the window, grouped and found.

namespace {

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
           event.hasRecurrenceRules() && before.hasRecurrenceRules() && isSameCalendar(event, before);
}

std::vector<EKEvent> eventsBetween(Date start, Date end, const std::vector<EKCalendar> &calendars)
{
    EKEventStore &store = EventStoreAccess::eventStore();
    auto events = store.eventsMatchingPredicate(store.predicateForEventsWithStartDate(start, end, calendars));
    if (events)
        return std::move(*events);
    Log::line(events.error().message);
    return {};
}

/// The events of an identifier without a look at all others; absent if one of them repeats.
std::optional<std::vector<EKEvent>> singleEvents(const QString &identifier,
                                                 const std::vector<EKCalendar> &calendars)
{
    auto items = EventStoreAccess::eventStore().calendarItemsWithExternalIdentifier(identifier);
    if (!items)
        return std::nullopt;
    std::vector<EKEvent> found;
    for (EKEvent &event : *items) {
        if (event.hasRecurrenceRules() || event.isDetached || !event.startDate || !event.endDate)
            return std::nullopt;
        const bool isChosen =
            std::any_of(calendars.begin(), calendars.end(), [&event](const EKCalendar &one) {
                return event.calendar && one.calendarIdentifier == event.calendar->calendarIdentifier;
            });
        if (isChosen)
            found.push_back(std::move(event));
    }
    return found;
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
    EKEventStore &store = EventStoreAccess::eventStore();
    auto events =
        store.eventsMatchingPredicate(store.predicateForEventsWithStartDate(seen.start, seen.end, calendars));
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
        future += event.hasRecurrenceRules() && event.startDate && *event.startDate > endOfToday;
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

std::vector<EKEvent> EventReader::eventsWithExternalIdentifier(const QString &identifier,
                                                               const std::vector<OptionalDate> &onDaysOf)
{
    if (DBWorker::isSample() || !EventStoreAccess::hasAccesToCalendar())
        return {};
    const std::vector<EKCalendar> calendars = CalendarCatalogue::getAllAccessCalendars();
    if (calendars.empty())
        return {};
    if (auto single = singleEvents(identifier, calendars))
        return *single;
    std::vector<EKEvent> events = eventsForCalendars(calendars).value_or(std::vector<EKEvent>());
    const DateInterval seen = window();
    for (const OptionalDate &date : onDaysOf) {
        if (!date || (*date >= seen.start && *date <= seen.end))
            continue;
        for (EKEvent &event :
             eventsBetween(MTDates::startOfCurrentDay(*date), MTDates::endOfCurrentDay(*date), calendars)) {
            const bool isKnown = std::ranges::any_of(events, [&event](const EKEvent &one) {
                return one.calendarItemExternalIdentifier == event.calendarItemExternalIdentifier &&
                       one.startDate == event.startDate && isSameCalendar(one, event);
            });
            if (!isKnown)
                events.push_back(std::move(event));
        }
    }
    return getEventsWithEventIdentifier(identifier, events);
}

std::optional<EKEvent> EventReader::eventByStartDateOfTask(OptionalDate date,
                                                           const std::vector<EKEvent> &fromEvents)
{
    for (const EKEvent &event : fromEvents) {
        if (date && event.startDate && MTDates::isWithinSameDay(*event.startDate, *date))
            return event;
    }
    return std::nullopt;
}

std::optional<EKEvent> EventReader::getEventByTitleOfTask(const EntityTask &task)
{
    constexpr Seconds aDay{86400};
    if (!task.dueDate())
        return std::nullopt;
    const Date start = task.startDate().value_or(*task.dueDate());
    for (const EKEvent &event :
         eventsBetween(start - aDay, *task.dueDate() + aDay, CalendarCatalogue::getAllAccessCalendars())) {
        if (event.title == task.title())
            return event;
    }
    return std::nullopt;
}
