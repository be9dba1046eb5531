#include "eventkit/eds/EdsObjectText.h"

#include "eventkit/IcalDocument.h"
#include "eventkit/IcalZones.h"
#include "eventkit/VTimeZone.h"
#include "eventkit/WallClockZone.h"

#include <QCryptographicHash>
#include <QSet>
#include <QTimeZone>

#include <algorithm>

namespace {

Error unusable(const QString &reason)
{
    return CalendarError::make(CalendarError::Invalid,
                               QStringLiteral("Cannot store the event: %1.").arg(reason));
}

QByteArray textOf(const IcalComponent &component)
{
    QByteArray text;
    component.writeTo(text);
    return text;
}

/// What the name of a zone means to this program, in the words of the standard.
QByteArray describedZone(const IcalComponent &calendar, const QByteArray &tzid)
{
    for (const IcalComponent *child : calendar.children())
        if (child->name() == "VTIMEZONE" && child->value("TZID") == tzid)
            return textOf(*child);
    const ContentLine line =
        calendar.makeLine("DTSTART" + ContentLine::parameterText("TZID", tzid), "20000101T000000");
    const auto time = IcalZones(calendar).time(&line);
    const bool isFound = time && time->form == IcalTime::Form::Zoned;
    const QByteArray zone = isFound ? time->zone : QTimeZone::systemTimeZoneId();
    const auto component = timeZoneComponent(zone, tzid, Date::fromUnixSeconds(0), "\r\n");
    return component ? textOf(*component) : QByteArray();
}

} // namespace

bool isKnownToDaemon(const QByteArray &tzid)
{
    return i_cal_timezone_get_builtin_timezone(tzid.constData()) != nullptr;
}

Result<EdsObject> edsObjectFromText(const QByteArray &text)
{
    auto document = IcalDocument::fromText(text);
    if (!document)
        return document.error();
    EdsObject object;
    QByteArrayList zones;
    for (const IcalComponent *child : document->calendar().children()) {
        if (child->name() != "VEVENT" && child->name() != "VTODO")
            continue;
        const auto component = EdsComponent::fromText(textOf(*child));
        if (!component)
            return unusable(QStringLiteral("it cannot be read"));
        if (!object.components.empty() && component->uid != object.components.front().uid)
            return unusable(QStringLiteral("it holds several"));
        object.components.push_back(*component);
        zones += component->zones;
    }
    if (object.components.empty() || object.components.front().uid.isEmpty())
        return unusable(QStringLiteral("it has no UID"));
    sortComponents(object.components);
    for (const QByteArray &tzid : QSet<QByteArray>(zones.begin(), zones.end()))
        if (const QByteArray zone = describedZone(document->calendar(), tzid);
            !zone.isEmpty() && !isKnownToDaemon(tzid))
            object.zones.append(zone);
    return object;
}

QByteArray edsCalendarText(const QByteArrayList &zones, const EdsComponents &components)
{
    static const QByteArray frame = IcalDocument::create().text();
    static const qsizetype end = frame.lastIndexOf("END:VCALENDAR");
    QByteArray text = frame.left(end) + zones.join();
    for (const EdsComponent &component : components)
        text += component.text;
    return text + frame.mid(end);
}

QByteArray edsEtag(const EdsComponents &components)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const EdsComponent &component : components)
        hash.addData(component.fingerprint);
    return hash.result().toHex();
}

void sortComponents(EdsComponents &components)
{
    std::stable_sort(components.begin(), components.end(),
                     [](const EdsComponent &one, const EdsComponent &other) {
                         return one.recurrenceId < other.recurrenceId;
                     });
}
