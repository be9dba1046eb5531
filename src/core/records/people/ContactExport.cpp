#include "records/people/ContactExport.h"

#include "cloud/IcloudManager.h"
#include "contacts/VCardWriter.h"
#include "foundation/Calendar.h"
#include "records/people/ContactLabels.h"
#include "store/queries/DBWorker.h"

#include <QHash>
#include <QIODevice>

namespace {

/// Labels of types by their identifiers.
class TypeLabels
{
public:
    TypeLabels()
    {
        add(DBWorker::allPhoneType(), ContactLabels::phone);
        add(DBWorker::allEmailType(), ContactLabels::email);
        add(DBWorker::allAddressType(), ContactLabels::address);
        add(DBWorker::allURLType(), ContactLabels::url);
    }
    template <typename Type>
    QString of(const std::shared_ptr<Type> &type) const
    {
        return type ? labels.value(type->identifier()) : QString();
    }

private:
    template <typename Type, typename Labels>
    void add(const ObjectList<Type> &types, const Labels &known)
    {
        std::size_t place = 0;
        for (const std::shared_ptr<Type> &type : types) {
            labels.insert(type->identifier(), place < known.size() ? known[place] : type->title());
            ++place;
        }
    }

    QHash<QString, QString> labels;
};

template <typename Owner>
void takeDetails(CNContact &contact, const Owner &owner, const TypeLabels &labels)
{
    for (const auto &phone : owner.phone())
        contact.phoneNumbers.push_back({labels.of(phone->type()), phone->number()});
    for (const auto &email : owner.email())
        contact.emailAddresses.push_back({labels.of(email->type()), email->mail()});
    for (const auto &url : owner.url())
        contact.urlAddresses.push_back({labels.of(url->type()), url->url()});
    for (const auto &address : owner.address())
        contact.postalAddresses.push_back({labels.of(address->addressType()),
                                           {address->street1(), address->street2(), address->city(),
                                            address->state(), address->zip(), address->country()}});
    contact.imageData = IcloudManager::imageData(owner.photoName());
}

CNContact made(const EntityContacts &contact, const TypeLabels &labels)
{
    CNContact values;
    values.identifier = contact.identifier();
    values.givenName = contact.firstName();
    values.familyName = contact.lastName();
    if (const CompanyPtr company = contact.company())
        values.organizationName = company->title();
    if (const OptionalDate birthday = contact.birthday()) {
        const Calendar calendar = Calendar::current();
        values.birthday =
            CNBirthday{calendar.year(*birthday), calendar.month(*birthday), calendar.day(*birthday)};
    }
    takeDetails(values, contact, labels);
    return values;
}

CNContact made(const EntityCompany &company, const TypeLabels &labels)
{
    CNContact values;
    values.identifier = company.identifier();
    values.organizationName = company.title();
    values.isOrganization = true;
    takeDetails(values, company, labels);
    return values;
}

template <typename Pointer>
OptionalError writeAll(QIODevice &device, const std::vector<Pointer> &records, const TypeLabels &labels,
                       const StepBlock &step, bool &isStopped)
{
    for (const Pointer &record : records) {
        if (isStopped)
            break;
        // It may have gone while the user was shown how far the work is.
        if (!record || record->isDeleted() || !record->context())
            continue;
        const QByteArray card = VCardWriter::text(made(*record, labels));
        if (device.write(card) != card.size())
            return Error{QStringLiteral("contacts"), 0,
                         QStringLiteral("Cannot write the contacts: %1").arg(device.errorString())};
        isStopped = step && !step();
    }
    return std::nullopt;
}

} // namespace

CNContact ContactExport::contactOf(const EntityContacts &contact)
{
    return made(contact, TypeLabels());
}

CNContact ContactExport::contactOf(const EntityCompany &company)
{
    return made(company, TypeLabels());
}

OptionalError ContactExport::write(QIODevice &device, const std::vector<ContactPtr> &contacts,
                                   const std::vector<CompanyPtr> &companies, const StepBlock &step)
{
    const TypeLabels labels;
    bool isStopped = false;
    if (auto error = writeAll(device, contacts, labels, step, isStopped))
        return error;
    return writeAll(device, companies, labels, step, isStopped);
}
