#pragma once

#include "objectstore/Sqlite.h"
#include "replication/RowDelta.h"

namespace replication {

/// The books on the rows of a store, in the store itself: the state of each row, and the values that do not
/// stand in its table. Those are all values of a row that is not there, and the names of rows that are not
/// there in rows that are.
///
/// A row is read when it is first asked for; `write` writes those that have changed.
class RowLedger
{
public:
    struct Row
    {
        RowState state;
        std::map<QByteArray, RawValue> parked;
        /// It has no state in the store yet.
        bool isNew = false;
        bool isStateChanged = false;
        bool isParkedChanged = false;
    };

    explicit RowLedger(sqlite::Database &connection)
        : database(connection)
    {}

    /// Makes the tables that are missing.
    static OptionalError createTables(sqlite::Database &database);
    /// Gives every row of a table that has no state yet one, as made by a save.
    static OptionalError addMissing(sqlite::Database &database, const QByteArray &table, const QByteArray &id,
                                    const Stamp &stamp, const Dot &dot);

    Row &row(const RowKey &key);
    /// Joins what is known of a row with what a delta says of it; gives the columns whose value in the delta
    /// counts. The values themselves are the caller's.
    std::vector<QByteArray> join(const RowDelta &delta);
    void park(const RowKey &key, const QByteArray &column, const RawValue &value);
    void unpark(const RowKey &key, const QByteArray &column);
    void unparkAll(const RowKey &key);
    /// Writes the values of one row that do not stand in its table, so that `rowsNaming` finds them.
    bool writeParked(const RowKey &key);
    bool write();

    /// The rows, and the columns, in which a text waits that may name a row.
    std::vector<std::pair<RowKey, QByteArray>> placesOf(const QString &id);

private:
    bool writeState(const RowKey &key, const Row &row);
    sqlite::Database &database;
    std::map<RowKey, Row> rows;
};

} // namespace replication
