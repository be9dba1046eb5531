#include "eventkit/IcalTime.h"
#include "eventkit/RecurrenceLists.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int mostWrittenInterval = std::numeric_limits<short>::max();
constexpr double firstUntil = -62'135'596'800;
constexpr double lastUntil = 253'402'300'799;

/// In the order of `RecurrenceUnit`.
const QStringList &frequencies()
{
    static const QStringList texts =
        QStringLiteral("SECONDLY MINUTELY HOURLY DAILY WEEKLY MONTHLY YEARLY").split(u' ');
    return texts;
}

/// In the order of `EKWeekday`.
const QStringList &weekdays()
{
    static const QStringList texts = QStringLiteral("SU MO TU WE TH FR SA").split(u' ');
    return texts;
}

// Reading

/// Digits with or without a sign, nothing else around them.
std::optional<int> numberOf(QStringView text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    const bool hasSpace = std::any_of(text.begin(), text.end(), [](QChar sign) { return sign.isSpace(); });
    return isNumber && !hasSpace ? std::optional(number) : std::nullopt;
}

std::optional<EKWeekday> weekdayOf(QStringView text)
{
    const qsizetype index = weekdays().indexOf(text);
    return index < 0 ? std::nullopt : std::optional(static_cast<EKWeekday>(index + 1));
}

std::optional<EKRecurrenceDayOfWeek> dayOf(QStringView text)
{
    const auto weekday = weekdayOf(text.last(std::min<qsizetype>(2, text.size())));
    const QStringView position = text.chopped(std::min<qsizetype>(2, text.size()));
    const auto number = position.isEmpty() ? std::optional(0) : numberOf(position);
    if (!weekday || !number || std::abs(*number) > 53)
        return std::nullopt;
    return EKRecurrenceDayOfWeek{*weekday, *number};
}

bool readFrequency(RecurrencePattern &pattern, const QString &value)
{
    const qsizetype index = frequencies().indexOf(value);
    if (index >= 0)
        pattern.frequency = static_cast<RecurrenceUnit>(index);
    return index >= 0;
}

bool readInterval(RecurrencePattern &pattern, const QString &value)
{
    const auto number = numberOf(value);
    if (number)
        pattern.interval = std::max(1, *number);
    return number.has_value();
}

bool readCount(RecurrencePattern &pattern, const QString &value)
{
    // There is no rule without an occurrence.
    const auto number = numberOf(value);
    if (!number || *number < 1)
        return false;
    pattern.count = *number;
    return true;
}

/// A day that its month does not have, which some programs write, is one of the next month.
bool readUntil(RecurrencePattern &pattern, const QString &value)
{
    static const QRegularExpression form(
        QStringLiteral("^(?!0000)(\\d{4})(0[1-9]|1[0-2])(0[1-9]|[12]\\d|3[01])"
                       "(?:T([01]\\d|2[0-4])([0-5]\\d)([0-5]\\d|60)(Z?))?$"));
    const QRegularExpressionMatch match = form.match(value);
    if (!match.hasMatch())
        return false;
    const auto field = [&match](int group) { return match.capturedView(group).toInt(); };
    const std::int64_t seconds =
        WallClock{field(1), field(2), field(3), field(4), field(5), field(6)}.seconds();
    const bool isUtc = !match.capturedView(7).isEmpty();
    pattern.until = isUtc ? OptionalDate(Date::fromUnixSeconds(static_cast<double>(seconds))) : std::nullopt;
    pattern.localUntil = isUtc ? std::nullopt : std::optional(WallClock::fromSeconds(seconds));
    pattern.isUntilDate = match.capturedView(4).isEmpty();
    return true;
}

bool readWeekStart(RecurrencePattern &pattern, const QString &value)
{
    const auto day = weekdayOf(value);
    if (day)
        pattern.weekStart = *day;
    return day.has_value();
}

bool readDays(RecurrencePattern &pattern, const QString &value)
{
    pattern.byDay.clear();
    for (const QStringView entry : QStringView(value).split(u','))
        if (const auto day = dayOf(entry))
            pattern.byDay.push_back(*day);
    return !pattern.byDay.empty();
}

bool readNumbers(const RecurrenceList &list, RecurrencePattern &pattern, const QString &value)
{
    std::vector<int> &values = pattern.*list.values;
    values.clear();
    for (const QStringView entry : QStringView(value).split(u','))
        if (const auto number = numberOf(entry); number && (list.isOfTime() || list.allows(*number)))
            values.push_back(*number);
    return !values.empty();
}

// Writing

QString writtenFrequency(const RecurrencePattern &pattern)
{
    return frequencies().at(static_cast<int>(pattern.frequency));
}

QString writtenInterval(const RecurrencePattern &pattern)
{
    return QString::number(std::max(1, pattern.interval));
}

QString writtenCount(const RecurrencePattern &pattern)
{
    return pattern.count > 0 ? QString::number(pattern.count) : QString();
}

QString writtenUntil(const RecurrencePattern &pattern)
{
    IcalTime last;
    if (pattern.localUntil) {
        last.clock = *pattern.localUntil;
        last.form = pattern.isUntilDate ? IcalTime::Form::Date : IcalTime::Form::Floating;
    } else if (pattern.until) {
        const double seconds = std::clamp(std::floor(pattern.until->unixSeconds()), firstUntil, lastUntil);
        last.clock = WallClock::fromSeconds(static_cast<std::int64_t>(seconds));
        last.form = IcalTime::Form::Utc;
    } else {
        return {};
    }
    return QString::fromLatin1(last.text());
}

QString writtenWeekday(EKWeekday day)
{
    return weekdays().at(static_cast<int>(day) - 1);
}

