#include "EventStoreContract.h"

// Series of which another program has changed an occurrence together with all later ones.

namespace {

/// From the 4th to the 9th of March at nine, from the 6th on at eleven for half an hour and with more that
/// this program does not know.
const QByteArray earlyShift =
    "BEGIN:VEVENT\nUID:shift\nDTSTAMP:20240101T000000Z\nSUMMARY:Early\n"
    "DTSTART;TZID=Europe/Berlin:20240304T090000\nDTEND;TZID=Europe/Berlin:20240304T100000\n"
    "RRULE:FREQ=DAILY;COUNT=6\nEND:VEVENT\n";
const QByteArray fromTheSixth =
    "BEGIN:VEVENT\nUID:shift\nDTSTAMP:20240101T000000Z\nSUMMARY:Later\n"
    "RECURRENCE-ID;RANGE=THISANDFUTURE;TZID=Europe/Berlin:20240306T090000\nX-ROOM:12\n"
    "DTSTART;TZID=Europe/Berlin:20240306T110000\nDTEND;TZID=Europe/Berlin:20240306T113000\nEND:VEVENT\n";

const QStringList asWritten = {u"Early 03-04 09:00-10:00"_qs, u"Early 03-05 09:00-10:00"_qs,
                               u"Later 03-06 11:00-11:30"_qs, u"Later 03-07 11:00-11:30"_qs,
                               u"Later 03-08 11:00-11:30"_qs, u"Later 03-09 11:00-11:30"_qs};

QStringList withOther(QStringList lines, qsizetype place, const QString &line)
{
    lines[place] = line;
    return lines;
}

} // namespace

TEST_P(EventStoreContract, OneOfTheLaterOnesIsEditedAndDeletedAlone)
{
    putForeign(earlyShift + fromTheSixth, u"shift"_qs);
    ASSERT_EQ(list(3), asWritten);
    EXPECT_FALSE(eventAt(localDate(2024, 3, 7, 11)).isDetached);
    EXPECT_EQ(eventAt(localDate(2024, 3, 7, 11)).occurrenceDate, localDate(2024, 3, 7, 9));

    EKEvent fifth = eventAt(localDate(2024, 3, 8, 11));
    fifth.title = u"Alone"_qs;
    save(fifth);
    EXPECT_TRUE(fifth.isDetached);
    EXPECT_EQ(list(3), withOther(asWritten, 4, u"Alone 03-08 11:00-11:30"_qs));
    EXPECT_EQ(textOf(u"shift"_qs).count("X-ROOM:12"), 2) << "it has what the later ones have";

    expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 7, 11)), EKSpan::ThisEvent, true));
    QStringList left = withOther(asWritten, 4, u"Alone 03-08 11:00-11:30"_qs);
    left.removeAt(3);
    EXPECT_EQ(list(3), left);
    EXPECT_EQ(objectCount(), 1);
}

TEST_P(EventStoreContract, TheFirstOfTheLaterOnesIsNotTheOthers)
{
    putForeign(earlyShift + fromTheSixth, u"shift"_qs);
    EKEvent third = eventAt(localDate(2024, 3, 6, 11));
    third.title = u"Alone"_qs;
    third.startDate = localDate(2024, 3, 6, 12);
    third.endDate = localDate(2024, 3, 6, 13);
    save(third);
    EXPECT_EQ(list(3), withOther(asWritten, 2, u"Alone 03-06 12:00-13:00"_qs));
    // Once more the one with which the change of the others now begins.
    expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 7, 11)), EKSpan::ThisEvent, true));
    QStringList left = withOther(asWritten, 2, u"Alone 03-06 12:00-13:00"_qs);
    left.removeAt(3);
    EXPECT_EQ(list(3), left);
    // And to the last, with which it goes.
    for (const int day : {8, 9})
        expectNoError(store.removeEvent(eventAt(localDate(2024, 3, day, 11)), EKSpan::ThisEvent, true));
    EXPECT_EQ(list(3), left.mid(0, 3));
    EXPECT_FALSE(textOf(u"shift"_qs).contains("THISANDFUTURE"));
    EXPECT_EQ(objectCount(), 1);
}

