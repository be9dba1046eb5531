#include "shell/people/ContactViewController.h"

#include "filters/ContactGroups.h"
#include "filters/ContactsTopView.h"
#include "records/people/ContactForm.h"
#include "shell/contactimport/ImportContactWindowController.h"
#include "shell/people/BirthdaysStrip.h"
#include "shell/people/WindowAddContactsGroup.h"

#include <QDropEvent>

ContactViewController::ContactViewController(const RecordKind &people,
                                             std::shared_ptr<EntityContactGroup> shownGroup, QWidget *parent)
    : PlainRecordScreen(ofGroup(people), parent)
    , group(std::move(shownGroup))
    , topView(new ContactsTopView)
{
    setAcceptDrops(true);
    setStrip(topView);
    topView->setContactGroup(group);
    connect(topView, &ContactsTopView::listChanged, this, &TabsViewController::reloadData);
    connect(topView, &ContactsTopView::membersWanted, this, &ContactViewController::pickMembers);
    if (group)
        return;
    auto *birthdays = new BirthdaysStrip;
    topView->setLeading(birthdays);
    connect(birthdays, &BirthdaysStrip::pressed, this, &TabsViewController::selectItem);
}

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
    topView->setContactGroup(group);
    reloadData();
}

void ContactViewController::openFilter()
{
    topView->toggleFilter();
}

bool ContactViewController::canFilter() const
{
    return topView->canFilter();
}

/// Those of the group, or of a new one.
void ContactViewController::pickMembers()
{
    (new WindowAddContactsGroup(group, window()))->showWindow();
}

/// A new contact would stand neither in a group nor surely on a list.
void ContactViewController::addFirst()
{
    if (!group)
        PlainRecordScreen::addFirst();
    else if (ContactGroups::isGroup(*group))
        pickMembers();
    else
        openFilter();
}

/// Nobody would see where somebody new went who belonged to no group.
std::shared_ptr<EntityContactGroup> ContactViewController::joinedGroup() const
{
    return group && ContactGroups::isGroup(*group) ? group : nullptr;
}

void ContactViewController::prepareNew(FormModel &form)
{
    if (auto *const contact = dynamic_cast<ContactForm *>(&form); contact && joinedGroup())
        contact->values.contactGroup = {joinedGroup()};
}

void ContactViewController::dragEnterEvent(QDragEnterEvent *event)
{
    if (!ImportContactWindowController::filesIn(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void ContactViewController::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    ImportContactWindowController::openFiles(
        window(), ImportContactWindowController::filesIn(*event->mimeData()), joinedGroup());
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
