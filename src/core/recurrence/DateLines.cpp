#include "eventkit/UtcDateTime.h"
#include "recurrence/ExclusionDate.h"
#include "recurrence/InclusionDate.h"

#include <QStringList>

static QString joined(const std::vector<Date> &dates)
{
    QStringList texts;
    for (const Date date : dates)
        texts.append(UtcDateTime::string(date));
    return texts.join(u',');
}

QString InclusionDate::line() const
{
    return QStringLiteral("RDATE:") + joined(dates);
}

QString ExclusionDate::line() const
{
    return QStringLiteral("EXDATE:") + joined(dates);
}
