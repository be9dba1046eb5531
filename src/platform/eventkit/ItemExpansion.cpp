#include "eventkit/ItemExpansion.h"

#include "eventkit/RecurrenceExpander.h"
#include "eventkit/WallClockZone.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

namespace {

/// Occurrences of a series by key, before edited ones take their places.
using Starts = std::map<qint64, ItemOccurrence>;

qint64 keyOf(const ItemPart &master, const RecurrenceInstance &instance)
{
    return master.times.isAllDay() ? instance.wallClock.seconds()
                                   : static_cast<qint64>(std::floor(instance.date.unixSeconds()));
}

Date endOf(const ItemPart &master, const RecurrenceInstance &instance)
{
    IcalTime start = master.times.start;
    start.clock = instance.wallClock;
    return master.times.endOf(start);
}

RecurrenceExpander::Expansion expansionOf(const ItemPart &master, const RecurrencePattern &rule,
                                          const RecurrenceExpander::Window &window)
{
    const IcalTime &start = master.times.start;
    return RecurrenceExpander(rule, start.clock, calendarOfZone(start.clockZone())).expansion(window);
}

std::vector<RecurrenceInstance> instancesOf(const ItemPart &master, const RecurrencePattern &rule,
                                            const RecurrenceExpander::Window &window)
{
    return expansionOf(master, rule, window).instances;
}

Date endOf(const ItemPart &master, const IcalRecurrenceDate &date)
{
    if (date.end)
        return std::max(date.start.instant(), date.end->instant());
    if (date.duration)
        return ItemTimes{date.start, {}, date.duration}.endOf(date.start);
    return master.times.endOf(date.start);
}

bool isExcluded(const CalendarItem &item, qint64 key)
{
    const ItemRecurrence &recurrence = item.recurrence();
    return recurrence.excludedKeys.contains(key) ||
           (!recurrence.excludedDays.empty() &&
            recurrence.excludedDays.contains(item.timeOfKey(key).day().clock.seconds()));
}

/// The occurrences of the series itself whose start lies in the window, both bounds included.
Starts startsOf(const CalendarItem &item, const RecurrenceExpander::Window &window, bool &isWhole)
{
    const ItemPart &master = *item.master();
    const auto isInside = [&](Date date) {
        return (!window.from || date >= *window.from) && (!window.to || date <= *window.to);
    };
    Starts starts;
    const Date first = master.times.start.instant();
    if (isInside(first))
        starts[master.key] = {nullptr, master.key, first, master.times.endOf(master.times.start)};
    const auto forEachOf = [&](const std::vector<RecurrencePattern> &rules, const auto &take) {
        for (const RecurrencePattern &rule : rules) {
            const auto expansion = expansionOf(master, rule, window);
            isWhole = isWhole && expansion.isWhole;
            for (const RecurrenceInstance &instance : expansion.instances)
                take(instance);
        }
    };
    forEachOf(item.recurrence().rules, [&](const RecurrenceInstance &instance) {
        const qint64 key = keyOf(master, instance);
        starts.insert({key, {nullptr, key, instance.date, endOf(master, instance)}});
    });
    for (const IcalRecurrenceDate &date : item.recurrence().dates) {
        const IcalTime start = item.timeOfKey(item.keyOf(date.start));
        const qint64 key = item.keyOf(date.start);
        if (isInside(start.instant()))
            starts.insert({key, {nullptr, key, start.instant(), endOf(master, date)}});
    }
    forEachOf(item.recurrence().exclusionRules,
              [&](const RecurrenceInstance &instance) { starts.erase(keyOf(master, instance)); });
    std::erase_if(starts, [&](const auto &entry) { return isExcluded(item, entry.first); });
    return starts;
}

Starts startsOf(const CalendarItem &item, const RecurrenceExpander::Window &window)
{
    bool isWhole = true;
    return startsOf(item, window, isWhole);
}

/// Stretches of time from a date on, each longer than the one before, up to an end: a rule by seconds has
/// many matches in the first, one by years none in most. Ends when `isEnough` says so of a stretch's end.
void lookAhead(Date from, Date end, const std::function<bool(Date to)> &isEnough)
{
    for (double seconds = 60;; seconds *= 8) {
        const Date to = std::min(end, from + Seconds(seconds));
        if (isEnough(to) || to >= end)
            return;
    }
}

/// No occurrence is longer than this.
Seconds greatestLength(const CalendarItem &item)
{
    const ItemTimes &times = item.master()->times;
    Seconds length = times.endOf(times.start) - times.start.instant();
    for (const IcalRecurrenceDate &date : item.recurrence().dates)
        length = std::max(length, endOf(*item.master(), date) - date.start.instant());
    for (const ItemPart &range : item.ranges())
        length = std::max(length, range.times.endOf(range.times.start) - range.times.start.instant());
    // Clock changes make days longer.
    return length + Seconds(secondsOfADay);
}

/// How far before and behind a window original starts are looked for, because of edits of an occurrence and
/// all later ones that move these into it.
struct Reach
{
    Seconds before{0};
    Seconds behind{0};
};

Reach reachOf(const CalendarItem &item)
{
    Reach reach;
    for (const ItemPart &range : item.ranges()) {
        const Seconds moved = range.times.start.instant() - item.timeOfKey(range.key).instant();
        // Clock changes make it more.
        reach.before = std::max(reach.before, moved + Seconds(secondsOfADay));
        reach.behind = std::max(reach.behind, Seconds(secondsOfADay) - moved);
    }
    return reach;
}

/// As the edit of it and later ones has it, if there is one.
ItemOccurrence asEdited(const CalendarItem &item, const ItemOccurrence &original)
{
    const ItemPart *range = item.rangeOf(original.key);
    if (!range)
        return original;
    const IcalTime start = item.startIn(*range, original.key);
    return {nullptr, original.key, start.instant(), range->times.endOf(start), range};
}

ItemOccurrence occurrenceOf(const ItemPart &part)
{
    return {&part, part.key, part.times.start.instant(), part.times.endOf(part.times.start)};
}

void putInOrder(std::vector<ItemOccurrence> &found)
{
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &one, const auto &other) { return one.start < other.start; });
}

