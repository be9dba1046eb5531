#include "eventkit/ItemExpansion.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>

/// Where the occurrences of an iCalendar object lie, seen from Berlin.
class ItemExpansionTest : public testing::Test
{
protected:
    static QByteArray event(const QByteArray &lines)
    {
        return "BEGIN:VEVENT\nUID:u\n" + lines + "END:VEVENT\n";
    }
    static CalendarItemPointer item(const QByteArray &components)
    {
        auto read = CalendarItem::fromText("BEGIN:VCALENDAR\n" + components + "END:VCALENDAR\n");
        EXPECT_TRUE(read) << (read ? "" : qPrintable(read.error().message));
        return read ? *read : nullptr;
    }
    /// "03-31 09:00-10:00" for each occurrence, "*" behind edited ones.
    static QStringList occurrences(const QByteArray &components, Date from, Date to)
    {
        QStringList found;
        const CalendarItemPointer parsed = item(components);
        for (const ItemOccurrence &one : ItemExpansion::occurrences(*parsed, {from, to})) {
            const QString start = wallClock(one.start);
            const QString end = wallClock(one.end);
            const QString endText = start.left(10) == end.left(10) ? end.mid(11, 5) : end.mid(5, 11);
            found.append(start.mid(5, 11) + u'-' + endText + (one.detached ? u"*"_qs : QString()));
        }
        return found;
    }
    static QStringList inMarch(const QByteArray &components)
    {
        return occurrences(components, localDate(2024, 3, 1), localDate(2024, 4, 1));
    }
};

TEST_F(ItemExpansionTest, ASingleEventHasTheLengthItSays)
{
    EXPECT_EQ(inMarch(event("DTSTART:20240305T090000\nDTEND:20240305T100000\n")),
              (QStringList{u"03-05 09:00-10:00"_qs}));
    EXPECT_EQ(inMarch(event("DTSTART:20240305T090000Z\nDURATION:PT45M\n")),
              (QStringList{u"03-05 10:00-10:45"_qs}));
    EXPECT_EQ(inMarch(event("DTSTART;TZID=America/New_York:20240305T090000\nDTEND:20240305T150000Z\n")),
              (QStringList{u"03-05 15:00-16:00"_qs}));
    // A moment: without an end, with an end before the start.
    EXPECT_EQ(inMarch(event("DTSTART:20240305T090000\n")), (QStringList{u"03-05 09:00-09:00"_qs}));
    EXPECT_EQ(inMarch(event("DTSTART:20240305T090000\nDTEND:20240304T090000\n")),
              (QStringList{u"03-05 09:00-09:00"_qs}));
    // A day that is one of the calendar, over the change of the clock.
    EXPECT_EQ(inMarch(event("DTSTART;TZID=Europe/Berlin:20240330T120000\nDURATION:P1D\n")),
              (QStringList{u"03-30 12:00-03-31 12:00"_qs}));
    EXPECT_EQ(inMarch(event("DTSTART;TZID=Europe/Berlin:20240330T120000\nDURATION:PT24H\n")),
              (QStringList{u"03-30 12:00-03-31 13:00"_qs}));
}

TEST_F(ItemExpansionTest, AllDayEventsEndBeforeTheDayOfTheirEnd)
{
    for (const char *end :
         {"", "DTEND;VALUE=DATE:20240331\n", "DTEND;VALUE=DATE:20240330\n", "DURATION:P1D\n"})
        EXPECT_EQ(inMarch(event(QByteArray("DTSTART;VALUE=DATE:20240330\n") + end)),
                  (QStringList{u"03-30 00:00-03-31 00:00"_qs}))
            << end;
    EXPECT_EQ(inMarch(event("DTSTART;VALUE=DATE:20240330\nDTEND;VALUE=DATE:20240402\n")),
              (QStringList{u"03-30 00:00-04-02 00:00"_qs}));
    EXPECT_EQ(occurrences(event("DTSTART;VALUE=DATE:20240330\nRRULE:FREQ=DAILY;COUNT=3\n"),
                          localDate(2024, 3, 31), localDate(2024, 4, 1)),
              (QStringList{u"03-31 00:00-04-01 00:00"_qs}));
}

