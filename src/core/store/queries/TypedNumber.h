#pragma once

#include <QString>

/// Telephone numbers as they are looked for: by their digits, however somebody has divided them.
namespace typednumber {

/// The digits of a text that is a telephone number, without the zeros that are dialled before it. Empty for
/// any other text, and for so few digits that a search for the text itself says as much.
QString digitsOf(const QString &text);

/// Whether a stored number has these digits.
bool isIn(QString number, const QString &digits);

} // namespace typednumber
