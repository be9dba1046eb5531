#include "contacts/VCard.h"

#include "contacts/CharacterSet.h"

#include <algorithm>
#include <utility>

namespace {

/// Splits at a letter outside of quotes.
template <typename Take>
void splitOutsideQuotes(const QByteArray &text, char separator, const Take &take)
{
    bool isQuoted = false;
    qsizetype begin = 0;
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (text[place] == '"')
            isQuoted = !isQuoted;
        else if (text[place] == separator && !isQuoted) {
            take(text.mid(begin, place - begin));
            begin = place + 1;
        }
    }
    take(text.mid(begin));
}

/// RFC 6868.
QString withoutCarets(const QString &text)
{
    if (!text.contains(u'^'))
        return text;
    QString plain;
    for (qsizetype place = 0; place < text.size(); ++place) {
        const QChar next = place + 1 < text.size() ? text[place + 1] : QChar();
        const bool isEscape = text[place] == u'^' && (next == u'^' || next == u'n' || next == u'\'');
        if (!isEscape) {
            plain += text[place];
            continue;
        }
        plain += next == u'n' ? u'\n' : next == u'\'' ? u'"' : u'^';
        ++place;
    }
    return plain;
}

QString parameterValue(QByteArray written)
{
    written = written.trimmed();
    if (written.size() > 1 && written.startsWith('"') && written.endsWith('"'))
        written = written.mid(1, written.size() - 2);
    return withoutCarets(CharacterSet::decoded(written, {}));
}

bool isEncodingName(const QByteArray &upper)
{
    return upper == "QUOTED-PRINTABLE" || upper == "BASE64" || upper == "8BIT" || upper == "7BIT";
}

VCardAttribute::Parameter parameterFrom(const QByteArray &written)
{
    const qsizetype equals = written.indexOf('=');
    if (equals < 0) {
        const QByteArray upper = written.trimmed().toUpper();
        return {isEncodingName(upper) ? "ENCODING" : "TYPE", {parameterValue(written)}};
    }
    VCardAttribute::Parameter parameter{written.left(equals).trimmed().toUpper(), {}};
    splitOutsideQuotes(written.mid(equals + 1), ',',
                       [&](const QByteArray &one) { parameter.values.append(parameterValue(one)); });
    return parameter;
}

