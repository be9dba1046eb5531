#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityContactGroup;
class EntityContacts;

/// A category of contacts.
class EntityContactCategory : public TypedObject<EntityContactCategory>
{
public:
    static constexpr std::string_view entityName = "EntityContactCategory";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"colorR", AttributeType::Double},
        {"colorG", AttributeType::Double},
        {"colorB", AttributeType::Double},
        {"colorA", AttributeType::Double},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"contact", Cardinality::ToMany, "EntityContacts", "contactCategory"},
        {"contactGroup", Cardinality::ToManyThroughJoin, "EntityContactGroup", "categories"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(title, setTitle)
    MANAGED_DOUBLE(colorR, setColorR)
    MANAGED_DOUBLE(colorG, setColorG)
    MANAGED_DOUBLE(colorB, setColorB)
    MANAGED_DOUBLE(colorA, setColorA)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_MANY(EntityContacts, contact, setContact)
    MANAGED_TO_MANY(EntityContactGroup, contactGroup, setContactGroup)
};
