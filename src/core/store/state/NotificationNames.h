#pragma once

#include "foundation/NotificationCenter.h"

/// The names by which a change reaches the screens. Their object is empty unless told otherwise.
namespace notifications {

// Records and store.
inline constexpr NotificationName iCloudChange{u"iCloudChange"};
inline constexpr NotificationName coreDataAddNewTask{u"CoreDataAddNewTask"};
/// Object: the task (TaskPtr).
inline constexpr NotificationName taskChange{u"TaskChange"};
/// Object: the task (TaskPtr).
inline constexpr NotificationName reloadTasks{u"ReloadTasks"};
inline constexpr NotificationName coreDataAddNewProject{u"CoreDataAddNewProject"};
inline constexpr NotificationName projectChange{u"ProjectChange"};
inline constexpr NotificationName coreDataAddNewContact{u"CoreDataAddNewContact"};
inline constexpr NotificationName coreDataAddNewCompany{u"CoreDataAddNewCompany"};
inline constexpr NotificationName changeContactStatus{u"ChangeContactStatus"};
inline constexpr NotificationName coreDataAddNewNote{u"CoreDataAddNewNote"};
inline constexpr NotificationName coreDataChangeNote{u"CoreDataChangeNote"};
/// Object: the values of the group that is to be saved (MVContactGroup).
inline constexpr NotificationName saveNewContactGroup{u"SaveNewContactGroup"};
inline constexpr NotificationName reloadContactGroup{u"ReloadContactGroup"};
inline constexpr NotificationName addCurrentTasksWindowDone{u"AddCurrentTasksWindowDone"};
inline constexpr NotificationName positionInboxTask{u"PositionInboxTask"};
/// Object: the document.
inline constexpr NotificationName dataModified{u"dataModified"};
inline constexpr NotificationName preferences{u"com.halvern.morvane.preferences"};

// Selection and commands.
inline constexpr NotificationName changeSelectedTask{u"ChangeSelectedTask"};
/// Object: the record (ObjectPtr).
inline constexpr NotificationName clickTableSearch{u"ClickTableSearch"};
inline constexpr NotificationName searchMorvane{u"SearchMorvane"};
inline constexpr NotificationName keySave{u"KeySave"};
inline constexpr NotificationName keyDown{u"KeyDown"};
/// Object: what was marked among the hours (MarkedSpan).
inline constexpr NotificationName dayCalendarCreateTask{u"DayCalendarCreateTask"};
/// Object: what was marked among the whole days (MarkedSpan).
inline constexpr NotificationName allDayCalendarCreateTask{u"AllDayCalendarCreateTask"};

// Calendar items and window chrome.
inline constexpr NotificationName eventCalendarChanged{u"EventCalendarChanged"};
inline constexpr NotificationName eventCalendarHideLabel{u"EventCalendarHideLabel"};
inline constexpr NotificationName eventDragged{u"EventDragged"};
inline constexpr NotificationName eventResize{u"EventResize"};
inline constexpr NotificationName wentLeftBorder{u"WentLeftBorder"};
inline constexpr NotificationName wentRightBorder{u"WentRightBorder"};
inline constexpr NotificationName monthCalendarSelectItem{u"MonthCalendarSelectItem"};
inline constexpr NotificationName flippedViewWillStartLiveResize{u"FlippedViewWillStartLiveResize"};
inline constexpr NotificationName splitChangeSize{u"SplitChangeSize"};
inline constexpr NotificationName activeCustomButton{u"ActiveCustomButton"};
inline constexpr NotificationName deactiveCustomButton{u"DeactiveCustomButton"};

// The store's and the calendar store's own.
/// Object: the context (ManagedObjectContext *). User info: its ChangeList.
inline constexpr NotificationName contextDidSave{u"NSManagedObjectContextDidSaveNotification"};
inline constexpr NotificationName eventStoreChanged{u"EKEventStoreChangedNotification"};

} // namespace notifications
