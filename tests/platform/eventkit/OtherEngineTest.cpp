#include "eventkit/RecurrencePeriods.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <libical/ical.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>

namespace {

using Days = std::vector<EKRecurrenceDayOfWeek>;

/// Positions count in all of the days or in none.
bool isUnmixed(const Days &days)
{
    const auto count = std::ranges::count_if(days, [](const auto &day) { return day.weekNumber != 0; });
    return count == 0 || count == std::ptrdiff_t(days.size());
}

bool isPlain(const Days &days)
{
    return std::ranges::all_of(days, [](const auto &day) { return day.weekNumber == 0; });
}

bool holdsWeekdayOf(const Days &days, std::int64_t start)
{
    const auto day =
        std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(start)));
    const auto weekday = static_cast<EKWeekday>(std::chrono::weekday(day).c_encoding() + 1);
    return days.empty() || std::ranges::count(days, weekday, &EKRecurrenceDayOfWeek::dayOfTheWeek) > 0;
}

/// The plain rules that the iterator of libical 3.0 gets right. Of others it loses occurrences or the phase
/// of the interval: days counted from the end of a month in daily rules, week numbers and days of the year
/// beside other parts, positions in a set, weeks at an interval, a start that is not itself on a day of its
/// weekly rule, hours and minutes, and skipping ahead in hourly rules.
bool isIteratorRightFor(const RecurrencePattern &rule, std::int64_t start)
{
    if (!rule.bySetPos.empty())
        return false;
    const bool hasOneKindOfDay = rule.byMonthDay.empty() || rule.byDay.empty();
    switch (rule.frequency) {
    case RecurrenceUnit::Daily:
        return rule.byMonthDay.empty() && isPlain(rule.byDay);
    case RecurrenceUnit::Weekly:
        return rule.byMonth.empty() && rule.byMonthDay.empty() && isPlain(rule.byDay) &&
               holdsWeekdayOf(rule.byDay, start) && rule.interval == 1;
    case RecurrenceUnit::Monthly:
        return rule.byMonth.empty() && hasOneKindOfDay && isUnmixed(rule.byDay);
    case RecurrenceUnit::Yearly:
        return isUnmixed(rule.byDay) &&
               (rule.byMonth.empty() ? rule.byMonthDay.empty() && rule.byDay.empty() : hasOneKindOfDay);
    default:
        return false;
    }
}

icaltimetype icalTimeOf(std::int64_t moment)
{
    const WallClock clock = WallClock::fromSeconds(moment);
    icaltimetype time = icaltime_null_time();
    time.year = clock.year;
    time.month = clock.month;
    time.day = clock.day;
    time.hour = clock.hour;
    time.minute = clock.minute;
    time.second = clock.second;
    return time;
}

/// What is compared: as many moments as are worth it, from one moment to another.
struct Span
{
    std::int64_t from;
    std::int64_t last;
    static constexpr std::size_t most = 60;
};

/// The iterator needs its lists in order.
RecurrencePattern inOrder(RecurrencePattern rule)
{
    std::ranges::sort(rule.byMonth);
    std::ranges::sort(rule.byMonthDay);
    std::ranges::sort(rule.byDay, {}, [first = static_cast<int>(rule.weekStart)](const auto &day) {
        return std::pair(day.weekNumber, (static_cast<int>(day.dayOfTheWeek) - first + 7) % 7);
    });
    return rule;
}

WallSeconds momentsOfIterator(const RecurrencePattern &rule, std::int64_t start, const Span &span)
{
    const QByteArray text = inOrder(rule).text().toLatin1();
    const std::unique_ptr<icalrecur_iterator, decltype(&icalrecur_iterator_free)> iterator(
        icalrecur_iterator_new(icalrecurrencetype_from_string(text.constData()), icalTimeOf(start)),
        &icalrecur_iterator_free);
    if (span.from > start)
        icalrecur_iterator_set_start(iterator.get(), icalTimeOf(span.from));
    WallSeconds all;
    while (all.size() < Span::most) {
        const icaltimetype time = icalrecur_iterator_next(iterator.get());
        const std::int64_t moment =
            WallClock{time.year, time.month, time.day, time.hour, time.minute, time.second}.seconds();
        if (icaltime_is_null_time(time) || moment > span.last)
            break;
        if (moment >= span.from)
            all.push_back(moment);
    }
    return all;
}

WallSeconds momentsOfPeriods(const RecurrencePattern &rule, std::int64_t start, const Span &span)
{
    const auto periods = RecurrencePeriods::create(rule, start, span.last);
    periods->skipTo(span.from);
    WallSeconds all;
    for (const WallSeconds *moments = &periods->next(); !moments->empty(); moments = &periods->next()) {
        for (const std::int64_t moment : *moments)
            if (moment >= span.from && moment <= span.last && all.size() < Span::most)
                all.push_back(moment);
        if (all.size() == Span::most)
            break;
    }
    return all;
}

/// Our periods against libical's iterator.
class OtherEngineTest : public testing::Test
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
    std::mt19937 random;
};

TEST_F(OtherEngineTest, AgreesOnGeneratedRulesThatTheOtherEngineGetsRight)
{
    random.seed(testSeed());
    int compared = 0;
    for (int round = 0; round < 6000; ++round) {
        const RecurrencePattern rule = pattern();
        const std::int64_t start =
            WallClock{2000 + below(60), 1 + below(12), 1 + below(28), below(24), below(60), below(60)}
                .seconds() +
            86400 * below(4);
        if (!isIteratorRightFor(rule, start))
            continue;
        ++compared;
        const Span span{below(2) == 0 ? start : start + below(86400 * 900),
                        start + 86400LL * (rule.frequency == RecurrenceUnit::Yearly ? 20000 : 4000)};
        ASSERT_EQ(momentsOfPeriods(rule, start, span), momentsOfIterator(rule, start, span))
            << rule.text().toStdString() << " from " << start << " at " << span.from;
    }
    EXPECT_GT(compared, 1000);
}

TEST_F(OtherEngineTest, WhatWeWriteOfGeneratedRulesTheOtherEngineReadsAsWeDo)
{
    random.seed(testSeed());
    for (int round = 0; round < 2000; ++round) {
        RecurrencePattern rule = pattern();
        rule.byHour = some(0, 23, 3);
        rule.bySecond = some(0, 60, 3);
        rule.byYearDay = some(-366, 366, 2);
        rule.byWeekNo = some(-53, 53, 2);
        rule.count = below(3) == 0 ? 1 + below(50) : 0;
        if (below(2) == 0)
            rule.until = utcDate(2000 + below(60), 1 + below(12), 1 + below(31), below(24), below(60));
        const QString text = rule.text();
        icalrecurrencetype read = icalrecurrencetype_from_string(text.toLatin1().constData());
        char *written = icalrecurrencetype_as_string_r(&read);
        EXPECT_EQ(RecurrencePattern::fromText(QString::fromLatin1(written)),
                  RecurrencePattern::fromText(text))
            << qPrintable(text) << " is " << written;
        icalmemory_free_buffer(written);
    }
}

} // namespace
