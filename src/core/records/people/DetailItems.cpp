#include "records/people/DetailItems.h"

#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <unordered_set>

using namespace Qt::Literals::StringLiterals;

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

/// Writes the rows that hold something; `write` puts the values of a form row into a stored one. New ones
/// come behind those that are there.
template <typename Entity, typename Rows, typename Owner, typename Writer>
void storeRows(const Rows &rows, const std::vector<std::shared_ptr<Entity>> &stored, const Owner &owner,
               Writer write)
{
    std::unordered_set<ManagedObject *> kept;
    int last = 0;
    for (const std::shared_ptr<Entity> &detail : stored)
        last = std::max(last, detail->position().value_or(0));
    for (const auto &row : rows) {
        if (row.isEmpty())
            continue;
        auto detail = std::static_pointer_cast<Entity>(row.entity());
        if (!detail || !detail->context() || detail->isDeleted()) {
            detail = mainContext().insert<Entity>();
            detail->setPosition(++last);
        }
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

// What outlives the lists

namespace {

QStringList itemTexts(const ItemListEmailPhoneUrl &row)
{
    return {row.text()};
}

QStringList itemTexts(const ItemListAddress &row)
{
    const MVAddress &values = row.values();
    return {values.street1, values.street2, values.city, values.state, values.zip, values.country};
}

/// It stays when the record is deleted.
QString identifierOf(const ObjectPtr &record)
{
    return record ? record->identifier() : QString();
}

template <typename Row>
QJsonObject encodedItem(const Row &row)
{
    return {{u"row"_s, identifierOf(row.entity())},
            {u"type"_s, identifierOf(row.type())},
            {u"texts"_s, QJsonArray::fromStringList(itemTexts(row))}};
}

template <typename Rows>
QString encodedItems(const Rows &rows)
{
    QJsonArray all;
    for (const auto &row : rows) {
        if (!row.isEmpty())
            all.append(encodedItem(row));
    }
    return all.isEmpty() ? QString() : QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact));
}

QJsonArray decodedItems(const QString &kept)
{
    return QJsonDocument::fromJson(kept.toUtf8()).array();
}

template <typename Entity>
std::shared_ptr<Entity> itemRecord(const QJsonObject &row, const QString &key)
{
    const QString identifier = row[key].toString();
    return identifier.isEmpty()
               ? nullptr
               : std::static_pointer_cast<Entity>(mainContext().object(Entity::entityName, identifier));
}

/// \param bind makes a row stand for a stored one, \param show puts a text into it.
template <typename Entity, typename Type, typename Bind, typename Show>
void takeRows(ItemListEmailPhoneUrl::Rows &rows, const QJsonArray &kept, Bind bind, Show show)
{
    rows.clear();
    for (const QJsonValue one : kept) {
        const QJsonObject about = one.toObject();
        ItemListEmailPhoneUrl row = bind(itemRecord<Entity>(about, u"row"_s));
        (row.*show)(about[u"texts"_s].toArray().at(0).toString());
        row.setType(itemRecord<Type>(about, u"type"_s));
        if (!row.isEmpty())
            rows.push_back(std::move(row));
    }
}

void takeAddresses(ItemListAddress::Rows &rows, const QJsonArray &kept)
{
    rows.clear();
    for (const QJsonValue one : kept) {
        const QJsonObject about = one.toObject();
        const QJsonArray texts = about[u"texts"_s].toArray();
        ItemListAddress row =
            ItemListAddress::initAddressItem(itemRecord<EntityAddress>(about, u"row"_s), {}, {}, true);
        MVAddress &values = row.values();
        QString *const fields[] = {&values.street1, &values.street2, &values.city,
                                   &values.state,   &values.zip,     &values.country};
        for (qsizetype field = 0; field < static_cast<qsizetype>(std::size(fields)); ++field)
            *fields[field] = texts.at(field).toString();
        row.setType(itemRecord<EntityAddressType>(about, u"type"_s));
        if (!row.isEmpty())
            rows.push_back(std::move(row));
    }
}

} // namespace

QString DetailItems::kept(DetailKind kind) const
{
    switch (kind) {
    case DetailKind::Phone:
        return encodedItems(phones);
    case DetailKind::Email:
        return encodedItems(emails);
    case DetailKind::Url:
        return encodedItems(urls);
    case DetailKind::Address:
        break;
    }
    return encodedItems(addresses);
}

void DetailItems::take(DetailKind kind, const QString &kept)
{
    using Row = ItemListEmailPhoneUrl;
    const QJsonArray all = decodedItems(kept);
    switch (kind) {
    case DetailKind::Phone:
        takeRows<EntityPhone, EntityPhoneType>(
            phones, all, [](const auto &phone) { return Row::initPhoneItem(phone, {}, {}, true); },
            &Row::setPhoneNumber);
        return appendFreePhone();
    case DetailKind::Email:
        takeRows<EntityEmail, EntityEmailType>(
            emails, all, [](const auto &email) { return Row::initEmailItem(email, {}, {}, true); },
            &Row::setEmailString);
        return appendFreeEmail();
    case DetailKind::Url:
        takeRows<EntityURL, EntityURLType>(
            urls, all, [](const auto &url) { return Row::initURLItem(url, {}, {}, true); },
            &Row::setURLString);
        return appendFreeUrl();
    case DetailKind::Address:
        break;
    }
    takeAddresses(addresses, all);
    appendFreeAddress();
}

/// The rows of a list by the stored ones that they stand for.
static QHash<QString, QJsonObject> byStoredRow(const QJsonArray &rows)
{
    QHash<QString, QJsonObject> found;
    for (const QJsonValue row : rows)
        found.insert(row[u"row"_s].toString(), row.toObject());
    return found;
}

QString DetailItems::merged(const QString &mine, const QString &former, const QString &present)
{
    const QJsonArray own = decodedItems(mine);
    const QHash<QString, QJsonObject> before = byStoredRow(decodedItems(former));
    const QHash<QString, QJsonObject> now = byStoredRow(decodedItems(present));
    QJsonArray all;
    for (const QJsonValue one : own) {
        QJsonObject row = one.toObject();
        const QString stored = row[u"row"_s].toString();
        const bool isChanged = !before.contains(stored) || before[stored] != row;
        if (!stored.isEmpty() && before.contains(stored)) {
            if (!isChanged && !now.contains(stored))
                continue;
            if (!isChanged)
                row = now[stored];
            else if (!now.contains(stored))
                row[u"row"_s] = QString();
        }
        all.append(row);
    }
    for (const QJsonValue one : decodedItems(present)) {
        if (!before.contains(one[u"row"_s].toString()))
            all.append(one);
    }
    return all.isEmpty() ? QString() : QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact));
}
