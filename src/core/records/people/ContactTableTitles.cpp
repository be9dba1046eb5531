// What the columns of a table of people are by their titles.

#include "records/exchange/TableWords.h"
#include "records/people/ContactTable.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

using Column = ContactTable::Column;
using Sort = Column::Sort;
using Part = Column::Part;

/// Titles by their letters and digits.
using KnownTitles = QHash<QString, Column>;

/// A word and what it is of an address or a value.
template <typename Meaning>
struct Word
{
    QString word;
    Meaning meaning;
};

struct Titles
{
    Column column;
    QStringList titles;
};

const std::vector<Word<Part>> &ownAddressWords()
{
    static const std::vector<Word<Part>> words = {{u"Street"_s, Part::Street}, {u"Street 2"_s, Part::Street2},
                                                  {u"City"_s, Part::City},     {u"State"_s, Part::State},
                                                  {u"ZIP"_s, Part::Zip},       {u"Country"_s, Part::Country}};
    return words;
}

const std::vector<Word<Part>> &otherAddressWords()
{
    static const std::vector<Word<Part>> words = {{u"Street Address"_s, Part::Street},
                                                  {u"Street 3"_s, Part::Street2},
                                                  {u"Extended Address"_s, Part::Street2},
                                                  {u"Address 2"_s, Part::Street2},
                                                  {u"Region"_s, Part::State},
                                                  {u"Province"_s, Part::State},
                                                  {u"State/Province"_s, Part::State},
                                                  {u"Postal Code"_s, Part::Zip},
                                                  {u"Post Code"_s, Part::Zip},
                                                  {u"Zip Code"_s, Part::Zip},
                                                  {u"Country/Region"_s, Part::Country},
                                                  {u"Formatted"_s, Part::Whole},
                                                  {u"Straße"_s, Part::Street},
                                                  {u"Strasse"_s, Part::Street},
                                                  {u"Straße 2"_s, Part::Street2},
                                                  {u"Straße 3"_s, Part::Street2},
                                                  {u"Adresse 2"_s, Part::Street2},
                                                  {u"Ort"_s, Part::City},
                                                  {u"Stadt"_s, Part::City},
                                                  {u"Wohnort"_s, Part::City},
                                                  {u"Bundesland"_s, Part::State},
                                                  {u"Bundesland/Kanton"_s, Part::State},
                                                  {u"PLZ"_s, Part::Zip},
                                                  {u"Postleitzahl"_s, Part::Zip},
                                                  {u"Land"_s, Part::Country},
                                                  {u"Land/Region"_s, Part::Country}};
    return words;
}

/// How other programs say which of several values a column has, before or behind what it is.
const std::vector<Word<QString>> &placeWords()
{
    static const std::vector<Word<QString>> words = {
        {u"Home"_s, CNLabel::home},        {u"Personal"_s, CNLabel::home},
        {u"Private"_s, CNLabel::home},     {u"privat"_s, CNLabel::home},
        {u"private"_s, CNLabel::home},     {u"Business"_s, CNLabel::work},
        {u"Work"_s, CNLabel::work},        {u"geschäftlich"_s, CNLabel::work},
        {u"dienstlich"_s, CNLabel::work},  {u"Arbeit"_s, CNLabel::work},
        {u"Other"_s, CNLabel::other},      {u"Weitere"_s, CNLabel::other},
        {u"Weiterer"_s, CNLabel::other},   {u"Weiteres"_s, CNLabel::other},
        {u"Weiteres/r"_s, CNLabel::other}, {u"andere"_s, CNLabel::other}};
    return words;
}

