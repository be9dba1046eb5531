#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/UtcDateTime.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

/// The lists, and the characters of which the value of one consists.
struct ListForm
{
    QString key;
    QString characters;
};

const std::array<ListForm, 6> &lists()
{
    static const std::array<ListForm, 6> forms = {{
        // The sign belongs to it: "the last Friday" is a rule that people have in their calendars.
        {QStringLiteral("BYDAY"), QStringLiteral("\\w,+-")},
        {QStringLiteral("BYMONTHDAY"), QStringLiteral("\\d,-")},
        {QStringLiteral("BYMONTH"), QStringLiteral("\\d,")},
        {QStringLiteral("BYWEEKNO"), QStringLiteral("\\d,-")},
        {QStringLiteral("BYYEARDAY"), QStringLiteral("\\d,-")},
        {QStringLiteral("BYSETPOS"), QStringLiteral("\\d,-")},
    }};
    return forms;
}

/// What follows the first place of a key; empty without one.
QString valueOf(const QString &text, const ListForm &form)
{
    const QRegularExpression expression(QStringLiteral("%1=([%2]*)").arg(form.key, form.characters));
    return expression.match(text).captured(1);
}

bool takeFrequency(RecurrencePattern &pattern, const QString &text)
{
    static const QStringList names = QStringLiteral("DAILY WEEKLY MONTHLY YEARLY").split(u' ');
    static const QString key = QStringLiteral("FREQ");
    return std::ranges::any_of(names, [&](const QString &name) {
        return text.contains(key + u'=' + name) && pattern.readPart(key, name);
    });
}

/// The last interval counts.
void takeInterval(RecurrencePattern &pattern, const QString &text)
{
    const QStringList pieces = text.split(QStringLiteral("INTERVAL="));
    if (pieces.size() > 1)
        pattern.readPart(QStringLiteral("INTERVAL"), pieces.last().section(u';', 0, 0));
}

/// A count comes before an end date.
void takeEnd(RecurrencePattern &pattern, const QString &text)
{
    const ListForm count{QStringLiteral("COUNT"), QStringLiteral("\\d,-")};
    if (pattern.readPart(count.key, valueOf(text, count).section(u',', 0, 0)))
        return;
    const QString until = QStringLiteral("UNTIL");
    const QString date = text.section(until + u'=', 1, 1).section(u';', 0, 0);
    if (UtcDateTime::date(date))
        pattern.readPart(until, date);
}

} // namespace

std::optional<EKRecurrenceRule> EKRecurrenceRule::recurrenceRuleFromString(const QString &text)
{
    RecurrencePattern pattern;
    if (!takeFrequency(pattern, text))
        return std::nullopt;
    takeInterval(pattern, text);
    for (const ListForm &form : lists())
        pattern.readPart(form.key, valueOf(text, form));
    takeEnd(pattern, text);
    return EKRecurrenceRule(pattern);
}
