#include "recurrence/RRule.h"

#include "eventkit/UtcDateTime.h"
#include "recurrence/RuleParts.h"

#include <QStringList>

#include <algorithm>

namespace {

QString part(const QString &key, const QString &value)
{
    return key + u'=' + value + u';';
}

/// Nothing for a list without values.
QString listPart(const QString &key, const QStringList &values)
{
    return values.isEmpty() ? QString() : part(key, values.join(u','));
}

QString numbersPart(const QString &key, const std::vector<int> &numbers, const ValueRange &range)
{
    QStringList texts;
    for (const int number : numbers)
        if (range.contains(number))
            texts.append(QString::number(number));
    return listPart(key, texts);
}

QString weekdaysPart(const std::vector<EKWeekday> &days)
{
    QStringList texts;
    std::transform(days.begin(), days.end(), std::back_inserter(texts), weekdayText);
    return listPart(QStringLiteral("BYDAY"), texts);
}

QString endPart(const std::optional<EKRecurrenceEnd> &end)
{
    if (!end)
        return {};
    if (end->endDate())
        return part(QStringLiteral("UNTIL"), UtcDateTime::string(*end->endDate()));
    return part(QStringLiteral("COUNT"), QString::number(end->occurrenceCount()));
}

} // namespace

QString RRule::stringFromRule(const RecurrenceRule &rule)
{
    QString text = QStringLiteral("RRULE:");
    text += part(QStringLiteral("FREQ"), frequencyText(rule.frequency));
    text += part(QStringLiteral("INTERVAL"), QString::number(std::max(1, rule.interval)));
    text += part(QStringLiteral("WKST"), weekdayText(rule.firstDayOfWeek));
    text += part(QStringLiteral("DTSTART"), UtcDateTime::string(rule.startDate));
    text += endPart(rule.recurrenceEnd);
    text += numbersPart(QStringLiteral("BYSETPOS"), rule.bysetpos, setPositionRange);
    text += numbersPart(QStringLiteral("BYYEARDAY"), rule.byyearday, yearDayRange);
    text += numbersPart(QStringLiteral("BYMONTH"), rule.bymonth, monthRange);
    text += numbersPart(QStringLiteral("BYWEEKNO"), rule.byweekno, weekNumberRange);
    text += numbersPart(QStringLiteral("BYMONTHDAY"), rule.bymonthday, monthDayRange);
    text += weekdaysPart(rule.byweekday);
    text += numbersPart(QStringLiteral("BYHOUR"), rule.byhour, anyNumber);
    text += numbersPart(QStringLiteral("BYMINUTE"), rule.byminute, anyNumber);
    text += numbersPart(QStringLiteral("BYSECOND"), rule.bysecond, anyNumber);
    text.chop(1);
    return text;
}
