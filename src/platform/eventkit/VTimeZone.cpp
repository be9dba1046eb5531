#include "eventkit/VTimeZone.h"

#include "eventkit/IcalDocument.h"
#include "eventkit/IcalTime.h"
#include "eventkit/RecurrenceExpander.h"
#include "eventkit/WallClockZone.h"
#include "foundation/ZoneRules.h"

#include <QCryptographicHash>
#include <QList>

#include <algorithm>

#include <unicode/vtzone.h>

namespace {

/// What is known of zones ends here: 2078.
const Date horizon = Date::fromUnixSeconds(3'408'220'800);
constexpr double secondsOfAYear = 31'556'952;

/// "+0130" or "-013015"; absent for anything else.
std::optional<int> offsetOf(const QByteArray &text)
{
    bool isNumber = false;
    const int digits = text.mid(1).leftJustified(6, '0').toInt(&isNumber);
    if (!isNumber || (text.size() != 5 && text.size() != 7) || (text[0] != '+' && text[0] != '-'))
        return std::nullopt;
    const int seconds = digits / 10'000 * 3600 + digits / 100 % 100 * 60 + digits % 100;
    return text[0] == '-' ? -seconds : seconds;
}

/// STANDARD or DAYLIGHT: when its offset begins, and what it is.
struct Observance
{
    int from = 0;
    int to = 0;
    /// The wall clock before the change, as if it were UTC.
    std::vector<Date> onsets;
};

void addOnsets(Observance &observance, const IcalComponent &component, const IcalTime &start)
{
    const Calendar &wall = calendarOfZone("UTC");
    observance.onsets.push_back(RecurrenceExpander::instantOf(start.clock, wall));
    for (const ContentLine *line : component.lines("RRULE")) {
        auto pattern = RecurrencePattern::fromText(QString::fromLatin1(line->value()));
        if (!pattern)
            continue;
        if (pattern->until)
            pattern->until = *pattern->until + Seconds(observance.from);
        for (const RecurrenceInstance &instance : RecurrenceExpander(*pattern, start.clock, wall)
                                                      .instances({.to = horizon, .mostInstances = 2000}))
            observance.onsets.push_back(instance.date);
    }
    for (const ContentLine *line : component.lines("RDATE"))
        for (const QByteArray &value : line->value().split(','))
            if (const auto time = IcalTime::fromText(value))
                observance.onsets.push_back(RecurrenceExpander::instantOf(time->clock, wall));
}

std::optional<Observance> observanceOf(const IcalComponent &component)
{
    const auto from = offsetOf(component.value("TZOFFSETFROM").trimmed());
    const auto to = offsetOf(component.value("TZOFFSETTO").trimmed());
    const auto start = IcalTime::fromText(component.value("DTSTART"));
    if (!from || !to || !start)
        return std::nullopt;
    Observance observance{*from, *to, {}};
    addOnsets(observance, component, *start);
    return observance;
}

/// The change to an offset, and the offset before it.
struct Onset
{
    ZoneChange change;
    int offsetBefore = 0;
};

std::vector<Onset> onsetsOf(const IcalComponent &component)
{
    std::vector<Onset> onsets;
    for (const IcalComponent *child : component.children())
        if (const auto observance = observanceOf(*child))
            for (const Date onset : observance->onsets)
                onsets.push_back(
                    {{static_cast<qint64>(onset.unixSeconds()) - observance->from, observance->to},
                     observance->from});
    std::sort(onsets.begin(), onsets.end(), [](const Onset &one, const Onset &other) {
        return one.change.unixSeconds < other.change.unixSeconds;
    });
    return onsets;
}

/// What the library writes, in the form that is common elsewhere: offsets without seconds, no end in 2078.
void tidy(IcalComponent &component)
{
    component.removeLines("TZNAME");
    for (const char *name : {"TZOFFSETFROM", "TZOFFSETTO"})
        if (const QByteArray offset = component.value(name); offset.size() == 7 && offset.endsWith("00"))
            component.setValue(name, offset.left(5));
    QByteArray rule = component.value("RRULE");
    const qsizetype until = rule.indexOf(";UNTIL=207");
    if (until >= 0)
        component.setValue("RRULE", rule.left(until));
}

} // namespace

QByteArray registeredTimeZone(const IcalComponent &component)
{
    const std::vector<Onset> onsets = onsetsOf(component);
    if (onsets.empty())
        return {};
    QByteArray text;
    component.writeTo(text);
    const QByteArray name = "VTIMEZONE/" + QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex();
    std::vector<ZoneChange> changes;
    for (const Onset &onset : onsets)
        changes.push_back(onset.change);
    registerZoneRules(name, onsets.front().offsetBefore, changes);
    return name;
}

std::optional<IcalComponent> timeZoneComponent(const QByteArray &zone, const QByteArray &tzid, Date from,
                                               const QByteArray &lineEnd)
{
    if (!isKnownZone(zone))
        return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::VTimeZone> writer(
        icu::VTimeZone::createVTimeZoneFromBasicTimeZone(*sharedZoneRules(zone), status));
    icu::UnicodeString written;
    // A year earlier, so that the last change before the date is told too.
    if (U_SUCCESS(status))
        writer->write((from.unixSeconds() - secondsOfAYear) * 1000, written, status);
    std::string text;
    written.toUTF8String(text);
    const QByteArray lines = QByteArray::fromStdString(text).replace("\r\n", "\n").replace("\n", lineEnd);
    auto document = IcalDocument::fromText("BEGIN:VCALENDAR" + lineEnd + lines + "END:VCALENDAR" + lineEnd);
    IcalComponent *component = document ? document->calendar().childAt(0) : nullptr;
    if (U_FAILURE(status) || !component)
        return std::nullopt;
    component->setValue("TZID", tzid);
    component->removeLines("X-TZINFO");
    for (std::size_t index = 0; IcalComponent *observance = component->childAt(index); ++index)
        tidy(*observance);
    return *component;
}
