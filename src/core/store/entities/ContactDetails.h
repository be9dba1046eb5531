#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityAddressType;
class EntityCompany;
class EntityContacts;
class EntityEmailType;
class EntityPhoneType;
class EntityURLType;

/// A telephone number of a contact or a company.
class EntityPhone : public TypedObject<EntityPhone>
{
public:
    static constexpr std::string_view entityName = "EntityPhone";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"number", AttributeType::String},
        {"position", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"type", Cardinality::ToOne, "EntityPhoneType", "phone"},
        {"contact", Cardinality::ToOne, "EntityContacts", "phone"},
        {"company", Cardinality::ToOne, "EntityCompany", "phone"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(number, setNumber)
    MANAGED_INTEGER(position, setPosition)
    MANAGED_TO_ONE(EntityPhoneType, type, setType)
    MANAGED_TO_ONE(EntityContacts, contact, setContact)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
};

/// A mail address of a contact or a company.
class EntityEmail : public TypedObject<EntityEmail>
{
public:
    static constexpr std::string_view entityName = "EntityEmail";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"mail", AttributeType::String},
        {"position", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"type", Cardinality::ToOne, "EntityEmailType", "email"},
        {"contact", Cardinality::ToOne, "EntityContacts", "email"},
        {"company", Cardinality::ToOne, "EntityCompany", "email"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(mail, setMail)
    MANAGED_INTEGER(position, setPosition)
    MANAGED_TO_ONE(EntityEmailType, type, setType)
    MANAGED_TO_ONE(EntityContacts, contact, setContact)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
};

/// A web address of a contact or a company.
class EntityURL : public TypedObject<EntityURL>
{
public:
    static constexpr std::string_view entityName = "EntityURL";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"url", AttributeType::String},
        {"position", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"type", Cardinality::ToOne, "EntityURLType", "url"},
        {"contact", Cardinality::ToOne, "EntityContacts", "url"},
        {"company", Cardinality::ToOne, "EntityCompany", "url"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(url, setUrl)
    MANAGED_INTEGER(position, setPosition)
    MANAGED_TO_ONE(EntityURLType, type, setType)
    MANAGED_TO_ONE(EntityContacts, contact, setContact)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
};

/// A postal address of a contact or a company.
class EntityAddress : public TypedObject<EntityAddress>
{
public:
    static constexpr std::string_view entityName = "EntityAddress";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"street1", AttributeType::String},
        {"street2", AttributeType::String},
        {"city", AttributeType::String},
        {"state", AttributeType::String},
        {"zip", AttributeType::String},
        {"country", AttributeType::String},
        {"position", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"addressType", Cardinality::ToOne, "EntityAddressType", "address"},
        {"contact", Cardinality::ToOne, "EntityContacts", "address"},
        {"company", Cardinality::ToOne, "EntityCompany", "address"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }

    MANAGED_TEXT(street1, setStreet1)
    MANAGED_TEXT(street2, setStreet2)
    MANAGED_TEXT(city, setCity)
    MANAGED_TEXT(state, setState)
    MANAGED_TEXT(zip, setZip)
    MANAGED_TEXT(country, setCountry)
    MANAGED_INTEGER(position, setPosition)
    MANAGED_TO_ONE(EntityAddressType, addressType, setAddressType)
    MANAGED_TO_ONE(EntityContacts, contact, setContact)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
};
