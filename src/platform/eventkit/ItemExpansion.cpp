#include "eventkit/ItemExpansion.h"

#include "eventkit/RecurrenceExpander.h"
#include "eventkit/WallClockZone.h"

#include <algorithm>
#include <cmath>
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

std::vector<RecurrenceInstance> instancesOf(const ItemPart &master, const RecurrencePattern &rule,
                                            const RecurrenceExpander::Window &window)
{
    const IcalTime &start = master.times.start;
    return RecurrenceExpander(rule, start.clock, calendarOfZone(start.clockZone())).instances(window);
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
Starts startsOf(const CalendarItem &item, const RecurrenceExpander::Window &window)
{
    const ItemPart &master = *item.master();
    const auto isInside = [&](Date date) {
        return (!window.from || date >= *window.from) && (!window.to || date <= *window.to);
    };
    Starts starts;
    const Date first = master.times.start.instant();
    if (isInside(first))
        starts[master.key] = {nullptr, master.key, first, master.times.endOf(master.times.start)};
    for (const RecurrencePattern &rule : item.recurrence().rules)
        for (const RecurrenceInstance &instance : instancesOf(master, rule, window)) {
            const qint64 key = keyOf(master, instance);
            starts.insert({key, {nullptr, key, instance.date, endOf(master, instance)}});
        }
    for (const IcalRecurrenceDate &date : item.recurrence().dates) {
        const IcalTime start = item.timeOfKey(item.keyOf(date.start));
        const qint64 key = item.keyOf(date.start);
        if (isInside(start.instant()))
            starts.insert({key, {nullptr, key, start.instant(), endOf(master, date)}});
    }
    for (const RecurrencePattern &rule : item.recurrence().exclusionRules)
        for (const RecurrenceInstance &instance : instancesOf(master, rule, window))
            starts.erase(keyOf(master, instance));
    std::erase_if(starts, [&](const auto &entry) { return isExcluded(item, entry.first); });
    return starts;
}

/// No occurrence is longer than this.
Seconds greatestLength(const CalendarItem &item)
{
    const ItemTimes &times = item.master()->times;
    Seconds length = times.endOf(times.start) - times.start.instant();
    for (const IcalRecurrenceDate &date : item.recurrence().dates)
        length = std::max(length, endOf(*item.master(), date) - date.start.instant());
    // Clock changes make days longer.
    return length + Seconds(secondsOfADay);
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

Date dateOfKey(const CalendarItem &item, qint64 key)
{
    return item.timeOfKey(key).instant();
}

} // namespace

std::vector<ItemOccurrence> ItemExpansion::occurrences(const CalendarItem &item, const DateWindow &window)
{
    std::vector<ItemOccurrence> found;
    Starts starts;
    if (item.master() && !item.recurrence().isEmpty()) {
        starts = startsOf(item, {.from = window.from - greatestLength(item), .to = window.to});
    } else if (item.master()) {
        const ItemTimes &times = item.master()->times;
        starts[item.master()->key] = {nullptr, item.master()->key, times.start.instant(),
                                      times.endOf(times.start)};
    }
    for (const ItemPart &part : item.detached())
        starts.erase(part.key);
    for (const auto &[key, occurrence] : starts)
        if (window.overlaps(occurrence.start, occurrence.end))
            found.push_back(occurrence);
    for (const ItemPart &part : item.detached())
        if (const ItemOccurrence moved = occurrenceOf(part); window.overlaps(moved.start, moved.end))
            found.push_back(moved);
    putInOrder(found);
    return found;
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
        return found->second;
    return ItemOccurrence{nullptr, key, start, item.master()->times.endOf(item.timeOfKey(key))};
}

std::optional<ItemOccurrence> ItemExpansion::first(const CalendarItem &item)
{
    std::vector<ItemOccurrence> candidates;
    for (const ItemPart &part : item.detached())
        candidates.push_back(occurrenceOf(part));
    if (item.master()) {
        // Ever more of the series, until one is found that nobody has edited or excluded.
        Date to = item.master()->times.start.instant();
        const Date end = lastDate();
        for (double days = 1; candidates.size() == item.detached().size(); days *= 8) {
            Starts starts = startsOf(item, {.to = to});
            for (const ItemPart &part : item.detached())
                starts.erase(part.key);
            for (const auto &[key, occurrence] : starts)
                candidates.push_back(occurrence);
            if (to >= end || item.recurrence().isEmpty())
                break;
            to = std::min(end, to + Seconds(days * secondsOfADay));
        }
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
    const Starts starts = startsOf(item, {.to = dateOfKey(item, key)});
    return !starts.empty() && starts.begin()->first < key;
}

bool ItemExpansion::hasOther(const CalendarItem &item, qint64 key)
{
    const auto isOther = [key](const auto &part) { return part.key != key; };
    if (std::any_of(item.detached().begin(), item.detached().end(), isOther) ||
        hasOccurrenceBefore(item, key))
        return true;
    if (!item.master() || item.recurrence().isEmpty())
        return false;
    const Date from = dateOfKey(item, key);
    for (double days = 1;; days *= 8) {
        const Date to = std::min(lastDate(), from + Seconds(days * secondsOfADay));
        const Starts starts = startsOf(item, {.from = from, .to = to});
        if (!starts.empty() && starts.rbegin()->first > key)
            return true;
        if (to >= lastDate())
            return false;
    }
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
