#include "records/people/KnownContact.h"

#include "foundation/Calendar.h"
#include "records/dates/MVDate.h"
#include "records/exchange/TableWords.h"
#include "records/people/ContactTable.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <QHash>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using knowncontacts::isLink;
using knowncontacts::oneLine;

namespace {

/// How two values are compared that people write in many ways: a number by its digits, others in small
/// letters.
QString essence(const QString &value)
{
    QString digits;
    for (const QChar letter : value) {
        if (letter.isDigit())
            digits += letter;
        else if (letter.isLetter())
            return value.trimmed().toLower();
    }
    return digits.isEmpty() ? value.trimmed() : digits;
}

QString addressKey(const QString &street, const QString &zip, const QString &city)
{
    return (oneLine(street) + u'|' + oneLine(zip) + u'|' + oneLine(city)).toLower();
}

template <typename Values>
bool lacks(const Values &values, const QSet<QString> &present)
{
    return std::ranges::any_of(values,
                               [&](const auto &one) { return !present.contains(essence(one.value)); });
}

/// One that is no category stands in a note, behind what it is called.
bool hasJobTitle(const KnownContact &known, const QString &title)
{
    return tablewords::means(title, known.jobTitle) || tablewords::means(known.jobTitle, title) ||
           known.words.contains(u": "_s + title);
}

bool hasMore(const CNContact &card, const KnownContact &known)
{
    const auto isMissing = [&known](const auto &place) {
        return !known.addresses.contains(
            addressKey(place.value.street, place.value.postalCode, place.value.city));
    };
    const QStringList lines = card.note.split(u'\n', Qt::SkipEmptyParts);
    const auto isUnknown = [&known](const QString &line) { return !known.words.contains(line.trimmed()); };
    const auto isOtherWord = [&](const auto &one) {
        return !isLink(card, one) && !known.words.contains(one.value);
    };
    const auto isOtherGroup = [&known](const QString &title) { return !known.groups.contains(title); };
    const bool hasBirthday = card.birthday && card.birthday->year;
    return (!card.imageData.isEmpty() && !known.hasPicture) ||
           (card.hasName() && std::ranges::any_of(card.groups, isOtherGroup)) ||
           std::ranges::any_of(card.otherWords, isOtherWord) || lacks(card.phoneNumbers, known.phones) ||
           lacks(card.emailAddresses, known.emails) || lacks(card.urlAddresses, known.urls) ||
           std::ranges::any_of(card.postalAddresses, isMissing) ||
           (hasBirthday && card.birthday != known.birthday) ||
           (!card.organizationName.isEmpty() && oneLine(card.organizationName) != known.company) ||
           (!card.jobTitle.isEmpty() && !hasJobTitle(known, oneLine(card.jobTitle))) ||
           std::ranges::any_of(lines, isUnknown);
}

/// What a stored row itself has.
KnownContact storedIn(const EntityContacts &contact)
{
    KnownContact known;
    if (const OptionalDate birthday = contact.birthday()) {
        const Calendar calendar = Calendar::current();
        const Date day = MVDate::getNearestDay(*birthday);
        known.birthday = CNBirthday{calendar.year(day), calendar.month(day), calendar.day(day)};
    }
    known.company = contact.company() ? contact.company()->title() : QString();
    known.jobTitle = contact.contactCategory() ? contact.contactCategory()->title() : QString();
    known.hasPicture = !contact.photoName().isEmpty();
    for (const auto &group : contact.contactGroup())
        known.groups.insert(group->title());
    return known;
}

KnownContact storedIn(const EntityCompany &company)
{
    return {
        .words = company.details(), .company = company.title(), .hasPicture = !company.photoName().isEmpty()};
}

template <typename Owner>
std::vector<std::optional<KnownContact>> knownOf(const std::vector<RowId> &rows, const char *ownerColumn)
{
    // Each table is read once for all of them.
    if (rows.empty())
        return {};
    ManagedObjectContext &context = mainContext();
    QHash<QString, std::size_t> places;
    std::vector<KnownContact> known;
    // The place of what is known of each row; absent for one that is gone.
    std::vector<std::optional<std::size_t>> owners;
    const ObjectList<Owner> loaded(context, organiserModel().requireEntity(Owner::entityName), rows);
    for (std::size_t place = 0; place < rows.size(); ++place) {
        const std::shared_ptr<Owner> owner = loaded.at(static_cast<int>(place));
        if (!owner) {
            owners.emplace_back();
            continue;
        }
        if (!places.contains(owner->identifier())) {
            places.insert(owner->identifier(), known.size());
            known.push_back(storedIn(*owner));
        }
        owners.emplace_back(places.value(owner->identifier()));
    }
    const auto collect = [&](const FetchRequest &request, std::vector<std::string> columns, auto take) {
        columns.insert(columns.begin(), ownerColumn);
        context.visit(request, columns, [&](const RowReader &row) {
            const auto found = row.isNull(0) ? places.constEnd() : places.constFind(row.text(0));
            if (found != places.constEnd())
                take(known[*found], row);
        });
    };
    const auto into = [](QSet<QString> KnownContact::*values) {
        return
            [values](KnownContact &one, const RowReader &row) { (one.*values).insert(essence(row.text(1))); };
    };
    collect(EntityPhone::fetchRequest(), {"number"}, into(&KnownContact::phones));
    collect(EntityEmail::fetchRequest(), {"mail"}, into(&KnownContact::emails));
    collect(EntityURL::fetchRequest(), {"url"}, into(&KnownContact::urls));
    collect(EntityAddress::fetchRequest(), {"street1", "zip", "city"},
            [](KnownContact &one, const RowReader &row) {
                one.addresses.insert(addressKey(row.text(1), row.text(2), row.text(3)));
            });
    if constexpr (std::is_same_v<Owner, EntityContacts>)
        collect(EntityNote::fetchRequest(), {"title", "detail"}, [](KnownContact &one, const RowReader &row) {
            one.words += u'\n' + row.text(1) + u'\n' + row.text(2);
        });
    std::vector<std::optional<KnownContact>> all;
    for (const auto &owner : owners)
        all.push_back(owner ? std::optional(known[*owner]) : std::nullopt);
    return all;
}

} // namespace

