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
    /// Has new tasks go into a calendar, which is chosen with it. False for a heading, for a calendar that
    /// cannot be written to, and for one that is not there any more.
    bool setDefault(int row);
    /// Whether that is offered.
    bool canBeDefault(int row) const;

    /// Why there is nothing to choose from.
    enum class Emptiness { None, NoAccess, NoCalendars, Silent };
    Emptiness emptiness() const;
    /// Makes a calendar of the program's own, which is chosen and the default. False if that is not possible.
    bool makeCalendar();

    /// A pass over the calendars as they are chosen now; then the screens are told.
    static void finish();

private:
    /// The calendar of a row as the store has it now.
    std::optional<EKCalendar> presentCalendarAt(int row) const;

    void takeContent();
    void takeChoice();

    CalendarChooserData content;
    /// The identifier of the calendar that new tasks go into; empty without one.
    QString usual;
};
