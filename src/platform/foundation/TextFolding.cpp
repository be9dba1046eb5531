#include "foundation/TextFolding.h"

#include "foundation/IcuText.h"
#include "foundation/Region.h"
#include "foundation/RegionState.h"

#include <algorithm>
#include <memory>

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/uversion.h>

static bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

static QString lowercaseAscii(QStringView text)
{
    QString folded(text.size(), Qt::Uninitialized);
    std::transform(text.begin(), text.end(), folded.begin(),
                   [](QChar c) { return c >= u'A' && c <= u'Z' ? QChar(c.unicode() + ('a' - 'A')) : c; });
    return folded;
}

static icu::UnicodeString decomposed(const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    static const icu::Normalizer2 *const compatibility = icu::Normalizer2::getNFKDInstance(status);
    return compatibility->normalize(text, status);
}

/// Letters that Unicode does not take apart, although people write them with and without.
static QStringView baseLetters(UChar32 letter)
{
    switch (letter) {
    case 0x0131: // ı
        return u"i";
    case 0x00F8: // ø
        return u"o";
    case 0x0142: // ł
        return u"l";
    case 0x0111: // đ
    case 0x00F0: // ð
        return u"d";
    case 0x00E6: // æ
        return u"ae";
    case 0x0153: // œ
        return u"oe";
    case 0x00FE: // þ
        return u"th";
    case 0x03C2: // ς
        return u"σ";
    default:
        return {};
    }
}

static QString withoutMarks(const icu::UnicodeString &text)
{
    QString plain;
    plain.reserve(text.length());
    for (int at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 letter = text.char32At(at);
        if (const QStringView base = baseLetters(letter); !base.isEmpty())
            plain += base;
        else if (u_charType(letter) != U_NON_SPACING_MARK)
            plain += QStringView(QChar::fromUcs4(static_cast<char32_t>(letter)));
    }
    return plain;
}

QString foldedForSearch(QStringView text)
{
    if (isAscii(text))
        return lowercaseAscii(text);
    icu::UnicodeString folded = decomposed(icuText(text));
    folded.foldCase(U_FOLD_CASE_DEFAULT);
    return withoutMarks(decomposed(folded));
}

QString textFoldingVersion()
{
    // Grows with what is done here beside ICU.
    constexpr int ownVersion = 1;
    UVersionInfo version;
    u_getVersion(version);
    char text[U_MAX_VERSION_STRING_LENGTH];
    u_versionToString(version, text);
    return QStringLiteral("%1-%2").arg(QLatin1String(text)).arg(ownVersion);
}

bool containsFolded(QStringView text, QStringView foldedNeedle)
{
    return QStringView(foldedForSearch(text)).contains(foldedNeedle);
}

bool beginsWithFolded(QStringView text, QStringView foldedNeedle)
{
    return QStringView(foldedForSearch(text)).startsWith(foldedNeedle);
}

/// The POSIX locale sorts by code point, capitals first; people who run with it expect an English order.
static icu::Locale sortingLocale()
{
    const icu::Locale locale = currentRegionState()->locale;
    return qstrcmp(locale.getVariant(), "POSIX") == 0 ? icu::Locale::getUS() : locale;
}

/// Never null: ICU falls back on its root collation.
static std::unique_ptr<icu::Collator> makeCollator()
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(sortingLocale(), status));
    collator->setStrength(icu::Collator::SECONDARY);
    return collator;
}

static const icu::Collator &currentCollator()
{
    static thread_local quint64 generation = 0;
    static thread_local std::unique_ptr<icu::Collator> collator;
    if (const quint64 present = Region::generation(); present != generation) {
        collator = makeCollator();
        generation = present;
    }
    return *collator;
}

int localizedCaseInsensitiveCompare(QStringView one, QStringView other)
{
    UErrorCode status = U_ZERO_ERROR;
    return currentCollator().compare(icuText(one), icuText(other), status);
}

QByteArray collationSortKey(QStringView text)
{
    static constexpr int usualLength = 128;
    QByteArray key(usualLength, Qt::Uninitialized);
    const auto write = [&] {
        return currentCollator().getSortKey(icuText(text), reinterpret_cast<std::uint8_t *>(key.data()),
                                            static_cast<int>(key.size()));
    };
    const int length = write();
    key.resize(length);
    if (length > usualLength)
        write();
    return key;
}

int caseInsensitiveCompare(QStringView one, QStringView other)
{
    return one.compare(other, Qt::CaseInsensitive);
}
