#include "objectstore/Value.h"

#include <optional>

namespace {

/// UTF-16 code units ordered so that comparing them gives the order of code points: the surrogates, which stand for
/// code points above U+FFFF, move behind U+E000 to U+FFFF.
char16_t inCodePointOrder(char16_t unit)
{
    if (unit >= 0xE000)
        return static_cast<char16_t>(unit - 0x800);
    return unit >= 0xD800 ? static_cast<char16_t>(unit + 0x2000) : unit;
}

std::strong_ordering compareTexts(const QString &left, const QString &right)
{
    const auto [leftEnd, rightEnd] = std::mismatch(left.utf16(), left.utf16() + left.size(), right.utf16(),
                                                   right.utf16() + right.size());
    const auto leftPlace = leftEnd - left.utf16();
    const auto rightPlace = rightEnd - right.utf16();
    if (leftPlace == left.size() || rightPlace == right.size())
        return left.size() <=> right.size();
    return inCodePointOrder(*leftEnd) <=> inCodePointOrder(*rightEnd);
}

} // namespace

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
    const auto *leftInteger = std::get_if<qint64>(&left);
    const auto *rightInteger = std::get_if<qint64>(&right);
    if (leftInteger && rightInteger)
        return *leftInteger <=> *rightInteger;
    const std::optional<double> leftNumber = numberOf(left);
    const std::optional<double> rightNumber = numberOf(right);
    if (leftNumber && rightNumber)
        return *leftNumber <=> *rightNumber;
    return std::partial_ordering::unordered;
}
