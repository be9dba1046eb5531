#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityContacts;
class EntityTask;

/// A word that marks any number of tasks.
class EntityTags : public TypedObject<EntityTags>
{
public:
    static constexpr std::string_view entityName = "EntityTags";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"task", Cardinality::ToManyThroughJoin, "EntityTask", "tags"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(title, setTitle)
    MANAGED_TO_MANY(EntityTask, task, setTask)
};

/// A named place.
class EntityLocation : public TypedObject<EntityLocation>
{
public:
    static constexpr std::string_view entityName = "EntityLocation";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"latitude", AttributeType::Double},
        {"longitude", AttributeType::Double},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"task", Cardinality::ToMany, "EntityTask", "location"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(title, setTitle)
    MANAGED_DOUBLE(latitude, setLatitude)
    MANAGED_DOUBLE(longitude, setLongitude)
    MANAGED_TO_MANY(EntityTask, task, setTask)
};

/// A note, about a contact, a company or nobody.
class EntityNote : public TypedObject<EntityNote>
{
public:
    static constexpr std::string_view entityName = "EntityNote";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"detail", AttributeType::String},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"contact", Cardinality::ToOne, "EntityContacts", "note"},
        {"company", Cardinality::ToOne, "EntityCompany", "note"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(title, setTitle)
    MANAGED_TEXT(detail, setDetail)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_ONE(EntityContacts, contact, setContact)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
};

/// One searchable text of one record, found again by the URI of the record.
class EntitySearchIndex : public TypedObject<EntitySearchIndex>
{
public:
    static constexpr std::string_view entityName = "EntitySearchIndex";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"objectId", AttributeType::String},
        {"string", AttributeType::String},
    });
    static constexpr std::array<RelationshipDescription, 0> relationshipTable{};

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(objectId, setObjectId)
    MANAGED_TEXT(string, setString)
};
