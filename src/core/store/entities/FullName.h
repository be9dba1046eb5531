#pragma once

#include <QString>

/// Which of two names the user wants first.
enum class NameOrder { FirstNameFirst, LastNameFirst };

/// The order that the user prefers.
NameOrder preferredNameOrder();
/// First and last name in an order; one alone if the other is empty; empty without either. Any thread.
QString fullNameIn(NameOrder order, const QString &firstName, const QString &lastName);
/// The same in the order that the user prefers.
QString fullNameWith(const QString &firstName, const QString &lastName);
