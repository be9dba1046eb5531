#include "foundation/DateFormatter.h"

#include "foundation/CalendarEngine.h"
#include "foundation/IcuDate.h"
#include "foundation/IcuText.h"
#include "foundation/Localization.h"
#include "foundation/Region.h"
#include "foundation/RegionState.h"

#include <QHash>

#include <mutex>

#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>

using FormatPointer = std::shared_ptr<icu::DateFormat>;
using Style = DateFormatter::Style;
using Language = DateFormatter::Language;

static constexpr int mostFormatsKept = 64;

/// The formatters of one language.
struct LanguageFormats
{
    icu::Locale locale;
    QHash<QString, FormatPointer> byPattern = {};
    QHash<int, FormatPointer> byStyle = {};
    QHash<QString, QString> patternsOfSkeletons = {};
    std::unique_ptr<icu::DateTimePatternGenerator> generator = nullptr;
};

/// The formatters of one thread for one state of the region.
struct FormatCache
{
    quint64 generation = 0;
    LanguageFormats users = {};
    LanguageFormats ofWords = {};
};

/// The user's locale, in the language that the program has words for.
static icu::Locale localeOfWords(const icu::Locale &users)
{
    const QString language = languageOfWords();
    if (language == languageOf(users))
        return users;
    return gregorianLocale(language.toLatin1() + '_' + users.getCountry());
}

/// Formatters are made with ICU's default zone but never used with it: each call passes a calendar in the
/// user's zone. UTC costs nothing, whereas ICU would search the system for its default, and each formatter
/// would copy its rules.
static void setCheapDefaultZone()
{
    static std::once_flag once;
    std::call_once(once, [] { icu::TimeZone::adoptDefault(icu::TimeZone::getGMT()->clone()); });
}

static LanguageFormats &formats(Language language)
{
    static thread_local FormatCache cache;
    if (const quint64 present = Region::generation(); present != cache.generation) {
        const icu::Locale locale = currentRegionState()->locale;
        cache = FormatCache{present, {locale}, {localeOfWords(locale)}};
        setCheapDefaultZone();
    }
    return language == Language::Users ? cache.users : cache.ofWords;
}

template <typename Key, typename Make>
static auto kept(QHash<Key, FormatPointer> &formats, const Key &key, Make make)
{
    if (const auto known = formats.constFind(key); known != formats.constEnd())
        return *known;
    if (formats.size() >= mostFormatsKept)
        formats.clear();
    return *formats.insert(key, FormatPointer(make()));
}

static FormatPointer formatOfPattern(const QString &pattern, Language language = Language::Users)
{
    auto &cache = formats(language);
    return kept(cache.byPattern, pattern, [&] {
        UErrorCode status = U_ZERO_ERROR;
        return new icu::SimpleDateFormat(icuText(pattern), cache.locale, status);
    });
}

static icu::DateFormat::EStyle icuStyle(Style style)
{
    switch (style) {
    case Style::None:
        return icu::DateFormat::kNone;
    case Style::Short:
        return icu::DateFormat::kShort;
    case Style::Medium:
        return icu::DateFormat::kMedium;
    case Style::Long:
        return icu::DateFormat::kLong;
    case Style::Full:
        break;
    }
    return icu::DateFormat::kFull;
}

static FormatPointer formatOfStyles(Style dateStyle, Style timeStyle, Language language)
{
    auto &cache = formats(language);
    const int key = static_cast<int>(dateStyle) * 8 + static_cast<int>(timeStyle);
    return kept(cache.byStyle, key, [&] {
        return icu::DateFormat::createDateTimeInstance(icuStyle(dateStyle), icuStyle(timeStyle),
                                                       cache.locale);
    });
}

/// Formats in the calendar given. Letting the formatter use its own would make it copy calendar and zone each
/// time.
static QString formatted(const icu::DateFormat &format, icu::Calendar &calendar, Date date)
{
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(icuDate(date), status);
    icu::UnicodeString text;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    format.format(calendar, text, position);
    return qtText(text);
}

QString DateFormatter::string(Date date, const QString &pattern, Language language)
{
    return formatted(*formatOfPattern(pattern, language), Calendar::current().engine->icuCalendar(), date);
}

QString DateFormatter::string(Date date, Style dateStyle, Style timeStyle, Language language)
{
    if (dateStyle == Style::None && timeStyle == Style::None)
        return {};
    return formatted(*formatOfStyles(dateStyle, timeStyle, language),
                     Calendar::current().engine->icuCalendar(), date);
}

OptionalDate DateFormatter::date(const QString &text, const QString &pattern)
{
    const Calendar current = Calendar::current();
    icu::Calendar &calendar = current.engine->icuCalendar();
    calendar.clear();
    icu::ParsePosition position(0);
    formatOfPattern(pattern)->parse(icuText(text), calendar, position);
    UErrorCode status = U_ZERO_ERROR;
    const UDate instant = calendar.getTime(status);
    current.engine->takeZoneBack();
    return U_SUCCESS(status) && position.getIndex() > 0 ? OptionalDate(dateFromIcu(instant)) : std::nullopt;
}

QString DateFormatter::patternFromTemplate(const QString &skeleton, Language language)
{
    auto &cache = formats(language);
    if (const auto known = cache.patternsOfSkeletons.constFind(skeleton);
        known != cache.patternsOfSkeletons.constEnd())
        return *known;
    UErrorCode status = U_ZERO_ERROR;
    if (!cache.generator)
        cache.generator.reset(icu::DateTimePatternGenerator::createInstance(cache.locale, status));
    QString pattern = qtText(cache.generator->getBestPattern(icuText(skeleton), status));
    cache.patternsOfSkeletons.insert(skeleton, pattern);
    return pattern;
}

static QString halfDaySymbol(int index)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(formats(Language::Users).locale, status);
    int count = 0;
    const icu::UnicodeString *texts = symbols.getAmPmStrings(count);
    return index < count ? qtText(texts[index]) : QString();
}

QString DateFormatter::amSymbol()
{
    return halfDaySymbol(0);
}

QString DateFormatter::pmSymbol()
{
    return halfDaySymbol(1);
}
