#include "eventkit/RuleLines.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

/// The bodies of rules when their series are moved and divided.
class RuleLinesTest : public testing::Test
{
protected:
    static IcalTime time(const char *text)
    {
        IcalTime read = *IcalTime::fromText(text);
        if (read.form == IcalTime::Form::Floating) {
            read.form = IcalTime::Form::Zoned;
            read.tzid = read.zone = "Europe/Berlin";
        }
        return read;
    }
    /// The rule after its series moved from one time to another.
    static QByteArray moved(const QByteArray &rule, const char *from, const char *to)
    {
        const IcalTime start = time(from);
        const IcalTime inNewForm = time(to).isDate() ? start.day() : start;
        const SeriesMove move{start, time(to), time(to).clock.seconds() - inNewForm.clock.seconds()};
        return ruleFrom(rule, 0, start, move).value_or("none");
    }
    static QByteArray rest(const QByteArray &rule, int matchesBefore, const char *at)
    {
        return ruleFrom(rule, matchesBefore, time(at), {time(at), time(at)}).value_or("none");
    }
    static QByteArray upTo(const QByteArray &rule, int matchesBefore, const char *at)
    {
        return ruleUpTo(rule, matchesBefore, time(at)).value_or("none");
    }
};

TEST_F(RuleLinesTest, ARuleThatNamesTheDayFollowsIt)
{
    // Tuesday the 12th of March 2024, the second one.
    EXPECT_EQ(moved("FREQ=WEEKLY;BYDAY=TU", "20240312T090000", "20240314T090000"), "FREQ=WEEKLY;BYDAY=TH");
    EXPECT_EQ(moved("FREQ=WEEKLY;BYDAY=TU,SA", "20240312T090000", "20240313T090000"),
              "FREQ=WEEKLY;BYDAY=WE,SU");
    EXPECT_EQ(moved("FREQ=MONTHLY;BYDAY=2TU", "20240312T090000", "20240320T090000"),
              "FREQ=MONTHLY;BYDAY=3WE");
    EXPECT_EQ(moved("FREQ=MONTHLY;BYDAY=-3TU", "20240312T090000", "20240328T090000"),
              "FREQ=MONTHLY;BYDAY=-1TH");
    EXPECT_EQ(moved("FREQ=MONTHLY;BYMONTHDAY=1,12", "20240312T090000", "20240313T090000"),
              "FREQ=MONTHLY;BYMONTHDAY=1,13");
    EXPECT_EQ(moved("FREQ=MONTHLY;BYMONTHDAY=-1", "20240331T090000", "20240330T090000"),
              "FREQ=MONTHLY;BYMONTHDAY=-2");
    // Monday is now the last day of its week, as Sunday was.
    EXPECT_EQ(moved("FREQ=WEEKLY;INTERVAL=2;BYDAY=TU,SU", "20240312T090000", "20240313T090000"),
              "FREQ=WEEKLY;INTERVAL=2;BYDAY=WE,MO;WKST=TU");
    EXPECT_EQ(moved("FREQ=YEARLY;BYMONTHDAY=12;BYMONTH=3", "20240312T090000", "20240415T090000"),
              "FREQ=YEARLY;BYMONTHDAY=15;BYMONTH=4");
    for (const QByteArray rule : {"FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR", "FREQ=WEEKLY",
                                  "FREQ=MONTHLY;BYDAY=MO,TU;BYSETPOS=-1", "FREQ=DAILY;X-OWN=1"})
        EXPECT_EQ(moved(rule, "20240312T090000", "20240313T090000"), rule);
    EXPECT_EQ(moved("FREQ=WEEKLY;BYDAY=TU;X-OWN=1", "20240312T090000", "20240312T100000"),
              "FREQ=WEEKLY;BYDAY=TU;X-OWN=1");
}

TEST_F(RuleLinesTest, TheEndStaysOnItsDayInTheFormOfTheStart)
{
    // Over the change of the clock in Berlin: nine is 8:00Z before and 7:00Z after it.
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404T070000Z", "20240312T090000", "20240312T110000"),
              "FREQ=DAILY;UNTIL=20240404T090000Z");
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404", "20240312", "20240314"), "FREQ=DAILY;UNTIL=20240404");
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404T215959Z", "20240312T090000", "20240314T110000"),
              "FREQ=DAILY;UNTIL=20240404T215959Z");
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404", "20240312", "20240408"), "FREQ=DAILY;UNTIL=20240408");
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404", "20240312", "20240312T110000"),
              "FREQ=DAILY;UNTIL=20240404T215959Z");
    // It ends before the occurrence of the 4th, which an earlier hour does not bring back.
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404T065959Z", "20240312T090000", "20240312T080000"),
              "FREQ=DAILY;UNTIL=20240403T215959Z");
    // By hours the day says nothing.
    EXPECT_EQ(moved("FREQ=HOURLY;UNTIL=20240404T070000Z", "20240312T090000", "20240313T090000"),
              "FREQ=HOURLY;UNTIL=20240405T070000Z");
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404T070000Z", "20240312T090000", "20240312"),
              "FREQ=DAILY;UNTIL=20240404");
    EXPECT_EQ(moved("FREQ=DAILY;UNTIL=20240404T070000Z", "20240312T090000", "20240312T090000"),
              "FREQ=DAILY;UNTIL=20240404T070000Z");
}

TEST_F(RuleLinesTest, DividedRulesShareTheirOccurrences)
{
    EXPECT_EQ(rest("COUNT=5;FREQ=DAILY", 2, "20240314T090000"), "COUNT=3;FREQ=DAILY");
    EXPECT_EQ(rest("COUNT=5;FREQ=DAILY", 5, "20240314T090000"), "none");
    EXPECT_EQ(rest("FREQ=DAILY;UNTIL=20240313T080000Z", 2, "20240314T090000"), "none");
    EXPECT_EQ(upTo("COUNT=5;FREQ=DAILY", 2, "20240314T090000"), "COUNT=2;FREQ=DAILY");
    EXPECT_EQ(upTo("FREQ=DAILY", 2, "20240314T090000"), "FREQ=DAILY;UNTIL=20240314T075959Z");
    EXPECT_EQ(upTo("FREQ=DAILY", 2, "20240314"), "FREQ=DAILY;UNTIL=20240313");
    EXPECT_EQ(upTo("UNTIL=20250101T000000Z;FREQ=DAILY", 2, "20240314T090000"),
              "UNTIL=20240314T075959Z;FREQ=DAILY");
    EXPECT_EQ(upTo("FREQ=DAILY;UNTIL=20240313T080000Z", 2, "20240314T090000"),
              "FREQ=DAILY;UNTIL=20240313T080000Z");
    EXPECT_EQ(upTo("FREQ=DAILY", 0, "20240314T090000"), "none");
}
