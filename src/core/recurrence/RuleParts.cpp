#include "recurrence/RuleParts.h"

#include <QStringList>

static const QStringList &weekdayTexts()
{
    static const QStringList list = QStringLiteral("SU MO TU WE TH FR SA").split(u' ');
    return list;
}

QString weekdayText(EKWeekday day)
{
    return weekdayTexts().at(static_cast<int>(day) - 1);
}

std::optional<EKWeekday> weekdayFromText(const QString &text)
{
    static const QString digits = QStringLiteral("0123456");
    qsizetype index = weekdayTexts().indexOf(text);
    if (index < 0 && text.size() == 1 && digits.contains(text))
        index = (digits.indexOf(text) + 1) % daysOfAWeek;
    return index < 0 ? std::nullopt : std::optional(static_cast<EKWeekday>(index + 1));
}
