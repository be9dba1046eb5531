#include "records/people/ContactImport.h"

#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "records/people/ContactLabels.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <unordered_map>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Names cannot hold it.
constexpr QChar nameSeparator(u'\n');

QString keyOf(const QString &first, const QString &last)
{
    return first + nameSeparator + last;
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

/// A card that comes to a contact that is there, and what the contact has of it.
struct Comparison
{
    const CNContact *card;
    QSet<QString> phones = {};
    QSet<QString> emails = {};
    QSet<QString> urls = {};
    int addresses = 0;
    bool lacksBirthday = false;
    bool lacksCompany = false;

    bool isPoorer() const
    {
        const auto lacks = [](const auto &values, const QSet<QString> &present) {
            return std::ranges::any_of(
                values, [&](const auto &one) { return !present.contains(essence(one.value)); });
        };
        return lacks(card->phoneNumbers, phones) || lacks(card->emailAddresses, emails) ||
               lacks(card->urlAddresses, urls) ||
               static_cast<int>(card->postalAddresses.size()) > addresses ||
               (lacksBirthday && card->birthday && card->birthday->year) ||
               (lacksCompany && !card->organizationName.isEmpty());
    }
};

QString nameOf(const CNContact &card)
{
    return card.hasName() ? fullNameWith(card.givenName, card.familyName) : card.organizationName;
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
}

QSet<QString> ContactImport::companiesWithTitleOnly()
{
    ManagedObjectContext &context = mainContext();
    QSet<QString> described;
    const auto collect = [&](const FetchRequest &details) {
        context.visit(details, {"company"}, [&](const RowReader &row) {
            if (!row.isNull(0))
                described.insert(row.text(0));
        });
    };
    collect(EntityPhone::fetchRequest());
    collect(EntityEmail::fetchRequest());
    collect(EntityURL::fetchRequest());
    collect(EntityAddress::fetchRequest());
    QSet<QString> titles;
    context.visit(EntityCompany::fetchRequest(), {"id", "title", "details", "photoName"},
                  [&](const RowReader &row) {
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
    const auto found = std::ranges::find_if(categories, [&](const auto &category) {
        return title.compare(category->title(), Qt::CaseInsensitive) == 0 ||
               title.compare(localized(category->title()), Qt::CaseInsensitive) == 0;
    });
    return title.isEmpty() || found == categories.end() ? nullptr : *found;
}

CompanyPtr ContactImport::companyNamed(const QString &title)
{
    CompanyPtr &company = companies[title];
    if (company)
        return company;
    if (const RowId row = companyRows.value(title)) {
        const ObjectList<EntityCompany> loaded(
            mainContext(), organiserModel().requireEntity(EntityCompany::entityName), {row});
        company = loaded.at(0);
    }
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
    for (const auto &[kind, text] : contact.otherWords)
        words.append(localized(kind) + u": "_s + text);
    if (!contact.otherWords.empty())
        account.withOtherWords.append(name);
    if (!contact.note.isEmpty())
        words.append(contact.note);
    return words;
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
    const auto known = contacts.constFind(keyOf(first, last));
    if (known != contacts.constEnd()) {
        account.existing.append(name);
        CNContact card = contact;
        card.imageData.clear();
        // One that has just come in is compared with nothing.
        if (*known != 0)
            met.emplace_back(*known, std::move(card));
        return nullptr;
    }
    contacts.insert(keyOf(first, last), 0);
    const ContactPtr row = mainContext().insert<EntityContacts>();
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
    if (!words.isEmpty()) {
        const auto note = mainContext().insert<EntityNote>();
        note->setTitle(name);
        note->setDetail(words.join(u'\n'));
        note->setCreationDate(MVDate::date());
        note->setContact(row);
    }
    addDetails(row, contact);
    addPicture(row, row->fullName(), contact);
    ++account.added;
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
    const CompanyPtr company = companyNamed(title);
    company->setDetails(wordsWithoutField(contact, title, false).join(u'\n'));
    addDetails(company, contact);
    addPicture(company, title, contact);
    ++account.addedCompanies;
    return company;
}

void ContactImport::meetCompany(const CNContact &contact)
{
    const QString title = oneLine(contact.organizationName);
    account.existing.append(title);
    const RowId row = companyRows.value(title);
    CNContact card = contact;
    card.imageData.clear();
    if (row != 0)
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
    CNContact card = contact;
    card.imageData.clear();
    if (row != 0)
        met.emplace_back(row, std::move(card));
}

template <typename Owner>
void ContactImport::compareExisting(const std::vector<std::pair<RowId, CNContact>> &present,
                                    const char *ownerColumn)
{
    ManagedObjectContext &context = mainContext();
    QHash<QString, std::size_t> places;
    std::vector<Comparison> comparisons;
    std::vector<RowId> rows;
    for (const auto &[row, card] : present)
        rows.push_back(row);
    const ObjectList<Owner> loaded(context, organiserModel().requireEntity(Owner::entityName), rows);
    for (std::size_t place = 0; place < present.size(); ++place) {
        const std::shared_ptr<Owner> owner = loaded.at(static_cast<int>(place));
        // Two cards of one owner are compared as the first of them is.
        if (!owner || places.contains(owner->identifier()))
            continue;
        places.insert(owner->identifier(), comparisons.size());
        Comparison comparison{.card = &present[place].second};
        if constexpr (std::is_same_v<Owner, EntityContacts>) {
            comparison.lacksBirthday = !owner->birthday();
            comparison.lacksCompany = !owner->company();
        }
        comparisons.push_back(std::move(comparison));
    }
    if (comparisons.empty())
        return;
    const auto collect = [&](const FetchRequest &request, const char *column, auto take) {
        context.visit(request, {ownerColumn, column}, [&](const RowReader &row) {
            const auto found = row.isNull(0) ? places.constEnd() : places.constFind(row.text(0));
            if (found != places.constEnd())
                take(comparisons[*found], row.text(1));
        });
    };
    const auto into = [](QSet<QString> Comparison::*values) {
        return [values](Comparison &one, const QString &value) { (one.*values).insert(essence(value)); };
    };
    collect(EntityPhone::fetchRequest(), "number", into(&Comparison::phones));
    collect(EntityEmail::fetchRequest(), "mail", into(&Comparison::emails));
    collect(EntityURL::fetchRequest(), "url", into(&Comparison::urls));
    collect(EntityAddress::fetchRequest(), "city", [](Comparison &one, const QString &) { ++one.addresses; });
    for (const Comparison &one : comparisons) {
        if (one.isPoorer())
            account.poorer.append(nameOf(*one.card));
    }
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
    if (added > 0 || addedCompanies == 0)
        all.append(added == 0 ? localized(u"No contact was imported."_s)
                              : localizedCount(u"%1 contacts were imported."_s, added));
    if (addedCompanies > 0)
        all.append(localizedCount(u"%1 companies were imported."_s, addedCompanies));
    const auto tell = [&](const QStringList &names, const QString &sentence) {
        if (!names.isEmpty())
            all.append(localizedCount(sentence, names.size()).arg(someOf(names)));
    };
    if (wasStopped)
        all.append(localized(u"The import was stopped; what it had done by then stays."_s));
    tell(existing, u"%1 were there already: %2."_s);
    tell(poorer, u"%1 of those lack something that their cards have, and stay as they are: %2."_s);
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
