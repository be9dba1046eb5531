#pragma once

#include "foundation/Error.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Sqlite.h"

#include <memory>

/// Opens the file of a store and gives it the tables of a model.
namespace storefile {

/// Written into the file's header, so that another program's database is not taken for a store ("MvSt").
constexpr qint32 applicationId = 0x4D765374;

/// The connection to a store file, which is made if it does not exist. What an older model left out is added
/// in one transaction. A file that is no database, is damaged or cut short, cannot be written, belongs to
/// another program or was written by a newer model is refused and left as it is.
Result<std::unique_ptr<sqlite::Database>> open(const QString &path, const ManagedObjectModel &model);

/// Statements that make the tables of an entity and of its pairs, as a new store has them, in an attached
/// database.
/// \param schema the name under which the database is attached.
QByteArray tablesOf(const EntityDescription &entity, const QByteArray &schema);
/// Statements that make the indexes of the same.
QByteArray indexesOf(const EntityDescription &entity, const QByteArray &schema);

/// The identity of a store, made with the file.
QString storeIdentifier(sqlite::Database &database);

} // namespace storefile
