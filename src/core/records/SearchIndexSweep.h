#pragma once

#include "objectstore/ManagedObject.h"

#include <vector>

class ManagedObjectContext;

/// Takes the texts of records that are gone out of the search index, a little at a time. A store of former
/// versions can have some; since the index became a part of each commit none are left behind, so that a store
/// that was swept once is not swept again.
class SearchIndexSweep
{
public:
    /// Looks at some more texts of a store. True if there is more to look at.
    bool step(ManagedObjectContext &context);

private:
    /// The store that is being swept, with all rows of its index and how many of them were looked at.
    QString store;
    std::vector<RowId> rows;
    std::size_t position = 0;
};
