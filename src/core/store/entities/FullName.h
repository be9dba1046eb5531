#pragma once

#include <QString>

/// First and last name in the order that the user prefers; one alone if the other is empty; empty without
/// either.
QString fullNameWith(const QString &firstName, const QString &lastName);
