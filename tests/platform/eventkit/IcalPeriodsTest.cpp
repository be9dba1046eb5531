#include "eventkit/IcalPeriods.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// Ordinary rules, for which the library's iterator is used, against the periods of our own.
class IcalPeriodsTest : public testing::Test
{
protected:
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }
    std::vector<int> some(int lowest, int highest, int most)
    {
        std::vector<int> values;
        for (int count = below(most + 1); count > 0; --count) {
            const int value = lowest + below(highest - lowest + 1);
            if (value != 0)
                values.push_back(value);
        }
        return values;
    }
    RecurrencePattern pattern()
    {
        RecurrencePattern made;
        made.frequency = static_cast<RecurrenceUnit>(below(7));
        made.interval = 1 + below(below(3) == 0 ? 40 : 3);
        made.weekStart = static_cast<EKWeekday>(1 + below(7));
        made.byMonth = below(3) == 0 ? some(1, 12, 3) : std::vector<int>();
        made.byMonthDay = below(3) == 0 ? some(-31, 31, 4) : std::vector<int>();
        const bool isPositioned = below(2) == 0;
        for (int count = below(2) * (1 + below(4)); count > 0; --count) {
            const int position = isPositioned ? (below(2) == 0 ? 1 + below(5) : -1 - below(5)) : 0;
            made.byDay.push_back({static_cast<EKWeekday>(1 + below(7)), position});
        }
        made.bySetPos = below(4) == 0 ? some(-4, 4, 2) : std::vector<int>();
        return made.withoutInvalidValues();
    }
    static WallSeconds momentsOf(RecurrencePeriods &periods, std::int64_t from, std::int64_t last)
    {
        WallSeconds all;
        while (all.size() < 60) {
            const WallSeconds &moments = periods.next();
            if (moments.empty())
                break;
            for (const std::int64_t moment : moments) {
                if (moment >= from && moment <= last)
                    all.push_back(moment);
            }
        }
        all.resize(std::min<std::size_t>(all.size(), 60));
        return all;
    }
    std::mt19937 random;
};

TEST_F(IcalPeriodsTest, AgreesWithOurOwnPeriodsOnGeneratedRulesWhereItIsUsed)
{
    random.seed(testSeed());
    int used = 0;
    for (int round = 0; round < 6000; ++round) {
        const RecurrencePattern rule = pattern();
        const std::int64_t start =
            WallClock{2000 + below(60), 1 + below(12), 1 + below(28), below(24), below(60), below(60)}
                .seconds() +
            86400 * below(4);
        const std::int64_t last = start + 86400LL * (rule.frequency == RecurrenceUnit::Yearly ? 20000 : 4000);
        if (!IcalPeriods::isRightFor(rule, start, last))
            continue;
        ++used;
        const std::int64_t from = below(2) == 0 ? start : start + below(86400 * 900);
        IcalPeriods library(rule, start, last);
        const auto own = RecurrencePeriods::createOwn(rule, start, last);
        library.skipTo(from);
        own->skipTo(from);
        ASSERT_EQ(momentsOf(library, from, last), momentsOf(*own, from, last))
            << rule.text().toStdString() << " from " << start << " at " << from;
    }
    EXPECT_GT(used, 1000);
}

TEST_F(IcalPeriodsTest, LeavesWhatItGetsWrongToUs)
{
    const std::int64_t start = WallClock{2026, 11, 21, 9, 0, 0}.seconds();
    const auto isUsed = [start](const char *text) {
        const auto rule = RecurrencePattern::fromText(QString::fromLatin1(text));
        return IcalPeriods::isRightFor(rule.value(), start, start + 86400LL * 3650);
    };
    EXPECT_TRUE(isUsed("FREQ=WEEKLY;BYDAY=SA,MO"));
    EXPECT_TRUE(isUsed("FREQ=MONTHLY;BYDAY=-1FR"));
    EXPECT_TRUE(isUsed("FREQ=YEARLY;BYMONTH=3,11;BYDAY=1SU"));
    for (const char *text :
         {"FREQ=DAILY;BYMONTHDAY=-1", "FREQ=WEEKLY;BYDAY=MO", "FREQ=WEEKLY;INTERVAL=2",
          "FREQ=MONTHLY;BYDAY=MO,TU;BYSETPOS=-1", "FREQ=YEARLY;BYWEEKNO=20", "FREQ=YEARLY;BYYEARDAY=-1",
          "FREQ=HOURLY;INTERVAL=25", "FREQ=YEARLY;BYMONTHDAY=3", "FREQ=MONTHLY;BYDAY=MO,-1FR"})
        EXPECT_FALSE(isUsed(text)) << text;
}

} // namespace
