#pragma once

#include "foundation/Date.h"

/// When an event or reminder makes itself heard.
class EKAlarm
{
public:
    /// Seconds from the start of the event; negative before it.
    static EKAlarm alarmWithRelativeOffset(double offset) { return {offset, std::nullopt}; }
    static EKAlarm alarmWithAbsoluteDate(Date date) { return {0, date}; }

    /// 0 in an absolute alarm.
    double relativeOffset() const { return offset; }
    /// Absent in a relative alarm.
    OptionalDate absoluteDate() const { return date; }

    bool operator==(const EKAlarm &) const = default;

private:
    EKAlarm(double relativeOffset, OptionalDate absoluteDate)
        : offset(relativeOffset)
        , date(absoluteDate)
    {}

    double offset;
    OptionalDate date;
};
