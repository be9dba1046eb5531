#pragma once

#include <QString>

/// The keys of the user defaults.
namespace settings {

// Store and start.
inline const QString valueSwitchDatabase = QStringLiteral("valueSwitchDatabase");
inline const QString firstRun = QStringLiteral("FirstRun");
/// Pictures that no record holds any more, with the moment that they were let go of.
inline const QString loosePictures = QStringLiteral("loosePictures");
inline const QString sweptSearchIndexes = QStringLiteral("sweptSearchIndexes");
/// The folder that was given the pictures of this device.
inline const QString imagesSharedWith = QStringLiteral("ImagesSharedWith");
inline const QString ubiquityIdentityToken = QStringLiteral("UbiquityIdentityToken");

// Screens.
inline const QString taskFilters = QStringLiteral("TaskFilters");
inline const QString projectsFilters = QStringLiteral("ProjectsFilters");
inline const QString contactsFilters = QStringLiteral("ContactsFilters");
inline const QString taskGrouped = QStringLiteral("TaskGrouped");
inline const QString calendarState = QStringLiteral("CalendarState");
/// True where the calendars show no birthdays.
inline const QString calendarHidesBirthdays = QStringLiteral("calendarHidesBirthdays");
inline const QString calendarLastDate = QStringLiteral("CalendarLastDate");
inline const QString selectSortCategoryIndex = QStringLiteral("SelectSortCategoryIndex");
inline const QString needPopToRootDetailHome = QStringLiteral("needPopToRootDetailHome");
inline const QString contactDisplayOrder = QStringLiteral("ContactDisplayOrder");
inline const QString displayOrderDescription = QStringLiteral("DisplayOrderDescription");

// Calendar.
inline const QString syncPeriodType = QStringLiteral("SyncPeriodType");
inline const QString frequencyCalendarPeriod = QStringLiteral("FrequencyCalendarPeriod");
inline const QString ownCalendarIdentifier = QStringLiteral("orrelin_calendar_identifier2");
inline const QString defaultCalendar = QStringLiteral("defaultCalendar");
inline const QString savedChooseCalendars = QStringLiteral("savedChooseCalendars");
/// The calendars as they were last seen, as maps.
inline const QString knownCalendars = QStringLiteral("knownCalendars");
/// Of each calendar's identifier its reference and its former ones.
inline const QString calendarReferences = QStringLiteral("calendarReferences");
/// Of each calendar that came with the title of a missing one, the identifier of that.
inline const QString calendarSuccessors = QStringLiteral("calendarSuccessors");
/// "YES" once tasks that a former version lost at a rename were looked for.
inline const QString lostNamesAreFound = QStringLiteral("lostCalendarNamesAreFound");
inline const QString dictionaryCalendarsData = QStringLiteral("dictionaryCalendarsData");
inline const QString handleBeforeAllCalendarsSync = QStringLiteral("handleBeforeAllCalendarsSync");
inline const QString eventsAtLastPass = QStringLiteral("eventsAtLastPass");
/// The calendars that have lost events or have gone, whose tasks the user keeps, by identifier.
inline const QString calendarsWithKeptRows = QStringLiteral("calendarsWithKeptRows");
inline const QString statusRequestAccessToCalendar = QStringLiteral("statusRequestAccessToCalendar");
inline const QString nowAccessToAppleCalendar = QStringLiteral("nowAccessToAppleCalendar");

// What the last activation and resignation found.
inline const QString sumStatuses = QStringLiteral("sumStatuses");
inline const QString isAccessToCalendar = QStringLiteral("isAccessToCalendar");
inline const QString isiCloudCalendars = QStringLiteral("isiCloudCalendars");
inline const QString isAccesToCalendarForDidEnterBackground =
    QStringLiteral("isAccesToCalendarForDidEnterBackground");
/// Up to when the alerts of tasks have appeared.
inline const QString alertsRungUntil = QStringLiteral("alertsRungUntil");
inline const QString applicationDidBecomeActive = QStringLiteral("applicationDidBecomeActive");

} // namespace settings
