#include "eventkit/IcalZones.h"

#include "eventkit/VTimeZone.h"
#include "eventkit/WallClockZone.h"
#include "foundation/Log.h"

#include <QSet>
#include <QTimeZone>

/// Programs put their own names before the one of the zone: "/example.org/2007_1/Europe/Berlin".
static QByteArray zoneAtEndOf(const QByteArray &tzid)
{
    for (qsizetype slash = tzid.indexOf('/'); slash >= 0; slash = tzid.indexOf('/', slash + 1))
        if (const QByteArray end = tzid.mid(slash + 1); end.contains('/') && isKnownZone(end))
            return end;
    return {};
}

static void reportUnknown(const QByteArray &tzid)
{
    static QSet<QByteArray> reported;
    if (reported.contains(tzid))
        return;
    reported.insert(tzid);
    Log::line(QStringLiteral("Cannot find the time zone \"%1\" of a calendar; its times are taken as local.")
                  .arg(QString::fromUtf8(tzid)));
}

IcalZones::IcalZones(const IcalComponent &calendar)
{
    for (const IcalComponent *component : calendar.children()) {
        if (component->name() != "VTIMEZONE")
            continue;
        const QByteArray tzid = component->value("TZID");
        if (isKnownZone(tzid) || !zoneAtEndOf(tzid).isEmpty())
            continue;
        const QByteArray location = component->value("X-LIC-LOCATION");
        embedded[tzid] = isKnownZone(location) ? location : registeredTimeZone(*component);
    }
}

QByteArray IcalZones::zoneOf(const QByteArray &tzid) const
{
    if (isKnownZone(tzid))
        return tzid;
    QByteArray zone = zoneAtEndOf(tzid);
    if (zone.isEmpty())
        zone = embedded.value(tzid);
    if (zone.isEmpty())
        zone = QTimeZone::windowsIdToDefaultIanaId(tzid);
    if (zone.isEmpty())
        reportUnknown(tzid);
    return zone;
}

std::optional<IcalTime> IcalZones::time(const QByteArray &value, const QByteArray &tzid) const
{
    auto time = IcalTime::fromText(value);
    if (!time || time->form != IcalTime::Form::Floating || tzid.isEmpty())
        return time;
    const QByteArray zone = zoneOf(tzid);
    if (!zone.isEmpty()) {
        time->form = IcalTime::Form::Zoned;
        time->tzid = tzid;
        time->zone = zone;
    }
    return time;
}

std::optional<IcalTime> IcalZones::time(const ContentLine *line) const
{
    return line ? time(line->value(), line->parameter("TZID")) : std::nullopt;
}

std::vector<IcalTime> IcalZones::times(const ContentLine &line) const
{
    std::vector<IcalTime> found;
    for (const QByteArray &value : line.value().split(','))
        if (const auto read = time(value, line.parameter("TZID")))
            found.push_back(*read);
    return found;
}

std::vector<IcalRecurrenceDate> IcalZones::recurrenceDates(const ContentLine &line) const
{
    const QByteArray tzid = line.parameter("TZID");
    std::vector<IcalRecurrenceDate> found;
    for (const QByteArray &value : line.value().split(',')) {
        const qsizetype slash = value.indexOf('/');
        const auto start = time(value.left(slash < 0 ? value.size() : slash), tzid);
        if (!start)
            continue;
        IcalRecurrenceDate entry{*start};
        if (slash >= 0) {
            entry.end = time(value.mid(slash + 1), tzid);
            entry.duration = entry.end ? std::nullopt : IcalDuration::fromText(value.mid(slash + 1));
        }
        found.push_back(entry);
    }
    return found;
}
