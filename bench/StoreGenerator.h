#pragma once

#include <QString>

/// Fills a store with tasks as a long life with the program would leave them: 30 % done, 60 % dated over four
/// years around now, 5 % repeating, in 40 projects and 20 categories, each with its rows of the search index.
/// On request there are contacts with nothing but a name.
/// The same seed gives the same store, but for the moment that the dates are counted from.
///
/// The file must not exist; it is made with the program's own schema. Ends the process with a message on an
/// error.
void generateStore(const QString &path, int tasks, unsigned seed, int contacts = 0);
