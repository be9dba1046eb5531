#include "widgets/AccessibleGrid.h"

void *AccessibleGrid::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableInterface)
        return static_cast<QAccessibleTableInterface *>(this);
    return AccessibleControl::interface_cast(type);
}

QAccessibleInterface *AccessibleGrid::cellAt(int row, int column) const
{
    if (column < 0 || column >= columnCount())
        return nullptr;
    return partOf(keyAt(row * columnCount() + column));
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
