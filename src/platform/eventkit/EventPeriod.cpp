#include "eventkit/EventPeriod.h"

#include "eventkit/VTimeZone.h"
#include "eventkit/WallClockZone.h"
#include "foundation/Region.h"

#include <algorithm>
#include <cmath>

namespace {

bool isSameForm(const IcalTime &one, const IcalTime &other)
{
    return one.form == other.form && one.tzid == other.tzid;
}

qint64 wholeSeconds(Date date)
{
    return static_cast<qint64>(std::floor(date.unixSeconds()));
}

bool isUtcName(const QByteArray &zone)
{
    return zone == "UTC" || zone == "Etc/UTC" || zone == "GMT" || zone == "Z";
}

} // namespace

void writeTime(IcalComponent &component, const QByteArray &name, const IcalTime &time,
               const std::optional<IcalTime> &former)
{
    if (former && isSameForm(*former, time) && component.line(name))
        component.setValue(name, time.text());
    else
        component.replaceLines(name, {time.line(name, component.lineEnd())});
}

EventPeriod EventPeriod::of(const EKEvent &event, const IcalTime &form)
{
    const IcalTime start = IcalTime::of(*event.startDate, form);
    if (!form.isDate())
        return {start, std::max<qint64>(0, wholeSeconds(*event.endDate) - wholeSeconds(*event.startDate))};
    const IcalTime last = IcalTime::of(*event.endDate, form);
    return {start, std::max<qint64>(0, last.clock.seconds() - start.clock.seconds()) / secondsOfADay + 1};
}

EventPeriod EventPeriod::of(const ItemTimes &times)
{
    if (times.isAllDay())
        return {times.start, times.days()};
    return {times.start, wholeSeconds(times.endOf(times.start)) - wholeSeconds(times.start.instant())};
}

void EventPeriod::writeTo(IcalComponent &component) const
{
    const QByteArray lineEnd = component.lineEnd();
    component.addLine(start.line("DTSTART", lineEnd));
    if (start.isDate())
        component.addLine(start.shifted(length * secondsOfADay).line("DTEND", lineEnd));
    else if (length > 0)
        component.addLine(
            IcalTime::of(start.instant() + Seconds(double(length)), start).line("DTEND", lineEnd));
}

void EventPeriod::writeTo(IcalComponent &component, const ItemTimes &former) const
{
    const EventPeriod present = EventPeriod::of(former);
    const bool keepsForm = isSameForm(start, former.start);
    if (present == *this)
        return;
    writeTime(component, "DTSTART", start, former.start);
    const bool keepsLength = keepsForm && present.length == length;
    if (keepsLength && !former.end)
        return;
    component.removeLines("DURATION");
    if (!start.isDate() && length == 0) {
        component.removeLines("DTEND");
        return;
    }
    const IcalTime endForm =
        keepsForm && former.end && former.end->isDate() == start.isDate() ? *former.end : start;
    const IcalTime end = start.isDate() ? start.shifted(length * secondsOfADay)
                                        : IcalTime::of(start.instant() + Seconds(double(length)), endForm);
    writeTime(component, "DTEND", end, former.end);
}

IcalTime timeFormOfZone(const QByteArray &zone)
{
    IcalTime form;
    form.form = IcalTime::Form::Utc;
    if (isUtcName(zone) || !isKnownZone(zone))
        return form;
    form.form = IcalTime::Form::Zoned;
    form.tzid = form.zone = zone;
    return form;
}

IcalTime timeFormOf(const EKEvent &before, const EKEvent &after, const IcalTime &former)
{
    if (after.allDay)
        return IcalTime{{}, IcalTime::Form::Date};
    if (!former.isDate() && after.timeZone == before.timeZone)
        return former;
    return timeFormOfZone(after.timeZone.isEmpty() ? Region::zoneIdentifier() : after.timeZone);
}

void describeZone(IcalComponent &calendar, const IcalTime &time)
{
    if (time.form != IcalTime::Form::Zoned)
        return;
    for (const IcalComponent *child : calendar.children())
        if (child->name() == "VTIMEZONE" && child->value("TZID") == time.tzid)
            return;
    if (const auto zone = timeZoneComponent(time.zone, time.tzid, time.instant(), calendar.lineEnd()))
        calendar.prependChild(*zone);
}