/// As far as series are looked at.
Date lastDate()
{
    return Date::fromUnixSeconds(WallClock{9999, 12, 31}.seconds());
}

/// Where a series begins, which can be a date before its start.
Date firstDate(const CalendarItem &item)
{
    Date first = item.master()->times.start.instant();
    for (const IcalRecurrenceDate &date : item.recurrence().dates)
        first = std::min(first, date.start.instant());
    return first;
}

Date dateOfKey(const CalendarItem &item, qint64 key)
{
    return item.timeOfKey(key).instant();
}

} // namespace

std::vector<ItemOccurrence> ItemExpansion::occurrences(const CalendarItem &item, const DateWindow &window)
{
    constexpr std::size_t most = 1'000'000;
    return occurrences(item, window, most).found;
}

ItemOccurrences ItemExpansion::occurrences(const CalendarItem &item, const DateWindow &window,
                                           std::size_t most)
{
    ItemOccurrences result;
    std::vector<ItemOccurrence> &found = result.found;
    Starts starts;
    if (item.master() && !item.recurrence().isEmpty()) {
        // Those that began before the window count on their own, so that they leave room for those inside.
        const Reach reach = reachOf(item);
        const Date from = window.from - reach.before;
        const Date to = window.to + reach.behind;
        starts = startsOf(item, {.from = from, .to = to, .mostInstances = most}, result.isWhole);
        const Date earliest = from - greatestLength(item);
        starts.merge(startsOf(item, {.from = earliest, .to = from, .mostInstances = most}, result.isWhole));
    } else if (item.master() && !(item.isSeries() && isExcluded(item, item.master()->key))) {
        // Of an event without a rule beside edited occurrences, the exclusion is how it was deleted.
        const ItemTimes &times = item.master()->times;
        starts[item.master()->key] = {nullptr, item.master()->key, times.start.instant(),
                                      times.endOf(times.start)};
    }
    for (const ItemPart &part : item.detached())
        starts.erase(part.key);
    for (const auto &[key, original] : starts)
        if (const ItemOccurrence own = asEdited(item, original); window.overlaps(own.start, own.end))
            found.push_back(own);
    for (const ItemPart &part : item.detached())
        if (const ItemOccurrence moved = occurrenceOf(part); window.overlaps(moved.start, moved.end))
            found.push_back(moved);
    putInOrder(found);
    return result;
}

