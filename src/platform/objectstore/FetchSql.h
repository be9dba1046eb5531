#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Predicate.h"

#include <string>
#include <vector>

/// The SQL behind a fetch request, for any connection to a store of the model.
namespace fetchsql {

/// The row number and these columns, as a `RowReader` takes them.
QByteArray rowResult(const std::vector<std::string> &columns);

/// Selects `result` from the rows that pass, which the query names `row`. A predicate that does not fit the
/// entity lets nothing pass and is told of in the log.
/// \param kept one more condition on the rows; empty for none.
SqlFragment select(const ManagedObjectModel &model, const FetchRequest &request, const QByteArray &result,
                   const QByteArray &kept = {});

/// The order of the rows; that of their insertion where no descriptor gives another.
QByteArray order(const EntityDescription &entity, const SortDescriptors &descriptors);

} // namespace fetchsql
