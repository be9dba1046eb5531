#pragma once

#include "foundation/Date.h"

#include <QString>

/// Dates in the form "yyyyMMdd'T'HHmmss'Z'" of iCalendar (RFC 5545, section 3.3.5, form 2), always in UTC and
/// whatever the user's locale. One formatter serves the process; for the main thread.
class UtcDateTime
{
public:
    /// Fractions of a second are cut off.
    static QString string(Date date);
    /// Absent unless the whole text has the form and is a date that exists.
    static OptionalDate date(const QString &text);
};
