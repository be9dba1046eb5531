#pragma once

#include "foundation/Error.h"

/// The errors of the calendar store: domain "calendar" and one of these codes.
class CalendarError
{
public:
    enum Code {
        /// The calendar or the object is not there (any more).
        NotFound = 1,
        /// The calendar may be read only.
        ReadOnly,
        /// The object was changed by somebody else since it was read.
        Conflict,
        /// An object that cannot be understood; it is left as it is.
        Unreadable,
        /// Disk, network or daemon do not work.
        Storage,
        /// What is to be saved is not complete or makes no sense.
        Invalid,
    };

    static Error make(Code code, const QString &message)
    {
        return {QStringLiteral("calendar"), code, message};
    }
    static bool is(const OptionalError &error, Code code)
    {
        return error && error->domain == QStringLiteral("calendar") && error->code == code;
    }
    /// Whether it will be the same at each attempt. Everything else may pass: a calendar that has gone comes
    /// back when its disk or its account does.
    static bool isRefusal(const OptionalError &error) { return is(error, ReadOnly) || is(error, Invalid); }
};
