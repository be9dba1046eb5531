#pragma once

#include "objectstore/ChangeJournal.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

/// Applies a changeset field by field: a field is set only where it still holds what the changeset expects,
/// so that what another hand changed since stays.
class ChangesetApplier
{
public:
    ChangesetApplier(sqlite::Database &connection, const ManagedObjectModel &model, RowNumbering numbering)
        : database(connection)
        , objectModel(model)
        , nextRow(std::move(numbering))
    {}

    /// Applies all of it, inverted on request; gives the rows of entities that changed. The caller holds the
    /// transaction, and takes it back after an error: a damaged changeset may be found out halfway.
    Result<std::vector<AppliedChange>> apply(const QByteArray &changeset, bool isInverted);

private:
    /// One change as the iterator stands on it.
    struct Operation
    {
        QByteArray table;
        int columnCount = 0;
        int kind = 0;
        /// The table has rows of this entity, or pairs that it owns.
        const EntityDescription *entity = nullptr;
        bool isPair = false;
        sqlite3_changeset_iter *iterator = nullptr;
    };
    /// A row that goes when all other changes are made.
    struct Deletion
    {
        QByteArray table;
        bool isPair;
        QString key;
        QString target;
    };
    /// Whether it is about columns that the table has, and says which row it means.
    bool isSound(const Operation &operation);
    bool applyOperation(const Operation &operation);
    bool noteForSubstrings(const Operation &operation);
    bool applyInsert(const Operation &operation);
    bool applyUpdate(const Operation &operation);
    bool applyDelete(const Operation &operation);
    bool deleteMarked();
    bool clearDanglingReferences();
    bool clearDanglingPairs();
    void note(const Operation &operation, AppliedChange::Kind kind, ManagedObject::ColumnSet columns = {},
              RowId row = 0);
    void noteTargets(const Operation &operation);
    const RelationshipDescription *pairOf(const Operation &operation, const QByteArray &column) const;
    int keyColumn(const Operation &operation);
    const std::vector<QByteArray> &columnsOf(const QByteArray &table);

    sqlite::Database &database;
    const ManagedObjectModel &objectModel;
    RowNumbering nextRow;
    std::unordered_map<std::string, std::vector<QByteArray>> tableColumns;
    std::unordered_set<std::string> touchedTables;
    std::vector<Deletion> deletions;
    std::vector<AppliedChange> applied;
};
