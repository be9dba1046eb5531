#pragma once

#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Value.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <memory>
#include <optional>
#include <vector>

/// One row of a store, live in a context. There is at most one object for a row in a context.
///
/// An object starts as a fault that knows only which row it stands for; its values are read at the first
/// look. A change is held here until the context writes it. All of this belongs to the main thread.
class ManagedObject : public std::enable_shared_from_this<ManagedObject>
{
public:
    static constexpr int maximumColumns = 64;
    using ColumnSet = std::bitset<maximumColumns>;

    ManagedObject() = default;
    virtual ~ManagedObject();
    ManagedObject(const ManagedObject &) = delete;
    ManagedObject &operator=(const ManagedObject &) = delete;

    const EntityDescription &entity() const { return *description; }
    /// The context it lives in; null once it was deleted and saved, or its context is gone.
    ManagedObjectContext *context() const { return owner; }
    /// The primary key, unique over all devices.
    const QString &identifier() const { return id; }
    /// `x-morvane://<store uuid>/<Entity>/<id>`.
    QString uri() const;
    RowId rowId() const { return row; }

    bool isInserted() const { return state == State::Inserted; }
    bool isDeleted() const { return state == State::Deleted; }
    /// Whether something was changed since the last save.
    bool hasChanges() const;
    /// The columns with another value than at the last save; of a new object, those that were set.
    const ColumnSet &changedColumns() const { return changedSinceSave; }

    /// The value of a column; reads the row if that has not happened yet. Absent for a row that was deleted
    /// elsewhere, which takes no changes any more.
    const Value &value(int column) const;
    /// Sets a column, to the value as its type holds it. Setting the value it already has is no change.
    void setValue(int column, Value newValue);
    /// The same by name, for predicates and tools. An unknown key is a programming error.
    const Value &valueForKey(std::string_view key) const;
    void setValueForKey(std::string_view key, Value newValue);

    /// The object that a to-one column names, or null.
    ObjectPtr related(int column) const;
    void setRelated(int column, const ObjectPtr &target);

    /// The objects of a to-many relationship, unsaved ones included, without an order.
    std::vector<ObjectPtr> relatedObjects(std::string_view relationship) const;
    void setRelatedObjects(std::string_view relationship, const std::vector<ObjectPtr> &targets);
    void addRelated(std::string_view relationship, const ObjectPtr &target);
    void removeRelated(std::string_view relationship, const ObjectPtr &target);

private:
    enum class State { Detached, Persistent, Inserted, Deleted };
    /// Pairs added to and taken from one owned many-to-many relationship since the last save.
    struct JoinChanges
    {
        const RelationshipDescription *relationship;
        std::vector<QString> added;
        std::vector<QString> removed;
        bool isWritten = true;
    };

    void load() const;
    const RelationshipDescription &requireRelationship(std::string_view key) const;
    void changeRelated(const RelationshipDescription &relationship, const ObjectPtr &target, bool isAdded);
    void changeJoin(const RelationshipDescription &relationship, const QString &target, bool isAdded);

    const EntityDescription *description = nullptr;
    ManagedObjectContext *owner = nullptr;
    QString id;
    RowId row = 0;
    State state = State::Detached;
    mutable bool isLoaded = false;
    /// The row was looked for and is not there.
    mutable bool isGone = false;
    mutable std::vector<Value> values;
    ColumnSet changedSinceSave;
    ColumnSet changedSinceWrite;
    /// Of an inserted object: whether its row stands in the open transaction.
    bool isRowWritten = false;
    /// Of a deleted object: whether it was inserted since the last save, so that nobody else ever saw it.
    bool wasInserted = false;
    bool isNotedAsChanged = false;
    bool isWaitingForWrite = false;
    std::vector<JoinChanges> joinChanges;

    friend class ManagedObjectContext;
    friend class ChangeWriter;
};
