#pragma once

#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Sqlite.h"

struct sqlite3_session;

namespace replication {

/// Rows that other programs write into the store are saves, too. Triggers, which fire for everybody but the
/// program itself, keep what each row was before; from that the change is told afterwards.
namespace foreignwrites {

/// Makes the table and the triggers that are missing or were made for a former model.
OptionalError prepare(sqlite::Database &database, const ManagedObjectModel &model);
/// Keeps what this very connection writes from here on, too. For a store that took part once and is on its
/// own now; nothing for any other.
OptionalError keepOwn(sqlite::Database &database, const ManagedObjectModel &model);
bool isAnyThere(sqlite::Database &database);
/// Lets a session see what was written, as if it were written now, and forgets it. The rows stay as they are.
/// For the beginning of a transaction, so that nothing comes between what was written and its being told.
/// False if it is still to be told; then nothing has happened.
bool show(sqlite::Database &database, const ManagedObjectModel &model, sqlite3_session &session);
/// Forgets all of it.
OptionalError forget(sqlite::Database &database);

} // namespace foreignwrites

} // namespace replication
