#include "EventStoreContract.h"

#include "eventkit/CalendarError.h"

#include <algorithm>

static bool contains(const Result<std::vector<EKCalendar>> &calendars, const EKCalendar &wanted)
{
    return calendars &&
           std::find(calendars.value().begin(), calendars.value().end(), wanted) != calendars.value().end();
}

TEST_P(EventStoreContract, CalendarsAreMadeRenamedColouredAndRemoved)
{
    EKCalendar made = makeCalendar(u"Ä title / with signs"_qs);
    EXPECT_FALSE(made.calendarIdentifier.isEmpty());
    EXPECT_TRUE(made.allowsContentModifications);
    EXPECT_EQ(made.source.sourceIdentifier, place->source().sourceIdentifier);
    EXPECT_TRUE(contains(EKEventStore(place->open()).calendarsForEntityType(EKEntityType::Event), made));

    made.title = u"New title"_qs;
    made.color = EKColor{1, 0.2, 0, 1};
    expectNoError(store.saveCalendar(made, true));
    const auto read = EKEventStore(place->open()).calendarWithIdentifier(made.calendarIdentifier);
    ASSERT_TRUE(read && read.value());
    EXPECT_EQ(read.value()->title, u"New title"_qs);
    ASSERT_TRUE(read.value()->color);
    EXPECT_NEAR(read.value()->color->green, 0.2, 0.01);

    expectNoError(store.removeCalendar(made, true));
    EXPECT_FALSE(EKEventStore(place->open()).calendarWithIdentifier(made.calendarIdentifier).value());
    EXPECT_TRUE(EKEventStore(place->open()).calendarWithIdentifier(calendar.calendarIdentifier).value());
    made.calendarIdentifier.clear();
    made.title = u" "_qs;
    EXPECT_TRUE(CalendarError::is(store.saveCalendar(made, true), CalendarError::Invalid));
}

TEST_P(EventStoreContract, EventsOfChosenCalendarsOnly)
{
    const EKCalendar home = makeCalendar(u"Home"_qs);
    EKEvent atWork = newEvent(u"Work"_qs);
    save(atWork);
    EKEvent atHome = newEvent(u"Home"_qs);
    atHome.calendar = home;
    save(atHome);
    const auto titles = [&](const std::optional<std::vector<EKCalendar>> &calendars) {
        QStringList found;
        const auto predicate =
            store.predicateForEventsWithStartDate(localDate(2024, 3, 1), localDate(2024, 4, 1), calendars);
        const auto events = store.eventsMatchingPredicate(predicate);
        for (const EKEvent &event : events.value())
            found.append(event.title);
        found.sort();
        return found;
    };
    EXPECT_EQ(titles({}), (QStringList{u"Home"_qs, u"Work"_qs}));
    EXPECT_EQ(titles(std::vector{home}), (QStringList{u"Home"_qs}));
    EXPECT_EQ(titles(std::vector<EKCalendar>()), QStringList());
}

TEST_P(EventStoreContract, AnEventMovesToAnotherCalendarWithItsSeries)
{
    const EKCalendar home = makeCalendar(u"Home"_qs);
    EKEvent event = addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=4"_qs);
    EKEvent second = eventAt(localDate(2024, 3, 5, 9));
    second.title = u"Edited"_qs;
    save(second);
    EKEvent third = eventAt(localDate(2024, 3, 6, 9));
    third.calendar = home;
    third.title = u"Later"_qs;
    save(third, EKSpan::FutureEvents);
    EXPECT_EQ(objectCount(), 0);
    EXPECT_EQ(third.calendar->calendarIdentifier, home.calendarIdentifier);
    EXPECT_EQ(list(3), (QStringList{u"Daily 03-04 09:00-10:00"_qs, u"Edited 03-05 09:00-10:00"_qs,
                                    u"Later 03-06 09:00-10:00"_qs, u"Later 03-07 09:00-10:00"_qs}));
    for (const EKEvent &moved : eventsOf(3))
        EXPECT_EQ(moved.calendar->calendarIdentifier, home.calendarIdentifier);
}

