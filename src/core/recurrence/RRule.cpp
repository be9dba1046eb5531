#include "recurrence/RRule.h"

#include "eventkit/UtcDateTime.h"
#include "foundation/Log.h"

#include <QStringList>

namespace {

const QString lineMark = QStringLiteral("RRULE:");
const QString startKey = QStringLiteral("DTSTART");
const QString frequencyPart = QStringLiteral("FREQ");
const QString untilPart = QStringLiteral("UNTIL");
const QString countPart = QStringLiteral("COUNT");

/// The days of a list in letters. A digit is a day too, from "0" for Monday to "6" for Sunday; a day with a
/// position is none here.
QString lettersOf(const QString &days)
{
    static const QStringList ofDigits = QStringLiteral("MO TU WE TH FR SA SU").split(u' ');
    QStringList letters;
    for (const QString &day : days.split(u',')) {
        if (day.size() == 1)
            letters << ofDigits.value(QStringLiteral("0123456").indexOf(day));
        else if (day.size() == 2)
            letters << day;
    }
    return letters.join(u',');
}

/// What of a rule is read: the start is no part of a pattern.
struct ReadRule
{
    RecurrencePattern pattern;
    bool hasFrequency = false;
    OptionalDate start;

    void readPart(const QString &key, const QString &value)
    {
        if (key == startKey)
            readStart(value);
        else if (key == untilPart)
            readUntil(value);
        else if (key == frequencyPart)
            hasFrequency = pattern.readPart(key, value);
        else if (key == QStringLiteral("BYDAY") || key == QStringLiteral("WKST"))
            pattern.readPart(key, lettersOf(value));
        else if (pattern.readPart(key, value) && key == countPart)
            pattern.until.reset();
    }

private:
    void readStart(const QString &value)
    {
        if (const OptionalDate written = UtcDateTime::date(value))
            start = written;
    }
    /// Of an end by date and one by count the later part of the text counts.
    void readUntil(const QString &value)
    {
        if (const OptionalDate until = UtcDateTime::date(value)) {
            pattern.until = until;
            pattern.count = 0;
        }
    }
};

} // namespace

std::optional<RecurrenceRule> RRule::ruleFromString(const QString &string)
{
    const QString trimmed = string.trimmed();
    if (!trimmed.startsWith(lineMark))
        return std::nullopt;
    ReadRule read;
    for (const QString &piece : trimmed.mid(lineMark.size()).split(u';')) {
        const QStringList sides = piece.split(u'=');
        if (sides.size() == 2 && !sides.at(1).isEmpty())
            read.readPart(sides.at(0), sides.at(1));
    }
    if (!read.hasFrequency) {
        Log::line(QStringLiteral("error: invalid frequency"));
        return std::nullopt;
    }
    RecurrenceRule rule = RecurrenceRule::fromPattern(read.pattern);
    if (read.start)
        rule.startDate = *read.start;
    return rule;
}

QString RRule::stringFromRule(const RecurrenceRule &rule)
{
    static const QStringList keys =
        QStringLiteral("FREQ INTERVAL WKST DTSTART UNTIL COUNT BYSETPOS BYYEARDAY "
                       "BYMONTH BYWEEKNO BYMONTHDAY BYDAY BYHOUR BYMINUTE BYSECOND")
            .split(u' ');
    const RecurrencePattern pattern = rule.pattern();
    QStringList parts;
    for (const QString &key : keys) {
        const QString value = key == startKey ? UtcDateTime::string(rule.startDate) : pattern.part(key);
        if (!value.isEmpty())
            parts << key + u'=' + value;
    }
    return lineMark + parts.join(u';');
}
