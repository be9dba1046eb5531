#include "records/dates/MTDates.h"

#include <QStringList>

#include <array>
#include <cmath>

struct SpanUnit
{
    qint64 seconds;
    QStringView one;
    QStringView many;
};

/// The month is 210 days long: the wordings have always counted so.
static constexpr std::array<SpanUnit, 5> spanUnits = {{
    {18'144'000, u"month", u"months"},
    {86'400, u"day", u"days"},
    {3'600, u"hour", u"hours"},
    {60, u"minute", u"minutes"},
    {1, u"second", u"seconds"},
}};

static const SpanUnit &secondsUnit()
{
    return spanUnits.back();
}

/// Whole units from the largest down, those of count 0 left out; `word` gives what stands after the number.
template <typename Word>
static QString peeledOff(double seconds, Word word)
{
    QStringList parts;
    auto left = static_cast<qint64>(std::abs(seconds));
    for (const SpanUnit &unit : spanUnits) {
        const qint64 count = left / unit.seconds;
        left %= unit.seconds;
        if (const QString name = word(unit, count); count > 0 && !name.isEmpty())
            parts.append(QString::number(count) + QLatin1Char(' ') + name);
    }
    return parts.join(QStringLiteral(", "));
}

QString MTDates::stringFromDateWithGreatestComponentsForSecondsPassed(double seconds)
{
    const QString span =
        peeledOff(seconds, [](const SpanUnit &unit, qint64) { return unit.many.toString(); });
    return (seconds < 0 ? QStringLiteral("%1 before") : QStringLiteral("%1 after")).arg(span);
}

QString MTDates::stringFromDateWithGreatestComponentsUntilDate(Date date, Date untilDate)
{
    const double seconds = (untilDate - date).count();
    const QString span = peeledOff(seconds, [](const SpanUnit &unit, qint64 count) {
        if (&unit == &secondsUnit())
            return QString();
        return (count == 1 ? unit.one : unit.many).toString();
    });
    return (seconds < 0 ? QStringLiteral("%1 Ago") : QStringLiteral("In %1")).arg(span);
}
