#include "foundation/Calendar.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <random>

TEST(CalendarTest, FieldsOfADateAreThoseOfTheWallClock)
{
    const DateComponents fields =
        Calendar::current().components(localDate(2024, 12, 31, 23, 30, 15) + Seconds(0.25));
    const DateComponents expected{.era = 1,
                                  .year = 2024,
                                  .month = 12,
                                  .day = 31,
                                  .hour = 23,
                                  .minute = 30,
                                  .second = 15,
                                  .nanosecond = 250'000'000,
                                  .weekday = 3,
                                  .weekdayOrdinal = 5,
                                  .quarter = 4,
                                  .weekOfMonth = 5,
                                  .weekOfYear = 1,
                                  .yearForWeekOfYear = 2025};
    EXPECT_EQ(fields, expected);
}

TEST(CalendarTest, FieldsOutOfRangeCarryOver)
{
    const Calendar calendar = Calendar::current();
    const auto composed = [&](int month, int day, int hour, int minute) {
        return wallClock(calendar.dateFromComponents(
            {.year = 2024, .month = month, .day = day, .hour = hour, .minute = minute}));
    };
    EXPECT_EQ(composed(2, 30, 0, 0), u"2024-03-01 00:00:00 +0100"_qs);
    EXPECT_EQ(composed(12, 31, 23, 60), u"2025-01-01 00:00:00 +0100"_qs);
    EXPECT_EQ(composed(13, 1, 0, 0), u"2025-01-01 00:00:00 +0100"_qs);
    EXPECT_EQ(composed(3, 0, -1, 0), u"2024-02-28 23:00:00 +0100"_qs);
}

TEST(CalendarTest, TheDayDecidesOverTheWeekFieldsAndTheyDecideWithoutIt)
{
    const Calendar calendar = Calendar::current();
    DateComponents fields = calendar.components(localDate(2024, 7, 17, 9));
    fields.day = 3;
    EXPECT_EQ(calendar.dateFromComponents(fields), localDate(2024, 7, 3, 9));

    const DateComponents secondTuesday{.year = 2024, .month = 7, .weekday = 3, .weekdayOrdinal = 2};
    EXPECT_EQ(calendar.dateFromComponents(secondTuesday), localDate(2024, 7, 9));
    const DateComponents lastFriday{.year = 2024, .month = 7, .weekday = 6, .weekdayOrdinal = -1};
    EXPECT_EQ(calendar.dateFromComponents(lastFriday), localDate(2024, 7, 26));
    const DateComponents sundayOfWeekOne{.weekday = 1, .weekOfYear = 1, .yearForWeekOfYear = 2025};
    EXPECT_EQ(calendar.dateFromComponents(sundayOfWeekOne), localDate(2024, 12, 29));
}

TEST(CalendarTest, AdditionKeepsTheTimeOfDayAndClipsMonthEnds)
{
    const Calendar calendar = Calendar::current();
    const auto moved = [&](Date date, CalendarUnit unit, int amount) {
        return wallClock(calendar.dateByAdding(unit, amount, date));
    };
    EXPECT_EQ(moved(localDate(2024, 1, 31, 8), CalendarUnit::Month, 1), u"2024-02-29 08:00:00 +0100"_qs);
    EXPECT_EQ(moved(localDate(2024, 2, 29, 8), CalendarUnit::Year, 1), u"2025-02-28 08:00:00 +0100"_qs);
    EXPECT_EQ(moved(localDate(2024, 3, 30, 9), CalendarUnit::Day, 1), u"2024-03-31 09:00:00 +0200"_qs);
    EXPECT_EQ(moved(localDate(2024, 3, 30, 2, 30), CalendarUnit::Day, 1), u"2024-03-31 03:30:00 +0200"_qs);
    EXPECT_EQ(moved(localDate(2024, 10, 26, 2, 30), CalendarUnit::Day, 1), u"2024-10-27 02:30:00 +0200"_qs);
    EXPECT_EQ(moved(localDate(2024, 3, 30, 9), CalendarUnit::Hour, 24), u"2024-03-31 10:00:00 +0200"_qs);
    EXPECT_EQ(moved(localDate(2024, 10, 23, 9), CalendarUnit::WeekOfYear, 1),
              u"2024-10-30 09:00:00 +0100"_qs);
}

TEST(CalendarTest, AdditionOfSeveralFieldsGoesFromTheLargestDownAndKeepsFractions)
{
    const Date start = localDate(2024, 1, 30, 12) + Seconds(0.625);
    const DateComponents amounts{.month = 1, .day = 1, .second = -1, .weekOfYear = 1};
    EXPECT_EQ(Calendar::current().dateByAdding(amounts, start),
              localDate(2024, 3, 8, 11, 59, 59) + Seconds(0.625));
}

