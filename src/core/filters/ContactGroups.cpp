#include "filters/ContactGroups.h"

#include "foundation/Localization.h"
#include "store/entities/MainContext.h"
#include "store/queries/ContactRows.h"
#include "store/state/NotificationNames.h"

using namespace Qt::Literals::StringLiterals;

bool ContactGroups::isGroup(const EntityContactGroup &group)
{
    return !group.useGeneralFilter().value_or(true);
}

std::vector<ContactPtr> ContactGroups::contactsOf(const EntityContactGroup *group)
{
    if (!group)
        return DBWorker::allDelegateds();
    std::vector<ContactPtr> contacts;
    if (isGroup(*group)) {
        // The set has no order: those of one name stand as they were made.
        contacts = group->contacts();
        std::ranges::sort(contacts, {}, &EntityContacts::rowId);
        return DBWorker::sortContacta(std::move(contacts));
    }
    for (ContactPtr contact : group->allDelegateds()) {
        if (contact)
            contacts.push_back(std::move(contact));
    }
    return contacts;
}

std::vector<RowId> ContactGroups::rowsOf(const EntityContactGroup *group, const FilterEntry *filter)
{
    if (!group)
        return ContactRows::byFullName(
            EntityContacts::fetchRequest().where(Predicate::allOf(DBWorker::predicateContacts(filter))));
    if (isGroup(*group)) {
        const ObjectPtr itself = mainContext().objectForUri(group->uri());
        return ContactRows::byFullName(EntityContacts::fetchRequest().where(Predicate::format(
            "ANY contactGroup == %@", std::dynamic_pointer_cast<EntityContactGroup>(itself))));
    }
    const auto listed = group->allDelegateds();
    const auto rows = listed.rows();
    return {rows.begin(), rows.end()};
}

ContactFilterButtons ContactGroups::activeFilterButtons(const EntityContactGroup *group)
{
    ContactFilterButtons buttons{{localized(QStringLiteral("Filter"))}, {localized(QStringLiteral("Group"))}};
    if (!group)
        return buttons;
    if (isGroup(*group)) {
        buttons.filter.isEnabled = false;
        buttons.group = {localized(QStringLiteral("Grouped")), true, true};
    } else {
        buttons.filter = {localized(QStringLiteral("Filtered")), true, true};
        buttons.group.isEnabled = false;
    }
    return buttons;
}

void ContactGroups::saveListFilterContacts(const MVContactGroup &list,
                                           const std::shared_ptr<EntityContactGroup> &contactGroup,
                                           const std::function<void()> &reloadData)
{
    // What was set for a list that has gone meanwhile becomes another.
    if (!contactGroup || contactGroup->isDeleted() || !contactGroup->context()) {
        NotificationCenter::defaultCenter().post(notifications::saveNewContactGroup, list);
        return;
    }
    contactGroup->setAllCategories(list.allCategories);
    contactGroup->setAllCompanies(list.allCompanies);
    contactGroup->setCriteria(list.criteria);
    contactGroup->setCategories(list.categories);
    contactGroup->setCompanies(list.companies);
    DBWorker::saveStep(u"Change Group"_s);
    reloadData();
}

std::shared_ptr<EntityContactGroup> ContactGroups::saveContactGroup(const MVContactGroup &values)
{
    const auto group = mainContext().insert<EntityContactGroup>();
    group->setTitle(values.title);
    group->setContacts(values.contacts);
    group->setUseGeneralFilter(values.useGeneralFilter);
    group->setAllCategories(values.allCategories);
    group->setAllCompanies(values.allCompanies);
    group->setCategories(values.categories);
    group->setCompanies(values.companies);
    group->setCriteria(values.criteria);
    DBWorker::saveStep(u"New Group"_s);
    return group;
}

bool ContactGroups::rename(EntityContactGroup &group, const QString &title)
{
    const QString wanted = title.trimmed();
    if (wanted.isEmpty() || wanted == group.title())
        return false;
    group.setTitle(wanted);
    DBWorker::saveStep(u"Change Group"_s);
    return true;
}
