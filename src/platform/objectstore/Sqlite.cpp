#include "objectstore/Sqlite.h"

#include "foundation/PrivateFiles.h"
#include "objectstore/SqlFunctions.h"

#include <sqlite3.h>

#include <cmath>
#include <thread>

namespace sqlite {

namespace {

constexpr size_t maximumCachedStatements = 256;
/// In bytes of its text.
constexpr qsizetype longestCachedStatement = 4096;
/// How long to wait for another process that holds the file, and between two tries.
constexpr std::chrono::milliseconds busyTimeout{2000};
constexpr std::chrono::milliseconds busyStep{10};

std::function<void(std::chrono::milliseconds)> &waitListener()
{
    static std::function<void(std::chrono::milliseconds)> listener;
    return listener;
}

int waitForOther(void *beginning, int tries)
{
    auto &begin = *static_cast<std::chrono::steady_clock::time_point *>(beginning);
    const auto now = std::chrono::steady_clock::now();
    if (tries == 0)
        begin = now;
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(now - begin);
    if (waited >= busyTimeout)
        return 0;
    if (waitListener())
        waitListener()(waited);
    std::this_thread::sleep_for(busyStep);
    return 1;
}

} // namespace

static_assert(missingReference == SQLITE_CONSTRAINT_FOREIGNKEY);

void setWaitListener(std::function<void(std::chrono::milliseconds)> listener)
{
    waitListener() = std::move(listener);
}

Error error(int code, const QString &attempt)
{
    return {QStringLiteral("sqlite"), code,
            QStringLiteral("%1: %2").arg(attempt, QString::fromUtf8(sqlite3_errstr(code)))};
}

Statement::Statement(Statement &&other) noexcept
    : handle(std::exchange(other.handle, nullptr))
    , onLoan(std::exchange(other.onLoan, nullptr))
    , bound(other.bound)
    , lastCode(other.lastCode)
{}

Statement::~Statement()
{
    if (!handle)
        return;
    if (onLoan) {
        sqlite3_reset(handle);
        sqlite3_clear_bindings(handle);
        *onLoan = false;
    } else {
        sqlite3_finalize(handle);
    }
}

void Statement::reset()
{
    bound = 0;
    if (!handle)
        return;
    sqlite3_reset(handle);
    sqlite3_clear_bindings(handle);
}

Statement &Statement::bind(const Value &value)
{
    ++bound;
    if (const auto *integer = std::get_if<qint64>(&value)) {
        sqlite3_bind_int64(handle, bound, *integer);
    } else if (const auto *number = std::get_if<double>(&value)) {
        sqlite3_bind_double(handle, bound, *number);
    } else if (const auto *boolean = std::get_if<bool>(&value)) {
        sqlite3_bind_int(handle, bound, *boolean ? 1 : 0);
    } else if (const auto *date = std::get_if<Date>(&value)) {
        sqlite3_bind_double(handle, bound, date->referenceSeconds());
    } else if (const auto *text = std::get_if<QString>(&value)) {
        const QByteArray utf8 = text->toUtf8();
        sqlite3_bind_text64(handle, bound, utf8.constData(), static_cast<sqlite3_uint64>(utf8.size()),
                            SQLITE_TRANSIENT, SQLITE_UTF8);
    } else {
        sqlite3_bind_null(handle, bound);
    }
    return *this;
}

Statement &Statement::bind(const std::vector<Value> &values)
{
    for (const Value &value : values)
        bind(value);
    return *this;
}

Statement &Statement::bindBlob(const QByteArray &blob)
{
    sqlite3_bind_blob64(handle, ++bound, blob.constData(), static_cast<sqlite3_uint64>(blob.size()),
                        SQLITE_TRANSIENT);
    return *this;
}

Statement &Statement::bindBlob(const std::optional<QByteArray> &blob)
{
    if (blob)
        return bindBlob(*blob);
    ++bound;
    return *this;
}

Statement &Statement::bindRaw(const sqlite3_value *value)
{
    ++bound;
    if (value)
        sqlite3_bind_value(handle, bound, value);
    return *this;
}

sqlite3_value *Statement::raw(int column) const
{
    return sqlite3_column_value(handle, column);
}

bool Statement::step()
{
    lastCode = handle ? sqlite3_step(handle) : SQLITE_MISUSE;
    return lastCode == SQLITE_ROW;
}

bool Statement::run()
{
    while (step()) {
    }
    return lastCode == SQLITE_DONE;
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(handle, column) == SQLITE_NULL;
}

qint64 Statement::integer(int column) const
{
    return sqlite3_column_int64(handle, column);
}

double Statement::number(int column) const
{
    return sqlite3_column_double(handle, column);
}

std::string_view Statement::utf8(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(handle, column));
    return bytes ? std::string_view(bytes, static_cast<size_t>(sqlite3_column_bytes(handle, column)))
                 : std::string_view();
}

QString Statement::text(int column) const
{
    const std::string_view bytes = utf8(column);
    return bytes.data() ? QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())) : QString();
}

