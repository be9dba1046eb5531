#include "records/people/ContactImport.h"

#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "records/exchange/TableWords.h"
#include "records/people/ContactLabels.h"
#include "records/people/ContactTable.h"
#include "records/people/NoteWords.h"
#include "store/entities/EntityContactGroup.h"
#include "store/entities/EntityProject.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <unordered_map>

using namespace Qt::Literals::StringLiterals;

/// What a card brings to somebody who is there.
enum class CardVerdict {
    Nothing,
    /// Something that is missing there.
    More,
    /// Nothing but another phone and mail, as somebody else of the same name has.
    OtherPerson,
};

namespace {

/// Names cannot hold it.
constexpr QChar nameSeparator(u'\n');

QString keyOf(const QString &first, const QString &last)
{
    return first + nameSeparator + last;
}

/// Companies have a title, and no two names.
QString keyOfCompany(const QString &title)
{
    return keyOf(keyOf({}, title), {});
}

template <typename Type, typename Labels>
std::shared_ptr<Type> typeOf(const QString &label, const Labels &labels,
                             const std::vector<std::shared_ptr<Type>> &types)
{
    if (types.empty())
        return nullptr;
    const int place = ContactLabels::placeOf(label, labels);
    if (place >= 0)
        return types[std::min(static_cast<std::size_t>(place), types.size() - 1)];
    const auto own = std::ranges::find_if(types, [&](const std::shared_ptr<Type> &type) {
        return type->title().compare(label, Qt::CaseInsensitive) == 0;
    });
    return own != types.end() && !label.isEmpty() ? *own : types.back();
}

template <typename T>
std::vector<std::shared_ptr<T>> typesIn(const ObjectList<T> &list)
{
    return {list.begin(), list.end()};
}

/// What stands in one line of a form; empty, and not absent, for nothing.
QString oneLine(const QString &text)
{
    return u""_s + text.split(u'\n', Qt::SkipEmptyParts).join(u", "_s).trimmed();
}

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

QString nameOf(const CNContact &card)
{
    return card.hasName() ? fullNameWith(card.givenName, card.familyName) : card.organizationName;
}

/// A project of a person, which is linked.
bool isLink(const CNContact &card, const CNLabeledValue<QString> &words)
{
    return words.label == ContactTable::projects && card.hasName();
}

template <typename Values>
bool lacks(const Values &values, const QSet<QString> &present)
{
    return std::ranges::any_of(values,
                               [&](const auto &one) { return !present.contains(essence(one.value)); });
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
           std::ranges::any_of(lines, isUnknown);
}

CardVerdict verdictOn(const CNContact &card, const KnownContact &known)
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

KnownContact knownFrom(const CNContact &card)
{
    KnownContact known{.words = card.note,
                       .birthday = card.birthday && card.birthday->year ? card.birthday : std::nullopt,
                       .company = oneLine(card.organizationName),
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

/// "Ann Lee, Bob Kay and 3 more".
QString someOf(const QStringList &names)
{
    constexpr int most = 5;
    const QString some = names.mid(0, most).join(u", "_s);
    return names.size() > most ? localized(u"%1 and %2 more"_s).arg(some).arg(names.size() - most) : some;
}

} // namespace

ContactImport::ContactImport(PngMaker toPng)
    : pngOf(std::move(toPng))
    , phoneTypes(typesIn(DBWorker::allPhoneType()))
    , emailTypes(typesIn(DBWorker::allEmailType()))
    , addressTypes(typesIn(DBWorker::allAddressType()))
    , urlTypes(typesIn(DBWorker::allURLType()))
    , categories(typesIn(DBWorker::allContactCategories()))
{
    mainContext().visit(EntityContacts::fetchRequest(), {"firstName", "lastName"}, [&](const RowReader &row) {
        contacts.insert(keyOf(row.text(0), row.text(1)), row.rowId());
    });
    mainContext().visit(EntityCompany::fetchRequest(), {"title"}, [&](const RowReader &row) {
        // Of several with one title the first is meant.
        RowId &first = companyRows[row.text(0)];
        first = first == 0 ? row.rowId() : std::min(first, row.rowId());
    });
    bareCompanies = companiesWithTitleOnly();
    bareContacts = contactsWithNameOnly();
}

/// The identifiers of those who have a phone, an address, mail or a page of the web.
static QSet<QString> ownersOfDetails(const std::string &ownerColumn)
{
    QSet<QString> owners;
    for (const FetchRequest &details : {EntityPhone::fetchRequest(), EntityEmail::fetchRequest(),
                                        EntityURL::fetchRequest(), EntityAddress::fetchRequest()})
        mainContext().visit(details, {ownerColumn}, [&](const RowReader &row) {
            if (!row.isNull(0))
                owners.insert(row.text(0));
        });
    return owners;
}

QSet<RowId> ContactImport::contactsWithNameOnly()
{
    const QSet<QString> described = ownersOfDetails("contact");
    QSet<RowId> rows;
    mainContext().visit(EntityContacts::fetchRequest(),
                        {"id", "birthday", "photoName", "company", "contactCategory"},
                        [&](const RowReader &row) {
                            const bool hasMore = !row.isNull(1) || !row.text(2).isEmpty() || !row.isNull(3) ||
                                                 !row.isNull(4) || described.contains(row.text(0));
                            if (!hasMore)
                                rows.insert(row.rowId());
                        });
    return rows;
}

QSet<QString> ContactImport::companiesWithTitleOnly()
{
    const QSet<QString> described = ownersOfDetails("company");
    QSet<QString> titles;
    mainContext().visit(
        EntityCompany::fetchRequest(), {"id", "title", "details", "photoName"}, [&](const RowReader &row) {
            if (!described.contains(row.text(0)) && row.text(2).isEmpty() && row.text(3).isEmpty())
                titles.insert(row.text(1));
        });
    return titles;
}

std::shared_ptr<EntityPhoneType> ContactImport::phoneTypeWith(const QString &label) const
{
    return typeOf(label, ContactLabels::phone, phoneTypes);
}

std::shared_ptr<EntityEmailType> ContactImport::emailTypeWith(const QString &label) const
{
    return typeOf(label, ContactLabels::email, emailTypes);
}

std::shared_ptr<EntityAddressType> ContactImport::addressTypeWith(const QString &label) const
{
    return typeOf(label, ContactLabels::address, addressTypes);
}

std::shared_ptr<EntityURLType> ContactImport::urlsTypeWith(const QString &label) const
{
    return typeOf(label, ContactLabels::url, urlTypes);
}

std::shared_ptr<EntityContactCategory> ContactImport::categoryNamed(const QString &title) const
{
    return tablewords::namedAmong(categories, title);
}

template <typename Entity>
static std::shared_ptr<Entity> loaded(RowId row)
{
    const ObjectList<Entity> rows(mainContext(), organiserModel().requireEntity(Entity::entityName), {row});
    return rows.at(0);
}

CompanyPtr ContactImport::companyNamed(const QString &title)
{
    CompanyPtr &company = companies[title];
    if (company)
        return company;
    if (const RowId row = companyRows.value(title))
        company = loaded<EntityCompany>(row);
    if (!company) {
        company = mainContext().insert<EntityCompany>();
        company->setTitle(title);
        ++account.companies;
    }
    return company;
}

static void own(const auto &detail, const ContactPtr &owner)
{
    detail->setContact(owner);
}

static void own(const auto &detail, const CompanyPtr &owner)
{
    detail->setCompany(owner);
}

template <typename Owner>
void ContactImport::addDetails(const std::shared_ptr<Owner> &owner, const CNContact &contact)
{
    ManagedObjectContext &context = mainContext();
    for (const auto &[label, number] : contact.phoneNumbers) {
        const auto phone = context.insert<EntityPhone>();
        phone->setNumber(oneLine(number));
        phone->setType(phoneTypeWith(label));
        own(phone, owner);
    }
    for (const auto &[label, mail] : contact.emailAddresses) {
        const auto email = context.insert<EntityEmail>();
        email->setMail(oneLine(mail));
        email->setType(emailTypeWith(label));
        own(email, owner);
    }
    for (const auto &[label, place] : contact.postalAddresses) {
        const auto address = context.insert<EntityAddress>();
        address->setStreet1(oneLine(place.street));
        address->setStreet2(oneLine(place.extended));
        address->setCity(oneLine(place.city));
        address->setState(oneLine(place.state));
        address->setZip(oneLine(place.postalCode));
        address->setCountry(oneLine(place.country));
        address->setAddressType(addressTypeWith(label));
        own(address, owner);
    }
    for (const auto &[label, text] : contact.urlAddresses) {
        const auto url = context.insert<EntityURL>();
        url->setUrl(oneLine(text));
        url->setType(urlsTypeWith(label));
        own(url, owner);
    }
}

/// A private group of which people are members, made if there is none.
std::shared_ptr<EntityContactGroup> ContactImport::groupOfPeople(const QString &title)
{
    std::shared_ptr<EntityContactGroup> &group = groups[title];
    if (!group)
        group = mainContext().fetchFirst<EntityContactGroup>(EntityContactGroup::fetchRequest().where(
            Predicate::format("title = %@ and useGeneralFilter = false", title)));
    if (group)
        return group;
    group = mainContext().insert<EntityContactGroup>();
    group->setTitle(title);
    group->setUseGeneralFilter(false);
    ++account.groups;
    return group;
}

/// A list that is restricted to companies. What else it asks for is not known here, so that none is made.
static std::shared_ptr<EntityContactGroup> listOfCompanies(const QString &title)
{
    return mainContext().fetchFirst<EntityContactGroup>(
        EntityContactGroup::fetchRequest().where(Predicate::format("title = %@", title)));
}

/// The groups of a card, and the projects that a table names.
void ContactImport::addLinks(const ContactPtr &person, const CNContact &contact)
{
    for (const QString &title : contact.groups)
        groupOfPeople(title)->addRelated("contacts", person);
    for (const auto &[kind, word] : contact.otherWords) {
        if (kind != ContactTable::projects)
            continue;
        ProjectPtr project = mainContext().fetchFirst<EntityProject>(
            EntityProject::fetchRequest().where(Predicate::format("title = %@", word)));
        if (!project) {
            project = mainContext().insert<EntityProject>();
            project->setTitle(word);
        }
        project->addRelated("delegateToUser", person);
    }
}

/// Several can come in a millisecond; each then takes the next one that is free.
QString ContactImport::freePhotoName()
{
    constexpr double millisecond = 0.001;
    Date moment = MVDate::date();
    if (moment.referenceSeconds() <= lastPhotoMoment)
        moment = Date::fromReferenceSeconds(lastPhotoMoment + millisecond);
    for (;; moment = moment + Seconds(millisecond)) {
        const QString name =
            DateFormatter::string(moment, QStringLiteral("dd-MM-yyyy HH:mm:ss:SSS")) + QStringLiteral(".png");
        lastPhotoMoment = moment.referenceSeconds();
        if (!FileManager::fileExists(IcloudManager::pathOfImage(name)))
            return name;
    }
}

template <typename Owner>
void ContactImport::addPicture(const std::shared_ptr<Owner> &owner, const QString &name,
                               const CNContact &contact)
{
    if (contact.imageData.isEmpty() && !contact.isImageMissing)
        return;
    const QByteArray png = contact.imageData.isEmpty() ? QByteArray() : pngOf(contact.imageData);
    const QString photo = png.isEmpty() ? QString() : freePhotoName();
    if (photo.isEmpty() || !IcloudManager::saveImageWithData(png, photo)) {
        account.withoutPicture.append(name);
        return;
    }
    owner->setPhotoName(photo);
}

/// What details are called for which there is no type: they get the last one, and the word stands in a note.
template <typename Values, typename Labels, typename Type, typename InWords>
static void addOwnLabels(QStringList &words, const Values &values, const Labels &labels,
                         const std::vector<std::shared_ptr<Type>> &types, InWords inWords)
{
    for (const auto &[label, value] : values) {
        const auto isTitle = [&label = label](const std::shared_ptr<Type> &type) {
            return type->title().compare(label, Qt::CaseInsensitive) == 0;
        };
        if (!label.isEmpty() && ContactLabels::placeOf(label, labels) < 0 &&
            std::ranges::none_of(types, isTitle))
            words.append(oneLine(label) + u": "_s + oneLine(inWords(value)));
    }
}

QStringList ContactImport::ownLabels(const CNContact &contact) const
{
    QStringList words;
    const auto asItStands = [](const QString &text) { return text; };
    addOwnLabels(words, contact.phoneNumbers, ContactLabels::phone, phoneTypes, asItStands);
    addOwnLabels(words, contact.emailAddresses, ContactLabels::email, emailTypes, asItStands);
    addOwnLabels(words, contact.urlAddresses, ContactLabels::url, urlTypes, asItStands);
    addOwnLabels(words, contact.postalAddresses, ContactLabels::address, addressTypes,
                 [](const CNPostalAddress &place) { return place.street + u'\n' + place.city; });
    return words;
}

QStringList ContactImport::wordsWithoutField(const CNContact &contact, const QString &name, bool hasCategory)
{
    QStringList words;
    const auto keep = [&](const QString &field, const QString &value, QStringList &names) {
        words.append(localized(field) + u": "_s + value);
        names.append(name);
    };
    if (contact.birthday && !contact.birthday->year) {
        const QString day = u"--%1-%2"_s.arg(contact.birthday->month, 2, 10, QLatin1Char('0'))
                                .arg(contact.birthday->day, 2, 10, QLatin1Char('0'));
        keep(u"Birthday"_s, day, account.withoutYear);
    }
    if (!contact.birthday && !contact.unreadBirthday.isEmpty())
        keep(u"Birthday"_s, contact.unreadBirthday, account.unreadBirthdays);
    if (!hasCategory && !contact.jobTitle.isEmpty())
        keep(u"Job Title"_s, oneLine(contact.jobTitle), account.otherJobTitles);
    QStringList others;
    for (const auto &one : contact.otherWords)
        if (!isLink(contact, one))
            others.append(localized(one.label) + u": "_s + one.value);
    for (const QString &title : contact.groups)
        if (!contact.hasName() && !listOfCompanies(title))
            others.append(localized(u"Groups"_s) + u": "_s + title);
    words += others;
    const QStringList labels = ownLabels(contact);
    words += labels;
    if (!labels.isEmpty() || !others.isEmpty())
        account.withOtherWords.append(name);
    if (!contact.note.isEmpty())
        words.append(contact.note);
    return words;
}

/// How much is said of somebody, so that it can be seen whether a card said more.
static std::size_t sizeOf(const EntityContacts &contact)
{
    return contact.phone().size() + contact.email().size() + contact.url().size() + contact.address().size() +
           contact.note().size() + contact.contactGroup().size() + contact.project().size() +
           (contact.birthday() ? 1 : 0) + (contact.company() ? 1 : 0) + (contact.contactCategory() ? 1 : 0) +
           (contact.photoName().isEmpty() ? 0 : 1);
}

/// The test for the contact that is there comes first, so that nothing of another is left behind.
ContactPtr ContactImport::importContactToDataBase(const CNContact &contact)
{
    const QString first = oneLine(contact.givenName);
    const QString last = oneLine(contact.familyName);
    const QString name = fullNameWith(first, last);
    if (name.isEmpty()) {
        const QString which = contact.organizationName;
        refuse(which.isEmpty() ? localized(u"A contact without a name."_s)
                               : localized(u"\"%1\" is no person."_s).arg(which));
        return nullptr;
    }
    const QString key = keyOf(first, last);
    const auto known = contacts.constFind(key);
    const ContactPtr present = known != contacts.constEnd() && bareContacts.remove(*known)
                                   ? loaded<EntityContacts>(*known)
                                   : nullptr;
    if (known != contacts.constEnd() && !present) {
        meet(contact);
        return nullptr;
    }
    contacts.insert(key, 0);
    newcomers.insert(key, knownFrom(contact));
    const ContactPtr row = present ? present : mainContext().insert<EntityContacts>();
    const std::size_t formerSize = sizeOf(*row);
    row->setFirstName(first);
    row->setLastName(last);
    if (contact.birthday && contact.birthday->year) {
        row->setBirthday(Calendar::current().dateFromComponents({.year = *contact.birthday->year,
                                                                 .month = contact.birthday->month,
                                                                 .day = contact.birthday->day}));
    }
    const QString company = oneLine(contact.organizationName);
    if (!company.isEmpty())
        row->setCompany(companyNamed(company));
    const auto category = categoryNamed(contact.jobTitle);
    row->setContactCategory(category);
    const QStringList words = wordsWithoutField(contact, name, category != nullptr);
    // Its notes may have come before its card, as parts of a file of their own.
    if (!words.isEmpty() && !notewords::areSame(words.join(u'\n'), notewords::of(*row))) {
        const auto note = mainContext().insert<EntityNote>();
        note->setTitle(name);
        note->setDetail(words.join(u'\n'));
        note->setCreationDate(MVDate::date());
        note->setContact(row);
    }
    addDetails(row, contact);
    addLinks(row, contact);
    addPicture(row, row->fullName(), contact);
    if (!present)
        ++account.added;
    else if (sizeOf(*row) > formerSize)
        ++account.filledContacts;
    else
        account.existing.append(name);
    return row;
}

CompanyPtr ContactImport::importCompany(const CNContact &contact)
{
    const QString title = oneLine(contact.organizationName);
    const bool hasMore = companyRows.contains(title) && !bareCompanies.contains(title);
    if (hasMore || describedCompanies.contains(title)) {
        meetCompany(contact);
        return nullptr;
    }
    describedCompanies.insert(title);
    newcomers.insert(keyOfCompany(title), knownFrom(contact));
    if (companyRows.contains(title))
        ++account.filledCompanies;
    const CompanyPtr company = companyNamed(title);
    company->setDetails(wordsWithoutField(contact, title, false).join(u'\n'));
    addDetails(company, contact);
    for (const QString &group : contact.groups)
        if (const auto list = listOfCompanies(group))
            list->addRelated("companies", company);
    addPicture(company, title, contact);
    ++account.addedCompanies;
    return company;
}

/// That it has a picture is all that counts.
static CNContact withoutPicture(const CNContact &contact)
{
    CNContact card = contact;
    if (!card.imageData.isEmpty())
        card.imageData = "1";
    return card;
}

void ContactImport::meetCompany(const CNContact &contact)
{
    const QString title = oneLine(contact.organizationName);
    account.existing.append(title);
    const RowId row = companyRows.value(title);
    const bool isNew = describedCompanies.contains(title);
    if (isNew)
        tell(contact, verdictOn(contact, newcomers.value(keyOfCompany(title))));
    CNContact card = withoutPicture(contact);
    if (row != 0 && !isNew)
        metCompanies.emplace_back(row, std::move(card));
}

void ContactImport::meet(const CNContact &contact)
{
    if (!contact.hasName())
        return meetCompany(contact);
    const QString first = oneLine(contact.givenName);
    const QString last = oneLine(contact.familyName);
    account.existing.append(fullNameWith(first, last));
    const RowId row = contacts.value(keyOf(first, last));
    CNContact card = withoutPicture(contact);
    if (row != 0)
        met.emplace_back(row, std::move(card));
    else if (const auto newcomer = newcomers.constFind(keyOf(first, last)); newcomer != newcomers.constEnd())
        tell(contact, verdictOn(contact, *newcomer));
}

/// What a stored row itself has.
static KnownContact knownFrom(const EntityContacts &contact)
{
    KnownContact known;
    if (const OptionalDate birthday = contact.birthday()) {
        const Calendar calendar = Calendar::current();
        known.birthday =
            CNBirthday{calendar.year(*birthday), calendar.month(*birthday), calendar.day(*birthday)};
    }
    known.company = contact.company() ? contact.company()->title() : QString();
    known.hasPicture = !contact.photoName().isEmpty();
    for (const auto &group : contact.contactGroup())
        known.groups.insert(group->title());
    return known;
}

static KnownContact knownFrom(const EntityCompany &company)
{
    return {
        .words = company.details(), .company = company.title(), .hasPicture = !company.photoName().isEmpty()};
}

void ContactImport::tell(const CNContact &card, CardVerdict verdict)
{
    if (verdict == CardVerdict::More)
        account.poorer.append(nameOf(card));
    else if (verdict == CardVerdict::OtherPerson)
        account.namesakes.append(nameOf(card));
}

template <typename Owner>
void ContactImport::compareExisting(const std::vector<std::pair<RowId, CNContact>> &present,
                                    const char *ownerColumn)
{
    ManagedObjectContext &context = mainContext();
    QHash<QString, std::size_t> places;
    std::vector<KnownContact> known;
    // The place of the owner of each card; absent for one that is gone.
    std::vector<std::optional<std::size_t>> owners;
    std::vector<RowId> rows;
    for (const auto &[row, card] : present)
        rows.push_back(row);
    const ObjectList<Owner> loaded(context, organiserModel().requireEntity(Owner::entityName), rows);
    for (std::size_t place = 0; place < present.size(); ++place) {
        const std::shared_ptr<Owner> owner = loaded.at(static_cast<int>(place));
        if (!owner) {
            owners.emplace_back();
            continue;
        }
        if (!places.contains(owner->identifier())) {
            places.insert(owner->identifier(), known.size());
            known.push_back(knownFrom(*owner));
        }
        owners.emplace_back(places.value(owner->identifier()));
    }
    if (known.empty())
        return;
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
    for (std::size_t place = 0; place < present.size(); ++place)
        if (owners[place])
            tell(present[place].second, verdictOn(present[place].second, known[*owners[place]]));
}

ContactImportAccount ContactImport::finish()
{
    compareExisting<EntityContacts>(met, "contact");
    compareExisting<EntityCompany>(metCompanies, "company");
    met.clear();
    metCompanies.clear();
    return account;
}

QStringList ContactImportAccount::sentences() const
{
    QStringList all;
    if (const int people = added + filledContacts; people > 0 || addedCompanies == 0)
        all.append(people == 0 ? localized(u"No contact was imported."_s)
                               : localizedCount(u"%1 contacts were imported."_s, people));
    if (const int newCompanies = companies + filledCompanies; newCompanies > 0)
        all.append(localizedCount(u"%1 companies were imported."_s, newCompanies));
    if (groups > 0)
        all.append(localizedCount(u"%1 groups are new."_s, groups));
    const auto tell = [&](const QStringList &names, const QString &sentence) {
        if (!names.isEmpty())
            all.append(localizedCount(sentence, names.size()).arg(someOf(names)));
    };
    if (wasStopped)
        all.append(localized(u"The import was stopped; what it had done by then stays."_s));
    tell(existing, u"%1 were there already: %2."_s);
    tell(poorer, u"%1 of those lack something that their cards have, and stay as they are: %2."_s);
    if (!namesakes.isEmpty())
        all.append(
            localized(
                u"Cards with other phones and mail, which may be those of other people, were left out: %1."_s)
                .arg(someOf(namesakes)));
    tell(refused, u"%1 could not be imported: %2"_s);
    tell(withoutPicture, u"%1 came without a picture, since that is none or cannot be read: %2."_s);
    tell(withoutYear, u"%1 birthdays without a year stand in notes: %2."_s);
    tell(unreadBirthdays, u"%1 birthdays cannot be read and stand in notes: %2."_s);
    tell(otherJobTitles, u"%1 job titles are none of those that there are and stand in notes: %2."_s);
    if (!withOtherWords.isEmpty())
        all.append(localized(u"Words for which there is no field stand in notes: %1."_s)
                       .arg(someOf(withOtherWords)));
    return all;
}