TEST_F(ItemExpansionTest, TheWindowTakesWhatOverlapsIt)
{
    const Date from = localDate(2024, 3, 5, 9);
    const Date to = localDate(2024, 3, 5, 10);
    const auto isIn = [&](const char *lines) { return occurrences(event(lines), from, to).size() == 1; };
    EXPECT_TRUE(isIn("DTSTART:20240301T000000\nDTEND:20240401T000000\n"));
    EXPECT_TRUE(isIn("DTSTART:20240305T083000\nDTEND:20240305T090001\n"));
    EXPECT_FALSE(isIn("DTSTART:20240305T083000\nDTEND:20240305T090000\n"));
    EXPECT_FALSE(isIn("DTSTART:20240305T100000\nDTEND:20240305T110000\n"));
    EXPECT_TRUE(isIn("DTSTART:20240305T090000\n"));
    EXPECT_FALSE(isIn("DTSTART:20240305T100000\n"));
    EXPECT_EQ(
        occurrences(event("DTSTART:20240201T080000\nDTEND:20240203T090001\nRRULE:FREQ=DAILY\n"), from, to)
            .size(),
        3);
}

TEST_F(ItemExpansionTest, RulesDatesAndExclusionsTogether)
{
    EXPECT_EQ(
        inMarch(event("DTSTART;TZID=Europe/Berlin:20240304T090000\nDTEND;TZID=Europe/Berlin:20240304T100000\n"
                      "RRULE:FREQ=WEEKLY;COUNT=4\nRRULE:FREQ=WEEKLY;BYDAY=MO,WE;UNTIL=20240313T080000Z\n"
                      "RDATE;TZID=Europe/Berlin:20240311T090000,20240305T120000\n"
                      "RDATE;TZID=America/New_York:20240306T120000\n"
                      "RDATE;VALUE=PERIOD:20240307T080000Z/PT3H,20240308T080000Z/20240308T083000Z\n"
                      "EXDATE;TZID=Europe/Berlin:20240318T090000\nEXDATE:20240313T080000Z\n"
                      "EXDATE;VALUE=DATE:20240325\n")),
        (QStringList{u"03-04 09:00-10:00"_qs, u"03-05 12:00-13:00"_qs, u"03-06 09:00-10:00"_qs,
                     u"03-06 18:00-19:00"_qs, u"03-07 09:00-12:00"_qs, u"03-08 09:00-09:30"_qs,
                     u"03-11 09:00-10:00"_qs}));
    EXPECT_EQ(inMarch(event("DTSTART:20240328T090000\nRRULE:FREQ=DAILY\nEXRULE:FREQ=WEEKLY;BYDAY=SA,SU\n")),
              (QStringList{u"03-28 09:00-09:00"_qs, u"03-29 09:00-09:00"_qs}));
    // The start counts even where the rule does not have it.
    EXPECT_EQ(inMarch(event("DTSTART:20240328T090000\nRRULE:FREQ=WEEKLY;BYDAY=SA\n")),
              (QStringList{u"03-28 09:00-09:00"_qs, u"03-30 09:00-09:00"_qs}));
    // The last day of a date belongs to it.
    EXPECT_EQ(inMarch(event("DTSTART:20240328T090000\nRRULE:FREQ=DAILY;UNTIL=20240329\n")).size(), 2);
}

TEST_F(ItemExpansionTest, EditedOccurrencesStandWhereTheyWereMoved)
{
    const QByteArray series =
        event("DTSTART;TZID=Europe/Berlin:20240301T090000\nDURATION:PT1H\nRRULE:FREQ=WEEKLY\n");
    const QByteArray outOfMarch =
        event("RECURRENCE-ID;TZID=Europe/Berlin:20240308T090000\nDTSTART:20240501T070000Z\nDURATION:PT2H\n");
    const QByteArray intoMarch = event("RECURRENCE-ID:20240405T070000Z\nDTSTART;VALUE=DATE:20240320\n");
    const QByteArray byDate = event("RECURRENCE-ID;VALUE=DATE:20240322\nDTSTART:20240322T130000Z\n");
    EXPECT_EQ(inMarch(series + outOfMarch + intoMarch + byDate),
              (QStringList{u"03-01 09:00-10:00"_qs, u"03-15 09:00-10:00"_qs, u"03-20 00:00-03-21 00:00*"_qs,
                           u"03-22 14:00-14:00*"_qs, u"03-29 09:00-10:00"_qs}));
    EXPECT_EQ(occurrences(series + outOfMarch, localDate(2024, 5, 1), localDate(2024, 5, 2)),
              (QStringList{u"05-01 09:00-11:00*"_qs}));
    EXPECT_EQ(inMarch(byDate), (QStringList{u"03-22 14:00-14:00*"_qs})) << "without its series";
}

