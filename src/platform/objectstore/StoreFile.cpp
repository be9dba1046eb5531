#include "objectstore/StoreFile.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <sqlite3.h>

#include <unistd.h>

namespace storefile {

namespace {

Error refusal(const QString &path, const QString &reason)
{
    return {QStringLiteral("store"), 0, QStringLiteral("Cannot open the store %1: %2").arg(path, reason)};
}

QByteArray quoted(std::string_view name)
{
    return '"' + QByteArray(name.data(), static_cast<qsizetype>(name.size())) + '"';
}

QByteArray sqlType(AttributeType type)
{
    switch (type) {
    case AttributeType::Integer:
    case AttributeType::Boolean:
        return "INTEGER";
    case AttributeType::Double:
    case AttributeType::Date:
        return "REAL";
    case AttributeType::String:
        return "TEXT";
    }
    return {};
}

QByteArray columnDefinition(const EntityDescription &entity, int column)
{
    QByteArray definition = quoted(entity.columnName(column)) + ' ' + sqlType(entity.columnType(column));
    if (const RelationshipDescription *relationship = entity.relationshipOfColumn(column))
        definition += " REFERENCES " + quoted(relationship->destination) +
                      "(\"id\") ON DELETE SET NULL DEFERRABLE INITIALLY DEFERRED";
    return definition;
}

QByteArray createTable(const EntityDescription &entity)
{
    QByteArray sql = "CREATE TABLE " + quoted(entity.name()) + " (\"id\" TEXT PRIMARY KEY NOT NULL";
    for (int column = 0; column < entity.columnCount(); ++column)
        sql += ", " + columnDefinition(entity, column);
    return sql + ");";
}

QByteArray createJoinTable(const EntityDescription &entity, const RelationshipDescription &relationship)
{
    const QByteArray table =
        entity.table() + '_' + QByteArray(relationship.name.data(), static_cast<qsizetype>(relationship.name.size()));
    const QByteArray reference = "(\"id\") ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED";
    return "CREATE TABLE IF NOT EXISTS \"" + table + "\" (source TEXT NOT NULL REFERENCES " + quoted(entity.name()) +
           reference + ", target TEXT NOT NULL REFERENCES " + quoted(relationship.destination) + reference +
           ", PRIMARY KEY (source, target)) WITHOUT ROWID;" + "CREATE INDEX IF NOT EXISTS \"" + table +
           "_target\" ON \"" + table + "\" (target);";
}

QByteArray createIndexes(const EntityDescription &entity)
{
    QByteArray sql;
    for (const IndexDescription &index : entity.indexes()) {
        sql += "CREATE INDEX IF NOT EXISTS " + quoted(index.name) + " ON " + quoted(entity.name()) + " (" +
               QByteArray(index.columns.data(), static_cast<qsizetype>(index.columns.size())) + ')';
        if (!index.where.empty())
            sql += " WHERE " + QByteArray(index.where.data(), static_cast<qsizetype>(index.where.size()));
        sql += ';';
    }
    return sql;
}

std::vector<QByteArray> existingColumns(sqlite::Database &database, const EntityDescription &entity)
{
    std::vector<QByteArray> columns;
    sqlite::Statement statement = database.prepare("PRAGMA table_info(" + quoted(entity.name()) + ")");
    while (statement.step())
        columns.push_back(statement.text(1).toUtf8());
    return columns;
}

/// What an entity's table lacks: all of it, or single columns.
QByteArray missingParts(sqlite::Database &database, const EntityDescription &entity)
{
    const std::vector<QByteArray> present = existingColumns(database, entity);
    if (present.empty())
        return createTable(entity);
    QByteArray sql;
    for (int column = 0; column < entity.columnCount(); ++column) {
        const std::string_view name = entity.columnName(column);
        const QByteArray bytes(name.data(), static_cast<qsizetype>(name.size()));
        if (std::find(present.begin(), present.end(), bytes) == present.end())
            sql += "ALTER TABLE " + quoted(entity.name()) + " ADD COLUMN " + columnDefinition(entity, column) + ';';
    }
    return sql;
}

QByteArray bookkeepingTables()
{
    return "CREATE TABLE IF NOT EXISTS ObjectStoreMetadata (key TEXT PRIMARY KEY NOT NULL, value TEXT) WITHOUT ROWID;"
           "CREATE TABLE IF NOT EXISTS ObjectStoreJournal (sequence INTEGER PRIMARY KEY, savedAt REAL NOT NULL,"
           " isUndone INTEGER NOT NULL DEFAULT 0, changeset BLOB NOT NULL);"
           "CREATE TABLE IF NOT EXISTS ObjectStoreFollowUp (entity TEXT NOT NULL, id TEXT NOT NULL,"
           " PRIMARY KEY (entity, id)) WITHOUT ROWID;";
}

OptionalError migrate(sqlite::Database &database, const ManagedObjectModel &model)
{
    if (auto error = database.execute("BEGIN IMMEDIATE"))
        return error;
    QByteArray sql = bookkeepingTables();
    for (const EntityDescription &entity : model.entities())
        sql += missingParts(database, entity);
    for (const EntityDescription &entity : model.entities()) {
        for (const RelationshipDescription &relationship : entity.relationships()) {
            if (relationship.cardinality == Cardinality::ToManyOwningJoin)
                sql += createJoinTable(entity, relationship);
        }
        sql += createIndexes(entity);
    }
    sql += "INSERT OR IGNORE INTO ObjectStoreMetadata VALUES ('storeIdentifier', '" +
           QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + "');";
    sql += "PRAGMA application_id = " + QByteArray::number(applicationId) + ';';
    sql += "PRAGMA user_version = " + QByteArray::number(model.version()) + ";COMMIT;";
    auto error = database.execute(sql);
    if (error && !database.isAutocommit())
        database.execute("ROLLBACK");
    return error;
}

/// A number of the database header, which is big-endian.
quint32 headerNumber(const QByteArray &header, int offset)
{
    quint32 number = 0;
    for (int place = 0; place < 4; ++place)
        number = number << 8 | static_cast<quint8>(header.at(offset + place));
    return number;
}

/// What can be told from the bytes of the file before SQLite touches it.
std::optional<QString> problemOfBytes(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return QStringLiteral("it is not a file");
    QFile file(path);
    if (!file.exists())
        return std::nullopt;
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const QByteArray header = file.read(100);
    if (header.isEmpty())
        return std::nullopt;
    if (header.size() < 100 || !header.startsWith("SQLite format 3"))
        return QStringLiteral("the file is not a database");
    const quint32 storedSize = headerNumber(header, 16) >> 16;
    const qint64 pageSize = storedSize == 1 ? 65536 : storedSize;
    const QFileInfo log(path + QStringLiteral("-wal"));
    const bool hasLog = log.exists() && log.size() > 0;
    if (!hasLog && file.size() < pageSize * qint64(headerNumber(header, 28)))
        return QStringLiteral("the file is shorter than it should be");
    return std::nullopt;
}

bool isEmptyDatabase(sqlite::Database &database)
{
    return database.queryInteger("SELECT COUNT(*) FROM sqlite_master") == 0;
}

/// Why an opened database is not a store that this model may use.
std::optional<QString> problemOfContent(sqlite::Database &database, const ManagedObjectModel &model)
{
    if (database.isReadOnly())
        return QStringLiteral("the file cannot be written");
    const qint64 version = database.queryInteger("PRAGMA user_version");
    if (version > model.version())
        return QStringLiteral("it was written by a newer version of the program (%1, this one knows %2)")
            .arg(version)
            .arg(model.version());
    const qint64 owner = database.queryInteger("PRAGMA application_id");
    const bool isOurs = owner == applicationId ||
                        (owner == 0 && (isEmptyDatabase(database) ||
                                        !existingColumns(database, model.entities().front()).empty()));
    return isOurs ? std::nullopt : std::optional(QStringLiteral("it belongs to another program"));
}

OptionalError configure(sqlite::Database &database)
{
    return database.execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON;"
                            "PRAGMA temp_store = MEMORY; PRAGMA cache_size = -8192;");
}

} // namespace

