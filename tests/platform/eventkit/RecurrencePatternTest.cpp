#include "eventkit/RecurrencePattern.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

static std::optional<RecurrencePattern> read(const char *body)
{
    return RecurrencePattern::fromText(QString::fromLatin1(body));
}

static QString rewritten(const char *body)
{
    const auto pattern = read(body);
    return pattern ? pattern->text() : QStringLiteral("unreadable");
}

TEST(RecurrencePatternTest, KeepsEveryPartOfARule)
{
    for (const char *body :
         {"FREQ=DAILY", "FREQ=WEEKLY;COUNT=5;INTERVAL=2;BYDAY=SU,TU;WKST=SU",
          "FREQ=MONTHLY;UNTIL=20301231T225959Z;BYDAY=2MO,-1FR", "FREQ=YEARLY;UNTIL=20301231;BYMONTHDAY=-1",
          "FREQ=YEARLY;UNTIL=20301231T225959;BYYEARDAY=-1,100", "FREQ=YEARLY;BYDAY=MO;BYWEEKNO=-1,20",
          "FREQ=HOURLY;BYSECOND=0,30;BYMINUTE=15;BYHOUR=9;BYMONTH=1,12;BYSETPOS=-1"})
        EXPECT_EQ(rewritten(body), QString::fromLatin1(body));
}

TEST(RecurrencePatternTest, TheThreeFormsOfUntilAreToldApart)
{
    EXPECT_EQ(read("FREQ=DAILY;UNTIL=20240103T080000Z")->until, utcDate(2024, 1, 3, 8));
    const auto floating = read("FREQ=DAILY;UNTIL=20240103T080000");
    EXPECT_FALSE(floating->until);
    EXPECT_EQ(floating->localUntil, (WallClock{2024, 1, 3, 8, 0, 0}));
    EXPECT_FALSE(floating->isUntilDate);
    EXPECT_TRUE(read("FREQ=DAILY;UNTIL=20240103")->isUntilDate);
}

TEST(RecurrencePatternTest, DropsWhatNobodyCanReadAndKeepsTheRest)
{
    EXPECT_EQ(rewritten("FREQ=YEARLY;BYMONTH=13,6,x;BYMONTHDAY=32,15,0"),
              u"FREQ=YEARLY;BYMONTHDAY=15;BYMONTH=6"_qs);
    EXPECT_EQ(rewritten("FREQ=DAILY;INTERVAL=99999999999;COUNT=99999999999"), u"FREQ=DAILY"_qs);
    EXPECT_EQ(rewritten("FREQ=DAILY;COUNT=0;UNTIL=tomorrow"), u"FREQ=DAILY"_qs);
    EXPECT_EQ(rewritten("FREQ=DAILY;COUNT=3;UNTIL=20300101T000000Z"), u"FREQ=DAILY;COUNT=3"_qs);
    EXPECT_EQ(rewritten("FREQ=DAILY;X-OWN=7;RSCALE=CHINESE;SKIP=FORWARD;BYHOUR=;;=;COUNT"), u"FREQ=DAILY"_qs);
    EXPECT_EQ(rewritten("freq=weekly;byday=mo, we"), u"FREQ=WEEKLY;BYDAY=MO,WE"_qs);
    for (const char *body : {"", "COUNT=3", "FREQ=", "FREQ=FORTNIGHTLY", ";;;", "RRULE:FREQ=DAILY"})
        EXPECT_FALSE(read(body)) << body;
}

TEST(RecurrencePatternTest, DaysThatAMonthDoesNotHaveAreInTheNextOneAndOtherDatesAreNone)
{
    EXPECT_EQ(read("FREQ=DAILY;UNTIL=20240230")->localUntil, (WallClock{2024, 3, 1, 0, 0, 0}));
    EXPECT_EQ(read("FREQ=DAILY;UNTIL=20240131T240000Z")->until, utcDate(2024, 2, 1));
    for (const char *date : {"20241301", "20240132", "00000101", "2024-01-31", "20240131T1000",
                             "20240131T250000", "20240131T106000", "20240131Z", "20240131T100000+0100"})
        EXPECT_EQ(rewritten((QByteArray("FREQ=DAILY;UNTIL=") + date).constData()), u"FREQ=DAILY"_qs) << date;
}

