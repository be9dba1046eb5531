#include "eventkit/IcalTime.h"

#include "eventkit/RecurrenceExpander.h"
#include "eventkit/WallClockZone.h"

#include <QDate>

#include <libical/ical.h>

#include <cmath>

namespace {

const QByteArray utcZone = QByteArrayLiteral("UTC");

bool isInReach(const WallClock &clock)
{
    return QDate::isValid(clock.year, clock.month, clock.day) && clock.year >= 1 && clock.year <= 9999;
}

/// Hour 24 and second 60 carry over.
WallClock normalized(const WallClock &clock)
{
    return WallClock::fromSeconds(clock.seconds());
}

} // namespace

std::optional<IcalTime> IcalTime::fromText(const QByteArray &value)
{
    const QByteArray text = value.trimmed();
    const icaltimetype time = icaltime_from_string(text.constData());
    const WallClock clock{time.year, time.month, time.day, time.hour, time.minute, time.second};
    if (icaltime_is_null_time(time) || !isInReach(clock))
        return std::nullopt;
    const Form form = time.is_date ? Form::Date : icaltime_is_utc(time) ? Form::Utc : Form::Floating;
    return IcalTime{normalized(clock), form};
}

IcalTime IcalTime::of(Date date, const IcalTime &form)
{
    IcalTime time = form;
    const Date wholeSecond = Date::fromUnixSeconds(std::floor(date.unixSeconds()));
    time.clock = RecurrenceExpander::wallClockOf(wholeSecond, calendarOfZone(form.clockZone()));
    return time.isDate() ? time.day() : time;
}

QByteArray IcalTime::clockZone() const
{
    return form == Form::Utc ? utcZone : form == Form::Zoned ? zone : QByteArray();
}

Date IcalTime::instant() const
{
    return RecurrenceExpander::instantOf(clock, calendarOfZone(clockZone()));
}

IcalTime IcalTime::shifted(std::int64_t seconds) const
{
    IcalTime moved = *this;
    moved.clock = WallClock::fromSeconds(clock.seconds() + seconds);
    return isDate() ? moved.day() : moved;
}

IcalTime IcalTime::day() const
{
    return {WallClock{clock.year, clock.month, clock.day, 0, 0, 0}, Form::Date};
}

QByteArray IcalTime::text() const
{
    const auto digits = [](int number, int width) {
        return QByteArray::number(number).rightJustified(width, '0');
    };
    const QByteArray date = digits(clock.year, 4) + digits(clock.month, 2) + digits(clock.day, 2);
    if (isDate())
        return date;
    return date + 'T' + digits(clock.hour, 2) + digits(clock.minute, 2) + digits(clock.second, 2) +
           (form == Form::Utc ? "Z" : "");
}

ContentLine IcalTime::line(const QByteArray &name, const QByteArray &lineEnd) const
{
    QByteArray head = name;
    if (isDate())
        head += ";VALUE=DATE";
    else if (form == Form::Zoned)
        head += ContentLine::parameterText("TZID", tzid);
    return ContentLine::make(head, text(), lineEnd);
}

std::optional<IcalDuration> IcalDuration::fromText(const QByteArray &value)
{
    const icaldurationtype read = icaldurationtype_from_string(value.trimmed().constData());
    constexpr unsigned mostDays = 3'000'000;
    const auto seconds = std::int64_t(read.hours) * 3600 + std::int64_t(read.minutes) * 60 + read.seconds;
    if (icaldurationtype_is_bad_duration(read) || read.weeks > mostDays / 7 || read.days > mostDays ||
        seconds > std::int64_t(mostDays) * 86400)
        return std::nullopt;
    const int sign = read.is_neg ? -1 : 1;
    return IcalDuration{sign * static_cast<int>(read.weeks * 7 + read.days), sign * seconds};
}

QByteArray IcalDuration::text(int totalSeconds)
{
    char *written = icaldurationtype_as_ical_string_r(icaldurationtype_from_int(totalSeconds));
    const QByteArray text(written);
    icalmemory_free_buffer(written);
    return text;
}
