#include "records/dates/MVDate.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

TEST(MVDateTest, QuarterHoursRoundUpFromTheEighthMinute)
{
    const auto rounded = [](int hour, int minute, int second) {
        return MVDate::dateNearest15Minute(localDate(2024, 7, 1, hour, minute, second) + Seconds(0.5));
    };
    EXPECT_EQ(rounded(10, 7, 59), localDate(2024, 7, 1, 10));
    EXPECT_EQ(rounded(10, 8, 0), localDate(2024, 7, 1, 10, 15));
    EXPECT_EQ(rounded(10, 22, 59), localDate(2024, 7, 1, 10, 15));
    EXPECT_EQ(rounded(10, 53, 0), localDate(2024, 7, 1, 11));
    EXPECT_EQ(rounded(23, 53, 0), localDate(2024, 7, 2));
    EXPECT_EQ(MVDate::dateNearest15Minute(localDate(2024, 3, 31, 1, 55)), localDate(2024, 3, 31, 3));
}

TEST(MVDateTest, DurationsCountDays)
{
    const Date start = localDate(2024, 7, 1, 10);
    const auto after = [&](double hours) { return start + Seconds(hours * 3600); };
    EXPECT_EQ(MVDate::duration(start, after(1.0 / 60)), 1);
    EXPECT_EQ(MVDate::duration(start, after(36)), 3);
    EXPECT_EQ(MVDate::duration(start, after(11.9)), 1);
    EXPECT_EQ(MVDate::duration(start, after(-36)), -1) << "halves go away from zero";
    EXPECT_EQ(MVDate::durationEvent(start, start), 0);
    EXPECT_EQ(MVDate::durationEvent(start, after(1.0 / 60)), 1);
    EXPECT_EQ(MVDate::durationEvent(start, after(24)), 1);
    EXPECT_EQ(MVDate::durationEvent(start, after(36)), 2);
    EXPECT_EQ(MVDate::durationEvent(start, after(-1)), 0);
}

TEST(MVDateTest, NeighbouringDaysMatchWithinAMonthOnly)
{
    const auto day = [](int month, int number, int hour = 12) {
        return localDate(2023, month, number, hour);
    };
    EXPECT_TRUE(MVDate::orTheSameDay(day(3, 1, 0), day(3, 1, 23)));
    EXPECT_FALSE(MVDate::orTheSameDay(day(3, 1), day(4, 1)));
    EXPECT_FALSE(MVDate::orTheSameDay(day(3, 1), localDate(2024, 3, 1)));
    EXPECT_TRUE(MVDate::orYesterday(day(3, 2), day(3, 1)));
    EXPECT_FALSE(MVDate::orYesterday(day(3, 1), day(2, 28)));
    EXPECT_FALSE(MVDate::orYesterday(day(3, 1), day(3, 2)));
    EXPECT_TRUE(MVDate::orTomorrow(day(3, 1), day(3, 2)));
    EXPECT_FALSE(MVDate::orTomorrow(day(2, 28), day(3, 1)));
}

TEST(MVDateTest, AWeekStartsOnTheLocalesDayAtTheDatesOwnTime)
{
    Region::setLocale(u"de_DE"_qs);
    const Date sunday = localDate(2024, 7, 7, 15);
    const Date monday = localDate(2024, 7, 1, 15);
    EXPECT_EQ(MVDate::startOfWeek(sunday), localDate(2024, 7, 1, 15, 0, 1));
    EXPECT_EQ(MVDate::startOfWeek(monday), localDate(2024, 7, 1, 15, 0, 1));
    EXPECT_EQ(MVDate::startOfWeek(MVDate::startOfWeek(sunday)), localDate(2024, 7, 1, 15, 0, 2));
    EXPECT_EQ(MVDate::endOfWeek(sunday), localDate(2024, 7, 7, 23, 59, 59));
    EXPECT_EQ(MVDate::endOfWeek(monday), localDate(2024, 7, 7, 23, 59, 59));
    EXPECT_EQ(MVDate::endOfWeek(localDate(2024, 7, 31)), localDate(2024, 8, 4, 23, 59, 59));

    Region::setLocale(u"en_US"_qs);
    EXPECT_EQ(MVDate::startOfWeek(sunday), localDate(2024, 7, 7, 15, 0, 1));
    EXPECT_EQ(MVDate::endOfWeek(monday), localDate(2024, 7, 6, 23, 59, 59));
    EXPECT_EQ(MVDate::endOfWeek(localDate(2024, 12, 31, 9)), localDate(2025, 1, 4, 23, 59, 59));
}

TEST(MVDateTest, FieldsAreReplacedAndTheOthersStay)
{
    const Date date = localDate(2024, 1, 31, 9, 8, 7) + Seconds(0.5);
    EXPECT_EQ(MVDate::setTimeWithCurrentDate(date, 23, 60, 0), localDate(2024, 2, 1));
    EXPECT_EQ(MVDate::setDayWithCurrentDate(date, 15, 1, 2, 3), localDate(2024, 1, 15, 1, 2, 3));
    EXPECT_EQ(MVDate::setDayWithCurrentDate(date, 32, 0, 0, 0), localDate(2024, 2, 1));
    EXPECT_EQ(MVDate::setHour(22, 30, date), localDate(2024, 1, 31, 22, 30, 7));
    EXPECT_EQ(MVDate::setDay(29, 2, 2024, date), localDate(2024, 2, 29, 9, 8, 7));
    EXPECT_EQ(MVDate::setDay(31, 2, 2024, date), localDate(2024, 3, 2, 9, 8, 7));
    EXPECT_EQ(MVDate::getDayHourMinutSecondWithDate(date), (std::array{31, 9, 8, 7}));
}

