#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityAddress;
class EntityContactGroup;
class EntityContacts;
class EntityEmail;
class EntityNote;
class EntityPhone;
class EntityTask;
class EntityURL;

/// A company and the people who work there.
class EntityCompany : public TypedObject<EntityCompany>
{
public:
    static constexpr std::string_view entityName = "EntityCompany";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"details", AttributeType::String},
        {"photoName", AttributeType::String},
        {"keyPhoto", AttributeType::Integer},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"contact", Cardinality::ToMany, "EntityContacts", "company"},
        {"contactGroup", Cardinality::ToManyThroughJoin, "EntityContactGroup", "companies"},
        {"address", Cardinality::ToMany, "EntityAddress", "company", DeleteRule::Cascade},
        {"email", Cardinality::ToMany, "EntityEmail", "company", DeleteRule::Cascade},
        {"phone", Cardinality::ToMany, "EntityPhone", "company", DeleteRule::Cascade},
        {"url", Cardinality::ToMany, "EntityURL", "company", DeleteRule::Cascade},
        {"task", Cardinality::ToMany, "EntityTask", "company"},
        {"note", Cardinality::ToMany, "EntityNote", "company"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The number of people, a blank, and the word for them.
    QString employees() const;
    /// The first company of that title, or null.
    static std::shared_ptr<EntityCompany> name(const QString &title);

    MANAGED_TEXT(title, setTitle)
    MANAGED_TEXT(details, setDetails)
    MANAGED_TEXT(photoName, setPhotoName)
    MANAGED_INTEGER(keyPhoto, setKeyPhoto)
    MANAGED_TO_MANY(EntityContacts, contact, setContact)
    MANAGED_TO_MANY(EntityContactGroup, contactGroup, setContactGroup)
    MANAGED_TO_MANY(EntityAddress, address, setAddress)
    MANAGED_TO_MANY(EntityEmail, email, setEmail)
    MANAGED_TO_MANY(EntityPhone, phone, setPhone)
    MANAGED_TO_MANY(EntityURL, url, setUrl)
    MANAGED_TO_MANY(EntityTask, task, setTask)
    MANAGED_TO_MANY(EntityNote, note, setNote)
};
