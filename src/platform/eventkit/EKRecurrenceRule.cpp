#include "eventkit/EKRecurrenceRule.h"

#include "eventkit/RecurrenceExpander.h"

#include <QStringList>

#include <algorithm>
#include <limits>

namespace {

const QString bodyMark = QStringLiteral(" RRULE ");

RecurrenceUnit unitOf(EKRecurrenceFrequency frequency)
{
    return static_cast<RecurrenceUnit>(static_cast<int>(RecurrenceUnit::Daily) + static_cast<int>(frequency));
}

} // namespace

EKRecurrenceRule::EKRecurrenceRule(const RecurrencePattern &pattern)
    : rule(pattern.withoutInvalidValues())
{
    rule.interval = std::min<int>(rule.interval, std::numeric_limits<short>::max());
}

EKRecurrenceRule EKRecurrenceRule::initRecurrenceWithFrequency(
    EKRecurrenceFrequency frequency, int interval, const std::vector<EKRecurrenceDayOfWeek> &daysOfTheWeek,
    const std::vector<int> &daysOfTheMonth, const std::vector<int> &monthsOfTheYear,
    const std::vector<int> &weeksOfTheYear, const std::vector<int> &daysOfTheYear,
    const std::vector<int> &setPositions, const std::optional<EKRecurrenceEnd> &end)
{
    EKRecurrenceRule made({.frequency = unitOf(frequency),
                           .interval = interval,
                           .bySetPos = setPositions,
                           .byYearDay = daysOfTheYear,
                           .byMonth = monthsOfTheYear,
                           .byWeekNo = weeksOfTheYear,
                           .byMonthDay = daysOfTheMonth,
                           .byDay = daysOfTheWeek});
    made.setRecurrenceEnd(end);
    return made;
}

std::optional<EKRecurrenceRule> EKRecurrenceRule::fromPattern(const RecurrencePattern &pattern,
                                                              const Calendar &calendar)
{
    if (pattern.frequency < RecurrenceUnit::Daily)
        return std::nullopt;
    EKRecurrenceRule made(pattern);
    for (auto *times : {&made.rule.byHour, &made.rule.byMinute, &made.rule.bySecond})
        times->clear();
    made.rule.until = RecurrenceExpander::untilInstant(pattern, calendar);
    made.rule.localUntil.reset();
    made.rule.isUntilDate = false;
    return made;
}

EKRecurrenceFrequency EKRecurrenceRule::frequency() const
{
    return static_cast<EKRecurrenceFrequency>(static_cast<int>(rule.frequency) -
                                              static_cast<int>(RecurrenceUnit::Daily));
}

std::optional<EKRecurrenceEnd> EKRecurrenceRule::recurrenceEnd() const
{
    if (rule.until)
        return EKRecurrenceEnd::recurrenceEndWithEndDate(*rule.until);
    if (rule.count > 0)
        return EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(rule.count);
    return std::nullopt;
}

void EKRecurrenceRule::setRecurrenceEnd(const std::optional<EKRecurrenceEnd> &end)
{
    rule.until = end ? end->endDate() : std::nullopt;
    rule.count = end ? end->occurrenceCount() : 0;
}

QString EKRecurrenceRule::description() const
{
    return QStringLiteral("EKRecurrenceRule") + bodyMark + rule.text();
}

QString EKRecurrenceRule::stringForICalendar() const
{
    return QStringLiteral("RRULE:") + description().split(bodyMark).at(1);
}
