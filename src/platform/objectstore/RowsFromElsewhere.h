#pragma once

#include "objectstore/ManagedObject.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Sqlite.h"

#include <vector>

/// A row of an entity that follows its links, as another program wrote to it or to what is linked to it.
struct RowFromElsewhere
{
    QByteArray table;
    QString identifier;
    /// Its number if it was deleted; else 0.
    RowId row = 0;
};

/// The list of such rows in the store, which triggers in plain SQL keep for whoever writes. On the connection
/// of a context triggers are switched off: what it writes is told of anyway.
///
/// Rows whose texts and links stay the same do not come on the list.
namespace rowsfromelsewhere {

/// Statements that make what is missing, with every present row on the list: who wrote them is not known.
QByteArray create(sqlite::Database &database, const ManagedObjectModel &model);

/// Takes rows off the list, at most so many. The caller holds the transaction.
Result<std::vector<RowFromElsewhere>> take(sqlite::Database &database, int limit);
bool isAnyThere(sqlite::Database &database);

} // namespace rowsfromelsewhere
