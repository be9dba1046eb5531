#include "records/people/ContactForm.h"
#include "records/people/KnownContact.h"
#include "store/entities/MainContext.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using knowncontacts::oneLine;

// What the form takes from a card.

namespace {

bool isBeginningOf(const QString &name, const QString &typed)
{
    return name.startsWith(typed.trimmed(), Qt::CaseInsensitive);
}

bool isFree(const auto &rows)
{
    return std::ranges::all_of(rows, [](const auto &row) { return row.isEmpty(); });
}

/// The last row of a list is the free one, and is followed by the next.
template <typename Rows, typename Values, typename Fill>
void fillFreeRows(DetailItems &items, Rows &rows, const Values &values, Fill fill)
{
    if (!isFree(rows))
        return;
    for (const auto &[label, value] : values) {
        fill(rows.back(), label, value);
        items.controlTextDidChange();
    }
}

void fillAddress(ItemListAddress &row, const CNPostalAddress &place)
{
    MVAddress &values = row.values();
    values.street1 = oneLine(place.street);
    values.street2 = oneLine(place.extended);
    values.city = oneLine(place.city);
    values.state = oneLine(place.state);
    values.zip = oneLine(place.postalCode);
    values.country = oneLine(place.country);
}

} // namespace

void ContactForm::takeOffer(std::size_t place, const ContactImport::PngMaker &toPng)
{
    const CNContact card = newOffers->take(place);
    const ContactImport import(toPng);
    edit([&] {
        fillName(card);
        fillChoices(card, import);
        fillItems(card, import);
    });
    newOffers->setName(values.firstName, values.lastName);
    if (photo.photoName().isEmpty() && !card.imageData.isEmpty())
        if (const QByteArray png = toPng(card.imageData); !png.isEmpty())
            setPicture(png);
}

/// What was typed is the beginning of a name and is completed; anything else stays, such as both names in
/// one field.
void ContactForm::fillName(const CNContact &card)
{
    const QString first = oneLine(card.givenName);
    const QString last = oneLine(card.familyName);
    if (!isBeginningOf(first, values.firstName) || !isBeginningOf(last, values.lastName))
        return;
    values.firstName = first;
    values.lastName = last;
}

void ContactForm::fillChoices(const CNContact &card, const ContactImport &import)
{
    if (!values.contactCategory)
        values.contactCategory = import.categoryNamed(card.jobTitle);
    if (!values.birthday)
        values.birthday = ContactImport::birthdayOf(card);
    const QString company = oneLine(card.organizationName);
    if (!company.isEmpty() && !values.company && newCompany.isEmpty())
        nameCompany(company);
}

void ContactForm::fillItems(const CNContact &card, const ContactImport &import)
{
    using Entry = ItemListEmailPhoneUrl;
    fillFreeRows(detailItems, detailItems.phones, card.phoneNumbers,
                 [&](Entry &entry, const QString &label, const QString &number) {
                     entry.setPhoneNumber(oneLine(number));
                     entry.setType(import.phoneTypeWith(label));
                 });
    fillFreeRows(detailItems, detailItems.emails, card.emailAddresses,
                 [&](Entry &entry, const QString &label, const QString &mail) {
                     entry.setEmailString(oneLine(mail));
                     entry.setType(import.emailTypeWith(label));
                 });
    fillFreeRows(detailItems, detailItems.urls, card.urlAddresses,
                 [&](Entry &entry, const QString &label, const QString &url) {
                     entry.setURLString(oneLine(url));
                     entry.setType(import.urlsTypeWith(label));
                 });
    fillFreeRows(detailItems, detailItems.addresses, card.postalAddresses,
                 [&](ItemListAddress &entry, const QString &label, const CNPostalAddress &place) {
                     fillAddress(entry, place);
                     entry.setType(import.addressTypeWith(label));
                 });
}

// A company that is not there yet

static CompanyPtr companyTitled(const QString &title)
{
    return mainContext().fetchFirst<EntityCompany>(
        EntityCompany::fetchRequest().where(Predicate::format("title = %@", title)));
}

/// It is made when the contact is saved, unless it has come by then.
void ContactForm::nameCompany(const QString &title)
{
    values.company = companyTitled(title);
    newCompany = values.company ? QString() : title;
}

void ContactForm::makeCompany()
{
    if (newCompany.isEmpty())
        return;
    nameCompany(newCompany);
    if (values.company)
        return;
    values.company = mainContext().insert<EntityCompany>();
    values.company->setTitle(std::exchange(newCompany, {}));
}
