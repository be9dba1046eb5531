#include "records/dates/QuickDays.h"

#include "foundation/Calendar.h"
#include "foundation/Localization.h"

QString quickdays::title(QuickDay day)
{
    switch (day) {
    case QuickDay::Today:
        return localized(QStringLiteral("Today"));
    case QuickDay::Tomorrow:
        return localized(QStringLiteral("Tomorrow"));
    case QuickDay::Weekend:
        return localized(QStringLiteral("Weekend"));
    case QuickDay::NextWeek:
        return localized(QStringLiteral("Next Week"));
    case QuickDay::Someday:
        return localized(QStringLiteral("Someday"));
    }
    return {};
}

OptionalDate quickdays::dayOf(QuickDay day, Date now)
{
    constexpr int sunday = 1;
    constexpr int monday = 2;
    constexpr int saturday = 7;
    constexpr int week = 7;
    const Calendar calendar = Calendar::current();
    const Date today = calendar.startOfDay(now);
    const int weekday = calendar.weekday(today);
    const auto ahead = [&](int days) { return calendar.dateByAdding(CalendarUnit::Day, days, today); };
    switch (day) {
    case QuickDay::Today:
        return today;
    case QuickDay::Tomorrow:
        return ahead(1);
    case QuickDay::Weekend:
        return weekday == sunday ? today : ahead(saturday - weekday);
    case QuickDay::NextWeek:
        return ahead(week - (weekday - monday + week) % week);
    case QuickDay::Someday:
        break;
    }
    return std::nullopt;
}
