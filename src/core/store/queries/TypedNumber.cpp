#include "store/queries/TypedNumber.h"

#include <algorithm>
#include <iterator>

static QString allDigitsOf(const QString &text)
{
    QString digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](QChar c) { return c.isDigit(); });
    return digits;
}

QString typednumber::digitsOf(const QString &text)
{
    constexpr qsizetype fewDigits = 5;
    const bool isNumber = std::all_of(text.begin(), text.end(), [](QChar c) {
        return c.isDigit() || c.isSpace() || QStringView(u"+-/().").contains(c);
    });
    const QString digits = isNumber ? allDigitsOf(text) : QString();
    const auto first = std::find_if(digits.begin(), digits.end(), [](QChar c) { return c != u'0'; });
    const qsizetype zeros = first - digits.begin();
    return digits.size() - zeros < fewDigits ? QString() : digits.mid(zeros);
}

bool typednumber::isIn(QString number, const QString &digits)
{
    // As in "+49 (0)30": the zero is for who does not dial the country.
    return allDigitsOf(number.remove(QStringLiteral("(0)"))).contains(digits);
}