int hexDigit(char letter)
{
    if (letter >= '0' && letter <= '9')
        return letter - '0';
    const char lower = char(letter | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

QByteArray withoutQuotedPrintable(const QByteArray &written)
{
    QByteArray plain;
    plain.reserve(written.size());
    for (qsizetype place = 0; place < written.size(); ++place) {
        const bool isCode = written[place] == '=' && place + 2 < written.size() &&
                            hexDigit(written[place + 1]) >= 0 && hexDigit(written[place + 2]) >= 0;
        if (!isCode) {
            plain += written[place];
            continue;
        }
        plain += char(16 * hexDigit(written[place + 1]) + hexDigit(written[place + 2]));
        place += 2;
    }
    return plain;
}

/// What a letter behind a backslash stands for; absent if the two stand for themselves. The colon needs no
/// backslash, and is given one all the same by some.
std::optional<QChar> escaped(QChar letter)
{
    switch (letter.unicode()) {
    case u'n':
    case u'N':
        return u'\n';
    case u'\\':
    case u',':
    case u';':
    case u':':
        return letter;
    default:
        return std::nullopt;
    }
}

QString withoutEscapes(const QString &written)
{
    if (!written.contains(u'\\') && !written.contains(u'\r'))
        return written;
    QString plain;
    plain.reserve(written.size());
    for (qsizetype place = 0; place < written.size(); ++place) {
        const bool isBackslash = written[place] == u'\\' && place + 1 < written.size();
        const std::optional<QChar> meant = isBackslash ? escaped(written[place + 1]) : std::nullopt;
        plain += meant.value_or(written[place]);
        place += meant ? 1 : 0;
    }
    plain.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    plain.replace(u'\r', u'\n');
    return plain;
}

/// Splits at separators that have no backslash before them.
template <typename Text>
std::vector<Text> partsOf(const Text &written, char16_t separator)
{
    using Letter = typename Text::value_type;
    std::vector<Text> parts;
    qsizetype begin = 0;
    for (qsizetype place = 0; place < written.size(); ++place) {
        if (written[place] == Letter(u'\\')) {
            ++place;
        } else if (written[place] == Letter(separator)) {
            parts.push_back(written.mid(begin, place - begin));
            begin = place + 1;
        }
    }
    parts.push_back(written.mid(begin));
    return parts;
}

} // namespace

qsizetype VCardAttribute::colonOf(const QByteArray &line)
{
    bool isQuoted = false;
    qsizetype first = -1;
    for (qsizetype place = 0; place < line.size(); ++place) {
        if (line[place] == '"')
            isQuoted = !isQuoted;
        else if (line[place] == ':' && !isQuoted)
            return place;
        else if (line[place] == ':' && first < 0)
            first = place;
    }
    return first;
}

VCardAttribute::Encoding VCardAttribute::encodingOf(const QByteArray &head)
{
    auto found = Encoding::Plain;
    splitOutsideQuotes(head, ';', [&](const QByteArray &written) {
        QByteArray upper = written.trimmed().toUpper();
        if (upper.startsWith("ENCODING="))
            upper = upper.mid(sizeof("ENCODING=") - 1).replace('"', "");
        else if (!isEncodingName(upper))
            return;
        if (upper == "QUOTED-PRINTABLE" || upper == "Q")
            found = Encoding::QuotedPrintable;
        else if (upper == "BASE64" || upper == "B")
            found = Encoding::Base64;
    });
    return found;
}

std::optional<VCardAttribute> VCardAttribute::fromLine(const QByteArray &line)
{
    const qsizetype colon = colonOf(line);
    if (colon < 0)
        return std::nullopt;
    const QByteArray head = line.left(colon);
    VCardAttribute attribute;
    bool isName = true;
    splitOutsideQuotes(head, ';', [&](const QByteArray &part) {
        if (!std::exchange(isName, false)) {
            attribute.parameterList.push_back(parameterFrom(part));
            return;
        }
        const qsizetype dot = part.lastIndexOf('.');
        attribute.groupName = part.left(std::max<qsizetype>(dot, 0)).trimmed();
        attribute.upperName = part.mid(dot + 1).trimmed().toUpper();
    });
    if (attribute.upperName.isEmpty())
        return std::nullopt;
    attribute.encoding = encodingOf(head);
    attribute.value = line.mid(colon + 1);
    return attribute;
}

QString VCardAttribute::parameter(const QByteArray &parameterName) const
{
    for (const Parameter &one : parameterList) {
        if (one.name == parameterName && !one.values.isEmpty())
            return one.values.first();
    }
    return {};
}

QStringList VCardAttribute::types() const
{
    QStringList all;
    for (const Parameter &one : parameterList) {
        if (one.name != "TYPE")
            continue;
        // A list may stand inside of the quotes.
        for (const QString &list : one.values) {
            for (const QString &type : list.split(u','))
                all.append(type.trimmed().toUpper());
        }
    }
    return all;
}

QString VCardAttribute::decoded(const QByteArray &bytes) const
{
    return CharacterSet::decoded(bytes, parameter("CHARSET"));
}

QString VCardAttribute::text() const
{
    return withoutEscapes(decoded(bytes())).trimmed();
}

/// A semicolon that quoted-printable encodes separates nothing; one inside of a letter of two bytes neither.
QStringList VCardAttribute::components() const
{
    return partsBetween(u';');
}

QStringList VCardAttribute::list() const
{
    return partsBetween(u',');
}

template <typename Text, typename ToText>
std::vector<QStringList> VCardAttribute::listsIn(const Text &written, ToText toText)
{
    std::vector<QStringList> all;
    for (const Text &part : partsOf(written, u';')) {
        QStringList &list = all.emplace_back();
        for (const Text &one : partsOf(part, u','))
            list.append(withoutEscapes(toText(one)).trimmed());
    }
    return all;
}

std::vector<QStringList> VCardAttribute::lists() const
{
    if (encoding == Encoding::QuotedPrintable)
        return listsIn(value, [this](const QByteArray &one) { return decoded(withoutQuotedPrintable(one)); });
    return listsIn(decoded(bytes()), [](const QString &one) { return one; });
}

QStringList VCardAttribute::partsBetween(char16_t separator) const
{
    QStringList all;
    if (encoding == Encoding::QuotedPrintable) {
        for (const QByteArray &part : partsOf(value, separator))
            all.append(withoutEscapes(decoded(withoutQuotedPrintable(part))).trimmed());
    } else {
        for (const QString &part : partsOf(decoded(bytes()), separator))
            all.append(withoutEscapes(part).trimmed());
    }
    return all;
}

QByteArray VCardAttribute::bytes() const
{
    switch (encoding) {
    case Encoding::Base64:
        return QByteArray::fromBase64(value);
    case Encoding::QuotedPrintable:
        return withoutQuotedPrintable(value);
    case Encoding::Plain:
        break;
    }
    return value;
}

const VCardAttribute *VCard::find(const QByteArray &name) const
{
    const auto found =
        std::ranges::find(attributes, name, [](const VCardAttribute &one) { return one.name(); });
    return found == attributes.end() ? nullptr : &*found;
}
