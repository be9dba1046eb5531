#include "records/people/ContactExport.h"

#include "cloud/IcloudManager.h"
#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "records/people/ContactLabels.h"
#include "records/people/NoteWords.h"
#include "store/entities/EntityContactGroup.h"
#include "store/queries/DBWorker.h"

namespace {

template <typename Type, typename Known>
void addLabels(QHash<QString, QString> &labels, const ObjectList<Type> &types, const Known &known)
{
    std::size_t place = 0;
    for (const std::shared_ptr<Type> &type : types) {
        labels.insert(type->identifier(), place < known.size() ? known[place] : type->title());
        ++place;
    }
}

template <typename Owner>
QStringList groupsOf(const Owner &owner)
{
    QStringList titles;
    for (const auto &group : owner.contactGroup())
        titles << group->title();
    titles.sort();
    return titles;
}

} // namespace

ContactExport::ContactExport()
{
    addLabels(labels, DBWorker::allPhoneType(), ContactLabels::phone);
    addLabels(labels, DBWorker::allEmailType(), ContactLabels::email);
    addLabels(labels, DBWorker::allAddressType(), ContactLabels::address);
    addLabels(labels, DBWorker::allURLType(), ContactLabels::url);
}

template <typename Owner>
void ContactExport::takeDetails(CNContact &contact, const Owner &owner) const
{
    const auto labelOf = [this](const auto &type) {
        return type ? labels.value(type->identifier()) : QString();
    };
    for (const auto &phone : owner.phone())
        contact.phoneNumbers.push_back({labelOf(phone->type()), phone->number()});
    for (const auto &email : owner.email())
        contact.emailAddresses.push_back({labelOf(email->type()), email->mail()});
    for (const auto &url : owner.url())
        contact.urlAddresses.push_back({labelOf(url->type()), url->url()});
    for (const auto &address : owner.address())
        contact.postalAddresses.push_back({labelOf(address->addressType()),
                                           {address->street1(), address->street2(), address->city(),
                                            address->state(), address->zip(), address->country()}});
}

CNContact ContactExport::made(const EntityContacts &contact) const
{
    CNContact values;
    values.identifier = contact.identifier();
    values.givenName = contact.firstName();
    values.familyName = contact.lastName();
    if (const CompanyPtr company = contact.company())
        values.organizationName = company->title();
    // The category is what the form calls the job title.
    if (const auto category = contact.contactCategory())
        values.jobTitle = localized(category->title());
    if (const OptionalDate birthday = contact.birthday()) {
        const Calendar calendar = Calendar::current();
        const Date day = MVDate::getNearestDay(*birthday);
        values.birthday = CNBirthday{calendar.year(day), calendar.month(day), calendar.day(day)};
    }
    values.note = notewords::of(contact);
    values.groups = groupsOf(contact);
    takeDetails(values, contact);
    return values;
}

CNContact ContactExport::made(const EntityCompany &company) const
{
    CNContact values;
    values.identifier = company.identifier();
    values.organizationName = company.title();
    values.isOrganization = true;
    values.note = company.details();
    takeDetails(values, company);
    return values;
}

CNContact ContactExport::contactOf(const EntityContacts &contact) const
{
    CNContact values = made(contact);
    values.imageData = IcloudManager::imageData(contact.photoName());
    return values;
}

CNContact ContactExport::contactOf(const EntityCompany &company) const
{
    CNContact values = made(company);
    values.imageData = IcloudManager::imageData(company.photoName());
    return values;
}

static bool isCompany(const ManagedObject &record)
{
    return record.entity().name() == EntityCompany::entityName;
}

CNContact ContactExport::contactOf(const ManagedObject &record) const
{
    return isCompany(record) ? contactOf(static_cast<const EntityCompany &>(record))
                             : contactOf(static_cast<const EntityContacts &>(record));
}

CNContact ContactExport::detailsOf(const ManagedObject &record) const
{
    return isCompany(record) ? made(static_cast<const EntityCompany &>(record))
                             : made(static_cast<const EntityContacts &>(record));
}
