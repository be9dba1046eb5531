#include "records/people/GroupMembers.h"

#include "calendarsync/RecordsTransaction.h"
#include "filters/MVContactGroup.h"
#include "foundation/Localization.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

using namespace Qt::Literals::StringLiterals;

GroupMembers::GroupMembers(std::shared_ptr<EntityContactGroup> group)
    : contactGroup(std::move(group))
{
    std::vector<MarkedRows::Entry> found;
    const NameOrder order = preferredNameOrder();
    mainContext().visit(EntityContacts::fetchRequest(), {"firstName", "lastName"}, [&](const RowReader &row) {
        found.push_back({row.rowId(), fullNameIn(order, row.text(0), row.text(1))});
    });
    people.setEntries(std::move(found));
    if (!contactGroup)
        return;
    std::set<RowId> members;
    for (const ContactPtr &contact : contactGroup->contacts())
        members.insert(contact->rowId());
    people.setMarked(std::move(members));
}

QString GroupMembers::title() const
{
    return localized(contactGroup ? u"Edit contacts group"_s : u"Add contacts group"_s);
}

std::vector<ContactPtr> GroupMembers::markedContacts() const
{
    const std::vector<RowId> rows(people.marked().begin(), people.marked().end());
    const ObjectList<EntityContacts> loaded(mainContext(),
                                            organiserModel().requireEntity(EntityContacts::entityName), rows);
    std::vector<ContactPtr> contacts;
    for (ContactPtr contact : loaded) {
        if (contact)
            contacts.push_back(std::move(contact));
    }
    return contacts;
}

bool GroupMembers::save()
{
    if (!contactGroup) {
        MVContactGroup made;
        made.useGeneralFilter = false;
        made.title = localized(u"Private Group"_s);
        made.contacts = markedContacts();
        NotificationCenter::defaultCenter().post(notifications::saveNewContactGroup, made);
        return true;
    }
    if (contactGroup->isDeleted() || !contactGroup->context())
        return true;
    RecordsTransaction transaction(title());
    contactGroup->setContacts(markedContacts());
    return DBWorker::tellOfFailure(transaction.commit());
}
