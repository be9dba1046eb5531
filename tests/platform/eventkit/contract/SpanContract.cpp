#include "EventStoreContract.h"

TEST_P(EventStoreContract, OneOccurrenceIsEditedAlone)
{
    addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=4"_qs);
    EKEvent second = eventAt(localDate(2024, 3, 5, 9));
    second.title = u"Moved"_qs;
    second.startDate = localDate(2024, 3, 20, 14);
    second.endDate = localDate(2024, 3, 20, 16);
    second.recurrenceRules.clear();
    save(second);
    EXPECT_TRUE(second.isDetached);
    EXPECT_EQ(second.occurrenceDate, localDate(2024, 3, 5, 9));
    EXPECT_EQ(second.recurrenceRules.size(), 1U);
    EXPECT_EQ(list(3), (QStringList{u"Daily 03-04 09:00-10:00"_qs, u"Daily 03-06 09:00-10:00"_qs,
                                    u"Daily 03-07 09:00-10:00"_qs, u"Moved 03-20 14:00-16:00"_qs}));
    // Once more the same one.
    second.endDate = localDate(2024, 3, 20, 15);
    save(second);
    EXPECT_EQ(list(3).last(), u"Moved 03-20 14:00-15:00"_qs);
    EXPECT_EQ(objectCount(), 1);

    expectNoError(store.removeEvent(second, EKSpan::ThisEvent, true));
    EXPECT_EQ(list(3), (QStringList{u"Daily 03-04 09:00-10:00"_qs, u"Daily 03-06 09:00-10:00"_qs,
                                    u"Daily 03-07 09:00-10:00"_qs}));
}

TEST_P(EventStoreContract, TheLastOccurrenceTakesTheObjectWithIt)
{
    addSeries(u"Twice"_qs, u"FREQ=DAILY;COUNT=2"_qs);
    expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 4, 9)), EKSpan::ThisEvent, true));
    EXPECT_EQ(list(3), (QStringList{u"Twice 03-05 09:00-10:00"_qs}));

    EKEvent last = eventAt(localDate(2024, 3, 5, 9));
    last.recurrenceRules.clear();
    save(last, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Twice 03-05 09:00-10:00"_qs}));
    EXPECT_TRUE(eventAt(localDate(2024, 3, 5, 9)).recurrenceRules.empty());
    expectNoError(store.removeEvent(last, EKSpan::ThisEvent, true));
    EXPECT_EQ(objectCount(), 0);
}

TEST_P(EventStoreContract, ThisAndFutureDividesASeries)
{
    for (const QString &rule : {u"FREQ=DAILY;COUNT=5"_qs, u"FREQ=DAILY;UNTIL=20240308T080000Z"_qs}) {
        const QString uid = addSeries(u"Daily"_qs, rule).calendarItemExternalIdentifier;
        EKEvent third = eventAt(localDate(2024, 3, 6, 9));
        third.title = u"Later"_qs;
        third.startDate = localDate(2024, 3, 6, 11);
        third.endDate = localDate(2024, 3, 6, 11, 30);
        save(third, EKSpan::FutureEvents);
        EXPECT_NE(third.calendarItemExternalIdentifier, uid);
        EXPECT_EQ(list(3), (QStringList{u"Daily 03-04 09:00-10:00"_qs, u"Daily 03-05 09:00-10:00"_qs,
                                        u"Later 03-06 11:00-11:30"_qs, u"Later 03-07 11:00-11:30"_qs,
                                        u"Later 03-08 11:00-11:30"_qs}))
            << qPrintable(rule);
        expectNoError(store.removeEvent(third, EKSpan::FutureEvents, true));
        EXPECT_EQ(list(3).size(), 2);
        expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 4, 9)), EKSpan::FutureEvents, true));
        EXPECT_EQ(objectCount(), 0);
    }
}

TEST_P(EventStoreContract, TheFirstOccurrenceStandsForTheWholeSeries)
{
    const QString uid =
        addSeries(u"Weekly"_qs, u"FREQ=WEEKLY;BYDAY=MO;COUNT=3"_qs).calendarItemExternalIdentifier;
    EKEvent edited = eventAt(localDate(2024, 3, 11, 9));
    edited.title = u"Edited"_qs;
    save(edited);
    EKEvent first = eventAt(localDate(2024, 3, 4, 9));
    first.title = u"Renamed"_qs;
    first.startDate = localDate(2024, 3, 6, 8);
    first.endDate = localDate(2024, 3, 6, 8, 30);
    save(first, EKSpan::FutureEvents);
    EXPECT_EQ(first.calendarItemExternalIdentifier, uid);
    EXPECT_EQ(objectCount(), 1);
    // What was edited on its own keeps its own time, and its place in the series.
    EXPECT_EQ(list(3), (QStringList{u"Renamed 03-06 08:00-08:30"_qs, u"Edited 03-11 09:00-10:00"_qs,
                                    u"Renamed 03-20 08:00-08:30"_qs}));
    expectNoError(store.removeEvent(first, EKSpan::FutureEvents, true));
    EXPECT_EQ(objectCount(), 0);
}

