#include "eventkit/EKRecurrenceRule.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using Day = EKRecurrenceDayOfWeek;
using Days = std::vector<Day>;
using Numbers = std::vector<int>;

class EKRecurrenceRuleTest : public testing::Test
{
protected:
    static EKRecurrenceRule rule(const char *text)
    {
        return EKRecurrenceRule::recurrenceRuleFromString(QString::fromLatin1(text)).value();
    }
};

TEST_F(EKRecurrenceRuleTest, TheFrequencyIsFoundAnywhereInTheTextInAFixedOrder)
{
    EXPECT_EQ(rule("FREQ=DAILY").frequency(), EKRecurrenceFrequency::Daily);
    EXPECT_EQ(rule("RRULE:INTERVAL=2;FREQ=YEARLY").frequency(), EKRecurrenceFrequency::Yearly);
    EXPECT_EQ(rule("FREQ=MONTHLY;FREQ=WEEKLY").frequency(), EKRecurrenceFrequency::Weekly);
    for (const char *text : {"", "RRULE:", "FREQ=HOURLY", "freq=daily", "RRULE:FREQ=MINUTELY;INTERVAL=5"})
        EXPECT_FALSE(EKRecurrenceRule::recurrenceRuleFromString(QString::fromLatin1(text))) << text;
}

TEST_F(EKRecurrenceRuleTest, TheLastIntervalCountsAndOneThatCannotBeReadIsOne)
{
    EXPECT_EQ(rule("FREQ=DAILY;INTERVAL=3").interval(), 3);
    EXPECT_EQ(rule("FREQ=DAILY;INTERVAL=3;INTERVAL=4;COUNT=2").interval(), 4);
    for (const char *text :
         {"FREQ=DAILY", "FREQ=DAILY;INTERVAL=", "FREQ=DAILY;INTERVAL=two", "FREQ=DAILY;INTERVAL=0",
          "FREQ=DAILY;INTERVAL=-5", "FREQ=DAILY;INTERVAL=9999999999"})
        EXPECT_EQ(rule(text).interval(), 1) << text;
}

TEST_F(EKRecurrenceRuleTest, ReadsWeekdaysWithTheirSignedPositions)
{
    EXPECT_EQ(rule("FREQ=WEEKLY;BYDAY=MO,WE").daysOfTheWeek(),
              (Days{{EKWeekday::Monday}, {EKWeekday::Wednesday}}));
    EXPECT_EQ(rule("FREQ=MONTHLY;BYDAY=1MO,3SU").daysOfTheWeek(),
              (Days{{EKWeekday::Monday, 1}, {EKWeekday::Sunday, 3}}));
    EXPECT_EQ(rule("FREQ=MONTHLY;BYDAY=SA,-1FR,+2TU").daysOfTheWeek(),
              (Days{{EKWeekday::Saturday}, {EKWeekday::Friday, -1}, {EKWeekday::Tuesday, 2}}));
    EXPECT_EQ(rule("FREQ=MONTHLY;BYDAY=XX,MONDAY,2,54TU,,FR;BYHOUR=3").daysOfTheWeek(),
              (Days{{EKWeekday::Friday}}));
    EXPECT_TRUE(rule("FREQ=MONTHLY;BYDAY=").daysOfTheWeek().empty());
}

TEST_F(EKRecurrenceRuleTest, ReadsTheOtherListsAndDropsValuesOutOfRange)
{
    const EKRecurrenceRule all =
        rule("RRULE:FREQ=YEARLY;BYMONTHDAY=-1,15,32,x,0;BYMONTH=13,6,0;BYWEEKNO=-53,54,20;"
             "BYYEARDAY=366,-366,367;BYSETPOS=-1,1,400");
    EXPECT_EQ(all.daysOfTheMonth(), (Numbers{-1, 15}));
    EXPECT_EQ(all.monthsOfTheYear(), (Numbers{6}));
    EXPECT_EQ(all.weeksOfTheYear(), (Numbers{-53, 20}));
    EXPECT_EQ(all.daysOfTheYear(), (Numbers{366, -366}));
    EXPECT_EQ(all.setPositions(), (Numbers{-1, 1}));
    EXPECT_TRUE(rule("FREQ=YEARLY;BYMONTHDAY=15").monthsOfTheYear().empty());
    EXPECT_TRUE(rule("FREQ=YEARLY;BYMONTH=-,,--3;BYSETPOS=99999999999").monthsOfTheYear().empty());
}

