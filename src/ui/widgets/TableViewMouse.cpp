// What the mouse does in a list: selecting, ticking, asking for a menu, dragging rows to another place.

#include "widgets/TableCell.h"
#include "widgets/TableViewExtended.h"

#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollBar>

constexpr int autoScrollZone = 32;

bool TableViewExtended::isOnCheckBox(const QPoint &point) const
{
    const QModelIndex index = indexAt(point);
    if (!index.isValid())
        return false;
    const auto *cell = qobject_cast<const TableCell *>(itemDelegateForIndex(index));
    return cell && cell->checkBoxRect(rectOfRow(index.row()), layoutDirection(), index).contains(point);
}

void TableViewExtended::setHoverRow(int row)
{
    if (row == hoverRow)
        return;
    const int former = std::exchange(hoverRow, row);
    viewport()->update(rectOfRow(former));
    viewport()->update(rectOfRow(row));
}

bool TableViewExtended::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        setHoverRow(-1);
    return QAbstractItemView::viewportEvent(event);
}

void TableViewExtended::mousePressEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    const QModelIndex index = indexAt(point);
    isCheckPressed = event->button() == Qt::LeftButton && isOnCheckBox(point);
    if (isCheckPressed)
        return;
    const bool startsDrag = (areRowsMovable || dataOfRows) && event->button() == Qt::LeftButton &&
                            event->modifiers() == Qt::NoModifier && rowsModel->isItem(index.row());
    if (startsDrag)
        drag.press(point);
    // A press on one of several selected rows may be the start of dragging them all.
    isSelectionPending = startsDrag && selectionModel()->isSelected(index) && selectedCount() > 1;
    if (!isSelectionPending)
        QAbstractItemView::mousePressEvent(event);
}

void TableViewExtended::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    if (drag.isActive())
        return dataOfRows && !viewport()->rect().contains(point) && isBeside(point) ? dragOut()
                                                                                    : dragTo(point);
    if (isCheckPressed)
        return;
    if (drag.isPressed()) {
        if (drag.isFarEnough(point))
            areRowsMovable ? beginDrag() : dragOut();
        return;
    }
    setHoverRow(rowsModel->isItem(indexAt(point).row()) ? indexAt(point).row() : -1);
    QAbstractItemView::mouseMoveEvent(event);
}

void TableViewExtended::mouseReleaseEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    if (drag.isActive())
        return drop();
    drag.end();
    if (std::exchange(isCheckPressed, false)) {
        if (isOnCheckBox(point))
            Q_EMIT checkToggled({indexAt(point).row()});
        return;
    }
    if (std::exchange(isSelectionPending, false))
        return selectRow(indexAt(point).row());
    QAbstractItemView::mouseReleaseEvent(event);
}

void TableViewExtended::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    if (isOnCheckBox(point)) {
        isCheckPressed = true;
        return;
    }
    if (event->button() == Qt::LeftButton && indexAt(point).isValid())
        Q_EMIT doubleAction(indexAt(point).row());
}

void TableViewExtended::contextMenuEvent(QContextMenuEvent *event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        openMenuByKey();
    else
        openMenu(indexAt(event->pos()), event->globalPos());
}

void TableViewExtended::openMenuByKey()
{
    openMenu(currentIndex(), viewport()->mapToGlobal(visualRect(currentIndex()).center()));
}

void TableViewExtended::openMenu(const QModelIndex &index, const QPoint &globalPosition)
{
    if (!rowsModel->isItem(index.row()))
        return;
    if (!selectionModel()->isSelected(index))
        selectRow(index.row());
    Q_EMIT menuRequested(globalPosition);
}

// Dragging

void TableViewExtended::beginDrag()
{
    isSelectionPending = false;
    drag.begin(selectedRows());
    setState(NoState);
    setHoverRow(-1);
    viewport()->setCursor(Qt::ClosedHandCursor);
    autoScrollTimer.start();
}

void TableViewExtended::setDragsOut(std::function<QMimeData *(const std::set<int> &)> makeData)
{
    dataOfRows = std::move(makeData);
}

/// The list scrolls while rows are above or below it; only to its sides they leave it.
bool TableViewExtended::isBeside(const QPoint &point) const
{
    return point.x() < 0 || point.x() >= viewport()->width();
}

/// The list may be gone before they are dropped, so that nothing of it may wait for that.
void TableViewExtended::dragOut()
{
    isSelectionPending = false;
    const std::set<int> rows = selectedRows();
    cancelDrag();
    setState(NoState);
    if (rows.empty())
        return;
    constexpr int pictureWidth = 320;
    QRect seen = rectOfRow(*rows.begin()).intersected(viewport()->rect());
    seen = QStyle::visualRect(layoutDirection(), seen, {seen.topLeft(), QSize(pictureWidth, seen.height())});
    const QPixmap picture = viewport()->grab(seen.intersected(viewport()->rect()));
    auto *leaving = new QDrag(window());
    leaving->setMimeData(dataOfRows(rows));
    if (!picture.isNull())
        leaving->setPixmap(picture);
    leaving->setHotSpot({16, 16});
    QMetaObject::invokeMethod(
        window(), [leaving] { leaving->exec(Qt::CopyAction); }, Qt::QueuedConnection);
}

/// Rows fall above an item only, so not behind the last one.
int TableViewExtended::dropTarget(const QPoint &point) const
{
    const int row = indexAt(point).row();
    if (row < 0)
        return -1;
    const int target = point.y() > rectOfRow(row).center().y() ? row + 1 : row;
    return rowsModel->isItem(target) ? target : -1;
}

void TableViewExtended::dragTo(const QPoint &point)
{
    if (drag.setTarget(dropTarget(point)))
        viewport()->update();
}

void TableViewExtended::drop()
{
    const RowDrag finished = drag;
    cancelDrag();
    if (finished.target() >= 0)
        Q_EMIT rowsDropped(finished.draggedRows(), finished.target(),
                           finished.rowsAboveRow(finished.target()));
}

void TableViewExtended::cancelDrag()
{
    if (drag.isActive())
        viewport()->unsetCursor();
    drag.end();
    autoScrollTimer.stop();
    viewport()->update();
}

void TableViewExtended::autoScroll()
{
    const QPoint point = viewport()->mapFromGlobal(QCursor::pos());
    const int above = autoScrollZone - point.y();
    const int below = point.y() - (viewport()->height() - autoScrollZone);
    const int step = std::min(std::max(above, below), autoScrollZone) / 2;
    if (step <= 0)
        return;
    verticalScrollBar()->setValue(verticalScrollBar()->value() + (above > below ? -step : step));
    dragTo(point);
}
