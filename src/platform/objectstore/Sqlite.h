#pragma once

#include "foundation/Error.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Value.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;
struct sqlite3_value;

namespace sqlite {

/// The codes of SQLite that callers tell apart.
constexpr int success = 0;
constexpr int missingReference = 787; // SQLITE_CONSTRAINT_FOREIGNKEY

/// A failure by its code, introduced by what was being done.
Error error(int code, const QString &attempt);

/// A prepared statement on loan from its database's cache; it goes back, reset, when this object ends.
class Statement
{
public:
    Statement() = default;
    Statement(Statement &&other) noexcept;
    Statement &operator=(Statement &&) = delete;
    ~Statement();

    /// False if the SQL could not be prepared; then every step fails.
    bool isValid() const { return handle != nullptr; }
    Statement &bind(const Value &value);
    Statement &bind(const std::vector<Value> &values);
    Statement &bind(const QString &text) { return bind(Value(text)); }
    Statement &bind(qint64 number) { return bind(Value(number)); }
    Statement &bindBlob(const QByteArray &blob);
    /// Absent is NULL.
    Statement &bindBlob(const std::optional<QByteArray> &blob);
    /// A value as SQLite itself passes it on; null counts as NULL.
    Statement &bindRaw(const sqlite3_value *value);
    /// Starts over with nothing bound.
    void reset();

    /// True with a row; false at the end or on an error, which `code` tells apart.
    bool step();
    /// Runs to the end. False on an error.
    bool run();
    /// SQLITE_DONE or SQLITE_ROW after success, else the error.
    int code() const { return lastCode; }

    bool isNull(int column) const;
    qint64 integer(int column) const;
    double number(int column) const;
    /// A null text for an absent one.
    QString text(int column) const;
    /// The same as bytes, good until the next step; without data for an absent text.
    std::string_view utf8(int column) const;
    QByteArray blob(int column) const;
    /// The value as SQLite holds it, good until the next step.
    sqlite3_value *raw(int column) const;
    /// The value of a column that is declared with a type. A value that does not fit the type is absent.
    Value value(int column, AttributeType type) const;

private:
    friend class Database;
    Statement(sqlite3_stmt *statement, bool *isOnLoan)
        : handle(statement)
        , onLoan(isOnLoan)
    {}

    sqlite3_stmt *handle = nullptr;
    bool *onLoan = nullptr;
    int bound = 0;
    int lastCode = 0;
};

/// Hears, on the thread that waits, for how long a connection has been waiting for another process that holds
/// its file; again and again, until it is given up after two seconds. It must not use the database. An empty
/// one hears nothing. Main thread only.
void setWaitListener(std::function<void(std::chrono::milliseconds)> listener);

/// One connection to a database file, with a cache of prepared statements.
class Database
{
public:
    enum class Mode { ReadWriteCreate, ReadWrite };
    static Result<std::unique_ptr<Database>> open(const QString &path, Mode mode);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    Statement prepare(const QByteArray &sql);
    /// Runs one or more statements without results.
    OptionalError execute(const QByteArray &sql);
    /// Ends the open transaction without a trace; one that cannot be ended so has ended by itself.
    void rollBack() { execute("ROLLBACK").ignore(); }
    /// The first column of the first row, or 0.
    qint64 queryInteger(const QByteArray &sql);

    /// What the last call that failed on this connection has to say, introduced by what was being done.
    Error lastError(const QString &attempt) const;
    int lastCode() const;
    QString lastMessage() const;
    /// Rows changed by the last INSERT, UPDATE or DELETE.
    int changes() const;
    /// Whether no transaction is open.
    bool isAutocommit() const;
    bool isReadOnly() const;
    /// Whether the log is written into the file when the connection ends, which is so until it is switched
    /// off.
    void setCheckpointAtEnd(bool isOn);
    sqlite3 *handle() const { return connection; }

private:
    struct Cached
    {
        sqlite3_stmt *statement;
        bool isOnLoan;
    };
    explicit Database(sqlite3 *opened)
        : connection(opened)
    {}
    void trimCache();

    sqlite3 *connection;
    std::unordered_map<std::string, std::unique_ptr<Cached>> cache;
    /// Since when it waits for another process, while it does.
    std::chrono::steady_clock::time_point waitingSince;
};

/// While it lives, more of the file may be in memory and more of it in the log: for work that changes so many
/// pages that they would be written several times.
class RoomyCache
{
public:
    explicit RoomyCache(Database &database);
    ~RoomyCache();
    Q_DISABLE_COPY_MOVE(RoomyCache)

private:
    Database &roomy;
    /// Pages, or kibibytes if negative.
    qint64 formerSize;
    /// Pages in the log from which on they are moved to their place in the file.
    qint64 formerLog;
};

} // namespace sqlite