TEST_F(ItemExpansionTest, AnEditOfThisAndLaterOnesHoldsUpToTheNext)
{
    const QByteArray series = event("DTSTART;TZID=Europe/Berlin:20240326T090000\nDURATION:PT1H\n"
                                    "RRULE:FREQ=DAILY;COUNT=7\nEXDATE;TZID=Europe/Berlin:20240328T090000\n");
    // In UTC: on the clock of the series nevertheless, also when that changes on the 31st.
    const QByteArray later = event("RECURRENCE-ID;RANGE=THISANDFUTURE:20240328T080000Z\n"
                                   "DTSTART:20240328T100000Z\nDTEND:20240328T103000Z\n");
    const QByteArray alone =
        event("RECURRENCE-ID;TZID=Europe/Berlin:20240330T090000\nDTSTART:20240330T140000\n");
    const QByteArray latest = event("RECURRENCE-ID;TZID=Europe/Berlin;RANGE=THISANDFUTURE:20240401T090000\n"
                                    "DTSTART;VALUE=DATE:20240402\n");
    EXPECT_EQ(
        occurrences(series + latest + alone + later, localDate(2024, 3, 1), localDate(2024, 5, 1)),
        (QStringList{u"03-26 09:00-10:00"_qs, u"03-27 09:00-10:00"_qs, u"03-29 11:00-11:30"_qs,
                     u"03-30 14:00-14:00*"_qs, u"03-31 11:00-11:30"_qs, u"04-02 00:00-04-03 00:00"_qs}));
    EXPECT_EQ(inMarch(alone + later).size(), 2) << "without the series each is one";
}

TEST_F(ItemExpansionTest, LaterOnesAreFoundHoweverFarTheyWereMoved)
{
    const QByteArray series = event("DTSTART:20240101T090000\nDURATION:PT1H\nRRULE:FREQ=DAILY\n");
    const auto moved = [&](const char *to) {
        return series +
               event("RECURRENCE-ID;RANGE=THISANDFUTURE:20240301T090000\nDTSTART:" + QByteArray(to) + '\n');
    };
    const Date day = localDate(2024, 6, 1);
    for (const char *to : {"20240101T090000", "20240501T090000", "20240301T093000"})
        EXPECT_EQ(occurrences(moved(to), day, day + Seconds(86400)).size(), 1) << to;
    // What was moved away leaves nothing where it was.
    EXPECT_EQ(occurrences(moved("20240501T090000"), localDate(2024, 3, 1), localDate(2024, 5, 1)).size(), 0);
}

TEST_F(ItemExpansionTest, SeriesKeepTheirWallClockOverClockChanges)
{
    const auto around = [](const QByteArray &lines, Date day) {
        return occurrences(event(lines), day - Seconds(36 * 3600), day + Seconds(36 * 3600));
    };
    // Both directions, in the zone of the series.
    EXPECT_EQ(
        around("DTSTART;TZID=Europe/Berlin:20240101T023000\nRRULE:FREQ=DAILY\n", localDate(2024, 3, 31, 4)),
        (QStringList{u"03-30 02:30-02:30"_qs, u"03-31 03:30-03:30"_qs, u"04-01 02:30-02:30"_qs}));
    EXPECT_EQ(
        around("DTSTART;TZID=Europe/Berlin:20240101T023000\nRRULE:FREQ=DAILY\n", localDate(2024, 10, 27, 4)),
        (QStringList{u"10-26 02:30-02:30"_qs, u"10-27 02:30-02:30"_qs, u"10-28 02:30-02:30"_qs}));
    EXPECT_EQ(around("DTSTART;TZID=America/New_York:20240101T090000\nRRULE:FREQ=DAILY\n",
                     localDate(2024, 3, 10, 12)),
              (QStringList{u"03-09 15:00-15:00"_qs, u"03-10 14:00-14:00"_qs, u"03-11 14:00-14:00"_qs}));
    EXPECT_EQ(
        around("DTSTART;TZID=Australia/Sydney:20240101T090000\nRRULE:FREQ=DAILY\n", localDate(2024, 4, 7, 0)),
        (QStringList{u"04-06 00:00-00:00"_qs, u"04-07 01:00-01:00"_qs, u"04-08 01:00-01:00"_qs}));
    for (const char *zone : {"Europe/Berlin", "America/Havana", "Australia/Sydney"}) {
        Region::setZone(zone);
        EXPECT_EQ(occurrences(event("DTSTART;VALUE=DATE:20240101\nRRULE:FREQ=DAILY\n"), localDate(2024, 1, 1),
                              localDate(2025, 1, 1))
                      .size(),
                  366)
            << zone;
    }
}

