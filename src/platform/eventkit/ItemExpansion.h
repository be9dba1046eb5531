#pragma once

#include "eventkit/CalendarItem.h"
#include "eventkit/EKEvent.h"

#include <vector>

/// One occurrence of an item in time.
struct ItemOccurrence
{
    /// Its own component: null unless it was edited alone.
    const ItemPart *detached = nullptr;
    /// `CalendarItem::keyOf` its original start.
    qint64 key = 0;
    Date start;
    /// The first moment that is no longer part of it.
    Date end;
    /// The edit of this or an earlier occurrence and all later ones that describes it; null if there is none,
    /// or it was edited alone.
    const ItemPart *range = nullptr;

    /// The component that describes it.
    const ItemPart &partOf(const CalendarItem &item) const
    {
        return detached ? *detached : range ? *range : *item.master();
    }
};

/// Where occurrences are asked for: those that overlap it, `to` itself not included. A moment without length
/// overlaps if it lies inside.
struct DateWindow
{
    Date from;
    Date to;

    bool overlaps(Date start, Date end) const
    {
        return start < to && (end > from || (start == end && start >= from));
    }
};

struct ItemOccurrences
{
    std::vector<ItemOccurrence> found;
    /// False if there may be more.
    bool isWhole = true;
};

/// Expands items as RFC 5545 (section 3.8.5) has it: the start, the rules and the dates together, without
/// what is excluded, and with edited occurrences in place of the ones they stand for, wherever they were
/// moved. An edit of an occurrence and all later ones says when these are, not that there are any.
class ItemExpansion
{
public:
    /// In the order of their start.
    static std::vector<ItemOccurrence> occurrences(const CalendarItem &item, const DateWindow &window);
    /// The same, of the series itself only about so many of the first in the window, or fewer where they
    /// cannot be counted in reasonable time.
    static ItemOccurrences occurrences(const CalendarItem &item, const DateWindow &window, std::size_t most);
    /// The one with that key, even if it has been excluded meanwhile.
    static std::optional<ItemOccurrence> occurrence(const CalendarItem &item, qint64 key);
    /// The first of all; absent for a series without any.
    static std::optional<ItemOccurrence> first(const CalendarItem &item);
    /// Whether there are any with a lower key.
    static bool hasOccurrenceBefore(const CalendarItem &item, qint64 key);
    /// The key of the first one behind a key that was not edited alone; absent if there is none.
    static std::optional<qint64> next(const CalendarItem &item, qint64 key);
    /// Whether there are any with another key.
    static bool hasOther(const CalendarItem &item, qint64 key);
    /// The start of the last one of a series that ends; absent for one without an end, or of too many.
    static OptionalDate lastStart(const CalendarItem &item);
    /// Whether the series itself has that occurrence, edited or not.
    static bool contains(const CalendarItem &item, qint64 key);
    /// The first match of any of the rules from an occurrence on, which is its own key if a rule has it.
    /// Absent without any.
    static std::optional<qint64> nextMatch(const CalendarItem &item, qint64 key);
    /// How often a rule of the series matches before the occurrence, excluded matches too.
    static int matchesBefore(const CalendarItem &item, const RecurrencePattern &rule, qint64 key);
};
