#include "foundation/CalendarEngine.h"

#include "foundation/IcuDate.h"
#include "foundation/RegionState.h"
#include "foundation/ZoneRules.h"

#include <unicode/basictz.h>

static constexpr double secondsPerDay = 86400;
/// No clock has been set back by more. Until so long after a change, midnight may be one that came before
/// already.
static constexpr double longestRepetition = 3 * 3600;

static std::unique_ptr<icu::Calendar> makeCalendar(const CalendarSettings &settings,
                                                   const icu::TimeZone &zone)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(zone, gregorianLocale(settings.localeIdentifier.toUtf8()), status));
    calendar->setFirstDayOfWeek(static_cast<UCalendarDaysOfWeek>(settings.firstWeekday));
    calendar->setMinimalDaysInFirstWeek(static_cast<std::uint8_t>(settings.minimumDaysInFirstWeek));
    calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    return calendar;
}

Calendar::Engine::Engine(const CalendarSettings &settings)
    : rules(sharedZoneRules(settings.zoneIdentifier))
    , calendar(makeCalendar(settings, *rules))
    , ownZone(&calendar->getTimeZone())
    , offsets(rules)
{}

icu::Calendar &Calendar::Engine::at(Date date)
{
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(boundedUnixSeconds(date) * 1000, status);
    return *calendar;
}

void Calendar::Engine::takeZoneBack()
{
    if (&calendar->getTimeZone() == ownZone)
        return;
    calendar->setTimeZone(*rules);
    ownZone = &calendar->getTimeZone();
}

Date Calendar::Engine::date(double fraction) const
{
    UErrorCode status = U_ZERO_ERROR;
    return dateFromIcu(calendar->getTime(status)) + Seconds(fraction);
}

OffsetSpan Calendar::Engine::offsetAt(Date date)
{
    return offsets.at(boundedUnixSeconds(date));
}

int Calendar::Engine::dayNumber(Date date)
{
    return static_cast<int>(std::floor((boundedUnixSeconds(date) + offsetAt(date).offset) / secondsPerDay));
}

/// On a day without a clock change the day's bounds follow from the offset alone; this covers nearly all days
/// and costs some nanoseconds. Absent near a change.
std::optional<double> Calendar::Engine::startOfUnchangedDay(Date date)
{
    const OffsetSpan span = offsetAt(date);
    const double start = dayNumber(date) * secondsPerDay - span.offset;
    if (start > span.from + longestRepetition && start + secondsPerDay < span.to)
        return start;
    return std::nullopt;
}

/// Where midnight does not exist, the day starts when the clock change ends the gap.
void Calendar::Engine::moveToMidnight()
{
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
    UErrorCode status = U_ZERO_ERROR;
    calendar->getTime(status);
    calendar->setSkippedWallTimeOption(UCAL_WALLTIME_LAST);
}

Date Calendar::Engine::startOfDay(Date date)
{
    if (const auto start = startOfUnchangedDay(date))
        return Date::fromUnixSeconds(*start);
    at(date);
    moveToMidnight();
    return this->date();
}

Date Calendar::Engine::startOfNextDay(Date date)
{
    if (const auto start = startOfUnchangedDay(date))
        return Date::fromUnixSeconds(*start + secondsPerDay);
    UErrorCode status = U_ZERO_ERROR;
    at(date).add(UCAL_DATE, 1, status);
    moveToMidnight();
    return this->date();
}