TEST_P(EventStoreContract, ARuleIsChangedAndTakenAway)
{
    addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=4"_qs);
    EKEvent last = eventAt(localDate(2024, 3, 7, 9));
    last.title = u"Edited"_qs;
    save(last);
    EKEvent third = eventAt(localDate(2024, 3, 6, 9));
    third.recurrenceRules = {*EKRecurrenceRule::recurrenceRuleFromString(u"FREQ=WEEKLY;COUNT=2"_qs)};
    save(third, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Daily 03-04 09:00-10:00"_qs, u"Daily 03-05 09:00-10:00"_qs,
                                    u"Daily 03-06 09:00-10:00"_qs, u"Daily 03-13 09:00-10:00"_qs}));
    EKEvent first = eventAt(localDate(2024, 3, 4, 9));
    first.recurrenceRules.clear();
    save(first, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Daily 03-04 09:00-10:00"_qs, u"Daily 03-06 09:00-10:00"_qs,
                                    u"Daily 03-13 09:00-10:00"_qs}));
    first.recurrenceRules = {*EKRecurrenceRule::recurrenceRuleFromString(u"FREQ=DAILY;COUNT=2"_qs)};
    save(first, EKSpan::ThisEvent);
    EXPECT_EQ(list(3).size(), 4);
}

TEST_P(EventStoreContract, AnAllDaySeriesEndsOnADay)
{
    EKEvent event = newEvent(u"Days"_qs);
    event.allDay = true;
    event.recurrenceRules = {*EKRecurrenceRule::recurrenceRuleFromString(u"FREQ=DAILY"_qs)};
    event.recurrenceRules[0].setRecurrenceEnd(
        EKRecurrenceEnd::recurrenceEndWithEndDate(localDate(2024, 3, 8, 23, 59, 59)));
    save(event, EKSpan::FutureEvents);
    EXPECT_EQ(list(3).size(), 5);
    EKEvent third = eventAt(localDate(2024, 3, 6));
    third.title = u"Rest"_qs;
    save(third, EKSpan::FutureEvents);
    expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 7)), EKSpan::ThisEvent, true));
    EXPECT_EQ(list(3), (QStringList{u"Days 03-04 00:00-23:59"_qs, u"Days 03-05 00:00-23:59"_qs,
                                    u"Rest 03-06 00:00-23:59"_qs, u"Rest 03-08 00:00-23:59"_qs}));
}

TEST_P(EventStoreContract, ARemainingEditedOccurrenceCanStandAlone)
{
    addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=2"_qs);
    EKEvent second = eventAt(localDate(2024, 3, 5, 9));
    second.title = u"Edited"_qs;
    second.startDate = localDate(2024, 3, 9, 9);
    second.endDate = localDate(2024, 3, 9, 10);
    save(second);
    expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 4, 9)), EKSpan::ThisEvent, true));
    second = eventAt(localDate(2024, 3, 9, 9));
    second.recurrenceRules.clear();
    save(second, EKSpan::FutureEvents);
    const EKEvent alone = eventAt(localDate(2024, 3, 9, 9));
    EXPECT_EQ(alone.title, u"Edited"_qs);
    EXPECT_FALSE(alone.isDetached);
    EXPECT_TRUE(alone.recurrenceRules.empty());
    EXPECT_EQ(list(3).size(), 1);
}

TEST_P(EventStoreContract, AWholeDayWithinASeriesOfHoursKeepsItsLengthForTheRest)
{
    addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=3"_qs);
    EKEvent first = eventAt(localDate(2024, 3, 4, 9));
    first.allDay = true;
    first.startDate = localDate(2024, 3, 4);
    first.endDate = localDate(2024, 3, 4, 23, 59, 59);
    save(first);
    first.startDate = localDate(2024, 3, 5);
    first.endDate = localDate(2024, 3, 5, 23, 59, 59);
    save(first, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Daily 03-05 00:00-23:59"_qs, u"Daily 03-06 00:00-23:59"_qs,
                                    u"Daily 03-07 00:00-23:59"_qs}));
}

TEST_P(EventStoreContract, LookingUpByIdentifierGivesTheFirstAndTheEdited)
{
    const QString uid = addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=4"_qs).calendarItemExternalIdentifier;
    EKEvent third = eventAt(localDate(2024, 3, 6, 9));
    third.title = u"Edited"_qs;
    save(third);
    const auto found = store.calendarItemsWithExternalIdentifier(uid);
    ASSERT_TRUE(found);
    ASSERT_EQ(found.value().size(), 2U);
    EXPECT_EQ(found.value()[0].startDate, localDate(2024, 3, 4, 9));
    EXPECT_EQ(found.value()[1].title, u"Edited"_qs);
    EXPECT_EQ(store.eventWithIdentifier(uid).value()->title, u"Daily"_qs);
    EXPECT_EQ(store.eventWithIdentifier(third.eventIdentifier).value()->title, u"Edited"_qs);
    EXPECT_FALSE(store.eventWithIdentifier(u"unknown"_qs).value());
    EXPECT_TRUE(store.calendarItemsWithExternalIdentifier(u"unknown"_qs).value().empty());
}

TEST_P(EventStoreContract, ChangesThatOthersMadeToASeriesStay)
{
    EKEvent mine = addSeries(u"Daily"_qs, u"FREQ=DAILY;COUNT=4"_qs);
    EKEventStore other(place->open());
    EKEvent second = eventAt(localDate(2024, 3, 5, 9));
    second.title = u"Theirs"_qs;
    expectNoError(other.saveEvent(second, EKSpan::ThisEvent, true));
    mine.title = u"Mine"_qs;
    save(mine, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Mine 03-04 09:00-10:00"_qs, u"Theirs 03-05 09:00-10:00"_qs,
                                    u"Mine 03-06 09:00-10:00"_qs, u"Mine 03-07 09:00-10:00"_qs}));
}
