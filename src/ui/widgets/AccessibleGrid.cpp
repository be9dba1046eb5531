#include "widgets/AccessibleGrid.h"

void *AccessibleGrid::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableInterface)
        return static_cast<QAccessibleTableInterface *>(this);
    return AccessibleControl::interface_cast(type);
}

int AccessibleGrid::rowCount() const
{
    if (hasParts() && parts().rows)
        return parts().rows();
    return columnCount() > 0 ? partCount() / columnCount() : 0;
}

QAccessibleInterface *AccessibleGrid::cellAt(int row, int column) const
{
    // The bridge does not expect that there is none.
    const int inRow = std::clamp(row, 0, std::max(rowCount() - 1, 0));
    const int inColumn = std::clamp(column, 0, std::max(columnCount() - 1, 0));
    return partOf(keyAt(inRow * columnCount() + inColumn));
}

QString AccessibleGrid::columnDescription(int column) const
{
    return hasParts() ? parts().columns().value(column) : QString();
}

QList<QAccessibleInterface *> AccessibleGrid::selectedCells() const
{
    QList<QAccessibleInterface *> cells;
    for (int place = 0; place < partCount(); ++place) {
        if (parts().part(keyAt(place)).state.selected)
            cells << partOf(keyAt(place));
    }
    return cells;
}
