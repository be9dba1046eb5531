#include "contacts/CharacterSet.h"

#include <QStringDecoder>

#include <unicode/ucnv.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

struct ConverterClosing
{
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};

/// Absent for a label that nobody knows.
std::optional<QString> convertedFrom(const QByteArray &label, const QByteArray &bytes)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, ConverterClosing> converter(ucnv_open(label.constData(), &status));
    if (U_FAILURE(status))
        return std::nullopt;
    // A byte gives one unit of UTF-16, or two at most.
    QString text(2 * bytes.size() + 1, Qt::Uninitialized);
    const auto length =
        ucnv_toUChars(converter.get(), reinterpret_cast<UChar *>(text.data()), int32_t(text.size()),
                      bytes.constData(), int32_t(bytes.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.resize(length);
    // Some sets know halves of letters, which no text can be written with.
    return QString::fromUtf8(text.toUtf8());
}

bool isLatin(const QByteArray &label)
{
    return label == "ISO-8859-1" || label == "LATIN1" || label == "US-ASCII" || label == "ASCII" ||
           label == "WINDOWS-1252" || label == "CP1252";
}

} // namespace

QString CharacterSet::decoded(const QByteArray &bytes, const QString &name)
{
    // Most texts are so plain that all sets agree on them.
    const bool isPlain =
        name.isEmpty() && std::ranges::none_of(bytes, [](char one) { return (uchar(one) & 0x80) != 0; });
    if (isPlain)
        return QString::fromLatin1(bytes);
    const QByteArray label = name.trimmed().toUpper().toLatin1();
    if (!label.isEmpty() && label != "UTF-8" && label != "UTF8" && !isLatin(label)) {
        if (const auto text = convertedFrom(label, bytes))
            return *text;
    }
    if (label != "ISO-8859-1" && label != "LATIN1" && label != "WINDOWS-1252" && label != "CP1252") {
        QStringDecoder decoder(QStringDecoder::Utf8,
                               QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
        const QString text = decoder(bytes);
        if (!decoder.hasError())
            return text;
    }
    // What calls itself ISO-8859-1 is Windows-1252 in fact, which differs by letters instead of controls.
    return convertedFrom("windows-1252", bytes).value_or(QString::fromLatin1(bytes));
}
