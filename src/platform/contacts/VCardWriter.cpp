#include "contacts/VCardWriter.h"

#include <QHash>
#include <QStringList>

namespace {

using Version = VCardWriter::Version;

/// RFC 2426 and RFC 6350: a line has 75 bytes at most, without its end.
constexpr qsizetype longestLine = 75;

QByteArray escaped(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    text.replace(u'\\', QLatin1String("\\\\"));
    text.replace(u'\n', QLatin1String("\\n"));
    text.replace(u',', QLatin1String("\\,"));
    text.replace(u';', QLatin1String("\\;"));
    return text.toUtf8();
}

/// The type of an image by its first bytes; empty for an unknown one.
QByteArray imageType(const QByteArray &data)
{
    if (data.startsWith("\x89PNG"))
        return "PNG";
    if (data.startsWith("\xFF\xD8\xFF"))
        return "JPEG";
    if (data.startsWith("GIF8"))
        return "GIF";
    if (data.startsWith("RIFF") && data.mid(8, 4) == "WEBP")
        return "WEBP";
    return {};
}

class Card
{
public:
    explicit Card(Version writtenVersion)
        : version(writtenVersion)
    {}

    /// Folds between letters, not between the bytes of one.
    void line(const QByteArray &content)
    {
        qsizetype begin = 0;
        qsizetype room = longestLine;
        while (content.size() - begin > room) {
            qsizetype end = begin + room;
            while (end > begin + 1 && (static_cast<unsigned char>(content[end]) & 0xC0) == 0x80)
                --end;
            bytes += content.mid(begin, end - begin) + "\r\n ";
            begin = end;
            room = longestLine - 1;
        }
        bytes += content.mid(begin) + "\r\n";
    }

    /// A line with a label, which becomes a type where there is one of its meaning, else the label of a
    /// group.
    void labelled(const QByteArray &name, const QString &label, const QHash<QString, QByteArray> &types,
                  const QByteArray &value)
    {
        const auto known = types.constFind(label);
        if (label.isEmpty() || known != types.constEnd()) {
            line(name + (label.isEmpty() ? QByteArray() : ";TYPE=" + cased(*known)) + ':' + value);
            return;
        }
        const QByteArray group = "item" + QByteArray::number(++groups);
        line(group + '.' + name + ':' + value);
        line(group + ".X-ABLabel:" + escaped(label));
    }

    bool is4() const { return version == Version::V40; }
    const QByteArray &text() const { return bytes; }

private:
    /// 4.0 writes its types in small letters.
    QByteArray cased(const QByteArray &types) const { return is4() ? types.toLower() : types; }

    Version version;
    QByteArray bytes;
    int groups = 0;
};

const QHash<QString, QByteArray> &placeTypes()
{
    static const QHash<QString, QByteArray> types = {
        {CNLabel::home, "HOME"}, {CNLabel::work, "WORK"}, {CNLabel::other, "OTHER"}};
    return types;
}

const QHash<QString, QByteArray> &phoneTypes()
{
    static const QHash<QString, QByteArray> types = {
        {CNLabel::home, "HOME,VOICE"},  {CNLabel::work, "WORK,VOICE"},    {CNLabel::other, "OTHER,VOICE"},
        {CNLabel::mobile, "CELL"},      {CNLabel::iPhone, "IPHONE,CELL"}, {CNLabel::main, "MAIN,VOICE"},
        {CNLabel::homeFax, "HOME,FAX"}, {CNLabel::workFax, "WORK,FAX"},   {CNLabel::fax, "FAX"},
        {CNLabel::pager, "PAGER"}};
    return types;
}

QString shownName(const CNContact &contact)
{
    const QString name = QStringList{contact.givenName, contact.familyName}.join(u' ').trimmed();
    if (!name.isEmpty())
        return name;
    if (!contact.organizationName.isEmpty())
        return contact.organizationName;
    if (!contact.emailAddresses.empty())
        return contact.emailAddresses.front().value;
    return contact.phoneNumbers.empty() ? QString() : contact.phoneNumbers.front().value;
}

void writeBirthday(Card &card, const CNBirthday &birthday)
{
    const QString separator = card.is4() ? QString() : QStringLiteral("-");
    const QString year = birthday.year
                             ? QStringLiteral("%1").arg(*birthday.year, 4, 10, QLatin1Char('0')) + separator
                             : QStringLiteral("--");
    card.line("BDAY:" + QStringLiteral("%1%2%3%4")
                            .arg(year)
                            .arg(birthday.month, 2, 10, QLatin1Char('0'))
                            .arg(separator)
                            .arg(birthday.day, 2, 10, QLatin1Char('0'))
                            .toLatin1());
}

void writeImage(Card &card, const QByteArray &data)
{
    const QByteArray type = imageType(data);
    if (card.is4())
        card.line("PHOTO:data:" +
                  (type.isEmpty() ? QByteArray("application/octet-stream") : "image/" + type.toLower()) +
                  ";base64," + data.toBase64());
    else
        card.line("PHOTO;ENCODING=b" + (type.isEmpty() ? QByteArray() : ";TYPE=" + type) + ':' +
                  data.toBase64());
}

} // namespace

QByteArray VCardWriter::text(const CNContact &contact, Version version, const std::vector<OwnLine> &ownLines)
{
    Card card(version);
    card.line("BEGIN:VCARD");
    card.line(card.is4() ? "VERSION:4.0" : "VERSION:3.0");
    if (!contact.identifier.isEmpty())
        card.line("UID:" + escaped(contact.identifier));
    card.line("N:" + escaped(contact.familyName) + ';' + escaped(contact.givenName) + ";;;");
    card.line("FN:" + escaped(shownName(contact)));
    if (contact.isOrganization)
        card.line(card.is4() ? "KIND:org" : "X-ABShowAs:COMPANY");
    if (!contact.organizationName.isEmpty())
        card.line("ORG:" + escaped(contact.organizationName));
    if (!contact.jobTitle.isEmpty())
        card.line("TITLE:" + escaped(contact.jobTitle));
    if (contact.birthday)
        writeBirthday(card, *contact.birthday);
    if (!contact.groups.isEmpty()) {
        QByteArrayList titles;
        for (const QString &group : contact.groups)
            titles.append(escaped(group));
        card.line("CATEGORIES:" + titles.join(','));
    }
    if (!contact.note.isEmpty())
        card.line("NOTE:" + escaped(contact.note));
    for (const auto &[label, number] : contact.phoneNumbers)
        card.labelled("TEL", label, phoneTypes(), escaped(number));
    for (const auto &[label, address] : contact.emailAddresses)
        card.labelled("EMAIL", label, placeTypes(), escaped(address));
    for (const auto &[label, address] : contact.postalAddresses) {
        QByteArray value = ';' + escaped(address.extended);
        for (const QString &part :
             {address.street, address.city, address.state, address.postalCode, address.country})
            value += ';' + escaped(part);
        card.labelled("ADR", label, placeTypes(), value);
    }
    // By the letter a URI is not escaped; readers resolve escapes all the same, and some end it at a comma.
    for (const auto &[label, url] : contact.urlAddresses)
        card.labelled("URL", label, placeTypes(), escaped(url));
    if (!contact.imageData.isEmpty())
        writeImage(card, contact.imageData);
    for (const auto &[name, parts] : ownLines) {
        QByteArrayList values;
        for (const QString &part : parts)
            values.append(escaped(part));
        card.line(name + ':' + values.join(';'));
    }
    card.line("END:VCARD");
    return card.text();
}
