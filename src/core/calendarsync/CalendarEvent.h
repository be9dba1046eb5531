#pragma once

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarPass.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/EventWriter.h"

#include <utility>

/// The only bridge between the organiser and the calendar store: what those above the calendars use of them.
/// Each operation is described where it is carried out, in the class of its concern.
///
/// Without access to a store every operation does what it does offline: tasks are kept, nothing is written
/// elsewhere. A store that cannot be reached counts as no access, never as an empty one.
class CalendarEvent
{
public:
    CalendarEvent() = delete;

    // Access.
    static EKEventStore &eventStore() { return EventStoreAccess::eventStore(); }
    static void resetEventStore() { return EventStoreAccess::resetEventStore(); }
    static bool hasAccesToCalendar() { return EventStoreAccess::hasAccesToCalendar(); }
    static bool hasAccesToAppleCalendar() { return EventStoreAccess::hasAccesToAppleCalendar(); }
    static void refreshSourcesIfNecessary() { return EventStoreAccess::refreshSourcesIfNecessary(); }
    static void tryCreateMessageForBanEditingRepeatTask()
    {
        return EventStoreAccess::tryCreateMessageForBanEditingRepeatTask();
    }
    static void resetMessageForBanChangeRepeat()
    {
        return EventStoreAccess::resetMessageForBanChangeRepeat();
    }
    static bool isAccessChangeRepeatTaskWithMessage(bool showsMessage)
    {
        return EventStoreAccess::isAccessChangeRepeatTaskWithMessage(showsMessage);
    }
    static QString messageForBanChangeRepeat() { return EventStoreAccess::messageForBanChangeRepeat(); }

    // Calendars.
    static std::vector<EKCalendar> getAllCalendars() { return CalendarCatalogue::getAllCalendars(); }
    static std::vector<EKCalendar> getAllAccessCalendars()
    {
        return CalendarCatalogue::getAllAccessCalendars();
    }
    static std::vector<EKCalendar>
    getAllModifiedCalendarsFromCalendars(const std::vector<EKCalendar> &calendars)
    {
        return CalendarCatalogue::getAllModifiedCalendarsFromCalendars(calendars);
    }
    static std::optional<EKCalendar> getCalendar() { return CalendarCatalogue::getCalendar(); }
    static bool isOurCalendar() { return CalendarCatalogue::isOurCalendar(); }
    static std::optional<EKCalendar> getDefaultCalendar() { return CalendarCatalogue::getDefaultCalendar(); }
    static std::optional<EKCalendar> getDefaultAccessCalendar()
    {
        return CalendarCatalogue::getDefaultAccessCalendar();
    }
    static std::optional<EKCalendar> setDefaultCalendarFromAppleCalendar()
    {
        return CalendarCatalogue::setDefaultCalendarFromAppleCalendar();
    }
    static QString identifierOfCalendar(const EKCalendar &calendar)
    {
        return CalendarCatalogue::identifierOfCalendar(calendar);
    }
    static std::optional<EKCalendar> calendarOfIdentifier(const QString &identifier)
    {
        return CalendarCatalogue::calendarOfIdentifier(identifier);
    }
    static std::optional<EKCalendar> calendarOfTitle(const QString &title)
    {
        return CalendarCatalogue::calendarOfTitle(title);
    }
    static bool calendarAccessOfCalendarTypeIdentifier(const QString &identifier)
    {
        return CalendarCatalogue::calendarAccessOfCalendarTypeIdentifier(identifier);
    }
    static bool calendarAccessOfTitle(const QString &title)
    {
        return CalendarCatalogue::calendarAccessOfTitle(title);
    }
    static EKColor getColorOfCalendar(const EKCalendar &calendar)
    {
        return CalendarCatalogue::getColorOfCalendar(calendar);
    }
    static QString localizedTitleCalendar(const EKCalendar &calendar)
    {
        return CalendarCatalogue::localizedTitleCalendar(calendar);
    }
    static QString localizedTitleSource(const EKSource &source)
    {
        return CalendarCatalogue::localizedTitleSource(source);
    }
    static int getSourceType() { return CalendarCatalogue::getSourceType(); }
    static CalendarChooserData sortingAndGroupingByTitleForData(bool onlyAccessModified)
    {
        return CalendarCatalogue::sortingAndGroupingByTitleForData(onlyAccessModified);
    }
    static void handleChangedCalendars() { return CalendarCatalogue::handleChangedCalendars(); }

