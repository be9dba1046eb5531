#include "widgets/TableModel.h"

#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

Qt::ItemFlags TableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (kindOf(index.row()) != RowKind::Item)
        return Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

QString TableModel::countInWords(int items) const
{
    return localizedCount(u"%1 lines"_s, items);
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
