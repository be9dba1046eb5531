#include "contacts/VCardContact.h"

#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr qint64 mostImageBytes = 48 * 1024 * 1024;

QString component(const QStringList &parts, qsizetype place)
{
    return parts.value(place);
}

QString oneLine(QString text)
{
    return text.replace(u'\n', u' ').simplified();
}

/// What the group of an attribute is called in an X-ABLabel line, by group. One that an address book gives by
/// itself is wrapped.
QHash<QByteArray, QString> groupLabels(const VCard &card)
{
    static const QString opening = QStringLiteral("_$!<");
    static const QString closing = QStringLiteral(">!$_");
    QHash<QByteArray, QString> labels;
    for (const VCardAttribute &attribute : card.attributes) {
        if (attribute.name() != "X-ABLABEL" || attribute.group().isEmpty())
            continue;
        QString label = attribute.text();
        while (label.size() >= opening.size() + closing.size() && label.startsWith(opening) &&
               label.endsWith(closing)) {
            label = label.mid(opening.size(), label.size() - opening.size() - closing.size()).toLower();
            if (label == QLatin1String("workfax") || label == QLatin1String("homefax"))
                label.insert(4, u' ');
        }
        labels.insert(attribute.group().toUpper(), label);
    }
    return labels;
}

/// A type that no list of types has is somebody's own label, such as "car" or "X-Reception".
QString ownLabel(const QStringList &types)
{
    static const QStringList others = {
        QStringLiteral("PREF"),     QStringLiteral("VOICE"), QStringLiteral("MSG"),  QStringLiteral("TEXT"),
        QStringLiteral("VIDEO"),    QStringLiteral("DOM"),   QStringLiteral("INTL"), QStringLiteral("POSTAL"),
        QStringLiteral("INTERNET"), QStringLiteral("PARCEL")};
    for (const QString &type : types) {
        const QString label = type.startsWith(QLatin1String("X-")) ? type.mid(2) : type;
        if (!label.isEmpty() && !others.contains(label))
            return label.toLower();
    }
    return {};
}

QString phoneLabel(const QStringList &types)
{
    const auto has = [&](const char *type) { return types.contains(QLatin1String(type)); };
    if (has("PAGER"))
        return CNLabel::pager;
    if (has("FAX"))
        return has("HOME") ? CNLabel::homeFax : has("WORK") ? CNLabel::workFax : CNLabel::fax;
    if (has("IPHONE"))
        return CNLabel::iPhone;
    if (has("CELL"))
        return CNLabel::mobile;
    if (has("MAIN"))
        return CNLabel::main;
    if (has("HOME"))
        return CNLabel::home;
    if (has("WORK"))
        return CNLabel::work;
    if (has("OTHER"))
        return CNLabel::other;
    const QString own = ownLabel(types);
    return own.isEmpty() && has("PREF") ? CNLabel::main : own;
}

QString placeLabel(const QStringList &types)
{
    for (const QString &label : {CNLabel::home, CNLabel::work, CNLabel::other}) {
        if (types.contains(label.toUpper()))
            return label;
    }
    return ownLabel(types);
}

/// "tel:" and "mailto:" say nothing that the name of the attribute does not.
QString withoutScheme(const QString &value, const QString &scheme)
{
    QString plain = value;
    while (plain.startsWith(scheme, Qt::CaseInsensitive))
        plain = QUrl::fromPercentEncoding(plain.mid(scheme.size()).toUtf8()).trimmed();
    return plain;
}

QString phoneOf(const VCardAttribute &attribute)
{
    static const QString extension = QStringLiteral(";ext=");
    QString number = withoutScheme(attribute.text(), QStringLiteral("tel:"));
    return number.replace(extension, QStringLiteral(" ext. "), Qt::CaseInsensitive).trimmed();
}

CNPostalAddress addressOf(const VCardAttribute &attribute)
{
    const QStringList parts = attribute.components();
    CNPostalAddress address{component(parts, 2), component(parts, 1), component(parts, 3),
                            component(parts, 4), component(parts, 5), component(parts, 6)};
    const QString box = component(parts, 0);
    if (address.street.isEmpty())
        address.street = box;
    else if (!box.isEmpty())
        address.extended = address.extended.isEmpty() ? box : box + QStringLiteral(", ") + address.extended;
    return address;
}

