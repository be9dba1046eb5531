#pragma once

#include "widgets/RowDrag.h"
#include "widgets/RowGeometry.h"
#include "widgets/TableModel.h"
#include "widgets/Theme.h"

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <QTimer>

#include <functional>
#include <set>
#include <vector>

class QMimeData;

/// The heights of the kinds of rows. Where the text is larger than they were made for, rows grow with it.
struct RowHeights
{
    int item = 51;
    /// Of rows that tell all on one line, where the user wants lists compact; 0 for rows that cannot.
    int compactItem = 0;
    /// How many lines of text an item has.
    int lines = 2;
    int header = 51;
    int separator = 10;
    /// Room below the last row when the list is scrolled to its end.
    int below = Theme::unit;

    /// As they are shown at present: for the size of the text and the density that the user wants.
    RowHeights shown() const;
};

class AccessibleTable;

/// A list of any length that the delegate paints row by row, with several rows selectable.
///
/// Nothing is asked of the model but the kind of a row before that row comes into sight. Rows can be put in
/// another order by dragging, if that is allowed.
class TableViewExtended : public QAbstractItemView
{
    Q_OBJECT
public:
    explicit TableViewExtended(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *newModel) override;
    TableModel *tableModel() const { return rowsModel; }
    void setRowHeights(const RowHeights &newHeights);
    void setRowsMovable(bool movable) { areRowsMovable = movable; }
    bool canMoveRows() const { return areRowsMovable; }
    /// Whether somebody shows a menu when asked.
    bool hasMenu() const;
    /// Shows rows anew that stay where they are, and tells assistive technology what they say now.
    void showRowsAnew();
    /// Tells assistive technology which row the keys are on, where they come from a field beside the list.
    void tellCurrentRow();
    /// Tells assistive technology how many rows there are, even if there are as many as before: other rows
    /// were asked for.
    void tellCount();

    /// The selected items, from the top.
    std::set<int> selectedRows() const;
    int selectedCount() const;
    bool hasSelectedRows() const { return firstSelectedRow() >= 0; }
    /// The uppermost selected item, or -1.
    int firstSelectedRow() const;
    /// Selects these rows and no others, and makes the first of them the current one.
    void selectRows(const std::set<int> &rows);
    void selectRow(int row) { selectRows({row}); }
    int currentRow() const { return currentIndex().row(); }
    int hoveredRow() const { return hoverRow; }
    bool isDragging() const { return drag.isActive(); }
    /// With the room below: as high the list has to be to show all of its rows.
    int wholeHeight() const;
    void scrollToRow(int row) { scrollTo(rowsModel->index(row)); }

    /// A row and how far below the upper edge of the list it stands.
    struct Sight
    {
        QPersistentModelIndex row;
        int y;
    };
    /// The rows that are seen; none in a list that stands at its beginning.
    std::vector<Sight> rowsInSight() const;
    /// After rows came and went: scrolls so that the first of those that are still there stands where it was;
    /// without any, to the beginning.
    void keepInSight(const std::vector<Sight> &sights);

    QRect visualRect(const QModelIndex &index) const override;
    QModelIndex indexAt(const QPoint &point) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void reset() override;
    void selectAll() override;

    /// Lets rows be dragged out of the list as what the function makes of them; it gives up ownership.
    void setDragsOut(std::function<QMimeData *(const std::set<int> &rows)> makeData);

Q_SIGNALS:
    /// Two presses on a row, or Return; whatever the row is.
    void doubleAction(int row);
    /// A press on the check box of a row, or the space key on the selected rows.
    void checkToggled(const std::set<int> &rows);
    void removeRequested();
    /// The context menu is asked for, with the row already selected.
    void menuRequested(const QPoint &globalPosition);
    /// Rows were dropped on the place above `target`. `rowsAbove` of them came from above it.
    void rowsDropped(const std::set<int> &rows, int target, int rowsAbove);
    /// The selected rows are to go one place up (-1) or down (1).
    void moveRequested(int direction);
    void rowSelectionChanged();
    /// A row is to be in sight. Where the list is as high as its rows, what it stands in has to scroll.
    void scrolledTo(int row);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool viewportEvent(QEvent *event) override;

    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override { return 0; }
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex &) const override { return false; }
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void updateGeometries() override;
    void rowsInserted(const QModelIndex &parent, int start, int end) override;

private:
    const RowGeometry &rowGeometry() const;
    void rebuildGeometry();
    void showHeights();
    void rowsStandElsewhere();
    QRect rectOfRow(int row) const;
    void paintRow(QPainter &painter, QStyleOptionViewItem &option, int row) const;
    void paintInsertionMark(QPainter &painter) const;
    bool isOnCheckBox(const QPoint &point) const;
    int rowInDirection(CursorAction action) const;
    int rowOnePageAway(int direction) const;
    int heightInSight() const;
    void setHoverRow(int row);
    bool isEditKey(const QKeyEvent &event) const;
    void openMenu(const QModelIndex &index, const QPoint &globalPosition);
    /// Of the current row. The menu key and Shift+F10, of which Qt does not know everywhere, do it.
    void openMenuByKey();

    void beginDrag();
    void dragTo(const QPoint &point);
    int dropTarget(const QPoint &point) const;
    void drop();
    void cancelDrag();
    void dragOut();
    bool isBeside(const QPoint &point) const;
    void autoScroll();

    TableModel *rowsModel = nullptr;
    AccessibleTable *accessible;
    RowHeights wantedHeights;
    RowHeights heights;
    /// Measured when it is needed.
    mutable RowGeometry geometry;
    mutable bool isGeometryOld = true;
    std::vector<QMetaObject::Connection> modelConnections;
    RowDrag drag;
    QTimer autoScrollTimer;
    bool areRowsMovable = false;
    std::function<QMimeData *(const std::set<int> &)> dataOfRows;
    bool isCheckPressed = false;
    bool isSelectionPending = false;
    int hoverRow = -1;
};
