#include "widgets/TableModel.h"

Qt::ItemFlags TableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (kindOf(index.row()) != RowKind::Item)
        return Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

int TableModel::nearestItem(int row, int direction) const
{
    const int count = rowCount();
    for (; row >= 0 && row < count; row += direction) {
        if (kindOf(row) == RowKind::Item)
            return row;
    }
    return -1;
}

std::optional<int> TableModel::heightOf(int) const
{
    return std::nullopt;
}
