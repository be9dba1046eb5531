#pragma once

#include "eventkit/EKEntityType.h"
#include "eventkit/IcalDocument.h"
#include "eventkit/IcalZones.h"
#include "eventkit/RecurrencePattern.h"

#include <QString>

#include <memory>
#include <optional>
#include <set>
#include <vector>

/// When an event, or the first of a series, takes place.
struct ItemTimes
{
    IcalTime start;
    /// As the text has it; at most one of the two.
    std::optional<IcalTime> end = {};
    std::optional<IcalDuration> duration = {};

    bool isAllDay() const { return start.isDate(); }
    /// Of an all-day event, at least 1.
    int days() const;
    /// The end of an occurrence that starts at a time: the moment after the last day of an all-day event. A
    /// length that was given by two moments is that many seconds, days of a duration are days of the
    /// calendar.
    Date endOf(const IcalTime &occurrence) const;
};

/// One component of an object: the event itself or an edited occurrence.
struct ItemPart
{
    /// Its place among the components of the calendar.
    std::size_t childIndex = 0;
    ItemTimes times;
    /// Which occurrence was edited, in the terms of the series; absent in the event itself.
    std::optional<IcalTime> recurrenceId;
    /// `keyOf` of it.
    qint64 key = 0;
    /// Whether it describes the later occurrences too (RANGE=THISANDFUTURE, RFC 5545, section 3.2.13).
    bool coversFuture = false;
};

/// How an event repeats.
struct ItemRecurrence
{
    std::vector<RecurrencePattern> rules;
    std::vector<RecurrencePattern> exclusionRules;
    std::vector<IcalRecurrenceDate> dates;
    /// Excluded moments by their key.
    std::set<qint64> excludedKeys;
    /// Excluded whole days by the seconds of their midnight.
    std::set<qint64> excludedDays;

    bool isEmpty() const { return rules.empty() && dates.empty(); }
};

/// An iCalendar object that was understood: an event or reminder with one UID and its edited occurrences.
/// Immutable, and the parts point into its own text.
class CalendarItem
{
public:
    /// The error ("calendar", Unreadable) says what is wrong. A null pointer for a text that holds neither
    /// events nor reminders with a start.
    static Result<std::shared_ptr<const CalendarItem>> fromText(const QByteArray &text);

    const IcalDocument &document() const { return source; }
    const IcalZones &zones() const { return zoneReader; }
    const QByteArray &text() const { return originalText; }
    EKEntityType entityType() const { return kind; }
    const QString &uid() const { return identifier; }

    /// The event or series itself; null where only edited occurrences are known.
    const ItemPart *master() const { return series ? &*series : nullptr; }
    /// Occurrences that were edited alone, and any edit of a series that is not known itself.
    const std::vector<ItemPart> &detached() const { return edited; }
    /// Edits of an occurrence together with all later ones, by key. Each holds up to the next of them; an
    /// occurrence that was edited alone is none of theirs.
    const std::vector<ItemPart> &ranges() const { return futureEdits; }
    /// Both.
    std::vector<const ItemPart *> edits() const;
    /// The edit of this and later occurrences that holds for one; null if the series itself does.
    const ItemPart *rangeOf(qint64 key) const;
    /// When an occurrence begins as such an edit has it: as far from its original start as the first is, on
    /// the wall clock.
    IcalTime startIn(const ItemPart &range, qint64 key) const;
    const ItemRecurrence &recurrence() const { return repetition; }
    bool isSeries() const { return !repetition.isEmpty() || !edited.empty() || !futureEdits.empty(); }
    const IcalComponent &component(const ItemPart &part) const;

    /// The number by which occurrences are told apart: the second of their original start; for all-day series
    /// the second of midnight if the day were one of UTC. A date says the occurrence of that day.
    qint64 keyOf(const IcalTime &original) const;
    /// The same back.
    IcalTime timeOfKey(qint64 key) const;

private:
    CalendarItem(const QByteArray &text, IcalDocument document);
    OptionalError takeComponents();
    OptionalError take(std::size_t childIndex, const IcalComponent &component);
    void takeRanges();
    void takeRecurrence();
    std::optional<ItemTimes> timesOf(const IcalComponent &component) const;

    QByteArray originalText;
    IcalDocument source;
    IcalZones zoneReader;
    EKEntityType kind = EKEntityType::Event;
    QString identifier;
    std::optional<ItemPart> series;
    std::vector<ItemPart> edited;
    std::vector<ItemPart> futureEdits;
    ItemRecurrence repetition;
};

using CalendarItemPointer = std::shared_ptr<const CalendarItem>;
