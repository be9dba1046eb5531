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
    /// Takes the task's messages out of the list of those to appear.
    void removeNotifications() const;
    /// Under which such a message keeps the URI of its task.
    static const QString &taskIdKey();

    MANAGED_TEXT(title, setTitle)
    MANAGED_TEXT(details, setDetails)
    MANAGED_ENUM(TaskType, type, setType)
    MANAGED_ENUM(TaskStatus, status, setStatus)
    MANAGED_ENUM(Priority, priority, setPriority)
    MANAGED_DATE(startDate, setStartDate)
    MANAGED_DATE(dueDate, setDueDate)
    MANAGED_BOOLEAN(dueSomeDay, setDueSomeDay)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_DATE(lastModificationDate, setLastModificationDate)
    MANAGED_DATE(expirationDate, setExpirationDate)
    MANAGED_INTEGER(position, setPosition)
    MANAGED_INTEGER(rowIndex, setRowIndex)
    MANAGED_DATE(alert, setAlert)
    MANAGED_DATE(secondAlert, setSecondAlert)
    MANAGED_TEXT(repeat, setRepeat)
    MANAGED_DATE(endRepeat, setEndRepeat)
    MANAGED_TEXT(repeatInfoUser, setRepeatInfoUser)
    MANAGED_TEXT(calendarID, setCalendarID)
    MANAGED_TEXT(typeCalendarID, setTypeCalendarID)
    MANAGED_TEXT(calendarTitle, setCalendarTitle)
    MANAGED_DOUBLE(colorCalendarR, setColorCalendarR)
    MANAGED_DOUBLE(colorCalendarG, setColorCalendarG)
    MANAGED_DOUBLE(colorCalendarB, setColorCalendarB)
    MANAGED_DOUBLE(colorCalendarA, setColorCalendarA)
    MANAGED_BOOLEAN(allowsContentModifications, setAllowsContentModifications)
    MANAGED_TEXT(remindID, setRemindID)
    MANAGED_BOOLEAN(wasCreatedOffCalendar, setWasCreatedOffCalendar)
    MANAGED_TO_ONE(EntityCategory, category, setCategory)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
    MANAGED_TO_ONE(EntityContacts, delegateToUser, setDelegateToUser)
    MANAGED_TO_ONE(EntityLocation, location, setLocation)
    MANAGED_TO_ONE(EntityProject, project, setProject)
    MANAGED_TO_MANY(EntityTags, tags, setTags)
};