QByteArray Statement::blob(int column) const
{
    const auto *bytes = static_cast<const char *>(sqlite3_column_blob(handle, column));
    return QByteArray(bytes, sqlite3_column_bytes(handle, column));
}

Value Statement::value(int column, AttributeType type) const
{
    const int stored = sqlite3_column_type(handle, column);
    if (stored == SQLITE_NULL || stored == SQLITE_BLOB)
        return {};
    if (type == AttributeType::String)
        return stored == SQLITE_TEXT ? Value(text(column)) : Value();
    if (stored != SQLITE_INTEGER && stored != SQLITE_FLOAT)
        return {};
    switch (type) {
    case AttributeType::Integer:
        return Value(integer(column));
    case AttributeType::Boolean:
        return Value(number(column) != 0);
    case AttributeType::Date:
        return Value(Date::fromReferenceSeconds(number(column)));
    default:
        return Value(number(column));
    }
}

/// SQLite gives the files beside a database the mode of the database.
static void keepFromOthers(const QString &path)
{
    PrivateFiles::makeFile(path);
    for (const char *ending : {"", "-wal", "-shm", "-journal"})
        PrivateFiles::narrow(path + QLatin1String(ending));
}

Result<std::unique_ptr<Database>> Database::open(const QString &path, Mode mode)
{
    if (mode == Mode::ReadWriteCreate)
        keepFromOthers(path);
    sqlite3 *connection = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                      (mode == Mode::ReadWriteCreate ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(path.toUtf8().constData(), &connection, flags, nullptr);
    std::unique_ptr<Database> database(new Database(connection));
    if (code != SQLITE_OK)
        return Error{QStringLiteral("sqlite"), code, QString::fromUtf8(sqlite3_errstr(code))};
    sqlite3_busy_handler(connection, waitForOther, &database->waitingSince);
    // A misspelt column is an error, and no text.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    registerSqlFunctions(connection);
    return database;
}

Database::~Database()
{
    for (auto &[sql, cached] : cache)
        sqlite3_finalize(cached->statement);
    sqlite3_close_v2(connection);
}

Statement Database::prepare(const QByteArray &sql)
{
    const std::string key = sql.toStdString();
    const auto found = cache.find(key);
    if (found != cache.end() && !found->second->isOnLoan) {
        found->second->isOnLoan = true;
        return Statement(found->second->statement, &found->second->isOnLoan);
    }
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v3(connection, sql.constData(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                       &statement, nullptr);
    // A long text names rows and hardly comes again; it would hold much memory.
    if (!statement || found != cache.end() || sql.size() > longestCachedStatement)
        return Statement(statement, nullptr);
    trimCache();
    auto &cached = cache[key];
    cached = std::make_unique<Cached>(Cached{statement, true});
    return Statement(statement, &cached->isOnLoan);
}

void Database::trimCache()
{
    if (cache.size() < maximumCachedStatements)
        return;
    for (auto one = cache.begin(); one != cache.end();) {
        if (one->second->isOnLoan) {
            ++one;
            continue;
        }
        sqlite3_finalize(one->second->statement);
        one = cache.erase(one);
    }
}

OptionalError Database::execute(const QByteArray &sql)
{
    if (sqlite3_exec(connection, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK)
        return std::nullopt;
    return lastError(QStringLiteral("Cannot run \"%1\"").arg(QString::fromUtf8(sql.left(120))));
}

qint64 Database::queryInteger(const QByteArray &sql)
{
    Statement statement = prepare(sql);
    return statement.step() ? statement.integer(0) : 0;
}

Error Database::lastError(const QString &attempt) const
{
    return {QStringLiteral("sqlite"), lastCode(), QStringLiteral("%1: %2").arg(attempt, lastMessage())};
}

QString Database::lastMessage() const
{
    return QString::fromUtf8(sqlite3_errmsg(connection));
}

int Database::lastCode() const
{
    return sqlite3_extended_errcode(connection);
}

int Database::changes() const
{
    return sqlite3_changes(connection);
}

bool Database::isAutocommit() const
{
    return sqlite3_get_autocommit(connection) != 0;
}

void Database::setCheckpointAtEnd(bool isOn)
{
    sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, isOn ? 0 : 1, nullptr);
}

bool Database::isReadOnly() const
{
    return sqlite3_db_readonly(connection, "main") == 1;
}

RoomyCache::RoomyCache(Database &database)
    : roomy(database)
    , formerSize(database.queryInteger("PRAGMA main.cache_size"))
    , formerLog(database.queryInteger("PRAGMA wal_autocheckpoint"))
{
    roomy.execute("PRAGMA main.cache_size = -65536; PRAGMA wal_autocheckpoint = 5000").ignore();
}

RoomyCache::~RoomyCache()
{
    roomy
        .execute("PRAGMA main.cache_size = " + QByteArray::number(formerSize) +
                 "; PRAGMA wal_autocheckpoint = " + QByteArray::number(formerLog) + "; PRAGMA shrink_memory")
        .ignore();
}

} // namespace sqlite
