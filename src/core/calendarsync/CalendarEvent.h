#pragma once

#include "eventkit/EKCalendar.h"
#include "foundation/Date.h"
#include "records/TaskManager.h"
#include "store/entities/Entities.h"

#include <vector>

struct EKEvent;

/// The only bridge between the organiser and the calendar store.
///
/// Without access to a store every operation does what it does offline: tasks are kept, nothing is written
/// elsewhere.
class CalendarEvent
{
public:
    CalendarEvent() = delete;

    // Access and calendars.
    /// Whether the last activation allowed the calendars and the system still does.
    static bool hasAccesToCalendar();
    /// Whether the system allows them; may ask the user.
    static bool hasAccesToAppleCalendar();
    /// The calendars that the user has chosen, in the store's order.
    static std::vector<EKCalendar> getAllAccessCalendars();
    /// How a task names a calendar: the title of a writable one; title, "[<±>]" and identifier of a read-only
    /// one.
    static QString identifierOfCalendar(const EKCalendar &calendar);
    /// 2 if the calendars lie in the cloud, else 0.
    static int getSourceType();
    static void refreshSourcesIfNecessary();
    static void handleChangedCalendars();

    // Whether repeating tasks may be edited.
    static void tryCreateMessageForBanEditingRepeatTask();
    static void resetMessageForBanChangeRepeat();
    /// The argument has no effect.
    static bool isAccessChangeRepeatTaskWithMessage(bool showsMessage);

    // Tasks to events.
    static void initEventCalendarFromTask(EntityTask &task, Span span, OptionalDate changeStartDue,
                                          bool wasRepeatRule);
    /// What a change of status alone does to the event: none without a due date.
    static void changeEventCalendarStatusFromTask(const TaskPtr &task, Span withSpan,
                                                  OptionalDate withChangeStartDue);
    static void removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks);
    /// Puts the task's repetition on the event, adapted to the task's own date and ended by `endRepeat`, and
    /// writes back to both fields what became of them. A task without a readable rule takes the repetition
    /// off the event.
    static void setRecurrenceRuleFromEvent(EKEvent &event, EntityTask &task);

    // Events to tasks.
    static void handleBeforeAllCalendarsSync();
    static void syncCalendarToAppWithTask(const TaskPtr &task);
    static void syncAppToCalendarWithNeedCreateNewEvents(bool needCreateNewEvents);
};