QString writtenWeekStart(const RecurrencePattern &pattern)
{
    return writtenWeekday(pattern.weekStart);
}

QString writtenDays(const RecurrencePattern &pattern)
{
    QStringList entries;
    for (const EKRecurrenceDayOfWeek &day : pattern.byDay)
        entries.append((day.weekNumber == 0 ? QString() : QString::number(day.weekNumber)) +
                       writtenWeekday(day.dayOfTheWeek));
    return entries.join(u',');
}

QString writtenNumbers(const RecurrenceList &list, const RecurrencePattern &pattern)
{
    QStringList entries;
    for (const int value : pattern.*list.values)
        if (list.isOfTime() || list.allows(value))
            entries.append(QString::number(value));
    return entries.join(u',');
}

// The parts

/// A part that is no list of numbers.
struct RulePart
{
    QString key;
    bool (*read)(RecurrencePattern &pattern, const QString &value);
    QString (*written)(const RecurrencePattern &pattern);
};

const QString frequencyKey = QStringLiteral("FREQ");
const QString untilKey = QStringLiteral("UNTIL");
const QString countKey = QStringLiteral("COUNT");
const QString intervalKey = QStringLiteral("INTERVAL");
const QString weekStartKey = QStringLiteral("WKST");

const RulePart *partOf(const QString &key)
{
    static const std::array<RulePart, 6> parts = {{
        {frequencyKey, readFrequency, writtenFrequency},
        {untilKey, readUntil, writtenUntil},
        {countKey, readCount, writtenCount},
        {intervalKey, readInterval, writtenInterval},
        {QStringLiteral("BYDAY"), readDays, writtenDays},
        {weekStartKey, readWeekStart, writtenWeekStart},
    }};
    const auto found = std::ranges::find(parts, key, &RulePart::key);
    return found == parts.end() ? nullptr : &*found;
}

const RecurrenceList *listOf(const QString &key)
{
    const auto found = std::ranges::find_if(
        recurrenceLists, [&key](const RecurrenceList &list) { return key == QLatin1String(list.key); });
    return found == recurrenceLists.end() ? nullptr : &*found;
}

template <typename Value>
void keepFirstOfEach(std::vector<Value> &values)
{
    std::vector<Value> kept;
    for (const Value &value : values)
        if (std::ranges::find(kept, value) == kept.end())
            kept.push_back(value);
    values.swap(kept);
}

/// Valid values, each once.
RecurrencePattern tidied(const RecurrencePattern &pattern)
{
    RecurrencePattern tidy = pattern.withoutInvalidValues();
    for (const RecurrenceList &list : recurrenceLists)
        keepFirstOfEach(tidy.*list.values);
    keepFirstOfEach(tidy.byDay);
    return tidy;
}

void putInOrderOfWeek(std::vector<EKRecurrenceDayOfWeek> &days, EKWeekday weekStart)
{
    std::ranges::sort(days, {}, [weekStart](const EKRecurrenceDayOfWeek &day) {
        const int daysIntoWeek = static_cast<int>(day.dayOfTheWeek) - static_cast<int>(weekStart);
        return std::pair((daysIntoWeek + daysOfAWeek) % daysOfAWeek, day.weekNumber);
    });
}

QString withoutSpaces(const QString &list)
{
    QStringList entries = list.split(u',');
    for (QString &entry : entries)
        entry = entry.trimmed();
    return entries.join(u',');
}

} // namespace

bool RecurrencePattern::readPart(const QString &key, const QString &value)
{
    if (const RulePart *part = partOf(key))
        return part->read(*this, value);
    const RecurrenceList *list = listOf(key);
    return list && readNumbers(*list, *this, value);
}

QString RecurrencePattern::part(const QString &key) const
{
    if (const RulePart *part = partOf(key))
        return part->written(*this);
    const RecurrenceList *list = listOf(key);
    return list ? writtenNumbers(*list, *this) : QString();
}

std::optional<RecurrencePattern> RecurrencePattern::fromText(const QString &body)
{
    RecurrencePattern pattern;
    QStringList seen;
    for (const QString &part : body.toUpper().split(u';')) {
        const QString key = part.section(u'=', 0, 0).trimmed();
        const bool isEnd = key == countKey || key == untilKey;
        if (seen.contains(key) || !pattern.readPart(key, withoutSpaces(part.section(u'=', 1))))
            continue;
        seen += isEnd ? QStringList{countKey, untilKey} : QStringList{key};
    }
    if (!seen.contains(frequencyKey))
        return std::nullopt;
    pattern = tidied(pattern);
    putInOrderOfWeek(pattern.byDay, pattern.weekStart);
    return pattern;
}

QString RecurrencePattern::text() const
{
    static const QStringList keys = QStringLiteral("FREQ UNTIL COUNT INTERVAL BYSECOND BYMINUTE BYHOUR BYDAY "
                                                   "BYMONTHDAY BYYEARDAY BYWEEKNO BYMONTH BYSETPOS WKST")
                                        .split(u' ');
    RecurrencePattern tidy = tidied(*this);
    tidy.interval = std::min(tidy.interval, mostWrittenInterval);
    const auto isSaid = [&tidy](const QString &key) {
        return (key != intervalKey || tidy.interval > 1) && (key != untilKey || tidy.count == 0) &&
               (key != weekStartKey || tidy.weekStart != EKWeekday::Monday);
    };
    QStringList parts;
    for (const QString &key : keys)
        if (const QString value = tidy.part(key); !value.isEmpty() && isSaid(key))
            parts.append(key + u'=' + value);
    return parts.join(u';');
}
