#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/Value.h"

#include <QString>

#include <vector>

/// Lists of very many contacts. The names of all are kept, and follow what is changed. Main thread only.
namespace ContactRows {

/// What the store calls the contacts that a request gives, in the order of `DBWorker::sortContacta`. Nobody
/// is loaded.
std::vector<RowId> byFullName(const FetchRequest &request);

/// Reads some names before they are asked for, so that the first list comes up at once. True while there is
/// more to read; to be called while the program rests.
bool readAhead();

struct Named
{
    RowId row;
    QString fullName;
};
/// The same with their names.
std::vector<Named> named(const FetchRequest &request);

} // namespace ContactRows
