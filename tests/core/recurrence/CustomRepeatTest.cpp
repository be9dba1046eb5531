// A rule of the user's own is put together.

#include "recurrence/CustomRepeat.h"
#include "recurrence/RRule.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

class CustomRepeatTest : public testing::Test
{
protected:
    static CustomRepeat of(const QString &rule, Date date, OptionalDate end = {})
    {
        return CustomRepeat(RRule::ruleFromString(u"RRULE:"_s + rule), date, end,
                            RecurrencePickerLanguage::english);
    }
    static QStringList days(const CustomRepeat &repeat, std::size_t count = 4)
    {
        QStringList texts;
        for (const Date date : repeat.nextDates(count))
            texts << wallClock(date).left(10);
        return texts;
    }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
};

} // namespace

TEST_F(CustomRepeatTest, TheGridShowsAndTakesWhatBelongsToTheFrequency)
{
    CustomRepeat repeat = of(u"FREQ=WEEKLY;INTERVAL=3;BYDAY=WE"_s, localDate(2026, 11, 25));
    EXPECT_EQ(repeat.items().size(), 7U);
    EXPECT_EQ(repeat.items().front(), Calendar::current().firstWeekday());
    EXPECT_TRUE(repeat.isSelected(static_cast<int>(EKWeekday::Wednesday)));
    repeat.setSelected(static_cast<int>(EKWeekday::Monday), true);
    EXPECT_EQ(repeat.sentence(), u"Repeats every 3 weeks on Monday and Wednesday"_s);
    EXPECT_EQ(repeat.unitLabel(), u"week (s)"_s);

    repeat.frequencyChange(2);
    EXPECT_TRUE(repeat.rule().byweekday.empty());
    EXPECT_EQ(repeat.items().size(), 31U);
    for (const int day : {25, 31, 2})
        repeat.setSelected(day, true);
    repeat.setSelected(31, false);
    EXPECT_EQ(repeat.rule().bymonthday, (std::vector{2, 25}));

    repeat.frequencyChange(3);
    EXPECT_EQ(repeat.items().size(), 12U);
    EXPECT_EQ(repeat.titleOf(1), u"Jan"_s);
    EXPECT_EQ(repeat.nameOf(1), u"January"_s);
    repeat.frequencyChange(0);
    EXPECT_TRUE(repeat.items().empty());
    repeat.setInterval(0);
    EXPECT_EQ(repeat.rule().interval, 1);
    repeat.setInterval(5000);
    EXPECT_EQ(repeat.rule().interval, 999);
}

TEST_F(CustomRepeatTest, TheNextDatesFollowTheTasksOwnDateAndEndWithTheSeries)
{
    EXPECT_EQ(days(of(u"FREQ=WEEKLY;INTERVAL=2"_s, localDate(2026, 11, 24, 8)), 3),
              (QStringList{u"2026-11-24"_s, u"2026-12-08"_s, u"2026-12-22"_s}));
    // Counted from a date in the past, shown from today.
    EXPECT_EQ(days(of(u"FREQ=DAILY;INTERVAL=10"_s, localDate(2026, 11, 2)), 2),
              (QStringList{u"2026-11-22"_s, u"2026-12-02"_s}));
    EXPECT_EQ(days(of(u"FREQ=DAILY"_s, localDate(2026, 11, 24), localDate(2026, 11, 25, 23, 59, 59))),
              (QStringList{u"2026-11-24"_s, u"2026-11-25"_s}));
    EXPECT_EQ(days(of(u"FREQ=YEARLY"_s, localDate(2028, 2, 29)), 2),
              (QStringList{u"2028-02-29"_s, u"2032-02-29"_s}));
}

TEST_F(CustomRepeatTest, ItSaysWhatTheUserMayNotExpect)
{
    const Date lastOfMay = localDate(2027, 5, 31);
    EXPECT_EQ(of(u"FREQ=MONTHLY"_s, lastOfMay).warning(),
              u"In months without a day 31, this date is skipped."_s);
    EXPECT_EQ(days(of(u"FREQ=MONTHLY"_s, lastOfMay), 3),
              (QStringList{u"2027-05-31"_s, u"2027-07-31"_s, u"2027-08-31"_s}));
    EXPECT_EQ(of(u"FREQ=MONTHLY;BYMONTHDAY=28,-1"_s, lastOfMay).warning(), QString());
    const QString startIsExtra = u"The task’s own date comes first, though the rule leaves it out."_s;
    EXPECT_EQ(of(u"FREQ=MONTHLY;BYMONTHDAY=1,30"_s, lastOfMay).warning(),
              startIsExtra + u"\nIn months without a day 30, this date is skipped."_s);
    EXPECT_EQ(of(u"FREQ=MONTHLY;BYMONTHDAY=30,31"_s, lastOfMay).warning(),
              u"In months without a day 31, this date is skipped."_s);
    EXPECT_EQ(of(u"FREQ=WEEKLY;BYDAY=TU,WE"_s, lastOfMay).warning(), startIsExtra);
    EXPECT_EQ(of(u"FREQ=WEEKLY;BYDAY=TU,WE"_s, localDate(2026, 11, 2)).warning(), QString())
        << "a date that lies behind";
    EXPECT_EQ(of(u"FREQ=YEARLY"_s, localDate(2028, 2, 29)).warning(),
              u"Years without a February 29 are skipped."_s);
    EXPECT_EQ(of(u"FREQ=YEARLY;BYMONTH=4,5"_s, lastOfMay).warning(),
              u"In months without a day 31, this date is skipped."_s);
    EXPECT_EQ(of(u"FREQ=YEARLY;BYMONTH=2,4"_s, lastOfMay).warning(), u"This never comes round."_s);
    EXPECT_EQ(of(u"FREQ=YEARLY"_s, lastOfMay).warning(), QString());
    EXPECT_EQ(of(u"FREQ=WEEKLY"_s, lastOfMay).warning(), QString());
}

