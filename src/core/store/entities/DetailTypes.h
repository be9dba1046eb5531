#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityAddress;
class EntityEmail;
class EntityPhone;
class EntityURL;

/// A kind of telephone number, such as "mobile".
class EntityPhoneType : public TypedObject<EntityPhoneType>
{
public:
    static constexpr std::string_view entityName = "EntityPhoneType";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"index", AttributeType::Integer},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"phone", Cardinality::ToMany, "EntityPhone", "type"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The first of that stored title, or null.
    static std::shared_ptr<EntityPhoneType> type(const QString &title);
    /// All of them in the order of their pop-ups.
    static ObjectList<EntityPhoneType> allTypes();

    MANAGED_TEXT(title, setTitle)
    MANAGED_INTEGER(index, setIndex)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_MANY(EntityPhone, phone, setPhone)
};

/// A kind of mail address.
class EntityEmailType : public TypedObject<EntityEmailType>
{
public:
    static constexpr std::string_view entityName = "EntityEmailType";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"index", AttributeType::Integer},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"email", Cardinality::ToMany, "EntityEmail", "type"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The first of that stored title, or null.
    static std::shared_ptr<EntityEmailType> type(const QString &title);
    /// All of them in the order of their pop-ups.
    static ObjectList<EntityEmailType> allTypes();

    MANAGED_TEXT(title, setTitle)
    MANAGED_INTEGER(index, setIndex)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_MANY(EntityEmail, email, setEmail)
};

/// A kind of web address.
class EntityURLType : public TypedObject<EntityURLType>
{
public:
    static constexpr std::string_view entityName = "EntityURLType";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"index", AttributeType::Integer},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"url", Cardinality::ToMany, "EntityURL", "type"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The first of that stored title, or null.
    static std::shared_ptr<EntityURLType> type(const QString &title);
    /// All of them in the order of their pop-ups.
    static ObjectList<EntityURLType> allTypes();

    MANAGED_TEXT(title, setTitle)
    MANAGED_INTEGER(index, setIndex)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_MANY(EntityURL, url, setUrl)
};

/// A kind of postal address.
class EntityAddressType : public TypedObject<EntityAddressType>
{
public:
    static constexpr std::string_view entityName = "EntityAddressType";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"index", AttributeType::Integer},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"address", Cardinality::ToMany, "EntityAddress", "addressType"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The first of that stored title, or null.
    static std::shared_ptr<EntityAddressType> type(const QString &title);
    /// All of them in the order of their pop-ups.
    static ObjectList<EntityAddressType> allTypes();

    MANAGED_TEXT(title, setTitle)
    MANAGED_INTEGER(index, setIndex)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_MANY(EntityAddress, address, setAddress)
};
