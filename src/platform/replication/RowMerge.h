#pragma once

#include "objectstore/ChangeJournal.h"
#include "objectstore/ManagedObjectModel.h"
#include "replication/RowLedger.h"

#include <array>
#include <span>

namespace replication {

/// Brings what other replicas say of rows into a store, inside of one open transaction.
///
/// Each column belongs to who wrote it last. A deletion counts against what its device knew of: an edit that
/// it did not know of keeps the row, and with the row all that went because of it. A pair stands while both
/// its ends do, and a reference to a row that is not there waits for it. What comes out depends on what is
/// known, not on the order in which it became known.
class RowMerge
{
public:
    RowMerge(sqlite::Database &connection, const ManagedObjectModel &objectModel, RowNumbering numbering);

    /// Takes in one delta. Rows and references are settled by `finish`. What loses against a later value goes
    /// into the history of the record, each value by itself.
    bool merge(const RowDelta &delta) { return merge(delta, {}, {}); }
    /// The same for a delta of one save. A value that came with another one before is a loser, too, if this
    /// save has not seen it.
    bool merge(const RowDelta &delta, const Dot &save, const VersionVector &seen);
    /// What this device wrote last is a loser, too, when another value takes its place. For a transaction of
    /// which the history keeps nothing by itself.
    void keepValuesOf(const DeviceId &device) { keptDevice = device; }
    /// Looks at a row again: whether it is to stand in its table, and what it names.
    void settleLater(const RowKey &key) { unsettled.insert(key); }
    /// Settles everything and writes the books; gives the rows of entities that changed.
    Result<std::vector<AppliedChange>> finish();

private:
    struct Loser
    {
        RowKey key;
        QByteArray column;
        RawValue value;
    };
    struct Brought
    {
        Dot save;
        RawValue value;
    };
    /// A to-one relationship, seen from the table that holds it.
    struct Reference
    {
        const EntityDescription *entity;
        const RelationshipDescription *relationship;
        QByteArray column;
        bool isOwner;
    };

    const EntityDescription *entityOf(const RowKey &key) const;
    bool isPair(const RowKey &key) const;
    bool isInTable(const RowKey &key);
    std::array<RowKey, 2> endsOf(const RowKey &pair) const;
    const std::vector<Reference> &referencesTo(const EntityDescription &target);
    const Reference *referenceIn(const RowKey &key, const QByteArray &column);
    bool isOwned(const EntityDescription &entity);
    RawValue logicalValue(const RowKey &key, const QByteArray &column);
    std::vector<RowKey> ownersOf(const RowKey &key);

    bool isAlive(const RowKey &key);
    bool goesWith(const RowKey &key, const RowKey &owner);

    bool takeValues(const RowDelta &delta, const std::vector<QByteArray> &columns);
    bool setColumn(const RowKey &key, const QByteArray &column, const RawValue &value);
    bool settle(const RowKey &key);
    bool show(const RowKey &key);
    bool hide(const RowKey &key);
    bool showPair(const RowKey &key);
    bool hidePair(const RowKey &key);
    bool settleReferences(const RowKey &key);
    void settleDependentsLater(const RowKey &key);
    bool noteForSubstrings();
    void noteReplaced(const RowDelta &delta);
    void noteLosers(const RowDelta &delta, const std::vector<QByteArray> &winners, const Dot &save,
                    const VersionVector &seen);
    bool keepLosers();
    bool keepTogether(std::span<const Loser> some);

    void note(const RowKey &key, AppliedChange::Kind kind, ManagedObject::ColumnSet columns = {},
              RowId row = 0);
    void noteColumn(const RowKey &key, const QByteArray &column);
    void noteTarget(const RowKey &key, const QByteArray &column, const RawValue &value);
    void notePair(const RowKey &key);

    sqlite::Database &database;
    const ManagedObjectModel &model;
    RowNumbering nextRow;
    RowLedger ledger;
    std::set<RowKey> unsettled;
    std::map<RowKey, bool> inTable;
    std::map<const EntityDescription *, std::vector<Reference>> references;
    /// Empty for none.
    DeviceId keptDevice;
    std::vector<Loser> losers;
    /// The values that single saves have brought.
    std::map<std::pair<RowKey, QByteArray>, Brought> brought;
    std::vector<AppliedChange> applied;
};

} // namespace replication
