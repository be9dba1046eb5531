#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"
#include "store/entities/Entities.h"

class MVContactGroup;
struct MarkedSpan;

/// The names by which things are told to who is not known by name. What a commit changed is told as
/// `contextDidSave`, whoever made it; the others tell what no row shows.
namespace notifications {

/// What a commit changed in the store in use, after everything that follows from it but the screens.
inline constexpr NotificationName<StoreChanges> contextDidSave{u"NSManagedObjectContextDidSaveNotification"};
/// The records are others than before: another store, other calendars, or an import.
inline constexpr NotificationName<> iCloudChange{u"iCloudChange"};
/// A task was made.
inline constexpr NotificationName<> coreDataAddNewTask{u"CoreDataAddNewTask"};
/// A task was saved, or a rule refused to; null if it has no row.
inline constexpr NotificationName<TaskPtr> taskChange{u"TaskChange"};
/// The values of a group that is to be saved.
inline constexpr NotificationName<MVContactGroup> saveNewContactGroup{u"SaveNewContactGroup"};
/// Birthdays were switched on or off in the calendars.
inline constexpr NotificationName<> calendarBirthdays{u"com.halvern.morvane.calendarBirthdays"};
/// How the exchange with the other devices stands is otherwise than before.
inline constexpr NotificationName<> sharingChanged{u"com.halvern.morvane.sharingChanged"};
/// Settings that travel between devices were changed by another one.
inline constexpr NotificationName<> preferences{u"com.halvern.morvane.preferences"};

// Selection and commands.
/// Other tasks are selected in the calendars.
inline constexpr NotificationName<> changeSelectedTask{u"ChangeSelectedTask"};
/// The record that was picked among what a search found.
inline constexpr NotificationName<ObjectPtr> clickTableSearch{u"ClickTableSearch"};
inline constexpr NotificationName<> searchMorvane{u"SearchMorvane"};
inline constexpr NotificationName<> keySave{u"KeySave"};
/// What was marked among the hours.
inline constexpr NotificationName<MarkedSpan> dayCalendarCreateTask{u"DayCalendarCreateTask"};
/// What was marked among the whole days.
inline constexpr NotificationName<MarkedSpan> allDayCalendarCreateTask{u"AllDayCalendarCreateTask"};

/// Somebody else changed the calendars.
inline constexpr NotificationName<> eventStoreChanged{u"EKEventStoreChangedNotification"};

} // namespace notifications
