#pragma once

#include "eventkit/EKAlarm.h"
#include "eventkit/EKCalendar.h"
#include "foundation/Date.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class EKEventStore;
struct EKItemOrigin;

/// Something to be done (VTODO, RFC 5545, section 3.6.2). A copy, as `EKEvent` is.
struct EKReminder
{
    QString title;
    QString notes;
    /// 1 is the most urgent, 9 the least; 0 for none.
    int priority = 0;
    OptionalDate dueDate;
    std::vector<EKAlarm> alarms;
    bool isCompleted = false;
    /// Absent while it is open. Where it is completed without a date, the moment of saving is taken.
    OptionalDate completionDate;
    std::optional<EKCalendar> calendar;
    /// Empty until it is saved.
    QString calendarItemIdentifier;
    OptionalDate creationDate;
    OptionalDate lastModifiedDate;
    /// For the store: where the reminder came from. Null for a new one.
    std::shared_ptr<const EKItemOrigin> origin;

    /// A new reminder, not yet saved.
    static EKReminder reminderWithEventStore(const EKEventStore &eventStore);

    void addAlarm(const EKAlarm &alarm) { alarms.push_back(alarm); }
};
