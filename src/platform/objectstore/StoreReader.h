#pragma once

#include "foundation/Error.h"
#include "objectstore/ManagedObjectContext.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string_view>

/// A second connection to a store that only reads, for queries that would keep the main thread waiting.
///
/// It sees the last save of the store and none of what a context changed since. It makes no objects. One
/// thread at a time may use it, any one.
class StoreReader
{
public:
    /// A store that is in use by a context. Nothing is written and no table is added.
    /// \param isCancelled ends the running query, and all later ones, once it is true; it is looked at from
    /// the reading thread and has to outlive the reader.
    static Result<std::unique_ptr<StoreReader>> open(const QString &path, const ManagedObjectModel &model,
                                                     const std::atomic<bool> &isCancelled);

    /// Passes the wanted columns of each row to a visitor, in any order. False if the query failed or was
    /// cancelled.
    bool visit(const FetchRequest &request, const std::vector<std::string> &columns,
               const std::function<void(const RowReader &)> &visitor);
    /// The same for the row of one identifier, if it is there.
    bool visitRow(std::string_view entity, const QString &identifier, const std::vector<std::string> &columns,
                  const std::function<void(const RowReader &)> &visitor);

    /// How many rows a request finds; absent if the query failed or was cancelled.
    std::optional<int> count(const FetchRequest &request);

private:
    StoreReader(std::unique_ptr<sqlite::Database> opened, const ManagedObjectModel &model,
                const std::atomic<bool> &cancelled);
    bool run(const SqlFragment &query, const std::function<void(const RowReader &)> &visitor);

    std::unique_ptr<sqlite::Database> database;
    const ManagedObjectModel &objectModel;
    const std::atomic<bool> &isCancelled;
};
