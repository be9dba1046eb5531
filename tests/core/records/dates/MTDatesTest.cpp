#include "records/dates/MTDates.h"
#include "foundation/Region.h"
#include "records/dates/MVDate.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <thread>

class MTDatesTest : public testing::Test
{
protected:
    void SetUp() override { MTDates::reset(); }
    void TearDown() override { MTDates::reset(); }
};

TEST_F(MTDatesTest, TheSharedCalendarKeepsTheZoneOfItsFirstUseUntilReset)
{
    const Date evening = utcDate(2024, 7, 1, 20);
    EXPECT_EQ(MTDates::dayOfMonth(evening), 1);
    Region::setZone("Asia/Tokyo");
    EXPECT_EQ(MTDates::dayOfMonth(evening), 1);
    EXPECT_EQ(MTDates::hourOfDay(evening), 22);
    EXPECT_EQ(MVDate::day(evening), 2);
    MTDates::reset();
    EXPECT_EQ(MTDates::dayOfMonth(evening), 2);
    EXPECT_EQ(MTDates::startOfCurrentDay(evening), localDate(2024, 7, 2));
}

TEST_F(MTDatesTest, DaysEndOneSecondBeforeTheNext)
{
    for (const auto &[zone, month, day] : {std::tuple{"Europe/Berlin", 7, 1},
                                           {"Europe/Berlin", 3, 31},
                                           {"Europe/Berlin", 10, 27},
                                           {"Asia/Beirut", 3, 31},
                                           {"America/Havana", 11, 3}}) {
        Region::setZone(zone);
        MTDates::reset();
        const Date end = MTDates::endOfCurrentDay(localDate(2024, month, day, 12, 30));
        EXPECT_EQ(end, localDate(2024, month, day, 23, 59, 59)) << zone;
        EXPECT_EQ(MTDates::endOfCurrentDay(end), end);
        EXPECT_EQ(MTDates::startOfCurrentDay(end + Seconds(1)), end + Seconds(1));
    }
}

TEST_F(MTDatesTest, AdditionTakesAllAmountsAtOnce)
{
    const Date start = localDate(2024, 1, 31, 10);
    EXPECT_EQ(MTDates::dateByAddingYears(start, 1, 1, 1, 1, 1, 1, 1), localDate(2025, 3, 8, 11, 1, 1));
    EXPECT_EQ(MTDates::dateByAddingYears(start, 0, 0, 0, 0, 0, 0, 0), start);
    EXPECT_EQ(MTDates::oneWeekPrevious(localDate(2024, 4, 2, 9)), localDate(2024, 3, 26, 9));
    EXPECT_EQ(MTDates::dateFromYear(2024, 2, 30), localDate(2024, 3, 1));
}

TEST_F(MTDatesTest, FieldsOfADate)
{
    const Date date = localDate(2024, 7, 9, 10, 11, 12) + Seconds(0.9);
    EXPECT_EQ(
        (std::array{MTDates::year(date), MTDates::monthOfYear(date), MTDates::dayOfMonth(date),
                    MTDates::hourOfDay(date), MTDates::minuteOfHour(date), MTDates::secondOfMinute(date)}),
        (std::array{2024, 7, 9, 10, 11, 12}));
}

