#include "records/people/ContactTable.h"

#include "foundation/Localization.h"
#include "records/people/ContactLabels.h"

#include <QDate>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <map>

using namespace Qt::Literals::StringLiterals;

namespace {

using Column = ContactTable::Column;
using Sort = Column::Sort;
using Part = Column::Part;

struct NamedPart
{
    Part part;
    QString title;
    QString CNPostalAddress::*field;
};

/// In the order of the columns.
const std::vector<NamedPart> &addressParts()
{
    static const std::vector<NamedPart> parts = {{Part::Street, u"Street"_s, &CNPostalAddress::street},
                                                 {Part::Street2, u"Street 2"_s, &CNPostalAddress::extended},
                                                 {Part::City, u"City"_s, &CNPostalAddress::city},
                                                 {Part::State, u"State"_s, &CNPostalAddress::state},
                                                 {Part::Zip, u"ZIP"_s, &CNPostalAddress::postalCode},
                                                 {Part::Country, u"Country"_s, &CNPostalAddress::country}};
    return parts;
}

QString numbered(const QString &title, int number)
{
    return localized(title) + u' ' + QString::number(number);
}

QString titleOfPart(int number, const QString &part)
{
    return numbered(u"Address"_s, number) + u' ' + localized(part);
}

template <typename Visit>
void forEachLabel(Visit visit)
{
    const auto visitAll = [&](const auto &labels) {
        for (const QString &label : labels)
            visit(label);
    };
    visitAll(ContactLabels::phone);
    visitAll(ContactLabels::email);
    visitAll(ContactLabels::address);
    visitAll(ContactLabels::url);
}

/// The label that a word means in the user's language; the word itself where it means none.
QString labelOf(const QString &word)
{
    QString found = word;
    forEachLabel([&](const QString &label) {
        if (word.compare(localized(label), Qt::CaseInsensitive) == 0 ||
            word.compare(label, Qt::CaseInsensitive) == 0)
            found = label;
    });
    return found;
}

QString birthdayText(const CNBirthday &birthday)
{
    const auto two = [](int number) { return QString::number(number).rightJustified(2, u'0'); };
    const QString day = two(birthday.month) + u'-' + two(birthday.day);
    return birthday.year ? QString::number(*birthday.year).rightJustified(4, u'0') + u'-' + day
                         : u"--"_s + day;
}

/// ISO 8601, or day, month and year between dots.
std::optional<CNBirthday> birthdayOf(const QString &text)
{
    static const QRegularExpression iso(u"^(\\d{4}|-)-(\\d{2})-(\\d{2})(?:T.*)?$"_s);
    static const QRegularExpression dots(u"^(\\d{1,2})\\.\\s?(\\d{1,2})\\.\\s?(\\d{4})$"_s);
    std::optional<CNBirthday> birthday;
    if (const auto match = iso.match(text); match.hasMatch()) {
        const bool hasYear = match.capturedView(1) != u"-";
        birthday = {hasYear ? std::optional(match.capturedView(1).toInt()) : std::nullopt,
                    match.capturedView(2).toInt(), match.capturedView(3).toInt()};
    } else if (const auto parts = dots.match(text); parts.hasMatch()) {
        birthday = {parts.capturedView(3).toInt(), parts.capturedView(2).toInt(),
                    parts.capturedView(1).toInt()};
    }
    constexpr int leapYear = 2000;
    if (birthday && !QDate::isValid(birthday->year.value_or(leapYear), birthday->month, birthday->day))
        return std::nullopt;
    return birthday;
}

// Titles

/// Letters and digits alone.
QString keyOf(const QString &title)
{
    QString key;
    for (const QChar letter : title.toLower())
        if (letter.isLetterOrNumber())
            key += letter;
    return key;
}

using KnownTitles = QHash<QString, Column>;

/// All titles without a number, by their keys. A number stands as "#".
KnownTitles knownTitles()
{
    KnownTitles known;
    const auto add = [&](const QString &title, const Column &column) { known.insert(keyOf(title), column); };
    const auto addBoth = [&](const QString &title, const Column &column) {
        add(title, column);
        add(localized(title), column);
    };
    const auto addSort = [&](const QStringList &titles, Sort sort) {
        for (const QString &title : titles) {
            for (const QString &word : {title, localized(title)}) {
                add(word, {sort});
                add(word + u" value"_s, {sort});
                for (const QString &of : {u"Type"_s, u"Label"_s, localized(u"Type"_s)})
                    add(word + of, {sort, Part::Label});
            }
        }
    };
    const auto addLabelled = [&](const QString &title, Sort sort, const QString &label) {
        add(title, {.sort = sort, .label = label});
    };
    for (const QString &title : {u"First Name"_s, u"Given Name"_s, u"Forename"_s})
        addBoth(title, {Sort::FirstName});
    for (const QString &title : {u"Last Name"_s, u"Family Name"_s, u"Surname"_s})
        addBoth(title, {Sort::LastName});
    for (const QString &title : {u"Name"_s, u"Full Name"_s, u"Display Name"_s})
        addBoth(title, {Sort::FullName});
    for (const QString &title : {u"Company"_s, u"Organization"_s, u"Organization Name"_s})
        addBoth(title, {Sort::Company});
    for (const QString &title : {u"Job Title"_s, u"Organization Title"_s})
        addBoth(title, {Sort::JobTitle});
    addBoth(u"Birthday"_s, {Sort::Birthday});
    for (const QString &title : {u"Notes"_s, u"Note"_s, u"Comment"_s})
        addBoth(title, {Sort::Note});
    addBoth(ContactTable::groups, {Sort::Groups});
    addBoth(ContactTable::projects, {Sort::Projects});
    addSort({u"Phone"_s, u"Telephone"_s, u"Phone Number"_s}, Sort::Phone);
    addSort({u"Email"_s, u"E-mail"_s, u"Email Address"_s}, Sort::Email);
    addSort({u"URL"_s, u"Website"_s, u"Web Page"_s}, Sort::Url);
    for (const QString &title : {u"Address"_s, localized(u"Address"_s)}) {
        for (const QString &of : {u"Type"_s, u"Label"_s, localized(u"Type"_s)})
            add(title + of, {Sort::Address, Part::Label});
        for (const NamedPart &part : addressParts())
            for (const QString &of : {part.title, localized(part.title)})
                add(title + of, {Sort::Address, part.part});
        add(title + u"Region"_s, {Sort::Address, Part::State});
        add(title + u"Postal Code"_s, {Sort::Address, Part::Zip});
        add(title + u"Extended Address"_s, {Sort::Address, Part::Street2});
    }
    for (const QString &title : {u"Mobile Phone"_s, u"Mobile Number"_s, u"Mobile"_s})
        addLabelled(title, Sort::Phone, CNLabel::mobile);
    addLabelled(u"Home Phone"_s, Sort::Phone, CNLabel::home);
    addLabelled(u"Business Phone"_s, Sort::Phone, CNLabel::work);
    addLabelled(u"Work Phone"_s, Sort::Phone, CNLabel::work);
    addLabelled(u"Home Fax"_s, Sort::Phone, CNLabel::homeFax);
    addLabelled(u"Business Fax"_s, Sort::Phone, CNLabel::workFax);
    return known;
}

template <typename Value>
CNLabeledValue<Value> &valueAt(std::map<int, CNLabeledValue<Value>> &values, const Column &column)
{
    auto &value = values[column.number];
    if (!column.label.isEmpty())
        value.label = column.label;
    return value;
}

template <typename Value, typename IsEmpty>
void append(std::vector<CNLabeledValue<Value>> &list, const std::map<int, CNLabeledValue<Value>> &values,
            IsEmpty isEmpty)
{
    for (const auto &[number, value] : values)
        if (!isEmpty(value.value))
            list.push_back(value);
}

} // namespace

