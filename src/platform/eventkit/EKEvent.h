#pragma once

#include "eventkit/EKRecurrenceRule.h"
#include "foundation/Date.h"

#include <QString>

#include <vector>

/// An event of the calendar store. Of a series, one occurrence.
struct EKEvent
{
    QString title;
    QString location;
    QString notes;
    bool allDay = false;
    OptionalDate startDate;
    OptionalDate endDate;
    /// Empty for an event that does not repeat.
    std::vector<EKRecurrenceRule> recurrenceRules;
    /// Shared by all occurrences of a series, and the same on all devices.
    QString calendarItemExternalIdentifier;
};
