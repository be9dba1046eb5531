#include "eventkit/IcalRule.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace {

std::vector<int> valuesOf(std::span<const short> list)
{
    return {list.begin(), std::find(list.begin(), list.end(), short(ICAL_RECURRENCE_ARRAY_MAX))};
}

/// In the order of the week: the library puts long lists into no order that could be relied on.
std::vector<EKRecurrenceDayOfWeek> daysOf(std::span<const short> list, EKWeekday weekStart)
{
    std::vector<EKRecurrenceDayOfWeek> days;
    for (const int code : valuesOf(list)) {
        const auto day = static_cast<short>(code);
        days.push_back({static_cast<EKWeekday>(icalrecurrencetype_day_day_of_week(day)),
                        icalrecurrencetype_day_position(day)});
    }
    const auto place = [weekStart](const EKRecurrenceDayOfWeek &day) {
        const int daysIntoWeek = static_cast<int>(day.dayOfTheWeek) - static_cast<int>(weekStart);
        return std::pair((daysIntoWeek + daysOfAWeek) % daysOfAWeek, day.weekNumber);
    };
    std::sort(days.begin(), days.end(),
              [&](const auto &one, const auto &other) { return place(one) < place(other); });
    return days;
}

void takeUntil(RecurrencePattern &pattern, const icaltimetype &written)
{
    if (icaltime_is_null_time(written))
        return;
    const icaltimetype until = icaltime_normalize(written);
    const WallClock clock{until.year, until.month, until.day, until.hour, until.minute, until.second};
    if (icaltime_is_utc(until)) {
        pattern.until = Date::fromUnixSeconds(static_cast<double>(clock.seconds()));
        return;
    }
    pattern.localUntil = clock;
    pattern.isUntilDate = until.is_date != 0;
}

RecurrencePattern patternOf(const icalrecurrencetype &rule)
{
    RecurrencePattern pattern;
    pattern.frequency = static_cast<RecurrenceUnit>(rule.freq);
    pattern.interval = rule.interval;
    if (rule.week_start != ICAL_NO_WEEKDAY)
        pattern.weekStart = static_cast<EKWeekday>(rule.week_start);
    pattern.count = rule.count;
    takeUntil(pattern, rule.until);
    pattern.bySetPos = valuesOf(rule.by_set_pos);
    pattern.byYearDay = valuesOf(rule.by_year_day);
    pattern.byMonth = valuesOf(rule.by_month);
    pattern.byWeekNo = valuesOf(rule.by_week_no);
    pattern.byMonthDay = valuesOf(rule.by_month_day);
    pattern.byDay = daysOf(rule.by_day, pattern.weekStart);
    pattern.byHour = valuesOf(rule.by_hour);
    pattern.byMinute = valuesOf(rule.by_minute);
    pattern.bySecond = valuesOf(rule.by_second);
    return pattern.withoutInvalidValues();
}

icalrecurrencetype readRule(const QString &body)
{
    return icalrecurrencetype_from_string(body.toLatin1().constData());
}

/// Whether the library takes a value on its own. It refuses a whole rule for one value out of range.
bool isReadable(const QString &key, const QString &value)
{
    if (key == QStringLiteral("COUNT") || key == QStringLiteral("INTERVAL")) {
        // The library lets these overflow.
        bool fits = false;
        if (value.toInt(&fits) < 1 || !fits)
            return false;
    }
    const bool isFrequency = key == QStringLiteral("FREQ");
    const QString rule = QStringLiteral("%1=%2").arg(key, value);
    return readRule(isFrequency ? rule : QStringLiteral("FREQ=YEARLY;") + rule).freq != ICAL_NO_RECURRENCE;
}

/// The rule without the parts and values that nobody can read. A key that comes twice counts once, and of
/// COUNT and UNTIL the first.
QString withoutUnreadable(const QString &body)
{
    static const QStringList keys =
        QStringLiteral("FREQ UNTIL COUNT INTERVAL WKST BYSECOND BYMINUTE BYHOUR BYDAY BYMONTHDAY BYYEARDAY "
                       "BYWEEKNO BYMONTH BYSETPOS")
            .split(u' ');
    QStringList seen;
    QStringList parts;
    for (const QString &part : body.toUpper().split(u';')) {
        const QString key = part.section(u'=', 0, 0).trimmed();
        if (!keys.contains(key) || seen.contains(key))
            continue;
        QStringList values;
        for (const QString &value : part.section(u'=', 1).split(u',', Qt::SkipEmptyParts))
            if (isReadable(key, value.trimmed()))
                values.append(value.trimmed());
        values.removeDuplicates();
        // A list may be longer than the library has room for.
        while (!values.isEmpty() && !isReadable(key, values.join(u',')))
            values.removeLast();
        if (values.isEmpty())
            continue;
        seen.append(key);
        if (key == QStringLiteral("COUNT") || key == QStringLiteral("UNTIL"))
            seen << QStringLiteral("COUNT") << QStringLiteral("UNTIL");
        parts.append(key + u'=' + values.join(u','));
    }
    return parts.join(u';');
}

} // namespace

std::optional<RecurrencePattern> RecurrencePattern::fromText(const QString &body)
{
    const icalrecurrencetype rule = readRule(withoutUnreadable(body));
    if (rule.freq == ICAL_NO_RECURRENCE)
        return std::nullopt;
    return patternOf(rule);
}

QString RecurrencePattern::text() const
{
    icalrecurrencetype rule = icalRule(withoutInvalidValues());
    char *text = icalrecurrencetype_as_string_r(&rule);
    QString body = QString::fromLatin1(text);
    icalmemory_free_buffer(text);
    return body;
}
