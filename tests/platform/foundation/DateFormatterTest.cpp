#include "foundation/DateFormatter.h"
#include "foundation/Calendar.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using Style = DateFormatter::Style;

static QString readBack(Date date, const QString &pattern)
{
    const OptionalDate day = DateFormatter::date(DateFormatter::string(date, pattern), pattern);
    return day ? DateFormatter::string(*day, u"yyyy-MM-dd HH:mm"_qs) : QString();
}

/// `Y` and `D` are the week-based year and the day of the year: what they do around New Year is relied upon.
TEST(DateFormatterTest, WeekYearAndDayOfYearAreReadBackAsTheyAlwaysWere)
{
    struct Case
    {
        Date date;
        QString american, americanDay, german, germanDay;
    };
    const std::vector<Case> cases = {
        {localDate(2024, 12, 28, 10), u"24:12:363"_qs, u"2024-12-28"_qs, u"24:12:363"_qs, u"2024-12-28"_qs},
        {localDate(2024, 12, 29, 10), u"25:12:364"_qs, u"2025-12-30"_qs, u"24:12:364"_qs, u"2024-12-29"_qs},
        {localDate(2024, 12, 31, 10), u"25:12:366"_qs, u"2026-01-01"_qs, u"25:12:366"_qs, u"2026-01-01"_qs},
        {localDate(2025, 1, 1, 23, 59), u"25:01:01"_qs, u"2025-01-01"_qs, u"25:01:01"_qs, u"2025-01-01"_qs},
        {localDate(2025, 6, 16, 23, 59), u"25:06:167"_qs, u"2025-06-16"_qs, u"25:06:167"_qs,
         u"2025-06-16"_qs},
        {localDate(2025, 12, 28, 10), u"26:12:362"_qs, u"2026-12-28"_qs, u"25:12:362"_qs, u"2025-12-28"_qs},
        {localDate(2027, 1, 1, 10), u"27:01:01"_qs, u"2027-01-01"_qs, u"26:01:01"_qs, u"2026-01-01"_qs}};
    const QString pattern = u"YY:MM:DD"_qs;
    for (const Case &one : cases) {
        Region::setLocale(u"en_US"_qs);
        EXPECT_EQ(DateFormatter::string(one.date, pattern), one.american);
        EXPECT_EQ(readBack(one.date, pattern), one.americanDay + u" 00:00"_qs);
        Region::setLocale(u"de_DE"_qs);
        EXPECT_EQ(DateFormatter::string(one.date, pattern), one.german);
        EXPECT_EQ(readBack(one.date, pattern), one.germanDay + u" 00:00"_qs);
    }
}

TEST(DateFormatterTest, APatternWithTheOffsetReadsMidnightInThatOffset)
{
    const QString pattern = u"dd-MM-yyyy ZZZZ"_qs;
    EXPECT_EQ(DateFormatter::string(localDate(2024, 12, 28, 10), pattern), u"28-12-2024 GMT+01:00"_qs);
    EXPECT_EQ(readBack(localDate(2024, 3, 31, 10), pattern), u"2024-03-30 23:00"_qs);
    EXPECT_EQ(readBack(localDate(2024, 10, 27, 10), pattern), u"2024-10-27 01:00"_qs);
}

TEST(DateFormatterTest, ReadingATextWithAnotherZoneLeavesTheUsersZoneAlone)
{
    const Date noonInTokyo = utcDate(2024, 7, 1, 3);
    EXPECT_EQ(DateFormatter::date(u"2024-07-01 12:00 Asia/Tokyo"_qs, u"yyyy-MM-dd HH:mm VV"_qs), noonInTokyo);
    EXPECT_EQ(DateFormatter::date(u"2024-07-01 12:00 +0900"_qs, u"yyyy-MM-dd HH:mm xx"_qs), noonInTokyo);
    EXPECT_EQ(wallClock(noonInTokyo), u"2024-07-01 05:00:00 +0200"_qs);
    EXPECT_EQ(Calendar::current().hour(noonInTokyo), 5);
    EXPECT_EQ(localDate(2024, 7, 1, 5), noonInTokyo);
}

