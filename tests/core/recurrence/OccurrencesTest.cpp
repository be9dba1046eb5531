#include "recurrence/RRule.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using Dates = std::vector<Date>;

class OccurrencesTest : public testing::Test
{
protected:
    static RecurrenceRule daily(Date start, int count)
    {
        RecurrenceRule rule(RecurrenceFrequency::daily);
        rule.startDate = start;
        if (count > 0)
            rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(count);
        return rule;
    }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    const Date start = localDate(2026, 3, 28, 9) + Seconds(0.125);
};

TEST_F(OccurrencesTest, ACountedRuleGivesItsDatesFromTheStartOn)
{
    // The clocks are set forward on the 29th.
    EXPECT_EQ(daily(start, 3).allOccurrences(), (Dates{start, localDate(2026, 3, 29, 9) + Seconds(0.125),
                                                       localDate(2026, 3, 30, 9) + Seconds(0.125)}));
}

TEST_F(OccurrencesTest, TheWallClockIsThatOfTheCalendarOfTheRule)
{
    RecurrenceRule rule = daily(utcDate(2026, 3, 7, 14), 3);
    rule.calendar =
        Calendar({.zoneIdentifier = "America/New_York", .localeIdentifier = QStringLiteral("en_US")});
    EXPECT_EQ(rule.allOccurrences(),
              (Dates{utcDate(2026, 3, 7, 14), utcDate(2026, 3, 8, 13), utcDate(2026, 3, 9, 13)}));
}

TEST_F(OccurrencesTest, ARuleWithoutEndHasDatesOnlyBetweenBounds)
{
    const RecurrenceRule endless = daily(start, 0);
    EXPECT_TRUE(endless.allOccurrences().empty());
    EXPECT_EQ(endless.occurrencesBetween(localDate(2036, 5, 1), localDate(2036, 5, 2, 10)),
              (Dates{localDate(2036, 5, 1, 9) + Seconds(0.125), localDate(2036, 5, 2, 9) + Seconds(0.125)}));
}

TEST_F(OccurrencesTest, BoundsBelongToTheSpanAndNeverWidenTheRule)
{
    RecurrenceRule rule = daily(start, 0);
    rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithEndDate(start + Seconds(3600));
    EXPECT_EQ(rule.occurrencesBetween(localDate(2000, 1, 1), localDate(2050, 1, 1)), Dates{start});
    EXPECT_EQ(rule.occurrencesBetween(start, start), Dates{start});
    EXPECT_TRUE(rule.occurrencesBetween(localDate(2026, 4, 1), localDate(2050, 1, 1)).empty());
    EXPECT_TRUE(rule.occurrencesBetween(localDate(2050, 1, 1), localDate(2000, 1, 1)).empty());
    EXPECT_EQ(rule.allOccurrences(), Dates{start});
}

TEST_F(OccurrencesTest, AddedDatesComeInOrderAndOnlyInsideTheBounds)
{
    RecurrenceRule rule = daily(localDate(2026, 6, 1, 9), 2);
    const Date early = localDate(2026, 5, 20, 12);
    const Date noon = localDate(2026, 6, 1, 12);
    rule.rdate = InclusionDate{{noon, early, localDate(2026, 6, 1, 9)}};
    EXPECT_EQ(rule.allOccurrences(),
              (Dates{early, localDate(2026, 6, 1, 9), noon, localDate(2026, 6, 2, 9)}));
    EXPECT_EQ(rule.occurrencesBetween(noon, localDate(2026, 6, 30)), (Dates{noon, localDate(2026, 6, 2, 9)}));
}

TEST_F(OccurrencesTest, DatesAreTakenOutAtTheGranularityThatIsSaid)
{
    RecurrenceRule rule(RecurrenceFrequency::hourly);
    CalendarSettings settings = Calendar::currentSettings();
    settings.firstWeekday = 2;
    settings.minimumDaysInFirstWeek = 4;
    rule.calendar = Calendar(settings);
    rule.startDate = localDate(2026, 12, 30, 9, 30);
    rule.interval = 13;
    rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(60);
    const auto left = [&](CalendarUnit component, Date excluded) {
        rule.exdate = ExclusionDate{{excluded}, component};
        return rule.allOccurrences().size();
    };
    const Date first = rule.startDate;
    EXPECT_EQ(left(CalendarUnit::Second, first), 59U);
    EXPECT_EQ(left(CalendarUnit::Second, first + Seconds(1)), 60U);
    EXPECT_EQ(left(CalendarUnit::Minute, first + Seconds(59)), 59U);
    EXPECT_EQ(left(CalendarUnit::Hour, first - Seconds(60)), 59U);
    EXPECT_EQ(left(CalendarUnit::Hour, first - Seconds(3600)), 60U);
    EXPECT_EQ(left(CalendarUnit::Day, localDate(2026, 12, 30, 23)), 58U);
    EXPECT_EQ(left(CalendarUnit::Month, localDate(2026, 12, 1)), 57U);
    EXPECT_EQ(left(CalendarUnit::Year, localDate(2027, 7, 1)), 3U);
    // The week of the 30th reaches to the 3rd of January; nine of the times lie in it.
    EXPECT_EQ(left(CalendarUnit::WeekOfYear, localDate(2027, 1, 3)), 60U - 9U);
}

TEST_F(OccurrencesTest, ImpossibleAndBoundlessRulesComeToAnEnd)
{
    auto never = RRule::ruleFromString(u"RRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30;COUNT=3"_qs);
    EXPECT_TRUE(never->allOccurrences().empty());
    auto often = RRule::ruleFromString(u"RRULE:FREQ=SECONDLY;COUNT=2147483647"_qs);
    EXPECT_EQ(often->allOccurrences().size(), 1'000'000U);
}
