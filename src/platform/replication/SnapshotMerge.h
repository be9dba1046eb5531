#pragma once

#include "replication/RowMerge.h"

namespace replication {

/// Brings a whole store, which is attached to the connection as `arriving`, into this one, inside of one open
/// transaction. Rows that only it knows come over table by table; of rows that both know, each column belongs
/// to who wrote it last, as ever. What is only here stays.
///
/// What this device wrote last and loses goes into the history of its record, as does what comes and loses.
///
/// A table of which nothing is known here, such as the tasks of a new device, comes over as it is, with its
/// indexes: SQLite then copies the entries in their order and makes none anew.
///
/// While it runs, foreign keys must not be enforced. What comes over without its target waits for it.
class SnapshotMerge
{
public:
    /// \param own this device.
    SnapshotMerge(sqlite::Database &connection, const ManagedObjectModel &objectModel, RowNumbering numbering,
                  const DeviceId &own);

    /// Gives the rows that changed and were here before; those that are new are too many to tell.
    Result<std::vector<AppliedChange>> run();
    /// Rows that were here only; among the new ones can be doubles of theirs.
    const std::vector<RowKey> &ownRows() const { return onlyHere; }

private:
    bool findKnown();
    bool bringNewRows();
    bool takeOffIndexes();
    bool putOnIndexes();
    bool comesWhole(const QByteArray &table);
    bool bringTable(const QByteArray &table, const QByteArray &key);
    bool bringBooks();
    bool bringWholeBook(const QByteArray &book);
    bool bringBook(const QByteArray &book, const QByteArray &columns);
    bool setAsideDangling();
    bool mergeKnown();
    bool mergeRow(const RowKey &key);
    bool collect(const QByteArray &sql, std::vector<RowKey> &into);

    sqlite::Database &database;
    const ManagedObjectModel &model;
    RowMerge merge;
    /// Rows that both know, with another state.
    std::vector<RowKey> differing;
    std::vector<RowKey> onlyHere;
    /// What makes the indexes again that were taken off.
    QByteArray indexes;
    /// Whether a table comes whole, as far as it was asked.
    std::map<QByteArray, bool> whole;
    /// Rows whose place is to be looked at once all have come.
    std::vector<RowKey> open;
};

} // namespace replication
