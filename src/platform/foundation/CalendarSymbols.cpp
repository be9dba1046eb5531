#include "foundation/CalendarSymbols.h"

#include "foundation/IcuText.h"

#include <unicode/dtfmtsym.h>

using Symbols = icu::DateFormatSymbols;

static Symbols symbolsOf(const QString &locale)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale gregorian((locale + QStringLiteral("@calendar=gregorian")).toUtf8().constData());
    return {gregorian, status};
}

static Symbols::DtContextType contextOf(CalendarSymbols::Form form)
{
    return form == CalendarSymbols::Form::InText ? Symbols::FORMAT : Symbols::STANDALONE;
}

static Symbols::DtWidthType widthOf(CalendarSymbols::Form form)
{
    return form == CalendarSymbols::Form::AloneShort ? Symbols::ABBREVIATED : Symbols::WIDE;
}

static QStringList texts(const icu::UnicodeString *names, int from, int count)
{
    QStringList list;
    for (int index = from; index < count; ++index)
        list.append(qtText(names[index]));
    return list;
}

QStringList CalendarSymbols::weekdays(const QString &locale, Form form)
{
    const Symbols symbols = symbolsOf(locale);
    int count = 0;
    const auto *names = symbols.getWeekdays(count, contextOf(form), widthOf(form));
    // The first entry is none: days count from 1.
    return texts(names, 1, count);
}

QStringList CalendarSymbols::months(const QString &locale, Form form)
{
    const Symbols symbols = symbolsOf(locale);
    int count = 0;
    const auto *names = symbols.getMonths(count, contextOf(form), widthOf(form));
    return texts(names, 0, count);
}
