#include "CoreTest.h"
#include "calendarsync/CalendarEvent.h"
#include "eventkit/EKEvent.h"
#include "foundation/Region.h"
#include "records/dates/MTDates.h"

/// What becomes of a task's repetition on its way to the event.
class EventRulesTest : public CoreTest
{
protected:
    /// What the task's text is after its rule went to the event.
    QString applied(const QString &repeat, OptionalDate endRepeat = {})
    {
        task->setRepeat(repeat);
        task->setEndRepeat(endRepeat);
        event.recurrenceRules = {
            EKRecurrenceRule::initRecurrenceWithFrequency(EKRecurrenceFrequency::Daily, 9)};
        CalendarEvent::setRecurrenceRuleFromEvent(event, *task);
        return task->repeat();
    }

    static void travelTo(const char *zone)
    {
        Region::setZone(zone);
        MTDates::reset();
    }

    EKEvent event;
    TaskPtr task = add(QStringLiteral("Report"), TaskType::Appointment, localDate(2026, 12, 3, 9),
                       localDate(2026, 12, 3, 10));
};

TEST_F(EventRulesTest, TheRuleIsOnTheEventAndItsTextInTheTask)
{
    EXPECT_EQ(applied(u"RRULE:FREQ=DAILY;INTERVAL=2;WKST=MO;DTSTART=20260601T090000Z"_qs),
              u"RRULE:FREQ=DAILY;INTERVAL=2"_qs);
    ASSERT_EQ(event.recurrenceRules.size(), 1U);
    EXPECT_EQ(event.recurrenceRules.front().stringForICalendar(), task->repeat());
    EXPECT_EQ(applied(u"anything RRULE FREQ=DAILY"_qs), u"RRULE:FREQ=DAILY"_qs);
}

TEST_F(EventRulesTest, WithoutAReadableRuleTheEventNoLongerRepeats)
{
    for (const QString &repeat : {QString(), u"RRULE:FREQ=HOURLY"_qs, u"every day"_qs}) {
        EXPECT_TRUE(applied(repeat).isEmpty()) << qPrintable(repeat);
        EXPECT_TRUE(event.recurrenceRules.empty());
    }
}

TEST_F(EventRulesTest, TheEndOfTheTaskReplacesThatOfTheText)
{
    EXPECT_EQ(applied(u"RRULE:FREQ=DAILY;COUNT=5"_qs), u"RRULE:FREQ=DAILY"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=DAILY;UNTIL=20270101T000000Z"_qs), u"RRULE:FREQ=DAILY"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=DAILY;COUNT=5"_qs, localDate(2026, 12, 31, 12)),
              u"RRULE:FREQ=DAILY;UNTIL=20261231T225959Z"_qs);
    EXPECT_EQ(task->endRepeat(), localDate(2026, 12, 31, 23, 59, 59));
    EXPECT_EQ(event.recurrenceRules.front().recurrenceEnd()->endDate(), task->endRepeat());
}

TEST_F(EventRulesTest, TheEndStaysTheDayThatWasPickedHoweverOftenItIsWritten)
{
    for (const char *zone : {"America/New_York", "Asia/Tokyo", "Pacific/Kiritimati", "UTC"}) {
        travelTo(zone);
        const Date end = localDate(2026, 12, 31, 23, 59, 59);
        applied(u"RRULE:FREQ=DAILY"_qs, localDate(2026, 12, 31, 12));
        for (int times = 0; times < 3; ++times) {
            EXPECT_EQ(task->endRepeat(), end) << zone;
            task->setStartDate(*task->startDate() + Seconds(3600));
            CalendarEvent::setRecurrenceRuleFromEvent(event, *task);
        }
        // Who has travelled edits something else.
        travelTo("Europe/Berlin");
        CalendarEvent::setRecurrenceRuleFromEvent(event, *task);
        EXPECT_EQ(task->endRepeat(), end) << zone;
    }
}

TEST_F(EventRulesTest, AnEndBeforeTheTaskMovesToTheEndOfItsDay)
{
    applied(u"RRULE:FREQ=DAILY"_qs, localDate(2026, 11, 1));
    EXPECT_EQ(task->endRepeat(), localDate(2026, 12, 3, 23, 59, 59));

    task->setType(TaskType::EmailCall);
    task->setDueDate(localDate(2026, 12, 8, 10));
    applied(u"RRULE:FREQ=DAILY"_qs, localDate(2026, 11, 1));
    EXPECT_EQ(task->endRepeat(), localDate(2026, 12, 8, 23, 59, 59));

    task->setType(TaskType::ToDo);
    task->setStartDate(std::nullopt);
    applied(QString(), localDate(2026, 11, 1));
    EXPECT_EQ(task->endRepeat(), localDate(2026, 11, 1, 23, 59, 59));
}

TEST_F(EventRulesTest, ARuleOfOneDayIsFittedToTheDateOfTheTask)
{
    EXPECT_EQ(applied(u"RRULE:FREQ=WEEKLY;BYDAY=MO"_qs), u"RRULE:FREQ=WEEKLY"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=WEEKLY;BYDAY=MO,TU"_qs), u"RRULE:FREQ=WEEKLY;BYDAY=MO,TU"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=MONTHLY;BYMONTHDAY=31;INTERVAL=2"_qs),
              u"RRULE:FREQ=MONTHLY;INTERVAL=2;BYMONTHDAY=3"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=MONTHLY;BYMONTHDAY=1,15"_qs), u"RRULE:FREQ=MONTHLY;BYMONTHDAY=1,15"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=YEARLY;BYYEARDAY=100;BYMONTH=4,5"_qs),
              u"RRULE:FREQ=YEARLY;BYYEARDAY=100;BYMONTH=12"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=YEARLY;BYYEARDAY=100,200"_qs), u"RRULE:FREQ=YEARLY;BYYEARDAY=100,200"_qs);
    EXPECT_EQ(applied(u"RRULE:FREQ=MONTHLY;BYDAY=1MO;BYSETPOS=1;BYMONTHDAY=5"_qs, localDate(2027, 1, 31)),
              u"RRULE:FREQ=MONTHLY;UNTIL=20270131T225959Z;BYDAY=1MO;BYMONTHDAY=3;BYSETPOS=1"_qs);

    task->setStartDate(std::nullopt);
    task->setDueDate(localDate(2026, 2, 17));
    EXPECT_EQ(applied(u"RRULE:FREQ=MONTHLY;BYMONTHDAY=31"_qs), u"RRULE:FREQ=MONTHLY;BYMONTHDAY=17"_qs);
}