TEST_F(EKRecurrenceRuleTest, ACountComesBeforeAnEndDate)
{
    EXPECT_EQ(rule("FREQ=DAILY;UNTIL=20300101T000000Z;COUNT=7").recurrenceEnd(),
              EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(7));
    const auto untilNewYear = EKRecurrenceEnd::recurrenceEndWithEndDate(utcDate(2030, 1, 1));
    EXPECT_EQ(rule("FREQ=DAILY;UNTIL=20300101T000000Z;WKST=SU").recurrenceEnd(), untilNewYear);
    EXPECT_EQ(rule("FREQ=DAILY;UNTIL=20300101T000000Z;COUNT=").recurrenceEnd(), untilNewYear);
    for (const char *text :
         {"FREQ=DAILY", "FREQ=DAILY;COUNT=0", "FREQ=DAILY;UNTIL=20300101", "FREQ=DAILY;UNTIL=20300101T000000",
          "FREQ=DAILY;UNTIL=20300230T000000Z", "FREQ=DAILY;UNTIL=;COUNT=-4"})
        EXPECT_FALSE(rule(text).recurrenceEnd()) << text;
}

TEST_F(EKRecurrenceRuleTest, TheTextOfARuleCanBeReadAgain)
{
    const EKRecurrenceRule made = EKRecurrenceRule::initRecurrenceWithFrequency(
        EKRecurrenceFrequency::Monthly, 2, {{EKWeekday::Monday, 1}, {EKWeekday::Friday}}, {-1, 15}, {6}, {},
        {}, {1, -1}, EKRecurrenceEnd::recurrenceEndWithEndDate(utcDate(2030, 6, 1, 9, 30)));
    const QString body =
        u"FREQ=MONTHLY;UNTIL=20300601T093000Z;INTERVAL=2;BYDAY=1MO,FR;BYMONTHDAY=-1,15;BYMONTH=6;BYSETPOS=1,-1"_qs;
    EXPECT_TRUE(made.description().endsWith(u" RRULE "_qs + body));
    EXPECT_EQ(made.description().count(u" RRULE "_qs), 1);
    EXPECT_EQ(made.stringForICalendar(), u"RRULE:"_qs + body);
    EXPECT_EQ(EKRecurrenceRule::recurrenceRuleFromString(made.stringForICalendar()), made);
}

TEST_F(EKRecurrenceRuleTest, OutOfAPatternComesWhatARuleCanHold)
{
    const Calendar berlin({.zoneIdentifier = "Europe/Berlin", .localeIdentifier = QStringLiteral("en_US")});
    const auto hourly = RecurrencePattern::fromText(QStringLiteral("FREQ=HOURLY"));
    EXPECT_FALSE(EKRecurrenceRule::fromPattern(*hourly, berlin));
    const auto pattern =
        RecurrencePattern::fromText(QStringLiteral("FREQ=WEEKLY;BYDAY=-1MO;BYHOUR=9;UNTIL=20240630;WKST=SU"));
    const auto weekly = EKRecurrenceRule::fromPattern(*pattern, berlin);
    ASSERT_TRUE(weekly);
    EXPECT_EQ(weekly->firstDayOfTheWeek(), EKWeekday::Sunday);
    EXPECT_EQ(weekly->recurrenceEnd(),
              EKRecurrenceEnd::recurrenceEndWithEndDate(utcDate(2024, 6, 30, 21, 59, 59)));
    EXPECT_EQ(weekly->stringForICalendar(),
              u"RRULE:FREQ=WEEKLY;UNTIL=20240630T215959Z;BYDAY=-1MO;WKST=SU"_qs);
}