    // Events.
    static DateInterval window() { return EventReader::window(); }
    static std::optional<std::vector<EKEvent>> eventsForCalendars(const std::vector<EKCalendar> &calendars)
    {
        return EventReader::eventsForCalendars(calendars);
    }
    static std::vector<std::vector<EKEvent>>
    getEventsGroupedCalendarIDfromAllEvents(std::vector<EKEvent> events)
    {
        return EventReader::getEventsGroupedCalendarIDfromAllEvents(std::move(events));
    }
    static std::vector<EKEvent> getEventsWithEventIdentifier(const QString &identifier,
                                                             const std::vector<EKEvent> &fromEvents)
    {
        return EventReader::getEventsWithEventIdentifier(identifier, fromEvents);
    }
    /// To show them: none also if they cannot be read at present.
    static std::vector<EKEvent> eventsWithExternalIdentifier(const QString &identifier,
                                                             const std::vector<OptionalDate> &onDaysOf = {})
    {
        auto events = EventReader::eventsWithExternalIdentifier(identifier, onDaysOf);
        return events ? std::move(events.value()) : std::vector<EKEvent>();
    }
    static std::optional<EKEvent> eventByStartDateOfTask(OptionalDate date,
                                                         const std::vector<EKEvent> &fromEvents)
    {
        return EventReader::eventByStartDateOfTask(date, fromEvents);
    }
    static std::optional<EKEvent> getEventByTitleOfTask(const EntityTask &task)
    {
        return EventReader::getEventByTitleOfTask(task);
    }

    // Tasks to events.
    static void initEventCalendarFromTask(RecordsTransaction &transaction, EntityTask &task, Span span,
                                          OptionalDate changeStartDue, bool wasRepeatRule)
    {
        return EventWriter::initEventCalendarFromTask(transaction, task, span, changeStartDue, wasRepeatRule);
    }
    static void initEventCalendarFromTask(EntityTask &task, Span span, OptionalDate changeStartDue,
                                          bool wasRepeatRule)
    {
        return EventWriter::initEventCalendarFromTask(task, span, changeStartDue, wasRepeatRule);
    }
    static bool hasLostOccurrence(const EntityTask &task) { return EventWriter::hasLostOccurrence(task); }
    static void changeEventCalendarStatusFromTask(const TaskPtr &task, Span withSpan,
                                                  OptionalDate withChangeStartDue)
    {
        return EventWriter::changeEventCalendarStatusFromTask(task, withSpan, withChangeStartDue);
    }
    static void removeEventCalendarFromTask(RecordsTransaction &transaction, const TaskPtr &task, Span span,
                                            bool isDeleteTasks)
    {
        EventWriter::removeEventCalendarFromTask(transaction, task, span, isDeleteTasks);
    }
    static void removeEventCalendarFromTask(const TaskPtr &task, Span span, bool isDeleteTasks)
    {
        EventWriter::removeEventCalendarFromTask(task, span, isDeleteTasks);
    }
    static void syncTask(const EntityTask &task, EKEvent &toEvent)
    {
        return EventWriter::syncTask(task, toEvent);
    }
    static void setRecurrenceRuleFromEvent(EKEvent &event, EntityTask &task)
    {
        return EventWriter::setRecurrenceRuleFromEvent(event, task);
    }
    static void handleBeforeAllCalendarsSync() { return EventWriter::handleBeforeAllCalendarsSync(); }
    static void syncAppToCalendarWithNeedCreateNewEvents(bool needCreateNewEvents)
    {
        return EventWriter::syncAppToCalendarWithNeedCreateNewEvents(needCreateNewEvents);
    }
    static void setEventToDictionaryChangedEventsOfNow(const EKEvent &event)
    {
        return EventWriter::setEventToDictionaryChangedEventsOfNow(event);
    }
    static bool isEventInDictionaryChangedEventsOfNow(const EKEvent &event)
    {
        return EventWriter::isEventInDictionaryChangedEventsOfNow(event);
    }
    static void removeEventFromDictionaryChangedEventsOfNow(const EKEvent &event)
    {
        return EventWriter::removeEventFromDictionaryChangedEventsOfNow(event);
    }
    static void removeAllObectsFromDictionaryChangedEventsOfNow()
    {
        return EventWriter::removeAllObectsFromDictionaryChangedEventsOfNow();
    }

    // Events to tasks.
    static void syncEvent(const EKEvent &event, EntityTask &toTask)
    {
        return CalendarPass::syncEvent(event, toTask);
    }
    static void syncCalendarToAppWithTask(const TaskPtr &task)
    {
        return CalendarPass::syncCalendarToAppWithTask(task);
    }
    static void syncCalendarToAppWithTasks(const std::vector<TaskPtr> &tasks)
    {
        return CalendarPass::syncCalendarToAppWithTasks(tasks);
    }
    static bool isPassing() { return CalendarPass::isPassing(); }
};