TEST_F(MTDatesTest, DistancesAreWholeAndTruncatedTowardsZero)
{
    const Date noon = localDate(2024, 3, 30, 12);
    EXPECT_EQ(MTDates::daysSinceDate(localDate(2024, 4, 1, 11), noon), 1);
    EXPECT_EQ(MTDates::daysSinceDate(localDate(2024, 3, 31, 12), noon), 1) << "a day of 23 hours";
    EXPECT_EQ(MTDates::daysSinceDate(noon, localDate(2024, 4, 1, 11)), -1);
    EXPECT_EQ(MTDates::secondsSinceDate(noon + Seconds(1.9), noon), 1);
    EXPECT_EQ(MTDates::secondsSinceDate(noon - Seconds(1.9), noon), -1);
    EXPECT_EQ(MTDates::secondsSinceDate(noon, MVDate::getMinDate()), 7'076'462'008);
}

TEST_F(MTDatesTest, Comparisons)
{
    const Date one = localDate(2024, 7, 1, 10);
    const Date other = localDate(2024, 7, 1, 23, 59, 59);
    EXPECT_TRUE(MTDates::isAfter(other, one) && !MTDates::isAfter(one, one));
    EXPECT_TRUE(MTDates::isBefore(one, other) && !MTDates::isBefore(one, one));
    EXPECT_TRUE(MTDates::isOnOrAfter(one, one) && !MTDates::isOnOrAfter(one, other));
    EXPECT_TRUE(MTDates::isOnOrBefore(one, one) && !MTDates::isOnOrBefore(other, one));
    for (const Date end : {one, other, one + Seconds(60)}) {
        EXPECT_TRUE(MTDates::isBetweenDate(end, one, other));
        EXPECT_TRUE(MTDates::isBetweenDate(end, other, one));
    }
    EXPECT_FALSE(MTDates::isBetweenDate(one - Seconds(1), other, one));
    EXPECT_TRUE(MTDates::isWithinSameDay(one, other));
    EXPECT_FALSE(MTDates::isWithinSameDay(other, other + Seconds(1)));
    EXPECT_FALSE(MTDates::isWithinSameDay(one, localDate(2024, 8, 1, 10)));
}

TEST_F(MTDatesTest, AnotherZoneMovesTheInstantByTheDifferenceOfTheOffsets)
{
    const Date summer = localDate(2024, 7, 1, 12);
    EXPECT_EQ(MTDates::inTimeZone(summer, "Asia/Tokyo"), summer + Seconds(7 * 3600));
    EXPECT_EQ(MTDates::inTimeZone(summer, "UTC"), summer - Seconds(2 * 3600));
    EXPECT_EQ(MTDates::inTimeZone(localDate(2024, 12, 1, 12), "America/New_York"), localDate(2024, 12, 1, 6));
    EXPECT_EQ(MTDates::inTimeZone(summer, "Europe/Berlin"), summer);
}

TEST_F(MTDatesTest, SpansPassedAreToldInWords)
{
    const auto told = MTDates::stringFromDateWithGreatestComponentsForSecondsPassed;
    EXPECT_EQ(told(90061), u"1 days, 1 hours, 1 minutes, 1 seconds after"_qs);
    EXPECT_EQ(told(-7200), u"2 hours before"_qs);
    EXPECT_EQ(told(18'144'000 + 86'400), u"1 months, 1 days after"_qs);
    EXPECT_EQ(told(18'143'999), u"209 days, 23 hours, 59 minutes, 59 seconds after"_qs);
}

TEST_F(MTDatesTest, SpansToADateAreToldInWords)
{
    const Date now = localDate(2024, 7, 1);
    const auto told = [&](double seconds) {
        return MTDates::stringFromDateWithGreatestComponentsUntilDate(now, now + Seconds(seconds));
    };
    EXPECT_EQ(told(90061), u"In 1 day, 1 hour, 1 minute"_qs);
    EXPECT_EQ(told(2 * 90061), u"In 2 days, 2 hours, 2 minutes"_qs);
    EXPECT_EQ(told(-18'144'000), u"1 month Ago"_qs);
    EXPECT_EQ(told(-2 * 18'144'000 - 59), u"2 months Ago"_qs);
}

TEST_F(MTDatesTest, ManyThreadsShareTheCalendar)
{
    const Date noon = localDate(2024, 7, 1, 12);
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            for (int day = 0; day < 500; ++day) {
                const Date date = noon + Seconds(86400.0 * (day % 30));
                wrong += MTDates::dayOfMonth(date) != day % 30 + 1;
                wrong += MVDate::day(MVDate::getStartOfDay(date)) != day % 30 + 1;
                if (thread == 0 && day % 100 == 0)
                    MTDates::reset();
            }
        });
    threads.clear();
    EXPECT_EQ(wrong, 0);
}
