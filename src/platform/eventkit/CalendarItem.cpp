#include "eventkit/CalendarItem.h"

#include "eventkit/CalendarError.h"
#include "eventkit/IcalText.h"
#include "eventkit/RuleLines.h"
#include "eventkit/WallClockZone.h"

#include <algorithm>
#include <cmath>

namespace {

qint64 secondsOf(Date date)
{
    return static_cast<qint64>(std::floor(date.unixSeconds()));
}

Error unreadable(const QString &reason)
{
    return CalendarError::make(CalendarError::Unreadable, reason);
}

std::vector<RecurrencePattern> rulesOf(const IcalComponent &component, const QByteArray &name,
                                       const ItemTimes &times)
{
    std::vector<RecurrencePattern> rules;
    for (const ContentLine *line : component.lines(name))
        if (const auto rule = RecurrencePattern::fromText(QString::fromLatin1(line->value())))
            rules.push_back(times.isAllDay() ? rule->ofWholeDays() : *rule);
    return rules;
}

} // namespace

CalendarItem::CalendarItem(const QByteArray &text, IcalDocument document)
    : originalText(text)
    , source(std::move(document))
    , zoneReader(source.calendar())
{}

Result<CalendarItemPointer> CalendarItem::fromText(const QByteArray &text)
{
    auto document = IcalDocument::fromText(text);
    if (!document)
        return document.error();
    const std::shared_ptr<CalendarItem> item(new CalendarItem(text, std::move(*document)));
    if (auto error = item->takeComponents())
        return *error;
    if (!item->series && item->edited.empty())
        return CalendarItemPointer();
    item->takeRecurrence();
    return CalendarItemPointer(item);
}

OptionalError CalendarItem::takeComponents()
{
    const std::vector<const IcalComponent *> components = source.calendar().children();
    for (std::size_t index = 0; index < components.size(); ++index) {
        const QByteArray &name = components[index]->name();
        if (name != "VEVENT" && name != "VTODO")
            continue;
        if (auto error = take(index, *components[index]))
            return error;
    }
    // What belongs together is told apart by the terms of the series, which are known only now.
    for (ItemPart &part : edited)
        part.key = keyOf(*part.recurrenceId);
    if (series)
        series->key = keyOf(series->times.start);
    takeRanges();
    return std::nullopt;
}

void CalendarItem::takeRanges()
{
    // Without the series nobody knows what the later occurrences are.
    if (!series || kind != EKEntityType::Event)
        return;
    const auto firstRange = std::stable_partition(edited.begin(), edited.end(),
                                                  [](const ItemPart &part) { return !part.coversFuture; });
    futureEdits.assign(firstRange, edited.end());
    edited.erase(firstRange, edited.end());
    std::ranges::stable_sort(futureEdits, {}, &ItemPart::key);
}

std::vector<const ItemPart *> CalendarItem::edits() const
{
    std::vector<const ItemPart *> parts;
    for (const auto *list : {&edited, &futureEdits})
        for (const ItemPart &part : *list)
            parts.push_back(&part);
    return parts;
}

const ItemPart *CalendarItem::rangeOf(qint64 key) const
{
    const auto next = std::ranges::upper_bound(futureEdits, key, {}, &ItemPart::key);
    return next == futureEdits.begin() ? nullptr : &*std::prev(next);
}

IcalTime CalendarItem::startIn(const ItemPart &range, qint64 key) const
{
    return moveOf(*this, range).moved(timeOfKey(key));
}

