#include "records/people/ContactTable.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/exchange/TableCells.h"
#include "records/exchange/TableWords.h"
#include "records/people/ContactLabels.h"

#include <QDate>
#include <QHash>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>
#include <map>
#include <tuple>

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

/// The label that a word means in any language; the word itself where it means none.
QString labelOf(const QString &said)
{
    // Other programs mark the one that is preferred.
    const QString word = said.startsWith(u"* "_s) ? said.mid(2).trimmed() : said;
    QString found;
    forEachLabel([&](const QString &label) {
        if (found.isEmpty() && tablewords::means(word, label))
            found = label;
    });
    if (!found.isEmpty())
        return found;
    const auto is = [&word](const QString &other) { return word.compare(other, Qt::CaseInsensitive) == 0; };
    if (is(u"Business"_s) || is(u"geschäftlich"_s) || is(u"dienstlich"_s))
        return CNLabel::work;
    if (is(u"Cell"_s) || is(u"Handy"_s))
        return CNLabel::mobile;
    // The kind of a mail address, of which there is only one.
    return is(u"privat"_s) ? CNLabel::home : is(u"SMTP"_s) ? QString() : word;
}

QString birthdayText(const CNBirthday &birthday)
{
    const auto two = [](int number) { return QString::number(number).rightJustified(2, u'0'); };
    const QString day = two(birthday.month) + u'-' + two(birthday.day);
    return birthday.year ? QString::number(*birthday.year).rightJustified(4, u'0') + u'-' + day
                         : u"--"_s + day;
}

/// The year that two digits mean for somebody who has been born.
int wholeYear(int year)
{
    constexpr int century = 100;
    if (year >= century)
        return year;
    const int present = Calendar::current().year(Clock::now());
    const int recent = present - present % century + year;
    return recent > present ? recent - century : recent;
}

/// Two numbers as month and day: by the user's order, unless that makes no day.
std::optional<CNBirthday> birthdayOf(std::optional<int> year, int first, int second, bool isMonthFirst)
{
    constexpr int leapYear = 2000;
    for (const bool isOrder : {isMonthFirst, !isMonthFirst}) {
        const CNBirthday birthday{year, isOrder ? first : second, isOrder ? second : first};
        if (QDate::isValid(year.value_or(leapYear), birthday.month, birthday.day))
            return birthday;
        constexpr int months = 12;
        // The 31st of February is none of any other month.
        if (first <= months && second <= months)
            break;
    }
    return std::nullopt;
}

/// ISO 8601, day and month between dots, or either order between strokes, each with a time behind it that
/// says nothing.
std::optional<CNBirthday> birthdayOf(const QString &text)
{
    static const QRegularExpression iso(u"^(\\d{4}|-)[-/.]?(\\d{1,2})[-/.](\\d{1,2})(?:[T ].*)?$"_s);
    static const QRegularExpression whole(u"^(\\d{4})(\\d{2})(\\d{2})$"_s);
    static const QRegularExpression dots(
        u"^(\\d{1,2})\\.\\s?(\\d{1,2})\\.(?:\\s?(\\d{4}|\\d{2}))?(?: .*)?$"_s);
    static const QRegularExpression strokes(u"^(\\d{1,2})[-/](\\d{1,2})[-/](\\d{4}|\\d{2})(?: .*)?$"_s);
    const auto numberAt = [](const QRegularExpressionMatch &match, int place) {
        return match.capturedView(place).toInt();
    };
    for (const QRegularExpression &form : {iso, whole}) {
        const auto match = form.match(text);
        const auto year = match.capturedView(1) == u"-" ? std::nullopt : std::optional(numberAt(match, 1));
        constexpr int leapYear = 2000;
        if (match.hasMatch() &&
            QDate::isValid(year.value_or(leapYear), numberAt(match, 2), numberAt(match, 3)))
            return CNBirthday{year, numberAt(match, 2), numberAt(match, 3)};
    }
    if (const auto match = dots.match(text); match.hasMatch()) {
        const auto year = match.hasCaptured(3) ? std::optional(wholeYear(numberAt(match, 3))) : std::nullopt;
        return birthdayOf(year, numberAt(match, 1), numberAt(match, 2), false);
    }
    const auto match = strokes.match(text);
    return match.hasMatch() ? birthdayOf(wholeYear(numberAt(match, 3)), numberAt(match, 1),
                                         numberAt(match, 2), tablecells::isMonthFirst())
                            : std::nullopt;
}

/// What other programs write where nothing was chosen.
bool saysNothing(const Column &column, const QString &text)
{
    static const QRegularExpression noDay(u"^0{1,4}[-/.]0{1,2}[-/.]0{1,4}$"_s);
    static const QHash<QString, QString> defaults = {
        {u"gender"_s, u"Unspecified"_s}, {u"priority"_s, u"Normal"_s},         {u"private"_s, u"False"_s},
        {u"sensitivity"_s, u"Normal"_s}, {u"geschlecht"_s, u"Keine Angabe"_s}, {u"priorität"_s, u"Normal"_s},
        {u"privat"_s, u"Aus"_s},         {u"vertraulichkeit"_s, u"Normal"_s}};
    return noDay.match(text).hasMatch() ||
           (column.sort == Sort::Other &&
            defaults.value(tablewords::keyOf(column.title)).compare(text, Qt::CaseInsensitive) == 0);
}

