#include "store/entities/EntityContacts.h"

#include "store/entities/Entities.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"

MANAGED_TO_ONE_DEFINITION(EntityContacts, EntityCompany, company, setCompany)
MANAGED_TO_ONE_DEFINITION(EntityContacts, EntityContactCategory, contactCategory, setContactCategory)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityContactGroup, contactGroup, setContactGroup)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityAddress, address, setAddress)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityEmail, email, setEmail)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityPhone, phone, setPhone)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityURL, url, setUrl)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityNote, note, setNote)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityProject, project, setProject)
MANAGED_TO_MANY_DEFINITION(EntityContacts, EntityTask, task, setTask)

QString fullNameIn(NameOrder order, const QString &firstName, const QString &lastName)
{
    if (firstName.isEmpty() || lastName.isEmpty())
        return firstName + lastName;
    return order == NameOrder::FirstNameFirst ? firstName + u' ' + lastName : lastName + u' ' + firstName;
}

ContactPtr EntityContacts::firstName(const QString &firstName, const QString &lastName)
{
    return mainContext().fetchFirst<EntityContacts>(
        fetchRequest().where(Predicate::format("firstName = %@ and lastName = %@", firstName, lastName)));
}

ObjectList<EntityContacts> EntityContacts::contacts()
{
    return mainContext().fetch<EntityContacts>(fetchRequest());
}