OptionalError CalendarItem::take(std::size_t childIndex, const IcalComponent &component)
{
    const QString uid = IcalText::fromBytes(component.value("UID")).trimmed();
    const EKEntityType type = component.name() == "VTODO" ? EKEntityType::Reminder : EKEntityType::Event;
    const bool isFirst = !series && edited.empty();
    if (uid.isEmpty())
        return unreadable(QStringLiteral("an event in it has no UID"));
    if (!identifier.isEmpty() && identifier != uid)
        return unreadable(QStringLiteral("it holds events with more than one UID"));
    if (!isFirst && kind != type)
        return unreadable(QStringLiteral("it holds an event and a reminder with one UID"));
    identifier = uid;
    const ContentLine *recurrenceLine = component.line("RECURRENCE-ID");
    if (recurrenceLine && !zoneReader.time(recurrenceLine))
        return unreadable(QStringLiteral("an edited occurrence in it does not say which one it is"));
    const auto times = timesOf(component);
    if (!times && type == EKEntityType::Event)
        return std::nullopt;
    kind = type;
    ItemPart part{childIndex, times.value_or(ItemTimes()), zoneReader.time(recurrenceLine)};
    if (part.recurrenceId) {
        part.coversFuture = recurrenceLine->parameter("RANGE").trimmed().toUpper() == "THISANDFUTURE";
        edited.push_back(std::move(part));
        return std::nullopt;
    }
    if (series)
        return unreadable(QStringLiteral("it holds two events with one UID"));
    series = std::move(part);
    return std::nullopt;
}

std::optional<ItemTimes> CalendarItem::timesOf(const IcalComponent &component) const
{
    auto start = zoneReader.time(component.line("DTSTART"));
    // An edited occurrence that does not say when it is has not been moved.
    if (!start)
        start = zoneReader.time(component.line("RECURRENCE-ID"));
    if (!start)
        return std::nullopt;
    const auto end = zoneReader.time(component.line("DTEND"));
    const QByteArray duration = component.value("DURATION");
    return ItemTimes{*start, end, end || duration.isNull() ? std::nullopt : IcalDuration::fromText(duration)};
}

void CalendarItem::takeRecurrence()
{
    if (!series || kind != EKEntityType::Event)
        return;
    const IcalComponent &component = this->component(*series);
    repetition.rules = rulesOf(component, "RRULE", series->times);
    repetition.exclusionRules = rulesOf(component, "EXRULE", series->times);
    for (const ContentLine *line : component.lines("RDATE"))
        for (const IcalRecurrenceDate &date : zoneReader.recurrenceDates(*line))
            repetition.dates.push_back(date);
    for (const ContentLine *line : component.lines("EXDATE"))
        for (const IcalTime &time : zoneReader.times(*line)) {
            if (time.isDate())
                repetition.excludedDays.insert(time.clock.seconds());
            else
                repetition.excludedKeys.insert(keyOf(time));
        }
}

const IcalComponent &CalendarItem::component(const ItemPart &part) const
{
    return *source.calendar().children().at(part.childIndex);
}

qint64 CalendarItem::keyOf(const IcalTime &original) const
{
    const std::optional<IcalTime> start = series ? std::optional(series->times.start) : std::nullopt;
    if (!start)
        return original.isDate() ? original.clock.seconds() : secondsOf(original.instant());
    if (start->isDate())
        return original.day().clock.seconds();
    if (!original.isDate())
        return secondsOf(original.instant());
    IcalTime onThatDay = *start;
    const std::int64_t timeOfDay = start->clock.seconds() - start->day().clock.seconds();
    onThatDay.clock = WallClock::fromSeconds(original.clock.seconds() + timeOfDay);
    return secondsOf(onThatDay.instant());
}

IcalTime CalendarItem::timeOfKey(qint64 key) const
{
    IcalTime form;
    if (series)
        form = series->times.start;
    else if (!edited.empty())
        form = *edited.front().recurrenceId;
    if (!form.isDate()) {
        const IcalTime shown = IcalTime::of(Date::fromUnixSeconds(double(key)), form);
        // Where clocks were set forward the series may mean a time that they did not show.
        const std::int64_t timeOfDay = form.clock.seconds() - form.day().clock.seconds();
        IcalTime meant = form;
        meant.clock = WallClock::fromSeconds(shown.day().clock.seconds() + timeOfDay);
        return secondsOf(meant.instant()) == key ? meant : shown;
    }
    form.clock = WallClock::fromSeconds(key);
    return form;
}
