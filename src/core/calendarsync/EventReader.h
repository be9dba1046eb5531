#pragma once

#include "eventkit/EKCalendar.h"
#include "eventkit/EKEvent.h"
#include "foundation/Calendar.h"
#include "foundation/Date.h"
#include "foundation/Error.h"
#include "store/entities/Entities.h"

#include <QString>

#include <optional>
#include <vector>

/// The events of the chosen calendars around now, grouped and found.
class EventReader
{
public:
    EventReader() = delete;

    /// The days around now of which the rows follow the calendars.
    static DateInterval window();
    /// The events of the calendars inside the window, series expanded. Absent if the store cannot be reached.
    static std::optional<std::vector<EKEvent>> eventsForCalendars(const std::vector<EKCalendar> &calendars);
    /// One group for each event or series, cut after so many future occurrences as the user wants.
    static std::vector<std::vector<EKEvent>>
    getEventsGroupedCalendarIDfromAllEvents(std::vector<EKEvent> events);
    /// Those of one external identifier, by their start.
    static std::vector<EKEvent> getEventsWithEventIdentifier(const QString &identifier,
                                                             const std::vector<EKEvent> &fromEvents);
    /// The same among all chosen calendars, by their start; none without access. Of a series those in the
    /// window and on some more days, and those that were edited alone wherever they are. An error, and not
    /// none, if a calendar cannot be read.
    static Result<std::vector<EKEvent>>
    eventsWithExternalIdentifier(const QString &identifier, const std::vector<OptionalDate> &onDaysOf = {});
    /// The same in the calendar that a row names, or if that has none, in the other chosen ones. An error
    /// also if none is found and an object that cannot be read may be it, or its calendar is not on this
    /// computer.
    static Result<std::vector<EKEvent>> eventsOfRow(const QString &identifier, const QString &calendar,
                                                    const std::vector<OptionalDate> &onDaysOf);
    /// Whether nothing else has its identifier, so that its row is known by that alone, wherever it was
    /// moved: it is no occurrence of a series, or the only one that is known of it.
    static bool standsAlone(const EKEvent &event);
    /// The one that starts at a date, or if none does, that which was moved from there, or else is alone on
    /// its day in its calendar; of the latter none that a row shows, which is the event of that row. Absent
    /// where several may be meant.
    static std::optional<EKEvent> eventByStartDateOfTask(OptionalDate date,
                                                         const std::vector<EKEvent> &fromEvents);
    /// The one whose times a row shows, or else the one of the row's date, found as above.
    static std::optional<EKEvent> eventShownBy(const EntityTask &row, const std::vector<EKEvent> &fromEvents);
    /// The first event of exactly the task's title near its dates.
    static std::optional<EKEvent> getEventByTitleOfTask(const EntityTask &task);
};