TEST(MVDateTest, AdditionKeepsTheLocalTimeOverAClockChange)
{
    const Date eve = localDate(2024, 3, 30, 9);
    EXPECT_EQ(MVDate::addDayWithDate(eve), localDate(2024, 3, 31, 9));
    EXPECT_EQ(MVDate::addDay(-30, eve), localDate(2024, 2, 29, 9));
    EXPECT_EQ(MVDate::addWeekWithDate(eve), localDate(2024, 4, 6, 9));
    EXPECT_EQ(MVDate::dateAddHour(24, eve), localDate(2024, 3, 31, 10));
}

TEST(MVDateTest, MonthsHaveFirstAndLastDaysAndWeekRows)
{
    const Date date = localDate(2024, 2, 10, 9, 30, 5);
    EXPECT_EQ(MVDate::firstDayOfMonth(date), localDate(2024, 2, 1, 9, 30, 5));
    EXPECT_EQ(MVDate::firstDayOfMonth(std::nullopt), std::nullopt);
    EXPECT_EQ(MVDate::lastDayOfMonth(date), localDate(2024, 2, 29, 9, 30, 5));
    EXPECT_EQ(MVDate::numberOfDaysInMonthCount(date), 29);
    EXPECT_EQ(MVDate::weekCountOfMonth(localDate(2024, 6, 1)), 6);
    EXPECT_EQ(MVDate::month(date), 2);
    EXPECT_EQ(MVDate::day(date), 10);
    EXPECT_EQ(MVDate::weekOfMonth(date), 2);
    Region::setLocale(u"de_DE"_qs);
    EXPECT_EQ(MVDate::weekCountOfMonth(localDate(2024, 6, 1)), 5);
}

TEST(MVDateTest, TheWeekendIsSaturdayAndSundayInEveryLocale)
{
    for (const QString &locale : {u"en_US"_qs, u"ar_EG"_qs}) {
        Region::setLocale(locale);
        const std::array<bool, 7> expected = {true, true, false, false, false, false, false};
        for (int day = 0; day < 7; ++day)
            EXPECT_EQ(MVDate::orWeekend(localDate(2024, 7, 6 + day)),
                      expected[static_cast<std::size_t>(day)]);
    }
}

TEST(MVDateTest, BoundariesOfDayAndYear)
{
    const Date date = localDate(2024, 7, 1, 9, 30, 5) + Seconds(0.75);
    EXPECT_EQ(MVDate::getStartOfDay(date), localDate(2024, 7, 1));
    EXPECT_EQ(MVDate::getEndOfDay(date), localDate(2024, 7, 1, 23, 59, 59));
    EXPECT_EQ(MVDate::getEndOfYear(date), localDate(2024, 12, 31, 23, 59, 59));
    EXPECT_EQ(MVDate::getDateWithYear(2024, 2, 30), localDate(2024, 3, 1));
    EXPECT_TRUE(wallClock(MVDate::getMinDate()).startsWith(u"1800-01-01 00:00:00"));
    EXPECT_EQ(MVDate::getEndOfDay(localDate(2024, 3, 31, 9)), localDate(2024, 3, 31, 23, 59, 59));
    EXPECT_EQ(MVDate::getEndOfDay(localDate(2024, 10, 27, 1)), localDate(2024, 10, 27, 23, 59, 59));
}

TEST(MVDateTest, ComparisonsOfInstants)
{
    const Date one = localDate(2024, 7, 1);
    const Date later = one + Seconds(0.001);
    EXPECT_TRUE(MVDate::isLater(later, one) && !MVDate::isLater(one, one));
    EXPECT_TRUE(MVDate::isEarlier(one, later) && !MVDate::isEarlier(one, one));
    EXPECT_TRUE(MVDate::isLaterOrEqualTo(one, one) && !MVDate::isLaterOrEqualTo(one, later));
    EXPECT_TRUE(MVDate::isEarlierOrEqual(one, one) && !MVDate::isEarlierOrEqual(later, one));
    EXPECT_TRUE(MVDate::isEqual(one, one) && !MVDate::isEqual(one, later));
}

TEST(MVDateTest, TheClockHasTwelveHoursWhereTheLocaleSaysSo)
{
    const std::vector<std::pair<QString, bool>> locales = {{u"en_US"_qs, true},
                                                           {u"de_DE"_qs, false},
                                                           {u"en_GB"_qs, false},
                                                           {u"ko_KR"_qs, true},
                                                           {u"ja_JP"_qs, false}};
    for (const auto &[locale, isTwelveHours] : locales) {
        Region::setLocale(locale);
        EXPECT_EQ(MVDate::isPM_AM_String(), isTwelveHours) << qPrintable(locale);
    }
}
