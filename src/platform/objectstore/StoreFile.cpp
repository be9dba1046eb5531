#include "objectstore/StoreFile.h"
#include "foundation/TextFolding.h"
#include "objectstore/RowsFromElsewhere.h"
#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <sqlite3.h>

#include <unistd.h>

namespace storefile {

namespace {

Error refusal(const QString &path, const QString &reason, int code = 0)
{
    return {QStringLiteral("store"), code, QStringLiteral("Cannot open the store %1: %2").arg(path, reason)};
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

/// What stands before a name to say in which attached database it is; empty for the store itself.
QByteArray prefixOf(const QByteArray &schema)
{
    return schema.isEmpty() ? schema : schema + '.';
}

QByteArray createTable(const EntityDescription &entity, const QByteArray &schema = {})
{
    QByteArray sql =
        "CREATE TABLE " + prefixOf(schema) + quoted(entity.name()) + " (\"id\" TEXT PRIMARY KEY NOT NULL";
    for (int column = 0; column < entity.columnCount(); ++column)
        sql += ", " + columnDefinition(entity, column);
    return sql + ");";
}

QByteArray joinTableName(const EntityDescription &entity, const RelationshipDescription &relationship)
{
    return entity.table() + '_' +
           QByteArray(relationship.name.data(), static_cast<qsizetype>(relationship.name.size()));
}

QByteArray createJoinTable(const EntityDescription &entity, const RelationshipDescription &relationship,
                           const QByteArray &schema = {})
{
    const QByteArray table = joinTableName(entity, relationship);
    const QByteArray reference = "(\"id\") ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED";
    const QByteArray prefix = prefixOf(schema);
    return "CREATE TABLE IF NOT EXISTS " + prefix + quoted(table) + " (source TEXT NOT NULL REFERENCES " +
           quoted(entity.name()) + reference + ", target TEXT NOT NULL REFERENCES " +
           quoted(relationship.destination) + reference + ", PRIMARY KEY (source, target)) WITHOUT ROWID;" +
           "CREATE INDEX IF NOT EXISTS " + prefix + quoted(table + "_target") + " ON " + quoted(table) +
           " (target);";
}

/// A table of pairs that was made by hand may lack the key, without which a pair could stand there twice and
/// undo would not see it.
QByteArray missingJoinTable(sqlite::Database &database, const EntityDescription &entity,
                            const RelationshipDescription &relationship)
{
    const QByteArray name = joinTableName(entity, relationship);
    const QByteArray count = "SELECT COUNT(*) FROM pragma_table_info('" + name + "')";
    if (database.queryInteger(count) == 0 || database.queryInteger(count + " WHERE pk > 0") == 2)
        return createJoinTable(entity, relationship);
    const QByteArray former = '"' + name + "_former\"";
    return "ALTER TABLE \"" + name + "\" RENAME TO " + former + ';' + createJoinTable(entity, relationship) +
           "INSERT OR IGNORE INTO \"" + name + "\" SELECT source, target FROM " + former +
           " WHERE source IN (SELECT id FROM " + quoted(entity.name()) + ") AND target IN (SELECT id FROM " +
           quoted(relationship.destination) + "); DROP TABLE " + former + ';';
}

QByteArray createIndex(const EntityDescription &entity, const IndexDescription &index,
                       const QByteArray &schema = {})
{
    QByteArray sql = "CREATE INDEX " + prefixOf(schema) + quoted(index.name) + " ON " +
                     quoted(entity.name()) + " (" + bytes(index.columns) + ')';
    if (!index.where.empty())
        sql += " WHERE " + bytes(index.where);
    return sql;
}

/// Makes the indexes that are missing or that a former version defined otherwise.
QByteArray missingIndexes(sqlite::Database &database, const EntityDescription &entity)
{
    QByteArray sql;
    for (const IndexDescription &index : entity.indexes()) {
        const QByteArray name = quoted(index.name);
        const QByteArray wanted = createIndex(entity, index);
        sqlite::Statement present =
            database.prepare("SELECT sql FROM sqlite_master WHERE type = 'index' AND name = ?");
        present.bind(QString::fromUtf8(bytes(index.name)));
        if (!present.step() || present.text(0).toUtf8() != wanted)
            sql += "DROP INDEX IF EXISTS " + name + ';' + wanted + ';';
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
        const bool isPresent = std::any_of(present.begin(), present.end(), [&bytes](const QByteArray &one) {
            return one.compare(bytes, Qt::CaseInsensitive) == 0;
        });
        if (!isPresent)
            sql += "ALTER TABLE " + quoted(entity.name()) + " ADD COLUMN " +
                   columnDefinition(entity, column) + ';';
    }
    return sql;
}

QByteArray bookkeepingTables()
{
    return "CREATE TABLE IF NOT EXISTS ObjectStoreMetadata (key TEXT PRIMARY KEY NOT NULL, value TEXT) "
           "WITHOUT ROWID;"
           "CREATE TABLE IF NOT EXISTS ObjectStoreJournal (sequence INTEGER PRIMARY KEY, savedAt REAL NOT "
           "NULL,"
           " isUndone INTEGER NOT NULL DEFAULT 0, changeset BLOB NOT NULL, name TEXT, outside BLOB, digest "
           "BLOB, author INTEGER NOT NULL DEFAULT 0, step INTEGER);"
           // The saves that no undo takes back.
           "CREATE TABLE IF NOT EXISTS ObjectStoreHistory (sequence INTEGER PRIMARY KEY, savedAt REAL NOT "
           "NULL, author INTEGER NOT NULL, name TEXT, isUndone INTEGER NOT NULL DEFAULT 0, changeset BLOB "
           "NOT "
           "NULL);"
           "CREATE INDEX IF NOT EXISTS ObjectStoreJournal_undone ON ObjectStoreJournal (sequence) WHERE "
           "isUndone = 1;"
           "CREATE TABLE IF NOT EXISTS ObjectStoreOutbox (sequence INTEGER PRIMARY KEY AUTOINCREMENT,"
           " grouping INTEGER NOT NULL, place TEXT NOT NULL, key TEXT NOT NULL, before BLOB, after BLOB,"
           " yields INTEGER NOT NULL DEFAULT 0);"
           // The indexes are a part of each commit now.
           "DROP TABLE IF EXISTS ObjectStoreFollowUp;";
}

/// What a journal of a former version lacks.
QByteArray missingColumnsOfJournal(sqlite::Database &database)
{
    const QByteArray count = "SELECT COUNT(*) FROM pragma_table_info('ObjectStoreJournal')";
    const bool isThere = database.queryInteger(count) > 0;
    QByteArray sql;
    for (const auto &[name, type] : {std::pair("name", "TEXT"),
                                     {"outside", "BLOB"},
                                     {"digest", "BLOB"},
                                     {"author", "INTEGER NOT NULL DEFAULT 0"},
                                     {"step", "INTEGER"}}) {
        if (isThere && database.queryInteger(count + " WHERE name = '" + name + '\'') == 0)
            sql += QByteArray("ALTER TABLE ObjectStoreJournal ADD COLUMN ") + name + ' ' + type + ';';
    }
    return sql;
}

/// A number of the database header, which is big-endian.
quint32 headerNumber(const QByteArray &header, int offset)
{
    quint32 number = 0;
    for (int place = 0; place < 4; ++place)
        number = number << 8 | static_cast<quint8>(header.at(offset + place));
    return number;
}

const QString tooShort = QStringLiteral("the file is shorter than it should be");

bool hasLog(const QString &path)
{
    const QFileInfo log(path + QStringLiteral("-wal"));
    return log.exists() && log.size() > 0;
}

/// Whether the header counts more pages than the file has. The count is good only if it was written with the
/// last change.
bool lacksPages(const QByteArray &header, qint64 fileSize)
{
    const quint32 storedSize = headerNumber(header, 16) >> 16;
    const qint64 pageSize = storedSize == 1 ? 65536 : storedSize;
    const bool isCountValid = headerNumber(header, 24) == headerNumber(header, 92);
    return isCountValid && fileSize < pageSize * qint64(headerNumber(header, 28));
}

bool lacksPages(const QString &path)
{
    QFile file(path);
    const QByteArray header = file.open(QIODevice::ReadOnly) ? file.read(100) : QByteArray();
    return header.size() == 100 && lacksPages(header, file.size());
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
    // SQLite would take an empty file with a log for a new store, and throw the log away.
    if (header.isEmpty())
        return hasLog(path) ? std::optional(tooShort) : std::nullopt;
    if (header.size() < 100 || !header.startsWith("SQLite format 3"))
        return QStringLiteral("the file is not a database");
    // With a log, later pages can stand there.
    return !hasLog(path) && lacksPages(header, file.size()) ? std::optional(tooShort) : std::nullopt;
}

bool hasTableOf(sqlite::Database &database, const ManagedObjectModel &model)
{
    return std::any_of(
        model.entities().begin(), model.entities().end(),
        [&database](const EntityDescription &one) { return !existingColumns(database, one).empty(); });
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
    const qint64 owner = database.queryInteger("PRAGMA application_id");
    const bool isOurs =
        owner == applicationId || (owner == 0 && (isEmptyDatabase(database) || hasTableOf(database, model)));
    if (!isOurs)
        return QStringLiteral("it belongs to another program");
    const qint64 version = database.queryInteger("PRAGMA user_version");
    if (version > model.version())
        return QStringLiteral("it was written by a newer version of the program (%1, this one knows %2)")
            .arg(version)
            .arg(model.version());
    return std::nullopt;
}

/// Whether pages beyond the end of the file, which should stand in the log, are missing there.
bool isCutShort(sqlite::Database &database, const QString &path)
{
    const qint64 wanted =
        database.queryInteger("PRAGMA page_count") * database.queryInteger("PRAGMA page_size");
    if (QFileInfo(path).size() >= wanted)
        return false;
    sqlite::Statement check = database.prepare("PRAGMA quick_check(1)");
    return !check.step() || check.text(0) != QLatin1String("ok");
}

Error failure(const sqlite::Database &database, const QString &path)
{
    return refusal(path, database.lastMessage(), database.lastCode());
}

OptionalError migrate(sqlite::Database &database, const ManagedObjectModel &model, const QString &path)
{
    if (database.execute("BEGIN IMMEDIATE"))
        return failure(database, path);
    // Another process may have been faster.
    if (auto problem = problemOfContent(database, model))
        return refusal(path, *problem);
    QByteArray sql = missingColumnsOfJournal(database) + bookkeepingTables();
    for (const EntityDescription &entity : model.entities())
        sql += missingParts(database, entity);
    for (const EntityDescription &entity : model.entities()) {
        for (const RelationshipDescription &relationship : entity.relationships()) {
            if (relationship.cardinality == Cardinality::ToManyOwningJoin)
                sql += missingJoinTable(database, entity, relationship);
        }
        sql += missingIndexes(database, entity);
        if (const auto index = SubstringIndex::of(entity))
            sql += index->create(database);
    }
    sql += rowsfromelsewhere::create(database, model);
    sql += "INSERT OR IGNORE INTO ObjectStoreMetadata VALUES ('storeIdentifier', '" +
           QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + "');";
    sql += "PRAGMA application_id = " + QByteArray::number(applicationId) + ';';
    sql += "PRAGMA user_version = " + QByteArray::number(model.version()) + ";COMMIT;";
    if (!database.execute(sql))
        return std::nullopt;
    const Error error = failure(database, path);
    if (!database.isAutocommit())
        database.rollBack();
    return error;
}

/// On what the substring indexes rest: how texts are folded, and the numbers of rows, which a vacuum by other
/// hands can change (it changes the schema's version, too).
QString basisOfSubstringIndexes(sqlite::Database &database)
{
    return textFoldingVersion() + u'/' + QString::number(database.queryInteger("PRAGMA schema_version"));
}

OptionalError checkSubstringIndexes(sqlite::Database &database, const ManagedObjectModel &model,
                                    const QString &path)
{
    const QString basis = basisOfSubstringIndexes(database);
    sqlite::Statement known =
        database.prepare("SELECT value FROM ObjectStoreMetadata WHERE key = 'substringIndexes'");
    if (known.step() && known.text(0) == basis)
        return std::nullopt;
    known.reset();
    QByteArray sql = "BEGIN IMMEDIATE;";
    for (const EntityDescription &entity : model.entities()) {
        if (const auto index = SubstringIndex::of(entity))
            sql += index->startAnew();
    }
    sql += "INSERT OR REPLACE INTO ObjectStoreMetadata VALUES ('substringIndexes', '" + basis.toUtf8() +
           "');COMMIT;";
    if (!database.execute(sql))
        return std::nullopt;
    const Error error = failure(database, path);
    if (!database.isAutocommit())
        database.rollBack();
    return error;
}

OptionalError configure(sqlite::Database &database)
{
    // They are there for other programs; what is written here needs no second note, and costs less without.
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    return database.execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON;"
                            "PRAGMA temp_store = MEMORY; PRAGMA cache_size = -6144;");
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
        return refusal(path, opened.error().message, opened.error().code);
    sqlite::Database &database = **opened;
    // A refused file stays as it is: its log is not written into it at the end.
    const bool isLogKept = hasLog(path);
    if (isLogKept)
        database.setCheckpointAtEnd(false);
    // The first read shows whether the file is sound and free.
    if (database.execute("SELECT COUNT(*) FROM sqlite_master")) {
        const Error error = failure(database, path);
        const bool isCorrupt = (error.code & 0xff) == SQLITE_CORRUPT;
        return isCorrupt && isLogKept && lacksPages(path) ? refusal(path, tooShort) : error;
    }
    if (isLogKept && isCutShort(database, path))
        return refusal(path, tooShort);
    if (auto problem = problemOfContent(database, model))
        return refusal(path, *problem);
    if (configure(database))
        return failure(database, path);
    if (database.queryInteger("PRAGMA user_version") < model.version() ||
        database.queryInteger("PRAGMA application_id") == 0 || !missingColumnsOfJournal(database).isEmpty()) {
        if (auto error = migrate(database, model, path))
            return *error;
    }
    if (auto error = checkSubstringIndexes(database, model, path))
        return *error;
    database.setCheckpointAtEnd(true);
    return opened;
}

QByteArray tablesOf(const EntityDescription &entity, const QByteArray &schema)
{
    QByteArray sql = createTable(entity, schema);
    for (const RelationshipDescription &one : entity.relationships()) {
        if (one.cardinality == Cardinality::ToManyOwningJoin)
            sql += createJoinTable(entity, one, schema);
    }
    return sql;
}

QByteArray indexesOf(const EntityDescription &entity, const QByteArray &schema)
{
    QByteArray sql;
    for (const IndexDescription &index : entity.indexes())
        sql += createIndex(entity, index, schema) + ';';
    return sql;
}

QString storeIdentifier(sqlite::Database &database)
{
    sqlite::Statement statement =
        database.prepare("SELECT value FROM ObjectStoreMetadata WHERE key = 'storeIdentifier'");
    return statement.step() ? statement.text(0) : QString();
}

} // namespace storefile
