#pragma once

#include "objectstore/ManagedObject.h"

#include <QString>

#include <deque>
#include <optional>
#include <vector>

/// Which objects of an entity were changed last, for those who keep what they have read of very many rows
/// and read only the changed ones anew.
class ChangedObjects
{
public:
    /// An object that was inserted, changed or deleted.
    struct Change
    {
        QString identifier;
        /// 0 for one that had no row yet.
        RowId row = 0;
    };

    /// Grows with each change, saved or not. No other store ever has the same.
    quint64 revision() const { return first + changes.size(); }
    /// What was changed since the revision; absent if that may be anything.
    std::optional<std::vector<Change>> since(quint64 revision) const;

    void note(const ManagedObject &object);
    /// Any object may have changed.
    void noteAll();

private:
    /// The revision before the oldest change that is kept.
    quint64 first = nextStart();
    std::deque<Change> changes;

    static quint64 nextStart();
};
