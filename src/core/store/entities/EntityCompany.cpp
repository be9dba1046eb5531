#include "store/entities/EntityCompany.h"

#include "foundation/Localization.h"
#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"

MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityContacts, contact, setContact)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityContactGroup, contactGroup, setContactGroup)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityAddress, address, setAddress)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityEmail, email, setEmail)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityPhone, phone, setPhone)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityURL, url, setUrl)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityTask, task, setTask)
MANAGED_TO_MANY_DEFINITION(EntityCompany, EntityNote, note, setNote)

QString EntityCompany::employees() const
{
    return QStringLiteral("%1 %2").arg(contact().size()).arg(localized(QStringLiteral("employees")));
}

CompanyPtr EntityCompany::name(const QString &title)
{
    return mainContext().fetchFirst<EntityCompany>(
        fetchRequest().where(Predicate::format("title = %@", title)));
}
