#pragma once

#include "widgets/Accessibility.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <set>
#include <vector>

class QItemSelection;
class TableModel;
class TableViewExtended;

/// The rows of a list as assistive technology sees them, and what happens to them.
///
/// A row is known by the stable id that the model gives it. Nothing is asked of the model before somebody
/// asks for a row. What happens in one turn of the event loop is told together: row by row if there are few,
/// else by one sentence about the whole list.
class AccessibleTable : public QObject
{
public:
    explicit AccessibleTable(TableViewExtended &list);

    /// Follows another model; null for none.
    void follow(TableModel *rowsModel);
    /// Rows may say something else than before.
    void rowsChanged() { tellSoon(); }
    void tellCurrentRow();
    /// What the list has was asked for anew: says how many there are, even if there are as many as before.
    void tellCount();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // What a row is
    AccessiblePart partOf(quint64 key) const;
    std::vector<AccessibleAction> actionsOf(quint64 key, bool isTickable) const;
    int selectKey(quint64 key) const;
    QString placeInWords(int row) const;
    bool hasHeaders() const { return !order().headers.empty(); }
    quint64 currentKey() const;
    quint64 keyAtPoint(QPoint point) const;
    int firstRowInSight() const;
    std::vector<quint64> keysInSight() const;
    int rowOfKey(quint64 key) const;

    // Where the rows stand among those that are told: gaps are not
    struct Order
    {
        std::vector<int> rows;
        std::vector<int> headers;
        int itemCount() const { return static_cast<int>(rows.size() - headers.size()); }
    };
    const Order &order() const;
    int placeOfRow(int row) const;

    // What happens
    void rowsStandElsewhere();
    void noteRows(int first, int last, std::vector<quint64> &keys);
    void rowsSayOther(int first, int last);
    void rowsInserted(int first, int last);
    void rowsGoing(int first, int last);
    void rowsMoved(int first, int last, int target);
    void reset();
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected);
    void tellSelection();
    void tellSoon();
    void tellNow();
    void tellSteps();
    void tellAsAWhole();

    TableViewExtended &view;
    QPointer<TableModel> model;
    std::vector<QMetaObject::Connection> connections;
    mutable Order cachedOrder;
    mutable QHash<quint64, int> cachedRows;
    mutable bool isOrderOld = true;
    mutable bool areRowsOld = true;

    QTimer soon;
    std::vector<quint64> came;
    std::vector<quint64> went;
    std::vector<quint64> moved;
    bool isReplaced = false;
    /// The list has just taken the keys, and its row was not told yet.
    bool isFocusNew = false;
    /// Rows that were selected or deselected, and whether there are too many to be told of one by one.
    std::vector<std::pair<quint64, bool>> reselected;
    bool isSelectionLarge = false;
    /// Rows out of sight that say something else.
    std::set<quint64> changed;
    /// The list came into sight, or was asked for something else.
    bool isCountDue = false;
    int formerRowCount = 0;
    /// The row with the keys that was told of last, and where it stood.
    quint64 toldCurrent = 0;
    int toldRow = -1;
};