TEST(CalendarTest, DaysBetweenAreCompletedDays)
{
    const Calendar calendar = Calendar::current();
    const auto days = [&](Date from, Date to) { return calendar.wholeDaysBetween(from, to); };
    EXPECT_EQ(days(localDate(2024, 7, 1, 23, 59), localDate(2024, 7, 2, 0, 1)), 0);
    EXPECT_EQ(days(localDate(2024, 7, 1, 12), localDate(2024, 7, 3, 11)), 1);
    EXPECT_EQ(days(localDate(2024, 7, 3, 11), localDate(2024, 7, 1, 12)), -1);
    EXPECT_EQ(days(localDate(2024, 3, 30, 12), localDate(2024, 3, 31, 12)), 1) << "a day of 23 hours";
    EXPECT_EQ(days(localDate(2024, 7, 1) + Seconds(0.5), localDate(2024, 7, 2)), 0);
}

TEST(CalendarTest, WeekRowsFollowTheFirstWeekday)
{
    struct Case
    {
        int year, month, sundayFirst, mondayFirst, saturdayFirst;
    };
    const Case cases[] = {{2015, 2, 4, 5, 5},  {2021, 2, 5, 4, 5}, {2014, 2, 5, 5, 4}, {2024, 6, 6, 5, 5},
                          {2024, 12, 5, 6, 5}, {2022, 1, 6, 6, 5}, {2023, 10, 5, 6, 5}};
    const auto rows = [](const Case &month, const QString &locale) {
        Region::setLocale(locale);
        return Calendar::current().weeksInMonth(localDate(month.year, month.month, 17, 15));
    };
    for (const Case &month : cases) {
        SCOPED_TRACE(testing::Message() << month.year << "-" << month.month);
        EXPECT_EQ(rows(month, u"en_US"_qs), month.sundayFirst);
        EXPECT_EQ(rows(month, u"de_DE"_qs), month.mondayFirst);
        EXPECT_EQ(rows(month, u"ar_EG"_qs), month.saturdayFirst);
    }
}

TEST(CalendarTest, WeekNumbersFollowTheLocaleAroundNewYear)
{
    const auto week = [](const QString &locale, Date date) {
        Region::setLocale(locale);
        return Calendar::current().weekOfYear(date);
    };
    EXPECT_EQ(week(u"en_US"_qs, localDate(2020, 12, 31)), 1);
    EXPECT_EQ(week(u"de_DE"_qs, localDate(2020, 12, 31)), 53);
    EXPECT_EQ(week(u"de_DE"_qs, localDate(2022, 1, 1)), 52);
}

TEST(CalendarTest, ADayStartsAtItsFirstMomentWhereMidnightIsSkippedOrRepeated)
{
    struct Case
    {
        const char *zone;
        int month, day;
        const char16_t *start;
        double hours;
    };
    const Case cases[] = {{"America/Havana", 3, 10, u"2024-03-10 01:00:00 -0400", 23},
                          {"America/Havana", 11, 3, u"2024-11-03 00:00:00 -0400", 25},
                          {"Atlantic/Azores", 3, 31, u"2024-03-31 01:00:00 +0000", 23},
                          {"Atlantic/Azores", 10, 27, u"2024-10-27 00:00:00 +0000", 25},
                          {"Asia/Beirut", 3, 31, u"2024-03-31 01:00:00 +0300", 23},
                          {"Asia/Beirut", 10, 26, u"2024-10-26 00:00:00 +0300", 25},
                          {"Europe/Berlin", 10, 27, u"2024-10-27 00:00:00 +0200", 25}};
    for (const Case &one : cases) {
        SCOPED_TRACE(one.zone);
        Region::setZone(one.zone);
        const Calendar calendar = Calendar::current();
        for (const int hour : {0, 2, 12, 23}) {
            const DateInterval day = calendar.dayOf(localDate(2024, one.month, one.day, hour, 59, 59));
            EXPECT_EQ(wallClock(day.start), QString::fromUtf16(one.start));
            EXPECT_EQ((day.end - day.start).count(), one.hours * 3600);
        }
        EXPECT_EQ(localDate(2024, one.month, one.day),
                  calendar.startOfDay(localDate(2024, one.month, one.day)));
    }
}

TEST(CalendarTest, AllMomentsOfADayAgreeOnItsStartWhereTheClockGoesBackIntoTheDayBefore)
{
    Region::setZone("America/St_Johns");
    const Calendar calendar = Calendar::current();
    const Date firstMidnight = utcDate(2004, 10, 31, 2, 30);
    for (const double hours : {0.0, 1.5, 12.0, 24.9})
        EXPECT_EQ(calendar.startOfDay(firstMidnight + Seconds(hours * 3600)), firstMidnight) << hours;
}

