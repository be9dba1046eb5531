// What the keys do in a list.

#include "widgets/TableViewExtended.h"

#include <QKeyEvent>

/// What the list stands in may show a part of it only.
int TableViewExtended::heightInSight() const
{
    const int seen = viewport()->visibleRegion().boundingRect().height();
    return seen > 0 ? seen : viewport()->height();
}

int TableViewExtended::rowOnePageAway(int direction) const
{
    const int y = rowGeometry().top(currentRow()) + direction * (heightInSight() - heights.item);
    const int row = rowGeometry().rowAt(std::clamp(y, 0, std::max(rowGeometry().totalHeight() - 1, 0)));
    const int found = rowsModel->nearestItem(row, direction);
    return found >= 0 ? found : rowsModel->nearestItem(row, -direction);
}

int TableViewExtended::rowInDirection(CursorAction action) const
{
    const int last = rowGeometry().count() - 1;
    const int row = currentRow();
    switch (action) {
    case MoveHome:
        return rowsModel->nearestItem(0, 1);
    case MoveEnd:
        return rowsModel->nearestItem(last, -1);
    case MovePageUp:
        return rowOnePageAway(-1);
    case MovePageDown:
        return rowOnePageAway(1);
    case MoveUp:
    case MovePrevious:
        return rowsModel->nearestItem(row < 0 ? last : row - 1, -1);
    case MoveDown:
    case MoveNext:
        return rowsModel->nearestItem(row + 1, 1);
    default:
        return row;
    }
}

QModelIndex TableViewExtended::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int row = rowInDirection(action);
    return row < 0 ? currentIndex() : rowsModel->index(row);
}

/// Keys that belong to the list although a menu may have them too.
bool TableViewExtended::isEditKey(const QKeyEvent &event) const
{
    if (event.modifiers() == Qt::AltModifier)
        return areRowsMovable && (event.key() == Qt::Key_Up || event.key() == Qt::Key_Down);
    return event.key() == Qt::Key_Delete && event.modifiers() == Qt::NoModifier;
}

bool TableViewExtended::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && isEditKey(static_cast<QKeyEvent &>(*event))) {
        event->accept();
        return true;
    }
    return QAbstractItemView::event(event);
}

/// Whoever comes by key finds a row selected, so that the next key has something to act on.
void TableViewExtended::focusInEvent(QFocusEvent *event)
{
    QAbstractItemView::focusInEvent(event);
    const bool isByKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
                         event->reason() == Qt::ShortcutFocusReason;
    if (!isByKey || hasSelectedRows() || !rowsModel)
        return;
    const int row = rowsModel->nearestItem(std::max(currentRow(), 0), 1);
    if (row >= 0)
        selectRow(row);
}

void TableViewExtended::keyPressEvent(QKeyEvent *event)
{
    // What the field over a row does not use is not for the row.
    if (state() == EditingState && !hasFocus())
        return event->ignore();
    const bool isPlain = event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier;
    if (event->key() == Qt::Key_Escape && drag.isPressed())
        return cancelDrag();
    if (isEditKey(*event) && event->key() != Qt::Key_Delete)
        return Q_EMIT moveRequested(event->key() == Qt::Key_Up ? -1 : 1);
    if (isEditKey(*event) || (isPlain && event->key() == Qt::Key_Backspace))
        return Q_EMIT removeRequested();
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)
        return openMenuByKey();
    if (isPlain && event->key() == Qt::Key_Space)
        return Q_EMIT checkToggled(selectedRows());
    if (isPlain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        return Q_EMIT doubleAction(currentRow());
    QAbstractItemView::keyPressEvent(event);
    // A row that was current without being selected does not change by such a key, and would stay unselected.
    const bool isMove = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down ||
                        event->key() == Qt::Key_Home || event->key() == Qt::Key_End;
    if (isPlain && isMove && !hasSelectedRows() && currentRow() >= 0)
        selectRow(currentRow());
}
