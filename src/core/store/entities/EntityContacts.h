#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityAddress;
class EntityCompany;
class EntityContactCategory;
class EntityContactGroup;
class EntityEmail;
class EntityNote;
class EntityPhone;
class EntityProject;
class EntityTask;
class EntityURL;

/// A person.
class EntityContacts : public TypedObject<EntityContacts>
{
public:
    static constexpr std::string_view entityName = "EntityContacts";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"firstName", AttributeType::String},
        {"lastName", AttributeType::String},
        {"birthday", AttributeType::Date},
        {"photoName", AttributeType::String},
        {"keyPhoto", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"company", Cardinality::ToOne, "EntityCompany", "contact"},
        {"contactCategory", Cardinality::ToOne, "EntityContactCategory", "contact"},
        {"contactGroup", Cardinality::ToManyThroughJoin, "EntityContactGroup", "contacts"},
        {"address", Cardinality::ToMany, "EntityAddress", "contact", DeleteRule::Cascade},
        {"email", Cardinality::ToMany, "EntityEmail", "contact", DeleteRule::Cascade},
        {"phone", Cardinality::ToMany, "EntityPhone", "contact", DeleteRule::Cascade},
        {"url", Cardinality::ToMany, "EntityURL", "contact", DeleteRule::Cascade},
        {"note", Cardinality::ToMany, "EntityNote", "contact"},
        {"project", Cardinality::ToManyThroughJoin, "EntityProject", "delegateToUser"},
        {"task", Cardinality::ToMany, "EntityTask", "delegateToUser"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// First and last name in the order that the user prefers; one alone if the other is empty; empty without
    /// either.
    QString fullName() const;
    /// The first contact with both names exactly so, or null.
    static std::shared_ptr<EntityContacts> firstName(const QString &firstName, const QString &lastName);
    /// All contacts, without an order.
    static ObjectList<EntityContacts> contacts();

    MANAGED_TEXT(firstName, setFirstName)
    MANAGED_TEXT(lastName, setLastName)
    MANAGED_DATE(birthday, setBirthday)
    MANAGED_TEXT(photoName, setPhotoName)
    MANAGED_INTEGER(keyPhoto, setKeyPhoto)
    MANAGED_TO_ONE(EntityCompany, company, setCompany)
    MANAGED_TO_ONE(EntityContactCategory, contactCategory, setContactCategory)
    MANAGED_TO_MANY(EntityContactGroup, contactGroup, setContactGroup)
    MANAGED_TO_MANY(EntityAddress, address, setAddress)
    MANAGED_TO_MANY(EntityEmail, email, setEmail)
    MANAGED_TO_MANY(EntityPhone, phone, setPhone)
    MANAGED_TO_MANY(EntityURL, url, setUrl)
    MANAGED_TO_MANY(EntityNote, note, setNote)
    MANAGED_TO_MANY(EntityProject, project, setProject)
    MANAGED_TO_MANY(EntityTask, task, setTask)
};
