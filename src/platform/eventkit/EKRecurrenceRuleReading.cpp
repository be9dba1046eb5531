#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/UtcDateTime.h"

#include <QRegularExpression>
#include <QStringList>

#include <array>

namespace {

std::optional<EKRecurrenceFrequency> frequencyOf(const QString &text)
{
    static const std::array<std::pair<QString, EKRecurrenceFrequency>, 4> marks = {{
        {QStringLiteral("FREQ=DAILY"), EKRecurrenceFrequency::Daily},
        {QStringLiteral("FREQ=WEEKLY"), EKRecurrenceFrequency::Weekly},
        {QStringLiteral("FREQ=MONTHLY"), EKRecurrenceFrequency::Monthly},
        {QStringLiteral("FREQ=YEARLY"), EKRecurrenceFrequency::Yearly},
    }};
    for (const auto &[mark, frequency] : marks)
        if (text.contains(mark))
            return frequency;
    return std::nullopt;
}

/// 1 if there is no readable interval.
int intervalOf(const QString &text)
{
    const QStringList pieces = text.split(QStringLiteral("INTERVAL="));
    bool isReadable = false;
    const int interval = pieces.last().section(u';', 0, 0).toInt(&isReadable);
    return pieces.size() > 1 && isReadable ? interval : 1;
}

/// What the first group of an expression finds first; empty without a match.
QString captured(const QString &text, const QString &expression)
{
    return QRegularExpression(expression).match(text).captured(1);
}

std::vector<int> numbers(const QString &text, const QString &expression)
{
    std::vector<int> found;
    for (const QString &entry : captured(text, expression).split(u',')) {
        bool isReadable = false;
        const int number = entry.toInt(&isReadable);
        if (isReadable)
            found.push_back(number);
    }
    return found;
}

std::vector<EKRecurrenceDayOfWeek> weekdays(const QString &text)
{
    static const QStringList names = QStringLiteral("SU MO TU WE TH FR SA").split(u' ');
    static const QRegularExpression form(QStringLiteral("^([+-]?\\d*)([A-Z]{2})$"));
    std::vector<EKRecurrenceDayOfWeek> found;
    // The sign is captured too: "the last Friday" is a rule that people have in their calendars.
    for (const QString &entry : captured(text, QStringLiteral("BYDAY=([\\w,+-]*)")).split(u',')) {
        const QRegularExpressionMatch match = form.match(entry);
        const qsizetype index = names.indexOf(match.captured(2));
        bool isReadable = false;
        const int weekNumber = match.captured(1).toInt(&isReadable);
        if (index >= 0 && (isReadable || match.captured(1).isEmpty()))
            found.push_back({static_cast<EKWeekday>(index + 1), weekNumber});
    }
    return found;
}

std::optional<EKRecurrenceEnd> endOf(const QString &text)
{
    const std::vector<int> count = numbers(text, QStringLiteral("COUNT=([\\d,-]*)"));
    if (!count.empty() && count.front() > 0)
        return EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(count.front());
    const QString behindMark = text.section(QStringLiteral("UNTIL="), 1, 1);
    if (const OptionalDate until = UtcDateTime::date(behindMark.section(u';', 0, 0)))
        return EKRecurrenceEnd::recurrenceEndWithEndDate(*until);
    return std::nullopt;
}

} // namespace

std::optional<EKRecurrenceRule> EKRecurrenceRule::recurrenceRuleFromString(const QString &text)
{
    const auto frequency = frequencyOf(text);
    if (!frequency)
        return std::nullopt;
    return initRecurrenceWithFrequency(*frequency, intervalOf(text), weekdays(text),
                                       numbers(text, QStringLiteral("BYMONTHDAY=([\\d,-]*)")),
                                       numbers(text, QStringLiteral("BYMONTH=([\\d,]*)")),
                                       numbers(text, QStringLiteral("BYWEEKNO=([\\d,-]*)")),
                                       numbers(text, QStringLiteral("BYYEARDAY=([\\d,-]*)")),
                                       numbers(text, QStringLiteral("BYSETPOS=([\\d,-]*)")), endOf(text));
}
