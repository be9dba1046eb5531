#include "widgets/MonthPage.h"

#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

TEST(MonthPageTest, BeginsWithTheFirstWeekdayOfTheUser)
{
    EXPECT_EQ(MonthPage::of(localDate(2026, 11, 21)).days.front().start, localDate(2026, 11, 1));
    Region::setLocale(QStringLiteral("de_DE"));
    const MonthPage german = MonthPage::of(localDate(2026, 11, 21));
    EXPECT_EQ(german.days.front().start, localDate(2026, 10, 26));
    EXPECT_EQ(german.title, QStringLiteral("November 2026"));
    EXPECT_EQ(german.weekdays.first().left(2), QStringLiteral("Mo"));
}

TEST(MonthPageTest, CountsEveryDayOnceThroughTheChangesOfTheClock)
{
    for (int month = 1; month <= 12; ++month) {
        const MonthPage page = MonthPage::of(localDate(2026, month, 15, 2, 30));
        for (std::size_t index = 1; index < page.days.size(); ++index) {
            const int before = page.days[index - 1].number;
            const int number = page.days[index].number;
            ASSERT_TRUE(number == before + 1 || (number == 1 && before >= 28)) << "month " << month;
        }
        EXPECT_EQ(page.days[static_cast<std::size_t>(page.indexOf(localDate(2026, month, 15, 23)))].number,
                  15);
    }
}

TEST(MonthPageTest, KnowsTodayAndTheDaysOfOtherMonths)
{
    const FrozenClock clock(localDate(2026, 11, 21, 9));
    const MonthPage page = MonthPage::of(localDate(2026, 11, 3));
    const MonthPage::Day &today = page.days[static_cast<std::size_t>(page.indexOf(localDate(2026, 11, 21)))];
    EXPECT_TRUE(today.isToday);
    EXPECT_TRUE(today.isInMonth);
    EXPECT_FALSE(page.days.back().isInMonth);
    EXPECT_EQ(page.indexOf(localDate(2027, 2, 1)), -1);
}
