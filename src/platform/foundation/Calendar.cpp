#include "foundation/Calendar.h"

#include "foundation/CalendarEngine.h"
#include "foundation/Clock.h"
#include "foundation/IcuDate.h"
#include "foundation/Region.h"
#include "foundation/RegionState.h"
#include "foundation/ZoneRules.h"

#include <array>

static constexpr int nanosecondsPerSecond = 1'000'000'000;

static int get(const icu::Calendar &calendar, UCalendarDateFields field)
{
    UErrorCode status = U_ZERO_ERROR;
    return calendar.get(field, status);
}

static UCalendarDateFields icuField(CalendarUnit unit)
{
    switch (unit) {
    case CalendarUnit::Year:
        return UCAL_YEAR;
    case CalendarUnit::Month:
        return UCAL_MONTH;
    case CalendarUnit::WeekOfYear:
        return UCAL_WEEK_OF_YEAR;
    case CalendarUnit::Day:
        return UCAL_DATE;
    case CalendarUnit::Hour:
        return UCAL_HOUR;
    case CalendarUnit::Minute:
        return UCAL_MINUTE;
    case CalendarUnit::Second:
        break;
    }
    return UCAL_SECOND;
}

Calendar Calendar::current()
{
    static thread_local quint64 generation = 0;
    static thread_local std::shared_ptr<Engine> engine;
    if (const quint64 present = Region::generation(); present != generation) {
        engine = std::make_shared<Engine>(currentSettings());
        generation = present;
    }
    return Calendar(engine);
}

CalendarSettings Calendar::currentSettings()
{
    const auto region = currentRegionState();
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(*icu::TimeZone::getGMT(), region->locale, status));
    return {region->zoneIdentifier, region->localeIdentifier, calendar->getFirstDayOfWeek(status),
            calendar->getMinimalDaysInFirstWeek()};
}

Calendar::Calendar(const CalendarSettings &settings)
    : engine(std::make_shared<Engine>(settings))
{}
Calendar::Calendar(std::shared_ptr<Engine> sharedEngine)
    : engine(std::move(sharedEngine))
{}

DateComponents Calendar::components(Date date) const
{
    DateComponents fields = shortComponents(date);
    const icu::Calendar &calendar = engine->icuCalendar();
    fields.era = get(calendar, UCAL_ERA);
    fields.nanosecond = static_cast<int>(fractionOfSecond(date) * nanosecondsPerSecond);
    fields.weekday = get(calendar, UCAL_DAY_OF_WEEK);
    fields.weekdayOrdinal = get(calendar, UCAL_DAY_OF_WEEK_IN_MONTH);
    fields.quarter = (*fields.month - 1) / 3 + 1;
    fields.weekOfMonth = get(calendar, UCAL_WEEK_OF_MONTH);
    fields.weekOfYear = get(calendar, UCAL_WEEK_OF_YEAR);
    fields.yearForWeekOfYear = get(calendar, UCAL_YEAR_WOY);
    return fields;
}

DateComponents Calendar::shortComponents(Date date) const
{
    const icu::Calendar &calendar = engine->at(date);
    return {.year = get(calendar, UCAL_YEAR),
            .month = get(calendar, UCAL_MONTH) + 1,
            .day = get(calendar, UCAL_DATE),
            .hour = get(calendar, UCAL_HOUR_OF_DAY),
            .minute = get(calendar, UCAL_MINUTE),
            .second = get(calendar, UCAL_SECOND)};
}

/// Sets the fields that say which day is meant: the most definite set of those that are present.
static void setDay(icu::Calendar &calendar, const DateComponents &fields)
{
    calendar.set(UCAL_ERA, fields.era.value_or(1));
    calendar.set(UCAL_YEAR, fields.year.value_or(1));
    calendar.set(UCAL_MONTH, fields.month.value_or(1) - 1);
    if (fields.day || !fields.weekday) {
        calendar.set(UCAL_DATE, fields.day.value_or(1));
        return;
    }
    if (fields.weekOfYear) {
        calendar.set(UCAL_YEAR_WOY, fields.yearForWeekOfYear.value_or(fields.year.value_or(1)));
        calendar.set(UCAL_WEEK_OF_YEAR, *fields.weekOfYear);
    } else if (fields.weekOfMonth) {
        calendar.set(UCAL_WEEK_OF_MONTH, *fields.weekOfMonth);
    } else {
        calendar.set(UCAL_DAY_OF_WEEK_IN_MONTH, fields.weekdayOrdinal.value_or(1));
    }
    calendar.set(UCAL_DAY_OF_WEEK, *fields.weekday);
}

Date Calendar::dateFromComponents(const DateComponents &components) const
{
    icu::Calendar &calendar = engine->icuCalendar();
    calendar.clear();
    setDay(calendar, components);
    calendar.set(UCAL_HOUR_OF_DAY, components.hour.value_or(0));
    calendar.set(UCAL_MINUTE, components.minute.value_or(0));
    calendar.set(UCAL_SECOND, components.second.value_or(0));
    return engine->date(components.nanosecond.value_or(0) / static_cast<double>(nanosecondsPerSecond));
}