QStringList wordsIn(const QString &text)
{
    static const QRegularExpression between(u"[^\\w@.+-]+"_s, QRegularExpression::UseUnicodePropertiesOption);
    return text.toCaseFolded().split(between, Qt::SkipEmptyParts);
}

/// Makes a contact of a row, field by field.
class FieldsReader
{
public:
    void take(const Column &column, const QString &text)
    {
        switch (column.sort) {
        case Sort::FirstName:
            return takeOnce(contact.givenName, column, text);
        case Sort::LastName:
            return takeOnce(contact.familyName, column, text);
        case Sort::FullName:
            return takeOnce(fullName, column, text);
        case Sort::Company:
            return takeOnce(contact.organizationName, column, text);
        case Sort::JobTitle:
            return takeOnce(contact.jobTitle, column, text);
        case Sort::Birthday:
            return takeBirthday(column, text);
        case Sort::Note:
            contact.note += (contact.note.isEmpty() ? u""_s : u"\n"_s) + text;
            return;
        case Sort::Groups:
        case Sort::Projects:
            return takeLinks(column, text);
        case Sort::Phone:
            return takeValue(phones, column, text);
        case Sort::Email:
            return takeValue(emails, column, text);
        case Sort::Url:
            return takeValue(urls, column, text);
        case Sort::Address:
            return takeAddress(column, text);
        case Sort::Identifier:
            // That of another program is of use to people at most.
            if (QUuid(text).isNull())
                keep(column, text);
            return;
        case Sort::Repetition:
            repeated.emplace_back(column, text);
            return;
        case Sort::Other:
            return keep(column, text);
        }
    }

    CNContact finished()
    {
        takeFullName();
        takeParts();
        append(contact.phoneNumbers, phones);
        append(contact.emailAddresses, emails);
        append(contact.urlAddresses, urls);
        append(contact.postalAddresses, addresses);
        for (const auto &[column, text] : repeated)
            keepNews(column, text);
        return contact;
    }

private:
    /// Values with labels of their own stand behind those with numbers; several can share a number.
    struct Place
    {
        bool isNamed;
        int number;
        QString label;
        qsizetype part;
        bool operator<(const Place &other) const
        {
            return std::tie(isNamed, number, label, part) <
                   std::tie(other.isNamed, other.number, other.label, other.part);
        }
    };
    template <typename Value>
    using Values = std::map<Place, CNLabeledValue<Value>>;

