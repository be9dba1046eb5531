#include "store/entities/EntityContactGroup.h"

#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"

MANAGED_TO_MANY_DEFINITION(EntityContactGroup, EntityContacts, contacts, setContacts)
MANAGED_TO_MANY_DEFINITION(EntityContactGroup, EntityCompany, companies, setCompanies)
MANAGED_TO_MANY_DEFINITION(EntityContactGroup, EntityContactCategory, categories, setCategories)

namespace {

enum Criteria { NotRestricted = 0, WithTasks = 1, WithoutTasks = 2 };

template <typename T>
Predicate restriction(const char *key, const std::vector<std::shared_ptr<T>> &allowed)
{
    if (allowed.empty())
        return Predicate::format("ANY " + std::string(key) + " == nil");
    return Predicate::format("ANY " + std::string(key) + " in %@", allowed);
}

} // namespace

std::vector<Predicate> EntityContactGroup::predicateContactsArray() const
{
    std::vector<Predicate> predicates;
    if (criteria() == WithTasks)
        predicates.push_back(Predicate::format("task.@count != 0"));
    else if (criteria() == WithoutTasks)
        predicates.push_back(Predicate::format("task.@count == 0"));
    if (!allCompanies().value_or(false))
        predicates.push_back(restriction("company", companies()));
    if (!allCategories().value_or(false))
        predicates.push_back(restriction("contactCategory", categories()));
    return predicates;
}

ObjectList<EntityContacts> EntityContactGroup::allDelegateds() const
{
    return mainContext().fetch<EntityContacts>(
        EntityContacts::fetchRequest()
            .where(Predicate::allOf(predicateContactsArray()))
            .sortedBy({ascending("firstName"), ascending("lastName")}));
}
