#include "records/people/ContactImport.h"

#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "records/exchange/ProjectName.h"
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
using knowncontacts::isLink;
using knowncontacts::oneLine;

namespace {

/// Companies have a title, and no two names.
QString keyOfCompany(const QString &title)
{
    return PresentNames::keyOf(PresentNames::keyOf({}, title), {});
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

QString nameOf(const CNContact &card)
{
    return card.hasName() ? fullNameWith(card.givenName, card.familyName) : card.organizationName;
}

} // namespace

ContactImport::ContactImport(PngMaker toPng)
    : pngOf(std::move(toPng))
    , phoneTypes(typesIn(DBWorker::allPhoneType()))
    , emailTypes(typesIn(DBWorker::allEmailType()))
    , addressTypes(typesIn(DBWorker::allAddressType()))
    , urlTypes(typesIn(DBWorker::allURLType()))
    , categories(typesIn(DBWorker::allContactCategories()))
{}

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
    return title.isEmpty() ? nullptr : tablewords::namedAmong(categories, title);
}

OptionalDate ContactImport::birthdayOf(const CNContact &contact)
{
    const auto &birthday = contact.birthday;
    if (!birthday || !birthday->year)
        return std::nullopt;
    return Calendar::current().dateFromComponents(
        {.year = *birthday->year, .month = birthday->month, .day = birthday->day});
}

CompanyPtr ContactImport::companyNamed(const QString &title)
{
    CompanyPtr &company = companies[title];
    if (company)
        return company;
    company = presentNames.company(title);
    if (!company) {
        company = mainContext().insert<EntityCompany>();
        company->setTitle(title);
        ++account.companies;
    }
    return company;
}

static void own(const auto &detail, const ContactPtr &owner, int place)
{
    detail->setContact(owner);
    detail->setPosition(place);
}

static void own(const auto &detail, const CompanyPtr &owner, int place)
{
    detail->setCompany(owner);
    detail->setPosition(place);
}