Result<std::unique_ptr<sqlite::Database>> open(const QString &path, const ManagedObjectModel &model)
{
    if (auto problem = problemOfBytes(path))
        return refusal(path, *problem);
    // SQLite falls back to reading only; asking first gives the plain reason.
    if (QFileInfo::exists(path) && ::access(path.toUtf8().constData(), W_OK) != 0)
        return refusal(path, QStringLiteral("the file cannot be written"));
    auto opened = sqlite::Database::open(path, sqlite::Database::Mode::ReadWriteCreate);
    if (!opened)
        return refusal(path, opened.error().message);
    sqlite::Database &database = **opened;
    // The first read shows whether the file is sound and free.
    if (auto error = database.execute("SELECT COUNT(*) FROM sqlite_master"))
        return refusal(path, error->message);
    if (auto problem = problemOfContent(database, model))
        return refusal(path, *problem);
    if (auto error = configure(database))
        return refusal(path, error->message);
    if (database.queryInteger("PRAGMA user_version") < model.version() ||
        database.queryInteger("PRAGMA application_id") == 0) {
        if (auto error = migrate(database, model))
            return refusal(path, error->message);
    }
    return opened;
}

QString storeIdentifier(sqlite::Database &database)
{
    sqlite::Statement statement =
        database.prepare("SELECT value FROM ObjectStoreMetadata WHERE key = 'storeIdentifier'");
    return statement.step() ? statement.text(0) : QString();
}

} // namespace storefile
