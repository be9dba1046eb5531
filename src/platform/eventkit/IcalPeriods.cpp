#include "eventkit/IcalPeriods.h"

#include "eventkit/IcalRule.h"

#include <algorithm>
#include <chrono>

namespace {

/// The iterator reckons in these years.
constexpr int firstYear = 1900;
constexpr int lastYear = 2400;

bool hasTimes(const RecurrencePattern &pattern)
{
    return !pattern.byHour.empty() || !pattern.byMinute.empty() || !pattern.bySecond.empty();
}

bool hasPositions(const EKRecurrenceDayOfWeek &day)
{
    return day.weekNumber != 0;
}

/// Positions count in all of the days or in none.
bool isUnmixed(const std::vector<EKRecurrenceDayOfWeek> &days)
{
    const auto count = std::count_if(days.begin(), days.end(), hasPositions);
    return count == 0 || count == static_cast<std::ptrdiff_t>(days.size());
}

bool isPlain(const std::vector<EKRecurrenceDayOfWeek> &days)
{
    return std::none_of(days.begin(), days.end(), hasPositions);
}

bool holdsWeekdayOf(const std::vector<EKRecurrenceDayOfWeek> &days, std::int64_t start)
{
    const auto day =
        std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(start)));
    const auto weekday = static_cast<int>(std::chrono::weekday(day).c_encoding()) + 1;
    return days.empty() || std::any_of(days.begin(), days.end(), [weekday](const auto &one) {
               return static_cast<int>(one.dayOfTheWeek) == weekday;
           });
}

bool isRightForDaily(const RecurrencePattern &pattern)
{
    // Few days of the months would let it walk for centuries.
    return pattern.byMonthDay.empty() && isPlain(pattern.byDay);
}

bool isRightForWeekly(const RecurrencePattern &pattern, std::int64_t start)
{
    return pattern.byMonth.empty() && pattern.byMonthDay.empty() && isPlain(pattern.byDay) &&
           holdsWeekdayOf(pattern.byDay, start) && pattern.interval == 1;
}

bool isRightForMonthly(const RecurrencePattern &pattern)
{
    return pattern.byMonth.empty() && (pattern.byMonthDay.empty() || pattern.byDay.empty()) &&
           isUnmixed(pattern.byDay);
}

bool isRightForYearly(const RecurrencePattern &pattern)
{
    const bool isDayOfMonths =
        !pattern.byMonth.empty() && (pattern.byMonthDay.empty() || pattern.byDay.empty());
    const bool isPlainYear = pattern.byMonth.empty() && pattern.byMonthDay.empty() && pattern.byDay.empty();
    return isUnmixed(pattern.byDay) && (isDayOfMonths || isPlainYear);
}

std::vector<int> sorted(std::vector<int> values)
{
    std::sort(values.begin(), values.end());
    return values;
}

/// What the iterator needs: lists in order, and no end, which is watched over elsewhere.
RecurrencePattern prepared(RecurrencePattern pattern)
{
    pattern.count = 0;
    pattern.until.reset();
    pattern.localUntil.reset();
    pattern.byMonth = sorted(std::move(pattern.byMonth));
    pattern.byMonthDay = sorted(std::move(pattern.byMonthDay));
    const auto placeInWeek = [first = static_cast<int>(pattern.weekStart)](const EKRecurrenceDayOfWeek &day) {
        return std::pair(day.weekNumber, (static_cast<int>(day.dayOfTheWeek) - first + 7) % 7);
    };
    std::sort(pattern.byDay.begin(), pattern.byDay.end(),
              [&](const auto &one, const auto &other) { return placeInWeek(one) < placeInWeek(other); });
    return pattern;
}

} // namespace

bool IcalPeriods::isRightFor(const RecurrencePattern &pattern, std::int64_t start, std::int64_t last)
{
    const bool isInReach = WallClock::fromSeconds(start).year >= firstYear &&
                           WallClock::fromSeconds(last).year <= lastYear &&
                           pattern.interval <= std::numeric_limits<short>::max();
    if (!isInReach || hasTimes(pattern) || !pattern.bySetPos.empty() || !pattern.byWeekNo.empty() ||
        !pattern.byYearDay.empty())
        return false;
    switch (pattern.frequency) {
    case RecurrenceUnit::Daily:
        return isRightForDaily(pattern);
    case RecurrenceUnit::Weekly:
        return isRightForWeekly(pattern, start);
    case RecurrenceUnit::Monthly:
        return isRightForMonthly(pattern);
    case RecurrenceUnit::Yearly:
        return isRightForYearly(pattern);
    default:
        return false;
    }
}

IcalPeriods::IcalPeriods(const RecurrencePattern &pattern, std::int64_t start, std::int64_t last)
    : startMoment(start)
    , lastMoment(last)
    , iterator(
          icalrecur_iterator_new(icalRule(prepared(pattern)), icalTime(WallClock::fromSeconds(start), false)))
{}

IcalPeriods::~IcalPeriods()
{
    if (iterator)
        icalrecur_iterator_free(iterator);
}

void IcalPeriods::skipTo(std::int64_t moment)
{
    if (iterator && moment > startMoment)
        icalrecur_iterator_set_start(iterator, icalTime(WallClock::fromSeconds(moment), false));
}

const WallSeconds &IcalPeriods::next()
{
    moments.clear();
    const icaltimetype time = iterator ? icalrecur_iterator_next(iterator) : icaltime_null_time();
    if (icaltime_is_null_time(time))
        return moments;
    const std::int64_t moment =
        WallClock{time.year, time.month, time.day, time.hour, time.minute, time.second}.seconds();
    if (moment <= lastMoment)
        moments.push_back(moment);
    return moments;
}
