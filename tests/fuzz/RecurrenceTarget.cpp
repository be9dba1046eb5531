#include "fuzz/Targets.h"

#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/RecurrenceExpander.h"
#include "recurrence/RRule.h"

#include <algorithm>

namespace {

constexpr Seconds day{86400};

template <typename Rule, typename Write, typename Read>
QString writingChanges(const Rule &rule, Write write, Read read)
{
    const QString text = write(rule);
    const auto back = read(text);
    if (!back)
        return QStringLiteral("cannot be read again: ") + text;
    return write(*back) == text ? QString() : QStringLiteral("is not written the same again: ") + text;
}

QString disorder(const std::vector<Date> &dates, Date from, Date to)
{
    if (!std::is_sorted(dates.begin(), dates.end(), std::less_equal<>()))
        return QStringLiteral("dates out of order");
    if (!dates.empty() && (dates.front() < from || dates.back() > to))
        return QStringLiteral("dates out of bounds");
    return {};
}

QString taskRule(const QString &text)
{
    const auto rule = RRule::ruleFromString(text);
    if (!rule)
        return {};
    const Date end = rule->startDate + (rule->frequency < RecurrenceFrequency::hourly ? 366 * day : day);
    const QString writing = writingChanges(*rule, RRule::stringFromRule, RRule::ruleFromString);
    return writing + disorder(rule->occurrencesBetween(rule->startDate, end), rule->startDate, end);
}

QString storeRule(const QString &text)
{
    const auto rule = EKRecurrenceRule::recurrenceRuleFromString(text);
    if (!rule)
        return {};
    return writingChanges(
        *rule, [](const EKRecurrenceRule &one) { return one.stringForICalendar(); },
        EKRecurrenceRule::recurrenceRuleFromString);
}

QString pattern(const QString &text)
{
    const auto rule = RecurrencePattern::fromText(text.section(u':', -1));
    if (!rule)
        return {};
    const Date from = Date() + 9000 * day;
    const Date to = from + (rule->frequency < RecurrenceUnit::Daily ? day : 366 * day);
    const RecurrenceExpander expander(*rule, WallClock{2024, 2, 29, 2, 30, 0}, Calendar::current());
    std::vector<Date> dates;
    for (const RecurrenceInstance &instance : expander.instances({.from = from, .to = to}))
        dates.push_back(instance.date);
    const QString writing = writingChanges(
        *rule, [](const RecurrencePattern &one) { return one.text(); }, RecurrencePattern::fromText);
    return writing + disorder(dates, from, to);
}

} // namespace

QString contradictionInRecurrence(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return taskRule(text) + storeRule(text) + pattern(text);
}