/// "19700517", "1970-05-17" and either with a time behind it; "--0517" and "--05-17" for every year.
std::optional<CNBirthday> birthdayOf(const VCardAttribute &attribute)
{
    static const QRegularExpression pattern(QStringLiteral(R"(^(?:(\d{4})-?|--)(\d\d)-?(\d\d)(?:[T ].*)?$)"));
    const QRegularExpressionMatch match = pattern.match(attribute.text());
    if (!match.hasMatch())
        return std::nullopt;
    CNBirthday birthday{std::nullopt, match.captured(2).toInt(), match.captured(3).toInt()};
    const QString omitted = attribute.parameter("X-APPLE-OMIT-YEAR");
    if (!match.captured(1).isEmpty() && match.captured(1) != omitted)
        birthday.year = match.captured(1).toInt();
    constexpr int anyLeapYear = 2000;
    const bool isDay = QDate::isValid(birthday.year.value_or(anyLeapYear), birthday.month, birthday.day);
    return isDay && birthday.year != 0 ? std::optional(birthday) : std::nullopt;
}

QByteArray contentOfFile(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    // Other things, such as devices, may never end.
    const bool isSensible = info.isFile() && info.size() <= mostImageBytes;
    return isSensible && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray contentOfDataUri(const QString &uri)
{
    const qsizetype comma = uri.indexOf(u',');
    const QByteArray content = uri.mid(comma + 1).toLatin1();
    if (comma < 0)
        return {};
    return uri.left(comma).endsWith(QLatin1String(";base64"), Qt::CaseInsensitive)
               ? QByteArray::fromBase64(QByteArray::fromPercentEncoding(content))
               : QByteArray::fromPercentEncoding(content);
}

void takeImage(CNContact &contact, const VCardAttribute &attribute)
{
    const QByteArray raw = attribute.rawValue().trimmed();
    const auto begins = [&](const char *scheme) {
        return raw.left(qsizetype(std::strlen(scheme))).compare(scheme, Qt::CaseInsensitive) == 0;
    };
    if (raw.isEmpty())
        return;
    if (begins("data:"))
        contact.imageData = contentOfDataUri(attribute.text());
    else if (begins("file:"))
        contact.imageData = contentOfFile(QUrl(attribute.text()).toLocalFile());
    else if (!raw.contains(':'))
        contact.imageData = attribute.isBase64() ? attribute.bytes() : QByteArray::fromBase64(raw);
    else
        contact.imageAddress = oneLine(attribute.text());
    contact.isImageMissing = contact.imageData.isEmpty() && contact.imageAddress.isEmpty();
}

/// Whether a part of a name behind a comma is a title: "PhD", "Jr.", "M.A.". Two letters that can be a given
/// name have to be capitals.
bool isTitle(const QString &part)
{
    static const QStringList titles = {
        QStringLiteral("PHD"),     QStringLiteral("DPHIL"),     QStringLiteral("MBA"),
        QStringLiteral("MSC"),     QStringLiteral("BSC"),       QStringLiteral("MENG"),
        QStringLiteral("BENG"),    QStringLiteral("LLM"),       QStringLiteral("LLB"),
        QStringLiteral("DDS"),     QStringLiteral("DVM"),       QStringLiteral("CPA"),
        QStringLiteral("EDD"),     QStringLiteral("PHARMD"),    QStringLiteral("ESQ"),
        QStringLiteral("ESQUIRE"), QStringLiteral("DIPLING"),   QStringLiteral("DIPLKFM"),
        QStringLiteral("DIPLINF"), QStringLiteral("DIPLPSYCH"), QStringLiteral("JUNIOR"),
        QStringLiteral("SENIOR"),  QStringLiteral("III"),       QStringLiteral("JR"),
        QStringLiteral("SR")};
    static const QStringList inCapitals = {QStringLiteral("MD"), QStringLiteral("MA"), QStringLiteral("MS"),
                                           QStringLiteral("BA"), QStringLiteral("BS"), QStringLiteral("JD"),
                                           QStringLiteral("RN"), QStringLiteral("II"), QStringLiteral("IV")};
    QString letters = part;
    letters.removeIf([](QChar c) { return !c.isLetterOrNumber(); });
    return titles.contains(letters.toUpper()) || inCapitals.contains(letters);
}

/// The last word is the family name, unless a comma stands behind the first. Titles behind a comma are no
/// part of either.
void takeFullName(CNContact &contact, const QString &fullName)
{
    QStringList parts = fullName.split(u',');
    while (parts.size() > 1 && parts.front().trimmed().contains(u' ') && isTitle(parts.back()))
        parts.removeLast();
    while (parts.size() > 2 && isTitle(parts.back()))
        parts.removeLast();
    const QString name = parts.join(u',').trimmed();
    const qsizetype comma = name.indexOf(u',');
    const qsizetype blank = name.lastIndexOf(u' ');
    if (comma > 0) {
        contact.familyName = name.left(comma).trimmed();
        contact.givenName = name.mid(comma + 1).trimmed();
    } else if (blank > 0) {
        contact.givenName = name.left(blank).trimmed();
        contact.familyName = name.mid(blank + 1).trimmed();
    } else {
        contact.givenName = name;
    }
}

/// Whether a text has a word that is not among others: "José “Pepe” García" beside "José García".
bool saysMore(const QString &text, const QString &known)
{
    static const QRegularExpression between(QStringLiteral("[^\\w]+"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    const QStringList knownWords = known.toCaseFolded().split(between, Qt::SkipEmptyParts);
    const QStringList words = text.toCaseFolded().split(between, Qt::SkipEmptyParts);
    return std::ranges::any_of(words, [&](const QString &word) { return !knownWords.contains(word); });
}

/// All parts of a name in the order in which they are spoken.
QString spokenName(const QStringList &parts)
{
    return oneLine(QStringList{component(parts, 3), component(parts, 1), component(parts, 2),
                               component(parts, 0), component(parts, 4)}
                       .join(u' '));
}

/// Keeps each further name of a card that says more than what is known of it.
void keepNames(CNContact &contact, const QString &label, QString known, const QStringList &names)
{
    for (const QString &name : names) {
        if (!saysMore(name, known))
            continue;
        contact.otherWords.push_back({label, name});
        known += u' ' + name;
    }
}

/// Several names in one part of a name stand between commas: "Maria,Jose". Where the full name has the comma
/// as well, it was meant as one.
QStringList partsOfName(const VCardAttribute &name, const QString &fullName)
{
    const std::vector<QStringList> lists = name.lists();
    QStringList parts = name.components();
    for (qsizetype place = 0; place < parts.size(); ++place) {
        if (!fullName.contains(oneLine(parts[place])))
            parts[place] = lists.at(static_cast<std::size_t>(place)).join(u' ');
    }
    return parts;
}

/// The names of a card, the full ones first, the first of each kind included.
QStringList allNames(const VCard &card)
{
    QStringList names;
    for (const VCardAttribute &attribute : card.attributes) {
        if (attribute.name() == "FN")
            names.append(oneLine(attribute.text()));
    }
    const QString fullName = names.value(0);
    for (const VCardAttribute &attribute : card.attributes) {
        if (attribute.name() == "N")
            names.append(spokenName(partsOfName(attribute, fullName)));
    }
    return names;
}

void takeNames(CNContact &contact, const VCard &card)
{
    const VCardAttribute *name = card.find("N");
    const VCardAttribute *full = card.find("FN");
    const QString fullName = full ? oneLine(full->text()) : QString();
    const QStringList parts = name ? partsOfName(*name, fullName) : QStringList();
    contact.familyName = oneLine(component(parts, 0));
    contact.givenName = oneLine(component(parts, 1));
    if (contact.isOrganization) {
        if (contact.organizationName.isEmpty())
            contact.organizationName =
                fullName.isEmpty() ? oneLine(contact.givenName + u' ' + contact.familyName) : fullName;
        contact.familyName.clear();
        contact.givenName.clear();
        keepNames(contact, QStringLiteral("Contact"), contact.organizationName, allNames(card));
        return;
    }
    // Some write the whole name into the first place.
    const bool isInOnePlace = parts.size() == 1 && contact.familyName == fullName && fullName.contains(u' ');
    const bool isOnlyOrganization = fullName == contact.organizationName;
    if (isInOnePlace || (!contact.hasName() && !isOnlyOrganization)) {
        contact.familyName.clear();
        takeFullName(contact, fullName);
    }
    // Titles and further names stand in other parts of it.
    if (contact.hasName())
        keepNames(contact, QStringLiteral("Full Name"), contact.givenName + u' ' + contact.familyName,
                  allNames(card));
}

/// The first part is the organization, the others are parts of it.
void takeOrganization(CNContact &contact, const VCardAttribute &attribute)
{
    QStringList parts;
    for (const QString &part : attribute.components()) {
        if (const QString words = oneLine(part); !words.isEmpty())
            parts.append(words);
    }
    const bool isFirst = contact.organizationName.isEmpty();
    if (isFirst && !parts.isEmpty())
        contact.organizationName = parts.takeFirst();
    if (!isFirst && !parts.isEmpty())
        contact.otherWords.push_back({QStringLiteral("Company"), parts.takeFirst()});
    if (!parts.isEmpty())
        contact.otherWords.push_back({QStringLiteral("Department"), parts.join(QStringLiteral(", "))});
}

/// Whether a property is there for programs, and says nothing to a person.
bool isTechnical(const QByteArray &property)
{
    static const QRegularExpression technical(QStringLiteral(
        "^(BEGIN|END|VERSION|PRODID|REV|UID|KEY|CLIENTPIDMAP|KIND|MEMBER|SOURCE|NAME|PROFILE|CLASS|XML|AGENT|"
        "MAILER|SORT-STRING|N|FN|PHOTO|LOGO|SOUND|CREATED|LABEL|FBURL|CAPURI|CALADRURI|"
        "X-AB(LABEL|ADR|SHOWAS|UID|ORDER)|X-ADDRESSBOOKSERVER-.*|X-(MS-OL|MS-CARDPICTURE|MOZILLA|IRMC|SYNC|"
        "RADICALE|WEBDAV|IMAGE|SHARED-PHOTO|SIM|TINE20|ACTIVESYNC|FUNAMBOL)[A-Z0-9-]*|"
        "X-KADDRESSBOOK-(CRYPTO.*|OPENPGP.*|SMIME.*|LAYOUT.*)|"
        "X-EVOLUTION-(FILE-AS|WEBDAV-.*|LIST.*|BOOK-URI|WANTS-HTML|DEST-.*|X509.*|PGP.*|E-BOOK-.*|GROUPWARE.*"
        ")"
        "|X-.*(ETAG|UUID|-UID|-ID|-REV|-HASH|-KIND|-SOURCE)|X-(UID|ID|PID|LUID|CLASS|CREATED|ACCOUNT))$"));
    return technical.match(QString::fromLatin1(property)).hasMatch();
}

/// What a property is called for which there is no field; empty for what is no word of a person.
QString nameOfOther(const QByteArray &property)
{
    static const QHash<QByteArray, QString> names = {{"IMPP", QStringLiteral("Messaging")},
                                                     {"TITLE", QStringLiteral("Job Title")},
                                                     {"BDAY", QStringLiteral("Birthday")},
                                                     {"X-ABDATE", QStringLiteral("Date")},
                                                     {"X-ABRELATEDNAMES", QStringLiteral("Related")},
                                                     {"X-SPOUSE", QStringLiteral("Related")},
                                                     {"X-EVOLUTION-SPOUSE", QStringLiteral("Related")}};
    const auto known = names.constFind(property);
    if (known != names.constEnd())
        return *known;
    if (isTechnical(property))
        return {};
    static const QRegularExpression maker(
        QStringLiteral("^X-((EVOLUTION|KADDRESSBOOK-X|KADDRESSBOOK|MS)-)?"));
    QStringList words = QString::fromLatin1(property).remove(maker).split(u'-', Qt::SkipEmptyParts);
    for (QString &word : words) {
        constexpr qsizetype longestShortForm = 3;
        if (word.size() > longestShortForm)
            word = word.left(1) + word.mid(1).toLower();
    }
    return words.join(u' ');
}

/// "vnd.android.cursor.item/relation;Jane;8;;" is somebody's mother.
CNLabeledValue<QString> androidWords(const VCardAttribute &attribute)
{
    static const std::array<QString, 14> relations = {
        QStringLiteral("assistant"),        QStringLiteral("brother"),     QStringLiteral("child"),
        QStringLiteral("domestic partner"), QStringLiteral("father"),      QStringLiteral("friend"),
        QStringLiteral("manager"),          QStringLiteral("mother"),      QStringLiteral("parent"),
        QStringLiteral("partner"),          QStringLiteral("referred by"), QStringLiteral("relative"),
        QStringLiteral("sister"),           QStringLiteral("spouse")};
    static const QHash<QString, QString> names = {{QStringLiteral("nickname"), QStringLiteral("Nickname")},
                                                  {QStringLiteral("relation"), QStringLiteral("Related")},
                                                  {QStringLiteral("contact_event"), QStringLiteral("Date")}};
    const QStringList parts = attribute.components();
    const QString kind = component(parts, 0).section(u'/', -1);
    const QString words = oneLine(component(parts, 1));
    QString label = oneLine(component(parts, 3));
    const int relation = component(parts, 2).toInt();
    if (label.isEmpty() && kind == QLatin1String("relation") && relation > 0 &&
        relation <= int(relations.size()))
        label = relations[static_cast<std::size_t>(relation) - 1];
    return {names.value(kind, kind),
            words.isEmpty() || label.isEmpty() ? words : words + QStringLiteral(" (") + label + u')'};
}

/// What a property without a field says, with its label behind it: "Jane (mother)".
CNLabeledValue<QString> wordsOfOther(const VCardAttribute &attribute, const QString &groupLabel)
{
    if (attribute.name() == "X-ANDROID-CUSTOM")
        return androidWords(attribute);
    const QString name = nameOfOther(attribute.name());
    if (name.isEmpty() || attribute.isBase64())
        return {};
    QStringList parts = attribute.components();
    parts.removeIf([](const QString &part) { return part.trimmed().isEmpty(); });
    const QString words = oneLine(parts.join(QStringLiteral(", ")));
    const bool isForPrograms = words.startsWith(QLatin1String("urn:"), Qt::CaseInsensitive) ||
                               words.startsWith(QLatin1String("data:"), Qt::CaseInsensitive);
    QString label = groupLabel;
    if (label.isEmpty() && attribute.name() == "RELATED")
        label = attribute.types().join(QStringLiteral(", ")).toLower();
    if (words.isEmpty() || isForPrograms)
        return {};
    return {name, label.isEmpty() ? words : words + QStringLiteral(" (") + oneLine(label) + u')'};
}

/// Profiles of a person count as addresses of the web, by the name of the place.
QString profileLabel(const VCardAttribute &attribute)
{
    static const std::array<QString, 3> places = {QStringLiteral("Facebook"), QStringLiteral("Twitter"),
                                                  QStringLiteral("LinkedIn")};
    const QStringList said = attribute.types() + QStringList(attribute.parameter("SERVICE-TYPE").toUpper());
    const auto found =
        std::ranges::find_if(places, [&](const QString &place) { return said.contains(place.toUpper()); });
    return found == places.end() ? QString() : *found;
}

bool isKind(const VCard &card, const QByteArray &name, const char *kind)
{
    const VCardAttribute *attribute = card.find(name);
    return attribute && attribute->text().compare(QLatin1String(kind), Qt::CaseInsensitive) == 0;
}

/// Groups, places and devices have cards as well.
bool isSomethingElse(const VCard &card)
{
    return isKind(card, "KIND", "group") || isKind(card, "X-ADDRESSBOOKSERVER-KIND", "group") ||
           isKind(card, "KIND", "location") || isKind(card, "KIND", "application") ||
           isKind(card, "KIND", "device");
}

void takeAttribute(CNContact &contact, const VCardAttribute &attribute,
                   const QHash<QByteArray, QString> &labels)
{
    const QByteArray &name = attribute.name();
    const auto labelOr = [&](const QString &other) {
        const QString given =
            attribute.group().isEmpty() ? QString() : labels.value(attribute.group().toUpper());
        return given.isEmpty() ? other : given;
    };
    const auto add = [](auto &values, const QString &label, const auto &value) {
        if (!value.isEmpty())
            values.push_back({label, value});
    };
    if (name == "TEL") {
        add(contact.phoneNumbers, labelOr(phoneLabel(attribute.types())), phoneOf(attribute));
    } else if (name == "EMAIL") {
        add(contact.emailAddresses, labelOr(placeLabel(attribute.types())),
            withoutScheme(attribute.text(), QStringLiteral("mailto:")));
    } else if (name == "ADR") {
        const CNPostalAddress address = addressOf(attribute);
        add(contact.postalAddresses, labelOr(placeLabel(attribute.types())), address);
    } else if (name == "URL") {
        add(contact.urlAddresses, labelOr(placeLabel(attribute.types())), oneLine(attribute.text()));
    } else if (name == "X-SOCIALPROFILE" || name == "SOCIALPROFILE") {
        add(contact.urlAddresses, labelOr(profileLabel(attribute)), oneLine(attribute.text()));
    } else if (name == "ORG") {
        takeOrganization(contact, attribute);
    } else if (name == "TITLE" && contact.jobTitle.isEmpty()) {
        contact.jobTitle = oneLine(attribute.text());
    } else if (name == "UID" && contact.identifier.isEmpty()) {
        contact.identifier = attribute.text();
    } else if (name == "BDAY" && !contact.birthday) {
        contact.birthday = birthdayOf(attribute);
        if (!contact.birthday)
            contact.unreadBirthday = oneLine(attribute.text());
    } else if (name == "CATEGORIES") {
        for (const QString &group : attribute.list())
            if (const QString title = oneLine(group); !title.isEmpty() && !contact.groups.contains(title))
                contact.groups.append(title);
    } else if (name == "NOTE") {
        contact.note = (contact.note + u'\n' + attribute.text()).trimmed();
    } else {
        const auto [kind, words] = wordsOfOther(attribute, labelOr({}));
        add(contact.otherWords, kind, words);
    }
}

/// What is preferred comes first in its list, which is how lists tell it (RFC 6350, 5.3; before it, a type).
std::vector<const VCardAttribute *> inOrderOfPreference(const VCard &card)
{
    static constexpr int none = 101;
    const auto preference = [](const VCardAttribute *attribute) {
        static const std::array<QByteArray, 4> lists = {"TEL", "EMAIL", "ADR", "URL"};
        if (std::ranges::find(lists, attribute->name()) == lists.end())
            return none;
        const int told = attribute->parameter("PREF").toInt();
        if (told > 0)
            return std::min(told, none);
        return attribute->types().contains(QStringLiteral("PREF")) ? 1 : none;
    };
    std::vector<const VCardAttribute *> attributes;
    for (const VCardAttribute &one : card.attributes)
        attributes.push_back(&one);
    std::ranges::stable_sort(attributes, {}, preference);
    return attributes;
}

} // namespace

CNContact contactFrom(const VCard &card, CardImage image)
{
    CNContact contact;
    contact.isOfNobody = isSomethingElse(card);
    if (contact.isOfNobody)
        return contact;
    const QHash<QByteArray, QString> labels = groupLabels(card);
    for (const VCardAttribute *one : inOrderOfPreference(card)) {
        const VCardAttribute &attribute = *one;
        takeAttribute(contact, attribute, labels);
        const bool isImage = attribute.name() == "PHOTO" && image == CardImage::Read;
        if (isImage && contact.imageData.isEmpty())
            takeImage(contact, attribute);
    }
    // It says again what the lines of an address say, if there are any.
    const VCardAttribute *label = card.find("LABEL");
    if (label && contact.postalAddresses.empty() && !oneLine(label->text()).isEmpty())
        contact.otherWords.push_back({QStringLiteral("Address"), oneLine(label->text())});
    contact.isOrganization = isKind(card, "KIND", "org") || isKind(card, "X-ABSHOWAS", "company");
    takeNames(contact, card);
    return contact;
}
