#pragma once

#include "calendarsync/CalendarCatalogue.h"

#include <optional>

/// The choice of the calendars that are kept in step with the tasks, as its window makes it. Each change is
/// written at once; what follows from all of them comes with `finish`.
class CalendarChooser
{
public:
    /// Takes the calendars and the choice of now.
    CalendarChooser();
    /// Takes them again. Whether anything has changed since.
    bool reload();

    /// Headings (the accounts) and calendars, from the top.
    const std::vector<CalendarChooserRow> &rows() const { return content.data; }
    /// Null for a heading, and for a row that there is not.
    const EKCalendar *calendarAt(int row) const;
    QString titleAt(int row) const;
    bool isSelected(int row) const;
    /// Whether new tasks go into this calendar; never so for one that cannot be written to.
    bool isDefault(int row) const;

    /// Chooses a calendar or gives it up. A heading ignores it and answers false, as a calendar does
    /// that is not there any more.
    bool toggle(int row);
    /// False for a heading, and for a calendar that is not there any more.
    bool setDefault(int row);

    /// A pass over the calendars as they are chosen now; then the screens are told.
    static void finish();

private:
    /// The calendar of a row as the store has it now.
    std::optional<EKCalendar> presentCalendarAt(int row) const;

    CalendarChooserData content;
};
