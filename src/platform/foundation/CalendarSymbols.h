#pragma once

#include <QString>
#include <QStringList>

/// The names of weekdays and months in any language that ICU knows.
namespace CalendarSymbols {

/// Within a sentence, or standing alone: written out or short.
enum class Form { InText, Alone, AloneShort };

/// Sunday first. `locale` is an ICU identifier such as "pt_PT".
QStringList weekdays(const QString &locale, Form form);
/// January first, of the Gregorian calendar.
QStringList months(const QString &locale, Form form);

} // namespace CalendarSymbols
