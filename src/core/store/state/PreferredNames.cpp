#include "store/entities/EntityContacts.h"
#include "store/entities/FullName.h"
#include "store/state/CoreContext.h"

// Names of people in the order that the user prefers.

NameOrder preferredNameOrder()
{
    const bool isFirstNameFirst = CoreContext::current().dataConteiner.contactsDisplayOrder() == 0;
    return isFirstNameFirst ? NameOrder::FirstNameFirst : NameOrder::LastNameFirst;
}

QString fullNameWith(const QString &firstName, const QString &lastName)
{
    return fullNameIn(preferredNameOrder(), firstName, lastName);
}

QString EntityContacts::fullName() const
{
    return fullNameWith(firstName(), lastName());
}
