#include "objectstore/Value.h"

#include <cmath>
#include <optional>

namespace {

/// UTF-16 code units ordered so that comparing them gives the order of code points: the surrogates, which
/// stand for code points above U+FFFF, move behind U+E000 to U+FFFF.
char16_t inCodePointOrder(char16_t unit)
{
    if (unit >= 0xE000)
        return static_cast<char16_t>(unit - 0x800);
    return unit >= 0xD800 ? static_cast<char16_t>(unit + 0x2000) : unit;
}

std::strong_ordering compareTexts(const QString &left, const QString &right)
{
    const auto [leftEnd, rightEnd] =
        std::mismatch(left.utf16(), left.utf16() + left.size(), right.utf16(), right.utf16() + right.size());
    const auto leftPlace = leftEnd - left.utf16();
    const auto rightPlace = rightEnd - right.utf16();
    if (leftPlace == left.size() || rightPlace == right.size())
        return left.size() <=> right.size();
    return inCodePointOrder(*leftEnd) <=> inCodePointOrder(*rightEnd);
}

QString withWholeCharacters(const QString &text)
{
    if (text.isValidUtf16())
        return text;
    QString mended = text;
    for (qsizetype place = 0; place < mended.size(); ++place) {
        const QChar unit = mended.at(place);
        const bool isPair =
            unit.isHighSurrogate() && place + 1 < mended.size() && mended.at(place + 1).isLowSurrogate();
        if (isPair)
            ++place;
        else if (unit.isSurrogate())
            mended[place] = QChar::ReplacementCharacter;
    }
    return mended;
}

/// The largest magnitude of which every smaller whole double is a qint64.
constexpr double integerLimit = 9223372036854775808.0;

Value wholeNumber(double number)
{
    const bool isInRange = number >= -integerLimit && number < integerLimit;
    return isInRange ? Value(static_cast<qint64>(number)) : Value();
}

std::optional<qint64> integerOf(const Value &value)
{
    if (const auto *integer = std::get_if<qint64>(&value))
        return *integer;
    if (const auto *boolean = std::get_if<bool>(&value))
        return *boolean ? 1 : 0;
    return std::nullopt;
}

/// Without the detour over a double, which would take neighbours of large numbers for the same.
std::partial_ordering compareMixed(qint64 integer, double number)
{
    if (std::isnan(number))
        return std::partial_ordering::unordered;
    if (number >= integerLimit)
        return std::partial_ordering::less;
    if (number < -integerLimit)
        return std::partial_ordering::greater;
    const double whole = std::trunc(number);
    const std::strong_ordering order = integer <=> static_cast<qint64>(whole);
    return std::is_eq(order) ? whole <=> number : std::partial_ordering(order);
}

} // namespace

Value storable(Value value)
{
    if (const auto *text = std::get_if<QString>(&value))
        return text->isNull() ? Value() : Value(withWholeCharacters(*text));
    const std::optional<double> number = numberOf(value);
    return number && std::isnan(*number) ? Value() : value;
}

Value fitted(Value value, AttributeType type)
{
    value = storable(std::move(value));
    if (isAbsent(value) || std::holds_alternative<QString>(value) != (type == AttributeType::String))
        return {};
    switch (type) {
    case AttributeType::String:
        return value;
    case AttributeType::Integer: {
        const std::optional<qint64> integer = integerOf(value);
        return integer ? Value(*integer) : wholeNumber(*numberOf(value));
    }
    case AttributeType::Boolean:
        return Value(*numberOf(value) != 0);
    case AttributeType::Date:
        return Value(Date::fromReferenceSeconds(*numberOf(value)));
    case AttributeType::Double:
        return Value(*numberOf(value));
    }
    return {};
}

std::optional<double> numberOf(const Value &value)
{
    if (const auto *integer = std::get_if<qint64>(&value))
        return static_cast<double>(*integer);
    if (const auto *number = std::get_if<double>(&value))
        return *number;
    if (const auto *boolean = std::get_if<bool>(&value))
        return *boolean ? 1.0 : 0.0;
    if (const auto *date = std::get_if<Date>(&value))
        return date->referenceSeconds();
    return std::nullopt;
}

std::partial_ordering compareValues(const Value &left, const Value &right)
{
    const auto *leftText = std::get_if<QString>(&left);
    const auto *rightText = std::get_if<QString>(&right);
    if (leftText && rightText)
        return compareTexts(*leftText, *rightText);
    const std::optional<qint64> leftInteger = integerOf(left);
    const std::optional<qint64> rightInteger = integerOf(right);
    if (leftInteger && rightInteger)
        return *leftInteger <=> *rightInteger;
    const std::optional<double> leftNumber = numberOf(left);
    const std::optional<double> rightNumber = numberOf(right);
    if (!leftNumber || !rightNumber)
        return std::partial_ordering::unordered;
    if (leftInteger)
        return compareMixed(*leftInteger, *rightNumber);
    if (rightInteger)
        return 0 <=> compareMixed(*rightInteger, *leftNumber);
    return *leftNumber <=> *rightNumber;
}
