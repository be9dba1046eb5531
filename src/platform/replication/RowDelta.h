#pragma once

#include "replication/Stamp.h"

#include <QString>

#include <memory>
#include <vector>

struct sqlite3_value;
class EntityDescription;
class ManagedObjectModel;

namespace replication {

/// A value as SQLite holds it; null for one that could not be copied.
using RawValue = std::shared_ptr<sqlite3_value>;
/// A copy that outlives the statement or changeset that it comes from.
RawValue copied(const sqlite3_value *value);
bool isNull(const RawValue &value);
bool isSame(const RawValue &one, const RawValue &other);
/// The text in it; a null text for anything else.
QString textIn(const RawValue &value);

/// A row of an entity, or a pair of a many-to-many relationship, whose identifier is then "source/target".
struct RowKey
{
    QByteArray table;
    QString id;
    auto operator<=>(const RowKey &other) const
    {
        const auto byTable = table.compare(other.table) <=> 0;
        return byTable != 0 ? byTable : id.compare(other.id) <=> 0;
    }
    bool operator==(const RowKey &other) const = default;
};

/// What is known of a row beside its values: all of it grows only, so that it comes out the same in whatever
/// order it becomes known.
struct RowState
{
    /// The saves that made or changed the row.
    VersionVector events;
    /// What was known to those who deleted it. A save beyond that keeps the row, or brings it back.
    VersionVector buried;
    Dots deletions;
    /// When all values of the row were last written at once; empty for never.
    Stamp base;
    /// Columns that were written later.
    std::map<QByteArray, Stamp> cells;

    Stamp stampOf(const QByteArray &column) const;
    /// Whether a save is known that no deletion knew of.
    bool isAlive() const { return !buried.covers(events); }
};

/// What one save, or a whole store, has to say of a row.
struct RowDelta
{
    struct Cell
    {
        Stamp stamp;
        RawValue value;
    };

    RowKey key;
    VersionVector events = {};
    VersionVector buried = {};
    Dots deletions = {};
    Stamp base = {};
    std::map<QByteArray, Cell> cells = {};
    /// What a deleted row had in all columns, and a changed one in the changed ones.
    std::map<QByteArray, RawValue> formerValues = {};
    /// References that were emptied only because the row that they named was deleted in the same save, with
    /// the name. They are no change: the name counts again if that row comes back.
    std::map<QByteArray, RawValue> lostReferences = {};
};

/// The columns of the tables in a changeset, in their order.
using TableColumns = std::map<QByteArray, std::vector<QByteArray>>;

/// What a changeset of SQLite's session extension says, as one save of a device. Tables and columns that the
/// model does not have are left out. False if it is damaged.
bool readChangeset(const QByteArray &changeset, const TableColumns &columns, const ManagedObjectModel &model,
                   const Stamp &stamp, const Dot &dot, const VersionVector &seen,
                   std::vector<RowDelta> &deltas);

} // namespace replication
