#pragma once

#include "foundation/Date.h"

#include <QString>

/// Dates as texts and back, in the zone and locale of `Region`. Patterns are those of ICU (Unicode Technical
/// Standard 35, "Date Format Patterns"), among them `Y` for the week-based year and `D` for the day of the
/// year. Formatters are kept for each thread, so every call is cheap. Any thread.
class DateFormatter
{
public:
    enum class Style { None, Short, Medium, Long, Full };
    /// The language of names and orders: the user's own, or the one that the program has words for
    /// (`languageOfWords`), for a date among words. In both cases with the user's zone and country.
    enum class Language { Users, OfWords };

    /// The date in a pattern.
    static QString string(Date date, const QString &pattern, Language language = Language::Users);

    /// The date in the locale's own styles, for example short time alone: `string(date, Style::None,
    /// Style::Short)`. Note that a locale may put a narrow no-break space (U+202F) before its AM or PM sign.
    static QString string(Date date, Style dateStyle, Style timeStyle, Language language = Language::Users);

    /// Reads a date written in a pattern. Lenient as ICU is by default: fields out of range carry over, text
    /// after the date is ignored. Absent if the text does not fit the pattern.
    static OptionalDate date(const QString &text, const QString &pattern);

    /// The locale's pattern for the fields of a skeleton: "MMMM d" gives "d. MMMM" in German.
    static QString patternFromTemplate(const QString &skeleton, Language language = Language::Users);

    static QString amSymbol();
    static QString pmSymbol();
};