TEST(RecurrencePatternTest, WhatComesTwiceCountsOnce)
{
    EXPECT_EQ(rewritten("FREQ=DAILY;FREQ=WEEKLY;INTERVAL=2;INTERVAL=3;UNTIL=20300101;COUNT=3"),
              u"FREQ=DAILY;UNTIL=20300101;INTERVAL=2"_qs);
    EXPECT_EQ(rewritten("FREQ=YEARLY;BYMONTH=x;BYMONTH=6,2,06;BYMONTH=3"), u"FREQ=YEARLY;BYMONTH=6,2"_qs);
    EXPECT_EQ(rewritten("FREQ=MONTHLY;BYDAY=FR,1MO,MO,+1MO,0MO;WKST=FR"),
              u"FREQ=MONTHLY;BYDAY=FR,MO,1MO;WKST=FR"_qs);
    QStringList days;
    for (int week = -53; week <= 53; ++week)
        for (const char *day : {"MO", "TU", "WE", "TH", "FR", "SA", "SU"})
            days << QString::number(week) + QString::fromLatin1(day) << QStringLiteral("SU");
    const auto pattern = RecurrencePattern::fromText(QStringLiteral("FREQ=YEARLY;BYDAY=") + days.join(u','));
    ASSERT_TRUE(pattern);
    EXPECT_EQ(pattern->byDay.size(), std::size_t(days.size()) / 2);
    const RecurrencePattern twice{.bySetPos = {2, -400, 2, 0, 1},
                                  .byDay = {{EKWeekday::Friday}, {EKWeekday::Friday}}};
    EXPECT_EQ(twice.text(), u"FREQ=DAILY;BYDAY=FR;BYSETPOS=2,1"_qs);
}

TEST(RecurrencePatternTest, PartsAreReadAndWrittenOneByOne)
{
    RecurrencePattern pattern;
    EXPECT_TRUE(pattern.readPart(u"INTERVAL"_qs, u"-4"_qs) && pattern.readPart(u"BYHOUR"_qs, u"99,9"_qs));
    EXPECT_TRUE(pattern.readPart(u"BYDAY"_qs, u"FR,-1MO,2,MONDAY,54TU"_qs));
    EXPECT_EQ(pattern.part(u"INTERVAL"_qs) + u' ' + pattern.part(u"WKST"_qs) + u' ' +
                  pattern.part(u"BYHOUR"_qs),
              u"1 MO 99,9"_qs);
    EXPECT_EQ(pattern.part(u"BYDAY"_qs), u"FR,-1MO"_qs);
    EXPECT_EQ(pattern.text(), u"FREQ=DAILY;BYHOUR=9;BYDAY=FR,-1MO"_qs);
    for (const char *part :
         {"FREQ=daily", "FREQ=", "INTERVAL=x", "COUNT=0", "COUNT=3,4", "COUNT= 3", "WKST=mo", "BYHOUR=x",
          "BYMONTH=13", "BYDAY=mo", "BYDAY=", "DTSTART=20240101", "X-OWN=1"}) {
        const QString text = QString::fromLatin1(part);
        EXPECT_FALSE(pattern.readPart(text.section(u'=', 0, 0), text.section(u'=', 1))) << part;
    }
    EXPECT_EQ(pattern.text(), u"FREQ=DAILY"_qs);
    EXPECT_TRUE(pattern.part(u"COUNT"_qs).isEmpty() && pattern.part(u"X-OWN"_qs).isEmpty());
    pattern.interval = 40'000;
    EXPECT_EQ(pattern.part(u"INTERVAL"_qs), u"40000"_qs);
    EXPECT_EQ(pattern.text(), u"FREQ=DAILY;INTERVAL=32767"_qs);
}

TEST(RecurrencePatternTest, GeneratedRulesComeBackFromTheirText)
{
    std::mt19937 random(testSeed());
    const auto pick = [&](int lowest, int highest) {
        return std::uniform_int_distribution(lowest, highest)(random);
    };
    const auto ascending = [&](int lowest, int highest) {
        std::vector<int> values;
        for (int value = lowest; value <= highest; ++value)
            if (value != 0 && pick(0, highest - lowest) < 3)
                values.push_back(value);
        return values;
    };
    for (int round = 0; round < 500; ++round) {
        RecurrencePattern made{.frequency = static_cast<RecurrenceUnit>(pick(0, 6)),
                               .interval = pick(1, 40),
                               .weekStart = static_cast<EKWeekday>(pick(1, 7)),
                               .count = pick(0, 2) * pick(1, 50),
                               .bySetPos = ascending(-366, 366),
                               .byYearDay = ascending(-366, 366),
                               .byMonth = ascending(1, 12),
                               .byWeekNo = ascending(-53, 53),
                               .byMonthDay = ascending(-31, 31),
                               .byHour = ascending(1, 23),
                               .byMinute = ascending(1, 59),
                               .bySecond = ascending(1, 59)};
        made.byDay = {{static_cast<EKWeekday>(pick(1, 7)), pick(-53, 53)}};
        if (made.count == 0)
            made.until = utcDate(2024, 1, 1) + Seconds(pick(0, 1'000'000'000));
        EXPECT_EQ(RecurrencePattern::fromText(made.text()), made) << qPrintable(made.text());
    }
}
