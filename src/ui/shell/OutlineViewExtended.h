#pragma once

#include "store/entities/Entities.h"
#include "widgets/Accessibility.h"

#include <QPointer>
#include <QTimer>
#include <QTreeView>

#include <functional>

/// The sidebar's tree. Headings are reached by the keys and opened by a press, but never selected.
class OutlineViewExtended : public QTreeView
{
    Q_OBJECT
public:
    explicit OutlineViewExtended(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *newModel) override;
    /// Selects a row, opening what it lies in. False if the row cannot be selected, or may not be left.
    bool selectIndex(const QModelIndex &index);
    /// A row is left for another one only if `mayLeave` allows it, which is asked where `isHeld` says so of
    /// the other one.
    /// Says on which rows tasks can be dropped.
    void setTaskTargets(std::function<bool(const QModelIndex &)> takesTasks)
    {
        takes = std::move(takesTasks);
    }
    void setLeaveQuestion(std::function<bool(const QModelIndex &)> isHeld, std::function<bool()> mayLeave);
    /// Lets the user type another title for a row that has one of its own.
    void rename(const QModelIndex &index);
    /// Opens or closes a heading; opening selects its first child.
    void toggle(const QModelIndex &heading);

Q_SIGNALS:
    void didRemoveRow(const QModelIndex &index);
    void selectionDidChange(const QModelIndex &index);
    /// Something is held over a row for a while.
    void heldOver(const QModelIndex &index);
    /// Tasks were dropped on a row.
    void dropped(const QModelIndex &index, const std::vector<TaskPtr> &tasks);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool event(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                 const QModelIndex &index) const override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = QList<int>()) override;

private:
    void describe();
    AccessiblePart partOf(const QModelIndex &index);
    /// The rows that are not in a closed heading, from the top.
    QModelIndexList shownRows() const;
    QList<quint64> shownKeys() const;
    QModelIndex rowOfKey(quint64 key) const;
    /// Tells which rows have come and gone.
    void tellRows(const QList<quint64> &former);
    bool isHeading(const QModelIndex &index) const;
    bool isHeldBack(const QModelIndex &index) const;
    void selectAfterQuestion(const QModelIndex &index) const;

    std::function<bool(const QModelIndex &)> isHeld;
    std::function<bool()> mayLeave;
    std::function<bool(const QModelIndex &)> takes;
    /// The row that the user has asked for, until its question comes.
    mutable QPersistentModelIndex wanted;
    /// Whether a press has brought the keys here, and from where.
    bool isFocusOfPress = false;
    QPointer<QWidget> hadFocus;
    /// The row that something is held over, and how long.
    QPersistentModelIndex heldIndex;
    QTimer holdTimer;
};
