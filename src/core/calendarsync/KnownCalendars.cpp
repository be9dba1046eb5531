#include "calendarsync/KnownCalendars.h"

#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

#include <QVariantList>
#include <QVariantMap>

namespace {

const QString identifierKey = QStringLiteral("identifier");
const QString titleKey = QStringLiteral("title");
const QString isWritableKey = QStringLiteral("isWritable");
const QString accountKey = QStringLiteral("account");
const QString accountTitleKey = QStringLiteral("accountTitle");
const QString accountTypeKey = QStringLiteral("accountType");
const QString colorKey = QStringLiteral("color");

QVariant valueOf(const EKCalendar &calendar)
{
    QVariantMap value{{identifierKey, calendar.calendarIdentifier},
                      {titleKey, calendar.title},
                      {isWritableKey, calendar.allowsContentModifications},
                      {accountKey, calendar.source.sourceIdentifier},
                      {accountTitleKey, calendar.source.title},
                      {accountTypeKey, static_cast<int>(calendar.source.sourceType)}};
    if (const auto &color = calendar.color)
        value.insert(colorKey, QVariantList{color->red, color->green, color->blue, color->alpha});
    return value;
}

EKCalendar calendarOf(const QVariantMap &value)
{
    EKCalendar calendar;
    calendar.calendarIdentifier = value.value(identifierKey).toString();
    calendar.title = value.value(titleKey).toString();
    calendar.allowsContentModifications = value.value(isWritableKey).toBool();
    calendar.source = {value.value(accountTitleKey).toString(),
                       static_cast<EKSourceType>(value.value(accountTypeKey).toInt()),
                       value.value(accountKey).toString()};
    const QVariantList color = value.value(colorKey).toList();
    if (color.size() == 4)
        calendar.color =
            EKColor{color[0].toDouble(), color[1].toDouble(), color[2].toDouble(), color[3].toDouble()};
    return calendar;
}

} // namespace

std::vector<EKCalendar> knowncalendars::read()
{
    std::vector<EKCalendar> calendars;
    for (const QVariant &value : UserDefaults::standard().object(settings::knownCalendars).toList()) {
        EKCalendar calendar = calendarOf(value.toMap());
        if (!calendar.calendarIdentifier.isEmpty())
            calendars.push_back(std::move(calendar));
    }
    return calendars;
}

void knowncalendars::keep(const std::vector<EKCalendar> &calendars)
{
    QVariantList values;
    for (const EKCalendar &calendar : calendars)
        values.append(valueOf(calendar));
    UserDefaults &defaults = UserDefaults::standard();
    if (defaults.object(settings::knownCalendars).toList() != values)
        defaults.setObject(settings::knownCalendars, values);
}
