#include "records/people/DetailItems.h"

#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <unordered_set>

namespace {

template <typename T>
std::vector<std::shared_ptr<T>> allOf(const ObjectList<T> &list)
{
    return {list.begin(), list.end()};
}

template <typename Rows>
void dropFreeRow(Rows &rows)
{
    if (!rows.empty())
        rows.pop_back();
}

void setOwner(auto &detail, const ContactPtr &owner)
{
    detail.setContact(owner);
}

void setOwner(auto &detail, const CompanyPtr &owner)
{
    detail.setCompany(owner);
}

/// Writes the rows that hold something; `write` puts the values of a form row into a stored one.
template <typename Entity, typename Rows, typename Owner, typename Writer>
void storeRows(const Rows &rows, const std::vector<std::shared_ptr<Entity>> &stored, const Owner &owner,
               Writer write)
{
    std::unordered_set<ManagedObject *> kept;
    for (const auto &row : rows) {
        if (row.isEmpty())
            continue;
        auto detail = std::static_pointer_cast<Entity>(row.entity());
        if (!detail || !detail->context() || detail->isDeleted())
            detail = mainContext().insert<Entity>();
        write(*detail, row);
        setOwner(*detail, owner);
        kept.insert(detail.get());
    }
    for (const std::shared_ptr<Entity> &detail : stored) {
        if (kept.count(detail.get()) == 0)
            mainContext().deleteObject(detail);
    }
}

void writeAddress(EntityAddress &address, const ItemListAddress &row)
{
    const MVAddress &values = row.values();
    address.setStreet1(values.street1);
    address.setStreet2(values.street2);
    address.setCity(values.city);
    address.setState(values.state);
    address.setZip(values.zip);
    address.setCountry(values.country);
    address.setAddressType(row.type());
}

template <typename Owner>
void loadItems(DetailItems &items, const Owner &owner)
{
    for (const auto &phone : owner.phone())
        items.phones.push_back(ItemListEmailPhoneUrl::initPhoneItem(phone, {}, {}, true));
    for (const auto &url : owner.url())
        items.urls.push_back(ItemListEmailPhoneUrl::initURLItem(url, {}, {}, true));
    for (const auto &email : owner.email())
        items.emails.push_back(ItemListEmailPhoneUrl::initEmailItem(email, {}, {}, true));
    for (const auto &address : owner.address())
        items.addresses.push_back(ItemListAddress::initAddressItem(address, {}, {}, true));
    items.appendFreeRows();
}

template <typename Owner>
void store(DetailItems &items, const std::shared_ptr<Owner> &owner)
{
    dropFreeRow(items.phones);
    dropFreeRow(items.urls);
    dropFreeRow(items.emails);
    dropFreeRow(items.addresses);
    storeRows(items.phones, owner->phone(), owner, [](EntityPhone &phone, const ItemListEmailPhoneUrl &row) {
        phone.setNumber(row.text());
        phone.setType(std::static_pointer_cast<EntityPhoneType>(row.type()));
    });
    storeRows(items.urls, owner->url(), owner, [](EntityURL &url, const ItemListEmailPhoneUrl &row) {
        url.setUrl(row.text());
        url.setType(std::static_pointer_cast<EntityURLType>(row.type()));
    });
    storeRows(items.emails, owner->email(), owner, [](EntityEmail &email, const ItemListEmailPhoneUrl &row) {
        email.setMail(row.text());
        email.setType(std::static_pointer_cast<EntityEmailType>(row.type()));
    });
    storeRows(items.addresses, owner->address(), owner, writeAddress);
}

} // namespace

DetailItems::DetailItems()
{
    appendFreeRows();
}

DetailItems::DetailItems(const EntityContacts &contact)
{
    loadItems(*this, contact);
}

DetailItems::DetailItems(const EntityCompany &company)
{
    loadItems(*this, company);
}

void DetailItems::controlTextDidChange()
{
    const auto isTyped = [](const auto &rows) { return rows.empty() || !rows.back().isEmpty(); };
    if (isTyped(phones))
        appendFreePhone();
    if (isTyped(urls))
        appendFreeUrl();
    if (isTyped(emails))
        appendFreeEmail();
    if (isTyped(addresses))
        appendFreeAddress();
}

void DetailItems::appendFreeRows()
{
    appendFreePhone();
    appendFreeUrl();
    appendFreeEmail();
    appendFreeAddress();
}

void DetailItems::appendFreePhone()
{
    phones.push_back(
        ItemListEmailPhoneUrl::initPhoneItem(nullptr, allOf(DBWorker::allPhoneType()), phones, true));
}

void DetailItems::appendFreeUrl()
{
    urls.push_back(ItemListEmailPhoneUrl::initURLItem(nullptr, allOf(DBWorker::allURLType()), urls, true));
}

void DetailItems::appendFreeEmail()
{
    emails.push_back(
        ItemListEmailPhoneUrl::initEmailItem(nullptr, allOf(DBWorker::allEmailType()), emails, true));
}

void DetailItems::appendFreeAddress()
{
    addresses.push_back(
        ItemListAddress::initAddressItem(nullptr, allOf(DBWorker::allAddressType()), addresses, true));
}

void DetailItems::storeFor(const ContactPtr &contact)
{
    store(*this, contact);
}

void DetailItems::storeFor(const CompanyPtr &company)
{
    store(*this, company);
}
