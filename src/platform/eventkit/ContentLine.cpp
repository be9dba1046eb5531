#include "eventkit/ContentLine.h"

namespace {

/// Octets of a line without its end.
constexpr qsizetype longestLine = 75;

bool isNameCharacter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '-' || character == '_' || character == '.';
}

qsizetype nameLength(const QByteArray &line)
{
    qsizetype length = 0;
    while (length < line.size() && isNameCharacter(line[length]))
        ++length;
    return length;
}

/// The first such character that stands outside of quotation marks; -1 if there is none.
qsizetype findUnquoted(const QByteArray &text, char wanted, qsizetype from)
{
    bool isQuoted = false;
    for (qsizetype index = from; index < text.size(); ++index) {
        if (text[index] == '"')
            isQuoted = !isQuoted;
        else if (text[index] == wanted && !isQuoted)
            return index;
    }
    return -1;
}

bool isInsideOfCharacter(char octet)
{
    return (static_cast<unsigned char>(octet) & 0xC0U) == 0x80U;
}

/// Breaks a long line between characters.
QByteArray folded(const QByteArray &line, const QByteArray &lineEnd)
{
    QByteArray text;
    qsizetype begin = 0;
    for (qsizetype room = longestLine; line.size() - begin > room; room = longestLine - 1) {
        qsizetype end = begin + room;
        while (end > begin + 1 && isInsideOfCharacter(line[end]))
            --end;
        text += line.mid(begin, end - begin) + lineEnd + ' ';
        begin = end;
    }
    return text + line.mid(begin) + lineEnd;
}

QByteArray decodedParameter(QByteArray value)
{
    if (value.size() > 1 && value.startsWith('"') && value.endsWith('"'))
        value = value.mid(1, value.size() - 2);
    if (!value.contains('^'))
        return value;
    QByteArray decoded;
    for (qsizetype index = 0; index < value.size(); ++index) {
        const char next = value[index] == '^' && index + 1 < value.size() ? value[index + 1] : '\0';
        if (next != 'n' && next != '\'' && next != '^') {
            decoded += value[index];
            continue;
        }
        decoded += next == 'n' ? '\n' : next == '\'' ? '"' : '^';
        ++index;
    }
    return decoded;
}

} // namespace

ContentLine::ContentLine(const QByteArray &rawLine)
    : bytes(rawLine)
{
    const QByteArray line = unfolded();
    const qsizetype length = nameLength(line);
    if (length == 0 || length == line.size() || (line[length] != ':' && line[length] != ';'))
        return;
    colon = findUnquoted(line, ':', length);
    if (colon >= 0)
        upperName = line.left(length).toUpper();
}

ContentLine ContentLine::make(const QByteArray &head, const QByteArray &value, const QByteArray &lineEnd)
{
    return ContentLine(folded(head + ':' + value, lineEnd));
}

QByteArray ContentLine::parameterText(const QByteArray &name, const QByteArray &value)
{
    QByteArray encoded = value;
    encoded.replace('^', "^^").replace('\n', "^n").replace('"', "^'");
    const bool isQuoted = encoded.contains(':') || encoded.contains(';') || encoded.contains(',');
    return ';' + name + '=' + (isQuoted ? '"' + encoded + '"' : encoded);
}

QByteArray ContentLine::lineEnd() const
{
    return bytes.endsWith("\r\n") ? QByteArrayLiteral("\r\n")
           : bytes.endsWith('\n') ? QByteArrayLiteral("\n")
                                  : QByteArray();
}

QByteArray ContentLine::unfolded() const
{
    QByteArray line = bytes.left(bytes.size() - lineEnd().size());
    if (line.contains('\n'))
        line.replace("\r\n ", "").replace("\r\n\t", "").replace("\n ", "").replace("\n\t", "");
    return line;
}

QByteArray ContentLine::value() const
{
    return colon < 0 ? QByteArray() : unfolded().mid(colon + 1);
}

QByteArray ContentLine::head() const
{
    return colon < 0 ? QByteArray() : unfolded().left(colon);
}

QByteArray ContentLine::parameter(const QByteArray &parameterName) const
{
    const QByteArray written = head();
    qsizetype begin = upperName.size();
    while (begin >= 0 && begin < written.size()) {
        const qsizetype end = findUnquoted(written, ';', begin + 1);
        const QByteArray part = written.mid(begin + 1, end < 0 ? -1 : end - begin - 1);
        const qsizetype equals = part.indexOf('=');
        if (equals > 0 && part.left(equals).toUpper() == parameterName)
            return decodedParameter(part.mid(equals + 1));
        begin = end;
    }
    return {};
}

ContentLine ContentLine::withValue(const QByteArray &newValue) const
{
    return make(head(), newValue, lineEnd());
}
