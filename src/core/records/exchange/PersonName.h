#pragma once

#include "store/entities/Entities.h"

#include <QString>

/// People as the texts of a file name them, from which both of their names can be read again.
namespace personname {

/// The full name if its last word is the family name, as most programs take it; else "Family, Given".
QString written(const EntityContacts &person);

/// The person that such a text names, in either order of the names; null for none.
ContactPtr found(const QString &text);

/// The same, made if there is none. Null for an empty text only.
ContactPtr foundOrMade(const QString &text);

} // namespace personname
