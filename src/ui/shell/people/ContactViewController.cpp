#include "shell/people/ContactViewController.h"

#include "filters/ContactGroups.h"
#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

ContactViewController::ContactViewController(const RecordKind &people,
                                             std::shared_ptr<EntityContactGroup> shownGroup, QWidget *parent)
    : PlainRecordScreen(ofGroup(people), parent)
    , group(std::move(shownGroup))
{}

/// The rows are asked for once the screen stands.
RecordKind ContactViewController::ofGroup(RecordKind people) const
{
    people.rows = [this](const FilterEntry *filter) { return rows(filter); };
    people.isRegroupedBy = [this](const StoreChanges &changes) { return isRegroupedBy(changes); };
    return people;
}

void ContactViewController::setContactGroup(const std::shared_ptr<EntityContactGroup> &newGroup)
{
    group = newGroup;
    reloadData();
}

std::vector<ListedRecord> ContactViewController::rows(const FilterEntry *filter) const
{
    std::vector<ListedRecord> listed;
    if (group && (group->isDeleted() || !group->context()))
        return listed;
    const std::vector<RowId> contacts = ContactGroups::rowsOf(group.get(), filter);
    listed.reserve(contacts.size());
    for (const RowId contact : contacts)
        listed.push_back({contact});
    return listed;
}

/// Who belongs to a group stands in the group; of a list it depends on companies, categories and tasks, too.
bool ContactViewController::isRegroupedBy(const StoreChanges &changes) const
{
    if (!group)
        return false;
    const bool hasCriteria = !ContactGroups::isGroup(*group) && group->criteria().value_or(0) != 0;
    return changes.concerns(EntityContactGroup::entityName) ||
           (hasCriteria && changes.concerns(EntityTask::entityName));
}
