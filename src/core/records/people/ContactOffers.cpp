#include "records/people/ContactOffers.h"

#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"
#include "foundation/TextFolding.h"
#include "records/people/KnownContact.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <QBuffer>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using knowncontacts::oneLine;

/// One letter is no name yet, and half of an address book begins with it.
constexpr qsizetype fewestLetters = 2;

namespace {

/// Whether each word begins one of the names, in any order.
bool hasNames(const CNContact &contact, const QString &words)
{
    const QString name = foldedForSearch(contact.givenName + u' ' + contact.familyName).simplified();
    const QStringList names = name.split(u' ');
    const QStringList typed = foldedForSearch(words).split(u' ', Qt::SkipEmptyParts);
    return !name.isEmpty() && std::ranges::all_of(typed, [&](const QString &word) {
        return std::ranges::any_of(names, [&](const QString &one) { return one.startsWith(word); });
    });
}

QString firstValue(const std::vector<CNLabeledValue<QString>> &values)
{
    for (const auto &one : values) {
        if (const QString line = oneLine(one.value); !line.isEmpty())
            return line;
    }
    return {};
}

/// A name that a row does not have may be empty or absent there.
Predicate nameIs(const char *column, const QString &name)
{
    const std::string key = column;
    return name.isEmpty() ? Predicate::format(key + " = nil or " + key + " = ''")
                          : Predicate::format(key + " ==[cd] %@", name);
}

ContactPtr contactNamed(const QString &first, const QString &last)
{
    return mainContext().fetchFirst<EntityContacts>(EntityContacts::fetchRequest().where(
        Predicate::allOf({nameIs("firstName", first), nameIs("lastName", last)})));
}

QString keyOf(const ContactOffers::Offer &offer)
{
    return offer.name + u'\n' + offer.detail;
}

} // namespace

ContactOffers::ContactOffers(std::function<void()> tellOfChange)
    : changed(std::move(tellOfChange))
{
    pause.setSingleShot(true);
    QObject::connect(&pause, &QTimer::timeout, &store, [this] { ask(); });
}

void ContactOffers::setName(const QString &first, const QString &last)
{
    QString typed = (first + u' ' + last).simplified();
    if (typed.size() < fewestLetters)
        typed.clear();
    if (typed == words)
        return;
    words = typed;
    for (auto &[book, offers] : found)
        std::erase_if(offers,
                      [&](const Offer &one) { return typed.isEmpty() || !hasNames(one.contact, typed); });
    gather();
    if (words.isEmpty())
        pause.stop();
    else
        pause.start(pauseAfterKey);
}

/// The books are looked up each time: they may have come, and access may have been granted, since.
void ContactOffers::ask()
{
    using enum CNAuthorizationStatus;
    if (isListing || CNContactStore::authorizationStatusForEntityType(CNEntityType::Contacts) != Authorized)
        return;
    isListing = true;
    store.containers([this](const Result<CNContactStore::Containers> &books) {
        isListing = false;
        for (const CNContainer &book : books ? books.value() : CNContactStore::Containers())
            askBook(book);
    });
}

/// A book that has not answered yet is not asked once more before it does.
void ContactOffers::askBook(const CNContainer &book)
{
    if (words.isEmpty() || asked.contains(book.identifier))
        return;
    asked[book.identifier] = words;
    store.cardsWithName(book, words, [this, book](const Result<QByteArray> &cards) {
        const QString former = std::exchange(asked[book.identifier], {});
        asked.erase(book.identifier);
        if (!cards)
            return;
        read(book, cards.value());
        if (former != words)
            askBook(book);
    });
}

void ContactOffers::read(const CNContainer &book, QByteArray cards)
{
    std::vector<Offer> &offers = found[book.identifier];
    offers.clear();
    QBuffer device(&cards);
    device.open(QIODevice::ReadOnly);
    VCardReader reader(device);
    while (const auto card = words.isEmpty() ? std::nullopt : reader.next()) {
        CNContact contact = contactFrom(*card, CardImage::Leave);
        if (!hasNames(contact, words))
            continue;
        const QString first = oneLine(contact.givenName);
        const QString last = oneLine(contact.familyName);
        const QString mail = firstValue(contact.emailAddresses);
        Offer offer{.contact = contact,
                    .name = fullNameWith(first, last),
                    .detail = mail.isEmpty() ? firstValue(contact.phoneNumbers) : mail,
                    .present = contactNamed(first, last),
                    .card = *card};
        if (taken.contains(keyOf(offer)))
            continue;
        offers.push_back(std::move(offer));
        if (offers.size() == mostOffers)
            break;
    }
    gather();
}

/// A person of several books stands in one line, and so does one who is here already, however many cards
/// there are of that name.
void ContactOffers::gather()
{
    QSet<QString> before;
    for (const Offer &one : shown)
        before.insert(keyOf(one));
    QSet<QString> seen;
    QSet<const ManagedObject *> people;
    shown.clear();
    for (const auto &[book, offers] : found) {
        for (const Offer &one : offers) {
            const bool isKnown =
                seen.contains(keyOf(one)) || (one.present && people.contains(one.present.get()));
            if (isKnown || shown.size() == mostOffers)
                continue;
            seen.insert(keyOf(one));
            if (one.present)
                people.insert(one.present.get());
            shown.push_back(one);
        }
    }
    if (seen != before)
        changed();
}

CNContact ContactOffers::take(std::size_t place)
{
    const Offer offer = shown.at(place);
    taken.insert(keyOf(offer));
    for (auto &[book, offers] : found)
        std::erase_if(offers, [&](const Offer &one) { return keyOf(one) == keyOf(offer); });
    gather();
    return contactFrom(offer.card);
}
