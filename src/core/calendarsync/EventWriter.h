#pragma once

#include "eventkit/EKEvent.h"
#include "foundation/Date.h"
#include "store/entities/Entities.h"
#include "store/entities/TaskValues.h"

class RecordsTransaction;

/// From tasks to events.
///
/// What these do is a part of the transaction; without one, of the next save. Nothing reaches a calendar
/// before the commit.
class EventWriter
{
public:
    EventWriter() = delete;

    /// Writes a task to its event, or makes one. `changeStartDue` tells the occurrence by the date that it
    /// had before the edit; `wasRepeatRule` that the row had a rule before.
    static void initEventCalendarFromTask(RecordsTransaction &transaction, EntityTask &task, Span span,
                                          OptionalDate changeStartDue, bool wasRepeatRule);
    static void initEventCalendarFromTask(EntityTask &task, Span span, OptionalDate changeStartDue,
                                          bool wasRepeatRule);
    /// Whether another program has taken the event of a row out of its series, which no pass has seen yet. An
    /// edit of the row would be written nowhere, and go with it.
    static bool hasLostOccurrence(const EntityTask &task);
    /// What a change of status alone does to the event: none without a due date.
    static void changeEventCalendarStatusFromTask(const TaskPtr &task, Span withSpan,
                                                  OptionalDate withChangeStartDue);
    /// Takes a task out of the calendar, and with `isDeleteTasks` out of the store.
    static void removeEventCalendarFromTask(RecordsTransaction &transaction, const TaskPtr &task, Span span,
                                            bool isDeleteTasks);
    static void removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks);
    /// Copies what an event shows of a task.
    static void syncTask(const EntityTask &task, EKEvent &toEvent);
    /// Puts the repetition of a task on its event; the task takes back the rule as the calendars hold it and
    /// an end that is not before its own first day.
    static void setRecurrenceRuleFromEvent(EKEvent &event, EntityTask &task);

    // What the upgrade from one version needs.
    /// Takes the tasks out of the category that was the default one, and says on which calendar those lie
    /// that have an event. Once.
    static void handleBeforeAllCalendarsSync();
    /// Writes the tasks of the program's own calendar one way, those without an event only if asked for.
    static void syncAppToCalendarWithNeedCreateNewEvents(bool needCreateNewEvents);

    // The changes that this program made itself, by when.
    static void setEventToDictionaryChangedEventsOfNow(const EKEvent &event);
    static bool isEventInDictionaryChangedEventsOfNow(const EKEvent &event);
    static void removeEventFromDictionaryChangedEventsOfNow(const EKEvent &event);
    static void removeAllObectsFromDictionaryChangedEventsOfNow();
};
