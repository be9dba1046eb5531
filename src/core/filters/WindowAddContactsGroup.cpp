#include "filters/WindowAddContactsGroup.h"

#include "foundation/Localization.h"
#include "foundation/TextFolding.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

#include <algorithm>
#include <map>

WindowAddContactsGroup::WindowAddContactsGroup(const std::shared_ptr<EntityContactGroup> &group)
    : contactGroup(group)
{
    edited.useGeneralFilter = false;
    edited.title = group ? group->title() : localized(QStringLiteral("Private Group"));
    if (group)
        edited.contacts = group->contacts();
}

QString WindowAddContactsGroup::title() const
{
    return localized(contactGroup ? QStringLiteral("Edit contacts group")
                                  : QStringLiteral("Add contacts group"));
}

namespace {

/// The initial that a name stands under, with marks taken off so that Ä is found at A.
QString headerOf(const QString &name)
{
    const QString initial = foldedForSearch(name.trimmed().left(2)).left(1).toUpper();
    return !initial.isEmpty() && initial.at(0).isLetter() ? initial : QStringLiteral("#");
}

} // namespace

std::vector<WindowAddContactsGroup::Row>
WindowAddContactsGroup::groupContacts(const std::vector<ContactPtr> &contacts)
{
    std::map<QString, std::vector<ContactPtr>> byInitial;
    for (const ContactPtr &contact : contacts)
        byInitial[headerOf(contact->fullName())].push_back(contact);
    std::vector<Row> rows;
    for (const auto &[initial, members] : byInitial) {
        rows.push_back({initial, nullptr});
        for (const ContactPtr &contact : members)
            rows.push_back({{}, contact});
    }
    return rows;
}

std::vector<WindowAddContactsGroup::Row> WindowAddContactsGroup::rows(const QString &search) const
{
    std::vector<ContactPtr> contacts = DBWorker::allDelegateds();
    std::stable_sort(contacts.begin(), contacts.end(), [](const ContactPtr &one, const ContactPtr &other) {
        return localizedCaseInsensitiveCompare(one->fullName(), other->fullName()) < 0;
    });
    if (search.isEmpty())
        return groupContacts(contacts);
    std::vector<Row> found;
    for (const ContactPtr &contact : contacts) {
        if (contact->fullName().toLower().contains(search.toLower()))
            found.push_back({{}, contact});
    }
    return found;
}

bool WindowAddContactsGroup::isMarked(const ContactPtr &contact) const
{
    return std::find(edited.contacts.begin(), edited.contacts.end(), contact) != edited.contacts.end();
}

void WindowAddContactsGroup::toggle(const ContactPtr &contact)
{
    if (std::erase(edited.contacts, contact) == 0)
        edited.contacts.push_back(contact);
}

void WindowAddContactsGroup::clickButtonDone()
{
    // Who was deleted while the window was open is nobody's member.
    std::erase_if(edited.contacts, [](const ContactPtr &contact) { return !contact->context(); });
    if (!contactGroup) {
        NotificationCenter::defaultCenter().post(notifications::saveNewContactGroup, edited);
        return;
    }
    contactGroup->setContacts(edited.contacts);
    DBWorker::saveOrTell();
}
