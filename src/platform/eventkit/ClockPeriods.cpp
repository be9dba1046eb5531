#include "eventkit/ClockPeriods.h"

#include <algorithm>

namespace {

constexpr std::int64_t secondsOfAMinute = 60;
constexpr std::int64_t secondsOfAnHour = 3600;
constexpr int mostEmptyPeriods = 5'000'000;

std::int64_t floorDivided(std::int64_t value, std::int64_t divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

std::int64_t secondsOf(RecurrenceUnit unit)
{
    if (unit == RecurrenceUnit::Hourly)
        return secondsOfAnHour;
    return unit == RecurrenceUnit::Minutely ? secondsOfAMinute : 1;
}

RecurrenceDay dayOfNumber(std::int64_t number)
{
    return RecurrenceDay(std::chrono::sys_days(std::chrono::days(number)));
}

bool allows(const std::vector<int> &values, std::int64_t value)
{
    return values.empty() || std::binary_search(values.begin(), values.end(), static_cast<int>(value));
}

} // namespace

ClockPeriods::ClockPeriods(const RecurrencePattern &validPattern, std::int64_t start, std::int64_t last)
    : pattern(validPattern)
    , unit(secondsOf(pattern.frequency))
    , lastMoment(last)
    , days(pattern, dayOfNumber(floorDivided(start, secondsOfADay)))
    , times(pattern, WallClock::fromSeconds(start))
    , index(floorDivided(start, unit))
    , judgedDay(floorDivided(start, secondsOfADay))
    , isJudgedDayTaken(days.matches(dayOfNumber(judgedDay)))
{}

void ClockPeriods::skipTo(std::int64_t moment)
{
    const std::int64_t ahead = floorDivided(moment, unit) - index;
    if (ahead > 0)
        index += (ahead + pattern.interval - 1) / pattern.interval * pattern.interval;
}

bool ClockPeriods::isDayTaken(std::int64_t dayNumber)
{
    if (dayNumber != judgedDay) {
        judgedDay = dayNumber;
        isJudgedDayTaken = days.matches(dayOfNumber(dayNumber));
    }
    return isJudgedDayTaken;
}

std::int64_t ClockPeriods::nextCandidate()
{
    const std::int64_t moment = begin();
    const std::int64_t day = floorDivided(moment, secondsOfADay);
    if (!isDayTaken(day))
        return (day + 1) * secondsOfADay;
    const std::int64_t time = moment - day * secondsOfADay;
    if (!allows(times.hours, time / secondsOfAnHour))
        return moment - time % secondsOfAnHour + secondsOfAnHour;
    if (unit <= secondsOfAMinute && !allows(times.minutes, time / secondsOfAMinute % 60))
        return moment - time % secondsOfAMinute + secondsOfAMinute;
    if (unit == 1 && !allows(times.seconds, time % 60))
        return moment + 1;
    return moment;
}

void ClockPeriods::takeMoments()
{
    static const std::vector<int> itself{0};
    for (const int minute : unit == secondsOfAnHour ? times.minutes : itself)
        for (const int second : unit == 1 ? itself : times.seconds)
            moments.push_back(begin() + minute * secondsOfAMinute + second);
    keepSetPositions(moments, pattern.bySetPos);
}

const WallSeconds &ClockPeriods::next()
{
    moments.clear();
    for (int periods = 0; moments.empty() && periods < mostEmptyPeriods && begin() <= lastMoment; ++periods) {
        const std::int64_t candidate = nextCandidate();
        if (candidate > begin()) {
            skipTo(candidate);
            continue;
        }
        takeMoments();
        index += pattern.interval;
    }
    return moments;
}
