#include "foundation/Csv.h"

#include <QIODevice>

#include <algorithm>

namespace {

constexpr qsizetype chunk = 64 * 1024;
constexpr char16_t apostrophe = u'\'';

bool isSign(QChar letter)
{
    return letter == u'=' || letter == u'+' || letter == u'-' || letter == u'@';
}

/// Whether a text holds nothing but what people write phone numbers with.
bool isLikePhoneNumber(QStringView text)
{
    return (text.front() == u'+' || text.front() == u'-') && text.size() > 1 &&
           std::ranges::all_of(text.sliced(1), [](QChar letter) {
               return letter.isDigit() || QStringView(u" -()./\u00A0").contains(letter);
           });
}

/// The text behind all apostrophes at its beginning.
QStringView withoutApostrophes(QStringView text)
{
    while (text.startsWith(apostrophe))
        text = text.sliced(1);
    return text;
}

/// Texts of the user that look as if they had been guarded get a second apostrophe, so that one can be taken
/// away from each.
QString guarded(const QString &text)
{
    const QStringView rest = withoutApostrophes(text);
    const bool isFormula = !rest.isEmpty() && (isSign(rest.front()) || rest.front() == u'\t');
    const bool isGuarded = rest.size() < text.size();
    return isFormula && (isGuarded || !isLikePhoneNumber(rest)) ? apostrophe + text : text;
}

QString unguarded(const QString &text)
{
    const QStringView rest = withoutApostrophes(text);
    const bool isGuarded =
        rest.size() < text.size() && !rest.isEmpty() && (isSign(rest.front()) || rest.front() == u'\t');
    return isGuarded ? text.sliced(1) : text;
}

bool isQuoted(const QString &field)
{
    return std::ranges::any_of(field,
                               [](QChar letter) { return QStringView(u",;\"\r\n\t").contains(letter); }) ||
           field.startsWith(u' ') || field.endsWith(u' ');
}

} // namespace

QByteArray Csv::line(const QStringList &fields, char16_t separator)
{
    QString text;
    for (qsizetype index = 0; index < fields.size(); ++index) {
        QString field = guarded(fields[index]);
        if (index > 0)
            text += separator;
        if (isQuoted(field))
            field = u'"' + field.replace(u'"', QStringLiteral("\"\"")) + u'"';
        text += field;
    }
    // A line of one empty field would be an empty line.
    if (text.isEmpty())
        text = QStringLiteral("\"\"");
    return text.toUtf8() + "\r\n";
}

CsvReader::CsvReader(QIODevice &source)
    : device(source)
{}

bool CsvReader::fill()
{
    if (place < buffer.size())
        return true;
    QByteArray read = device.read(chunk);
    taken += read.size();
    place = 0;
    buffer = wide ? QString(wide->decode(read)).toUtf8() : read;
    return !buffer.isEmpty() || (wide && !read.isEmpty() && fill());
}

int CsvReader::peek()
{
    return fill() ? static_cast<unsigned char>(buffer[place]) : -1;
}

int CsvReader::take()
{
    const int byte = peek();
    if (byte >= 0)
        ++place;
    return byte;
}

/// Finds out how the text is written.
void CsvReader::begin()
{
    isBegun = true;
    if (!fill())
        return;
    if (buffer.startsWith("\xFF\xFE") || buffer.startsWith("\xFE\xFF")) {
        wide.emplace(QStringDecoder::Utf16);
        buffer = QString(wide->decode(buffer)).toUtf8();
    } else if (buffer.startsWith(Csv::byteOrderMark)) {
        place = Csv::byteOrderMark.size();
    }
    const auto countOf = [&](char wanted) {
        qsizetype count = 0;
        bool isInside = false;
        for (qsizetype index = place; index < buffer.size(); ++index) {
            const char byte = buffer[index];
            if (byte == '"')
                isInside = !isInside;
            else if (!isInside && (byte == '\n' || byte == '\r'))
                break;
            else if (!isInside && byte == wanted)
                ++count;
        }
        return count;
    };
    for (const char other : {';', '\t'})
        if (countOf(other) > countOf(separator))
            separator = other;
}

QString CsvReader::decoded(const QByteArray &bytes) const
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    QString field = decoder.hasError() ? QString::fromLatin1(bytes) : text;
    return unguarded(field.replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

std::optional<CsvReader::Record> CsvReader::next()
{
    if (!isBegun)
        begin();
    while (peek() == '\n' || peek() == '\r')
        lineNumber += take() == '\n' ? 1 : 0;
    if (peek() < 0)
        return std::nullopt;
    Record record{.line = lineNumber};
    QByteArray field;
    qsizetype size = 0;
    bool isInside = false;
    bool isAtBegin = true;
    for (int byte = take();; byte = take()) {
        if (byte == '\n')
            ++lineNumber;
        if (byte < 0 || (!isInside && (byte == '\n' || byte == '\r')))
            break;
        const bool isSeparator = !isInside && byte == static_cast<unsigned char>(separator);
        if (++size > mostBytes)
            record.isBearable = false;
        if (!record.isBearable && !isSeparator && byte != '"')
            continue;
        if (isSeparator) {
            record.fields.append(decoded(field));
            field.clear();
        } else if (byte == '"' && isAtBegin) {
            isInside = true;
        } else if (byte == '"' && isInside && peek() == '"') {
            field += static_cast<char>(take());
        } else if (byte == '"' && isInside) {
            isInside = false;
        } else {
            field += static_cast<char>(byte);
        }
        isAtBegin = isSeparator;
    }
    record.fields.append(decoded(field));
    record.isWhole = !isInside;
    if (!record.isBearable)
        record.fields.clear();
    return record;
}
