#include "records/people/PresentNames.h"

#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <algorithm>

namespace {

/// Whether somebody has no phone, mail, page of the web, address or picture.
bool isUndescribed(const auto &owner)
{
    return owner.photoName().isEmpty() && owner.phone().empty() && owner.email().empty() &&
           owner.url().empty() && owner.address().empty();
}

/// Null for one that is gone by now.
template <typename Entity>
std::shared_ptr<Entity> loaded(RowId row)
{
    const ObjectList<Entity> rows(mainContext(), organiserModel().requireEntity(Entity::entityName), {row});
    return rows.at(0);
}

} // namespace

PresentNames::PresentNames()
{
    mainContext().visit(EntityContacts::fetchRequest(), {"firstName", "lastName"}, [&](const RowReader &row) {
        const QString first = row.text(0);
        const QString last = row.text(1);
        contactsByNames.insert(keyOf(first, last), row.rowId());
        const QString name = fullNameWith(first, last);
        const auto known = contacts.find(name);
        if (known == contacts.end())
            contacts.insert(name, row.rowId());
        else
            *known = 0;
    });
    mainContext().visit(EntityCompany::fetchRequest(), {"title"}, [&](const RowReader &row) {
        RowId &first = companies[row.text(0)];
        first = first == 0 ? row.rowId() : std::min(first, row.rowId());
    });
}

CompanyPtr PresentNames::company(const QString &title) const
{
    const RowId row = rowOfCompany(title);
    return row != 0 ? loaded<EntityCompany>(row) : nullptr;
}

ContactPtr PresentNames::bareContact(const QString &name) const
{
    const RowId row = contacts.value(name);
    const ContactPtr contact = row != 0 ? loaded<EntityContacts>(row) : nullptr;
    const bool isBare = contact && !contact->birthday() && !contact->company() &&
                        !contact->contactCategory() && isUndescribed(*contact);
    return isBare ? contact : nullptr;
}

bool PresentNames::isBareCompany(const QString &title) const
{
    const CompanyPtr present = company(title);
    return present && present->details().isEmpty() && isUndescribed(*present);
}