Date Calendar::dateByAdding(CalendarUnit unit, int amount, Date date) const
{
    UErrorCode status = U_ZERO_ERROR;
    engine->at(date).add(icuField(unit), amount, status);
    return engine->date(fractionOfSecond(date));
}

Date Calendar::dateByAdding(const DateComponents &amounts, Date date) const
{
    const std::array<std::pair<UCalendarDateFields, std::optional<int>>, 9> steps = {{
        {UCAL_YEAR, amounts.year},
        {UCAL_MONTH, amounts.month},
        {UCAL_WEEK_OF_YEAR, amounts.weekOfYear},
        {UCAL_WEEK_OF_YEAR, amounts.weekOfMonth},
        {UCAL_DATE, amounts.day},
        {UCAL_DATE, amounts.weekday},
        {UCAL_HOUR, amounts.hour},
        {UCAL_MINUTE, amounts.minute},
        {UCAL_SECOND, amounts.second},
    }};
    icu::Calendar &calendar = engine->at(date);
    UErrorCode status = U_ZERO_ERROR;
    for (const auto &[field, amount] : steps)
        if (amount)
            calendar.add(field, *amount, status);
    return engine->date(fractionOfSecond(date) +
                        amounts.nanosecond.value_or(0) / static_cast<double>(nanosecondsPerSecond));
}

int Calendar::firstWeekday() const
{
    UErrorCode status = U_ZERO_ERROR;
    return engine->icuCalendar().getFirstDayOfWeek(status);
}

int Calendar::minimumDaysInFirstWeek() const
{
    return engine->icuCalendar().getMinimalDaysInFirstWeek();
}

int Calendar::secondsFromGMT(Date date) const
{
    return engine->offsetAt(date).offset;
}

int Calendar::year(Date date) const
{
    return get(engine->at(date), UCAL_YEAR);
}

int Calendar::month(Date date) const
{
    return get(engine->at(date), UCAL_MONTH) + 1;
}

int Calendar::day(Date date) const
{
    return get(engine->at(date), UCAL_DATE);
}

int Calendar::hour(Date date) const
{
    return get(engine->at(date), UCAL_HOUR_OF_DAY);
}

int Calendar::minute(Date date) const
{
    return get(engine->at(date), UCAL_MINUTE);
}

int Calendar::second(Date date) const
{
    return get(engine->at(date), UCAL_SECOND);
}

int Calendar::weekday(Date date) const
{
    return get(engine->at(date), UCAL_DAY_OF_WEEK);
}

int Calendar::weekOfMonth(Date date) const
{
    return get(engine->at(date), UCAL_WEEK_OF_MONTH);
}

int Calendar::weekOfYear(Date date) const
{
    return get(engine->at(date), UCAL_WEEK_OF_YEAR);
}

int Calendar::daysInMonth(Date date) const
{
    UErrorCode status = U_ZERO_ERROR;
    return engine->at(date).getActualMaximum(UCAL_DATE, status);
}

int Calendar::weeksInMonth(Date date) const
{
    const icu::Calendar &calendar = engine->at(date);
    const int daysBefore = get(calendar, UCAL_DATE) - 1;
    const int weekdayOfFirst = get(calendar, UCAL_DAY_OF_WEEK) - daysBefore % 7;
    const int leadingDays = (weekdayOfFirst - firstWeekday() + 14) % 7;
    return (leadingDays + daysInMonth(date) + 6) / 7;
}

Date Calendar::startOfDay(Date date) const
{
    return engine->startOfDay(date);
}

Date Calendar::startOfNextDay(Date date) const
{
    return engine->startOfNextDay(date);
}

DateInterval Calendar::dayOf(Date date) const
{
    return {startOfDay(date), startOfNextDay(date)};
}

int Calendar::dayNumber(Date date) const
{
    return engine->dayNumber(date);
}

int Calendar::wholeDaysBetween(Date from, Date to) const
{
    UErrorCode status = U_ZERO_ERROR;
    icu::Calendar &calendar = engine->icuCalendar();
    calendar.setTime(icuDate(from), status);
    return calendar.fieldDifference(icuDate(to), UCAL_DATE, status);
}

bool Calendar::isSameDay(Date one, Date other) const
{
    return dayNumber(one) == dayNumber(other);
}

bool Calendar::isDateInToday(Date date) const
{
    return isSameDay(date, Clock::now());
}

bool Calendar::isDateInYesterday(Date date) const
{
    return dayNumber(date) == dayNumber(Clock::now()) - 1;
}

bool Calendar::isDateInTomorrow(Date date) const
{
    return dayNumber(date) == dayNumber(Clock::now()) + 1;
}
