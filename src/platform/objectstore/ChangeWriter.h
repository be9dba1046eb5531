#pragma once

#include "objectstore/ManagedObjectContext.h"

#include <vector>

/// Writes changed objects of a context as rows into its open transaction.
class ChangeWriter
{
public:
    explicit ChangeWriter(ManagedObjectContext &changedContext) : context(changedContext) {}

    /// Writes inserted and changed rows first and then the deletions, with what those ask of other objects.
    /// False on an error, which the database holds; what was written so far is then worthless.
    bool write();

private:
    bool writeObject(ManagedObject &object);
    bool insertRow(ManagedObject &object);
    bool updateRow(ManagedObject &object);
    bool writeJoins(ManagedObject &object);
    void applyDeleteRules(const ManagedObject &object);
    void releaseHolders(const ManagedObject &object, const RelationshipDescription &relationship);
    bool deleteRow(const ManagedObject &object);
    RowId nextRow(const EntityDescription &entity);
    const QByteArray &insertSql(const EntityDescription &entity);
    static QByteArray updateSql(const EntityDescription &entity, const ManagedObject::ColumnSet &columns);

    ManagedObjectContext &context;
};
