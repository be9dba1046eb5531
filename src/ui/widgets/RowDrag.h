#pragma once

#include <QPoint>

#include <optional>
#include <set>

/// Rows that are being dragged inside one list: from the press over the moves to the place where they would
/// fall.
class RowDrag
{
public:
    void press(QPoint where) { pressedAt = where; }
    bool isPressed() const { return pressedAt.has_value(); }
    bool isActive() const { return !rows.empty(); }
    /// Whether the mouse has gone far enough for a drag.
    bool isFarEnough(QPoint where) const;
    void begin(std::set<int> draggedRows) { rows = std::move(draggedRows); }
    void end();

    const std::set<int> &draggedRows() const { return rows; }
    /// The row above which the rows would fall, or -1 where they cannot.
    int target() const { return targetRow; }
    /// True if that changed it.
    bool setTarget(int row);

    /// How many dragged rows lie above a row: so much less is the place of the first of them after the drop.
    int rowsAboveRow(int row) const;

private:
    std::optional<QPoint> pressedAt;
    std::set<int> rows;
    int targetRow = -1;
};
