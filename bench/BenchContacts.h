#pragma once

#include "records/people/ContactImport.h"

#include <QByteArray>

/// Contacts as vCards, and two ways to bring them into a store.
namespace BenchContacts {

constexpr int count = 10'000;

/// Cards of people with names that no former call has had.
QByteArray cards();
/// What the window does with them: reads them for its list, marks all and imports them.
ContactImportAccount import(const QByteArray &text);
/// Parses the cards once and inserts the same rows in one transaction, those of the search index among them,
/// into the copy of the store.
void bareImport(QByteArray text);

} // namespace BenchContacts
