#include "records/dates/QuickDays.h"
#include "foundation/Region.h"
#include "records/capture/TypedDate.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

TEST(QuickDays, AreCountedFromTheDayOnWhichTheyAreAskedFor)
{
    const auto on = [](QuickDay day, Date now) { return quickdays::dayOf(day, now); };
    const Date saturday = localDate(2026, 11, 21, 23, 59);
    EXPECT_EQ(on(QuickDay::Today, saturday), localDate(2026, 11, 21));
    EXPECT_EQ(on(QuickDay::Tomorrow, saturday), localDate(2026, 11, 22));
    EXPECT_EQ(on(QuickDay::Weekend, saturday), localDate(2026, 11, 21));
    EXPECT_EQ(on(QuickDay::NextWeek, saturday), localDate(2026, 11, 23));
    const Date sunday = localDate(2026, 11, 22);
    EXPECT_EQ(on(QuickDay::Weekend, sunday), sunday) << "what is left of it";
    EXPECT_EQ(on(QuickDay::NextWeek, sunday), localDate(2026, 11, 23));
    EXPECT_EQ(on(QuickDay::NextWeek, localDate(2026, 11, 23)), localDate(2026, 11, 30));
    EXPECT_EQ(on(QuickDay::Weekend, localDate(2026, 12, 28)), localDate(2027, 1, 2));
    EXPECT_EQ(on(QuickDay::Tomorrow, localDate(2026, 3, 28, 12)), localDate(2026, 3, 29));
    EXPECT_EQ(on(QuickDay::Someday, saturday), OptionalDate());
}

TEST(TypedDate, IsOneDayPerhapsWithATimeAndNothingElse)
{
    const FrozenClock clock(localDate(2026, 11, 21, 9, 15));
    const auto read = [](const QString &text) { return TypedDate::read(text); };
    ASSERT_TRUE(read(u"fri 5pm"_s));
    EXPECT_EQ(read(u"fri 5pm"_s)->day, localDate(2026, 11, 27));
    EXPECT_EQ(read(u"fri 5pm"_s)->minute, 17 * 60);
    ASSERT_TRUE(read(u" in 2 weeks"_s));
    EXPECT_EQ(read(u"in 2 weeks"_s)->day, localDate(2026, 12, 5));
    EXPECT_FALSE(read(u"in 2 weeks"_s)->minute);
    ASSERT_TRUE(read(u"31.12."_s));
    EXPECT_EQ(read(u"31.12."_s)->day, localDate(2026, 12, 31));
    for (const QString &none :
         {u""_s, u"  "_s, u"soon"_s, u"tomorrow or so"_s, u"every monday"_s, u"someday"_s, u"tomorrow !!"_s,
          u"tomorrow #Work"_s, u"31.2."_s, u"dec 1 - dec 3"_s})
        EXPECT_FALSE(read(none)) << qPrintable(none);
    Region::setLocale(u"de_DE"_s);
    ASSERT_TRUE(read(u"übermorgen 14 Uhr"_s));
    EXPECT_EQ(read(u"übermorgen 14 Uhr"_s)->day, localDate(2026, 11, 23));
    EXPECT_EQ(read(u"übermorgen 14 Uhr"_s)->minute, 14 * 60);
}
