#include "eventkit/WallClockZone.h"

#include "foundation/Region.h"

#include <QFile>
#include <QHash>
#include <QTimeZone>

#include <map>

const Calendar &calendarOfZone(const QByteArray &zone)
{
    static thread_local std::map<QByteArray, Calendar> calendars;
    static thread_local quint64 generation = 0;
    if (zone.isEmpty() && generation != Region::generation()) {
        calendars.erase(zone);
        generation = Region::generation();
    }
    const auto known = calendars.find(zone);
    if (known != calendars.end())
        return known->second;
    if (zone.isEmpty())
        return calendars.emplace(zone, Calendar::current()).first->second;
    return calendars
        .emplace(zone, Calendar({.zoneIdentifier = zone, .localeIdentifier = QStringLiteral("en_US")}))
        .first->second;
}

/// Qt takes any word of letters for a rule of POSIX, and does not list aliases such as "Etc/UTC" or "GMT".
static bool hasZoneData(const QByteArray &name)
{
    // The name comes from a file and becomes a path.
    const bool isPath = name.startsWith('/') || name.contains("..") || name.contains('\0');
    if (isPath || name.contains(',') || !QTimeZone(name).isValid())
        return false;
    return name.contains('/') || QTimeZone::isTimeZoneIdAvailable(name) ||
           QFile::exists(QStringLiteral("/usr/share/zoneinfo/") + QString::fromUtf8(name));
}

bool isKnownZone(const QByteArray &name)
{
    static thread_local QHash<QByteArray, bool> known;
    if (name.isEmpty())
        return false;
    const auto found = known.constFind(name);
    return found != known.constEnd() ? *found : *known.insert(name, hasZoneData(name));
}