/// What other programs call the columns that have no place.
const std::vector<Titles> &otherTitles()
{
    // Groups come between other signs in every program.
    static const Column links{.sort = Sort::Groups, .separators = u"\\s+:::\\s+|[;,\\n]"_s};
    static const Column numberedLinks{.sort = Sort::Groups, .separators = u"\\s+:::\\s+|\\n"_s};
    static const std::vector<Titles> titles = {
        {{Sort::FirstName}, {u"Given Name"_s, u"Forename"_s, u"Vorname"_s, u"Rufname"_s}},
        {{Sort::LastName}, {u"Family Name"_s, u"Surname"_s, u"Nachname"_s, u"Familienname"_s, u"Zuname"_s}},
        {{Sort::FullName},
         {u"Name"_s, u"Full Name"_s, u"Display Name"_s, u"File As"_s, u"Anzeigename"_s, u"Voller Name"_s}},
        {{Sort::Company},
         {u"Organization"_s, u"Organisation"_s, u"Organization Name"_s, u"Company Name"_s, u"Firma"_s,
          u"Unternehmen"_s}},
        {{Sort::JobTitle}, {u"Organization Title"_s, u"Position"_s, u"Beruf"_s, u"Arbeitstitel"_s}},
        {{Sort::Birthday}, {u"Birth Date"_s, u"Date of Birth"_s, u"Geburtstag"_s, u"Geburtsdatum"_s}},
        {{Sort::Birthday, Part::Year}, {u"Birth Year"_s, u"Geburtsjahr"_s}},
        {{Sort::Birthday, Part::Month}, {u"Birth Month"_s, u"Geburtsmonat"_s}},
        {{Sort::Note},
         {u"Notes"_s, u"Note"_s, u"Comment"_s, u"Notizen"_s, u"Notiz"_s, u"Bemerkung"_s, u"Bemerkungen"_s}},
        {links, {u"Categories"_s, u"Kategorien"_s}},
        {numberedLinks, {u"Labels"_s, u"Group Membership"_s}},
        {{Sort::Phone},
         {u"Telephone"_s, u"Phone Number"_s, u"Primary Phone"_s, u"Telefon"_s, u"Telefonnummer"_s, u"Tel"_s}},
        {{.sort = Sort::Phone, .label = CNLabel::mobile},
         {u"Mobile"_s, u"Mobile Phone"_s, u"Mobile Number"_s, u"Cell Phone"_s, u"Mobil"_s, u"Mobiltelefon"_s,
          u"Mobilnummer"_s, u"Handy"_s, u"Telefon mobil"_s, u"Mobil Tel Nr"_s}},
        {{.sort = Sort::Phone, .label = CNLabel::main}, {u"Company Main Phone"_s, u"Telefon Firma"_s}},
        {{.sort = Sort::Phone, .label = CNLabel::fax},
         {u"Fax"_s, u"Fax Number"_s, u"Faxnummer"_s, u"Telefax"_s}},
        {{.sort = Sort::Phone, .label = CNLabel::fax}, {u"Other Fax"_s, u"Weiteres Fax"_s}},
        {{.sort = Sort::Phone, .label = CNLabel::pager}, {u"Pager"_s, u"Pager Number"_s, u"Pagernummer"_s}},
        {{Sort::Email},
         {u"E-mail"_s, u"Email Address"_s, u"Primary Email"_s, u"Mail"_s, u"E-Mail-Adresse"_s,
          u"Primäre E-Mail-Adresse"_s}},
        {{.sort = Sort::Email, .number = 2}, {u"Secondary Email"_s, u"Sekundäre E-Mail-Adresse"_s}},
        {{Sort::Repetition}, {u"Email Display Name"_s, u"E-Mail Angezeigter Name"_s}},
        {{Sort::Url}, {u"Website"_s, u"Web Page"_s, u"Webseite"_s, u"Homepage"_s, u"Internetseite"_s}},
        {{.sort = Sort::Url, .label = CNLabel::home}, {u"Personal Web Page"_s}},
        {{.sort = Sort::Url, .label = CNLabel::work}, {u"Business Web Page"_s}},
    };
    return titles;
}

/// The titles of one language, and those of other programs where these mean nothing else. A number of a
/// title is left out, unless it is a part of an address.
class Vocabulary
{
public:
    explicit Vocabulary(const tablewords::Wording &wording)
        : inLanguage(wording)
    {
        addOwn();
        for (const auto &[column, titles] : otherTitles())
            for (const QString &title : titles)
                add(title, column);
        addPlaces();
        addNumbered();
    }

