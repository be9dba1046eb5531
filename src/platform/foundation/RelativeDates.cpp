#include "foundation/RelativeDates.h"

#include "foundation/IcuText.h"

#include <unicode/reldatefmt.h>

namespace {

template <typename Write>
QString written(const QString &locale, Write write)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::RelativeDateTimeFormatter formatter(icu::Locale(locale.toUtf8().constData()), status);
    icu::UnicodeString text;
    if (U_SUCCESS(status))
        write(formatter, text, status);
    return U_SUCCESS(status) ? qtText(text) : QString();
}

UDateDirection directionOf(int steps)
{
    if (steps < 0)
        return UDAT_DIRECTION_LAST;
    return steps == 0 ? UDAT_DIRECTION_THIS : steps == 1 ? UDAT_DIRECTION_NEXT : UDAT_DIRECTION_NEXT_2;
}

} // namespace

QString RelativeDates::day(const QString &locale, int daysFromToday)
{
    if (daysFromToday < -1 || daysFromToday > 2)
        return {};
    return written(locale, [daysFromToday](const auto &formatter, auto &text, auto &status) {
        formatter.format(directionOf(daysFromToday), UDAT_ABSOLUTE_DAY, text, status);
    });
}

QString RelativeDates::next(const QString &locale, Unit unit)
{
    constexpr UDateAbsoluteUnit units[] = {UDAT_ABSOLUTE_DAY, UDAT_ABSOLUTE_WEEK, UDAT_ABSOLUTE_MONTH,
                                           UDAT_ABSOLUTE_YEAR};
    return written(locale, [&](const auto &formatter, auto &text, auto &status) {
        formatter.format(UDAT_DIRECTION_NEXT, units[int(unit)], text, status);
    });
}

QString RelativeDates::weekday(const QString &locale, int weekday, int weeksFromNow)
{
    const auto unit = UDateAbsoluteUnit(UDAT_ABSOLUTE_SUNDAY + weekday - 1);
    return written(locale, [&](const auto &formatter, auto &text, auto &status) {
        formatter.format(directionOf(weeksFromNow), unit, text, status);
    });
}

QString RelativeDates::ahead(const QString &locale, Unit unit, int amount)
{
    constexpr UDateRelativeUnit units[] = {UDAT_RELATIVE_DAYS, UDAT_RELATIVE_WEEKS, UDAT_RELATIVE_MONTHS,
                                           UDAT_RELATIVE_YEARS};
    return written(locale, [&](const auto &formatter, auto &text, auto &status) {
        formatter.format(amount, UDAT_DIRECTION_NEXT, units[int(unit)], text, status);
    });
}
