#pragma once

#include "objectstore/ManagedObjectContext.h"

#include <vector>

/// Writes changed objects of a context as rows into its open transaction.
class ChangeWriter
{
public:
    explicit ChangeWriter(ManagedObjectContext &changedContext)
        : context(changedContext)
    {}

    /// Writes inserted and changed rows first and then the deletions, with what those ask of other objects.
    /// The code of SQLite; after an error what was written so far is worthless.
    int write();
    /// A number for a new row that this context never used: the wanted one, if it is free.
    RowId nextRow(const EntityDescription &entity, RowId wanted = 0);

private:
    bool writeAll();
    bool run(sqlite::Statement &statement);
    bool writeObject(ManagedObject &object);
    bool insertRow(ManagedObject &object);
    bool updateRow(ManagedObject &object);
    bool writeJoins(ManagedObject &object);
    void applyDeleteRules(const ManagedObject &object);
    void releaseHolders(const ManagedObject &object, const RelationshipDescription &relationship);
    bool deleteRow(const ManagedObject &object);
    const QByteArray &insertSql(const EntityDescription &entity);
    static QByteArray updateSql(const EntityDescription &entity, const ManagedObject::ColumnSet &columns);

    ManagedObjectContext &context;
    int code = sqlite::success;
};