TEST_F(ItemExpansionTest, AnAllDaySeriesEndsOnTheDayThatIsWritten)
{
    for (const char *zone : {"Europe/Berlin", "America/New_York", "Pacific/Auckland"}) {
        Region::setZone(zone);
        for (const char *until : {"20240303", "20240303T000000Z", "20240303T235959Z", "20240303T000000"})
            EXPECT_EQ(inMarch(event(
                          "DTSTART;VALUE=DATE:20240302\nRRULE:FREQ=DAILY;UNTIL=" + QByteArray(until) + "\n")),
                      (QStringList{u"03-02 00:00-03-03 00:00"_qs, u"03-03 00:00-03-04 00:00"_qs}))
                << zone << ' ' << until;
    }
}

TEST_F(ItemExpansionTest, ZonesAreFoundByNameElseByDescription)
{
    const QByteArray described =
        "BEGIN:VTIMEZONE\nTZID:%1\nBEGIN:STANDARD\nDTSTART:20001029T030000\nTZOFFSETFROM:+0500\n"
        "TZOFFSETTO:+0400\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\nEND:STANDARD\nBEGIN:DAYLIGHT\n"
        "DTSTART:20000326T020000\nTZOFFSETFROM:+0400\nTZOFFSETTO:+0500\n"
        "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\nEND:DAYLIGHT\nEND:VTIMEZONE\n";
    const auto firstIn = [&](const QByteArray &zone, bool isDescribed) {
        return inMarch((isDescribed ? QByteArray(described).replace("%1", zone) : QByteArray()) +
                       event("DTSTART;TZID=\"" + zone + "\":20240330T120000\nRRULE:FREQ=DAILY;COUNT=2\n"));
    };
    // Four hours ahead of UTC, five from the 31st on.
    EXPECT_EQ(firstIn("Our Zone", true), (QStringList{u"03-30 09:00-09:00"_qs, u"03-31 09:00-09:00"_qs}));
    const QStringList noonInBerlin = {u"03-30 12:00-12:00"_qs, u"03-31 12:00-12:00"_qs};
    EXPECT_EQ(firstIn("Europe/Berlin", true), noonInBerlin);
    EXPECT_EQ(firstIn("/example.org/20070227_1/Europe/Berlin", true), noonInBerlin);
    EXPECT_EQ(firstIn("W. Europe Standard Time", false), noonInBerlin);
    EXPECT_EQ(firstIn("Etc/UTC", false).first(), u"03-30 13:00-13:00"_qs);

    const LogCapture log;
    EXPECT_EQ(firstIn("Nowhere At All", false), noonInBerlin);
    EXPECT_EQ(firstIn("Nowhere At All", false), noonInBerlin);
    EXPECT_EQ(log.lines(),
              (QStringList{u"Cannot find the time zone \"Nowhere At All\" of a calendar; its times "
                           "are taken as local."_qs}));
}

TEST_F(ItemExpansionTest, FirstnessLooksThroughExclusionsAndEdits)
{
    const CalendarItemPointer series =
        item(event("DTSTART:20240301T090000Z\nRRULE:FREQ=DAILY\nEXDATE:20240301T090000Z,20240302T090000Z\n") +
             event("RECURRENCE-ID:20240303T090000Z\nDTSTART:20240401T090000Z\n"));
    const auto key = [](int day) { return static_cast<qint64>(utcDate(2024, 3, day, 9).unixSeconds()); };
    EXPECT_EQ(ItemExpansion::first(*series)->start, utcDate(2024, 3, 4, 9));
    EXPECT_FALSE(ItemExpansion::hasOccurrenceBefore(*series, key(3)));
    EXPECT_TRUE(ItemExpansion::hasOccurrenceBefore(*series, key(4)));
    EXPECT_EQ(ItemExpansion::matchesBefore(*series, series->recurrence().rules.front(), key(4)), 3);
    EXPECT_TRUE(ItemExpansion::contains(*series, key(3)));
    EXPECT_FALSE(ItemExpansion::contains(*series, key(2)));
    EXPECT_EQ(ItemExpansion::occurrence(*series, key(3))->start, utcDate(2024, 4, 1, 9));

    const CalendarItemPointer nothing =
        item(event("DTSTART:20240301T090000Z\nRRULE:FREQ=DAILY;COUNT=1\nEXDATE:20240301T090000Z\n"));
    EXPECT_FALSE(ItemExpansion::first(*nothing));
}

