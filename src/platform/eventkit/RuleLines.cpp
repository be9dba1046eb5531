#include "eventkit/RuleLines.h"

#include "eventkit/RecurrenceExpander.h"
#include "eventkit/UtcDateTime.h"
#include "eventkit/WallClockZone.h"

#include <QDate>

#include <algorithm>
#include <cmath>

namespace {

std::int64_t dayNumber(const IcalTime &time)
{
    return time.day().clock.seconds() / secondsOfADay;
}

EKWeekday weekdayOf(const QDate &date)
{
    return static_cast<EKWeekday>(date.dayOfWeek() % 7 + 1);
}

EKWeekday weekdayAfter(EKWeekday day, std::int64_t days)
{
    const auto index = (static_cast<int>(day) - 1 + static_cast<int>(days % 7) + 7) % 7;
    return static_cast<EKWeekday>(index + 1);
}

QDate dateOf(const IcalTime &time)
{
    return {time.clock.year, time.clock.month, time.clock.day};
}

void replace(std::vector<int> &values, int former, int present)
{
    std::replace(values.begin(), values.end(), former, present);
}

/// Which such weekday of the month it is, counted as the rule counts.
int ordinalOf(const QDate &date, bool isFromEnd)
{
    return isFromEnd ? -((date.daysInMonth() - date.day()) / 7 + 1) : (date.day() - 1) / 7 + 1;
}

/// -1 for the last day of its month.
int dayFromEnd(const QDate &date)
{
    return date.day() - date.daysInMonth() - 1;
}

void moveWeekdays(RecurrencePattern &pattern, const QDate &former, const QDate &present)
{
    const std::int64_t days = former.daysTo(present);
    for (EKRecurrenceDayOfWeek &day : pattern.byDay) {
        const bool isMeant = day.weekNumber == 0 || pattern.byDay.size() == 1;
        if (!isMeant)
            continue;
        day.dayOfTheWeek = day.weekNumber == 0 ? weekdayAfter(day.dayOfTheWeek, days) : weekdayOf(present);
        const bool isOfMonth = pattern.frequency == RecurrenceUnit::Monthly || !pattern.byMonth.empty();
        if (day.weekNumber != 0 && isOfMonth)
            day.weekNumber = ordinalOf(present, day.weekNumber < 0);
    }
    // Which days are in one week counts where weeks are left out: the weeks turn too.
    if (pattern.frequency == RecurrenceUnit::Weekly && pattern.interval > 1 && pattern.byDay.size() > 1)
        pattern.weekStart = weekdayAfter(pattern.weekStart, days);
}

/// A rule that names the day on which the occurrence was names the one on which it is now. A rule of every
/// day of a set (a daily rule on weekdays, or BYDAY with BYSETPOS) is left alone.
RecurrencePattern movedDays(RecurrencePattern pattern, const QDate &former, const QDate &present)
{
    if (former == present)
        return pattern;
    if (pattern.frequency >= RecurrenceUnit::Weekly && pattern.bySetPos.empty() && pattern.byDay.size() < 7)
        moveWeekdays(pattern, former, present);
    if (pattern.frequency >= RecurrenceUnit::Monthly)
        replace(pattern.byMonthDay, former.day(), present.day());
    if (pattern.frequency >= RecurrenceUnit::Monthly && former.month() == present.month())
        replace(pattern.byMonthDay, dayFromEnd(former), dayFromEnd(present));
    if (pattern.frequency == RecurrenceUnit::Yearly) {
        replace(pattern.byMonth, former.month(), present.month());
        replace(pattern.byYearDay, former.dayOfYear(), present.dayOfYear());
    }
    return pattern;
}

/// UNTIL for a series of that form, for which occurrences at this moment still count.
QByteArray untilText(const IcalTime &last, const IcalTime &start)
{
    if (start.form == IcalTime::Form::Date || start.form == IcalTime::Form::Floating)
        return last.text();
    return UtcDateTime::string(last.instant()).toLatin1();
}

/// The last moment of a rule in the form of its series; a date that ends a timed series is its whole day.
std::optional<IcalTime> lastTime(const RecurrencePattern &pattern, const IcalTime &start)
{
    const auto last = RecurrenceExpander::untilInstant(pattern, calendarOfZone(start.clockZone()));
    return last ? std::optional(IcalTime::of(*last, start)) : std::nullopt;
}

std::int64_t timeOfDay(const IcalTime &time)
{
    return time.clock.seconds() - time.day().clock.seconds();
}

IcalTime movedEnd(const IcalTime &last, const SeriesMove &move)
{
    const IcalTime moved = move.moved(last);
    // From days to hours: the last day counts whole.
    const bool isOfDays = move.formerStart.isDate() && !move.newForm.isDate();
    return isOfDays ? moved.shifted(secondsOfADay - 1) : moved;
}

/// The same day as before is the last on which an occurrence may start.
IcalTime endOnItsDay(const IcalTime &last, const IcalTime &occurrence, const SeriesMove &move)
{
    const IcalTime start = move.moved(occurrence);
    // The end may lie before the occurrence of its own day.
    const bool isBefore = timeOfDay(last) < timeOfDay(occurrence);
    IcalTime end = last;
    if (move.newForm.tzid != move.formerStart.tzid && !last.isDate() && !move.newForm.isDate())
        end = IcalTime::of(last.instant(), move.newForm);
    std::int64_t timeOfEnd = std::max(timeOfDay(end), timeOfDay(start));
    std::int64_t day = dayNumber(end);
    if (isBefore)
        --day;
    // A whole day counts whole.
    if (isBefore || last.isDate() || day < dayNumber(start))
        timeOfEnd = secondsOfADay - 1;
    IcalTime moved = move.newForm;
    const std::int64_t wholeDays = std::max(day, dayNumber(start)) * secondsOfADay;
    moved.clock = WallClock::fromSeconds(wholeDays + (moved.isDate() ? 0 : timeOfEnd));
    return moved;
}

/// Reads the rule of a series that begins at such a time.
std::optional<RecurrencePattern> patternOf(const QByteArray &rule, const IcalTime &start)
{
    const auto pattern = RecurrencePattern::fromText(QString::fromLatin1(rule));
    return pattern && start.isDate() ? pattern->ofWholeDays() : pattern;
}

} // namespace