void ContactTableWidth::widenTo(const CNContact &contact)
{
    phones = std::max(phones, static_cast<int>(contact.phoneNumbers.size()));
    emails = std::max(emails, static_cast<int>(contact.emailAddresses.size()));
    urls = std::max(urls, static_cast<int>(contact.urlAddresses.size()));
    addresses = std::max(addresses, static_cast<int>(contact.postalAddresses.size()));
}

QStringList ContactTable::titles(const ContactTableWidth &width)
{
    QStringList titles = {localized(u"First Name"_s), localized(u"Last Name"_s), localized(u"Company"_s),
                          localized(u"Job Title"_s), localized(u"Birthday"_s)};
    const auto add = [&](const QString &title, int count) {
        for (int number = 1; number <= count; ++number)
            titles << numbered(title, number) << numbered(title, number) + u' ' + localized(u"Type"_s);
    };
    add(u"Phone"_s, width.phones);
    add(u"Email"_s, width.emails);
    add(u"URL"_s, width.urls);
    for (int number = 1; number <= width.addresses; ++number) {
        for (const NamedPart &part : addressParts())
            titles << titleOfPart(number, part.title);
        titles << titleOfPart(number, u"Type"_s);
    }
    return titles;
}

QStringList ContactTable::fields(const CNContact &contact, const ContactTableWidth &width)
{
    QStringList fields = {contact.givenName, contact.familyName, contact.organizationName, contact.jobTitle,
                          contact.birthday ? birthdayText(*contact.birthday) : QString()};
    const auto wordOf = [](const QString &label) { return label.isEmpty() ? label : localized(label); };
    const auto add = [&](const auto &values, int count) {
        for (int number = 0; number < count; ++number) {
            const bool isThere = number < static_cast<int>(values.size());
            const auto index = static_cast<std::size_t>(number);
            fields << (isThere ? values[index].value : QString())
                   << (isThere ? wordOf(values[index].label) : QString());
        }
    };
    add(contact.phoneNumbers, width.phones);
    add(contact.emailAddresses, width.emails);
    add(contact.urlAddresses, width.urls);
    for (int number = 0; number < width.addresses; ++number) {
        const bool isThere = number < static_cast<int>(contact.postalAddresses.size());
        const CNLabeledValue<CNPostalAddress> address =
            isThere ? contact.postalAddresses[static_cast<std::size_t>(number)]
                    : CNLabeledValue<CNPostalAddress>();
        for (const NamedPart &part : addressParts())
            fields << address.value.*part.field;
        fields << wordOf(address.label);
    }
    return fields;
}