std::optional<ItemOccurrence> ItemExpansion::occurrence(const CalendarItem &item, qint64 key)
{
    for (const ItemPart &part : item.detached())
        if (part.key == key)
            return occurrenceOf(part);
    if (!item.master())
        return std::nullopt;
    const Date start = dateOfKey(item, key);
    const Starts starts = startsOf(item, {.from = start, .to = start});
    if (const auto found = starts.find(key); found != starts.end())
        return asEdited(item, found->second);
    return asEdited(item, {nullptr, key, start, item.master()->times.endOf(item.timeOfKey(key))});
}

std::optional<ItemOccurrence> ItemExpansion::first(const CalendarItem &item)
{
    std::vector<ItemOccurrence> candidates;
    for (const ItemPart &part : item.detached())
        candidates.push_back(occurrenceOf(part));
    if (item.master()) {
        // Ever more of the series, until one is found that nobody has edited or excluded.
        const Date start = item.master()->times.start.instant();
        lookAhead(start, item.recurrence().isEmpty() ? start : lastDate(), [&](Date to) {
            Starts starts = startsOf(item, {.to = to});
            for (const ItemPart &part : item.detached())
                starts.erase(part.key);
            for (const auto &[key, original] : starts)
                candidates.push_back(asEdited(item, original));
            return !starts.empty();
        });
    }
    putInOrder(candidates);
    return candidates.empty() ? std::nullopt : std::optional(candidates.front());
}

bool ItemExpansion::hasOccurrenceBefore(const CalendarItem &item, qint64 key)
{
    for (const ItemPart &part : item.detached())
        if (part.key < key)
            return true;
    if (!item.master())
        return false;
    // The first that is left will do.
    bool isBefore = false;
    lookAhead(firstDate(item), dateOfKey(item, key), [&](Date to) {
        const Starts starts = startsOf(item, {.to = to});
        isBefore = !starts.empty() && starts.begin()->first < key;
        return !starts.empty();
    });
    return isBefore;
}

bool ItemExpansion::hasOther(const CalendarItem &item, qint64 key)
{
    const auto isOther = [key](const auto &part) { return part.key != key; };
    if (std::any_of(item.detached().begin(), item.detached().end(), isOther) ||
        hasOccurrenceBefore(item, key))
        return true;
    return next(item, key).has_value();
}

std::optional<qint64> ItemExpansion::next(const CalendarItem &item, qint64 key)
{
    if (!item.master() || item.recurrence().isEmpty())
        return std::nullopt;
    const Date from = dateOfKey(item, key);
    std::optional<qint64> found;
    lookAhead(from, lastDate(), [&](Date to) {
        Starts starts = startsOf(item, {.from = from, .to = to});
        for (const ItemPart &part : item.detached())
            starts.erase(part.key);
        const auto later = starts.upper_bound(key);
        if (later != starts.end())
            found = later->first;
        return found.has_value();
    });
    return found;
}

OptionalDate ItemExpansion::lastStart(const CalendarItem &item)
{
    constexpr std::size_t most = 10'000;
    if (!item.master())
        return std::nullopt;
    const ItemOccurrences all = occurrences(item, {.from = firstDate(item), .to = lastDate()}, most);
    return all.isWhole && !all.found.empty() ? OptionalDate(all.found.back().start) : std::nullopt;
}

bool ItemExpansion::contains(const CalendarItem &item, qint64 key)
{
    if (!item.master())
        return false;
    const Date start = dateOfKey(item, key);
    return startsOf(item, {.from = start, .to = start}).contains(key);
}

std::optional<qint64> ItemExpansion::nextMatch(const CalendarItem &item, qint64 key)
{
    std::optional<qint64> next;
    for (const RecurrencePattern &rule : item.recurrence().rules) {
        // One may lie a little before the occurrence, where the clocks are set back.
        const auto instances =
            instancesOf(*item.master(), rule, {.from = dateOfKey(item, key), .mostInstances = 2});
        for (const RecurrenceInstance &instance : instances)
            if (const qint64 own = keyOf(*item.master(), instance); own >= key && (!next || own < *next))
                next = own;
    }
    return next;
}

int ItemExpansion::matchesBefore(const CalendarItem &item, const RecurrencePattern &rule, qint64 key)
{
    const ItemPart &master = *item.master();
    const auto instances = instancesOf(master, rule, {.to = dateOfKey(item, key)});
    return static_cast<int>(std::count_if(instances.begin(), instances.end(), [&](const auto &instance) {
        return keyOf(master, instance) < key;
    }));
}
