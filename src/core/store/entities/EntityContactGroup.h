#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/Predicate.h"
#include "objectstore/TypedObject.h"

class EntityCompany;
class EntityContactCategory;
class EntityContacts;

/// A saved selection of contacts: a list defined by criteria, or a group with members picked by hand.
class EntityContactGroup : public TypedObject<EntityContactGroup>
{
public:
    static constexpr std::string_view entityName = "EntityContactGroup";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"useGeneralFilter", AttributeType::Boolean},
        {"criteria", AttributeType::Integer},
        {"allCompanies", AttributeType::Boolean},
        {"allCategories", AttributeType::Boolean},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"contacts", Cardinality::ToManyOwningJoin, "EntityContacts", "contactGroup"},
        {"companies", Cardinality::ToManyOwningJoin, "EntityCompany", "contactGroup"},
        {"categories", Cardinality::ToManyOwningJoin, "EntityContactCategory", "contactGroup"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The conditions that its criteria and its restrictions on companies and categories put on a contact.
    std::vector<Predicate> predicateContactsArray() const;
    /// The contacts that meet them all, by first and then last name.
    ObjectList<EntityContacts> allDelegateds() const;

    MANAGED_TEXT(title, setTitle)
    MANAGED_BOOLEAN(useGeneralFilter, setUseGeneralFilter)
    MANAGED_INTEGER(criteria, setCriteria)
    MANAGED_BOOLEAN(allCompanies, setAllCompanies)
    MANAGED_BOOLEAN(allCategories, setAllCategories)
    MANAGED_TO_MANY(EntityContacts, contacts, setContacts)
    MANAGED_TO_MANY(EntityCompany, companies, setCompanies)
    MANAGED_TO_MANY(EntityContactCategory, categories, setCategories)
};
