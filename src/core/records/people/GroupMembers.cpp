#include "records/people/GroupMembers.h"

#include "calendarsync/RecordsTransaction.h"
#include "filters/MVContactGroup.h"
#include "foundation/Localization.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

#include <algorithm>
#include <iterator>

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
    for (const ContactPtr &contact : contactGroup->contacts())
        members.insert(contact->rowId());
    people.setMarked(members);
}

QString GroupMembers::title() const
{
    return localized(contactGroup ? u"Edit contacts group"_s : u"Add contacts group"_s);
}

std::vector<ContactPtr> GroupMembers::contactsOf(const std::set<RowId> &wanted)
{
    const std::vector<RowId> rows(wanted.begin(), wanted.end());
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
    if (!contactGroup || contactGroup->isDeleted() || !contactGroup->context()) {
        MVContactGroup made;
        made.useGeneralFilter = false;
        made.title = localized(u"Private Group"_s);
        made.contacts = contactsOf(people.marked());
        NotificationCenter::defaultCenter().post(notifications::saveNewContactGroup, made);
        return true;
    }
    std::set<RowId> added;
    std::set<RowId> removed;
    std::ranges::set_difference(people.marked(), members, std::inserter(added, added.end()));
    std::ranges::set_difference(members, people.marked(), std::inserter(removed, removed.end()));
    RecordsTransaction transaction(title());
    for (const ContactPtr &contact : contactsOf(added))
        contactGroup->addRelated("contacts", contact);
    for (const ContactPtr &contact : contactsOf(removed))
        contactGroup->removeRelated("contacts", contact);
    members = people.marked();
    return DBWorker::tellOfFailure(transaction.commit());
}