TEST_F(ItemExpansionTest, AbsurdObjectsEndInNothingOrAnError)
{
    const auto error = [](const QByteArray &components) {
        const auto read = CalendarItem::fromText("BEGIN:VCALENDAR\n" + components + "END:VCALENDAR\n");
        return read ? QString() : read.error().message;
    };
    EXPECT_FALSE(item(""));
    EXPECT_FALSE(item(event("SUMMARY:no start\n")));
    EXPECT_FALSE(item(event("DTSTART:20241399T000000\n")));
    EXPECT_FALSE(item(event("DTSTART:99999999T999999\n")));
    EXPECT_EQ(error("BEGIN:VEVENT\nDTSTART:20240301T090000\nEND:VEVENT\n"), u"an event in it has no UID"_qs);
    EXPECT_EQ(error(event("DTSTART:20240301T090000\n") + "BEGIN:VEVENT\nUID:v\nEND:VEVENT\n"),
              u"it holds events with more than one UID"_qs);
    EXPECT_EQ(error(event("DTSTART:20240301T090000\n") + event("DTSTART:20240302T090000\n")),
              u"it holds two events with one UID"_qs);
    EXPECT_EQ(inMarch(event("DTSTART:00010101T000000\nDTEND:99991231T235959\n")).size(), 1);
    EXPECT_TRUE(inMarch(event("DTSTART:99991231T235959\nRRULE:FREQ=SECONDLY\n")).isEmpty());
    EXPECT_EQ(inMarch(event("DTSTART:20240330T000000\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30\n")).size(),
              1);
    EXPECT_EQ(inMarch(event("DTSTART:20240330T000000\nDURATION:P99999999999999999999D\n")).size(), 1);
}

TEST_F(ItemExpansionTest, SeriesWithoutMeasureAreAnsweredInTime)
{
    const auto begin = std::chrono::steady_clock::now();
    const DateWindow window{localDate(2024, 3, 1), localDate(2025, 3, 1)};
    const auto seconds = item(event("DTSTART:20100101T000000Z\nRRULE:FREQ=SECONDLY\n"));
    const auto some = ItemExpansion::occurrences(*seconds, window, 50);
    EXPECT_FALSE(some.isWhole);
    EXPECT_EQ(some.found.size(), 50U);
    EXPECT_EQ(some.found.front().start, window.from);
    const auto counted = item(event("DTSTART:20100101T000000Z\nRRULE:FREQ=SECONDLY;COUNT=2000000000\n"));
    EXPECT_FALSE(ItemExpansion::occurrences(*counted, window, 50).isWhole);
    const auto days = item(event("DTSTART:20240301T000000Z\nRRULE:FREQ=DAILY;COUNT=50\n"));
    EXPECT_TRUE(ItemExpansion::occurrences(*days, window, 50).isWhole);
    EXPECT_FALSE(ItemExpansion::occurrences(*days, window, 49).isWhole);
    // One of 442 millions: only the nearest are looked at.
    const auto key = static_cast<qint64>(localDate(2024, 3, 1).unixSeconds());
    EXPECT_TRUE(ItemExpansion::hasOccurrenceBefore(*seconds, key));
    EXPECT_TRUE(ItemExpansion::hasOther(*seconds, key));
    EXPECT_EQ(ItemExpansion::first(*seconds)->start, utcDate(2010, 1, 1));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    // What comes first can be a date before the start, or be excluded.
    const auto earlier = item(event("DTSTART:20240301T090000Z\nRDATE:20230101T090000Z\n"));
    EXPECT_TRUE(ItemExpansion::hasOccurrenceBefore(*earlier, earlier->master()->key));
    const auto excluded =
        item(event("DTSTART:20240301T090000Z\nRRULE:FREQ=YEARLY;COUNT=2\nEXDATE:20240301T090000Z\n"));
    const auto second = static_cast<qint64>(utcDate(2025, 3, 1, 9).unixSeconds());
    EXPECT_FALSE(ItemExpansion::hasOccurrenceBefore(*excluded, second));
    EXPECT_FALSE(ItemExpansion::hasOther(*excluded, second));
}
