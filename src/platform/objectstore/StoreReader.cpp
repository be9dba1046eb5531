#include "objectstore/StoreReader.h"

#include "objectstore/FetchSql.h"
#include "objectstore/SqlText.h"

#include <sqlite3.h>

/// So many steps of SQLite's machine between two looks at the flag: far less than a millisecond.
constexpr int stepsBetweenLooks = 2000;

static int wantsToStop(void *flag)
{
    return static_cast<const std::atomic<bool> *>(flag)->load() ? 1 : 0;
}

StoreReader::StoreReader(std::unique_ptr<sqlite::Database> opened, const ManagedObjectModel &model,
                         const std::atomic<bool> &cancelled)
    : database(std::move(opened))
    , objectModel(model)
    , isCancelled(cancelled)
{
    sqlite3_progress_handler(database->handle(), stepsBetweenLooks, wantsToStop,
                             const_cast<std::atomic<bool> *>(&isCancelled));
}

Result<std::unique_ptr<StoreReader>> StoreReader::open(const QString &path, const ManagedObjectModel &model,
                                                       const std::atomic<bool> &isCancelled)
{
    auto opened = sqlite::Database::open(path, sqlite::Database::Mode::ReadWrite);
    if (!opened)
        return opened.error();
    // The log is the writing connection's business, also when this one is the last to end.
    (*opened)->setCheckpointAtEnd(false);
    if (auto error = (*opened)->execute("PRAGMA query_only = ON"))
        return *error;
    return std::unique_ptr<StoreReader>(new StoreReader(std::move(*opened), model, isCancelled));
}

bool StoreReader::run(const SqlFragment &query, const std::function<void(const RowReader &)> &visitor)
{
    sqlite::Statement statement = database->prepare(query.text);
    statement.bind(query.bindings);
    const RowReader reader(statement);
    while (!isCancelled && statement.step())
        visitor(reader);
    return statement.isValid() && statement.code() == SQLITE_DONE;
}

bool StoreReader::visit(const FetchRequest &request, const std::vector<std::string> &columns,
                        const std::function<void(const RowReader &)> &visitor)
{
    return run(fetchsql::select(objectModel, request, fetchsql::rowResult(columns)), visitor);
}

bool StoreReader::visitRow(std::string_view entity, const QString &identifier,
                           const std::vector<std::string> &columns,
                           const std::function<void(const RowReader &)> &visitor)
{
    const QByteArray text = "SELECT " + fetchsql::rowResult(columns) + " FROM " +
                            quoted(objectModel.requireEntity(entity).name()) + " row WHERE row.\"id\" = ?";
    return run({text, {Value(identifier)}}, visitor);
}

std::optional<int> StoreReader::count(const FetchRequest &request)
{
    std::optional<int> rows;
    const bool isDone = run(fetchsql::select(objectModel, request, "COUNT(*)"),
                            [&rows](const RowReader &row) { rows = static_cast<int>(row.rowId()); });
    return isDone ? rows : std::nullopt;
}