TEST_F(CustomRepeatTest, ARuleByHoursCanBeReplaced)
{
    CustomRepeat repeat = of(u"FREQ=HOURLY;INTERVAL=2"_s, localDate(2026, 11, 23));
    EXPECT_FALSE(repeat.isFrequencyKnown());
    repeat.frequencyChange(repeat.frequencyIndex());
    EXPECT_TRUE(repeat.isFrequencyKnown());
    EXPECT_EQ(repeat.rule().frequency, RecurrenceFrequency::daily);
}

TEST_F(CustomRepeatTest, ALookAtARuleChangesNothingOfIt)
{
    const Date lastOfNovember = localDate(2026, 11, 30, 10);
    CustomRepeat lastDays = of(u"FREQ=MONTHLY;BYMONTHDAY=-1"_s, lastOfNovember);
    EXPECT_EQ(lastDays.rule().bymonthday, std::vector{-1});
    EXPECT_EQ(days(lastDays),
              (QStringList{u"2026-11-30"_s, u"2026-12-31"_s, u"2027-01-31"_s, u"2027-02-28"_s}));
    EXPECT_EQ(lastDays.warning(), QString());
    EXPECT_FALSE(lastDays.isChanged());
    lastDays.setInterval(2);
    EXPECT_TRUE(lastDays.isChanged());
    EXPECT_EQ(of(u"FREQ=MONTHLY;BYMONTHDAY=-1"_s, localDate(2026, 11, 29)).rule().bymonthday,
              std::vector{29});
    EXPECT_EQ(of(u"FREQ=MONTHLY;BYMONTHDAY=-2"_s, lastOfNovember).rule().bymonthday, std::vector{30});

    // An occurrence that was moved alone.
    CustomRepeat moved = of(u"FREQ=WEEKLY;BYDAY=MO"_s, localDate(2026, 11, 25));
    EXPECT_FALSE(moved.isChanged());
    moved.frequencyChange(0);
    EXPECT_TRUE(moved.isChanged());
    const CustomRepeat fresh({}, lastOfNovember, {}, RecurrencePickerLanguage::english);
    EXPECT_TRUE(fresh.isChanged()) << "every week is what it offers";
}

/// As it happens once the rule is put on an event.
TEST_F(CustomRepeatTest, ASingleDayOrMonthMovesToTheDateOfTheTask)
{
    const Date saturday = localDate(2026, 11, 21, 10);
    const QString warning = u"A single day follows the date of the task."_s;
    const CustomRepeat onSundays = of(u"FREQ=WEEKLY;BYDAY=SU"_s, saturday);
    EXPECT_TRUE(onSundays.isSelected(static_cast<int>(EKWeekday::Saturday)));
    EXPECT_FALSE(onSundays.isSelected(static_cast<int>(EKWeekday::Sunday)));
    EXPECT_EQ(onSundays.sentence(), u"Repeats every week on Saturday"_s);
    EXPECT_EQ(days(onSundays, 2), (QStringList{u"2026-11-21"_s, u"2026-11-28"_s}));
    EXPECT_EQ(onSundays.warning(), warning);
    EXPECT_EQ(of(u"FREQ=WEEKLY;BYDAY=SA"_s, saturday).warning(), QString());
    const CustomRepeat onTwoDays = of(u"FREQ=WEEKLY;BYDAY=MO,SU"_s, saturday);
    EXPECT_EQ(onTwoDays.rule().byweekday.size(), 2U);
    EXPECT_EQ(days(onTwoDays, 3), (QStringList{u"2026-11-21"_s, u"2026-11-22"_s, u"2026-11-23"_s}));
    CustomRepeat monthly = of(u"FREQ=MONTHLY"_s, saturday);
    monthly.setSelected(5, true);
    EXPECT_EQ(monthly.rule().bymonthday, std::vector{21});
    EXPECT_EQ(days(monthly, 2), (QStringList{u"2026-11-21"_s, u"2026-12-21"_s}));
    EXPECT_EQ(monthly.warning(), warning);
    monthly.setSelected(5, true);
    EXPECT_EQ(monthly.rule().bymonthday, (std::vector{5, 21}));
    EXPECT_EQ(monthly.warning(), QString());
    CustomRepeat yearly = of(u"FREQ=YEARLY"_s, saturday);
    yearly.setSelected(3, true);
    EXPECT_EQ(yearly.sentence(), u"Repeats every year in November"_s);
    EXPECT_EQ(days(yearly, 2), (QStringList{u"2026-11-21"_s, u"2027-11-21"_s}));
    EXPECT_EQ(yearly.warning(), u"A single month follows the date of the task."_s);
}