/// Says of any zone what makes a stretch of time a day, without asking how it was found.
TEST(CalendarTest, GeneratedDaysOfAnyZoneCoverTimeWithoutGapOrOverlap)
{
    std::mt19937 random(testSeed());
    std::uniform_real_distribution<double> instants(utcDate(1980, 1, 1).referenceSeconds(),
                                                    utcDate(2070, 1, 1).referenceSeconds());
    for (const char *zone :
         {"America/Havana", "Asia/Beirut", "Australia/Lord_Howe", "Africa/Cairo", "Asia/Kathmandu",
          "America/Asuncion", "America/Scoresbysund", "Pacific/Apia", "America/Mexico_City"}) {
        Region::setZone(zone);
        const Calendar calendar = Calendar::current();
        for (int count = 0; count < 300; ++count) {
            const Date date = Date::fromReferenceSeconds(instants(random));
            SCOPED_TRACE(testing::Message() << zone << " at " << testing::PrintToString(date));
            const auto [start, end] = calendar.dayOf(date);
            ASSERT_LE(start, date);
            ASSERT_LT(date, end);
            ASSERT_EQ(calendar.day(start), calendar.day(date));
            ASSERT_NE(calendar.day(start - Seconds(1)), calendar.day(date));
            ASSERT_EQ(calendar.startOfDay(end), end);
            ASSERT_EQ(calendar.startOfNextDay(start - Seconds(1)), start);
            ASSERT_TRUE(calendar.isSameDay(start, end - Seconds(0.5)));
            ASSERT_FALSE(calendar.isSameDay(start, end));
        }
    }
}

TEST(CalendarTest, WallTimesInAGapMoveOnByItsLengthEvenAfterADaysStartWasAskedFor)
{
    EXPECT_EQ(Calendar::current().startOfDay(localDate(2024, 3, 31, 12)), utcDate(2024, 3, 30, 23));
    EXPECT_EQ(localDate(2024, 3, 31, 2, 30), utcDate(2024, 3, 31, 1, 30));
}

TEST(CalendarTest, OffsetsAtGeneratedMomentsAreThoseOfTheSystemsZoneDataInEveryZone)
{
    const auto zones = QTimeZone::availableTimeZoneIds();
    std::mt19937 random(testSeed());
    std::uniform_int_distribution<qint64> instants(-3'000'000'000, 3'390'000'000);
    for (const QByteArray &name : zones) {
        const QTimeZone zone(name);
        const Calendar calendar(CalendarSettings{.zoneIdentifier = name, .localeIdentifier = u"en_US"_qs});
        for (int count = 0; count < 20; ++count) {
            const auto instant = QDateTime::fromSecsSinceEpoch(instants(random), Qt::UTC);
            const Date date = Date::fromUnixSeconds(static_cast<double>(instant.toSecsSinceEpoch()));
            ASSERT_EQ(calendar.secondsFromGMT(date), zone.offsetFromUtc(instant))
                << name.constData() << " " << qPrintable(instant.toString(Qt::ISODate));
        }
    }
}

TEST(CalendarTest, RecentChangesOfZoneLawReachWallClocks)
{
    Region::setZone("America/Mexico_City");
    EXPECT_EQ(wallClock(utcDate(2024, 7, 1, 12)), u"2024-07-01 06:00:00 -0600"_qs);
    EXPECT_EQ(localDate(2024, 7, 1, 6), utcDate(2024, 7, 1, 12));
    Region::setZone("America/Ciudad_Juarez");
    EXPECT_EQ(wallClock(utcDate(2024, 1, 1, 12)), u"2024-01-01 05:00:00 -0700"_qs);
}

TEST(CalendarTest, TodayYesterdayAndTomorrowCrossMonthsAndClockChanges)
{
    const FrozenClock clock(localDate(2024, 3, 31, 23, 30));
    const Calendar calendar = Calendar::current();
    EXPECT_TRUE(calendar.isDateInToday(localDate(2024, 3, 31)));
    EXPECT_TRUE(calendar.isDateInYesterday(localDate(2024, 3, 30)));
    EXPECT_TRUE(calendar.isDateInTomorrow(localDate(2024, 4, 1, 23, 59, 59)));
    EXPECT_FALSE(calendar.isDateInTomorrow(localDate(2024, 4, 2)));
    EXPECT_FALSE(calendar.isDateInYesterday(localDate(2024, 3, 29, 23, 59)));
}

TEST(CalendarTest, DatesOutsideOfAllReasonAreBroughtInside)
{
    const Calendar calendar = Calendar::current();
    for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity(), std::nan("")}) {
        const Date date = Date::fromReferenceSeconds(seconds);
        EXPECT_TRUE(calendar.isSameDay(date, date));
        EXPECT_TRUE(std::isfinite(calendar.startOfDay(date).referenceSeconds()));
    }
}
