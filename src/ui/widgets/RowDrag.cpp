#include "widgets/RowDrag.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>

bool RowDrag::isFarEnough(QPoint where) const
{
    return pressedAt &&
           (where - *pressedAt).manhattanLength() >= QGuiApplication::styleHints()->startDragDistance();
}

void RowDrag::end()
{
    *this = RowDrag();
}

bool RowDrag::setTarget(int row)
{
    return std::exchange(targetRow, row) != row;
}

int RowDrag::rowsAboveRow(int row) const
{
    return static_cast<int>(std::distance(rows.begin(), rows.lower_bound(row)));
}