std::optional<ContactTable::Column> ContactTable::Column::of(const QString &title)
{
    const KnownTitles known = knownTitles();
    // "Street 2" is a title with a digit of its own, so the first number is the one that counts.
    static const QRegularExpression firstNumber(u"^(\\D+?)\\s*(\\d+)(.*)$"_s);
    if (const auto match = firstNumber.match(title.trimmed()); match.hasMatch()) {
        const auto found = known.constFind(keyOf(match.captured(1) + match.captured(3)));
        if (found != known.constEnd()) {
            Column column = *found;
            column.number = std::max(1, match.capturedView(2).toInt());
            return column;
        }
    }
    const auto found = known.constFind(keyOf(title));
    return found == known.constEnd() ? std::nullopt : std::optional(*found);
}

CNContact ContactTable::contactOf(const QStringList &fields,
                                  const std::vector<std::optional<Column>> &columns)
{
    CNContact contact;
    std::map<int, CNLabeledValue<QString>> phones;
    std::map<int, CNLabeledValue<QString>> emails;
    std::map<int, CNLabeledValue<QString>> urls;
    std::map<int, CNLabeledValue<CNPostalAddress>> addresses;
    QString fullName;
    const auto put = [](CNLabeledValue<QString> &value, const Column &column, const QString &text) {
        (column.part == Part::Label ? value.label : value.value) =
            column.part == Part::Label ? labelOf(text) : text;
    };
    // Values that are called by their columns, and so have no numbers, come behind the others.
    int unnumbered = 1'000'000;
    const std::size_t count = std::min(columns.size(), static_cast<std::size_t>(fields.size()));
    for (std::size_t index = 0; index < count; ++index) {
        const QString text = fields[static_cast<int>(index)].trimmed();
        if (!columns[index] || text.isEmpty())
            continue;
        Column column = *columns[index];
        if (!column.label.isEmpty())
            column.number = ++unnumbered;
        switch (column.sort) {
        case Sort::FirstName:
            contact.givenName = text;
            break;
        case Sort::LastName:
            contact.familyName = text;
            break;
        case Sort::FullName:
            fullName = text;
            break;
        case Sort::Company:
            contact.organizationName = text;
            break;
        case Sort::JobTitle:
            contact.jobTitle = text;
            break;
        case Sort::Birthday:
            contact.birthday = birthdayOf(text);
            if (!contact.birthday)
                contact.unreadBirthday = text;
            break;
        case Sort::Note:
            contact.note = text;
            break;
        case Sort::Groups:
        case Sort::Projects:
            for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts))
                contact.otherWords.push_back(
                    {column.sort == Sort::Groups ? groups : projects, line.trimmed()});
            break;
        case Sort::Phone:
            put(valueAt(phones, column), column, text);
            break;
        case Sort::Email:
            put(valueAt(emails, column), column, text);
            break;
        case Sort::Url:
            put(valueAt(urls, column), column, text);
            break;
        case Sort::Address:
            auto &address = valueAt(addresses, column);
            if (column.part == Part::Label)
                address.label = labelOf(text);
            for (const NamedPart &part : addressParts())
                if (part.part == column.part)
                    address.value.*part.field = text;
            break;
        }
    }
    if (!contact.hasName() && !fullName.isEmpty()) {
        // The last word is the family name.
        contact.familyName = fullName.section(u' ', -1);
        contact.givenName = fullName.chopped(contact.familyName.size()).trimmed();
    }
    const auto isEmptyText = [](const QString &text) { return text.isEmpty(); };
    append(contact.phoneNumbers, phones, isEmptyText);
    append(contact.emailAddresses, emails, isEmptyText);
    append(contact.urlAddresses, urls, isEmptyText);
    append(contact.postalAddresses, addresses, [](const CNPostalAddress &place) { return place.isEmpty(); });
    return contact;
}
