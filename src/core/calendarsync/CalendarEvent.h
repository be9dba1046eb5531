#pragma once

#include "eventkit/EKCalendar.h"
#include "eventkit/EKEvent.h"
#include "eventkit/EKEventStore.h"
#include "foundation/Calendar.h"
#include "foundation/Date.h"
#include "store/entities/Entities.h"
#include "store/entities/TaskValues.h"

#include <QVariant>

#include <variant>
#include <vector>

class RecordsTransaction;

/// One row of a chooser of calendars: the heading of a source, or a calendar.
using CalendarChooserRow = std::variant<QString, EKCalendar>;

/// What a chooser of calendars shows.
struct CalendarChooserData
{
    std::vector<CalendarChooserRow> data;
    std::vector<EKCalendar> selected;
};

/// The only bridge between the organiser and the calendar store.
///
/// Without access to a store every operation does what it does offline: tasks are kept, nothing is written
/// elsewhere. A store that cannot be reached counts as no access, never as an empty one.
class CalendarEvent
{
public:
    CalendarEvent() = delete;

    // Access.
    /// The store that everything here works on, made on first use.
    static EKEventStore &eventStore();
    /// Forgets the store and what is known of its calendars; the next use makes it anew.
    static void resetEventStore();
    /// Whether the last activation allowed the calendars and the system still does.
    static bool hasAccesToCalendar();
    /// Whether the system allows them; may ask the user.
    static bool hasAccesToAppleCalendar();

    // Calendars.
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
    /// The same, but only if the user has chosen it.
    static std::optional<EKCalendar> getDefaultAccessCalendar();
    static std::optional<EKCalendar> setDefaultCalendarFromAppleCalendar();
    /// How a task names a calendar: the title of a writable one; title, "[<±>]" and identifier of a read-only
    /// one.
    static QString identifierOfCalendar(const EKCalendar &calendar);
    /// The calendar of such a name: a writable one only if it is chosen.
    static std::optional<EKCalendar> calendarOfIdentifier(const QString &identifier);
    static std::optional<EKCalendar> calendarOfTitle(const QString &title);
    /// Whether the calendar of a name, or of a title, is chosen.
    static bool calendarAccessOfCalendarTypeIdentifier(const QString &identifier);
    static bool calendarAccessOfTitle(const QString &title);
    /// Opaque, whatever the calendar says; a quiet one where it has none.
    static EKColor getColorOfCalendar(const EKCalendar &calendar);
    static QString localizedTitleCalendar(const EKCalendar &calendar);
    static QString localizedTitleSource(const EKSource &source);
    /// 2 if the calendars lie in the cloud, else 0.
    static int getSourceType();
    static CalendarChooserData sortingAndGroupingByTitleForData(bool onlyAccessModified);
    static void refreshSourcesIfNecessary();
    /// Follows renames and removals of calendars, and keeps titles of writable ones apart.
    static void handleChangedCalendars();

    // Whether repeating tasks may be edited.
    static void tryCreateMessageForBanEditingRepeatTask();
    static void resetMessageForBanChangeRepeat();
    /// The argument has no effect.
    static bool isAccessChangeRepeatTaskWithMessage(bool showsMessage);
    /// Why they may not, in English; empty if they may.
    static QString messageForBanChangeRepeat();

    // Tasks to events. What these do is a part of the transaction; without one, of the next save. Nothing
    // reaches a calendar before the commit.
    /// Writes a task to its event, or makes one. `changeStartDue` tells the occurrence by the date that it
    /// had before the edit; `wasRepeatRule` that the row had a rule before.
    static void initEventCalendarFromTask(RecordsTransaction &transaction, EntityTask &task, Span span,
                                          OptionalDate changeStartDue, bool wasRepeatRule);
    static void initEventCalendarFromTask(EntityTask &task, Span span, OptionalDate changeStartDue,
                                          bool wasRepeatRule);
    /// What a change of status alone does to the event: none without a due date.
    static void changeEventCalendarStatusFromTask(const TaskPtr &task, Span withSpan,
                                                  OptionalDate withChangeStartDue);
    /// Takes a task out of the calendar, and with `isDeleteTasks` out of the store. Gives the row that stands
    /// for the task from now on, which can be a new one; null if it was deleted.
    static TaskPtr removeEventCalendarFromTask(RecordsTransaction &transaction, const TaskPtr &task,
                                               Span span, bool isDeleteTasks);
    static TaskPtr removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks);
    /// Copies what an event shows of a task.
    static void syncTask(const EntityTask &task, EKEvent &toEvent);
    /// Puts the repetition of a task on its event; the task takes back the rule as the calendars hold it and
    /// an end that is not before its own first day.
    static void setRecurrenceRuleFromEvent(EKEvent &event, EntityTask &task);

    // Events.
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
    /// window and on some more days.
    static std::vector<EKEvent> eventsWithExternalIdentifier(const QString &identifier,
                                                             const std::vector<OptionalDate> &onDaysOf = {});
    /// The first that starts on the day of a date.
    static std::optional<EKEvent> eventByStartDateOfTask(OptionalDate date,
                                                         const std::vector<EKEvent> &fromEvents);
    /// The first event of exactly the task's title near its dates.
    static std::optional<EKEvent> getEventByTitleOfTask(const EntityTask &task);

    // Events to tasks.
    /// Overwrites what a row shows of an event.
    static void syncEvent(const EKEvent &event, EntityTask &toTask);
    static void handleBeforeAllCalendarsSync();
    /// Makes the rows match the calendars: all of them, or for one task, when no other row goes.
    static void syncCalendarToAppWithTask(const TaskPtr &task);
    /// The same for some tasks; for none it is for all.
    static void syncCalendarToAppWithTasks(const std::vector<TaskPtr> &tasks);
    /// Whether a pass is at work now: it may let other things happen while it tells how far it is. Half a
    /// pass is not to be saved; one that is asked for meanwhile follows it.
    static bool isPassing();
    static void syncAppToCalendarWithNeedCreateNewEvents(bool needCreateNewEvents);

    // The changes that this program made itself, by when.
    static void setEventToDictionaryChangedEventsOfNow(const EKEvent &event);
    static bool isEventInDictionaryChangedEventsOfNow(const EKEvent &event);
    static void removeEventFromDictionaryChangedEventsOfNow(const EKEvent &event);
    static void removeAllObectsFromDictionaryChangedEventsOfNow();
};
