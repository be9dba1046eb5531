#include "recurrence/RRule.h"
#include "foundation/Region.h"
#include "recurrence/Rule.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

using Numbers = std::vector<int>;
using Weekdays = std::vector<EKWeekday>;

/// The present moment is a quarter past nine in Berlin, an hour before UTC.
class RRuleTest : public testing::Test
{
protected:
    static std::optional<RecurrenceRule> read(const QString &text) { return RRule::ruleFromString(text); }
    static QString rewritten(const QString &text) { return RRule::stringFromRule(read(text).value()); }
    static RecurrenceRule parts(const char *text)
    {
        return read(u"RRULE:FREQ=DAILY;"_qs + QString::fromLatin1(text)).value();
    }

    const Date now = localDate(2026, 11, 21, 9, 15);
    FrozenClock clock{now};
};

TEST_F(RRuleTest, ANewRuleHasItsDefaultsAndARuleHolderIsEmpty)
{
    const RecurrenceRule rule(RecurrenceFrequency::weekly);
    EXPECT_EQ(rule.interval, 1);
    EXPECT_EQ(rule.firstDayOfWeek, EKWeekday::Monday);
    EXPECT_EQ(rule.startDate, now);
    EXPECT_FALSE(rule.recurrenceEnd || rule.rdate || rule.exdate);
    EXPECT_FALSE(Rule().recurrenceRule);
}

TEST_F(RRuleTest, WritesThePartsInTheirOrder)
{
    RecurrenceRule rule(RecurrenceFrequency::daily);
    rule.interval = 2;
    rule.startDate = utcDate(2026, 6, 1, 9);
    EXPECT_EQ(RRule::stringFromRule(rule),
              u"RRULE:FREQ=DAILY;INTERVAL=2;WKST=MO;DTSTART=20260601T090000Z"_qs);

    rule.frequency = RecurrenceFrequency::secondly;
    rule.interval = 0;
    rule.firstDayOfWeek = EKWeekday::Sunday;
    rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(5);
    rule.bysecond = {70, 3};
    rule.byminute = {-1};
    rule.byhour = {9};
    rule.byweekday = {EKWeekday::Saturday, EKWeekday::Monday};
    rule.bymonthday = {-31, 0, 32, 5};
    rule.byweekno = {54, -53};
    rule.bymonth = {0, 13};
    rule.byyearday = {-367, 366};
    rule.bysetpos = {400, -1};
    EXPECT_EQ(
        RRule::stringFromRule(rule),
        u"RRULE:FREQ=SECONDLY;INTERVAL=1;WKST=SU;DTSTART=20260601T090000Z;COUNT=5;BYSETPOS=-1;"
        "BYYEARDAY=366;BYWEEKNO=-53;BYMONTHDAY=-31,5;BYDAY=SA,MO;BYHOUR=9;BYMINUTE=-1;BYSECOND=70,3"_qs);

    rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithEndDate(utcDate(2030, 12, 31, 22, 59, 59));
    EXPECT_TRUE(RRule::stringFromRule(rule).contains(u";UNTIL=20301231T225959Z;BYSETPOS"_qs));
}

TEST_F(RRuleTest, AddedAndRemovedDatesAreLinesOfTheirOwn)
{
    RecurrenceRule rule(RecurrenceFrequency::daily);
    rule.rdate = InclusionDate{{utcDate(2026, 6, 1, 9), utcDate(2026, 6, 2, 9)}};
    rule.exdate = ExclusionDate{{utcDate(2026, 6, 3, 9)}};
    EXPECT_EQ(rule.rdate->line(), u"RDATE:20260601T090000Z,20260602T090000Z"_qs);
    EXPECT_EQ(rule.exdate->line(), u"EXDATE:20260603T090000Z"_qs);
    EXPECT_FALSE(RRule::stringFromRule(rule).contains(u"DATE:"_qs));
}

TEST_F(RRuleTest, WhatIsReadIsWrittenWithWhatWasMissing)
{
    EXPECT_EQ(rewritten(u"RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE"_qs),
              u"RRULE:FREQ=WEEKLY;INTERVAL=2;WKST=MO;DTSTART=20261121T081500Z;BYDAY=MO,WE"_qs);
    EXPECT_EQ(rewritten(u" \n RRULE:FREQ=DAILY;INTERVAL=0 "_qs),
              u"RRULE:FREQ=DAILY;INTERVAL=1;WKST=MO;DTSTART=20261121T081500Z"_qs);
    EXPECT_FALSE(rewritten(u"RRULE:FREQ=YEARLY;BYMONTH=13"_qs).contains(u"BYMONTH"_qs));
}

TEST_F(RRuleTest, OnlyAMissingFrequencyIsReported)
{
    const LogCapture log;
    EXPECT_FALSE(read(u"FREQ=DAILY"_qs));
    EXPECT_FALSE(read(QString()));
    EXPECT_FALSE(read(u"rrule:FREQ=DAILY"_qs));
    EXPECT_TRUE(read(u"RRULE:FREQ=DAILY;INTERVAL=x;COUNT=;=;;UNTIL=soon;BYDAY=1MO"_qs));
    EXPECT_TRUE(log.lines().isEmpty());
    for (const QString &text : {u"RRULE:INTERVAL=2"_qs, u"RRULE:"_qs, u"RRULE:FREQ=daily"_qs,
                                u"RRULE:FREQ=DAILY=1"_qs, u"RRULE:FREQ=DAILY;FREQ=OFTEN"_qs})
        EXPECT_FALSE(read(text)) << qPrintable(text);
    EXPECT_EQ(log.lines(), QStringList(5, u"error: invalid frequency"_qs));
}

