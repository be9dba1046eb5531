#include "eventkit/SeriesParts.h"

#include "eventkit/EventPeriod.h"
#include "eventkit/EventWriting.h"

#include <array>

namespace {

IcalTime movedDate(const IcalTime &time, const SeriesMove &move)
{
    if (!time.isDate() || move.formerStart.isDate())
        return move.moved(time);
    // A whole day is excluded from a series with times: it moves by the days by which the start does.
    const IcalTime start = move.moved(move.formerStart);
    const std::int64_t days =
        (start.day().clock.seconds() - move.formerStart.day().clock.seconds()) / secondsOfADay;
    return time.shifted(days * secondsOfADay);
}

QByteArray textOf(const IcalRecurrenceDate &date, const QByteArray &written, const SeriesMove &move)
{
    const QByteArray start = movedDate(date.start, move).text();
    if (date.end)
        return start + '/' + movedDate(*date.end, move).text();
    return date.duration ? start + written.mid(written.indexOf('/')) : start;
}

QByteArray headOf(const QByteArray &name, const IcalRecurrenceDate &date, const SeriesMove &move,
                  const QByteArray &lineEnd)
{
    const QByteArray head = movedDate(date.start, move).line(name, lineEnd).head();
    const bool isPeriod = date.end || date.duration;
    return isPeriod ? head + ";VALUE=PERIOD" : head;
}

/// Nothing if no date of the line is left.
std::optional<ContentLine> rewritten(const ContentLine &line, const CalendarItem &item,
                                     const std::function<bool(qint64)> &isKept, const SeriesMove &move)
{
    const QList<QByteArray> values = line.value().split(',');
    QList<QByteArray> kept;
    QByteArray head = line.head();
    for (const QByteArray &value : values) {
        const auto dates = item.zones().recurrenceDates(line.withValue(value));
        if (!dates.empty() && !isKept(item.keyOf(dates.front().start)))
            continue;
        const bool isAsItWas = dates.empty() || move.isNone();
        kept.append(isAsItWas ? value : textOf(dates.front(), value, move));
        if (!isAsItWas)
            head = headOf(line.name(), dates.front(), move, line.lineEnd());
    }
    if (kept.isEmpty())
        return std::nullopt;
    return kept == values ? line : ContentLine::make(head, kept.join(','), line.lineEnd());
}

bool isWeighty(const IcalComponent &component, const IcalComponent &former)
{
    static const std::array<QByteArray, 8> names = {"DTSTART", "DTEND",  "DURATION",      "RRULE",
                                                    "RDATE",   "EXDATE", "RECURRENCE-ID", "LOCATION"};
    const auto texts = [](const IcalComponent &one, const QByteArray &name) {
        QByteArray text;
        for (const ContentLine *line : one.lines(name))
            text += line->raw();
        return text;
    };
    return std::any_of(names.begin(), names.end(),
                       [&](const QByteArray &name) { return texts(component, name) != texts(former, name); });
}

} // namespace

void rewriteDates(IcalComponent &component, const QByteArray &name, const CalendarItem &item,
                  const std::function<bool(qint64 key)> &isKept, const SeriesMove &move)
{
    std::vector<ContentLine> lines;
    for (const ContentLine *line : component.lines(name))
        if (const auto kept = rewritten(*line, item, isKept, move))
            lines.push_back(*kept);
    component.replaceLines(name, lines);
}

void rewriteRules(IcalComponent &component, const QByteArray &name,
                  const std::function<std::optional<QByteArray>(const QByteArray &body)> &rewrite)
{
    std::vector<ContentLine> lines;
    for (const ContentLine *line : component.lines(name)) {
        const QByteArray body = line->value();
        if (const auto rule = rewrite(body))
            lines.push_back(*rule == body ? *line : line->withValue(*rule));
    }
    component.replaceLines(name, lines);
}

void writeRecurrenceId(IcalComponent &component, const IcalTime &time, const ItemPart &part)
{
    const QByteArray name = "RECURRENCE-ID";
    writeTime(component, name, time, part.recurrenceId);
    const ContentLine *line = component.line(name);
    if (part.coversFuture && line->parameter("RANGE").isNull())
        component.replaceLines(name,
                               {component.makeLine(line->head() + ";RANGE=THISANDFUTURE", line->value())});
}

QByteArray textOf(const IcalComponent &component)
{
    QByteArray text;
    component.writeTo(text);
    return text;
}

void markIfChanged(IcalComponent &component, const IcalComponent &former)
{
    if (textOf(component) != textOf(former))
        markChanged(component,
                    isWeighty(component, former) ? ChangeWeight::Significant : ChangeWeight::Minor);
}

CalendarItemPointer itemOf(const IcalDocument &document)
{
    const auto item = CalendarItem::fromText(document.text());
    return item ? item.value() : nullptr;
}