/// The owner has none of them yet.
template <typename Owner>
void ContactImport::addDetails(const std::shared_ptr<Owner> &owner, const CNContact &contact)
{
    ManagedObjectContext &context = mainContext();
    int position = 0;
    for (const auto &[label, number] : contact.phoneNumbers) {
        const auto phone = context.insert<EntityPhone>();
        phone->setNumber(oneLine(number));
        phone->setType(phoneTypeWith(label));
        own(phone, owner, ++position);
    }
    for (const auto &[label, mail] : contact.emailAddresses) {
        const auto email = context.insert<EntityEmail>();
        email->setMail(oneLine(mail));
        email->setType(emailTypeWith(label));
        own(email, owner, ++position);
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
        own(address, owner, ++position);
    }
    for (const auto &[label, text] : contact.urlAddresses) {
        const auto url = context.insert<EntityURL>();
        url->setUrl(oneLine(text));
        url->setType(urlsTypeWith(label));
        own(url, owner, ++position);
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
        ProjectPtr project = projectname::found(word);
        if (!project) {
            project = projectname::made(word);
            ++account.projects;
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
    if (contact.imageData.isEmpty() && !contact.imageAddress.isEmpty())
        account.withPictureOnWeb.append(name);
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
        constexpr int anyLeapYear = 2000;
        const Date day = Calendar::current().dateFromComponents(
            {.year = anyLeapYear, .month = contact.birthday->month, .day = contact.birthday->day});
        using enum DateFormatter::Language;
        const QString pattern = DateFormatter::patternFromTemplate(u"MMMMd"_s, OfWords);
        keep(u"Birthday"_s, DateFormatter::string(day, pattern, OfWords), account.withoutYear);
    }
    if (!contact.birthday && !contact.unreadBirthday.isEmpty())
        keep(u"Birthday"_s, contact.unreadBirthday, account.unreadBirthdays);
    if (!hasCategory && !contact.jobTitle.isEmpty())
        keep(u"Job Title"_s, oneLine(contact.jobTitle), account.otherJobTitles);
    if (contact.imageData.isEmpty() && !contact.imageAddress.isEmpty())
        words.append(localized(u"Picture"_s) + u": "_s + contact.imageAddress);
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
    if (!contact.note.isEmpty() && contact.notes.empty())
        words.append(contact.note);
    return words;
}

void ContactImport::addNote(const ContactPtr &person, const CNNote &values)
{
    const auto note = mainContext().insert<EntityNote>();
    note->setTitle(values.title);
    note->setDetail(values.text);
    note->setCreationDate(values.created);
    note->setContact(person);
    if (const QString company = oneLine(values.company); !company.isEmpty())
        note->setCompany(companyNamed(company));
}

/// The notes of a card, and a note of what no field holds. They may have come before the card, as parts of a
/// file of their own.
void ContactImport::addNotes(const ContactPtr &person, const CNContact &card,
                             const QStringList &wordsWithoutField)
{
    const QString words = wordsWithoutField.join(u'\n');
    const QString all = card.notes.empty() ? words : words + u'\n' + card.note;
    if (notewords::areSame(all, notewords::of(*person)))
        return;
    std::vector<CNNote> notes = card.notes;
    if (!words.isEmpty())
        notes.push_back({person->fullName(), words, MVDate::date()});
    const auto present = person->note();
    for (const CNNote &note : notes) {
        const bool isThere = std::ranges::any_of(present, [&note](const auto &one) {
            return one->title() == note.title && one->detail() == note.text;
        });
        if (!isThere)
            addNote(person, note);
    }
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
    const QString key = PresentNames::keyOf(first, last);
    const bool isNew = !newcomers.contains(key);
    const bool isThere = presentNames.rowOfContact(first, last) != 0;
    const ContactPtr present = isNew && isThere ? presentNames.bareContact(name) : nullptr;
    if (!isNew || (isThere && !present)) {
        meet(contact);
        return nullptr;
    }
    newcomers.insert(key, knowncontacts::from(contact));
    const ContactPtr row = present ? present : mainContext().insert<EntityContacts>();
    const std::size_t formerSize = present ? sizeOf(*present) : 0;
    row->setFirstName(first);
    row->setLastName(last);
    if (const OptionalDate birthday = birthdayOf(contact))
        row->setBirthday(birthday);
    const QString company = oneLine(contact.organizationName);
    if (!company.isEmpty())
        row->setCompany(companyNamed(company));
    const auto category = categoryNamed(contact.jobTitle);
    row->setContactCategory(category);
    const QStringList words = wordsWithoutField(contact, name, category != nullptr);
    addNotes(row, contact, words);
    addDetails(row, contact);
    addLinks(row, contact);
    if (joinedGroup && joinedGroup->context() && !joinedGroup->isDeleted())
        joinedGroup->addRelated("contacts", row);
    addPicture(row, row->fullName(), contact);
    if (!present)
        ++account.added;
    else if (sizeOf(*row) > formerSize)
        account.filledContacts.append(name);
    else
        account.existing.append(name);
    return row;
}

CompanyPtr ContactImport::importCompany(const CNContact &contact)
{
    const QString title = oneLine(contact.organizationName);
    const bool hasMore = presentNames.hasCompany(title) && !presentNames.isBareCompany(title);
    if (hasMore || describedCompanies.contains(title)) {
        meetCompany(contact);
        return nullptr;
    }
    describedCompanies.insert(title);
    newcomers.insert(keyOfCompany(title), knowncontacts::from(contact));
    if (presentNames.hasCompany(title))
        account.filledCompanies.append(title);
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
    const RowId row = presentNames.rowOfCompany(title);
    const bool isNew = describedCompanies.contains(title);
    if (isNew)
        tell(contact, knowncontacts::verdictOn(contact, newcomers.value(keyOfCompany(title))));
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
    CNContact card = withoutPicture(contact);
    if (const auto newcomer = newcomers.constFind(PresentNames::keyOf(first, last));
        newcomer != newcomers.constEnd())
        tell(contact, knowncontacts::verdictOn(contact, *newcomer));
    else if (const RowId row = presentNames.rowOfContact(first, last); row != 0)
        met.emplace_back(row, std::move(card));
}

void ContactImport::tell(const CNContact &card, CardVerdict verdict)
{
    if (verdict == CardVerdict::More)
        account.poorer.append(nameOf(card));
    else if (verdict == CardVerdict::OtherPerson)
        account.namesakes.append(nameOf(card));
}

void ContactImport::compare(const Met &cards,
                            std::vector<std::optional<KnownContact>> (*known)(const std::vector<RowId> &))
{
    std::vector<RowId> rows;
    for (const auto &[row, card] : cards)
        rows.push_back(row);
    const std::vector<std::optional<KnownContact>> present = known(rows);
    for (std::size_t place = 0; place < cards.size(); ++place) {
        if (present[place])
            tell(cards[place].second, knowncontacts::verdictOn(cards[place].second, *present[place]));
    }
}

ContactImportAccount ContactImport::finish()
{
    compare(met, knowncontacts::ofContacts);
    compare(metCompanies, knowncontacts::ofCompanies);
    met.clear();
    metCompanies.clear();
    return account;
}