    void keep(const Column &column, const QString &text)
    {
        contact.otherWords.push_back({column.title, text});
    }
    /// The first of several columns of one meaning counts; the others are kept in words.
    void takeOnce(QString &field, const Column &column, const QString &text)
    {
        if (field.isEmpty())
            field = text;
        else if (field != text)
            keep(column, text);
    }
    static QStringList piecesOf(const Column &column, const QString &text)
    {
        if (column.separators.isEmpty())
            return {text};
        QStringList pieces = text.split(QRegularExpression(column.separators));
        for (QString &piece : pieces)
            piece = piece.trimmed();
        return pieces;
    }
    void takeLinks(const Column &column, const QString &text)
    {
        for (QString title : piecesOf(column, text)) {
            // So do those that the program itself has.
            if (title.startsWith(u"* "_s))
                title = title.mid(2).trimmed();
            if (title.isEmpty())
                continue;
            if (column.sort == Sort::Projects)
                contact.otherWords.push_back({ContactTable::projects, title});
            else if (!contact.groups.contains(title))
                contact.groups.append(title);
        }
    }
    void takeBirthday(const Column &column, const QString &text)
    {
        const int number = text.toInt();
        if (column.part != Part::Value && number <= 0)
            keep(column, text);
        else if (column.part == Part::Year)
            year = {column, number};
        else if (column.part == Part::Month)
            month = {column, number};
        else if (column.part == Part::Day)
            day = {column, number};
        else if (contact.birthday || !contact.unreadBirthday.isEmpty())
            keep(column, text);
        else if (contact.birthday = birthdayOf(text); !contact.birthday)
            contact.unreadBirthday = text;
    }
    static Place placeOf(const Column &column, qsizetype part)
    {
        return {!column.label.isEmpty(), column.number, column.label, part};
    }
    void takeValue(Values<QString> &values, const Column &column, const QString &text)
    {
        if (column.part == Part::Label) {
            labels[&values][column.number] = labelOf(text);
            return;
        }
        const QStringList pieces = piecesOf(column, text);
        for (qsizetype part = 0; part < pieces.size(); ++part) {
            // Two columns can have one title.
            Place place = placeOf(column, part);
            while (values.contains(place))
                place.part += mostPieces;
            if (!pieces[part].isEmpty())
                values[place] = {column.label, pieces[part]};
        }
    }
    void takeAddress(const Column &column, const QString &text)
    {
        if (column.part == Part::Label) {
            labels[&addresses][column.number] = labelOf(text);
            return;
        }
        const QStringList pieces = piecesOf(column, text);
        for (qsizetype part = 0; part < pieces.size(); ++part) {
            const Place place = placeOf(column, part);
            if (column.part == Part::Whole) {
                wholeAddresses[place] = {column, pieces[part]};
                continue;
            }
            auto &address = addresses[place];
            address.label = column.label;
            const auto named = std::ranges::find(addressParts(), column.part, &NamedPart::part);
            QString &field = address.value.*named->field;
            if (field.isEmpty())
                field = pieces[part];
            else if (column.part == Part::Street2)
                field += u", "_s + pieces[part];
            else
                keep(column, pieces[part]);
        }
    }
    /// The family name is the last word, or stands before a comma, or is what stands beside a given name that
    /// is known.
    void takeFullName()
    {
        if (fullName.isEmpty())
            return;
        QString rest = fullName;
        const qsizetype comma = fullName.indexOf(u',');
        if (!contact.hasName() && comma > 0) {
            contact.familyName = fullName.left(comma).trimmed();
            contact.givenName = fullName.mid(comma + 1).trimmed();
        } else if (!contact.hasName()) {
            contact.familyName = fullName.section(u' ', -1);
            contact.givenName = fullName.chopped(contact.familyName.size()).trimmed();
        } else if (contact.familyName.isEmpty()) {
            if (rest.startsWith(contact.givenName + u' '))
                rest = rest.mid(contact.givenName.size()).trimmed();
            contact.familyName = rest == contact.givenName ? QString() : rest;
        } else {
            repeated.emplace_back(Column{.sort = Sort::Repetition, .title = u"Full Name"_s}, fullName);
        }
    }
    /// A birthday in three columns, and addresses that stand in one.
    void takeParts()
    {
        constexpr int leapYear = 2000;
        const bool isDay = month.second > 0 && day.second > 0 &&
                           QDate::isValid(year.second > 0 ? year.second : leapYear, month.second, day.second);
        if (isDay && !contact.birthday)
            contact.birthday = CNBirthday{year.second > 0 ? std::optional(year.second) : std::nullopt,
                                          month.second, day.second};
        else
            for (const auto &[column, number] : {year, month, day})
                if (number > 0)
                    keep(column, QString::number(number));
        for (const auto &[place, whole] : wholeAddresses) {
            if (addresses.contains(place)) {
                repeated.push_back(whole);
                continue;
            }
            auto &address = addresses[place];
            address.label = whole.first.label;
            address.value.street = whole.second;
        }
    }
    template <typename Value>
    void append(std::vector<CNLabeledValue<Value>> &list, Values<Value> &values)
    {
        const auto &ofNumbers = labels[&values];
        for (auto &[place, value] : values) {
            if (value.label.isEmpty() && ofNumbers.contains(place.number))
                value.label = ofNumbers.at(place.number);
            if (!value.value.isEmpty())
                list.push_back(value);
        }
    }
    void keepNews(const Column &column, const QString &text)
    {
        QStringList known =
            wordsIn(contact.givenName + u' ' + contact.familyName + u' ' + contact.organizationName);
        for (const auto &email : contact.emailAddresses)
            known += wordsIn(email.value);
        for (const auto &[label, place] : contact.postalAddresses)
            for (const NamedPart &part : addressParts())
                known += wordsIn(place.*part.field);
        const QStringList words = wordsIn(text);
        if (!std::ranges::all_of(words, [&](const QString &word) { return known.contains(word); }))
            keep(column, text);
    }

    static constexpr qsizetype mostPieces = 1'000'000;
    CNContact contact;
    QString fullName;
    Values<QString> phones;
    Values<QString> emails;
    Values<QString> urls;
    Values<CNPostalAddress> addresses;
    std::map<Place, std::pair<Column, QString>> wholeAddresses;
    /// By the values that they are of, and the numbers of these.
    std::map<const void *, std::map<int, QString>> labels;
    std::pair<Column, int> year = {{Sort::Birthday}, 0};
    std::pair<Column, int> month = {{Sort::Birthday}, 0};
    std::pair<Column, int> day = {{Sort::Birthday}, 0};
    std::vector<std::pair<Column, QString>> repeated;
};

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

CNContact ContactTable::contactOf(const QStringList &fields, const std::vector<Column> &columns)
{
    FieldsReader row;
    for (qsizetype index = 0; index < fields.size(); ++index) {
        const QString text = fields[index].trimmed();
        const auto place = static_cast<std::size_t>(index);
        const Column column = place < columns.size()
                                  ? columns[place]
                                  : Column{.sort = Sort::Other, .title = u'#' + QString::number(index + 1)};
        if (!text.isEmpty() && !saysNothing(column, text))
            row.take(column, text);
    }
    return row.finished();
}