TEST_P(EventStoreContract, LaterOnesAreDividedWhereTheUserWantsIt)
{
    const QByteArray fromTheNinth = QByteArray(fromTheSixth)
                                        .replace("20240306", "20240309")
                                        .replace("T11", "T15")
                                        .replace("Later", "Late");
    const auto put = [&] {
        for (const EKEvent &event : eventsOf(3))
            store.removeEvent(event, EKSpan::FutureEvents, true).ignore();
        putForeign(earlyShift + fromTheSixth + fromTheNinth, u"shift"_qs);
        ASSERT_EQ(list(3), withOther(asWritten, 5, u"Late 03-09 15:00-15:30"_qs));
    };
    // In the midst of the later ones: what was changed from the ninth on stays.
    put();
    EKEvent fourth = eventAt(localDate(2024, 3, 7, 11));
    fourth.title = u"Mine"_qs;
    fourth.startDate = localDate(2024, 3, 7, 10);
    fourth.endDate = localDate(2024, 3, 7, 11);
    save(fourth, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Early 03-04 09:00-10:00"_qs, u"Early 03-05 09:00-10:00"_qs,
                                    u"Later 03-06 11:00-11:30"_qs, u"Mine 03-07 10:00-11:00"_qs,
                                    u"Mine 03-08 10:00-11:00"_qs, u"Late 03-09 15:00-15:30"_qs}));
    EXPECT_EQ(objectCount(), 2);
    EXPECT_TRUE(textOf(fourth.calendarItemExternalIdentifier).contains("X-ROOM:12"));
    // What follows can be changed on: it is a series as any other.
    EKEvent fifth = eventAt(localDate(2024, 3, 8, 10));
    fifth.recurrenceRules = {*EKRecurrenceRule::recurrenceRuleFromString(u"FREQ=WEEKLY;COUNT=2"_qs)};
    save(fifth, EKSpan::FutureEvents);
    EXPECT_EQ(list(3).mid(3), (QStringList{u"Mine 03-07 10:00-11:00"_qs, u"Mine 03-08 10:00-11:00"_qs,
                                           u"Mine 03-15 10:00-11:00"_qs}));

    // From before they begin, and as a whole: they keep their own times.
    put();
    EKEvent first = eventAt(localDate(2024, 3, 4, 9));
    first.startDate = localDate(2024, 3, 4, 8);
    save(first, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), (QStringList{u"Early 03-04 08:00-10:00"_qs, u"Early 03-05 08:00-10:00"_qs,
                                    u"Later 03-06 11:00-11:30"_qs, u"Later 03-07 11:00-11:30"_qs,
                                    u"Later 03-08 11:00-11:30"_qs, u"Late 03-09 15:00-15:30"_qs}));
    expectNoError(store.removeEvent(eventAt(localDate(2024, 3, 7, 11)), EKSpan::FutureEvents, true));
    EXPECT_EQ(list(3), (QStringList{u"Early 03-04 08:00-10:00"_qs, u"Early 03-05 08:00-10:00"_qs,
                                    u"Later 03-06 11:00-11:30"_qs}));
}

TEST_P(EventStoreContract, LaterOnesOnAnotherDayTakeTheirRuleAndTheirDatesAlong)
{
    putForeign("BEGIN:VEVENT\nUID:weekly\nDTSTAMP:20240101T000000Z\nSUMMARY:Choir\n"
               "DTSTART;TZID=Europe/Berlin:20240304T190000\nDURATION:PT2H\n"
               "RRULE:FREQ=WEEKLY;BYDAY=MO;UNTIL=20240331T220000Z\n"
               "EXDATE;TZID=Europe/Berlin:20240318T190000\nRDATE;VALUE=PERIOD:20240321T170000Z/PT4H\n"
               "END:VEVENT\n"
               "BEGIN:VEVENT\nUID:weekly\nDTSTAMP:20240101T000000Z\nSUMMARY:Choir\n"
               "RECURRENCE-ID;TZID=Europe/Berlin;RANGE=THISANDFUTURE:20240311T190000\n"
               "DTSTART;TZID=Europe/Berlin:20240312T200000\nDURATION:PT1H\nEND:VEVENT\n",
               u"weekly"_qs);
    const QStringList before = {u"Choir 03-04 19:00-21:00"_qs, u"Choir 03-12 20:00-21:00"_qs,
                                u"Choir 03-22 19:00-20:00"_qs, u"Choir 03-26 20:00-21:00"_qs};
    ASSERT_EQ(list(3), before);
    EKEvent second = eventAt(localDate(2024, 3, 12, 20));
    second.notes = u"New room"_qs;
    save(second, EKSpan::FutureEvents);
    EXPECT_EQ(list(3), before) << "only the notes were changed";
    EXPECT_EQ(objectCount(), 2);
    EXPECT_TRUE(textOf(second.calendarItemExternalIdentifier).contains("BYDAY=TU"));
    EXPECT_FALSE(textOf(second.calendarItemExternalIdentifier).contains("RECURRENCE-ID"));
    EXPECT_FALSE(textOf(u"weekly"_qs).contains("New room"));
}
