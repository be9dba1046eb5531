#include "recurrence/RecurrenceFrequency.h"

#include <QStringList>

static const QStringList &texts()
{
    static const QStringList list =
        QStringLiteral("YEARLY MONTHLY WEEKLY DAILY HOURLY MINUTELY SECONDLY").split(u' ');
    return list;
}

QString frequencyText(RecurrenceFrequency frequency)
{
    return texts().at(static_cast<int>(frequency));
}

std::optional<RecurrenceFrequency> frequencyFromText(const QString &text)
{
    const qsizetype index = texts().indexOf(text);
    return index < 0 ? std::nullopt : std::optional(static_cast<RecurrenceFrequency>(index));
}
