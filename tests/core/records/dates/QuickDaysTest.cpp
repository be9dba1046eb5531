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
    for (const QString &none : {u""_s, u"  "_s, u"soon"_s, u"tomorrow or so"_s, u"every monday"_s, u"15"_s,
                                u"tomorrow !!"_s, u"tomorrow #Work"_s, u"31.2."_s, u"dec 1 - dec 3"_s})
        EXPECT_FALSE(read(none)) << qPrintable(none);
    EXPECT_TRUE(read(u"someday"_s) && read(u"someday"_s)->isSomeday);
    EXPECT_TRUE(read(u"irgendwann"_s) && read(u"irgendwann"_s)->isSomeday);
    const std::tuple<QString, int, int> days[] = {
        {u"sat"_s, 11, 28},        {u"wed"_s, 11, 25},       {u"sun"_s, 11, 22},
        {u"15."_s, 12, 15},        {u"15th"_s, 12, 15},      {u"the 15th"_s, 12, 15},
        {u"31.12"_s, 12, 31},      {u"next month"_s, 12, 1}, {u"end of month"_s, 11, 30},
        {u"übermorgen"_s, 11, 23}, {u"Mo"_s, 11, 23},        {u"heute in 3 Wochen"_s, 12, 12},
        {u"noon"_s, 11, 21}};
    for (const auto &[text, month, day] : days) {
        const auto typed = read(text);
        ASSERT_TRUE(typed) << qPrintable(text);
        EXPECT_EQ(typed->day, localDate(2026, month, day)) << qPrintable(text);
        EXPECT_EQ(typed->minute.has_value(), text == u"noon"_s) << qPrintable(text);
    }
    Region::setLocale(u"de_DE"_s);
    ASSERT_TRUE(read(u"übermorgen 14 Uhr"_s));
    EXPECT_EQ(read(u"übermorgen 14 Uhr"_s)->day, localDate(2026, 11, 23));
    EXPECT_EQ(read(u"übermorgen 14 Uhr"_s)->minute, 14 * 60);
}
