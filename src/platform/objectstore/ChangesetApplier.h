#pragma once

#include "objectstore/ChangeJournal.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

/// Applies a changeset field by field: a field is set only where it still holds what the changeset expects, so that what
/// another hand changed since stays.
class ChangesetApplier
{
public:
    ChangesetApplier(sqlite::Database &connection, const ManagedObjectModel &model)
        : database(connection), objectModel(model)
    {
    }

    /// Applies all of it, inverted on request; gives the rows of entities that changed. The caller holds the transaction.
    Result<std::vector<AppliedChange>> apply(const QByteArray &changeset, bool isInverted);

private:
    /// One change as the iterator stands on it.
    struct Operation
    {
        QByteArray table;
        int columnCount = 0;
        int kind = 0;
        sqlite3_changeset_iter *iterator = nullptr;
    };
    bool applyOperation(const Operation &operation);
    bool applyInsert(const Operation &operation);
    bool applyUpdate(const Operation &operation);
    bool applyDelete(const Operation &operation);
    bool clearDanglingReferences();
    bool clearDanglingPairs();
    bool writeFollowUps();
    void note(const Operation &operation, bool hasNewKey, AppliedChange::Kind kind);
    const std::vector<QByteArray> &columnsOf(const QByteArray &table);

    sqlite::Database &database;
    const ManagedObjectModel &objectModel;
    std::unordered_map<std::string, std::vector<QByteArray>> tableColumns;
    std::unordered_set<std::string> touchedTables;
    std::vector<AppliedChange> applied;
};
