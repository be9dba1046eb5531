#include "eventkit/RecurrenceExpander.h"
#include "eventkit/RecurrencePeriods.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

class RecurrenceExpanderTest : public testing::Test
{
protected:
    static RecurrencePattern rule(const char *body)
    {
        return RecurrencePattern::fromText(QString::fromLatin1(body)).value();
    }
    static std::vector<Date> dates(const RecurrenceExpander &expander,
                                   const RecurrenceExpander::Window &window)
    {
        std::vector<Date> found;
        for (const RecurrenceInstance &instance : expander.instances(window))
            found.push_back(instance.date);
        return found;
    }
    static int pick(std::mt19937 &random, int lowest, int highest)
    {
        return std::uniform_int_distribution(lowest, highest)(random);
    }
    static std::vector<int> someValues(std::mt19937 &random, int lowest, int highest)
    {
        std::vector<int> values;
        for (int left = pick(random, -2, 3); left > 0; --left)
            values.push_back(pick(random, lowest, highest));
        return values;
    }
    static RecurrencePattern randomRule(std::mt19937 &random)
    {
        RecurrencePattern made{.frequency = static_cast<RecurrenceUnit>(pick(random, 0, 6)),
                               .interval = pick(random, 1, 5),
                               .weekStart = static_cast<EKWeekday>(pick(random, 1, 7)),
                               .byMonth = someValues(random, 1, 12),
                               .byMonthDay = someValues(random, -31, 31),
                               .byHour = someValues(random, 0, 23),
                               .byMinute = someValues(random, 0, 59)};
        if (made.frequency < RecurrenceUnit::Daily) {
            made.interval *= 97;
            made.bySecond = someValues(random, 0, 59);
        }
        for (const int day : someValues(random, 1, 7))
            made.byDay.push_back({static_cast<EKWeekday>(day),
                                  made.frequency < RecurrenceUnit::Monthly ? 0 : pick(random, -4, 4)});
        if (pick(random, 0, 3) == 0)
            made.bySetPos = {pick(random, 0, 1) == 0 ? 1 : -1};
        return made;
    }

    const Calendar berlin{{.zoneIdentifier = "Europe/Berlin", .localeIdentifier = QStringLiteral("en_US")}};
};

TEST_F(RecurrenceExpanderTest, AWindowOnAGeneratedRuleGivesWhatAllOccurrencesHaveInsideIt)
{
    std::mt19937 random(testSeed());
    const WallClock start{2023, 1, 17, 9, 5, 30};
    for (int round = 0; round < 300; ++round) {
        const RecurrencePattern made = randomRule(random);
        const RecurrenceExpander expander(made, start, berlin);
        const Date end = utcDate(2024, 4, 1);
        std::vector<Date> expected = dates(expander, {.to = end});
        const Date from = utcDate(2023, 1, 1) + Seconds(pick(random, 0, 400 * 86400));
        const Date to = std::min(end, from + Seconds(pick(random, 0, 90 * 86400)));
        std::erase_if(expected, [&](Date date) { return date < from || date > to; });
        EXPECT_EQ(dates(expander, {.from = from, .to = to}), expected) << qPrintable(made.text());

        RecurrencePattern counted = made;
        counted.count = 1'000'000;
        EXPECT_EQ(dates(RecurrenceExpander(counted, start, berlin), {.from = from, .to = to}), expected)
            << qPrintable(made.text());
    }
}

TEST_F(RecurrenceExpanderTest, BothBoundsOfAWindowBelongToIt)
{
    const RecurrenceExpander expander(rule("FREQ=DAILY"), WallClock{2024, 1, 1, 9, 0, 0}, berlin);
    const Date second = utcDate(2024, 1, 2, 8);
    const Date third = utcDate(2024, 1, 3, 8);
    EXPECT_EQ(dates(expander, {.from = second, .to = third}), (std::vector{second, third}));
    EXPECT_TRUE(dates(expander, {.from = second + Seconds(1), .to = third - Seconds(1)}).empty());
    EXPECT_TRUE(dates(expander, {.from = third, .to = second}).empty());
}

TEST_F(RecurrenceExpanderTest, AWindowThatEndsInARepeatedHourHasWhatTheFirstHourHas)
{
    // At 1:05 UTC the clock shows five past two again, half an hour after the occurrence at half past two.
    const RecurrenceExpander expander(rule("FREQ=DAILY"), WallClock{2024, 10, 26, 2, 30, 0}, berlin);
    const Date halfPastTwo = utcDate(2024, 10, 27, 0, 30);
    EXPECT_EQ(dates(expander, {.from = utcDate(2024, 10, 27), .to = utcDate(2024, 10, 27, 1, 5)}),
              std::vector{halfPastTwo});
    EXPECT_TRUE(
        dates(expander, {.from = utcDate(2024, 10, 27, 1, 5), .to = utcDate(2024, 10, 27, 2)}).empty());
}

