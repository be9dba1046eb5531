#pragma once

#include "eventkit/EKCalendar.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

/// One row of a chooser of calendars: the heading of a source, or a calendar.
using CalendarChooserRow = std::variant<QString, EKCalendar>;

/// What a chooser of calendars shows.
struct CalendarChooserData
{
    std::vector<CalendarChooserRow> data;
    std::vector<EKCalendar> selected;
};

/// The calendars that the store has, by the names that the organiser gives them.
class CalendarCatalogue
{
public:
    CalendarCatalogue() = delete;

    /// All calendars for events; those last known if the store cannot be reached.
    static std::vector<EKCalendar> getAllCalendars();
    /// The calendars that the user has chosen, in the store's order.
    static std::vector<EKCalendar> getAllAccessCalendars();
    /// Those that allow changes of their events.
    static std::vector<EKCalendar>
    getAllModifiedCalendarsFromCalendars(const std::vector<EKCalendar> &calendars);
    /// The program's own calendar, made if it is missing; absent without access or a place for it.
    static std::optional<EKCalendar> getCalendar();
    /// Whether there is a calendar of the program's own title. Of several the first stays.
    static bool isOurCalendar();
    static std::optional<EKCalendar> getDefaultCalendar();
    /// The one that new tasks go into: the stored one if it is chosen and writable, else the first such one.
    static std::optional<EKCalendar> getDefaultAccessCalendar();
    static std::optional<EKCalendar> setDefaultCalendarFromAppleCalendar();
    /// How a task names a calendar (`calendarreferences`): by its title, or where that is not enough, by
    /// title,
    /// "[<±>]" and identifier.
    static QString identifierOfCalendar(const EKCalendar &calendar);
    /// All names of the chosen calendars, also those that they had before they were renamed, and those of
    /// chosen ones that are missing: their tasks are shown until the user has them removed.
    static QStringList visibleReferences();
    /// Whether a reference is that of a calendar that this computer has, or had.
    static bool isKnownReference(const QString &reference);
    /// Whether such a calendar is on this computer, chosen or not.
    static bool isHere(const QString &reference);
    /// By what other devices know the calendars that this one has, chosen or not; those last seen while there
    /// is no access to them.
    static QStringList namesForOtherDevices();
    /// The calendar that has or had such a name: a writable one only if it is chosen.
    static std::optional<EKCalendar> calendarOfIdentifier(const QString &identifier);
    static std::optional<EKCalendar> calendarOfTitle(const QString &title);
    /// Whether the calendar of a name, or of a title, is chosen.
    static bool calendarAccessOfCalendarTypeIdentifier(const QString &identifier);
    static bool calendarAccessOfTitle(const QString &title);
    /// Opaque, whatever the calendar says; a quiet one where it has none.
    static EKColor getColorOfCalendar(const EKCalendar &calendar);
    static QString localizedTitleCalendar(const EKCalendar &calendar);
    static QString localizedTitleSource(const EKSource &source);
    /// What `getSourceType` says of calendars in the cloud.
    static constexpr int cloudSourceType = 2;
    /// 2 if the calendars lie in the cloud, which is to say that a chosen one belongs to an account that is
    /// not on this computer; else 0.
    static int getSourceType();
    /// Whether a chosen calendar belongs to the account of the cloud whose folder this program has not got.
    /// Calendars of other accounts need no folder, and a folder needs no calendars.
    static bool lacksCloudFolder(bool hasCloudFolder);
    static CalendarChooserData sortingAndGroupingByTitleForData(bool onlyAccessModified);
    /// Follows renames and removals of calendars: what names a calendar names it still, and nothing else. In
    /// the sample nothing is followed until the user's own tasks are there again.
    static void handleChangedCalendars();
};
