#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"
#include "store/entities/TaskValues.h"
#include "usernotifications/UserNotification.h"

class EntityCategory;
class EntityCompany;
class EntityContacts;
class EntityLocation;
class EntityProject;
class EntityTags;

/// A task of any type. A repeating task is one row for each occurrence inside the window of the calendar.
class EntityTask : public TypedObject<EntityTask>
{
public:
    static constexpr std::string_view entityName = "EntityTask";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},          {"details", AttributeType::String},
        {"type", AttributeType::Integer},          {"status", AttributeType::Integer},
        {"priority", AttributeType::Integer},      {"startDate", AttributeType::Date},
        {"dueDate", AttributeType::Date},          {"dueSomeDay", AttributeType::Boolean},
        {"creationDate", AttributeType::Date},     {"lastModificationDate", AttributeType::Date},
        {"expirationDate", AttributeType::Date},   {"position", AttributeType::Integer},
        {"rowIndex", AttributeType::Integer},      {"alert", AttributeType::Date},
        {"secondAlert", AttributeType::Date},      {"repeat", AttributeType::String},
        {"endRepeat", AttributeType::Date},        {"repeatInfoUser", AttributeType::String},
        {"calendarID", AttributeType::String},     {"typeCalendarID", AttributeType::String},
        {"calendarTitle", AttributeType::String},  {"colorCalendarR", AttributeType::Double},
        {"colorCalendarG", AttributeType::Double}, {"colorCalendarB", AttributeType::Double},
        {"colorCalendarA", AttributeType::Double}, {"allowsContentModifications", AttributeType::Boolean},
        {"remindID", AttributeType::String},       {"wasCreatedOffCalendar", AttributeType::Boolean},
        {"delegatedSince", AttributeType::Date},   {"lastAsked", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"category", Cardinality::ToOne, "EntityCategory", "task"},
        {"company", Cardinality::ToOne, "EntityCompany", "task"},
        {"delegateToUser", Cardinality::ToOne, "EntityContacts", "task"},
        {"location", Cardinality::ToOne, "EntityLocation", "task"},
        {"project", Cardinality::ToOne, "EntityProject", "task"},
        {"tags", Cardinality::ToManyOwningJoin, "EntityTags", "task"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// A message for each alert that is not past yet.
    std::vector<UserNotification> newLocalNotification() const;
    /// The same for the alerts from a moment on.
    std::vector<UserNotification> localNotifications(Date from) const;
    /// Takes the task's messages out of the list of those to appear.
    void removeNotifications() const;
    /// Under which such a message keeps the URI of its task.
    static const QString &taskIdKey();

    // The columns. An absent number, date or Boolean is an empty optional, an absent text is a null one.
    // Saves of a working copy (`MVTask`) write them, and passes over the calendars write what an event shows:
    // title, details, type, dates, alerts, repetition, location and calendar. A reminder that is linked to
    // the task brings details, status, priority and alerts. Other writers are named.

    /// What it is called, as is its event.
    MANAGED_TEXT(title, setTitle)
    /// Free text, the notes of its event. Absent or empty for none.
    MANAGED_TEXT(details, setDetails)
    /// Absent means ToDo. A pass finds it by the dates of the event.
    MANAGED_ENUM(TaskType, type, setType)
    /// Absent counts as open. New tasks are Open.
    MANAGED_ENUM(TaskStatus, status, setStatus)
    /// Absent is shown as None, which new tasks have.
    MANAGED_ENUM(Priority, priority, setPriority)
    /// When it begins: of a ToDo the start of a day, of an Appointment a moment. Absent for an Email/Call,
    /// for a ToDo that is only due, and for what stands in the Inbox.
    MANAGED_DATE(startDate, setStartDate)
    /// When it is due: of a ToDo the end of a day, of an Appointment its end, of an Email/Call its only
    /// moment. Absent for a task without a date.
    MANAGED_DATE(dueDate, setDueDate)
    /// True puts it on the list Someday; the lists of dated tasks ask for false. Absent keeps it off all of
    /// these, but not off the Inbox.
    MANAGED_BOOLEAN(dueSomeDay, setDueSomeDay)
    /// When the row was made. Set once: by the first save, or by the pass that found its event.
    MANAGED_DATE(creationDate, setCreationDate)
    /// When it was saved last; each save of a working copy sets it.
    MANAGED_DATE(lastModificationDate, setLastModificationDate)
    /// When it became Done; each save of a done task sets it. A task that is opened again keeps it. Absent
    /// for what never was done.
    MANAGED_DATE(expirationDate, setExpirationDate)
    /// Its place in the Inbox, from 1 on; greater is lower. Given by the first save of a ToDo without a start
    /// date and by putting the Inbox in order by hand, absent otherwise.
    MANAGED_INTEGER(position, setPosition)
    /// Kept for the stored model; nothing reads or writes it.
    MANAGED_INTEGER(rowIndex, setRowIndex)
    /// The moment of the first message about it; absent for none.
    MANAGED_DATE(alert, setAlert)
    /// The moment of the second message about it; absent for none.
    MANAGED_DATE(secondAlert, setSecondAlert)
    /// The rule of its repetition as text; absent or empty for a task that does not repeat.
    MANAGED_TEXT(repeat, setRepeat)
    /// The end of the last day of the repetition; absent for one without an end.
    MANAGED_DATE(endRepeat, setEndRepeat)
    /// Carried between the row and its working copy; nothing else writes it.
    MANAGED_TEXT(repeatInfoUser, setRepeatInfoUser)
    /// The external identifier of its event, which all rows of a series have in common; absent or empty
    /// without an event. Written where the event is saved or found.
    MANAGED_TEXT(calendarID, setCalendarID)
    /// The calendar in which its event is or is to be made, as `CalendarEvent::identifierOfCalendar` names
    /// it; absent or empty for none.
    MANAGED_TEXT(typeCalendarID, setTypeCalendarID)
    /// The title of that calendar when it was last looked at.
    MANAGED_TEXT(calendarTitle, setCalendarTitle)
    /// The colour of that calendar, each component from 0 to 1.
    MANAGED_DOUBLE(colorCalendarR, setColorCalendarR)
    MANAGED_DOUBLE(colorCalendarG, setColorCalendarG)
    MANAGED_DOUBLE(colorCalendarB, setColorCalendarB)
    MANAGED_DOUBLE(colorCalendarA, setColorCalendarA)
    /// Whether that calendar can be written, and the event is not somebody else's invitation. Absent for a
    /// task that never met a calendar, which can be changed.
    MANAGED_BOOLEAN(allowsContentModifications, setAllowsContentModifications)
    /// The identifier of the reminder that is linked to it; absent for none. Written by `Reminder`.
    MANAGED_TEXT(remindID, setRemindID)
    /// True for a task that was made while the calendars could not be used; set by the first save, and absent
    /// otherwise. A pass does not take it for one whose event has gone.
    MANAGED_BOOLEAN(wasCreatedOffCalendar, setWasCreatedOffCalendar)
    /// Null for none. New tasks have the default one.
    MANAGED_TO_ONE(EntityCategory, category, setCategory)
    /// Null for none; a form fills in that of the contact.
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
    /// The contact that it is delegated to; null for nobody. Whoever it is given to has it since then, and
    /// was not asked about it yet.
    MANAGED_TO_ONE(EntityContacts, delegateToUser, setDelegateToUser)
    /// Since when that contact has it; absent for nobody, and for what was delegated before this was kept.
    MANAGED_DATE(delegatedSince, setDelegatedSince)
    /// When that contact was asked about it last; absent for never. Written by `WaitingFor`.
    MANAGED_DATE(lastAsked, setLastAsked)
    /// Where it takes place, the place of its event; null for nowhere.
    MANAGED_TO_ONE(EntityLocation, location, setLocation)
    /// The project that it belongs to; null for none.
    MANAGED_TO_ONE(EntityProject, project, setProject)
    /// Without an order.
    MANAGED_TO_MANY(EntityTags, tags, setTags)
};
