#pragma once

#include "eventkit/EKAlarm.h"
#include "eventkit/EKCalendar.h"
#include "eventkit/EKParticipant.h"
#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/EKStructuredLocation.h"
#include "foundation/Date.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class EKEventStore;
struct EKItemOrigin;

enum class EKEventStatus { None, Confirmed, Tentative, Canceled };
enum class EKEventAvailability { Busy, Free };

/// An event of the calendar store; of a series, one occurrence. It is a copy of what the store held when it
/// was asked for: changes go back by `EKEventStore::saveEvent`, and only fields that differ from that copy
/// are written.
struct EKEvent
{
    QString title;
    QString location;
    /// Has the title of `location`. Of the two, the one that was changed is written.
    std::optional<EKStructuredLocation> structuredLocation;
    QString notes;
    /// An all-day event has the start of its first day and the last second of its last day in the user's time
    /// zone. To save one, any moments of these days will do.
    bool allDay = false;
    OptionalDate startDate;
    /// Equal to the start for an event that is a moment.
    OptionalDate endDate;
    /// The zone by whose clock the event keeps its time, mostly by its IANA name; empty for an event in
    /// floating time, which all-day events are. A new event with an empty zone takes the user's.
    QByteArray timeZone;
    /// Those that show something or make a sound, in their order. Others, such as mails, stay as they are.
    std::vector<EKAlarm> alarms;
    std::optional<EKCalendar> calendar;
    /// Empty for an event that does not repeat, and for a series without a rule or with one by hours, minutes
    /// or seconds; `isOfSeries` tells these apart.
    std::vector<EKRecurrenceRule> recurrenceRules;
    EKEventAvailability availability = EKEventAvailability::Busy;

    // What the store says, and does not write.

    /// Shared by all occurrences of a series, and the same on all devices (UID, RFC 5545, section 3.8.4.7).
    /// Of a new event empty, unless it is to come back under the one that it had.
    QString calendarItemExternalIdentifier;
    /// The same, with an addition that tells an edited occurrence from the others of its series.
    QString eventIdentifier;
    OptionalDate creationDate;
    OptionalDate lastModifiedDate;
    /// When the series has this occurrence, however it was moved. For other events their start.
    OptionalDate occurrenceDate;
    /// Whether it is an occurrence that was edited on its own.
    bool isDetached = false;
    EKEventStatus status = EKEventStatus::None;
    std::optional<EKParticipant> organizer;
    std::vector<EKParticipant> attendees;
    /// For the store: where the event came from. Null for a new one.
    std::shared_ptr<const EKItemOrigin> origin;

    /// A new event, not yet saved.
    static EKEvent eventWithEventStore(const EKEventStore &eventStore);

    bool hasAlarms() const { return !alarms.empty(); }
    bool hasRecurrenceRules() const { return !recurrenceRules.empty(); }
    /// Whether the store holds more under its identifier than this event: it is an occurrence of a rule, also
    /// of one that `recurrenceRules` cannot say, of a list of dates, or one that was edited alone. False for
    /// a new event.
    bool isOfSeries() const;
    bool hasAttendees() const { return !attendees.empty(); }
    void addAlarm(const EKAlarm &alarm) { alarms.push_back(alarm); }
    /// Removes the first that is equal.
    void removeAlarm(const EKAlarm &alarm);
};
