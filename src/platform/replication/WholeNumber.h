#pragma once

#include <QCborValue>

/// The whole number in a value, or 0 for anything else. A damaged file can have a fraction there that no
/// whole number holds.
inline qint64 wholeNumber(const QCborValue &value)
{
    return value.isInteger() ? value.toInteger() : 0;
}