TEST_P(EventStoreContract, UncommittedChangesAreSeenByTheirStoreOnly)
{
    const EKCalendar home = makeCalendar(u"Home"_qs);
    EKEvent event = newEvent(u"One"_qs);
    expectNoError(store.saveEvent(event, EKSpan::ThisEvent, false));
    event.calendar = home;
    event.title = u"Two"_qs;
    expectNoError(store.saveEvent(event, EKSpan::ThisEvent, false));
    expectNoError(store.removeCalendar(calendar, false));
    EXPECT_TRUE(list(3).isEmpty());
    EXPECT_EQ(store.eventWithIdentifier(event.eventIdentifier).value()->title, u"Two"_qs);
    EXPECT_FALSE(store.calendarWithIdentifier(calendar.calendarIdentifier).value());
    EXPECT_TRUE(EKEventStore(place->open()).calendarWithIdentifier(calendar.calendarIdentifier).value());

    expectNoError(store.commit());
    EXPECT_EQ(list(3), (QStringList{u"Two 03-04 09:00-10:00"_qs}));
    EXPECT_FALSE(EKEventStore(place->open()).calendarWithIdentifier(calendar.calendarIdentifier).value());

    expectNoError(store.removeEvent(event, EKSpan::ThisEvent, false));
    store.reset();
    expectNoError(store.commit());
    EXPECT_EQ(list(3).size(), 1);
}

TEST_P(EventStoreContract, AReadOnlyCalendarIsOnlyRead)
{
    EKEvent event = newEvent(u"One"_qs);
    save(event);
    place->makeReadOnly(calendar);
    EKEventStore later(place->open());
    EXPECT_FALSE(
        later.calendarWithIdentifier(calendar.calendarIdentifier).value()->allowsContentModifications);
    EXPECT_EQ(list(3).size(), 1);
    event.title = u"Two"_qs;
    EXPECT_TRUE(CalendarError::is(later.saveEvent(event, EKSpan::ThisEvent, true), CalendarError::ReadOnly));
    EXPECT_TRUE(
        CalendarError::is(later.removeEvent(event, EKSpan::ThisEvent, true), CalendarError::ReadOnly));
    EKEvent another = newEvent(u"Another"_qs);
    EXPECT_TRUE(
        CalendarError::is(later.saveEvent(another, EKSpan::ThisEvent, true), CalendarError::ReadOnly));
    EXPECT_EQ(list(3), (QStringList{u"One 03-04 09:00-10:00"_qs}));
}

TEST_P(EventStoreContract, AnUnknownCalendarIsToldFromAnEmptyOne)
{
    EXPECT_TRUE(backend->objects(calendar.calendarIdentifier));
    const auto objects = backend->objects(u"no/calendar"_qs);
    ASSERT_FALSE(objects);
    EXPECT_EQ(objects.error().code, CalendarError::NotFound);
}

TEST_P(EventStoreContract, AStaleObjectIsNotWritten)
{
    EKEvent event = newEvent(u"One"_qs);
    save(event);
    const CalendarObject stale = backend->objects(calendar.calendarIdentifier).value().front();
    event.title = u"Two"_qs;
    save(event);
    const auto written = backend->put(calendar.calendarIdentifier, stale, {});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, CalendarError::Conflict);
    EXPECT_TRUE(CalendarError::is(backend->remove(calendar.calendarIdentifier, stale.name, stale.etag),
                                  CalendarError::Conflict));
    EXPECT_EQ(list(3), (QStringList{u"Two 03-04 09:00-10:00"_qs}));
}

TEST_P(EventStoreContract, HeldContentsShowOwnChangesAndNoOthers)
{
    EKEvent event = newEvent(u"One"_qs);
    save(event);
    EKEventStore other(place->open());
    EKEvent theirs = newEvent(u"Theirs"_qs);
    const auto count = [&] {
        return store
            .eventsMatchingPredicate(
                store.predicateForEventsWithStartDate(localDate(2024, 3, 1), localDate(2024, 4, 1)))
            .value()
            .size();
    };
    {
        const auto held = store.holdContents();
        EXPECT_EQ(count(), 1U);
        expectNoError(other.saveEvent(theirs, EKSpan::ThisEvent, true));
        EXPECT_EQ(count(), 1U);
        EXPECT_TRUE(store.calendarItemsWithExternalIdentifier(theirs.eventIdentifier).value().empty());
        event.title = u"Two"_qs;
        expectNoError(store.saveEvent(event, EKSpan::ThisEvent, false));
        EXPECT_EQ(store.eventWithIdentifier(event.eventIdentifier).value()->title, u"Two"_qs);
        store.reset();
        EXPECT_EQ(store.eventWithIdentifier(event.eventIdentifier).value()->title, u"One"_qs);
    }
    EXPECT_EQ(count(), 2U);
}