TEST_F(RecurrenceExpanderTest, PeriodsAreNeverSkippedBackwards)
{
    const std::int64_t start = WallClock{2024, 1, 10, 9, 0, 0}.seconds();
    for (const char *body : {"FREQ=DAILY", "FREQ=HOURLY"}) {
        const auto periods = RecurrencePeriods::create(rule(body), start, start);
        periods->skipTo(start - 40 * secondsOfADay);
        EXPECT_EQ(periods->next(), WallSeconds{start}) << body;
        EXPECT_TRUE(periods->next().empty()) << body;
    }
}

TEST_F(RecurrenceExpanderTest, ACountIsCountedFromTheStartHoweverFarTheWindow)
{
    const RecurrenceExpander expander(rule("FREQ=DAILY;COUNT=20000"), WallClock{1970, 1, 1, 9, 0, 0}, berlin);
    const auto last = expander.instances({.from = utcDate(2024, 10, 1)});
    ASSERT_EQ(last.size(), 3U);
    EXPECT_EQ(last.back().wallClock, (WallClock{2024, 10, 3, 9, 0, 0}));
}

TEST_F(RecurrenceExpanderTest, AStartInARepeatedHourAndItsFractionStayAsGiven)
{
    const Date secondHalfPastTwo = utcDate(2024, 10, 27, 1, 30) + Seconds(0.25);
    const RecurrenceExpander expander(rule("FREQ=DAILY;COUNT=2"), secondHalfPastTwo, berlin);
    EXPECT_EQ(dates(expander, {}),
              (std::vector{secondHalfPastTwo, utcDate(2024, 10, 28, 1, 30) + Seconds(0.25)}));
}

TEST_F(RecurrenceExpanderTest, RulesThatNeverMatchAndRulesWithoutEndComeToAnEnd)
{
    const auto begin = std::chrono::steady_clock::now();
    const WallClock start{2024, 1, 1, 9, 0, 0};
    for (const char *body :
         {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=DAILY;BYMONTH=2;BYMONTHDAY=31",
          "FREQ=YEARLY;BYWEEKNO=20;BYMONTH=1;BYDAY=MO", "FREQ=SECONDLY;BYMONTH=4;BYMONTHDAY=31",
          "FREQ=SECONDLY;INTERVAL=2;BYSECOND=1", "FREQ=MINUTELY;INTERVAL=1440;BYHOUR=10",
          "FREQ=HOURLY;INTERVAL=24;BYHOUR=8", "FREQ=MONTHLY;BYMONTHDAY=1;BYSETPOS=2"})
        EXPECT_TRUE(RecurrenceExpander(rule(body), start, berlin).instances({}).empty()) << body;
    EXPECT_EQ(
        RecurrenceExpander(rule("FREQ=SECONDLY"), start, berlin).instances({.mostInstances = 5000}).size(),
        5000U);
    EXPECT_EQ(RecurrenceExpander(rule("FREQ=YEARLY"), start, berlin).instances({}).back().wallClock.year,
              9999);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST_F(RecurrenceExpanderTest, SurvivesDatesBeyondAnyCalendar)
{
    for (const double seconds : {-1e300, -1e11, 1e12, 1e300, std::nan("")}) {
        const Date date = Date::fromReferenceSeconds(seconds);
        const RecurrenceExpander outside(rule("FREQ=MONTHLY"), date, berlin);
        EXPECT_TRUE(outside.instances({.mostInstances = 9}).empty()) << seconds;
        const RecurrenceExpander expander(rule("FREQ=MONTHLY;COUNT=4"), utcDate(2024, 1, 1), berlin);
        EXPECT_LE(dates(expander, {.from = date}).size(), 4U);
        EXPECT_LE(dates(expander, {.to = date}).size(), 4U);
    }
    RecurrencePattern wide = rule("FREQ=YEARLY;BYMONTH=1;BYHOUR=25");
    wide.interval = std::numeric_limits<int>::max();
    wide.byMonth = {-1, 0, 13, 1, 400};
    wide.byMonthDay = {0, 32, -32, 5};
    wide.byYearDay = {0, 367, -4000};
    wide.byDay = {{static_cast<EKWeekday>(9), 0}, {EKWeekday::Friday, 54}};
    EXPECT_EQ(RecurrenceExpander(wide, WallClock{2024, 1, 1, 9, 0, 0}, berlin).instances({}).size(), 1U);
}

TEST_F(RecurrenceExpanderTest, AStartInTheGapOfAClockChangeIsMovedOnAlone)
{
    const RecurrenceExpander expander(rule("FREQ=DAILY;COUNT=3"), WallClock{2024, 3, 31, 2, 30, 0}, berlin);
    EXPECT_EQ(dates(expander, {}), (std::vector{utcDate(2024, 3, 31, 1, 30), utcDate(2024, 4, 1, 0, 30),
                                                utcDate(2024, 4, 2, 0, 30)}));
}
