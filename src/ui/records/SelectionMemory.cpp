#include "records/SelectionMemory.h"

#include "records/RecordListModel.h"
#include "widgets/TableViewExtended.h"

#include <QScrollBar>

SelectionMemory SelectionMemory::of(const TableViewExtended &view, const RecordListModel &model)
{
    SelectionMemory memory;
    const std::set<int> rows = view.selectedRows();
    memory.scrollValue = view.verticalScrollBar()->value();
    memory.currentRecord = model.recordAt(view.currentRow());
    if (rows.empty())
        return memory;
    memory.firstRow = *rows.begin();
    for (const int row : rows)
        memory.records.insert(model.identifierAt(row));
    return memory;
}

static int rowNear(const RecordListModel &model, int row)
{
    const int inside = std::min(row, model.rowCount() - 1);
    const int below = model.nearestItem(inside, 1);
    return below >= 0 ? below : model.nearestItem(inside, -1);
}

void SelectionMemory::selectNear(TableViewExtended &view, const RecordListModel &model, int row)
{
    if (const int near = rowNear(model, row); near >= 0)
        view.selectRow(near);
}

void SelectionMemory::restore(TableViewExtended &view, const RecordListModel &model,
                              Otherwise otherwise) const
{
    view.verticalScrollBar()->setValue(scrollValue);
    std::set<int> rows;
    for (int row = 0; !records.empty() && row < model.rowCount(); ++row) {
        if (records.contains(model.identifierAt(row)))
            rows.insert(rows.end(), row);
    }
    if (rows.empty() && firstRow >= 0 && otherwise == Otherwise::Neighbour) {
        if (const int row = rowNear(model, firstRow); row >= 0)
            rows.insert(row);
    }
    if (!rows.empty())
        view.selectRows(rows);
    if (const int row = model.rowOf(currentRecord); row >= 0)
        view.selectionModel()->setCurrentIndex(model.index(row), QItemSelectionModel::NoUpdate);
}
