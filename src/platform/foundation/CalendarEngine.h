#pragma once

#include "foundation/Calendar.h"
#include "foundation/ZoneOffsets.h"

#include <unicode/calendar.h>

/// The ICU calendar behind a `Calendar`, and what it remembers. For one thread at a time.
class Calendar::Engine
{
public:
    explicit Engine(const CalendarSettings &settings);

    /// The ICU calendar, to be set by the caller.
    icu::Calendar &icuCalendar() { return *calendar; }
    /// The same, at the date's whole second.
    icu::Calendar &at(Date date);
    /// Undoes what reading a text with a zone in it does to the ICU calendar.
    void takeZoneBack();
    /// The date at which the ICU calendar stands, and a fraction of a second.
    Date date(double fraction = 0) const;

    OffsetSpan offsetAt(Date date);
    /// 1970-01-01 is 0.
    int dayNumber(Date date);
    Date startOfDay(Date date);
    Date startOfNextDay(Date date);

private:
    std::optional<double> startOfUnchangedDay(Date date);
    void moveToMidnight();

    std::shared_ptr<const icu::BasicTimeZone> rules;
    std::unique_ptr<icu::Calendar> calendar;
    const icu::TimeZone *ownZone;
    ZoneOffsets offsets;
};
