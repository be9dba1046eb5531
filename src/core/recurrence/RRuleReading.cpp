#include "recurrence/RRule.h"

#include "eventkit/UtcDateTime.h"
#include "foundation/Log.h"
#include "foundation/Region.h"
#include "recurrence/RuleParts.h"

#include <QHash>

#include <algorithm>

namespace {

/// Digits with or without a sign, nothing else around them.
std::optional<int> decimalInteger(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    const bool hasSpace = std::any_of(text.begin(), text.end(), [](QChar sign) { return sign.isSpace(); });
    return isNumber && !hasSpace ? std::optional(number) : std::nullopt;
}

std::vector<int> numbers(const QString &list, const ValueRange &range)
{
    std::vector<int> found;
    for (const QString &entry : list.split(u','))
        if (const auto number = decimalInteger(entry); number && range.contains(*number))
            found.push_back(*number);
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<EKWeekday> weekdays(const QString &list)
{
    std::vector<EKWeekday> found;
    for (const QString &entry : list.split(u','))
        if (const auto day = weekdayFromText(entry))
            found.push_back(*day);
    std::sort(found.begin(), found.end());
    return found;
}

OptionalDate localDate(const QString &text)
{
    const OptionalDate written = UtcDateTime::date(text);
    return written ? OptionalDate(*written - Seconds(Region::secondsFromGMT(Clock::now()))) : std::nullopt;
}

/// A rule to whose frequency nobody looks before it has been read.
struct ReadParts
{
    RecurrenceRule rule{RecurrenceFrequency::daily};
    std::optional<RecurrenceFrequency> frequency;
};

using PartReader = void (*)(ReadParts &parts, const QString &value);

template <auto list, const ValueRange &range>
void readNumbers(ReadParts &parts, const QString &value)
{
    parts.rule.*list = numbers(value, range);
}

void readFrequency(ReadParts &parts, const QString &value)
{
    parts.frequency = frequencyFromText(value);
}

void readInterval(ReadParts &parts, const QString &value)
{
    if (const auto interval = decimalInteger(value))
        parts.rule.interval = std::max(1, *interval);
}

void readWeekStart(ReadParts &parts, const QString &value)
{
    if (const auto day = weekdayFromText(value))
        parts.rule.firstDayOfWeek = *day;
}

void readStart(ReadParts &parts, const QString &value)
{
    if (const OptionalDate start = localDate(value))
        parts.rule.startDate = *start;
}

void readUntil(ReadParts &parts, const QString &value)
{
    if (const OptionalDate until = localDate(value))
        parts.rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithEndDate(*until);
}

void readCount(ReadParts &parts, const QString &value)
{
    // There is no rule with no occurrence.
    if (const auto count = decimalInteger(value); count && *count > 0)
        parts.rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(*count);
}

void readWeekdays(ReadParts &parts, const QString &value)
{
    parts.rule.byweekday = weekdays(value);
}

const QHash<QString, PartReader> &partReaders()
{
    static const QHash<QString, PartReader> readers = {
        {QStringLiteral("FREQ"), readFrequency},
        {QStringLiteral("INTERVAL"), readInterval},
        {QStringLiteral("WKST"), readWeekStart},
        {QStringLiteral("DTSTART"), readStart},
        {QStringLiteral("UNTIL"), readUntil},
        {QStringLiteral("COUNT"), readCount},
        {QStringLiteral("BYSETPOS"), readNumbers<&RecurrenceRule::bysetpos, setPositionRange>},
        {QStringLiteral("BYYEARDAY"), readNumbers<&RecurrenceRule::byyearday, yearDayRange>},
        {QStringLiteral("BYMONTH"), readNumbers<&RecurrenceRule::bymonth, monthRange>},
        {QStringLiteral("BYWEEKNO"), readNumbers<&RecurrenceRule::byweekno, weekNumberRange>},
        {QStringLiteral("BYMONTHDAY"), readNumbers<&RecurrenceRule::bymonthday, monthDayRange>},
        {QStringLiteral("BYDAY"), readWeekdays},
        {QStringLiteral("BYHOUR"), readNumbers<&RecurrenceRule::byhour, anyNumber>},
        {QStringLiteral("BYMINUTE"), readNumbers<&RecurrenceRule::byminute, anyNumber>},
        {QStringLiteral("BYSECOND"), readNumbers<&RecurrenceRule::bysecond, anyNumber>},
    };
    return readers;
}

} // namespace

std::optional<RecurrenceRule> RRule::ruleFromString(const QString &string)
{
    static const QString mark = QStringLiteral("RRULE:");
    const QString trimmed = string.trimmed();
    if (!trimmed.startsWith(mark))
        return std::nullopt;
    ReadParts parts;
    for (const QString &piece : trimmed.mid(mark.size()).split(u';')) {
        const QStringList sides = piece.split(u'=');
        if (sides.size() != 2 || sides.at(1).isEmpty())
            continue;
        if (const PartReader read = partReaders().value(sides.at(0)))
            read(parts, sides.at(1));
    }
    if (!parts.frequency) {
        Log::line(QStringLiteral("error: invalid frequency"));
        return std::nullopt;
    }
    parts.rule.frequency = *parts.frequency;
    return parts.rule;
}
