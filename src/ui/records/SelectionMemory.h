#pragma once

#include "objectstore/ManagedObject.h"

#include <unordered_set>

class TableViewExtended;
class RecordListModel;

/// What was selected in a list of records, so that it can be selected again after the list was fetched anew.
class SelectionMemory
{
public:
    static SelectionMemory of(const TableViewExtended &view, const RecordListModel &model);

    /// What is selected where all records have left the list.
    enum class Otherwise { Neighbour, Nothing };

    /// Selects the records that are still in the list; if none is, on request the one at the row where the
    /// first of them was.
    void restore(TableViewExtended &view, const RecordListModel &model, Otherwise otherwise) const;

    /// Selects the record at a row or below, or else the last one above it.
    static void selectNear(TableViewExtended &view, const RecordListModel &model, int row);

private:
    std::unordered_set<RowId> records;
    ObjectPtr currentRecord;
    int firstRow = -1;
    int scrollValue = 0;
};