    Column columnOf(const QString &title) const
    {
        // "Street 2" is a title with a digit of its own, so the first number is the one that counts.
        static const QRegularExpression firstNumber(u"^(\\D+?)\\s*(\\d+)(.*)$"_s);
        Column column{.sort = Sort::Other};
        const QString key = tablewords::keyOf(title);
        if (const auto found = known.constFind(key); found != known.constEnd()) {
            column = *found;
        } else if (const auto match = firstNumber.match(key.isEmpty() ? QString() : title.trimmed());
                   match.hasMatch()) {
            const auto numbered = known.constFind(tablewords::keyOf(match.captured(1) + match.captured(3)));
            if (numbered != known.constEnd()) {
                column = *numbered;
                column.number = std::max(1, match.capturedView(2).toInt());
            }
        }
        // Those who number their columns write several values of one kind into one of them.
        if (title.contains(u" - "_s) && column.separators.isEmpty())
            column.separators = u"\\s+:::\\s+"_s;
        column.title = title.simplified();
        return column;
    }

private:
    /// The first meaning of a title counts.
    void add(const QString &title, const Column &column)
    {
        const QString key = tablewords::keyOf(title);
        if (!known.contains(key))
            known.insert(key, column);
    }
    void addBoth(const QString &title, const Column &column)
    {
        add(title, column);
        add(inLanguage(title), column);
    }
    void addOwn()
    {
        addBoth(u"First Name"_s, {Sort::FirstName});
        addBoth(u"Last Name"_s, {Sort::LastName});
        addBoth(u"Company"_s, {Sort::Company});
        addBoth(u"Job Title"_s, {Sort::JobTitle});
        addBoth(u"Birthday"_s, {Sort::Birthday});
        addBoth(u"Notes"_s, {Sort::Note});
        addBoth(u"Groups"_s, {.sort = Sort::Groups, .separators = u"\\n"_s});
        addBoth(ContactTable::projects, {.sort = Sort::Projects, .separators = u"\\n"_s});
        addBoth(u"Identifier"_s, {Sort::Identifier});
        const auto addValues = [this](const QString &title, Sort sort) {
            addBoth(title, {sort});
            for (const QString &word : {title, inLanguage(title)})
                addLabels(word, sort);
        };
        addValues(u"Phone"_s, Sort::Phone);
        addValues(u"Email"_s, Sort::Email);
        addValues(u"URL"_s, Sort::Url);
        for (const QString &title : {u"Address"_s, inLanguage(u"Address"_s)}) {
            addLabels(title, Sort::Address);
            for (const auto &[word, part] : ownAddressWords())
                for (const QString &of : {word, inLanguage(word)})
                    add(title + of, {Sort::Address, part});
        }
    }
    void addLabels(const QString &word, Sort sort)
    {
        for (const QString &of : {u"Type"_s, u"Label"_s, inLanguage(u"Type"_s)})
            add(word + of, {sort, Part::Label});
    }
    /// "Home Street", "Straße privat", and a street alone.
    void addPlaces()
    {
        const auto addAround = [this](const QString &place, const QString &word, const Column &column) {
            add(place + word, column);
            add(word + place, column);
        };
        for (const auto &[place, label] : placeWords()) {
            for (const auto &words : {ownAddressWords(), otherAddressWords()})
                for (const auto &[word, part] : words)
                    addAround(place, word, {.sort = Sort::Address, .part = part, .label = label});
            for (const QString &word : {u"Address"_s, u"Adresse"_s})
                addAround(place, word, {.sort = Sort::Address, .part = Part::Street, .label = label});
            for (const QString &word : {u"Phone"_s, u"Telephone"_s, u"Telefon"_s, u"Tel"_s})
                addAround(place, word, {.sort = Sort::Phone, .label = label});
            for (const QString &word : {u"Email"_s, u"Email Address"_s, u"E-Mail-Adresse"_s})
                addAround(place, word, {.sort = Sort::Email, .label = label});
            const QString fax = label == CNLabel::home   ? CNLabel::homeFax
                                : label == CNLabel::work ? CNLabel::workFax
                                                         : CNLabel::fax;
            addAround(place, u"Fax"_s, {.sort = Sort::Phone, .label = fax});
        }
        // Behind those with numbers of their own.
        constexpr int alone = 900'000;
        for (const auto &words : {ownAddressWords(), otherAddressWords()})
            for (const auto &[word, part] : words)
                add(word, {Sort::Address, part, alone});
        for (const QString &word : {u"Address"_s, u"Adresse"_s, u"Anschrift"_s})
            add(word, {Sort::Address, Part::Street, alone});
    }
    /// "E-mail 1 - Value", "Phone 1 - Type", "Address 1 - Postal Code".
    void addNumbered()
    {
        const std::vector<Word<Sort>> kinds = {
            {u"E-mail"_s, Sort::Email},    {u"Email Address"_s, Sort::Email}, {u"Phone"_s, Sort::Phone},
            {u"Telephone"_s, Sort::Phone}, {u"Phone Number"_s, Sort::Phone},  {u"Website"_s, Sort::Url},
            {u"Web Page"_s, Sort::Url}};
        for (const auto &[kind, sort] : kinds) {
            add(kind + u"Value"_s, {sort});
            addLabels(kind, sort);
        }
        for (const auto &[word, part] : otherAddressWords())
            add(u"Address"_s + word, {Sort::Address, part});
    }

    const tablewords::Wording &inLanguage;
    KnownTitles known;
};

} // namespace

std::vector<Column> ContactTable::columnsOf(const QStringList &titles)
{
    // No contact has so many values.
    constexpr qsizetype most = 1'000;
    std::vector<Column> best;
    std::ptrdiff_t mostKnown = -1;
    for (const tablewords::Wording &wording : tablewords::wordings()) {
        const Vocabulary vocabulary(wording);
        std::vector<Column> columns;
        for (const QString &title : titles.mid(0, most))
            columns.push_back(vocabulary.columnOf(title));
        const auto known =
            std::ranges::count_if(columns, [](const Column &one) { return one.sort != Sort::Other; });
        if (known > mostKnown) {
            mostKnown = known;
            best = std::move(columns);
        }
        if (mostKnown == titles.size())
            break;
    }
    const bool isDivided = std::ranges::count(best, Part::Year, &Column::part) > 0;
    for (std::size_t place = 0; place < best.size(); ++place) {
        Column &column = best[place];
        if (column.title.isEmpty())
            column.title = u'#' + QString::number(place + 1);
        // Beside a year and a month, what else is a birthday is the day of the month.
        if (isDivided && column.title.compare(u"Birth Day"_s, Qt::CaseInsensitive) == 0)
            column.part = Part::Day;
    }
    return best;
}

bool ContactTable::hasNames(const std::vector<Column> &columns)
{
    return std::ranges::any_of(columns, [](const Column &one) {
        return one.sort == Sort::FirstName || one.sort == Sort::LastName || one.sort == Sort::FullName ||
               one.sort == Sort::Company;
    });
}
