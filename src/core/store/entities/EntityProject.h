#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"
#include "store/entities/TaskValues.h"

class EntityCategory;
class EntityContacts;
class EntityTask;

/// A project: a span of time, the tasks that belong to it and the contacts that take part.
class EntityProject : public TypedObject<EntityProject>
{
public:
    static constexpr std::string_view entityName = "EntityProject";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"details", AttributeType::String},
        {"status", AttributeType::Integer},
        {"priority", AttributeType::Integer},
        {"stage", AttributeType::Integer},
        {"startDate", AttributeType::Date},
        {"dueDate", AttributeType::Date},
        {"creationDate", AttributeType::Date},
        {"expirationDate", AttributeType::Date},
        {"rowIndex", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"category", Cardinality::ToOne, "EntityCategory", "project"},
        {"delegateToUser", Cardinality::ToManyOwningJoin, "EntityContacts", "project"},
        {"task", Cardinality::ToMany, "EntityTask", "project"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(title, setTitle)
    MANAGED_TEXT(details, setDetails)
    MANAGED_ENUM(TaskStatus, status, setStatus)
    MANAGED_ENUM(Priority, priority, setPriority)
    MANAGED_INTEGER(stage, setStage)
    MANAGED_DATE(startDate, setStartDate)
    MANAGED_DATE(dueDate, setDueDate)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_DATE(expirationDate, setExpirationDate)
    MANAGED_INTEGER(rowIndex, setRowIndex)
    MANAGED_TO_ONE(EntityCategory, category, setCategory)
    MANAGED_TO_MANY(EntityContacts, delegateToUser, setDelegateToUser)
    MANAGED_TO_MANY(EntityTask, task, setTask)
};
