#pragma once

#include <QString>

#include <utility>
#include <vector>

/// Texts with places for values and with the plural and select forms of ICU's message format:
/// "{0, plural, one{# day} other{# days}}".
namespace MessageFormat {

/// A text, or a number by which plural forms go.
struct Argument
{
    Argument(QString value)
        : text(std::move(value))
    {}
    Argument(int value)
        : number(value)
        , isNumber(true)
    {}

    QString text;
    int number = 0;
    bool isNumber = false;
};

/// The pattern with its numbered arguments filled in by the rules of a language (an ICU identifier). A
/// pattern that cannot be read is answered as it is, with a line in the log.
QString format(const QString &pattern, const QString &locale, const std::vector<Argument> &arguments);

} // namespace MessageFormat