QString knowncontacts::oneLine(const QString &text)
{
    return u""_s + text.split(u'\n', Qt::SkipEmptyParts).join(u", "_s).trimmed();
}

bool knowncontacts::isLink(const CNContact &card, const CNLabeledValue<QString> &words)
{
    return words.label == ContactTable::projects && card.hasName();
}

CardVerdict knowncontacts::verdictOn(const CNContact &card, const KnownContact &known)
{
    if (!hasMore(card, known))
        return CardVerdict::Nothing;
    const auto sharesOne = [](const auto &values, const QSet<QString> &present) {
        return std::ranges::any_of(values,
                                   [&](const auto &one) { return present.contains(essence(one.value)); });
    };
    const bool canBeReached = !card.phoneNumbers.empty() || !card.emailAddresses.empty();
    const bool isReached = !known.phones.isEmpty() || !known.emails.isEmpty();
    const bool isSomebodyElse = canBeReached && isReached && !sharesOne(card.phoneNumbers, known.phones) &&
                                !sharesOne(card.emailAddresses, known.emails);
    return isSomebodyElse && card.hasName() ? CardVerdict::OtherPerson : CardVerdict::More;
}

KnownContact knowncontacts::from(const CNContact &card)
{
    KnownContact known{.words = card.note,
                       .birthday = card.birthday && card.birthday->year ? card.birthday : std::nullopt,
                       .company = oneLine(card.organizationName),
                       .jobTitle = oneLine(card.jobTitle),
                       .hasPicture = !card.imageData.isEmpty()};
    known.groups = {card.groups.begin(), card.groups.end()};
    for (const auto &one : card.otherWords)
        known.words += u'\n' + one.value;
    const auto take = [](QSet<QString> &into, const auto &values) {
        for (const auto &one : values)
            into.insert(essence(one.value));
    };
    take(known.phones, card.phoneNumbers);
    take(known.emails, card.emailAddresses);
    take(known.urls, card.urlAddresses);
    for (const auto &place : card.postalAddresses)
        known.addresses.insert(addressKey(place.value.street, place.value.postalCode, place.value.city));
    return known;
}

std::vector<std::optional<KnownContact>> knowncontacts::ofContacts(const std::vector<RowId> &rows)
{
    return knownOf<EntityContacts>(rows, "contact");
}

std::vector<std::optional<KnownContact>> knowncontacts::ofCompanies(const std::vector<RowId> &rows)
{
    return knownOf<EntityCompany>(rows, "company");
}