TEST_F(RRuleTest, ListsKeepTheirReadableValuesInAscendingOrder)
{
    EXPECT_EQ(parts("BYMONTHDAY=0,15,32,-31").bymonthday, (Numbers{-31, 15}));
    EXPECT_EQ(parts("BYSETPOS=3,-366,367,0,x, 4").bysetpos, (Numbers{-366, 3}));
    EXPECT_EQ(parts("BYYEARDAY=366,-1,-367").byyearday, (Numbers{-1, 366}));
    EXPECT_EQ(parts("BYWEEKNO=53,-53,54").byweekno, (Numbers{-53, 53}));
    EXPECT_TRUE(parts("BYMONTH=13").bymonth.empty());
    EXPECT_EQ(parts("BYHOUR=20,99,-3").byhour, (Numbers{-3, 20, 99}));
    EXPECT_EQ(parts("BYMINUTE=5;BYSECOND=0,7").bysecond, (Numbers{0, 7}));
    EXPECT_EQ(parts("BYDAY=SA,1MO,SU,mo,0").byweekday,
              (Weekdays{EKWeekday::Sunday, EKWeekday::Monday, EKWeekday::Saturday}));
    EXPECT_TRUE(parts("BYDAY=0MO,+1TU,5M").byweekday.empty());
    EXPECT_EQ(parts("BYDAY=6,5,7").byweekday, (Weekdays{EKWeekday::Sunday, EKWeekday::Saturday}));
}

TEST_F(RRuleTest, SinglePartsThatCannotBeReadLeaveTheDefault)
{
    EXPECT_EQ(parts("WKST=SU").firstDayOfWeek, EKWeekday::Sunday);
    EXPECT_EQ(parts("WKST=6").firstDayOfWeek, EKWeekday::Sunday);
    EXPECT_EQ(parts("WKST=SU;WKST=0").firstDayOfWeek, EKWeekday::Monday);
    EXPECT_EQ(parts("WKST=XX").firstDayOfWeek, EKWeekday::Monday);
    EXPECT_EQ(parts("INTERVAL=-4").interval, 1);
    EXPECT_EQ(parts("INTERVAL=3;INTERVAL=99999999999").interval, 3);
    EXPECT_EQ(parts("DTSTART=20260230T090000Z").startDate, now);
    EXPECT_EQ(parts("COUNT=4;UNTIL=later").recurrenceEnd,
              EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(4));
    const auto atNight = EKRecurrenceEnd::recurrenceEndWithEndDate(utcDate(2026, 12, 31, 23, 59, 59));
    EXPECT_EQ(parts("COUNT=4;UNTIL=20261231T235959Z").recurrenceEnd, atNight);
    EXPECT_EQ(parts("UNTIL=20261231T235959Z;COUNT=4;UNTIL=20261231").recurrenceEnd,
              EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(4));
    EXPECT_FALSE(parts("COUNT=0").recurrenceEnd || parts("COUNT=3.5").recurrenceEnd);
}

TEST_F(RRuleTest, DatesAreThoseOfGreenwichInEveryZone)
{
    for (const char *zone : {"America/New_York", "Europe/Berlin", "Asia/Tokyo"}) {
        Region::setZone(zone);
        EXPECT_EQ(parts("DTSTART=20261201T090000Z").startDate, utcDate(2026, 12, 1, 9));
        EXPECT_EQ(parts("DTSTART=20260601T090000Z").startDate, utcDate(2026, 6, 1, 9));
        EXPECT_EQ(parts("UNTIL=20261231T235959Z").recurrenceEnd->endDate(),
                  utcDate(2026, 12, 31, 23, 59, 59));
    }
}

TEST_F(RRuleTest, GeneratedRulesComeBackFromTheirText)
{
    const QByteArray zone = Region::zoneIdentifier();
    Region::setZone("UTC");
    std::mt19937 random(testSeed());
    const auto pick = [&](int lowest, int highest) {
        return std::uniform_int_distribution(lowest, highest)(random);
    };
    const auto ascending = [&](int lowest, int highest) {
        Numbers values;
        for (int value = lowest; value <= highest; ++value)
            if (value != 0 && pick(0, highest - lowest) < 2)
                values.push_back(value);
        return values;
    };
    for (int round = 0; round < 300; ++round) {
        RecurrenceRule rule(static_cast<RecurrenceFrequency>(pick(0, 6)));
        rule.interval = pick(1, 100000);
        rule.firstDayOfWeek = static_cast<EKWeekday>(pick(1, 7));
        rule.startDate = utcDate(2020, 1, 1) + Seconds(pick(0, 500'000'000));
        if (pick(0, 1) == 1)
            rule.recurrenceEnd =
                EKRecurrenceEnd::recurrenceEndWithEndDate(rule.startDate + Seconds(pick(0, 999'999)));
        else if (pick(0, 1) == 1)
            rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(pick(1, 1000));
        rule.bysetpos = ascending(-366, 366);
        rule.byyearday = ascending(-366, 366);
        rule.bymonth = ascending(1, 12);
        rule.byweekno = ascending(-53, 53);
        rule.bymonthday = ascending(-31, 31);
        for (const int day : ascending(1, 7))
            rule.byweekday.push_back(static_cast<EKWeekday>(day));
        rule.byhour = ascending(0, 23);
        rule.bysecond = ascending(0, 60);
        const QString text = RRule::stringFromRule(rule);
        const auto back = read(text);
        ASSERT_TRUE(back);
        EXPECT_EQ(RRule::stringFromRule(*back), text);
        EXPECT_EQ(back->startDate, rule.startDate);
        EXPECT_EQ(back->recurrenceEnd, rule.recurrenceEnd);
        EXPECT_EQ(back->bysetpos, rule.bysetpos);
        EXPECT_EQ(back->byweekday, rule.byweekday);
    }
    Region::setZone(zone);
}
