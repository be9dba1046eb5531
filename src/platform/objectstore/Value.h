#pragma once

#include "foundation/Date.h"

#include <QHash>
#include <QString>

#include <compare>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

class ManagedObject;
using ObjectPtr = std::shared_ptr<ManagedObject>;

/// The number by which SQLite knows a row while a store is open. It is never handed out twice by one context.
using RowId = qint64;

/// What one column of one row holds. A to-one relationship is held as the target's identifier (a text).
/// `std::monostate` is the absent value.
using Value = std::variant<std::monostate, qint64, double, bool, QString, Date>;

/// What a column is declared to hold.
enum class AttributeType { Integer, Double, Boolean, String, Date };

/// Whether nothing is there.
inline bool isAbsent(const Value &value)
{
    return std::holds_alternative<std::monostate>(value);
}

/// The value as a store gives it back: what is no number becomes nothing, as does a null text, and half of a
/// surrogate pair becomes U+FFFD.
Value storable(Value value);

/// The value as a column of that type holds it. Numbers become numbers of the column's kind; a text in the
/// place of a number, or the other way round, is absent.
Value fitted(Value value, AttributeType type);

/// The number in a value (a date counts as its seconds since the reference date), or absent for a text or
/// nothing.
std::optional<double> numberOf(const Value &value);

/// Orders two present values of comparable kinds: numbers, booleans and dates by their number, texts by their
/// Unicode code points (which is also the order of their UTF-8 bytes, and so SQLite's). Values of kinds that
/// cannot be compared are unordered.
std::partial_ordering compareValues(const Value &left, const Value &right);