bool SeriesMove::isNone() const
{
    return delta == 0 && formerStart.form == newForm.form && formerStart.tzid == newForm.tzid;
}

IcalTime SeriesMove::moved(const IcalTime &time) const
{
    if (newForm.isDate())
        return time.day().shifted(delta);
    // Not by way of the instant, which cannot tell a time that the clocks have left out.
    if (time.form == newForm.form && time.tzid == newForm.tzid)
        return time.shifted(delta);
    return IcalTime::of(time.instant(), newForm).shifted(delta);
}

SeriesMove moveOf(const CalendarItem &item, const ItemPart &range)
{
    const IcalTime &formerStart = item.master()->times.start;
    const IcalTime &start = range.times.start;
    const bool isUtcOnly = start.form == IcalTime::Form::Utc && formerStart.form == IcalTime::Form::Zoned;
    const IcalTime &form = isUtcOnly ? formerStart : start;
    const auto secondsOf = [&form](const IcalTime &time) {
        return IcalTime::of(time.instant(), form).clock.seconds();
    };
    return {formerStart, form, secondsOf(start) - secondsOf(item.timeOfKey(range.key))};
}

QByteArray withRulePart(const QByteArray &rule, const QByteArray &key, const QByteArray &value)
{
    QList<QByteArray> parts = rule.split(';');
    for (QByteArray &part : parts)
        if (part.toUpper().startsWith(key + '=')) {
            part = key + '=' + value;
            return parts.join(';');
        }
    return rule + ';' + key + '=' + value;
}

QByteArray textOfRule(const EKRecurrenceRule &rule, const IcalTime &start)
{
    QByteArray text = rule.pattern().text().toLatin1();
    if (const auto last = lastTime(rule.pattern(), start))
        text = withRulePart(text, "UNTIL", untilText(*last, start));
    return text;
}

std::optional<QByteArray> ruleFrom(const QByteArray &rule, int matchesBefore, const IcalTime &occurrence,
                                   const SeriesMove &move, EndOfMoved end)
{
    const auto pattern = patternOf(rule, move.formerStart);
    if (!pattern)
        return rule;
    QByteArray text = rule;
    const QDate former = dateOf(occurrence);
    const QDate present = dateOf(move.moved(occurrence));
    if (const RecurrencePattern moved = movedDays(*pattern, former, present); !(moved == *pattern))
        text = moved.text().toLatin1();
    if (pattern->count > 0 && matchesBefore > 0) {
        if (pattern->count <= matchesBefore)
            return std::nullopt;
        text = withRulePart(text, "COUNT", QByteArray::number(pattern->count - matchesBefore));
    }
    const auto last = lastTime(*pattern, move.formerStart);
    if (last && !move.isNone()) {
        const bool isByDays = pattern->frequency >= RecurrenceUnit::Daily && pattern->byHour.empty() &&
                              pattern->byMinute.empty() && pattern->bySecond.empty();
        const IcalTime moved = end == EndOfMoved::StaysOnItsDay && isByDays
                                   ? endOnItsDay(*last, occurrence, move)
                                   : movedEnd(*last, move);
        text = withRulePart(text, "UNTIL", untilText(moved, move.newForm));
    }
    if (last && dayNumber(*last) < dayNumber(occurrence))
        return std::nullopt;
    return text;
}

std::optional<QByteArray> ruleUpTo(const QByteArray &rule, int matchesBefore, const IcalTime &occurrence)
{
    const auto pattern = patternOf(rule, occurrence);
    if (!pattern)
        return rule;
    if (matchesBefore == 0)
        return std::nullopt;
    if (pattern->count > 0)
        return withRulePart(rule, "COUNT", QByteArray::number(std::min(pattern->count, matchesBefore)));
    const IcalTime last = occurrence.isDate() ? occurrence.shifted(-secondsOfADay)
                                              : IcalTime::of(occurrence.instant() - Seconds(1), occurrence);
    const auto present = lastTime(*pattern, occurrence);
    if (present && present->instant() <= last.instant())
        return rule;
    return withRulePart(rule, "UNTIL", untilText(last, occurrence));
}