TEST(DateFormatterTest, ReadingIsLenientButNotBlind)
{
    EXPECT_EQ(DateFormatter::date(u"25:13:400"_qs, u"YY:MM:DD"_qs), localDate(2026, 2, 4));
    EXPECT_EQ(DateFormatter::date(u"32-01-2024 and more"_qs, u"dd-MM-yyyy"_qs), localDate(2024, 2, 1));
    EXPECT_FALSE(DateFormatter::date(u"tomorrow"_qs, u"dd-MM-yyyy"_qs));
    EXPECT_FALSE(DateFormatter::date(u"17-"_qs, u"dd-MM-yyyy"_qs));
    EXPECT_FALSE(DateFormatter::date(QString(), u"yyyy"_qs));
}

TEST(DateFormatterTest, SkippedAndRepeatedMidnightsAreReadAsTheStartOfTheDay)
{
    const std::vector<std::pair<const char *, std::pair<int, int>>> days = {
        {"America/Havana", {3, 10}}, {"America/Havana", {11, 3}}, {"Asia/Beirut", {3, 31}}};
    for (const auto &[zone, day] : days) {
        Region::setZone(zone);
        const Date noon = localDate(2024, day.first, day.second, 12);
        for (const QString &pattern : {u"YY:MM:DD"_qs, u"dd-MM-yyyy"_qs})
            EXPECT_EQ(DateFormatter::date(DateFormatter::string(noon, pattern), pattern),
                      Calendar::current().startOfDay(noon))
                << zone;
    }
}

TEST(DateFormatterTest, StylesTemplatesAndSignsFollowTheLocale)
{
    const Date afternoon = localDate(2024, 7, 1, 14, 5);
    struct Case
    {
        QString locale, time, date, pattern, am;
    };
    const std::vector<Case> cases = {{u"en_US"_qs, u"2:05 PM"_qs, u"Jul 1, 2024"_qs, u"MMMM d"_qs, u"AM"_qs},
                                     {u"de_DE"_qs, u"14:05"_qs, u"01.07.2024"_qs, u"d. MMMM"_qs, u"AM"_qs},
                                     {u"en_GB"_qs, u"14:05"_qs, u"1 Jul 2024"_qs, u"d MMMM"_qs, u"am"_qs},
                                     {u"ja_JP"_qs, u"14:05"_qs, u"2024/07/01"_qs, u"M月d日"_qs, u"午前"_qs}};
    for (const Case &one : cases) {
        Region::setLocale(one.locale);
        const QString time = DateFormatter::string(afternoon, Style::None, Style::Short);
        EXPECT_EQ(QString(time).replace(QChar(0x202F), u' '), one.time);
        EXPECT_EQ(DateFormatter::string(afternoon, Style::Medium, Style::None), one.date);
        EXPECT_EQ(DateFormatter::patternFromTemplate(u"MMMM d"_qs), one.pattern);
        EXPECT_EQ(DateFormatter::amSymbol(), one.am);
    }
    EXPECT_TRUE(DateFormatter::string(afternoon, Style::None, Style::None).isEmpty());
}

TEST(DateFormatterTest, KeptFormattersFollowAChangeOfZone)
{
    const Date noon = utcDate(2024, 7, 1, 12);
    EXPECT_EQ(DateFormatter::string(noon, u"HH:mm"_qs), u"14:00"_qs);
    Region::setZone("America/Mexico_City");
    EXPECT_EQ(DateFormatter::string(noon, u"HH:mm"_qs), u"06:00"_qs);
    EXPECT_EQ(DateFormatter::date(u"2024-07-01"_qs, u"yyyy-MM-dd"_qs), utcDate(2024, 7, 1, 6));
}
