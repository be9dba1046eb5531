#include "eventkit/WallClock.h"

#include <chrono>

using namespace std::chrono;

WallClock WallClock::fromSeconds(std::int64_t seconds)
{
    const sys_seconds moment{std::chrono::seconds(seconds)};
    const auto midnight = floor<days>(moment);
    const year_month_day date(midnight);
    const hh_mm_ss time(moment - midnight);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()),
            static_cast<int>(time.seconds().count())};
}

std::int64_t WallClock::seconds() const
{
    const sys_days first = std::chrono::year(year) / month / 1;
    const auto length = days(day - 1) + hours(hour) + minutes(minute) + std::chrono::seconds(second);
    return (sys_seconds(first) + length).time_since_epoch().count();
}
