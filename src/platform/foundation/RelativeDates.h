#pragma once

#include <QString>

/// How a language says where a day lies from today, by the Unicode locale data.
namespace RelativeDates {

enum class Unit { Day, Week, Month, Year };

/// The word for a day: "yesterday" for -1, "today" for 0, "tomorrow" for 1, "the day after tomorrow" for 2;
/// empty where the language has none.
QString day(const QString &locale, int daysFromToday);
/// "next week", "next month", "next year".
QString next(const QString &locale, Unit unit);
/// "this Friday" for 0 and "next Friday" for 1. 1 is Sunday.
QString weekday(const QString &locale, int weekday, int weeksFromNow);
/// "in 3 days".
QString ahead(const QString &locale, Unit unit, int amount);

} // namespace RelativeDates
