#pragma once

#include <QtGlobal>

/// Settings that are computed anew at each read, so that a change takes effect at the next use.
class DataConteiner
{
public:
    /// Seconds from now back to the start of the window of calendar access: 31 days, negative.
    qint64 leftIntervalAccessCalendar() const { return -2678400; }
    /// Seconds from now to the end of that window, by the user's choice: 93, 186 or 365 days.
    qint64 rightIntervalAccessCalendar() const;
    /// How many future occurrences of a repeated event become tasks: 1, 3 or 7.
    qint64 calendarFrequencyDay() const;
    /// 0: first name first; otherwise last name first. Chinese, Japanese and Korean decide before the
    /// setting.
    qint64 contactsDisplayOrder() const;
    /// Rows of the time grid of a day: half an hour each.
    qint64 rowCount() const { return 48; }
};
