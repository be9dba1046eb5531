#include "eventkit/IcalText.h"

#include <QStringDecoder>

QString IcalText::fromBytes(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

QString IcalText::decoded(const QByteArray &value)
{
    if (!value.contains('\\'))
        return fromBytes(value);
    QByteArray text;
    text.reserve(value.size());
    for (qsizetype index = 0; index < value.size(); ++index) {
        const bool isEscaped = value[index] == '\\' && index + 1 < value.size();
        const char character = isEscaped ? value[++index] : value[index];
        text += isEscaped && (character == 'n' || character == 'N') ? '\n' : character;
    }
    return fromBytes(text);
}

QByteArray IcalText::encoded(const QString &text)
{
    QByteArray value;
    for (const char character : text.toUtf8()) {
        const bool isControl = static_cast<unsigned char>(character) < 0x20U || character == 0x7F;
        if (character == '\n')
            value += "\\n";
        else if (character == '\\' || character == ';' || character == ',')
            (value += '\\') += character;
        else if (!isControl || character == '\t')
            value += character;
    }
    return value;
}
